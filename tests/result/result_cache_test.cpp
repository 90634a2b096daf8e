// Reads of a result block from memory. Whatever is cached, values and ids are those that the file would give. What is
// read from the file when nothing is cached is in result_read_test and result_selective_read_test.

#include <cstdint>
#include <string>
#include <vector>

#include "orvio/orv_buffer.h"
#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint64_t>;

constexpr const char* kNoFile = "/not/there";

int Select(ORVResult& block, int att, Numbers start, Numbers count, const char* file = kNoFile, int state = 1,
           bool via_cache = true) {
  return block.ReadSelectiveAttribute(file, state, 2, static_cast<_ORVBlockAtt>(att), static_cast<int>(count.size()),
                                      start.data(), count.data(), nullptr, nullptr, via_cache);
}

int FillWhole(ORVResult& block, int att, int state = 1) {
  return block.FillFromCacheData(state, static_cast<_ORVBlockAtt>(att), 0, nullptr, nullptr);
}

/// Three nodes with two components, and an index of two values.
class ResultCache : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ResultCache() {
    forged_.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6}).dataset<int>("entid", {3}, {10, 20, 30});
    forged_.index().dataset<int>("indexident", {2}, {1, 3}).dataset<float>("indexval", {2}, {.5F, 7});
    block_.m_res = values_.data();
    block_.m_nent = 3;
    block_.m_ncoo = 2;
    block_.m_nindex = 2;
  }

  int Cache(ORVResult& block, ForgedResult& forged, Names names = {}, int state = 1, bool to_float = false) {
    return block.CacheData(manager_, forged.path().c_str(), state, to_float, names.empty() ? nullptr : &names);
  }
  int Cache(Names names = {}) { return Cache(block_, forged_, std::move(names)); }

  ORVBufferManager manager_;
  ForgedResult forged_{GetParam(), kNodePath};
  ORVResult block_ = NodeBlock(1000);
  Floats values_ = Floats(6, -1);
  Ints ids_ = Ints(3, -1);
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultCache, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

// ---- CacheData

TEST_P(ResultCache, HoldsValuesAndIndexValuesUnlessToldOtherwise) {
  Floats index(2, -1);
  block_.m_indexval = index.data();
  block_.m_entid = ids_.data();
  EXPECT_EQ(Cache(), 0);
  EXPECT_EQ(FillWhole(block_, 18), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(FillWhole(block_, 20), 0);
  EXPECT_EQ(index, (Floats{.5F, 7}));
  EXPECT_EQ(FillWhole(block_, 13), 1);
  EXPECT_EQ(Cache({"entid"}), 0);
  EXPECT_EQ(FillWhole(block_, 13), 0);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
}

TEST_P(ResultCache, TakesAnEmptyListForNone) {
  Names none;
  EXPECT_EQ(block_.CacheData(manager_, forged_.path().c_str(), 1, false, &none), 0);
  EXPECT_EQ(FillWhole(block_, 18), 0);
}

TEST_P(ResultCache, ReadsTheFileOnlyOnce) {
  EXPECT_EQ(Cache(), 0);
  forged_.data().dataset<float>("res", {3, 2}, Floats(6, 9));
  EXPECT_EQ(Cache(), 0);
  EXPECT_EQ(block_.CacheData(manager_, kNoFile, 1, false, nullptr), 0);
  EXPECT_EQ(block_.CacheData(manager_, nullptr, 1, false, nullptr), 0);
  EXPECT_EQ(FillWhole(block_, 18), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_P(ResultCache, WithoutAFileFails) {
  Names names = {"res"};
  EXPECT_EQ(block_.CacheData(manager_, nullptr, 1, false, nullptr), 1);
  EXPECT_EQ(block_.CacheData(manager_, nullptr, 1, false, &names), 1);
  EXPECT_EQ(block_.CacheData(manager_, kNoFile, 1, false, &names), 1);
  EXPECT_EQ(Cache(block_, forged_, {}, 2), 1);
}

TEST_P(ResultCache, StaysAsItWasForANameThatDoesNotExist) {
  EXPECT_EQ(Cache({"res", "missing"}), 1);
  EXPECT_EQ(FillWhole(block_, 18), 0);
  EXPECT_EQ(Cache({"missing"}), 1);
  EXPECT_EQ(FillWhole(block_, 18), 0);
}

TEST_P(ResultCache, HasNoListOfItsOwnInTheFormOfTheBase) {
  EXPECT_EQ(block_.CacheData(manager_, forged_.path().c_str(), 1), 1);
  EXPECT_EQ(FillWhole(block_, 18), 1);
}

// ---- FillFromCacheData

TEST_P(ResultCache, FillsValuesIdsAndIndexAndNothingElse) {
  Ints idents(2, -1);
  Floats index(2, -1);
  Ints frames(3, -1);
  forged_.data().dataset<int>("fid", {3}, {7, 8, 9});
  block_.m_entid = ids_.data();
  block_.m_indexident = idents.data();
  block_.m_indexval = index.data();
  block_.m_fid = frames.data();
  EXPECT_EQ(Cache({"res", "entid", "indexident", "indexval", "fid"}), 0);
  for (const int att : {13, 18, 19, 20}) EXPECT_EQ(FillWhole(block_, att), 0) << att;
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(idents, (Ints{1, 3}));
  for (const int att : {-1, 0, 1, 5, 14, 15, 16, 17, 21, 25}) EXPECT_EQ(FillWhole(block_, att), 1) << att;
  EXPECT_EQ(frames, Ints(3, -1));
}

TEST_P(ResultCache, FillsWholeOnlyWhatHasTheTypeAndCountOfTheBlock) {
  ASSERT_EQ(Cache({"res", "entid"}), 0);
  block_.m_entid = ids_.data();
  block_.m_nent = 2;
  EXPECT_EQ(FillWhole(block_, 18), 1);
  EXPECT_EQ(FillWhole(block_, 13), 1);
  block_.m_nent = 4;
  EXPECT_EQ(FillWhole(block_, 18), 1);
  block_.m_nent = -1;
  EXPECT_EQ(FillWhole(block_, 18), 1);
  block_.m_nent = 3;
  for (const _ORVDataType type : {ORV_INT, ORV_DOUBLE, ORV_LONG, ORV_UNKNOWN_TYPE}) {
    block_.m_resType = type;
    EXPECT_EQ(FillWhole(block_, 18), 1) << type;
  }
  block_.m_entidType = ORV_LONG;
  EXPECT_EQ(FillWhole(block_, 13), 1);
  EXPECT_EQ(values_, Floats(6, -1));
  EXPECT_EQ(ids_, Ints(3, -1));
}

TEST_P(ResultCache, FillsNothingWithoutADestinationACacheOrAKind) {
  EXPECT_EQ(FillWhole(block_, 18), 1);
  ASSERT_EQ(Cache({"res"}), 0);
  block_.m_res = nullptr;
  EXPECT_EQ(FillWhole(block_, 18), 1);
  block_.m_res = values_.data();
  block_.SetBlockType(500);
  EXPECT_EQ(FillWhole(block_, 18), 1);
  block_.SetBlockType(-1);
  EXPECT_EQ(FillWhole(block_, 18), 1);
  block_.ClearCacheMap();
  block_.SetBlockType(1000);
  EXPECT_EQ(FillWhole(block_, 18), 1);
  EXPECT_EQ(values_, Floats(6, -1));
}

TEST_P(ResultCache, FillsAPartOfFloats) {
  ASSERT_EQ(Cache({"res"}), 0);
  std::uint64_t start[] = {1, 1};
  std::uint64_t count[] = {2, 1};
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 2, start, count), 0);
  EXPECT_EQ(values_, (Floats{4, 6, -1, -1, -1, -1}));
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 1, start, count), 1);
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 3, start, count), 1);
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 2, start, nullptr), 1);
  EXPECT_EQ(block_.FillFromCacheData(1, ORV_ATT_RES, 2, nullptr, count), 1);
  EXPECT_EQ(values_, (Floats{4, 6, -1, -1, -1, -1}));
}

TEST_P(ResultCache, FillsAListAndTellsWhetherAllOfItCouldBe) {
  ASSERT_EQ(Cache({"res", "entid"}), 0);
  block_.m_entid = ids_.data();
  std::vector<_ORVBlockAtt> all = {ORV_ATT_RES, ORV_ATT_IDS};
  std::vector<_ORVBlockAtt> not_all = {ORV_ATT_INDEXVAL, ORV_ATT_IDS};
  std::vector<_ORVBlockAtt> none;
  EXPECT_EQ(block_.FillFromCacheData(1, none, true), 1);
  EXPECT_EQ(block_.FillFromCacheData(1, not_all, true), 1);
  EXPECT_EQ(ids_, Ints(3, -1));
  EXPECT_EQ(block_.FillFromCacheData(1, not_all, false), 1);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(block_.FillFromCacheData(1, all, true), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
  block_.ClearCacheMap();
  EXPECT_EQ(block_.FillFromCacheData(1, all, false), 1);
}

// ---- States

TEST_P(ResultCache, ServesTheStateThatWasReadAndNoOther) {
  ASSERT_EQ(Cache(), 0);
  EXPECT_EQ(FillWhole(block_, 18, 2), 1);
  EXPECT_EQ(FillWhole(block_, 18, 0), 1);
  EXPECT_EQ(FillWhole(block_, 18, -1), 1);
  EXPECT_EQ(values_, Floats(6, -1));
  EXPECT_EQ(Select(block_, 18, {0, 0}, {1, 1}, kNoFile, 2), 1);
  EXPECT_EQ(Select(block_, 18, {0, 0}, {1, 1}, kNoFile, 1), 0);
  EXPECT_EQ(values_[0], 1);
}

TEST_P(ResultCache, ReadsAnotherStateInPlaceOfTheOneItHeld) {
  ForgedFile states("states");
  for (const char* state : {"1", "2"}) {
    const std::string group =
        "/post/singlestate/state00000000000" + std::string(state) + "/entityresults/Node/VELOCITY";
    states.at(group + (GetParam() == Layout::kSplit ? "/header" : "/orvblock")).integer("block", 1000);
    states.at(group + (GetParam() == Layout::kSplit ? "/data" : "/orvblock"));
    states.dataset<float>("res", {3, 2}, Floats(6, std::stof(state)));
    states.dataset<float>("indexval", {2}, {1, 2});
  }
  const std::string path = states.path();
  EXPECT_EQ(block_.CacheData(manager_, path.c_str(), 1, false, nullptr), 0);
  EXPECT_EQ(block_.CacheData(manager_, path.c_str(), 2, false, nullptr), 0);
  EXPECT_EQ(FillWhole(block_, 18, 1), 1);
  EXPECT_EQ(FillWhole(block_, 18, 2), 0);
  EXPECT_EQ(values_, Floats(6, 2));
}

TEST_P(ResultCache, OfAConstantBlockServesAllStates) {
  const char* path = "/post/constant/entityresults/Node/VELOCITY";
  ForgedResult forged(GetParam(), path);
  forged.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6});
  block_.SetBlkPath(std::string(path) + (GetParam() == Layout::kSplit ? "" : "/orvblock"));
  EXPECT_EQ(Cache(block_, forged, {"res"}, 0), 0);
  for (const int state : {0, 1, 17, -1}) EXPECT_EQ(FillWhole(block_, 18, state), 0) << state;
}

TEST_P(ResultCache, OfAMultiStateKindServesAllStates) {
  ForgedResult forged(GetParam(), kMultiNodePath);
  forged.data().dataset<float>("res", {2, 3, 1}, {1, 2, 3, 4, 5, 6});
  ORVResult block = NodeBlock(1050);
  block.m_nstate = 2;
  block.m_nent = 3;
  block.m_ncoo = 1;
  block.m_res = values_.data();
  EXPECT_EQ(Cache(block, forged, {"res"}, 0), 0);
  for (const int state : {0, 1, 17, -1}) EXPECT_EQ(FillWhole(block, 18, state), 0) << state;
}

TEST_P(ResultCache, IsNotTakenForConstantByTheNameOfAVariable) {
  const std::string path = "/post/singlestate/state000000000001/entityresults/Node/constant multistate";
  ForgedResult forged(GetParam(), path);
  forged.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6});
  block_.SetEntityAndVarName("Node", "constant multistate");
  block_.SetBlkPath(path + (GetParam() == Layout::kSplit ? "" : "/orvblock"));
  ASSERT_EQ(Cache(block_, forged, {"res"}), 0);
  EXPECT_EQ(FillWhole(block_, 18, 2), 1);
  EXPECT_EQ(FillWhole(block_, 18, 1), 0);
}

// ---- ReadBlockThroughCache

TEST_P(ResultCache, ServesAWholeReadOfWhatHasABuffer) {
  Floats index(2, -1);
  Ints idents(2, -1);
  block_.m_entid = ids_.data();
  block_.m_indexval = index.data();
  block_.m_indexident = idents.data();
  ASSERT_EQ(Cache({"res", "entid", "indexval", "indexident"}), 0);
  EXPECT_EQ(block_.ReadBlockThroughCache(kNoFile, 1, ORV_READ_DATA), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(index, Floats(2, -1));
  EXPECT_EQ(block_.ReadBlockThroughCache(kNoFile, 1, ORV_READ_INDEX), 0);
  EXPECT_EQ(index, (Floats{.5F, 7}));
  EXPECT_EQ(idents, (Ints{1, 3}));
}

TEST_P(ResultCache, LeavesAWholeReadToTheFileWhenAnythingIsMissing) {
  ASSERT_EQ(Cache({"res"}), 0);
  block_.m_entid = ids_.data();
  block_.m_readIds = 1;
  forged_.data().dataset<float>("res", {3, 2}, Floats(6, 9));
  EXPECT_EQ(block_.ReadBlockThroughCache(forged_.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(values_, Floats(6, 9));
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(block_.ReadBlockThroughCache(kNoFile, 1, ORV_READ_DATA), 1);
}

TEST_P(ResultCache, LeavesAWholeReadWithoutBuffersToTheFile) {
  ASSERT_EQ(Cache({"res"}), 0);
  block_.m_res = nullptr;
  forged_.header().integer("block", 1000).text("etyp", "Node").text("etypvar", "VELOCITY").integer("nent", 12);
  forged_.header().integer("ncoo", 3).integer("fswitch", 0).integer("nindex", 0).text("etypzone", "");
  EXPECT_EQ(block_.ReadBlockThroughCache(kNoFile, 1, ORV_READ_DATA), 1);
  (void)block_.ReadBlockThroughCache(forged_.path().c_str(), 1, ORV_READ_HEADER);
  EXPECT_EQ(block_.m_nent, 12);
}

TEST_P(ResultCache, WholeReadFromMemoryLeavesTheHeaderAlone) {
  ASSERT_EQ(Cache({"res"}), 0);
  forged_.header().integer("block", 1000).integer("nent", 12);
  EXPECT_EQ(block_.ReadBlockThroughCache(forged_.path().c_str(), 1, ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_P(ResultCache, WholeReadNeedsAFileName) {
  ASSERT_EQ(Cache({"res"}), 0);
  EXPECT_EQ(block_.ReadBlockThroughCache(nullptr, 1, ORV_READ_DATA), 1);
  EXPECT_EQ(values_, Floats(6, -1));
}

}  // namespace
