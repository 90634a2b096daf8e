// The ids of the entities of results at a state. Counts alone are in model_counts_test, ids of frames in
// model_frames_test.

#include <algorithm>
#include <climits>
#include <numeric>

#include "entity/entity_list_forge.h"
#include "filer/model_file.h"

namespace orv_test {
namespace {

constexpr char kNodes[] = "entityresults/NODE/COORDINATE";

/// Nodes and shells in two states.
class ModelIds : public ModelTest {
 protected:
  ModelIds() {
    model_.variable({.name = "COORDINATE", .key = "COORDINATE"});
    model_.variable({.name = "HEAT", .key = "HEAT"});
    Nodes(1, {10, 20});
    Shells(1, {7, 8, 9});
    Nodes(2, {10, 20, -30, 40});
    Shells(2, {9});
  }

  void Nodes(int state, const Ints& ids) {
    model_.in_state(state, {.variable = "COORDINATE", .nent = static_cast<int>(ids.size()), .ids = ids});
  }
  void Shells(int state, const Ints& ids) {
    const int nele = static_cast<int>(ids.size());
    model_.in_state(state, {.kind = 1100, .etyp = "SHELL", .variable = "HEAT", .nent = nele, .numl = 1, .ids = ids});
  }
  ForgedFile& NodesOfState2() { return Data(ForgedModel::StateGroup(2), kNodes); }

  Ints Ids(Results& blocks, int state) {
    HandedOut<int> ids;
    return ids.first(filer_->GetEntityIds(blocks, state, &ids.array, nullptr));
  }
  Ints Ids(int state) { return Ids(all(), state); }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelIds, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfModelLayout);

TEST_P(ModelIds, StandBlockBehindBlock) {
  Open();
  EXPECT_EQ(Ids(1), (Ints{10, 20, 7, 8, 9}));
  EXPECT_EQ(Ids(2), (Ints{10, 20, -30, 40, 9}));
  Results turned = {all()[1], all()[0]};
  EXPECT_EQ(Ids(turned, 2), (Ints{9, 10, 20, -30, 40}));
}

TEST_P(ModelIds, AreCountedByTheAnswerAndHaveNoSecondArray) {
  Open();
  HandedOut<int> ids;
  int stale = 0;
  int* second = &stale;
  EXPECT_EQ(filer_->GetEntityIds(all(), 2, &ids.array, &second), 5);
  EXPECT_NE(ids.array, nullptr);
  EXPECT_EQ(second, nullptr);
}

TEST_P(ModelIds, WithoutAnyArrayAreTheCountOfEntities) {
  NodesOfState2().drop("entid");
  Open();
  EXPECT_EQ(filer_->GetEntityIds(all(), 2, nullptr, nullptr), 5);
}

TEST_P(ModelIds, WithTheSecondArrayAloneAreCounted) {
  NodesOfState2().drop("entid");
  Open();
  int stale = 0;
  int* second = &stale;
  EXPECT_EQ(filer_->GetEntityIds(all(), 2, nullptr, &second), 1);
  EXPECT_EQ(second, nullptr);
}

TEST_P(ModelIds, OfNothingLeaveNullPointers) {
  ModelFiler& filer = Open();
  ORVFiler missing(TempPath("missing.orv").c_str());
  Results none, list = all();
  int stale = 0;
  const auto expect_nothing = [&](ORVFiler& of, Results& blocks, int state) {
    int* ids = &stale;
    int* second = &stale;
    EXPECT_EQ(of.GetEntityIds(blocks, state, &ids, &second), 0);
    EXPECT_EQ(ids, nullptr);
    EXPECT_EQ(second, nullptr);
  };
  expect_nothing(filer, none, 1);
  expect_nothing(filer, list, 3);
  expect_nothing(missing, list, 1);
  const WithoutData without(filer);
  expect_nothing(filer, list, 1);
}

TEST_P(ModelIds, LeaveTheBlocksAsTheyWereButForTheCount) {
  Open();
  ORVResult& block = *all()[0];
  int own = 0;
  block.m_entid = &own;
  block.m_entidType = ORV_LONG;
  block.m_readIds = 0;
  EXPECT_EQ(Ids(2), (Ints{10, 20, -30, 40, 9}));
  EXPECT_EQ(block.m_entid, &own);
  EXPECT_EQ(block.m_entidType, ORV_LONG);
  EXPECT_EQ(block.m_readIds, 0);
  EXPECT_EQ(own, 0);
  EXPECT_EQ(block.m_nent, 4);
}

TEST_P(ModelIds, OfConstantAndMultiStateBlocksAreTheSameAtEachState) {
  model_.in_constant({.variable = "HEAT", .nent = 2, .ids = {1, 2}});
  model_.in_multistate({.kind = 1050, .variable = "HEAT", .nent = 3, .nstate = 2, .ids = {4, 5, 6}});
  Open();
  Results blocks = {all()[0], filer_->GetResultList(0).at(0)};
  ASSERT_TRUE(blocks[0]->IsConstantBlk());
  EXPECT_EQ(Ids(blocks, 1), (Ints{1, 2, 4, 5, 6}));
  EXPECT_EQ(Ids(blocks, 9), (Ints{1, 2, 4, 5, 6}));
}

TEST_P(ModelIds, OfAModularFileAreTheSame) {
  AddEntities(model_.file(), kIdentifiers, "MODULE_HIERARCHY", Layout::kSingle);
  AddEntities(model_.file(), kIdentifiers, "NODE", Layout::kSingle);
  AddEntities(model_.file(), InState(2, "identifiers"), "NODE", Layout::kSingle);
  Open();
  ASSERT_TRUE(filer_->IsModularData());
  EXPECT_EQ(Ids(2), (Ints{10, 20, -30, 40, 9}));
}

// ---- Blocks that are passed over

TEST_P(ModelIds, PassOverMissingEntriesOfAList) {
  Open();
  Results list = {nullptr, all()[1], nullptr};
  EXPECT_EQ(Ids(list, 1), (Ints{7, 8, 9}));
}

TEST_P(ModelIds, PassOverABlockWithoutEntities) {
  Open();
  all()[0]->m_nent = 0;
  EXPECT_EQ(Ids(1), (Ints{7, 8, 9}));
}

TEST_P(ModelIds, PassOverABlockThatTheStateLacks) {
  Nodes(3, {50});
  Open();
  EXPECT_EQ(Ids(3), (Ints{50}));
}

TEST_P(ModelIds, PassOverABlockThatIsStoredWithoutThem) {
  NodesOfState2().drop("entid");
  Open();
  EXPECT_EQ(Ids(2), (Ints{9}));
  EXPECT_EQ(all()[0]->m_nent, 4);
}

TEST_P(ModelIds, PassOverThoseOfAnotherNumberThanTheHeaderSays) {
  for (const std::size_t stored : {3U, 5U}) {
    NodesOfState2().dataset<std::int32_t>("entid", {stored}, Ints(stored, 1));
    Open();
    EXPECT_EQ(Ids(2), (Ints{9})) << stored;
  }
}

TEST_P(ModelIds, PassOverTextsInTheirPlace) {
  NodesOfState2().retype("entid");
  Open();
  EXPECT_EQ(Ids(2), (Ints{9}));
}

TEST_P(ModelIds, OfBlocksThatAllLackThemAreNone) {
  NodesOfState2().drop("entid");
  Data(ForgedModel::StateGroup(2), "elementresults/SHELL/HEAT").drop("idele");
  Open();
  int stale = 0;
  int* ids = &stale;
  EXPECT_EQ(filer_->GetEntityIds(all(), 2, &ids, nullptr), 0);
  EXPECT_EQ(ids, nullptr);
}

TEST_P(ModelIds, StoredWideAreTakenIfAnIntHoldsThemAll) {
  NodesOfState2().dataset<std::int64_t>("entid", {4}, {1, INT_MAX, INT_MIN, 4});
  Open();
  EXPECT_EQ(Ids(2), (Ints{1, INT_MAX, INT_MIN, 4, 9}));
  for (const std::int64_t wide : {INT_MAX + std::int64_t{1}, INT_MIN - std::int64_t{1}, INT64_MAX}) {
    NodesOfState2().dataset<std::int64_t>("entid", {4}, {1, wide, 3, 4});
    Open();
    EXPECT_EQ(Ids(2), (Ints{9})) << wide;
  }
}

// ---- Damaged files

/// A block that answers another count each time it is asked.
class ChangingBlock : public ORVResult {
 public:
  ChangingBlock(const ORVResult& block, std::vector<std::int64_t> counts) : ORVResult(block), counts_(counts) {}

  int ReadAttribute(const char* file, int state, int sections, _ORVBlockAtt att) override {
    const int status = ORVResult::ReadAttribute(file, state, sections, att);
    if (att == ORV_ATT_NENT) m_nent = counts_.at(asked_++);
    return status;
  }

 private:
  std::vector<std::int64_t> counts_;
  std::size_t asked_ = 0;
};

TEST_P(ModelIds, OfABlockThatGrowsBetweenTwoReadsMustFitTheRest) {
  Open();
  ChangingBlock grows(*all()[0], {1, 4});
  Results blocks = {&grows, all()[1]};
  EXPECT_EQ(Ids(blocks, 2), (Ints{9}));
  ChangingBlock shrinks(*all()[0], {5, 4});
  blocks = {&shrinks, all()[1]};
  EXPECT_EQ(Ids(blocks, 2), (Ints{10, 20, -30, 40, 9}));
}

TEST_P(ModelIds, OfABlockThatLosesItsCountBetweenTwoReadsAreLeftOut) {
  Open();
  for (const std::int64_t then : {std::int64_t{0}, std::int64_t{-4}, INT64_MAX}) {
    ChangingBlock changes(*all()[0], {4, then});
    Results blocks = {&changes, all()[1]};
    EXPECT_EQ(Ids(blocks, 2), (Ints{9})) << then;
  }
}

/// A dataset of zeros that takes no place in the file.
void ClaimZeros(ForgedFile& data, const char* name, hsize_t count) {
  data.drop(name).raw([=](hid_t here) {
    const Id space(H5Screate_simple(1, &count, nullptr), "space");
    const Id dataset(H5Dcreate2(here, name, H5T_STD_I32LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  });
}

/// Large blocks, whose layout makes no difference.
class ModelIdsOfLargeBlocks : public ModelIds {};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelIdsOfLargeBlocks, ::testing::Values(ForgedModel::kSingle), NameOfModelLayout);

TEST_P(ModelIds, ThatNothingInTheFileStandsBehindAreRefused) {
  constexpr int kClaimed = 100'000'000;
  ClaimZeros(NodesOfState2(), "entid", kClaimed);
  Header(ForgedModel::StateGroup(2), kNodes).integer("nent", kClaimed);
  Open();
  EXPECT_EQ(Ids(2), (Ints{9}));
  EXPECT_EQ(filer_->GetEntityCount(all(), 2), kClaimed + 1);
}

TEST_P(ModelIdsOfLargeBlocks, ThatManyBlocksClaimTogetherAreRefusedFromALimitOn) {
  constexpr int kClaimed = 4'000'000;
  ClaimZeros(NodesOfState2(), "entid", kClaimed);
  Header(ForgedModel::StateGroup(2), kNodes).integer("nent", kClaimed);
  Open();
  Results blocks = {all()[0], all()[0], all()[0], all()[1]};
  HandedOut<int> ids;
  EXPECT_EQ(filer_->GetEntityIds(blocks, 2, &ids.array, nullptr), kClaimed + 1);
  EXPECT_EQ(ids.array[kClaimed], 9);
}

TEST_P(ModelIdsOfLargeBlocks, ThatTheFileHasAreGivenHoweverManyThereAre) {
  constexpr hsize_t kStored = 6'000'000;
  Ints stored(kStored);
  std::iota(stored.begin(), stored.end(), 1);
  NodesOfState2().dataset<std::int32_t>("entid", {kStored}, stored);
  Header(ForgedModel::StateGroup(2), kNodes).integer("nent", kStored);
  Open();
  Ints ids = Ids(2);
  ASSERT_EQ(ids.size(), kStored + 1);
  EXPECT_EQ(ids.back(), 9);
  ids.pop_back();
  EXPECT_TRUE(ids == stored);
}

TEST_P(ModelIds, TellNothing) {
  NodesOfState2().retype("entid");
  Open();
  const auto before = messages_.all();
  EXPECT_EQ(Ids(2), (Ints{9}));
  EXPECT_EQ(messages_.all(), before);
}

// ---- Nodes

TEST_P(ModelIds, OfNodeCoordinatesAreThoseOfTheirBlocks) {
  Open();
  HandedOut<int> ids;
  int stale = 0;
  int* second = &stale;
  EXPECT_EQ(filer_->GetNodeCoordinateIds(&ids.array, 2, &second), 4);
  EXPECT_EQ(ids.first(4), (Ints{10, 20, -30, 40}));
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(filer_->GetNodeCoordinateIds(nullptr, 1, nullptr), 2);
}

TEST_P(ModelIds, OfNodeCoordinatesAreNoneWithoutSuchBlocks) {
  ORVFiler unread(model_.path().c_str());
  int stale = 0;
  int* ids = &stale;
  EXPECT_EQ(unread.GetNodeCoordinateIds(&ids, 1, nullptr), 0);
  EXPECT_EQ(ids, nullptr);
}

}  // namespace
}  // namespace orv_test
