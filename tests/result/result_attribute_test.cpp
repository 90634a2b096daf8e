// Items of a result block one at a time: their reads in both layouts, their names and paths, and forgetting them.
// Hyperslabs are in result_selective_read_test.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;

_ORVBlockAtt Att(int code) { return static_cast<_ORVBlockAtt>(code); }

// ---- Reads of header items

void ForgeNodeHeader(ForgedResult& forged) {
  forged.header().integer("block", 1000).text("etyp", "Hexa").text("etypvar", "Speed  ").integer("nent", 12);
  forged.header()
      .integer("ncoo", 3)
      .integer("fswitch", 4)
      .integer("nindex", 5)
      .integer("zoneid", 6)
      .integer("nstate", 7);
}

class ResultItem : public OrvTest, public ::testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultItem, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ResultItem, OfAnEntityHeaderFillsItsMember) {
  ForgedResult forged(GetParam(), kNodePath);
  ForgeNodeHeader(forged);
  const std::string path = forged.path();
  ORVResult block = NodeBlock(1050);
  block.SetBlkPath("/post/singlestate/state000000000001/entityresults/Node/VELOCITY");
  block.SetBlockType(1001);
  const auto read = [&](int code) { return block.ReadAttribute(path.c_str(), 1, 1, Att(code)); };
  EXPECT_EQ(read(1), 0);
  EXPECT_EQ(block.GetKey(), 1000);
  EXPECT_EQ(read(5), 0);
  EXPECT_EQ(block.m_nent, 12);
  block.m_nent = 0;
  EXPECT_EQ(read(6), 0);
  EXPECT_EQ(block.m_nent, 12);
  EXPECT_EQ(read(8), 0);
  EXPECT_EQ(block.m_ncoo, 3);
  EXPECT_EQ(read(11), 0);
  EXPECT_EQ(block.m_fswitch, 4);
  EXPECT_EQ(read(12), 0);
  EXPECT_EQ(block.m_nindex, 5);
  EXPECT_EQ(read(25), 0);
  EXPECT_EQ(block.m_zoneid, 6);
  EXPECT_EQ(read(30), 0);
  EXPECT_EQ(block.m_nstate, 7);
}

TEST_P(ResultItem, OfANameLosesItsTrailingBlanks) {
  ForgedResult forged(GetParam(), kNodePath);
  ForgeNodeHeader(forged);
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, Att(7)), 0);
  EXPECT_STREQ(block.m_etypvar, "Speed");
  block = NodeBlock(1000);
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, Att(2)), 0);
  EXPECT_STREQ(block.m_etyp, "Hexa");
}

TEST_P(ResultItem, OfAnElementHeaderHasTheElementNames) {
  ForgedResult forged(GetParam(), kShellPath);
  forged.header().text("etypelem", "Quad ").integer("nele", 8).integer("numl", 2).integer("ndim", 3);
  forged.header().text("etyp", "wrong").integer("nent", 99);
  ORVResult block = ShellBlock(1100);
  const std::string path = forged.path();
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(5)), 0);
  EXPECT_EQ(block.m_nent, 8);
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(9)), 0);
  EXPECT_EQ(block.m_numl, 2);
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(10)), 0);
  EXPECT_EQ(block.m_ndim, 3);
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(2)), 0);
  EXPECT_STREQ(block.m_etyp, "Quad");
}

TEST_P(ResultItem, ThatIsMissingFailsAndLeavesItsMember) {
  ForgedResult forged(GetParam(), kNodePath);
  const std::string path = forged.path();
  for (const int code : {1, 2, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 16, 17, 18, 19, 20, 25, 30}) {
    ORVResult block = NodeBlock(1000);
    block.m_nent = block.m_ncoo = 1;
    EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(code)), 1) << code;
    EXPECT_EQ(block.m_nent, 1);
    EXPECT_STREQ(block.m_etyp, "Node");
  }
}

TEST_P(ResultItem, OfAnotherClassFailsAndTells) {
  ForgedResult forged(GetParam(), kNodePath);
  ForgeNodeHeader(forged);
  forged.header().retype("nent").retype("etypvar");
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, Att(5)), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"nent\" attribute data type mismatch");
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, Att(7)), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"etypvar\" attribute data type mismatch");
  EXPECT_STREQ(block.m_etypvar, "VELOCITY");
}

TEST_P(ResultItem, WithACodeThatIsNotServedFails) {
  ForgedResult forged(GetParam(), kNodePath);
  ForgeNodeHeader(forged);
  const std::string path = forged.path();
  for (const int code : {-1, 0, 3, 4, 14, 21, 22, 23, 24, 26, 27, 29, 31, 1000}) {
    ORVResult block = NodeBlock(1000);
    EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 1, Att(code)), 1) << code;
  }
}

// ---- Reads of datasets

TEST_P(ResultItem, OfIdsFramesAndLocationsFillsTheirBuffers) {
  ForgedResult forged(GetParam(), kShellPath);
  forged.data().dataset<int>("idele", {2}, {5, 6}).dataset<int>("fid", {2}, {7, 8}).scalar<int>("fidglob", 9);
  forged.data().dataset<float>("eloc", {2, 1}, {.5F, .25F});
  const std::string path = forged.path();
  ORVResult block = ShellBlock(1100);
  block.m_nent = block.m_numl = 2;
  block.m_ndim = 1;
  Ints ids(2);
  Ints frames(2);
  Floats locations(2);
  block.m_entid = ids.data();
  block.m_fid = frames.data();
  block.m_eloc = locations.data();
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 2, ORV_ATT_IDS), 0);
  EXPECT_EQ(ids, (Ints{5, 6}));
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 2, ORV_ATT_FID), 0);
  EXPECT_EQ(frames, (Ints{7, 8}));
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 2, ORV_ATT_ELOC), 0);
  EXPECT_EQ(locations, (Floats{.5F, .25F}));
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 2, ORV_ATT_FIDGLOB), 0);
  EXPECT_EQ(block.m_fidglob, 9);
}

TEST_P(ResultItem, OfEntityIdsHasTheEntityName) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<int>("entid", {1}, {5}).dataset<int>("idele", {1}, {6});
  ORVResult block = NodeBlock(1000);
  block.m_nent = 1;
  int id = 0;
  block.m_entid = &id;
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 2, ORV_ATT_IDS), 0);
  EXPECT_EQ(id, 5);
}

/// Counts of a block, the stored shape of `res` and whether it is read.
struct ValuesRow {
  int kind;
  std::int64_t nent, numl, ncoo, nstate;
  std::vector<hsize_t> shape;
  int status;
};

TEST_P(ResultItem, OfValuesHasTheShapeOfItsKind) {
  const ValuesRow rows[] = {
      {1000, 2, 0, 3, 0, {2, 3}, 0},    {1000, 2, 0, 3, 0, {3, 2}, 1},       {1001, 2, 0, 1, 0, {2, 1, 2}, 0},
      {1001, 2, 0, 1, 0, {2, 1}, 1},    {1100, 2, 2, 1, 0, {2, 2, 1}, 0},    {1100, 2, 0, 3, 0, {2, 3}, 0},
      {1100, 2, 0, 3, 0, {2, 1, 3}, 1}, {1101, 2, 2, 1, 0, {2, 2, 1, 2}, 1}, {1101, 2, 2, 1, 0, {2, 2, 1}, 0},
      {1101, 2, 0, 3, 0, {2, 3}, 0},    {1101, 2, 0, 1, 0, {2, 1, 2}, 1},    {1000, -2, 0, -3, 0, {2, 3}, 1},
  };
  for (const ValuesRow& row : rows) {
    const bool element = row.kind >= 1100;
    ForgedResult forged(GetParam(), element ? kShellPath : kNodePath);
    hsize_t count = 1;
    for (const hsize_t extent : row.shape) count *= extent;
    forged.data().dataset<float>("res", row.shape, Floats(count, 4));
    ORVResult block = element ? ShellBlock(row.kind) : NodeBlock(row.kind);
    block.m_nent = row.nent;
    block.m_numl = row.numl;
    block.m_ncoo = row.ncoo;
    Floats values(count, -1);
    block.m_res = values.data();
    EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 2, ORV_ATT_RES), row.status) << row.kind;
    EXPECT_EQ(values, Floats(count, row.status == 0 ? 4.F : -1.F)) << row.kind;
  }
}

TEST_P(ResultItem, ValuesAreTakenWithoutTheStateAxis) {
  const ValuesRow rows[] = {
      {1050, 2, 0, 3, 4, {4, 2, 3}, 1}, {1050, 2, 0, 3, 4, {2, 3}, 0},       {1051, 2, 0, 1, 4, {4, 2, 1, 2}, 1},
      {1051, 2, 0, 1, 4, {2, 1, 2}, 0}, {1150, 2, 2, 1, 4, {4, 2, 2, 1}, 1}, {1150, 2, 2, 1, 4, {2, 2, 1}, 0},
  };
  for (const ValuesRow& row : rows) {
    const bool element = row.kind >= 1100;
    ForgedResult forged(GetParam(), element ? kMultiShellPath : kMultiNodePath);
    hsize_t count = 1;
    for (const hsize_t extent : row.shape) count *= extent;
    forged.data().dataset<float>("res", row.shape, Floats(count, 4));
    ORVResult block = element ? ShellBlock(row.kind) : NodeBlock(row.kind);
    block.m_nent = row.nent;
    block.m_numl = row.numl;
    block.m_ncoo = row.ncoo;
    block.m_nstate = row.nstate;
    Floats values(count, -1);
    block.m_res = values.data();
    EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 0, 2, ORV_ATT_RES), row.status) << row.kind;
    EXPECT_EQ(values, Floats(count, row.status == 0 ? 4.F : -1.F)) << row.kind;
  }
}

TEST_P(ResultItem, OfPropertiesValuesHasEntitiesAndComponents) {
  ForgedResult forged(GetParam(), "/post/constant/Node/VELOCITY");
  forged.data().dataset<float>("res", {2, 3}, {1, 2, 3, 4, 5, 6});
  ORVResult block = NodeBlock(500);
  block.m_nent = 2;
  block.m_ncoo = 3;
  Floats values(6);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 0, 2, ORV_ATT_RES), 0);
  EXPECT_EQ(values, (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_P(ResultItem, OfADatasetIsReadInTheTypeOfItsBuffer) {
  ForgedResult forged(GetParam(), kShellPath);
  forged.data().dataset<int>("idele", {2}, {5, 6}).dataset<int>("fid", {2}, {7, 8});
  forged.data().dataset<float>("eloc", {1, 2}, {.5F, .25F});
  forged.index().dataset<int>("indexident", {2}, {1, 3});
  ORVResult block = ShellBlock(1100);
  block.m_nent = block.m_ndim = block.m_nindex = 2;
  block.m_numl = 1;
  std::vector<std::int64_t> ids(2), frames(2), idents(2);
  std::vector<double> locations(2);
  block.m_entid = ids.data();
  block.m_fid = frames.data();
  block.m_indexident = idents.data();
  block.m_eloc = locations.data();
  block.m_entidType = block.m_fidType = block.m_indexidentType = ORV_LONG;
  block.m_elocType = ORV_DOUBLE;
  const std::string path = forged.path();
  for (const int code : {13, 16, 17, 19}) EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 6, Att(code)), 0) << code;
  EXPECT_EQ(ids, (std::vector<std::int64_t>{5, 6}));
  EXPECT_EQ(frames, (std::vector<std::int64_t>{7, 8}));
  EXPECT_EQ(idents, (std::vector<std::int64_t>{1, 3}));
  EXPECT_EQ(locations, (std::vector<double>{.5, .25}));
}

TEST_P(ResultItem, OfIndexesIsARowWithoutStates) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.index().dataset<int>("indexident", {2}, {1, 3}).dataset<float>("indexval", {2}, {.5F, 7});
  ORVResult block = NodeBlock(1000);
  block.m_nindex = 2;
  Ints idents(2);
  Floats values(2);
  block.m_indexident = idents.data();
  block.m_indexval = values.data();
  const std::string path = forged.path();
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 4, ORV_ATT_INDEXIDENT), 0);
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 1, 4, ORV_ATT_INDEXVAL), 0);
  EXPECT_EQ(idents, (Ints{1, 3}));
  EXPECT_EQ(values, (Floats{.5F, 7}));
}

TEST_P(ResultItem, OfIndexesHasARowForEachState) {
  ForgedResult forged(GetParam(), kMultiNodePath);
  forged.index().dataset<int>("indexident", {2, 1}, {1, 1}).dataset<double>("indexval", {2, 1}, {.5, 7});
  ORVResult block = NodeBlock(1050);
  block.m_nindex = 1;
  block.m_nstate = 2;
  block.m_indexvalType = ORV_DOUBLE;
  Ints idents(2);
  std::vector<double> values(2);
  block.m_indexident = idents.data();
  block.m_indexval = values.data();
  const std::string path = forged.path();
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 0, 4, ORV_ATT_INDEXIDENT), 0);
  EXPECT_EQ(block.ReadAttribute(path.c_str(), 0, 4, ORV_ATT_INDEXVAL), 0);
  EXPECT_EQ(idents, (Ints{1, 1}));
  EXPECT_EQ(values, (std::vector<double>{.5, 7}));
}

TEST_P(ResultItem, IsReadAtThePathOfABlockThatWasRead) {
  ForgedResult forged(GetParam(), kNodePath);
  ForgeNodeHeader(forged);
  ORVResult block = NodeBlock(1000);
  ASSERT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_HEADER), 0);
  block.m_ncoo = 0;
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, ORV_ATT_NCOO), 0);
  EXPECT_EQ(block.m_ncoo, 3);
}

class ResultItemRoads : public OrvTest {};

TEST_F(ResultItemRoads, WithoutAFileFail) {
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(block.ReadAttribute(nullptr, 1, 1, ORV_ATT_NCOO), 1);
  EXPECT_EQ(block.ReadAttribute(TempPath("none").c_str(), 1, 1, ORV_ATT_NCOO), 1);
}

TEST_F(ResultItemRoads, WithoutTheBlockOrAKeyFail) {
  ForgedResult forged(Layout::kSingle, kNodePath);
  ForgeNodeHeader(forged);
  ORVResult elsewhere(1000);
  elsewhere.SetEntityAndVarName("Node", "DISPLACEMENT");
  EXPECT_EQ(elsewhere.ReadAttribute(forged.path().c_str(), 1, 1, ORV_ATT_NCOO), 1);
  EXPECT_EQ(NodeBlock(1000).ReadAttribute(forged.path().c_str(), 2, 1, ORV_ATT_NCOO), 1);
  EXPECT_EQ(NodeBlock(1002).ReadAttribute(forged.path().c_str(), 1, 1, ORV_ATT_NCOO), 1);
  EXPECT_EQ(ORVResult(7).ReadAtt(1, 1, ORV_ATT_NCOO), 1);
}

TEST_F(ResultItemRoads, OfASplitBlockWithoutThePartFail) {
  ForgedFile forged("result");
  forged.at(kNodePath).group("header");
  ORVResult block = NodeBlock(1000);
  block.m_nent = block.m_ncoo = 1;
  float value = 0;
  block.m_res = &value;
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 2, ORV_ATT_RES), 1);
}

// ---- Names

struct NameRow {
  int code;
  const char* entity;
  const char* element;
};

class ResultItemName : public OrvTest {};

TEST_F(ResultItemName, IsTheOneInTheFile) {
  const NameRow rows[] = {
      {2, "etypelem", "etypelem"},
      {3, "etypnode", "etypnode"},
      {4, "etyppart", "etyppart"},
      {5, "nent", "nele"},
      {6, "nent", "nele"},
      {7, "etypvar", "etypvar"},
      {8, "ncoo", "ncoo"},
      {9, "numl", "numl"},
      {11, "fswitch", "fswitch"},
      {12, "nindex", "nindex"},
      {13, "entid", "idele"},
      {14, "entid", "idele"},
      {15, "fidglob", "fidglob"},
      {16, "fid", "fid"},
      {17, "eloc", "eloc"},
      {18, "res", "res"},
      {19, "indexident", "indexident"},
      {20, "indexval", "indexval"},
  };
  for (const NameRow& row : rows) {
    char name[64] = "before";
    EXPECT_EQ(ORVResult(1000).GetAttributeName(Att(row.code), name), 0);
    EXPECT_STREQ(name, row.entity);
    EXPECT_EQ(ORVResult(1051).GetAttributeName(Att(row.code), name), 0);
    EXPECT_STREQ(name, row.entity);
    EXPECT_EQ(ORVResult(1101).GetAttributeName(Att(row.code), name), 0);
    EXPECT_STREQ(name, row.element);
  }
}

TEST_F(ResultItemName, OfNdimIsThatOfNuml) {
  char name[64] = {};
  EXPECT_EQ(ORVResult(1100).GetAttributeName(ORV_ATT_NDIM, name), 0);
  EXPECT_STREQ(name, "numl");
}

TEST_F(ResultItemName, OfACodeWithoutOneIsEmpty) {
  for (const int code : {-1, 0, 1, 21, 22, 25, 29, 30, 99}) {
    char name[64] = "before";
    EXPECT_EQ(ORVResult(1000).GetAttributeName(Att(code), name), 1) << code;
    EXPECT_STREQ(name, "");
  }
}

TEST_F(ResultItemName, NeedsABuffer) { EXPECT_EQ(ORVResult(1000).GetAttributeName(ORV_ATT_RES, nullptr), 1); }

TEST_F(ResultItemName, OfDatasetsFollowsTheSections) {
  const auto names = [](int kind, int sections) {
    std::vector<std::string> found{"kept"};
    EXPECT_EQ(ORVResult(kind).GetDatasetNames(sections, found), 0);
    return found;
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(names(1000, 2), (Names{"kept", "res", "entid"}));
  EXPECT_EQ(names(1150, 2), (Names{"kept", "res", "idele"}));
  EXPECT_EQ(names(1000, 4), (Names{"kept", "indexval", "indexident"}));
  EXPECT_EQ(names(1100, 7), (Names{"kept", "res", "idele", "indexval", "indexident"}));
  EXPECT_EQ(names(1000, 1), (Names{"kept"}));
}

// ---- Paths

class ResultItemPath : public OrvTest {
 protected:
  std::string Of(ORVResult& block, int sections, int code, int state, int version) {
    char path[3000] = "before";
    status_ = block.GetAttributePath(sections, Att(code), state, path, static_cast<_ORVVersion>(version));
    return path;
  }

  int status_ = -1;
};

TEST_F(ResultItemPath, OfTheSplitLayoutNamesTheSection) {
  ORVResult block = NodeBlock(1000);
  for (const int version : {0, 1, 2}) {
    EXPECT_EQ(Of(block, 2, 18, 12, version), "post/singlestate/state000000000012/entityresults/Node/VELOCITY/data/res");
    EXPECT_EQ(status_, 0);
  }
  EXPECT_EQ(Of(block, 1, 8, 12, 1), "post/singlestate/state000000000012/entityresults/Node/VELOCITY/header/ncoo");
  EXPECT_EQ(Of(block, 4, 20, 12, 1), "post/singlestate/state000000000012/entityresults/Node/VELOCITY/index/indexval");
}

TEST_F(ResultItemPath, TakesTheLowestSection) {
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(Of(block, 7, 8, 0, 1), "post/constant/entityresults/Node/VELOCITY/header/ncoo");
  EXPECT_EQ(Of(block, 6, 8, 0, 1), "post/constant/entityresults/Node/VELOCITY/data/ncoo");
}

TEST_F(ResultItemPath, OfLaterVersionsNamesTheOneGroup) {
  ORVResult block = ShellBlock(1100);
  for (const int version : {3, 4, 5, 8}) {
    EXPECT_EQ(Of(block, 2, 13, 1, version),
              "post/singlestate/state000000000001/elementresults/SHELL/STRESS/orvblock/idele");
  }
}

TEST_F(ResultItemPath, BelowStateOneIsConstantForMultiStateKindsToo) {
  ORVResult block = NodeBlock(1050);
  EXPECT_EQ(Of(block, 2, 18, 0, 3), "post/constant/multientityresults/Node/VELOCITY/orvblock/res");
  EXPECT_EQ(Of(block, 2, 18, -1, 3), "post/constant/multientityresults/Node/VELOCITY/orvblock/res");
  EXPECT_EQ(Of(block, 2, 18, 3, 3), "post/singlestate/state000000000003/multientityresults/Node/VELOCITY/orvblock/res");
}

TEST_F(ResultItemPath, HasTheSubBlockButNoSeries) {
  ORVResult block = NodeBlock(1000);
  std::strcpy(block.m_subBlockName, "PART1");
  std::strcpy(block.m_series, "LOADCASE_1");
  EXPECT_EQ(Of(block, 2, 18, 0, 3), "post/constant/entityresults/Node/VELOCITY/PART1/orvblock/res");
}

TEST_F(ResultItemPath, LeavesEmptyPartsOut) {
  ORVResult block(500);
  block.SetEntityAndVarName("", "COORDINATE");
  EXPECT_EQ(Of(block, 2, 18, 0, 3), "post/constant/COORDINATE/orvblock/res");
}

TEST_F(ResultItemPath, IsBoundedByTheWidthOfTheNames) {
  ORVResult block(1000);
  std::memset(block.m_etyp, 'T', sizeof block.m_etyp);
  std::memset(block.m_etypvar, 'V', sizeof block.m_etypvar);
  std::memset(block.m_subBlockName, 'B', sizeof block.m_subBlockName);
  const std::string expected = "post/constant/entityresults/" + std::string(256, 'T') + "/" + std::string(256, 'V') +
                               "/" + std::string(256, 'B') + "/orvblock/res";
  EXPECT_EQ(Of(block, 2, 18, 0, 3), expected);
}

TEST_F(ResultItemPath, FailsWithoutASectionInAllVersions) {
  ORVResult block = NodeBlock(1000);
  for (const int version : {0, 1, 2, 3, 4, 5}) {
    EXPECT_EQ(Of(block, 0, 18, 1, version), "");
    EXPECT_EQ(status_, 1);
  }
  Of(block, 8, 18, 1, 1);
  EXPECT_EQ(status_, 1);
}

TEST_F(ResultItemPath, FailsWithoutNameKeyOrBuffer) {
  ORVResult block = NodeBlock(1000);
  Of(block, 2, 1, 1, 1);
  EXPECT_EQ(status_, 1);
  ORVResult unknown = NodeBlock(7);
  Of(unknown, 2, 18, 1, 1);
  EXPECT_EQ(status_, 1);
  EXPECT_EQ(block.GetAttributePath(2, ORV_ATT_RES, 1, nullptr, ORV_VERSION_1_1), 1);
}

// ---- Datasets as the block has them

class ResultDatasetInfo : public OrvTest {
 protected:
  int Ask(ORVResult& block, int code) {
    rank_ = 99;
    ptr_ = &block;
    dims_.assign(8, 77);
    return block.GetDatasetInfoFromBlock(Att(code), name_, type_, &ptr_, rank_, dims_.data());
  }
  std::vector<std::uint64_t> Extents() const { return {dims_.begin(), dims_.begin() + rank_}; }

  std::string name_;
  _ORVDataType type_ = ORV_UNKNOWN_TYPE;
  void* ptr_ = nullptr;
  int rank_ = 0;
  std::vector<std::uint64_t> dims_;
};
using Dims = std::vector<std::uint64_t>;

TEST_F(ResultDatasetInfo, TellsIds) {
  ORVResult block(1100);
  int id = 0;
  block.m_entid = &id;
  block.m_entidType = ORV_LONG;
  block.m_nent = 5;
  EXPECT_EQ(Ask(block, 13), 0);
  EXPECT_EQ(name_, "idele");
  EXPECT_EQ(type_, ORV_LONG);
  EXPECT_EQ(ptr_, &id);
  EXPECT_EQ(Extents(), (Dims{5}));
  ORVResult node(1000);
  EXPECT_EQ(Ask(node, 13), 0);
  EXPECT_EQ(name_, "entid");
}

TEST_F(ResultDatasetInfo, TellsValuesInTheirStoredShape) {
  ORVResult block(1051);
  float value = 0;
  block.m_res = &value;
  block.m_nstate = 4;
  block.m_nent = 3;
  block.m_ncoo = 6;
  EXPECT_EQ(Ask(block, 18), 0);
  EXPECT_EQ(name_, "res");
  EXPECT_EQ(type_, ORV_FLOAT);
  EXPECT_EQ(ptr_, &value);
  EXPECT_EQ(Extents(), (Dims{4, 3, 6, 2}));
}

TEST_F(ResultDatasetInfo, LeavesTheFifthExtentOfMultiStateComplexElementsZero) {
  ORVResult block(1151);
  block.m_nstate = block.m_nent = block.m_numl = block.m_ncoo = 3;
  EXPECT_EQ(Ask(block, 18), 0);
  EXPECT_EQ(Extents(), (Dims{3, 3, 3, 3, 0}));
  EXPECT_EQ(dims_[5], 77U);  // five entries are the caller's room
}

TEST_F(ResultDatasetInfo, TellsIndexesWithOrWithoutStates) {
  ORVResult block(1000);
  int ident = 0;
  float value = 0;
  block.m_indexident = &ident;
  block.m_indexval = &value;
  block.m_nindex = 2;
  EXPECT_EQ(Ask(block, 19), 0);
  EXPECT_EQ(name_, "indexident");
  EXPECT_EQ(type_, ORV_INT);
  EXPECT_EQ(ptr_, &ident);
  EXPECT_EQ(Extents(), (Dims{2}));
  block.m_nstate = 1;
  EXPECT_EQ(Ask(block, 19), 0);
  EXPECT_EQ(Extents(), (Dims{1, 2}));
  block.m_nstate = 3;
  EXPECT_EQ(Ask(block, 20), 0);
  EXPECT_EQ(name_, "indexval");
  EXPECT_EQ(type_, ORV_FLOAT);
  EXPECT_EQ(ptr_, &value);
  EXPECT_EQ(Extents(), (Dims{3, 2}));
}

TEST_F(ResultDatasetInfo, OfAnyOtherCodeFailsWithRankAndPointerCleared) {
  for (const int code : {0, 1, 5, 15, 16, 17, 21, 25}) {
    ORVResult block(1000);
    EXPECT_EQ(Ask(block, code), 1) << code;
    EXPECT_EQ(rank_, 0);
    EXPECT_EQ(ptr_, nullptr);
  }
}

// ---- Forgetting

_ORVAction NoLink(int, ORVBlock*, void*, void*) { return ORV_ACTION_CONTINUE; }

/// A block as the header of an incremental one leaves it.
struct IncrementalBlock : ORVResult {
  IncrementalBlock() : ORVResult(NodeBlock(1000)) { m_nIncremental = 1; }
};

/// A block that holds something everywhere.
ORVResult FullBlock() {
  ORVResult block = static_cast<const ORVResult&>(IncrementalBlock());
  block.m_nent = block.m_ncoo = block.m_fswitch = block.m_dmpswitch = block.m_nstate = block.m_numl = 3;
  block.m_zoneid = block.m_ndim = block.m_nindex = block.m_fidglob = 4;
  std::strcpy(block.m_etypzone, "zone");
  std::strcpy(block.m_etypframe, "frame");
  std::strcpy(block.m_series, "series");
  std::strcpy(block.m_subBlockName, "sub");
  block.m_entidType = block.m_fidType = block.m_indexidentType = ORV_LONG;
  block.m_resType = block.m_elocType = block.m_indexvalType = ORV_DOUBLE;
  static int somewhere;
  block.m_entid = block.m_res = block.m_fid = block.m_eloc = block.m_indexident = block.m_indexval = &somewhere;
  block.m_entityType = static_cast<_ORVEntityType>(2);
  block.m_baseEntityType = 2;
  block.m_readIds = block.m_constantBlk = 1;
  block.m_complexOutput = ORV_COMPLEX_PHASE;
  block.m_spare0 = block.m_spare1 = block.m_spare2 = 8;
  block.SetLinkCallBack(NoLink);
  block.SetResultLocationType(static_cast<_ORVResultLocation>(3));
  block.m_fetchSkip = 0;
  block.m_variable = reinterpret_cast<ORVVariable*>(&somewhere);
  block.m_variableGrp = reinterpret_cast<ORVVariableGrp*>(&somewhere);
  block.SetBlkPath("/post");
  block.m_nCompressionFactor = 3;
  return block;
}

void ExpectNoHeader(const ORVResult& block) {
  EXPECT_EQ(block.GetKey(), -1);
  for (const char* text :
       {block.m_etyp, block.m_etypvar, block.m_etypzone, block.m_etypframe, block.m_series, block.m_subBlockName}) {
    EXPECT_STREQ(text, "");
  }
  for (const std::int64_t count : {block.m_nent, block.m_ncoo, block.m_fswitch, block.m_dmpswitch, block.m_nstate,
                                   block.m_numl, block.m_zoneid, block.m_ndim, block.m_nindex}) {
    EXPECT_EQ(count, 0);
  }
  EXPECT_FALSE(block.IsIncremental());
  EXPECT_EQ(block.m_entityType, static_cast<_ORVEntityType>(-1));
  EXPECT_EQ(block.m_baseEntityType, -1);
}

void ExpectNoData(const ORVResult& block) {
  EXPECT_EQ(block.m_entidType, ORV_INT);
  EXPECT_EQ(block.m_fidType, ORV_INT);
  EXPECT_EQ(block.m_resType, ORV_FLOAT);
  EXPECT_EQ(block.m_elocType, ORV_FLOAT);
  for (const void* buffer : {block.m_entid, block.m_res, block.m_fid, block.m_eloc}) EXPECT_EQ(buffer, nullptr);
  EXPECT_EQ(block.m_fidglob, 0);
  EXPECT_EQ(block.m_readIds, 0);
}

void ExpectNoIndex(const ORVResult& block) {
  EXPECT_EQ(block.m_indexidentType, ORV_INT);
  EXPECT_EQ(block.m_indexvalType, ORV_FLOAT);
  EXPECT_EQ(block.m_indexident, nullptr);
  EXPECT_EQ(block.m_indexval, nullptr);
}

class ResultReset : public OrvTest {};

TEST_F(ResultReset, OfTheHeaderClearsTheNamesAndLeavesTheBuffers) {
  ORVResult block = FullBlock();
  block.ResetSection(1);
  ExpectNoHeader(block);
  EXPECT_NE(block.m_res, nullptr);
  EXPECT_NE(block.m_indexval, nullptr);
  EXPECT_EQ(block.m_resType, ORV_DOUBLE);
  EXPECT_EQ(block.m_fidglob, 4);
  EXPECT_NE(block.m_variable, nullptr);
  EXPECT_EQ(block.m_complexOutput, ORV_COMPLEX_PHASE);
  EXPECT_EQ(block.m_readIds, 1);
  EXPECT_EQ(block.GetBlkPath(), "/post");
}

TEST_F(ResultReset, OfTheDataClearsBuffersAndTypes) {
  ORVResult block = FullBlock();
  block.ResetSection(2);
  ExpectNoData(block);
  EXPECT_EQ(block.GetKey(), 1000);
  EXPECT_STREQ(block.m_etyp, "Node");
  EXPECT_NE(block.m_indexval, nullptr);
}

TEST_F(ResultReset, OfTheIndexClearsItsBuffersAndTypes) {
  ORVResult block = FullBlock();
  block.ResetSection(4);
  ExpectNoIndex(block);
  EXPECT_NE(block.m_res, nullptr);
  EXPECT_EQ(block.m_nindex, 4);
}

TEST_F(ResultReset, OfEverythingLeavesABlockAsItWasMade) {
  ORVResult block = FullBlock();
  block.ResetSection(-1);
  ExpectNoHeader(block);
  ExpectNoData(block);
  ExpectNoIndex(block);
  EXPECT_EQ(block.m_variable, nullptr);
  EXPECT_EQ(block.m_variableGrp, nullptr);
  EXPECT_EQ(block.m_complexOutput, 0);
  EXPECT_EQ(block.m_constantBlk, 0);
  EXPECT_EQ(block.m_spare0, 0);
  EXPECT_EQ(block.m_spare1, -1);
  EXPECT_EQ(block.m_spare2, 0);
  EXPECT_EQ(block.m_fetchSkip, 1);
  EXPECT_EQ(block.m_linkCallBack, nullptr);
  EXPECT_EQ(static_cast<int>(block.GetResultLocationType()), 0);
  EXPECT_EQ(block.GetBlkPath(), "");
  EXPECT_EQ(block.m_nCompressionFactor, -1);
}

TEST_F(ResultReset, OfNothingChangesNothing) {
  ORVResult block = FullBlock();
  block.ResetSection(0);
  EXPECT_EQ(block.GetKey(), 1000);
  EXPECT_NE(block.m_res, nullptr);
  EXPECT_EQ(block.GetBlkPath(), "/post");
}

}  // namespace
