// Construction and end of a filer, its configuration, and what it tells of its file. Writing is in
// filer_writing_test.cpp, versions of files in versions_test.cpp.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedFile;

class Filer : public orv_test::OrvTest {};
class FilerConfig : public orv_test::OrvTest {};
class FilerFacts : public orv_test::OrvTest {};

/// A filer whose container a test can fill.
class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ClearAll;
  using ORVFiler::ORVFiler;
  ORVContainer& data() { return *m_pData; }
  void DropContainer() { m_pData = nullptr; }
  ORVContainer* container() { return m_pData; }
};

/// Counts how often it dies.
class CountedVariable : public ORVVariable {
 public:
  explicit CountedVariable(int& deaths) : deaths_(deaths) {}
  ~CountedVariable() override { ++deaths_; }

 private:
  int& deaths_;
};

TEST_F(Filer, MadeWithNullHasAnEmptyPath) {
  ORVFiler filer(nullptr);
  ASSERT_NE(filer.GetFilePath(), nullptr);
  EXPECT_STREQ(filer.GetFilePath(), "");
}

TEST_F(Filer, KeepsThePathItWasMadeWithAndTouchesNoFile) {
  ORVFiler filer("no/such/folder/no_such_file.orv");
  EXPECT_STREQ(filer.GetFilePath(), "no/such/folder/no_such_file.orv");
}

TEST_F(Filer, WithoutAContainerAnswersNullAndFailure) {
  OpenFiler filer("a.orv");
  std::unique_ptr<ORVContainer> put_aside(filer.container());
  filer.DropContainer();
  ORVResult block(ORV_RESULT_ENTITY);
  EXPECT_EQ(filer.GetFilePath(), nullptr);
  EXPECT_EQ(filer.GetFileVersion(), nullptr);
  EXPECT_EQ(filer.GetMajorVersion(), 1);
  EXPECT_EQ(filer.GetAvailableDataset(), 0);
  EXPECT_EQ(filer.GetTitle(), nullptr);
  EXPECT_EQ(filer.GetSolverName(), nullptr);
  EXPECT_EQ(filer.GetSolverVersion(), nullptr);
  EXPECT_FALSE(filer.HasRootGroup("post"));
  EXPECT_EQ(filer.ReadBlock(&block, 0, ORV_READ_HEADER), 1);
}

TEST_F(Filer, AssignedFilersShareTheirContainerAndFreeItOnce) {
  int deaths = 0;
  {
    OpenFiler first("first.orv");
    OpenFiler second("second.orv");
    first.data().variables.push_back(new CountedVariable(deaths));
    second.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    first.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
    second = first;
    EXPECT_EQ(&first.data(), &second.data());
    EXPECT_STREQ(second.GetFilePath(), "first.orv");
    EXPECT_EQ(second.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 8);
    EXPECT_EQ(second.CheckConfig(ORV_CONFIG_ASSIGN_UNITS), 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST_F(Filer, CopyOutlivesTheFilerItWasMadeFrom) {
  int deaths = 0;
  auto first = std::make_unique<OpenFiler>("first.orv");
  first->data().variables.push_back(new CountedVariable(deaths));
  {
    OpenFiler copy(*first);
    first.reset();
    EXPECT_EQ(deaths, 0);
    EXPECT_STREQ(copy.GetFilePath(), "first.orv");
  }
  EXPECT_EQ(deaths, 1);
}

TEST_F(Filer, AssignedToItselfKeepsItsContainer) {
  OpenFiler filer("first.orv");
  const OpenFiler& same = filer;
  filer = same;
  EXPECT_STREQ(filer.GetFilePath(), "first.orv");
}

TEST_F(Filer, ClearAllFreesWhatWasReadAndKeepsThePath) {
  int deaths = 0;
  OpenFiler filer("first.orv");
  filer.data().variables.push_back(new CountedVariable(deaths));
  filer.data().single_results.push_back(new ORVResult(ORV_RESULT_ENTITY));
  filer.data().multi_results.push_back(new ORVResult(ORV_RESULT_MULTI_ENTITY));
  filer.ClearAll();
  EXPECT_EQ(deaths, 1);
  EXPECT_TRUE(filer.data().variables.empty());
  EXPECT_TRUE(filer.data().single_results.empty());
  EXPECT_TRUE(filer.data().multi_results.empty());
  EXPECT_STREQ(filer.GetFilePath(), "first.orv");
}

TEST_F(FilerConfig, IsEmptyAtFirst) {
  ORVFiler filer("a.orv");
  for (int bit = 0; bit < 32; ++bit) EXPECT_EQ(filer.CheckConfig(static_cast<_ORVFilerConfig>(bit)), 0) << bit;
}

TEST_F(FilerConfig, CheckAnswersTheValueOfTheBit) {
  ORVFiler filer("a.orv");
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 8);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_CONSTANT), 0);
}

TEST_F(FilerConfig, OnlyTheLowFiveBitsOfTheNumberCount) {
  ORVFiler filer("a.orv");
  filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
  EXPECT_EQ(filer.CheckConfig(static_cast<_ORVFilerConfig>(32)), 1);
}

TEST_F(FilerConfig, ClearTakesOneBitAway) {
  ORVFiler filer("a.orv");
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  filer.SetConfig(ORV_CONFIG_SKIP_SINGLESTATE);
  filer.ClearConfig(ORV_CONFIG_SKIP_MULTISTATE);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 0);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_SINGLESTATE), 2);
}

TEST_F(FilerConfig, SingleStateDataAreSkippedByEitherOfTwoBits) {
  for (const _ORVFilerConfig bit : {ORV_CONFIG_SKIP_SINGLESTATE, ORV_CONFIG_SKIP_CONSTANT}) {
    ORVFiler filer("a.orv");
    EXPECT_FALSE(filer.IsConfigToSkipSingleStateData());
    filer.SetConfig(bit);
    EXPECT_TRUE(filer.IsConfigToSkipSingleStateData());
    EXPECT_FALSE(filer.IsConfigToSkipMultiStateData());
  }
}

TEST_F(FilerConfig, MultiStateDataAreSkippedByTheirBit) {
  ORVFiler filer("a.orv");
  EXPECT_FALSE(filer.IsConfigToSkipMultiStateData());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  EXPECT_TRUE(filer.IsConfigToSkipMultiStateData());
  EXPECT_FALSE(filer.IsConfigToSkipSingleStateData());
}

TEST_F(FilerFacts, VersionComesFromTheFile) {
  ForgedFile file;
  file.header(2, 1, 3);
  ORVFiler filer(file.path().c_str());
  const ORVFileVersion* version = filer.GetFileVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->m_major, 2);
  EXPECT_EQ(version->m_minor, 1);
  EXPECT_EQ(version->m_patch, 3);
  EXPECT_EQ(filer.GetMajorVersion(), 2);
  EXPECT_TRUE(filer.IsMajorVersion(2));
  EXPECT_FALSE(filer.IsMajorVersion(1));
}

TEST_F(FilerFacts, VersionIsReadOnce) {
  ForgedFile file;
  file.header(1, 2, 0);
  ORVFiler filer(file.path().c_str());
  const ORVFileVersion* version = filer.GetFileVersion();
  ASSERT_EQ(version->m_minor, 2);
  file.header(2, 2, 0).path();
  EXPECT_EQ(filer.GetFileVersion(), version);
  EXPECT_EQ(version->m_major, 1);
}

TEST_F(FilerFacts, AFileThatCannotBeReadHasVersionZeroForTheLifeOfTheFiler) {
  ORVFiler filer(TempPath("missing.orv").c_str());
  const ORVFileVersion* version = filer.GetFileVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->m_major, 0);
  EXPECT_EQ(version->m_minor, 0);
  EXPECT_EQ(version->m_patch, 0);
  EXPECT_EQ(filer.GetMajorVersion(), 0);
}

TEST_F(FilerFacts, AFilerWithoutAPathHasVersionZero) {
  ORVFiler filer(nullptr);
  const ORVFileVersion* version = filer.GetFileVersion();
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version->m_major, 0);
  EXPECT_EQ(version->m_minor, 0);
  EXPECT_EQ(version->m_patch, 0);
}

TEST_F(FilerFacts, AVersionThatCouldNotBeReadIsNotAskedForAgain) {
  ORVFiler filer(TempPath("later.orv").c_str());
  ASSERT_EQ(filer.GetMajorVersion(), 0);
  std::filesystem::copy_file(ForgedFile().header(2, 1, 0).path(), TempPath("later.orv"));
  EXPECT_EQ(filer.GetMajorVersion(), 0);
  EXPECT_EQ(ORVFiler(TempPath("later.orv").c_str()).GetMajorVersion(), 2);
}

TEST_F(FilerFacts, RootGroupsAreFoundByName) {
  ForgedFile file;
  file.group("/mmc").at("/").dataset<float>("values", {1}, {1});
  ORVFiler filer(file.path().c_str());
  EXPECT_TRUE(filer.HasRootGroup("post"));
  EXPECT_TRUE(filer.HasRootGroup("mmc"));
  EXPECT_FALSE(filer.HasRootGroup("CATCSM"));
  EXPECT_FALSE(filer.HasRootGroup("values"));
  EXPECT_FALSE(filer.HasRootGroup(nullptr));
  ORVFiler missing(TempPath("missing.orv").c_str());
  EXPECT_FALSE(missing.HasRootGroup("post"));
}

TEST_F(FilerFacts, AvailabilityIsAPureTestOfTheMask) {
  ORVFiler filer("missing.orv");
  EXPECT_FALSE(filer.IsDatasetAvailable(0));
  EXPECT_TRUE(filer.IsDatasetAvailable(1));
  EXPECT_TRUE(filer.IsDatasetAvailable(2));
  EXPECT_TRUE(filer.IsDatasetAvailable(3));
  EXPECT_FALSE(filer.IsDatasetAvailable(4));
}

TEST_F(FilerFacts, AvailableDataNeedVariables) {
  OpenFiler filer("a.orv");
  filer.data().single_results.push_back(new ORVResult(ORV_RESULT_ENTITY));
  EXPECT_EQ(filer.GetAvailableDataset(), 0);
  filer.data().variables.push_back(new ORVVariable);
  EXPECT_EQ(filer.GetAvailableDataset(), 1);
  filer.data().multi_results.push_back(new ORVResult(ORV_RESULT_MULTI_ENTITY));
  EXPECT_EQ(filer.GetAvailableDataset(), 3);
}

TEST_F(FilerFacts, AvailableDataOfOneStateMayBePropertiesAlone) {
  OpenFiler filer("a.orv");
  filer.data().variables.push_back(new ORVVariable);
  EXPECT_EQ(filer.GetAvailableDataset(), 0);
  filer.data().multi_results.push_back(new ORVResult(ORV_RESULT_MULTI_ENTITY));
  EXPECT_EQ(filer.GetAvailableDataset(), 2);
  filer.data().properties.push_back(new ORVProperties);
  EXPECT_EQ(filer.GetAvailableDataset(), 3);
}

TEST_F(FilerFacts, ReadBlockForwardsToTheBlockWithThePath) {
  ForgedFile file;
  file.at("/post/singlestate/state000000000001/entityresults/NODE/TEMP/orvblock")
      .integer("block", 1000)
      .text("etyp", "NODE")
      .text("etypvar", "TEMP")
      .integer("nent", 7)
      .integer("ncoo", 1);
  ORVFiler filer(file.path().c_str());
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "TEMP");
  EXPECT_EQ(filer.ReadBlock(&result, 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(result.m_nent, 7);
  EXPECT_EQ(filer.ReadBlock(nullptr, 1, ORV_READ_HEADER), 1);
}

}  // namespace
