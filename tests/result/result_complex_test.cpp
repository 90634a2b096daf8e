// What a selective read makes of complex pairs.

#include <cstdint>
#include <vector>

#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Doubles = std::vector<double>;
using Numbers = std::vector<std::uint64_t>;

int Read(ORVResult& block, const std::string& file, Numbers start, Numbers count, int state = 1) {
  return block.ReadSelectiveAttribute(file.c_str(), state, 2, ORV_ATT_RES, static_cast<int>(count.size()), start.data(),
                                      count.data(), nullptr, nullptr, false);
}

class ResultComplex : public OrvTest {};

/// Three nodes with one component: 3+4i, 0+2i, -1+0i.
ForgedResult ForgeNodes() {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<double>("res", {3, 1, 2}, {3, 4, 0, 2, -1, 0}).dataset<int>("entid", {3}, {10, 20, 30});
  return forged;
}

struct Nodes {
  explicit Nodes(int output) : block(NodeBlock(1001)) {
    block.m_complexOutput = output;
    block.m_res = values.data();
    block.m_nent = 3;
    block.m_entid = ids.data();
  }
  ORVResult block;
  Floats values = Floats(6, -9);
  std::vector<int> ids = std::vector<int>(3, -1);
};

TEST_F(ResultComplex, RunsWhenTheFirstAxisDoesNotStartAtZero) {
  ForgedResult forged = ForgeNodes();
  Nodes from_second(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(Read(from_second.block, forged.path(), {1, 0, 0}, {2, 1, 2}), 0);
  EXPECT_EQ(from_second.values, (Floats{2, 1, -1, 0, -9, -9}));  // the pairs stand behind the magnitudes

  Nodes whole(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(Read(whole.block, forged.path(), {0, 0, 0}, {3, 1, 2}), 0);
  EXPECT_EQ(whole.values, (Floats{3, 4, 0, 2, -1, 0}));
}

TEST_F(ResultComplex, NeedsBothParts) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  nodes.block.m_readIds = 1;
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {2, 1, 1}), 1);
  EXPECT_EQ(nodes.values, (Floats{0, -1, -9, -9, -9, -9}));  // read, not converted
  EXPECT_EQ(nodes.ids, (std::vector<int>{-1, -1, -1}));
}

TEST_F(ResultComplex, OfOnePartFromEntityZeroIsLeftAlone) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(Read(nodes.block, forged.path(), {0, 0, 1}, {3, 1, 1}), 0);
  EXPECT_EQ(nodes.values, (Floats{4, 2, 0, -9, -9, -9}));
}

TEST_F(ResultComplex, GivesEachOutput) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {3, 1, 2}, {9, 9, 3, 4, 0, 2});
  const auto converted = [&](int output) {
    Nodes nodes(output);
    EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {2, 1, 2}), 0);
    return Floats{nodes.values[0], nodes.values[1]};
  };
  EXPECT_EQ(converted(ORV_COMPLEX_MAGNITUDE), (Floats{5, 2}));
  EXPECT_EQ(converted(ORV_COMPLEX_PHASE), (Floats{53.130104F, 90.F}));
  EXPECT_EQ(converted(ORV_COMPLEX_REAL), (Floats{3, 0}));
  EXPECT_EQ(converted(ORV_COMPLEX_IMAGINARY), (Floats{4, 2}));
}

TEST_F(ResultComplex, TakesTheFirstOfSeveralOutputs) {
  ForgedResult forged = ForgeNodes();
  const auto converted = [&](int output) {
    Nodes nodes(output);
    EXPECT_EQ(Read(nodes.block, forged.path(), {2, 0, 0}, {1, 1, 2}), 0);
    return nodes.values[0];
  };
  EXPECT_EQ(converted(15), 1.F);
  EXPECT_NEAR(converted(14), 180.F, 1e-4F);
  EXPECT_EQ(converted(12), -1.F);
  EXPECT_EQ(converted(8), 0.F);
}

TEST_F(ResultComplex, WorksInDoublePrecisionWithItsOwnFactor) {
  ForgedResult forged = ForgeNodes();
  ORVResult block = NodeBlock(1001);
  Doubles values(2);
  block.m_res = values.data();
  block.m_resType = ORV_DOUBLE;
  block.m_complexOutput = ORV_COMPLEX_PHASE;
  EXPECT_EQ(Read(block, forged.path(), {1, 0, 0}, {1, 1, 2}), 0);
  EXPECT_DOUBLE_EQ(values[0], 1.5707963267948966 * 57.2957795);
  block.m_complexOutput = ORV_COMPLEX_MAGNITUDE;
  EXPECT_EQ(Read(block, forged.path(), {2, 0, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(values[0], 1);
}

TEST_F(ResultComplex, ReadsTheIdsAfterwards) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_REAL);
  nodes.block.m_readIds = 1;
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(nodes.ids, (std::vector<int>{10, 20, 30}));
}

TEST_F(ResultComplex, WithoutAnOutputLeavesThePairs) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(0);
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {2, 1, 2}), 0);
  EXPECT_EQ(nodes.values, (Floats{0, 2, -1, 0, -9, -9}));
}

TEST_F(ResultComplex, LeavesIntegerValuesAndTheIdsAlone) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<int>("res", {2, 1, 2}, {1, 2, 3, 4}).dataset<int>("entid", {3}, {10, 20, 30});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  std::vector<int> values(2);
  nodes.block.m_res = values.data();
  nodes.block.m_resType = ORV_INT;
  nodes.block.m_readIds = 1;
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(values, (std::vector<int>{3, 4}));
  EXPECT_EQ(nodes.ids, (std::vector<int>{-1, -1, -1}));
}

TEST_F(ResultComplex, OfARealKindIsNotLookedFor) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {2, 2}, {1, 2, 3, 4});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  nodes.block.SetBlockType(1000);
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0}, {1, 2}), 0);
  EXPECT_EQ(nodes.values[0], 3);
}

TEST_F(ResultComplex, LooksAtTheLowHalfOfTheStart) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  constexpr hsize_t kFar = hsize_t{1} << 32;
  forged.data().raw([](hid_t here) {
    const hsize_t dims[] = {kFar + 2, 1, 2};
    const hsize_t chunk[] = {2, 1, 2};
    const float fill = 3;
    const Id space(H5Screate_simple(3, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 3, chunk), "chunk");
    Check(H5Pset_fill_value(list.get(), H5T_NATIVE_FLOAT, &fill), "fill value");
    const Id dataset(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), 0, list.get(), 0), "res");
  });
  Nodes nodes(ORV_COMPLEX_IMAGINARY);
  EXPECT_EQ(Read(nodes.block, forged.path(), {kFar, 0, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(nodes.values, (Floats{3, 3, -9, -9, -9, -9}));
  Nodes magnitudes(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(Read(magnitudes.block, forged.path(), {kFar, 0, 0}, {1, 1, 2}), 0);
  EXPECT_EQ(magnitudes.values[0], 3);
  EXPECT_EQ(Read(magnitudes.block, forged.path(), {kFar + 1, 0, 0}, {1, 1, 2}), 0);
  EXPECT_FLOAT_EQ(magnitudes.values[0], 4.2426405F);
}

// ---- Multi-state and element kinds

TEST_F(ResultComplex, OfMultiStateEntitiesLooksAtTheSecondAxis) {
  ForgedResult forged(Layout::kSingle, kMultiNodePath);
  forged.data().dataset<float>("res", {2, 2, 1, 2}, {1, 0, 3, 4, 0, 1, 6, 8});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  nodes.block.SetBlockType(1051);
  EXPECT_EQ(Read(nodes.block, forged.path(), {0, 1, 0, 0}, {2, 1, 1, 2}, 0), 0);
  EXPECT_EQ(nodes.values, (Floats{5, 10, 6, 8, -9, -9}));

  Nodes second_state(ORV_COMPLEX_MAGNITUDE);
  second_state.block.SetBlockType(1051);
  EXPECT_EQ(Read(second_state.block, forged.path(), {1, 0, 0, 0}, {1, 2, 1, 2}, 0), 0);
  EXPECT_EQ(second_state.values, (Floats{0, 1, 6, 8, -9, -9}));
}

ForgedResult ForgeShells() {
  ForgedResult forged(Layout::kSingle, kShellPath);
  forged.data().dataset<float>("res", {2, 2, 1, 2}, {1, 0, 2, 0, 3, 4, 6, 8});
  return forged;
}

ORVResult ComplexShells(int output, Floats& values) {
  ORVResult block = ShellBlock(1101);
  block.m_res = values.data();
  block.m_complexOutput = output;
  return block;
}

TEST_F(ResultComplex, OfElementsTakesOneLayer) {
  ForgedResult forged = ForgeShells();
  Floats values(8, -9);
  ORVResult block = ComplexShells(ORV_COMPLEX_MAGNITUDE, values);
  EXPECT_EQ(Read(block, forged.path(), {1, 1, 0, 0}, {1, 1, 1, 2}), 0);
  EXPECT_EQ(values[0], 10);
}

TEST_F(ResultComplex, OfElementsWithMoreLayersFails) {
  ForgedResult forged = ForgeShells();
  Floats values(8, -9);
  ORVResult block = ComplexShells(ORV_COMPLEX_MAGNITUDE, values);
  EXPECT_EQ(Read(block, forged.path(), {1, 0, 0, 0}, {1, 2, 1, 2}), 1);
  EXPECT_EQ(values, (Floats{3, 4, 6, 8, -9, -9, -9, -9}));
}

TEST_F(ResultComplex, OfMultiStateElementsLooksAtTheElementAxis) {
  ForgedResult forged(Layout::kSingle, kMultiShellPath);
  forged.data().dataset<float>("res", {2, 2, 1, 1, 2}, {1, 0, 3, 4, 0, 1, 6, 8});
  Floats values(8, -9);
  ORVResult block = ComplexShells(ORV_COMPLEX_MAGNITUDE, values);
  block.SetBlockType(1151);
  EXPECT_EQ(Read(block, forged.path(), {0, 1, 0, 0, 0}, {2, 1, 1, 1, 2}, 0), 0);
  EXPECT_EQ(values[0], 5);
  EXPECT_EQ(values[1], 10);
}

// ---- Values that are stored with other axes than their kind has

TEST_F(ResultComplex, OfADatasetOfAnotherRankFailsAfterTheValues) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6}).dataset<int>("entid", {3}, {10, 20, 30});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  nodes.block.m_readIds = 1;
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0}, {2, 2}), 1);
  EXPECT_EQ(nodes.values, (Floats{3, 4, 5, 6, -9, -9}));
  EXPECT_EQ(nodes.ids, (std::vector<int>{-1, -1, -1}));
  forged.data().dataset<float>("res", {3, 1, 2, 2}, Floats(12, 7));
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0, 0}, {1, 1, 2, 2}), 1);
  EXPECT_EQ(nodes.values, (Floats{7, 7, 7, 7, -9, -9}));
}

TEST_F(ResultComplex, OfARowOfMultiStateValuesIsNotLookedFor) {
  ForgedResult forged(Layout::kSingle, kMultiNodePath);
  forged.data().dataset<float>("res", {4}, {1, 2, 3, 4});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE);
  nodes.block.SetBlockType(1051);
  EXPECT_EQ(Read(nodes.block, forged.path(), {2}, {2}, 0), 0);
  EXPECT_EQ(nodes.values, (Floats{3, 4, -9, -9, -9, -9}));
}

TEST_F(ResultComplex, AlwaysLeavesADatasetOfFewerAxesAsItIs) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0}, {2, 2}), 0);
  EXPECT_EQ(nodes.values, (Floats{3, 4, 5, 6, -9, -9}));
}

// ---- The output that does not look at the start

TEST_F(ResultComplex, AlwaysConvertsWholeReadsToo) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(Read(nodes.block, forged.path(), {0, 0, 0}, {3, 1, 2}), 0);
  EXPECT_EQ(nodes.values[0], 5);
  EXPECT_EQ(nodes.values[1], 2);
  EXPECT_EQ(nodes.values[2], 1);
}

TEST_F(ResultComplex, AlwaysLeavesOnePartAsItIs) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 1}, {2, 1, 1}), 0);
  EXPECT_EQ(nodes.values, (Floats{2, 0, -9, -9, -9, -9}));
}

TEST_F(ResultComplex, AlwaysTakesAllLayers) {
  ForgedResult forged = ForgeShells();
  Floats values(8, -9);
  ORVResult block = ComplexShells(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS, values);
  EXPECT_EQ(Read(block, forged.path(), {0, 0, 0, 0}, {2, 2, 1, 2}), 0);
  EXPECT_EQ(values[0], 1);
  EXPECT_EQ(values[1], 2);
  EXPECT_EQ(values[2], 5);
  EXPECT_EQ(values[3], 10);
}

/// Reads runs of values, each `block` long.
int ReadRuns(ORVResult& block, const std::string& file, Numbers start, Numbers count, Numbers stride, Numbers run) {
  return block.ReadSelectiveAttribute(file.c_str(), 1, 2, ORV_ATT_RES, static_cast<int>(count.size()), start.data(),
                                      count.data(), stride.data(), run.data(), false);
}

TEST_F(ResultComplex, AlwaysTakesTheBlocksOfASelection) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {3, 1, 2}, {3, 4, 0, 2, 6, 8});
  Nodes three_nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(ReadRuns(three_nodes.block, forged.path(), {0, 0, 0}, {1, 1, 2}, {3, 1, 1}, {3, 1, 1}), 0);
  EXPECT_EQ(three_nodes.values, (Floats{5, 2, 10, 2, 6, 8}));
  Nodes both_parts(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(ReadRuns(both_parts.block, forged.path(), {0, 0, 0}, {1, 1, 1}, {3, 1, 2}, {3, 1, 2}), 0);
  EXPECT_EQ(both_parts.values, (Floats{5, 2, 10, 2, 6, 8}));
}

TEST_F(ResultComplex, AlwaysLeavesOnePartInBlocksAsItIs) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {3, 1, 2}, {3, 4, 0, 2, 6, 8});
  Nodes nodes(ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(ReadRuns(nodes.block, forged.path(), {0, 0, 1}, {1, 1, 1}, {3, 1, 1}, {3, 1, 1}), 0);
  EXPECT_EQ(nodes.values, (Floats{4, 2, 8, -9, -9, -9}));
}

TEST_F(ResultComplex, PassesOverBlocksUnlessAlways) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {4, 1, 2}, {0, 0, 3, 4, 0, 2, 6, 8});
  Nodes three_nodes(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(ReadRuns(three_nodes.block, forged.path(), {1, 0, 0}, {1, 1, 2}, {3, 1, 1}, {3, 1, 1}), 0);
  EXPECT_EQ(three_nodes.values, (Floats{5, 4, 0, 2, 6, 8}));
  Nodes both_parts(ORV_COMPLEX_MAGNITUDE);
  EXPECT_EQ(ReadRuns(both_parts.block, forged.path(), {1, 0, 0}, {1, 1, 1}, {3, 1, 2}, {3, 1, 2}), 1);
  EXPECT_EQ(both_parts.values, (Floats{3, 4, 0, 2, 6, 8}));
}

TEST_F(ResultComplex, AlwaysAloneConvertsNothing) {
  ForgedResult forged = ForgeNodes();
  Nodes nodes(ORV_COMPLEX_ALWAYS);
  EXPECT_EQ(Read(nodes.block, forged.path(), {1, 0, 0}, {2, 1, 2}), 0);
  EXPECT_EQ(nodes.values, (Floats{0, 2, -1, 0, -9, -9}));
}

}  // namespace
