// Reading the datasets of a variable, and finding its block. Headers are in variable_header_test.

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "variable/forged_variable.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeKeyed;
using orv_test::ForgeUnkeyed;
using orv_test::kSingleGroup;
using orv_test::kSplitData;
using orv_test::kSplitHeader;
using orv_test::TestVariable;

class VariableData : public orv_test::OrvTest {};
class VariableBlock : public orv_test::OrvTest {};

template <class T>
std::vector<T> Values(const T* from, std::size_t count) {
  return {from, from + count};
}

TEST_F(VariableData, OfAKeyedVariableFillsAllTables) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(Values(variable.m_pMbunit, 2), (std::vector<int>{2, 1}));
  EXPECT_EQ(Values(variable.m_pMdunit, 2), (std::vector<int>{0, 1}));
  EXPECT_EQ(Values(variable.m_pUbid, 3), (std::vector<int>{11, 12, 13}));
  EXPECT_EQ(Values(variable.m_pUbexp, 3), (std::vector<float>{1, -2, 0.5F}));
  EXPECT_EQ(variable.m_pUdid[0], 21);
  EXPECT_EQ(variable.m_pUdexp[0], 2.0F);
  EXPECT_EQ(std::string(variable.m_pSubscr, 5), "XXYYY");
  EXPECT_EQ(Values(variable.m_pSubscnt, 2), (std::vector<int>{2, 3}));
  EXPECT_EQ(Values(variable.m_pSubsoffs, 2), (std::vector<int>{0, 2}));
  EXPECT_EQ(Values(variable.m_pVmap, 6), (std::vector<float>{1, 2, 3, 4, 5, 6}));
}

TEST_F(VariableData, OfAnUnkeyedVariableFillsAndTrimsAllTables) {
  ForgedFile file = ForgeUnkeyed();
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_STREQ(variable.m_pCname, "first");
  EXPECT_STREQ(variable.m_pCname + 256, "  second one");
  EXPECT_EQ(Values(variable.m_pCid, 2), (std::vector<int>{7, 8}));
  EXPECT_EQ(Values(variable.m_pMbunit, 2), (std::vector<int>{1, 0}));
  EXPECT_EQ(Values(variable.m_pMdunit, 2), (std::vector<int>{0, 2}));
  EXPECT_EQ(variable.m_pUbid[0], 11);
  EXPECT_EQ(variable.m_pUbexp[0], -1.0F);
  EXPECT_EQ(Values(variable.m_pUdid, 2), (std::vector<int>{21, 22}));
  EXPECT_EQ(Values(variable.m_pUdexp, 2), (std::vector<float>{2, 3}));
}

TEST_F(VariableData, AComponentNameOfExactly256CharactersLosesTheLast) {
  ForgedFile file = ForgeUnkeyed();
  file.at(kSplitData).texts("cname", 256, {2}, {std::string(256, 'a'), ""});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(std::string(variable.m_pCname), std::string(255, 'a'));
  EXPECT_STREQ(variable.m_pCname + 256, "");
}

TEST_F(VariableData, AComponentNameEndsAtItsFirstZeroByte) {
  ForgedFile file = ForgeUnkeyed();
  file.at(kSplitData).texts("cname", 256, {2}, {std::string("ab  \0", 5), "c"});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_STREQ(variable.m_pCname, "ab");
}

TEST_F(VariableData, KeepsTheBlanksOfComponentNamesOfAKeyedVariable) {
  ForgedFile file = ForgeKeyed();
  file.texts("cname", 256, {2}, {"first", "second"});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(std::string(variable.m_pCname, 256), "first" + std::string(251, ' '));
  EXPECT_EQ(std::string(variable.m_pCname + 256), "second" + std::string(250, ' '));
}

TEST_F(VariableData, WithoutAKeyNeedsItsComponentNamesAndIds) {
  for (const char* name : {"cname", "cid"}) {
    ForgedFile dropped = ForgeUnkeyed(), retyped = ForgeUnkeyed();
    dropped.at(kSplitData).drop(name);
    retyped.at(kSplitData).retype(name);
    TestVariable first, second;
    EXPECT_EQ(first.ReadFirst(dropped), 1) << name;
    EXPECT_EQ(second.ReadFirst(retyped), 1) << name;
  }
}

TEST_F(VariableData, WithoutAKeyAndWithoutBuffersNeedsNoComponentNames) {
  ForgedFile file = ForgeUnkeyed();
  file.at(kSplitData).drop("cname").drop("cid");
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 0);
}

TEST_F(VariableData, WithAKeyGoesOnWithoutComponentNamesAndIds) {
  ForgedFile file = ForgeKeyed();
  file.dataset<std::int32_t>("cname", {2}, {1, 2}).texts("cid", 4, {2}, {"a", "b"});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pCid[0], 0);
  EXPECT_EQ(variable.m_pCname[0], '\0');
  EXPECT_EQ(variable.m_pUbid[2], 13);
}

TEST_F(VariableData, IsNotReadForAVariableWithoutComponents) {
  ForgedFile file = ForgeKeyed();
  file.integer("ncoo", 0);
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 1);
}

TEST_F(VariableData, ANegativeCountOfComponentsFails) {
  ForgedFile file = ForgeKeyed();
  file.integer("ncoo", -2);
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_FALSE(orvio::AllocateBuffers(variable));
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 1);
}

TEST_F(VariableData, SucceedsWhereNothingHadToBeRead) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 0);
}

TEST_F(VariableData, MissingUnitAndLabelTablesAreNoFailure) {
  ForgedFile file = ForgeKeyed();
  for (const char* name : {"mbunit", "mdunit", "ubid", "ubexp", "udid", "udexp", "subscnt", "subsoffs"})
    file.drop(name);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
}

TEST_F(VariableData, MissingUnitListsOfPresentCountsAreNoFailure) {
  ForgedFile file = ForgeKeyed();
  for (const char* name : {"ubid", "ubexp", "udid", "udexp"}) file.drop(name);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pMbunit[0], 2);
}

TEST_F(VariableData, UnitListsWithoutCountsAreNotRead) {
  ForgedFile file = ForgeKeyed();
  file.drop("mbunit").dataset<std::int32_t>("mdunit", {2}, {0, 0});
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pUbid[0], 0);
  EXPECT_EQ(variable.m_pUdid[0], 0);
}

TEST_F(VariableData, MissingPackedLabelsFail) {
  ForgedFile file = ForgeKeyed();
  file.drop("subscr");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 1);
}

TEST_F(VariableData, LabelsOfLengthZeroAreNotLookedAt) {
  ForgedFile file = ForgeKeyed();
  file.integer32("subslen", 0).drop("subscr").retype("subscnt");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pSubscr, nullptr);
}

TEST_F(VariableData, LabelsOfNegativeLengthAreNotLookedAtAndTheLengthStays) {
  ForgedFile file = ForgeKeyed();
  file.integer32("subslen", -5);
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_subslen, -5);
  EXPECT_EQ(variable.m_pSubscr, nullptr);
  EXPECT_EQ(variable.m_pSubscnt, nullptr);
}

TEST_F(VariableData, TablesOfAnotherLengthThanTheHeaderSaysFail) {
  struct Fault {
    const char* name;
    std::vector<hsize_t> shape;
  };
  const Fault faults[] = {{"mbunit", {3}},  {"mdunit", {1}},   {"ubid", {2}},      {"udid", {2}},
                          {"subscnt", {9}}, {"subsoffs", {1}}, {"mbunit", {1, 2}}, {"mbunit", {2, 2}}};
  for (const Fault& fault : faults) {
    hsize_t count = 1;
    for (const hsize_t dim : fault.shape) count *= dim;
    ForgedFile file = ForgeKeyed();
    file.dataset<std::int32_t>(fault.name, fault.shape, std::vector<std::int32_t>(count, 1));
    TestVariable variable;
    EXPECT_EQ(variable.ReadFirst(file), 1) << fault.name;
  }
}

TEST_F(VariableData, TablesOfAWrongClassFail) {
  for (const char* name :
       {"mbunit", "mdunit", "ubid", "ubexp", "udid", "udexp", "subscnt", "subsoffs", "subscr", "vmap"}) {
    ForgedFile file = ForgeKeyed();
    file.retype(name);
    TestVariable variable;
    EXPECT_EQ(variable.ReadFirst(file), 1) << name;
  }
}

TEST_F(VariableData, LabelsOfTwoBytesAnElementFail) {
  ForgedFile file = ForgeKeyed();
  file.texts("subscr", 2, {5}, {"XX", "XX", "YY", "YY", "YY"});
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 1);
}

// ---- Unit tables: 7 entries a component and no more

TEST_F(VariableData, UnitTablesTakeSevenEntriesAComponent) {
  ForgedFile file = ForgeKeyed();
  file.dataset<std::int32_t>("mbunit", {2}, {14, 0}).dataset<std::int32_t>("mdunit", {2}, {0, 14});
  file.dataset<std::int32_t>("ubid", {14}, std::vector<std::int32_t>(14, 3));
  file.dataset<float>("ubexp", {14}, std::vector<float>(14, 4));
  file.dataset<std::int32_t>("udid", {14}, std::vector<std::int32_t>(14, 5));
  file.dataset<float>("udexp", {14}, std::vector<float>(14, 6));
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(Values(variable.m_pUbid, 14), std::vector<int>(14, 3));
  EXPECT_EQ(Values(variable.m_pUbexp, 14), std::vector<float>(14, 4));
  EXPECT_EQ(Values(variable.m_pUdid, 14), std::vector<int>(14, 5));
  EXPECT_EQ(Values(variable.m_pUdexp, 14), std::vector<float>(14, 6));
}

TEST_F(VariableData, UnitListsAreAsLongAsTheCountsSayWhateverTheHeaderTotals) {
  ForgedFile file = ForgeKeyed();
  file.integer("lenb", 1).integer("lend", INT64_MAX);
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_lenb, 1);
  EXPECT_EQ(variable.m_lend, INT64_MAX);
  EXPECT_EQ(Values(variable.m_pUbid, 3), (std::vector<int>{11, 12, 13}));
  EXPECT_EQ(Values(variable.m_pUbexp, 3), (std::vector<float>{1, -2, 0.5F}));
  EXPECT_EQ(variable.m_pUdid[0], 21);
}

TEST_F(VariableData, MoreUnitsThanTheTablesHoldFail) {
  for (const char* name : {"mbunit", "mdunit"}) {
    ForgedFile file = ForgeKeyed();
    file.dataset<std::int32_t>(name, {2}, {14, 1});
    TestVariable variable;
    EXPECT_EQ(variable.ReadFirst(file), 1) << name;
  }
}

TEST_F(VariableData, UnitCountsWhoseSumWrapsIn32BitsFail) {
  ForgedFile file = ForgeKeyed();
  file.dataset<std::int32_t>("mbunit", {2}, {INT_MAX, INT_MAX});
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 1);
}

TEST_F(VariableData, ANegativeUnitCountFails) {
  for (const char* name : {"mbunit", "mdunit"}) {
    ForgedFile file = ForgeKeyed();
    file.dataset<std::int32_t>(name, {2}, {3, -1});
    TestVariable variable;
    EXPECT_EQ(variable.ReadFirst(file), 1) << name;
  }
}

// ---- vmap

TEST_F(VariableData, AMapOfRankZeroHasOneEntryAComponentWhateverItsExtent) {
  ForgedFile file = ForgeKeyed();
  file.integer("rank", 0).integer("ndim", 0).dataset<float>("vmap", {2}, {8, 9});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(Values(variable.m_pVmap, 2), (std::vector<float>{8, 9}));
}

TEST_F(VariableData, AMapOfRankTwoHasThreeDimensions) {
  ForgedFile file = ForgeKeyed();
  file.integer("rank", 2).integer("ndim", 2).dataset<float>("vmap", {2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(Values(variable.m_pVmap, 8), (std::vector<float>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(VariableData, AMapOfRankTwoAndExtentZeroIsSkipped) {
  ForgedFile file = ForgeKeyed();
  file.integer("rank", 2).integer("ndim", 0).retype("vmap");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pVmap, nullptr);
}

TEST_F(VariableData, AMapThatNoFileCanMeanIsSkipped) {
  struct Shape {
    std::int64_t rank;
    std::int64_t ndim;
  };
  for (const Shape& shape : {Shape{16, 1}, Shape{-1, 3}, Shape{1, -3}, Shape{2, -3}, Shape{15, 1000000},
                             Shape{1, INT64_MAX}, Shape{INT64_MAX, 1}, Shape{INT64_MIN, 2}, Shape{1, 1073741825}}) {
    ForgedFile file = ForgeKeyed();
    file.integer("rank", shape.rank).integer("ndim", shape.ndim).retype("vmap");
    TestVariable variable;
    EXPECT_EQ(variable.ReadFirst(file), 0) << shape.rank << ", " << shape.ndim;
    EXPECT_EQ(variable.m_pVmap, nullptr);
    float untouched[2] = {5, 5};
    variable.m_pVmap = untouched;
    EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 0);
    EXPECT_EQ(untouched[0], 5);
    variable.m_pVmap = nullptr;
  }
}

TEST_F(VariableData, AMapOfRankFifteenIsRead) {
  ForgedFile file = ForgeKeyed();
  std::vector<hsize_t> shape(16, 1);
  shape[0] = 2;
  file.integer("rank", 15).integer("ndim", 1).dataset<float>("vmap", shape, {8, 9});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(Values(variable.m_pVmap, 2), (std::vector<float>{8, 9}));
}

TEST_F(VariableData, WithoutTheFlagNoMapIsRead) {
  ForgedFile file = ForgeKeyed();
  file.integer32("lvmap", 0).retype("vmap");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 0);
  EXPECT_EQ(variable.m_pVmap, nullptr);
}

TEST_F(VariableData, AMissingMapFails) {
  ForgedFile file = ForgeKeyed();
  file.drop("vmap");
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirst(file), 1);
}

// ---- The type probe

_ORVDataType ProbedType(ForgedFile& file) {
  TestVariable variable;
  EXPECT_EQ(variable.ReadFirstHeader(file), 0);
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA_INFO), 0);
  return variable.m_cidType;
}

TEST_F(VariableData, TheProbeTellsTheStoredTypeOfTheIds) {
  ForgedFile file = ForgeUnkeyed();
  file.at(kSplitData);
  EXPECT_EQ(ProbedType(file), ORV_INT);
  EXPECT_EQ(ProbedType(file.dataset<std::int64_t>("cid", {2}, {1, 2})), ORV_LONG);
  EXPECT_EQ(ProbedType(file.dataset<float>("cid", {2}, {1, 2})), ORV_FLOAT);
  EXPECT_EQ(ProbedType(file.dataset<double>("cid", {2}, {1, 2})), ORV_DOUBLE);
  EXPECT_EQ(ProbedType(file.texts("cid", 3, {2}, {"a", "b"})), ORV_CHAR);
  EXPECT_EQ(ProbedType(file.drop("cid")), ORV_NO_DATASET);
}

TEST_F(VariableData, AProbedWiderTypeDoesNotOverrunTheIds) {
  ForgedFile file = ForgeUnkeyed();
  file.at(kSplitData).dataset<std::int64_t>("cid", {2}, {7, 8});
  TestVariable variable;
  ASSERT_EQ(variable.ReadFirst(file), 0);
  ASSERT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA_INFO), 0);
  ASSERT_EQ(variable.m_cidType, ORV_LONG);
  EXPECT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA), 0);
  EXPECT_EQ(Values(variable.m_pCid, 2), (std::vector<int>{7, 8}));
}

// ---- Finding the block

TEST_F(VariableBlock, IsReadByItsKey) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  orv_test::SetText(variable.m_varkey, "ZPS:Stress");
  orv_test::SetText(variable.m_varnam, "unlike");
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 5, ORV_READ_HEADER), 0);
  EXPECT_STREQ(variable.m_varnam, "Stress");
  EXPECT_EQ(variable.GetBlkPath(), kSingleGroup);
}

TEST_F(VariableBlock, IsReadByItsNameWhereItHasNoKey) {
  ForgedFile file = ForgeUnkeyed();
  TestVariable variable;
  orv_test::SetText(variable.m_varnam, "STRESS");
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(variable.m_idtrans, 44);
}

TEST_F(VariableBlock, ThatWasFoundIsReadAgainWhereItStands) {
  ForgedFile file = ForgeKeyed();
  file.at("/post/constant/variable/elsewhere/orvblock").integer("block", 30).text("varnam", "other");
  file.integer("ncoo", 1).integer("rank", 0);
  TestVariable variable;
  ASSERT_EQ(variable.ReadBlockAt(file.path().c_str(), 0, 1, ORV_READ_HEADER), 0);
  ASSERT_STREQ(variable.m_varnam, "other");
  variable.ReSetBlock(ORV_READ_HEADER);
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_STREQ(variable.m_varnam, "other");
}

TEST_F(VariableBlock, WithAnotherIdentityThanStandsAtItsPathIsLookedForByThat) {
  ForgedFile file = ForgeKeyed();
  file.at("/post/constant/variable/second/orvblock").integer("block", 30).text("varnam", "other");
  file.text("varkey", "second").integer("ncoo", 5).integer("rank", 0);
  TestVariable variable;
  orv_test::SetText(variable.m_varkey, "ZPS:Stress");
  ASSERT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  ASSERT_EQ(variable.m_ncoo, 2);
  orv_test::SetText(variable.m_varkey, "second");
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(variable.m_ncoo, 5);
  variable.ReSetBlock(ORV_READ_HEADER);
  orv_test::SetText(variable.m_varnam, "in no file");
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 1);
}

TEST_F(VariableBlock, ThatIsNotThereFails) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  orv_test::SetText(variable.m_varnam, "nothing");
  EXPECT_EQ(variable.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 1);
  EXPECT_EQ(variable.ReadBlock(nullptr, 0, ORV_READ_HEADER), 1);
  EXPECT_EQ(variable.ReadBlock("/no/such/file", 0, ORV_READ_HEADER), 1);
}

TEST_F(VariableBlock, IsCountedInTheGroupOfTheFilesVersion) {
  ForgedFile keyed = ForgeKeyed(), unkeyed = ForgeUnkeyed();
  keyed.at("/post/constant/variable/second/orvblock");
  TestVariable variable;
  int count = -1;
  EXPECT_EQ(variable.ReadNumBlock(keyed.path().c_str(), 3, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(variable.ReadNumBlock(unkeyed.path().c_str(), 0, &count), 0);
  EXPECT_EQ(count, 1);
}

TEST_F(VariableBlock, SchemaIsTheIdentity) {
  TestVariable variable;
  orv_test::SetText(variable.m_varnam, "name");
  std::string path;
  EXPECT_EQ(variable.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "name");
  orv_test::SetText(variable.m_varkey, "key");
  path = "/post/constant/variable";
  EXPECT_EQ(variable.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "/post/constant/variable/key");
}

TEST_F(VariableBlock, GroupIsThePathInTheSingleLayoutAndElseTheName) {
  ForgedFile file = ForgeKeyed();
  file.group("/post/constant/variable/ZPS:Stress/Stress");
  OH5Reader reader(file.path().c_str());
  const hid_t id = reader.GetFileId();
  TestVariable variable;
  orv_test::SetText(variable.m_varnam, "Stress");
  EXPECT_EQ(variable.GetVariableBlkGrp(id, id), -1);  // without a reader
  variable.SetH5Reader(&reader);
  variable.SetBlkPath(kSingleGroup);
  const hid_t by_path = variable.GetVariableBlkGrp(id, -1);
  EXPECT_GT(by_path, 0);
  H5Gclose(by_path);
  variable.SetBlkPath("/post/constant/variable/ZPS:Stress");
  const hid_t parent = reader.OpenGroup(id, "/post/constant/variable/ZPS:Stress", 0);
  const hid_t by_name = variable.GetVariableBlkGrp(-1, parent);
  EXPECT_GT(by_name, 0);
  H5Gclose(by_name);
  H5Gclose(parent);
  variable.SetH5Reader(nullptr);
}

_ORVAction CountVariables(int status, int stage, void* name, void* block) {
  auto& variable = *static_cast<TestVariable*>(static_cast<ORVBlock*>(block));
  EXPECT_EQ(status, 0);
  EXPECT_EQ(stage, ORV_READ_HEADER);
  EXPECT_STREQ(static_cast<const char*>(name), "ZPS:Stress");
  ++variable.m_unitFlag;
  return ORV_ACTION_CONTINUE;
}

TEST_F(VariableBlock, IsVisitedByAWalkOverAllOfThem) {
  ForgedFile file = ForgeKeyed();
  TestVariable variable;
  EXPECT_EQ(variable.IterateBlock(file.path().c_str(), 0, ORV_READ_HEADER, CountVariables), 0);
  EXPECT_EQ(variable.m_unitFlag, 2);
  EXPECT_STREQ(variable.m_varnam, "Stress");
}

}  // namespace
