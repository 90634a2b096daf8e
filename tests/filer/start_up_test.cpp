// The start-up of a filer: what it reads in which order, what it answers, what it tells. The handles that it makes are
// in tests/variable, the blocks that it reads in the folders of their kinds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "filer/container.h"
#include "filer/process_state.h"
#include "filer/start_up.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "unit/system_read.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;
using orv_test::Message;
using orv_test::Messages;
using testing::ElementsAre;
using testing::IsEmpty;

class StartUp : public orv_test::OrvTest {};

ForgedValues Result(const std::string& variable, int nent, int ncoo = 1) {
  ForgedValues result;
  result.variable = variable;
  result.nent = nent;
  result.ncoo = ncoo;
  return result;
}

ForgedValues Multi(const std::string& variable, int nstate) {
  ForgedValues result = Result(variable, 1);
  result.kind = 1050;
  result.nstate = nstate;
  return result;
}

ForgedValues Layered(const std::string& type, const std::string& variable, int nele, int numl) {
  ForgedValues result = Result(variable, nele);
  result.kind = 1100;
  result.etyp = type;
  result.numl = numl;
  return result;
}

/// Everything that a good file of the later versions has.
ForgedModel GoodFile() {
  ForgedModel model;
  model.variable({.name = "TIME", .key = "TIME"}).variable({.name = "Speed", .key = "Speed"});
  model.variable(
      {.name = "COORDINATE", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.group("INDEX", 1, {{"TIME", 1, 0}}).group("Speed", 1, {{"Speed", 1, 0}});
  model.group("COORDINATE", 3, {{"COORDINATE", 3, 0}});
  model.index_types_of_group("INDEX", 1).system();
  model.in_constant(Result("COORDINATE", 4, 3));
  model.in_state(1, Result("Speed", 4)).in_state(1, Layered("SHELL", "Speed", 2, 5)).in_state(2, Result("Speed", 3));
  model.in_multistate(Multi("Speed", 2));
  return model;
}

std::vector<std::string> NamesOf(const std::vector<ORVResult*>& results) {
  std::vector<std::string> names;
  for (const ORVResult* result : results) names.push_back(std::string(result->m_etyp) + "/" + result->m_etypvar);
  return names;
}

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ClearAll;
  using ORVFiler::InitProperityBlockReading;
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadResultBlks;
  using ORVFiler::ReadSystemBlk;
  ORVContainer& data() { return *m_pData; }
};

TEST_F(StartUp, OfAGoodFileReadsEverythingAndTellsNothing) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 0;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_EQ(filer.GetVariables().size(), 3U);
  EXPECT_EQ(filer.GetVariableGroups().size(), 3U);
  EXPECT_THAT(NamesOf(filer.GetResultList(1)), ElementsAre("NODE/COORDINATE", "NODE/Speed", "SHELL/Speed"));
  EXPECT_THAT(NamesOf(filer.GetResultList(0)), ElementsAre("NODE/Speed"));
  ASSERT_NE(filer.GetIndexTypes(), nullptr);
  EXPECT_STREQ(filer.GetIndexTypes()->m_pEtypindex, "TIME");
  EXPECT_STREQ(filer.GetTitle(), "A plate");
  EXPECT_STREQ(filer.GetSolverName(), "forge");
  EXPECT_STREQ(filer.GetSolverVersion(), "1.2");
  EXPECT_EQ(filer.GetAvailableDataset(), 3);
  EXPECT_EQ(filer.GetNumExtVariables(), 5U);
  EXPECT_EQ(next_id, 6);
}

TEST_F(StartUp, OfAGoodFileOfTheFirstVersionsTellsNothing) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED", .labels = {"v"}}).index_types({"TIME", "STEP"}).system();
  model.in_state(1, Result("SPEED", 4)).in_multistate(Multi("SPEED", 1));
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_STREQ(filer.GetIndexTypes()->m_pEtypindex + 256, "STEP");
  EXPECT_STREQ(filer.GetTitle(), "A plate");
  EXPECT_EQ(filer.GetNumExtVariables(), 1U);
}

TEST_F(StartUp, ReadsACounterBelowOneAsOne) {
  for (const int counter : {0, -7}) {
    ForgedModel model = GoodFile();
    ORVFiler filer(model.path().c_str());
    int next_id = counter;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    EXPECT_EQ(filer.GetExtVariables().front()->GetIID(), 1);
  }
}

TEST_F(StartUp, ReadsACounterBelowOneAsOneEvenWhereItFails) {
  for (const int counter : {0, -7}) {
    ForgedModel model;
    ORVFiler filer(model.path().c_str());
    int next_id = counter;
    EXPECT_EQ(filer.InitReader(next_id), 1);
    EXPECT_EQ(next_id, 1);
  }
}

TEST_F(StartUp, OfAFileOfAHigherVersionThanTheReaderIsLikeThatOfAnyOther) {
  ForgedModel model = GoodFile();
  model.file().header(31, 4, 0);
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_EQ(filer.GetMajorVersion(), 31);
  EXPECT_EQ(filer.GetVariables().size(), 3U);
  EXPECT_THAT(NamesOf(filer.GetResultList(1)), ElementsAre("NODE/COORDINATE", "NODE/Speed", "SHELL/Speed"));
  EXPECT_THAT(NamesOf(filer.GetResultList(0)), ElementsAre("NODE/Speed"));
  EXPECT_STREQ(filer.GetTitle(), "A plate");
}

TEST_F(StartUp, OfAPathWithBackslashesReadsTheFileWithSlashes) {
  ForgedModel model = GoodFile();
  std::string path = model.path();
  std::ranges::replace(path, '/', '\\');
  ORVFiler filer(path.c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetFilePath(), path);
  EXPECT_EQ(filer.GetMajorVersion(), 2);
  EXPECT_TRUE(filer.HasRootGroup("post"));
  EXPECT_EQ(filer.GetVariables().size(), 3U);
  EXPECT_EQ(filer.GetResultList(1).size(), 3U);
  EXPECT_EQ(filer.GetResultList(0).size(), 1U);
}

TEST_F(StartUp, OfAFileWithoutVariablesFailsWithItsMessage) {
  ForgedModel model;
  model.group("G", 1, {{"S", 1, 0}}).in_state(1, Result("Speed", 4));
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_THAT(messages.all(), ElementsAre(Message(0, "Unable to read variable blocks(/post/constant/variable)")));
  EXPECT_TRUE(filer.GetResultList(1).empty());
  EXPECT_EQ(filer.GetAvailableDataset(), 0);
}

TEST_F(StartUp, OfAMissingFileOrAnEmptyPathFailsWithTheMessageOfAFileWithoutVariables) {
  for (const std::string& path : {TempPath("no_such_file.orv"), std::string()}) {
    ORVFiler filer(path.c_str());
    Messages messages;
    int next_id = 1;
    EXPECT_EQ(filer.InitReader(next_id), 1);
    EXPECT_THAT(messages.all(), ElementsAre(Message(0, "Unable to read variable blocks(/post/constant/variable)")));
  }
}

TEST_F(StartUp, OfAFileWithoutAHandlerForMessagesIsSilent) {
  ForgedModel model;
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);  // the fixture looks for output
}

TEST_F(StartUp, OfAFileWithoutResultsFails) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"});
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_EQ(filer.GetIndexTypes(), nullptr);
}

TEST_F(StartUp, OfAFileWithoutResultsSucceedsWithASecuredNodeProperty) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).properties("/post/constant", "secured_Node", "COORDINATE", 2);
  OpenFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 0);
  EXPECT_TRUE(filer.data().has_secured_node);
  EXPECT_EQ(filer.GetAvailableDataset(), 1);
}

TEST_F(StartUp, OfAFileWithOtherPropertiesAloneFails) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).properties("/post/constant", "NODE", "COORDINATE", 2);
  OpenFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_EQ(filer.data().properties.size(), 1U);
}

TEST_F(StartUp, OfAFileWithASecuredNodeAndNoResultsReadsNeitherUnitsNorIndexTypes) {
  ForgedModel model;
  model.variable({.name = "TIME", .key = "TIME"}).group("INDEX", 1, {{"TIME", 1, 0}});
  model.index_types_of_group("INDEX", 1).system().properties("/post/constant", "SECURED_NODE", "COORDINATE", 2);
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetSystem(), nullptr);
  EXPECT_EQ(filer.GetIndexTypes(), nullptr);
}

TEST_F(StartUp, OfAFileBeforeVersion22LooksForNoPropertiesUnlessForced) {
  ForgedModel model;
  model.file().header(2, 1, 0);
  model.variable({.name = "Speed", .key = "S"}).properties("/post/constant", "SECURED_NODE", "COORDINATE", 2);
  OpenFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_TRUE(filer.data().properties.empty());
  filer.InitProperityBlockReading(next_id, true);
  EXPECT_EQ(filer.data().properties.size(), 1U);
  EXPECT_TRUE(filer.data().has_secured_node);
}

TEST_F(StartUp, ReadsPropertiesInSilenceAndGivesTheCallbackBack) {
  ForgedModel model = GoodFile();
  model.properties("/post/constant", "NODE", "Unknown", 2)
      .properties("/post/singlestate/state000000000001", "NODE", "Speed", 2);
  OpenFiler filer(model.path().c_str());
  Messages messages;
  const ORVMessageCallBack before = ORVFiler::_m_pMessageFuc;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());  // although one has no variable
  EXPECT_EQ(ORVFiler::_m_pMessageFuc, before);
  ASSERT_EQ(filer.data().properties.size(), 2U);
  EXPECT_EQ(filer.data().properties[0]->m_variableGrp, nullptr);
  EXPECT_EQ(filer.data().properties[1]->m_variableGrp, filer.GetVariableGroup("Speed"));
}

// ---- Configuration

struct SkipCase {
  std::vector<_ORVFilerConfig> skip;
  std::vector<std::string> single, multi;
};
class StartUpSkipping : public orv_test::OrvTest, public testing::WithParamInterface<SkipCase> {};

TEST_P(StartUpSkipping, LeavesOutWhatTheConfigurationSays) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  for (const auto config : GetParam().skip) filer.SetConfig(config);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(NamesOf(filer.GetResultList(1)), GetParam().single);
  EXPECT_EQ(NamesOf(filer.GetResultList(0)), GetParam().multi);
}

INSTANTIATE_TEST_SUITE_P(
    Bits, StartUpSkipping,
    testing::Values(SkipCase{{ORV_CONFIG_SKIP_SINGLESTATE}, {"NODE/COORDINATE"}, {"NODE/Speed"}},
                    SkipCase{{ORV_CONFIG_SKIP_CONSTANT}, {}, {"NODE/Speed"}},
                    SkipCase{{ORV_CONFIG_SKIP_MULTISTATE}, {"NODE/COORDINATE", "NODE/Speed", "SHELL/Speed"}, {}},
                    SkipCase{{ORV_CONFIG_SKIP_SINGLESTATE, ORV_CONFIG_SKIP_MULTISTATE}, {"NODE/COORDINATE"}, {}}));

TEST_F(StartUp, ReadsPropertiesOfBothSectionsWhateverResultsAreSkipped) {
  for (const auto config : {ORV_CONFIG_SKIP_SINGLESTATE, ORV_CONFIG_SKIP_CONSTANT, ORV_CONFIG_SKIP_MULTISTATE}) {
    ForgedModel model = GoodFile();
    model.properties("/post/constant", "NODE", "Speed", 2)
        .properties("/post/singlestate/state000000000001", "PART", "Speed", 2);
    OpenFiler filer(model.path().c_str());
    filer.SetConfig(config);
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    ASSERT_EQ(filer.data().properties.size(), 2U) << config;
    EXPECT_STREQ(filer.data().properties[0]->m_etyp, "NODE") << config;
    EXPECT_STREQ(filer.data().properties[1]->m_etyp, "PART") << config;
  }
}

TEST_F(StartUp, OfAFileWithoutResultsAnswers18WhereSomeWereToBeSkipped) {
  for (const auto config : {ORV_CONFIG_SKIP_SINGLESTATE, ORV_CONFIG_SKIP_CONSTANT}) {
    ForgedModel model;
    model.variable({.name = "Speed", .key = "S"}).properties("/post/constant", "SECURED_NODE", "COORDINATE", 2);
    OpenFiler filer(model.path().c_str());
    filer.SetConfig(config);
    int next_id = 1;
    EXPECT_EQ(filer.InitReader(next_id), 18);
    EXPECT_TRUE(filer.data().properties.empty());
  }
}

TEST_F(StartUp, OfAFileWithoutResultsAnswers1WhereMultiStateOnesWereToBeSkipped) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"});
  ORVFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
}

TEST_F(StartUp, MakesUnitsOnlyWhereTheConfigurationAsksForThem) {
  for (const bool asked : {false, true}) {
    ForgedModel model = GoodFile();
    ORVFiler filer(model.path().c_str());
    if (asked) filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    std::vector<ORVUnit*> base, derived;
    filer.GetUnitList(base, derived);
    EXPECT_EQ(base.size(), asked ? 2U : 0U);
    EXPECT_EQ(derived.size(), asked ? 1U : 0U);
  }
}

// ---- Results

TEST_F(StartUp, MarksConstantBlocks) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_TRUE(filer.GetResultList(1)[0]->IsConstantBlk());
  EXPECT_FALSE(filer.GetResultList(1)[1]->IsConstantBlk());
  EXPECT_FALSE(filer.GetResultList(0)[0]->IsConstantBlk());
}

TEST_F(StartUp, FindsConstantBlocksOfElementsBetweenThoseOfEntitiesAndThoseOfTheFirstState) {
  ForgedModel model;
  model.variable({.name = "V", .key = "V"});
  model.in_constant(Layered("SHELL", "V", 2, 1)).in_constant(Result("V", 4)).in_state(1, Layered("SOLID", "V", 3, 1));
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  const std::vector<ORVResult*>& results = filer.GetResultList(1);
  ASSERT_THAT(NamesOf(results), ElementsAre("NODE/V", "SHELL/V", "SOLID/V"));
  EXPECT_TRUE(results[0]->IsConstantBlk());
  EXPECT_TRUE(results[1]->IsConstantBlk());
  EXPECT_FALSE(results[2]->IsConstantBlk());
  EXPECT_EQ(results[1]->GetKey(), 1100);
}

TEST_F(StartUp, TakesTheBlocksOfTheFirstStateForAllStates) {
  ForgedModel model = GoodFile();
  model.in_state(2, Result("Heat", 9));
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(NamesOf(filer.GetResultList(1)), ElementsAre("NODE/COORDINATE", "NODE/Speed", "SHELL/Speed"));
  EXPECT_EQ(filer.GetResultList(1)[1]->GetBlkPath(),
            "/post/singlestate/state000000000001/entityresults/NODE/Speed/orvblock");
}

TEST_F(StartUp, FindsAllEightKindsButThoseWhoseHeaderIsRefused) {
  ForgedModel model;
  model.variable({.name = "V", .key = "V"});
  for (const int kind : {1000, 1001, 1100, 1101}) {
    ForgedValues result = Result("V", 1);
    result.kind = kind;
    result.etyp = "T" + std::to_string(kind);
    result.numl = 2;
    model.in_state(1, result);
  }
  for (const int kind : {1050, 1051, 1150, 1151}) {
    ForgedValues result = Multi("V", 2);
    result.kind = kind;
    result.etyp = "T" + std::to_string(kind);
    result.numl = 2;
    model.in_multistate(result);
  }
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(NamesOf(filer.GetResultList(1)), ElementsAre("T1000/V", "T1001/V", "T1100/V", "T1101/V"));
  EXPECT_THAT(NamesOf(filer.GetResultList(0)), ElementsAre("T1050/V", "T1051/V"));
}

TEST_F(StartUp, TellsOfABlockWithoutComponentsAndLeavesItOut) {
  ForgedModel model = GoodFile();
  model.in_state(1, Result("Broken", 4, 0));
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(
      messages.all(),
      ElementsAre(Message(1, "Invalid number of components in \"NODE->Broken\" result block (ncoo)"),
                  Message(1, "\tPath :-/post/singlestate/state000000000001/entityresults/NODE/Broken/orvblock")));
  EXPECT_EQ(filer.GetResultList(1).size(), 3U);
}

TEST_F(StartUp, OfABlockWithoutComponentsWithALongPathDoesNotTellThePath) {
  ForgedModel model = GoodFile();
  ForgedValues broken = Result(std::string(200, 'v'), 4, -1);
  broken.etyp = std::string(200, 't');
  broken.group_name = std::string(200, 'g');
  model.in_state(1, broken);
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), ElementsAre(Message(1, "Invalid number of components in \"" + std::string(200, 't') +
                                                         "->" + std::string(200, 'v') + "\" result block (ncoo)")));
}

TEST_F(StartUp, LeavesOutBlocksWithoutEntitiesSilently) {
  ForgedModel model = GoodFile();
  model.in_state(1, Result("Empty", 0)).in_state(1, Result("Negative", -3));
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_EQ(filer.GetResultList(1).size(), 3U);
}

TEST_F(StartUp, GoesOnPastABlockWhoseHeaderCannotBeRead) {
  ForgedModel model = GoodFile();
  model.in_state(1, Result("Aaa", 4)).file().drop("ncoo");
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(NamesOf(filer.GetResultList(1)), ElementsAre("NODE/COORDINATE", "NODE/Speed", "SHELL/Speed"));
}

TEST_F(StartUp, GivesABlockNothingOfTheBlockBeforeIt) {
  ForgedModel model = GoodFile();
  ForgedValues zoned = Result("Aaa", 4);
  zoned.zoneid = 8;
  model.in_state(1, zoned).in_state(1, Result("Bbb", 4)).file().drop("zoneid").drop("nindex");
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetResultList(1)[1]->m_zoneid, 8);
  EXPECT_EQ(filer.GetResultList(1)[2]->m_zoneid, 0);
}

TEST_F(StartUp, KeepsTheNameOfTheGroupOfABlockAsTheWalkFoundIt) {
  ForgedModel model = GoodFile();
  ForgedValues deeper = Result("Aaa", 4);
  deeper.group_name = "Variant";
  model.in_state(1, deeper);
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_STREQ(filer.GetResultList(1)[1]->m_subBlockName, "Variant");
  EXPECT_STREQ(filer.GetResultList(1)[2]->m_subBlockName, "Speed");
}

TEST_F(StartUp, GivesResultsTheNumbersOfTheirEntityTypes) {
  ORVCheckAppendToEntityMap(54321, 77, "START_UP_TYPE");
  ForgedModel model = GoodFile();
  ForgedValues typed = Result("Speed", 4);
  typed.etyp = "start_up_type";
  model.in_state(1, typed);
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  const ORVResult* result = filer.GetResultList(1).at(2);
  ASSERT_STREQ(result->m_etyp, "start_up_type");
  EXPECT_EQ(result->m_entityType, 54321);
  EXPECT_EQ(result->m_baseEntityType, 77);
  EXPECT_EQ(filer.GetResultList(1)[3]->m_entityType, -1);
}

TEST_F(StartUp, ReadsResultsOfAStateIntoAGivenList) {
  ForgedModel model = GoodFile();
  OpenFiler filer(model.path().c_str());
  std::vector<ORVResult*> results;
  filer.ReadResultBlks(2, results);
  EXPECT_THAT(NamesOf(results), ElementsAre("NODE/Speed"));
  EXPECT_EQ(results[0]->m_nent, 3);
  filer.ClearResultBlk(results);
  filer.ReadResultBlks(-1, results);
  EXPECT_THAT(NamesOf(results), ElementsAre("NODE/Speed"));
  EXPECT_EQ(results[0]->GetKey(), 1050);
  filer.ClearResultBlk(results);
  EXPECT_TRUE(results.empty());
}

// ---- Groups

TEST_F(StartUp, TellsOfAKeyThatNoVariableHasAndGoesOn) {
  ForgedModel model = GoodFile();
  model.group("Loose", 3, {{"time", 1, 0}, {"Nowhere", 1, 1}, {"Speed", 1, 2}});
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(),
              ElementsAre(Message(1, "Unable to locate variable key \"Nowhere\" in the \"Loose\" variable group")));
  const ORVVariableGrp* group = filer.GetVariableGroup("LOOSE");
  ASSERT_EQ(group->m_variables.size(), 2U);
  EXPECT_EQ(group->m_variables[0], filer.GetVariable("TIME"));
  EXPECT_EQ(group->m_variables[1], filer.GetVariable("Speed"));
}

TEST_F(StartUp, DoesNotTakeANameForAKeyOfAGroup) {
  for (const auto layout : {ForgedModel::kSingle, ForgedModel::kSplit}) {
    ForgedModel model(layout);
    model.variable({.name = "Speed", .key = "S"}).group("G", 1, {{"Speed", 1, 0}}).in_state(1, Result("G", 1));
    ORVFiler filer(model.path().c_str());
    Messages messages;
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    EXPECT_THAT(messages.all(),
                testing::Contains(Message(1, "Unable to locate variable key \"Speed\" in the \"G\" variable group")));
    EXPECT_TRUE(filer.GetVariableGroup("G")->m_variables.empty());
    EXPECT_EQ(filer.GetNumExtVariables(), 0U);
  }
}

TEST_F(StartUp, TakesTheFirstVariableOfAKeyIntoAGroupAsOftenAsItIsListed) {
  ForgedModel model = GoodFile();
  model.variable({.name = "Another", .key = "AAA"})
      .file()
      .at("/post/constant/variable/AAA/orvblock")
      .text("varkey", "SPEED");
  model.group("Twice", 2, {{"Speed", 1, 0}, {"Speed", 1, 1}});
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(filer.GetVariableGroup("Twice")->m_variables,
              ElementsAre(filer.GetVariable("Another"), filer.GetVariable("Another")));
}

TEST_F(StartUp, GivesAGroupWithAnEmptyKeyTheFirstVariableWithoutOne) {
  ForgedModel model(ForgedModel::kSplit);  // its variables have no keys
  model.variable({.name = "B"}).variable({.name = "A"}).group("G", 2, {{"", 1, 0}, {"", 1, 1}});
  model.in_state(1, Result("G", 1, 2)).index_types({"TIME"});
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_THAT(filer.GetVariableGroup("G")->m_variables, ElementsAre(filer.GetVariable("A"), filer.GetVariable("A")));
}

TEST_F(StartUp, SurvivesAGroupThatLostItsHeader) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED"}).index_types({"TIME"}).in_state(1, Result("SPEED", 4));
  model.group("G", 2, {{"", 1, 0}, {"", 1, 1}}).group("H", 1, {{"", 1, 0}});
  model.file().at("/post/constant/variablegroup/H").drop("header");
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_EQ(filer.GetVariableGroups().size(), 1U);
  EXPECT_STREQ(filer.GetVariableGroups()[0]->m_grpName, "G");
}

TEST_F(StartUp, TellsInTheOrderOfItsSteps) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).group("G", 2, {{"Gone", 1, 0}, {"S", 1, 1}});
  model.in_state(1, Result("Broken", 4, 0)).in_state(1, Result("G", 4, 1)).in_state(1, Result("Unknown", 4));
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(
      messages.all(),
      ElementsAre(Message(1, "Unable to locate variable key \"Gone\" in the \"G\" variable group"),
                  Message(1, "Invalid number of components in \"NODE->Broken\" result block (ncoo)"),
                  Message(1, "\tPath :-/post/singlestate/state000000000001/entityresults/NODE/Broken/orvblock"),
                  Message(0, "Unable to read post->constant->indicies block"),
                  Message(1,
                          "Mis-match between result and variable group block component count for \"G\" \n\t Result "
                          "component count : 1, Variable Group component count : 2"),
                  Message(1, "Missing Variable group definition \"Unknown\" for \"NODE\" type")));
  EXPECT_EQ(filer.GetIndexTypes(), nullptr);
}

TEST_F(StartUp, WithUnitsWantedAndNoUnitSystemSucceeds) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).in_state(1, Result("Speed", 1));
  ORVFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 0);
  std::vector<ORVUnit*> base, derived;
  filer.GetUnitList(base, derived);
  EXPECT_TRUE(base.empty());
}

TEST_F(StartUp, TellsThePathOfABlockUpTo511Characters) {
  for (const std::size_t length : {511U, 512U}) {
    ForgedModel model = GoodFile();
    ForgedValues broken = Result("Broken", 4, 0);
    const std::string fixed = "/post/singlestate/state000000000001/entityresults/NODE/Broken//orvblock";
    broken.group_name = std::string(length - fixed.size(), 'g');
    model.in_state(1, broken);
    ORVFiler filer(model.path().c_str());
    Messages messages;
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    EXPECT_EQ(messages.all().size(), length == 511 ? 2U : 1U) << length;
  }
}

TEST_F(StartUp, WithoutVariablesKeepsGroupsWithoutTheirs) {
  ForgedModel model;
  model.group("G", 1, {{"S", 1, 0}});
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  ASSERT_EQ(filer.GetVariableGroups().size(), 1U);
  EXPECT_TRUE(filer.GetVariableGroups()[0]->m_variables.empty());
}

TEST_F(StartUp, SilencesAllThreeReceiversForProperties) {
  ForgedModel model = GoodFile();
  model.variable({.name = "Odd", .key = "Odd"}).file().integer32("subslen", -3);
  model.group("Odd", 1, {{"Odd", 1, 0}}).properties("/post/constant", "NODE", "Odd", 2);
  ORVFiler filer(model.path().c_str());
  Messages messages;
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_NE(filer.GetExtVariable("Odd"), nullptr);
  EXPECT_NE(orvio::process().extended_variable_message, nullptr);
  EXPECT_NE(orvio::process().fetch_message, nullptr);
}

// ---- Again

TEST_F(StartUp, ASecondTimeClearsFirst) {
  ForgedModel model = GoodFile();
  model.properties("/post/constant", "NODE", "Speed", 2);
  OpenFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetVariables().size(), 3U);
  EXPECT_EQ(filer.GetVariableGroups().size(), 3U);
  EXPECT_EQ(filer.GetResultList(1).size(), 3U);
  EXPECT_EQ(filer.GetResultList(0).size(), 1U);
  EXPECT_EQ(filer.GetNumExtVariables(), 5U);
  EXPECT_EQ(filer.data().properties.size(), 1U);
  EXPECT_EQ(filer.data().base_units.size(), 2U);
  EXPECT_EQ(filer.GetExtVariables().front()->GetIID(), 6);  // the caller's counter went on
}

TEST_F(StartUp, ASecondTimeForgetsASecuredNodeThatTheFileNoLongerHas) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).properties("/post/constant", "SECURED_NODE", "COORDINATE", 2);
  OpenFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  model.file().at("/post/constant").drop("properties");
  (void)model.path();
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_FALSE(filer.data().has_secured_node);
}

TEST_F(StartUp, ClearedLeavesNothingRead) {
  ForgedModel model = GoodFile();
  OpenFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  filer.ClearAll();
  EXPECT_TRUE(filer.GetVariables().empty());
  EXPECT_TRUE(filer.GetVariableGroups().empty());
  EXPECT_TRUE(filer.GetExtVariables().empty());
  EXPECT_TRUE(filer.GetResultList(0).empty());
  EXPECT_TRUE(filer.GetResultList(1).empty());
  EXPECT_EQ(filer.GetSystem(), nullptr);
  EXPECT_EQ(filer.GetIndexTypes(), nullptr);
  EXPECT_EQ(filer.GetTitle(), nullptr);
  EXPECT_EQ(filer.GetSolverName(), nullptr);
  EXPECT_EQ(filer.GetSolverVersion(), nullptr);
}

TEST_F(StartUp, ReadsTheUnitSystemOnce) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  EXPECT_EQ(filer.GetSystem(), nullptr);
  ASSERT_EQ(filer.ReadSystemBlock(), 0);
  const ORVSystem* system = filer.GetSystem();
  ASSERT_NE(system, nullptr);
  model.file().at("/post/constant/system/orvblock").text("title", "Another");
  (void)model.path();
  EXPECT_EQ(filer.ReadSystemBlock(), 0);
  EXPECT_EQ(filer.GetSystem(), system);
  EXPECT_STREQ(filer.GetTitle(), "A plate");
}

TEST_F(StartUp, WithoutAUnitSystemHasNoneAndSucceeds) {
  ForgedModel model = GoodFile();
  model.file().at("/post/constant/system").drop("orvblock");
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetSystem(), nullptr);
  EXPECT_EQ(filer.ReadSystemBlock(), 1);
}

TEST_F(StartUp, WithAUnitSystemThatCannotBeReadHasNoneAndSucceeds) {
  for (const char* lost : {"title", "ubid"}) {  // of the header, of the data
    ForgedModel model = GoodFile();
    model.file().at("/post/constant/system/orvblock").retype(lost);
    OpenFiler filer(model.path().c_str());
    filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    int next_id = 1;
    EXPECT_EQ(filer.InitReader(next_id), 0) << lost;
    EXPECT_EQ(filer.GetSystem(), nullptr) << lost;
    EXPECT_THAT(filer.data().base_units, IsEmpty()) << lost;
    EXPECT_THAT(filer.data().derived_units, IsEmpty()) << lost;
  }
}

TEST_F(StartUp, ReadsAUnitSystemIntoAnObjectOfTheHost) {
  ForgedModel model = GoodFile();
  OpenFiler filer(model.path().c_str());
  ORVSystem system;
  ASSERT_EQ(filer.ReadSystemBlk(system), 0);
  EXPECT_STREQ(system.m_title, "A plate");
  EXPECT_STREQ(system.m_pUbnam, "mm");
  EXPECT_EQ(filer.GetSystem(), nullptr);
  orvio::FreeBuffers(system);
  for (const char* path : {"", static_cast<const char*>(nullptr)}) {
    OpenFiler nameless(path);
    EXPECT_EQ(nameless.ReadSystemBlk(system), 1);
    EXPECT_EQ(system.m_pUbnam, nullptr);
  }
}

// ---- Multi-state blocks later on

TEST_F(StartUp, ReadsSkippedMultiStateBlocksLater) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_TRUE(filer.GetResultList(0).empty());
  EXPECT_EQ(filer.ReadMultiStateBlocks(false), 0);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 0);
  ASSERT_EQ(filer.GetResultList(0).size(), 1U);
  EXPECT_EQ(filer.GetResultList(0)[0]->m_variableGrp, filer.GetVariableGroup("Speed"));
  EXPECT_TRUE(filer.GetExtVariable("Speed")->IsApplicable(2));
}

TEST_F(StartUp, DoesNotReadMultiStateBlocksAgainUnlessForced) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  const ORVResult* before = filer.GetResultList(0).at(0);
  EXPECT_EQ(filer.ReadMultiStateBlocks(false), 1);
  EXPECT_EQ(filer.GetResultList(0).at(0), before);
  EXPECT_EQ(filer.ReadMultiStateBlocks(true), 0);
  EXPECT_EQ(filer.GetResultList(0).size(), 1U);
}

TEST_F(StartUp, GivesMultiStateBlocksReadLaterTheIdsBehindTheLargest) {
  ForgedModel model = GoodFile();
  model.variable({.name = "Force", .key = "Force"}).group("Force", 1, {{"Force", 1, 0}});
  model.in_multistate(Multi("Force", 2));
  ORVFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  int next_id = 100;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_EQ(filer.ReadMultiStateBlocks(false), 0);
  ASSERT_NE(filer.GetExtVariable("Force"), nullptr);
  EXPECT_EQ(filer.GetExtVariable("Force")->GetIID(), next_id);
}

TEST_F(StartUp, HasItsNextIdBehindTheLargestAndFromOneOn) {
  EXPECT_EQ(orvio::NextHandleId({}), 1);
  ORVExtVar low, high;
  low.SetIID(-9);
  EXPECT_EQ(orvio::NextHandleId({&low}), 1);
  high.SetIID(41);
  low.SetIID(7);
  EXPECT_EQ(orvio::NextHandleId({&high, &low}), 42);
  low.SetIID(2147483647);
  EXPECT_EQ(orvio::NextHandleId({&high, &low}), 2147483647);
}

TEST_F(StartUp, LeavesTheConfigurationAloneWhereNoMultiStateBlocksAreRead) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  EXPECT_EQ(filer.ReadMultiStateBlocks(false), 1);
  EXPECT_NE(filer.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 0);
  EXPECT_EQ(filer.GetNumExtVariables(), 5U);
}

TEST_F(StartUp, AnswersTheKeyPrefixOfEitherList) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "ZPS:V"}).variable({.name = "Force", .key = "ABC:F"});
  model.in_state(1, Result("Speed", 1)).in_multistate(Multi("Force", 1));
  ORVFiler filer(model.path().c_str());
  std::string prefix = "before";
  EXPECT_EQ(filer.GetVariableKeyPrefix(prefix, 1), 1);  // nothing has been read
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetVariableKeyPrefix(prefix, 0), 1);
  EXPECT_EQ(prefix, "before");
  EXPECT_EQ(filer.GetVariableKeyPrefix(prefix, 1), 0);
  EXPECT_EQ(prefix, "ZPS");
  EXPECT_EQ(filer.GetVariableKeyPrefix(prefix, 2), 0);
  EXPECT_EQ(prefix, "ABC");
  EXPECT_EQ(filer.GetVariableKeyPrefix(prefix, 3), 0);
  EXPECT_EQ(prefix, "ZPS");
}

TEST_F(StartUp, OfMultiStateBlocksInAFileWithoutThemFails) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).in_state(1, Result("Speed", 1));
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.ReadMultiStateBlocks(false), 1);
}

TEST_F(StartUp, LooksForMultiStateBlocksFromNowOnThoughThereAreNone) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).in_state(1, Result("Speed", 1));
  ORVFiler filer(model.path().c_str());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.ReadMultiStateBlocks(false), 1);
  EXPECT_EQ(filer.CheckConfig(ORV_CONFIG_SKIP_MULTISTATE), 0);
}

TEST_F(StartUp, ForAReloadReadsTheNumberOfStatesOfMultiStateBlocksAnew) {
  ForgedModel model = GoodFile();
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetResultList(0)[0]->m_nstate, 2);
  model.file().at("/post/multistate/multientityresults/NODE/Speed/orvblock").integer("nstate", 9);
  (void)model.path();
  filer.InitForReload();
  EXPECT_EQ(filer.GetResultList(0)[0]->m_nstate, 9);
}

TEST_F(StartUp, ForAReloadForgetsTheGenericTypes) {
  OpenFiler filer("a.orv");
  filer.data().m_genericTypes.push_back(new ORVGenericEntityNameMap{"shells", {}});
  filer.InitForReload();
  EXPECT_TRUE(filer.GetGenericTypes().empty());
}

}  // namespace
