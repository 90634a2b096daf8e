// Datasets that a filer holds in memory for blocks, and what becomes of the blocks when it lets go of them. What the
// blocks read from there is in tests/result.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "filer/container.h"
#include "filer/listed_results.h"
#include "orvio/orv_filer.h"
#include "result/fetched_values.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;
using Results = std::vector<ORVResult*>;

constexpr const char* kNoFile = "/not/there";

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ClearAll;
  using ORVFiler::ORVFiler;
  ORVContainer& data() { return *m_pData; }
};

/// Nodes with one component in two states, and the same over both states in one block.
class FilerCache : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  FilerCache() {
    model_.variable({.name = "SPEED", .key = "SPEED"}).variable({.name = "MASS", .key = "MASS"});
    model_.in_state(1, {.variable = "SPEED", .nent = 2, .values = {1, 2}, .ids = {10, 20}});
    model_.in_state(2, {.variable = "SPEED", .nent = 2, .values = {3, 4}, .ids = {10, 20}});
    model_.in_multistate(
        {.kind = 1050, .variable = "MASS", .nent = 2, .nstate = 2, .values = {5, 6, 7, 8}, .ids = {10, 20}});
    filer_ = std::make_unique<OpenFiler>(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_->InitReader(next_id), 0);
  }

  ORVResult* Single() { return filer_->data().single_results.at(0); }
  ORVResult* Multi() { return filer_->data().multi_results.at(0); }

  /// What a block has in memory for a state; empty when it has none.
  static Floats Held(ORVResult& block, int state = 1) {
    Floats values(4, -1);
    block.m_res = values.data();
    const int status = block.FillFromCacheData(state, ORV_ATT_RES, 0, nullptr, nullptr);
    block.m_res = nullptr;
    return status == 0 ? values : Floats{};
  }
  static Ints HeldIds(ORVResult& block) {
    Ints ids(2, -1);
    block.m_entid = ids.data();
    const int status = block.FillFromCacheData(1, ORV_ATT_IDS, 0, nullptr, nullptr);
    block.m_entid = nullptr;
    return status == 0 ? ids : Ints{};
  }

  ForgedModel model_{GetParam()};
  std::unique_ptr<OpenFiler> filer_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerCache, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle));

TEST_P(FilerCache, HoldsDatasetsOfListedBlocks) {
  EXPECT_EQ(Held(*Single()), Floats{});
  Names names = {"res"};
  EXPECT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  EXPECT_EQ(filer_->CacheData(Multi(), 0, &names, false), 0);
  EXPECT_EQ(Held(*Single()), (Floats{1, 2, -1, -1}));
  EXPECT_EQ(Held(*Multi()), (Floats{5, 6, 7, 8}));
}

TEST_P(FilerCache, HoldsValuesAndIndexValuesWhereNoNamesAreGiven) {
  model_.in_state(3, {.variable = "SPEED", .nent = 2, .values = {8, 9}, .ids = {10, 20}, .index = {.5F}});
  (void)model_.path();
  Names none;
  for (Names* names : {&none, static_cast<Names*>(nullptr)}) {
    EXPECT_EQ(filer_->CacheData(Single(), 3, names, false), 0);
    EXPECT_EQ(Held(*Single(), 3), (Floats{8, 9, -1, -1}));
    float index = -1;
    Single()->m_indexval = &index;
    Single()->m_nindex = 1;
    EXPECT_EQ(Single()->FillFromCacheData(3, ORV_ATT_INDEXVAL, 0, nullptr, nullptr), 0);
    EXPECT_EQ(index, .5F);
    Single()->m_indexval = nullptr;
    Ints ids(2, -1);
    Single()->m_entid = ids.data();
    EXPECT_EQ(Single()->FillFromCacheData(3, ORV_ATT_IDS, 0, nullptr, nullptr), 1);
    Single()->m_entid = nullptr;
    filer_->ClearCacheData(1);
  }
}

TEST_P(FilerCache, HoldsDoublesAsFloatsWhereThatIsWanted) {
  model_.file().at(model_.Part(ForgedModel::StateGroup(1) + "/entityresults/NODE/SPEED", "data"));
  model_.file().dataset<double>("res", {2, 1}, {.5, .25});
  (void)model_.path();
  Names names = {"res"};
  ASSERT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  EXPECT_EQ(Held(*Single()), Floats{});
  filer_->ClearCacheData(1);
  ASSERT_EQ(filer_->CacheData(Single(), 1, &names, true), 0);
  EXPECT_EQ(Held(*Single()), (Floats{.5F, .25F, -1, -1}));
}

TEST_P(FilerCache, NeedsABlock) {
  Names names = {"res"};
  EXPECT_EQ(filer_->CacheData(nullptr, 1, &names, false), 1);
  OpenFiler nothing(kNoFile);
  EXPECT_EQ(nothing.CacheData(Single(), 1, &names, false), 1);
  EXPECT_EQ(Held(*Single()), Floats{});
}

TEST_P(FilerCache, ServesAFetch) {
  Names names = {"res"};
  ASSERT_EQ(filer_->CacheData(Single(), 2, &names, false), 0);
  const char* part = GetParam() == ForgedModel::kSplit ? "data" : "orvblock";
  model_.file().at(ForgedModel::StateGroup(2) + "/entityresults/NODE/SPEED/" + part);
  model_.file().dataset<float>("res", {2, 1}, {8, 9});
  (void)model_.path();
  Results blocks = {Single()};
  FetchedValues<float> fetched;
  fetched.m_state = 2;
  ORVExtVar& handle = *filer_->GetVariable("SPEED")->GetExtVariables().at(0);
  EXPECT_EQ(filer_->GetValues(fetched, blocks, handle.GetIID(), -1, nullptr), 0);
  EXPECT_EQ(fetched.values(), (Floats{3, 4}));
  filer_->ClearCacheData(3);
  FetchedValues<float> again;
  again.m_state = 2;
  EXPECT_EQ(filer_->GetValues(again, blocks, handle.GetIID(), -1, nullptr), 0);
  EXPECT_EQ(again.values(), (Floats{8, 9}));
}

TEST_P(FilerCache, ForgetsBothListsWhateverTheFlags) {
  Names names = {"res"};
  for (const int flags : {0, 1, 2, 3}) {
    ASSERT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
    ASSERT_EQ(filer_->CacheData(Multi(), 0, &names, false), 0);
    filer_->ClearCacheData(flags);
    EXPECT_EQ(Held(*Single()), Floats{}) << flags;
    EXPECT_EQ(Held(*Multi()), Floats{}) << flags;
    EXPECT_TRUE(filer_->data().cache_maps.empty()) << flags;
  }
}

TEST_P(FilerCache, ClearsWhereNothingIsHeld) {
  for (const int flags : {0, 3, -1}) filer_->ClearCacheData(flags);
  EXPECT_EQ(Held(*Single()), Floats{});
}

TEST_P(FilerCache, ForgetsBlocksThatStandInNoList) {
  Names names = {"res"};
  ORVResult own(1000);
  own.SetEntityAndVarName("NODE", "SPEED");
  own.m_nent = 2;
  own.m_ncoo = 1;
  ASSERT_EQ(filer_->CacheData(&own, 2, &names, false), 0);
  ORVResult copy = own;
  EXPECT_EQ(Held(own, 2), (Floats{3, 4, -1, -1}));
  EXPECT_EQ(Held(copy, 2), (Floats{3, 4, -1, -1}));
  filer_->ClearCacheData(1);
  EXPECT_EQ(Held(own, 2), Floats{});
  EXPECT_EQ(Held(copy, 2), Floats{});
  EXPECT_EQ(filer_->CacheData(&copy, 2, &names, false), 0);
  EXPECT_EQ(Held(copy, 2), (Floats{3, 4, -1, -1}));
  EXPECT_EQ(Held(own, 2), (Floats{3, 4, -1, -1}));  // they share what is held still
}

TEST_P(FilerCache, ForgetsCopiesThatOutliveTheFiler) {
  Names names = {"res"};
  ASSERT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  ORVResult copy = *Single();
  auto sharer = std::make_unique<ORVFiler>(*filer_);
  filer_.reset();
  EXPECT_EQ(Held(copy), (Floats{1, 2, -1, -1}));
  sharer.reset();
  EXPECT_EQ(Held(copy), Floats{});
}

TEST_P(FilerCache, ForgetsCopiesWhenAllIsClearedOrReadAgain) {
  Names names = {"res"};
  ASSERT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  ORVResult copy = *Single();
  int next_id = 1;
  EXPECT_EQ(filer_->InitReader(next_id), 0);
  EXPECT_EQ(Held(copy), Floats{});
  ASSERT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  ORVResult second = *Single();
  filer_->ClearAll();
  EXPECT_EQ(Held(second), Floats{});
}

TEST_P(FilerCache, KeepsWhatIsHeldForCopiesWhenABlockGoes) {
  Names names = {"res"};
  ORVResult copy;
  {
    ORVResult own = *Single();
    ASSERT_EQ(filer_->CacheData(&own, 1, &names, false), 0);
    copy = own;
  }
  EXPECT_EQ(Held(copy), (Floats{1, 2, -1, -1}));
  filer_->ClearCacheData(3);
  EXPECT_EQ(Held(copy), Floats{});
}

TEST_P(FilerCache, RemembersNoBlockThatWentWithAllItsCopies) {
  Names names = {"res"};
  {
    ORVResult own = *Single();
    ASSERT_EQ(filer_->CacheData(&own, 1, &names, false), 0);
  }
  EXPECT_EQ(filer_->CacheData(Single(), 1, &names, false), 0);
  EXPECT_EQ(filer_->data().cache_maps.size(), 1U);
  filer_->ClearCacheData(3);
}

TEST_P(FilerCache, RemembersABlockOnce) {
  Names names = {"res"};
  for (const int state : {1, 2, 1}) ASSERT_EQ(filer_->CacheData(Single(), state, &names, false), 0);
  EXPECT_EQ(filer_->data().cache_maps.size(), 1U);
  EXPECT_EQ(Held(*Single(), 1), (Floats{1, 2, -1, -1}));
  EXPECT_EQ(Held(*Single(), 2), Floats{});
}

TEST_P(FilerCache, ForgetsABlockOfAnotherFilerForBoth) {
  enum class Ends { kFirstClears, kOtherClears, kOtherGoes };
  for (const Ends end : {Ends::kFirstClears, Ends::kOtherClears, Ends::kOtherGoes}) {
    Names names = {"res"};
    Names ids = {"entid"};
    auto other = std::make_unique<OpenFiler>(model_.path().c_str());
    ORVResult own = *Single();
    ASSERT_EQ(filer_->CacheData(&own, 1, &names, false), 0);
    ASSERT_EQ(other->CacheData(&own, 1, &ids, false), 0);
    EXPECT_EQ(Held(own), (Floats{1, 2, -1, -1}));
    EXPECT_EQ(HeldIds(own), (Ints{10, 20}));
    if (end == Ends::kFirstClears) filer_->ClearCacheData(3);
    if (end == Ends::kOtherClears) other->ClearCacheData(3);
    if (end == Ends::kOtherGoes) other.reset();
    EXPECT_EQ(Held(own), Floats{});
    EXPECT_EQ(HeldIds(own), Ints{});
    if (other) other->ClearCacheData(3);
    filer_->ClearCacheData(3);
    EXPECT_EQ(Held(own), Floats{});
    EXPECT_EQ(HeldIds(own), Ints{});
  }
}

}  // namespace
