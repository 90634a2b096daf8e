// The rows of one given block.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "entity/state_index_forge.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class StateIndexBlock : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static std::string Path(const std::string& block) {
    return GetParam() == Layout::kSplit ? block : block + "/orvblock";
  }
  ForgedFile& AddHeat(int state, const std::vector<double>& values) {
    return AddIndexed(file_, StateGroup(state) + "/entityresults/Node/Heat", GetParam(), values);
  }

  int Read(int mode) { return index_.ReadBlockIndexValues(file_.path().c_str(), &block_, mode, count_); }

  ForgedFile file_;
  ORVBlockHelper block_;
  OpenIndex<float> index_;
  int count_ = -1;
};

INSTANTIATE_TEST_SUITE_P(Layouts, StateIndexBlock, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(StateIndexBlock, PassesOverStatesWithoutIt) {
  for (const int state : {1, 2, 3, 5}) AddHeat(state, {0.5 * state});
  AddIndexed(file_, StateGroup(4) + "/entityresults/Node/Speed", GetParam(), {9});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(5, 1);
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(count_, 4);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1, 1.5F, 2.5F, 0));
  EXPECT_THAT(index_.ids, ElementsAre(50, 100, 150, 250, 0));
  EXPECT_EQ(index_.GetIndexVals(), index_.values.data());
  EXPECT_EQ(index_.GetIndexIds(), index_.ids.data());
}

TEST_P(StateIndexBlock, PassesOverStatesWhoseRowCannotBeRead) {
  AddHeat(1, {0.5, 1});
  AddHeat(2, {7});
  AddHeat(3, {1.5, 3});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(4), 0);
  EXPECT_EQ(count_, 2);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1, 1.5F, 3, 0, 0));
}

TEST_P(StateIndexBlock, ReadsNoMoreRowsThanThereIsRoomFor) {
  for (const int state : {1, 2, 3}) AddHeat(state, {0.5 * state});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(count_, 2);
  EXPECT_THAT(index_.values, ElementsAre(0.5F, 1));
}

TEST_P(StateIndexBlock, GivesItsHeaderFromTheFirstStateThatHasIt) {
  file_.group(StateGroup(1));
  AddHeat(2, {0.5, 1});
  AddHeat(3, {1, 2, 3});
  block_.SetBlkPath(Path(StateGroup(2) + "/entityresults/Node/Heat"));
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexBlock, OfTheMultiStateSectionIsReadAtOnce) {
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 3, {1, 2, 3});
  block_.SetBlkPath(Path("/post/multistate/multientityresults/Node/Heat"));
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumState(), 3);
  index_.Allocate(3, 1);
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(count_, 1);  // one piece
  EXPECT_THAT(index_.values, ElementsAre(1, 2, 3));
}

TEST_P(StateIndexBlock, ItsOwnPathGoesBeforeThatOfTheBlock) {
  AddHeat(1, {0.5});
  AddIndexed(file_, StateGroup(1) + "/entityresults/Node/Speed", GetParam(), {9});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Speed"));
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(2), 0);
  EXPECT_THAT(index_.values, ElementsAre(9));
}

TEST_P(StateIndexBlock, LeavesAnIndexWithoutAPathWithoutOne) {
  AddHeat(1, {0.5});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(2), 0);
  EXPECT_EQ(index_.GetBlkPath(), "");
}

TEST_P(StateIndexBlock, OfNoStateAtAllFails) {
  AddHeat(1, {0.5});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Speed"));
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexBlock, OfTheConstantSectionHasNoRows) {
  AddIndexed(file_, "/post/constant/entityresults/Node/Heat", GetParam(), {0.5});
  AddHeat(1, {0.5});
  block_.SetBlkPath(Path("/post/constant/entityresults/Node/Heat"));
  index_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(1, 1);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(Read(1), 1);
}

TEST_P(StateIndexBlock, ForRowsNeedsBothCounts) {
  AddHeat(1, {0.5});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  for (const int mode : {2, 4}) {
    index_.Allocate(1, 1);
    index_.m_nState = 0;
    EXPECT_EQ(Read(mode), 1);
    index_.m_nState = 1;
    index_.m_nIndex = 0;
    EXPECT_EQ(Read(mode), 1);
    index_.Allocate(1, 1);
    index_.m_nState = -1;  // as a damaged header may say
    EXPECT_EQ(Read(mode), 1);
  }
}

TEST_P(StateIndexBlock, NeedsAFileAndABlock) {
  AddHeat(1, {0.5});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  count_ = 7;
  EXPECT_EQ(index_.ReadBlockIndexValues(nullptr, &block_, 1, count_), 1);
  EXPECT_EQ(count_, 0);
  EXPECT_EQ(index_.ReadBlockIndexValues(file_.path().c_str(), nullptr, 1, count_), 1);
  EXPECT_EQ(index_.ReadBlockIndexValues(TempPath("none").c_str(), &block_, 1, count_), 1);
  EXPECT_EQ(Read(0), 1);
}

TEST_P(StateIndexBlock, OfAFileWithoutStatesFails) {
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  EXPECT_EQ(Read(1), 1);
}

TEST_P(StateIndexBlock, WithAMultiStatePathOfItsOwnReadsNoRowsOfStates) {
  // Three rows of two columns in the multi-state section, where an index of this key looks for the row of each of the two
  // states.
  const std::string multi = "/post/multistate/multientityresults/Node/Heat";
  AddMultiState(file_, multi, GetParam(), 3, {1, 2, 3, 4, 5, 6});
  for (const int state : {1, 2}) AddHeat(state, {0.5, 1});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.SetBlkPath(Path(multi));
  index_.SetKey(1050);
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexBlock, OfStatesThatHoldTheRowsOfManyReadsNothing) {
  for (const int state : {1, 2}) {
    const std::string heat = StateGroup(state) + "/entityresults/Node/Heat";
    AddMultiState(file_, heat, GetParam(), 3, {1, 2, 3, 4, 5, 6});
  }
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexBlock, WithHeaderAndDataGivesTheHeaderAndFailsForWantOfRows) {
  AddHeat(1, {0.5, 1});
  block_.SetBlkPath(Path(StateGroup(1) + "/entityresults/Node/Heat"));
  EXPECT_EQ(Read(3), 1);  // both counts are needed
  EXPECT_EQ(index_.GetNumIndex(), 0);
  index_.Allocate(2, 1);
  EXPECT_EQ(Read(3), 1);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

/// Blocks with a soft link for a part. A walk takes the value of the link for the path of the block, which then leads to
/// groups high up in the tree, where an index of many rows waits.
class StateIndexOfALinkedPart : public OrvTest, public ::testing::WithParamInterface<const char*> {
 protected:
  StateIndexOfALinkedPart() {
    for (const int state : {1, 2}) {
      const std::string heat = StateGroup(state) + "/entityresults/Node/Heat";
      file_.at(heat + "/header").integer("block", 1000);
      file_.at(heat + "/singlestate").integer("block", 1000);
      file_.at(heat).soft_link(GetParam(), "singlestate");
    }
    file_.at(IsSingle() ? "/post/singlestate" : "/post/index").dataset<float>("indexval", {2, 2}, {1, 2, 3, 4});
    file_.dataset<std::int32_t>("indexident", {2, 2}, {1, 2, 3, 4});
  }

  static bool IsSingle() { return std::string("orvblock") == GetParam(); }

  ForgedFile file_;
  OpenIndex<float> index_;
};

INSTANTIATE_TEST_SUITE_P(Links, StateIndexOfALinkedPart, ::testing::Values("data", "index", "orvblock"),
                         [](const auto& link) { return std::string(link.param); });

TEST_P(StateIndexOfALinkedPart, IsReadIntoNoRow) {
  ORVBlockHelper block;
  // A walk over headers does not come past an index alone; one over indexes learns the same path from it.
  const bool is_index = std::string("index") == GetParam();
  const int state = IsSingle() ? 3 : 1;  // the datasets of the index stand before the states
  block.SetBlkPath(is_index ? "singlestate" : index_.FirstPathOf(file_, state));
  EXPECT_EQ(block.GetBlkPath(), IsSingle() ? "singlestate/orvblock" : "singlestate");
  int count = -1;
  index_.SetBlkPath("");
  index_.Allocate(2, 2);  // room for two states, where each would bring two rows
  EXPECT_EQ(index_.ReadBlockIndexValues(file_.path().c_str(), &block, 2, count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_THAT(index_.values, Each(0));
  for (const std::int64_t key : {-1, 1000}) {
    index_.SetKey(key);
    EXPECT_EQ(index_.ReadStateIndex(file_.path().c_str(), 2, count, false), 1);
    EXPECT_THAT(index_.values, Each(0));
  }
}

}  // namespace
}  // namespace orv_test
