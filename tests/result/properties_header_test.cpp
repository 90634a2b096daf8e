// Construction and header of a properties block. Its records are in properties_data_test, how all of them are found in
// properties_discovery_test.

#include <gtest/gtest.h>

#include <cstring>

#include "result/forged_properties.h"

namespace {

using orv_test::ForgedProperties;
using orv_test::Layout;
using orv_test::TestProperties;

class PropertiesHeader : public orv_test::OrvTest {};

class PropertiesHeaderLayout : public orv_test::OrvTest, public testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, PropertiesHeaderLayout, testing::Values(Layout::kSplit, Layout::kSingle),
                         orv_test::NameOfLayout);

TEST_P(PropertiesHeaderLayout, FillsAllMembers) {
  ForgedProperties file(GetParam());
  TestProperties block;
  ASSERT_EQ(block.Read(file, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.GetKey(), 500);
  EXPECT_TRUE(block.IsIncremental());
  EXPECT_STREQ(block.m_etypvar, "COORDINATE");
  EXPECT_EQ(block.m_length, 3);
  EXPECT_EQ(block.m_nbfloat, 1);
  EXPECT_EQ(block.m_nbid, 1);
  EXPECT_EQ(block.m_nbint, 2);
  EXPECT_EQ(block.m_nbstring, 2);
  EXPECT_STREQ(block.m_etyp, "SECURED_NODE");
  EXPECT_EQ(block.m_nent, 2);
  EXPECT_STREQ(block.m_etypzone, "ZONE");
  EXPECT_EQ(block.m_zoneid, 7);
  EXPECT_EQ(block.m_nindex, 2);
}

TEST_F(PropertiesHeader, StartsWithTheKeyAndNothingElse) {
  const ORVProperties block;
  EXPECT_EQ(block.GetKey(), 500);
  EXPECT_EQ(block.m_length, 0);
  EXPECT_EQ(block.m_nbfloat, 0);
  EXPECT_EQ(block.m_nbid, 0);
  EXPECT_EQ(block.m_nbint, 0);
  EXPECT_EQ(block.m_nbstring, 0);
  EXPECT_EQ(block.m_cparam, nullptr);
  EXPECT_EQ(block.m_iparam, nullptr);
  EXPECT_EQ(block.m_fparam, nullptr);
  EXPECT_EQ(block.m_readCallBack, nullptr);
  EXPECT_EQ(block.m_readCallBackData, nullptr);
}

void CallBack(int /*status*/, ORVProperties* /*block*/, void* /*data*/) {}

TEST_F(PropertiesHeader, InitializeForgetsCountsAndBuffersOnly) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  block.m_readCallBack = CallBack;
  block.m_readCallBackData = &block;
  block.Initialize();
  EXPECT_EQ(block.m_length, 0);
  EXPECT_EQ(block.m_nbfloat, 0);
  EXPECT_EQ(block.m_nbid, 0);
  EXPECT_EQ(block.m_nbint, 0);
  EXPECT_EQ(block.m_nbstring, 0);
  EXPECT_EQ(block.m_cparam, nullptr);
  EXPECT_EQ(block.m_iparam, nullptr);
  EXPECT_EQ(block.m_fparam, nullptr);
  EXPECT_EQ(block.m_entid, block.ids.data());
  EXPECT_EQ(block.m_nent, 2);
  EXPECT_STREQ(block.m_etyp, "SECURED_NODE");
  EXPECT_EQ(block.GetKey(), 500);
  EXPECT_EQ(block.m_readCallBack, CallBack);
  EXPECT_EQ(block.m_readCallBackData, &block);
}

TEST_F(PropertiesHeader, ACopyHasThePointersToo) {
  char text[1];
  int integer = 0;
  float number = 0;
  ORVProperties block, assigned;
  block.m_length = 4;
  block.m_cparam = text;
  block.m_iparam = &integer;
  block.m_fparam = &number;
  block.m_readCallBack = CallBack;
  block.m_readCallBackData = &integer;
  const ORVProperties copy = block;
  assigned = block;
  for (const ORVProperties* other : {&copy, static_cast<const ORVProperties*>(&assigned)}) {
    EXPECT_EQ(other->m_length, 4);
    EXPECT_EQ(other->m_cparam, text);
    EXPECT_EQ(other->m_iparam, &integer);
    EXPECT_EQ(other->m_fparam, &number);
    EXPECT_EQ(other->m_readCallBack, CallBack);
    EXPECT_EQ(other->m_readCallBackData, &integer);
    EXPECT_EQ(other->GetKey(), 500);
  }
}

TEST_F(PropertiesHeader, OfAnotherKindEndsWithItsKey) {
  ForgedProperties file;
  file.header().integer("block", 1000).drop("etypprop");
  TestProperties block;
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.GetKey(), 1000);
  EXPECT_EQ(block.m_nent, 0);
}

TEST_F(PropertiesHeader, WithoutTheHeaderBitEndsWithItsKey) {
  ForgedProperties file;
  TestProperties block;
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER_INFO), 0);
  EXPECT_TRUE(block.IsIncremental());
  EXPECT_EQ(block.m_nent, 0);
  EXPECT_EQ(block.m_length, 0);
}

TEST_F(PropertiesHeader, WithoutAReaderFails) {
  TestProperties block;
  EXPECT_EQ(block.ReadHeader(-1, ORV_READ_HEADER), 1);
}

TEST_F(PropertiesHeader, WithoutTheOptionalRowsHasDefaults) {
  ForgedProperties file;
  file.header().drop("indexic").drop("etypzone").drop("zoneid").drop("nindex");
  TestProperties block;
  block.m_zoneid = 9;
  std::strcpy(block.m_etypzone, "former");
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 0);
  EXPECT_FALSE(block.IsIncremental());
  EXPECT_STREQ(block.m_etypzone, "");
  EXPECT_EQ(block.m_zoneid, 0);
  EXPECT_EQ(block.m_nindex, 0);
}

TEST_F(PropertiesHeader, EndsAtTheFirstThatIsMissing) {
  ForgedProperties file;
  file.header().drop("nbint");
  TestProperties block;
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 1);
  EXPECT_EQ(block.m_nbid, 1);
  EXPECT_EQ(block.m_nbstring, 0);
  EXPECT_EQ(block.m_nent, 0);
}

TEST_F(PropertiesHeader, LosesTheBlanksOfItsNamesOnlyWhenAllLinesAreRead) {
  ForgedProperties file;
  file.header().text("etypprop", "MASS", 6).text("etyp", "NODE", 6).retype("nindex");
  TestProperties block;
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 1);
  EXPECT_STREQ(block.m_etypvar, "MASS  ");
  EXPECT_STREQ(block.m_etyp, "NODE  ");
  file.header().integer("nindex", 2);
  block.SetEntityAndVarName("SECURED_NODE", "COORDINATE");
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 0);
  EXPECT_STREQ(block.m_etypvar, "MASS");
  EXPECT_STREQ(block.m_etyp, "NODE");
}

TEST_F(PropertiesHeader, OfNoEntitiesIsRead) {
  ForgedProperties file;
  file.header().integer("nent", 0);
  TestProperties block;
  EXPECT_EQ(block.Read(file, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.m_nent, 0);
}

struct Row {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr Row kRows[] = {
    {"block", 1, 1},    {"indexic", 0, 1}, {"etypprop", 1, 1}, {"length", 1, 1}, {"nbfloat", 1, 1},
    {"nbid", 1, 1},     {"nbint", 1, 1},   {"nbstring", 1, 1}, {"etyp", 1, 1},   {"nent", 1, 1},
    {"etypzone", 0, 1}, {"zoneid", 0, 1},  {"nindex", 0, 1},
};

class PropertiesHeaderRow : public orv_test::OrvTest, public testing::WithParamInterface<Row> {};
INSTANTIATE_TEST_SUITE_P(Rows, PropertiesHeaderRow, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(PropertiesHeaderRow, AbsentOrRetyped) {
  ForgedProperties absent, retyped;
  absent.header().drop(GetParam().name);
  retyped.header().retype(GetParam().name);
  TestProperties block;
  EXPECT_EQ(block.Read(absent, ORV_READ_HEADER), GetParam().when_absent);
  EXPECT_EQ(block.Read(retyped, ORV_READ_HEADER), GetParam().when_retyped);
}

}  // namespace
