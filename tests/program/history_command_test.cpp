// orv history: values over all states, as text, CSV, JSON and drawings.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/forged_results.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A result of two entities over three states; state s and entity e have the values 10 s + e and -(10 s + e), in
/// doubles.
void AddMultiState(ForgedFile& file, const std::string& type, const std::string& variable,
                   const std::vector<std::int32_t>& ids) {
  std::vector<double> values;
  for (int state = 1; state <= 3; ++state) {
    for (int entity = 1; entity <= 2; ++entity) {
      const double value = 10 * state + entity + 0.1;
      values.insert(values.end(), {value, -value});
    }
  }
  file.at("/post/multistate/multientityresults/" + type + "/" + variable + "/orvblock")
      .integer("block", 1050)
      .text("etyp", type)
      .text("etypvar", variable)
      .integer("nent", 2)
      .integer("ncoo", 2)
      .integer("nstate", 3)
      .integer("nindex", 2)
      .integer("fswitch", 0)
      .dataset<std::int32_t>("entid", {2}, ids)
      .dataset<double>("res", {3, 2, 2}, values)
      .dataset<std::int32_t>("indexident", {3, 2}, {1, 1, 2, 2, 3, 3})
      .dataset<double>("indexval", {3, 2}, {0.1, 1, 0.2, 1, 0.3, 2});
}

std::string StressRun() { return FrdRun(FrdBlock({1}, "STRESS", kTensorS, {{1, {1, 2, 3, 4, 5, 6}}})); }

class HistoryCommand : public ProgramTest {
 protected:
  void SetUp() override {
    FillForgedResults(file_);
    AddVariable(file_, "ENERGY", "", 0, {"GAIN", "LOSS"});
    AddMultiState(file_, "GLOBAL", "ENERGY", {1, 2});
  }

  ProgramRun Run(std::vector<std::string> options, const Surroundings& surroundings = {}) {
    options.insert(options.begin(), {"history", file_.path(), "--var"});
    return RunOrv(options, surroundings);
  }

  std::string History(const std::vector<std::string>& options) {
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  void ExpectRefused(const std::vector<std::string>& options, const std::string& line) {
    const ProgramRun run = Run(options);
    ExpectTrouble(run, file_.path(), "");
    EXPECT_EQ(run.err, "orv: " + file_.path() + ": " + line + "\n");
  }

  ForgedFile file_;
};

TEST_F(HistoryCommand, PrintsOneRowPerStateAndOneColumnPerEntityLayerAndComponent) {
  EXPECT_EQ(History({"STRESS", "--entity", "SHELL", "--ids", "12"}),
            "state   TIME  STEP  SXX@12.1  S,Y@12.1  SXX@12.2  S,Y@12.2\n"
            "    1  0.125     1         5         6         7         8\n"
            "    2   0.25     1        50        60        70        80\n");
}

TEST_F(HistoryCommand, OfOneEntityNeedsNoIdsAndNamesItNowhere) {
  EXPECT_EQ(History({"STRESS", "--entity", "SOLID"}),
            "state   TIME  STEP  SXX  S,Y\n"
            "    1  0.125     1  -1   -2\n"
            "    2   0.25     1\n");
}

TEST_F(HistoryCommand, LeavesCellsEmptyWhereAStateHasNoValue) {
  EXPECT_EQ(History({"STRESS", "--ids", "21", "--csv"}), "state,TIME,STEP,SXX,\"S,Y\"\n1,0.125,1,-1,-2\n2,0.25,1,,\n");
}

TEST_F(HistoryCommand, NamesTheEntityTypeWhereThereAreSeveral) {
  EXPECT_THAT(History({"STRESS", "--component", "SXX", "--layer", "1", "--csv"}),
              StartsWith("state,TIME,STEP,SHELL:SXX@11.1,SHELL:SXX@12.1,SOLID:SXX@21.1\n1,0.125,1,1,5,-1\n"));
}

TEST_F(HistoryCommand, TakesOneComponentAndOneLayer) {
  EXPECT_EQ(History({"STRESS", "--ids", "12", "--layer", "2", "--component", "2", "--csv"}),
            "state,TIME,STEP,\"S,Y\"\n1,0.125,1,8\n2,0.25,1,80\n");
}

TEST_F(HistoryCommand, OfALayerLeavesOutEntitiesThatLackItButNotThoseThatAreNowhere) {
  EXPECT_EQ(History({"STRESS", "--ids", "12,21", "--layer", "2", "--csv"}),
            "state,TIME,STEP,SXX,\"S,Y\"\n1,0.125,1,7,8\n2,0.25,1,70,80\n");
  ExpectRefused({"STRESS", "--ids", "12,99", "--layer", "2"},
                "\"STRESS\" has no value at id 99 in any state; orv values shows which ids there are");
  ExpectRefused({"STRESS", "--ids", "99", "--layer", "2"},
                "\"STRESS\" has no value at id 99 in any state; orv values shows which ids there are");
}

TEST_F(HistoryCommand, ShowsTheTwoPartsOfComplexValues) {
  EXPECT_EQ(History({"WAVE", "--ids", "5", "--csv"}),
            "state,TIME,STEP,A.re,A.im,B.re,B.im\n1,0.125,1,0.1,-1e-300,2,3\n2,0.25,1,,,,\n");
}

TEST_F(HistoryCommand, ComesFromABlockOverAllStatesWithItsOwnIndex) {
  EXPECT_EQ(History({"ENERGY"}),
            "state  TIME  STEP  GAIN@1  LOSS@1  GAIN@2  LOSS@2\n"
            "    1   0.1     1    11.1   -11.1    12.1   -12.1\n"
            "    2   0.2     1    21.1   -21.1    22.1   -22.1\n"
            "    3   0.3     2    31.1   -31.1    32.1   -32.1\n");
}

TEST_F(HistoryCommand, ComesFromTheStatesWhereABlockOverAllStatesLacksAnEntity) {
  AddMultiState(file_, "NODE", "WAVE", {5, 6});
  EXPECT_EQ(History({"WAVE", "--ids", "5", "--component", "A", "--csv"}),
            "state,TIME,STEP,A\n1,0.1,1,11.1\n2,0.2,1,21.1\n3,0.3,2,31.1\n");
  EXPECT_EQ(History({"WAVE", "--ids", "5000000000", "--component", "A", "--csv"}),
            "state,TIME,STEP,A.re,A.im\n1,0.125,1,0.30000000000000004,5\n2,0.25,1,,\n");
}

TEST_F(HistoryCommand, TakesAComputedComponentByItsName) {
  AddVariable(file_, "MOVE", "CLASS_LENGTH", 1, {"X", "Y", "Z"});
  file_.integer32("tensor", 1);
  AddIndex(AddNodalResult(file_, kState1, "MOVE", 1000, 1, 3), {0.125, 1})
      .dataset<std::int32_t>("entid", {1}, {9})
      .dataset<float>("res", {1, 3}, {1, 2, 3});
  EXPECT_THAT(History({"MOVE_Magnitude", "--csv"}), HasSubstr("1,0.125,1,1,2,3\n"));
}

TEST_F(HistoryCommand, PrintsJsonWithNullWhereAStateHasNoValue) {
  json history = json::parse(History({"STRESS", "--ids", "21", "--component", "SXX", "--json"}));
  EXPECT_EQ(history.at("file"), file_.path());
  history.erase("file");
  EXPECT_EQ(
      history,
      json::parse(
          R"({"schema_version": 1, "command": "history", "variable": "STRESS", "index": ["TIME", "STEP"], "index_units": ["", ""],
    "states": [{"state": 1, "index": [0.125, 1.0]}, {"state": 2, "index": [0.25, 1.0]}],
    "curves": [{"entity": "SOLID", "component": "SXX", "unit": "", "id": 21, "layer": 1, "values": [-1.0, null]}]})"));
}

TEST_F(HistoryCommand, WritesWhatJsonHasNoNumberForAsText) {
  const json history = json::parse(History({"ODD", "--ids", "1-3", "--json"}));
  const json& curves = history.at("curves");
  EXPECT_EQ(curves.at(0).at("values").at(0), "nan");
  EXPECT_EQ(curves.at(1).at("values").at(0), "inf");
  EXPECT_EQ(curves.at(2).at("values").at(0), "-inf");
}

TEST_F(HistoryCommand, OfManyEntitiesAsksForIds) {
  std::vector<std::int32_t> ids;
  for (int id = 1; id <= 51; ++id) ids.push_back(id);
  AddUnlabelledVariable(file_, "MANY");
  AddIndex(AddNodalResult(file_, kState1, "MANY", 1000, 51, 1), {0.125, 1})
      .dataset<std::int32_t>("entid", {51}, ids)
      .dataset<float>("res", {51, 1}, std::vector<float>(51, 7));
  ExpectRefused({"MANY"}, "\"MANY\" has 51 values of NODE in a state; choose some with --ids");
  EXPECT_EQ(History({"MANY", "--ids", "51", "--csv"}), "state,TIME,STEP,C1\n1,0.125,1,7\n2,0.25,1,\n");
}

TEST_F(HistoryCommand, RefusesWhatNoStateHas) {
  ExpectRefused({"NOPE"}, "no state has values of \"NOPE\"; orv info lists the results of the file");
  ExpectRefused({"STRESS", "--entity", "BEAM"},
                "no state has values of \"STRESS\" of \"BEAM\"; orv info lists the results of the file");
  ExpectRefused({"TEMP"}, "no state has values of \"TEMP\"; they are constant: orv values shows them");
  ExpectRefused({"STRESS", "--ids", "12,99"},
                "\"STRESS\" has no value at id 99 in any state; orv values shows which ids there are");
  ExpectRefused({"STRESS", "--ids", "12", "--layer", "3"},
                "\"STRESS\" has no layer 3; leave out --layer to see which there are");
  ExpectRefused({"STRESS", "--component", "SZZ"}, "\"STRESS\" has no component \"SZZ\"; its components are SXX, S,Y");
}

TEST_F(HistoryCommand, RefusesWhatABlockOverAllStatesLacks) {
  ExpectRefused({"ENERGY", "--ids", "1,7"},
                "\"ENERGY\" has no value at id 7 in any state; leave out --ids to see which there are");
  ExpectRefused({"ENERGY", "--layer", "2"}, "\"ENERGY\" has no layer 2; leave out --layer to see which there are");
}

TEST_F(HistoryCommand, IsWhereValuesAtAStateSendForABlockOverAllStates) {
  const ProgramRun run = RunOrv({"values", file_.path(), "--var", "ENERGY", "--state", "1"});
  ExpectTrouble(run, file_.path(),
                "state 1 has no values of \"ENERGY\"; they are stored over all states: orv history "
                "shows them");
}

TEST_F(HistoryCommand, ShowsUnitsInHeadings) {
  const std::string path = Import(WriteFile("run.frd", StressRun()), {"--units", "mm-t-s"});
  const ProgramRun run = RunOrv({"history", path, "--var", "STRESS", "--ids", "1", "--component", "SXX", "--csv"});
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, StartsWith("state,TIME [s],STEP,SXX [MPa]\n1,"));
}

TEST_F(HistoryCommand, NamesTheZone) {
  AddIndex(AddNodalResult(file_, kState1, "ODD/INLET", 1000, 1, 1), {0.125, 1})
      .text("etypvar", "ODD")
      .text("etypzone", "INLET")
      .dataset<std::int32_t>("entid", {1}, {2})
      .dataset<float>("res", {1, 1}, {77});
  EXPECT_THAT(History({"ODD", "--ids", "2", "--csv"}),
              StartsWith("state,TIME,STEP,VALUE@2/INLET,VALUE@2\n1,0.125,1,77,inf\n"));
  const json history = json::parse(History({"ODD", "--ids", "2", "--json"}));
  EXPECT_EQ(history.at("curves").at(0).at("zone"), "INLET");
  EXPECT_FALSE(history.at("curves").at(1).contains("zone"));
}

TEST_F(HistoryCommand, TakesTheFirstOfTwoValuesOfAnEntity) {
  AddIndex(AddNodalResult(file_, kState1, "ODD/AGAIN", 1000, 1, 1), {0.125, 1})
      .text("etypvar", "ODD")
      .dataset<std::int32_t>("entid", {1}, {2})
      .dataset<float>("res", {1, 1}, {77});
  EXPECT_THAT(History({"ODD", "--ids", "2", "--csv"}), StartsWith("state,TIME,STEP,VALUE\n1,0.125,1,77\n"));
}

TEST_F(HistoryCommand, ComesFromTheStatesWhereTheyHaveTheIdOnAnotherEntityType) {
  AddMultiState(file_, "SHELL", "STRESS", {11, 21});
  EXPECT_THAT(History({"STRESS", "--ids", "21", "--csv"}),
              StartsWith("state,TIME,STEP,SXX,\"S,Y\"\n1,0.125,1,-1,-2\n"));
  EXPECT_THAT(History({"STRESS", "--ids", "11", "--entity", "SHELL", "--csv"}),
              StartsWith("state,TIME,STEP,SXX,\"S,Y\"\n1,0.1,1,11.1,-11.1\n"));
}

TEST_F(HistoryCommand, ComesFromTheStatesWhereABlockOverAllStatesIsDamagedOrTooShort) {
  AddMultiState(file_, "NODE", "WAVE", {5, 6});
  const std::string block = "/post/multistate/multientityresults/NODE/WAVE/orvblock";
  for (const int states : {0, 1, 12}) {
    file_.at(block).integer("nstate", states);
    EXPECT_EQ(RunOrv({"history", file_.path(), "--var", "WAVE", "--ids", "5", "--component", "A", "--csv"}).out,
              "state,TIME,STEP,A.re,A.im\n1,0.125,1,0.1,-1e-300\n2,0.25,1,,\n")
        << states;
  }
}

TEST_F(HistoryCommand, TakesTheIndexOfTheStatesWhereABlockHasNone) {
  AddMultiState(file_, "NODE", "WAVE", {5, 6});
  file_.at("/post/multistate/multientityresults/NODE/WAVE/orvblock").drop("indexval");
  EXPECT_EQ(History({"WAVE", "--ids", "5", "--component", "A", "--csv"}),
            "state,TIME,STEP,A\n1,0.125,1,11.1\n2,0.25,1,21.1\n3,,,31.1\n");
}

TEST_F(HistoryCommand, RefusesALayerThatIsNone) {
  const ProgramRun run = Run({"STRESS", "--layer", "0"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.err, HasSubstr("--layer: Value 0 not in range 1 to 2147483647"));
}

// ---- Drawings

class HistoryPlot : public HistoryCommand {
 protected:
  std::string Draw(const std::string& name, const std::vector<std::string>& options) {
    std::vector<std::string> all = options;
    all.insert(all.end(), {"--plot", TempPath(name)});
    EXPECT_EQ(History(all), "");
    return BytesOf(TempPath(name));
  }
};

TEST_F(HistoryPlot, IsAnSvgWithTitleAxesAndCurves) {
  const std::string svg = Draw("a.svg", {"ENERGY"});
  EXPECT_THAT(svg, StartsWith("<?xml"));
  for (const char* text : {">ENERGY<", ">TIME<", ">GAIN@1<", ">LOSS@1<", ">GAIN@2<", ">LOSS@2<"}) {
    EXPECT_THAT(svg, HasSubstr(text));
  }
  EXPECT_THAT(svg, HasSubstr("</svg>"));
}

TEST_F(HistoryPlot, TellsUnitsOnItsAxes) {
  const std::string path = Import(WriteFile("run.frd", StressRun()), {"--units", "mm-t-s"});
  const ProgramRun run =
      RunOrv({"history", path, "--var", "STRESS", "--ids", "1", "--component", "SXX", "--plot", TempPath("a.svg")});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  const std::string svg = BytesOf(TempPath("a.svg"));
  EXPECT_THAT(svg, HasSubstr(">TIME [s]<"));
  EXPECT_THAT(svg, HasSubstr(">SXX [MPa]<"));
}

TEST_F(HistoryPlot, IsAPngByItsName) { EXPECT_THAT(Draw("a.png", {"ENERGY"}), StartsWith("\x89PNG\r\n")); }

TEST_F(HistoryPlot, GoesWithNumbersWhereTheyAreAskedFor) {
  EXPECT_THAT(History({"ENERGY", "--csv", "--plot", TempPath("a.svg")}), StartsWith("state,TIME,STEP,GAIN@1"));
  EXPECT_TRUE(std::filesystem::exists(TempPath("a.svg")));
}

TEST_F(HistoryPlot, TakesTextsOfAFileForTextsOnly) {
  const std::string name = "x'; system('touch taken') #`touch taken`";
  AddVariable(file_, name, "", 0, {"'\"\\n`touch taken`"});
  file_.at("/post/multistate/multientityresults/GLOBAL/ODD2/orvblock")
      .integer("block", 1050)
      .text("etyp", "GLOBAL")
      .text("etypvar", name)
      .integer("nent", 1)
      .integer("ncoo", 1)
      .integer("nstate", 1)
      .integer("nindex", 0)
      .integer("fswitch", 0)
      .dataset<std::int32_t>("entid", {1}, {1})
      .dataset<float>("res", {1, 1, 1}, {1});
  const std::string folder = TempPath("here");
  std::filesystem::create_directory(folder);
  Surroundings there;
  there.folder = folder;
  const ProgramRun run = Run({name, "--plot", "a.svg"}, there);
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"a.svg"});
  EXPECT_THAT(BytesOf(folder + "/a.svg"), HasSubstr("touch taken"));
}

TEST_F(HistoryPlot, OfAnotherKindIsRefused) {
  const ProgramRun run = Run({"ENERGY", "--plot", TempPath("a.pdf")});
  ExpectTrouble(run, TempPath("a.pdf"), "is of a kind that cannot be drawn");
}

TEST_F(HistoryPlot, WithoutItsProgramSaysWhatToInstallAndLeavesTheOldPicture) {
  WriteFile("a.svg", "old");
  const ProgramRun run = RunCommand(
      "env", {"PATH=/nowhere", ORVIO_PROGRAM, "history", file_.path(), "--var", "ENERGY", "--plot", TempPath("a.svg")});
  ExpectTrouble(run, "gnuplot", "is not installed");
  EXPECT_THAT(run.err, HasSubstr("gnuplot-nox"));
  EXPECT_EQ(BytesOf(TempPath("a.svg")), "old");
}

TEST_F(HistoryPlot, DoesNotTakeThePlaceOfItsData) {
  const std::string path = TempPath("data.svg");
  std::filesystem::copy_file(file_.path(), path);
  const std::string before = BytesOf(path);
  ExpectTrouble(RunOrv({"history", path, "--var", "ENERGY", "--plot", path}), path, "is the file to read");
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(HistoryPlot, ThatCannotBeWrittenLeavesNothing) {
  const ProgramRun run = Run({"ENERGY", "--plot", TempPath("none") + "/a.svg"});
  ExpectTrouble(run, TempPath("none") + "/a.svg", "cannot be created");
}

// ---- A real result

TEST_F(ProgramTest, HistoryOfANodeOfThePlateEqualsItsValuesStateByState) {
  const std::string result = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
  if (!std::filesystem::exists(result)) GTEST_SKIP() << "no shared data at " << ORVIO_SHARED_DATA;
  const std::string path = Import(result);
  const auto parsed = [&](std::vector<std::string> words) {
    words.insert(words.end(), {path, "--var", "Translational_Displacement", "--ids", "637", "--json"});
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return json::parse(run.out);
  };
  const json history = parsed({"history"}), values = parsed({"values", "--states", "1:last"});
  ASSERT_EQ(history.at("states").size(), 51U);
  ASSERT_EQ(history.at("curves").size(), 3U);
  ASSERT_EQ(values.at("blocks").size(), 51U);
  for (std::size_t state = 0; state < 51; ++state) {
    json at_state = json::array();
    for (const json& curve : history.at("curves")) at_state.push_back(curve.at("values").at(state));
    EXPECT_EQ(at_state, values.at("blocks").at(state).at("rows").at(0).at("values")) << state;
  }
  EXPECT_EQ(history.at("curves").at(2).at("values").at(50).get<float>(), -5.53891F);
}

}  // namespace
