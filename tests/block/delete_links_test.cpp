// Removal of links by name through a block.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"
#include "support/raw_hdf5.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DeleteLinks : public OrvTest {
 protected:
  DeleteLinks() {
    file_.at("/a").dataset<std::int32_t>("d", {1}, {1}).soft_link("s", "/nowhere").group("/a/g/deep").group("/b");
  }

  int Delete(std::vector<std::string> names) { return block_.DeleteLinks(file_.path().c_str(), names); }

  ForgedFile file_;
  RecordingBlock block_;
};

TEST_F(DeleteLinks, RemovesGroupsDatasetsAndLinks) {
  EXPECT_EQ(Delete({"/a/g", "a/d", "/a/s"}), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.children("/a"), IsEmpty());
  EXPECT_TRUE(raw.exists("/b"));
}

TEST_F(DeleteLinks, PassesOverNamesThatAreNotThere) {
  EXPECT_EQ(Delete({"/a/missing", "/missing/too/deep", "", "/b"}), 0);
  const RawFile raw(file_.path());
  EXPECT_FALSE(raw.exists("/b"));
  EXPECT_THAT(raw.children("/a"), ElementsAre("d", "g", "s"));
}

TEST_F(DeleteLinks, AnswersZeroForAnEmptyListWithoutAFile) {
  std::vector<std::string> none;
  EXPECT_EQ(block_.DeleteLinks(nullptr, none), 0);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.DeleteLinks(missing.c_str(), none), 0);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(DeleteLinks, NeedsAFileName) {
  std::vector<std::string> names = {"/a"};
  EXPECT_EQ(block_.DeleteLinks(nullptr, names), 1);
}

TEST_F(DeleteLinks, MakesAFileThatIsMissing) {
  std::vector<std::string> names = {"/a"};
  const std::string made = TempPath("made.orv");
  EXPECT_EQ(block_.DeleteLinks(made.c_str(), names), 0);
  EXPECT_THAT(RawFile(made).children("/"), IsEmpty());
  EXPECT_EQ(block_.DeleteLinks(TempPath("no/folder/made.orv").c_str(), names), 4);
}

TEST_F(DeleteLinks, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  std::vector<std::string> names = {"/a"};
  EXPECT_EQ(block_.DeleteLinks(other.c_str(), names), 4);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

TEST_F(DeleteLinks, LeavesAFileAloneThatSomebodyElseHoldsOpen) {
  const std::string path = file_.path();
  const std::string before = BytesOf(path);
  const Id held(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path);
  std::vector<std::string> names = {"/a"};
  EXPECT_EQ(block_.DeleteLinks(path.c_str(), names), 4);
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(DeleteLinks, StopsAtTheFirstThatCannotBeRemoved) {
  // The root group can be named but not removed.
  EXPECT_EQ(Delete({"/b", "/", "/a"}), 1);
  const RawFile raw(file_.path());
  EXPECT_FALSE(raw.exists("/b"));
  EXPECT_TRUE(raw.exists("/a"));
}

TEST_F(DeleteLinks, DoesNotRemoveLinksInOtherFiles) {
  ForgedFile other;
  other.group("/x/y");
  const std::string there = other.path();
  const std::string before = BytesOf(there);
  file_.at("/").external_link("out", there, "/x");
  EXPECT_EQ(Delete({"/out/y"}), 0);
  EXPECT_EQ(BytesOf(there), before);
  EXPECT_EQ(Delete({"/out"}), 0);
  EXPECT_FALSE(RawFile(file_.path()).exists("/out"));
  EXPECT_EQ(BytesOf(there), before);
}

}  // namespace
}  // namespace orv_test
