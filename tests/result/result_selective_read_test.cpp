// Reads of a hyperslab of a result's datasets. What becomes of complex values is in result_complex_test.

#include <cstdint>
#include <vector>

#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;

_ORVBlockAtt Att(int code) { return static_cast<_ORVBlockAtt>(code); }

/// A selection of up to three axes.
struct Slab {
  std::vector<std::uint64_t> start;
  std::vector<std::uint64_t> count;
};

int Read(ORVResult& block, const std::string& file, int code, Slab slab, int state = 1) {
  return block.ReadSelectiveAttribute(file.c_str(), state, 2, Att(code), static_cast<int>(slab.count.size()),
                                      slab.start.data(), slab.count.data(), nullptr, nullptr, false);
}

class ResultSelectiveRead : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ResultSelectiveRead() {
    forged_.data().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6}).dataset<int>("entid", {3}, {10, 20, 30});
    forged_.data().dataset<int>("fid", {3}, {7, 8, 9}).dataset<std::int64_t>("fidglob", {1}, {41});
    forged_.data().dataset<float>("eloc", {2, 2}, {.1F, .2F, .3F, .4F});
    forged_.index().dataset<int>("indexident", {2}, {1, 3}).dataset<float>("indexval", {2}, {.5F, 7});
    forged_.header().integer("block", 1000).text("etyp", "Hexa").text("etypvar", "Speed  ").integer("nent", 12);
    forged_.header().integer("ncoo", 3).integer("fswitch", 4).integer("nindex", 5).integer("zoneid", 6);
    forged_.header().integer("nstate", 7).integer("numl", 8).integer("ndim", 9);
    block_.m_res = values_.data();
    block_.m_entid = ids_.data();
    block_.m_nent = 3;
  }

  ForgedResult forged_{GetParam(), kNodePath};
  ORVResult block_ = NodeBlock(1000);
  Floats values_ = Floats(6, -1);
  Ints ids_ = Ints(3, -1);
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultSelectiveRead, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         NameOfLayout);

TEST_P(ResultSelectiveRead, OfValuesFillsTheFrontOfTheBuffer) {
  EXPECT_EQ(Read(block_, forged_.path(), 18, {{1, 0}, {2, 1}}), 0);
  EXPECT_EQ(values_, (Floats{3, 5, -1, -1, -1, -1}));
  EXPECT_EQ(ids_, (Ints{-1, -1, -1}));
}

TEST_P(ResultSelectiveRead, OfValuesReadsAllIdsWhenTheyAreWanted) {
  block_.m_readIds = 1;
  EXPECT_EQ(Read(block_, forged_.path(), 18, {{1, 0}, {1, 1}}), 0);
  EXPECT_EQ(values_[0], 3);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  EXPECT_EQ(block_.m_readIds, 1);
}

TEST_P(ResultSelectiveRead, WithoutIdsInTheFileForgetsThemAndSucceeds) {
  forged_.data().drop("entid");
  block_.m_readIds = 1;
  EXPECT_EQ(Read(block_, forged_.path(), 18, {{1, 0}, {1, 1}}), 0);
  EXPECT_EQ(block_.m_readIds, 0);
}

TEST_P(ResultSelectiveRead, WithIdsOfAnotherCountFailsAfterTheValues) {
  block_.m_readIds = 1;
  block_.m_nent = 2;
  EXPECT_EQ(Read(block_, forged_.path(), 18, {{1, 0}, {1, 1}}), 1);
  EXPECT_EQ(values_[0], 3);
  EXPECT_EQ(ids_, (Ints{-1, -1, -1}));
}

TEST_P(ResultSelectiveRead, OfElementValuesReadsElementIds) {
  ForgedResult shells(GetParam(), kShellPath);
  shells.data().dataset<double>("res", {2, 2, 1}, {1, 2, 3, 4}).dataset<int>("idele", {2}, {70, 80});
  ORVResult block = ShellBlock(1100);
  std::vector<double> values(2);
  block.m_res = values.data();
  block.m_resType = ORV_DOUBLE;
  block.m_entid = ids_.data();
  block.m_nent = 2;
  block.m_readIds = 1;
  EXPECT_EQ(Read(block, shells.path(), 18, {{0, 1, 0}, {2, 1, 1}}), 0);
  EXPECT_EQ(values, (std::vector<double>{2, 4}));
  EXPECT_EQ(ids_, (Ints{70, 80, -1}));
}

TEST_P(ResultSelectiveRead, OfMultiStateValuesSpansTheStates) {
  ForgedResult states(GetParam(), kMultiNodePath);
  states.data().dataset<float>("res", {3, 2, 1}, {1, 2, 3, 4, 5, 6});
  ORVResult block = NodeBlock(1050);
  block.m_res = values_.data();
  EXPECT_EQ(Read(block, states.path(), 18, {{0, 1, 0}, {3, 1, 1}}, 0), 0);
  EXPECT_EQ(values_, (Floats{2, 4, 6, -1, -1, -1}));
}

TEST_P(ResultSelectiveRead, ServesTheOtherDatasets) {
  const std::string path = forged_.path();
  Ints frames(3, -1);
  Floats locations(4, -1);
  Ints idents(2, -1);
  Floats index_values(2, -1);
  block_.m_fid = frames.data();
  block_.m_eloc = locations.data();
  block_.m_indexident = idents.data();
  block_.m_indexval = index_values.data();
  EXPECT_EQ(Read(block_, path, 13, {{1}, {2}}), 0);
  EXPECT_EQ(ids_, (Ints{20, 30, -1}));
  EXPECT_EQ(Read(block_, path, 15, {{0}, {1}}), 0);
  EXPECT_EQ(block_.m_fidglob, 41);
  EXPECT_EQ(Read(block_, path, 16, {{2}, {1}}), 0);
  EXPECT_EQ(frames, (Ints{9, -1, -1}));
  EXPECT_EQ(Read(block_, path, 17, {{1, 0}, {1, 2}}), 0);
  EXPECT_EQ(locations, (Floats{.3F, .4F, -1, -1}));
  EXPECT_EQ(Read(block_, path, 19, {{1}, {1}}), 0);
  EXPECT_EQ(idents, (Ints{3, -1}));
  EXPECT_EQ(Read(block_, path, 20, {{0}, {2}}), 0);
  EXPECT_EQ(index_values, (Floats{.5F, 7}));
}

TEST_P(ResultSelectiveRead, ReadsEachDatasetInTheTypeOfItsBuffer) {
  const std::string path = forged_.path();
  std::vector<std::int64_t> ids(3), frames(3), idents(2);
  std::vector<double> locations(4), index_values(2);
  block_.m_entid = ids.data();
  block_.m_fid = frames.data();
  block_.m_indexident = idents.data();
  block_.m_eloc = locations.data();
  block_.m_indexval = index_values.data();
  block_.m_entidType = block_.m_fidType = block_.m_indexidentType = ORV_LONG;
  block_.m_elocType = block_.m_indexvalType = ORV_DOUBLE;
  EXPECT_EQ(Read(block_, path, 13, {{1}, {2}}), 0);
  EXPECT_EQ(ids, (std::vector<std::int64_t>{20, 30, 0}));
  EXPECT_EQ(Read(block_, path, 16, {{2}, {1}}), 0);
  EXPECT_EQ(frames, (std::vector<std::int64_t>{9, 0, 0}));
  EXPECT_EQ(Read(block_, path, 17, {{1, 0}, {1, 2}}), 0);
  EXPECT_EQ(Floats(locations.begin(), locations.end()), (Floats{.3F, .4F, 0, 0}));
  EXPECT_EQ(Read(block_, path, 19, {{1}, {1}}), 0);
  EXPECT_EQ(idents, (std::vector<std::int64_t>{3, 0}));
  EXPECT_EQ(Read(block_, path, 20, {{0}, {2}}), 0);
  EXPECT_EQ(index_values, (std::vector<double>{.5, 7}));
}

TEST_P(ResultSelectiveRead, ReadsNoIdsBesideTheOtherDatasets) {
  block_.m_readIds = 1;
  Ints frames(3, -1);
  block_.m_fid = frames.data();
  EXPECT_EQ(Read(block_, forged_.path(), 16, {{2}, {1}}), 0);
  EXPECT_EQ(ids_, (Ints{-1, -1, -1}));
}

TEST_P(ResultSelectiveRead, TakesOneFrameIdOfTheBlockAndNoMore) {
  forged_.data().dataset<std::int64_t>("fidglob", {4}, {1, 2, 3, 4});
  EXPECT_EQ(Read(block_, forged_.path(), 15, {{0}, {4}}), 1);
  EXPECT_EQ(block_.m_fidglob, 0);
  EXPECT_EQ(Read(block_, forged_.path(), 15, {{3}, {1}}), 0);
  EXPECT_EQ(block_.m_fidglob, 4);
  std::uint64_t start = 0;
  std::uint64_t one = 1;
  std::uint64_t four = 4;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_FIDGLOB, 1, &start, &one, &four, &four,
                                          false),
            1);
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_FIDGLOB, 1, &start, nullptr, nullptr,
                                          nullptr, false),
            1);
  EXPECT_EQ(block_.m_fidglob, 4);
}

TEST_P(ResultSelectiveRead, ServesHeaderItemsWithoutASelection) {
  const std::string path = forged_.path();
  for (const int code : {1, 5, 6, 8, 9, 10, 11, 12}) EXPECT_EQ(Read(block_, path, code, {}), 0) << code;
  EXPECT_EQ(block_.GetKey(), 1000);
  EXPECT_EQ(block_.m_nent, 12);
  EXPECT_EQ(block_.m_ncoo, 3);
  EXPECT_EQ(block_.m_fswitch, 4);
  EXPECT_EQ(block_.m_nindex, 5);
  EXPECT_EQ(block_.m_numl, 8);
  EXPECT_EQ(block_.m_ndim, 9);
}

TEST_P(ResultSelectiveRead, TakesTheBlanksOffNames) {
  const std::string path = forged_.path();
  EXPECT_EQ(Read(block_, path, 7, {}), 0);
  EXPECT_STREQ(block_.m_etypvar, "Speed");
  ORVResult block = NodeBlock(1000);  // the names say where the block is
  EXPECT_EQ(Read(block, path, 2, {}), 0);
  EXPECT_STREQ(block.m_etyp, "Hexa");
}

TEST_P(ResultSelectiveRead, DoesNotServeWhatTheWholeReadServesBesides) {
  const std::string path = forged_.path();
  for (const int code : {-1, 0, 3, 4, 14, 21, 25, 29, 30, 99}) EXPECT_EQ(Read(block_, path, code, {}), 1) << code;
  EXPECT_EQ(block_.m_zoneid, 0);
  EXPECT_EQ(block_.m_nstate, 0);
}

TEST_P(ResultSelectiveRead, OutsideTheDatasetFails) {
  const std::string path = forged_.path();
  EXPECT_EQ(Read(block_, path, 18, {{0, 0}, {4, 2}}), 1);
  EXPECT_EQ(Read(block_, path, 18, {{2, 0}, {2, 2}}), 1);
  EXPECT_EQ(Read(block_, path, 18, {{0}, {3}}), 1);
  EXPECT_EQ(Read(block_, path, 18, {{0, 0, 0}, {1, 1, 1}}), 1);
  EXPECT_EQ(Read(block_, path, 18, {{0, 0}, {0, 2}}), 1);
  EXPECT_EQ(values_, Floats(6, -1));
}

TEST_P(ResultSelectiveRead, PassesStrideAndBlockOn) {
  std::uint64_t start[] = {0, 1};
  std::uint64_t count[] = {2, 1};
  std::uint64_t stride[] = {2, 1};
  std::uint64_t block[] = {1, 1};
  EXPECT_EQ(
      block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, 2, start, count, stride, block, false),
      0);
  EXPECT_EQ(values_, (Floats{2, 6, -1, -1, -1, -1}));
}

TEST_P(ResultSelectiveRead, WithoutABufferFails) {
  block_.m_res = nullptr;
  EXPECT_EQ(Read(block_, forged_.path(), 18, {{0, 0}, {1, 1}}), 1);
}

TEST_P(ResultSelectiveRead, TakesASlab) {
  ORVHyperSlab slab;
  slab.m_rank = 2;
  slab.m_start[0] = 2;
  slab.m_count[0] = 1;
  slab.m_count[1] = 2;
  slab.m_pStart = slab.m_start;
  slab.m_pCount = slab.m_count;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, slab, false), 0);
  EXPECT_EQ(values_, (Floats{5, 6, -1, -1, -1, -1}));
}

TEST_P(ResultSelectiveRead, TakesStartAndCountOfASlabOnly) {
  ORVHyperSlab slab;
  slab.m_rank = 2;
  slab.m_count[0] = slab.m_count[1] = 1;
  slab.m_block[0] = slab.m_block[1] = 2;
  slab.m_pStart = slab.m_start;
  slab.m_pCount = slab.m_count;
  slab.m_pStride = slab.m_block;
  slab.m_pBlock = slab.m_block;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, slab, false), 0);
  EXPECT_EQ(values_, (Floats{1, -1, -1, -1, -1, -1}));
}

TEST_P(ResultSelectiveRead, RefusesASlabThatIsNotSetUp) {
  ORVHyperSlab slab;
  slab.m_rank = 2;
  slab.m_count[0] = slab.m_count[1] = 1;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, slab, false), 1);
  slab.m_pStart = slab.m_start;
  slab.m_pCount = slab.m_count;
  slab.m_rank = 9;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, slab, false), 1);
  slab.m_rank = -1;
  EXPECT_EQ(block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, slab, false), 1);
}

TEST_P(ResultSelectiveRead, WithoutACacheReadsTheFile) {
  std::uint64_t start[] = {2, 1};
  std::uint64_t count[] = {1, 1};
  EXPECT_EQ(
      block_.ReadSelectiveAttribute(forged_.path().c_str(), 1, 2, ORV_ATT_RES, 2, start, count, nullptr, nullptr, true),
      0);
  EXPECT_EQ(values_[0], 6);
}

TEST_P(ResultSelectiveRead, FindsABlockThatWasReadInAnotherState) {
  ForgedFile forged("states");
  const char* part = GetParam() == Layout::kSplit ? "/data" : "/orvblock";
  const std::string tail = std::string("/entityresults/Node/VELOCITY") + part;
  forged.at("/post/singlestate/state000000000001" + tail).dataset<float>("res", {1, 1}, {1});
  forged.at("/post/singlestate/state000000000002" + tail).dataset<float>("res", {1, 1}, {2});
  if (GetParam() == Layout::kSplit) {
    for (const char* state : {"1", "2"}) {
      forged.at(std::string("/post/singlestate/state00000000000") + state + "/entityresults/Node/VELOCITY/header");
    }
  }
  block_.m_nent = block_.m_ncoo = 1;
  ASSERT_EQ(block_.ReadBlock(forged.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(Read(block_, forged.path(), 18, {{0, 0}, {1, 1}}, 2), 0);
  EXPECT_EQ(values_[0], 2);
}

class ResultSelectiveReadRoads : public OrvTest {};

TEST_F(ResultSelectiveReadRoads, WithoutFileBlockOrKeyFail) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  forged.data().dataset<float>("res", {1, 1}, {1});
  float value = -1;
  ORVResult block = NodeBlock(1000);
  block.m_res = &value;
  std::uint64_t start[] = {0, 0};
  std::uint64_t count[] = {1, 1};
  EXPECT_EQ(block.ReadSelectiveAttribute(nullptr, 1, 2, ORV_ATT_RES, 2, start, count, nullptr, nullptr, false), 1);
  EXPECT_EQ(Read(block, TempPath("none"), 18, {{0, 0}, {1, 1}}), 1);
  EXPECT_EQ(Read(block, forged.path(), 18, {{0, 0}, {1, 1}}, 2), 1);
  block.SetBlockType(7);
  EXPECT_EQ(Read(block, forged.path(), 18, {{0, 0}, {1, 1}}), 1);
  EXPECT_EQ(block.ReadSelAtt(1, 1, ORV_ATT_RES, 2, start, count, nullptr, nullptr), 1);
  EXPECT_EQ(value, -1);
}

}  // namespace
