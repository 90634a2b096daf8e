// A file that stays open between operations: they see it as it is all the same, and nobody is kept from writing it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/two_states.h"

namespace {

using namespace orv_test;
using testing::IsEmpty;

int OpenHdf5Files() { return static_cast<int>(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_FILE)); }

/// The first descriptor that this process has of a file; -1 for none.
int DescriptorOf(const std::string& path) {
  const std::filesystem::path real = std::filesystem::weakly_canonical(path);
  for (const auto& link : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(link.path(), gone) == real) return std::stoi(link.path().filename().string());
  }
  return -1;
}

bool IsOpen(const std::string& path) { return DescriptorOf(path) >= 0; }

/// Read with what is known of files (1) and by HDF5 (0).
class KeptFile : public TwoStates, public testing::WithParamInterface<int> {
 protected:
  KeptFile() {
    MaySilenceHdf5();
    EXPECT_EQ(filer_.KeepFileOpen(), 0);
  }

  const orvio::Swapped<int> index_{orvio::process().file_index, GetParam()};
};

TEST_P(KeptFile, StaysOpenFromOneFetchToTheNext) {
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  EXPECT_TRUE(IsOpen(path_));
  EXPECT_EQ(OpenHdf5Files(), GetParam() == 0 ? 1 : 0);
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_TRUE(IsOpen(path_));
}

TEST_P(KeptFile, IsNotOpenedAgain) {
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  constexpr off_t kMark = 17;  // nobody reads from where a descriptor stands
  ASSERT_EQ(lseek(DescriptorOf(path_), kMark, SEEK_SET), kMark);
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_EQ(lseek(DescriptorOf(path_), 0, SEEK_CUR), kMark);
}

TEST_P(KeptFile, IsClosedWhenNobodyWantsItOpen) {
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  EXPECT_EQ(filer_.KeepFileOpen(false), 0);
  EXPECT_FALSE(IsOpen(path_));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  EXPECT_FALSE(IsOpen(path_));
}

TEST_P(KeptFile, IsClosedWithTheLastFilerThatWantsIt) {
  {
    ORVFiler other(path_.c_str());
    EXPECT_EQ(other.KeepFileOpen(), 0);
    EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
    filer_.KeepFileOpen(false);
    EXPECT_TRUE(IsOpen(path_));
  }
  EXPECT_FALSE(IsOpen(path_));
}

TEST_P(KeptFile, ShowsWhatWasOverwritten) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  Overwrite(99);
  EXPECT_EQ(Fetch(2), (std::vector<float>{99, 99, 99}));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
}

TEST_P(KeptFile, ShowsTheFileThatTookItsPlace) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  const std::string other = TempPath("other");
  std::filesystem::copy_file(path_, other);
  std::filesystem::rename(other, path_);
  Overwrite(5);
  EXPECT_EQ(Fetch(2), (std::vector<float>{5, 5, 5}));
}

TEST_P(KeptFile, IsMissedWhenItIsGone) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  std::filesystem::remove(path_);
  EXPECT_THAT(Fetch(2), IsEmpty());
}

TEST_P(KeptFile, IsWrittenByTheSameProcess) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  ASSERT_EQ(WriteState(3, {31, 32, 33}), 0);
  EXPECT_EQ(Fetch(3), (std::vector<float>{31, 32, 33}));
  ASSERT_EQ(WriteState(4, {31, 32, 33}), 0);
  EXPECT_EQ(Fetch(4), (std::vector<float>{31, 32, 33}));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
}

/// Some operations open the file by themselves.
TEST_P(KeptFile, IsNotInTheWayOfOtherOpens) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "file");
    const Id made(H5Gcreate2(file.get(), "/post/singlestate/state000000000003", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                  "state");
  }
  int states = 0;
  EXPECT_EQ(ReadNumState(path_.c_str(), &states), 0);
  EXPECT_EQ(states, 3);
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  ORVFiler other(path_.c_str());
  int next_id = 1;
  EXPECT_EQ(other.InitReader(next_id), 0);
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
}

TEST_P(KeptFile, IsNotInTheWayOfOpensUnderAnotherName) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  const std::string other = TempPath("other name");
  std::filesystem::create_symlink(path_, other);
  std::filesystem::last_write_time(path_, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  int states = 0;
  EXPECT_EQ(ReadNumState(other.c_str(), &states), 0);
  EXPECT_EQ(states, 2);
}

/// A writer leaves its journal for readers that it knows of.
TEST_P(KeptFile, IsNoReaderToWritersBetweenOperations) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  Commit({1, 2, 3});
  EXPECT_FALSE(std::filesystem::exists(path_ + "-journal"));
  EXPECT_EQ(Fetch(2), (std::vector<float>{1, 2, 3}));
}

TEST_P(KeptFile, IsOpenedAnewWhenAHostHasClosedIt) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  hid_t file = -1;
  if (H5Fget_obj_ids(H5F_OBJ_ALL, H5F_OBJ_FILE, 1, &file) > 0) Check(H5Fclose(file), "close");
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
}

TEST_P(KeptFile, IsReadTheOtherWayOnceThatIsAskedFor) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_EQ(ORVSetFileIndex(1 - GetParam()), GetParam());
  EXPECT_FALSE(IsOpen(path_));
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_EQ(OpenHdf5Files(), GetParam() == 0 ? 0 : 1);
}

TEST_P(KeptFile, IsNotKeptAMomentAfterAChange) {
  orvio::process().clock_step = 1000;
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_FALSE(IsOpen(path_));
}

TEST(KeptFiles, NeedAFiler) {
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.KeepFileOpen(), 1);
}

INSTANTIATE_TEST_SUITE_P(ByHdf5AndByWhatIsKnown, KeptFile, testing::Values(0, 1));

}  // namespace
