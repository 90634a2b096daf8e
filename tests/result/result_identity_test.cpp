// The kind of a result block, its names and its accessors. The path it has in a file is in result_paths_test, the header
// in result_header_test.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "support/orv_test.h"
#include "support/virtual_place.h"

namespace {

using namespace orv_test;

class ResultIdentity : public OrvTest {};

struct KindRow {
  int key;
  bool entity, element, single, multi, complex;
};

constexpr KindRow kKinds[] = {
    {1000, true, false, true, false, false},  {1001, true, false, true, false, true},
    {1050, true, false, false, true, false},  {1051, true, false, false, true, true},
    {1100, false, true, true, false, false},  {1101, false, true, true, false, true},
    {1150, false, true, false, true, false},  {1151, false, true, false, true, true},
    {500, false, false, false, false, false}, {-1, false, false, false, false, false},
    {300, false, false, false, false, false}, {1002, false, false, false, false, false},
};

TEST_F(ResultIdentity, FollowsFromTheBlockType) {
  for (const KindRow& row : kKinds) {
    const ORVResult block(row.key);
    SCOPED_TRACE(row.key);
    EXPECT_EQ(block.GetKey(), row.key);
    EXPECT_EQ(block.IsEntityResult(), row.entity);
    EXPECT_EQ(block.IsElementResult(), row.element);
    EXPECT_EQ(block.IsSinglestateBlk(), row.single);
    EXPECT_EQ(block.IsMultistateBlk(), row.multi);
    EXPECT_EQ(block.IsComplexBlk(), row.complex);
    EXPECT_FALSE(block.IsConstantBlk());
  }
}

TEST_F(ResultIdentity, OfANewBlockIsNone) { EXPECT_EQ(ORVResult().GetKey(), -1); }

TEST_F(ResultIdentity, StartsWithTypesAndNothingElse) {
  for (const ORVResult& block : {ORVResult(), ORVResult(1000)}) {
    for (const char* name :
         {block.m_etyp, block.m_etypvar, block.m_etypzone, block.m_etypframe, block.m_series, block.m_subBlockName}) {
      EXPECT_STREQ(name, "");
    }
    for (const std::int64_t count : {block.m_nent, block.m_ncoo, block.m_fswitch, block.m_dmpswitch, block.m_nstate,
                                     block.m_numl, block.m_zoneid, block.m_ndim, block.m_nindex, block.m_fidglob}) {
      EXPECT_EQ(count, 0);
    }
    for (const void* buffer :
         {block.m_entid, block.m_res, block.m_fid, block.m_eloc, block.m_indexident, block.m_indexval}) {
      EXPECT_EQ(buffer, nullptr);
    }
    EXPECT_EQ(block.m_entidType, ORV_INT);
    EXPECT_EQ(block.m_resType, ORV_FLOAT);
    EXPECT_EQ(block.m_fidType, ORV_INT);
    EXPECT_EQ(block.m_elocType, ORV_FLOAT);
    EXPECT_EQ(block.m_indexidentType, ORV_INT);
    EXPECT_EQ(block.m_indexvalType, ORV_FLOAT);
    EXPECT_EQ(static_cast<int>(block.m_entityType), -1);
    EXPECT_EQ(block.m_baseEntityType, -1);
    EXPECT_EQ(block.m_readIds, 0);
    EXPECT_EQ(block.m_constantBlk, 0);
    EXPECT_EQ(block.m_spare0, 0);
    EXPECT_EQ(block.m_variable, nullptr);
    EXPECT_EQ(block.m_variableGrp, nullptr);
    EXPECT_EQ(block.m_complexOutput, 0);
    EXPECT_EQ(block.m_spare1, -1);
    EXPECT_EQ(block.m_spare2, 0);
    EXPECT_EQ(block.m_fetchSkip, 1);
    EXPECT_EQ(block.m_linkCallBack, nullptr);
    EXPECT_EQ(static_cast<int>(block.GetResultLocationType()), 0);
    EXPECT_FALSE(block.IsIncremental());
    EXPECT_EQ(block.m_nCompressionFactor, -1);
  }
}

TEST_F(ResultIdentity, ChangesWithTheBlockTypeAndAnswersTheOldOne) {
  ORVResult block(1000);
  EXPECT_EQ(block.SetBlockType(1151), 1000);
  EXPECT_EQ(block.GetKey(), 1151);
  EXPECT_EQ(block.SetBlockType(-1), 1151);
  EXPECT_EQ(block.GetKey(), -1);
}

_ORVAction NoLink(int, ORVBlock*, void*, void*) { return ORV_ACTION_CONTINUE; }

TEST_F(ResultIdentity, IsCopiedWithTheBuffers) {
  ORVResult block(1050);
  int ids[1] = {7};
  float values[1] = {1};
  block.SetEntityAndVarName("Node", "VELOCITY");
  block.m_entid = ids;
  block.m_res = values;
  block.m_nent = 1;
  block.m_spare0 = 4;
  block.m_fetchSkip = 0;
  block.m_complexOutput = 2;
  block.SetConstantBlk(true);
  block.SetLinkCallBack(NoLink);
  block.SetBlkPath("/post/multistate/x");
  const ORVResult copy(block);
  ORVResult assigned(1000);
  assigned = block;
  for (const ORVResult* other : {&copy, const_cast<const ORVResult*>(&assigned)}) {
    EXPECT_EQ(other->GetKey(), 1050);
    EXPECT_STREQ(other->m_etyp, "Node");
    EXPECT_STREQ(other->m_etypvar, "VELOCITY");
    EXPECT_EQ(other->m_entid, ids);
    EXPECT_EQ(other->m_res, values);
    EXPECT_EQ(other->m_nent, 1);
    EXPECT_EQ(other->m_spare0, 4);
    EXPECT_EQ(other->m_fetchSkip, 0);
    EXPECT_EQ(other->m_complexOutput, 2);
    EXPECT_TRUE(other->IsConstantBlk());
    EXPECT_EQ(other->m_linkCallBack, &NoLink);
    EXPECT_EQ(other->GetBlkPath(), "/post/multistate/x");
  }
}

TEST_F(ResultIdentity, IsConstantOnlyWhereItWasSet) {
  ORVResult block(1000);
  block.SetConstantBlk(true);
  EXPECT_TRUE(block.IsConstantBlk());
  EXPECT_EQ(block.m_constantBlk, 1);
  block.SetConstantBlk(false);
  EXPECT_FALSE(block.IsConstantBlk());
}

TEST_F(ResultIdentity, KeepsTheLocationForTheHost) {
  ORVResult block(1000);
  block.SetResultLocationType(static_cast<_ORVResultLocation>(3));
  EXPECT_EQ(static_cast<int>(block.GetResultLocationType()), 3);
}

TEST_F(ResultIdentity, CutsNamesAt256Characters) {
  ORVResult block(1000);
  block.SetEntityAndVarName(std::string(300, 't'), std::string(300, 'v'));
  EXPECT_EQ(block.m_etyp, std::string(256, 't'));
  EXPECT_EQ(block.m_etypvar, std::string(256, 'v'));
  EXPECT_EQ(block.GetElementType(), std::string(256, 't'));
  block.SetEntityAndVarName("Node", "");
  EXPECT_EQ(block.GetElementType(), "Node");
  EXPECT_STREQ(block.m_etypvar, "");
}

TEST_F(ResultIdentity, ReadsNoFurtherThanAFieldWithoutATerminator) {
  ORVResult block(1000);
  std::memset(block.m_etyp, 'x', sizeof block.m_etyp);
  EXPECT_EQ(block.GetElementType(), std::string(256, 'x'));
}

TEST_F(ResultIdentity, TellsTheFrame) {
  ORVResult block(1000);
  block.m_fswitch = 1;
  block.m_fidglob = 42;
  std::strcpy(block.m_etypframe, "FRAME");
  int frame = 0;
  std::string type = "before";
  EXPECT_EQ(block.GetFrameSwitch(frame, type), 1);
  EXPECT_EQ(frame, 42);
  EXPECT_EQ(type, "FRAME");
}

TEST_F(ResultIdentity, ComparesSeriesNamesWithoutRegardToCase) {
  ORVResult block(1050);
  EXPECT_FALSE(block.HasSeriesName(""));
  EXPECT_FALSE(block.HasSeriesName(nullptr));
  std::strcpy(block.m_series, "TimeSeries1");
  EXPECT_TRUE(block.HasSeriesName("TIMESERIES1"));
  EXPECT_FALSE(block.HasSeriesName("TIMESERIES"));
  EXPECT_FALSE(block.HasSeriesName(""));
  EXPECT_FALSE(block.HasSeriesName(nullptr));
}

struct LoadCaseRow {
  const char* series;
  bool is_load_case;
  int number;
};

constexpr LoadCaseRow kLoadCases[] = {
    {"", false, 0},
    {"TIMESERIES1", false, 0},
    {"LOADCASE12", false, 0},
    {"loadcase_12", false, 0},
    {"LOADCASE_12", true, 12},
    {"LOADCASE_", true, 0},
    {"LOADCASE_x", true, 0},
    {"LOADCASE_ 7 of 9", true, 7},
    {"LOADCASE_-3", true, -3},
    {"LOADCASE_99999999999999999999", true, 2147483647},
    {"LOADCASE_-99999999999", true, -2147483647 - 1},
};

TEST_F(ResultIdentity, FindsTheNumberOfALoadCaseInTheSeries) {
  for (const LoadCaseRow& row : kLoadCases) {
    SCOPED_TRACE(row.series);
    ORVResult block(1000);
    std::strcpy(block.m_series, row.series);
    int number = 77;
    EXPECT_EQ(block.IsLoadCaseSeriesName(number), row.is_load_case);
    EXPECT_EQ(number, row.number);
  }
}

TEST_F(ResultIdentity, TakesTheLoadCaseNumberFromTheTenthCharacter) {
  ORVResult block(1000);
  int number = 77;
  std::strcpy(block.m_series, "xLOADCASE_12");  // the tenth character is the underscore
  EXPECT_TRUE(block.IsLoadCaseSeriesName(number));
  EXPECT_EQ(number, 0);
  std::strcpy(block.m_series, "run  4 of34 LOADCASE_12");
  EXPECT_TRUE(block.IsLoadCaseSeriesName(number));
  EXPECT_EQ(number, 34);
}

TEST_F(ResultIdentity, FindsTheLoadCaseInAFieldWithoutATerminator) {
  ORVResult block(1000);
  std::memset(block.m_series, '1', sizeof block.m_series);
  std::memcpy(block.m_series, "LOADCASE_", 9);
  int number = 0;
  EXPECT_TRUE(block.IsLoadCaseSeriesName(number));
  EXPECT_EQ(number, 2147483647);
  std::memset(block.m_series, ' ', sizeof block.m_series);
  std::memcpy(block.m_series, "LOADCASE_", 9);
  block.m_series[256] = '7';  // behind the text
  EXPECT_TRUE(block.IsLoadCaseSeriesName(number));
  EXPECT_EQ(number, 0);
}

/// A block that can name what is protected.
struct Operations : ORVResult {
  using Select = int (ORVResult::*)(const char*, int, int, _ORVBlockAtt, int, std::uint64_t*, std::uint64_t*,
                                    std::uint64_t*, std::uint64_t*, bool);
  using SelectSlab = int (ORVResult::*)(const char*, int, int, _ORVBlockAtt, ORVHyperSlab&, bool);

  static std::vector<std::ptrdiff_t> OfABlock() {
    return {PlaceOf(&ORVResult::ReadBlock),        PlaceOf(&ORVResult::ReadBlockAt),
            PlaceOf(&ORVResult::ReadNumBlock),     PlaceOf(&ORVResult::ReadHeader),
            PlaceOf(&ORVResult::ReadData),         PlaceOf(&ORVResult::ReadIndex),
            PlaceOf(&ORVResult::ReadBlockOver),    PlaceOf(&ORVResult::IterateBlock),
            PlaceOf(&ORVResult::IterateBlockOver), PlaceOf(&ORVResult::ReadBlockByBlockPath),
            PlaceOf(&ORVResult::WriteBlock),       PlaceOf(&ORVResult::WriteHeader),
            PlaceOf(&ORVResult::WriteData),        PlaceOf(&ORVResult::WriteIndex),
            PlaceOf(&ORVResult::DeleteLinks),      PlaceOf(&ORVBlock::CacheData),
            PlaceOf(&ORVResult::ClearCacheMap),    PlaceOf(&Operations::ReadBlockStep),
            PlaceOf(&Operations::OpenBlockGroup),  PlaceOf(&Operations::AppendBlockSchema),
            PlaceOf(&Operations::ReadIndexComm)};
  }
  static std::vector<std::ptrdiff_t> OfAResult() {
    return {PlaceOf(&ORVResult::ReadAttribute),
            PlaceOf(static_cast<SelectSlab>(&ORVResult::ReadSelectiveAttribute)),
            PlaceOf(static_cast<Select>(&ORVResult::ReadSelectiveAttribute)),
            PlaceOf(&ORVResult::ReadAtt),
            PlaceOf(&ORVResult::ReadSelAtt),
            PlaceOf(&ORVResult::WriteSelectiveAttribute)};
  }
};

TEST_F(ResultIdentity, HasTheOperationsOfABlockBeforeItsOwnInTheOrderThatHostsAreBuiltWith) {
  using Places = std::vector<std::ptrdiff_t>;
  EXPECT_EQ(Operations::OfABlock(),
            (Places{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
  EXPECT_EQ(Operations::OfAResult(), (Places{23, 24, 25, 26, 27, 28}));
}

struct TailRow {
  int key;
  const char* stored;
  int status;
  const char* tail;
};

constexpr TailRow kTails[] = {
    {1000, "/post/singlestate/state000000000001/entityresults/Node/V/orvblock", 0, "entityresults/Node/V/orvblock"},
    {1000, "/post/constant/entityresults/entityresults/V", 0, "entityresults/entityresults/V"},
    {1050, "/post/multistate/multientityresults/Node/V", 0, "multientityresults/Node/V"},
    {1100, "/post/constant/elementresults/SHELL/S", 0, "elementresults/SHELL/S"},
    {1150, "/post/multistate/elementresults/SHELL/S", 0, "elementresults/SHELL/S"},
    {1150, "/post/multistate/multielementresults/SHELL/S", 0, "elementresults/SHELL/S"},
    {500, "/post/constant/NODE/MASS", 0, "/post/constant/NODE/MASS"},
    {500, "", 1, "before"},
    {1000, "", 1, "before"},
    {1000, "/post/constant/elementresults/SHELL/S", 1, "before"},
    {-1, "/post/constant/entityresults/Node/V", 1, "before"},
    {1002, "/post/constant/entityresults/Node/V", 1, "before"},
};

TEST_F(ResultIdentity, GivesTheTailOfThePathFromTheTypeGroupOn) {
  for (const TailRow& row : kTails) {
    SCOPED_TRACE(std::to_string(row.key) + " " + row.stored);
    ORVResult block(row.key);
    block.SetBlkPath(row.stored);
    std::string tail = "before";
    EXPECT_EQ(block.GetRelativePathFromResultGroup(tail), row.status);
    EXPECT_EQ(tail, row.tail);
  }
}

}  // namespace
