// The injector: that it meets the calls of this program, of HDF5 and of the library, and those of one file only.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "faults/append.h"
#include "faults/fault_points.h"
#include "faults/injector.h"
#include "faults/process.h"
#include "faults/recording.h"
#include "faults/snapshot.h"

namespace {

using namespace orvio::faults;

class Injector : public testing::Test {
 protected:
  /// A file of 8192 bytes.
  Injector() { PutBytes(path_, Bytes(8192, 'a')); }

  /// Runs `work` apart with a fault; how it ended.
  Ending With(const Injection& injection, const std::function<int()>& work) {
    count_.Reset();
    return RunApart([&] {
      Arm(injection, *count_);
      return work();
    });
  }

  int OpenFile() const { return ::open(path_.c_str(), O_RDWR); }
  Bytes Found() const { return BytesOf(path_); }

  WorkFolder folder_;
  std::string path_ = folder_.path() + "/file";
  Shared<CallCount> count_;
};

int PutTwice(int file, std::size_t count = 4) {
  const bool first = pwrite(file, "bbbbbbbb", count, 0) == static_cast<ssize_t>(count);
  const bool second = pwrite(file, "cccccccc", count, 100) == static_cast<ssize_t>(count);
  return (first ? 0 : 1) + (second ? 0 : 2);
}

TEST_F(Injector, CountsTheCallsOfOneFileAndItsJournal) {
  const auto work = [&] {
    const int other = ::open((folder_.path() + "/other").c_str(), O_RDWR | O_CREAT, 0600);
    const int journal = ::open((path_ + "-journal").c_str(), O_RDWR | O_CREAT, 0600);  // 1
    (void)PutTwice(other);
    (void)PutTwice(journal);             // 2, 3
    (void)!::write(OpenFile(), "x", 1);  // 4
    (void)!ftruncate(journal, 0);        // 5
    (void)fsync(journal);                // 6
    (void)fsync(other);
    (void)fsync(::open(folder_.path().c_str(), O_RDONLY));  // 7
    (void)unlink((path_ + "-journal").c_str());             // 8
    return 0;
  };
  EXPECT_TRUE(With({.path = path_}, work).Answered(0));
  EXPECT_EQ(count_->calls, 8);
  EXPECT_EQ(count_->met, 0);
  EXPECT_FALSE(count_->writes[1]);
  EXPECT_TRUE(count_->writes[2]);
  EXPECT_TRUE(count_->writes[4]);
  EXPECT_FALSE(count_->writes[5]);
}

TEST_F(Injector, KillsBeforeTheCall) {
  const auto work = [&] { return PutTwice(OpenFile()); };
  EXPECT_EQ(With({.path = path_, .fault = Fault::kKill, .at = 2}, work).signal, SIGKILL);
  EXPECT_EQ(Found()[3], 'b');
  EXPECT_EQ(Found()[100], 'a');
}

TEST_F(Injector, KillsInTheMiddleOfAWrite) {
  const auto work = [&] { return PutTwice(OpenFile()); };
  EXPECT_EQ(With({.path = path_, .fault = Fault::kHalf, .at = 1}, work).signal, SIGKILL);
  EXPECT_EQ(std::string(Found().data(), 5), "bbaaa");
}

TEST_F(Injector, FailsOneCall) {
  const auto work = [&] {
    const int file = OpenFile();
    const bool refused = pwrite(file, "b", 1, 0) == -1 && errno == EIO;
    return refused && pwrite(file, "b", 1, 1) == 1 ? 0 : 1;
  };
  EXPECT_TRUE(With({.path = path_, .fault = Fault::kIoError, .at = 1}, work).Answered(0));
  EXPECT_EQ(std::string(Found().data(), 3), "aba");
  EXPECT_EQ(count_->met, 1);
}

TEST_F(Injector, FailsOneRead) {
  const auto work = [&] {
    const int file = OpenFile();
    char letter = 0;
    const bool written = pwrite(file, "b", 1, 0) == 1;
    const bool first = pread(file, &letter, 1, 0) == 1 && letter == 'b';
    const bool second = pread(file, &letter, 1, 0) == -1 && errno == EIO;
    return written && first && second && read(file, &letter, 1) == 1 ? 0 : 1;
  };
  EXPECT_TRUE(With({.path = path_, .fault = Fault::kUnread, .at = 2}, work).Answered(0));
  EXPECT_EQ(count_->reads, 3);
  EXPECT_EQ(count_->calls, 1);
  EXPECT_EQ(count_->met, 1);
}

TEST_F(Injector, AFullDiskTakesWhatItHasRoomFor) {
  const auto work = [&] {
    const int file = OpenFile();
    const Bytes many(8192, 'b');
    const bool below = pwrite(file, many.data(), 4096, 0) == 4096 && fsync(file) == 0;
    const bool across = pwrite(file, many.data(), 8192, 4096) == 4096;
    const bool behind = pwrite(file, many.data(), 1, 8192) == -1 && errno == ENOSPC;
    const bool larger = ftruncate(file, 9000) == -1 && errno == ENOSPC;
    const bool smaller = ftruncate(file, 8000) == 0;
    const bool made = ::open((path_ + "-journal").c_str(), O_CREAT | O_RDWR, 0600) == -1 && errno == ENOSPC;
    return below && across && behind && larger && smaller && made ? 0 : 1;
  };
  EXPECT_TRUE(With({.path = path_, .fault = Fault::kDiskFull, .at = 1}, work).Answered(0));
}

TEST_F(Injector, AFullDiskHasNoRoomInHoles) {
  ASSERT_EQ(truncate(path_.c_str(), 1 << 20), 0);
  const auto work = [&] { return pwrite(OpenFile(), "b", 1, 1 << 19) == -1 && errno == ENOSPC ? 0 : 1; };
  EXPECT_TRUE(With({.path = path_, .fault = Fault::kDiskFull, .at = 1}, work).Answered(0));
}

TEST_F(Injector, RecordsWhatWasDone) {
  const std::string recording = folder_.path() + "/recording";
  const int record = ::open(recording.c_str(), O_WRONLY | O_CREAT, 0600);
  const auto work = [&] {
    const int file = OpenFile();
    RecordMark(7);
    return PutTwice(file) + ftruncate(file, 50) + fsync(file);
  };
  EXPECT_TRUE(With({.path = path_, .record = record}, work).Answered(0));
  ASSERT_EQ(close(record), 0);
  const std::vector<Call> calls = ReadRecording(recording);
  ASSERT_EQ(calls.size(), 5U);
  EXPECT_EQ(calls[0].op, Op::kMark);
  EXPECT_EQ(calls[0].what, 7);
  EXPECT_EQ(calls[2].op, Op::kWrite);
  EXPECT_EQ(calls[2].offset, 100);
  EXPECT_EQ(std::string(calls[2].bytes.begin(), calls[2].bytes.end()), "cccc");
  EXPECT_EQ(calls[3].op, Op::kResize);
  EXPECT_EQ(calls[3].size, 50);
  EXPECT_EQ(calls[4].op, Op::kSync);
}

TEST_F(Injector, MeetsTheCallsOfHdf5) {
  const auto work = [&] {
    const hid_t file = H5Fcreate(path_.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    return H5Fclose(file) < 0 ? 1 : 0;
  };
  EXPECT_TRUE(With({.path = path_}, work).Answered(0));
  EXPECT_GT(count_->calls, 2);
}

/// Whatever changes the file was seen: the calls, made once more, lead to the same bytes.
TEST_F(Injector, MeetsAllCallsOfAnAppend) {
  const Shared<Tally> tally;
  for (const Writer& writer :
       {Writer{.plain = true, .durability = 0}, Writer{.durability = 0}, Writer{}, Writer{.durability = 2}}) {
    FaultPoints(folder_.path(), {kForms[0], writer, 1}, {}, *tally).Try();  // throws when they do not
  }
  EXPECT_EQ(tally->Points(Row::kNoFault), 4);
  EXPECT_EQ(tally->Unsound(), 0);
}

}  // namespace
