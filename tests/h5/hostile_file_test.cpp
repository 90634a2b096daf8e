// Files that lead to other files, and names that are no regular files. Damage inside a file is for the fuzz tests.

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";

/// Opens of a file since the watch was made, by whomever.
class Opens {
 public:
  explicit Opens(const std::string& path) : watch_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    EXPECT_GE(inotify_add_watch(watch_, path.c_str(), IN_OPEN), 0);
  }
  Opens(const Opens&) = delete;
  Opens& operator=(const Opens&) = delete;
  ~Opens() { close(watch_); }

  bool HaveHappened() const {
    inotify_event event = {};
    return read(watch_, &event, sizeof event) > 0;
  }

 private:
  int watch_;
};

class HostileFile : public H5Test {
 protected:
  HostileFile() { other_.at("/post/constant/b").dataset<std::int32_t>("d", {2}, {7, 8}).group("g"); }

  /// Makes "d" as four bytes of integers whose creation list is filled by `set`.
  void ForgeDataset(const std::function<void(hid_t list, hid_t space)>& set, hsize_t count = 2) {
    file_.raw([&](hid_t here) {
      const Id space(H5Screate_simple(1, &count, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      set(list.get(), space.get());
      const Id made(H5Dcreate2(here, "d", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
    });
  }

  /// Expects that no operation gets at the values of `name`.
  void ExpectRefused(const char* name) {
    const Location place(file_.path(), kBlock);
    const hsize_t zero[] = {0}, two[] = {2};
    std::int32_t values[2] = {-1, -1};
    _ORVDataType type = ORV_UNKNOWN_TYPE;
    EXPECT_EQ(OH5Read_DATASET(place.id(), name, 1, two, ORV_INT, values), 1);
    EXPECT_EQ(OH5Read_SELECTIVE(place.id(), name, 1, zero, two, nullptr, nullptr, ORV_INT, values), 1);
    EXPECT_EQ(OH5Read_DATATYPE(place.id(), name, &type), 1);
    EXPECT_EQ(OH5CheckDataSet(place.id(), name, two, ORV_INT), 1);
    EXPECT_EQ(values[0], -1);
    OH5Reader reader;
    int rank = 9;
    hsize_t dims[H5S_MAX_RANK] = {}, total = 9;
    EXPECT_EQ(reader.GetDatasetInfo(place.id(), name, rank, dims, total, type, nullptr), 1);
    EXPECT_EQ(rank, 0);
  }

  ForgedFile other_{"other"};
  ForgedFile file_ = std::move(ForgedFile("hostile").at(kBlock));
};

TEST_F(HostileFile, WithAVirtualDatasetIsNotFollowed) {
  ForgeDataset([&](hid_t list, hid_t space) {
    Check(H5Pset_virtual(list, space, other_.path().c_str(), "/post/constant/b/d", space), "virtual");
  });
  ExpectRefused("d");
}

TEST_F(HostileFile, WithRawDataOutsideIsNotFollowed) {
  std::ofstream(TempPath("raw")) << "secret bytes";
  ForgeDataset([&](hid_t list, hid_t) { Check(H5Pset_external(list, TempPath("raw").c_str(), 0, 8), "external"); });
  ExpectRefused("d");
}

TEST_F(HostileFile, WithRawDataOutsideIsNotWrittenTo) {
  std::ofstream(TempPath("raw")) << "secret bytes";
  ForgeDataset([&](hid_t list, hid_t) { Check(H5Pset_external(list, TempPath("raw").c_str(), 0, 8), "external"); });
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const hsize_t zero[] = {0}, two[] = {2};
  const std::int32_t values[] = {1, 2};
  EXPECT_EQ(OH5Write_INT(place.id(), "d", 1, two, ORV_INT, values), 1);
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "d", 1, zero, two, nullptr, nullptr, ORV_INT, zero, values), 1);
  EXPECT_EQ(BytesOf(TempPath("raw")), "secret bytes");
}

TEST_F(HostileFile, WithALinkToADatasetOfAnotherFileIsNotFollowed) {
  file_.external_link("d", other_.path(), "/post/constant/b/d");
  ExpectRefused("d");
}

TEST_F(HostileFile, WithALinkToAGroupOfAnotherFileIsNotFollowed) {
  file_.external_link("out", other_.path(), "/post/constant/b");
  OH5Reader reader(file_.path().c_str(), 0);
  const hid_t file = reader.GetFileId();
  EXPECT_LT(reader.OpenGroup(file, "/post/constant/b/out", 0), 0);
  EXPECT_LT(reader.OpenGroup(file, "/post/constant/b/out/g", 0), 0);
  EXPECT_LT(reader.OpenObject(file, "/post/constant/b/out", 0), 0);
  const hid_t block = reader.OpenGroup(file, kBlock, 0);
  std::string name;
  hid_t child = 5;
  EXPECT_EQ(reader.GetChildByIndex(block, 0, name, &child, 0), 0);
  EXPECT_EQ(name, "out");
  EXPECT_LT(child, 0);
}

TEST_F(HostileFile, WithARoadThroughALinkOutsideIsShutForTheAccessListOfAHost) {
  file_.external_link("out", other_.path(), "/post/constant/b").soft_link("road", "/post/constant/b/out/g");
  const Id follows(H5Pcreate(H5P_GROUP_ACCESS), "list");
  OH5Reader reader(file_.path().c_str(), 0);
  const hid_t block = reader.OpenGroup(reader.GetFileId(), kBlock, follows.get());
  ASSERT_GE(block, 0);
  for (const char* name : {"out/g", "/post/constant/b/out/g", "road", "out/d"}) {
    EXPECT_LT(reader.OpenGroup(block, name, follows.get()), 0) << name;
    EXPECT_LT(reader.OpenObject(block, name, follows.get()), 0) << name;
  }
  std::string name;
  hid_t child = 5;
  EXPECT_EQ(reader.GetChildByIndex(block, 1, name, &child, follows.get()), 0);
  EXPECT_EQ(name, "road");
  EXPECT_LT(child, 0);
}

TEST_F(HostileFile, IsNotLeftWhenALinkIsAskedFor) {
  other_.at(kBlock).soft_link("s", "/secret");
  const std::string other = other_.path();
  file_.external_link("out", other, kBlock).soft_link("road", "/post/constant/b/out");
  const Location place(file_.path(), kBlock);
  OH5Reader reader;
  const Opens opens(other);
  for (const std::string name : {"out/s", "road/s", "out/g"}) {
    std::string target = "before", file = "before";
    reader.GetLinkInfo(place.id(), name, target, file);
    EXPECT_EQ(target, "") << name;
    char buffer[3000] = "before";
    OH5GetLinkTarget(place.id(), name.c_str(), buffer, nullptr);
    EXPECT_STREQ(buffer, "") << name;
    H5L_info1_t info = {};
    info.type = H5L_TYPE_SOFT;
    info.u.val_size = sizeof "/secret";
    OH5GetLinkTarget(place.id(), name.c_str(), buffer, &info);
    EXPECT_STREQ(buffer, "") << name;
  }
  EXPECT_FALSE(opens.HaveHappened());
  std::ifstream(other).get();
  EXPECT_TRUE(opens.HaveHappened());
}

TEST_F(HostileFile, WithALinkOutsideInTheMiddleOfAPathIsNotFollowed) {
  file_.external_link("out", other_.path(), "/post/constant");
  const Location place(file_.path(), kBlock);
  const hsize_t two[] = {2};
  std::int32_t values[2] = {-1, -1};
  EXPECT_EQ(OH5Read_DATASET(place.id(), "out/b/d", 1, two, ORV_INT, values), 1);
  EXPECT_EQ(values[0], -1);
}

TEST_F(HostileFile, WithALinkOutsideInTheMiddleOfAPathIsNotWrittenThrough) {
  file_.external_link("out", other_.path(), "/post/constant");
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const std::int32_t values[] = {1, 2};
  const hsize_t two[] = {2};
  const hsize_t start[] = {0};
  EXPECT_EQ(OH5Write_INT(place.id(), "out/b/new", 1, two, ORV_INT, values), 1);
  EXPECT_EQ(OH5Write_CHAR(place.id(), "out/b/new", 1, two, 4, "ab  cdef"), 1);
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "out/b/new", 1, start, two, nullptr, nullptr, ORV_INT, nullptr, values), 1);
  EXPECT_FALSE(RawFile(other_.path()).exists("/post/constant/b/new"));
}

TEST_F(HostileFile, WithARootInAnotherFileListsItNot) {
  file_.at("/").external_link("stranger", other_.path(), "/post");
  OH5Reader reader(file_.path().c_str(), 0);
  std::vector<std::string> roots;
  reader.ListPostRoots(roots);
  EXPECT_EQ(roots, std::vector<std::string>{"/post"});
}

TEST_F(HostileFile, WithSoftLinksIsFollowedInsideAndFailsForThoseThatDangle) {
  file_.dataset<std::int32_t>("d", {2}, {7, 8}).soft_link("inside", "d").soft_link("lost", "/nowhere/d");
  file_.soft_link("self", "/post/constant/b/self");
  const Location place(file_.path(), kBlock);
  const hsize_t two[] = {2};
  std::int32_t values[2] = {-1, -1};
  EXPECT_EQ(OH5Read_DATASET(place.id(), "inside", 1, two, ORV_INT, values), 0);
  EXPECT_EQ(values[1], 8);
  EXPECT_EQ(OH5Read_DATASET(place.id(), "lost", 1, two, ORV_INT, values), 1);
  EXPECT_EQ(OH5Read_DATASET(place.id(), "self", 1, two, ORV_INT, values), 1);
  OH5Reader reader;
  EXPECT_LT(reader.OpenGroup(place.id(), "lost", 0), 0);
  EXPECT_LT(reader.OpenGroup(place.id(), "self", 0), 0);
}

class NoRegularFile : public H5Test, public testing::WithParamInterface<const char*> {
 protected:
  std::string Make() const {
    const std::string kind = GetParam();
    if (kind == "device") return "/dev/zero";
    const std::string path = TempPath(kind);
    int made = -1;
    if (kind == "pipe") made = mkfifo(path.c_str(), 0600);
    if (kind == "folder") made = mkdir(path.c_str(), 0700);
    if (kind == "lost") made = symlink(TempPath("nowhere").c_str(), path.c_str());
    EXPECT_EQ(made, 0);
    return path;
  }
};

TEST_P(NoRegularFile, IsOpenedByNobody) {
  const std::string path = Make();
  OH5Reader reader;
  EXPECT_EQ(reader.OpenFile(path.c_str(), 0), 1);
  const std::string told = "File::\n\t \"" + path + "\" is no regular file";
  EXPECT_EQ(LastText() == told, std::string(GetParam()) != "lost") << LastText();
  EXPECT_EQ(reader.OpenFile(path.c_str(), 1), 1);
  int count = 9;
  EXPECT_EQ(ReadNumState(path.c_str(), &count), 1);
  EXPECT_EQ(count, 0);
  hid_t file = 5;
  EXPECT_EQ(OH5WriteOpenFile(path.c_str(), ORV_FILE_APPEND, &file), 4);
  EXPECT_LT(file, 0);
  EXPECT_EQ(OH5WriteOpenFile(path.c_str(), ORV_FILE_CREATE, &file), 4);
  EXPECT_LT(file, 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NoRegularFile, testing::Values("pipe", "folder", "device", "lost"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
