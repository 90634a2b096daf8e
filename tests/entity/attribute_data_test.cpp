// The datasets of entity attribute and identifiers blocks as they are read by the blocks' own operations: ids, titles,
// further integers, index and types, and what damaged files do to them. What a filer allocates is in
// filer_attributes_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_ent_attribute.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// Reaches what the block protocol calls.
class OpenAttribute : public ORVEntAttribute {
 public:
  using ORVEntAttribute::ReadData;
  using ORVEntAttribute::ReadHeader;
  using ORVEntAttribute::ReadIndex;
};

class AttributeData : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  AttributeData() : path_(std::string(kAttributes) + "/NODE"), parts_(path_, GetParam()) {
    AddEntities(file_, kAttributes, "NODE", GetParam());
    AddUserIntegers(file_, path_, GetParam());
    std::strcpy(block_.m_etyp, "NODE");
    block_.m_nent = 3;
    block_.m_nuid = 2;
    block_.m_entid = entid_.data();
    block_.m_uid = uid_.data();
    block_.m_title = title_.data();
  }

  /// Titles of 8 bytes in place of those of 256.
  void ForgeTitles(const std::vector<std::string>& titles) {
    file_.at(parts_.data).drop("title").texts("title", 8, {titles.size()}, titles);
    block_.m_length = 8;
    title_.assign(3 * 8 + 1, '\0');  // as a caller makes it
    block_.m_title = title_.data();
  }

  int Read(int stages = ORV_READ_DATA) { return block_.ReadBlock(file_.path().c_str(), 0, stages); }
  std::string Slot(int index, int width) const { return title_.substr(static_cast<size_t>(index * width), width); }

  ForgedFile file_;
  std::string path_;
  PartPaths parts_;
  std::vector<int> entid_ = std::vector<int>(12, -1), uid_ = std::vector<int>(24, -1);
  std::string title_ = std::string(3 * 256 + 1, '#');
  OpenAttribute block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, AttributeData, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(AttributeData, GivesIdsTitlesAndIntegers) {
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(std::vector<int>(entid_.begin(), entid_.begin() + 4), ElementsAre(11, 12, 13, -1));
  EXPECT_THAT(std::vector<int>(uid_.begin(), uid_.begin() + 7), ElementsAre(1, 2, 3, 4, 5, 6, -1));
  EXPECT_STREQ(title_.data(), "one");
  EXPECT_STREQ(title_.data() + 256, "two");
  EXPECT_STREQ(title_.data() + 512, "three");
  EXPECT_EQ(title_.back(), '#');  // the byte behind the titles is the caller's to set
}

TEST_P(AttributeData, GivesLongIdsWhenAskedFor) {
  block_.m_entidType = block_.m_uidType = ORV_LONG;
  ASSERT_EQ(Read(), 0);
  std::int64_t ids[3], numbers[6];
  std::memcpy(ids, entid_.data(), sizeof ids);
  std::memcpy(numbers, uid_.data(), sizeof numbers);
  EXPECT_THAT(ids, ElementsAre(11, 12, 13));
  EXPECT_THAT(numbers, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_P(AttributeData, ReadsHeaderAndDataInOneCall) {
  block_.m_nent = block_.m_nuid = 0;
  ASSERT_EQ(Read(ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(uid_[5], 6);
}

TEST_P(AttributeData, ReadsWhatHasABuffer) {
  block_.m_entid = nullptr;
  block_.m_title = nullptr;
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(uid_[0], 1);
  block_.m_uid = nullptr;
  EXPECT_EQ(Read(), 0);
}

// ---- Titles

TEST_P(AttributeData, ATitleThatFillsItsSlotHasNoTerminatorInIt) {
  ForgeTitles({"12345678", "ab", "abcdefgh"});
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(Slot(0, 8), "12345678");
  EXPECT_STREQ(title_.data() + 8, "ab");
  EXPECT_STREQ(title_.data() + 16, "abcdefgh");  // ended by the byte behind the last slot
}

TEST_P(AttributeData, ATitleOfBlanksIsEmpty) {
  ForgeTitles({"", "b", ""});
  ASSERT_EQ(Read(), 0);
  EXPECT_STREQ(title_.data(), "");
  EXPECT_STREQ(title_.data() + 8, "b");
  EXPECT_STREQ(title_.data() + 16, "");
}

TEST_P(AttributeData, ATitleOneByteShortOfItsSlotKeepsTheBlank) {
  ForgeTitles({"1234567", "123456", "x"});
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(Slot(0, 8), "1234567 ");
  EXPECT_EQ(Slot(1, 8), std::string("123456\0 ", 8));
}

TEST_P(AttributeData, TitlesOfAnotherWidthThanTheHeaderSaysEndTheRead) {
  block_.m_length = 8;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(entid_[0], 11);
  EXPECT_EQ(uid_[0], -1);
  EXPECT_THAT(title_, Each('#'));
  block_.m_length = -256;
  EXPECT_EQ(Read(), 1);
}

TEST_P(AttributeData, NoTitlesAreReadForALengthOf0) {
  block_.m_length = 0;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(title_, Each('#'));
  EXPECT_EQ(uid_[0], 1);
}

TEST_P(AttributeData, MissingTitlesEndTheReadWhenTheyAreAskedFor) {
  file_.at(parts_.data).drop("title");
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(uid_[0], -1);
  block_.m_title = nullptr;
  EXPECT_EQ(Read(), 0);
}

// ---- What damaged files do

TEST_P(AttributeData, MissingIdsEndTheRead) {
  file_.at(parts_.data).drop("entid");
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(title_, Each('#'));
}

TEST_P(AttributeData, MissingIntegersArePassedOver) {
  file_.at(parts_.data).drop("uid");
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(uid_, Each(-1));
  EXPECT_EQ(entid_[2], 13);
}

TEST_P(AttributeData, NoIntegersAreReadForACountOf0) {
  block_.m_nuid = 0;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(uid_, Each(-1));
}

TEST_P(AttributeData, RefusesExtentsOtherThanTheCounts) {
  for (const std::int64_t count : {std::int64_t{2}, std::int64_t{4}, std::int64_t{0}, std::int64_t{-3}, INT64_MAX}) {
    block_.m_nent = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  block_.m_nent = 3;
  block_.m_nuid = 3;
  EXPECT_EQ(Read(), 1);
  block_.m_nuid = -2;
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(uid_, Each(-1));
}

TEST_P(AttributeData, RefusesIdsOfAnotherClass) {
  file_.at(parts_.data).dataset<float>("entid", {3}, {1.F, 2.F, 3.F});
  EXPECT_EQ(Read(), 1);
  block_.m_entidType = ORV_FLOAT;  // as a type query of such a file answers
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(entid_, Each(-1));
}

TEST_P(AttributeData, NeedsAReader) {
  EXPECT_EQ(block_.ReadHeader(H5I_INVALID_HID, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.ReadIndex(H5I_INVALID_HID, ORV_READ_INDEX), 1);
  block_.m_nindex = 1;
  EXPECT_EQ(block_.ReadIndex(H5I_INVALID_HID, ORV_READ_INDEX), 1);
}

// ---- Types and index

TEST_P(AttributeData, TellsTheStoredTypesWithoutReading) {
  file_.at(parts_.data).dataset<std::int64_t>("entid", {3}, {1, 2, 3}).drop("uid");
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  EXPECT_EQ(block_.m_uidType, ORV_NO_DATASET);
  EXPECT_THAT(entid_, Each(-1));
}

TEST_P(AttributeData, TellsTheTypesOfWhatItHasNoBuffersFor) {
  block_.InitializeBlock(ORV_READ_DATA);
  block_.m_entidType = block_.m_uidType = ORV_LONG;
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
}

TEST_P(AttributeData, HasNoTypeForWhatTheLibraryDoesNotKnow) {
  file_.at(parts_.data).drop("entid").raw([](hid_t here) {
    const hsize_t dims[] = {3};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id dataset(H5Dcreate2(here, "entid", H5T_STD_I16LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                     "entid");
  });
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_entidType, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
}

TEST_P(AttributeData, GivesTheIndex) {
  file_.at(parts_.index).dataset<std::int32_t>("indexident", {2}, {1, 4}).dataset<float>("indexval", {2}, {.5F, 8.F});
  int ident[3] = {-1, -1, -1};
  float values[3] = {-1, -1, -1};
  block_.m_indexident = ident;
  block_.m_indexval = values;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);  // its count is still 0
  block_.m_nindex = 2;
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_THAT(ident, ElementsAre(1, 4, -1));
  EXPECT_THAT(values, ElementsAre(.5F, 8.F, -1));
  block_.m_nindex = 3;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);
  block_.m_nindex = -2;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);
}

}  // namespace
}  // namespace orv_test
