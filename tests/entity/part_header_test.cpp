// The header of a part block as it is read: every attribute, present, absent and of another kind, in both layouts.
// Datasets are in part_data_test, writing in part_write_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "entity/part_forge.h"
#include "orvio/orv_part.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

int ReadHeaderOf(ORVPart& block, ForgedFile& file) {
  std::strcpy(block.m_etyppart, "PART");
  return block.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER);
}

struct HeaderRow {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr HeaderRow kRows[] = {
    {"block", 1, 1}, {"blocktype", 0, 0}, {"etyppart", 1, 1}, {"npart", 1, 1}, {"length", 0, 1}, {"nindex", 1, 1},
};

class PartHeaderRow : public OrvTest, public ::testing::WithParamInterface<std::tuple<HeaderRow, Layout>> {
 protected:
  PartHeaderRow() { AddParts(file_, kParts, std::get<1>(GetParam())).integer32("length", 80); }

  ForgedFile file_;
  ORVPart block_;
};

TEST_P(PartHeaderRow, AnswersAsTheFormatSaysWhenAbsent) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.drop(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_absent);
}

TEST_P(PartHeaderRow, AnswersAsTheFormatSaysWhenOfAnotherKind) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.retype(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_retyped);
}

INSTANTIATE_TEST_SUITE_P(Rows, PartHeaderRow,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values(Layout::kSplit, Layout::kSingle)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + NameOf(std::get<1>(row.param));
                         });

class PartHeader : public OrvTest {
 protected:
  ForgedFile& Parts() { return AddParts(file_, kParts, Layout::kSingle); }

  ForgedFile file_;
  ORVPart block_;
};

class PartHeaderLayout : public PartHeader, public ::testing::WithParamInterface<Layout> {};

TEST_P(PartHeaderLayout, GivesEveryAttributeToItsMember) {
  AddParts(file_, kParts, GetParam()).integer("block", 101).integer("nindex", 4).integer32("length", 80);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.GetKey(), 101);
  EXPECT_STREQ(block_.m_etyppart, "PART");
  EXPECT_EQ(block_.m_npart, 2);
  EXPECT_EQ(block_.m_nindex, 4);
  EXPECT_EQ(block_.m_length, 80);
}

TEST_P(PartHeaderLayout, WithoutALengthHasTitlesOf256Bytes) {
  AddParts(file_, kParts, GetParam());
  block_.m_length = 80;
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.m_length, 256);
}

TEST_P(PartHeaderLayout, ReadsABlockOfAState) {
  AddParts(file_, "/post/singlestate/state000000000001/parts/PART", GetParam()).integer("npart", 99);
  std::strcpy(block_.m_etyppart, "PART");
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 0, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_npart, 99);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 2, ORV_READ_HEADER), 1);
}

INSTANTIATE_TEST_SUITE_P(Layouts, PartHeaderLayout, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_F(PartHeader, StartsWithZeroedMembersAndDefaultTypes) {
  const ORVPart block;
  EXPECT_EQ(block.GetKey(), 100);
  EXPECT_EQ(std::string(block.m_etyppart, 257), std::string(257, '\0'));
  EXPECT_EQ(block.m_npart, 0);
  EXPECT_EQ(block.m_nindex, 0);
  EXPECT_EQ(block.m_length, 256);
  for (const void* buffer : {block.m_pid, static_cast<void*>(block.m_title), block.m_mid, block.m_mtyp, block.m_pcol,
                             block.m_pvtyp, block.m_indexval}) {
    EXPECT_EQ(buffer, nullptr);
  }
  for (const _ORVDataType type : {block.m_pidType, block.m_midType, block.m_mtypType, block.m_pcolType,
                                  block.m_pvtypType, block.m_indexidentType}) {
    EXPECT_EQ(type, ORV_INT);
  }
  EXPECT_EQ(block.m_indexvalType, ORV_FLOAT);
}

TEST_F(PartHeader, HasItsMembersInTheirFixedOrder) {
  const void* const members[] = {
      block_.m_etyppart,        &block_.m_npart,        &block_.m_nindex,   &block_.m_length,    &block_.m_pidType,
      &block_.m_midType,        &block_.m_mtypType,     &block_.m_pcolType, &block_.m_pvtypType, &block_.m_pid,
      &block_.m_title,          &block_.m_mid,          &block_.m_mtyp,     &block_.m_pcol,      &block_.m_pvtyp,
      &block_.m_indexidentType, &block_.m_indexvalType, &block_.m_indexval,
  };
  EXPECT_TRUE(std::ranges::is_sorted(members));
}

TEST_F(PartHeader, ACopySharesTheBuffers) {
  int ids[2] = {};
  char titles[12] = {};
  std::strcpy(block_.m_etyppart, "PART");
  block_.m_npart = 2;
  block_.m_pvtyp = ids;
  block_.m_title = titles;
  block_.SetBlkPath("/somewhere");
  const ORVPart made(block_);
  ORVPart assigned;
  assigned = block_;
  for (const ORVPart* copy : {&made, static_cast<const ORVPart*>(&assigned)}) {
    EXPECT_STREQ(copy->m_etyppart, "PART");
    EXPECT_EQ(copy->m_npart, 2);
    EXPECT_EQ(copy->m_pvtyp, ids);
    EXPECT_EQ(copy->m_title, titles);
    EXPECT_EQ(copy->GetBlkPath(), "/somewhere");
    EXPECT_EQ(copy->GetKey(), 100);
  }
}

TEST_F(PartHeader, WithoutNindexFailsAfterTheCountWasStored) {
  Parts().drop("nindex").integer32("length", 80);
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_npart, 2);
  EXPECT_EQ(block_.m_length, 256);
  EXPECT_EQ(std::string(block_.m_etyppart), "PART" + std::string(252, ' '));
}

TEST_F(PartHeader, ThatEndsAtBlockLeavesEveryMemberAlone) {
  Parts().drop("block").integer32("length", 80);
  block_.m_npart = 77;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_npart, 77);
  EXPECT_EQ(block_.m_length, 256);
  EXPECT_STREQ(block_.m_etyppart, "PART");
}

TEST_F(PartHeader, TakesATextThatFillsItsField) {
  Parts().text("etyppart", std::string(256, 'P'));
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(std::string(block_.m_etyppart), std::string(256, 'P'));
}

TEST_F(PartHeader, IsNotReadByTheInfoStage) {
  Parts();
  std::strcpy(block_.m_etyppart, "PART");
  EXPECT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER_INFO), 1);
  EXPECT_EQ(block_.m_npart, 0);
}

/// Reaches what the block protocol calls.
class OpenPart : public ORVPart {
 public:
  using ORVPart::AppendBlockSchema;
  using ORVPart::ReadHeader;
};

TEST_F(PartHeader, TheNameIsTheLastLevelOfThePath) {
  OpenPart block;
  std::strcpy(block.m_etyppart, "PART");
  std::string path;
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "PART");
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "PART/PART");
}

TEST_F(PartHeader, NeedsAReader) { EXPECT_EQ(OpenPart().ReadHeader(H5I_INVALID_HID, ORV_READ_HEADER), 1); }

// ---- Walks, as every block has them

std::vector<std::string> visited;

_ORVAction Record(int status, int stage, void* where, void* block) {
  const auto* parts = static_cast<ORVPart*>(static_cast<ORVBlock*>(block));
  visited.push_back(std::to_string(stage) + " " + std::to_string(*static_cast<int*>(where)) + " " + parts->m_etyppart +
                    " " + std::to_string(parts->m_npart) + (status == 0 ? "" : " failed"));
  return ORV_ACTION_CONTINUE;
}

TEST_F(PartHeader, IsReadOverTheStatesByTheNameGiven) {
  AddParts(file_, "/post/singlestate/state000000000001/parts/PART", Layout::kSplit);
  AddParts(file_, "/post/singlestate/state000000000002/parts/PART", Layout::kSplit).integer("npart", 5);
  visited.clear();
  EXPECT_EQ(block_.ReadBlockOver(file_.path().c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "parts/PART"), 0);
  EXPECT_THAT(visited, ::testing::ElementsAre("1 0 PART 2", "1 1 PART 5"));
}

}  // namespace
}  // namespace orv_test
