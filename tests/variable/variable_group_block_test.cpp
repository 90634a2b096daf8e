// The block of a group of variables: its header and data, read and written, and the walk over the groups of a file. What
// it answers for its variables and their handles is in variable_group_query_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable_grp.h"
#include "support/forged_model.h"
#include "support/orv_test.h"
#include "support/raw_file.h"
#include "variable/variable_group_discovery.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgedModel;
using orv_test::RawFile;
using testing::ElementsAre;

constexpr char kGroup[] = "/post/constant/variablegroup/LOADS";
constexpr char kSingle[] = "/post/constant/variablegroup/LOADS/orvblock";

/// A group with arrays of its own.
struct TestGroup : ORVVariableGrp {
  TestGroup() = default;
  TestGroup(const TestGroup&) = delete;
  TestGroup& operator=(const TestGroup&) = delete;
  ~TestGroup() override { orvio::FreeBuffers(*this); }

  using ORVVariableGrp::AppendBlockSchema;

  int ReadFirst(ForgedModel& model) {
    const std::string path = model.path();
    if (ReadBlockAt(path.c_str(), 0, 0, ORV_READ_HEADER) != 0 || !orvio::AllocateBuffers(*this)) return -1;
    return ReadBlockAt(path.c_str(), 0, 0, ORV_READ_DATA);
  }
};

ForgedModel Loads(ForgedModel::Layout layout = ForgedModel::kSingle) {
  ForgedModel model(layout);
  model.group("LOADS", 9, {{"FORCE", 3, 0}, {"MOMENT", 6, 3}});
  return model;
}

// ---- Reading

class VariableGroupBlock : public orv_test::OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, VariableGroupBlock, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit));

TEST_P(VariableGroupBlock, IsReadInEitherLayout) {
  ForgedModel model = Loads(GetParam());
  TestGroup group;
  ASSERT_EQ(group.ReadFirst(model), 0);
  EXPECT_EQ(group.GetKey(), 32);
  EXPECT_STREQ(group.m_grpName, "LOADS");
  EXPECT_EQ(group.m_ncoo, 9);
  EXPECT_EQ(group.m_nvar, 2);
  EXPECT_THAT(std::vector<int>(group.m_pCnt, group.m_pCnt + 2), ElementsAre(3, 6));
  EXPECT_THAT(std::vector<int>(group.m_pOffs, group.m_pOffs + 2), ElementsAre(0, 3));
  EXPECT_STREQ(group.m_pKeys, "FORCE");
  EXPECT_STREQ(group.m_pKeys + 256, "MOMENT");
  EXPECT_TRUE(group.m_variables.empty());
}

TEST_P(VariableGroupBlock, IsReadByItsName) {
  ForgedModel model = Loads(GetParam());
  TestGroup group;
  std::strcpy(group.m_grpName, "LOADS");
  EXPECT_EQ(group.ReadBlock(model.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(group.m_nvar, 2);
  std::strcpy(group.m_grpName, "NOWHERE");
  group.SetBlkPath("");
  EXPECT_EQ(group.ReadBlock(model.path().c_str(), 0, ORV_READ_HEADER), 1);
}

TEST_P(VariableGroupBlock, IsCountedAndWalked) {
  ForgedModel model = Loads(GetParam());
  model.group("MORE", 1, {{"FORCE", 1, 0}});
  TestGroup group;
  int count = 0;
  EXPECT_EQ(group.ReadNumBlock(model.path().c_str(), 0, &count), 0);
  EXPECT_EQ(count, 2);
  std::vector<ORVVariableGrp*> groups;
  EXPECT_EQ(orvio::ReadVariableGroups(model.path().c_str(), groups), 0);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_STREQ(groups[0]->m_grpName, "LOADS");
  EXPECT_STREQ(groups[0]->m_pKeys + 256, "MOMENT");
  EXPECT_STREQ(groups[1]->m_grpName, "MORE");
  for (ORVVariableGrp* found : groups) {
    orvio::FreeBuffers(*found);
    delete found;
  }
}

class VariableGroupHeader : public orv_test::OrvTest, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(Rows, VariableGroupHeader, testing::Values("block", "etypvar", "ncoo", "nvar"));

TEST_P(VariableGroupHeader, NeedsEveryRow) {
  ForgedModel model = Loads();
  model.file().at(kSingle).drop(GetParam());
  TestGroup group;
  EXPECT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_HEADER), 1);
}

TEST_P(VariableGroupHeader, NeedsEveryRowToBeOfItsClass) {
  ForgedModel model = Loads();
  model.file().at(kSingle).retype(GetParam());
  TestGroup group;
  EXPECT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_HEADER), 1);
}

TEST_F(VariableGroupHeader, HasNoOtherNameThanEtypvar) {
  ForgedModel model = Loads();
  model.file().at(kSingle).drop("etypvar").text("varnam", "LOADS");
  TestGroup group;
  EXPECT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_HEADER), 1);
}

TEST_F(VariableGroupHeader, CutsANameOfFullWidthAt255) {
  ForgedModel model = Loads();
  model.file().at(kSingle).text("etypvar", std::string(256, 'n'));
  TestGroup group;
  ASSERT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(std::string(group.m_grpName), std::string(255, 'n'));
}

TEST_F(VariableGroupHeader, IsNotReadWithoutItsStage) {
  TestGroup group;
  EXPECT_EQ(group.ReadHeader(1, ORV_READ_DATA), 1);
  EXPECT_EQ(group.ReadData(1, ORV_READ_HEADER), 1);
  EXPECT_EQ(group.ReadData(1, ORV_READ_DATA), 1);  // nvar is 0
}

TEST_F(VariableGroupHeader, OfDataNeedsEveryDatasetThatHasABuffer) {
  for (const char* name : {"cnt", "offs", "varkey"}) {
    ForgedModel model = Loads();
    model.file().at(kSingle).drop(name);
    TestGroup group;
    EXPECT_EQ(group.ReadFirst(model), 1) << name;
    std::vector<ORVVariableGrp*> groups;
    EXPECT_EQ(orvio::ReadVariableGroups(model.path().c_str(), groups), 0);
    EXPECT_TRUE(groups.empty());
  }
}

TEST_F(VariableGroupHeader, OfDataReadsWhatHasABuffer) {
  ForgedModel model = Loads();
  ORVVariableGrp group;
  ASSERT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_HEADER), 0);
  int counts[2] = {};
  group.m_pCnt = counts;
  model.file().at(kSingle).drop("offs").drop("varkey");
  EXPECT_EQ(group.ReadBlockAt(model.path().c_str(), 0, 0, ORV_READ_DATA), 0);
  EXPECT_THAT(counts, ElementsAre(3, 6));
}

TEST_F(VariableGroupHeader, OfDataReadsIntegersOfEitherWidth) {
  ForgedModel model = Loads();
  model.file().at(kSingle).dataset<std::int64_t>("cnt", {2}, {4, 5});
  TestGroup group;
  ASSERT_EQ(group.ReadFirst(model), 0);
  EXPECT_THAT(std::vector<int>(group.m_pCnt, group.m_pCnt + 2), ElementsAre(4, 5));
}

TEST_F(VariableGroupHeader, OfDataWantsTheExtentsThatTheHeaderSays) {
  ForgedModel model = Loads();
  model.file().at(kSingle).dataset<std::int32_t>("offs", {3}, {0, 3, 9});
  TestGroup group;
  EXPECT_EQ(group.ReadFirst(model), 1);
}

TEST_F(VariableGroupHeader, OfImpossibleCountsIsLeftOut) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{INT_MAX}, std::int64_t{1} << 62}) {
    ForgedModel model = Loads();
    model.file().at(kSingle).integer("nvar", count);
    std::vector<ORVVariableGrp*> groups;
    EXPECT_EQ(orvio::ReadVariableGroups(model.path().c_str(), groups), 0) << count;
    EXPECT_TRUE(groups.empty()) << count;
  }
}

TEST_F(VariableGroupHeader, OfAFileWithoutGroupsGivesNone) {
  ForgedModel model;
  std::vector<ORVVariableGrp*> groups;
  EXPECT_EQ(orvio::ReadVariableGroups(model.path().c_str(), groups), 1);
  EXPECT_TRUE(groups.empty());
  EXPECT_EQ(orvio::ReadVariableGroups(TempPath("no_such_file.orv").c_str(), groups), 1);
}

// ---- Writing

class VariableGroupWrite : public orv_test::OrvTest {
 protected:
  VariableGroupWrite() {
    std::strcpy(group_.m_grpName, "LOADS");
    group_.m_nvar = 2;
    group_.m_ncoo = 9;
    group_.m_pCnt = counts_;
    group_.m_pOffs = offsets_;
    keys_.replace(0, 5, "FORCE");
    keys_.replace(256, 6, "MOMENT");
    group_.m_pKeys = keys_.data();
  }

  std::string Write(_ORVVersion version, int what = ORV_WRITE_HEADER | ORV_WRITE_DATA) {
    MaySilenceHdf5();
    const std::string path = TempPath("written.orv");
    ORVFiler filer(path.c_str());
    EXPECT_EQ(filer.InitForWriting(path.c_str(), version, ORV_FILE_CREATE, false), 0);
    EXPECT_EQ(filer.WriteBlock(&group_, 0, what), 0);
    return path;
  }

  int counts_[2] = {3, 6}, offsets_[2] = {0, 3};
  std::string keys_ = std::string(512, ' ');
  ORVVariableGrp group_;
};

TEST_F(VariableGroupWrite, WritesItsRowsAndDatasets) {
  const RawFile raw(Write(ORV_VERSION_2_2));
  EXPECT_THAT(raw.attributes(kSingle), ElementsAre("block", "blocktype", "etypvar", "ncoo", "nvar"));
  EXPECT_EQ(raw.attribute_int(kSingle, "block"), 32);
  EXPECT_EQ(raw.attribute_text(kSingle, "blocktype"), "variablegroup" + std::string(243, ' '));
  EXPECT_EQ(raw.attribute_text(kSingle, "etypvar"), "LOADS" + std::string(251, ' '));
  EXPECT_EQ(raw.attribute_int(kSingle, "ncoo"), 9);
  EXPECT_EQ(raw.attribute_int(kSingle, "nvar"), 2);
  EXPECT_EQ(raw.attribute_size(kSingle, "nvar"), 8U);
  const std::string at = std::string(kSingle) + "/";
  EXPECT_THAT(raw.values<std::int32_t>(at + "cnt"), ElementsAre(3, 6));
  EXPECT_THAT(raw.values<std::int32_t>(at + "offs"), ElementsAre(0, 3));
  EXPECT_THAT(raw.texts(at + "varkey"), ElementsAre("FORCE" + std::string(251, ' '), "MOMENT" + std::string(250, ' ')));
}

TEST_F(VariableGroupWrite, InTheFirstVersionsMakesItsPlaceAndTheSplitLayout) {
  const RawFile raw(Write(ORV_VERSION_1_1));
  EXPECT_EQ(raw.attribute_int(std::string(kGroup) + "/header", "nvar"), 2);
  EXPECT_TRUE(raw.exists(std::string(kGroup) + "/data/varkey"));
  EXPECT_FALSE(raw.exists(kSingle));
}

TEST_F(VariableGroupWrite, WritesTheHeaderAlone) {
  const RawFile raw(Write(ORV_VERSION_2_2, ORV_WRITE_HEADER));
  EXPECT_EQ(raw.attribute_int(kSingle, "nvar"), 2);
  EXPECT_THAT(raw.children(kSingle), testing::IsEmpty());
}

TEST_F(VariableGroupWrite, OfNoVariablesFails) {
  group_.m_nvar = 0;
  EXPECT_EQ(group_.WriteData(1), 1);
  group_.m_nvar = -1;
  EXPECT_EQ(group_.WriteData(1), 1);
}

TEST_F(VariableGroupWrite, WithoutANameOrAFileFails) {
  const std::string path = Write(ORV_VERSION_2_2);
  std::strcpy(group_.m_grpName, "");
  EXPECT_EQ(group_.WriteBlock(path.c_str(), 0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(group_.WriteBlock(nullptr, 0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(group_.WriteBlock(TempPath("no_such_file.orv").c_str(), 0, ORV_WRITE_HEADER), 1);
}

TEST_F(VariableGroupWrite, AppendsItsNameToAPath) {
  TestGroup group;
  std::strcpy(group.m_grpName, "LOADS");
  std::string path;
  EXPECT_EQ(group.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "LOADS");
  EXPECT_EQ(group.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "LOADS/LOADS");
}

}  // namespace
