// Entities that only a change has are added to an attribute. Leaks are the sanitizers' to find.

#include <gmock/gmock.h>

#include <numeric>

#include "filer/incr_attribute_forge.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;

class IncrAttributeAppend : public IncrAttributeTest {};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrAttributeAppend, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrAttributeAppend, IsDoneOnDemandOnly) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {7, 2, -7}, .integers = {70, 21, -70}});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2}));
  EXPECT_EQ(Integers(), (Ints{10, 21}));
  ASSERT_EQ(Read(2, true), 0);
  EXPECT_EQ(block_.m_nent, 4);
  EXPECT_EQ(Ids(), (Ints{1, 2, 7, -7}));
  EXPECT_EQ(Integers(), (Ints{10, 21, 70, -70}));
}

TEST_P(IncrAttributeAppend, AddsAllIntegersOfAnEntity) {
  Add(1, {.ids = {1}, .integers = {10, 11}, .flag = 0});
  Add(2, {.ids = {2}, .integers = {20, 21}});
  Add(3, {.ids = {3}, .integers = {30, 31}});
  MeetIn(1);
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 3}));
  EXPECT_EQ(Integers(), (Ints{10, 11, 20, 21, 30, 31}));
}

TEST_P(IncrAttributeAppend, LaterChangesOfAnAddedEntityGoOverTheOneBefore) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {7, 8}, .integers = {70, 80}});
  Add(3, {.ids = {8}, .integers = {81}});
  Add(4, {.ids = {7}, .integers = {71}});
  MeetIn(1);
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 7, 8}));
  EXPECT_EQ(Integers(), (Ints{10, 20, 81, 80}));
  ASSERT_EQ(Read(4, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 7, 8}));
  EXPECT_EQ(Integers(), (Ints{10, 71, 81, 80}));
}

TEST_P(IncrAttributeAppend, AddsAnEntityOnceThatOneChangeHasTwice) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  Add(2, {.ids = {7, 7}, .integers = {70, 71}});
  MeetIn(1);
  ASSERT_EQ(Read(2, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 7}));
  EXPECT_EQ(Integers(), (Ints{71, 70}));
}

TEST_P(IncrAttributeAppend, HasRoomForMoreThanTheFullState) {
  std::vector<std::int32_t> many(2500);
  std::iota(many.begin(), many.end(), 100);
  std::vector<std::int32_t> more(3000);
  std::iota(more.begin(), more.end(), 100000);
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = many, .integers = many});
  Add(3, {.ids = more, .integers = more});
  MeetIn(1);
  ASSERT_EQ(Read(3, true), 0);
  ASSERT_EQ(block_.m_nent, 5502);
  EXPECT_EQ(Ids()[2], 100);
  EXPECT_EQ(Ids()[2501], 2599);
  EXPECT_EQ(Ids()[2502], 100000);
  EXPECT_EQ(Ids()[5501], 102999);
  EXPECT_EQ(Integers(), [this] {
    Ints expected = Ids();
    expected[0] = 10;
    expected[1] = 20;
    return expected;
  }());
}

TEST_P(IncrAttributeAppend, AddsNoTitles) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0, .titles = {"one", "two"}});
  Add(2, {.ids = {3}, .integers = {30}, .titles = {"three"}});
  MeetIn(1);
  ASSERT_EQ(Read(2, true), 0);
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(std::string(block_.m_title, 17), std::string("one\0    two\0    \0", 17));
  EXPECT_EQ(block_.m_length, 8);
}

TEST_P(IncrAttributeAppend, AddsIdsAloneToAnAttributeWithoutIntegers) {
  Add(1, {.ids = {1, 2}, .flag = 0});
  Add(2, {.ids = {2, 7}, .integers = {20, 70}});
  Add(3, {.ids = {8}, .integers = {80, 81}});
  MeetIn(1);
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(block_.m_nuid, 0);
  EXPECT_EQ(block_.m_uid, nullptr);
  EXPECT_EQ(Ids(), (Ints{1, 2, 7, 8}));
}

TEST_P(IncrAttributeAppend, AddsNothingFromAChangeWithoutIntegers) {
  Add(1, {.ids = {1, 2}, .flag = 0});
  Add(2, {.ids = {7}});
  MeetIn(1);
  ASSERT_EQ(Read(2, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2}));
}

}  // namespace
}  // namespace orv_test
