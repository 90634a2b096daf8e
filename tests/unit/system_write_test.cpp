// Writing of the unit system, looked at with HDF5 alone. Reading is in system_header_test and system_data_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "orvio/orv_switches.h"
#include "support/raw_file.h"
#include "unit/forged_system.h"

namespace {

using orv_test::ForgedFile;
using orv_test::RawFile;
using orv_test::TestSystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kBoth = ORV_WRITE_HEADER | ORV_WRITE_DATA;
constexpr char kBlock[] = "/post/constant/system";

std::string Padded(std::string text, std::size_t width = 256) {
  text.resize(width, ' ');
  return text;
}

/// A system of two base and two derived units with all its tables, which are its own, and a file to write it into.
class SystemWrite : public orv_test::OrvTest {
 protected:
  SystemWrite() {
    file_.group(kBlock);
    std::strcpy(system_.m_title, "A plate");
    std::strcpy(system_.m_sys, "mm-t-s");
    std::strcpy(system_.m_solverName, "forge");
    std::strcpy(system_.m_solverVers, "1.2");
    std::strcpy(system_.m_cdate, "21/11/26");
    std::strcpy(system_.m_ctime, "06:21:25");
    std::strcpy(system_.m_mdate, "22/11/26");
    std::strcpy(system_.m_mtime, "07");
    system_.m_nbunit = system_.m_ndunit = 2;
    system_.m_pUbid = ubid_;
    system_.m_pUbtyp = ubtyp_.data();
    system_.m_pUbnam = ubnam_.data();
    system_.m_pUbcon = ubcon_;
    system_.m_pUbshift = ubshift_;
    system_.m_pUdid = udid_;
    system_.m_pUdnam = udnam_.data();
    system_.m_pUdscal = udscal_;
    system_.m_pNdbunit = ndbunit_;
    system_.m_pUdbid = udbid_;
    system_.m_pUdbexp = udbexp_;
  }
  ~SystemWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int what = kBoth) { return system_.WriteBlock(file_.path().c_str(), 0, what); }
  static bool IsSplit() { return ORVGetCurrentWriterVersion() < 3; }
  static std::string Header() { return std::string(kBlock) + (IsSplit() ? "/header" : "/orvblock"); }
  static std::string Data() { return std::string(kBlock) + (IsSplit() ? "/data" : "/orvblock"); }

  ForgedFile file_{"write"};
  ORVSystem system_;
  int ubid_[2] = {1, 2}, udid_[2] = {11, 12}, ndbunit_[2] = {2, 1}, udbid_[3] = {1, 2, 1};
  float ubcon_[2] = {0.001F, 1}, ubshift_[2] = {0.5F, -1}, udscal_[2] = {3, 4}, udbexp_[3] = {1, -1, 2};
  std::string ubtyp_ = Padded("Length") + Padded("Time"), ubnam_ = Padded("mm") + Padded("s");
  std::string udnam_ = Padded("mm/s") + Padded("mm*mm");
};

class SystemWriteVersion : public SystemWrite, public testing::WithParamInterface<int> {
 protected:
  SystemWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(Versions, SystemWriteVersion, testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(SystemWriteVersion, StoresTheHeaderInOrder) {
  system_.m_cversion = 5;
  ASSERT_EQ(Write(ORV_WRITE_HEADER), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.attributes(Header()),
              ElementsAre("block", "blocktype", "title", "sys", "solver_name", "solver_vers", "cdate", "ctime", "mdate",
                          "mtime", "nbunit", "ndunit", "cversion"));
  EXPECT_EQ(raw.attribute_int(Header(), "block"), 10);
  EXPECT_EQ(raw.attribute_text(Header(), "blocktype"), Padded("system"));
  EXPECT_EQ(raw.attribute_text(Header(), "title"), Padded("A plate"));
  EXPECT_EQ(raw.attribute_text(Header(), "sys"), Padded("mm-t-s"));
  EXPECT_EQ(raw.attribute_text(Header(), "solver_name"), Padded("forge"));
  EXPECT_EQ(raw.attribute_text(Header(), "solver_vers"), Padded("1.2"));
  EXPECT_EQ(raw.attribute_text(Header(), "cdate"), "21/11/26");
  EXPECT_EQ(raw.attribute_text(Header(), "ctime"), "06:21:25");
  EXPECT_EQ(raw.attribute_text(Header(), "mdate"), "22/11/26");
  EXPECT_EQ(raw.attribute_text(Header(), "mtime"), "07      ");
  EXPECT_EQ(raw.attribute_int(Header(), "nbunit"), 2);
  EXPECT_EQ(raw.attribute_int(Header(), "ndunit"), 2);
  EXPECT_EQ(raw.attribute_int(Header(), "cversion"), 5);
  for (const char* name : {"block", "nbunit", "ndunit", "cversion"}) EXPECT_EQ(raw.attribute_size(Header(), name), 8U);
}

TEST_P(SystemWriteVersion, StoresTheTables) {
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.children(Data()), ElementsAre("ndbunit", "ubcon", "ubid", "ubnam", "ubshift", "ubtyp", "udbexp",
                                                "udbid", "udid", "udnam", "udscal"));
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/ubid"), ElementsAre(1, 2));
  EXPECT_THAT(raw.texts(Data() + "/ubtyp"), ElementsAre(Padded("Length"), Padded("Time")));
  EXPECT_THAT(raw.texts(Data() + "/ubnam"), ElementsAre(Padded("mm"), Padded("s")));
  EXPECT_THAT(raw.values<float>(Data() + "/ubcon"), ElementsAre(0.001F, 1.0F));
  EXPECT_THAT(raw.values<float>(Data() + "/ubshift"), ElementsAre(0.5F, -1.0F));
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/udid"), ElementsAre(11, 12));
  EXPECT_THAT(raw.texts(Data() + "/udnam"), ElementsAre(Padded("mm/s"), Padded("mm*mm")));
  EXPECT_THAT(raw.values<float>(Data() + "/udscal"), ElementsAre(3.0F, 4.0F));
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/ndbunit"), ElementsAre(2, 1));
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/udbid"), ElementsAre(1, 2, 1));
  EXPECT_THAT(raw.values<float>(Data() + "/udbexp"), ElementsAre(1.0F, -1.0F, 2.0F));
  EXPECT_EQ(raw.type_size(Data() + "/ubid"), 4U);
  EXPECT_EQ(raw.type_size(Data() + "/udbexp"), 4U);
  EXPECT_EQ(raw.has_attribute(Data(), "lenudb"), !IsSplit());
}

TEST_P(SystemWriteVersion, IsReadBackAsItWas) {
  system_.m_cversion = 7;
  ASSERT_EQ(Write(), 0);
  TestSystem read;
  ASSERT_EQ(read.Read(file_), 0);
  EXPECT_STREQ(read.m_title, "A plate");
  EXPECT_STREQ(read.m_mtime, "07");
  EXPECT_EQ(read.m_cversion, 7);
  EXPECT_STREQ(read.m_pUbtyp + 256, "Time");
  EXPECT_THAT(orv_test::Values(read.m_pUdbexp, 3), ElementsAre(1.0F, -1.0F, 2.0F));
}

TEST_F(SystemWrite, WithoutAKnownVersionHasNoSuchAttribute) {
  ASSERT_EQ(Write(), 0);
  EXPECT_FALSE(RawFile(file_.path()).has_attribute(Header(), "cversion"));
}

TEST_F(SystemWrite, WithoutAKnownVersionLeavesThatOfAnEarlierWriteAlone) {
  system_.m_cversion = 5;
  ASSERT_EQ(Write(), 0);
  system_.m_cversion = -1;
  ASSERT_EQ(Write(), 0);
  EXPECT_EQ(RawFile(file_.path()).attribute_int(Header(), "cversion"), 5);
}

TEST_F(SystemWrite, StoresTheLengthOfTheProductsCutTo32Bits) {
  ORVSetCurrentWriterVersion(3);
  ndbunit_[0] = ndbunit_[1] = INT_MAX;
  system_.m_pUdbid = nullptr;
  system_.m_pUdbexp = nullptr;
  EXPECT_EQ(Write(), 1);
  EXPECT_EQ(RawFile(file_.path()).attribute_int(Data(), "lenudb"), -2);
}

TEST_F(SystemWrite, PutsADifferentKindOfBlocktypeAside) {
  file_.at(Header()).integer("blocktype", 3);
  ASSERT_EQ(Write(ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(file_.path()).attribute_text(Header(), "blocktype"), Padded("system"));
}

TEST_F(SystemWrite, StoresTheLengthOfTheProductsLastAndAnewAtEachWrite) {
  ORVSetCurrentWriterVersion(3);
  ASSERT_EQ(Write(), 0);
  {
    const RawFile raw(file_.path());
    EXPECT_EQ(raw.attributes(Data()).back(), "lenudb");
    EXPECT_EQ(raw.attribute_int(Data(), "lenudb"), 3);
    EXPECT_EQ(raw.attribute_size(Data(), "lenudb"), 4U);
  }
  system_.m_ndunit = 0;
  ASSERT_EQ(Write(), 0);
  EXPECT_EQ(RawFile(file_.path()).attribute_int(Data(), "lenudb"), 0);
}

TEST_F(SystemWrite, StoresTheLengthOfTheProductsWhateverCameBefore) {
  ORVSetCurrentWriterVersion(5);
  system_.m_pUbnam = nullptr;
  EXPECT_EQ(Write(), 1);
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int(Data(), "lenudb"), 3);
  EXPECT_FALSE(raw.exists(Data() + "/ubnam"));
  EXPECT_TRUE(raw.exists(Data() + "/udbexp"));
}

TEST_F(SystemWrite, WithoutUnitsStoresNoTables) {
  system_.m_nbunit = system_.m_ndunit = 0;
  ASSERT_EQ(Write(), 0);
  EXPECT_THAT(RawFile(file_.path()).children(Data()), IsEmpty());
}

TEST_F(SystemWrite, WithoutBaseUnitsStoresTheDerivedOnes) {
  system_.m_nbunit = 0;
  ASSERT_EQ(Write(), 0);
  EXPECT_THAT(RawFile(file_.path()).children(Data()),
              ElementsAre("ndbunit", "udbexp", "udbid", "udid", "udnam", "udscal"));
}

TEST_F(SystemWrite, DerivedUnitsOfNoBaseUnitsHaveNoProducts) {
  ndbunit_[0] = ndbunit_[1] = 0;
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/ndbunit"), ElementsAre(0, 0));
  EXPECT_FALSE(raw.exists(Data() + "/udbid"));
  EXPECT_FALSE(raw.exists(Data() + "/udbexp"));
}

TEST_F(SystemWrite, WithoutShiftsStoresNone) {
  system_.m_pUbshift = nullptr;
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  EXPECT_FALSE(raw.exists(Data() + "/ubshift"));
  EXPECT_TRUE(raw.exists(Data() + "/ubcon"));
}

TEST_F(SystemWrite, OfANegativeCountLeavesOutTheDerivedUnitsAndFails) {
  ndbunit_[1] = -1;
  EXPECT_EQ(Write(), 1);
  EXPECT_THAT(RawFile(file_.path()).children(Data()), ElementsAre("ubcon", "ubid", "ubnam", "ubshift", "ubtyp"));
}

TEST_F(SystemWrite, OfMissingCountsLeavesOutTheDerivedUnitsAndFails) {
  system_.m_pNdbunit = nullptr;
  EXPECT_EQ(Write(), 1);
  EXPECT_THAT(RawFile(file_.path()).children(Data()), ElementsAre("ubcon", "ubid", "ubnam", "ubshift", "ubtyp"));
}

TEST_F(SystemWrite, OfTheHeaderAloneStoresNoTables) {
  ASSERT_EQ(Write(ORV_WRITE_HEADER), 0);
  EXPECT_FALSE(RawFile(file_.path()).exists(Data()));
}

TEST_F(SystemWrite, OfTheDataAloneLeavesTheHeader) {
  ASSERT_EQ(Write(), 0);
  std::strcpy(system_.m_title, "Another");
  ubid_[0] = 21;
  ASSERT_EQ(Write(ORV_WRITE_DATA), 0);
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_text(Header(), "title"), Padded("A plate"));
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/ubid"), ElementsAre(21, 2));
}

TEST_F(SystemWrite, DataFollowOnlyACleanHeader) {
  file_.at(Header()).text("nbunit", "two");
  EXPECT_EQ(Write(), 1);
  EXPECT_THAT(RawFile(file_.path()).children(Data()), IsEmpty());
}

TEST_F(SystemWrite, OverTheSameTablesPutsTheNewValues) {
  ASSERT_EQ(Write(), 0);
  ubid_[0] = 21;
  std::strcpy(system_.m_title, "Another");
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.values<std::int32_t>(Data() + "/ubid"), ElementsAre(21, 2));
  EXPECT_EQ(raw.attribute_text(Header(), "title"), Padded("Another"));
}

TEST_F(SystemWrite, OverLargerOrSmallerTablesFailsAndChangesNothing) {
  for (const int version : {1, 5}) {
    ORVSetCurrentWriterVersion(version);
    system_.m_nbunit = 2;
    ASSERT_EQ(Write(), 0);
    const std::string before = orv_test::BytesOf(file_.path());
    system_.m_nbunit = 1;
    EXPECT_EQ(Write(), 1);
    system_.m_nbunit = 2;
    ndbunit_[1] = 0;
    EXPECT_EQ(Write(), 1);
    ndbunit_[1] = 1;
    EXPECT_TRUE(orv_test::BytesOf(file_.path()) == before);
  }
}

TEST_F(SystemWrite, WiderTypesOfTheObjectDoNotOverrunItsTables) {
  system_.m_ubidType = system_.m_udbidType = ORV_LONG;
  system_.m_udbexpType = ORV_DOUBLE;
  ASSERT_EQ(Write(), 0);
  EXPECT_THAT(RawFile(file_.path()).values<std::int32_t>(Data() + "/udbid"), ElementsAre(1, 2, 1));
}

TEST_F(SystemWrite, GoesToTheConstantSectionWhateverTheState) {
  EXPECT_EQ(system_.WriteBlock(file_.path().c_str(), 4, kBoth), 0);
  EXPECT_TRUE(RawFile(file_.path()).exists(Data() + "/ubid"));
}

TEST_F(SystemWrite, WithoutAFileOrItsGroupFails) {
  EXPECT_EQ(system_.WriteBlock(nullptr, 0, kBoth), 1);
  EXPECT_EQ(system_.WriteBlock("/no/such/file", 0, kBoth), 1);
  ForgedFile empty("empty");
  EXPECT_EQ(system_.WriteBlock(empty.path().c_str(), 0, kBoth), 1);
  EXPECT_FALSE(RawFile(empty.path()).exists(kBlock));
}

}  // namespace
