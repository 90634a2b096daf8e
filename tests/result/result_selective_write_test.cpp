// Writes of one item or hyperslab of a result block, looked at with HDF5 alone.

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "orvio/orv_switches.h"
#include "result/forged_result.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Longs = std::vector<std::int64_t>;
using Shape = std::vector<hsize_t>;
using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint64_t>;

constexpr int kHeader = 1;
constexpr int kData = 2;
constexpr int kIndex = 4;

/// A hyperslab, and the growth of a dataset that exists; null when empty.
struct Slab {
  Numbers start;
  Numbers count;
  Numbers extent;
};

class ResultSelectiveWrite : public OrvTest {
 protected:
  ResultSelectiveWrite() {
    block_.m_nent = 2;
    block_.m_res = values_.data();
    block_.m_entid = ids_.data();
  }
  ~ResultSelectiveWrite() override { ORVSetCurrentWriterVersion(before_); }

  int Write(int sections, int code, Slab slab, int state = 1) {
    return block_.WriteSelectiveAttribute(file_->path().c_str(), state, sections, static_cast<_ORVBlockAtt>(code),
                                          static_cast<int>(slab.count.size()), slab.start.data(), slab.count.data(),
                                          nullptr, nullptr, slab.extent.empty() ? nullptr : slab.extent.data());
  }
  RawFile Raw() { return RawFile(file_->path()); }

  static constexpr char kBlock[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY";
  static constexpr char kRes[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data/res";
  static constexpr char kIds[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data/entid";
  static constexpr char kFrame[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data/fidglob";

  int before_ = ORVGetCurrentWriterVersion();
  std::optional<ForgedFile> file_{std::in_place, "selective"};
  ORVResult block_ = NodeBlock(1000);
  Floats values_{1, 2, 3, 4};
  Ints ids_{10, 20};
};

// ---- Place

TEST_F(ResultSelectiveWrite, InTheSplitLayoutMakesThePartsAskedFor) {
  for (const int version : {0, 1, 2}) {
    ORVSetCurrentWriterVersion(version);
    file_.emplace("selective");
    EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
    EXPECT_EQ(Raw().tree(kBlock), (Names{std::string(kBlock) + "/data", kFrame, kRes}));
  }
}

TEST_F(ResultSelectiveWrite, InTheSingleLayoutMakesOneGroup) {
  for (const int version : {3, 4, 5}) {
    ORVSetCurrentWriterVersion(version);
    file_.emplace("selective");
    EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
    const std::string part = std::string(kBlock) + "/orvblock";
    EXPECT_EQ(Raw().tree(kBlock), (Names{part, part + "/fidglob", part + "/res"}));
  }
}

TEST_F(ResultSelectiveWrite, MakesAStateByItsNameWhateverIsThere) {
  file_->group("/post/singlestate/other");
  EXPECT_EQ(Write(kHeader, 8, {}, 5), 0);
  EXPECT_EQ(Raw().children("/post/singlestate"), (Names{"other", "state000000000005"}));
  EXPECT_TRUE(Raw().exists("/post/singlestate/state000000000005/entityresults/Node/VELOCITY/header"));
}

TEST_F(ResultSelectiveWrite, OpensAStateByItsNameNotByPosition) {
  file_->group("/post/singlestate/a").group("/post/singlestate/state000000000001");
  EXPECT_EQ(Write(kHeader, 8, {}, 1), 0);
  EXPECT_EQ(Raw().tree("/post/singlestate/a"), Names{});
  EXPECT_TRUE(Raw().exists(std::string(kBlock) + "/header"));
}

TEST_F(ResultSelectiveWrite, PutsAMultiStateBlockIntoTheConstantSection) {
  block_.SetBlockType(1050);
  EXPECT_EQ(Write(kHeader, 8, {}, 0), 0);
  EXPECT_TRUE(Raw().exists("/post/constant/multientityresults/Node/VELOCITY/header"));
  EXPECT_FALSE(Raw().exists("/post/multistate"));
}

TEST_F(ResultSelectiveWrite, PutsASubBlockBelowTheVariable) {
  std::strcpy(block_.m_subBlockName, "PART1");
  EXPECT_EQ(Write(kHeader, 8, {}), 0);
  EXPECT_TRUE(Raw().exists(std::string(kBlock) + "/PART1/header"));
}

TEST_F(ResultSelectiveWrite, WithoutFileKeyOrNameFails) {
  const std::string before = BytesOf(file_->path());
  EXPECT_EQ(
      block_.WriteSelectiveAttribute(nullptr, 1, kHeader, ORV_ATT_NCOO, 0, nullptr, nullptr, nullptr, nullptr, nullptr),
      1);
  EXPECT_EQ(block_.WriteSelectiveAttribute(TempPath("none").c_str(), 1, kHeader, ORV_ATT_NCOO, 0, nullptr, nullptr,
                                           nullptr, nullptr, nullptr),
            1);
  block_.SetBlockType(7);
  EXPECT_EQ(Write(kHeader, 8, {}), 1);
  EXPECT_EQ(block_.WriteSelAtt(1, kHeader, ORV_ATT_NCOO, 0, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(block_.WriteSelAttData(1, ORV_ATT_RES, 0, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
  block_.SetBlockType(1000);
  block_.SetEntityAndVarName("Node", "");
  EXPECT_EQ(Write(kHeader, 8, {}), 1);
  EXPECT_EQ(BytesOf(file_->path()), before);
}

// ---- Header items

TEST_F(ResultSelectiveWrite, OfHeaderItemsWritesTheirAttribute) {
  block_.m_ncoo = 3;
  block_.m_numl = 4;
  block_.m_ndim = 5;
  block_.m_fswitch = 6;
  block_.m_nindex = 7;
  const std::pair<int, const char*> rows[] = {{1, "block"}, {5, "nent"},     {8, "ncoo"},   {9, "numl"},
                                              {10, "ndim"}, {11, "fswitch"}, {12, "nindex"}};
  Names expected;
  for (const auto& [code, name] : rows) {
    EXPECT_EQ(Write(kHeader, code, {}), 0) << code;
    expected.emplace_back(name);
    EXPECT_EQ(Raw().attributes(std::string(kBlock) + "/header"), expected);
    EXPECT_EQ(Raw().attribute_size(std::string(kBlock) + "/header", name), 8U);
  }
  const std::string header = std::string(kBlock) + "/header";
  EXPECT_EQ(Raw().attribute_int(header, "block"), 1000);
  EXPECT_EQ(Raw().attribute_int(header, "nent"), 2);
  EXPECT_EQ(Raw().attribute_int(header, "ncoo"), 3);
  EXPECT_EQ(Raw().attribute_int(header, "numl"), 4);
  EXPECT_EQ(Raw().attribute_int(header, "ndim"), 5);
  EXPECT_EQ(Raw().attribute_int(header, "fswitch"), 6);
  EXPECT_EQ(Raw().attribute_int(header, "nindex"), 7);
}

TEST_F(ResultSelectiveWrite, OfTheCountHasTheNameOfTheKind) {
  block_.SetBlockType(1100);
  EXPECT_EQ(Write(kHeader, 6, {}), 0);
  EXPECT_EQ(Raw().attributes("/post/singlestate/state000000000001/elementresults/Node/VELOCITY/header"),
            (Names{"nele"}));
}

TEST_F(ResultSelectiveWrite, WritesOverAnExistingItemWhateverTheMode) {
  EXPECT_EQ(Write(kHeader, 5, {}), 0);
  block_.m_nent = 9;
  EXPECT_EQ(Write(kHeader, 5, {}), 0);
  EXPECT_EQ(Raw().attribute_int(std::string(kBlock) + "/header", "nent"), 9);
}

TEST_F(ResultSelectiveWrite, OfAnItemThatIsNotServedFails) {
  for (const int code : {-1, 0, 2, 3, 4, 7, 14, 21, 25, 30}) EXPECT_EQ(Write(kHeader, code, {{0}, {1}, {}}), 1) << code;
  for (const int code : {-1, 0, 1, 2, 5, 8, 14, 19, 20, 21, 25, 30}) {
    EXPECT_EQ(Write(kData, code, {{0}, {1}, {}}), 1) << code;
  }
}

TEST_F(ResultSelectiveWrite, StopsAtTheFirstPartThatFails) {
  block_.m_ncoo = 3;
  EXPECT_EQ(Write(kHeader | kData, 8, {{0}, {1}, {}}), 1);  // no item of the data
  EXPECT_EQ(Raw().attribute_int(std::string(kBlock) + "/header", "ncoo"), 3);
  Ints frames{31};
  block_.m_fid = frames.data();
  block_.m_res = nullptr;  // where the header part takes them from
  EXPECT_EQ(Write(kHeader | kData, 16, {{0}, {1}, {}}), 1);
  EXPECT_EQ(Raw().children(std::string(kBlock) + "/data"), Names{});
  Floats values{.5F};
  block_.m_indexval = values.data();
  EXPECT_EQ(Write(kData | kIndex, 20, {{0}, {1}, {}}), 1);  // no item of the data
  EXPECT_EQ(Raw().children(std::string(kBlock) + "/index"), Names{});
}

// ---- Values

TEST_F(ResultSelectiveWrite, OfValuesMakesADatasetThatGrows) {
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  EXPECT_EQ(Raw().shape(kRes), (Shape{2, 2}));
  EXPECT_EQ(Raw().max_shape(kRes), (Shape{H5S_UNLIMITED, H5S_UNLIMITED}));
  EXPECT_EQ(Raw().values<float>(kRes), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(Raw().type_size(kRes), 4U);
}

TEST_F(ResultSelectiveWrite, OfMoreValuesGrowsByTheExtent) {
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  values_ = {5, 6};
  EXPECT_EQ(Write(kData, 18, {{2, 0}, {1, 2}, {1, 0}}), 0);
  EXPECT_EQ(Raw().shape(kRes), (Shape{3, 2}));
  EXPECT_EQ(Raw().values<float>(kRes), (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_F(ResultSelectiveWrite, OfMoreValuesWithoutAnExtentGrowsTheSecondAxisByOne) {
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  values_ = {5, 6};
  EXPECT_EQ(Write(kData, 18, {{0, 2}, {2, 1}, {}}), 0);
  EXPECT_EQ(Raw().shape(kRes), (Shape{2, 3}));
  EXPECT_EQ(Raw().values<float>(kRes), (Floats{1, 2, 5, 3, 4, 6}));
}

TEST_F(ResultSelectiveWrite, OutsideTheDatasetFailsAndLosesNothing) {
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  EXPECT_EQ(Write(kData, 18, {{5, 0}, {1, 2}, {1, 0}}), 1);
  EXPECT_EQ(Raw().shape(kRes), (Shape{2, 2}));
  EXPECT_EQ(Raw().values<float>(kRes), (Floats{1, 2, 3, 4}));
}

TEST_F(ResultSelectiveWrite, OfNoValuesFails) {
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {0, 2}, {}}), 1);
  EXPECT_EQ(Write(kData, 18, {}), 1);
  block_.m_res = nullptr;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 1);
  EXPECT_EQ(Raw().children(std::string(kBlock) + "/data"), Names{});
}

TEST_F(ResultSelectiveWrite, OfValuesStoresWantedIdsWhole) {
  block_.m_readIds = 1;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {1, 2}, {}}), 0);
  EXPECT_EQ(Raw().values<int>(kIds), (Ints{10, 20}));
  EXPECT_EQ(Raw().layout(kIds), H5D_CONTIGUOUS);
}

_ORVAction NameSharedIds(int, ORVBlock*, void* path, void*) {
  std::strcpy(static_cast<char*>(path), "post/constant/entid");
  return ORV_ACTION_CONTINUE;
}

TEST_F(ResultSelectiveWrite, OfValuesLinksToSharedIds) {
  file_->at("/post/constant").dataset<int>("entid", {2}, {10, 20});
  block_.m_readIds = 1;
  block_.SetLinkCallBack(NameSharedIds);
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {1, 2}, {}}), 0);
  EXPECT_EQ(Raw().link_target(kIds), "/post/constant/entid");
}

TEST_F(ResultSelectiveWrite, OfValuesWithoutIdsToStoreFailsAndForgetsThem) {
  block_.m_readIds = 1;
  block_.m_entid = nullptr;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 1);
  EXPECT_EQ(block_.m_readIds, 0);
  EXPECT_EQ(Raw().values<float>(kRes), (Floats{1, 2, 3, 4}));
}

TEST_F(ResultSelectiveWrite, OfValuesStoresTheFrameIdOnceWith64Bits) {
  for (const int version : {1, 3}) {
    ORVSetCurrentWriterVersion(version);
    file_.emplace("selective");
    const std::string frame = std::string(kBlock) + (version == 1 ? "/data" : "/orvblock") + "/fidglob";
    block_.m_fidglob = 5'000'000'000;
    EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
    EXPECT_EQ(Raw().values<std::int64_t>(frame), (Longs{5'000'000'000}));
    EXPECT_EQ(Raw().shape(frame), (Shape{1}));
    EXPECT_EQ(Raw().type_size(frame), 8U);
    block_.m_fidglob = 2;
    EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {0, 0}}), 0);
    EXPECT_EQ(Raw().values<std::int64_t>(frame), (Longs{5'000'000'000}));
  }
}

TEST_F(ResultSelectiveWrite, OfValuesWithAFrameSwitchStoresNoFrameId) {
  block_.m_fswitch = 1;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  EXPECT_FALSE(Raw().exists(kFrame));
}

TEST_F(ResultSelectiveWrite, MakesAFrameIdThatWholeReadsFind) {
  ORVSetCurrentWriterVersion(3);
  block_.m_fidglob = 77;
  block_.m_ncoo = 2;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  block_.m_fidglob = 0;
  EXPECT_EQ(block_.ReadBlock(file_->path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(block_.m_fidglob, 77);
}

// ---- The other datasets

TEST_F(ResultSelectiveWrite, InTheDataPartTakesIdsFromTheValuesAndTheRestFromTheirMembers) {
  Ints other_ids{1, 2};
  Longs frames{31, 32};
  std::vector<double> locations{.5, .25};
  block_.m_res = other_ids.data();
  block_.m_resType = ORV_INT;
  EXPECT_EQ(Write(kData, 13, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Raw().values<int>(kIds), (Ints{1, 2}));

  block_.m_fidglob = 9;
  EXPECT_EQ(Write(kData, 15, {{0}, {1}, {}}), 0);
  EXPECT_EQ(Raw().values<std::int64_t>(kFrame), (Longs{9}));

  block_.m_fid = frames.data();
  block_.m_fidType = ORV_LONG;
  EXPECT_EQ(Write(kData, 16, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Raw().values<std::int64_t>(std::string(kBlock) + "/data/fid"), frames);
  EXPECT_EQ(Raw().type_size(std::string(kBlock) + "/data/fid"), 8U);

  block_.m_eloc = locations.data();
  block_.m_elocType = ORV_DOUBLE;
  EXPECT_EQ(Write(kData, 17, {{0, 0}, {2, 1}, {}}), 0);
  EXPECT_EQ(Raw().values<double>(std::string(kBlock) + "/data/eloc"), locations);
}

TEST_F(ResultSelectiveWrite, TakesOneFrameIdOfTheBlockAndNoMore) {
  EXPECT_EQ(Write(kData, 15, {{0}, {2}, {}}), 1);
  EXPECT_EQ(Write(kData, 15, {}), 1);
  EXPECT_FALSE(Raw().exists(kFrame));
}

TEST_F(ResultSelectiveWrite, InTheHeaderPartTakesEveryDatasetFromTheValues) {
  Ints numbers{7, 8};
  block_.m_res = numbers.data();
  block_.m_resType = ORV_INT;
  block_.m_fidglob = 99;
  const std::string header = std::string(kBlock) + "/header/";
  EXPECT_EQ(Write(kHeader, 13, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Write(kHeader, 15, {{0}, {1}, {}}), 0);
  EXPECT_EQ(Write(kHeader, 16, {{0}, {2}, {}}), 0);
  block_.m_res = values_.data();
  block_.m_resType = ORV_FLOAT;
  EXPECT_EQ(Write(kHeader, 17, {{0, 0}, {1, 2}, {}}), 0);
  EXPECT_EQ(Raw().values<int>(header + "entid"), (Ints{7, 8}));
  EXPECT_EQ(Raw().values<int>(header + "fidglob"), (Ints{7}));
  EXPECT_EQ(Raw().values<int>(header + "fid"), (Ints{7, 8}));
  EXPECT_EQ(Raw().values<float>(header + "eloc"), (Floats{1, 2}));
}

TEST_F(ResultSelectiveWrite, OfValuesInTheHeaderPartStoresIdsAndFrameIdBesideThem) {
  block_.m_readIds = 1;
  block_.m_fidglob = 9;
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {}}), 0);
  const std::string header = std::string(kBlock) + "/header/";
  EXPECT_EQ(Raw().values<float>(header + "res"), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(Raw().values<int>(header + "entid"), (Ints{10, 20}));
  EXPECT_EQ(Raw().values<std::int64_t>(header + "fidglob"), (Longs{9}));
  EXPECT_EQ(Raw().type_size(header + "fidglob"), 8U);
}

TEST_F(ResultSelectiveWrite, OfValuesInTheHeaderPartStoresIdsWithoutAskingForSharedOnes) {
  file_->at("/post/constant").dataset<int>("entid", {2}, {10, 20});
  block_.m_readIds = 1;
  block_.SetLinkCallBack(NameSharedIds);
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {}}), 0);
  const std::string ids = std::string(kBlock) + "/header/entid";
  EXPECT_FALSE(Raw().is_soft_link(ids));
  EXPECT_EQ(Raw().values<int>(ids), (Ints{10, 20}));
}

TEST_F(ResultSelectiveWrite, OfValuesInTheHeaderPartStoresNoFrameIdWithAFrameSwitchOrOverAnother) {
  const std::string frame = std::string(kBlock) + "/header/fidglob";
  block_.m_fswitch = 1;
  block_.m_fidglob = 9;
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {}}), 0);
  EXPECT_FALSE(Raw().exists(frame));
  block_.m_fswitch = 0;
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {0, 0}}), 0);
  EXPECT_EQ(Raw().values<std::int64_t>(frame), (Longs{9}));
  block_.m_fidglob = 2;
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {0, 0}}), 0);
  EXPECT_EQ(Raw().values<std::int64_t>(frame), (Longs{9}));
}

TEST_F(ResultSelectiveWrite, OfElementKindsNamesTheElementIds) {
  const std::string block = "/post/singlestate/state000000000001/elementresults/Node/VELOCITY";
  block_.SetBlockType(1100);
  block_.m_readIds = 1;
  for (const auto& [section, part] : {std::pair{kData, "/data"}, std::pair{kHeader, "/header"}}) {
    file_.emplace("selective");
    EXPECT_EQ(Write(section, 18, {{0, 0, 0}, {2, 1, 2}, {}}), 0) << part;
    EXPECT_EQ(Raw().values<int>(block + part + "/idele"), (Ints{10, 20})) << part;
    EXPECT_FALSE(Raw().exists(block + part + "/entid")) << part;
  }
  Ints numbers{7, 8};
  block_.m_res = numbers.data();
  block_.m_resType = ORV_INT;
  for (const auto& [section, part] : {std::pair{kData, "/data"}, std::pair{kHeader, "/header"}}) {
    file_.emplace("selective");
    EXPECT_EQ(Write(section, 13, {{0}, {2}, {}}), 0) << part;
    EXPECT_EQ(Raw().children(block + part), (Names{"idele"})) << part;
    EXPECT_EQ(Raw().values<int>(block + part + "/idele"), (Ints{7, 8})) << part;
  }
}

TEST_F(ResultSelectiveWrite, OfIndexesStoresTheirMembersWithTheirTypes) {
  Longs idents{1, 3};
  std::vector<double> values{.5, 7};
  block_.m_indexident = idents.data();
  block_.m_indexidentType = ORV_LONG;
  block_.m_indexval = values.data();
  block_.m_indexvalType = ORV_DOUBLE;
  EXPECT_EQ(Write(kIndex, 19, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Raw().values<std::int64_t>(std::string(kBlock) + "/index/indexident"), idents);
  EXPECT_EQ(Raw().type_size(std::string(kBlock) + "/index/indexident"), 8U);
  file_.emplace("selective");
  EXPECT_EQ(Write(kIndex, 20, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Raw().values<double>(std::string(kBlock) + "/index/indexval"), values);
}

// ---- Compression

TEST_F(ResultSelectiveWrite, FiltersDataAsTheBlockAsksAndIdsNever) {
  block_.m_nCompressionFactor = 3;
  block_.m_readIds = 1;
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  EXPECT_EQ(Raw().filters(kRes), (Ints{H5Z_FILTER_SCALEOFFSET}));
  EXPECT_EQ(Raw().filters(kIds), Ints{});
  EXPECT_EQ(Raw().filters(kFrame), Ints{});
  Ints numbers{7, 8};
  file_.emplace("selective");
  block_.m_res = numbers.data();
  block_.m_resType = ORV_INT;
  EXPECT_EQ(Write(kData, 13, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Raw().filters(kIds), Ints{});
}

TEST_F(ResultSelectiveWrite, OfANegativeFactorIsNotFilteredWhateverTheSwitches) {
  OH5SetCompression(1, 3);
  EXPECT_EQ(Write(kData, 18, {{0, 0}, {2, 2}, {}}), 0);
  int on = 0;
  int digits = 0;
  OH5GetCompression(&on, &digits);
  OH5SetCompression(0, -1);
  EXPECT_EQ(Raw().filters(kRes), Ints{});
  EXPECT_EQ(on, 1);
  EXPECT_EQ(digits, 3);
}

TEST_F(ResultSelectiveWrite, NeverFiltersIdsBesideValuesInTheHeaderPart) {
  OH5SetCompression(1, 3);
  block_.m_readIds = 1;
  EXPECT_EQ(Write(kHeader, 18, {{0, 0}, {2, 2}, {}}), 0);
  OH5SetCompression(0, -1);
  EXPECT_EQ(Raw().filters(std::string(kBlock) + "/header/res"), (Ints{H5Z_FILTER_SCALEOFFSET}));
  EXPECT_EQ(Raw().filters(std::string(kBlock) + "/header/entid"), Ints{});
  EXPECT_EQ(Raw().filters(std::string(kBlock) + "/header/fidglob"), Ints{});
}

TEST_F(ResultSelectiveWrite, NeverFiltersIdsByThemselvesInTheHeaderPart) {
  Ints numbers{7, 8};
  OH5SetCompression(1, 3);
  EXPECT_EQ(Write(kHeader, 17, {{0, 0}, {1, 2}, {}}), 0);
  block_.m_res = numbers.data();
  block_.m_resType = ORV_INT;
  for (const int code : {13, 16}) EXPECT_EQ(Write(kHeader, code, {{0}, {2}, {}}), 0) << code;
  EXPECT_EQ(Write(kHeader, 15, {{0}, {1}, {}}), 0);
  OH5SetCompression(0, -1);
  const std::string header = std::string(kBlock) + "/header/";
  EXPECT_EQ(Raw().filters(header + "eloc"), (Ints{H5Z_FILTER_SCALEOFFSET}));
  for (const char* ids : {"entid", "fid", "fidglob"}) EXPECT_EQ(Raw().filters(header + ids), Ints{}) << ids;
}

TEST_F(ResultSelectiveWrite, NeverFiltersFrameIdsInTheDataPart) {
  Ints frames{31, 32};
  block_.m_fid = frames.data();
  block_.m_nCompressionFactor = 3;
  EXPECT_EQ(Write(kData, 16, {{0}, {2}, {}}), 0);
  EXPECT_EQ(Write(kData, 15, {{0}, {1}, {}}), 0);
  EXPECT_EQ(Raw().filters(std::string(kBlock) + "/data/fid"), Ints{});
  EXPECT_EQ(Raw().filters(kFrame), Ints{});
}

TEST_F(ResultSelectiveWrite, NeverFiltersAnIndex) {
  OH5SetCompression(1, 3);
  Floats values{.5F, 7};
  block_.m_indexval = values.data();
  block_.m_nCompressionFactor = 3;
  EXPECT_EQ(Write(kIndex, 20, {{0}, {2}, {}}), 0);
  int on = 0;
  int digits = 0;
  OH5GetCompression(&on, &digits);
  OH5SetCompression(0, -1);
  EXPECT_EQ(Raw().filters(std::string(kBlock) + "/index/indexval"), Ints{});
  EXPECT_EQ(on, 1);
  EXPECT_EQ(digits, 3);
}

}  // namespace
