// Files with states that hold only what changed, as orv values, orv history and orv info show them.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <tuple>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string State(int number) { return "/post/singlestate/state00000000000" + std::to_string(number) + "/"; }

/// Marks the block that the file is at, and gives it its place among the states.
void PlaceInChain(ForgedFile& file, int state, int flag) {
  file.integer32("indexic", flag)
      .integer("nindex", 1)
      .dataset<std::int32_t>("indexident", {1}, {state})
      .dataset<double>("indexval", {1}, {state / 8.0});
}

void AddHeat(ForgedFile& file, int state, int flag, const std::vector<std::int32_t>& ids,
             const std::vector<float>& values) {
  AddNodalResult(file, State(state), "HEAT", 1000, static_cast<int>(ids.size()), 1)
      .dataset<std::int32_t>("entid", {ids.size()}, ids)
      .dataset<float>("res", {ids.size(), 1}, values);
  PlaceInChain(file, state, flag);
}

/// Two layers, two components.
void AddStress(ForgedFile& file, int state, int flag, const std::vector<std::int32_t>& ids,
               const std::vector<double>& values) {
  AddElementResult(file, State(state), "SHELL", "STRESS", static_cast<int>(ids.size()), 2, 2)
      .dataset<std::int32_t>("idele", {ids.size()}, ids)
      .dataset<double>("res", {ids.size(), 2, 2}, values);
  PlaceInChain(file, state, flag);
}

/// Heat in four states, the first and the third of them full; stresses in the first two.
void FillChains(ForgedFile& file) {
  AddIndexTypes(file, {"TIME"});
  AddVariable(file, "HEAT", "", 0, {"T"});
  AddVariable(file, "STRESS", "", 0, {"SX", "SY"});
  AddHeat(file, 1, 0, {1, 2, 5}, {10, 20, 50});
  AddHeat(file, 2, 1, {2}, {21});
  AddHeat(file, 3, 0, {1, 2, 5}, {13, 23, 53});
  AddHeat(file, 4, 1, {5, 1}, {54, 14});
  AddStress(file, 1, 0, {11, 12}, {1.1, 1.2, 1.3, 1.4, 2.1, 2.2, 2.3, 2.4});
  AddStress(file, 2, 1, {12}, {3.1, 3.2, 3.3, 3.4});
}

class IncrementalCommands : public ProgramTest {
 protected:
  void SetUp() override { FillChains(file_); }

  std::string Out(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {arguments.front(), file_.path()};
    all.insert(all.end(), arguments.begin() + 1, arguments.end());
    const ProgramRun run = RunOrv(all);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  std::string Trouble(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {arguments.front(), file_.path()};
    all.insert(all.end(), arguments.begin() + 1, arguments.end());
    const ProgramRun run = RunOrv(all);
    ExpectTrouble(run, file_.path(), "");
    return run.err;
  }

  ForgedFile file_;
};

TEST_F(IncrementalCommands, ValuesAreThoseOfAllEntitiesInTheOrderOfTheFullState) {
  EXPECT_EQ(Out({"values", "--var", "HEAT", "--states", "1:4", "--csv"}),
            "state,id,T\n"
            "1,1,10\n1,2,20\n1,5,50\n"
            "2,1,10\n2,2,21\n2,5,50\n"
            "3,1,13\n3,2,23\n3,5,53\n"
            "4,1,14\n4,2,23\n4,5,54\n");
}

TEST_F(IncrementalCommands, ValuesOfElementsAreThoseOfAllLayersInDoublePrecision) {
  EXPECT_EQ(Out({"values", "--var", "STRESS", "--states", "2", "--csv"}),
            "id,layer,SX,SY\n11,1,1.1,1.2\n11,2,1.3,1.4\n12,1,3.1,3.2\n12,2,3.3,3.4\n");
}

TEST_F(IncrementalCommands, ValuesOfAnEntityThatDidNotChangeAreFound) {
  EXPECT_THAT(Out({"values", "--var", "HEAT", "--states", "2", "--ids", "5", "--csv"}), HasSubstr("id,T\n5,50\n"));
}

TEST_F(IncrementalCommands, HistoriesHaveNoGapsWhereNothingChanged) {
  EXPECT_EQ(Out({"history", "--var", "HEAT", "--ids", "1,2", "--csv"}),
            "state,TIME,T@1,T@2\n"
            "1,0.125,10,20\n2,0.25,10,21\n3,0.375,13,23\n4,0.5,14,23\n");
}

TEST_F(IncrementalCommands, HistoriesPutBlocksTogetherWhoseChainsDiffer) {
  // Another entity type of the same variable, full in the second state: the map of states must follow the block.
  for (const auto& [state, flag] : {std::pair(2, 0), std::pair(3, 1), std::pair(4, 1)}) {
    file_.at(State(state) + "entityresults/POINT/HEAT/orvblock")
        .integer("block", 1000)
        .text("etyp", "POINT")
        .text("etypvar", "HEAT")
        .integer("nent", 1)
        .integer("ncoo", 1)
        .integer("fswitch", 0)
        .dataset<std::int32_t>("entid", {1}, {state == 4 ? 8 : 7})
        .dataset<float>("res", {1, 1}, {100.0F + static_cast<float>(state)});
    PlaceInChain(file_, state, flag);
  }
  EXPECT_EQ(Out({"history", "--var", "HEAT", "--ids", "2,7", "--csv"}),
            "state,TIME,NODE:T@2,POINT:T@7\n"
            "1,0.125,20,\n2,0.25,21,102\n3,0.375,23,103\n4,0.5,23,103\n");
}

TEST_F(IncrementalCommands, InfoTellsTheStatesWithChangesAndWhatTheySave) {
  const std::string out = Out({"info"});
  // HEAT: 8 bytes an entity, 9 stored of 12. STRESS: 36 bytes an element, 3 stored of 4.
  EXPECT_THAT(out, HasSubstr("Incremental results (2): 60 B of 240 B saved, 25.0 %\n"));
  EXPECT_THAT(out, testing::ContainsRegex("HEAT +NODE +2, 4 +72 B +96 B +25.0 %"));
  EXPECT_THAT(out, testing::ContainsRegex("STRESS +SHELL +2 +108 B +144 B +25.0 %"));
}

TEST_F(IncrementalCommands, InfoHasThemInJsonToo) {
  const json results = json::parse(Out({"info", "--json"}))["results"];
  ASSERT_EQ(results.size(), 2U);
  const json& heat = results[results[0]["variable"] == "HEAT" ? 0 : 1];
  EXPECT_THAT(heat["incremental_states"].get<std::vector<int>>(), ElementsAre(2, 4));
  EXPECT_EQ(heat["stored_bytes"], 72);
  EXPECT_EQ(heat["full_bytes"], 96);
  EXPECT_EQ(heat["count_min"], 3);  // of the full states alone
  EXPECT_EQ(heat["count_max"], 3);
}

TEST_F(IncrementalCommands, InfoIsSilentWhereAllStatesAreFull) {
  ForgedFile full;
  FillForgedResults(full);
  const ProgramRun run = RunOrv({"info", full.path()});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.out, testing::AllOf(HasSubstr("STRESS"), Not(HasSubstr("ncremental"))));
}

TEST_F(IncrementalCommands, RefuseChangesOfStatesWithSeveralIndexColumns) {
  AddNodalResult(file_, State(2), "DUST", 1000, 1, 1)
      .integer32("indexic", 1)
      .integer("nindex", 2)
      .dataset<std::int32_t>("entid", {1}, {1})
      .dataset<float>("res", {1, 1}, {1})
      .dataset<std::int32_t>("indexident", {2}, {2, 2})
      .dataset<double>("indexval", {2}, {0.25, 1});
  AddVariable(file_, "DUST", "", 0, {"D"});
  EXPECT_THAT(Trouble({"values", "--var", "DUST", "--states", "2"}),
              testing::AllOf(HasSubstr("holds changes, and there is no telling what they build upon"),
                             HasSubstr("NODE/DUST/orvblock, state 2); its states must have one index column, with an "
                                       "identifier of their own each\n")));
}

TEST_F(IncrementalCommands, PutComplexValuesTogether) {
  AddVariable(file_, "WAVE", "", 0, {"W"});
  AddNodalResult(file_, State(1), "WAVE", 1001, 2, 1)
      .dataset<std::int32_t>("entid", {2}, {1, 2})
      .dataset<float>("res", {2, 1, 2}, {1, 2, 3, 4});
  PlaceInChain(file_, 1, 0);
  AddNodalResult(file_, State(2), "WAVE", 1001, 1, 1)
      .dataset<std::int32_t>("entid", {1}, {2})
      .dataset<float>("res", {1, 1, 2}, {30, 40});
  PlaceInChain(file_, 2, 1);
  EXPECT_EQ(Out({"values", "--var", "WAVE", "--states", "1", "--csv"}), "id,W.re,W.im\n1,1,2\n2,3,4\n");
  EXPECT_EQ(Out({"values", "--var", "WAVE", "--states", "2", "--csv"}), "id,W.re,W.im\n1,1,2\n2,30,40\n");
}

TEST_F(IncrementalCommands, RefuseChangesWhoseIndexIsDamaged) {
  file_.at(State(3) + "entityresults/NODE/HEAT/orvblock").drop("indexident");
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "4"}), HasSubstr("no telling what they build upon"));
  EXPECT_THAT(Out({"values", "--var", "HEAT", "--states", "1", "--csv"}), HasSubstr("5,50\n"));
}

TEST_F(IncrementalCommands, RefuseChangesWithoutAnIndex) {
  for (const int state : {1, 2, 3, 4}) {
    file_.at(State(state) + "entityresults/NODE/HEAT/orvblock").drop("nindex").drop("indexident").drop("indexval");
  }
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "2"}), HasSubstr("no telling what they build upon"));
}

TEST_F(IncrementalCommands, RefuseAStateWithTheIdentifierOfAnother) {
  file_.at(State(4) + "entityresults/NODE/HEAT/orvblock").dataset<std::int32_t>("indexident", {1}, {3});
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "4"}), HasSubstr("no telling what they build upon"));
}

TEST_F(IncrementalCommands, FollowTheIdentifiersOfEachBlock) {
  // The states of ASH are full and not as those of ICE, but its third one comes before the second.
  for (const auto& [name, second, third] : {std::tuple("ICE", 20, 30), std::tuple("ASH", 30, 20)}) {
    AddVariable(file_, name, "", 0, {"V"});
    for (const int state : {1, 2, 3}) {
      const hsize_t count = state == 1 ? 2 : 1;
      AddNodalResult(file_, State(state), name, 1000, static_cast<int>(count), 1);
      if (state == 1) {
        file_.dataset<std::int32_t>("entid", {2}, {1, 2}).dataset<float>("res", {2, 1}, {1, 2});
      } else {
        file_.dataset<std::int32_t>("entid", {1}, {state - 1}).dataset<float>("res", {1, 1}, {10.0F * state});
      }
      PlaceInChain(file_, state, state == 1 ? 0 : 1);
      file_.dataset<std::int32_t>("indexident", {1}, {state == 1 ? 10 : state == 2 ? second : third});
    }
  }
  EXPECT_EQ(Out({"values", "--var", "ICE", "--states", "3", "--csv"}), "id,V\n1,20\n2,30\n");
  EXPECT_EQ(Out({"values", "--var", "ASH", "--states", "3", "--csv"}), "id,V\n1,1\n2,30\n");
}

TEST_F(IncrementalCommands, TellBlocksOfOneZoneApart) {
  // Two blocks of one type, variable and zone: the one is full in states 1 and 3, the other begins in state 2.
  for (const auto& [state, flag, name] :
       {std::tuple(1, 0, "A"), std::tuple(3, 1, "A"), std::tuple(2, 0, "B"), std::tuple(3, 1, "B")}) {
    const bool first = *name == 'A';
    file_.at(State(state) + "entityresults/NODE/HEAT/" + name + "/orvblock")
        .integer("block", 1000)
        .text("etyp", "NODE")
        .text("etypvar", "HEAT")
        .text("etypzone", name)
        .integer("zoneid", 7)
        .integer("nent", flag == 0 ? 2 : 1)
        .integer("ncoo", 1)
        .integer("fswitch", 0);
    if (flag == 0) {
      file_.dataset<std::int32_t>("entid", {2}, {first ? 100 : 200, first ? 101 : 201})
          .dataset<float>("res", {2, 1}, {1, 2});
    } else {
      file_.dataset<std::int32_t>("entid", {1}, {first ? 101 : 201})
          .dataset<float>("res", {1, 1}, {first ? 3.5F : 4.5F});
    }
    PlaceInChain(file_, state, flag);
  }
  const std::string out = Out({"values", "--var", "HEAT", "--states", "3", "--ids", "100,101,200,201", "--csv"});
  EXPECT_THAT(
      out, testing::AllOf(HasSubstr("100,1\n"), HasSubstr("101,3.5\n"), HasSubstr("200,1\n"), HasSubstr("201,4.5\n")));
}

TEST_F(IncrementalCommands, RefuseMoreLayersThanAreStored) {
  for (const int state : {1, 2}) {
    file_.at(State(state) + "elementresults/SHELL/STRESS/orvblock").integer("numl", 1'000'000'000);
  }
  EXPECT_THAT(Trouble({"values", "--var", "STRESS", "--states", "2"}), HasSubstr("cannot be read"));
}

TEST_F(IncrementalCommands, RefuseChangesWithoutIds) {
  file_.at(State(2) + "entityresults/NODE/HEAT/orvblock").drop("entid");
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "2"}), HasSubstr("cannot be read"));
}

TEST_F(IncrementalCommands, RefuseAFullStateWithoutIds) {
  file_.at(State(3) + "entityresults/NODE/HEAT/orvblock").drop("entid");
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "4"}), HasSubstr("cannot be read"));
}

TEST_F(IncrementalCommands, RefuseIdsThatStandTwice) {
  file_.at(State(3) + "entityresults/NODE/HEAT/orvblock").dataset<std::int32_t>("entid", {3}, {1, 2, 2});
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "4"}), HasSubstr("cannot be read"));
}

TEST_F(IncrementalCommands, RefuseAChainWithADamagedChange) {
  AddHeat(file_, 5, 1, {1}, {15});
  file_.at(State(4) + "entityresults/NODE/HEAT/orvblock").retype("res");
  EXPECT_THAT(Trouble({"values", "--var", "HEAT", "--states", "5"}), HasSubstr("cannot be read"));
}

TEST_F(IncrementalCommands, KeepTheDigitsOfAFullStateInDoublesUnderChangesInFloats) {
  file_.at(State(1) + "entityresults/NODE/HEAT/orvblock").dataset<double>("res", {3, 1}, {0.1, 0.2, 1.0 / 3});
  EXPECT_EQ(Out({"values", "--var", "HEAT", "--states", "2", "--csv"}), "id,T\n1,0.1\n2,21\n5,0.3333333333333333\n");
}

TEST_F(IncrementalCommands, InfoSurvivesCountsBeyondAllMeasure) {
  for (const int state : {1, 2, 3, 4}) {
    file_.at(State(state) + "entityresults/NODE/HEAT/orvblock").integer("nent", 4'000'000'000'000'000'000);
  }
  EXPECT_THAT(Out({"info"}), HasSubstr("Incremental results (2): "));
}

TEST_F(IncrementalCommands, RefuseAChainWhoseFullStateIsDamaged) {
  AddVariable(file_, "RUST", "", 0, {"R"});
  AddNodalResult(file_, State(1), "RUST", 1000, 2, 1).dataset<std::int32_t>("entid", {2}, {1, 2});
  PlaceInChain(file_, 1, 0);
  AddNodalResult(file_, State(2), "RUST", 1000, 1, 1)
      .dataset<std::int32_t>("entid", {1}, {1})
      .dataset<float>("res", {1, 1}, {1});
  PlaceInChain(file_, 2, 1);
  EXPECT_THAT(Trouble({"values", "--var", "RUST", "--states", "2"}), HasSubstr("cannot be read"));
}

// ---- A whole run

class IncrementalRun : public ProgramTest {
 protected:
  std::string ImportAs(const char* name, const std::vector<std::string>& options) {
    const std::string run = std::string(ORVIO_SOURCE_DIR) + "/examples/data/plate_impact.frd.gz";
    std::filesystem::rename(Import(run, options), TempPath(name));
    return TempPath(name);
  }

  static std::string Values(const std::string& file, const std::string& variable) {
    const ProgramRun run = RunOrv({"values", file, "--var", variable, "--states", "1:51", "--csv"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return run.out;
  }

  static json Curves(const std::string& file) {
    return json::parse(RunOrv({"history", file, "--var", "PE", "--ids", "1,93,500", "--json"}).out)["curves"];
  }
};

TEST_F(IncrementalRun, HasTheIdsAndValuesOfTheFullOneAtEveryState) {
  const std::string full = ImportAs("full.orv", {}), incremental = ImportAs("inc.orv", {"--incremental", "0"});
  for (const char* variable : {"VELO", "PE"}) {
    const std::string values = Values(full, variable);
    EXPECT_GT(values.size(), 500'000U) << variable;
    EXPECT_TRUE(values == Values(incremental, variable)) << variable;
  }
  EXPECT_EQ(Curves(full).size(), 3U);
  EXPECT_EQ(Curves(full), Curves(incremental));
}

}  // namespace
