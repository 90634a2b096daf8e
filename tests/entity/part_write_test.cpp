// Writing of part blocks, looked at with HDF5 alone, for every writer version. The last test of the versions reads back
// what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "orvio/oh5_io.h"
#include "orvio/orv_part.h"
#include "orvio/orv_switches.h"
#include "orvio/orv_types.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kHeaderAndData = ORV_WRITE_HEADER | ORV_WRITE_DATA;
constexpr int kAll = kHeaderAndData | ORV_WRITE_INDEX;
constexpr char kParts[] = "/post/constant/parts/PART";
constexpr char kState1[] = "/post/singlestate/state000000000001";

std::string Padded(std::string text, std::size_t width = 256) {
  text.resize(width, ' ');
  return text;
}

/// A block of two parts with titles of 256 bytes and every list, and a file with one state and no parts at all.
class PartWrite : public OrvTest {
 protected:
  PartWrite() {
    file_.group(kState1);
    path_ = file_.path();
    std::strcpy(block_.m_etyppart, "PART");
    block_.m_npart = 2;
    block_.m_nindex = 3;
    block_.m_pid = pid_;
    block_.m_title = titles_.data();
    block_.m_mid = mid_;
    block_.m_mtyp = mtyp_;
    block_.m_pcol = pcol_;
    block_.m_pvtyp = pvtyp_;
  }
  ~PartWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int state, int what) { return block_.WriteBlock(path_.c_str(), state, what); }

  void LeaveListsOut() { block_.m_mid = block_.m_mtyp = block_.m_pcol = block_.m_pvtyp = nullptr; }

  ForgedFile file_;
  std::string path_;
  ORVPart block_;
  int pid_[2] = {7, 9};
  int mid_[2] = {71, 91};
  int mtyp_[2] = {24, 1};
  int pcol_[2] = {3, 4};
  int pvtyp_[2] = {5, 6};
  std::string titles_ = Padded("hood") + Padded("fender");
};

class PartWriteVersion : public PartWrite, public ::testing::WithParamInterface<int> {
 protected:
  PartWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }

  static bool IsOld() { return GetParam() < 3; }
  static std::string Part(const char* split) { return std::string(kParts) + "/" + (IsOld() ? split : "orvblock"); }
};

INSTANTIATE_TEST_SUITE_P(Versions, PartWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

// ---- Header and data by version

TEST_P(PartWriteVersion, StoresTheHeaderInOrder) {
  block_.m_length = 80;
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part("header");
  const std::vector<std::string> old_names = {"block", "blocktype", "etyppart", "npart", "nindex"};
  const std::vector<std::string> names = {"block", "blocktype", "etyppart", "npart", "length", "nindex"};
  EXPECT_EQ(raw.attributes(header), IsOld() ? old_names : names);
  EXPECT_EQ(raw.attribute_int(header, "block"), 100);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("parts"));
  EXPECT_EQ(raw.attribute_text(header, "etyppart"), Padded("PART"));
  EXPECT_EQ(raw.attribute_int(header, "npart"), 2);
  EXPECT_EQ(raw.attribute_int(header, "nindex"), 3);
  for (const char* name : {"block", "npart", "nindex"}) {
    EXPECT_EQ(raw.attribute_size(header, name), 8U) << name;
    EXPECT_EQ(raw.attribute_class(header, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_rank(header, name), 0) << name;
  }
  if (!IsOld()) {
    EXPECT_EQ(raw.attribute_int(header, "length"), 80);
    EXPECT_EQ(raw.attribute_size(header, "length"), 4U);
    EXPECT_EQ(raw.attribute_class(header, "length"), H5T_INTEGER);
  }
}

TEST_P(PartWriteVersion, StoresEveryListAndTellsWhatWasLeftOut) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  const std::string data = Part("data");
  if (IsOld()) {
    EXPECT_THAT(raw.children(data), ElementsAre("mid", "mtyp", "pcol", "pid", "pvtyp", "title"));
    EXPECT_THAT(raw.values<std::int32_t>(data + "/pvtyp"), ElementsAre(5, 6));
    EXPECT_THAT(raw.attributes(data), IsEmpty());
  } else {
    EXPECT_THAT(raw.children(data), ElementsAre("mid", "mtyp", "pcol", "pid", "title"));
    EXPECT_EQ(raw.attributes(data).back(), "off");
    EXPECT_EQ(raw.attribute_int(data, "off"), 0);
    EXPECT_EQ(raw.attribute_size(data, "off"), 4U);
    EXPECT_EQ(raw.attribute_class(data, "off"), H5T_INTEGER);
    EXPECT_EQ(raw.attribute_rank(data, "off"), 0);
  }
  EXPECT_THAT(raw.values<std::int32_t>(data + "/pid"), ElementsAre(7, 9));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/mid"), ElementsAre(71, 91));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/mtyp"), ElementsAre(24, 1));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/pcol"), ElementsAre(3, 4));
  EXPECT_THAT(raw.texts(data + "/title"), ElementsAre(Padded("hood"), Padded("fender")));
  for (const char* name : {"pid", "mid", "mtyp", "pcol", "title"}) {
    EXPECT_THAT(raw.shape(data + "/" + name), ElementsAre(2)) << name;
  }
  EXPECT_EQ(raw.type_size(data + "/pid"), 4U);
  EXPECT_EQ(raw.type_size(data + "/title"), 256U);
}

TEST_P(PartWriteVersion, StoresIdsAloneWhenThereIsNothingElse) {
  LeaveListsOut();
  block_.m_title = nullptr;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(Part("data")), ElementsAre("pid"));
  if (!IsOld()) {
    EXPECT_EQ(raw.attribute_int(Part("data"), "off"), 7);
  }
}

TEST_P(PartWriteVersion, LeavesABlockThatExistsAlone) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const std::string before = BytesOf(path_);
  pid_[0] = 77;
  block_.m_nindex = 9;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(Write(0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_P(PartWriteVersion, HasNoIndex) {
  ASSERT_EQ(Write(1, kAll), 0);
  const std::string block = std::string(kState1) + "/parts/PART";
  const RawFile raw(path_);
  if (IsOld()) {
    EXPECT_THAT(raw.children(block), ElementsAre("data", "header", "index"));
    EXPECT_THAT(raw.children(block + "/index"), IsEmpty());
  } else {
    EXPECT_THAT(raw.children(block), ElementsAre("orvblock"));
  }
}

TEST_P(PartWriteVersion, IsReadBackAsItWas) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  ORVPart read;
  std::strcpy(read.m_etyppart, "PART");
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(read.m_npart, 2);
  EXPECT_EQ(read.m_nindex, 3);
  EXPECT_EQ(read.m_length, 256);
  std::vector<int> pid(2), mid(2), mtyp(2), pcol(2), pvtyp(2);
  std::vector<char> titles(513);
  read.m_pid = pid.data();
  read.m_mid = mid.data();
  read.m_mtyp = mtyp.data();
  read.m_pcol = pcol.data();
  read.m_pvtyp = pvtyp.data();
  read.m_title = titles.data();
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 0, ORV_READ_DATA), 0);
  EXPECT_THAT(pid, ElementsAre(7, 9));
  EXPECT_THAT(mid, ElementsAre(71, 91));
  EXPECT_THAT(mtyp, ElementsAre(24, 1));
  EXPECT_THAT(pcol, ElementsAre(3, 4));
  EXPECT_EQ(read.m_pvtyp != nullptr, IsOld());
  EXPECT_STREQ(titles.data(), "hood");
  EXPECT_STREQ(titles.data() + 256, "fender");
}

// ---- What is left out

TEST_F(PartWrite, TellsEachListThatWasLeftOutByItsOwnBit) {
  ORVSetCurrentWriterVersion(3);
  const auto left_out = [&](const char* name, void*& list) {
    void* const kept = std::exchange(list, nullptr);
    std::strcpy(block_.m_etyppart, name);
    EXPECT_EQ(Write(0, kHeaderAndData), 0) << name;
    list = kept;
    return RawFile(path_).attribute_int(std::string("/post/constant/parts/") + name + "/orvblock", "off");
  };
  EXPECT_EQ(left_out("A", block_.m_mid), 1);
  EXPECT_EQ(left_out("B", block_.m_mtyp), 2);
  EXPECT_EQ(left_out("C", block_.m_pcol), 4);
  EXPECT_EQ(left_out("D", block_.m_pvtyp), 0);
}

TEST_F(PartWrite, DropsPropertyTypesInLaterVersionsAndSaysNothing) {
  ORVSetCurrentWriterVersion(5);
  LeaveListsOut();
  block_.m_pvtyp = pvtyp_;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(std::string(kParts) + "/orvblock"), ElementsAre("pid", "title"));
  EXPECT_EQ(raw.attribute_int(std::string(kParts) + "/orvblock", "off"), 7);
}

TEST_F(PartWrite, TellsNothingInTheHeaderAlone) {
  ORVSetCurrentWriterVersion(3);
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_FALSE(RawFile(path_).has_attribute(std::string(kParts) + "/orvblock", "off"));
}

// ---- Titles

TEST_F(PartWrite, TakesTitlesOf256BytesForOldVersionsWhateverTheLength) {
  ORVSetCurrentWriterVersion(2);
  for (const int length : {6, 0, -1}) {
    std::strcpy(block_.m_etyppart, ("P" + std::to_string(length)).c_str());
    block_.m_length = length;
    ASSERT_EQ(Write(0, kHeaderAndData), 0) << length;
    EXPECT_THAT(RawFile(path_).texts(std::string("/post/constant/parts/") + block_.m_etyppart + "/data/title"),
                ElementsAre(Padded("hood"), Padded("fender")))
        << length;
  }
}

TEST_F(PartWrite, TakesTitlesOfTheLengthForLaterVersions) {
  ORVSetCurrentWriterVersion(3);
  titles_ = "hood  fender";
  block_.m_title = titles_.data();
  block_.m_length = 6;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size(std::string(kParts) + "/orvblock/title"), 6U);
  EXPECT_THAT(raw.texts(std::string(kParts) + "/orvblock/title"), ElementsAre("hood  ", "fender"));
}

TEST_F(PartWrite, StoresNoTitlesOfNoLengthForLaterVersions) {
  ORVSetCurrentWriterVersion(3);
  block_.m_length = 0;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_FALSE(raw.exists(std::string(kParts) + "/orvblock/title"));
  EXPECT_EQ(raw.attribute_int(std::string(kParts) + "/orvblock", "off"), 0);
}

TEST_F(PartWrite, RefusesTitlesOfANegativeLengthForLaterVersions) {
  ORVSetCurrentWriterVersion(3);
  block_.m_length = -6;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_FALSE(RawFile(path_).has_attribute(std::string(kParts) + "/orvblock", "off"));
}

// ---- Where it goes

TEST_F(PartWrite, MakesTheMissingGroupOfTheConstantSection) {
  EXPECT_FALSE(RawFile(path_).exists("/post/constant/parts"));
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  std::strcpy(block_.m_etyppart, "OTHER");
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  EXPECT_THAT(RawFile(path_).children("/post/constant/parts"), ElementsAre("OTHER", "PART"));
}

TEST_F(PartWrite, TakesANegativeStateForTheConstantSection) {
  ASSERT_EQ(Write(-1, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists("/post/constant/parts/PART/data/pid"));
}

TEST_F(PartWrite, MakesTheNextStateAndNoOther) {
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(3, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
  EXPECT_EQ(Write(1, kHeaderAndData), 0);
  EXPECT_EQ(Write(2, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children("/post/singlestate"), ElementsAre("state000000000001", "state000000000002"));
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000001/parts/PART/data/pid"));
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000002/parts/PART/data/pid"));
}

TEST_F(PartWrite, MakesOnlyThePartsThatItWrites) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_THAT(RawFile(path_).children(kParts), ElementsAre("header"));
  ASSERT_EQ(Write(1, ORV_WRITE_DATA), 0);
  EXPECT_THAT(RawFile(path_).children(std::string(kState1) + "/parts/PART"), ElementsAre("data"));
}

TEST_F(PartWrite, RefusesAMissingPathOrFile) {
  EXPECT_EQ(block_.WriteBlock(nullptr, 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(nullptr, 1, kHeaderAndData), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 1, kHeaderAndData), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(PartWrite, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 1, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

TEST_F(PartWrite, RefusesAnEmptyNameBeforeItMakesAnything) {
  block_.m_etyppart[0] = '\0';
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(Write(2, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(PartWrite, CutsANameWithoutATerminator) {
  std::memset(block_.m_etyppart, 'P', sizeof block_.m_etyppart);
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string name(256, 'P');
  EXPECT_THAT(raw.children("/post/constant/parts"), ElementsAre(name));
  EXPECT_EQ(raw.attribute_text("/post/constant/parts/" + name + "/header", "etyppart"), name);
}

// ---- Over what is there, and failures

TEST_F(PartWrite, TheHeaderGoesOverWhatIsThere) {
  file_.at("/x").integer32("npart", 99).text("blocktype", "old", 3).text("etyppart", "OLD");
  file_.raw([&](hid_t group) { EXPECT_EQ(block_.WriteHeader(group), 0); });
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int("/x", "npart"), 2);
  EXPECT_EQ(raw.attribute_text("/x", "blocktype"), Padded("parts"));
  EXPECT_EQ(raw.attribute_text("/x", "etyppart"), Padded("PART"));
}

TEST_F(PartWrite, TheHeaderStopsAtAnAttributeOfAnotherClass) {
  ORVSetCurrentWriterVersion(3);
  file_.at("/x").real("npart", 4.);
  file_.raw([&](hid_t group) { EXPECT_EQ(block_.WriteHeader(group), 1); });
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"npart\" data type mismatch for attribute");
  const RawFile raw(file_.path());
  EXPECT_FALSE(raw.has_attribute("/x", "length"));
  EXPECT_FALSE(raw.has_attribute("/x", "nindex"));
}

TEST_F(PartWrite, TheHeaderStopsAtAWriteThatFails) {
  const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path_);
  const Id group(H5Gopen2(file.get(), "/post", H5P_DEFAULT), "/post");
  EXPECT_EQ(block_.WriteHeader(group.get()), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"block\" fail to write");
}

TEST_F(PartWrite, StopsAtTheFirstListThatFails) {
  block_.m_midType = ORV_FLOAT;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kParts) + "/data"), ElementsAre("pcol", "pid"));
}

TEST_F(PartWrite, StoresTitlesBehindTheListsAndPropertyTypesLast) {
  block_.m_mtypType = ORV_FLOAT;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kParts) + "/data"), ElementsAre("mid", "pcol", "pid"));
  block_.m_mtypType = ORV_INT;
  block_.m_pvtypType = ORV_FLOAT;
  std::strcpy(block_.m_etyppart, "OTHER");
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children("/post/constant/parts/OTHER/data"),
              ElementsAre("mid", "mtyp", "pcol", "pid", "title"));
}

TEST_F(PartWrite, NeedsIds) {
  block_.m_pid = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kParts) + "/data"), IsEmpty());
}

TEST_F(PartWrite, StoresNoDataForCountsThatAreNotPositive) {
  ORVSetCurrentWriterVersion(3);
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    block_.m_npart = count;
    file_.at("/x").raw([&](hid_t group) { EXPECT_EQ(block_.WriteData(group), 1) << count; });
    const RawFile raw(file_.path());
    EXPECT_THAT(raw.children("/x"), IsEmpty()) << count;
    EXPECT_FALSE(raw.has_attribute("/x", "off")) << count;
  }
}

TEST_F(PartWrite, StoresLongIds) {
  std::int64_t ids[2] = {5000000000, 1};
  block_.m_pidType = ORV_LONG;
  block_.m_pid = ids;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size(std::string(kParts) + "/data/pid"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>(std::string(kParts) + "/data/pid"), ElementsAre(5000000000, 1));
}

TEST_F(PartWrite, CompressesListsByTheBlocksOwnDigits) {
  block_.m_nCompressionFactor = 3;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.filters(std::string(kParts) + "/data/mid"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.values<std::int32_t>(std::string(kParts) + "/data/mid"), ElementsAre(71, 91));
  EXPECT_THAT(raw.filters(std::string(kParts) + "/data/title"), IsEmpty());
}

}  // namespace
}  // namespace orv_test
