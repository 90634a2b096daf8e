// Reading with the library, as a post-processor does that keeps a filer and opens nothing itself.

#include "library.h"

#include <algorithm>
#include <vector>

#include "orvio/orvio.h"

namespace orvio::bench {
namespace {

void DemandOk(int status, const char* what) {
  if (status != 0) throw Trouble(std::string(what) + " failed: " + ORVGetLastErrorText());
}

void Start(ORVFiler& filer) {
  int next_id = 1;
  DemandOk(filer.InitReader(next_id), "InitReader");
}

void TakeStates(ORVFiler& filer, Listing& listing) {
  const auto* index = filer.GetStateIndex(false);
  Demand(index && index->GetIndexIds() && index->GetIndexVals(), "no state index");
  Demand(index->GetNumIndex() == 1, "a state index of several columns");
  listing.idents.assign(index->GetIndexIds(), index->GetIndexIds() + index->GetNumState());
  listing.times.assign(index->GetIndexVals(), index->GetIndexVals() + index->GetNumState());
}

class LibraryReader : public Reader {
 public:
  LibraryReader(const Files& files, bool kept) : job_(files.job), path_(files.orv), filer_(path_.c_str()), kept_(kept) {
    StartOwn();
    for (std::size_t i = 0; i < kQuantities.size(); ++i) {
      std::vector<const char*> names = {kQuantities[i].name};
      filer_.GetResultBlks(names, blocks_[i], -1, 1, false);
      Demand(blocks_[i].size() == 1, std::string("no block of ") + kQuantities[i].name);
    }
  }

  void Read(const Asked& asked, Answer& answer) override {
    if (asked.state == Asked::kAll) return ReadAllStates(asked, answer);
    ORVResultValuesBase<float, int> values;
    values.m_state = asked.state;
    values.m_wantIds = asked.with_ids ? 1 : 0;
    if (answer.kept) Lend(ValuesAsked(job_, asked), answer, values);
    auto& blocks = blocks_[static_cast<std::size_t>(asked.quantity)];
    const int status = asked.component == Asked::kAll
                           ? filer_.GetValues(values, blocks, -1, -1, QuantityName(asked.quantity))
                           : ReadComponent(asked, blocks, values);
    Take(values, answer);
    DemandOk(status, "GetValues");
  }

  void List(Listing& listing) override {
    ORVFiler filer(path_.c_str());
    Start(filer);
    for (const ORVResult* result : filer.GetResultList(1)) listing.quantities.emplace_back(result->m_etypvar);
    std::sort(listing.quantities.begin(), listing.quantities.end());
    TakeStates(filer, listing);
  }

  void PrepareStates() override {
    filer_ = ORVFiler(path_.c_str());
    StartOwn();
  }
  void ReadStates(Listing& listing) override { TakeStates(filer_, listing); }

 private:
  using Values = ORVResultValuesBase<float, int>;

  void StartOwn() {
    if (kept_) DemandOk(filer_.KeepFileOpen(), "KeepFileOpen");
    Start(filer_);
  }

  static const char* QuantityName(int quantity) { return kQuantities[static_cast<std::size_t>(quantity)].name; }

  /// Hands the arrays of an answer to a request. They come back with Take.
  static void Lend(std::size_t count, Answer& answer, Values& values) {
    (void)answer.TakeValues(count);
    values.m_capacity = static_cast<int>(answer.room);
    values.m_values = answer.values.release();
    values.m_ids = answer.ids.release();
  }

  static void Take(const Values& values, Answer& answer) {
    answer.values.reset(values.m_values);
    answer.ids.reset(values.m_ids);
    answer.value_count = static_cast<std::size_t>(values.m_valueCount);
    answer.id_count = static_cast<std::size_t>(values.m_idCount);
    if (answer.kept) answer.room = static_cast<std::size_t>(values.m_capacity);
  }

  int ReadComponent(const Asked& asked, std::vector<ORVResult*>& blocks, Values& values) {
    values.m_fetchMode = 1;
    return filer_.GetValues(values, blocks, HandleOf(asked), -1, nullptr);
  }

  int HandleOf(const Asked& asked) {
    ORVVariable* variable = filer_.GetVariable(QuantityName(asked.quantity));
    Demand(variable, "no variable");
    for (const ORVExtVar* handle : variable->GetExtVariables()) {
      if (handle->GeIndex() == asked.component) return handle->GetIID();
    }
    throw Trouble("no handle of a component");
  }

  /// State by state into the host's own memory: with a block that was found once.
  void ReadAllStates(const Asked& asked, Answer& answer) {
    float* place = answer.TakeValues(ValuesAsked(job_, asked));
    const std::size_t step = answer.value_count / static_cast<std::size_t>(job_.states);
    ORVResult block = *blocks_[static_cast<std::size_t>(asked.quantity)].front();
    block.m_resType = ORV_FLOAT;
    block.m_readIds = 0;
    for (int state = 1; state <= job_.states; ++state, place += step) {
      block.m_res = place;
      DemandOk(asked.node == Asked::kAll ? block.ReadBlock(path_.c_str(), state, ORV_READ_DATA)
                                         : ReadNode(asked, state, block),
               "reading all states");
    }
  }

  int ReadNode(const Asked& asked, int state, ORVResult& block) {
    const bool whole = asked.component == Asked::kAll;
    std::uint64_t start[] = {static_cast<std::uint64_t>(asked.node),
                             whole ? 0 : static_cast<std::uint64_t>(asked.component)};
    std::uint64_t count[] = {1, whole ? static_cast<std::uint64_t>(block.m_ncoo) : 1};
    return block.ReadSelectiveAttribute(path_.c_str(), state, ORV_READ_DATA, ORV_ATT_RES, 2, start, count, nullptr,
                                        nullptr, false);
  }

  Job job_;
  std::string path_;
  ORVFiler filer_;
  bool kept_;
  std::vector<ORVResult*> blocks_[kQuantities.size()];
};

}  // namespace

std::unique_ptr<Reader> MakeLibraryReader(const Files& files) { return std::make_unique<LibraryReader>(files, false); }
std::unique_ptr<Reader> MakeKeptLibraryReader(const Files& files) {
  return std::make_unique<LibraryReader>(files, true);
}

}  // namespace orvio::bench
