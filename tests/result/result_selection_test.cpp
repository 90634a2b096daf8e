// Selections of `res`: by component, layer and entity, by the name of a variable, by a handle, and their merging. What a
// selection reads is in result_selective_read_test.

#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "result/hyper_slab.h"
#include "result/variable_with_handles.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

constexpr int kAllComponents = -100, kAllLayers = -101, kAllEntities = -1;

/// A block with counts that tell the axes apart.
ORVResult Block(int key) {
  ORVResult block(key);
  block.m_nent = 10;
  block.m_ncoo = 3;
  block.m_numl = 4;
  block.m_nstate = 5;
  return block;
}

using Numbers = std::vector<std::uint64_t>;

struct Selection {
  Numbers start;
  Numbers count;
  bool operator==(const Selection&) const = default;
};

void PrintTo(const Selection& selection, std::ostream* out) {
  *out << testing::PrintToString(selection.start) << " " << testing::PrintToString(selection.count);
}

const Selection kNothing = {};

/// Calls an operation that fills rank, start and count and answers the rank.
template <class Select>
Selection Selected(Select select) {
  int rank = 77;
  std::uint64_t start[8] = {};
  std::uint64_t count[8] = {};
  EXPECT_EQ(select(&rank, start, count), rank);
  return {Numbers(start, start + rank), Numbers(count, count + rank)};
}

Selection ByComponent(ORVResult& block, int component, int layer, int entity) {
  return Selected([&](int* rank, std::uint64_t* start, std::uint64_t* count) {
    return block.GetComponentSelection(component, rank, start, count, layer, entity);
  });
}

Selection ByName(ORVResult& block, const char* name, int layer, int entity) {
  return Selected([&](int* rank, std::uint64_t* start, std::uint64_t* count) {
    return block.GetComponentSelectionByVariableName(name, rank, start, count, layer, entity);
  });
}

Selection ById(ORVResult& block, int id, int layer, int entity, bool extended) {
  return Selected([&](int* rank, std::uint64_t* start, std::uint64_t* count) {
    return block.GetComponentSelectionWrap(id, rank, start, count, layer, entity, extended);
  });
}

Selection Of(const ORVHyperSlab& slab) {
  return {Numbers(slab.m_start, slab.m_start + slab.m_rank), Numbers(slab.m_count, slab.m_count + slab.m_rank)};
}

class ResultSelection : public OrvTest {};

struct SelectionRow {
  int key;
  Selection one;  ///< component 1, layer 2, entity 7
  Selection all;
};

const SelectionRow kSelections[] = {
    {500, {{7, 1}, {1, 1}}, {{0, 0}, {10, 3}}},
    {1000, {{7, 1}, {1, 1}}, {{0, 0}, {10, 3}}},
    {1001, {{7, 1, 0}, {1, 1, 2}}, {{0, 0, 0}, {10, 3, 2}}},
    {1050, {{0, 7, 1}, {5, 1, 1}}, {{0, 0, 0}, {5, 10, 3}}},
    {1051, {{0, 7, 1, 0}, {5, 1, 1, 2}}, {{0, 0, 0, 0}, {5, 10, 3, 2}}},
    {1100, {{7, 2, 1}, {1, 1, 1}}, {{0, 0, 0}, {10, 4, 3}}},
    {1101, {{7, 2, 1, 0}, {1, 1, 1, 2}}, {{0, 0, 0, 0}, {10, 4, 3, 2}}},
    {1150, {{0, 7, 2, 1}, {5, 1, 1, 1}}, {{0, 0, 0, 0}, {5, 10, 4, 3}}},
    {1151, {{0, 7, 2, 1, 0}, {5, 1, 1, 1, 2}}, {{0, 0, 0, 0, 0}, {5, 10, 4, 3, 2}}},
    {-1, {}, {}},
    {300, {}, {}},
};

TEST_F(ResultSelection, HasAStartAndACountForEachAxisOfTheKind) {
  for (const SelectionRow& row : kSelections) {
    SCOPED_TRACE(row.key);
    ORVResult block = Block(row.key);
    EXPECT_EQ(ByComponent(block, 1, 2, 7), row.one);
    EXPECT_EQ(ByComponent(block, kAllComponents, kAllLayers, kAllEntities), row.all);
  }
}

TEST_F(ResultSelection, OfAComponentBeyondTheLastIsEmpty) {
  ORVResult block = Block(1000);
  EXPECT_EQ(ByComponent(block, 3, 0, 0), kNothing);
  EXPECT_EQ(ByComponent(block, 2147483647, 0, 0), kNothing);
  block.m_ncoo = 0;
  EXPECT_EQ(ByComponent(block, 0, 0, 0), kNothing);
  EXPECT_EQ(ByComponent(block, kAllComponents, 0, 0), (Selection{{0, 0}, {1, 0}}));
  block.m_ncoo = -200;
  EXPECT_EQ(ByComponent(block, kAllComponents, 0, 0), kNothing);
}

TEST_F(ResultSelection, OfANegativeComponentIsTheFirst) {
  ORVResult block = Block(1000);
  for (const int component : {-1, -5, -99, -101}) {
    EXPECT_EQ(ByComponent(block, component, 0, 3), (Selection{{3, 0}, {1, 1}}));
  }
}

TEST_F(ResultSelection, OfALayerOutsideTheBlockIsTheFirst) {
  ORVResult block = Block(1100);
  for (const int layer : {-1, -100, -102, 4, 2147483647}) {
    EXPECT_EQ(ByComponent(block, 0, layer, 0), (Selection{{0, 0, 0}, {1, 1, 1}}));
  }
  EXPECT_EQ(ByComponent(block, 0, 3, 0), (Selection{{0, 3, 0}, {1, 1, 1}}));
}

TEST_F(ResultSelection, KeepsAnEntityOutsideTheBlockForTheReadToRefuse) {
  ORVResult block = Block(1000);
  EXPECT_EQ(ByComponent(block, 0, 0, 10), (Selection{{10, 0}, {1, 1}}));
  EXPECT_EQ(ByComponent(block, 0, 0, -2), (Selection{{UINT64_MAX - 1, 0}, {1, 1}}));
}

TEST_F(ResultSelection, NeedsPlacesForItsAnswer) {
  ORVResult block = Block(1000);
  std::uint64_t numbers[8] = {};
  int rank = 77;
  EXPECT_EQ(block.GetComponentSelection(0, nullptr, numbers, numbers, 0, 0), 0);
  EXPECT_EQ(block.GetComponentSelection(0, &rank, nullptr, numbers, 0, 0), 0);
  EXPECT_EQ(block.GetComponentSelection(0, &rank, numbers, nullptr, 0, 0), 0);
  EXPECT_EQ(block.GetComponentSelectionByVariableName("V", nullptr, numbers, numbers, 0, 0), 0);
  EXPECT_EQ(block.GetComponentSelectionWrap(0, nullptr, numbers, numbers, 0, 0, true), 0);
  EXPECT_EQ(block.GetAttributeSelection(ORV_ATT_INDEXVAL, nullptr, numbers, numbers), 1);
  EXPECT_EQ(rank, 77);
}

// ---- By name

TEST_F(ResultSelection, OfAVariableByNameIsItsRunOfComponents) {
  VariableWithHandles variable("VELOCITY", 3);
  ORVResult block = Block(1101);
  block.m_variable = variable.get();
  EXPECT_EQ(ByName(block, "velocity", 2, 7), (Selection{{7, 2, 0, 0}, {1, 1, 3, 2}}));
  EXPECT_EQ(ByName(block, "VELOCITY", kAllLayers, kAllEntities), (Selection{{0, 0, 0, 0}, {10, 4, 3, 2}}));
  EXPECT_EQ(ByName(block, "other", 0, 0), kNothing);
  EXPECT_EQ(ByName(block, nullptr, 0, 0), kNothing);
}

TEST_F(ResultSelection, OfAVariableByNameMustEndWithinTheBlock) {
  VariableWithHandles variable("V", 4);
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  EXPECT_EQ(ByName(block, "V", 0, 0), kNothing);
  int count = 77;
  int offset = 77;
  EXPECT_EQ(block.GetVariableCompAndOffset("V", count, offset), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(offset, -1);
  block.m_ncoo = 4;
  EXPECT_EQ(ByName(block, "V", 0, 0), (Selection{{0, 0}, {1, 4}}));
  EXPECT_EQ(block.GetVariableCompAndOffset("v", count, offset), 0);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(offset, 0);
}

TEST_F(ResultSelection, OfAnEmptyVariableByNameIsEmpty) {
  VariableWithHandles variable("V", 0);
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  EXPECT_EQ(ByName(block, "V", 0, 0), kNothing);
  variable->m_ncoo = 3;
  variable->SetOriginalCount(0xFFFFFFFFU);
  EXPECT_EQ(ByName(block, "V", 0, 0), kNothing);
}

TEST_F(ResultSelection, WithoutAVariableWorksByNumberOnly) {
  ORVResult block = Block(1000);
  EXPECT_EQ(ByComponent(block, 1, 0, 7), (Selection{{7, 1}, {1, 1}}));
  EXPECT_EQ(ById(block, 1, 0, 7, false), (Selection{{7, 1}, {1, 1}}));
  EXPECT_EQ(ByName(block, "V", 0, 0), kNothing);
  EXPECT_EQ(ById(block, 1, 0, 7, true), kNothing);
  int count = 77;
  int offset = 77;
  EXPECT_EQ(block.GetVariableCompAndOffset("V", count, offset), 1);
  ORVHyperSlab slab;
  orvio::PointAtOwnArrays(slab);
  slab.m_rank = 4;
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, 0, 0, -1), 1);
  EXPECT_EQ(slab.m_rank, 4);
  ORVDependentVar dependent;
  EXPECT_EQ(block.FillDependentForVarGrp("V", dependent), 1);
  EXPECT_EQ(dependent.m_pVariable, nullptr);
  EXPECT_EQ(block.GetHyperSelection(1, slab, true, 0, -1), 1);
  EXPECT_EQ(block.GetHyperSelection(1, slab, false, 0, -1), 1);
  std::vector<ORVHyperSlab*> slabs;
  block.GetVarSelection(1, slabs, 0, -1);
  EXPECT_TRUE(slabs.empty());
}

TEST_F(ResultSelection, OfAVariableByNameFillsASlab) {
  VariableWithHandles variable("V", 2);
  ORVResult block = Block(1100);
  block.m_variable = variable.get();
  ORVHyperSlab slab;
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, 0, 2, 7), 1);  // no pointers
  orvio::PointAtOwnArrays(slab);
  slab.m_rank = 4;
  EXPECT_EQ(block.FillDependentForVarGrp("other", slab, 0, 2, 7), 1);
  EXPECT_EQ(slab.m_rank, 4);
  EXPECT_EQ(block.FillDependentForVarGrp("v", slab, 0, 2, 7), 0);
  EXPECT_EQ(Of(slab), (Selection{{7, 2, 0}, {1, 1, 2}}));
  block.m_ncoo = 1;
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, 0, 2, 7), 1);
  EXPECT_EQ(slab.m_rank, 0);
}

TEST_F(ResultSelection, OfAVariableByNameIntoASlabLooksForAllLayersInItsOwnArgument) {
  VariableWithHandles variable("V", 3);
  ORVResult block = Block(1100);
  block.m_variable = variable.get();
  ORVHyperSlab slab;
  orvio::PointAtOwnArrays(slab);
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, kAllLayers, 2, -1), 0);
  EXPECT_EQ(Of(slab), (Selection{{0, 0, 0}, {10, 4, 3}}));
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, 0, kAllLayers, -1), 0);
  EXPECT_EQ(Of(slab), (Selection{{0, 0, 0}, {10, 1, 3}}));
}

TEST_F(ResultSelection, OfAVariableByNameMayExceedTheColumnsOfProperties) {
  VariableWithHandles variable("V", 8);
  ORVResult block = Block(500);
  block.m_variable = variable.get();
  ORVHyperSlab slab;
  orvio::PointAtOwnArrays(slab);
  EXPECT_EQ(block.FillDependentForVarGrp("V", slab, 0, 0, -1), 0);
  EXPECT_EQ(Of(slab), (Selection{{0, 0}, {10, 8}}));
  EXPECT_EQ(ByName(block, "V", 0, 0), kNothing);
}

TEST_F(ResultSelection, OfADependentTakesTheStoredComponentsInOrder) {
  VariableWithHandles variable("V", 3);
  variable.Add(12, 2);
  variable.Add(13, 0);
  variable.Add(14, 0);
  variable.Add(15, 3);
  variable.AddComputed(16, 50, {{12, 13}});
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  ORVDependentVar dependent;
  dependent.m_iids = {5};
  EXPECT_EQ(block.FillDependentForVarGrp("other", dependent), 1);
  EXPECT_EQ(dependent.m_pVariable, nullptr);
  EXPECT_EQ(block.FillDependentForVarGrp("v", dependent), 0);
  EXPECT_EQ(dependent.m_pVariable, variable.get());
  EXPECT_EQ(dependent.m_iids, (std::vector<int>{5, 13, 12}));
}

TEST_F(ResultSelection, OfADependentWithoutStoredComponentsFails) {
  VariableWithHandles variable("V", 3);
  variable.AddComputed(16, 50, {});
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  ORVDependentVar dependent;
  EXPECT_EQ(block.FillDependentForVarGrp("V", dependent), 1);
  EXPECT_EQ(dependent.m_pVariable, nullptr);
  EXPECT_TRUE(dependent.m_iids.empty());
}

// ---- Of the index

TEST_F(ResultSelection, OfTheIndexHasARowPerStateInMultistateKinds) {
  std::uint64_t start[2];
  std::uint64_t count[2];
  for (const int key : {1000, 1001, 1050, 1051, 1100, 1101, 1150, 1151, 500}) {
    SCOPED_TRACE(key);
    ORVResult block = Block(key);
    block.m_nindex = 6;
    for (const int att : {19, 20}) {
      int rank = 77;
      std::fill_n(start, 2, 77);
      EXPECT_EQ(block.GetAttributeSelection(static_cast<_ORVBlockAtt>(att), &rank, start, count), 0);
      const bool multi = key == 1050 || key == 1051 || key == 1150 || key == 1151;
      EXPECT_EQ(Numbers(start, start + rank), multi ? (Numbers{0, 0}) : (Numbers{0}));
      EXPECT_EQ(Numbers(count, count + rank), multi ? (Numbers{5, 6}) : (Numbers{6}));
    }
    int rank = 77;
    for (const int att : {1, 5, 12, 13, 16, 18, 21, 30}) {
      EXPECT_EQ(block.GetAttributeSelection(static_cast<_ORVBlockAtt>(att), &rank, start, count), 1);
    }
    EXPECT_EQ(rank, 77);
  }
}

// ---- By handle

using SlabList = std::vector<std::unique_ptr<ORVHyperSlab>>;

SlabList SlabsOf(ORVResult& block, int iid, int layer, int entity) {
  std::vector<ORVHyperSlab*> slabs;
  block.GetVarSelection(iid, slabs, layer, entity);
  SlabList owned;
  for (ORVHyperSlab* slab : slabs) owned.emplace_back(slab);
  return owned;
}

TEST_F(ResultSelection, OfAStoredHandleIsOneSlab) {
  VariableWithHandles variable("V", 3);
  variable.Add(11, 2);
  ORVResult block = Block(1050);
  block.m_variable = variable.get();
  const SlabList slabs = SlabsOf(block, 11, 0, 7);
  ASSERT_EQ(slabs.size(), 1U);
  EXPECT_EQ(Of(*slabs[0]), (Selection{{0, 7, 2}, {5, 1, 1}}));
  EXPECT_EQ(slabs[0]->m_pStart, slabs[0]->m_start);
  EXPECT_EQ(slabs[0]->m_pCount, slabs[0]->m_count);
  EXPECT_EQ(orvio::CountOf(*slabs[0]), 5U);
  EXPECT_TRUE(SlabsOf(block, 111, 0, 7).empty());  // an external id
}

TEST_F(ResultSelection, OfAComputedHandleIsASlabPerInputDepthFirst) {
  VariableWithHandles variable("V", 3);
  for (int component = 0; component < 3; ++component) variable.Add(11 + component, component);
  variable.AddComputed(21, 50, {{13, 99}, {11}});
  variable.AddComputed(22, 50, {{12, 21}, {}, {11}});
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  const SlabList slabs = SlabsOf(block, 22, 0, -1);
  ASSERT_EQ(slabs.size(), 4U);
  EXPECT_EQ(slabs[0]->m_start[1], 1U);
  EXPECT_EQ(slabs[1]->m_start[1], 2U);
  EXPECT_EQ(slabs[2]->m_start[1], 0U);
  EXPECT_EQ(slabs[3]->m_start[1], 0U);
}

TEST_F(ResultSelection, OfAHandleIsAppended) {
  VariableWithHandles variable("V", 1);
  variable.Add(11, 0);
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  ORVHyperSlab first;
  std::vector<ORVHyperSlab*> slabs = {&first};
  block.GetVarSelection(11, slabs, 0, -1);
  ASSERT_EQ(slabs.size(), 2U);
  EXPECT_EQ(slabs[0], &first);
  delete slabs[1];
}

TEST_F(ResultSelection, OfAHandleBeyondTheBlockIsAnEmptySlab) {
  VariableWithHandles variable("V", 3);
  variable.Add(11, 5);
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  const SlabList slabs = SlabsOf(block, 11, 0, -1);
  ASSERT_EQ(slabs.size(), 1U);
  EXPECT_EQ(slabs[0]->m_rank, 0);
  EXPECT_EQ(orvio::CountOf(*slabs[0]), 0U);
  EXPECT_EQ(ById(block, 11, 0, -1, true), kNothing);
}

TEST_F(ResultSelection, FollowsDependentsSixteenDeep) {
  VariableWithHandles variable("V", 1);
  variable.Add(1, 0);
  for (int iid = 2; iid <= 18; ++iid) variable.AddComputed(iid, 50, {{iid - 1}});
  variable.AddComputed(30, 50, {{30, 1}});  // in a circle
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  EXPECT_EQ(SlabsOf(block, 17, 0, -1).size(), 1U);
  EXPECT_EQ(SlabsOf(block, 18, 0, -1).size(), 0U);
  EXPECT_EQ(SlabsOf(block, 30, 0, -1).size(), 16U);
}

// ---- Merging

/// Without pointers, which would not survive a copy.
ORVHyperSlab Slab(const Numbers& start, const Numbers& count) {
  ORVHyperSlab slab;
  slab.m_rank = static_cast<int>(start.size());
  std::copy(start.begin(), start.end(), slab.m_start);
  std::copy(count.begin(), count.end(), slab.m_count);
  return slab;
}

int MergeOf(std::vector<ORVHyperSlab>& parts, ORVHyperSlab& merged) {
  std::vector<ORVHyperSlab*> slabs;
  for (ORVHyperSlab& part : parts) {
    orvio::PointAtOwnArrays(part);
    slabs.push_back(&part);
  }
  return ORVResult(1000).GetHypSelection(slabs, merged);
}

TEST_F(ResultSelection, MergesNothingFromAnEmptyList) {
  std::vector<ORVHyperSlab> parts;
  ORVHyperSlab merged = Slab({9}, {8});
  EXPECT_EQ(MergeOf(parts, merged), 1);
  EXPECT_EQ(Of(merged), (Selection{{9}, {8}}));
  std::vector<ORVHyperSlab*> null = {nullptr};
  EXPECT_EQ(ORVResult(1000).GetHypSelection(null, merged), 1);
}

TEST_F(ResultSelection, MergesOneSlabIntoACopyWithItsPointers) {
  std::vector<ORVHyperSlab> parts = {Slab({3, 1}, {1, 2})};
  ORVHyperSlab merged;
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{3, 1}, {1, 2}}));
  EXPECT_EQ(merged.m_pStart, parts[0].m_start);
  EXPECT_EQ(merged.m_pCount, parts[0].m_count);
}

TEST_F(ResultSelection, MergesComponentsWithWhatLiesBetweenThem) {
  std::vector<ORVHyperSlab> parts = {Slab({0, 0}, {10, 1}), Slab({0, 2}, {10, 1})};
  ORVHyperSlab merged;
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0, 0}, {10, 3}}));
  EXPECT_EQ(merged.m_pStart, merged.m_start);
  EXPECT_EQ(merged.m_pCount, merged.m_count);
  parts = {Slab({0, 3}, {10, 1}), Slab({0, 1}, {10, 1})};
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0, 1}, {10, 3}}));
}

TEST_F(ResultSelection, MergesRunsAsIfTheyWereEvenlySpread) {
  std::vector<ORVHyperSlab> parts = {Slab({0}, {2}), Slab({2}, {3}), Slab({1}, {1})};
  ORVHyperSlab merged;
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0}, {9}}));
}

TEST_F(ResultSelection, MergesEqualStartsIntoTheLargestCount) {
  std::vector<ORVHyperSlab> parts = {Slab({4, 1}, {2, 1}), Slab({4, 1}, {5, 1})};
  ORVHyperSlab merged;
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{4, 1}, {5, 1}}));
}

TEST_F(ResultSelection, MergesNoSlabsOfDifferentRank) {
  std::vector<ORVHyperSlab> parts = {Slab({0, 0}, {1, 1}), Slab({0}, {1})};
  ORVHyperSlab merged = Slab({9}, {8});
  EXPECT_EQ(MergeOf(parts, merged), 1);
  EXPECT_EQ(Of(merged), (Selection{{9}, {8}}));
}

TEST_F(ResultSelection, MergesDistancesInThirtyTwoBits) {
  const std::uint64_t far = (1ULL << 32) + 2;
  std::vector<ORVHyperSlab> parts = {Slab({0}, {1}), Slab({far}, {1})};
  ORVHyperSlab merged;
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0}, {3}}));
  parts = {Slab({0}, {1}), Slab({0xFFFFFFFFULL}, {1})};  // -1
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0}, {2}}));
  parts = {Slab({0}, {1}), Slab({1ULL << 32}, {1})};  // 0
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0}, {1}}));
  parts = {Slab({0}, {1}), Slab({1ULL << 31}, {1})};
  EXPECT_EQ(MergeOf(parts, merged), 0);
  EXPECT_EQ(Of(merged), (Selection{{0}, {(1ULL << 31) + 1}}));
}

TEST_F(ResultSelection, MergesNothingThatDoesNotFit) {
  std::vector<ORVHyperSlab> parts = {Slab({0}, {UINT64_MAX}), Slab({1}, {1})};
  ORVHyperSlab merged = Slab({9}, {8});
  EXPECT_EQ(MergeOf(parts, merged), 1);
  EXPECT_EQ(Of(merged), (Selection{{9}, {8}}));
  parts[0] = parts[1] = Slab({0}, {1});
  parts[0].m_rank = parts[1].m_rank = 9;
  EXPECT_EQ(MergeOf(parts, merged), 1);
}

TEST_F(ResultSelection, OfAnIdIsMergedFromItsInputs) {
  VariableWithHandles variable("V", 3);
  for (int component = 0; component < 3; ++component) variable.Add(11 + component, component);
  variable.AddComputed(21, 50, {{13, 11}});
  variable.AddComputed(-1, 50, {{11}});
  ORVResult block = Block(1100);
  block.m_variable = variable.get();
  EXPECT_EQ(ById(block, 21, 2, -1, true), (Selection{{0, 2, 0}, {10, 1, 3}}));
  EXPECT_EQ(ById(block, 12, kAllLayers, 7, true), (Selection{{7, 0, 1}, {1, 4, 1}}));
  EXPECT_EQ(ById(block, 2, kAllLayers, 7, false), (Selection{{7, 0, 2}, {1, 4, 1}}));
  EXPECT_EQ(ById(block, 112, 0, 0, true), kNothing);
  EXPECT_EQ(ById(block, -1, 0, 0, true), kNothing);
}

TEST_F(ResultSelection, OfAHandleOrAResultTypeFillsASlabOfItsOwn) {
  VariableWithHandles variable("V", 3);
  for (int component = 0; component < 3; ++component) variable.Add(11 + component, component);
  variable.AddComputed(21, 50, {{11, 12}});
  variable.AddComputed(22, 50, {});
  variable.AddComputed(-1, 50, {{11}});
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  ORVHyperSlab slab;
  EXPECT_EQ(block.GetHyperSelection(12, slab, true, 0, -1), 0);
  EXPECT_EQ(Of(slab), (Selection{{0, 1}, {10, 1}}));
  EXPECT_EQ(slab.m_pStart, slab.m_start);
  EXPECT_EQ(slab.m_pCount, slab.m_count);
  EXPECT_EQ(block.GetHyperSelection(113, slab, false, 0, 4), 0);
  EXPECT_EQ(Of(slab), (Selection{{4, 2}, {1, 1}}));
  EXPECT_EQ(block.GetHyperSelection(121, slab, false, 0, -1), 0);
  EXPECT_EQ(Of(slab), (Selection{{0, 0}, {10, 2}}));
  EXPECT_EQ(block.GetHyperSelection(113, slab, true, 0, -1), 1);
  EXPECT_EQ(block.GetHyperSelection(12, slab, false, 0, -1), 1);
  EXPECT_EQ(block.GetHyperSelection(22, slab, true, 0, -1), 1);
  EXPECT_EQ(block.GetHyperSelection(-1, slab, true, 0, -1), 1);
  EXPECT_EQ(block.GetHyperSelection(99, slab, false, 0, -1), 1);  // its internal id is -1
  EXPECT_EQ(Of(slab), (Selection{{0, 0}, {10, 2}}));
}

TEST_F(ResultSelection, OfAComputedHandleNeedsAllItsInputsInTheBlock) {
  VariableWithHandles variable("V", 3);
  variable.Add(11, 0);
  variable.Add(12, 5);
  variable.Add(13, 6);
  variable.AddComputed(21, 50, {{11, 12}});
  variable.AddComputed(22, 50, {{12, 13}});
  ORVResult block = Block(1000);
  block.m_variable = variable.get();
  ORVHyperSlab slab;
  slab.m_rank = 4;
  EXPECT_EQ(ById(block, 21, 0, -1, true), kNothing);
  EXPECT_EQ(block.GetHyperSelection(21, slab, true, 0, -1), 1);
  EXPECT_EQ(slab.m_rank, 4);
  EXPECT_EQ(ById(block, 22, 0, -1, true), kNothing);
  EXPECT_EQ(block.GetHyperSelection(22, slab, true, 0, -1), 0);  // nothing merged with nothing
  EXPECT_EQ(slab.m_rank, 0);
}

// ---- The record itself

TEST_F(ResultSelection, RecordStartsEmpty) {
  const ORVHyperSlab slab = {};
  EXPECT_EQ(slab.m_rank, 0);
  EXPECT_EQ(slab.m_pStart, nullptr);
  EXPECT_EQ(slab.m_pCount, nullptr);
  EXPECT_EQ(slab.m_pStride, nullptr);
  EXPECT_EQ(slab.m_pBlock, nullptr);
  EXPECT_EQ(orvio::CountOf(slab), 0U);
}

TEST_F(ResultSelection, RecordCountsNothingUnlessItIsComplete) {
  ORVHyperSlab slab = Slab({0, 0}, {10, 3});
  orvio::PointAtOwnArrays(slab);
  EXPECT_EQ(orvio::CountOf(slab), 30U);
  slab.m_pStart = nullptr;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  orvio::PointAtOwnArrays(slab);
  slab.m_pCount = nullptr;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  orvio::PointAtOwnArrays(slab);
  slab.m_pStride = slab.m_stride;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  slab.m_pStride = nullptr;
  slab.m_pBlock = slab.m_block;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  slab.m_pBlock = nullptr;
  slab.m_rank = 0;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  slab.m_rank = 9;
  EXPECT_EQ(orvio::CountOf(slab), 0U);
  slab = Slab({0, 0}, {1ULL << 32, 1ULL << 32});
  orvio::PointAtOwnArrays(slab);
  EXPECT_EQ(orvio::CountOf(slab), 0U);
}

}  // namespace
