// When a file is looked at before it is opened, and when that may be spared.

#include "h5/checked_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <utility>

#include "h5/h5_test.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_switches.h"

namespace {

using namespace orv_test;
using orvio::h5::CheckedFiles;
using orvio::h5::FileStamp;

class FileCheck : public H5Test {
 protected:
  FileCheck() {
    file_.at("/post/constant/b").dataset<std::int32_t>("d", {1}, {7});
    path_ = file_.path();
  }
  ~FileCheck() override { ORVSetFileCheck(1); }

  int Open(unsigned flags = 0) const {
    OH5Reader reader;
    return reader.OpenFile(path_.c_str(), flags);
  }

  /// Spoils the dataset's group, which an open of the file does not come by. The file's times are those of long ago, so
  /// that they tell of the change.
  void Damage() const {
    std::string bytes = BytesOf(path_);
    const size_t place = bytes.rfind("SNOD");
    ASSERT_NE(place, std::string::npos);
    bytes[place] = 'X';
    std::ofstream(path_, std::ios::binary) << bytes;
  }

  void Age(const std::string& path) const {
    const timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  }

  FileStamp Stamp() const {
    struct stat info = {};
    EXPECT_EQ(stat(path_.c_str(), &info), 0);
    return FileStamp(info);
  }

  ForgedFile file_{"checked"};
  std::string path_;
};

TEST_F(FileCheck, RefusesADamagedFileAndTellsWhere) {
  Damage();
  EXPECT_EQ(Open(), 1);
  const std::string text = ORVGetLastErrorText();
  EXPECT_EQ(text.rfind("File::\n\t \"" + path_ + "\" is damaged: ", 0), 0U) << text;
  const size_t place = BytesOf(path_).rfind("XNOD");
  EXPECT_NE(text.find(", at byte " + std::to_string(place)), std::string::npos) << text;
}

TEST_F(FileCheck, RefusesADamagedFileForWritingAndLeavesItAlone) {
  Damage();
  const std::string before = BytesOf(path_);
  hid_t file = -1;
  EXPECT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 4);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(FileCheck, LeavesADamagedFileToHdf5WhenItIsSwitchedOff) {
  Damage();
  EXPECT_EQ(ORVSetFileCheck(0), 1);
  EXPECT_EQ(Open(), 0);
  EXPECT_EQ(ORVSetFileCheck(1), 0);
  EXPECT_EQ(Open(), 1);
}

TEST_F(FileCheck, KeepsItsSettingForNumbersThatMeanNothing) {
  EXPECT_EQ(ORVSetFileCheck(2), 1);
  EXPECT_EQ(ORVSetFileCheck(-1), 1);
  EXPECT_EQ(ORVSetFileCheck(1), 1);
}

TEST_F(FileCheck, IsDoneAgainWhenTheFileHasChanged) {
  EXPECT_EQ(Open(), 0);
  Damage();
  EXPECT_EQ(Open(), 1);
}

TEST_F(FileCheck, IsDoneAgainWhenAnotherFileHasTakenThePlace) {
  EXPECT_EQ(Open(), 0);
  const std::string place = std::exchange(path_, TempPath("copy"));
  std::ofstream(path_, std::ios::binary) << BytesOf(place);
  Damage();
  ASSERT_EQ(rename(path_.c_str(), place.c_str()), 0);
  path_ = place;
  EXPECT_EQ(Open(), 1);
}

TEST_F(FileCheck, IsNotDoneForWhatWasJustWrittenHere) {
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_TRUE(orvio::process().checked_files->IsSound(Stamp()));
}

TEST_F(FileCheck, IsDoneForWhatWasWrittenHereWhileItWasOff) {
  Damage();
  ORVSetFileCheck(0);
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  ORVSetFileCheck(1);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_FALSE(orvio::process().checked_files->IsSound(Stamp()));
  EXPECT_EQ(Open(), 1);
}

TEST_F(FileCheck, IsNotDoneWhileTheFileIsWrittenHere) {
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  EXPECT_TRUE(orvio::process().checked_files->IsBeingWritten(Stamp()));
  EXPECT_EQ(Open(), 0);
  EXPECT_TRUE(orvio::process().checked_files->IsBeingWritten(Stamp()));
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_FALSE(orvio::process().checked_files->IsBeingWritten(Stamp()));
}

TEST_F(FileCheck, RemembersAFileThatHasRestedForAWhile) {
  CheckedFiles known;
  FileStamp stamp = Stamp();
  stamp.changed.first -= 1;
  EXPECT_FALSE(known.IsSound(stamp));
  known.RememberSeen(stamp);
  EXPECT_TRUE(known.IsSound(stamp));
}

TEST_F(FileCheck, DoesNotRememberAFileThatChangedAMomentAgo) {
  CheckedFiles known;
  Age(path_);  // the time of the change of its times is now
  known.RememberSeen(Stamp());
  EXPECT_FALSE(known.IsSound(Stamp()));
}

TEST_F(FileCheck, KnowsAFileByEverythingThatTellsContentsApart) {
  CheckedFiles known;
  const FileStamp stamp = Stamp();
  known.RememberWritten(stamp);
  FileStamp larger = stamp, later = stamp, touched = stamp, other = stamp, elsewhere = stamp;
  ++larger.size;
  ++later.modified.second;
  ++touched.changed.second;
  ++other.inode;
  ++elsewhere.device;
  for (const FileStamp& changed : {larger, later, touched, other, elsewhere}) EXPECT_FALSE(known.IsSound(changed));
  EXPECT_TRUE(known.IsSound(stamp));
}

TEST_F(FileCheck, BeginsAnewAfterAThousandFiles) {
  CheckedFiles known;
  FileStamp stamp = Stamp();
  for (int i = 0; i < 1025; ++i) {
    ++stamp.inode;
    known.RememberWritten(stamp);
  }
  EXPECT_TRUE(known.IsSound(stamp));
  --stamp.inode;
  EXPECT_FALSE(known.IsSound(stamp));
}

}  // namespace
