// The fields of the unit system block and the reading of its header. Its tables are in system_data_test, its writing
// in system_write_test.

#include <gtest/gtest.h>

#include "unit/forged_system.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeSystem;
using orv_test::Layout;
using orv_test::TestSystem;

class SystemHeader : public orv_test::OrvTest {};
class SystemBlock : public orv_test::OrvTest {};

class SystemHeaderLayout : public orv_test::OrvTest, public testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, SystemHeaderLayout, testing::Values(Layout::kSplit, Layout::kSingle),
                         orv_test::NameOfLayout);

TEST_P(SystemHeaderLayout, FillsAllMembers) {
  ForgedFile file = ForgeSystem(GetParam());
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.GetKey(), 10);
  EXPECT_STREQ(system.m_title, "A plate");
  EXPECT_STREQ(system.m_sys, "mm-t-s");
  EXPECT_STREQ(system.m_solverName, "forge");
  EXPECT_STREQ(system.m_solverVers, "1.2");
  EXPECT_STREQ(system.m_cdate, "21/11/26");
  EXPECT_STREQ(system.m_ctime, "06:21:25");
  EXPECT_STREQ(system.m_mdate, "22/11/26");
  EXPECT_STREQ(system.m_mtime, "07");
  EXPECT_EQ(system.m_nbunit, 2);
  EXPECT_EQ(system.m_ndunit, 2);
  EXPECT_EQ(system.m_cversion, 5);
  EXPECT_EQ(system.GetBlkVersion(), GetParam() == Layout::kSplit ? ORV_BLK_VERSION_SPLIT : ORV_BLK_VERSION_SINGLE);
}

TEST_F(SystemHeader, StandsInTheConstantSectionWhateverTheState) {
  ForgedFile file = ForgeSystem();
  TestSystem system;
  EXPECT_EQ(system.ReadBlock(file.path().c_str(), 3, ORV_READ_HEADER), 0);
  EXPECT_STREQ(system.m_title, "A plate");
}

TEST_F(SystemHeader, WithoutTheHeaderBitFailsAtOnce) {
  TestSystem system;
  EXPECT_EQ(system.ReadHeader(-1, ORV_READ_DATA), 1);
  EXPECT_EQ(system.ReadHeader(-1, ORV_READ_HEADER), 1);  // without a reader
}

TEST_F(SystemHeader, WithoutCversionIsReadAndKnowsNoVersion) {
  ForgedFile file = ForgeSystem();
  file.drop("cversion");
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.m_cversion, -1);
}

TEST_F(SystemHeader, WithAnUnreadableCversionIsReadAndKnowsNoVersion) {
  ForgedFile file = ForgeSystem();
  file.retype("cversion");
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_EQ(system.m_cversion, -1);
}

TEST_F(SystemHeader, WithoutCversionForgetsThatOfTheFileBefore) {
  for (const bool dropped : {true, false}) {
    ForgedFile file = ForgeSystem();
    TestSystem system;
    ASSERT_EQ(system.Header(file), 0);
    ASSERT_EQ(system.m_cversion, 5);
    if (dropped) {
      file.drop("cversion");
    } else {
      file.retype("cversion");
    }
    EXPECT_EQ(system.Header(file), 0);
    EXPECT_EQ(system.m_cversion, -1);
  }
}

TEST_F(SystemHeader, EndsAtTheFirstThatIsMissing) {
  ForgedFile file = ForgeSystem();
  file.drop("mdate");
  TestSystem system;
  EXPECT_EQ(system.Header(file), 1);
  EXPECT_STREQ(system.m_ctime, "06:21:25");
  EXPECT_STREQ(system.m_mtime, "");
  EXPECT_EQ(system.m_nbunit, 0);
}

TEST_F(SystemHeader, ATextOfExactly256CharactersLosesTheLast) {
  ForgedFile file = ForgeSystem();
  file.text("title", std::string(256, 't')).text("sys", std::string(256, 's'));
  file.text("solver_name", std::string(256, 'n')).text("solver_vers", std::string(254, 'v') + " x");
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_EQ(std::string(system.m_title), std::string(255, 't'));
  EXPECT_EQ(std::string(system.m_sys), std::string(255, 's'));
  EXPECT_EQ(std::string(system.m_solverName), std::string(255, 'n'));
  EXPECT_EQ(std::string(system.m_solverVers), std::string(254, 'v') + " ");
}

TEST_F(SystemHeader, ADateIsCutAtEightCharactersAndLosesItsBlanks) {
  ForgedFile file = ForgeSystem();
  file.text("cdate", "21/11/2026 or so").text("ctime", "6:21", 256).text("mdate", "abc", 3);
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_STREQ(system.m_cdate, "21/11/20");
  EXPECT_STREQ(system.m_ctime, "6:21");
  EXPECT_STREQ(system.m_mdate, "abc");
}

TEST_F(SystemHeader, ATextOfBlanksIsEmpty) {
  ForgedFile file = ForgeSystem();
  file.text("title", "").text("mdate", "", 8);
  TestSystem system;
  EXPECT_EQ(system.Header(file), 0);
  EXPECT_STREQ(system.m_title, "");
  EXPECT_STREQ(system.m_mdate, "");
}

// ---- Each row, once dropped and once with a wrong class

struct Row {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr Row kRows[] = {
    {"block", 1, 1},  {"title", 1, 1},    {"sys", 1, 1},       {"solver_name", 1, 1}, {"solver_vers", 1, 1},
    {"cdate", 1, 1},  {"ctime", 1, 1},    {"mdate", 1, 1},     {"mtime", 1, 1},       {"nbunit", 1, 1},
    {"ndunit", 1, 1}, {"cversion", 0, 0}, {"blocktype", 0, 0},
};

class SystemHeaderRow : public orv_test::OrvTest, public testing::WithParamInterface<Row> {};
INSTANTIATE_TEST_SUITE_P(Rows, SystemHeaderRow, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

int StatusOf(ForgedFile file) {
  TestSystem system;
  return system.Header(file);
}

TEST_P(SystemHeaderRow, AbsentOrRetyped) {
  EXPECT_EQ(StatusOf(std::move(ForgeSystem().drop(GetParam().name))), GetParam().when_absent);
  EXPECT_EQ(StatusOf(std::move(ForgeSystem().retype(GetParam().name))), GetParam().when_retyped);
}

// ---- The object

TEST_F(SystemBlock, StartsWithoutAnything) {
  const ORVSystem system;
  EXPECT_EQ(system.GetKey(), 10);
  for (const char* text : {system.m_title, system.m_sys, system.m_solverName, system.m_solverVers, system.m_cdate,
                           system.m_ctime, system.m_mdate, system.m_mtime}) {
    EXPECT_STREQ(text, "");
  }
  EXPECT_EQ(system.m_nbunit, 0);
  EXPECT_EQ(system.m_ndunit, 0);
  for (const int type : {system.m_ubidType, system.m_udidType, system.m_ndbunitType, system.m_udbidType}) {
    EXPECT_EQ(type, 2);
  }
  for (const int type : {system.m_ubconType, system.m_ubshiftType, system.m_udscalType, system.m_udbexpType}) {
    EXPECT_EQ(type, 3);
  }
  EXPECT_EQ(system.m_pUbid, nullptr);
  EXPECT_EQ(system.m_pUbtyp, nullptr);
  EXPECT_EQ(system.m_pUbnam, nullptr);
  EXPECT_EQ(system.m_pUbshift, nullptr);
  EXPECT_EQ(system.m_pUbcon, nullptr);
  EXPECT_EQ(system.m_pUdid, nullptr);
  EXPECT_EQ(system.m_pUdnam, nullptr);
  EXPECT_EQ(system.m_pUdscal, nullptr);
  EXPECT_EQ(system.m_pNdbunit, nullptr);
  EXPECT_EQ(system.m_pUdbid, nullptr);
  EXPECT_EQ(system.m_pUdbexp, nullptr);
  EXPECT_EQ(system.m_cversion, -1);
}

TEST_F(SystemBlock, InitializeForgetsWhatWasRead) {
  ForgedFile file = ForgeSystem();
  TestSystem system;
  ASSERT_EQ(system.Read(file), 0);
  orvio::FreeBuffers(system);
  system.m_ubidType = system.m_udscalType = ORV_CHAR;
  system.Initialize();
  EXPECT_EQ(system.GetKey(), 10);
  EXPECT_STREQ(system.m_title, "");
  EXPECT_STREQ(system.m_mtime, "");
  EXPECT_EQ(system.m_nbunit, 0);
  EXPECT_EQ(system.m_ndunit, 0);
  EXPECT_EQ(system.m_ubidType, ORV_INT);
  EXPECT_EQ(system.m_udscalType, ORV_FLOAT);
  EXPECT_EQ(system.m_cversion, -1);
  EXPECT_EQ(system.GetBlkPath(), "");
}

TEST_F(SystemBlock, HasNoLevelOfItsOwnAndServesNoItem) {
  TestSystem system;
  std::string path = "/post/constant/system";
  EXPECT_EQ(system.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "/post/constant/system");
  EXPECT_EQ(system.ReadSystemAtt(-1, ORV_ATT_BLOCK), 1);
  EXPECT_EQ(system.WriteIndex(-1), 0);
}

}  // namespace
