// The index of the multi-state section, which one block holds for all states.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "entity/state_index_forge.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr char kHeat[] = "/post/multistate/multientityresults/Node/Heat";

class StateIndexMulti : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  StateIndexMulti() {
    AddMultiState(file_, kHeat, GetParam(), 3, {1, 2, 3, 4, 5, 6});
    AddMultiState(file_, "/post/multistate/multientityresults/Node/Speed", GetParam(), 1, {9});
    index_.SetKey(1050);
  }

  int Read(int mode) { return index_.ReadMultiStateIndex(file_.path().c_str(), mode, count_); }
  int ReadBoth() {
    EXPECT_EQ(Read(1), 0);
    index_.Allocate(index_.GetNumState(), index_.GetNumIndex());
    return Read(2);
  }
  ForgedFile& AtHeat(const char* part) {
    const PartPaths parts(kHeat, GetParam());
    return file_.at(std::string(part) == "header" ? parts.header : parts.index);
  }

  ForgedFile file_;
  OpenIndex<float> index_;
  int count_ = -1;
};

INSTANTIATE_TEST_SUITE_P(Layouts, StateIndexMulti, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(StateIndexMulti, CountsComeFromTheFirstBlock) {
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 2);
  EXPECT_EQ(index_.GetNumState(), 3);
  EXPECT_EQ(count_, 0);
  EXPECT_EQ(index_.GetBlkPath(), GetParam() == Layout::kSplit ? kHeat : std::string(kHeat) + "/orvblock");
}

TEST_P(StateIndexMulti, RowsComeInOnePiece) {
  EXPECT_EQ(ReadBoth(), 0);
  EXPECT_EQ(count_, 3);
  EXPECT_THAT(index_.values, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(index_.ids, Each(9));
}

TEST_P(StateIndexMulti, RowsComeForTheIndexStageToo) {
  EXPECT_EQ(Read(1), 0);
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(4), 0);
  EXPECT_EQ(count_, 3);
  EXPECT_THAT(index_.values, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_P(StateIndexMulti, ThatCannotBeReadCountsNothing) {
  AtHeat("index").retype("indexval");
  EXPECT_EQ(ReadBoth(), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexMulti, OfOtherExtentsThanTheHeaderSaysCountsNothing) {
  AtHeat("header").integer("nstate", 4);
  EXPECT_EQ(ReadBoth(), 1);
  EXPECT_EQ(count_, 0);
  EXPECT_THAT(index_.values, Each(0));
}

TEST_P(StateIndexMulti, WithoutTheIndexFails) {
  EXPECT_EQ(Read(1), 0);
  file_.at(kHeat).drop(GetParam() == Layout::kSplit ? "index" : "orvblock");
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexMulti, ForRowsNeedsBothCounts) {
  EXPECT_EQ(Read(1), 0);
  index_.m_nState = 0;
  EXPECT_EQ(Read(2), 1);
  index_.m_nState = 3;
  index_.m_nIndex = 0;
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexMulti, ForRowsNeedsThePathThatTheHeaderGave) {
  index_.Allocate(3, 2);
  EXPECT_EQ(Read(2), 1);
}

TEST_P(StateIndexMulti, OfAFileWithoutTheSectionIsEmpty) {
  file_.at("/post").drop("multistate");
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 0);
  EXPECT_EQ(index_.GetNumState(), 0);
}

TEST_P(StateIndexMulti, OfAFirstBlockThatCannotBeReadIsEmpty) {
  AtHeat("header").drop("nindex");
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(index_.GetNumIndex(), 0);
}

TEST_P(StateIndexMulti, OfAFileThatIsNotThereFails) {
  EXPECT_EQ(index_.ReadMultiStateIndex(TempPath("none").c_str(), 1, count_), 1);
  EXPECT_EQ(index_.ReadMultiStateIndex(nullptr, 1, count_), 1);
  EXPECT_EQ(count_, 0);
}

TEST_P(StateIndexMulti, CountsComeFromTheFirstBlockOfTheWholeSection) {
  AddMultiState(file_, "/post/multistate/elementresults/Shell/Stress", GetParam(), 4, {1, 2, 3, 4})
      .integer("block", 1150);
  EXPECT_EQ(ReadBoth(), 0);
  EXPECT_EQ(index_.GetNumIndex(), 1);
  EXPECT_EQ(count_, 4);
  EXPECT_THAT(index_.values, ElementsAre(1, 2, 3, 4));
}

TEST_P(StateIndexMulti, WithoutAModeSucceedsAndReadsNothing) {
  EXPECT_EQ(Read(0), 0);
  EXPECT_EQ(index_.GetNumIndex(), 0);
  EXPECT_EQ(index_.GetNumState(), 0);
  EXPECT_EQ(count_, 0);
}

}  // namespace
}  // namespace orv_test
