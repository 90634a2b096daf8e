// The data and index that a write of a result block leaves, looked at with HDF5 alone.

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "result/written_result.h"

namespace {

using namespace orv_test;

class ResultWriteData : public OrvTest {
 protected:
  static constexpr char kData[] = "/post/constant/entityresults/Node/VELOCITY/data/";
  static constexpr char kBlock[] = "/post/constant/entityresults/Node/VELOCITY/orvblock/";
  static constexpr char kShells[] = "/post/constant/elementresults/Node/VELOCITY/data/";

  std::optional<ForgedFile> file_{std::in_place, "write"};
};

/// A block of a kind with 2 states, 3 entities, 4 layers and 5 components; each value is its position.
struct Numbered : Nodes {
  explicit Numbered(int kind) : Nodes(kind) {
    values.resize(240);
    std::iota(values.begin(), values.end(), 0.F);
    block.m_res = values.data();
    block.m_readIds = 0;
    block.m_nstate = 2;
    block.m_nent = 3;
    block.m_numl = 4;
    block.m_ncoo = 5;
  }
};

/// Extents of `res` for each kind with 2 states, 3 entities, 4 layers and 5 components.
TEST_F(ResultWriteData, StoresValuesInTheShapeOfTheKind) {
  const std::pair<int, Shape> rows[] = {
      {1000, {3, 5}},    {1001, {3, 5, 2}},    {1050, {2, 3, 5}},    {1051, {2, 3, 5, 2}},
      {1100, {3, 4, 5}}, {1101, {3, 4, 5, 2}}, {1150, {2, 3, 4, 5}},
  };
  for (const auto& [kind, shape] : rows) {
    file_.emplace("write");
    Numbered nodes(kind);
    EXPECT_EQ(nodes.Write(file_->path(), 0, 3), 0) << kind;
    const RawFile raw(file_->path());
    const std::string section = nodes.block.IsMultistateBlk() ? "/post/multistate/" : "/post/constant/";
    const std::string type = raw.children(section).front();
    std::string place;
    for (const std::string& path : raw.tree(section)) {
      if (path.ends_with("/data/res")) place = path;
    }
    ASSERT_NE(place, "") << type;
    EXPECT_EQ(raw.shape(place), shape);
    EXPECT_EQ(raw.type_class(place), H5T_FLOAT);
    EXPECT_EQ(raw.type_size(place), 4U);
    EXPECT_EQ(raw.values<float>(place).at(7), 7);
    EXPECT_EQ(raw.layout(place), H5D_CONTIGUOUS);
  }
}

/// As above, with two entities in a chunk.
TEST_F(ResultWriteData, CutsChunksAlongTheAxisOfTheEntities) {
  const std::pair<int, Shape> rows[] = {
      {1000, {2, 5}},    {1001, {2, 5, 2}},    {1050, {2, 2, 5}},    {1051, {2, 2, 5, 2}},
      {1100, {2, 4, 5}}, {1101, {2, 4, 5, 2}}, {1150, {2, 2, 4, 5}},
  };
  ASSERT_EQ(ORVSetChunkEntities(2), 0);
  for (const auto& [kind, chunk] : rows) {
    file_.emplace("write");
    Numbered nodes(kind);
    nodes.block.m_nCompressionFactor = 3;
    EXPECT_EQ(nodes.Write(file_->path(), 0, 3), 0) << kind;
    const RawFile raw(file_->path());
    const std::vector<std::string> tree =
        raw.tree(nodes.block.IsMultistateBlk() ? "/post/multistate" : "/post/constant");
    const auto place = std::ranges::find_if(tree, [](const std::string& path) { return path.ends_with("/data/res"); });
    ASSERT_NE(place, tree.end()) << kind;
    EXPECT_EQ(raw.chunk(*place), chunk) << kind;
    EXPECT_EQ(raw.values<float>(*place).back(), static_cast<float>(raw.values<float>(*place).size() - 1)) << kind;
  }
  EXPECT_EQ(ORVSetChunkEntities(0), 2);
}

TEST_F(ResultWriteData, StoresDoublesAsSuch) {
  Nodes nodes;
  std::vector<double> values{1, 2, 3, 4};
  nodes.block.m_res = values.data();
  nodes.block.m_resType = ORV_DOUBLE;
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).type_size(std::string(kData) + "res"), 8U);
  EXPECT_EQ(RawFile(file_->path()).values<double>(std::string(kData) + "res"), values);
}

TEST_F(ResultWriteData, OfMultiStateComplexElementsFailsWithTheHeaderWritten) {
  Nodes nodes(1151);
  Floats locations(4, 1);
  nodes.block.m_nstate = nodes.block.m_numl = nodes.block.m_ndim = 1;
  nodes.block.m_eloc = locations.data();
  EXPECT_EQ(nodes.Write(file_->path(), 0), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Write_FLOAT::\n\t \"res\" size cannot be zero");
  const std::string block = "/post/multistate/elementresults/Node/VELOCITY";
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attribute_int(block + "/header", "block"), 1151);
  EXPECT_EQ(raw.children(block + "/data"), Names{});
  EXPECT_EQ(raw.children(block + "/index"), Names{});
}

TEST_F(ResultWriteData, WithoutValuesOrCountsFails) {
  Nodes without_values;
  without_values.block.m_res = nullptr;
  EXPECT_EQ(without_values.Write(file_->path(), 0, 2), 1);
  Nodes empty(1001);
  empty.block.SetEntityAndVarName("Node", "EMPTY");
  empty.block.m_nent = 0;
  EXPECT_EQ(empty.Write(file_->path(), 0, 2), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Write_FLOAT::\n\t \"res\" size cannot be zero");
}

TEST_F(ResultWriteData, WithBadCountsStoresNothing) {
  const Writer writer(1, 1);
  for (const int compression : {-1, 3}) {
    for (const std::int64_t nent : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
      Nodes nodes;
      nodes.block.m_nCompressionFactor = compression;
      nodes.block.m_nent = nent;
      EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 1) << nent;
      nodes.block.m_ncoo = -1;
      EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 1) << nent;
    }
  }
  EXPECT_EQ(RawFile(file_->path()).children(kData), Names{});
}

TEST_F(ResultWriteData, OfIntegerValuesFails) {
  Nodes nodes;
  nodes.block.m_resType = ORV_INT;
  EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 1);
  EXPECT_EQ(RawFile(file_->path()).children(kData), Names{});
}

TEST_F(ResultWriteData, StoresIdsWhenTheyAreWanted) {
  EXPECT_EQ(Nodes().Write(file_->path(), 0), 0);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.values<int>(std::string(kData) + "entid"), (Ints{10, 20}));
  EXPECT_EQ(raw.shape(std::string(kData) + "entid"), (Shape{2}));
  EXPECT_EQ(raw.type_size(std::string(kData) + "entid"), 4U);
}

TEST_F(ResultWriteData, WithoutReadIdsStoresNoIds) {
  Nodes nodes;
  nodes.block.m_readIds = 0;
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).children(kData), (Names{"fidglob", "res"}));
}

TEST_F(ResultWriteData, StoresWideIds) {
  Nodes nodes;
  std::vector<std::int64_t> ids{5'000'000'000, 2};
  nodes.block.m_entid = ids.data();
  nodes.block.m_entidType = ORV_LONG;
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).values<std::int64_t>(std::string(kData) + "entid"), ids);
}

TEST_F(ResultWriteData, OfIdsThatCannotBeStoredFailsAndForgetsThem) {
  Nodes nodes;
  nodes.block.m_entid = nullptr;
  EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 1);
  EXPECT_EQ(nodes.block.m_readIds, 0);
  EXPECT_EQ(RawFile(file_->path()).children(kData), (Names{"fidglob", "res"}));
}

TEST_F(ResultWriteData, OfElementsStoresLocationsAndElementIds) {
  Nodes nodes(1100);
  Floats locations{.1F, .2F, .3F};
  nodes.block.m_numl = 1;
  nodes.block.m_ndim = 3;
  nodes.block.m_eloc = locations.data();
  EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 0);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.children(kShells), (Names{"eloc", "fidglob", "idele", "res"}));
  EXPECT_EQ(raw.shape(std::string(kShells) + "eloc"), (Shape{1, 3}));
  EXPECT_EQ(raw.values<float>(std::string(kShells) + "eloc"), locations);
  EXPECT_EQ(raw.values<int>(std::string(kShells) + "idele"), (Ints{10, 20}));
}

TEST_F(ResultWriteData, StoresLocationsOnlyWithBufferAndCounts) {
  Floats locations(3);
  const auto children = [&](void* buffer, std::int64_t ndim, int kind) {
    file_.emplace("write");
    Nodes nodes(kind);
    nodes.block.m_numl = 1;
    nodes.block.m_ndim = ndim;
    nodes.block.m_eloc = buffer;
    EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 0);
    return RawFile(file_->path()).children(kind == 1100 ? kShells : kData);
  };
  EXPECT_EQ(children(nullptr, 3, 1100), (Names{"fidglob", "idele", "res"}));
  EXPECT_EQ(children(locations.data(), 0, 1100), (Names{"fidglob", "idele", "res"}));
  EXPECT_EQ(children(locations.data(), 3, 1000), (Names{"entid", "fidglob", "res"}));
}

TEST_F(ResultWriteData, EndsAtLocationsThatCannotBeStored) {
  Nodes nodes(1100);
  Floats locations(3);
  nodes.block.m_numl = 1;
  nodes.block.m_ndim = 3;
  nodes.block.m_eloc = locations.data();
  nodes.block.m_elocType = ORV_INT;
  EXPECT_EQ(nodes.Write(file_->path(), 0, 2), 1);
  EXPECT_EQ(RawFile(file_->path()).children(kShells), Names{});
}

TEST_F(ResultWriteData, OfEarlyVersionsStoresTheFrameIdOfTheBlockWith32Bits) {
  for (const int version : {0, 1, 2}) {
    file_.emplace("write");
    const Writer writer(version);
    Nodes nodes;
    nodes.block.m_fidglob = -7;
    EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
    const RawFile raw(file_->path());
    EXPECT_EQ(raw.shape(std::string(kData) + "fidglob"), (Shape{1}));
    EXPECT_EQ(raw.type_size(std::string(kData) + "fidglob"), 4U);
    EXPECT_EQ(raw.type_class(std::string(kData) + "fidglob"), H5T_INTEGER);
    EXPECT_EQ(raw.values<int>(std::string(kData) + "fidglob"), (Ints{-7}));
  }
}

TEST_F(ResultWriteData, OfLaterVersionsStoresNoFrameIdDatasetSoThatReadersSeeZero) {
  for (const int version : {3, 4, 5}) {
    file_.emplace("write");
    const Writer writer(version);
    Nodes nodes;
    nodes.block.m_fidglob = 7;
    EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
    EXPECT_FALSE(RawFile(file_->path()).exists(std::string(kBlock) + "fidglob"));
    Nodes read;
    EXPECT_EQ(read.block.ReadBlock(file_->path().c_str(), 0, ORV_READ_HEADER | ORV_READ_DATA), 0);
    EXPECT_EQ(read.block.m_fidglob, 0);
  }
}

TEST_F(ResultWriteData, OfEarlyVersionsIsReadBackWithItsFrameId) {
  Nodes nodes;
  nodes.block.m_fidglob = 7;
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  Nodes read;
  EXPECT_EQ(read.block.ReadBlock(file_->path().c_str(), 0, ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_EQ(read.block.m_fidglob, 7);
  EXPECT_EQ(read.values, (Floats{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(read.ids, (Ints{10, 20}));
}

TEST_F(ResultWriteData, StoresFrameIdsWith32BitsWhateverTheirType) {
  for (const _ORVDataType type : {ORV_INT, ORV_LONG}) {
    ForgedFile file("write");
    Nodes nodes;
    Ints frames{31, 32};
    nodes.block.m_fswitch = 1;
    nodes.block.m_fid = frames.data();
    nodes.block.m_fidType = type;
    EXPECT_EQ(nodes.Write(file.path(), 0), 0);
    const std::string place = "/post/constant/entityresults/Node/VELOCITY/data/fid";
    const RawFile raw(file.path());
    EXPECT_EQ(raw.type_size(place), 4U);
    EXPECT_EQ(raw.values<int>(place), (Ints{31, 32}));
    EXPECT_FALSE(raw.exists("/post/constant/entityresults/Node/VELOCITY/data/fidglob"));
  }
}

TEST_F(ResultWriteData, OfLaterVersionsStoresFrameIdsOfEntitiesToo) {
  const Writer writer(3);
  Nodes nodes;
  Ints frames{31, 32};
  nodes.block.m_fswitch = 1;
  nodes.block.m_fid = frames.data();
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).values<int>(std::string(kBlock) + "fid"), frames);
}

TEST_F(ResultWriteData, WithAFrameSwitchButNoFrameIdsSkipsThem) {
  Nodes nodes;
  nodes.block.m_fswitch = 1;
  EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).children(kData), (Names{"entid", "res"}));
}

TEST_F(ResultWriteData, PassesOverAFrameIdThatCannotBeStored) {
  EXPECT_EQ(Nodes().Write(file_->path(), 0), 0);
  file_->at("/post/constant/entityresults/Node/VELOCITY/data").texts("fidglob", 4, {1}, {"x"});
  const Writer writer(1, 1);
  EXPECT_EQ(Nodes().Write(file_->path(), 0), 0);
}

TEST_F(ResultWriteData, PassesOverFrameIdsThatCannotBeStored) {
  Nodes nodes;
  Ints frames{31, 32};
  nodes.block.m_fswitch = 1;
  nodes.block.m_fid = frames.data();
  EXPECT_EQ(nodes.Write(file_->path(), 0, 3), 0);
  file_->at("/post/constant/entityresults/Node/VELOCITY/data").texts("fid", 4, {2}, {"x", "y"});
  const Writer writer(1, 1);
  EXPECT_EQ(nodes.Write(file_->path(), 0, 3), 0);
  EXPECT_EQ(RawFile(file_->path()).type_class(std::string(kData) + "fid"), H5T_STRING);
}

// ---- Compression

TEST_F(ResultWriteData, IsFilteredAsTheBlockAsksAndIdsNever) {
  for (const int on : {0, 1}) {
    file_.emplace("write");
    const CompressionSwitches switches(on, on ? 2 : -1);
    Nodes nodes(1100);
    Floats locations(6, 1);
    nodes.block.m_numl = 2;
    nodes.block.m_ndim = 3;
    nodes.block.m_ncoo = 1;
    nodes.block.m_eloc = locations.data();
    nodes.block.m_nCompressionFactor = 3;
    EXPECT_EQ(nodes.Write(file_->path(), 0), 0);
    const RawFile raw(file_->path());
    EXPECT_EQ(raw.filters(std::string(kShells) + "res"), (Ints{H5Z_FILTER_SCALEOFFSET}));
    EXPECT_EQ(raw.filter_values(std::string(kShells) + "res").at(1), 3U);
    EXPECT_EQ(raw.filters(std::string(kShells) + "eloc"), (Ints{H5Z_FILTER_SCALEOFFSET}));
    EXPECT_EQ(raw.filters(std::string(kShells) + "idele"), Ints{});
    EXPECT_EQ(raw.filters(std::string(kShells) + "fidglob"), Ints{});
    EXPECT_EQ(raw.filters("/post/constant/elementresults/Node/VELOCITY/index/indexval"), Ints{});
    EXPECT_EQ(raw.filters("/post/constant/elementresults/Node/VELOCITY/index/indexident"), Ints{});
    EXPECT_EQ(raw.values<float>(std::string(kShells) + "res"), (Floats{1, 2, 3, 4}));
    int now = -1;
    int digits = -9;
    OH5GetCompression(&now, &digits);
    EXPECT_EQ(now, on);
    EXPECT_EQ(digits, on ? 2 : -1);
  }
}

TEST_F(ResultWriteData, OfANegativeFactorIsNotFilteredWhateverTheSwitches) {
  const CompressionSwitches switches(1, 3);
  EXPECT_EQ(Nodes().Write(file_->path(), 0), 0);
  EXPECT_EQ(RawFile(file_->path()).filters(std::string(kData) + "res"), Ints{});
}

// ---- Index

TEST_F(ResultWriteData, OfAnIndexOfOneStateIsARow) {
  Nodes nodes;
  nodes.block.m_nindex = 2;
  nodes.block.m_nstate = 3;
  EXPECT_EQ(nodes.Write(file_->path(), 0, 4), 0);
  const std::string index = "/post/constant/entityresults/Node/VELOCITY/index/";
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.shape(index + "indexval"), (Shape{2}));
  EXPECT_EQ(raw.values<float>(index + "indexval"), (Floats{.5F, .75F}));
  EXPECT_EQ(raw.shape(index + "indexident"), (Shape{2}));
  EXPECT_EQ(raw.values<int>(index + "indexident"), (Ints{1, 1}));
}

TEST_F(ResultWriteData, OfAnIndexOfManyStatesIsARowForEach) {
  Nodes nodes(1050);
  nodes.block.m_nstate = 2;
  EXPECT_EQ(nodes.Write(file_->path(), 0, 4), 0);
  const std::string index = "/post/multistate/multientityresults/Node/VELOCITY/index/";
  EXPECT_EQ(RawFile(file_->path()).shape(index + "indexval"), (Shape{2, 1}));
  EXPECT_EQ(RawFile(file_->path()).shape(index + "indexident"), (Shape{2, 1}));
}

TEST_F(ResultWriteData, OfAnIndexWithoutCountBuffersOrKindFails) {
  const auto status = [&](auto change) {
    file_.emplace("write");
    Nodes nodes(1050);
    nodes.block.m_nstate = 1;
    change(nodes.block);
    return nodes.Write(file_->path(), 0, 4);
  };
  EXPECT_EQ(status([](ORVResult&) {}), 0);
  EXPECT_EQ(status([](ORVResult& block) { block.m_nindex = 0; }), 1);
  EXPECT_EQ(status([](ORVResult& block) { block.m_nindex = -1; }), 1);
  EXPECT_EQ(status([](ORVResult& block) { block.m_nstate = 0; }), 1);
  EXPECT_EQ(status([](ORVResult& block) { block.m_nstate = -1; }), 1);
  EXPECT_EQ(status([](ORVResult& block) { block.m_indexident = nullptr; }), 1);
  EXPECT_EQ(status([](ORVResult& block) { block.m_indexval = nullptr; }), 1);
  Nodes unknown(500);
  EXPECT_EQ(unknown.block.WriteIndex(1), 1);
}

}  // namespace
