// How files, groups and datasets are opened, whatever the host or the environment does with HDF5. What lies in files and
// is kept out: hostile_file_test.

#include "h5/file_access.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include "h5/entry.h"
#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"
#include "support/full_disk.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;

class FileAccess : public H5Test {
 protected:
  FileAccess() {
    other_.group("/x/y");
    file_.at("/post/constant/b").dataset<std::int32_t>("d", {1}, {7}).external_link("out", other_.path(), "/x");
    path_ = file_.path();
  }

  /// Expects that a dataset is read and that a link into another file is not followed.
  void ExpectOpensAsEver() {
    OH5Reader reader(path_.c_str(), 0);
    const hid_t block = reader.OpenGroup(reader.GetFileId(), "/post/constant/b", 0);
    const hsize_t dims[] = {1};
    std::int32_t value = 0;
    EXPECT_EQ(OH5Read_DATASET(block, "d", 1, dims, ORV_INT, &value), 0);
    EXPECT_EQ(value, 7);
    EXPECT_LT(reader.OpenGroup(block, "out", 0), 0);
    EXPECT_LT(reader.OpenGroup(block, "out/y", 0), 0);
  }

  ForgedFile other_{"other"};
  ForgedFile file_{"access"};
  std::string path_;
};

TEST_F(FileAccess, GoesOnAfterAHostHasClosedHdf5) {
  ExpectOpensAsEver();
  Check(H5close(), "close");
  ExpectOpensAsEver();
}

TEST_F(FileAccess, DoesNotTakeTheListsOfAHostForItsOwnAfterHdf5WasClosed) {
  ExpectOpensAsEver();
  Check(H5close(), "close");
  std::vector<Id> lists;  // they get the numbers that the library's lists had
  for (int i = 0; i < 4; ++i) {
    for (const hid_t kind : {H5P_FILE_ACCESS, H5P_GROUP_ACCESS, H5P_DATASET_ACCESS}) {
      lists.emplace_back(H5Pcreate(kind), "list");
    }
  }
  ExpectOpensAsEver();
}

TEST_F(FileAccess, KeepsALinkOutsideShutForTheAccessListOfAHost) {
  const Id follows(H5Pcreate(H5P_GROUP_ACCESS), "list");
  OH5Reader reader(path_.c_str(), 0);
  EXPECT_LT(reader.OpenGroup(reader.GetFileId(), "/post/constant/b/out", follows.get()), 0);
  EXPECT_LT(reader.OpenObject(reader.GetFileId(), "/post/constant/b/out", follows.get()), 0);
  EXPECT_GT(reader.OpenGroup(reader.GetFileId(), "/post/constant/b", follows.get()), 0);
}

TEST_F(FileAccess, KeepsWhatElseTheAccessListOfAHostSays) {
  ForgedFile file("links");
  file.at("/a").soft_link("once", "/a").soft_link("twice", "/a/once");
  const Id few(H5Pcreate(H5P_GROUP_ACCESS), "list");
  Check(H5Pset_nlinks(few.get(), 1), "links");
  OH5Reader reader(file.path().c_str(), 0);
  EXPECT_GT(reader.OpenGroup(reader.GetFileId(), "/a/once", few.get()), 0);
  EXPECT_LT(reader.OpenGroup(reader.GetFileId(), "/a/twice", few.get()), 0);
  EXPECT_LT(reader.OpenObject(reader.GetFileId(), "/a/twice", few.get()), 0);
  EXPECT_GT(reader.OpenGroup(reader.GetFileId(), "/a/twice", 0), 0);
}

TEST_F(FileAccess, ReadsAFileThatAnotherProcessHasLocked) {
  const int holder = open(path_.c_str(), O_RDWR);
  ASSERT_EQ(flock(holder, LOCK_EX | LOCK_NB), 0);
  ExpectOpensAsEver();
  close(holder);
}

TEST_F(FileAccess, LeavesNoLockOnAFileThatIsRead) {
  const OH5Reader reader(path_.c_str(), 0);
  const int other = open(path_.c_str(), O_RDWR);
  EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
}

TEST_F(FileAccess, LocksAFileThatIsWrittenUntilItIsClosed) {
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  const int other = open(path_.c_str(), O_RDWR);
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
}

TEST_F(FileAccess, DoesNotTruncateAFileThatAnotherProcessHasLocked) {
  const std::string before = BytesOf(path_);
  const int holder = open(path_.c_str(), O_RDWR);
  ASSERT_EQ(flock(holder, LOCK_EX | LOCK_NB), 0);
  hid_t file = -1;
  EXPECT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_CREATE, &file), 4);
  close(holder);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(FileAccess, OpensAFileTwiceInOneProcessWhileItIsWritten) {
  hid_t first = -1, second = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &first), 0);
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &second), 0);
  EXPECT_EQ(OH5WriteCloseFile(second), 0);
  EXPECT_EQ(OH5WriteCloseFile(first), 0);
  ExpectOpensAsEver();
}

TEST_F(FileAccess, LetsGoOfAFileThatCouldNotBeMadeOnAFullDisk) {
  const std::string path = TempPath("made.orv");
  {
    const FullDisk full(1000);
    hid_t file = -1;
    ASSERT_EQ(OH5WriteOpenFile(path.c_str(), ORV_FILE_CREATE, &file), 0);
    EXPECT_NE(OH5CreateSkeleton(file) + OH5WriteCloseFile(file), 0);
  }
  EXPECT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), 0);
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path.c_str(), ORV_FILE_CREATE, &file), 0);
  EXPECT_EQ(OH5CreateSkeleton(file), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  EXPECT_TRUE(RawFile(path).exists("/post/constant"));
}

/// Writes a dataset by HDF5 alone into a file of the library, and ends the process with 0 when HDF5 tells that it fails.
[[noreturn]] void WriteByItselfOnAFullDisk(const std::string& path) {
  hid_t file = -1;
  if (OH5WriteOpenFile(path.c_str(), ORV_FILE_APPEND, &file) != 0) std::_Exit(99);
  const FullDisk full(path, 0);
  const std::vector<double> values(100000, 1);
  const hsize_t extent = values.size();
  const hid_t space = H5Screate_simple(1, &extent, nullptr);
  const hid_t dataset = H5Dcreate2(file, "mine", H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  const herr_t written = H5Dwrite(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
  std::_Exit(written < 0 && H5Fflush(file, H5F_SCOPE_GLOBAL) < 0 && OH5WriteCloseFile(file) != 0 ? 0 : 1);
}

TEST_F(FileAccess, TellsAHostThatWritesByItselfOfAFullDisk) {
  const std::string before = BytesOf(path_);
  // In a process of its own: HDF5 keeps objects open that it could not flush.
  EXPECT_EXIT(WriteByItselfOnAFullDisk(path_), testing::ExitedWithCode(0), "");
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(FileAccess, HandsTheDescriptorOfTheFileToAHostThatAsks) {
  const OH5Reader reader(path_.c_str(), 0);
  void* handle = nullptr;
  ASSERT_GE(H5Fget_vfd_handle(const_cast<OH5Reader&>(reader).GetFileId(), H5P_DEFAULT, &handle), 0);
  char signature[4] = {};
  EXPECT_EQ(pread(*static_cast<int*>(handle), signature, 4, 0), 4);
  EXPECT_EQ(std::string(signature, 4), "\x89HDF");
}

/// The settings of HDF5 that come with the environment, as they are after HDF5 has started anew.
class Environment : public FileAccess {
 protected:
  ~Environment() override {
    for (const char* name : {"HDF5_DRIVER", "HDF5_VOL_CONNECTOR", "HDF5_USE_FILE_LOCKING"}) unsetenv(name);
    (void)H5close();
  }

  static void Start(const char* name, const char* value) {
    setenv(name, value, 1);
    Check(H5close(), "close");
    Check(H5open(), "open");
  }

  /// Whether HDF5 itself opens the file with what the environment says.
  bool PlainHdf5Opens() const {
    const orvio::h5::QuietHdf5 quiet;
    const orvio::h5::File file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    return static_cast<bool>(file);
  }
};

TEST_F(Environment, DoesNotChooseTheDriver) {
  Start("HDF5_DRIVER", "multi");
  ASSERT_FALSE(PlainHdf5Opens());
  ExpectOpensAsEver();
}

TEST_F(Environment, DoesNotChooseTheConnector) {
  Start("HDF5_VOL_CONNECTOR", "pass_through under_vol=0;under_info={}");
  char name[64] = {};
  {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
    Check(H5VLget_connector_name(file.get(), name, sizeof name), "name");
    ASSERT_STREQ(name, "pass_through");
  }
  OH5Reader reader(path_.c_str(), 0);
  Check(H5VLget_connector_name(reader.GetFileId(), name, sizeof name), "name");
  EXPECT_STREQ(name, "native");
}

TEST_F(Environment, DoesNotMakeReadersLock) {
  Start("HDF5_USE_FILE_LOCKING", "TRUE");
  const OH5Reader reader(path_.c_str(), 0);
  const int other = open(path_.c_str(), O_RDWR);
  EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
}

TEST_F(Environment, DoesNotKeepWritersFromLocking) {
  Start("HDF5_USE_FILE_LOCKING", "FALSE");
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  const int other = open(path_.c_str(), O_RDWR);
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  close(other);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
}

}  // namespace
