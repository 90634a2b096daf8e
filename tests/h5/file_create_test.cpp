// Opening of files for writing and the groups of a new file. States and blocks: write_groups_test.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using namespace std::string_literals;
using Names = std::vector<std::string>;

class WriteOpen : public H5Test {
 protected:
  /// Opens, expects a status and closes again.
  void ExpectStatus(const std::string& path, int mode, int status) {
    hid_t file = 5;
    EXPECT_EQ(OH5WriteOpenFile(path.c_str(), mode, &file), status);
    if (status == 0) {
      EXPECT_EQ(OH5WriteCloseFile(file), 0);
    } else {
      EXPECT_LT(file, 0);
    }
  }
  std::string TextFile() const {
    std::ofstream(TempPath("text")) << "precious text";
    return TempPath("text");
  }
  ForgedFile file_{"open"};
};

TEST_F(WriteOpen, CreateMakesAFile) {
  ExpectStatus(TempPath("new"), ORV_FILE_CREATE, 0);
  EXPECT_EQ(RawFile(TempPath("new")).tree(), Names{});
}

TEST_F(WriteOpen, CreateTruncatesWhatIsThere) {
  ExpectStatus(file_.path(), ORV_FILE_CREATE, 0);
  EXPECT_EQ(RawFile(file_.path()).tree(), Names{});
  ExpectStatus(TextFile(), ORV_FILE_CREATE, 0);
  EXPECT_EQ(RawFile(TempPath("text")).tree(), Names{});
}

TEST_F(WriteOpen, AppendOpensWhatIsThere) {
  hid_t file = 5;
  ASSERT_EQ(OH5WriteOpenFile(file_.path().c_str(), ORV_FILE_APPEND, &file), 0);
  unsigned intent = 99;
  EXPECT_GE(H5Fget_intent(file, &intent), 0);
  EXPECT_EQ(intent, H5F_ACC_RDWR);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_TRUE(RawFile(file_.path()).exists("/post/constant"));
}

TEST_F(WriteOpen, AppendMakesAMissingFile) {
  ExpectStatus(TempPath("new"), ORV_FILE_APPEND, 0);
  EXPECT_EQ(RawFile(TempPath("new")).tree(), Names{});
}

TEST_F(WriteOpen, AppendNeverTruncatesATextFile) {
  ExpectStatus(TextFile(), ORV_FILE_APPEND, 4);
  EXPECT_EQ(BytesOf(TempPath("text")), "precious text");
}

TEST_F(WriteOpen, AppendTakesAnEmptyFileForANewOne) {
  std::ofstream(TempPath("empty")).flush();
  ExpectStatus(TempPath("empty"), ORV_FILE_APPEND, 0);
  EXPECT_EQ(RawFile(TempPath("empty")).tree(), Names{});
}

TEST_F(WriteOpen, AppendNeverTruncatesAFileThatAnotherHolds) {
  const std::string path = file_.path();
  const std::string before = BytesOf(path);
  const int holder = open(path.c_str(), O_RDWR);
  ASSERT_EQ(flock(holder, LOCK_EX | LOCK_NB), 0);
  ExpectStatus(path, ORV_FILE_APPEND, 4);
  close(holder);
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(WriteOpen, AppendNeverTruncatesADamagedFile) {
  const std::string path = file_.path();
  ASSERT_EQ(truncate(path.c_str(), 300), 0);
  const std::string before = BytesOf(path);
  ExpectStatus(path, ORV_FILE_APPEND, 4);
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(WriteOpen, AppendFailsWithoutPermission) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is forbidden to this user";
  const std::string path = file_.path();
  const std::string before = BytesOf(path);
  ASSERT_EQ(chmod(path.c_str(), 0400), 0);
  ExpectStatus(path, ORV_FILE_APPEND, 4);
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(WriteOpen, FailsInAMissingFolder) {
  ExpectStatus(TempPath("nowhere/new"), ORV_FILE_CREATE, 4);
  ExpectStatus(TempPath("nowhere/new"), ORV_FILE_APPEND, 4);
}

TEST_F(WriteOpen, RefusesOtherModesAndNullArguments) {
  const std::string before = BytesOf(file_.path());
  ExpectStatus(file_.path(), 2, 1);
  ExpectStatus(file_.path(), -1, 1);
  hid_t file = 5;
  EXPECT_EQ(OH5WriteOpenFile(nullptr, ORV_FILE_CREATE, &file), 1);
  EXPECT_EQ(OH5WriteOpenFile(file_.path().c_str(), ORV_FILE_APPEND, nullptr), 1);
  EXPECT_EQ(BytesOf(file_.path()), before);
}

TEST_F(WriteOpen, ClosesNothingForANegativeId) { EXPECT_EQ(OH5WriteCloseFile(-1), 1); }

struct SkeletonRow {
  int version;
  Names tree;
  std::string text;  ///< of the version, in the header
};

const Names kTreeOfMajor1 = {"/post",
                             "/post/constant",
                             "/post/constant/attributes",
                             "/post/constant/collector",
                             "/post/constant/connectivities",
                             "/post/constant/indices",
                             "/post/constant/system",
                             "/post/constant/system/data",
                             "/post/constant/system/header",
                             "/post/constant/text",
                             "/post/constant/variables",
                             "/post/orvheader",
                             "/post/orvheader/orvheader",
                             "/post/singlestate"};
const Names kTreeOf20 = {"/post",
                         "/post/constant",
                         "/post/constant/attributes",
                         "/post/constant/collector",
                         "/post/constant/connectivities",
                         "/post/constant/indices",
                         "/post/constant/system",
                         "/post/constant/text",
                         "/post/constant/variable",
                         "/post/constant/variablegroup",
                         "/post/orvheader",
                         "/post/orvheader/orvheader",
                         "/post/singlestate"};
const Names kTreeOf21 = {"/post",
                         "/post/constant",
                         "/post/constant/attributes",
                         "/post/constant/collector",
                         "/post/constant/connectivities",
                         "/post/constant/identifiers",
                         "/post/constant/indices",
                         "/post/constant/system",
                         "/post/constant/text",
                         "/post/constant/variable",
                         "/post/constant/variablegroup",
                         "/post/orvheader",
                         "/post/orvheader/orvheader",
                         "/post/singlestate"};

/// Makes a skeleton in a new file and answers the status.
int MakeSkeleton(const std::string& path, int version) {
  const orvio::Swapped writer(orvio::process().g_nWriterVersion, version);
  const Id file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), path);
  return OH5CreateSkeleton(file.get());
}

class Skeleton : public H5Test, public testing::WithParamInterface<SkeletonRow> {};

TEST_P(Skeleton, HasTheTreeAndTheHeaderOfItsVersion) {
  ASSERT_EQ(MakeSkeleton(TempPath("new"), GetParam().version), 0);
  const RawFile file(TempPath("new"));
  EXPECT_EQ(file.tree(), GetParam().tree);
  const std::string header = "/post/orvheader/orvheader";
  EXPECT_EQ(file.shape(header), std::vector<hsize_t>{});
  EXPECT_EQ(file.type_class(header), H5T_STRING);
  EXPECT_EQ(file.type_size(header), 64u);
  EXPECT_EQ(file.texts(header), Names{"\x89ORV\r\n\x1A\n" + GetParam().text + "\0"s + std::string(50, ' ')});
}

INSTANTIATE_TEST_SUITE_P(Versions, Skeleton,
                         testing::Values(SkeletonRow{0, kTreeOfMajor1, "1 0 0"}, SkeletonRow{1, kTreeOfMajor1, "1 1 0"},
                                         SkeletonRow{2, kTreeOfMajor1, "1 2 0"}, SkeletonRow{3, kTreeOf20, "2 0 0"},
                                         SkeletonRow{4, kTreeOf21, "2 1 0"}, SkeletonRow{5, kTreeOf21, "2 2 0"},
                                         SkeletonRow{-1, kTreeOf20, "1 1 0"}, SkeletonRow{6, kTreeOf21, "1 1 0"},
                                         SkeletonRow{100, kTreeOf21, "1 1 0"}));

using SkeletonOfAFile = H5Test;

TEST_F(SkeletonOfAFile, IsMadeOnce) {
  ASSERT_EQ(MakeSkeleton(TempPath("new"), 1), 0);
  {
    const orvio::Swapped writer(orvio::process().g_nWriterVersion, 4);
    const Location place(TempPath("new"), "/", H5F_ACC_RDWR);
    EXPECT_EQ(OH5CreateSkeleton(place.file()), 1);
  }
  EXPECT_EQ(RawFile(TempPath("new")).tree(), kTreeOfMajor1);
}

TEST_F(SkeletonOfAFile, LeavesOtherRootsAlone) {
  const Id file(H5Fcreate(TempPath("new").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "new");
  { const Id group(H5Gcreate2(file.get(), "other", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "other"); }
  EXPECT_EQ(OH5CreateSkeleton(file.get()), 0);
  EXPECT_GT(H5Lexists(file.get(), "other", H5P_DEFAULT), 0);
}

TEST_F(SkeletonOfAFile, FailsForAFileOpenForReadingAndForAWrongId) {
  ForgedFile forged("bare");
  forged.at("/").drop("post");
  const Location place(forged.path(), "/");
  EXPECT_EQ(OH5CreateSkeleton(place.file()), 1);
  EXPECT_EQ(OH5CreateSkeleton(-1), 1);
}

}  // namespace
