// Selective reads of a result block that has datasets in memory. What they give is what the file would.

#include <cstdint>
#include <string>
#include <vector>

#include "orvio/orv_buffer.h"
#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Doubles = std::vector<double>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint64_t>;

constexpr const char* kNoFile = "/not/there";

int Select(ORVResult& block, int att, Numbers start, Numbers count, const char* file = kNoFile, bool via_cache = true) {
  return block.ReadSelectiveAttribute(file, 1, 2, static_cast<_ORVBlockAtt>(att), static_cast<int>(count.size()),
                                      start.data(), count.data(), nullptr, nullptr, via_cache);
}

/// What is cached is told from what is stored by the file that is read afterwards: none, or one with other values.
class ResultCacheSelection : public OrvTest {
 protected:
  int Cache(ORVResult& block, ForgedResult& forged, Names names, bool to_float = false) {
    return block.CacheData(manager_, forged.path().c_str(), 1, to_float, &names);
  }

  ORVBufferManager manager_;
  Floats values_ = Floats(8, -1);
  Ints ids_ = Ints(3, -1);
};

/// Three nodes with two components.
class ResultCacheOfNodes : public ResultCacheSelection {
 protected:
  ResultCacheOfNodes() {
    forged_.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6}).dataset<int>("entid", {3}, {10, 20, 30});
    block_.m_res = values_.data();
    block_.m_entid = ids_.data();
    block_.m_nent = 3;
    block_.m_ncoo = 2;
  }
  ForgedResult forged_{Layout::kSingle, kNodePath};
  ORVResult block_ = NodeBlock(1000);
};

TEST_F(ResultCacheOfNodes, ServesFloats) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}), 0);
  EXPECT_EQ(values_, (Floats{3, 5, -1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(ids_, Ints(3, -1));
}

TEST_F(ResultCacheOfNodes, NeedsAFileNameAllTheSame) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}, nullptr), 1);
  EXPECT_EQ(values_, Floats(8, -1));
}

TEST_F(ResultCacheOfNodes, ServesEntityKindsUnasked) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}, kNoFile, false), 0);
  EXPECT_EQ(values_[0], 3);
}

TEST_F(ResultCacheOfNodes, ServesASlab) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  ORVHyperSlab slab;
  slab.m_rank = 2;
  slab.m_start[0] = 2;
  slab.m_count[0] = 1;
  slab.m_count[1] = 2;
  slab.m_pStart = slab.m_start;
  slab.m_pCount = slab.m_count;
  EXPECT_EQ(block_.ReadSelectiveAttribute(kNoFile, 1, 2, ORV_ATT_RES, slab, true), 0);
  EXPECT_EQ(values_, (Floats{5, 6, -1, -1, -1, -1, -1, -1}));
}

TEST_F(ResultCacheOfNodes, LeavesDoublesToTheFile) {
  forged_.data().dataset<double>("res", {3, 2}, {1, 2, 3, 4, 5, 6});
  Doubles values(6, -1);
  block_.m_res = values.data();
  block_.m_resType = ORV_DOUBLE;
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}), 1);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}, forged_.path().c_str()), 0);
  EXPECT_EQ(values, (Doubles{3, 5, -1, -1, -1, -1}));
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 0, nullptr, nullptr), 0);
  EXPECT_EQ(values, (Doubles{1, 2, 3, 4, 5, 6}));
}

TEST_F(ResultCacheOfNodes, ServesDoublesThatAreHeldAsFloats) {
  forged_.data().dataset<double>("res", {3, 2}, {1, 2, 3.5, 4, .1, 6});
  ASSERT_EQ(Cache(block_, forged_, {"res"}, true), 0);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {2, 1}), 0);
  EXPECT_EQ(values_, (Floats{3.5F, .1F, -1, -1, -1, -1, -1, -1}));
}

TEST_F(ResultCacheOfNodes, LeavesSelectionsBeyondTheExtentsToTheFile) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  const std::string path = forged_.path();
  EXPECT_EQ(Select(block_, 18, {2, 0}, {2, 2}, path.c_str()), 1);
  EXPECT_EQ(Select(block_, 18, {0, 0}, {3, 0}, path.c_str()), 1);
  EXPECT_EQ(Select(block_, 18, {0}, {3}, path.c_str()), 1);
  EXPECT_EQ(values_, Floats(8, -1));
}

TEST_F(ResultCacheOfNodes, LeavesBlocksWithOtherCountsToTheFile) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  block_.m_nent = 2;
  forged_.data().dataset<float>("res", {2, 2}, {6, 7, 8, 9});
  EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 2}, forged_.path().c_str()), 0);
  EXPECT_EQ(values_[0], 8);
}

TEST_F(ResultCacheOfNodes, LeavesStrideAndBlockToTheFile) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  std::uint64_t start[] = {0, 1};
  std::uint64_t count[] = {2, 1};
  std::uint64_t stride[] = {2, 1};
  std::uint64_t block[] = {1, 1};
  const auto read = [&](const char* file, std::uint64_t* steps, std::uint64_t* blocks) {
    return block_.ReadSelectiveAttribute(file, 1, 2, ORV_ATT_RES, 2, start, count, steps, blocks, true);
  };
  EXPECT_EQ(read(kNoFile, stride, block), 1);
  EXPECT_EQ(read(kNoFile, stride, nullptr), 1);
  EXPECT_EQ(read(kNoFile, nullptr, block), 1);
  EXPECT_EQ(values_, Floats(8, -1));
  EXPECT_EQ(read(forged_.path().c_str(), stride, block), 0);
  EXPECT_EQ(values_, (Floats{2, 6, -1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(read(kNoFile, nullptr, nullptr), 0);
  EXPECT_EQ(values_, (Floats{2, 4, -1, -1, -1, -1, -1, -1}));
}

TEST_F(ResultCacheOfNodes, GivesTheWholeWithoutASelection) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  EXPECT_EQ(block_.ReadSelectiveAttribute(kNoFile, 1, 2, ORV_ATT_RES, 2, nullptr, nullptr, nullptr, nullptr, true), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6, -1, -1}));
}

// ---- Ids beside the values

TEST_F(ResultCacheOfNodes, ServesIdsThatAreHeldToo) {
  ASSERT_EQ(Cache(block_, forged_, {"res", "entid"}), 0);
  block_.m_readIds = 1;
  EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 1}), 0);
  EXPECT_EQ(values_[0], 3);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(block_.m_readIds, 1);
}

TEST_F(ResultCacheOfNodes, LeavesIdsThatAreNotHeldToTheFile) {
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  block_.m_readIds = 1;
  EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 1}), 1);
  EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 1}, forged_.path().c_str()), 0);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(block_.m_readIds, 1);
}

TEST_F(ResultCacheOfNodes, ForgetsIdsThatTheFileDoesNotHave) {
  forged_.data().drop("entid");
  ASSERT_EQ(Cache(block_, forged_, {"res"}), 0);
  block_.m_readIds = 1;
  EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 1}, forged_.path().c_str()), 0);
  EXPECT_EQ(values_[0], 3);
  EXPECT_EQ(block_.m_readIds, 0);
}

TEST_F(ResultCacheOfNodes, ServesValuesWhereIdsHaveNoDestination) {
  for (const char* held : {"res", "entid"}) {  // it makes no difference whether there are ids in memory
    ASSERT_EQ(Cache(block_, forged_, {held}), 0);
    values_.assign(8, -1);
    block_.m_readIds = 1;
    block_.m_entid = nullptr;
    EXPECT_EQ(Select(block_, 18, {1, 0}, {1, 1}), 0) << held;
    EXPECT_EQ(values_, (Floats{3, -1, -1, -1, -1, -1, -1, -1})) << held;
    EXPECT_EQ(block_.m_readIds, 1);
  }
  EXPECT_EQ(ids_, Ints(3, -1));
}

TEST_F(ResultCacheOfNodes, ServesOtherItemsWithoutIdsBesideThem) {
  forged_.index().dataset<float>("indexval", {3}, {7, 8, 9});
  ASSERT_EQ(Cache(block_, forged_, {"indexval", "entid"}), 0);
  Floats index(3, -1);
  block_.m_indexval = index.data();
  block_.m_nindex = 3;
  block_.m_readIds = 1;
  EXPECT_EQ(Select(block_, 20, {1}, {2}), 0);
  EXPECT_EQ(index, (Floats{8, 9, -1}));
  EXPECT_EQ(ids_, Ints(3, -1));
}

// ---- Kinds

TEST_F(ResultCacheSelection, NeverServesElementKindsOfOneState) {
  ForgedResult forged(Layout::kSingle, kShellPath);
  forged.data().dataset<float>("res", {2, 1, 1}, {1, 2});
  ORVResult block = ShellBlock(1100);
  block.m_nent = 2;
  block.m_numl = block.m_ncoo = 1;
  block.m_res = values_.data();
  ASSERT_EQ(Cache(block, forged, {"res"}), 0);
  EXPECT_EQ(block.FillFromCacheData(1, ORV_ATT_RES, 0, nullptr, nullptr), 0);
  EXPECT_EQ(Select(block, 18, {1, 0, 0}, {1, 1, 1}), 1);
  EXPECT_EQ(Select(block, 18, {1, 0, 0}, {1, 1, 1}, forged.path().c_str()), 0);
  EXPECT_EQ(values_[0], 2);
}

TEST_F(ResultCacheSelection, ServesMultiStateElementKindsWhenAsked) {
  ForgedResult forged(Layout::kSingle, kMultiShellPath);
  forged.data().dataset<float>("res", {2, 2, 1, 1}, {1, 2, 3, 4}).dataset<int>("idele", {2}, {7, 8});
  ORVResult block = ShellBlock(1150);
  block.m_nstate = block.m_nent = 2;
  block.m_numl = block.m_ncoo = 1;
  block.m_res = values_.data();
  block.m_entid = ids_.data();
  ASSERT_EQ(Cache(block, forged, {"res", "idele"}), 0);
  EXPECT_EQ(Select(block, 18, {0, 1, 0, 0}, {2, 1, 1, 1}), 0);
  EXPECT_EQ(values_, (Floats{2, 4, -1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(Select(block, 18, {0, 1, 0, 0}, {2, 1, 1, 1}, kNoFile, false), 1);
  block.m_readIds = 1;
  EXPECT_EQ(Select(block, 18, {0, 1, 0, 0}, {2, 1, 1, 1}), 1);
  EXPECT_EQ(Select(block, 18, {0, 1, 0, 0}, {2, 1, 1, 1}, forged.path().c_str()), 0);
  EXPECT_EQ(ids_, (Ints{7, 8, -1}));
}

TEST_F(ResultCacheSelection, LeavesComplexMultiStateElementKindsToTheFile) {
  ForgedResult forged(Layout::kSingle, kMultiShellPath);
  forged.data().dataset<float>("res", {1, 1, 1, 1, 2}, {3, 4});
  ORVResult block = ShellBlock(1151);
  block.m_nstate = block.m_nent = block.m_numl = block.m_ncoo = 1;
  block.m_res = values_.data();
  ASSERT_EQ(Cache(block, forged, {"res"}), 0);
  EXPECT_EQ(Select(block, 18, {0, 0, 0, 0, 1}, {1, 1, 1, 1, 1}), 1);
  EXPECT_EQ(block.FillFromCacheData(1, ORV_ATT_RES, 0, nullptr, nullptr), 1);
  EXPECT_EQ(Select(block, 18, {0, 0, 0, 0, 1}, {1, 1, 1, 1, 1}, forged.path().c_str()), 0);
  EXPECT_EQ(values_[0], 4);
}

// ---- Complex values

/// Three nodes with one component: 3+4i, 0+2i, 6+8i.
class ResultCacheOfComplexNodes : public ResultCacheSelection {
 protected:
  ResultCacheOfComplexNodes() {
    forged_.data().dataset<float>("res", {3, 1, 2}, {3, 4, 0, 2, 6, 8});
    block_.m_res = values_.data();
    block_.m_nent = 3;
    block_.m_ncoo = 1;
    EXPECT_EQ(Cache(block_, forged_, {"res"}), 0);
  }
  ForgedResult forged_{Layout::kSingle, kNodePath};
  ORVResult block_ = NodeBlock(1001);
};

TEST_F(ResultCacheOfComplexNodes, ServesPairs) {
  EXPECT_EQ(Select(block_, 18, {1, 0, 0}, {2, 1, 2}), 0);
  EXPECT_EQ(values_, (Floats{0, 2, 6, 8, -1, -1, -1, -1}));
  block_.m_complexOutput = ORV_COMPLEX_MAGNITUDE;
  EXPECT_EQ(Select(block_, 18, {0, 0, 0}, {2, 1, 2}), 0);
  EXPECT_EQ(values_, (Floats{3, 4, 0, 2, -1, -1, -1, -1}));
}

TEST_F(ResultCacheOfComplexNodes, LeavesTheConversionToTheFile) {
  block_.m_complexOutput = ORV_COMPLEX_MAGNITUDE;
  EXPECT_EQ(Select(block_, 18, {1, 0, 0}, {2, 1, 2}), 1);
  EXPECT_EQ(values_, Floats(8, -1));
  EXPECT_EQ(Select(block_, 18, {1, 0, 0}, {2, 1, 2}, forged_.path().c_str()), 0);
  EXPECT_EQ(values_[0], 2);
  EXPECT_EQ(values_[1], 10);
  block_.m_complexOutput = ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS;
  EXPECT_EQ(Select(block_, 18, {0, 0, 0}, {1, 1, 2}), 1);
  EXPECT_EQ(Select(block_, 18, {0, 0, 0}, {1, 1, 2}, forged_.path().c_str()), 0);
  EXPECT_EQ(values_[0], 5);
}

TEST_F(ResultCacheOfComplexNodes, GivesNoPairsWithoutASelectionWhereOneNumberIsAskedFor) {
  const auto read = [&] {
    return block_.ReadSelectiveAttribute(kNoFile, 1, 2, ORV_ATT_RES, 3, nullptr, nullptr, nullptr, nullptr, true);
  };
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(values_, (Floats{3, 4, 0, 2, 6, 8, -1, -1}));
  block_.m_complexOutput = ORV_COMPLEX_PHASE;
  EXPECT_EQ(read(), 1);
}

}  // namespace
