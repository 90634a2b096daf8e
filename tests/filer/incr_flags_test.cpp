// What a filer says of incremental data: whether a file has any, and in which states a block is incremental.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "entity/incr_forge.h"
#include "filer/container.h"
#include "filer/solver_name.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- The file

TEST(SolverNames, AreDividedAtColonsWithEmptyPartsKept) {
  EXPECT_THAT(orvio::SolverNameParts("forge"), ElementsAre("forge"));
  EXPECT_THAT(orvio::SolverNameParts("A::FPM"), ElementsAre("A", "", "FPM"));
  EXPECT_THAT(orvio::SolverNameParts(":A:"), ElementsAre("", "A", ""));
  EXPECT_THAT(orvio::SolverNameParts(""), ElementsAre(""));
}

struct NamedSolver {
  const char* name;
  bool is_incremental;
};

class IncrementalFile : public OrvTest, public ::testing::WithParamInterface<NamedSolver> {};

INSTANTIATE_TEST_SUITE_P(Names, IncrementalFile,
                         ::testing::Values(NamedSolver{"INC", true}, NamedSolver{"inc", true},
                                           NamedSolver{"Forge:iNc", true}, NamedSolver{"A:B:INC:C", true},
                                           NamedSolver{"INC:B", true}, NamedSolver{"A::INC", true},
                                           NamedSolver{"Forge", false}, NamedSolver{"", false},
                                           NamedSolver{"A:INCREMENT", false}, NamedSolver{"A:XINC", false},
                                           NamedSolver{"A INC", false}, NamedSolver{"A: INC", false}));

TEST_P(IncrementalFile, HasTheWordAsAPartOfItsSolversName) {
  for (const auto layout : {ForgedModel::kSingle, ForgedModel::kSplit}) {
    ForgedModel model(layout);
    model.system();
    model.file().at(model.Part("/post/constant/system", "header")).text("solver_name", GetParam().name);
    ORVFiler filer(model.path().c_str());
    ASSERT_EQ(filer.ReadSystemBlock(), 0);
    EXPECT_EQ(filer.HasIncremetalData(), GetParam().is_incremental) << GetParam().name;
  }
}

TEST_F(IncrementalFile, HasNoWordsBehindTheFieldOfItsSolversName) {
  ForgedModel model(ForgedModel::kSingle);
  model.system();
  ORVFiler filer(model.path().c_str());
  ASSERT_EQ(filer.ReadSystemBlock(), 0);
  std::memset(filer.GetSystem()->m_solverName, 'A', sizeof filer.GetSystem()->m_solverName);
  std::strcpy(filer.GetSystem()->m_solverVers, ":INC");
  EXPECT_FALSE(filer.HasIncremetalData());
}

TEST_F(IncrementalFile, IsNoneBeforeItsSolverWasRead) { EXPECT_FALSE(ORVFiler("none").HasIncremetalData()); }

// ---- Blocks

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::GetIncrStateInfo;
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadIncrIndex;
  std::vector<ORVTagIncrIndex*>& tags() { return m_pData->m_tagIncrIndexes; }
};

class IncrFlags : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  /// Whole in the first state, not there in the second, incremental in the third.
  std::string AddBlock(const std::string& group, int key) {
    AddIncr(file_, StateGroup(1) + group, GetParam(), {1}, kNoFlag, key);
    file_.group(StateGroup(2));
    AddIncr(file_, StateGroup(3) + group, GetParam(), {3}, 1, key);
    return KnownPath(StateGroup(1) + group, GetParam());
  }
  ORVResult Result(int kind) {
    ORVResult result(kind);
    result.SetEntityAndVarName("Node", "Heat");
    const char* type_group = result.IsElementResult() ? "/elementresults/Node/Heat" : "/entityresults/Node/Heat";
    result.SetBlkPath(AddBlock(type_group, kind));
    return result;
  }
  ORVEntAttribute Nodes() {
    ORVEntAttribute nodes;
    std::strcpy(nodes.m_etyp, "NODE");
    nodes.SetBlkPath(AddBlock("/attributes/NODE", 200));
    return nodes;
  }
  OpenFiler Filer() { return OpenFiler(file_.path().c_str()); }

  ForgedFile file_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrFlags, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrFlags, OfAResultAreThoseOfItsStates) {
  for (const int kind : {1000, 1001, 1100, 1101}) {
    ORVResult result = Result(kind);
    OpenFiler filer = Filer();
    EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 1)) << kind;
    EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 2)) << kind;
    EXPECT_TRUE(filer.IsResultIncrementalAtGivenState(result, 3)) << kind;
    EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 4)) << kind;
    ASSERT_EQ(filer.tags().size(), 1U);
    EXPECT_EQ(filer.tags()[0]->m_tag, "Node_Heat_0");
    std::vector<int> states = {9}, flags = {9};
    EXPECT_EQ(filer.GetIncrStateInfo(result, states, flags), 0);
    EXPECT_THAT(states, ElementsAre(1, 3));
    EXPECT_THAT(flags, ElementsAre(0, 1));
  }
}

TEST_P(IncrFlags, OfResultsOfOtherKindsAreNotSet) {
  ORVResult result = Result(1000);
  OpenFiler filer = Filer();
  std::vector<int> states = {9}, flags = {8};
  for (const int kind : {1050, 1051, 1150, 1151, 500, -1}) {
    result.SetBlockType(kind);
    EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 3)) << kind;
    EXPECT_EQ(filer.GetIncrStateInfo(result, states, flags), 1) << kind;
  }
  result.SetBlockType(1000);
  result.SetConstantBlk(true);
  EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 3));
  EXPECT_EQ(filer.GetIncrStateInfo(result, states, flags), 1);
  EXPECT_THAT(states, ElementsAre(9));
  EXPECT_THAT(flags, ElementsAre(8));
  EXPECT_THAT(filer.tags(), IsEmpty());
}

TEST_P(IncrFlags, OfAResultThatCannotBeReadAreNotSet) {
  ORVResult result = Result(1000);
  result.SetBlkPath(KnownPath(StateGroup(1) + "/entityresults/Node/Speed", GetParam()));
  OpenFiler filer = Filer();
  std::vector<int> states, flags;
  EXPECT_FALSE(filer.IsResultIncrementalAtGivenState(result, 3));
  EXPECT_EQ(filer.GetIncrStateInfo(result, states, flags), 1);
  EXPECT_THAT(filer.tags(), IsEmpty());
}

TEST_P(IncrFlags, OfAnAttributeAreThoseOfItsStates) {
  ORVEntAttribute nodes = Nodes();
  OpenFiler filer = Filer();
  EXPECT_FALSE(filer.IsAttributeIncrementalAtGivenState(nodes, 1));
  EXPECT_FALSE(filer.IsAttributeIncrementalAtGivenState(nodes, 2));
  EXPECT_TRUE(filer.IsAttributeIncrementalAtGivenState(nodes, 3));
  ASSERT_EQ(filer.tags().size(), 1U);
  EXPECT_EQ(filer.tags()[0]->m_tag, "EntityAttribute_NODE");
}

TEST_P(IncrFlags, OfAnAttributeOutsideTheStatesAreNotSet) {
  ORVEntAttribute nodes = Nodes();
  OpenFiler filer = Filer();
  for (const char* path : {"/post/constant/attributes/NODE", "/post/multistate/attributes/NODE", ""}) {
    nodes.SetBlkPath(path);
    EXPECT_FALSE(filer.IsAttributeIncrementalAtGivenState(nodes, 3)) << path;
  }
  nodes.SetBlkPath(KnownPath(StateGroup(1) + "/attributes/SHELL", GetParam()));
  EXPECT_FALSE(filer.IsAttributeIncrementalAtGivenState(nodes, 3));
  EXPECT_THAT(filer.tags(), IsEmpty());
}

TEST_P(IncrFlags, MakeABlockIncrementalIfAnyStateHasOne) {
  ORVResult result = Result(1000);
  ORVEntAttribute nodes = Nodes();
  OpenFiler filer = Filer();
  EXPECT_TRUE(filer.IsIncrBlock(&result));
  EXPECT_TRUE(filer.IsIncrBlock(&nodes));
  EXPECT_THAT(filer.tags(), IsEmpty());
  file_.at(PartPaths(StateGroup(3) + "/attributes/NODE", GetParam()).header).integer32("indexic", 0);
  file_.path();
  EXPECT_FALSE(filer.IsIncrBlock(&nodes));
}

TEST_P(IncrFlags, MakeNoBlockIncrementalThatIsOutsideTheStatesOrDamaged) {
  ORVResult result = Result(1000);
  OpenFiler filer = Filer();
  EXPECT_FALSE(filer.IsIncrBlock(nullptr));
  EXPECT_FALSE(OpenFiler(TempPath("none").c_str()).IsIncrBlock(&result));
  const std::string path = result.GetBlkPath();
  result.SetBlkPath("/post/constant/entityresults/Node/Heat");
  EXPECT_FALSE(filer.IsIncrBlock(&result));
  result.SetBlkPath(path);
  IndexOf(file_, StateGroup(3) + "/entityresults/Node/Heat", GetParam()).drop("indexident");
  file_.path();
  EXPECT_FALSE(filer.IsIncrBlock(&result));
}

TEST_P(IncrFlags, AreReadIntoAnIndexOfTheHost) {
  ORVResult result = Result(1000);
  OpenFiler filer = Filer();
  ORVIncrIndex index;
  EXPECT_EQ(filer.ReadIncrIndex(result, index, 2), 0);
  EXPECT_EQ(index.GetNumState(), 2);
  EXPECT_TRUE(index.IsIncrementalState(3));
  index.ClearAll();
  index.Initialize();
  IndexOf(file_, StateGroup(3) + "/entityresults/Node/Heat", GetParam()).drop("indexident");
  file_.path();
  EXPECT_EQ(filer.ReadIncrIndex(result, index, 2), 1);  // the row of the first state is given up
  EXPECT_EQ(index.GetIndexIds(), nullptr);
  EXPECT_EQ(index.GetNumState(), 0);
  result.SetBlkPath("/post/constant/entityresults/Node/Heat");
  EXPECT_EQ(filer.ReadIncrIndex(result, index, 2), 1);
}

}  // namespace
}  // namespace orv_test
