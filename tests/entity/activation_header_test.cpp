// The header of an element activation block as it is read: every attribute, present, absent and of another kind, in both
// layouts. Datasets are in activation_data_test, writing in activation_write_test.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

#include "entity/activation_forge.h"
#include "orvio/orv_ele_activation.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

int ReadHeaderOf(ORVEleActivation& block, ForgedFile& file) {
  std::strcpy(block.m_etyp, "SHELL");
  return block.ReadBlock(file.path().c_str(), 1, ORV_READ_HEADER);
}

struct HeaderRow {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr HeaderRow kRows[] = {
    {"block", 1, 1}, {"blocktype", 0, 0}, {"etyp", 1, 1}, {"nent", 1, 1}, {"nindex", 1, 1}, {"indexic", 0, 0},
};

class ActivationHeaderRow : public OrvTest, public ::testing::WithParamInterface<std::tuple<HeaderRow, Layout>> {
 protected:
  ActivationHeaderRow() { AddActivation(file_, kActiveShells, std::get<1>(GetParam())).integer32("indexic", 1); }

  ForgedFile file_;
  ORVEleActivation block_;
};

TEST_P(ActivationHeaderRow, AnswersAsTheFormatSaysWhenAbsent) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.drop(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_absent);
}

TEST_P(ActivationHeaderRow, AnswersAsTheFormatSaysWhenOfAnotherKind) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.retype(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_retyped);
}

INSTANTIATE_TEST_SUITE_P(Rows, ActivationHeaderRow,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values(Layout::kSplit, Layout::kSingle)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + NameOf(std::get<1>(row.param));
                         });

class ActivationHeader : public OrvTest {
 protected:
  ForgedFile& Activation() { return AddActivation(file_, kActiveShells, Layout::kSingle); }

  ForgedFile file_;
  ORVEleActivation block_;
};

class ActivationHeaderLayout : public ActivationHeader, public ::testing::WithParamInterface<Layout> {};

TEST_P(ActivationHeaderLayout, GivesEveryAttributeToItsMember) {
  AddActivation(file_, kActiveShells, GetParam()).integer("block", 2101).integer("nindex", 4).integer32("indexic", 1);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.GetKey(), 2101);
  EXPECT_STREQ(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(block_.m_nindex, 4);
  EXPECT_EQ(block_.m_nstate, 0);
  EXPECT_TRUE(block_.IsIncremental());
}

TEST_P(ActivationHeaderLayout, ReadsWithoutTheIncrementalFlag) {
  AddActivation(file_, kActiveShells, GetParam());
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_P(ActivationHeaderLayout, WithoutAFlagIsNotIncrementalAfterOneThatIs) {
  AddActivation(file_, kActiveShells, GetParam()).integer32("indexic", 1);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  ASSERT_TRUE(block_.IsIncremental());
  file_.retype("indexic");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_TRUE(block_.IsIncremental());  // what cannot be read changes nothing
  file_.drop("indexic");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_P(ActivationHeaderLayout, ReadsABlockOfItsOwnState) {
  AddActivation(file_, "/post/singlestate/state000000000001/activflags/BEAM", GetParam());
  AddActivation(file_, "/post/singlestate/state000000000002/activflags/SHELL", GetParam()).integer("nent", 99);
  std::strcpy(block_.m_etyp, "SHELL");
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_nent, 99);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 3, ORV_READ_HEADER), 1);
}

INSTANTIATE_TEST_SUITE_P(Layouts, ActivationHeaderLayout, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_F(ActivationHeader, StartsWithZeroedMembersAndDefaultTypes) {
  const ORVEleActivation block;
  EXPECT_EQ(block.GetKey(), 2100);
  EXPECT_EQ(std::string(block.m_etyp, 257), std::string(257, '\0'));
  EXPECT_EQ(block.m_nent, 0);
  EXPECT_EQ(block.m_nindex, 0);
  EXPECT_EQ(block.m_nstate, 0);
  for (const void* buffer : {block.m_entid, block.m_status, block.m_indexident, block.m_indexval}) {
    EXPECT_EQ(buffer, nullptr);
  }
  EXPECT_EQ(block.m_entidType, ORV_INT);
  EXPECT_EQ(block.m_statusType, ORV_INT);
  EXPECT_EQ(block.m_indexidentType, ORV_INT);
  EXPECT_EQ(block.m_indexvalType, ORV_FLOAT);
}

TEST_F(ActivationHeader, StartsWithAnotherBlockTypeWhenGivenOne) {
  const ORVEleActivation block(2150);
  EXPECT_EQ(block.GetKey(), 2150);
  EXPECT_EQ(block.m_nent, 0);
  EXPECT_EQ(block.m_indexvalType, ORV_FLOAT);
}

TEST_F(ActivationHeader, ACopySharesTheBuffers) {
  int ids[3] = {};
  float values[1] = {};
  std::strcpy(block_.m_etyp, "SHELL");
  block_.m_nent = 3;
  block_.m_status = ids;
  block_.m_indexval = values;
  block_.SetBlkPath("/somewhere");
  const ORVEleActivation made(block_);
  ORVEleActivation assigned(1);
  assigned = block_;
  for (const ORVEleActivation* copy : {&made, static_cast<const ORVEleActivation*>(&assigned)}) {
    EXPECT_STREQ(copy->m_etyp, "SHELL");
    EXPECT_EQ(copy->m_nent, 3);
    EXPECT_EQ(copy->m_status, ids);
    EXPECT_EQ(copy->m_indexval, values);
    EXPECT_EQ(copy->GetBlkPath(), "/somewhere");
    EXPECT_EQ(copy->GetKey(), 2100);
  }
}

TEST_F(ActivationHeader, WithoutNindexFailsAfterTheRestWasStored) {
  Activation().drop("nindex").integer32("indexic", 1);
  block_.m_nindex = 6;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_STREQ(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(block_.m_nindex, 6);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_F(ActivationHeader, ThatEndsAtBlockLeavesEveryMemberAlone) {
  Activation().drop("block").integer32("indexic", 1);
  block_.m_nent = 77;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nent, 77);
  EXPECT_EQ(block_.GetKey(), 2100);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_F(ActivationHeader, IsNotIncrementalWithAnUnreadableFlag) {
  Activation().integer32("indexic", 1).retype("indexic");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_F(ActivationHeader, TakesATextThatFillsItsField) {
  Activation().text("etyp", std::string(256, 'E'));
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(std::string(block_.m_etyp), std::string(256, 'E'));
}

TEST_F(ActivationHeader, RefusesATextWiderThanItsField) {
  Activation().text("etyp", "SHELL", 257);
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nent, 0);
}

TEST_F(ActivationHeader, IsNotReadByTheInfoStage) {
  Activation();
  std::strcpy(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.ReadBlock(file_.path().c_str(), 1, ORV_READ_HEADER_INFO), 1);
  EXPECT_EQ(block_.m_nent, 0);
}

/// Reaches what the block protocol calls.
class OpenActivation : public ORVEleActivation {
 public:
  using ORVEleActivation::AppendBlockSchema;
};

TEST_F(ActivationHeader, TheNameIsTheLastLevelOfThePath) {
  OpenActivation block;
  std::strcpy(block.m_etyp, "SHELL");
  std::string path;
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "SHELL");
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "SHELL/SHELL");
}

}  // namespace
}  // namespace orv_test
