// The incremental index of one block: its rows, its flags and its memory. How it is allocated for a file and what is made
// of its rows is in incr_states_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "entity/incr_forge.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;

class IncrIndex : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static std::string Heat(int state) { return StateGroup(state) + "/entityresults/Node/Heat"; }
  ForgedFile& AddHeat(int state, const std::vector<std::int32_t>& ids, int flag = kNoFlag) {
    return AddIncr(file_, Heat(state), GetParam(), ids, flag);
  }
  int Read() {
    if (block_.GetBlkPath().empty()) block_.SetBlkPath(KnownPath(Heat(1), GetParam()));
    return index_.ReadIncrementData(file_.path().c_str(), block_, states_);
  }

  ForgedFile file_;
  ORVBlockHelper block_;
  OpenIncrIndex index_;
  int states_ = -7;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrIndex, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- Rows

TEST_P(IncrIndex, HasARowForEachStateThatHoldsTheBlock) {
  AddHeat(1, {10, 11}, 0);
  file_.group(StateGroup(2));
  AddHeat(3, {30, 31}, 1);
  AddHeat(4, {40, 41});
  index_.Allocate(4, 2);
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(states_, 4);
  EXPECT_EQ(index_.GetNumState(), 3);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_THAT(index_.States(), ElementsAre(1, 3, 4));
  EXPECT_THAT(index_.Flags(), ElementsAre(0, 1, 0));
  EXPECT_THAT(index_.Ids(), ElementsAre(10, 11, 30, 31, 40, 41));
  EXPECT_THAT(index_.Values(), ElementsAre(5, 5.5F, 15, 15.5F, 20, 20.5F));
  EXPECT_EQ(index_.GetStateIds(), index_.m_pStateIds);
  EXPECT_FALSE(index_.IsIncrementalState(1));
  EXPECT_FALSE(index_.IsIncrementalState(2));
  EXPECT_TRUE(index_.IsIncrementalState(3));
  EXPECT_FALSE(index_.IsIncrementalState(4));
}

TEST_P(IncrIndex, OfABlockThatNoStateMarksIsWholeInAll) {
  AddHeat(1, {1});
  AddHeat(2, {2});
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Flags(), ElementsAre(0, 0));
  int state = 5;
  EXPECT_FALSE(index_.HasIncrFlag(state));
  EXPECT_EQ(state, 0);
}

TEST_P(IncrIndex, KeepsAMarkAsItIsStored) {
  AddHeat(1, {1}, 7);
  AddHeat(2, {2}, -3);
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Flags(), ElementsAre(7, -3));
  EXPECT_TRUE(index_.IsIncrementalState(2));
}

TEST_P(IncrIndex, IsReadAnewFromItsFirstRow) {
  AddHeat(1, {1}, 1);
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(index_.GetNumState(), 1);
}

TEST_P(IncrIndex, ReadAnewIsWholeWhereAMarkIsGone) {
  AddHeat(1, {1}, 1);
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Flags(), ElementsAre(1));
  file_.at(PartPaths(Heat(1), GetParam()).header).drop("indexic");
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Flags(), ElementsAre(0));
}

TEST_P(IncrIndex, WhoseFirstRowHasNoColumnsEndsTheReading) {
  for (const std::int64_t columns : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 40}) {
    AddHeat(1, {1}).integer("nindex", columns);
    AddHeat(2, {2});
    index_.Allocate(2, 1);
    EXPECT_EQ(Read(), 1) << columns;
    EXPECT_EQ(index_.GetNumState(), 0);
  }
}

TEST_P(IncrIndex, WithoutTheNumberOfColumnsEndsTheReading) {
  AddHeat(1, {1}).drop("nindex");
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(), 1);
  AddHeat(1, {1}).retype("nindex");
  EXPECT_EQ(Read(), 1);
}

TEST_P(IncrIndex, WithTheNumberOfColumnsSetDoesNotReadIt) {
  AddHeat(1, {1}).drop("nindex");
  index_.Allocate(1, 1);
  index_.m_nIndex = 1;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Ids(), ElementsAre(1));
}

TEST_P(IncrIndex, LearnsTheNumberOfColumnsFromTheFirstRowAlone) {
  AddHeat(1, {1});
  AddHeat(2, {2}).integer("nindex", 2);  // what it says is not looked at
  AddHeat(3, {3, 4});
  AddHeat(4, {4});
  index_.Allocate(4, 1);
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(states_, 4);
  EXPECT_EQ(index_.GetNumIndex(), 1);
  EXPECT_THAT(index_.States(), ElementsAre(1, 2));  // the rows before remain
  EXPECT_THAT(index_.Ids(), ElementsAre(1, 2));
}

// ---- Damage

TEST_P(IncrIndex, EndsAtAStateWithoutIdentifiersOrValues) {
  for (const char* name : {"indexident", "indexval"}) {
    AddHeat(1, {1});
    AddHeat(2, {2});
    IndexOf(file_, Heat(2), GetParam()).drop(name);
    AddHeat(3, {3});
    index_.Allocate(3, 1);
    EXPECT_EQ(Read(), 1) << name;
    EXPECT_THAT(index_.States(), ElementsAre(1)) << name;
  }
}

TEST_P(IncrIndex, EndsAtAStateWithAnIndexOfAnotherClass) {
  for (const char* name : {"indexident", "indexval"}) {
    AddHeat(1, {1});
    AddHeat(2, {2});
    IndexOf(file_, Heat(2), GetParam()).retype(name);
    index_.Allocate(2, 1);
    EXPECT_EQ(Read(), 1) << name;
    EXPECT_THAT(index_.States(), ElementsAre(1)) << name;
  }
}

TEST_P(IncrIndex, ReadsNoValuesAfterIdentifiersThatFailed) {
  AddHeat(1, {1});
  AddHeat(2, {6});
  IndexOf(file_, Heat(2), GetParam()).retype("indexident");
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(index_.m_pIndexVal[0], .5F);
  EXPECT_EQ(index_.m_pIndexVal[1], 0);
}

TEST_P(IncrIndex, EndsAtAMarkThatIsNoNumber) {
  AddHeat(1, {1}, 1);
  AddHeat(2, {2}, 1).retype("indexic");
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(index_.States(), ElementsAre(1));
}

TEST_P(IncrIndex, EndsAtTheRowsOfManyStates) {
  AddMultiState(file_, Heat(1), GetParam(), 3, {1, 2, 3, 4, 5, 6});
  index_.Allocate(1, 2);
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(index_.GetNumState(), 0);
}

TEST_P(IncrIndex, EndsAtABlockOfTheOtherLayout) {
  AddHeat(1, {1});
  AddIncr(file_, Heat(2), GetParam() == Layout::kSplit ? Layout::kSingle : Layout::kSplit, {2}, kNoFlag);
  if (GetParam() == Layout::kSingle) file_.group(Heat(2) + "/orvblock");
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(index_.States(), ElementsAre(1));
}

class SplitIncrIndex : public OrvTest, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Parts, SplitIncrIndex, ::testing::Values("header", "index"),
                         [](const auto& part) { return std::string(part.param); });

TEST_P(SplitIncrIndex, NeedsThePart) {
  ForgedFile file;
  const std::string heat = StateGroup(1) + "/entityresults/Node/Heat";
  AddIncr(file, heat, Layout::kSplit, {1}, kNoFlag);
  ORVBlockHelper block;
  block.SetBlkPath(heat);
  OpenIncrIndex index;
  index.Allocate(1, 1);
  int states = 0;
  EXPECT_EQ(index.ReadIncrementData(file.path().c_str(), block, states), 0);
  file.at(heat).drop(GetParam());
  EXPECT_EQ(index.ReadIncrementData(file.path().c_str(), block, states), 1);
}

TEST_P(IncrIndex, OfElementsWiderThanItsArraysIsNotRead) {
  AddHeat(1, {1});
  index_.Allocate(1, 1);
  index_.m_indexIdentType = ORV_LONG;
  EXPECT_EQ(Read(), 1);
  index_.m_indexIdentType = ORV_INT;
  index_.m_indexValueType = ORV_DOUBLE;
  EXPECT_EQ(Read(), 1);
  index_.m_indexValueType = ORV_FLOAT;
  EXPECT_EQ(Read(), 0);
}

// ---- What it needs

TEST_P(IncrIndex, NeedsRoomForStatesAndFlags) {
  AddHeat(1, {1});
  index_.Allocate(1, 1);
  int* const states = std::exchange(index_.m_pStateIds, nullptr);
  EXPECT_EQ(Read(), 1);
  index_.m_pStateIds = states;
  index_.m_pIncrFlags = nullptr;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(states_, -7);
}

TEST_P(IncrIndex, WithoutRoomForIdentifiersOrValuesLeavesThemOut) {
  AddHeat(1, {6}, 1);
  IndexOf(file_, Heat(1), GetParam()).drop("indexident").drop("indexval");
  index_.Allocate(1, 1);
  int* const first = std::exchange(index_.m_pIndexId, nullptr);
  index_.m_pIndexVal = nullptr;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(index_.Flags(), ElementsAre(1));
  index_.m_pIndexId = first;
}

TEST_P(IncrIndex, NeedsABlockOfAState) {
  AddHeat(1, {1});
  index_.Allocate(1, 1);
  for (const char* path : {"/post/constant/entityresults/Node/Heat", "/post/multistate/entityresults/Node/Heat"}) {
    block_.SetBlkPath(path);
    EXPECT_EQ(Read(), 1) << path;
  }
  block_.SetBlkPath("");
  EXPECT_EQ(index_.ReadIncrementData(file_.path().c_str(), block_, states_), 1);
}

TEST_P(IncrIndex, NeedsAFileWithStates) {
  block_.SetBlkPath(KnownPath(Heat(1), GetParam()));
  index_.Allocate(1, 1);
  EXPECT_EQ(index_.ReadIncrementData(nullptr, block_, states_), 1);
  EXPECT_EQ(index_.ReadIncrementData(TempPath("none").c_str(), block_, states_), 1);
  states_ = -7;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(states_, 0);
}

TEST_P(IncrIndex, LosesItsRowsWhereTheFileCannotBeOpened) {
  AddHeat(1, {1}, 1);
  index_.Allocate(1, 1);
  ASSERT_EQ(Read(), 0);
  states_ = -7;
  EXPECT_EQ(index_.ReadIncrementData(TempPath("none").c_str(), block_, states_), 1);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(states_, 0);
}

TEST_P(IncrIndex, KeepsItsRowsWhereTheBlockIsOfNoState) {
  AddHeat(1, {1}, 1);
  index_.Allocate(1, 1);
  ASSERT_EQ(Read(), 0);
  block_.SetBlkPath("/post/constant/entityresults/Node/Heat");
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(index_.States(), ElementsAre(1));
  EXPECT_THAT(index_.Flags(), ElementsAre(1));
}

TEST_P(IncrIndex, OfABlockThatNoStateHoldsFails) {
  AddHeat(1, {1});
  block_.SetBlkPath(KnownPath(StateGroup(1) + "/entityresults/Node/Speed", GetParam()));
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(states_, 1);
  EXPECT_EQ(index_.GetNumState(), 0);
}

TEST_P(IncrIndex, GivesTheBlockItsOwnReaderBack) {
  AddHeat(1, {1});
  OpenIncrIndex walked;  // a block in the middle of a read
  walked.SetBlkPath(KnownPath(Heat(1), GetParam()));
  ASSERT_EQ(walked.OpenH5Reader(file_.path().c_str(), 0), 0);
  const IOH5Reader* own = walked.GetH5Reader();
  index_.Allocate(1, 1);
  EXPECT_EQ(index_.ReadIncrementData(file_.path().c_str(), walked, states_), 0);
  EXPECT_EQ(walked.GetH5Reader(), own);
  EXPECT_EQ(index_.ReadIncrementData(TempPath("none").c_str(), walked, states_), 1);
  EXPECT_EQ(walked.GetH5Reader(), own);
  EXPECT_EQ(index_.GetH5Reader(), nullptr);
  (void)walked.CloseH5Reader();
}

TEST_P(IncrIndex, ReadsARowFromAGroupInHand) {
  AddHeat(1, {8}, 1);
  index_.Allocate(2, 1);
  const auto version = GetParam() == Layout::kSplit ? ORV_BLK_VERSION_SPLIT : ORV_BLK_VERSION_SINGLE;
  ASSERT_EQ(index_.OpenH5Reader(file_.path().c_str(), 0), 0);
  {
    const std::string path = KnownPath(Heat(1), GetParam());
    const orvio::h5::Group group = orvio::h5::OpenGroup(index_.GetH5Reader()->GetFileId(), path.c_str());
    EXPECT_EQ(index_.ReadIncrementValues(group.get(), version, 1), 0);
    EXPECT_EQ(index_.ReadIncrementValues(-1, version, 1), 1);
    EXPECT_EQ(index_.ReadIncrementValues(group.get(), version, -1), 1);
  }
  (void)index_.CloseH5Reader();
  EXPECT_EQ(index_.m_pIndexId[0], 0);
  EXPECT_EQ(index_.m_pIndexId[1], 8);
  EXPECT_EQ(index_.m_pIndexVal[1], 4);
  EXPECT_EQ(index_.m_pIncrFlags[1], 1);
}

TEST(SplitIncrIndexRow, IsReadForEveryVersionButThatOfOneGroup) {
  ForgedFile file;
  const std::string heat = StateGroup(1) + "/entityresults/Node/Heat";
  AddIncr(file, heat, Layout::kSplit, {8}, 1);
  OpenIncrIndex index;
  index.Allocate(1, 1);
  ASSERT_EQ(index.OpenH5Reader(file.path().c_str(), 0), 0);
  {
    const orvio::h5::Group group = orvio::h5::OpenGroup(index.GetH5Reader()->GetFileId(), heat.c_str());
    EXPECT_EQ(index.ReadIncrementValues(group.get(), static_cast<_ORVBlkVersion>(2), 0), 0);
    EXPECT_EQ(index.ReadIncrementValues(group.get(), ORV_BLK_VERSION_SINGLE, 0), 1);
  }
  (void)index.CloseH5Reader();
  EXPECT_EQ(index.m_pIndexId[0], 8);
}

// ---- Questions

class IncrIndexAnswers : public OrvTest {
 protected:
  IncrIndexAnswers() { index_.Fill({1, 3, 4, 3}, {0, 0, 2, 1}, {1, 2, 3, 4}); }
  OpenIncrIndex index_;
};

TEST_F(IncrIndexAnswers, NameTheFirstIncrementalState) {
  int state = 9;
  EXPECT_TRUE(index_.HasIncrFlag(state));
  EXPECT_EQ(state, 4);
}

TEST_F(IncrIndexAnswers, NameNoStateWithoutNumbers) {
  index_.m_pStateIds = nullptr;
  int state = 9;
  EXPECT_TRUE(index_.HasIncrFlag(state));
  EXPECT_EQ(state, 0);
}

TEST_F(IncrIndexAnswers, FindNoFlagWithoutFlagsOrRows) {
  int state = 9;
  index_.m_nState = 0;
  EXPECT_FALSE(index_.HasIncrFlag(state));
  EXPECT_EQ(state, 0);
  EXPECT_FALSE(index_.IsIncrementalState(4));
  index_.m_nState = 4;
  index_.m_pIncrFlags = nullptr;
  EXPECT_FALSE(index_.HasIncrFlag(state));
  EXPECT_FALSE(index_.IsIncrementalState(4));
}

TEST_F(IncrIndexAnswers, TakeTheFirstRowOfAState) {
  EXPECT_FALSE(index_.IsIncrementalState(3));
  EXPECT_TRUE(index_.IsIncrementalState(4));
  EXPECT_FALSE(index_.IsIncrementalState(2));
  index_.m_pStateIds = nullptr;
  EXPECT_FALSE(index_.IsIncrementalState(4));
}

TEST_F(IncrIndexAnswers, GiveBothColumnsInPlaceOfWhatVectorsHeld) {
  std::vector<int> states = {7}, flags = {7};
  EXPECT_EQ(index_.GetStateIncrFlagInfo(states, flags), 0);
  EXPECT_THAT(states, ElementsAre(1, 3, 4, 3));
  EXPECT_THAT(flags, ElementsAre(0, 0, 2, 1));
}

TEST_F(IncrIndexAnswers, GiveZerosWithoutFlags) {
  index_.m_pIncrFlags = nullptr;
  std::vector<int> states, flags;
  EXPECT_EQ(index_.GetStateIncrFlagInfo(states, flags), 0);
  EXPECT_THAT(flags, ElementsAre(0, 0, 0, 0));
}

TEST_F(IncrIndexAnswers, OfAnEmptyIndexLeaveTheVectorsAlone) {
  std::vector<int> states = {7}, flags = {8};
  ORVIncrIndex empty;
  EXPECT_EQ(empty.GetStateIncrFlagInfo(states, flags), 1);
  index_.m_nState = 0;
  EXPECT_EQ(index_.GetStateIncrFlagInfo(states, flags), 1);
  EXPECT_THAT(states, ElementsAre(7));
  EXPECT_THAT(flags, ElementsAre(8));
}

// ---- Memory. Leaks and double frees are the sanitizers' to find.

TEST_F(IncrIndexAnswers, AreGoneOnceTheAllocationIsFreed) {
  index_.ClearAll();
  EXPECT_EQ(index_.m_pIndexId, nullptr);
  EXPECT_EQ(index_.m_pIndexVal, nullptr);
  EXPECT_EQ(index_.m_pStateIds, nullptr);
  EXPECT_EQ(index_.m_pIncrFlags, nullptr);
  EXPECT_EQ(index_.GetNumState(), 4);  // the counts stay
  EXPECT_EQ(index_.GetNumIndex(), 1);
  index_.ClearAll();
}

TEST_F(IncrIndexAnswers, AreSharedByCopies) {
  ORVIncrIndex copied(index_);
  ORVIncrIndex assigned;
  assigned = index_;
  for (ORVIncrIndex* copy : {&copied, &assigned}) {
    EXPECT_EQ(copy->GetIndexIds(), index_.m_pIndexId);
    EXPECT_EQ(copy->GetIndexVals(), index_.m_pIndexVal);
    EXPECT_EQ(copy->GetStateIds(), index_.m_pStateIds);
    EXPECT_EQ(copy->GetNumState(), 4);
    EXPECT_EQ(copy->GetNumIndex(), 1);
    EXPECT_TRUE(copy->IsIncrementalState(4));
    index_.m_pIncrFlags[2] = 0;  // of the one array that all have
    EXPECT_FALSE(copy->IsIncrementalState(4));
    index_.m_pIncrFlags[2] = 2;
  }
}

TEST_F(IncrIndexAnswers, AreForgottenByInitialize) {
  int* const first = index_.m_pIndexId;
  index_.Initialize();
  EXPECT_EQ(index_.m_pIndexId, nullptr);
  EXPECT_EQ(index_.m_pIndexVal, nullptr);
  EXPECT_EQ(index_.m_pStateIds, nullptr);
  EXPECT_EQ(index_.m_pIncrFlags, nullptr);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(index_.GetNumIndex(), 0);
  index_.m_pIndexId = first;  // not freed
}

TEST(TagIncrIndex, HasANameThatInitializeEmptiesAndCopiesTake) {
  ORVTagIncrIndex index;
  EXPECT_EQ(index.m_tag, "");
  EXPECT_EQ(index.GetStateIds(), nullptr);
  EXPECT_EQ(index.GetIndexIds(), nullptr);
  EXPECT_EQ(index.GetNumState(), 0);
  index.m_tag = "Node_Heat";
  const ORVTagIncrIndex copied(index);
  ORVTagIncrIndex assigned;
  assigned = index;
  EXPECT_EQ(copied.m_tag, "Node_Heat");
  EXPECT_EQ(assigned.m_tag, "Node_Heat");
  index.Initialize();
  EXPECT_EQ(index.m_tag, "");
}

}  // namespace
}  // namespace orv_test
