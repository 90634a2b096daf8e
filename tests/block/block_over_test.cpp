// Walks over the states of a file: one named block in each (ReadBlockOver), or all blocks below one named group in each
// (IterateBlockOver). How a tree is walked is in block_walk_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Five states, each with the split block "attributes/NODE".
class BlockOver : public OrvTest {
 protected:
  BlockOver() {
    ClearRecord();
    for (int state = 1; state <= 5; ++state) {
      const std::string block = State(state) + "/attributes/NODE";
      file_.group(block + "/header").group(block + "/data").group(block + "/index");
    }
  }

  int Read(int stages, int first, int last, int step, const char* name = "attributes/NODE") {
    return block_.ReadBlockOver(file_.path().c_str(), stages, RecordIndex, first, last, step, name);
  }
  int Iterate(int first, int last, int step, int reverse, int stages = 2) {
    return block_.IterateBlockOver(file_.path().c_str(), stages, RecordEither, first, last, step, "attributes",
                                   reverse);
  }

  static std::vector<std::string> Told() { return std::exchange(Record().told, {}); }

  /// Numbers of the states whose groups were handed to the block.
  std::vector<int> States() {
    std::vector<int> states;
    for (const std::string& call : block_.calls) states.push_back(call[call.find("/state0") + 17] - '0');
    block_.calls.clear();
    return states;
  }

  ForgedFile file_;
  RecordingBlock block_{200};
};

// ---- ReadBlockOver

TEST_F(BlockOver, ReadsTheStagesOfEachStateInOrder) {
  EXPECT_EQ(Read(63, 2, 3, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 1 ", "0 16 1 ", "0 2 1 ", "0 32 1 ", "0 4 1 ", "0 1 2 ", "0 16 2 ", "0 2 2 ",
                                  "0 32 2 ", "0 4 2 "));
  EXPECT_THAT(std::vector<std::string>(block_.calls.begin(), block_.calls.begin() + 5),
              ElementsAre("header 1 /post/singlestate/state000000000002/attributes/NODE/header",
                          "data 16 /post/singlestate/state000000000002/attributes/NODE/data",
                          "data 2 /post/singlestate/state000000000002/attributes/NODE/data",
                          "index 32 /post/singlestate/state000000000002/attributes/NODE/index",
                          "index 4 /post/singlestate/state000000000002/attributes/NODE/index"));
}

TEST_F(BlockOver, ReadsFromFirstToLastInSteps) {
  EXPECT_EQ(Read(1, 1, 0, 1), 0);
  EXPECT_THAT(States(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_EQ(Read(1, 1, -3, 0), 0);
  EXPECT_THAT(States(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_EQ(Read(1, 2, 99, 2), 0);
  EXPECT_THAT(States(), ElementsAre(2, 4));
  EXPECT_EQ(Read(1, 2, 4, -7), 0);
  EXPECT_THAT(States(), ElementsAre(2, 3, 4));
  EXPECT_EQ(Read(1, 1, 5, 2147483647), 0);
  EXPECT_THAT(States(), ElementsAre(1));
  EXPECT_EQ(Read(1, 6, 0, 1), 0);
  EXPECT_EQ(Read(1, 4, 2, 1), 0);
  EXPECT_EQ(Read(1, 2147483647, 2147483647, 2147483647), 0);
  EXPECT_THAT(States(), IsEmpty());
}

TEST_F(BlockOver, FailsWithoutACallForWrongArguments) {
  const std::string path = file_.path();
  EXPECT_EQ(Read(1, 0, 0, 1), 1);
  EXPECT_EQ(Read(1, -1, 0, 1), 1);
  EXPECT_EQ(Read(1, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.ReadBlockOver(nullptr, 1, RecordIndex, 1, 0, 1, "attributes/NODE"), 1);
  EXPECT_EQ(block_.ReadBlockOver(path.c_str(), 1, nullptr, 1, 0, 1, "attributes/NODE"), 1);
  EXPECT_EQ(block_.ReadBlockOver(TempPath("missing.orv").c_str(), 1, RecordIndex, 1, 0, 1, "attributes/NODE"), 1);
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(block_.calls, IsEmpty());
}

TEST_F(BlockOver, FailsWithoutStates) {
  file_.at("/post").drop("singlestate");
  EXPECT_NE(Read(1, 1, 0, 1), 0);
  EXPECT_NE(Iterate(1, 0, 1, 0), 0);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(BlockOver, SkipLeavesTheStagesOfOneState) {
  Record().answer = [](int stage, const std::string&) { return stage == 1 ? ORV_ACTION_SKIP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Read(3, 1, 2, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "0 1 1 "));
}

TEST_F(BlockOver, GoesOnAfterAnAnswerThatItDoesNotKnow) {
  Record().answer = [](int, const std::string&) { return static_cast<_ORVAction>(3); };
  EXPECT_EQ(Read(3, 1, 2, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "0 2 0 ", "0 1 1 ", "0 2 1 "));
}

TEST_F(BlockOver, StopEndsTheWalk) {
  Record().answer = [](int stage, const std::string& where) {
    return stage == 2 && where == "1" ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE;
  };
  EXPECT_EQ(Read(7, 1, 0, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "0 2 0 ", "0 4 0 ", "0 1 1 ", "0 2 1 "));
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_STOP);
}

TEST_F(BlockOver, TellsTheStatusOfEachStage) {
  block_.header_status = 3;
  EXPECT_EQ(Read(3, 1, 1, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("3 1 0 ", "0 2 0 "));
}

TEST_F(BlockOver, TellsAStateWithoutTheBlock) {
  file_.at(State(2) + "/attributes").drop("NODE");
  EXPECT_EQ(Read(3, 1, 3, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "0 2 0 ", "1010 -1 1 ", "0 1 2 ", "0 2 2 "));
}

TEST_F(BlockOver, TellsAStateThatIsNoGroup) {
  ForgedFile other;
  other.group("/attributes/NODE/header");
  file_.at("/post/singlestate").drop("state000000000001").soft_link("state000000000001", "/nowhere");
  file_.drop("state000000000002").external_link("state000000000002", other.path(), "/");
  EXPECT_EQ(Read(1, 1, 3, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("1010 -1 0 ", "1010 -1 1 ", "0 1 2 "));
}

TEST_F(BlockOver, StopsAtAStateWithoutTheBlock) {
  file_.at(State(2) + "/attributes").drop("NODE");
  Record().answer = [](int stage, const std::string&) { return stage == -1 ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Read(1, 1, 0, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "1010 -1 1 "));
}

TEST_F(BlockOver, GoesOnBehindAStateWithoutTheBlockThatIsSkipped) {
  file_.at(State(2) + "/attributes").drop("NODE");
  Record().answer = [](int stage, const std::string&) { return stage == -1 ? ORV_ACTION_SKIP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Read(3, 1, 3, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 ", "0 2 0 ", "1010 -1 1 ", "0 1 2 ", "0 2 2 "));
}

TEST_F(BlockOver, ForgetsTheLastAnswerEvenWhereItFails) {
  const std::string path = file_.path();
  block_.m_nActionResult = ORV_ACTION_STOP;
  EXPECT_EQ(Read(1, 0, 0, 1), 1);
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_CONTINUE);
  block_.m_nActionResult = ORV_ACTION_STOP;
  EXPECT_EQ(Iterate(0, 0, 1, 0), 1);
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_CONTINUE);
  block_.m_nActionResult = ORV_ACTION_STOP;
  EXPECT_EQ(Read(1, 1, 1, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 "));
}

TEST_F(BlockOver, TellsThePartsThatDoNotOpen) {
  file_.at(State(1) + "/attributes/NODE").drop("header").drop("data");
  EXPECT_EQ(Read(7, 1, 1, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("1010 1 0 ", "1010 2 0 ", "0 4 0 "));
}

TEST_F(BlockOver, LooksAtTheSplitLayoutOnly) {
  file_.at(State(1) + "/attributes").drop("NODE").group("/post/singlestate/state000000000001/attributes/NODE/orvblock");
  EXPECT_EQ(Read(1, 1, 1, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("1010 1 0 "));
  EXPECT_THAT(block_.calls, IsEmpty());
}

TEST_F(BlockOver, WalksTheStatesWhateverSectionTheKeyIsFixedTo) {
  file_.group("/post/multistate/state000000000009/attributes/NODE/header");
  file_.group("/post/constant/state000000000008/attributes/NODE/header");
  for (const std::int64_t key : {10, 1050}) {
    block_.m_BlkKey = key;
    EXPECT_EQ(Read(1, 1, 2, 1), 0);
    EXPECT_THAT(States(), ElementsAre(1, 2)) << key;
    EXPECT_EQ(Iterate(1, 2, 1, 0), 0);
    EXPECT_THAT(States(), ElementsAre(1, 2)) << key;
  }
}

TEST_F(BlockOver, PassesOverAStateWhoseNameIsTooLongWithoutACall) {
  const std::string fits = "/post/singlestate/a" + std::string(1022, 'a');
  const std::string too_long = "/post/singlestate/b" + std::string(1023, 'b');
  file_.group(fits + "/X/header").group(too_long + "/X/header");
  EXPECT_EQ(Read(1, 1, 2, 1, "X"), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 0 "));
}

// ---- IterateBlockOver

TEST_F(BlockOver, IteratesForwards) {
  EXPECT_EQ(Iterate(1, 0, 1, 0), 0);
  EXPECT_THAT(States(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_EQ(Iterate(2, 4, 2, 0), 0);
  EXPECT_THAT(States(), ElementsAre(2, 4));
  EXPECT_EQ(Iterate(6, 0, 1, 0), 0);
  EXPECT_THAT(States(), IsEmpty());
}

TEST_F(BlockOver, IteratesBackwards) {
  EXPECT_EQ(Iterate(1, 5, 2, 1), 0);
  EXPECT_THAT(States(), ElementsAre(5, 3, 1));
  EXPECT_EQ(Iterate(2, 0, 1, -1), 0);
  EXPECT_THAT(States(), ElementsAre(5, 4, 3, 2));
  EXPECT_EQ(Iterate(2, 5, 2, 1), 0);
  EXPECT_THAT(States(), ElementsAre(5, 3));
  EXPECT_EQ(Iterate(4, 3, 1, 1), 0);
  EXPECT_EQ(Iterate(6, 0, 1, 1), 0);
  EXPECT_THAT(States(), IsEmpty());
}

TEST_F(BlockOver, IteratesEachStateWhereTheStepIsBelowOne) {
  EXPECT_EQ(Iterate(2, 4, 0, 0), 0);
  EXPECT_THAT(States(), ElementsAre(2, 3, 4));
  EXPECT_EQ(Iterate(2, 4, -7, 1), 0);
  EXPECT_THAT(States(), ElementsAre(4, 3, 2));
}

TEST_F(BlockOver, IteratesAllBlocksBelowTheNamedGroup) {
  file_.group(State(1) + "/attributes/A/orvblock");
  EXPECT_EQ(Iterate(1, 1, 1, 0, 1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/singlestate/state000000000001/attributes/A/orvblock",
                                  "0 1 NODE /post/singlestate/state000000000001/attributes/NODE"));
}

TEST_F(BlockOver, IteratesPastAStateWithoutTheGroupWithoutACall) {
  file_.at(State(2)).drop("attributes");
  EXPECT_EQ(Iterate(1, 3, 1, 0), 0);
  EXPECT_THAT(States(), ElementsAre(1, 3));
  EXPECT_EQ(Told().size(), 2U);
}

TEST_F(BlockOver, IterationTellsAStateThatDoesNotOpen) {
  file_.at("/post/singlestate").drop("state000000000002").soft_link("state000000000002", "/nowhere");
  EXPECT_EQ(Iterate(1, 3, 1, 0), 0);
  EXPECT_THAT(Told(), ElementsAre("0 2 NODE /post/singlestate/state000000000001/attributes/NODE",
                                  "1010 -1 1 /post/singlestate/state000000000001/attributes/NODE",
                                  "0 2 NODE /post/singlestate/state000000000003/attributes/NODE"));
}

TEST_F(BlockOver, IterationStopsWhereToldTo) {
  Record().answer = [](int, const std::string&) { return ORV_ACTION_STOP; };
  EXPECT_EQ(Iterate(2, 0, 1, 0), 0);
  EXPECT_THAT(States(), ElementsAre(2));
  file_.at("/post/singlestate").drop("state000000000002").soft_link("state000000000002", "/nowhere");
  EXPECT_EQ(Iterate(2, 0, 1, 0), 0);
  EXPECT_THAT(States(), IsEmpty());
}

TEST_F(BlockOver, IterationNeedsNoCallback) {
  file_.at("/post/singlestate").drop("state000000000002").soft_link("state000000000002", "/nowhere");
  EXPECT_EQ(block_.IterateBlockOver(file_.path().c_str(), 3, nullptr, 1, 3, 1, "attributes", 0), 0);
  EXPECT_THAT(States(), ElementsAre(1, 1, 3, 3));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(BlockOver, IterationFailsForWrongArguments) {
  const std::string path = file_.path();
  EXPECT_EQ(Iterate(0, 0, 1, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(nullptr, 1, RecordEither, 1, 0, 1, "attributes", 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path.c_str(), 1, RecordEither, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(TempPath("missing.orv").c_str(), 1, RecordEither, 1, 0, 1, "attributes", 0), 1);
  EXPECT_THAT(Told(), IsEmpty());
}

}  // namespace
}  // namespace orv_test
