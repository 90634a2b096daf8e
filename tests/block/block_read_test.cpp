// The protocol by which a block is read: which operation is called on which group, for every stage and in both
// layouts, and what damaged trees do to it. Also the fields of a block and the forwards to the reader. The index
// datasets are in block_index_test, walks in block_walk_test and block_over_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <map>
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

constexpr char kNode[] = "/post/constant/attributes/NODE";
constexpr char kAttributes[] = "/post/constant/attributes";

class BlockRead : public OrvTest {
 protected:
  int Read(int stages, int state = 0) { return block_.ReadBlock(file_.path().c_str(), state, stages); }

  /// The calls since the last time.
  std::vector<std::string> Calls() { return std::exchange(block_.calls, {}); }

  void Split() {
    file_.group(std::string(kNode) + "/header")
        .group(std::string(kNode) + "/data")
        .group(std::string(kNode) + "/index");
  }
  void Single() { file_.group(std::string(kNode) + "/orvblock"); }

  ForgedFile file_;
  RecordingBlock block_{200, "NODE"};
};

// ---- Stages

TEST_F(BlockRead, CallsTheOperationOfEachStageInTheSplitLayout) {
  Split();
  EXPECT_EQ(Read(1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/NODE/header"));
  EXPECT_EQ(Read(8), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 8 /post/constant/attributes/NODE/header"));
  EXPECT_EQ(Read(2), 0);
  EXPECT_THAT(Calls(), ElementsAre("data 2 /post/constant/attributes/NODE/data"));
  EXPECT_EQ(Read(16), 0);
  EXPECT_THAT(Calls(), ElementsAre("data 16 /post/constant/attributes/NODE/data"));
  EXPECT_EQ(Read(4), 0);
  EXPECT_THAT(Calls(), ElementsAre("index 4 /post/constant/attributes/NODE/index"));
  EXPECT_EQ(Read(32), 0);
  EXPECT_THAT(Calls(), ElementsAre("index 32 /post/constant/attributes/NODE/index"));
}

TEST_F(BlockRead, CallsEachOperationOnceWithTheWholeWord) {
  Split();
  EXPECT_EQ(Read(63), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 63 /post/constant/attributes/NODE/header",
                                   "data 63 /post/constant/attributes/NODE/data",
                                   "index 63 /post/constant/attributes/NODE/index"));
}

TEST_F(BlockRead, UsesOneGroupForAllStagesOfTheSingleLayout) {
  Single();
  EXPECT_EQ(Read(7), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 7 /post/constant/attributes/NODE/orvblock",
                                   "data 7 /post/constant/attributes/NODE/orvblock",
                                   "index 7 /post/constant/attributes/NODE/orvblock"));
  EXPECT_EQ(Read(56), 0);
  EXPECT_EQ(Calls().size(), 3U);
}

TEST_F(BlockRead, WithoutAStageOpensTheFileAndAnswersOne) {
  Split();
  EXPECT_EQ(Read(0), 1);
  EXPECT_EQ(Read(64), 1);
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(block_.GetBlkPath(), kNode);
}

TEST_F(BlockRead, AnswersForTheLastCallAndStopsAtNone) {
  Split();
  block_.header_status = 5;
  EXPECT_EQ(Read(3), 0);
  EXPECT_EQ(Calls().size(), 2U);
  block_.header_status = 0;
  block_.data_status = 6;
  EXPECT_EQ(Read(3), 6);
  EXPECT_EQ(Read(7), 0);
  block_.index_status = 7;
  EXPECT_EQ(Read(7), 7);
}

TEST_F(BlockRead, PassesOverPartsThatAreNotThere) {
  file_.group(std::string(kNode) + "/header");
  EXPECT_EQ(Read(7), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 7 /post/constant/attributes/NODE/header"));
  EXPECT_EQ(Read(6), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(BlockRead, PassesOverPartsThatAreNoGroups) {
  file_.at(kNode)
      .dataset<std::int32_t>("header", {1}, {1})
      .soft_link("data", "/nowhere")
      .external_link("index", "other.orv", "/");
  EXPECT_EQ(Read(7), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

// ---- Which block

TEST_F(BlockRead, FailsWithoutFileGroupOrState) {
  Split();
  EXPECT_EQ(block_.ReadBlock(nullptr, 0, 1), 1);
  EXPECT_EQ(block_.ReadBlock(TempPath("missing.orv").c_str(), 0, 1), 1);
  EXPECT_EQ(Read(1, 1), 1);
  EXPECT_EQ(Read(1, -1), 1);
  RecordingBlock nameless(200);
  EXPECT_EQ(nameless.ReadBlock(file_.path().c_str(), 0, 1), 1);
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(block_.GetH5Reader(), nullptr);
}

TEST_F(BlockRead, ReadsTheBlockOfAState) {
  file_.group(State(1)).group(State(2) + "/attributes/NODE/orvblock");
  EXPECT_EQ(Read(1, 1), 1);
  EXPECT_EQ(Read(1, 2), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/singlestate/state000000000002/attributes/NODE/orvblock"));
}

TEST_F(BlockRead, LearnsItsPathAtTheFirstReadOnly) {
  Split();
  file_.group(State(1) + "/attributes/NODE/header");
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(block_.GetBlkPath(), kNode);
  EXPECT_EQ(Read(1, 1), 0);
  EXPECT_EQ(block_.GetBlkPath(), kNode);
}

TEST_F(BlockRead, LearnsThePathOfTheGroupThatHoldsItsParts) {
  Single();
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(block_.GetBlkPath(), "/post/constant/attributes/NODE/orvblock");
  EXPECT_EQ(block_.GetBlkVersion(), ORV_BLK_VERSION_SINGLE);
}

TEST_F(BlockRead, PrefersTheSingleLayoutWhateverThePathSaid) {
  Split();
  Single();
  block_.SetBlkPath("/post/constant/attributes/NODE");
  EXPECT_EQ(Read(1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/NODE/orvblock"));
}

TEST_F(BlockRead, TakesTheLayoutFromItsPathWhereTheGroupIsCalledOtherwise) {
  Split();
  block_.SetBlkPath("/elsewhere/orvblock");
  EXPECT_EQ(Read(3), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 3 /post/constant/attributes/NODE", "data 3 /post/constant/attributes/NODE"));
}

TEST_F(BlockRead, FollowsALinkToTheSingleLayoutInsideTheFile) {
  file_.group("/elsewhere/orvblock").group(kNode);
  file_.at(kNode).soft_link("orvblock", "/elsewhere/orvblock");
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(Calls().size(), 1U);
}

TEST_F(BlockRead, FallsBackOnTheSplitLayoutWhereOrvblockIsNoGroup) {
  Split();
  ForgedFile other;
  other.group("/orvblock");
  file_.at(kNode).dataset<std::int32_t>("orvblock", {1}, {1});
  EXPECT_EQ(Read(1), 0);
  file_.at(kNode).drop("orvblock").soft_link("orvblock", "/nowhere");
  EXPECT_EQ(Read(1), 0);
  file_.at(kNode).drop("orvblock").external_link("orvblock", other.path(), "/orvblock");
  EXPECT_EQ(Read(1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/NODE/header",
                                   "header 1 /post/constant/attributes/NODE/header",
                                   "header 1 /post/constant/attributes/NODE/header"));
}

TEST_F(BlockRead, DoesNotReadABlockInAnotherFile) {
  ForgedFile other;
  other.group("/NODE/header");
  file_.at(kAttributes).external_link("NODE", other.path(), "/NODE");
  EXPECT_EQ(Read(1), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(BlockRead, LeavesTheFileClosedAndTheReaderGivenBack) {
  Split();
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(block_.GetH5Reader(), nullptr);
  const Id file(H5Fopen(file_.path().c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "file is free");
}

// ---- By position

TEST_F(BlockRead, ReadsByPositionInTheOrderOfNames) {
  file_.group("/post/constant/attributes/B/header").group("/post/constant/attributes/A/orvblock");
  const std::string path = file_.path();
  int count = 99;
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 0, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 0, 0, 1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/A/orvblock"));
  block_.SetBlkPath("");
  EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 0, 1, 1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/B/header"));
}

TEST_F(BlockRead, CountsAndReadsByPositionInAState) {
  file_.group("/post/constant/attributes/A/header").group(State(1));
  file_.group(State(2) + "/attributes/B/header").group(State(2) + "/attributes/C/header");
  const std::string path = file_.path();
  int count = 99;
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 1, &count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 2, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 2, 1, 1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/singlestate/state000000000002/attributes/C/header"));
}

TEST_F(BlockRead, FailsAtAPositionThatHoldsNoBlock) {
  Split();
  file_.at(kAttributes).dataset<std::int32_t>("Z", {1}, {1});
  const std::string path = file_.path();
  for (const int index : {-1, 1, 2, 2147483647}) EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 0, index, 1), 1) << index;
  EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 1, 0, 1), 1);
  EXPECT_EQ(block_.ReadBlockAt(nullptr, 0, 0, 1), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(BlockRead, CountsNothingWithoutATypeGroup) {
  const std::string path = file_.path();
  int count = 99;
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 0, &count), 1);
  EXPECT_EQ(count, 0);
  count = 99;
  EXPECT_EQ(block_.ReadNumBlock(nullptr, 0, &count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 0, nullptr), 1);
}

// ---- By path

TEST_F(BlockRead, ReadsAtItsOwnPath) {
  Split();
  file_.group("/free/place/orvblock");
  const std::string path = file_.path();
  block_.SetBlkPath(kNode);
  EXPECT_EQ(block_.ReadBlockByBlockPath(path.c_str(), 1), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/NODE/header"));
  block_.SetBlkPath("/free/place/orvblock");
  EXPECT_EQ(block_.ReadBlockByBlockPath(path.c_str(), 3), 0);
  EXPECT_THAT(Calls(), ElementsAre("header 3 /free/place/orvblock", "data 3 /free/place/orvblock"));
}

TEST_F(BlockRead, ByPathDoesNotLookForTheSingleLayout) {
  Single();
  block_.SetBlkPath(kNode);
  EXPECT_EQ(block_.ReadBlockByBlockPath(file_.path().c_str(), 7), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(BlockRead, ByPathFailsWithoutAGroupThere) {
  Split();
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlockByBlockPath(path.c_str(), 1), 1);
  block_.SetBlkPath("/nowhere");
  EXPECT_EQ(block_.ReadBlockByBlockPath(path.c_str(), 1), 1);
  block_.SetBlkPath(kNode);
  EXPECT_EQ(block_.ReadBlockByBlockPath(nullptr, 1), 1);
  EXPECT_THAT(Calls(), IsEmpty());
}

// ---- The steps that derived classes call

TEST_F(BlockRead, StepsNeedAGroupAndAReader) {
  Split();
  EXPECT_EQ(block_.ReadBlockStep(-1, 7), 1);
  EXPECT_EQ(block_.ReadBlockStepWrap(-1, 7), 1);
  file_.at(kNode).raw([&](hid_t group) {
    EXPECT_EQ(block_.ReadBlockStepWrap(group, 7), 1);
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_EQ(block_.ReadBlockStep(group, 1), 0);
  });
  EXPECT_THAT(Calls(), ElementsAre("header 1 /post/constant/attributes/NODE/header"));
}

/// A class with a road of its own through the stages.
class SteppingBlock : public RecordingBlock {
 public:
  using RecordingBlock::RecordingBlock;
  int ReadBlockStep(hid_t group, int stages) override {
    steps.push_back(stages);
    return ORVBlock::ReadBlockStep(group, stages) + 40;
  }

  std::vector<int> steps;
};

TEST_F(BlockRead, TakesTheStepsOfADerivedClass) {
  Split();
  const std::string path = file_.path();
  SteppingBlock block(200, "NODE");
  EXPECT_EQ(block.ReadBlock(path.c_str(), 0, 1), 40);
  EXPECT_EQ(block.ReadBlockAt(path.c_str(), 0, 0, 2), 40);
  EXPECT_EQ(block.ReadBlockByBlockPath(path.c_str(), 4), 40);
  EXPECT_THAT(block.steps, ElementsAre(1, 2, 4));
  EXPECT_EQ(block.calls.size(), 3U);
}

TEST_F(BlockRead, LearnsNoPathThatIsTooLong) {
  const std::string fits = "/" + std::string(2998, 'f');
  const std::string too_long = "/" + std::string(2999, 'l');
  file_.group(fits + "/header").group(too_long + "/header");
  file_.at(too_long).raw([&](hid_t group) { EXPECT_EQ(block_.ReadBlockStep(group, 1), 0); });
  EXPECT_EQ(block_.GetBlkPath(), "");
  file_.at(fits).raw([&](hid_t group) { EXPECT_EQ(block_.ReadBlockStep(group, 1), 0); });
  EXPECT_EQ(block_.GetBlkPath(), fits);
}

// ---- Fields

TEST_F(BlockRead, StartsWithItsInitialFields) {
  RecordingBlock block;
  const auto expect_initial = [&] {
    EXPECT_EQ(block.GetH5Reader(), nullptr);
    EXPECT_EQ(block.m_nReserved, -1);
    EXPECT_EQ(block.m_nCompressionFactor, -1);
    EXPECT_EQ(block.GetKey(), -1);
    EXPECT_FALSE(block.IsIncremental());
    EXPECT_EQ(block.m_pfnAction, nullptr);
    EXPECT_EQ(block.m_pfnCallBackImp, &ORVBlock::BlockCallBackImp);
    EXPECT_EQ(block.m_pfnCallBackImp2, &ORVBlock::BlockCallBackImp2);
    EXPECT_EQ(block.m_nIterFlags, 0);
    EXPECT_EQ(block.m_nActionResult, 0);
    EXPECT_EQ(block.m_pUserData, nullptr);
    EXPECT_EQ(block.m_indexIdentType, ORV_INT);
    EXPECT_EQ(block.m_indexValueType, ORV_FLOAT);
    EXPECT_EQ(block.GetBlkPath(), "");
  };
  expect_initial();
  EXPECT_FALSE(block.m_pCacheMap);
  auto cache = std::make_shared<std::map<std::string, ORVBuffer*>>();
  block.m_nReserved = 1;
  block.m_nCompressionFactor = 2;
  block.m_BlkKey = 300;
  block.m_nIncremental = 1;
  block.m_pfnAction = RecordName;
  block.m_pfnCallBackImp = nullptr;
  block.m_pfnCallBackImp2 = nullptr;
  block.m_nIterFlags = 7;
  block.m_nActionResult = 2;
  block.m_pUserData = &cache;
  block.m_indexIdentType = ORV_LONG;
  block.m_indexValueType = ORV_DOUBLE;
  block.m_pCacheMap = cache;
  block.SetBlkPath("/x");
  block.Initialize();
  expect_initial();
  EXPECT_EQ(block.m_pCacheMap, cache);
}

TEST_F(BlockRead, CopiesItsFieldsButNotTheReader) {
  auto cache = std::make_shared<std::map<std::string, ORVBuffer*>>();
  Split();
  RecordingBlock block(200, "NODE");
  block.m_nReserved = 1;
  block.m_nCompressionFactor = 2;
  block.m_nIncremental = 1;
  block.m_pfnAction = RecordName;
  block.m_nIterFlags = 7;
  block.m_nActionResult = 2;
  block.m_pUserData = &cache;
  block.m_indexIdentType = ORV_LONG;
  block.m_indexValueType = ORV_DOUBLE;
  block.m_pCacheMap = cache;
  block.SetBlkPath("/x");
  ASSERT_EQ(block.OpenH5Reader(file_.path().c_str(), 0), 0);
  const RecordingBlock made(block);
  RecordingBlock assigned;
  assigned = block;
  for (const RecordingBlock* copy : {&made, static_cast<const RecordingBlock*>(&assigned)}) {
    EXPECT_EQ(copy->m_nReserved, 1);
    EXPECT_EQ(copy->m_nCompressionFactor, 2);
    EXPECT_EQ(copy->GetKey(), 200);
    EXPECT_TRUE(copy->IsIncremental());
    EXPECT_EQ(copy->m_pfnAction, &RecordName);
    EXPECT_EQ(copy->m_nIterFlags, 7);
    EXPECT_EQ(copy->m_nActionResult, 2);
    EXPECT_EQ(copy->m_pUserData, &cache);
    EXPECT_EQ(copy->m_indexIdentType, ORV_LONG);
    EXPECT_EQ(copy->m_indexValueType, ORV_DOUBLE);
    EXPECT_EQ(copy->m_pCacheMap, cache);
    EXPECT_EQ(copy->GetBlkPath(), "/x");
    EXPECT_EQ(copy->GetH5Reader(), nullptr);
  }
  EXPECT_EQ(block.CloseH5Reader(), 0);
}

int VisitNoGroup(hid_t, const char*, void*) { return 0; }

int VisitNoLink(hid_t, const char*, const H5L_info1_t*, void*) { return 0; }

TEST_F(BlockRead, CopiesItsVisitors) {
  RecordingBlock block;
  block.m_pfnCallBackImp = VisitNoGroup;
  block.m_pfnCallBackImp2 = VisitNoLink;
  const RecordingBlock made(block);
  RecordingBlock assigned;
  assigned = block;
  EXPECT_EQ(made.m_pfnCallBackImp, &VisitNoGroup);
  EXPECT_EQ(made.m_pfnCallBackImp2, &VisitNoLink);
  EXPECT_EQ(assigned.m_pfnCallBackImp, &VisitNoGroup);
  EXPECT_EQ(assigned.m_pfnCallBackImp2, &VisitNoLink);
}

TEST_F(BlockRead, KnowsIntegerTypes) {
  EXPECT_TRUE(ORVBlock::IsORVIntType(ORV_INT));
  EXPECT_TRUE(ORVBlock::IsORVIntType(ORV_LONG));
  for (const _ORVDataType type : {ORV_UNKNOWN_TYPE, ORV_NO_DATASET, ORV_FLOAT, ORV_CHAR, ORV_CHAR_FIXED, ORV_DOUBLE}) {
    EXPECT_FALSE(ORVBlock::IsORVIntType(type)) << type;
  }
}

/// Overrides what it must and nothing else.
class PlainBlock : public ORVBlock {
 public:
  int WriteBlock(const char*, int, int) override { return 0; }
  using ORVBlock::AppendBlockSchema;
};

TEST_F(BlockRead, AnswersOneWhereAClassHasNothingOfItsOwn) {
  PlainBlock block;
  std::string path = "/x";
  EXPECT_EQ(block.ReadHeader(-1, 1), 1);
  EXPECT_EQ(block.ReadData(-1, 2), 1);
  EXPECT_EQ(block.ReadIndex(-1, 4), 1);
  EXPECT_EQ(block.WriteHeader(-1), 1);
  EXPECT_EQ(block.WriteData(-1), 1);
  EXPECT_EQ(block.WriteIndex(-1), 1);
  EXPECT_EQ(block.AppendBlockSchema(path), 1);
  EXPECT_EQ(path, "/x");
}

TEST_F(BlockRead, DropsItsCacheMap) {
  block_.m_pCacheMap = std::make_shared<std::map<std::string, ORVBuffer*>>();
  block_.ClearCacheMap();
  EXPECT_FALSE(block_.m_pCacheMap);
  block_.ClearCacheMap();
}

// ---- What is asked about datasets

TEST_F(BlockRead, TellsFiltersAndTypesInBothLayouts) {
  const auto fill = [&](const std::string& group) {
    file_.at(group)
        .dataset<float>("res", {2}, {1.F, 2.F})
        .dataset<std::int64_t>("ids", {1}, {1})
        .texts("t", 4, {1}, {"a"});
    file_.raw([](hid_t here) {
      const hsize_t size = 4;
      const Id space(H5Screate_simple(1, &size, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 1, &size), "chunk");
      Check(H5Pset_shuffle(list.get()), "shuffle");
      Check(H5Pset_fletcher32(list.get()), "fletcher32");
      const Id made(H5Dcreate2(here, "packed", H5T_NATIVE_DOUBLE, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "packed");
    });
  };
  const auto expect_told = [&] {
    const std::string path = file_.path();
    std::vector<int> filters = {99};
    EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "packed", filters), 0);
    EXPECT_THAT(filters, ElementsAre(99, H5Z_FILTER_SHUFFLE, H5Z_FILTER_FLETCHER32));
    EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "res", filters), 0);
    EXPECT_EQ(filters.size(), 3U);
    EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "missing", filters), 1);
    std::vector<_ORVDataType> types;
    EXPECT_EQ(block_.ReadDatasetFileDataType(path.c_str(), 0, {"res", "missing", "ids", "packed", "t"}, types), 0);
    EXPECT_THAT(types, ElementsAre(ORV_FLOAT, ORV_UNKNOWN_TYPE, ORV_LONG, ORV_DOUBLE, ORV_CHAR));
  };
  fill(kNode);
  expect_told();
  fill("/post/constant/attributes/SINGLE/orvblock");
  block_ = RecordingBlock(200, "SINGLE");
  expect_told();
}

TEST_F(BlockRead, TellsFiltersAndTypesOfTheFirstPartThatHasTheDataset) {
  const std::string node = kNode;
  file_.at(node + "/header").dataset<float>("res", {1}, {1.F}).dataset<float>("flags", {1}, {1.F});
  file_.at(node + "/data").dataset<double>("res", {1}, {1.}).dataset<float>("both", {1}, {1.F});
  file_.at(node + "/index").dataset<std::int64_t>("indexident", {1}, {1}).dataset<std::int32_t>("both", {1}, {1});
  const std::string path = file_.path();
  std::vector<int> filters;
  EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "res", filters), 0);
  EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "indexident", filters), 0);
  EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "flags", filters), 1);
  EXPECT_THAT(filters, IsEmpty());
  std::vector<_ORVDataType> types;
  EXPECT_EQ(block_.ReadDatasetFileDataType(path.c_str(), 0, {"res", "indexident", "both", "flags"}, types), 0);
  EXPECT_THAT(types, ElementsAre(ORV_DOUBLE, ORV_LONG, ORV_FLOAT, ORV_UNKNOWN_TYPE));
}

TEST_F(BlockRead, TellsNothingAboutDatasetsOfABlockThatIsNotThere) {
  const std::string path = file_.path();
  std::vector<int> filters;
  std::vector<_ORVDataType> types;
  EXPECT_EQ(block_.ReadDatasetFilterIds(path.c_str(), 0, "res", filters), 1);
  EXPECT_EQ(block_.ReadDatasetFilterIds(nullptr, 0, "res", filters), 1);
  EXPECT_EQ(block_.ReadDatasetFileDataType(path.c_str(), 0, {"res"}, types), 1);
  EXPECT_EQ(block_.ReadDatasetFileDataType(nullptr, 0, {"res"}, types), 1);
  EXPECT_THAT(filters, IsEmpty());
  EXPECT_THAT(types, IsEmpty());
}

// ---- The reader

TEST_F(BlockRead, ForwardsNothingWithoutAReader) {
  hsize_t one = 1;
  hsize_t zero = 0;
  char buffer[256] = {};
  _ORVDataType type = ORV_INT;
  EXPECT_EQ(block_.OH5Read_INT(0, "x", 1, &one, ORV_INT, buffer), 1);
  EXPECT_EQ(block_.OH5Read_FLOAT(0, "x", 1, &one, ORV_FLOAT, buffer), 1);
  EXPECT_EQ(block_.ReadDataset(0, "x", 1, &one, ORV_INT, buffer), 1);
  EXPECT_EQ(block_.OH5Read_CHAR(0, "x", 0, nullptr, 4, buffer), 1);
  EXPECT_EQ(block_.OH5Read_SELECTIVE(0, "x", 1, &zero, &one, nullptr, nullptr, ORV_INT, buffer), 1);
  EXPECT_EQ(block_.OH5Read_ATTRIBUTE(0, "x", 0, nullptr, ORV_INT, buffer), 1);
  EXPECT_EQ(block_.OH5Read_DATATYPE(0, "x", &type), 1);
}

TEST_F(BlockRead, ForwardsToItsReader) {
  file_.at("/x")
      .dataset<std::int32_t>("ints", {3}, {1, 2, 3})
      .dataset<float>("floats", {2}, {.5F, 1.5F})
      .texts("names", 4, {2}, {"ab", "cd"})
      .texts("name", 4, {}, {"xy"})
      .integer("n", 9);
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  {
    const Id group(H5Gopen2(block_.GetH5Reader()->GetFileId(), "/x", H5P_DEFAULT), "/x");
    hsize_t three = 3, two = 2, one = 1;
    int ints[3] = {};
    float floats[2] = {};
    char names[9] = {};
    std::int64_t n = 0;
    _ORVDataType type = ORV_UNKNOWN_TYPE;
    EXPECT_EQ(block_.OH5Read_INT(group.get(), "ints", 1, &three, ORV_INT, ints), 0);
    EXPECT_THAT(ints, ElementsAre(1, 2, 3));
    EXPECT_EQ(block_.OH5Read_SELECTIVE(group.get(), "ints", 1, &one, &two, nullptr, nullptr, ORV_INT, ints), 0);
    EXPECT_THAT(ints, ElementsAre(2, 3, 3));
    EXPECT_EQ(block_.OH5Read_FLOAT(group.get(), "floats", 1, &two, ORV_FLOAT, floats), 0);
    EXPECT_THAT(floats, ElementsAre(.5F, 1.5F));
    EXPECT_EQ(block_.OH5Read_CHAR(group.get(), "names", 1, &two, 4, names), 0);
    EXPECT_STREQ(names, "ab  cd  ");
    EXPECT_EQ(block_.OH5Read_CHAR(group.get(), "name", 0, nullptr, 4, names), 0);
    EXPECT_STREQ(names, "xy  cd  ");
    EXPECT_EQ(block_.OH5Read_CHAR(group.get(), "name", 0, nullptr, 0, names), 1);
    EXPECT_EQ(block_.OH5Read_CHAR(group.get(), "name", 40, nullptr, 4, names), 1);
    EXPECT_EQ(block_.OH5Read_ATTRIBUTE(group.get(), "n", 0, nullptr, ORV_LONG, &n), 0);
    EXPECT_EQ(n, 9);
    EXPECT_EQ(block_.OH5Read_DATATYPE(group.get(), "floats", &type), 0);
    EXPECT_EQ(type, ORV_FLOAT);
  }
  EXPECT_EQ(block_.CloseH5Reader(), 0);
  EXPECT_EQ(block_.CloseH5Reader(), 1);
}

TEST_F(BlockRead, HasOneReaderAtATime) {
  EXPECT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  EXPECT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  EXPECT_EQ(block_.CloseH5Reader(), 0);
  EXPECT_EQ(block_.GetH5Reader(), nullptr);
  EXPECT_EQ(block_.OpenH5Reader(nullptr, 0), 1);
}

}  // namespace
}  // namespace orv_test
