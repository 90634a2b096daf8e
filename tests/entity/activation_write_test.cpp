// Writing of element activation blocks, looked at with HDF5 alone, for every writer version. The last test of the versions
// reads back what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_ele_activation.h"
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
constexpr char kStates[] = "/post/singlestate";
constexpr char kShells[] = "/post/singlestate/state000000000001/activflags/SHELL";

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

/// A block of three shells with an index, and a file with the states 1 and 5, neither of which has any flags.
class ActivationWrite : public OrvTest {
 protected:
  ActivationWrite() {
    file_.group("/post/singlestate/state000000000001").group("/post/singlestate/state000000000005");
    path_ = file_.path();
    std::strcpy(block_.m_etyp, "SHELL");
    block_.m_nent = 3;
    block_.m_nindex = 1;
    block_.m_entid = ids_;
    block_.m_status = statuses_;
    block_.m_indexident = ident_;
    block_.m_indexval = values_;
  }
  ~ActivationWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int state, int what) { return block_.WriteBlock(path_.c_str(), state, what); }

  ForgedFile file_;
  std::string path_;
  ORVEleActivation block_;
  int ids_[3] = {11, 12, 13};
  int statuses_[3] = {1, 0, -5};
  int ident_[1] = {1};
  float values_[1] = {2.5F};
};

class ActivationWriteVersion : public ActivationWrite, public ::testing::WithParamInterface<int> {
 protected:
  ActivationWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }

  static bool IsSplit() { return GetParam() < 3; }
  static std::string Part(const char* split) { return std::string(kShells) + "/" + (IsSplit() ? split : "orvblock"); }
};

INSTANTIATE_TEST_SUITE_P(Versions, ActivationWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(ActivationWriteVersion, StoresTheHeaderInOrder) {
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part("header");
  std::vector<std::string> names = {"block", "blocktype", "etyp", "nent", "nindex"};
  if (!IsSplit()) names.emplace_back("indexic");
  EXPECT_EQ(raw.attributes(header), names);
  EXPECT_EQ(raw.attribute_int(header, "block"), 2100);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("activflags"));
  EXPECT_EQ(raw.attribute_text(header, "etyp"), Padded("SHELL"));
  EXPECT_EQ(raw.attribute_int(header, "nent"), 3);
  EXPECT_EQ(raw.attribute_int(header, "nindex"), 1);
  for (const char* name : {"block", "nent", "nindex"}) {
    EXPECT_EQ(raw.attribute_size(header, name), 8U) << name;
    EXPECT_EQ(raw.attribute_class(header, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_rank(header, name), 0) << name;
  }
  if (!IsSplit()) {
    EXPECT_EQ(raw.attribute_int(header, "indexic"), 0);
    EXPECT_EQ(raw.attribute_size(header, "indexic"), 4U);
    EXPECT_EQ(raw.attribute_class(header, "indexic"), H5T_INTEGER);
  }
}

TEST_P(ActivationWriteVersion, StoresDatasetsAndIndex) {
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string data = Part("data");
  const std::string index = Part("index");
  if (IsSplit()) {
    EXPECT_THAT(raw.children(kShells), ElementsAre("data", "header", "index"));
    EXPECT_THAT(raw.children(data), ElementsAre("entid", "status"));
    EXPECT_THAT(raw.children(index), ElementsAre("indexident", "indexval"));
  } else {
    EXPECT_THAT(raw.children(kShells), ElementsAre("orvblock"));
    EXPECT_THAT(raw.children(data), ElementsAre("entid", "indexident", "indexval", "status"));
  }
  EXPECT_THAT(raw.shape(data + "/entid"), ElementsAre(3));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/entid"), ElementsAre(11, 12, 13));
  EXPECT_EQ(raw.type_size(data + "/entid"), 4U);
  EXPECT_THAT(raw.shape(data + "/status"), ElementsAre(3));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/status"), ElementsAre(1, 0, -5));
  EXPECT_EQ(raw.type_class(data + "/status"), H5T_INTEGER);
  EXPECT_THAT(raw.shape(index + "/indexval"), ElementsAre(1));
  EXPECT_THAT(raw.values<float>(index + "/indexval"), ElementsAre(2.5F));
  EXPECT_THAT(raw.values<std::int32_t>(index + "/indexident"), ElementsAre(1));
}

TEST_P(ActivationWriteVersion, LeavesABlockThatExistsAlone) {
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  const std::string before = BytesOf(path_);
  statuses_[0] = 77;
  block_.m_nindex = 9;
  EXPECT_EQ(Write(1, kHeaderAndData), 1);
  EXPECT_EQ(Write(1, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_P(ActivationWriteVersion, IsReadBackAsItWas) {
  ASSERT_EQ(Write(1, kAll), 0);
  ORVEleActivation read;
  std::strcpy(read.m_etyp, "SHELL");
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(read.GetKey(), 2100);
  EXPECT_EQ(read.m_nent, 3);
  EXPECT_EQ(read.m_nindex, 1);
  std::vector<int> ids(3), statuses(3), ident(1);
  std::vector<float> value(1);
  read.m_entid = ids.data();
  read.m_status = statuses.data();
  read.m_indexident = ident.data();
  read.m_indexval = value.data();
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_DATA | ORV_READ_INDEX), 0);
  EXPECT_THAT(ids, ElementsAre(11, 12, 13));
  EXPECT_THAT(statuses, ElementsAre(1, 0, -5));
  EXPECT_THAT(ident, ElementsAre(1));
  EXPECT_THAT(value, ElementsAre(2.5F));
}

// ---- Where it goes

TEST_F(ActivationWrite, FindsAStateByItsName) {
  ASSERT_EQ(Write(5, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000005/activflags/SHELL/header"));
  EXPECT_THAT(raw.children(kStates), ElementsAre("state000000000001", "state000000000005"));
}

TEST_F(ActivationWrite, MakesAMissingStateWhateverItsNumber) {
  ASSERT_EQ(Write(2, kHeaderAndData), 0);
  ASSERT_EQ(Write(2000000000, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(kStates),
              ElementsAre("state000000000001", "state000000000002", "state000000000005", "state002000000000"));
  EXPECT_THAT(raw.values<std::int32_t>("/post/singlestate/state000000000002/activflags/SHELL/data/status"),
              ElementsAre(1, 0, -5));
  EXPECT_TRUE(raw.exists("/post/singlestate/state002000000000/activflags/SHELL/header"));
}

TEST_F(ActivationWrite, AddsASecondTypeToAState) {
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  std::strcpy(block_.m_etyp, "BEAM");
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  EXPECT_THAT(RawFile(path_).children("/post/singlestate/state000000000001/activflags"), ElementsAre("BEAM", "SHELL"));
}

TEST_F(ActivationWrite, HasNoPlaceOutsideOfStates) {
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(0, kAll), 1);
  EXPECT_EQ(Write(-1, kAll), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ActivationWrite, NeedsTheGroupOfTheStates) {
  file_.at("/post").drop("singlestate");
  path_ = file_.path();
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(1, kAll), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ActivationWrite, FailsWhereADatasetHasTheNameOfTheState) {
  file_.at(kStates).dataset<std::int32_t>("state000000000009", {1}, {1});
  path_ = file_.path();
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(9, kAll), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ActivationWrite, RefusesAMissingPathOrFile) {
  EXPECT_EQ(block_.WriteBlock(nullptr, 1, kHeaderAndData), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 1, kHeaderAndData), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(ActivationWrite, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 1, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

TEST_F(ActivationWrite, RefusesAnEmptyNameBeforeItMakesAnything) {
  block_.m_etyp[0] = '\0';
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(2, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ActivationWrite, CutsANameWithoutATerminator) {
  std::memset(block_.m_etyp, 'E', sizeof block_.m_etyp);
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string name(256, 'E');
  const std::string flags = "/post/singlestate/state000000000001/activflags";
  EXPECT_THAT(raw.children(flags), ElementsAre(name));
  EXPECT_EQ(raw.attribute_text(flags + "/" + name + "/header", "etyp"), name);
}

TEST_F(ActivationWrite, RemembersNoFileAsOpenedLast) {
  const orvio::Swapped last(orvio::process().g_hLastFile, hid_t{0});
  EXPECT_EQ(Write(1, kHeaderAndData), 0);
  EXPECT_EQ(orvio::process().g_hLastFile, -1);
}

TEST_F(ActivationWrite, MakesOnlyThePartsThatItWrites) {
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  EXPECT_THAT(RawFile(path_).children(kShells), ElementsAre("header"));
  ASSERT_EQ(Write(5, ORV_WRITE_DATA), 0);
  EXPECT_THAT(RawFile(path_).children("/post/singlestate/state000000000005/activflags/SHELL"), ElementsAre("data"));
}

// ---- Header

TEST_F(ActivationWrite, StoresTheBlockTypeItWasMadeWith) {
  ORVEleActivation other(2101);
  file_.at("/x").raw([&](hid_t group) { EXPECT_EQ(other.WriteHeader(group), 0); });
  EXPECT_EQ(RawFile(file_.path()).attribute_int("/x", "block"), 2101);
}

TEST_F(ActivationWrite, StoresTheIncrementalFlagThatWasRead) {
  ORVSetCurrentWriterVersion(3);
  file_.at("/post/singlestate/state000000000001/activflags/OLD/orvblock")
      .integer("block", 2100)
      .text("etyp", "OLD")
      .integer("nent", 3)
      .integer("nindex", 0)
      .integer32("indexic", 1);
  path_ = file_.path();
  std::strcpy(block_.m_etyp, "OLD");
  ASSERT_EQ(block_.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  std::strcpy(block_.m_etyp, "SHELL");
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(path_).attribute_int(std::string(kShells) + "/orvblock", "indexic"), 1);
}

TEST_F(ActivationWrite, TheHeaderGoesOverWhatIsThere) {
  file_.at("/x").integer32("nent", 99).integer("block", 1).text("blocktype", "old", 3).text("etyp", "OLD");
  file_.raw([&](hid_t group) { EXPECT_EQ(block_.WriteHeader(group), 0); });
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int("/x", "nent"), 3);
  EXPECT_EQ(raw.attribute_size("/x", "nent"), 4U);
  EXPECT_EQ(raw.attribute_int("/x", "block"), 2100);
  EXPECT_EQ(raw.attribute_text("/x", "blocktype"), Padded("activflags"));
  EXPECT_EQ(raw.attribute_text("/x", "etyp"), Padded("SHELL"));
}

TEST_F(ActivationWrite, TheHeaderStopsAtAnAttributeOfAnotherClass) {
  ORVSetCurrentWriterVersion(3);
  file_.at("/x").real("nent", 4.);
  file_.raw([&](hid_t group) { EXPECT_EQ(block_.WriteHeader(group), 1); });
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"nent\" data type mismatch for attribute");
  const RawFile raw(file_.path());
  EXPECT_TRUE(raw.has_attribute("/x", "etyp"));
  EXPECT_FALSE(raw.has_attribute("/x", "nindex"));
  EXPECT_FALSE(raw.has_attribute("/x", "indexic"));
}

TEST_F(ActivationWrite, TheFlagIsNotStoredWithoutAnIndexCount) {
  ORVSetCurrentWriterVersion(3);
  file_.at("/x").real("nindex", 4.);
  file_.raw([&](hid_t group) { EXPECT_EQ(block_.WriteHeader(group), 1); });
  EXPECT_FALSE(RawFile(file_.path()).has_attribute("/x", "indexic"));
}

TEST_F(ActivationWrite, TheHeaderStopsAtAWriteThatFails) {
  const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path_);
  const Id group(H5Gopen2(file.get(), "/post", H5P_DEFAULT), "/post");
  EXPECT_EQ(block_.WriteHeader(group.get()), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"block\" fail to write");
}

// ---- Data and index

TEST_F(ActivationWrite, StoresLongValues) {
  std::int64_t ids[3] = {5000000000, 1, 2};
  block_.m_entidType = ORV_LONG;
  block_.m_entid = ids;
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size(std::string(kShells) + "/data/entid"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>(std::string(kShells) + "/data/entid"), ElementsAre(5000000000, 1, 2));
  EXPECT_EQ(raw.type_size(std::string(kShells) + "/data/status"), 4U);
}

TEST_F(ActivationWrite, StoresNoStatusesAfterIdsThatFailed) {
  block_.m_entid = nullptr;
  EXPECT_EQ(Write(1, kAll), 1);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(std::string(kShells) + "/data"), IsEmpty());
  EXPECT_THAT(raw.children(std::string(kShells) + "/index"), IsEmpty());
}

TEST_F(ActivationWrite, ReportsStatusesThatFailed) {
  block_.m_statusType = ORV_FLOAT;
  EXPECT_EQ(Write(1, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kShells) + "/data"), ElementsAre("entid"));
}

TEST_F(ActivationWrite, StoresNoDataForCountsThatAreNotPositive) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    block_.m_nent = count;
    file_.at("/x" + std::to_string(count)).raw([&](hid_t group) { EXPECT_EQ(block_.WriteData(group), 1) << count; });
    EXPECT_THAT(RawFile(file_.path()).children("/x" + std::to_string(count)), IsEmpty()) << count;
  }
}

TEST_F(ActivationWrite, AnswersOneForAnIndexWithoutACount) {
  block_.m_nindex = 0;
  EXPECT_EQ(Write(1, kAll), 1);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists(std::string(kShells) + "/data/status"));
  EXPECT_THAT(raw.children(std::string(kShells) + "/index"), IsEmpty());
  block_.m_nindex = -1;
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
  block_.m_nindex = 1;
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
}

TEST_F(ActivationWrite, StoresTheIndexInItsOwnTypes) {
  std::int64_t ident[1] = {5000000000};
  double values[1] = {0.1};
  block_.m_indexidentType = ORV_LONG;
  block_.m_indexvalType = ORV_DOUBLE;
  block_.m_indexident = ident;
  block_.m_indexval = values;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.values<std::int64_t>(std::string(kShells) + "/index/indexident"), ElementsAre(5000000000));
  EXPECT_EQ(raw.type_size(std::string(kShells) + "/index/indexval"), 8U);
  EXPECT_THAT(raw.values<double>(std::string(kShells) + "/index/indexval"), ElementsAre(0.1));
}

TEST_F(ActivationWrite, StoresOneRowOfTheIndexWhateverTheStates) {
  block_.m_nstate = 4;
  ASSERT_EQ(Write(1, kAll), 0);
  EXPECT_THAT(RawFile(path_).shape(std::string(kShells) + "/index/indexval"), ElementsAre(1));
}

TEST_F(ActivationWrite, CompressesDataByTheBlocksOwnDigitsAndNeverTheIndex) {
  block_.m_nCompressionFactor = 3;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.filters(std::string(kShells) + "/data/status"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.values<std::int32_t>(std::string(kShells) + "/data/status"), ElementsAre(1, 0, -5));
  EXPECT_THAT(raw.filters(std::string(kShells) + "/index/indexval"), IsEmpty());
}

}  // namespace
}  // namespace orv_test
