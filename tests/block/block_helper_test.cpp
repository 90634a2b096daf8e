// The helper that knows only the key of a block: its header pass as a filter, and its search for the first block of a
// key in a state.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <string>
#include <vector>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenHelper : public ORVBlockHelper {
 public:
  using ORVBlock::CloseH5Reader;
  using ORVBlock::GetH5Reader;
  using ORVBlock::m_BlkKey;
  using ORVBlock::OpenH5Reader;
  using ORVBlockHelper::ORVBlockHelper;
};

class BlockHelper : public OrvTest {
 protected:
  BlockHelper() { ClearRecord(); }

  /// Adds a block of a key, with a count when `count_name` is given.
  void AddBlock(const std::string& group, std::int64_t key, const char* count_name = nullptr, std::int64_t count = 0) {
    file_.at(group + "/orvblock").integer("block", key);
    if (count_name) file_.integer(count_name, count);
  }

  /// Status of a header read of the attributes at "/h".
  int ReadHeader(bool with_count, std::int64_t key, const char* count_name = nullptr, std::int64_t count = 0) {
    file_.at("/").group("/h").drop("h").at("/h").integer("block", key);
    if (count_name) file_.integer(count_name, count);
    OpenHelper helper(with_count);
    return ReadHeaderInto(helper);
  }

  int ReadHeaderInto(OpenHelper& helper) {
    const std::string path = file_.path();
    helper.SetBlkPath("/h/orvblock");
    EXPECT_EQ(helper.OpenH5Reader(path.c_str(), 0), 0);
    int status = -1;
    {
      const hid_t group = H5Gopen2(FileOf(helper), "/h", H5P_DEFAULT);
      status = helper.ReadHeader(group, ORV_READ_HEADER);
      H5Gclose(group);
    }
    helper.CloseH5Reader();
    return status;
  }

  static hid_t FileOf(const OpenHelper& helper) { return helper.GetH5Reader()->GetFileId(); }

  static std::vector<std::string> Told() { return std::exchange(Record().told, {}); }

  ForgedFile file_;
};

TEST_F(BlockHelper, DoesNotReadOrWriteBlocks) {
  AddBlock("/post/constant/A", 1000);
  const std::string path = file_.path();
  ORVBlockHelper helper;
  int count = 99;
  EXPECT_EQ(helper.ReadBlock(path.c_str(), 0, 7), 1);
  EXPECT_EQ(helper.ReadBlockAt(path.c_str(), 0, 0, 7), 1);
  EXPECT_EQ(helper.ReadNumBlock(path.c_str(), 0, &count), 1);
  EXPECT_EQ(helper.WriteBlock(path.c_str(), 0, 7), 1);
  EXPECT_EQ(count, 99);
  EXPECT_EQ(helper.GetKey(), -1);
  EXPECT_FALSE(helper.m_bReadEntityCount);
  EXPECT_TRUE(ORVBlockHelper(true).m_bReadEntityCount);
}

TEST_F(BlockHelper, ReadsTheKey) {
  OpenHelper helper;
  file_.at("/h").integer("block", 1100);
  EXPECT_EQ(ReadHeaderInto(helper), 0);
  EXPECT_EQ(helper.GetKey(), 1100);
  file_.at("/h").retype("block");
  EXPECT_EQ(ReadHeaderInto(helper), 1);
  EXPECT_EQ(helper.GetKey(), 1100);
  file_.at("/h").drop("block");
  EXPECT_EQ(ReadHeaderInto(helper), 1);
}

TEST_F(BlockHelper, PassesEmptyBlocksWithoutTheCount) {
  EXPECT_EQ(ReadHeader(false, 1000, "nent", 0), 0);
  EXPECT_EQ(ReadHeader(false, 1100), 0);
}

TEST_F(BlockHelper, RefusesEmptyResultsWithTheCount) {
  for (const std::int64_t key : {1000, 1001}) {
    EXPECT_EQ(ReadHeader(true, key, "nent", 1), 0) << key;
    EXPECT_EQ(ReadHeader(true, key, "nent", 0), 1) << key;
    EXPECT_EQ(ReadHeader(true, key, "nent", -5), 1) << key;
    EXPECT_EQ(ReadHeader(true, key, "nele", 5), 1) << key;
    EXPECT_EQ(ReadHeader(true, key), 1) << key;
  }
  for (const std::int64_t key : {1100, 1101}) {
    EXPECT_EQ(ReadHeader(true, key, "nele", 4294967296), 0) << key;
    EXPECT_EQ(ReadHeader(true, key, "nele", 0), 1) << key;
    EXPECT_EQ(ReadHeader(true, key, "nent", 5), 1) << key;
  }
}

TEST_F(BlockHelper, AsksOnlySingleStateResultsForTheirCount) {
  for (const std::int64_t key : {1050, 1051, 1150, 1151, 500, 300, -1}) {
    EXPECT_EQ(ReadHeader(true, key, "nent", 0), 0) << key;
  }
}

TEST_F(BlockHelper, IteratesHeadersWhateverStagesAreAsked) {
  AddBlock("/post/constant/entityresults/A", 1001, "nent", 4);
  AddBlock("/post/constant/entityresults/B", 1000, "nent", 0);
  OpenHelper helper(true);
  helper.m_BlkKey = 1000;
  EXPECT_EQ(helper.IterateBlock(file_.path().c_str(), 0, 63, RecordName), 0);
  EXPECT_THAT(Told(), ElementsAre("0 1 A /post/constant/entityresults/A/orvblock",
                                  "1 1 B /post/constant/entityresults/B/orvblock"));
  EXPECT_EQ(helper.IterateBlock(file_.path().c_str(), 0, 0, RecordName), 0);
  EXPECT_EQ(Told().size(), 2U);
}

// ---- The first block of a key

class BlockHelperSearch : public BlockHelper {
 protected:
  int Update(int state, bool filter) {
    EXPECT_EQ(helper_.OpenH5Reader(file_.path().c_str(), 0), 0);
    const int status = helper_.UpdateBlockPath(FileOf(helper_), state, filter);
    helper_.CloseH5Reader();
    return status;
  }

  OpenHelper helper_;
};

TEST_F(BlockHelperSearch, FindsTheFirstBlockOfAState) {
  AddBlock(State(1) + "/entityresults/B", 1000, "nent", 4);
  AddBlock(State(2) + "/entityresults/C/D", 1000, "nent", 4);
  AddBlock(State(2) + "/entityresults/E", 1000, "nent", 4);
  helper_.m_BlkKey = 1000;
  EXPECT_EQ(Update(2, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000002/entityresults/C/D/orvblock");
  EXPECT_EQ(helper_.GetKey(), 1000);
}

TEST_F(BlockHelperSearch, GoesOnAlthoughAPathIsSet) {
  AddBlock(State(1) + "/entityresults/B", 1000);
  helper_.m_BlkKey = 1000;
  helper_.SetBlkPath("/old");
  EXPECT_EQ(Update(1, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/entityresults/B/orvblock");
}

TEST_F(BlockHelperSearch, TakesThePathOfTheBlockAndKeepsItsOwnKeyAndSwitch) {
  AddBlock(State(1) + "/entityresults/A", 1001, "nent", 0);
  helper_.m_BlkKey = 1000;
  helper_.m_bReadEntityCount = true;  // what counts is the filter of the call
  EXPECT_EQ(Update(1, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/entityresults/A/orvblock");
  EXPECT_EQ(helper_.GetKey(), 1000);
  EXPECT_TRUE(helper_.m_bReadEntityCount);
}

TEST_F(BlockHelperSearch, PassesOverEmptyBlocksWithTheFilter) {
  AddBlock(State(1) + "/entityresults/A", 1000, "nent", 0);
  AddBlock(State(1) + "/entityresults/B", 1000, "nent", 3);
  helper_.m_BlkKey = 1000;
  EXPECT_EQ(Update(1, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/entityresults/A/orvblock");
  EXPECT_EQ(Update(1, true), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/entityresults/B/orvblock");
}

TEST_F(BlockHelperSearch, LetsTheFirstBlockDecideWithoutTheFilter) {
  file_.group(State(1) + "/entityresults/A/orvblock");
  AddBlock(State(1) + "/entityresults/B", 1000, "nent", 3);
  helper_.m_BlkKey = 1000;
  helper_.SetBlkPath("/old");
  EXPECT_EQ(Update(1, false), 1);
  EXPECT_EQ(helper_.GetBlkPath(), "/old");
  EXPECT_EQ(Update(1, true), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/entityresults/B/orvblock");
}

TEST_F(BlockHelperSearch, WalksTheStateItselfForAnEmptyTypeOrNoKey) {
  AddBlock(State(1) + "/PROPS", 500);
  helper_.m_BlkKey = 500;
  EXPECT_EQ(Update(1, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/singlestate/state000000000001/PROPS/orvblock");
  OpenHelper keyless;
  EXPECT_EQ(keyless.OpenH5Reader(file_.path().c_str(), 0), 0);
  EXPECT_EQ(keyless.UpdateBlockPath(FileOf(keyless), 1, false), 0);
  EXPECT_EQ(keyless.GetBlkPath(), "/post/singlestate/state000000000001/PROPS/orvblock");
  keyless.CloseH5Reader();
}

TEST_F(BlockHelperSearch, LooksForVariablesUnderTheNameOfTheTableWhateverTheVersion) {
  AddBlock("/post/constant/variable/A", 30);
  helper_.m_BlkKey = 30;
  EXPECT_EQ(Update(0, false), 1);
  AddBlock("/post/constant/variables/B", 30);
  EXPECT_EQ(Update(0, false), 0);
  EXPECT_EQ(helper_.GetBlkPath(), "/post/constant/variables/B/orvblock");
}

TEST_F(BlockHelperSearch, FailsWhereNothingIsFound) {
  file_.group(State(1));
  helper_.m_BlkKey = 1000;
  helper_.SetBlkPath("/old");
  EXPECT_EQ(helper_.UpdateBlockPath(-1, 1, false), 1);  // no reader
  EXPECT_EQ(Update(1, false), 1);                       // no type group
  EXPECT_EQ(Update(2, false), 1);                       // no state
  helper_.m_BlkKey = 77;
  EXPECT_EQ(Update(1, false), 1);  // no such key
  helper_.m_BlkKey = 1000;
  file_.group(State(1) + "/entityresults");
  EXPECT_EQ(Update(1, true), 1);  // no block
  EXPECT_EQ(helper_.GetBlkPath(), "/old");
}

}  // namespace
}  // namespace orv_test
