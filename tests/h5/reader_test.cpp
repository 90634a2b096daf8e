// The reader of files on disk, operation by operation, and the count of states. What it reads of datasets and
// attributes: dataset_read_test, selective_read_test, attribute_test; the file header: file_header_test; files that
// lead elsewhere: hostile_file_test; what it asks of itself: reader_interface_test.

#include "orvio/oh5_reader.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr unsigned kReadOnly = 0, kReadWrite = 1;

class Reader : public H5Test {
 protected:
  std::string TextFile() const {
    std::ofstream(TempPath("text")) << "no HDF5 file, but a text of some length";
    return TempPath("text");
  }
  /// The file, opened at the first call.
  OH5Reader& Open() {
    if (!reader_) reader_ = std::make_unique<OH5Reader>(file_.path().c_str(), kReadOnly);
    EXPECT_GE(reader_->GetFileId(), 0);
    return *reader_;
  }
  hid_t Group(const char* path) { return Open().OpenGroup(Open().GetFileId(), path, 0); }

  ForgedFile file_{"reader"};
  std::unique_ptr<OH5Reader> reader_;
};

TEST_F(Reader, OpensForReading) {
  OH5Reader reader;
  EXPECT_EQ(reader.GetFileId(), -1);
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  unsigned intent = 99;
  EXPECT_GE(H5Fget_intent(reader.GetFileId(), &intent), 0);
  EXPECT_EQ(intent, H5F_ACC_RDONLY);
}

TEST_F(Reader, OpensForReadingAndWriting) {
  const OH5Reader closed;
  OH5Reader reader(file_.path().c_str(), kReadWrite);
  unsigned intent = 99;
  EXPECT_GE(H5Fget_intent(reader.GetFileId(), &intent), 0);
  EXPECT_EQ(intent, H5F_ACC_RDWR);
}

TEST_F(Reader, RefusesATextFileForReadingAndForWriting) {
  const std::string path = TextFile();
  const std::string before = BytesOf(path);
  for (const unsigned flags : {kReadOnly, kReadWrite}) {
    OH5Reader reader;
    EXPECT_EQ(reader.OpenFile(path.c_str(), flags), 1);
    EXPECT_EQ(reader.GetFileId(), -1);
  }
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(Reader, RefusesAMissingFileAndMakesNone) {
  OH5Reader reader(TempPath("nowhere").c_str(), kReadWrite);
  EXPECT_EQ(reader.GetFileId(), -1);
  EXPECT_EQ(reader.OpenFile(TempPath("nowhere").c_str(), kReadOnly), 1);
  EXPECT_FALSE(std::ifstream(TempPath("nowhere")).good());
}

TEST_F(Reader, ClosesTheFormerFileFirst) {
  const hid_t former = Open().GetFileId();
  EXPECT_EQ(reader_->OpenFile(nullptr, kReadOnly), 1);
  EXPECT_EQ(reader_->GetFileId(), -1);
  EXPECT_EQ(H5Iis_valid(former), 0);
  EXPECT_EQ(reader_->OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_EQ(reader_->OpenFile(TextFile().c_str(), kReadOnly), 1);
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
}

TEST_F(Reader, AnswersOneForACloseThatLosesAChange) {
  file_.at("/post/constant").dataset<std::int32_t>("d", {1}, {7});
  const std::string path = file_.path();
  const std::string journal = path + "-journal";
  OH5Reader reader(path.c_str(), kReadWrite);
  ASSERT_TRUE(std::filesystem::create_directory(journal));  // the change cannot be noted there
  const hsize_t dims[] = {1};
  const std::int32_t value = 8;
  EXPECT_EQ(OH5Write_INT(reader.GetFileId(), "/post/constant/d", 1, dims, ORV_INT, &value), 0);
  EXPECT_EQ(reader.CloseFile(), 1);
  EXPECT_EQ(reader.GetFileId(), -1);
  EXPECT_NE(LastText(), kUntouched);
  ASSERT_TRUE(std::filesystem::remove(journal));
  EXPECT_EQ(RawFile(path).values<std::int32_t>("/post/constant/d"), std::vector<std::int32_t>{7});
}

TEST_F(Reader, AnswersZeroForACloseThatKeepsAChange) {
  file_.at("/post/constant").dataset<std::int32_t>("d", {1}, {7});
  const std::string path = file_.path();
  OH5Reader reader(path.c_str(), kReadWrite);
  const hsize_t dims[] = {1};
  const std::int32_t value = 8;
  EXPECT_EQ(OH5Write_INT(reader.GetFileId(), "/post/constant/d", 1, dims, ORV_INT, &value), 0);
  EXPECT_EQ(reader.CloseFile(), 0);
  EXPECT_EQ(RawFile(path).values<std::int32_t>("/post/constant/d"), std::vector<std::int32_t>{8});
}

TEST_F(Reader, ClosesOnceAndThenAnswersOne) {
  EXPECT_EQ(Open().CloseFile(), 0);
  EXPECT_EQ(reader_->CloseFile(), 1);
  EXPECT_EQ(reader_->GetFileId(), -1);
}

TEST_F(Reader, ClosesObjectsOfEachKindThatWereLeftOpen) {
  file_.at("/post/constant/b").dataset<float>("d", {1}, {1}).integer("a", 1).raw([](hid_t here) {
    const Id type(H5Tcopy(H5T_NATIVE_INT), "type");
    Check(H5Tcommit2(here, "t", type.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "commit");
  });
  const hid_t file = Open().GetFileId();
  const hid_t left[] = {H5Gopen2(file, "/post/constant/b", H5P_DEFAULT),
                        H5Dopen2(file, "/post/constant/b/d", H5P_DEFAULT),
                        H5Aopen_by_name(file, "/post/constant/b", "a", H5P_DEFAULT, H5P_DEFAULT),
                        H5Topen2(file, "/post/constant/b/t", H5P_DEFAULT)};
  for (const hid_t id : left) EXPECT_GE(id, 0);
  EXPECT_EQ(reader_->CloseFile(), 0);
  for (const hid_t id : left) EXPECT_EQ(H5Iis_valid(id), 0);
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
}

TEST_F(Reader, LeavesWhatAHostOpenedThroughAnIdOfItsOwn) {
  const Location host(file_.path(), "/post/constant");
  EXPECT_EQ(Open().CloseFile(), 0);
  EXPECT_GT(H5Iis_valid(host.id()), 0);
  EXPECT_GT(H5Iis_valid(host.file()), 0);
}

TEST_F(Reader, ClosesItsFileWhenItDies) {
  Open();
  (void)Group("/post");
  reader_.reset();
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
}

TEST_F(Reader, HasTheFixedAnswersOfItsKind) {
  OH5Reader reader;
  int major = 9, minor = 9, patch = 9;
  reader.ReadReaderVersion(major, minor, patch);
  EXPECT_EQ(major, 2);
  EXPECT_EQ(minor, 0);
  EXPECT_EQ(patch, 0);
  EXPECT_FALSE(reader.GetReaderFlag());
  std::string texts[4] = {"a", "b", "c", "d"};
  EXPECT_EQ(reader.GetLocationStrings(texts[0], texts[1], texts[2], texts[3]), 1);
  for (const std::string& text : texts) EXPECT_EQ(text, "");
  std::string path = "before";
  EXPECT_EQ(reader.GetPostPath(path), 0);
  EXPECT_EQ(path, "before/post");
}

TEST_F(Reader, ComparesTheMajorVersionOfTheFile) {
  EXPECT_FALSE(Open().IsFileMajorAtMost(0));
  EXPECT_FALSE(reader_->IsFileMajorAtMost(1));
  EXPECT_TRUE(reader_->IsFileMajorAtMost(2));
  EXPECT_TRUE(reader_->IsFileMajorAtMost(3));
}

TEST_F(Reader, ForgetsTheMajorVersionWithTheFile) {
  ForgedFile old("old");
  old.header(1, 2, 0);
  EXPECT_FALSE(Open().IsFileMajorAtMost(1));
  EXPECT_EQ(reader_->OpenFile(old.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader_->IsFileMajorAtMost(1));
  EXPECT_FALSE(reader_->IsFileMajorAtMost(0));
}

TEST_F(Reader, TakesAFileWithoutAVersionForOneOfAnyMajor) {
  file_.at("/post").drop("orvheader");
  EXPECT_TRUE(Open().IsFileMajorAtMost(0));
  OH5Reader closed;
  EXPECT_TRUE(closed.IsFileMajorAtMost(0));
}

TEST_F(Reader, ComparesAMajorVersionBelowZeroAsALargeNumber) {
  file_.header(-2, 0, 0);
  EXPECT_FALSE(Open().IsFileMajorAtMost(2147483647U));
  EXPECT_FALSE(reader_->IsFileMajorAtMost(4294967293U));
  EXPECT_TRUE(reader_->IsFileMajorAtMost(4294967294U));
}

TEST_F(Reader, OpensAndClosesGroups) {
  const hid_t group = Group("/post/constant");
  EXPECT_GE(group, 0);
  EXPECT_EQ(reader_->CloseGroup(group), 0);
  EXPECT_EQ(reader_->CloseGroup(group), 1);
  EXPECT_EQ(reader_->CloseGroup(-1), 1);
  EXPECT_LT(Group("/nowhere"), 0);
  EXPECT_LT(Group(nullptr), 0);
  EXPECT_LT(reader_->OpenGroup(-1, "/post", 0), 0);
}

TEST_F(Reader, CountsTheLinksOfAGroup) {
  file_.at("/post/constant").group("a").group("b").soft_link("c", "/nowhere");
  EXPECT_EQ(Open().GetNumLinks(Group("/post/constant")), 3);
  EXPECT_EQ(Open().GetNumLinks(Group("/post/singlestate")), 0);
  EXPECT_EQ(Open().GetNumLinks(-1), 0);
}

TEST_F(Reader, FindsChildrenByTheirPlaceInTheOrderOfNames) {
  file_.at("/post/constant").group("b").group("a").group("a/inner");
  const hid_t group = Group("/post/constant");
  std::string name;
  hid_t child = 0;
  EXPECT_EQ(reader_->GetChildByIndex(group, 0, name, &child, 0), 0);
  EXPECT_EQ(name, "a");
  EXPECT_EQ(reader_->GetNumLinks(child), 1);
  EXPECT_EQ(reader_->GetChildByIndex(group, 1, name, nullptr, 0), 0);
  EXPECT_EQ(name, "b");
}

TEST_F(Reader, AnswersOneForAChildPastTheEnd) {
  file_.at("/post/constant").group("a");
  const hid_t group = Group("/post/constant");
  for (const int index : {1, 1000000, -1}) {
    std::string name = "before";
    hid_t child = 5;
    EXPECT_EQ(reader_->GetChildByIndex(group, index, name, &child, 0), 1) << index;
    EXPECT_EQ(name, "before") << index;
    EXPECT_EQ(child, -1) << index;
  }
}

TEST_F(Reader, NamesAChildThatIsNoGroupWithoutOpeningIt) {
  file_.at("/post/constant").dataset<float>("a", {1}, {1}).soft_link("b", "/nowhere");
  const hid_t group = Group("/post/constant");
  for (const char* expected : {"a", "b"}) {
    std::string name;
    hid_t child = 5;
    EXPECT_EQ(reader_->GetChildByIndex(group, expected[0] - 'a', name, &child, 0), 0);
    EXPECT_EQ(name, expected);
    EXPECT_LT(child, 0);
  }
}

TEST_F(Reader, FailsForAChildWhoseNameDoesNotFit512Bytes) {
  file_.at("/post/constant").group(std::string(511, 'a')).group(std::string(512, 'b'));
  const hid_t group = Group("/post/constant");
  std::string name = "before";
  hid_t child = 5;
  EXPECT_EQ(reader_->GetChildByIndex(group, 1, name, &child, 0), 1);
  EXPECT_EQ(name, "before");
  EXPECT_EQ(child, -1);
  EXPECT_EQ(reader_->GetChildByIndex(group, 0, name, &child, 0), 0);
  EXPECT_EQ(name, std::string(511, 'a'));
  EXPECT_GE(child, 0);
}

constexpr H5Z_filter_t kOwnFilter = 32001;

size_t PassThrough(unsigned, size_t, const unsigned[], size_t bytes, size_t*, void**) { return bytes; }

class DatasetInfo : public Reader {
 protected:
  int Get(const char* name, bool with_filters = true) {
    return Open().GetDatasetInfo(Open().GetFileId(), std::string("/post/constant/") + name, rank_, dims_, total_, type_,
                                 with_filters ? &filters_ : nullptr);
  }
  int rank_ = 9;
  hsize_t dims_[H5S_MAX_RANK] = {99, 99, 99};
  hsize_t total_ = 9;
  _ORVDataType type_ = ORV_NO_DATASET;
  std::vector<int> filters_ = {7};
};

TEST_F(DatasetInfo, GivesRankExtentsCountAndType) {
  file_.at("/post/constant").dataset<double>("d", {2, 3}, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(Get("d"), 0);
  EXPECT_EQ(rank_, 2);
  EXPECT_EQ(dims_[0], 2u);
  EXPECT_EQ(dims_[1], 3u);
  EXPECT_EQ(dims_[2], 99u);
  EXPECT_EQ(total_, 6u);
  EXPECT_EQ(type_, ORV_DOUBLE);
  EXPECT_EQ(filters_, std::vector<int>{7});
}

TEST_F(DatasetInfo, AppendsTheFiltersInTheirOrder) {
  file_.at("/post/constant").raw([](hid_t here) {
    const hsize_t dims[] = {4};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
    Check(H5Pset_shuffle(list.get()), "shuffle");
    Check(H5Pset_scaleoffset(list.get(), H5Z_SO_INT, 0), "scale-offset");
    Check(H5Pset_fletcher32(list.get()), "checksum");
    const Id made(H5Dcreate2(here, "d", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
  });
  EXPECT_EQ(Get("d"), 0);
  EXPECT_EQ(filters_, (std::vector<int>{7, H5Z_FILTER_SHUFFLE, H5Z_FILTER_SCALEOFFSET, H5Z_FILTER_FLETCHER32}));
  EXPECT_EQ(Get("d", false), 0);
  EXPECT_EQ(type_, ORV_INT);
}

TEST_F(DatasetInfo, TellsOfFiltersThatAreNotThoseOfTheFormat) {
  const H5Z_class2_t filter = {H5Z_CLASS_T_VERS, kOwnFilter, 1, 1, "own", nullptr, nullptr, PassThrough};
  Check(H5Zregister(&filter), "register");
  file_.at("/post/constant").raw([](hid_t here) {
    const hsize_t dims[] = {4};
    const std::int32_t values[] = {1, 2, 3, 4};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
    Check(H5Pset_nbit(list.get()), "nbit");
    Check(H5Pset_filter(list.get(), kOwnFilter, H5Z_FLAG_OPTIONAL, 0, nullptr), "own filter");
    const Id made(H5Dcreate2(here, "d", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
    Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "values");
  });
  (void)file_.path();  // closed
  Check(H5Zunregister(kOwnFilter), "unregister");
  const hid_t place = Group("/post/constant");
  EXPECT_EQ(Get("d"), 0);
  EXPECT_EQ(rank_, 1);
  EXPECT_EQ(dims_[0], 4u);
  EXPECT_EQ(type_, ORV_INT);
  EXPECT_EQ(filters_, (std::vector<int>{7, H5Z_FILTER_NBIT, kOwnFilter}));
  auto type = ORV_UNKNOWN_TYPE;
  EXPECT_EQ(OH5Read_DATATYPE(place, "d", &type), 0);
  EXPECT_EQ(type, ORV_INT);
  const hsize_t four[] = {4};
  std::int32_t values[4] = {-1, -1, -1, -1};
  EXPECT_EQ(OH5Read_DATASET(place, "d", 1, four, ORV_INT, values), 1);
  EXPECT_EQ(values[0], -1);
}

TEST_F(DatasetInfo, GivesAnUnknownTypeWithSuccess) {
  file_.at("/post/constant").raw([](hid_t here) {
    const hsize_t dims[] = {4};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id made(H5Dcreate2(here, "d", H5T_STD_I8LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "d");
  });
  EXPECT_EQ(Get("d"), 0);
  EXPECT_EQ(type_, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(total_, 4u);
}

TEST_F(DatasetInfo, FailsForWhatIsNoDatasetWithARank) {
  file_.at("/post/constant").scalar<double>("scalar", 1).group("group").soft_link("lost", "/nowhere");
  for (const char* name : {"scalar", "group", "lost", "nowhere", "nowhere/deeper"}) {
    rank_ = 9;
    total_ = 9;
    EXPECT_EQ(Get(name), 1) << name;
    EXPECT_EQ(rank_, 0) << name;
    EXPECT_EQ(total_, 0u) << name;
  }
  EXPECT_EQ(Open().GetDatasetInfo(-1, "scalar", rank_, dims_, total_, type_, nullptr), 1);
  EXPECT_EQ(filters_, std::vector<int>{7});
}

TEST_F(Reader, OpensAndClosesObjectsOfAnyKind) {
  file_.at("/post/constant").dataset<float>("d", {1}, {1});
  const hid_t dataset = Open().OpenObject(Open().GetFileId(), "/post/constant/d", 0);
  const hid_t group = Open().OpenObject(Open().GetFileId(), "/post/constant", 0);
  EXPECT_EQ(H5Iget_type(dataset), H5I_DATASET);
  EXPECT_EQ(H5Iget_type(group), H5I_GROUP);
  EXPECT_EQ(reader_->CloseObject(dataset), 0);
  EXPECT_EQ(reader_->CloseObject(dataset), 1);
  EXPECT_EQ(reader_->CloseObject(group), 0);
  EXPECT_LT(Open().OpenObject(Open().GetFileId(), "/nowhere", 0), 0);
  EXPECT_LT(Open().OpenObject(Open().GetFileId(), nullptr, 0), 0);
}

TEST_F(Reader, LinkInfoLeavesBothOutputsEmpty) {
  file_.at("/post/constant").soft_link("soft", "/post").external_link("out", "other", "/post").group("hard");
  for (const char* name : {"soft", "out", "hard", "nowhere"}) {
    std::string target = "before", file = "before";
    Open().GetLinkInfo(Open().GetFileId(), std::string("/post/constant/") + name, target, file);
    EXPECT_EQ(target, "") << name;
    EXPECT_EQ(file, "") << name;
  }
}

TEST_F(Reader, ListsTheRootGroupsThatHoldAReadableHeader) {
  const std::string long_name(600, 'z');
  file_.at("/").group("headless").dataset<float>("values", {1}, {1}).soft_link("again", "/post");
  file_.soft_link("lost", "/nowhere").hard_link("second", "/post").group("numbers").group(long_name);
  file_.at("/numbers/orvheader").scalar<double>("orvheader", 2);
  file_.at("/" + long_name).hard_link("orvheader", "/post/orvheader");
  std::vector<std::string> roots = {"before"};
  Open().ListPostRoots(roots);
  EXPECT_EQ(roots, (std::vector<std::string>{"/again", "/post", "/second", "/" + long_name}));
}

TEST_F(Reader, ListsNoRootsWithoutAFile) {
  OH5Reader reader;
  std::vector<std::string> roots = {"before"};
  reader.ListPostRoots(roots);
  EXPECT_TRUE(roots.empty());
}

TEST_F(Reader, HandsReadsOnToTheTypedFunctions) {
  file_.at("/post/constant/b").dataset<std::int32_t>("d", {3}, {1, 2, 3}).integer("a", 7);
  const hid_t group = Group("/post/constant/b");
  hsize_t dims[] = {3}, start[] = {1}, count[] = {2};
  std::int32_t values[3] = {};
  std::int64_t value = 0;
  auto type = ORV_UNKNOWN_TYPE;
  EXPECT_EQ(reader_->ReadDatasetAll(group, "d", 1, dims, ORV_INT, values), 0);
  EXPECT_EQ(values[2], 3);
  EXPECT_EQ(reader_->ReadDatasetSelective(group, "d", 1, start, count, nullptr, nullptr, ORV_INT, values), 0);
  EXPECT_EQ(values[0], 2);
  EXPECT_EQ(reader_->ReadAttributeValue(group, "a", 0, nullptr, ORV_LONG, &value), 0);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(reader_->ReadDatasetType(group, "d", &type), 0);
  EXPECT_EQ(type, ORV_INT);
}

class NumState : public Reader {
 protected:
  int Count(const std::string& path, int status) {
    int count = 99;
    EXPECT_EQ(ReadNumState(path.c_str(), &count), status);
    return count;
  }
};

TEST_F(NumState, CountsTheStateGroups) {
  file_.at("/post/singlestate").group("state000000000001").group("state000000000002").group("state000000000003");
  EXPECT_EQ(Count(file_.path(), 0), 3);
}

TEST_F(NumState, IsZeroForAFileWithoutStates) {
  EXPECT_EQ(Count(file_.path(), 0), 0);
  file_.at("/post").drop("singlestate");
  EXPECT_EQ(Count(file_.path(), 0), 0);
}

TEST_F(NumState, IsThatOfTheFileWithSlashesForAPathWithBackslashes) {
  file_.group("/post/singlestate/state000000000001");
  std::string path = file_.path();
  std::ranges::replace(path, '/', '\\');
  EXPECT_EQ(Count(path, 0), 1);
}

TEST_F(NumState, AnswersOneForAFileThatDoesNotOpen) {
  EXPECT_EQ(Count(TempPath("nowhere"), 1), 0);
  EXPECT_EQ(Count(TextFile(), 1), 0);
  int count = 99;
  EXPECT_EQ(ReadNumState(nullptr, &count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(ReadNumState(file_.path().c_str(), nullptr), 1);
}

}  // namespace
