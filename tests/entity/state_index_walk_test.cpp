// Collecting the index of all states: from which block of a state its row comes, and where the walk ends. What a block
// gives is in state_index_parts_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "entity/state_index_forge.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class StateIndexWalk : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static std::string Heat(int state) { return StateGroup(state) + "/entityresults/Node/Heat"; }

  ForgedFile& AddHeat(int state, const std::vector<double>& values) {
    return AddIndexed(file_, Heat(state), GetParam(), values);
  }

  int Read(int mode, bool filter = false) { return index_.ReadStateIndex(file_.path().c_str(), mode, count_, filter); }
  /// Reads the rows into room for `rows` of them.
  int ReadRows(std::int64_t rows, std::int64_t columns, bool filter = false) {
    index_.Allocate(rows, columns);
    return Read(2, filter);
  }

  ForgedFile file_;
  OpenIndex<float> index_;
  int count_ = -1;
};

INSTANTIATE_TEST_SUITE_P(Layouts, StateIndexWalk, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(StateIndexWalk, LearnsTheColumnsFromTheFirstState) {
  AddHeat(1, {0.5, 1});
  AddHeat(2, {0.75, 2, 3});
  index_.m_nState = 4;
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexWalk, ReadsARowFromEachState) {
  AddHeat(1, {0.5, 1});
  AddHeat(2, {0.75, 2});
  AddHeat(3, {1.5, 3});
  EXPECT_EQ(ReadRows(3, 2), 0);
  EXPECT_EQ(count_, 3);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1, 0.75F, 2, 1.5F, 3));
  EXPECT_THAT(index_.ids, ElementsAre(50, 100, 75, 200, 150, 300));
}

TEST_P(StateIndexWalk, LeavesThePointersAtTheLastRow) {
  AddHeat(1, {0.5});
  AddHeat(2, {0.75});
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_EQ(index_.GetIndexVals(), index_.values.data() + 1);
  EXPECT_EQ(index_.GetIndexIds(), index_.ids.data() + 1);
}

TEST_P(StateIndexWalk, ReadsValuesAloneWithoutRoomForIdentifiers) {
  AddHeat(1, {0.5});
  AddHeat(2, {0.75});
  index_.Allocate(2, 1);
  index_.m_pIndexId = nullptr;
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(count_, 2);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0.75F));
  EXPECT_EQ(index_.GetIndexIds(), nullptr);
}

TEST_P(StateIndexWalk, StopsAtTheFirstStateWithoutTheBlock) {
  for (const int state : {1, 2, 3, 5}) AddHeat(state, {0.5 * state});
  file_.group(StateGroup(4));
  EXPECT_EQ(ReadRows(5, 1), 0);
  EXPECT_EQ(count_, 3);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1, 1.5F, 0, 0));
}

TEST_P(StateIndexWalk, StopsAtTheFirstRowThatCannotBeRead) {
  for (const int state : {1, 2, 3}) AddHeat(state, {0.5 * state});
  file_.at(PartPaths(Heat(2), GetParam()).index).retype("indexval");
  EXPECT_EQ(ReadRows(3, 1), 0);
  EXPECT_EQ(count_, 1);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0, 0));
}

TEST_P(StateIndexWalk, WithoutTheFirstStateReadsNothing) {
  file_.group(StateGroup(1));
  AddHeat(2, {1});
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(index_.GetNumIndex(), 0);
  EXPECT_EQ(ReadRows(2, 1), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexWalk, GoesOnWithABlockOfAnotherNameWhereTheKnownOneIsMissing) {
  AddHeat(1, {0.5});
  AddIndexed(file_, StateGroup(2) + "/elementresults/Shell/Stress", GetParam(), {0.75}, 1100);
  AddIndexed(file_, StateGroup(3) + "/elementresults/Shell/Stress", GetParam(), {1.5}, 1100);
  EXPECT_EQ(ReadRows(3, 1), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0.75F, 1.5F));
}

TEST_P(StateIndexWalk, TakesTheFirstBlockInTheOrderOfNamesThatHasTheColumns) {
  for (const int state : {1, 2}) {
    AddUnindexed(file_, StateGroup(state) + "/attributes/Node/A", GetParam(), 200).integer("nindex", 0);
    AddIndexed(file_, StateGroup(state) + "/entityresults/Node/A", GetParam(), {0.25 * state});
    AddIndexed(file_, StateGroup(state) + "/entityresults/Node/B", GetParam(), {9});
  }
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 1);
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_EQ(count_, 2);
  EXPECT_THAT(index_.values, ElementsAre(0.25F, 0.5F));
}

TEST_P(StateIndexWalk, TakesTheFirstBlockByNameInEachState) {
  AddHeat(1, {0.5});
  AddIndexed(file_, StateGroup(2) + "/entityresults/Node/A", GetParam(), {9});
  AddHeat(2, {0.75});
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 9.0F));
}

TEST_P(StateIndexWalk, LooksForAnotherBlockWhereTheKnownOneHasOtherColumns) {
  AddHeat(1, {0.5});
  AddHeat(2, {1, 2});
  AddIndexed(file_, StateGroup(2) + "/entityresults/Node/Speed", GetParam(), {0.75});
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0.75F));
}

TEST_P(StateIndexWalk, OfBlocksWithoutColumnsHasNone) {
  AddUnindexed(file_, Heat(1), GetParam()).integer("nindex", 0);
  index_.m_nIndex = 7;
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 0);
}

TEST_P(StateIndexWalk, OfABlockWithoutAnIndexHeaderFails) {
  AddUnindexed(file_, Heat(1), GetParam());
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(index_.GetNumIndex(), 0);
}

TEST_P(StateIndexWalk, ForRowsNeedsColumns) {
  AddHeat(1, {0.5});
  index_.m_nState = 3;
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexWalk, WithNeitherHeaderNorDataDoesNothing) {
  AddHeat(1, {0.5});
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(4), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexWalk, OfAFileWithoutStatesFails) {
  EXPECT_EQ(Read(1), 1);
  file_.at("/post").drop("singlestate");
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexWalk, OfAFileThatIsNotThereFails) {
  EXPECT_EQ(index_.ReadStateIndex(TempPath("none").c_str(), 1, count_, false), 1);
  EXPECT_EQ(index_.ReadStateIndex(nullptr, 1, count_, false), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexWalk, WithTheFlagPassesOverEmptyResults) {
  AddIndexed(file_, StateGroup(1) + "/entityresults/Node/A", GetParam(), {9}).integer("nent", 0);
  AddIndexed(file_, StateGroup(1) + "/entityresults/Node/B", GetParam(), {0.5}).integer("nent", 4);
  EXPECT_EQ(ReadRows(1, 1, true), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F));
  EXPECT_EQ(ReadRows(1, 1, false), 0);
  EXPECT_THAT(index_.values, ElementsAre(9));
}

TEST_P(StateIndexWalk, WithAKeyReadsBlocksOfThatTypeGroup) {
  for (const int state : {1, 2}) {
    AddHeat(state, {0.5 * state});
    AddIndexed(file_, StateGroup(state) + "/elementresults/Shell/Stress", GetParam(), {9}, 1100);
  }
  index_.SetKey(1000);
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1));
}

TEST_P(StateIndexWalk, WithAKeyEndsWhereTheFirstBlockHasNoRow) {
  AddHeat(1, {0.5});
  AddUnindexed(file_, StateGroup(2) + "/entityresults/Node/A", GetParam());
  AddIndexed(file_, StateGroup(2) + "/entityresults/Node/B", GetParam(), {0.75});
  index_.SetKey(1000);
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_EQ(count_, 1);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0));
}

TEST_P(StateIndexWalk, WithAKeyEndsWhereTheKnownBlockHasNoRow) {
  AddHeat(1, {0.5});
  AddUnindexed(file_, Heat(2), GetParam());
  AddIndexed(file_, StateGroup(2) + "/entityresults/Node/A", GetParam(), {0.75});
  index_.SetKey(1000);
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_EQ(count_, 1);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0));
}

TEST_P(StateIndexWalk, WithAKeyGoesOnWithTheFirstBlockWhereTheKnownOneIsMissing) {
  AddHeat(1, {0.5});
  AddIndexed(file_, StateGroup(2) + "/entityresults/Node/Speed", GetParam(), {0.75});
  index_.SetKey(1000);
  EXPECT_EQ(ReadRows(2, 1), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 0.75F));
}

TEST_P(StateIndexWalk, WithAKeyWithoutTypeGroupFails) {
  AddHeat(1, {0.5});
  index_.SetKey(4711);
  EXPECT_EQ(Read(1), 1);
}

TEST_P(StateIndexWalk, InDoublePrecisionKeepsAllDigits) {
  AddHeat(1, {0.1});
  AddHeat(2, {0.2});
  OpenIndex<double> index;
  index.Allocate(2, 1);
  EXPECT_EQ(index.ReadStateIndex(file_.path().c_str(), 2, count_, false), 0);
  EXPECT_THAT(index.values, ElementsAre(0.1, 0.2));
}

TEST_P(StateIndexWalk, LeavesThePointersAtTheLastRowWhereALaterStateLacksTheBlock) {
  for (const int state : {1, 2, 3}) AddHeat(state, {0.5 * state});
  file_.group(StateGroup(4));
  EXPECT_EQ(ReadRows(4, 1), 0);
  EXPECT_EQ(count_, 3);
  EXPECT_EQ(index_.GetIndexVals(), index_.values.data() + 2);
  EXPECT_EQ(index_.GetIndexIds(), index_.ids.data() + 2);
}

TEST_P(StateIndexWalk, ReadsValuesAloneWhateverTheTypeOfIdentifiersThatHaveNoRoom) {
  AddHeat(1, {0.5});
  index_.Allocate(1, 1);
  index_.m_pIndexId = nullptr;
  index_.m_indexIdentType = ORV_LONG;  // would be too wide
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(count_, 1);
  EXPECT_THAT(index_.values, ElementsAre(0.5F));
}

TEST_P(StateIndexWalk, WithHeaderAndDataGivesTheHeader) {
  AddHeat(1, {0.5, 1});
  EXPECT_EQ(Read(3), 1);  // for rows the columns are needed
  EXPECT_EQ(index_.GetNumIndex(), 0);
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(3), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexWalk, ThatEndsEarlyLeavesNothingOpen) {
  for (const int state : {1, 2}) AddHeat(state, {0.5 * state});
  file_.at(PartPaths(Heat(2), GetParam()).index).retype("indexval");
  const std::string path = file_.path();
  index_.Allocate(2, 1);
  for (const int mode : {1, 2}) {
    EXPECT_EQ(index_.ReadStateIndex(path.c_str(), mode, count_, false), 0);
    EXPECT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), 0);
  }
  EXPECT_EQ(count_, 1);
}

class StateIndexLayouts : public OrvTest {};

TEST_F(StateIndexLayouts, AreThatOfTheFirstState) {
  ForgedFile file;
  AddIndexed(file, StateGroup(1) + "/entityresults/Node/Heat", Layout::kSingle, {0.5});
  AddIndexed(file, StateGroup(2) + "/entityresults/Node/Heat", Layout::kSplit, {0.75});
  OpenIndex<float> index;
  index.Allocate(2, 1);
  int count = -1;
  EXPECT_EQ(index.ReadStateIndex(file.path().c_str(), 2, count, false), 0);
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace orv_test
