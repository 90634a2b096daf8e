// The datasets of a part block as they are read: ids, titles, optional lists and types, and what damaged files do to
// them. The header is in part_header_test, the trimming of titles in titles_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/part_forge.h"
#include "orvio/orv_part.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// Reaches what the block protocol calls.
class OpenPart : public ORVPart {
 public:
  using ORVPart::ReadData;
};

/// The buffers hold more than the file gives, filled with -1 and with question marks.
class PartData : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  PartData() : data_(PartPaths(kParts, GetParam()).data) {
    AddParts(file_, kParts, GetParam());
    AddPartLists(file_, kParts, GetParam());
    std::strcpy(block_.m_etyppart, "PART");
    block_.m_npart = 2;
    block_.m_length = 6;
    block_.m_pid = pid_.data();
    block_.m_title = titles_.data();
    block_.m_mid = mid_.data();
    block_.m_mtyp = mtyp_.data();
    block_.m_pcol = pcol_.data();
    block_.m_pvtyp = pvtyp_.data();
  }

  int Read(int stages = ORV_READ_DATA) { return block_.ReadBlock(file_.path().c_str(), 0, stages); }

  ForgedFile file_;
  std::string data_;
  std::vector<int> pid_ = std::vector<int>(4, -1), mid_ = pid_, mtyp_ = pid_, pcol_ = pid_, pvtyp_ = pid_;
  std::string titles_ = std::string(16, '?');
  OpenPart block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, PartData, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(PartData, GivesIdsTitlesAndLists) {
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(pid_, ElementsAre(7, 9, -1, -1));
  EXPECT_THAT(mid_, ElementsAre(71, 91, -1, -1));
  EXPECT_THAT(mtyp_, ElementsAre(24, 1, -1, -1));
  EXPECT_THAT(pcol_, ElementsAre(3, 4, -1, -1));
  EXPECT_THAT(pvtyp_, ElementsAre(5, 6, -1, -1));
  EXPECT_EQ(titles_, std::string("hood\0 fender????", 16));
}

TEST_P(PartData, GivesLongIdsWhenAskedFor) {
  std::vector<std::int64_t> ids(3, -1);
  block_.m_pidType = ORV_LONG;
  block_.m_pid = ids.data();
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(ids, ElementsAre(7, 9, -1));
}

TEST_P(PartData, ReadsHeaderAndDataInOneCall) {
  block_.m_npart = 0;
  ASSERT_EQ(Read(ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(block_.m_npart, 2);
  EXPECT_EQ(pid_[1], 9);
}

TEST_P(PartData, WithoutPartsIsNotRead) {
  block_.m_npart = 0;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(pid_[0], -1);
}

TEST_P(PartData, NeedsIdsAndTheirBuffer) {
  block_.m_pid = nullptr;
  EXPECT_EQ(Read(), 1);
  block_.m_pid = pid_.data();
  file_.at(data_).drop("pid");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(mid_[0], -1);
}

// ---- What may be missing

TEST_P(PartData, NullsEveryMemberThatTheFileLacks) {
  file_.at(data_).drop("mid").drop("mtyp").drop("pcol").drop("pvtyp").drop("title");
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(block_.m_pid, pid_.data());
  for (const void* member : {block_.m_mid, block_.m_mtyp, block_.m_pcol, block_.m_pvtyp}) EXPECT_EQ(member, nullptr);
  EXPECT_EQ(block_.m_title, nullptr);
  EXPECT_EQ(titles_, std::string(16, '?'));
}

TEST_P(PartData, NullsOnlyTheMemberThatTheFileLacks) {
  file_.at(data_).drop("mtyp");
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(block_.m_mtyp, nullptr);
  EXPECT_EQ(block_.m_mid, mid_.data());
  EXPECT_EQ(pvtyp_[1], 6);
  EXPECT_EQ(titles_.substr(0, 4), "hood");
}

TEST_P(PartData, DoesNotAskTheFileWhatWasLeftOut) {
  file_.at(data_).integer32("off", 7);
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(mid_, ElementsAre(71, 91, -1, -1));
  EXPECT_THAT(mtyp_, ElementsAre(24, 1, -1, -1));
  EXPECT_THAT(pcol_, ElementsAre(3, 4, -1, -1));
}

TEST_P(PartData, PassesOverListsWithoutABuffer) {
  block_.m_mid = block_.m_mtyp = block_.m_pcol = block_.m_pvtyp = nullptr;
  block_.m_title = nullptr;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(pid_, ElementsAre(7, 9, -1, -1));
}

TEST_P(PartData, PassesOverTitlesOfNoLength) {
  block_.m_length = 0;
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(titles_, std::string(16, '?'));
  EXPECT_EQ(block_.m_title, titles_.data());
}

// ---- Damage

TEST_P(PartData, RefusesExtentsOtherThanTheCount) {
  for (const std::int64_t count :
       {std::int64_t{1}, std::int64_t{3}, std::int64_t{-1}, std::int64_t{-2}, INT64_MIN, INT64_MAX}) {
    block_.m_npart = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  EXPECT_THAT(pid_, Each(-1));
}

TEST_P(PartData, FailsWithAListOfAnotherExtent) {
  for (const char* name : {"mid", "mtyp", "pcol", "pvtyp"}) {
    file_.at(data_).dataset<std::int32_t>(name, {3}, {1, 2, 3});
    EXPECT_EQ(Read(), 1) << name;
    file_.at(data_).dataset<std::int32_t>(name, {2}, {1, 2});
    EXPECT_EQ(Read(), 0) << name;
  }
}

TEST_P(PartData, FailsWithTitlesOfAnotherWidthOrNumber) {
  for (const int length : {5, 7, 256, -6, -1}) {
    block_.m_length = length;
    EXPECT_EQ(Read(), 1) << length;
  }
  block_.m_length = 6;
  file_.at(data_).texts("title", 6, {3}, {"a", "b", "c"});
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(titles_, std::string(16, '?'));
}

TEST_P(PartData, RefusesDatasetsOfAnotherClass) {
  file_.at(data_).dataset<double>("mid", {2}, {1., 2.});
  EXPECT_EQ(Read(), 1);
  block_.m_midType = ORV_DOUBLE;  // as a type query of such a file answers; the buffer is sized for integers
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(mid_[0], -1);
  file_.at(data_).drop("mid").dataset<std::int32_t>("title", {2}, {1, 2});
  EXPECT_EQ(Read(), 1);
}

TEST_P(PartData, NeedsAReader) {
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA_INFO), 1);
}

// ---- Types

TEST_P(PartData, TellsStoredTypesWithoutReadingValues) {
  file_.at(data_).dataset<std::int64_t>("pid", {2}, {7, 9}).dataset<std::int64_t>("mtyp", {2}, {1, 2});
  file_.dataset<std::int64_t>("pvtyp", {2}, {1, 2});
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_pidType, ORV_LONG);
  EXPECT_EQ(block_.m_midType, ORV_INT);
  EXPECT_EQ(block_.m_mtypType, ORV_LONG);
  EXPECT_EQ(block_.m_pcolType, ORV_INT);
  EXPECT_EQ(block_.m_pvtypType, ORV_LONG);
  EXPECT_EQ(pid_[0], -1);
}

TEST_P(PartData, TellsOfMissingIdsAndLeavesTheTypesOfMissingListsAlone) {
  file_.at(data_).drop("pid").drop("mid").drop("mtyp").drop("pcol").drop("pvtyp");
  block_.m_midType = block_.m_mtypType = block_.m_pcolType = block_.m_pvtypType = ORV_LONG;
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_pidType, ORV_NO_DATASET);
  for (const _ORVDataType type : {block_.m_midType, block_.m_mtypType, block_.m_pcolType, block_.m_pvtypType}) {
    EXPECT_EQ(type, ORV_LONG);
  }
}

TEST_P(PartData, TellsTheTypesOfTheOthersBesideOneItDoesNotKnow) {
  file_.at(data_).drop("mid").group("mid").dataset<std::int64_t>("pvtyp", {2}, {1, 2});
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_midType, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(block_.m_pvtypType, ORV_LONG);
}

TEST_P(PartData, TellsTypesAfterTheValuesWereReadAndOnlyThen) {
  file_.at(data_).dataset<std::int64_t>("pid", {2}, {7, 9});
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_pidType, ORV_LONG);
  EXPECT_EQ(pid_[1], 9);
  block_.m_pidType = ORV_INT;
  block_.m_npart = 5;
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_pidType, ORV_INT);
}

}  // namespace
}  // namespace orv_test
