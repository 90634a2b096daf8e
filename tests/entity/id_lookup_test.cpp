// Rows by entity id: which ids go together and how much memory they may take. The merging is tested in
// tests/filer/incr_*_test.

#include "entity/id_lookup.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <fstream>

#include "support/orv_test.h"

namespace {

using orvio::ORVIdLookup;

using IdLookup = orv_test::OrvTest;

TEST_F(IdLookup, AnswersTheRowOfAnId) {
  ORVIdLookup rows(3);
  rows.Set(7, 1);
  rows.Set(8, 2);
  EXPECT_EQ(rows.Find(7), 1);
  EXPECT_EQ(rows.Find(8), 2);
  EXPECT_EQ(rows.Find(9), 0);
  EXPECT_EQ(rows.Find(-7), 0);
  EXPECT_EQ(rows.Find(INT_MAX), 0);
}

TEST_F(IdLookup, ReplacesARow) {
  ORVIdLookup rows(1);
  rows.Set(7, 1);
  rows.Set(7, 5);
  EXPECT_EQ(rows.Find(7), 5);
}

TEST_F(IdLookup, KeepsNegativeIdsApart) {
  ORVIdLookup rows(2);
  rows.Set(5, 1);
  rows.Set(-5, 2);
  rows.Set(0, 3);
  EXPECT_EQ(rows.Find(5), 1);
  EXPECT_EQ(rows.Find(-5), 2);
  EXPECT_EQ(rows.Find(0), 3);
}

TEST_F(IdLookup, KeepsIdsAtTheSamePlaceOfDifferentPagesApart) {
  for (const std::int64_t entities : {std::int64_t{1}, std::int64_t{100000}, std::int64_t{250000}}) {
    ORVIdLookup rows(entities);
    const int ids[] = {99999, 100000, 199999, 200000, 249999, 250000, 350000, -100000, -250000};
    int row = 0;
    for (const int id : ids) rows.Set(id, ++row);
    row = 0;
    for (const int id : ids) EXPECT_EQ(rows.Find(id), ++row) << id;
    EXPECT_EQ(rows.Find(0), 0);
  }
}

TEST_F(IdLookup, TakesTheEndsOfTheIntRange) {
  for (const std::int64_t entities : {std::int64_t{0}, INT64_MIN, std::int64_t{1} << 20}) {
    ORVIdLookup rows(entities);
    EXPECT_EQ(rows.Find(INT_MIN), 0);
    EXPECT_EQ(rows.Find(INT_MAX), 0);
    rows.Set(INT_MIN, 1);
    rows.Set(INT_MIN + 1, 2);
    rows.Set(INT_MAX, 3);
    EXPECT_EQ(rows.Find(INT_MIN), 1);
    EXPECT_EQ(rows.Find(INT_MIN + 1), 2);
    EXPECT_EQ(rows.Find(INT_MAX), 3);
    EXPECT_EQ(rows.Find(0), 0);
  }
}

std::int64_t AddressSpaceInUse() {
  std::int64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * sysconf(_SC_PAGESIZE);
}

TEST_F(IdLookup, OfIdsSpreadOverTheWholeRangeDoesNotTakeAPageForEach) {
  constexpr std::int64_t kGap = 100000;  // each would have a page of its own: 17 GB in all
  const std::int64_t before = AddressSpaceInUse();
  ORVIdLookup rows(0);
  int row = 0;
  for (std::int64_t id = INT_MIN; id <= INT_MAX; id += kGap) rows.Set(static_cast<int>(id), ++row);
  EXPECT_EQ(row, 42950);
  EXPECT_LT(AddressSpaceInUse() - before, std::int64_t{64} << 20);
  row = 0;
  int wrong = 0;
  for (std::int64_t id = INT_MIN; id <= INT_MAX; id += kGap) wrong += rows.Find(static_cast<int>(id)) != ++row;
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(rows.Find(1), 0);
}

TEST_F(IdLookup, FindsIdsThatWereSetBeforeTheirPageWasMade) {
  ORVIdLookup rows(0);
  constexpr int kFar = 2000000000;
  for (int page = 1; page <= 30; ++page) rows.Set(page * 100000, page);
  rows.Set(kFar, 77);
  for (int id = 1; id <= 3000000; ++id) rows.Set(id, id);  // dense now: pages are worth it
  rows.Set(kFar + 1, 78);
  EXPECT_EQ(rows.Find(kFar), 77);
  EXPECT_EQ(rows.Find(kFar + 1), 78);
  rows.Set(kFar, 79);
  EXPECT_EQ(rows.Find(kFar), 79);
  EXPECT_EQ(rows.Find(2500000), 2500000);
  EXPECT_EQ(rows.Find(3000001), 0);
}

}  // namespace
