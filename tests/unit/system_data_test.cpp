// The arrays of a unit system, the reading of its tables, and the reading of the whole block as a filer does it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "unit/forged_system.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeSystem;
using orv_test::Layout;
using orv_test::SystemPart;
using orv_test::TestSystem;
using orv_test::Values;
using testing::ElementsAre;

class SystemData : public orv_test::OrvTest {};
class SystemProbe : public orv_test::OrvTest {};
class SystemBuffers : public orv_test::OrvTest {};

class SystemDataLayout : public orv_test::OrvTest, public testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, SystemDataLayout, testing::Values(Layout::kSplit, Layout::kSingle),
                         orv_test::NameOfLayout);

/// A system whose tables can be changed: at() is where they are.
ForgedFile ForgeTables() {
  ForgedFile file = ForgeSystem(Layout::kSplit);
  file.at(SystemPart(Layout::kSplit, "data"));
  return file;
}

ForgedFile ForgeCounts(std::int64_t nbunit, std::int64_t ndunit) {
  ForgedFile file = ForgeSystem(Layout::kSplit);
  file.integer("nbunit", nbunit).integer("ndunit", ndunit).at(SystemPart(Layout::kSplit, "data"));
  return file;
}

TEST_P(SystemDataLayout, FillsAllTables) {
  ForgedFile file = ForgeSystem(GetParam());
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUbid, 2), ElementsAre(1, 2));
  EXPECT_STREQ(system.m_pUbtyp, "Length");
  EXPECT_STREQ(system.m_pUbtyp + 256, "TIME");
  EXPECT_STREQ(system.m_pUbnam, "mm");
  EXPECT_STREQ(system.m_pUbnam + 256, "s");
  EXPECT_THAT(Values(system.m_pUbcon, 2), ElementsAre(0.001F, 1.0F));
  EXPECT_THAT(Values(system.m_pUbshift, 2), ElementsAre(0.5F, -1.0F));
  EXPECT_THAT(Values(system.m_pUdid, 2), ElementsAre(11, 12));
  EXPECT_STREQ(system.m_pUdnam, "mm/s");
  EXPECT_STREQ(system.m_pUdnam + 256, "mm*mm");
  EXPECT_THAT(Values(system.m_pUdscal, 2), ElementsAre(3.0F, 4.0F));
  EXPECT_THAT(Values(system.m_pNdbunit, 2), ElementsAre(2, 1));
  EXPECT_THAT(Values(system.m_pUdbid, 4), ElementsAre(1, 2, 1, 0));
  EXPECT_THAT(Values(system.m_pUdbexp, 4), ElementsAre(1.0F, -1.0F, 2.0F, 0.0F));
}

TEST_F(SystemData, WithoutShiftsHasShiftsOfZero) {
  ForgedFile file = ForgeTables();
  file.drop("ubshift");
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUbshift, 2), ElementsAre(0.0F, 0.0F));
}

TEST_F(SystemData, WithoutBaseUnitsReadsNoDerivedOnes) {
  ForgedFile file = ForgeCounts(0, 2);
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_EQ(system.m_ndunit, 2);
  EXPECT_EQ(system.m_pUbid, nullptr);
  EXPECT_THAT(Values(system.m_pUdid, 2), ElementsAre(0, 0));
  EXPECT_STREQ(system.m_pUdnam, "");
  EXPECT_THAT(Values(system.m_pUdscal, 2), ElementsAre(0.0F, 0.0F));
  EXPECT_THAT(Values(system.m_pNdbunit, 2), ElementsAre(0, 0));
  EXPECT_EQ(system.m_pUdbid, nullptr);
  EXPECT_EQ(system.m_pUdbexp, nullptr);
}

TEST_F(SystemData, WithoutDerivedUnitsReadsTheBaseUnits) {
  ForgedFile file = ForgeCounts(2, 0);
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUbid, 2), ElementsAre(1, 2));
  EXPECT_EQ(system.m_pUdid, nullptr);
  EXPECT_EQ(system.m_pUdbid, nullptr);
}

TEST_F(SystemData, WithoutAnyUnitsSucceeds) {
  ForgedFile file = ForgeCounts(0, 0);
  TestSystem system;
  EXPECT_EQ(system.Read(file), 0);
  EXPECT_STREQ(system.m_title, "A plate");
}

TEST_F(SystemData, DerivedUnitsOfNoBaseUnitsNeedNoProducts) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {0, 0}).drop("udbid").drop("udbexp");
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUdid, 2), ElementsAre(11, 12));
}

TEST_F(SystemData, GoesOnWithoutExponents) {
  for (const bool dropped : {true, false}) {
    ForgedFile file = ForgeTables();
    if (dropped) {
      file.drop("udbexp");
    } else {
      file.retype("udbexp");
    }
    TestSystem system;
    ASSERT_EQ(system.Read(file), 0);
    EXPECT_THAT(Values(system.m_pUdbid, 3), ElementsAre(1, 2, 1));
    EXPECT_THAT(Values(system.m_pUdbexp, 3), ElementsAre(0.0F, 0.0F, 0.0F));
  }
}

TEST_F(SystemData, TakesAsManyProductEntriesAsDerivedTimesBaseUnits) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {4, 0}).dataset<std::int32_t>("udbid", {4}, {1, 1, 2, 2});
  file.dataset<float>("udbexp", {4}, {1, 2, 3, 4});
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUdbid, 4), ElementsAre(1, 1, 2, 2));
  EXPECT_THAT(Values(system.m_pUdbexp, 4), ElementsAre(1.0F, 2.0F, 3.0F, 4.0F));
}

TEST_F(SystemData, MoreProductEntriesThanThatFail) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {4, 1}).dataset<std::int32_t>("udbid", {5}, {1, 1, 2, 2, 1});
  file.dataset<float>("udbexp", {5}, {1, 2, 3, 4, 5});
  TestSystem system;
  EXPECT_EQ(system.Read(file), 1);
  EXPECT_EQ(system.m_pUbid, nullptr);
}

TEST_F(SystemData, CountsWhoseSumWrapsIn32BitsFail) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {INT_MAX, INT_MAX});
  TestSystem system;
  EXPECT_EQ(system.Read(file), 1);
}

TEST_F(SystemData, ANegativeCountFails) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {4, -1});
  TestSystem system;
  EXPECT_EQ(system.Read(file), 1);
  EXPECT_EQ(system.m_pUdid, nullptr);
}

struct Row {
  const char* name;
  int when_absent;
};

constexpr Row kRows[] = {{"ubid", 1}, {"ubtyp", 1}, {"ubnam", 1},  {"ubcon", 1},   {"ubshift", 0},
                         {"udid", 1}, {"udnam", 1}, {"udscal", 1}, {"ndbunit", 1}, {"udbid", 1}};

class SystemTable : public orv_test::OrvTest, public testing::WithParamInterface<Row> {};
INSTANTIATE_TEST_SUITE_P(Rows, SystemTable, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

int StatusOf(ForgedFile file) {
  TestSystem system;
  const int status = system.Read(file);
  EXPECT_EQ(system.m_pUbid == nullptr, status != 0);  // no arrays after a failure
  return status;
}

TEST_P(SystemTable, ThatIsMissing) {
  EXPECT_EQ(StatusOf(std::move(ForgeTables().drop(GetParam().name))), GetParam().when_absent);
}

TEST_P(SystemTable, OfAWrongClassFails) { EXPECT_EQ(StatusOf(std::move(ForgeTables().retype(GetParam().name))), 1); }

TEST_P(SystemTable, OfAnotherLengthThanTheHeaderSaysFails) {
  const std::string name = GetParam().name;
  ForgedFile file = ForgeTables();
  if (name == "ubtyp" || name == "ubnam" || name == "udnam") {
    file.texts(name.c_str(), 256, {1}, {"mm"});
  } else if (name == "ubcon" || name == "ubshift" || name == "udscal") {
    file.dataset<float>(name.c_str(), {1}, {1});
  } else {
    file.dataset<std::int32_t>(name.c_str(), {1}, {1});
  }
  EXPECT_EQ(StatusOf(std::move(file)), 1);
}

TEST_F(SystemData, ATextOfExactly256CharactersLosesTheLast) {
  ForgedFile file = ForgeTables();
  file.texts("ubnam", 256, {2}, {std::string(256, 'a'), ""}).texts("udnam", 256, {2}, {std::string(256, 'b'), "c"});
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_EQ(std::string(system.m_pUbnam), std::string(255, 'a'));
  EXPECT_STREQ(system.m_pUbnam + 256, "");
  EXPECT_EQ(std::string(system.m_pUdnam), std::string(255, 'b'));
  EXPECT_STREQ(system.m_pUdnam + 256, "c");
}

TEST_F(SystemData, TextsOfAnotherWidthFail) {
  ForgedFile file = ForgeTables();
  file.texts("ubnam", 255, {2}, {"mm", "s"});
  EXPECT_EQ(StatusOf(std::move(file)), 1);
}

TEST_F(SystemData, ConvertsWiderNumbers) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int64_t>("ubid", {2}, {1, 2}).dataset<double>("ubcon", {2}, {0.25, 4});
  file.dataset<std::int64_t>("ndbunit", {2}, {2, 1});
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  EXPECT_THAT(Values(system.m_pUbid, 2), ElementsAre(1, 2));
  EXPECT_THAT(Values(system.m_pUbcon, 2), ElementsAre(0.25F, 4.0F));
  EXPECT_THAT(Values(system.m_pNdbunit, 2), ElementsAre(2, 1));
}

TEST_F(SystemData, WithoutADataBitNothingIsRead) {
  ForgedFile file = ForgeTables();
  TestSystem system;
  EXPECT_EQ(system.ReadData(-1, ORV_READ_DATA), 1);  // without a reader
  ASSERT_EQ(system.Read(file), 0);
  system.m_pUbid[0] = 99;
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(system.m_pUbid[0], 99);
}

TEST_F(SystemData, WithoutABufferFails) {
  ForgedFile file = ForgeTables();
  TestSystem system;
  ASSERT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 1);
}

TEST_F(SystemData, OfAFileWithoutASystemFails) {
  ForgedFile file("nothing");
  TestSystem system;
  EXPECT_EQ(system.Read(file), 1);
  EXPECT_EQ(orvio::ReadSystem("/no/such/file", system), 1);
  EXPECT_EQ(orvio::ReadSystem("", system), 1);
}

TEST_F(SystemData, OfAnUnreadableHeaderFailsWithoutArrays) {
  ForgedFile file = ForgeSystem();
  file.drop("title");
  TestSystem system;
  EXPECT_EQ(system.Read(file), 1);
  EXPECT_EQ(system.m_pUbid, nullptr);
}

// ---- The type probe

TEST_F(SystemProbe, TellsTheStoredTypes) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int64_t>("ubid", {2}, {1, 2}).dataset<double>("ubcon", {2}, {1, 2}).drop("ubshift");
  file.dataset<float>("udid", {2}, {1, 2}).dataset<std::int64_t>("ndbunit", {2}, {2, 1});
  file.texts("udbid", 3, {3}, {"a", "b", "c"}).dataset<double>("udbexp", {3}, {1, 2, 3});
  TestSystem system;
  ASSERT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(system.m_ubidType, ORV_LONG);
  EXPECT_EQ(system.m_ubconType, ORV_DOUBLE);
  EXPECT_EQ(system.m_ubshiftType, ORV_NO_DATASET);
  EXPECT_EQ(system.m_udidType, ORV_FLOAT);
  EXPECT_EQ(system.m_ndbunitType, ORV_LONG);
  EXPECT_EQ(system.m_udbidType, ORV_CHAR);
  EXPECT_EQ(system.m_udbexpType, ORV_DOUBLE);
}

TEST_F(SystemProbe, BesideDataThatEndWithoutBaseUnitsTellsTheTypesAllTheSame) {
  ForgedFile file = ForgeCounts(0, 2);
  file.dataset<std::int64_t>("ubid", {2}, {1, 2}).dataset<double>("udbexp", {3}, {1, 2, 3});
  TestSystem system;
  ASSERT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(system.m_ubidType, ORV_LONG);
  EXPECT_EQ(system.m_udbexpType, ORV_DOUBLE);
}

TEST_F(SystemProbe, OfUdscalLooksAtUbcon) {
  ForgedFile file = ForgeTables();
  file.dataset<double>("ubcon", {2}, {1, 2}).dataset<float>("udscal", {2}, {1, 2});
  TestSystem system;
  ASSERT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(system.m_udscalType, ORV_DOUBLE);
  file.dataset<float>("ubcon", {2}, {1, 2}).dataset<double>("udscal", {2}, {1, 2});
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(system.m_udscalType, ORV_FLOAT);
}

TEST_F(SystemProbe, OfWiderTypesDoesNotMakeALaterReadOverrun) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int64_t>("udbid", {3}, {1, 2, 1}).dataset<double>("udbexp", {3}, {1, 2, 3});
  file.dataset<std::int64_t>("ubid", {2}, {1, 2}).dataset<double>("udscal", {2}, {7, 8});
  file.dataset<double>("ubcon", {2}, {5, 6});
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  ASSERT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  ASSERT_EQ(system.m_udbidType, ORV_LONG);
  ASSERT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 0);
  EXPECT_THAT(Values(system.m_pUdbid, 3), ElementsAre(1, 2, 1));
  EXPECT_THAT(Values(system.m_pUdbexp, 3), ElementsAre(1.0F, 2.0F, 3.0F));
  EXPECT_THAT(Values(system.m_pUdscal, 2), ElementsAre(7.0F, 8.0F));
}

TEST_F(SystemProbe, OfATypeThatTheLibraryDoesNotKnowFails) {
  ForgedFile file = ForgeTables();
  file.drop("udid").group(SystemPart(Layout::kSplit, "data") + "/udid");
  TestSystem system;
  ASSERT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(system.m_udidType, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(system.m_udbexpType, ORV_FLOAT);  // the others are asked all the same
}

// ---- Arrays

TEST_F(SystemBuffers, AreZeroedAndFreedTogether) {
  TestSystem system;
  system.m_nbunit = 3;
  system.m_ndunit = 2;
  ASSERT_TRUE(orvio::AllocateBuffers(system));
  EXPECT_EQ(Values(system.m_pUbshift, 3), std::vector<float>(3, 0));
  EXPECT_EQ(std::string(system.m_pUbtyp, 3 * 256), std::string(3 * 256, '\0'));
  EXPECT_EQ(std::string(system.m_pUdnam, 2 * 256), std::string(2 * 256, '\0'));
  EXPECT_EQ(Values(system.m_pUdbid, 6), std::vector<int>(6, 0));
  EXPECT_EQ(Values(system.m_pUdbexp, 6), std::vector<float>(6, 0));
  orvio::FreeBuffers(system);
  EXPECT_EQ(system.m_pUbid, nullptr);
  EXPECT_EQ(system.m_pUbtyp, nullptr);
  EXPECT_EQ(system.m_pUbshift, nullptr);
  EXPECT_EQ(system.m_pNdbunit, nullptr);
  EXPECT_EQ(system.m_pUdbexp, nullptr);
}

TEST_F(SystemBuffers, OfImpossibleCountsAreRefused) {
  struct Counts {
    std::int64_t base;
    std::int64_t derived;
  };
  for (const Counts& counts : {Counts{-1, 2}, Counts{2, -1}, Counts{INT64_MAX, 1}, Counts{1, INT64_MAX},
                               Counts{131073, 0}, Counts{1, 262145}, Counts{4097, 4097}, Counts{INT64_MIN, 1}}) {
    TestSystem system;
    system.m_nbunit = counts.base;
    system.m_ndunit = counts.derived;
    EXPECT_FALSE(orvio::AllocateBuffers(system)) << counts.base << ", " << counts.derived;
    EXPECT_EQ(system.m_pUbid, nullptr);
    EXPECT_EQ(system.m_pUbnam, nullptr);
    EXPECT_EQ(system.m_pUdid, nullptr);
  }
}

TEST_F(SystemBuffers, CountsOfADamagedHeaderFailTheRead) {
  for (const std::int64_t count : {std::int64_t{-2}, INT64_MAX, std::int64_t{1} << 40}) {
    ForgedFile base = ForgeCounts(count, 2), derived = ForgeCounts(2, count);
    TestSystem system;
    EXPECT_EQ(system.Read(base), 1);
    EXPECT_EQ(system.Read(derived), 1);
  }
}

TEST_F(SystemBuffers, NegativeCountsFailTheReadOfTheData) {
  ForgedFile file = ForgeTables();
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  system.m_ndunit = -2;
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 1);
  system.m_nbunit = -2;
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 1);
}

}  // namespace
