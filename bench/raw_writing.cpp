// Writing states with HDF5 alone: the groups, attributes and datasets that the library makes, with open, flush and
// close for each commit.

#include "roads.h"
#include "support/raw_put.h"

namespace orvio::bench {
namespace {

using orv_test::Check;
using orv_test::Id;
using orv_test::MakeGroup;
using orv_test::OpenOrMakeGroup;
using orv_test::PutAttribute;
using orv_test::PutNumber;
using orv_test::PutText;

template <int Rank>
void PutData(hid_t group, const char* name, hid_t type, const hsize_t (&shape)[Rank], const void* values) {
  const Id space(H5Screate_simple(Rank, shape, nullptr), name);
  const Id data(H5Dcreate2(group, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  Check(H5Dwrite(data.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), name);
}

void PutHeader(hid_t block, int nodes, const Quantity& quantity) {
  PutNumber(block, "block", 1000);
  PutText(block, "blocktype", "entityresults");
  PutText(block, "etypvar", quantity.name);
  PutNumber(block, "ncoo", quantity.components);
  PutText(block, "etypzone", "ZONE");
  PutText(block, "etypframe", "FRAME");
  PutNumber(block, "zoneid", 0);
  PutText(block, "etyp", kNodeType);
  PutNumber(block, "nent", nodes);
  PutNumber(block, "nindex", 1);
  PutNumber(block, "fswitch", 0);
  PutNumber(block, "fidglob", 0);
  PutNumber(block, "dmpswitch", 0);
  const int indexic = 0;
  PutAttribute(block, "indexic", H5T_NATIVE_INT, &indexic);
}

class RawWriter : public Writer {
 public:
  RawWriter(const std::string& path, const Commit& commit) : path_(path), whole_state_(commit.whole_state) {}

  void WriteState(int state, StateValues& values) override {
    if (whole_state_) {
      const Id file = Open();
      for (int quantity = 0; quantity < kCount; ++quantity) WriteBlock(file.get(), state, quantity, values);
      Check(H5Fflush(file.get(), H5F_SCOPE_GLOBAL), "H5Fflush");
      return;
    }
    for (int quantity = 0; quantity < kCount; ++quantity) {
      const Id file = Open();
      WriteBlock(file.get(), state, quantity, values);
      Check(H5Fflush(file.get(), H5F_SCOPE_GLOBAL), "H5Fflush");
    }
  }

 private:
  static constexpr int kCount = static_cast<int>(kQuantities.size());

  Id Open() const { return {H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "H5Fopen"}; }

  static void WriteBlock(hid_t file, int state, int quantity, const StateValues& values) {
    const auto at = static_cast<std::size_t>(quantity);
    const Id states(H5Gopen2(file, "/post/singlestate", H5P_DEFAULT), "singlestate");
    const Id of_state = OpenOrMakeGroup(states.get(), StateGroup(state).c_str());
    const Id results = OpenOrMakeGroup(of_state.get(), "entityresults");
    const Id entity = OpenOrMakeGroup(results.get(), kNodeType);
    const Id variable = OpenOrMakeGroup(entity.get(), kQuantities[at].name);
    const Id block = MakeGroup(variable.get(), "orvblock");
    PutHeader(block.get(), values.job.nodes, kQuantities[at]);
    const auto nodes = static_cast<hsize_t>(values.job.nodes);
    PutData(block.get(), "res", H5T_NATIVE_FLOAT, {nodes, static_cast<hsize_t>(kQuantities[at].components)},
            values.values[at].get());
    PutData(block.get(), "entid", H5T_NATIVE_INT, {nodes}, values.ids.get());
    const int ident = IdentOf(state);
    const float time = TimeOf(state);
    PutData(block.get(), "indexident", H5T_NATIVE_INT, {1}, &ident);
    PutData(block.get(), "indexval", H5T_NATIVE_FLOAT, {1}, &time);
  }

  std::string path_;
  bool whole_state_;
};

}  // namespace

std::unique_ptr<Writer> MakeRawWriter(const std::string& path, const Commit& commit) {
  return std::make_unique<RawWriter>(path, commit);
}

}  // namespace orvio::bench
