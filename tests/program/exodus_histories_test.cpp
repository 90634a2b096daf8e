// What an imported Exodus file holds over all states: its global variables, and chosen nodes and elements. Small files are
// looked at with HDF5 alone, whole results of a solver as a post-processor does.

#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "orvio/orvio.h"
#include "program/exodus_forge.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The values of variable v (from 1) at state s (from 0) are 10 v + s.
exodus_forge::ForgedExodus ExodusWithGlobals() {
  return exodus_forge::SmallExodus()
      .dimension("num_glo_var", 4)
      .texts("name_glo_var", {"num_glo_var", "len_name"}, {"Energy", "force_x", "force_y", "force_z"})
      .doubles("vals_glo_var", {"time_step", "num_glo_var"}, {10, 20, 30, 40, 11, 21, 31, 41});
}

constexpr char kMulti[] = "/post/multistate/multientityresults/";

class ExodusHistories : public ProgramTest {
 protected:
  RawFile ImportRun(const exodus_forge::ForgedExodus& file, const std::vector<std::string>& options = {}) {
    return RawFile(Import(file.Write(TempPath("run.e")), options));
  }

  static std::string Block(const std::string& name) { return kMulti + name + "/orvblock"; }
};

TEST_F(ExodusHistories, HoldTheGlobalVariablesOfTheModelAsOneEntity) {
  const RawFile raw = ImportRun(ExodusWithGlobals());
  const std::string energy = Block("GLOBAL/Energy");
  EXPECT_EQ(raw.attribute_int(energy, "block"), 1050);
  EXPECT_EQ(raw.attribute_int(energy, "nstate"), 2);
  EXPECT_EQ(raw.attribute_int(energy, "nent"), 1);
  EXPECT_EQ(raw.attribute_int(energy, "ncoo"), 1);
  EXPECT_EQ(raw.attribute_int(energy, "nindex"), 2);
  EXPECT_THAT(raw.shape(energy + "/res"), ElementsAre(2, 1, 1));
  EXPECT_THAT(raw.values<double>(energy + "/res"), ElementsAre(10, 11));
  EXPECT_THAT(raw.values<std::int32_t>(energy + "/entid"), ElementsAre(1));
}

TEST_F(ExodusHistories, HoldComponentsThatBelongTogetherInOneBlock) {
  const RawFile raw = ImportRun(ExodusWithGlobals());
  EXPECT_THAT(raw.shape(Block("GLOBAL/force") + "/res"), ElementsAre(2, 1, 3));
  EXPECT_THAT(raw.values<double>(Block("GLOBAL/force") + "/res"), ElementsAre(20, 30, 40, 21, 31, 41));
}

TEST_F(ExodusHistories, HaveAnIndexTableOfTimeAndStep) {
  const RawFile raw = ImportRun(ExodusWithGlobals());
  const std::string energy = Block("GLOBAL/Energy");
  EXPECT_THAT(raw.shape(energy + "/indexval"), ElementsAre(2, 2));
  EXPECT_THAT(raw.values<double>(energy + "/indexval"), ElementsAre(0.5, 1, 1.5, 2));
  EXPECT_THAT(raw.values<std::int32_t>(energy + "/indexident"), ElementsAre(1, 1, 2, 2));
}

TEST_F(ExodusHistories, AreNotThereWithoutGlobalVariablesAndChosenEntities) {
  EXPECT_FALSE(ImportRun(exodus_forge::SmallExodus()).exists(std::string(kMulti) + "GLOBAL"));
}

TEST_F(ExodusHistories, OfNodesHoldTheirResultsInTheOrderOfTheFile) {
  const RawFile raw = ImportRun(exodus_forge::SmallExodus(), {"--history", "node:110,102"});
  const std::string temperature = Block("NODE/temp");
  EXPECT_THAT(raw.values<std::int32_t>(temperature + "/entid"), ElementsAre(102, 110));
  EXPECT_THAT(raw.shape(temperature + "/res"), ElementsAre(2, 2, 1));
  EXPECT_THAT(raw.values<double>(temperature + "/res"), ElementsAre(401, 409, 411, 419));
  EXPECT_THAT(raw.values<double>(Block("NODE/Translational_Displacement") + "/res"),
              ElementsAre(201, 301, 101, 209, 309, 109, 211, 311, 111, 219, 319, 119));
}

TEST_F(ExodusHistories, OfElementsStandAmongTheEntityResultsWithAZonePerPoint) {
  const RawFile raw = ImportRun(exodus_forge::SmallExodus(), {"--history", "element:11,22"});
  EXPECT_THAT(raw.values<double>(Block("HEXA8/stress") + "/res"),
              ElementsAre(100, 300, 600, 200, 400, 500, 110, 310, 610, 210, 410, 510));
  EXPECT_THAT(raw.values<double>(Block("HEXA8/eqps/POINT_1") + "/res"), ElementsAre(800, 810));
  EXPECT_THAT(raw.values<double>(Block("HEXA8/eqps/POINT_2") + "/res"), ElementsAre(700, 710));
  EXPECT_EQ(raw.attribute_int(Block("HEXA8/eqps/POINT_2"), "zoneid"), 2);
  EXPECT_THAT(raw.values<std::int32_t>(Block("QUAD4/thick") + "/entid"), ElementsAre(22));
  EXPECT_THAT(raw.values<double>(Block("QUAD4/thick") + "/res"), ElementsAre(901, 911));
}

TEST_F(ExodusHistories, TakeRangesAndBothKindsOfIds) {
  const RawFile raw = ImportRun(exodus_forge::SmallExodus(), {"--history", "node:101-103,element:21"});
  EXPECT_THAT(raw.values<std::int32_t>(Block("NODE/temp") + "/entid"), ElementsAre(101, 102, 103));
  EXPECT_THAT(raw.values<std::int32_t>(Block("QUAD4/thick") + "/entid"), ElementsAre(21));
}

TEST_F(ExodusHistories, OfFloatsAreFloats) {
  auto file = exodus_forge::SmallExodus().retype("vals_nod_var4", NC_FLOAT);
  const RawFile raw = ImportRun(file, {"--history", "node:101"});
  EXPECT_EQ(raw.values<float>(Block("NODE/temp") + "/res").size(), 2U);
}

TEST_F(ExodusHistories, OfLayersAreCurvesOfTheirZones) {
  const std::string path = Import(exodus_forge::SmallExodus().Write(TempPath("run.e")), {"--history", "element:11"});
  EXPECT_EQ(RunOrv({"history", path, "--var", "eqps", "--entity", "HEXA8", "--csv"}).out,
            "state,TIME,STEP,eqps@11/POINT_1,eqps@11/POINT_2\n1,0.5,1,800,700\n2,1.5,2,810,710\n");
}

TEST_F(ExodusHistories, AreCountedInTheSummary) {
  const ProgramRun run = RunOrv({"import", ExodusWithGlobals().Write(TempPath("run.e")), TempPath("out.orv")});
  EXPECT_THAT(run.err, HasSubstr("2 states, "));
  EXPECT_THAT(run.err, HasSubstr(", 2 histories\n"));
}

TEST_F(ExodusHistories, OfUnknownEntitiesAreRefusedAndLeaveNoFile) {
  const std::string input = exodus_forge::SmallExodus().Write(TempPath("run.e"));
  for (const auto& [option, told] : std::vector<std::pair<std::string, std::string>>{
           {"node:101,1", "has no node 1;"}, {"element:12", "has no element 12;"}}) {
    ExpectTrouble(RunOrv({"import", input, TempPath("out.orv"), "--history", option}), input, told);
    EXPECT_FALSE(std::filesystem::exists(TempPath("out.orv")));
  }
}

TEST_F(ExodusHistories, AreAskedForWithTheKindOfEntity) {
  const std::string input = exodus_forge::SmallExodus().Write(TempPath("run.e"));
  for (const char* option : {"5", "side:5", "node:x", "node:"}) {
    const ProgramRun run = RunOrv({"import", input, TempPath("out.orv"), "--history", option});
    EXPECT_EQ(run.exit_code, 2) << option;
    EXPECT_THAT(run.err, HasSubstr("--history")) << option;
  }
}

TEST_F(ExodusHistories, AreForExodusFilesOnly) {
  const ProgramRun run = RunOrv({"import", "x.frd", TempPath("out.orv"), "--history", "node:1"});
  ExpectTrouble(run, "x.frd", "has its results state by state only");
}

TEST_F(ExodusHistories, AreReadByTheLibraryInOneCall) {
  const std::string path = Import(ExodusWithGlobals().Write(TempPath("run.e")));
  ORVFiler filer(path.c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  std::vector<int> ids, index_ids;
  std::vector<std::uint64_t> shape;
  std::vector<float> values, index_values;
  std::uint64_t states = 0;
  ASSERT_EQ(filer.GetMultistateResultValues("GLOBAL", "force", ids, shape, values, states, index_ids, index_values, -1),
            0);
  EXPECT_EQ(states, 2U);
  EXPECT_THAT(values, ElementsAre(20, 30, 40, 21, 31, 41));
  EXPECT_THAT(index_values, ElementsAre(0.5F, 1, 1.5F, 2));
}

// ---- Whole results of a solver

struct ExodusResult {
  const char* file;
  const char* facts;

  friend std::ostream& operator<<(std::ostream& out, const ExodusResult& result) { return out << result.file; }
};

class ExodusGlobals : public ProgramTest, public testing::WithParamInterface<ExodusResult> {
 protected:
  void SetUp() override {
    const std::string folder = std::string(ORVIO_SHARED_DATA) + "/";
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no shared data at " << folder;
    facts_ = json::parse(std::ifstream(folder + GetParam().facts));
    path_ = Import(folder + GetParam().file);
  }

  /// The history of a variable of the solver.
  json CurveOf(std::string name) const {
    std::vector<std::string> words = {"history", path_, "--json"};
    if (name.starts_with("momentum_") || name.starts_with("Momentum_")) {
      words.insert(words.end(), {"--component", name.substr(9)});
      name.resize(8);
    }
    if (name == "time") name = "time_2";  // the column of the state index has the name
    words.insert(words.end(), {"--var", name, "--entity", "GLOBAL"});
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return json::parse(run.out);
  }

  json facts_;
  std::string path_;
};

TEST_P(ExodusGlobals, HaveTheValuesOfTheLastState) {
  const json& last = facts_.at("global_values_last_state");
  ASSERT_EQ(last.size(), facts_.at("results").at("global_variables").size());
  for (const auto& [name, value] : last.items()) {
    const json history = CurveOf(name);
    ASSERT_EQ(history.at("curves").size(), 1U) << name;
    EXPECT_EQ(history.at("curves").at(0).at("values").back(), value) << name;
  }
}

TEST_P(ExodusGlobals, HaveTheProbedValuesAndTheTimes) {
  int probes = 0;
  for (const json& probe : facts_.at("probes")) {
    if (probe.at("where") != "global") continue;
    ++probes;
    const json history = CurveOf(probe.at("result"));
    const std::size_t state = probe.at("state");
    EXPECT_EQ(history.at("curves").at(0).at("values").at(state), probe.at("value")) << probe;
    EXPECT_EQ(history.at("states").at(state).at("index").at(0), facts_.at("times").at(state));
    EXPECT_EQ(history.at("states").size(), facts_.at("times").size());
  }
  EXPECT_GE(probes, 2);
}

INSTANTIATE_TEST_SUITE_P(
    OfSolvers, ExodusGlobals,
    testing::Values(ExodusResult{"exo_block_crush/block_crush_1.ex2", "exo_block_crush/facts.json"},
                    ExodusResult{"exo_five_blocks/exomerge_unit_test.e", "exo_five_blocks/facts.json"}),
    [](const auto& result) { return std::string(result.index == 0 ? "BlockCrush" : "FiveBlocks"); });

}  // namespace
