// Copies of a part of an array in memory.

#include "block/selection_copy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <vector>

namespace {

using Floats = std::vector<float>;
using Numbers = std::vector<std::uint64_t>;

/// An array of those extents that holds 0, 1, 2 ...
Floats Counting(const Numbers& extents) {
  std::uint64_t size = 1;
  for (const std::uint64_t extent : extents) size *= extent;
  Floats values(size);
  std::iota(values.begin(), values.end(), 0.F);
  return values;
}

/// What is copied; -1 behind it.
Floats Copied(const Numbers& extents, const Numbers& start, const Numbers& count, std::size_t room) {
  const Floats source = Counting(extents);
  Floats out(room, -1);
  const bool copied = orvio::CopySelection(static_cast<int>(extents.size()), start.data(), count.data(), out.data(),
                                           extents.data(), source.data());
  return copied ? out : Floats{};
}

TEST(SelectionCopy, TakesAPieceOfARow) { EXPECT_EQ(Copied({5}, {1}, {3}, 4), (Floats{1, 2, 3, -1})); }

TEST(SelectionCopy, TakesAllOfAnArray) {
  EXPECT_EQ(Copied({2, 3}, {0, 0}, {2, 3}, 7), (Floats{0, 1, 2, 3, 4, 5, -1}));
  EXPECT_EQ(Copied({1, 1}, {0, 0}, {1, 1}, 2), (Floats{0, -1}));
}

TEST(SelectionCopy, TakesOneColumn) { EXPECT_EQ(Copied({3, 4}, {0, 2}, {3, 1}, 4), (Floats{2, 6, 10, -1})); }

TEST(SelectionCopy, TakesPartsOfRows) { EXPECT_EQ(Copied({3, 4}, {1, 1}, {2, 2}, 5), (Floats{5, 6, 9, 10, -1})); }

TEST(SelectionCopy, TakesWholeRowsFromTheMiddle) {
  EXPECT_EQ(Copied({4, 2}, {1, 0}, {2, 2}, 5), (Floats{2, 3, 4, 5, -1}));
}

TEST(SelectionCopy, JoinsAxesOnlyBehindOneThatIsSelectedWhole) {
  EXPECT_EQ(Copied({2, 3, 2}, {0, 1, 0}, {2, 2, 2}, 9), (Floats{2, 3, 4, 5, 8, 9, 10, 11, -1}));
  EXPECT_EQ(Copied({2, 2, 3}, {0, 0, 1}, {2, 2, 1}, 5), (Floats{1, 4, 7, 10, -1}));
}

TEST(SelectionCopy, TakesUpToSixAxes) {
  EXPECT_EQ(Copied({2, 2, 2, 2}, {1, 0, 1, 0}, {1, 2, 1, 2}, 5), (Floats{10, 11, 14, 15, -1}));
  EXPECT_EQ(Copied({2, 2, 2, 2, 2}, {0, 1, 1, 1, 1}, {2, 1, 1, 1, 1}, 3), (Floats{15, 31, -1}));
  EXPECT_EQ(Copied({2, 1, 2, 1, 2, 2}, {0, 0, 1, 0, 0, 1}, {2, 1, 1, 1, 2, 1}, 5), (Floats{5, 7, 13, 15, -1}));
  EXPECT_EQ(Copied({1, 1, 1, 1, 1, 1, 2}, {0, 0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1, 2}, 3), Floats{});
}

TEST(SelectionCopy, RefusesWhatReachesBeyondTheExtents) {
  EXPECT_EQ(Copied({3, 2}, {0, 0}, {4, 2}, 8), Floats{});
  EXPECT_EQ(Copied({3, 2}, {2, 0}, {2, 1}, 8), Floats{});
  EXPECT_EQ(Copied({3, 2}, {0, 2}, {1, 1}, 8), Floats{});
  EXPECT_EQ(Copied({3, 2}, {UINT64_MAX, 0}, {2, 2}, 8), Floats{});
}

TEST(SelectionCopy, RefusesAnEmptySelection) {
  EXPECT_EQ(Copied({3, 2}, {0, 0}, {0, 2}, 8), Floats{});
  EXPECT_EQ(Copied({3, 2}, {0, 0}, {2, 0}, 8), Floats{});
}

TEST(SelectionCopy, RefusesExtentsThatCannotBeCounted) {
  const Numbers extents = {std::uint64_t{1} << 40, std::uint64_t{1} << 40};
  const Numbers start = {0, 0};
  const Numbers count = {1, 1};
  const float source = 1;
  float out = -1;
  EXPECT_FALSE(orvio::CopySelection(2, start.data(), count.data(), &out, extents.data(), &source));
  EXPECT_EQ(out, -1);
}

TEST(SelectionCopy, RefusesMissingArgumentsAndRanks) {
  const std::uint64_t one = 1;
  const std::uint64_t zero = 0;
  const float source = 1;
  float out = -1;
  EXPECT_FALSE(orvio::CopySelection(0, &zero, &one, &out, &one, &source));
  EXPECT_FALSE(orvio::CopySelection(-1, &zero, &one, &out, &one, &source));
  EXPECT_FALSE(orvio::CopySelection(1, nullptr, &one, &out, &one, &source));
  EXPECT_FALSE(orvio::CopySelection(1, &zero, nullptr, &out, &one, &source));
  EXPECT_FALSE(orvio::CopySelection(1, &zero, &one, nullptr, &one, &source));
  EXPECT_FALSE(orvio::CopySelection(1, &zero, &one, &out, nullptr, &source));
  EXPECT_FALSE(orvio::CopySelection(1, &zero, &one, &out, &one, nullptr));
  EXPECT_EQ(out, -1);
  EXPECT_TRUE(orvio::CopySelection(1, &zero, &one, &out, &one, &source));
  EXPECT_EQ(out, 1);
}

}  // namespace
