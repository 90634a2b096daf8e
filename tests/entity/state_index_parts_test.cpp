// Life of an index object, and the reading of one header and one row or matrix. The walks over a file are in
// state_index_walk_test, state_index_multi_test and state_index_block_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "entity/state_index_forge.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class StateIndexObject : public OrvTest {};

TEST_F(StateIndexObject, IsEmptyAtFirst) {
  const OpenIndex<float> index;
  EXPECT_EQ(index.GetNumState(), 0);
  EXPECT_EQ(index.GetNumIndex(), 0);
  EXPECT_EQ(index.GetIndexIds(), nullptr);
  EXPECT_EQ(index.GetIndexVals(), nullptr);
  EXPECT_EQ(index.GetKey(), -1);
  EXPECT_FALSE(index.m_bReadEntityCount);
}

TEST_F(StateIndexObject, InitializeForgetsWithoutFreeing) {
  OpenIndex<double> index;
  index.Allocate(2, 3);
  index.Initialize();
  EXPECT_EQ(index.GetNumState(), 0);
  EXPECT_EQ(index.GetNumIndex(), 0);
  EXPECT_EQ(index.GetIndexIds(), nullptr);
  EXPECT_EQ(index.GetIndexVals(), nullptr);
}

TEST_F(StateIndexObject, ClearAllFreesTheArraysAndKeepsTheCounts) {
  OpenIndex<float> index;
  index.m_nIndex = 3;
  index.m_nState = 2;
  index.m_pIndexVal = static_cast<float*>(std::calloc(6, sizeof(float)));
  index.m_pIndexId = static_cast<int*>(std::calloc(6, sizeof(int)));
  index.ClearAll();  // a leak would be reported
  EXPECT_EQ(index.GetIndexVals(), nullptr);
  EXPECT_EQ(index.GetIndexIds(), nullptr);
  EXPECT_EQ(index.GetNumIndex(), 3);
  EXPECT_EQ(index.GetNumState(), 2);
  index.ClearAll();
}

TEST_F(StateIndexObject, CopiesShareTheArrays) {
  OpenIndex<float> index;
  index.Allocate(2, 1);
  index.SetKey(1000);
  const ORVIndexBase<int, float> copy(index);
  ORVIndexBase<int, float> assigned;
  assigned = index;
  for (const auto& other : {copy, assigned}) {
    EXPECT_EQ(other.GetIndexVals(), index.values.data());
    EXPECT_EQ(other.GetIndexIds(), index.ids.data());
    EXPECT_EQ(other.GetNumState(), 2);
    EXPECT_EQ(other.GetNumIndex(), 1);
    EXPECT_EQ(other.GetKey(), 1000);
  }
}

TEST_F(StateIndexObject, OfAHostKeepsItsValueOfAState) {
  ORVStateInfo info;
  EXPECT_EQ(info.m_info, 0);
  info.m_info = 77;
  ORVStateInfo other;
  other = info;
  EXPECT_EQ(other.m_info, 77);
}

// ---- Header

class StateIndexHeader : public OrvTest {
 protected:
  StateIndexHeader() { file_.at("/post/constant/h").integer("nindex", 2).integer("nstate", 5); }

  int Read(int mode = 1) { return index_.HeaderOf(file_, "/post/constant/h", mode); }

  ForgedFile file_;
  OpenIndex<float> index_;
};

TEST_F(StateIndexHeader, GivesColumnsAndStates) {
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(index_.GetNumState(), 5);
}

TEST_F(StateIndexHeader, IsReadInHeaderModeOnly) {
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(Read(0), 1);
  EXPECT_EQ(index_.GetNumIndex(), 0);
  EXPECT_EQ(Read(3), 0);
}

TEST_F(StateIndexHeader, WithoutNstateHasNoStates) {
  file_.drop("nstate");
  index_.m_nState = 8;
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(index_.GetNumState(), 0);
}

TEST_F(StateIndexHeader, WithoutNindexFails) {
  file_.drop("nindex");
  index_.m_nState = 8;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(index_.GetNumState(), 8);
}

TEST_F(StateIndexHeader, WithANindexOfAnotherClassFails) {
  file_.retype("nindex");
  EXPECT_EQ(Read(), 1);
}

TEST_F(StateIndexHeader, WithANstateOfAnotherClassFailsAfterTheColumns) {
  file_.retype("nstate");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(index_.GetNumIndex(), 2);
}

TEST_F(StateIndexHeader, ThatCannotBeReadSaysWhy) {
  file_.drop("nindex");
  EXPECT_EQ(Read(), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"nindex\" attribute not exist");
  file_.integer("nindex", 2).retype("nindex");
  EXPECT_EQ(Read(), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"nindex\" attribute data type mismatch");
}

TEST_F(StateIndexHeader, NeedsAReader) {
  const Location place(file_.path(), "/post/constant/h");
  EXPECT_EQ(index_.ReadHeader(place.id(), 1), 1);
}

// ---- Rows

constexpr char kRow[] = "/post/singlestate/s/b/index", kMatrix[] = "/post/multistate/b/index";

class StateIndexData : public OrvTest {
 protected:
  StateIndexData() {
    file_.at(kRow).dataset<double>("indexval", {2}, {0.5, 1.25}).dataset<std::int64_t>("indexident", {2}, {7, 8});
    file_.at(kMatrix).dataset<float>("indexval", {3, 2}, {1, 2, 3, 4, 5, 6});
    file_.dataset<std::int32_t>("indexident", {3, 2}, {1, 2, 3, 4, 5, 6});
  }

  ForgedFile file_;
  OpenIndex<float> index_;
};

TEST_F(StateIndexData, OfAStateIsOneRow) {
  index_.Allocate(1, 2);
  index_.m_nState = 0;
  EXPECT_EQ(index_.DataOf(file_, kRow), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1.25F));
  EXPECT_THAT(index_.ids, ElementsAre(7, 8));
}

TEST_F(StateIndexData, OfAStateIsOneRowWhateverTheNumberOfStates) {
  index_.Allocate(4, 2);
  EXPECT_EQ(index_.DataOf(file_, kRow), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1.25F, 0, 0, 0, 0, 0, 0));
}

TEST_F(StateIndexData, OfTheMultiStateSectionIsTheWholeMatrix) {
  index_.Allocate(3, 2);
  EXPECT_EQ(index_.DataOf(file_, kMatrix), 0);
  EXPECT_THAT(index_.values, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(index_.ids, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(StateIndexData, OfTheMultiStateSectionWithoutStatesFails) {
  index_.Allocate(3, 2);
  index_.m_nState = 0;
  EXPECT_EQ(index_.DataOf(file_, kMatrix), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_F(StateIndexData, OfTheMultiStateSectionIsNoRow) {
  file_.at("/post/multistate/row").dataset<float>("indexval", {2}, {3, 4});
  index_.Allocate(1, 2);
  index_.m_nState = 0;
  index_.m_pIndexId = nullptr;
  EXPECT_EQ(index_.DataOf(file_, "/post/multistate/row"), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_F(StateIndexData, ElsewhereFollowsTheNumberOfStates) {
  file_.at("/post/constant/row").dataset<float>("indexval", {2}, {3, 4});
  file_.at("/post/constant/matrix").dataset<float>("indexval", {2, 2}, {5, 6, 7, 8});
  index_.Allocate(2, 2);
  index_.m_pIndexId = nullptr;
  EXPECT_EQ(index_.DataOf(file_, "/post/constant/matrix"), 0);
  EXPECT_THAT(index_.values, ElementsAre(5, 6, 7, 8));
  EXPECT_EQ(index_.DataOf(file_, "/post/constant/row"), 1);
  index_.m_nState = 0;
  EXPECT_EQ(index_.DataOf(file_, "/post/constant/row"), 0);
  EXPECT_THAT(index_.values, ElementsAre(3, 4, 7, 8));
}

TEST_F(StateIndexData, WithoutColumnsFails) {
  index_.Allocate(1, 2);
  for (const std::int64_t columns : {std::int64_t{0}, std::int64_t{-2}}) {
    index_.m_nIndex = columns;
    EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  }
}

TEST_F(StateIndexData, OfOtherExtentsFails) {
  index_.Allocate(1, 3);
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  index_.Allocate(2, 2);
  EXPECT_EQ(index_.DataOf(file_, kMatrix), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_F(StateIndexData, LeavesTheIdentifiersOutWithoutAnArray) {
  file_.at(kRow).drop("indexident");
  index_.Allocate(1, 2);
  index_.m_pIndexId = nullptr;
  EXPECT_EQ(index_.DataOf(file_, kRow), 0);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1.25F));
}

TEST_F(StateIndexData, WithoutTheIdentifiersAskedForLeavesTheValuesUnread) {
  file_.at(kRow).drop("indexident");
  index_.Allocate(1, 2);
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_F(StateIndexData, NeedsValuesInTheFileAndAnArrayForThem) {
  index_.Allocate(1, 2);
  index_.m_pIndexVal = nullptr;
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  index_.m_pIndexVal = index_.values.data();
  file_.at(kRow).drop("indexval");
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
}

TEST_F(StateIndexData, OfAnotherClassFails) {
  index_.Allocate(1, 2);
  file_.at(kRow).dataset<std::int32_t>("indexval", {2}, {1, 2});
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
}

TEST_F(StateIndexData, InDoublePrecisionKeepsAllDigits) {
  file_.at(kRow).dataset<double>("indexval", {2}, {0.1, 1e300});
  OpenIndex<double> index;
  index.Allocate(1, 2);
  ASSERT_EQ(index.m_indexValueType, ORV_FLOAT);
  EXPECT_EQ(index.DataOf(file_, kRow), 0);
  EXPECT_THAT(index.values, ElementsAre(0.1, 1e300));
}

TEST_F(StateIndexData, IntoElementsThatAreTooSmallIsRefused) {
  index_.Allocate(1, 2);
  index_.m_indexIdentType = ORV_LONG;
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  index_.m_indexIdentType = ORV_INT;
  index_.m_indexValueType = ORV_DOUBLE;
  EXPECT_EQ(index_.DataOf(file_, kRow), 1);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_F(StateIndexData, NeedsAReader) {
  index_.Allocate(1, 2);
  const Location place(file_.path(), kRow);
  EXPECT_EQ(index_.ReadData(place.id(), 0), 1);
}

}  // namespace
}  // namespace orv_test
