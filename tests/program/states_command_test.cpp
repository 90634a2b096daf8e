// orv states, and the selections of states that all commands share.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/run_program.h"
#include "program/small_result.h"
#include "support/forged_model.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::HasSubstr;

/// Ten states at 0.1, 0.2 and so on; PE is the number of the state.
class StatesCommand : public ProgramTest {
 protected:
  void SetUp() override {
    std::string blocks;
    for (int i = 1; i <= 10; ++i) {
      const double number = i;
      blocks += FrdBlock({i, "0." + std::to_string(i) + "0000000"}, "PE", {{"PE"}}, {{1, {number}}});
    }
    blocks.replace(blocks.rfind("0.100000000"), 11, "1.000000000");  // the tenth, whose text was cut short
    path_ = Import(WriteFile("ten.frd", FrdRun(blocks)));
  }

  std::string States(std::vector<std::string> options) {
    options.insert(options.begin(), {"states", path_});
    const ProgramRun run = RunOrv(options);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  /// The numbers of the states that a selection means.
  std::vector<int> Chosen(const std::string& selection) {
    const json answer = json::parse(States({"--states", selection, "--json"}));
    std::vector<int> states;
    for (const json& state : answer["states"]) states.push_back(state["state"]);
    return states;
  }

  void ExpectRefused(const std::string& selection, const std::string& part) {
    SCOPED_TRACE(selection);
    const ProgramRun run = RunOrv({"states", path_, "--states", selection});
    ExpectTrouble(run, path_, part);
  }

  std::string path_;
};

using Numbers = std::vector<int>;

TEST_F(StatesCommand, ListsAllStatesUnderTheNamesOfTheirIndex) {
  const std::string text = States({});
  EXPECT_THAT(text, testing::StartsWith("state  TIME  STEP\n    1   0.1     1\n    2   0.2     1\n"));
  EXPECT_THAT(text, testing::EndsWith("\n   10     1     1\n"));
}

TEST_F(StatesCommand, ListsThemAsCommaSeparatedValuesAndAsJson) {
  EXPECT_THAT(States({"--csv", "--states", "2:3"}), "state,TIME,STEP\n2,0.2,1\n3,0.3,1\n");
  const json answer = json::parse(States({"--json", "--states", "2"}));
  EXPECT_EQ(answer["file"], path_);
  EXPECT_EQ(answer["index"], json({"TIME", "STEP"}));
  EXPECT_EQ(answer["states"], json::parse(R"([{"state": 2, "index": [0.2, 1]}])"));
}

TEST_F(StatesCommand, ChoosesByNumberAndLast) {
  EXPECT_EQ(Chosen("3"), Numbers{3});
  EXPECT_EQ(Chosen("last"), Numbers{10});
  EXPECT_EQ(Chosen("LAST"), Numbers{10});
  EXPECT_EQ(Chosen("5,last,1"), (Numbers{5, 10, 1}));
  EXPECT_EQ(Chosen("5,5"), Numbers{5});
}

TEST_F(StatesCommand, ChoosesByRange) {
  EXPECT_EQ(Chosen("1:10:2"), (Numbers{1, 3, 5, 7, 9}));
  EXPECT_EQ(Chosen("8:"), (Numbers{8, 9, 10}));
  EXPECT_EQ(Chosen(":2"), (Numbers{1, 2}));
  EXPECT_EQ(Chosen("9:last"), (Numbers{9, 10}));
  EXPECT_EQ(Chosen("3:1:-1"), (Numbers{3, 2, 1}));
  EXPECT_EQ(Chosen("4:4"), Numbers{4});
}

TEST_F(StatesCommand, ChoosesByIndexValue) {
  EXPECT_EQ(Chosen("t=0.25:0.45"), (Numbers{3, 4}));
  EXPECT_EQ(Chosen("t=0.2:0.4"), (Numbers{2, 3, 4}));
  EXPECT_EQ(Chosen("t=:0.2"), (Numbers{1, 2}));
  EXPECT_EQ(Chosen("t=0.85:"), (Numbers{9, 10}));
  EXPECT_EQ(Chosen("t=0.33"), Numbers{3});
  EXPECT_EQ(Chosen("time=0.2:0.3"), (Numbers{2, 3}));
  EXPECT_EQ(Chosen("STEP=1:1").size(), 10U);
}

TEST_F(StatesCommand, RefusesWhatNamesNoStates) {
  for (const char* text :
       {"first", "1:2:3:4", "1:5:0", "5:1", "1:5:-1", "t=", "t=a:b", "t=1:2:3", "mass=1", "1,,2", "-"}) {
    ExpectRefused(text, "names no states; give for example 3, last, 1:10:2 or t=0.01:0.02");
  }
  ExpectRefused("11", "there is no state 11; states are 1 to 10, and 0 for constant values");
  ExpectRefused("3:11", "there is no state 11");
  ExpectRefused("-1", "there is no state -1");
  ExpectRefused("t=5:6", "no state has an index value in \"t=5:6\"; orv states lists them");
}

TEST_F(StatesCommand, ServesTheOtherCommands) {
  const ProgramRun run = RunOrv({"values", path_, "--var", "PE", "--states", "t=0.25:0.45,last", "--csv"});
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, "state,id,PE\n3,1,3\n4,1,4\n10,1,10\n");
}

TEST_F(StatesCommand, OfAFileWithoutStatesListsNone) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"});
  const ProgramRun run = RunOrv({"states", model.path()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "state\n");
  ExpectTrouble(RunOrv({"states", model.path(), "--states", "1"}), model.path(), "the file has no states");
}

TEST_F(StatesCommand, OfAFileWithoutIndexTypesNumbersTheColumnsAndTellsSo) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"});
  ForgedValues result;
  result.variable = "Speed";
  result.nent = 1;
  result.index = {0.5, 7};
  model.in_state(1, result);
  const ProgramRun run = RunOrv({"states", model.path(), "--csv"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "state,index 1,index 2\n1,0.5,7\n");
  EXPECT_EQ(run.err, "orv: " + model.path() + ": Unable to read post->constant->indicies block\n");
}

}  // namespace
