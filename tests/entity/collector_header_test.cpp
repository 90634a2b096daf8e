// The header of a collector block as it is read: every attribute, present, absent and of another kind, in both layouts;
// and the members of a block in memory. Datasets are in collector_data_test.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>

#include "entity/entity_list_forge.h"
#include "orvio/orv_collector.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

int ReadHeaderOf(ORVCollector& block, ForgedFile& file) {
  std::strcpy(block.m_etypcoll, "PAIRS");
  return block.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER);
}

struct HeaderRow {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr HeaderRow kRows[] = {
    {"block", 1, 1}, {"blocktype", 0, 0}, {"etypcoll", 1, 1}, {"ncoll", 1, 1},
    {"ntyp", 1, 1},  {"nenttot", 1, 1},   {"nindex", 1, 1},   {"indexic", 0, 0},
};

class CollectorHeaderRow : public OrvTest, public ::testing::WithParamInterface<std::tuple<HeaderRow, Layout>> {
 protected:
  CollectorHeaderRow() { AddCollectors(file_, kCollectors, "PAIRS", std::get<1>(GetParam())).integer32("indexic", 1); }

  ForgedFile file_;
  ORVCollector block_;
};

TEST_P(CollectorHeaderRow, AnswersAsTheFormatSaysWhenAbsent) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.drop(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_absent);
}

TEST_P(CollectorHeaderRow, AnswersAsTheFormatSaysWhenOfAnotherKind) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.retype(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_retyped);
}

INSTANTIATE_TEST_SUITE_P(Rows, CollectorHeaderRow,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values(Layout::kSplit, Layout::kSingle)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + NameOf(std::get<1>(row.param));
                         });

class CollectorHeader : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ForgedFile& Collectors() { return AddCollectors(file_, kCollectors, "PAIRS", GetParam()); }

  ForgedFile file_;
  ORVCollector block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, CollectorHeader, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(CollectorHeader, GivesEveryAttributeToItsMember) {
  Collectors().integer("block", 401).integer("ncoll", 3).integer("ntyp", 4).integer("nindex", 6);
  file_.integer32("indexic", 1);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.GetKey(), 401);
  EXPECT_STREQ(block_.m_etypcoll, "PAIRS");
  EXPECT_EQ(block_.m_ncoll, 3);
  EXPECT_EQ(block_.m_ntyp, 4);
  EXPECT_EQ(block_.m_nenttot, 5);
  EXPECT_EQ(block_.m_nindex, 6);
  EXPECT_TRUE(block_.IsIncremental());
}

TEST_P(CollectorHeader, WithoutAFlagIsNotIncremental) {
  Collectors().integer32("indexic", 1);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  Collectors().drop("indexic");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_P(CollectorHeader, EndsAtWhatIsMissing) {
  Collectors().drop("ntyp");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_ncoll, 2);
  EXPECT_EQ(block_.m_nenttot, 0);
  EXPECT_STREQ(block_.m_etypcoll, "PAIRS");
}

TEST_P(CollectorHeader, IsReadInAState) {
  AddCollectors(file_, InState(1, "collector"), "OTHER", GetParam());
  AddCollectors(file_, InState(2, "collector"), "PAIRS", GetParam()).integer("ncoll", 9);
  std::strcpy(block_.m_etypcoll, "PAIRS");
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_ncoll, 9);
}

TEST_P(CollectorHeader, IsNotReadByTheInfoStage) {
  Collectors();
  std::strcpy(block_.m_etypcoll, "PAIRS");
  EXPECT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER_INFO), 1);
  EXPECT_EQ(block_.m_ncoll, 0);
}

/// Reaches what the block protocol calls.
class OpenCollector : public ORVCollector {
 public:
  using ORVCollector::AppendBlockSchema;
};

TEST_P(CollectorHeader, TheNameIsTheLastLevelOfThePath) {
  OpenCollector block;
  std::strcpy(block.m_etypcoll, "PAIRS");
  std::string path;
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "PAIRS");
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "PAIRS/PAIRS");
}

// ---- Members

class CollectorMembers : public OrvTest {
 protected:
  void Fill() {
    std::strcpy(block_.m_etypcoll, "PAIRS");
    block_.m_ncoll = block_.m_ntyp = block_.m_nenttot = block_.m_nindex = 5;
    block_.m_idcollType = block_.m_nentType = block_.m_entidType = block_.m_indexidentType = ORV_LONG;
    block_.m_indexvalType = ORV_DOUBLE;
    block_.m_idcoll = block_.m_nent = block_.m_entid = block_.m_indexident = block_.m_indexval = &number_;
    block_.m_etyp = &text_;
  }

  int number_ = 1;
  char text_ = 'x';
  ORVCollector block_;
};

TEST_F(CollectorMembers, StartWithDefaults) {
  EXPECT_EQ(block_.GetKey(), 400);
  EXPECT_EQ(std::string(block_.m_etypcoll, 257), std::string(257, '\0'));
  for (const std::int64_t count : {block_.m_ncoll, block_.m_ntyp, block_.m_nenttot, block_.m_nindex}) {
    EXPECT_EQ(count, 0);
  }
  for (const _ORVDataType type :
       {block_.m_idcollType, block_.m_nentType, block_.m_entidType, block_.m_indexidentType}) {
    EXPECT_EQ(type, ORV_INT);
  }
  EXPECT_EQ(block_.m_indexvalType, ORV_FLOAT);
  for (const void* array : {block_.m_idcoll, static_cast<void*>(block_.m_etyp), block_.m_nent, block_.m_entid,
                            block_.m_indexident, block_.m_indexval}) {
    EXPECT_EQ(array, nullptr);
  }
}

TEST_F(CollectorMembers, StandInTheirFixedOrder) {
  const void* const members[] = {
      block_.m_etypcoll,        &block_.m_ncoll,        &block_.m_ntyp,       &block_.m_nenttot,
      &block_.m_nindex,         &block_.m_idcollType,   &block_.m_nentType,   &block_.m_entidType,
      &block_.m_idcoll,         &block_.m_etyp,         &block_.m_nent,       &block_.m_entid,
      &block_.m_indexidentType, &block_.m_indexvalType, &block_.m_indexident, &block_.m_indexval,
  };
  EXPECT_TRUE(std::ranges::is_sorted(members));
}

TEST_F(CollectorMembers, OfNameAndCountsAreInitializedByTheFirstBit) {
  Fill();
  block_.InitializeBlock(1);
  EXPECT_STREQ(block_.m_etypcoll, "");
  EXPECT_EQ(block_.m_ncoll, 0);
  EXPECT_EQ(block_.m_ntyp, 0);
  EXPECT_EQ(block_.m_nenttot, 0);
  EXPECT_EQ(block_.m_nindex, 0);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_NE(block_.m_entid, nullptr);
  EXPECT_NE(block_.m_indexval, nullptr);
}

TEST_F(CollectorMembers, OfTypesAndArraysAreInitializedByTheSecondBit) {
  Fill();
  block_.InitializeBlock(2);
  EXPECT_STREQ(block_.m_etypcoll, "PAIRS");
  EXPECT_EQ(block_.m_ncoll, 5);
  for (const _ORVDataType type : {block_.m_idcollType, block_.m_nentType, block_.m_entidType}) EXPECT_EQ(type, ORV_INT);
  for (const void* array : {block_.m_idcoll, static_cast<void*>(block_.m_etyp), block_.m_nent, block_.m_entid}) {
    EXPECT_EQ(array, nullptr);
  }
  EXPECT_EQ(block_.m_indexidentType, ORV_LONG);
  EXPECT_NE(block_.m_indexident, nullptr);
}

TEST_F(CollectorMembers, OfTheIndexAreInitializedByTheThirdBit) {
  Fill();
  block_.InitializeBlock(4);
  EXPECT_EQ(block_.m_nindex, 5);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_EQ(block_.m_indexidentType, ORV_INT);
  EXPECT_EQ(block_.m_indexvalType, ORV_FLOAT);
  EXPECT_EQ(block_.m_indexident, nullptr);
  EXPECT_EQ(block_.m_indexval, nullptr);
}

TEST_F(CollectorMembers, AreSharedByACopy) {
  Fill();
  const ORVCollector made(block_);
  ORVCollector assigned;
  assigned = block_;
  for (const ORVCollector* copy : {&made, static_cast<const ORVCollector*>(&assigned)}) {
    EXPECT_STREQ(copy->m_etypcoll, "PAIRS");
    EXPECT_EQ(copy->m_nenttot, 5);
    EXPECT_EQ(copy->m_etyp, &text_);
    EXPECT_EQ(copy->m_entid, &number_);
    EXPECT_EQ(copy->m_indexval, &number_);
  }
}

}  // namespace
}  // namespace orv_test
