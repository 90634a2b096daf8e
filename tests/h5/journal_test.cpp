// Journals that were left beside a file: by a writer that ended in the middle, by another file, by somebody who means harm.

#include "h5/journal.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "h5/page_hash.h"
#include "orvio/oh5_io.h"
#include "orvio/oh5_reader.h"
#include "orvio/orv_switches.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using orvio::h5::ChangedPage;
using orvio::h5::Descriptor;
using orvio::h5::JournalWriter;
using orvio::h5::kPageSize;
using orvio::h5::PageBytes;
using testing::ElementsAre;

/// A file with groups, and a change of it that did not come to its end.
class LeftJournal : public OrvTest {
 protected:
  LeftJournal() {
    ForgedFile forged("old");
    forged.group("/post/singlestate/state000000000001");
    std::filesystem::copy_file(forged.path(), path_);
    before_ = BytesOf(path_);
    Put(path_, before_);
  }

  static void Put(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
  std::string Journal() const { return path_ + "-journal"; }

  /// Overwrites the first page and appends to the file, `written` bytes of which reach the disk.
  void LeaveChange(size_t written = 3 * kPageSize) {
    PageBytes old = {};
    std::copy_n(before_.begin(), std::min(before_.size(), kPageSize), old.begin());
    PageBytes now = {};
    for (size_t i = 0; i < std::min(before_.size(), kPageSize); ++i) now[i] = static_cast<std::uint8_t>(i * 31);
    JournalWriter writer(Journal(), false);
    writer.BeginAnew(false);
    ASSERT_TRUE(writer.Add(before_.size(), 0644, {ChangedPage{0, &old, &now}}));
    writer.Leave();
    std::string torn = before_ + std::string(2 * kPageSize, 'n');
    for (size_t i = 0; i < std::min(written, std::min(before_.size(), kPageSize)); ++i)
      torn[i] = static_cast<char>(now[i]);
    Put(path_, torn);
  }

  int OpenForWriting() const {
    hid_t file = -1;
    const int status = OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file);
    EXPECT_TRUE(status != 0 || OH5WriteCloseFile(file) == 0);
    return status;
  }
  int CountStates() const {
    int count = -1;
    return ReadNumState(path_.c_str(), &count) == 0 ? count : -1;
  }

  const std::string path_ = TempPath("file.orv");
  std::string before_;
};

TEST_F(LeftJournal, IsLookedThroughByReadersWhoWriteNothing) {
  LeaveChange();
  const std::string torn = BytesOf(path_), journal = BytesOf(Journal());
  EXPECT_EQ(CountStates(), 1);
  EXPECT_EQ(BytesOf(path_), torn);
  EXPECT_EQ(BytesOf(Journal()), journal);
}

TEST_F(LeftJournal, IsPutBackByTheNextWriter) {
  for (const size_t written : {size_t{0}, size_t{1}, size_t{700}, size_t{2048}, kPageSize}) {
    Put(path_, before_);
    LeaveChange(written);
    EXPECT_EQ(OpenForWriting(), 0) << written;
    EXPECT_EQ(BytesOf(path_), before_) << written;
    EXPECT_FALSE(std::filesystem::exists(Journal())) << written;
  }
}

TEST_F(LeftJournal, IsPutBackInPlainMode) {
  LeaveChange();
  ORVSetDurability(0);
  EXPECT_EQ(OpenForWriting(), 0);
  ORVSetDurability(1);
  EXPECT_EQ(BytesOf(path_), before_);
}

TEST_F(LeftJournal, IsFoundThroughALink) {
  LeaveChange();
  const std::string link = TempPath("link.orv");
  std::filesystem::create_symlink(path_, link);
  int count = 0;
  EXPECT_EQ(ReadNumState(link.c_str(), &count), 0);
  EXPECT_EQ(count, 1);
}

TEST_F(LeftJournal, OfAnotherFileIsLeftAlone) {
  LeaveChange();
  ForgedFile other("new");
  for (int i = 0; i < 40; ++i) other.group("/post/singlestate/other" + std::to_string(i));
  const std::string there = BytesOf(other.path());
  Put(path_, there);
  EXPECT_EQ(CountStates(), 40);
  EXPECT_EQ(OpenForWriting(), 0);
  EXPECT_EQ(BytesOf(path_), there);
}

TEST_F(LeftJournal, ThatIsNotWholeTouchesNothing) {
  LeaveChange(0);
  const std::string journal = BytesOf(Journal()), untouched = BytesOf(path_);
  for (size_t size = 0; size < journal.size(); size += 97) {
    Put(Journal(), journal.substr(0, size));
    EXPECT_EQ(CountStates(), 1) << size;
    EXPECT_EQ(OpenForWriting(), 0) << size;
    EXPECT_EQ(BytesOf(path_).substr(0, before_.size()), before_) << size;
    Put(path_, untouched);
  }
}

TEST_F(LeftJournal, WithDamageAnywhereIsPutBackInWholeOrNotAtAll) {
  LeaveChange();
  const std::string journal = BytesOf(Journal()), torn = BytesOf(path_);
  for (size_t at = 0; at < journal.size(); at += at < 150 ? 1 : 331) {
    for (const int mask : {0x01, 0xff}) {
      std::string damaged = journal;
      damaged[at] = static_cast<char>(damaged[at] ^ mask);
      Put(Journal(), damaged);
      (void)CountStates();
      (void)OpenForWriting();
      const std::string after = BytesOf(path_);
      EXPECT_TRUE(after == before_ || after == torn) << at;
      Put(path_, torn);
    }
  }
}

TEST_F(LeftJournal, WithNumbersThatNoWriterGivesIsNone) {
  LeaveChange();
  const std::string journal = BytesOf(Journal()), torn = BytesOf(path_);
  for (const size_t field : {size_t{8}, size_t{16}}) {  // the chain, the number of the change
    for (const std::uint64_t number : {std::uint64_t{0}, ~std::uint64_t{0}}) {
      std::string forged = journal;
      std::memcpy(forged.data() + field, &number, sizeof number);
      const std::uint64_t hash = orvio::h5::HashOf(forged.data(), 56);
      std::memcpy(forged.data() + 56, &hash, sizeof hash);
      Put(Journal(), forged);
      const bool is_none = number == 0 || field == 16;
      EXPECT_EQ(OpenForWriting(), is_none ? 4 : 0) << field << " " << number;
      EXPECT_EQ(BytesOf(path_), is_none ? torn : before_) << field << " " << number;
      Put(path_, torn);
    }
  }
}

TEST_F(LeftJournal, ThatIsNoRegularFileIsNone) {
  ASSERT_EQ(mkfifo(Journal().c_str(), 0644), 0);
  EXPECT_EQ(CountStates(), 1);
  std::filesystem::remove(Journal());
  const std::string elsewhere = TempPath("elsewhere");
  Put(elsewhere, "not ours");
  std::filesystem::create_symlink(elsewhere, Journal());
  EXPECT_EQ(CountStates(), 1);
  EXPECT_EQ(BytesOf(elsewhere), "not ours");
}

TEST_F(LeftJournal, UnderWhoseNameIsAFileOfSomebodyElseIsNotOverwritten) {
  Put(Journal(), "Dear diary, today I ran a simulation and it went well. More tomorrow.");
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  { const Id group(H5Gcreate2(file, "/post/more", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "group"); }
  EXPECT_NE(OH5WriteCloseFile(file), 0) << "the change could not be made safe";
  EXPECT_EQ(BytesOf(Journal()).substr(0, 10), "Dear diary");
  EXPECT_EQ(BytesOf(path_), before_);
}

TEST_F(LeftJournal, IsForgottenWithTheFileThatIsMadeAnew) {
  LeaveChange();
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_CREATE, &file), 0);
  EXPECT_EQ(OH5CreateSkeleton(file), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_FALSE(std::filesystem::exists(Journal()));
  EXPECT_EQ(CountStates(), 0);
}

TEST_F(LeftJournal, UnderWhoseNameIsAFileOfSomebodyElseStaysWhenTheFileIsMadeAnew) {
  Put(Journal(), "Dear diary, today I ran a simulation and it went well. More tomorrow.");
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_CREATE, &file), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_EQ(BytesOf(Journal()).substr(0, 10), "Dear diary");
}

}  // namespace
