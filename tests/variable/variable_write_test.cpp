// Writing of variables, looked at with HDF5 alone. Reading is in variable_header_test and variable_data_test.

#include <gtest/gtest.h>

#include <vector>

#include "support/raw_file.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::ForgedFile;
using orv_test::RawFile;
using orv_test::SetText;
using orv_test::TestVariable;
using orv_test::WriterVersion;

constexpr int kBoth = ORV_WRITE_HEADER | ORV_WRITE_DATA;

class VariableHeaderWrite : public orv_test::OrvTest {};
class VariableDataWrite : public orv_test::OrvTest {};
class VariableBlockWrite : public orv_test::OrvTest {};

/// A file with the groups that variables are written into.
ForgedFile Empty() {
  ForgedFile file("write");
  file.group("/post/constant/variable").group("/post/constant/variables");
  return file;
}

/// A variable of two components with all its tables, which are its own.
struct FullVariable : ORVVariable {
  FullVariable() {
    SetText(m_varnam, "Stress");
    m_ncoo = 2;
    m_rank = 1;
    m_ndim = 3;
    m_idtrans = 44;
    m_pMbunit = mbunit;
    m_pMdunit = mdunit;
    m_pUbid = ubid;
    m_pUbexp = ubexp;
    m_pUdid = udid;
    m_pUdexp = udexp;
    m_pCid = cid;
    m_pCname = cname.data();
    m_subslen = 5;
    m_pSubscr = subscr;
    m_pSubscnt = subscnt;
    m_pSubsoffs = subsoffs;
    m_lvmap = 1;
    m_pVmap = vmap;
    m_tensor = 7;
    cname.replace(0, 5, "first").replace(256, 6, "second");
  }
  FullVariable(const FullVariable&) = delete;
  FullVariable& operator=(const FullVariable&) = delete;

  int mbunit[2] = {2, 1}, mdunit[2] = {0, 1}, ubid[3] = {11, 12, 13}, udid[1] = {21}, cid[2] = {7, 8};
  float ubexp[3] = {1, -2, 0.5F}, udexp[1] = {2}, vmap[6] = {1, 2, 3, 4, 5, 6};
  char subscr[5] = {'X', 'X', 'Y', 'Y', 'Y'};
  int subscnt[2] = {2, 3}, subsoffs[2] = {0, 2};
  std::string cname = std::string(512, ' ');
};

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

TEST_F(VariableHeaderWrite, OfVersionTwoStandsInTheSingleGroup) {
  for (const int version : {3, 4, 5}) {
    const WriterVersion writer(version);
    ForgedFile file = Empty();
    FullVariable variable;
    SetText(variable.m_varkey, "ZPS:Stress");
    SetText(variable.m_varclass, "CLASS_STRESS");
    SetText(variable.m_type, "free");
    EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
    const RawFile raw(file.path());
    const std::string group = "/post/constant/variable/ZPS:Stress/orvblock";
    EXPECT_EQ(raw.tree("/post/constant/variable"),
              (std::vector<std::string>{"/post/constant/variable/ZPS:Stress", group}));
    EXPECT_EQ(raw.attributes(group),
              (std::vector<std::string>{"block", "rank", "ndim", "ncoo", "blocktype", "varnam", "varkey", "varclass",
                                        "type", "lvmap", "subslen", "tensor"}));
    EXPECT_EQ(raw.attribute_int(group, "block"), 30);
    EXPECT_EQ(raw.attribute_int(group, "rank"), 1);
    EXPECT_EQ(raw.attribute_int(group, "ndim"), 3);
    EXPECT_EQ(raw.attribute_int(group, "ncoo"), 2);
    for (const char* name : {"block", "rank", "ndim", "ncoo"}) EXPECT_EQ(raw.attribute_size(group, name), 8U) << name;
    EXPECT_EQ(raw.attribute_text(group, "blocktype"), Padded("variable"));
    EXPECT_EQ(raw.attribute_text(group, "varnam"), Padded("Stress"));
    EXPECT_EQ(raw.attribute_text(group, "varkey"), Padded("ZPS:Stress"));
    EXPECT_EQ(raw.attribute_text(group, "varclass"), Padded("CLASS_STRESS"));
    EXPECT_EQ(raw.attribute_text(group, "type"), Padded("free"));
    EXPECT_EQ(raw.attribute_int(group, "lvmap"), 1);
    EXPECT_EQ(raw.attribute_int(group, "subslen"), 5);
    EXPECT_EQ(raw.attribute_int(group, "tensor"), 7);
    for (const char* name : {"lvmap", "subslen", "tensor"}) EXPECT_EQ(raw.attribute_size(group, name), 4U) << name;
    EXPECT_FALSE(raw.has_attribute(group, "idtrans"));
  }
}

TEST_F(VariableHeaderWrite, OfVersionOneStandsInItsOwnGroup) {
  for (const int version : {0, 1, 2}) {
    const WriterVersion writer(version);
    ForgedFile file = Empty();
    FullVariable variable;
    EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
    const RawFile raw(file.path());
    const std::string group = "/post/constant/variables/Stress/header";
    EXPECT_EQ(raw.tree("/post/constant/variables"),
              (std::vector<std::string>{"/post/constant/variables/Stress", group}));
    EXPECT_EQ(raw.attributes(group),
              (std::vector<std::string>{"block", "rank", "ndim", "ncoo", "blocktype", "etypvar", "idtrans"}));
    EXPECT_EQ(raw.attribute_int(group, "block"), 30);
    EXPECT_EQ(raw.attribute_int(group, "rank"), 1);
    EXPECT_EQ(raw.attribute_int(group, "ndim"), 3);
    EXPECT_EQ(raw.attribute_int(group, "ncoo"), 2);
    EXPECT_EQ(raw.attribute_text(group, "blocktype"), Padded("variables"));
    EXPECT_EQ(raw.attribute_text(group, "etypvar"), Padded("Stress"));
    EXPECT_EQ(raw.attribute_int(group, "idtrans"), 44);
    EXPECT_EQ(raw.attribute_size(group, "idtrans"), 8U);
    EXPECT_STREQ(variable.m_varkey, "");
  }
}

TEST_F(VariableHeaderWrite, FillsEmptyWordsOfTheObjectWithBlanks) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  const std::string blanks(256, ' ');
  EXPECT_EQ(std::string(variable.m_varkey), blanks);
  EXPECT_EQ(std::string(variable.m_varclass), blanks);
  EXPECT_EQ(std::string(variable.m_type), blanks);
  EXPECT_FALSE(variable.IsVariableKeyAvailable("", false));
  const RawFile raw(file.path());
  EXPECT_EQ(raw.children("/post/constant/variable"), std::vector<std::string>{"Stress"});
  EXPECT_EQ(raw.attribute_text("/post/constant/variable/Stress/orvblock", "varkey"), blanks);
}

TEST_F(VariableHeaderWrite, ThatWasReadAgainHasNoKeyOnceMore) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  ASSERT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_STREQ(variable.m_varnam, "Stress");
}

TEST_F(VariableHeaderWrite, IgnoresTheStatusOfLvmap) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  file.at("/post/constant/variable/Stress/orvblock").text("lvmap", "a text");
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.attribute_class("/post/constant/variable/Stress/orvblock", "lvmap"), H5T_STRING);
  EXPECT_EQ(raw.attribute_int("/post/constant/variable/Stress/orvblock", "tensor"), 7);
}

TEST_F(VariableHeaderWrite, EndsAtAnyOtherAttributeOfAnotherClass) {
  const WriterVersion writer(5);
  for (const char* name : {"block", "rank", "ndim", "ncoo", "subslen", "tensor"}) {
    ForgedFile file = Empty();
    file.at("/post/constant/variable/Stress/orvblock").text(name, "a text");
    FullVariable variable;
    EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1) << name;
    EXPECT_FALSE(RawFile(file.path()).exists("/post/constant/variable/Stress/orvblock/mbunit")) << name;
  }
}

TEST_F(VariableHeaderWrite, WritesIntoNumbersThatAreThereAndMakesTextsAnew) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  const std::string group = "/post/constant/variable/Stress/orvblock";
  file.at(group).integer32("ncoo", 9).integer("rank", 8).integer("tensor", 6).text("varnam", "Other", 8);
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.attribute_int(group, "ncoo"), 2);
  EXPECT_EQ(raw.attribute_size(group, "ncoo"), 4U);
  EXPECT_EQ(raw.attribute_int(group, "rank"), 1);
  EXPECT_EQ(raw.attribute_int(group, "tensor"), 7);
  EXPECT_EQ(raw.attribute_size(group, "tensor"), 8U);
  EXPECT_EQ(raw.attribute_text(group, "varnam"), Padded("Stress"));
}

TEST_F(VariableHeaderWrite, OfAVariableWithoutComponentsWritesNothing) {
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_ncoo = 0;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 1);
  EXPECT_TRUE(RawFile(file.path()).attributes("/post/constant/variables/Stress/header").empty());
  EXPECT_EQ(variable.WriteHeader(-1), 1);
  EXPECT_EQ(variable.WriteData(-1), 1);
}

TEST_F(VariableDataWrite, OfVersionTwoHasLabelsMapAndTotals) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 3, kBoth), 0);
  const RawFile raw(file.path());
  const std::string group = "/post/constant/variable/Stress/orvblock";
  EXPECT_EQ(raw.children(group), (std::vector<std::string>{"mbunit", "mdunit", "subscnt", "subscr", "subsoffs", "ubexp",
                                                           "ubid", "udexp", "udid", "vmap"}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/mbunit"), (std::vector<std::int32_t>{2, 1}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/mdunit"), (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/ubid"), (std::vector<std::int32_t>{11, 12, 13}));
  EXPECT_EQ(raw.values<float>(group + "/ubexp"), (std::vector<float>{1, -2, 0.5F}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/udid"), (std::vector<std::int32_t>{21}));
  EXPECT_EQ(raw.values<float>(group + "/udexp"), (std::vector<float>{2}));
  EXPECT_EQ(raw.texts(group + "/subscr"), (std::vector<std::string>{"X", "X", "Y", "Y", "Y"}));
  EXPECT_EQ(raw.type_size(group + "/subscr"), 1U);
  EXPECT_EQ(raw.values<std::int32_t>(group + "/subscnt"), (std::vector<std::int32_t>{2, 3}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/subsoffs"), (std::vector<std::int32_t>{0, 2}));
  EXPECT_EQ(raw.shape(group + "/vmap"), (std::vector<hsize_t>{2, 3}));
  EXPECT_EQ(raw.values<float>(group + "/vmap"), (std::vector<float>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(raw.attribute_int(group, "lenb"), 3);
  EXPECT_EQ(raw.attribute_int(group, "lend"), 1);
  EXPECT_EQ(raw.attribute_size(group, "lenb"), 4U);
  EXPECT_EQ(raw.attribute_size(group, "lend"), 4U);
}

TEST_F(VariableDataWrite, OfVersionOneHasIdsAndNames) {
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  const RawFile raw(file.path());
  const std::string group = "/post/constant/variables/Stress/data";
  EXPECT_EQ(raw.children(group),
            (std::vector<std::string>{"cid", "cname", "mbunit", "mdunit", "ubexp", "ubid", "udexp", "udid"}));
  EXPECT_EQ(raw.values<std::int32_t>(group + "/cid"), (std::vector<std::int32_t>{7, 8}));
  EXPECT_EQ(raw.texts(group + "/cname"), (std::vector<std::string>{Padded("first"), Padded("second")}));
  EXPECT_EQ(raw.shape(group + "/cname"), std::vector<hsize_t>{2});
  EXPECT_EQ(raw.type_size(group + "/cname"), 256U);
  EXPECT_TRUE(raw.attributes(group).empty());
}

TEST_F(VariableDataWrite, KeepsTotalsThatAreThere) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  const std::string group = "/post/constant/variable/Stress/orvblock";
  file.at(group).integer("lenb", 99).text("lend", "odd");
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.attribute_int(group, "lenb"), 99);
  EXPECT_EQ(raw.attribute_class(group, "lend"), H5T_STRING);
}

TEST_F(VariableDataWrite, LeavesOutUnitListsWithoutCounts) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_pMbunit = nullptr;
  variable.mdunit[1] = 0;
  variable.m_subslen = 0;
  variable.m_lvmap = 0;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.children("/post/constant/variable/Stress/orvblock"), std::vector<std::string>{"mdunit"});
  EXPECT_EQ(raw.attribute_int("/post/constant/variable/Stress/orvblock", "lenb"), 0);
}

TEST_F(VariableDataWrite, CountsANegativeNumberOfUnitsAsNone) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.mbunit[1] = -100;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.shape("/post/constant/variable/Stress/orvblock/ubid"), std::vector<hsize_t>{2});
}

TEST_F(VariableDataWrite, LabelsOfNegativeLengthAreLeftOut) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_subslen = -5;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_FALSE(RawFile(file.path()).exists("/post/constant/variable/Stress/orvblock/subscr"));
}

TEST_F(VariableDataWrite, AMapOfRankSixteenIsLeftOut) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_rank = 16;
  variable.m_ndim = 1;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_FALSE(RawFile(file.path()).exists("/post/constant/variable/Stress/orvblock/vmap"));
}

TEST_F(VariableDataWrite, AMapOfRankTwoAndExtentZeroIsLeftOut) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_rank = 2;
  variable.m_ndim = 0;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_FALSE(RawFile(file.path()).exists("/post/constant/variable/Stress/orvblock/vmap"));
}

TEST_F(VariableDataWrite, AMapOfRankFifteenHasSixteenDimensions) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_rank = 15;
  variable.m_ndim = 1;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_EQ(RawFile(file.path()).shape("/post/constant/variable/Stress/orvblock/vmap").size(), 16U);
}

TEST_F(VariableDataWrite, AMapOfRankZeroHasOneValueAComponent) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_rank = 0;
  variable.m_ndim = 0;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_EQ(RawFile(file.path()).values<float>("/post/constant/variable/Stress/orvblock/vmap"),
            (std::vector<float>{1, 2}));
}

TEST_F(VariableDataWrite, AnswersTheStatusOfTheLastTable) {
  ForgedFile file = Empty();
  const std::string group = "/post/constant/variables/Stress/data";
  file.at(group).texts("mbunit", 4, {2}, {"a", "b"});
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_EQ(RawFile(file.path()).type_class(group + "/mbunit"), H5T_STRING);
  EXPECT_EQ(RawFile(file.path()).values<std::int32_t>(group + "/mdunit"), (std::vector<std::int32_t>{0, 1}));
  variable.m_pCname = nullptr;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1);
}

TEST_F(VariableDataWrite, WritesFourByteIdsWhateverTypeWasProbed) {
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_cidType = ORV_LONG;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.type_size("/post/constant/variables/Stress/data/cid"), 4U);
  EXPECT_EQ(raw.values<std::int32_t>("/post/constant/variables/Stress/data/cid"), (std::vector<std::int32_t>{7, 8}));
}

TEST_F(VariableBlockWrite, WritesOnlyTheSelectedParts) {
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_DATA), 0);
  EXPECT_EQ(RawFile(file.path()).children("/post/constant/variables/Stress"), std::vector<std::string>{"data"});
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(file.path()).children("/post/constant/variables/Stress"),
            (std::vector<std::string>{"data", "header"}));
}

TEST_F(VariableBlockWrite, HasNoIndex) {
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth | ORV_WRITE_INDEX), 0);
  EXPECT_EQ(RawFile(file.path()).children("/post/constant/variables/Stress"),
            (std::vector<std::string>{"data", "header"}));
}

TEST_F(VariableBlockWrite, OfHeaderThenDataGoesToOneGroup) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, ORV_WRITE_DATA), 0);
  EXPECT_EQ(RawFile(file.path()).children("/post/constant/variable"), std::vector<std::string>{"Stress"});
}

TEST_F(VariableBlockWrite, GoesByTheIdentityInBothLayouts) {
  ForgedFile file = Empty();
  FullVariable variable;
  SetText(variable.m_varkey, "KEY");
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  EXPECT_TRUE(RawFile(file.path()).exists("/post/constant/variables/KEY/header"));
}

TEST_F(VariableBlockWrite, LeavesSingleValuesUncompressedWithoutDigitsOfItsOwn) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  int on = 0, digits = 0;
  OH5GetCompression(&on, &digits);
  OH5SetCompression(1, 3);
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  OH5SetCompression(on, digits);
  EXPECT_TRUE(RawFile(file.path()).filters("/post/constant/variable/Stress/orvblock/vmap").empty());
}

TEST_F(VariableBlockWrite, OverMoreComponentsFailsAndChangesNothing) {
  for (const int version : {1, 5}) {
    const WriterVersion writer(version);
    ForgedFile file = Empty();
    FullVariable variable;
    ASSERT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
    const std::string before = orv_test::BytesOf(file.path());
    variable.mbunit[0] = variable.mdunit[0] = 1;
    variable.m_ncoo = 1;
    EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1) << version;
    EXPECT_TRUE(orv_test::BytesOf(file.path()) == before) << version;
  }
}

TEST_F(VariableBlockWrite, OverFewerComponentsFailsAndChangesNothing) {
  for (const int version : {1, 5}) {
    const WriterVersion writer(version);
    ForgedFile file = Empty();
    FullVariable variable;
    variable.m_ncoo = 1;
    ASSERT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
    const std::string before = orv_test::BytesOf(file.path());
    variable.m_ncoo = 2;
    EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1) << version;
    EXPECT_TRUE(orv_test::BytesOf(file.path()) == before) << version;
  }
}

TEST_F(VariableBlockWrite, OverMoreComponentsFailsThoughTheLastTableFits) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  ASSERT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  variable.m_ncoo = 1;
  variable.mbunit[0] = 0;
  variable.mdunit[0] = 1;
  variable.m_subslen = 0;
  variable.m_lvmap = 0;
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1);
  EXPECT_EQ(RawFile(file.path()).attribute_int("/post/constant/variable/Stress/orvblock", "ncoo"), 2);
}

TEST_F(VariableBlockWrite, NeedsAFileWithTheGroupOfTheVersion) {
  FullVariable variable;
  EXPECT_EQ(variable.WriteBlock(nullptr, 0, kBoth), 1);
  EXPECT_EQ(variable.WriteBlock(TempPath("missing").c_str(), 0, kBoth), 1);
  ForgedFile file("bare");
  const std::string before = orv_test::BytesOf(file.path());
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1);
  EXPECT_FALSE(RawFile(file.path()).exists("/post/constant/variables"));
}

TEST_F(VariableBlockWrite, OfANamelessVariableFails) {
  ForgedFile file = Empty();
  FullVariable variable;
  variable.m_varnam[0] = '\0';
  EXPECT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 1);
}

TEST_F(VariableBlockWrite, ComesBackAsItWasWritten) {
  const WriterVersion writer(5);
  ForgedFile file = Empty();
  FullVariable variable;
  SetText(variable.m_varkey, "ZPS:Stress");
  ASSERT_EQ(variable.WriteBlock(file.path().c_str(), 0, kBoth), 0);
  TestVariable read;
  ASSERT_EQ(read.ReadFirst(file), 0);
  EXPECT_STREQ(read.m_varkey, "ZPS:Stress");
  EXPECT_EQ(read.m_lenb, 3);
  EXPECT_EQ(read.m_pVmap[5], 6.0F);
  EXPECT_EQ(std::string(read.m_pSubscr, 5), "XXYYY");
}

}  // namespace
