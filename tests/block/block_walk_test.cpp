// The walk through a tree of unknown names that finds every block in it: what it reports and in which order, what the
// answers of the callback do, and trees that were made to lead it astray.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_hdf5.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kRoot[] = "/post/constant/entityresults";

class BlockWalk : public OrvTest {
 protected:
  BlockWalk() {
    ClearRecord();
    file_.group(kRoot);
  }

  /// Makes groups below the type group.
  void Add(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) file_.group(kRoot + ("/" + path));
  }

  int Walk(int stages, int state = 0) { return block_.IterateBlock(file_.path().c_str(), state, stages, RecordName); }

  static std::vector<std::string> Told() { return std::exchange(Record().told, {}); }

  ForgedFile file_;
  RecordingBlock block_{1000};
};

// ---- What is found

TEST_F(BlockWalk, FindsBlocksOfBothLayoutsAtAnyDepth) {
  Add({"A/orvblock", "B/C/D/header", "B/C/D/data", "E/empty"});
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(),
              ElementsAre("0 1 A /post/constant/entityresults/A/orvblock", "0 1 D /post/constant/entityresults/B/C/D"));
  EXPECT_THAT(block_.calls, ElementsAre("header 1 /post/constant/entityresults/A/orvblock",
                                        "header 1 /post/constant/entityresults/B/C/D/header"));
}

TEST_F(BlockWalk, GoesInTheOrderOfNames) {
  Add({"b/orvblock", "a/orvblock", "10/orvblock", "9/orvblock", "B/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(
      Told(),
      ElementsAre("0 1 10 /post/constant/entityresults/10/orvblock", "0 1 9 /post/constant/entityresults/9/orvblock",
                  "0 1 B /post/constant/entityresults/B/orvblock", "0 1 a /post/constant/entityresults/a/orvblock",
                  "0 1 b /post/constant/entityresults/b/orvblock"));
}

TEST_F(BlockWalk, RunsAllStagesOfASingleBlockInOrder) {
  Add({"A/orvblock"});
  EXPECT_EQ(Walk(63), 0);
  EXPECT_THAT(
      Told(),
      ElementsAre("0 8 A /post/constant/entityresults/A/orvblock", "0 1 A /post/constant/entityresults/A/orvblock",
                  "0 16 A /post/constant/entityresults/A/orvblock", "0 2 A /post/constant/entityresults/A/orvblock",
                  "0 32 A /post/constant/entityresults/A/orvblock", "0 4 A /post/constant/entityresults/A/orvblock"));
  EXPECT_EQ(block_.calls.size(), 6U);
  EXPECT_EQ(block_.calls[3], "data 63 /post/constant/entityresults/A/orvblock");
}

TEST_F(BlockWalk, RunsTheStagesOfASplitBlockWhereItsPartsStand) {
  Add({"A/header", "A/data", "A/index"});
  EXPECT_EQ(Walk(63), 0);
  // "header" is passed as a level between "data" and "index", and leaves its name.
  EXPECT_THAT(Told(),
              ElementsAre("0 8 A /post/constant/entityresults/A", "0 1 A /post/constant/entityresults/A",
                          "0 16 A /post/constant/entityresults/A", "0 2 A /post/constant/entityresults/A",
                          "0 32 header /post/constant/entityresults/A", "0 4 header /post/constant/entityresults/A"));
  EXPECT_THAT(
      block_.calls,
      ElementsAre("header 63 /post/constant/entityresults/A/header", "header 63 /post/constant/entityresults/A/header",
                  "data 63 /post/constant/entityresults/A/data", "data 63 /post/constant/entityresults/A/data",
                  "index 63 /post/constant/entityresults/A/index", "index 63 /post/constant/entityresults/A/index"));
}

TEST_F(BlockWalk, ReadsNoHeaderOfASplitBlockWithoutData) {
  Add({"A/header", "A/index"});
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(Told(), ElementsAre("0 4 header /post/constant/entityresults/A"));
}

TEST_F(BlockWalk, PassesOverAMissingHeaderWithoutACall) {
  Add({"A/data"});
  EXPECT_EQ(Walk(3), 0);
  EXPECT_THAT(Told(), ElementsAre("0 2 A /post/constant/entityresults/A"));
}

TEST_F(BlockWalk, ReportsABlockInBothLayoutsTwice) {
  Add({"A/header", "A/data", "A/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A",
                                  "0 1 header /post/constant/entityresults/A/orvblock"));
}

TEST_F(BlockWalk, EndsItsDescentAtAGroupNamedData) {
  Add({"A/data/B/orvblock"});
  EXPECT_EQ(Walk(3), 0);
  EXPECT_THAT(Told(), ElementsAre("0 2 A /post/constant/entityresults/A"));
}

TEST_F(BlockWalk, EndsItsDescentAtGroupsNamedIndexAndOrvblock) {
  Add({"A/index/X/orvblock", "B/orvblock/Y/data"});
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(
      Told(),
      ElementsAre("0 4 A /post/constant/entityresults/A", "0 1 B /post/constant/entityresults/B/orvblock",
                  "0 2 B /post/constant/entityresults/B/orvblock", "0 4 B /post/constant/entityresults/B/orvblock"));
}

TEST_F(BlockWalk, TellsTheStatusOfEachStage) {
  Add({"A/orvblock"});
  block_.header_status = 3;
  block_.data_status = 4;
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(Told(), ElementsAre("3 1 A /post/constant/entityresults/A/orvblock",
                                  "4 2 A /post/constant/entityresults/A/orvblock",
                                  "0 4 A /post/constant/entityresults/A/orvblock"));
}

TEST_F(BlockWalk, WalksTheTypeGroupOfAState) {
  file_.group(State(1)).group(State(2) + "/entityresults/A/orvblock");
  Add({"CONSTANT/orvblock"});
  EXPECT_EQ(Walk(1, 1), 1);
  EXPECT_EQ(Walk(1, 2), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/singlestate/state000000000002/entityresults/A/orvblock"));
}

TEST_F(BlockWalk, StartsWithAnEmptyName) {
  Add({"orvblock"});
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1  /post/constant/entityresults/orvblock"));
}

TEST_F(BlockWalk, ForgetsTheNameThatTheOneBeforeEndedWith) {
  Add({"A/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  file_.at(kRoot).drop("A").group("orvblock");
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock",
                                  "0 1  /post/constant/entityresults/orvblock"));
}

TEST_F(BlockWalk, NeedsAFileAndACallback) {
  Add({"A/orvblock"});
  const std::string path = file_.path();
  EXPECT_EQ(block_.IterateBlock(nullptr, 0, 1, RecordName), 1);
  EXPECT_EQ(block_.IterateBlock(path.c_str(), 0, 1, nullptr), 1);
  EXPECT_EQ(block_.IterateBlock(TempPath("missing.orv").c_str(), 0, 1, RecordName), 1);
  EXPECT_THAT(Told(), IsEmpty());
}

// ---- Answers of the callback

TEST_F(BlockWalk, StopsForGood) {
  Add({"A/orvblock", "B/orvblock"});
  Record().answer = [](int, const std::string&) { return ORV_ACTION_STOP; };
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock"));
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_STOP);
}

TEST_F(BlockWalk, ForgetsTheAnswerThatStoppedTheOneBefore) {
  Add({"A/orvblock", "B/orvblock"});
  Record().answer = [](int, const std::string&) { return ORV_ACTION_STOP; };
  EXPECT_EQ(Walk(1), 0);
  EXPECT_EQ(Told().size(), 1U);
  ClearRecord();
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock",
                                  "0 1 B /post/constant/entityresults/B/orvblock"));
}

TEST_F(BlockWalk, StopsInTheMiddleOfASplitBlock) {
  Add({"A/header", "A/data", "A/index", "B/orvblock"});
  Record().answer = [](int stage, const std::string&) { return stage == 2 ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A", "0 2 A /post/constant/entityresults/A"));
}

TEST_F(BlockWalk, SkipsTheStagesLeftOfABlock) {
  Add({"A/orvblock", "B/orvblock"});
  Record().answer = [](int, const std::string& where) { return where == "A" ? ORV_ACTION_SKIP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Walk(3), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock",
                                  "0 1 B /post/constant/entityresults/B/orvblock",
                                  "0 2 B /post/constant/entityresults/B/orvblock"));
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_CONTINUE);
}

TEST_F(BlockWalk, SkippingAtTheDataOfASplitBlockDoesNotSkipItsIndex) {
  Add({"A/header", "A/data", "A/index"});
  Record().answer = [](int stage, const std::string&) { return stage == 1 ? ORV_ACTION_SKIP : ORV_ACTION_CONTINUE; };
  EXPECT_EQ(Walk(7), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A", "0 4 header /post/constant/entityresults/A"));
}

TEST_F(BlockWalk, SurvivesACallbackThatThrows) {
  Add({"A/orvblock", "B/orvblock"});
  Record().answer = [](int, const std::string& where) {
    if (where == "A") throw 1;
    return ORV_ACTION_CONTINUE;
  };
  EXPECT_EQ(Walk(1), 0);
  EXPECT_EQ(Told().size(), 2U);
}

TEST_F(BlockWalk, LetsTheCallbackReadWithTheWalkedBlock) {
  file_.group(kRoot + std::string("/A/orvblock")).group(kRoot + std::string("/B/orvblock"));
  const std::string path = file_.path();
  RecordingBlock walked(1000, "A");
  Record().answer = [&](int, const std::string&) {
    EXPECT_EQ(walked.ReadBlock(path.c_str(), 0, 2), 0);
    EXPECT_NE(walked.GetH5Reader(), nullptr);
    return ORV_ACTION_CONTINUE;
  };
  EXPECT_EQ(walked.IterateBlock(path.c_str(), 0, 1, RecordName), 0);
  EXPECT_THAT(walked.calls, ElementsAre("header 1 /post/constant/entityresults/A/orvblock",
                                        "data 2 /post/constant/entityresults/A/orvblock",
                                        "header 1 /post/constant/entityresults/B/orvblock",
                                        "data 2 /post/constant/entityresults/A/orvblock"));
}

TEST_F(BlockWalk, IsReplacedByANestedOne) {
  Add({"A/orvblock", "B/orvblock"});
  const std::string path = file_.path();
  auto nested = std::make_unique<RecordingBlock>(1000);
  Record().answer = [&](int, const std::string&) {
    if (nested) {
      const std::unique_ptr<RecordingBlock> inner = std::move(nested);
      EXPECT_EQ(inner->IterateBlock(path.c_str(), 0, 1, RecordName), 0);
    }
    return ORV_ACTION_CONTINUE;
  };
  EXPECT_EQ(Walk(1), 0);
  // The nested block is gone by then, and with it the current block: the outer walk finds nothing more.
  EXPECT_EQ(Told().size(), 3U);
}

// ---- Trees made to lead astray

TEST_F(BlockWalk, PassesOverWhatIsNoGroup) {
  Add({"A/orvblock"});
  file_.at(kRoot).dataset<std::int32_t>("numbers", {1}, {1}).soft_link("dangling", "/nowhere");
  file_.at(kRoot + std::string("/B")).dataset<std::int32_t>("orvblock", {1}, {1});
  file_.at(kRoot + std::string("/C")).soft_link("orvblock", "/nowhere");
  file_.at(kRoot + std::string("/D")).dataset<std::int32_t>("data", {1}, {1}).dataset<std::int32_t>("index", {1}, {1});
  EXPECT_EQ(Walk(63 & ~9), 0);
  for (const std::string& told : Told())
    EXPECT_EQ(told.substr(told.find('/')), "/post/constant/entityresults/A/orvblock");
  EXPECT_EQ(block_.calls.size(), 4U);
}

TEST_F(BlockWalk, DoesNotFollowLinksIntoOtherFiles) {
  ForgedFile other;
  other.group("/X/orvblock").group("/X/data");
  const std::string there = other.path();
  file_.at(kRoot).external_link("B", there, "/X");
  file_.at(kRoot + std::string("/C")).external_link("orvblock", there, "/X/orvblock");
  file_.at(kRoot + std::string("/D")).external_link("data", there, "/X/data");
  EXPECT_EQ(Walk(63), 0);
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(block_.calls, IsEmpty());
}

TEST_F(BlockWalk, FollowsSoftLinksInsideTheFile) {
  file_.group("/elsewhere/A/orvblock");
  file_.at(kRoot).soft_link("L", "/elsewhere/A");
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 L /post/constant/entityresults/L/orvblock"));
}

TEST_F(BlockWalk, TakesThePathOfABlockFromASoftLinkToIt) {
  file_.group("/elsewhere/A/orvblock").group(kRoot + std::string("/B"));
  file_.at(kRoot + std::string("/B")).soft_link("orvblock", "/elsewhere/A");
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 B /elsewhere/A/orvblock"));
}

TEST_F(BlockWalk, TakesThePathOfASplitBlockFromASoftLinkToItsData) {
  file_.group("/elsewhere/A/data").group(kRoot + std::string("/B/header"));
  file_.at(kRoot + std::string("/B")).soft_link("data", "/elsewhere/A/data");
  EXPECT_EQ(Walk(3), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 B /elsewhere/A/data", "0 2 B /elsewhere/A/data"));
}

TEST_F(BlockWalk, EndsInsideCycles) {
  Add({"A/B/orvblock"});
  file_.at(kRoot + std::string("/A/B")).hard_link("up", kRoot + std::string("/A")).hard_link("root", "/");
  file_.at(kRoot + std::string("/A")).soft_link("self", kRoot + std::string("/A")).soft_link("top", kRoot);
  EXPECT_EQ(Walk(1), 0);
  const auto told = Told();
  EXPECT_EQ(told.at(0), "0 1 B /post/constant/entityresults/A/B/orvblock");
  EXPECT_LE(told.size(), 8U);
}

TEST_F(BlockWalk, GivesUpOnDoublingLadders) {
  // Each of 40 rungs leads to the next one twice: 2^40 ways down to the block.
  file_.group("/rungs/40/orvblock");
  for (int i = 39; i >= 0; --i) {
    const std::string below = "/rungs/" + std::to_string(i + 1);
    file_.at("/rungs/" + std::to_string(i)).hard_link("a", below).hard_link("b", below);
  }
  file_.at(kRoot).hard_link("r", "/rungs/0");
  EXPECT_EQ(Walk(1), 0);
  EXPECT_EQ(Told().size(), 1000U);
}

TEST_F(BlockWalk, GoesDownAHundredAndTwentyEightLevelsWithItsOwn) {
  std::string deep = kRoot;
  for (int i = 1; i <= 128; ++i) {
    deep += "/l" + std::to_string(i);
    if (i >= 127) file_.group(deep + "/orvblock");
  }
  EXPECT_EQ(Walk(1), 0);
  const auto told = Told();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].ends_with("/l126/l127/orvblock")) << told[0];
}

TEST_F(BlockWalk, EndsWherePathsReachThreeThousandBytes) {
  std::string deep = kRoot;
  for (int i = 1; i <= 30; ++i) {
    deep += "/" + std::string(100, static_cast<char>('a' + i % 26));
    if (i >= 29) file_.group(deep + "/orvblock");  // 2957 bytes and 3058
  }
  EXPECT_EQ(Walk(1), 0);
  const auto told = Told();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].ends_with("/" + std::string(100, 'd') + "/orvblock")) << told[0];
}

TEST_F(BlockWalk, TellsAtMostTwoHundredAndFiftyFiveBytesOfAName) {
  Add({std::string(300, 'n') + "/orvblock", std::string(255, 'o') + "/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  const auto told = Told();
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0], "0 1 " + std::string(255, 'n') + " " + kRoot + "/" + std::string(300, 'n') + "/orvblock");
  EXPECT_EQ(told[1], "0 1 " + std::string(255, 'o') + " " + kRoot + "/" + std::string(255, 'o') + "/orvblock");
}

// ---- The visitors by themselves

class BlockVisitor : public BlockWalk {
 protected:
  using LinkVisitor = int (*)(hid_t, const char*, const H5L_info1_t*, void*);

  void IterateLinks(LinkVisitor visitor) {
    file_.at(kRoot).raw([&](hid_t group) {
      hsize_t next = 0;
      EXPECT_EQ(H5Literate1(group, H5_INDEX_NAME, H5_ITER_INC, &next, visitor, nullptr), 0);
    });
  }
  void IterateGroups() {
    file_.at(kRoot).raw([](hid_t group) {
      int next = 0;
      EXPECT_EQ(H5Giterate(group, ".", &next, ORVBlock::BlockCallBackImp, nullptr), 0);
    });
  }
};

TEST_F(BlockVisitor, OfTheOldFormKnowsNoSingleLayoutAndSetsNoPath) {
  Add({"A/orvblock", "B/header", "B/data", "B/index", "C/D/data"});
  EXPECT_EQ(Walk(63), 0);
  Told();
  block_.calls.clear();
  block_.SetBlkPath("/kept");
  IterateGroups();
  EXPECT_THAT(Told(), ElementsAre("0 8 B /kept", "0 1 B /kept", "0 16 B /kept", "0 2 B /kept", "0 32 header /kept",
                                  "0 4 header /kept", "0 16 D /kept", "0 2 D /kept"));
}

TEST_F(BlockVisitor, OfTheOldFormSkipsAndStops) {
  Add({"A/data", "B/data", "C/data"});
  EXPECT_EQ(Walk(18), 0);
  Told();
  Record().answer = [](int, const std::string& where) { return where == "B" ? ORV_ACTION_STOP : ORV_ACTION_SKIP; };
  block_.SetBlkPath("/kept");
  IterateGroups();
  EXPECT_THAT(Told(), ElementsAre("0 16 A /kept", "0 16 B /kept"));
  IterateGroups();
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(BlockVisitor, OfTheOldFormEndsInsideCycles) {
  Add({"A/data"});
  EXPECT_EQ(Walk(2), 0);
  Told();
  file_.at(kRoot + std::string("/A")).hard_link("up", kRoot).soft_link("self", kRoot + std::string("/A"));
  IterateGroups();
  EXPECT_LE(Told().size(), 8U);
}

TEST_F(BlockVisitor, WorksForTheBlockOfTheLastWalk) {
  Add({"A/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  Told();
  IterateLinks(ORVBlock::BlockCallBackImp2);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock"));
}

TEST_F(BlockVisitor, LetsTheIterationRunToItsEndAfterAStop) {
  Add({"A/orvblock", "B/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  Told();
  Record().answer = [](int, const std::string&) { return ORV_ACTION_STOP; };
  IterateLinks(ORVBlock::BlockCallBackImp2);  // expects 0 of HDF5, which answers 1 for an iteration cut short
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock"));
  EXPECT_EQ(block_.m_nActionResult, ORV_ACTION_STOP);
}

TEST_F(BlockVisitor, DoesNothingAfterTheBlockIsGone) {
  Add({"A/orvblock", "B/data"});
  {
    RecordingBlock gone(1000);
    EXPECT_EQ(gone.IterateBlock(file_.path().c_str(), 0, 3, RecordName), 0);
  }
  Told();
  IterateLinks(ORVBlock::BlockCallBackImp2);
  IterateGroups();
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(BlockVisitor, DoesNothingForAnIdThatIsNoGroup) {
  Add({"A/orvblock"});
  EXPECT_EQ(Walk(1), 0);
  Told();
  file_.at(kRoot).dataset<std::int32_t>("numbers", {1}, {1});
  file_.at(kRoot + std::string("/numbers")).raw([](hid_t dataset) {
    EXPECT_EQ(ORVBlock::BlockCallBackImp2(dataset, "orvblock", nullptr, nullptr), 0);
    EXPECT_EQ(ORVBlock::BlockCallBackImp(dataset, "data", nullptr), 0);
  });
  EXPECT_EQ(ORVBlock::BlockCallBackImp2(-1, "orvblock", nullptr, nullptr), 0);
  EXPECT_EQ(ORVBlock::BlockCallBackImp(-1, "data", nullptr), 0);
  EXPECT_THAT(Told(), IsEmpty());
}

int WalkWithAVisitorOfItsOwn(hid_t, const char* name, const H5L_info1_t*, void*) {
  Record().told.emplace_back(name);
  return 0;
}

TEST_F(BlockVisitor, IsTheOneThatTheBlockHolds) {
  Add({"A/orvblock", "B"});
  block_.m_pfnCallBackImp2 = WalkWithAVisitorOfItsOwn;
  EXPECT_EQ(Walk(1), 0);
  EXPECT_THAT(Told(), ElementsAre("A", "B"));
}

}  // namespace
}  // namespace orv_test
