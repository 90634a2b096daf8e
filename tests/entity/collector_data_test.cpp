// The datasets of a collector block as they are read by the block's own operations, its walks, and what damaged files do
// to them. What a filer allocates is in filer_collectors_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_collector.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Reaches what the block protocol calls.
class OpenCollector : public ORVCollector {
 public:
  using ORVCollector::ReadData;
  using ORVCollector::ReadHeader;
  using ORVCollector::ReadIndex;
};

class CollectorData : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  CollectorData() : parts_(std::string(kCollectors) + "/PAIRS", GetParam()) {
    AddCollectors(file_, kCollectors, "PAIRS", GetParam());
    std::strcpy(block_.m_etypcoll, "PAIRS");
    block_.m_ncoll = block_.m_ntyp = 2;
    block_.m_nenttot = 5;
    block_.m_idcoll = idcoll_.data();
    block_.m_etyp = etyp_.data();
    block_.m_nent = nent_.data();
    block_.m_entid = entid_.data();
  }

  int Read(int stages = ORV_READ_DATA) { return block_.ReadBlock(file_.path().c_str(), 0, stages); }

  ForgedFile file_;
  PartPaths parts_;
  std::vector<int> idcoll_ = std::vector<int>(8, -1), nent_ = idcoll_, entid_ = std::vector<int>(12, -1);
  std::string etyp_ = std::string(2 * 256 + 1, '#');
  OpenCollector block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, CollectorData, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(CollectorData, GivesCollectorsTypesCountsAndIds) {
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(std::vector<int>(idcoll_.begin(), idcoll_.begin() + 3), ElementsAre(1, 2, -1));
  EXPECT_STREQ(etyp_.data(), "NODE");
  EXPECT_STREQ(etyp_.data() + 256, "SHELL");
  EXPECT_EQ(etyp_.back(), '#');  // the byte behind the names is the caller's to set
  EXPECT_THAT(std::vector<int>(nent_.begin(), nent_.begin() + 5), ElementsAre(1, 2, 1, 1, -1));
  EXPECT_THAT(std::vector<int>(entid_.begin(), entid_.begin() + 6), ElementsAre(101, 102, 103, 104, 105, -1));
}

TEST_P(CollectorData, GivesLongIdsWhenAskedFor) {
  block_.m_entidType = block_.m_idcollType = block_.m_nentType = ORV_LONG;
  ASSERT_EQ(Read(), 0);
  std::int64_t ids[5], collectors[2], counts[4];
  std::memcpy(ids, entid_.data(), sizeof ids);
  std::memcpy(collectors, idcoll_.data(), sizeof collectors);
  std::memcpy(counts, nent_.data(), sizeof counts);
  EXPECT_THAT(ids, ElementsAre(101, 102, 103, 104, 105));
  EXPECT_THAT(collectors, ElementsAre(1, 2));
  EXPECT_THAT(counts, ElementsAre(1, 2, 1, 1));
}

TEST_P(CollectorData, ReadsHeaderAndDataInOneCall) {
  block_.m_ncoll = block_.m_ntyp = block_.m_nenttot = 0;
  ASSERT_EQ(Read(ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(entid_[4], 105);
}

TEST_P(CollectorData, TypesOfBlanksAreEmptyAndThoseOfFullWidthAreEnded) {
  file_.at(parts_.data).texts("etyp", 256, {2}, {std::string(256, 'E'), ""});
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(std::string(etyp_.data()), std::string(255, 'E'));
  EXPECT_STREQ(etyp_.data() + 256, "");
}

TEST_P(CollectorData, WithoutIdsOrTypesReadsWhatThereIs) {
  file_.at(parts_.data).drop("entid");
  block_.m_nenttot = 0;
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(nent_[3], 1);
  file_.at(parts_.data).drop("etyp").drop("nent");
  block_.m_ntyp = 0;
  block_.m_etyp = nullptr;
  EXPECT_EQ(Read(), 0);
  block_.m_ncoll = 0;
  file_.at(parts_.data).drop("idcoll");
  EXPECT_EQ(Read(), 0);
}

TEST_P(CollectorData, EndsAtTheFirstDatasetThatIsMissing) {
  file_.at(parts_.data).drop("etyp");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(idcoll_[1], 2);
  EXPECT_THAT(nent_, Each(-1));
  EXPECT_THAT(entid_, Each(-1));
}

TEST_P(CollectorData, NeedsEveryDataset) {
  for (const char* name : {"idcoll", "etyp", "nent", "entid"}) {
    AddCollectors(file_, kCollectors, "PAIRS", GetParam());
    file_.at(parts_.data).drop(name);
    EXPECT_EQ(Read(), 1) << name;
  }
}

TEST_P(CollectorData, DoesNotTouchTypesThatWereReadBeforeAFailure) {
  file_.at(parts_.data).drop("entid");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(etyp_.substr(0, 256), "NODE" + std::string(252, ' '));
}

TEST_P(CollectorData, RefusesExtentsOtherThanTheCounts) {
  for (std::int64_t ORVCollector::*count : {&ORVCollector::m_ncoll, &ORVCollector::m_ntyp, &ORVCollector::m_nenttot}) {
    const std::int64_t before = block_.*count;
    for (const std::int64_t wrong : {std::int64_t{1}, std::int64_t{6}, std::int64_t{-2}, INT64_MIN, INT64_MAX}) {
      block_.*count = wrong;
      EXPECT_EQ(Read(), 1) << wrong;
    }
    block_.*count = before;
  }
  EXPECT_EQ(Read(), 0);
}

TEST_P(CollectorData, RefusesNamesOfAnotherWidth) {
  file_.at(parts_.data).texts("etyp", 255, {2}, {"NODE", "SHELL"});
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(etyp_, Each('#'));
}

TEST_P(CollectorData, RefusesMissingBuffers) {
  block_.m_entid = nullptr;
  EXPECT_EQ(Read(), 1);
  block_.m_idcoll = nullptr;
  EXPECT_EQ(Read(), 1);
}

TEST_P(CollectorData, NeedsAReader) {
  EXPECT_EQ(block_.ReadHeader(H5I_INVALID_HID, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.ReadIndex(H5I_INVALID_HID, ORV_READ_INDEX), 1);
}

// ---- Types, index and walks

TEST_P(CollectorData, TellsTheStoredTypesWithoutReading) {
  file_.at(parts_.data).dataset<std::int64_t>("entid", {5}, {1, 2, 3, 4, 5}).drop("nent");
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_EQ(block_.m_nentType, ORV_NO_DATASET);
  EXPECT_EQ(block_.m_idcollType, ORV_INT);
  EXPECT_THAT(entid_, Each(-1));
}

TEST_P(CollectorData, GivesTheIndex) {
  file_.at(parts_.index).dataset<std::int32_t>("indexident", {2}, {1, 4}).dataset<float>("indexval", {2}, {.5F, 8.F});
  int ident[2] = {-1, -1};
  float values[2] = {-1, -1};
  block_.m_indexident = ident;
  block_.m_indexval = values;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);  // its count is still 0
  block_.m_nindex = 2;
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_THAT(ident, ElementsAre(1, 4));
  EXPECT_THAT(values, ElementsAre(.5F, 8.F));
  block_.m_nindex = -1;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);
}

std::vector<std::string> visited;  // names of the blocks of each call

_ORVAction Record(int /*status*/, int /*stage*/, void* /*where*/, void* block) {
  visited.emplace_back(static_cast<ORVCollector*>(static_cast<ORVBlock*>(block))->m_etypcoll);
  return ORV_ACTION_CONTINUE;
}

TEST_P(CollectorData, IsNotWalkedOverTheStates) {
  visited.clear();
  AddCollectors(file_, InState(1, "collector"), "PAIRS", GetParam());
  const std::string path = file_.path();
  EXPECT_EQ(block_.IterateBlockOver(path.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "./collector", 0), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(CollectorData, IsReadOverTheStatesByTheNameGiven) {
  visited.clear();
  AddCollectors(file_, InState(1, "collector"), "OTHER", GetParam());
  AddCollectors(file_, InState(2, "collector"), "PAIRS", GetParam());
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlockOver(path.c_str(), ORV_READ_HEADER, Record, 1, 1, 1, "collector/OTHER"), 0);
  // The block keeps its name where the single layout is not looked into.
  EXPECT_THAT(visited, ElementsAre(GetParam() == Layout::kSplit ? "OTHER" : "PAIRS"));
}

TEST_P(CollectorData, IsWalkedInOneSection) {
  visited.clear();
  AddCollectors(file_, kCollectors, "OTHER", GetParam());
  const std::string path = file_.path();
  EXPECT_EQ(block_.IterateBlock(path.c_str(), 0, ORV_READ_HEADER, Record), 0);
  EXPECT_THAT(visited, ElementsAre("OTHER", "PAIRS"));
}

}  // namespace
}  // namespace orv_test
