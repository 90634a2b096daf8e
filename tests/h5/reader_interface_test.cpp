// What the reader asks of itself: through its interface, so that a class derived from it is asked. And the places of
// its operations, by which hosts that are built already call them.

#include <string>

#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"
#include "support/virtual_place.h"

namespace {

using namespace orv_test;

constexpr unsigned kReadOnly = 0;

class ReaderInterface : public H5Test {
 protected:
  ForgedFile file_{"reader"};
};

/// Counts what the reader asks of itself.
class CountingReader : public OH5Reader {
 public:
  int CloseFile() override {
    ++closes;
    return OH5Reader::CloseFile();
  }
  int ReadFileVersion(int& major, int& minor, int& patch) override {
    ++version_reads;
    return OH5Reader::ReadFileVersion(major, minor, patch);
  }
  int closes = 0;
  int version_reads = 0;
};

TEST_F(ReaderInterface, ReadsTheMajorVersionOnceAndThroughItsInterface) {
  CountingReader reader;
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader.IsFileMajorAtMost(2));
  EXPECT_FALSE(reader.IsFileMajorAtMost(1));
  EXPECT_EQ(reader.version_reads, 1);
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader.IsFileMajorAtMost(2));
  EXPECT_EQ(reader.version_reads, 2);
}

TEST_F(ReaderInterface, ReadsTheMajorVersionAgainWhereItIsZero) {
  file_.header_bytes("no magic");
  CountingReader reader;
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader.IsFileMajorAtMost(0));
  EXPECT_TRUE(reader.IsFileMajorAtMost(0));
  EXPECT_EQ(reader.version_reads, 2);
}

TEST_F(ReaderInterface, ClosesThroughItsInterfaceBeforeItOpens) {
  CountingReader reader;
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_EQ(reader.OpenFile(nullptr, kReadOnly), 1);
  EXPECT_EQ(reader.closes, 2);
}

/// Has its data below another root, or nowhere.
class RootedReader : public OH5Reader {
 public:
  explicit RootedReader(const std::string& file) : OH5Reader(file.c_str(), kReadOnly) {}
  int GetPostPath(std::string& path) override {
    path += "/mmc";
    return status;
  }
  int status = 0;
};

TEST_F(ReaderInterface, ReadsTheVersionBelowThePathThatItsInterfaceAnswers) {
  file_.at("/mmc/orvheader").texts("orvheader", 64, {}, {"\x89ORV\r\n\x1A\n1 2 5"});
  RootedReader reader(file_.path());
  int major = 9, minor = 9, patch = 9;
  EXPECT_EQ(reader.ReadFileVersion(major, minor, patch), 0);
  EXPECT_EQ(major, 1);
  EXPECT_EQ(minor, 2);
  EXPECT_EQ(patch, 5);
}

TEST_F(ReaderInterface, AnswersTheFailureOfThatPathForTheVersion) {
  file_.at("/mmc/orvheader").texts("orvheader", 64, {}, {"\x89ORV\r\n\x1A\n1 2 5"});
  RootedReader reader(file_.path());
  reader.status = 7;
  int major = 9, minor = 9, patch = 9;
  EXPECT_EQ(reader.ReadFileVersion(major, minor, patch), 7);
  EXPECT_EQ(major, 0);
  EXPECT_EQ(minor, 0);
  EXPECT_EQ(patch, 0);
}

TEST_F(ReaderInterface, KeepsItsOperationsInTheirPlaces) {
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadReaderVersion), 2);  // the two of the destructor come first
  EXPECT_EQ(PlaceOf(&IOH5Reader::IsFileMajorAtMost), 3);
  EXPECT_EQ(PlaceOf(&IOH5Reader::OpenFile), 4);
  EXPECT_EQ(PlaceOf(&IOH5Reader::CloseFile), 5);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadFileVersion), 6);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetFileId), 7);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetPostPath), 8);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadDatasetAll), 9);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadDatasetSelective), 10);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadAttributeValue), 11);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ReadDatasetType), 12);
  EXPECT_EQ(PlaceOf(&IOH5Reader::OpenGroup), 13);
  EXPECT_EQ(PlaceOf(&IOH5Reader::CloseGroup), 14);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetNumLinks), 15);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetChildByIndex), 16);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetLocationStrings), 17);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetDatasetInfo), 18);
  EXPECT_EQ(PlaceOf(&IOH5Reader::OpenObject), 19);
  EXPECT_EQ(PlaceOf(&IOH5Reader::CloseObject), 20);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetLinkInfo), 21);
  EXPECT_EQ(PlaceOf(&IOH5Reader::ListPostRoots), 22);
  EXPECT_EQ(PlaceOf(&IOH5Reader::GetReaderFlag), 23);
}

}  // namespace
