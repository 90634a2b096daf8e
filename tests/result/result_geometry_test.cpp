// The shape of `res`: its axes, extents and steps. Selections are in result_selection_test.

#include <algorithm>
#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "result/result_access.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using Axes = std::vector<int>;
using Extents = std::vector<std::uint64_t>;

class ResultGeometry : public OrvTest {};

/// A block with counts that tell the axes apart.
ORVResult Block(int key) {
  ORVResult block(key);
  block.m_nent = 10;
  block.m_ncoo = 3;
  block.m_numl = 4;
  block.m_nstate = 5;
  return block;
}

struct ShapeRow {
  int key;
  Axes axes;
  Extents extents;  ///< as GetResultValueDimension gives them; 7 stands for an entry that it leaves alone
};

const ShapeRow kShapes[] = {
    {500, {0, 1}, {}},
    {1000, {0, 1}, {10, 3}},
    {1001, {0, 1, 4}, {10, 3, 2}},
    {1050, {3, 0, 1}, {5, 10, 3}},
    {1051, {3, 0, 1, 4}, {5, 10, 3, 2}},
    {1100, {0, 2, 1}, {10, 4, 3}},
    {1101, {0, 2, 1, 4}, {10, 4, 3, 2}},
    {1150, {3, 0, 2, 1}, {5, 10, 4, 3}},
    {1151, {3, 0, 2, 1, 4}, {5, 10, 4, 3, 7}},
    {-1, {}, {}},
    {300, {}, {}},
};

TEST_F(ResultGeometry, HasTheAxesOfTheKind) {
  for (const ShapeRow& row : kShapes) {
    SCOPED_TRACE(row.key);
    ORVResult block = Block(row.key);
    int axes[6] = {7, 7, 7, 7, 7, 7};
    ASSERT_EQ(block.GetResDataSetDimension(axes), static_cast<int>(row.axes.size()));
    EXPECT_TRUE(std::equal(row.axes.begin(), row.axes.end(), axes));
    EXPECT_EQ(axes[row.axes.size()], 7);
    for (int axis = 0; axis < 5; ++axis) {
      const auto found = std::find(row.axes.begin(), row.axes.end(), axis);
      const int position = found == row.axes.end() ? -1 : static_cast<int>(found - row.axes.begin());
      EXPECT_EQ(block.GetResDimensionTypeIndex(static_cast<_ORVDimensionType>(axis)), position);
    }
    EXPECT_EQ(block.GetResDimensionTypeIndex(static_cast<_ORVDimensionType>(5)), -1);
    EXPECT_EQ(block.GetResDimensionTypeIndex(static_cast<_ORVDimensionType>(-1)), -1);
  }
}

TEST_F(ResultGeometry, TakesTheExtentsFromTheHeader) {
  for (const ShapeRow& row : kShapes) {
    SCOPED_TRACE(row.key);
    ORVResult block = Block(row.key);
    std::uint64_t dims[8] = {7, 7, 7, 7, 7, 7, 7, 7};
    ASSERT_EQ(ORVResultAccess::ValueDimension(block, dims), static_cast<int>(row.extents.size()));
    EXPECT_EQ(Extents(dims, dims + row.extents.size()), row.extents);
  }
}

TEST_F(ResultGeometry, LeavesTheFifthExtentOfAComplexMultiElementBlockAlone) {
  ORVResult block = Block(1151);
  std::uint64_t dims[8] = {7, 7, 7, 7, 7, 7, 7, 7};
  EXPECT_EQ(ORVResultAccess::ValueDimension(block, dims), 5);
  EXPECT_EQ(Extents(dims, dims + 8), (Extents{5, 10, 4, 3, 7, 2, 7, 7}));
}

/// Counts in the order entities, components, layers, states, complex parts.
using Counts = std::vector<int>;

struct CountsRow {
  int key;
  Extents extents;
  int status;
  Counts counts;
};

const CountsRow kCounts[] = {
    {1000, {10, 3}, 0, {10, 3, 0, 0, 0}},
    {1001, {10, 3, 2}, 0, {10, 3, 0, 0, 2}},
    {1050, {5, 10, 3}, 0, {10, 3, 0, 5, 0}},
    {1051, {5, 10, 3, 2}, 0, {10, 3, 0, 5, 2}},
    {1100, {10, 4, 3}, 0, {10, 3, 4, 0, 0}},
    {1101, {10, 4, 3, 2}, 0, {10, 3, 4, 0, 2}},
    {1150, {5, 10, 4, 3}, 0, {10, 3, 4, 5, 0}},
    {1151, {5, 10, 4, 3, 2}, 0, {10, 3, 4, 5, 2}},
    {1000, {(1ULL << 32) + 6, 0x80000000ULL}, 0, {6, -2147483647 - 1, 0, 0, 0}},
    {1000, {10, 3, 2}, 1, {0, 0, 0, 0, 0}},
    {1001, {10, 3}, 1, {0, 0, 0, 0, 0}},
    {1151, {5, 10, 4, 3}, 1, {0, 0, 0, 0, 0}},
    {1000, {}, 1, {0, 0, 0, 0, 0}},
    {500, {10, 3}, 1, {0, 0, 0, 0, 0}},
    {-1, {10, 3}, 1, {0, 0, 0, 0, 0}},
};

TEST_F(ResultGeometry, GivesTheCountsBehindExtents) {
  for (const CountsRow& row : kCounts) {
    SCOPED_TRACE(row.key);
    ORVResult block(row.key);
    Extents extents = row.extents;
    Counts counts(5, 77);
    EXPECT_EQ(block.GetResDataSetDimValues(static_cast<int>(extents.size()), extents.data(), &counts[0], &counts[1],
                                           &counts[2], &counts[3], &counts[4]),
              row.status);
    EXPECT_EQ(counts, row.counts);
  }
}

TEST_F(ResultGeometry, GivesNoCountsForNoExtents) {
  ORVResult block(1000);
  int count = 77;
  EXPECT_EQ(block.GetResDataSetDimValues(2, nullptr, &count, &count, &count, &count, &count), 1);
  EXPECT_EQ(count, 0);
  std::uint64_t dims[2] = {1, 1};
  EXPECT_EQ(block.GetResDataSetDimValues(2, dims, nullptr, &count, &count, &count, &count), 1);
}

TEST_F(ResultGeometry, MultipliesCounts) {
  ORVResult block(1000);
  Extents counts = {3, 4, 5};
  EXPECT_EQ(block.GetTotalCount(0, counts.data()), 0);
  EXPECT_EQ(block.GetTotalCount(-1, counts.data()), 0);
  EXPECT_EQ(block.GetTotalCount(1, counts.data()), 3);
  EXPECT_EQ(block.GetTotalCount(3, counts.data()), 60);
  EXPECT_EQ(block.GetTotalCount(3, nullptr), 0);
  counts = {46341, 46341};
  EXPECT_EQ(block.GetTotalCount(2, counts.data()), 0);
  counts = {2147483647, 1};
  EXPECT_EQ(block.GetTotalCount(2, counts.data()), 2147483647);
  counts = {1ULL << 32, (1ULL << 32) + 1};  // 1 in 64 bits that wrap, times 2^32
  EXPECT_EQ(block.GetTotalCount(2, counts.data()), 0);
  counts = {1ULL << 63, 2, 0};
  EXPECT_EQ(block.GetTotalCount(3, counts.data()), 0);
}

TEST_F(ResultGeometry, HasTwoValuesPerComplexComponent) {
  for (const int key : {1001, 1051, 1101, 1151}) EXPECT_EQ(ORVResult(key).GetValuesPerComponent(), 2);
  for (const int key : {1000, 1050, 1100, 1150, 500, -1}) EXPECT_EQ(ORVResult(key).GetValuesPerComponent(), 1);
}

TEST_F(ResultGeometry, HasIntegrationPointsForElementKinds) {
  for (const int key : {1100, 1101, 1150, 1151}) {
    int layers = 77;
    EXPECT_EQ(Block(key).HasIntegrationPoint(&layers), 1);
    EXPECT_EQ(layers, 4);
  }
  for (const int key : {1000, 1001, 1050, 1051, 500, -1}) {
    int layers = 77;
    EXPECT_EQ(Block(key).HasIntegrationPoint(&layers), 0);
    EXPECT_EQ(layers, 0);
  }
  EXPECT_EQ(Block(1100).HasIntegrationPoint(nullptr), 1);
}

// ---- Steps

class ResultOffsets : public OrvTest {};

constexpr std::uint64_t kUnset = 7;

/// Steps of a block of 10 entities, 3 components and 4 layers.
Extents Offsets(ORVResult& block, int entities, int components, int layers, int complex_sel, int answer) {
  Extents offsets(6, kUnset);
  EXPECT_EQ(block.GetResOffSets(offsets.data(), entities, components, layers, 99, complex_sel), answer);
  return offsets;
}

struct OffsetRow {
  int key;
  Extents offsets;
  int answer;
};

TEST_F(ResultOffsets, AreThoseOfTheWholeBlockWithoutARequest) {
  const OffsetRow rows[] = {
      {1000, {1, kUnset, 3, kUnset, 1, kUnset}, 2},
      {1001, {2, kUnset, 6, kUnset, 1, kUnset}, 3},
      {1050, {1, kUnset, 3, 30, 1, kUnset}, 3},
      {1051, {2, 6, 24, 240, 1, kUnset}, 4},
      {1100, {1, 3, 12, kUnset, 1, kUnset}, 3},
      {1101, {2, 6, 24, kUnset, 1, kUnset}, 4},
      {1150, {1, 3, 12, 120, 1, kUnset}, 4},
      {1151, {1, kUnset, kUnset, kUnset, 1, kUnset}, 0},
      {500, {1, kUnset, kUnset, kUnset, 1, kUnset}, 0},
      {-1, {1, kUnset, kUnset, kUnset, 1, kUnset}, 0},
  };
  for (const OffsetRow& row : rows) {
    SCOPED_TRACE(row.key);
    ORVResult block = Block(row.key);
    EXPECT_EQ(Offsets(block, 0, 0, 0, 0, row.answer), row.offsets);
    EXPECT_EQ(Offsets(block, 10, 3, 4, 2, row.answer), row.offsets);
    EXPECT_EQ(Offsets(block, 11, 4, 5, 3, row.answer), row.offsets);
  }
}

TEST_F(ResultOffsets, AreThoseOfTheSubExtentAskedFor) {
  const OffsetRow rows[] = {
      {1000, {1, kUnset, 2, kUnset, 1, kUnset}, 2}, {1001, {1, kUnset, 2, kUnset, 1, kUnset}, 3},
      {1050, {1, kUnset, 2, 18, 1, kUnset}, 3},     {1051, {1, 2, 6, 54, 1, kUnset}, 4},
      {1100, {1, 2, 6, kUnset, 1, kUnset}, 3},      {1101, {1, 2, 6, kUnset, 1, kUnset}, 4},
      {1150, {1, 2, 6, 54, 1, kUnset}, 4},
  };
  for (const OffsetRow& row : rows) {
    SCOPED_TRACE(row.key);
    ORVResult block = Block(row.key);
    EXPECT_EQ(Offsets(block, 9, 2, 3, 1, row.answer), row.offsets);
  }
}

TEST_F(ResultOffsets, CountBothComplexPartsUnlessOneIsAskedFor) {
  ORVResult block = Block(1001);
  for (const int both : {0, 2, 3, 100}) EXPECT_EQ(Offsets(block, 0, 0, 0, both, 3)[2], 6U);
  EXPECT_EQ(Offsets(block, 0, 0, 0, 1, 3)[2], 3U);
}

TEST_F(ResultOffsets, KeepNegativeRequests) {
  ORVResult block = Block(1001);
  const Extents offsets = Offsets(block, 0, 0, 0, -1, 3);
  EXPECT_EQ(offsets[0], UINT64_MAX);
  EXPECT_EQ(offsets[2], UINT64_MAX - 2);
  EXPECT_EQ(Offsets(block, 0, -2, 0, 1, 3)[2], UINT64_MAX - 1);
}

TEST_F(ResultOffsets, OfTheComplexMultiEntityKindCountLayers) {
  ORVResult block = Block(1051);
  block.m_numl = 0;
  EXPECT_EQ(Offsets(block, 0, 0, 0, 0, 4), (Extents{2, 6, 0, 0, 1, kUnset}));
}

TEST_F(ResultOffsets, BeyondSixtyFourBitsAreNotServed) {
  ORVResult block = Block(1150);
  block.m_nent = INT64_MAX;
  EXPECT_EQ(Offsets(block, 0, 0, 0, 0, 0), (Extents{1, 3, 12, kUnset, 1, kUnset}));
  EXPECT_EQ(block.GetResOffSets(nullptr, 0, 0, 0, 0, 0), 0);
}

}  // namespace
