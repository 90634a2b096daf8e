// Reading the header of a variable, in both generations of files. Its datasets are in variable_data_test, written
// headers in variable_write_test.

#include <gtest/gtest.h>

#include "variable/forged_variable.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeKeyed;
using orv_test::ForgeUnkeyed;
using orv_test::TestVariable;

class VariableHeader : public orv_test::OrvTest {};

TEST_F(VariableHeader, OfASingleLayoutFillsAllMembers) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.GetKey(), 30);
  EXPECT_STREQ(variable.m_varnam, "Stress");
  EXPECT_EQ(variable.m_ncoo, 2);
  EXPECT_EQ(variable.GetOriginalCount(), 2U);
  EXPECT_EQ(variable.m_rank, 1);
  EXPECT_EQ(variable.m_ndim, 3);
  EXPECT_STREQ(variable.m_varkey, "ZPS:Stress");
  EXPECT_STREQ(variable.m_varclass, "CLASS_STRESS");
  EXPECT_STREQ(variable.m_type, "free");
  EXPECT_EQ(variable.m_lenb, 3);
  EXPECT_EQ(variable.m_lend, 1);
  EXPECT_EQ(variable.m_subslen, 5);
  EXPECT_EQ(variable.m_lvmap, 1);
  EXPECT_EQ(variable.m_tensor, 1);
  EXPECT_EQ(variable.GetBlkVersion(), ORV_BLK_VERSION_SINGLE);
}

TEST_F(VariableHeader, OfASplitLayoutHasNoKey) {
  ForgedFile file = ForgeUnkeyed();
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.GetKey(), 30);
  EXPECT_STREQ(variable.m_varnam, "STRESS");
  EXPECT_EQ(variable.m_ncoo, 2);
  EXPECT_EQ(variable.m_rank, 1);
  EXPECT_EQ(variable.m_ndim, 3);
  EXPECT_EQ(variable.m_idtrans, 44);
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_EQ(variable.m_subslen, 0);
  EXPECT_EQ(variable.GetBlkVersion(), ORV_BLK_VERSION_SPLIT);
}

TEST_F(VariableHeader, WithoutTheHeaderBitFailsAtOnce) {
  TestVariable variable;
  EXPECT_EQ(variable.ReadHeader(-1, ORV_READ_DATA | ORV_READ_HEADER_INFO), 1);
  EXPECT_STREQ(variable.m_varnam, "");
}

TEST_F(VariableHeader, WithoutAReaderFails) {
  TestVariable variable;
  EXPECT_EQ(variable.ReadHeader(-1, ORV_READ_HEADER), 1);
}

TEST_F(VariableHeader, WithBothNamesTakesEtypvar) {
  ForgedFile file = ForgeKeyed();
  file.text("etypvar", "Other");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varnam, "Other");
}

TEST_F(VariableHeader, WithAnUnreadableEtypvarTakesVarnam) {
  ForgedFile file = ForgeKeyed();
  file.integer("etypvar", 5);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varnam, "Stress");
}

TEST_F(VariableHeader, WithoutANameStopsBeforeTheCounts) {
  ForgedFile file = ForgeKeyed();
  file.drop("varnam");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 1);
  EXPECT_EQ(variable.m_ncoo, 0);
}

TEST_F(VariableHeader, WithoutRankFailsAfterTheCountWasStored) {
  ForgedFile file = ForgeKeyed();
  file.drop("rank");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 1);
  EXPECT_EQ(variable.m_ncoo, 2);
  EXPECT_EQ(variable.GetOriginalCount(), 2U);
  EXPECT_STREQ(variable.m_varkey, "");
}

TEST_F(VariableHeader, WithoutNdimHasAnExtentOfZero) {
  ForgedFile file = ForgeKeyed();
  file.drop("ndim");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.m_ndim, 0);
}

TEST_F(VariableHeader, WithAnUnreadableNdimHasAnExtentOfZero) {
  ForgedFile file = ForgeKeyed();
  file.retype("ndim");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.m_ndim, 0);
}

TEST_F(VariableHeader, WithAnUnreadableKeyHasNone) {
  ForgedFile file = ForgeKeyed();
  file.retype("varkey");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_EQ(variable.m_tensor, 1);
}

TEST_F(VariableHeader, AnUnreadableOptionalIntegerEndsItBeforeTheLaterOnes) {
  ForgedFile file = ForgeKeyed();
  file.retype("subslen");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 1);
  EXPECT_EQ(variable.m_lend, 1);
  EXPECT_EQ(variable.m_subslen, 0);
  EXPECT_EQ(variable.m_tensor, 0);
}

TEST_F(VariableHeader, ReadsIntegersOfAnyStoredWidth) {
  ForgedFile file = ForgeKeyed();
  file.integer32("ncoo", 6).integer("tensor", -5000000000).integer32("block", 31);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.m_ncoo, 6);
  EXPECT_EQ(variable.m_tensor, -5000000000);
  EXPECT_EQ(variable.GetKey(), 31);
}

TEST_F(VariableHeader, AFieldOfBlanksBecomesEmpty) {
  ForgedFile file = ForgeKeyed();
  file.text("varkey", "").text("varnam", "");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_STREQ(variable.m_varnam, "");
}

TEST_F(VariableHeader, KeepsBlanksInsideATextAndBeforeIt) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", "  two words  ");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varnam, "  two words");
}

TEST_F(VariableHeader, ReadsAShorterStoredText) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", "abc", 3).text("type", "xy", 5);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varnam, "abc");
  EXPECT_STREQ(variable.m_type, "xy");
}

TEST_F(VariableHeader, ATextEndsAtItsFirstZeroByte) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", std::string_view("ab  \0cd", 7));
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_STREQ(variable.m_varnam, "ab");
}

TEST_F(VariableHeader, ATextOf255CharactersIsKeptWhole) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", std::string(255, 'n'));
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(std::string(variable.m_varnam), std::string(255, 'n'));
}

TEST_F(VariableHeader, ATextOfExactly256CharactersLosesTheLast) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", std::string(256, 'n')).text("varkey", std::string(256, 'k'));
  file.text("varclass", std::string(256, 'c')).text("type", std::string(254, 't') + " x");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(std::string(variable.m_varnam), std::string(255, 'n'));
  EXPECT_EQ(std::string(variable.m_varkey), std::string(255, 'k'));
  EXPECT_EQ(std::string(variable.m_varclass), std::string(255, 'c'));
  EXPECT_EQ(std::string(variable.m_type), std::string(254, 't') + " ");
}

TEST_F(VariableHeader, ATextLongerThan256BytesIsUnreadable) {
  ForgedFile file = ForgeKeyed();
  file.text("varnam", "too wide", 257);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 1);
}

TEST_F(VariableHeader, AnArrayInPlaceOfACountIsUnreadable) {
  ForgedFile file = ForgeKeyed();
  file.integers("ncoo", {2, 2, 2, 2, 2, 2});
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 1);
  EXPECT_EQ(variable.m_ncoo, 0);
}

// ---- Each row, once dropped and once with a wrong class

struct Row {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr Row kSingleRows[] = {
    {"block", 1, 1},   {"varnam", 1, 1},   {"ncoo", 1, 1},   {"rank", 1, 1},      {"ndim", 0, 0},
    {"varkey", 0, 0},  {"varclass", 0, 0}, {"type", 0, 0},   {"lenb", 0, 1},      {"lend", 0, 1},
    {"subslen", 0, 1}, {"lvmap", 0, 1},    {"tensor", 0, 1}, {"blocktype", 0, 0},
};

constexpr Row kSplitRows[] = {
    {"block", 1, 1}, {"etypvar", 1, 1}, {"ncoo", 1, 1},      {"rank", 1, 1},
    {"ndim", 0, 0},  {"idtrans", 0, 1}, {"blocktype", 0, 0},
};

class VariableHeaderRow : public orv_test::OrvTest, public testing::WithParamInterface<Row> {};
class SplitVariableHeaderRow : public orv_test::OrvTest, public testing::WithParamInterface<Row> {};

std::string NameOfRow(const testing::TestParamInfo<Row>& info) { return info.param.name; }

int StatusOf(ForgedFile file) {
  TestVariable variable;
  return variable.ReadFirstHeader(file);
}

TEST_P(VariableHeaderRow, AbsentOrRetyped) {
  EXPECT_EQ(StatusOf(std::move(ForgeKeyed().drop(GetParam().name))), GetParam().when_absent);
  EXPECT_EQ(StatusOf(std::move(ForgeKeyed().retype(GetParam().name))), GetParam().when_retyped);
}
INSTANTIATE_TEST_SUITE_P(Rows, VariableHeaderRow, testing::ValuesIn(kSingleRows), NameOfRow);

TEST_P(SplitVariableHeaderRow, AbsentOrRetyped) {
  EXPECT_EQ(StatusOf(std::move(ForgeUnkeyed().drop(GetParam().name))), GetParam().when_absent);
  EXPECT_EQ(StatusOf(std::move(ForgeUnkeyed().retype(GetParam().name))), GetParam().when_retyped);
}
INSTANTIATE_TEST_SUITE_P(Rows, SplitVariableHeaderRow, testing::ValuesIn(kSplitRows), NameOfRow);

}  // namespace
