// Where a block lies: section, state, type group, and its own levels. Paths carried over to other states are in
// block_schema_test.

#include <gtest/gtest.h>
#include <hdf5.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_hdf5.h"

namespace orv_test {
namespace {

/// Path of an open group, which is closed.
std::string PathOf(hid_t group) {
  if (group < 0) return "none";
  const Id owned(group, "group");
  char path[4096] = {};
  H5Iget_name(owned.get(), path, sizeof path);
  return path;
}

class BlockPath : public OrvTest {
 protected:
  BlockPath() { file_.group("/post/singlestate/b").group("/post/singlestate/a/attributes"); }
  ~BlockPath() override { block_.CloseH5Reader(); }

  void Open() { ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0); }

  std::string TypeGroup(std::int64_t key, int state) {
    block_.m_BlkKey = key;
    std::string path = "/post";
    return resolver_.AppendTypeGroup(path, state) == 0 ? path : "failed, " + path;
  }

  ForgedFile file_;
  RecordingBlock block_;
  ORVBlockPathResolver resolver_{&block_};
};

// ---- Sections

TEST_F(BlockPath, TakesTheSectionFromTheStateOrTheKey) {
  struct Row {
    std::int64_t key;
    const char *negative, *zero, *positive;
  };
  const char *c = "constant", *m = "multistate", *s = "singlestate";
  const Row rows[] = {{-1, m, c, s},   {10, c, c, c},   {20, c, c, c},   {30, c, c, c},   {32, c, c, c},
                      {40, m, c, s},   {100, m, c, s},  {200, m, c, s},  {250, m, c, s},  {300, m, c, s},
                      {400, m, c, s},  {500, m, c, s},  {1000, m, c, s}, {1001, m, c, s}, {1050, m, m, m},
                      {1051, m, m, m}, {1100, m, c, s}, {1101, m, c, s}, {1150, m, m, m}, {1151, m, m, m},
                      {2100, m, c, s}, {2150, m, m, m}, {77, m, c, s}};
  for (const Row& row : rows) {
    block_.m_BlkKey = row.key;
    std::string negative, zero, positive;
    EXPECT_EQ(resolver_.AppendSection(negative, -1), 0);
    EXPECT_EQ(resolver_.AppendSection(zero, 0), 0);
    EXPECT_EQ(resolver_.AppendSection(positive, 1), 0);
    EXPECT_EQ(negative, row.negative) << row.key;
    EXPECT_EQ(zero, row.zero) << row.key;
    EXPECT_EQ(positive, row.positive) << row.key;
  }
}

TEST_F(BlockPath, PutsASlashInFrontOfASectionThatFollowsSomething) {
  std::string path = "/post";
  EXPECT_EQ(resolver_.AppendSection(path, 0), 0);
  EXPECT_EQ(path, "/post/constant");
}

// ---- Type groups

TEST_F(BlockPath, FormsTheTypeGroupOfEveryKey) {
  Open();
  struct Row {
    std::int64_t key;
    const char* zero;
    const char* second;
  };
  constexpr Row kRows[] = {
      {-1, "/post/constant", "/post/singlestate/b"},
      {10, "/post/constant/system", "/post/constant/system"},
      {20, "/post/constant/indices", "/post/constant/indices"},
      {30, "/post/constant/variable", "/post/constant/variable"},
      {32, "/post/constant/variablegroup", "/post/constant/variablegroup"},
      {40, "/post/constant/text", "/post/singlestate/b/text"},
      {100, "/post/constant/parts", "/post/singlestate/b/parts"},
      {200, "/post/constant/attributes", "/post/singlestate/b/attributes"},
      {250, "/post/constant/identifiers", "/post/singlestate/b/identifiers"},
      {300, "/post/constant/connectivities", "/post/singlestate/b/connectivities"},
      {400, "/post/constant/collector", "/post/singlestate/b/collector"},
      {500, "/post/constant", "/post/singlestate/b"},
      {1000, "/post/constant/entityresults", "/post/singlestate/b/entityresults"},
      {1001, "/post/constant/entityresults", "/post/singlestate/b/entityresults"},
      {1050, "/post/multistate/multientityresults", "/post/multistate/multientityresults"},
      {1051, "/post/multistate/multientityresults", "/post/multistate/multientityresults"},
      {1100, "/post/constant/elementresults", "/post/singlestate/b/elementresults"},
      {1101, "/post/constant/elementresults", "/post/singlestate/b/elementresults"},
      {1150, "/post/multistate/elementresults", "/post/multistate/elementresults"},
      {1151, "/post/multistate/elementresults", "/post/multistate/elementresults"},
      {2100, "/post/constant/activflags", "/post/singlestate/b/activflags"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(TypeGroup(row.key, 0), row.zero) << row.key;
    EXPECT_EQ(TypeGroup(row.key, 2), row.second) << row.key;
  }
  EXPECT_EQ(TypeGroup(1000, -1), "/post/multistate/entityresults");
}

TEST_F(BlockPath, CannotBeFormedForAKeyWithoutATypeGroup) {
  Open();
  for (const std::int64_t key : {2150, 77, 0, -2, 1052}) {
    EXPECT_EQ(TypeGroup(key, 0), "failed, /post") << key;
    EXPECT_EQ(resolver_.OpenTypeGroup(0), -1) << key;
    EXPECT_EQ(resolver_.OpenBlockGroupFor(0), -1) << key;
  }
}

TEST_F(BlockPath, NamesTheVariableGroupByTheVersionOfTheFile) {
  file_.header(1, 2, 0);
  Open();
  EXPECT_EQ(TypeGroup(30, 0), "/post/constant/variables");
  block_.CloseH5Reader();
  file_.header(2, 0, 0);
  Open();
  EXPECT_EQ(TypeGroup(30, 0), "/post/constant/variable");
  block_.CloseH5Reader();
  file_.header_bytes("no magic");
  Open();
  EXPECT_EQ(TypeGroup(30, 0), "/post/constant/variables");
}

TEST_F(BlockPath, FindsAStateByItsPositionAndNotByItsName) {
  Open();
  EXPECT_EQ(TypeGroup(200, 1), "/post/singlestate/a/attributes");
  EXPECT_EQ(TypeGroup(200, 2), "/post/singlestate/b/attributes");
  EXPECT_EQ(TypeGroup(200, 3), "failed, /post");
  EXPECT_EQ(TypeGroup(200, 2147483647), "failed, /post");
}

/// A block below a root of its own.
class RootedBlock : public RecordingBlock {
 public:
  explicit RootedBlock(const char* root) : RecordingBlock(200), root_(root) {}
  hid_t OpenBlockGroup(int state) override {
    path = root_;
    if (ORVBlockPathResolver(this).AppendTypeGroup(path, state) != 0) return H5I_INVALID_HID;
    return GetH5Reader()->OpenGroup(GetH5Reader()->GetFileId(), path.c_str(), H5P_DEFAULT);
  }

  std::string path;

 private:
  const char* root_;
};

TEST_F(BlockPath, TakesTheStatesOfAnotherRootFromThere) {
  file_.group("/mmc/singlestate/x/attributes/header");
  file_.group("/post/singlestate/a/attributes/header");
  const std::string file = file_.path();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // nothing is remembered of a file that has just changed
  for (int i = 0; i < 2; ++i) {
    RootedBlock other("/mmc"), ours("/post");
    EXPECT_EQ(other.ReadBlock(file.c_str(), 1, ORV_READ_HEADER), 0);
    EXPECT_EQ(other.path, "/mmc/singlestate/x/attributes");
    EXPECT_EQ(ours.ReadBlock(file.c_str(), 1, ORV_READ_HEADER), 0);
    EXPECT_EQ(ours.path, "/post/singlestate/a/attributes");
  }
}

TEST_F(BlockPath, CannotBeFormedForAStateWhoseNameIsTooLong) {
  file_.group("/post/singlestate/" + std::string(512, 'c')).group("/post/singlestate/" + std::string(511, 'd'));
  Open();
  EXPECT_EQ(TypeGroup(200, 3), "failed, /post");
  EXPECT_EQ(TypeGroup(200, 4), "/post/singlestate/" + std::string(511, 'd') + "/attributes");
}

TEST_F(BlockPath, NeedsAReader) {
  std::string path = "/post";
  EXPECT_EQ(resolver_.AppendTypeGroup(path, 0), 1);
  EXPECT_EQ(path, "/post");
  EXPECT_EQ(resolver_.OpenSectionGroup(0), -1);
  EXPECT_EQ(resolver_.OpenTypeGroup(0), -1);
  EXPECT_EQ(resolver_.OpenBlockGroupFor(0), -1);
  EXPECT_EQ(resolver_.OpenStateGroup(0), -1);
  EXPECT_EQ(resolver_.GetNumStates(), 0);
  EXPECT_EQ(block_.OpenBlockGroup(0), -1);
}

TEST_F(BlockPath, NeedsABlock) {
  ORVBlockPathResolver nobody(nullptr);
  std::string path = "/post";
  EXPECT_EQ(nobody.AppendSection(path, 0), 1);
  EXPECT_EQ(nobody.AppendTypeGroup(path, 0), 1);
  EXPECT_EQ(path, "/post");
  EXPECT_EQ(nobody.OpenSectionGroup(0), -1);
  EXPECT_EQ(nobody.OpenTypeGroup(0), -1);
  EXPECT_EQ(nobody.OpenBlockGroupFor(0), -1);
  EXPECT_EQ(nobody.OpenStateGroup(0), -1);
  EXPECT_EQ(nobody.GetNumStates(), 0);
}

// ---- Open groups

TEST_F(BlockPath, OpensSectionStateAndTypeGroups) {
  file_.group("/post/multistate/multientityresults");
  Open();
  block_.m_BlkKey = 200;
  EXPECT_EQ(PathOf(resolver_.OpenSectionGroup(0)), "/post/constant");
  EXPECT_EQ(PathOf(resolver_.OpenSectionGroup(2)), "/post/singlestate");
  EXPECT_EQ(PathOf(resolver_.OpenSectionGroup(-1)), "/post/multistate");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(1)), "/post/singlestate/a");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(2)), "/post/singlestate/b");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(3)), "none");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(0)), "/post/constant");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(-1)), "/post/multistate");
  EXPECT_EQ(PathOf(resolver_.OpenTypeGroup(1)), "/post/singlestate/a/attributes");
  EXPECT_EQ(PathOf(resolver_.OpenTypeGroup(2)), "none");
  EXPECT_EQ(resolver_.GetNumStates(), 2);
}

TEST_F(BlockPath, OpensTheSectionForAKeyThatIsFixedToOne) {
  file_.group("/post/multistate/multientityresults");
  Open();
  block_.m_BlkKey = 1050;
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(2)), "/post/multistate");
  EXPECT_EQ(PathOf(resolver_.OpenTypeGroup(2)), "/post/multistate/multientityresults");
  block_.m_BlkKey = 10;
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(2)), "/post/constant");
}

TEST_F(BlockPath, DoesNotOpenWhatIsNoGroup) {
  file_.at("/post/singlestate").dataset<std::int32_t>("c", {1}, {1}).soft_link("d", "/nowhere");
  file_.at("/post/constant").dataset<std::int32_t>("attributes", {1}, {1});
  Open();
  block_.m_BlkKey = 200;
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(3)), "none");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(4)), "none");
  EXPECT_EQ(PathOf(resolver_.OpenTypeGroup(0)), "none");
  EXPECT_EQ(resolver_.GetNumStates(), 4);
}

TEST_F(BlockPath, DoesNotLeadIntoAnotherFile) {
  ForgedFile other;
  other.group("/attributes");
  file_.at("/post/constant").external_link("attributes", other.path(), "/attributes");
  file_.at("/post/singlestate").external_link("c", other.path(), "/");
  Open();
  block_.m_BlkKey = 200;
  EXPECT_EQ(PathOf(resolver_.OpenTypeGroup(0)), "none");
  EXPECT_EQ(PathOf(resolver_.OpenStateGroup(3)), "none");
}

TEST_F(BlockPath, EndsAtTheBlocksOwnLevels) {
  file_.group("/post/constant/attributes/NODE/ID");
  RecordingBlock named(200, "NODE/ID");
  ASSERT_EQ(named.OpenH5Reader(file_.path().c_str(), 0), 0);
  EXPECT_EQ(PathOf(named.OpenBlockGroup(0)), "/post/constant/attributes/NODE/ID");
  EXPECT_EQ(PathOf(ORVBlockPathResolver(&named).OpenBlockGroupFor(0)), "/post/constant/attributes/NODE/ID");
  EXPECT_EQ(named.CloseH5Reader(), 0);
  EXPECT_EQ(named.CloseH5Reader(), 1);
}

TEST_F(BlockPath, HasNoBlockGroupWithoutLevelsOfItsOwn) {
  file_.group("/post/constant/attributes");
  Open();
  block_.m_BlkKey = 200;
  EXPECT_EQ(PathOf(block_.OpenBlockGroup(0)), "none");
  EXPECT_EQ(PathOf(resolver_.OpenBlockGroupFor(0)), "none");
}

// ---- What a path tells

TEST_F(BlockPath, TellsTheLayout) {
  const auto layout = [&](const char* path) {
    block_.SetBlkPath(path);
    return block_.GetBlkVersion();
  };
  EXPECT_EQ(layout(""), ORV_BLK_VERSION_SPLIT);
  EXPECT_EQ(layout("orvblock"), ORV_BLK_VERSION_SPLIT);
  EXPECT_EQ(layout("/post/constant/orvbloc"), ORV_BLK_VERSION_SPLIT);
  EXPECT_EQ(layout("/post/constant/system"), ORV_BLK_VERSION_SPLIT);
  EXPECT_EQ(layout("/orvblock"), ORV_BLK_VERSION_SINGLE);
  EXPECT_EQ(layout("/post/constant/system/orvblock"), ORV_BLK_VERSION_SINGLE);
  EXPECT_EQ(layout("/post/orvblock/system"), ORV_BLK_VERSION_SINGLE);
}

TEST_F(BlockPath, TellsTheLayoutByThePathAndNotByTheFile) {
  file_.header(2, 2, 0);
  Open();
  block_.SetBlkPath("/post/constant/system");
  EXPECT_EQ(block_.GetBlkVersion(), ORV_BLK_VERSION_SPLIT);
}

TEST_F(BlockPath, TellsTheSectionByItsText) {
  block_.SetBlkPath("/post/constant/collector/multistate");
  EXPECT_TRUE(block_.IsConstatntPath());
  EXPECT_TRUE(block_.IsMultiStatePath());
  EXPECT_FALSE(block_.IsSingleStatePath());
  block_.SetBlkPath(std::string("/post/singlestate/state000000000001"));
  EXPECT_TRUE(block_.IsSingleStatePath());
  EXPECT_FALSE(block_.IsConstatntPath());
  EXPECT_TRUE(block_.HasSubstringInPath("state0000"));
  EXPECT_TRUE(block_.HasSubstringInPath(""));
  EXPECT_FALSE(block_.HasSubstringInPath("STATE"));
  EXPECT_FALSE(block_.HasSubstringInPath(nullptr));
}

TEST_F(BlockPath, IsLeftAloneByANullText) {
  block_.SetBlkPath("/post");
  block_.SetBlkPath(static_cast<const char*>(nullptr));
  EXPECT_EQ(block_.GetBlkPath(), "/post");
  EXPECT_STREQ(block_.GetBlkPathCstr(), "/post");
  EXPECT_EQ(block_.GetBlkPathLen(), 5U);
}

}  // namespace
}  // namespace orv_test
