// The datasets of an element activation block as they are read: ids, statuses, index and types, and what damaged files do
// to them. The header is in activation_header_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/activation_forge.h"
#include "orvio/orv_ele_activation.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;

/// Reaches what the block protocol calls.
class OpenActivation : public ORVEleActivation {
 public:
  using ORVEleActivation::ReadData;
  using ORVEleActivation::ReadHeader;
  using ORVEleActivation::ReadIndex;
};

/// The buffers hold more than the file gives, filled with -1.
class ActivationData : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ActivationData() : parts_(kActiveShells, GetParam()) {
    AddActivation(file_, kActiveShells, GetParam());
    std::strcpy(block_.m_etyp, "SHELL");
    block_.m_nent = 3;
    block_.m_entid = ids_.data();
    block_.m_status = statuses_.data();
    block_.m_indexident = ident_.data();
    block_.m_indexval = values_.data();
  }

  int Read(int stages = ORV_READ_DATA) { return block_.ReadBlock(file_.path().c_str(), 1, stages); }

  ForgedFile file_;
  PartPaths parts_;
  std::vector<int> ids_ = std::vector<int>(8, -1), statuses_ = ids_, ident_ = ids_;
  std::vector<float> values_ = std::vector<float>(8, -1.F);
  OpenActivation block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, ActivationData, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- Ids and statuses

TEST_P(ActivationData, GivesIdsAndStatusesAsTheyAre) {
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(ids_, ElementsAre(11, 12, 13, -1, -1, -1, -1, -1));
  EXPECT_THAT(statuses_, ElementsAre(1, 0, -5, -1, -1, -1, -1, -1));
}

TEST_P(ActivationData, GivesLongValuesWhenAskedFor) {
  std::vector<std::int64_t> ids(4, -1);
  std::vector<std::int64_t> statuses(4, -1);
  block_.m_entidType = block_.m_statusType = ORV_LONG;
  block_.m_entid = ids.data();
  block_.m_status = statuses.data();
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(ids, ElementsAre(11, 12, 13, -1));
  EXPECT_THAT(statuses, ElementsAre(1, 0, -5, -1));
}

TEST_P(ActivationData, ReadsHeaderAndDataInOneCall) {
  block_.m_nent = 0;
  ASSERT_EQ(Read(ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(statuses_[2], -5);
}

TEST_P(ActivationData, EndsAtMissingIds) {
  file_.at(parts_.data).drop("entid");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(statuses_[0], -1);
}

TEST_P(ActivationData, NeedsStatuses) {
  file_.at(parts_.data).drop("status");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ids_[0], 11);
}

TEST_P(ActivationData, RefusesExtentsOtherThanTheCount) {
  for (const std::int64_t count :
       {std::int64_t{2}, std::int64_t{4}, std::int64_t{0}, std::int64_t{-1}, std::int64_t{-3}, INT64_MIN, INT64_MAX}) {
    block_.m_nent = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  block_.m_nent = 3;
  file_.at(parts_.data).dataset<std::int32_t>("status", {2}, {1, 0});
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(statuses_[0], -1);
}

TEST_P(ActivationData, RefusesMissingBuffers) {
  block_.m_status = nullptr;
  EXPECT_EQ(Read(), 1);
  block_.m_status = statuses_.data();
  block_.m_entid = nullptr;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(statuses_[0], -1);
}

TEST_P(ActivationData, RefusesDatasetsOfAnotherClass) {
  file_.at(parts_.data).dataset<double>("entid", {3}, {1., 2., 3.});
  EXPECT_EQ(Read(), 1);
  block_.m_entidType = ORV_DOUBLE;  // as a type query of such a file answers; the buffer is sized for integers
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ids_[0], -1);
}

TEST_P(ActivationData, NeedsAReader) {
  EXPECT_EQ(block_.ReadHeader(H5I_INVALID_HID, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA_INFO), 1);
  block_.m_nindex = 1;
  EXPECT_EQ(block_.ReadIndex(H5I_INVALID_HID, ORV_READ_INDEX), 1);
}

// ---- Types

TEST_P(ActivationData, TellsStoredTypesWithoutReadingValues) {
  file_.at(parts_.data).dataset<std::int64_t>("entid", {3}, {11, 12, 13}).drop("status");
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_EQ(block_.m_statusType, ORV_NO_DATASET);
  EXPECT_EQ(ids_[0], -1);
}

TEST_P(ActivationData, TellsTheTypeOfTheOtherBesideOneItDoesNotKnow) {
  file_.at(parts_.data).drop("entid").group("entid");
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_entidType, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(block_.m_statusType, ORV_INT);
}

TEST_P(ActivationData, TellsTypesAfterTheValuesWereRead) {
  file_.at(parts_.data).dataset<std::int64_t>("status", {3}, {7, 8, 9});
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(statuses_[2], 9);
  EXPECT_EQ(block_.m_statusType, ORV_LONG);
}

TEST_P(ActivationData, TellsNoTypesAfterAFailedRead) {
  file_.at(parts_.data).dataset<std::int64_t>("entid", {3}, {11, 12, 13});
  block_.m_nent = 5;
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_entidType, ORV_INT);
}

// ---- Index

TEST_P(ActivationData, GivesIndexIdentifiersAndValues) {
  file_.at(parts_.index).dataset<std::int32_t>("indexident", {2}, {1, 4}).dataset<float>("indexval", {2}, {.5F, 8.F});
  block_.m_nindex = 2;
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_EQ(ident_[0], 1);
  EXPECT_EQ(ident_[1], 4);
  EXPECT_EQ(ident_[2], -1);
  EXPECT_EQ(values_[0], .5F);
  EXPECT_EQ(values_[1], 8.F);
}

TEST_P(ActivationData, GivesARowOfIndexValuesForEachState) {
  file_.at(parts_.index)
      .dataset<std::int32_t>("indexident", {3, 2}, {1, 4, 1, 4, 1, 4})
      .dataset<float>("indexval", {3, 2}, {1.F, 2.F, 3.F, 4.F, 5.F, 6.F});
  block_.m_nindex = 2;
  block_.m_nstate = 3;
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_THAT(values_, ElementsAre(1.F, 2.F, 3.F, 4.F, 5.F, 6.F, -1.F, -1.F));
  EXPECT_THAT(ident_, ElementsAre(1, 4, 1, 4, 1, 4, -1, -1));
}

TEST_P(ActivationData, RefusesIndexCountsThatAreNotTheStoredOnes) {
  file_.at(parts_.index).dataset<std::int32_t>("indexident", {2}, {1, 4}).dataset<float>("indexval", {2}, {.5F, 8.F});
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-2}, std::int64_t{1}, std::int64_t{3}, INT64_MIN}) {
    block_.m_nindex = count;
    EXPECT_EQ(Read(ORV_READ_INDEX), 1) << count;
  }
  block_.m_nindex = 2;
  for (const std::int64_t states : {std::int64_t{-1}, std::int64_t{2}, INT64_MIN, INT64_MAX}) {
    block_.m_nstate = states;
    EXPECT_EQ(Read(ORV_READ_INDEX), 1) << states;
  }
  EXPECT_EQ(ident_[0], -1);
}

TEST_P(ActivationData, TellsTheTypesOfTheIndex) {
  file_.at(parts_.index).dataset<double>("indexval", {2}, {.5, 8.});
  block_.m_nindex = 2;
  EXPECT_EQ(Read(ORV_READ_INDEX_INFO), 0);
  EXPECT_EQ(block_.m_indexvalType, ORV_DOUBLE);
  EXPECT_EQ(block_.m_indexidentType, ORV_NO_DATASET);
}

}  // namespace
}  // namespace orv_test
