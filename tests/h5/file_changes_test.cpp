// One change of a file: what is on disk before its commit, after it, and after it was given up.

#include "h5/file_changes.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>

#include "h5/file_snapshot.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using orvio::h5::Descriptor;
using orvio::h5::Durability;
using orvio::h5::FileChanges;
using orvio::h5::FileSnapshot;

constexpr std::uint64_t kSize = 100'000;  // ends within a page

/// A file of bytes that tell where they are, and its change.
class FileChange : public OrvTest {
 protected:
  FileChange() : before_(kSize, '\0') {
    for (size_t i = 0; i < before_.size(); ++i) before_[i] = static_cast<char>(i * 7 + i / 256);
    FILE* made = fopen(path_.c_str(), "wb");
    fwrite(before_.data(), 1, before_.size(), made);
    fclose(made);
    file_ = Descriptor(open(path_.c_str(), O_RDWR));
  }

  FileChanges Begin(Durability durability = Durability::kKillSafe, std::uint64_t end = kSize) {
    return FileChanges(file_.get(), path_, 0644, BytesOf(path_).size(), end, durability);
  }
  std::string OnDisk() const { return BytesOf(path_); }
  bool HasJournal() const { return std::filesystem::exists(path_ + "-journal"); }

  /// A reader that takes its snapshot now.
  std::unique_ptr<FileSnapshot> Look() const {
    Descriptor file(open(path_.c_str(), O_RDONLY));
    struct stat info = {};
    fstat(file.get(), &info);
    auto snapshot = std::make_unique<FileSnapshot>(std::move(file), path_, info);
    EXPECT_TRUE(snapshot->Take());
    return snapshot;
  }
  static std::string AllOf(FileSnapshot& snapshot) {
    std::string bytes(snapshot.Size(), '\0');
    return snapshot.Read(0, bytes.data(), bytes.size()) ? bytes : "unreadable";
  }

  static std::string With(std::string bytes, size_t at, const std::string& part) {
    if (bytes.size() < at + part.size()) bytes.resize(at + part.size());
    return bytes.replace(at, part.size(), part);
  }

  const std::string path_ = TempPath("file");
  std::string before_;
  Descriptor file_;
};

TEST_F(FileChange, TouchesNothingThatWasThereBeforeItsCommit) {
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Write(kSize - 3, "over the end", 12));
  EXPECT_EQ(OnDisk().substr(0, kSize), before_);
  EXPECT_FALSE(HasJournal());
  const std::string after = With(With(before_, 5000, "overwritten"), kSize - 3, "over the end");
  std::string seen(after.size(), '\0');
  ASSERT_TRUE(changes.Read(0, seen.data(), seen.size()));
  EXPECT_EQ(seen, after);
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), after);
  EXPECT_FALSE(HasJournal());
}

TEST_F(FileChange, ThatIsGivenUpLeavesTheFileAsItWas) {
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Write(kSize, "appended", 8));
  changes.Abandon();
  EXPECT_EQ(OnDisk(), before_);
  EXPECT_FALSE(changes.Commit());
  EXPECT_EQ(OnDisk(), before_);
}

TEST_F(FileChange, CanMakeTheFileShorter) {
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Resize(10'000));
  EXPECT_EQ(OnDisk(), before_);
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), before_.substr(0, 10'000));
}

TEST_F(FileChange, ThatCutsTheFileIsNotSeenByAReaderThatCameBefore) {
  const auto reader = Look();
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Resize(10'000));
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), before_.substr(0, 10'000));
  EXPECT_EQ(AllOf(*reader), before_);
  EXPECT_EQ(AllOf(*Look()), before_.substr(0, 10'000));
}

TEST_F(FileChange, KeepsWhatItCutsOffBesideAllThatMemoryHolds) {
  const std::string large(20'000'000, 'x');
  ASSERT_EQ(pwrite(file_.get(), large.data(), large.size(), 0), static_cast<ssize_t>(large.size()));
  const auto reader = Look();
  FileChanges changes = Begin(Durability::kKillSafe, large.size());
  for (std::uint64_t page = 0; page < 4000; ++page) ASSERT_TRUE(changes.Write(page * 4096, "y", 1));
  ASSERT_TRUE(changes.Resize(17'000'000));
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk().size(), 17'000'000U);
  EXPECT_TRUE(AllOf(*reader) == large);
}

TEST_F(FileChange, CanCutOffMoreThanAJournalTakes) {
  const std::string large(60'000'000, 'x');
  ASSERT_EQ(pwrite(file_.get(), large.data(), large.size(), 0), static_cast<ssize_t>(large.size()));
  FileChanges changes = Begin(Durability::kKillSafe, large.size());
  ASSERT_TRUE(changes.Write(0, "overwritten", 11));
  ASSERT_TRUE(changes.Resize(10'000));
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), With(large.substr(0, 10'000), 0, "overwritten"));
}

TEST_F(FileChange, IsFollowedByAnother) {
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(kSize, "appended", 8));
  ASSERT_TRUE(changes.Commit());
  ASSERT_TRUE(changes.Write(kSize, "replaced", 8));
  EXPECT_EQ(OnDisk(), before_ + "appended");
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), before_ + "replaced");
}

TEST_F(FileChange, OverwritesWhatAWriterThatEndedHasLeftBehindTheEnd) {
  ASSERT_EQ(pwrite(file_.get(), "left over", 9, kSize), 9);
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(kSize, "appended", 8));
  EXPECT_EQ(OnDisk(), before_ + "appendedr") << "nobody looks there";
  changes.Abandon();
  EXPECT_EQ(OnDisk(), before_);
}

TEST_F(FileChange, ThatIsPlainGoesToTheDiskAtOnce) {
  FileChanges changes = Begin(Durability::kPlain);
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  EXPECT_EQ(OnDisk(), With(before_, 5000, "overwritten"));
  EXPECT_TRUE(changes.Commit());
}

/// 40 MB of pages are more than are held in memory.
class LargeFileChange : public FileChange, public testing::WithParamInterface<Durability> {
 protected:
  LargeFileChange() : large_(40'000'000, 'x') {
    EXPECT_EQ(pwrite(file_.get(), large_.data(), large_.size(), 0), static_cast<ssize_t>(large_.size()));
  }
  bool Overwrite(FileChanges& changes) {
    const std::string part(1'000'003, 'y');
    for (std::uint64_t at = 11; at + part.size() < large_.size(); at += part.size()) {
      if (!changes.Write(at, part.data(), part.size())) return false;
      large_.replace(at, part.size(), part);
    }
    return true;
  }
  std::string large_;
};

TEST_P(LargeFileChange, IsKept) {
  FileChanges changes = Begin(GetParam(), large_.size());
  const auto reader = Look();
  const std::string before = large_;
  ASSERT_TRUE(Overwrite(changes));
  EXPECT_TRUE(HasJournal());
  EXPECT_EQ(AllOf(*reader), before);
  EXPECT_EQ(AllOf(*Look()), before);
  ASSERT_TRUE(changes.Write(11, "once more", 9));
  large_.replace(11, 9, "once more");
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(OnDisk(), large_);
  EXPECT_EQ(AllOf(*reader), before);
  EXPECT_EQ(AllOf(*Look()), large_);
}

TEST_P(LargeFileChange, CanBeGivenUp) {
  FileChanges changes = Begin(GetParam(), large_.size());
  const std::string before = large_;
  ASSERT_TRUE(Overwrite(changes));
  changes.Abandon();
  EXPECT_EQ(OnDisk(), before);
  EXPECT_FALSE(HasJournal());
}

INSTANTIATE_TEST_SUITE_P(Durabilities, LargeFileChange, testing::Values(Durability::kKillSafe, Durability::kPowerSafe));

// ---- Readers

TEST_F(FileChange, IsNotSeenByAReaderThatCameBefore) {
  const auto reader = Look();
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Write(kSize, "appended", 8));
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(AllOf(*reader), before_);
  EXPECT_TRUE(HasJournal()) << "a reader needs it";
  EXPECT_EQ(AllOf(*Look()), With(before_, 5000, "overwritten") + "appended");
}

TEST_F(FileChange, IsNotSeenInPartByAReaderThatHasReadSomeOfTheFile) {
  const auto reader = Look();
  char byte = 0;
  ASSERT_TRUE(reader->Read(5000, &byte, 1));
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Write(50'000, "overwritten", 11));
  ASSERT_TRUE(changes.Commit());
  std::string seen(11, '\0');
  ASSERT_TRUE(reader->Read(50'000, seen.data(), seen.size()));
  EXPECT_EQ(seen, before_.substr(50'000, 11));
  ASSERT_TRUE(reader->Read(5000, seen.data(), seen.size()));
  EXPECT_EQ(seen, before_.substr(5000, 11));
}

TEST_F(FileChange, IsNotSeenByReadersOfEarlierStatesHoweverManyFollow) {
  std::vector<std::unique_ptr<FileSnapshot>> readers;
  std::vector<std::string> states = {before_};
  FileChanges changes = Begin();
  for (int i = 0; i < 20; ++i) {
    readers.push_back(Look());
    const std::string text = "change " + std::to_string(i);
    ASSERT_TRUE(changes.Write(static_cast<std::uint64_t>(i) * 3000, text.data(), text.size()));
    ASSERT_TRUE(changes.Write(40'000, text.data(), text.size()));
    ASSERT_TRUE(changes.Commit());
    states.push_back(OnDisk());
  }
  for (size_t i = 0; i < readers.size(); ++i) EXPECT_EQ(AllOf(*readers[i]), states[i]) << i;
}

/// A file of HDF5, which tells where its contents end, and what a writer that was killed left behind that.
class LeftOver : public FileChange {
 protected:
  LeftOver() {
    const hid_t made = H5Fcreate(path_.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_GE(H5Gclose(H5Gcreate2(made, "group", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)), 0);
    EXPECT_GE(H5Fclose(made), 0);
    contents_ = OnDisk();
    file_ = Descriptor(open(path_.c_str(), O_RDWR));
    EXPECT_EQ(pwrite(file_.get(), kLeft.data(), kLeft.size(), static_cast<off_t>(contents_.size())),
              static_cast<ssize_t>(kLeft.size()));
  }

  const std::string kLeft = std::string(10'000, 'L');
  std::string contents_;
};

TEST_F(LeftOver, IsReadAsNothingOnceItIsCutOff) {
  const auto reader = Look();
  FileChanges changes = Begin(Durability::kKillSafe, contents_.size());
  ASSERT_TRUE(changes.Write(contents_.size(), "x", 1));
  changes.Abandon();
  ASSERT_EQ(OnDisk(), contents_);
  EXPECT_EQ(AllOf(*reader), contents_ + std::string(kLeft.size(), '\0'));
}

TEST_F(LeftOver, DoesNotHideThatTheContentsThemselvesAreCut) {
  const auto reader = Look();
  ASSERT_EQ(ftruncate(file_.get(), static_cast<off_t>(contents_.size()) - 1), 0);
  EXPECT_EQ(AllOf(*reader), "unreadable");
}

TEST_F(FileChange, ThatGrowsTheFileIsReadAheadOfByAReaderThatSawItsFirstBytes) {
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(kSize, "appended", 8));
  const auto reader = Look();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Commit());
  EXPECT_EQ(AllOf(*reader), before_ + "appended");
}

TEST_F(FileChange, RemovesItsJournalWhenTheLastReaderHasGone) {
  auto reader = Look();
  FileChanges changes = Begin();
  ASSERT_TRUE(changes.Write(5000, "overwritten", 11));
  ASSERT_TRUE(changes.Commit());
  EXPECT_TRUE(HasJournal());
  reader.reset();
  ASSERT_TRUE(changes.Write(5000, "overwritten again", 17));
  ASSERT_TRUE(changes.Commit());
  EXPECT_FALSE(HasJournal());
}

TEST_F(FileChange, FailsReadersWhoseStateNobodyKnowsAnyMore) {
  const auto reader = Look();
  FileChanges changes = Begin();
  for (int i = 0; i < 1200; ++i) {  // more than 64 MB of pages
    const std::string text = std::string(3'000, 'x') + std::to_string(i);
    for (std::uint64_t at = 0; at + text.size() < kSize; at += 5000) {
      ASSERT_TRUE(changes.Write(at, text.data(), text.size()));
    }
    ASSERT_TRUE(changes.Commit());
  }
  char byte = 0;
  EXPECT_FALSE(reader->Read(0, &byte, 1));
  EXPECT_EQ(AllOf(*Look()), OnDisk());
}

}  // namespace
