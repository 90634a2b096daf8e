// Carrying a block's path over to another state: merged paths, and what is opened by them.

#include <gtest/gtest.h>
#include <hdf5.h>

#include <string>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_hdf5.h"

namespace orv_test {
namespace {

class BlockSchema : public OrvTest {
 protected:
  ~BlockSchema() override { block_.CloseH5Reader(); }

  std::string Merged(const std::string& schema, const std::string& actual) {
    std::string out = "untouched";
    EXPECT_EQ(block_.MergeSchemaPath(schema, actual, out), 0);
    return out;
  }

  ForgedFile file_;
  RecordingBlock block_{1000};
};

TEST_F(BlockSchema, TakesTheLeadingPartsOfTheRealGroup) {
  EXPECT_EQ(Merged("/a/b/c", "/x/y"), "/x/y/c");
  EXPECT_EQ(Merged("/a/b", "/x/y/z"), "/x/y");
  EXPECT_EQ(Merged("/a/b", "/x/y"), "/x/y");
  EXPECT_EQ(Merged("/post/singlestate/state000000000001/entityresults/Node", "/post/singlestate/state000000000007"),
            "/post/singlestate/state000000000007/entityresults/Node");
}

TEST_F(BlockSchema, DropsEmptyParts) {
  EXPECT_EQ(Merged("//a///b/c/", "x//y/"), "/x/y/c");
  EXPECT_EQ(Merged("a/b", "x"), "/x/b");
}

TEST_F(BlockSchema, LeavesTheOutputAloneWithoutARealGroup) {
  EXPECT_EQ(Merged("/a/b", ""), "untouched");
  EXPECT_EQ(Merged("/a/b", "//"), "untouched");
}

TEST_F(BlockSchema, GivesAnEmptyPathForAnEmptySchema) { EXPECT_EQ(Merged("", "/x/y"), ""); }

TEST_F(BlockSchema, MergesIntoOneOfItsInputs) {
  std::string path = "/a/b/c";
  EXPECT_EQ(block_.MergeSchemaPath(path, "/x", path), 0);
  EXPECT_EQ(path, "/x/b/c");
  EXPECT_EQ(block_.MergeSchemaPath("/1/2/3/4", path, path), 0);
  EXPECT_EQ(path, "/x/b/c/4");
}

TEST_F(BlockSchema, ConstructsAPathFromAnOpenGroup) {
  file_.at("/post/singlestate/s2").raw([&](hid_t group) {
    std::string out;
    block_.SetBlkPath("/post/singlestate/s1/entityresults/Node");
    EXPECT_EQ(block_.ConstructSchemaPath(group, out), 0);
    EXPECT_EQ(out, "/post/singlestate/s2/entityresults/Node");
    EXPECT_EQ(block_.ConstructSchemaPath(-1, out), 1);
  });
}

TEST_F(BlockSchema, RefusesAGroupWithANameOfThreeThousandBytes) {
  block_.SetBlkPath("/a/b");
  std::string out = "untouched";
  file_.at("/" + std::string(2998, 'n')).raw([&](hid_t group) {
    EXPECT_EQ(block_.ConstructSchemaPath(group, out), 0);
  });
  EXPECT_EQ(out, "/" + std::string(2998, 'n') + "/b");
  out = "untouched";
  file_.at("/" + std::string(2999, 'n')).raw([&](hid_t group) {
    EXPECT_EQ(block_.ConstructSchemaPath(group, out), 1);
  });
  EXPECT_EQ(out, "untouched");
}

TEST_F(BlockSchema, RefusesAnIdThatIsNoObject) {
  std::string out = "untouched";
  block_.SetBlkPath("/a/b");
  EXPECT_EQ(block_.ConstructSchemaPath(123456789, out), 1);
  EXPECT_EQ(out, "untouched");
}

TEST_F(BlockSchema, OpensTheBlockOfAnotherState) {
  file_.group(State(1) + "/entityresults/Node/X").group(State(2) + "/entityresults/Node/X");
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  block_.SetBlkPath(State(1) + "/entityresults/Node/X");
  const hid_t file = block_.GetH5Reader()->GetFileId();
  const Id group(block_.GetBlkGrpUsingSchemaPathFromState(file, 2), "block of state 2");
  char path[256] = {};
  H5Iget_name(group.get(), path, sizeof path);
  EXPECT_EQ(path, State(2) + "/entityresults/Node/X");
}

TEST_F(BlockSchema, OpensTheMergedPathOfAGroupAtHand) {
  file_.group(State(1) + "/entityresults/Node/X").group(State(2) + "/entityresults/Node/X");
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  block_.SetBlkPath(State(1) + "/entityresults/Node/X");
  const hid_t file = block_.GetH5Reader()->GetFileId();
  const Id state(H5Gopen2(file, State(2).c_str(), H5P_DEFAULT), "state 2");
  const Id group(block_.OpenMergedPath(file, state.get()), "block of state 2");
  char path[256] = {};
  H5Iget_name(group.get(), path, sizeof path);
  EXPECT_EQ(path, State(2) + "/entityresults/Node/X");
  EXPECT_LT(block_.OpenMergedPath(file, -1), 0);
  block_.SetBlkPath("");
  EXPECT_LT(block_.OpenMergedPath(file, state.get()), 0);
}

TEST_F(BlockSchema, FailureAnswersOne) {
  file_.group(State(1) + "/entityresults/Node").group(State(2) + "/entityresults");
  block_.SetBlkPath(State(1) + "/entityresults/Node");
  EXPECT_EQ(block_.GetBlkGrpUsingSchemaPathFromState(0, 1), 1);  // no reader
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  const hid_t file = block_.GetH5Reader()->GetFileId();
  EXPECT_EQ(block_.GetBlkGrpUsingSchemaPathFromState(file, 3), 1);  // no such state
  EXPECT_EQ(block_.GetBlkGrpUsingSchemaPathFromState(file, 0), 1);  // no type group
  EXPECT_EQ(block_.GetBlkGrpUsingSchemaPathFromState(file, 2), 1);  // no such block
}

// ---- Index counts by schema path

class BlockNumIndex : public BlockSchema {
 protected:
  int CountOf(int state) {
    int count = 99;
    status_ = block_.ReadNumIndex(file_.path().c_str(), state, count);
    return count;
  }

  int status_ = -1;
};

TEST_F(BlockNumIndex, IsReadFromTheHeaderOfASplitBlock) {
  file_.at(State(1) + "/entityresults/Node/header").integer("nindex", 2);
  file_.at(State(2) + "/entityresults/Node/header").integer32("nindex", 3);
  block_.SetBlkPath(State(1) + "/entityresults/Node");
  EXPECT_EQ(CountOf(1), 2);
  EXPECT_EQ(status_, 0);
  EXPECT_EQ(CountOf(2), 3);
  EXPECT_EQ(status_, 0);
}

TEST_F(BlockNumIndex, IsReadFromTheGroupOfASingleBlock) {
  file_.group(State(1)).at(State(2) + "/entityresults/Node/orvblock").integer("nindex", 5);
  block_.SetBlkPath(State(1) + "/entityresults/Node/orvblock");
  EXPECT_EQ(CountOf(2), 5);
  EXPECT_EQ(status_, 0);
}

TEST_F(BlockNumIndex, KeepsTheLowThirtyTwoBits) {
  file_.at(State(1) + "/entityresults/Node/header").integer("nindex", 4294967303);
  block_.SetBlkPath(State(1) + "/entityresults/Node");
  EXPECT_EQ(CountOf(1), 7);
  EXPECT_EQ(status_, 0);
}

TEST_F(BlockNumIndex, IsZeroWhenItCannotBeRead) {
  file_.at(State(1) + "/entityresults/Node/header").text("nindex", "two");
  file_.group(State(2) + "/entityresults/Node");
  block_.SetBlkPath(State(1) + "/entityresults/Node");
  for (const int state : {-1, 0, 1, 2, 3}) {
    EXPECT_EQ(CountOf(state), 0) << state;
    EXPECT_EQ(status_, 1) << state;
  }
  int count = 99;
  EXPECT_EQ(block_.ReadNumIndex(nullptr, 1, count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(block_.ReadNumIndex(TempPath("missing.orv").c_str(), 1, count), 1);
}

}  // namespace
}  // namespace orv_test
