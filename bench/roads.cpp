#include "roads.h"

#include "orvio/orv_switches.h"

namespace orvio::bench {
namespace {

constexpr Road kRoads[] = {
    {"flat", MakeFlatReader, MakeFlatWriter, true, false, nullptr},
    {"raw", MakeRawReader, MakeRawWriter, false, false, nullptr},
    {"raw-kept", MakeKeptRawReader, nullptr, false, false, nullptr},
    {"library", MakeLibraryReader, MakeLibraryWriter, false, true, [] { (void)ORVSetFileIndex(0); }},
    {"library-kept", MakeKeptLibraryReader, nullptr, false, true, [] { (void)ORVSetFileIndex(0); }},
    {"library-index", MakeLibraryReader, MakeLibraryWriter, false, true, [] { (void)ORVSetFileIndex(1); }},
    {"library-index-kept", MakeKeptLibraryReader, nullptr, false, true, [] { (void)ORVSetFileIndex(1); }},
};

}  // namespace

std::span<const Road> Roads() { return kRoads; }

StateValues::StateValues(const Job& the_job) : job(the_job) {
  ids = MakeArray<int>(static_cast<std::size_t>(job.nodes));
  FillIds(job, ids.get());
  for (int quantity = 0; quantity < static_cast<int>(values.size()); ++quantity) {
    auto& array = values[static_cast<std::size_t>(quantity)];
    array = MakeArray<float>(static_cast<std::size_t>(ValuesIn(job, quantity)));
    FillValues(job, quantity, 1, array.get());
  }
}

}  // namespace orvio::bench
