// What is remembered of a file between operations: it serves reads without HDF5, and never longer than the file stays as
// it is. That its answers are those of HDF5 is looked for with damaged files, too: see docs/fuzzing.md.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/file_in_use.h"
#include "h5/reader_pool.h"
#include "support/raw_file.h"
#include "support/two_states.h"

namespace {

using namespace orv_test;
using orvio::h5::FileInUse;
using orvio::h5::IsIndexed;
using orvio::h5::ShortLease;

class FileIndex : public TwoStates {
 protected:
  /// Whether readers of the library need no HDF5 for the file now.
  bool IsServed() const {
    bool served = false;
    orvio::h5::EntryVoid([&] {
      const FileInUse index(path_.c_str());
      const ShortLease reader(path_.c_str());
      served = IsIndexed(reader->GetFileId());
    });
    return served;
  }
};

TEST_F(FileIndex, ServesReadsOfAFileThatStaysAsItIs) {
  EXPECT_TRUE(IsServed());
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_TRUE(IsServed());
}

TEST_F(FileIndex, TakesBackslashesForSlashes) {
  std::string path = path_;
  std::ranges::replace(path, '/', '\\');
  bool served_at_once = false;
  bool served_later = true;
  orvio::h5::EntryVoid([&] {
    {
      const FileInUse index(path.c_str());
      served_at_once =
          IsIndexed(ShortLease(path_.c_str())->GetFileId()) && IsIndexed(ShortLease(path.c_str())->GetFileId());
    }
    served_later = IsIndexed(ShortLease(path.c_str())->GetFileId());
  });
  EXPECT_TRUE(served_at_once);
  EXPECT_FALSE(served_later);
}

TEST_F(FileIndex, IsOfNoUseForAFileWithoutAName) {
  orvio::h5::EntryVoid([] {
    const FileInUse nothing("");
    const FileInUse null(nullptr);
  });
  EXPECT_EQ(orvio::process().file_in_use, nullptr);
}

TEST_F(FileIndex, StepsOfAnOperationFindTheGroupOfABlockOnce) {
  orvio::h5::EntryVoid([&] {
    const FileInUse use(path_.c_str());
    const ShortLease reader(path_.c_str());
    const hid_t file = reader->GetFileId();
    EXPECT_LT(FileInUse::FindGroup(file, "first"), 0);
    FileInUse::RememberGroup(file, "first", file);
    EXPECT_EQ(FileInUse::FindGroup(file, "first"), file);
    EXPECT_LT(FileInUse::FindGroup(file, "second"), 0);
    EXPECT_LT(FileInUse::FindGroup(file + 1, "first"), 0);
  });
  orvio::h5::EntryVoid([&] {
    const FileInUse use(path_.c_str());
    const ShortLease reader(path_.c_str());
    EXPECT_LT(FileInUse::FindGroup(reader->GetFileId(), "first"), 0) << "an operation begins anew";
  });
}

TEST_F(FileIndex, IsSwitchedOffAndOn) {
  EXPECT_EQ(ORVSetFileIndex(0), 1);
  EXPECT_FALSE(IsServed());
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  EXPECT_EQ(ORVSetFileIndex(2), 0);  // no such mode
  EXPECT_EQ(ORVSetFileIndex(1), 0);
  EXPECT_TRUE(IsServed());
}

TEST_F(FileIndex, ServesNothingWithoutTheLookAtTheFile) {
  EXPECT_EQ(ORVSetFileCheck(0), 1);
  EXPECT_FALSE(IsServed());
  EXPECT_EQ(ORVSetFileCheck(1), 0);
}

TEST_F(FileIndex, ForgetsAFileInWhichAValueWasOverwritten) {
  EXPECT_EQ(Fetch(2), (std::vector<float>{20, 21, 22}));
  usleep(20'000);  // a step of the clock that the file's times are taken from
  Overwrite(99);
  EXPECT_EQ(Fetch(2), (std::vector<float>{99, 99, 99}));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
}

TEST_F(FileIndex, ForgetsAFileThatTheLibraryHasWritten) {
  MaySilenceHdf5();
  ASSERT_EQ(WriteState(3, {31, 32}), 0);
  EXPECT_EQ(Fetch(3), (std::vector<float>{31, 32}));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
}

TEST_F(FileIndex, ForgetsAFileThatWasReplaced) {
  const std::string other = TempPath("other");
  std::filesystem::copy_file(path_, other);
  {
    const Id file(H5Fopen(other.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "file");
    const Id values(H5Dopen2(file.get(), kValues, H5P_DEFAULT), "values");
    const float all[] = {5, 6, 7};
    Check(H5Dwrite(values.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, all), "write");
  }
  std::filesystem::rename(other, path_);
  EXPECT_EQ(Fetch(2), (std::vector<float>{5, 6, 7}));
}

TEST_F(FileIndex, ForgetsAFileThatWasCut) {
  std::filesystem::resize_file(path_, std::filesystem::file_size(path_) / 2);
  EXPECT_EQ(Fetch(2), std::vector<float>{});
  EXPECT_FALSE(IsServed());
}

TEST_F(FileIndex, ForgetsAFileThatIsGone) {
  std::filesystem::remove(path_);
  EXPECT_EQ(Fetch(2), std::vector<float>{});
  std::ofstream(path_) << "no result file";
  EXPECT_EQ(Fetch(2), std::vector<float>{});
}

TEST_F(FileIndex, DoesNotTrustAFileThatChangedAMomentAgo) {
  orvio::process().clock_step = 1000;
  const std::string other = TempPath("young");
  std::filesystem::copy_file(path_, other);
  const std::string before = std::exchange(path_, other);
  EXPECT_FALSE(IsServed());
  EXPECT_FALSE(IsServed());
  path_ = before;
  orvio::process().clock_step = -1;
}

TEST_F(FileIndex, KeepsTheStateThatAReaderSawWhenTheFileChangesMeanwhile) {
  orvio::h5::EntryVoid([&] {
    const FileInUse index(path_.c_str());
    const ShortLease reader(path_.c_str());
    const std::string block = std::string(kValues).substr(0, std::string(kValues).rfind('/'));
    const hid_t group = reader->OpenGroup(reader->GetFileId(), block.c_str(), H5P_DEFAULT);
    ASSERT_TRUE(IsIndexed(group));
    Commit({97, 98, 99});
    hsize_t dims[] = {3, 1};
    float values[3] = {};
    ASSERT_EQ(reader->ReadDatasetAll(group, "res", 2, dims, ORV_FLOAT, values), 0);
    EXPECT_EQ(std::vector<float>(values, values + 3), (std::vector<float>{20, 21, 22}));
  });
  EXPECT_EQ(Fetch(2), (std::vector<float>{97, 98, 99}));
}

TEST_F(FileIndex, LeavesNothingOpen) {
  EXPECT_EQ(Fetch(1).size(), 3U);
  EXPECT_TRUE(IsServed());
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    EXPECT_NE(std::filesystem::read_symlink(entry.path(), error).string(), path_);
  }
}

/// A host's block, which asks HDF5 about the group that it is handed.
class HostBlock : public ORVResult {
 public:
  HostBlock() : ORVResult(ORV_RESULT_ENTITY) {}
  int ReadData(hid_t group, int /*flags*/) override {
    is_group_ = H5Iget_type(group) == H5I_GROUP;
    return 0;
  }
  bool is_group() const { return is_group_; }

 private:
  bool is_group_ = false;
};

TEST_F(FileIndex, HandsGroupsOfHdf5ToTheBlocksOfAHost) {
  ASSERT_TRUE(IsServed());
  HostBlock block;
  block.SetEntityAndVarName("NODE", "Speed");
  EXPECT_EQ(block.ReadBlock(path_.c_str(), 2, ORV_READ_DATA), 0);
  EXPECT_TRUE(block.is_group());
}

TEST_F(FileIndex, ReadsWhatItDoesNotTellByHdf5) {
  {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "file");
    Check(H5Ldelete(file.get(), kValues, H5P_DEFAULT), "delete");
    const hsize_t size[] = {3, 1}, chunk[] = {2, 1};
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 2, chunk), "chunk");
    const Id space(H5Screate_simple(2, size, nullptr), "space");
    const Id values(
        H5Dcreate2(file.get(), kValues, H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "values");
    const float all[] = {1, 2, 3};
    Check(H5Dwrite(values.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, all), "write");
  }
  ASSERT_TRUE(IsServed());
  EXPECT_EQ(Fetch(2), (std::vector<float>{1, 2, 3}));
  EXPECT_EQ(Fetch(1), (std::vector<float>{10, 11, 12}));
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
}

}  // namespace
