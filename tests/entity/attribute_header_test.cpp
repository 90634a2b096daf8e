// The header of entity attribute and identifiers blocks as it is read: every attribute, present, absent and of another
// kind, in both layouts; and the members that no file has. Datasets are in attribute_data_test.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

#include "entity/entity_list_forge.h"
#include "orvio/orv_ent_attribute.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

int ReadHeaderOf(ORVEntAttribute& block, ForgedFile& file) {
  std::strcpy(block.m_etyp, "NODE");
  return block.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER);
}

ForgedFile& AddOptional(ForgedFile& file) {
  return file.integer("nuid", 2).integer("nindex", 4).integer32("length", 8).integer32("indexic", 1);
}

struct HeaderRow {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr HeaderRow kRows[] = {
    {"block", 1, 1}, {"blocktype", 0, 0}, {"indexic", 0, 1}, {"etyp", 1, 1},
    {"nent", 1, 1},  {"nuid", 0, 1},      {"nindex", 0, 1},  {"length", 0, 0},
};

class AttributeHeaderRow : public OrvTest, public ::testing::WithParamInterface<std::tuple<HeaderRow, Layout>> {
 protected:
  AttributeHeaderRow() { AddOptional(AddEntities(file_, kAttributes, "NODE", std::get<1>(GetParam()))); }

  ForgedFile file_;
  ORVEntAttribute block_;
};

TEST_P(AttributeHeaderRow, AnswersAsTheFormatSaysWhenAbsent) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.drop(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_absent);
}

TEST_P(AttributeHeaderRow, AnswersAsTheFormatSaysWhenOfAnotherKind) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.retype(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_retyped);
}

INSTANTIATE_TEST_SUITE_P(Rows, AttributeHeaderRow,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values(Layout::kSplit, Layout::kSingle)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + NameOf(std::get<1>(row.param));
                         });

class AttributeHeader : public OrvTest {
 protected:
  ForgedFile& Entities() { return AddEntities(file_, kAttributes, "NODE", Layout::kSingle); }

  ForgedFile file_;
  ORVEntAttribute block_;
};

class AttributeHeaderLayout : public AttributeHeader, public ::testing::WithParamInterface<Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, AttributeHeaderLayout, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(AttributeHeaderLayout, GivesEveryAttributeToItsMember) {
  AddOptional(AddEntities(file_, kAttributes, "NODE", GetParam())).integer("block", 201);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.GetKey(), 201);
  EXPECT_STREQ(block_.m_etyp, "NODE");
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(block_.m_nuid, 2);
  EXPECT_EQ(block_.m_nindex, 4);
  EXPECT_EQ(block_.m_length, 8);
  EXPECT_TRUE(block_.IsIncremental());
}

TEST_P(AttributeHeaderLayout, WithoutOptionalAttributesHas256ByteTitlesAndNothingElse) {
  AddOptional(AddEntities(file_, kAttributes, "NODE", GetParam()));
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  AddEntities(file_, kAttributes, "NODE", GetParam()).drop("nuid").drop("nindex").drop("length").drop("indexic");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);  // the same block: what it had before does not count
  EXPECT_EQ(block_.m_nuid, 0);
  EXPECT_EQ(block_.m_nindex, 0);
  EXPECT_EQ(block_.m_length, 256);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_P(AttributeHeaderLayout, OfIdentifiersStandsInTheirOwnGroup) {
  AddEntities(file_, kAttributes, "NODE", GetParam());
  AddEntities(file_, kIdentifiers, "NODE", GetParam()).integer("nent", 7);
  ORVIdentifiers identifiers;
  ASSERT_EQ(ReadHeaderOf(identifiers, file_), 0);
  EXPECT_EQ(identifiers.m_nent, 7);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.m_nent, 3);
}

TEST_P(AttributeHeaderLayout, ReadsABlockOfAState) {
  AddEntities(file_, InState(1, "attributes"), "SHELL", GetParam());
  AddEntities(file_, InState(2, "attributes"), "NODE", GetParam()).integer("nent", 99);
  std::strcpy(block_.m_etyp, "NODE");
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_nent, 99);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 3, ORV_READ_HEADER), 1);
}

TEST_F(AttributeHeader, WithoutNentKeepsTheBlanksOfEtyp) {
  Entities().drop("nent");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(std::string(block_.m_etyp), "NODE" + std::string(252, ' '));
}

TEST_F(AttributeHeader, ThatEndsAtTheFlagHasNotReadTheName) {
  AddOptional(Entities()).retype("indexic").text("etyp", "OTHER");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_STREQ(block_.m_etyp, "NODE");
}

TEST_F(AttributeHeader, ThatEndsAtNuidHasReadTheCount) {
  AddOptional(Entities()).retype("nuid");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(block_.m_nindex, 0);
}

TEST_F(AttributeHeader, LeavesTheTitleLengthAloneWhenItCannotBeRead) {
  AddOptional(Entities()).retype("length");
  block_.m_length = 77;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.m_length, 77);
}

TEST_F(AttributeHeader, TakesANameThatFillsItsField) {
  Entities().text("etyp", std::string(256, 'E'));
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(std::string(block_.m_etyp), std::string(256, 'E'));
}

/// Reaches what the block protocol calls.
class OpenIdentifiers : public ORVIdentifiers {
 public:
  using ORVIdentifiers::AppendBlockSchema;
};

TEST_F(AttributeHeader, TheNameIsTheLastLevelOfThePath) {
  OpenIdentifiers block;
  std::strcpy(block.m_etyp, "NODE");
  std::string path;
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "NODE");
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "NODE/NODE");
}

TEST_F(AttributeHeader, IsNotReadByTheInfoStage) {
  Entities();
  std::strcpy(block_.m_etyp, "NODE");
  EXPECT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER_INFO), 1);
  EXPECT_EQ(block_.m_nent, 0);
}

// ---- Members

TEST_F(AttributeHeader, StartsWithDefaults) {
  EXPECT_EQ(block_.GetKey(), 200);
  EXPECT_EQ(ORVIdentifiers().GetKey(), 250);
  EXPECT_EQ(std::string(block_.m_etyp, 257), std::string(257, '\0'));
  EXPECT_EQ(block_.m_nent + block_.m_nuid + block_.m_nindex, 0);
  EXPECT_EQ(block_.m_length, 256);
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
  EXPECT_EQ(block_.m_indexidentType, ORV_INT);
  EXPECT_EQ(block_.m_indexvalType, ORV_FLOAT);
  for (const void* array : {block_.m_entid, block_.m_uid, static_cast<void*>(block_.m_title), block_.m_indexident,
                            block_.m_indexval, block_.m_userData}) {
    EXPECT_EQ(array, nullptr);
  }
  EXPECT_TRUE(block_.GetDuplicateNameFlag());
}

/// A block with nothing as it is at first.
void Fill(ORVEntAttribute& block) {
  static int number = 1;
  static char text = 'x';
  std::strcpy(block.m_etyp, "NODE");
  block.m_nent = block.m_nuid = block.m_nindex = 5;
  block.m_length = 8;
  block.m_entidType = block.m_uidType = block.m_indexidentType = ORV_LONG;
  block.m_indexvalType = ORV_DOUBLE;
  block.m_entid = block.m_uid = block.m_indexident = block.m_indexval = block.m_userData = &number;
  block.m_title = &text;
  block.SetDuplicateNameFlag(false);
}

TEST_F(AttributeHeader, IsInitializedWithNameAndCountsByTheFirstBit) {
  Fill(block_);
  block_.InitializeBlock(1);
  EXPECT_STREQ(block_.m_etyp, "");
  EXPECT_EQ(block_.m_nent, 0);
  EXPECT_EQ(block_.m_nuid, 0);
  EXPECT_EQ(block_.m_nindex, 0);
  EXPECT_EQ(block_.m_length, 256);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_NE(block_.m_title, nullptr);
  EXPECT_NE(block_.m_indexval, nullptr);
}

TEST_F(AttributeHeader, IsInitializedWithTypesAndArraysByTheSecondBit) {
  Fill(block_);
  block_.InitializeBlock(2);
  EXPECT_STREQ(block_.m_etyp, "NODE");
  EXPECT_EQ(block_.m_length, 8);
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
  EXPECT_EQ(block_.m_entid, nullptr);
  EXPECT_EQ(block_.m_uid, nullptr);
  EXPECT_EQ(block_.m_title, nullptr);
  EXPECT_EQ(block_.m_indexidentType, ORV_LONG);
  EXPECT_NE(block_.m_indexident, nullptr);
}

TEST_F(AttributeHeader, IsInitializedWithTheIndexByTheThirdBit) {
  Fill(block_);
  block_.InitializeBlock(4);
  EXPECT_EQ(block_.m_nindex, 5);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_EQ(block_.m_indexidentType, ORV_INT);
  EXPECT_EQ(block_.m_indexvalType, ORV_FLOAT);
  EXPECT_EQ(block_.m_indexident, nullptr);
  EXPECT_EQ(block_.m_indexval, nullptr);
  block_.InitializeBlock(7);
  EXPECT_NE(block_.m_userData, nullptr);
  EXPECT_FALSE(block_.GetDuplicateNameFlag());
}

TEST_F(AttributeHeader, ACopySharesArraysAndTheHostsData) {
  Fill(block_);
  block_.SetBlkPath("/somewhere");
  const ORVEntAttribute made(block_);
  ORVIdentifiers identifiers;
  static_cast<ORVEntAttribute&>(identifiers) = block_;
  for (const ORVEntAttribute* copy : {&made, static_cast<const ORVEntAttribute*>(&identifiers)}) {
    EXPECT_STREQ(copy->m_etyp, "NODE");
    EXPECT_EQ(copy->m_nent, 5);
    EXPECT_EQ(copy->m_length, 8);
    EXPECT_EQ(copy->m_entid, block_.m_entid);
    EXPECT_EQ(copy->m_title, block_.m_title);
    EXPECT_EQ(copy->m_userData, block_.m_userData);
    EXPECT_FALSE(copy->m_duplicateName);
    EXPECT_EQ(copy->GetBlkPath(), "/somewhere");
    EXPECT_EQ(copy->GetKey(), 200);
  }
}

TEST_F(AttributeHeader, KnowsItsTypeNameWithoutRegardToCase) {
  EXPECT_FALSE(block_.IsEntityTypeName(""));
  std::strcpy(block_.m_etyp, "Node");
  EXPECT_TRUE(block_.IsEntityTypeName("NODE"));
  EXPECT_FALSE(block_.IsEntityTypeName("NODES"));
  EXPECT_FALSE(block_.IsEntityTypeName("NOD"));
  EXPECT_FALSE(block_.IsEntityTypeName(""));
  EXPECT_FALSE(block_.IsEntityTypeName(nullptr));
}

TEST_F(AttributeHeader, KnowsTheNameOfItsGroup) {
  char name[32] = "before";
  block_.GetGroupName(nullptr);
  block_.GetGroupName(name);
  EXPECT_STREQ(name, "attributes");
  ORVIdentifiers().GetGroupName(name);
  EXPECT_STREQ(name, "identifiers");
}

TEST_F(AttributeHeader, OfAKeyWithoutAGroupBelongsToTheAttributes) {
  Entities().integer("block", 201);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  char name[32] = "before";
  block_.GetGroupName(name);
  EXPECT_STREQ(name, "attributes");
}

}  // namespace
}  // namespace orv_test
