#include <vector>

#include "library.h"
#include "orvio/orvio.h"
#include "support/numbered_variable.h"

namespace orvio::bench {
namespace {

constexpr int kAll = ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX;
constexpr int kQuantityCount = static_cast<int>(kQuantities.size());

/// Gives the writes of a scope a durability.
class Durability {
 public:
  explicit Durability(int mode) : before_(ORVSetDurability(mode)) {}
  ~Durability() { (void)ORVSetDurability(before_); }
  Durability(const Durability&) = delete;
  Durability& operator=(const Durability&) = delete;

 private:
  int before_;
};

void DemandOk(int status, const char* what) {
  if (status != 0) throw Trouble(std::string(what) + " failed: " + ORVGetLastErrorText());
}

_ORVVersion VersionOf(const Job& job) { return job.split ? ORV_VERSION_1_1 : ORV_VERSION_2_2; }

/// A block as the host sets it up; it borrows the arrays.
void WriteResult(ORVFiler& filer, const Job& job, int quantity, int state, void* values, int* ids) {
  int ident = IdentOf(state);
  float time = TimeOf(state);
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName(kNodeType, kQuantities[static_cast<std::size_t>(quantity)].name);
  result.m_nent = job.nodes;
  result.m_ncoo = kQuantities[static_cast<std::size_t>(quantity)].components;
  result.m_nindex = 1;
  result.m_readIds = 1;
  result.m_entid = ids;
  result.m_res = values;
  if (job.storage == Storage::kDouble) result.m_resType = ORV_DOUBLE;
  if (job.storage == Storage::kPacked) result.m_nCompressionFactor = kDigits;
  result.m_indexident = &ident;
  result.m_indexval = &time;
  DemandOk(filer.WriteBlock(&result, state, kAll), "writing a block");
}

void WriteModelState(ORVFiler& filer, const Job& job, int state, std::vector<int>& ids) {
  DemandOk(filer.BeginState(state), "BeginState");
  for (int quantity = 0; quantity < kQuantityCount; ++quantity) {
    std::vector<float> values(static_cast<std::size_t>(ValuesIn(job, quantity)));
    FillValues(job, quantity, state, values.data());
    std::vector<double> doubles;
    if (job.storage == Storage::kDouble) doubles.assign(values.begin(), values.end());
    void* stored = doubles.empty() ? static_cast<void*>(values.data()) : doubles.data();
    WriteResult(filer, job, quantity, state, stored, ids.data());
  }
  DemandOk(filer.EndState(), "EndState");
}

class LibraryWriter : public Writer {
 public:
  LibraryWriter(const std::string& path, const Commit& commit)
      : durability_(commit.durability), filer_(path.c_str()), whole_state_(commit.whole_state) {
    DemandOk(filer_.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, true), "InitForWriting");
  }

  void WriteState(int state, StateValues& values) override {
    if (whole_state_) DemandOk(filer_.BeginState(state), "BeginState");
    for (int quantity = 0; quantity < kQuantityCount; ++quantity) {
      WriteResult(filer_, values.job, quantity, state, values.values[static_cast<std::size_t>(quantity)].get(),
                  values.ids.get());
    }
    if (whole_state_) DemandOk(filer_.EndState(), "EndState");
  }

 private:
  Durability durability_;
  ORVFiler filer_;
  bool whole_state_;
};

}  // namespace

void MakeEmptyFile(const Job& job, const std::string& path) {
  const Durability plain(0);
  ORVFiler filer(path.c_str());
  DemandOk(filer.InitForWriting(path.c_str(), VersionOf(job), ORV_FILE_CREATE, false), "InitForWriting");
  for (const Quantity& quantity : kQuantities) {
    DemandOk(orv_test::NumberedVariable(quantity.name, quantity.components).Write(filer), "writing a variable");
  }
}

void MakeOrvFile(const Job& job, const std::string& path) {
  MakeEmptyFile(job, path);
  const Durability plain(0);
  ORVFiler filer(path.c_str());
  DemandOk(filer.InitForWriting(path.c_str(), VersionOf(job), ORV_FILE_APPEND, true), "InitForWriting");
  std::vector<int> ids(static_cast<std::size_t>(job.nodes));
  FillIds(job, ids.data());
  for (int state = 1; state <= job.states; ++state) WriteModelState(filer, job, state, ids);
}

std::unique_ptr<Writer> MakeLibraryWriter(const std::string& path, const Commit& commit) {
  return std::make_unique<LibraryWriter>(path, commit);
}

}  // namespace orvio::bench
