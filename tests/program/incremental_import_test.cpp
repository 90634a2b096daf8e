// States that hold only what changed: what an import with --incremental writes, looked at with HDF5 alone. What the
// program makes of such files is tested in incremental_commands_test.

#include <gmock/gmock.h>

#include <cmath>
#include <map>

#include "orvio/orvio.h"
#include "program/exodus_forge.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using Ids = std::vector<std::int32_t>;

const std::vector<FrdComponent> kScalar = {{"T"}};

/// A temperature at the nodes 1, 2 and 5.
std::string Heat(int state, double at_1, double at_2, double at_5, int step = 1) {
  return FrdBlock({state, std::to_string(state) + ".00000E+00", step}, "NDTEMP", kScalar,
                  {{1, {at_1}}, {2, {at_2}}, {5, {at_5}}});
}

std::string StatePath(int state) { return "/post/singlestate/state00000000000" + std::to_string(state); }

std::string HeatOf(int state) { return StatePath(state) + "/entityresults/NODE/NDTEMP/orvblock"; }

class IncrementalImport : public ProgramTest {
 protected:
  RawFile ImportRun(const std::string& blocks, std::vector<std::string> options = {"--incremental", "0"}) const {
    return RawFile(Import(WriteFile("run.frd", FrdRun(blocks)), options));
  }

  ProgramRun RunImport(const std::string& blocks, const std::vector<std::string>& options) const {
    std::vector<std::string> arguments = {"import", WriteFile("run.frd", FrdRun(blocks)), TempPath("out.orv")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return RunOrv(arguments);
  }

  static std::vector<std::int64_t> Flags(const RawFile& raw, int states) {
    std::vector<std::int64_t> flags;
    for (int state = 1; state <= states; ++state) flags.push_back(raw.attribute_int(HeatOf(state), "indexic"));
    return flags;
  }
};

TEST_F(IncrementalImport, StoresTheFirstStateWholeAndOfTheOthersWhatChanged) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50) + Heat(3, 11, 21, 51));
  EXPECT_THAT(Flags(raw, 3), ElementsAre(0, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(1) + "/entid"), ElementsAre(1, 2, 5));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(2));
  EXPECT_THAT(raw.values<double>(HeatOf(2) + "/res"), ElementsAre(21));
  EXPECT_EQ(raw.attribute_int(HeatOf(2), "nent"), 1);
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(3) + "/entid"), ElementsAre(1, 5));
  EXPECT_THAT(raw.values<double>(HeatOf(3) + "/res"), ElementsAre(11, 51));
}

TEST_F(IncrementalImport, WithoutTheOptionStoresEveryStateWhole) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50), {});
  EXPECT_THAT(Flags(raw, 2), ElementsAre(0, 0));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(1, 2, 5));
  EXPECT_THAT(raw.values<double>(HeatOf(2) + "/indexval"), ElementsAre(2, 1));
}

TEST_F(IncrementalImport, StoresTheFirstEntityWhereNothingChanged) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 20, 50));
  EXPECT_THAT(Flags(raw, 2), ElementsAre(0, 1));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(1));
  EXPECT_THAT(raw.values<double>(HeatOf(2) + "/res"), ElementsAre(10));
}

TEST_F(IncrementalImport, MakesAStateFullInWhichEverythingChanged) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 11, 21, 51) + Heat(3, 11, 21, 52));
  EXPECT_THAT(Flags(raw, 3), ElementsAre(0, 0, 1));
}

TEST_F(IncrementalImport, MakesOneOfNStatesFullOnDemand) {
  std::string run;
  for (int state = 1; state <= 7; ++state) run += Heat(state, 10, 20, 50 + state);
  EXPECT_THAT(Flags(ImportRun(run, {"--incremental", "0", "--full-every", "3"}), 7), ElementsAre(0, 1, 1, 0, 1, 1, 0));
  EXPECT_THAT(Flags(ImportRun(run, {"--incremental", "0", "--full-every", "1"}), 7), ElementsAre(0, 0, 0, 0, 0, 0, 0));
}

TEST_F(IncrementalImport, MakesOneOfTenStatesFullUnlessTold) {
  std::string run;
  for (int state = 1; state <= 9; ++state) run += Heat(state, 10, 20, 50 + state);
  for (int state = 10; state <= 12; ++state) {
    run += FrdBlock({state, std::to_string(state) + ".0000E+00", 1}, "NDTEMP", kScalar,
                    {{1, {10}}, {2, {20}}, {5, {50.0 + state}}});
  }
  const auto path = [](int state) {
    return "/post/singlestate/state0000000000" + std::to_string(state) + "/entityresults/NODE/NDTEMP/orvblock";
  };
  const RawFile tenth = ImportRun(run);
  EXPECT_EQ(tenth.attribute_int(path(10), "indexic"), 1);
  EXPECT_EQ(tenth.attribute_int(path(11), "indexic"), 0);
  EXPECT_EQ(tenth.attribute_int(path(12), "indexic"), 1);
}

TEST_F(IncrementalImport, MeasuresChangesAgainstWhatAReaderSees) {
  // Steps of 0.4 stay below the tolerance one by one; three of them do not.
  const RawFile raw = ImportRun(
      Heat(1, 10, 20, 50) + Heat(2, 10.4, 20, 50) + Heat(3, 10.8, 20, 50) + Heat(4, 11.2, 20, 50) + Heat(5, 12, 20, 50),
      {"--incremental", "1"});
  EXPECT_THAT(Flags(raw, 5), ElementsAre(0, 1, 1, 1, 1));
  EXPECT_THAT(raw.values<float>(HeatOf(3) + "/res"),
              ElementsAre(10.0F));  // nothing changed: the first entity as it was
  EXPECT_THAT(raw.values<float>(HeatOf(4) + "/res"), ElementsAre(11.2F));
  EXPECT_THAT(raw.values<float>(HeatOf(5) + "/res"), ElementsAre(11.2F));
}

TEST_F(IncrementalImport, TakesAChangeOfJustTheToleranceForNone) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 20.5, 50.625), {"--incremental", "0.5"});
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(5));
}

TEST_F(IncrementalImport, StoresAllComponentsOfAnEntityOfWhichOneChanged) {
  const auto block = [](int state, double z) {
    return FrdBlock({state}, "DISP", kVectorD, {{1, {1, 2, 3}}, {2, {4, 5, z}}, {5, {7, 8, 9}}});
  };
  const RawFile raw = ImportRun(block(1, 6) + block(2, 6.5));
  const std::string path = StatePath(2) + "/entityresults/NODE/Translational_Displacement/orvblock";
  EXPECT_THAT(raw.values<std::int32_t>(path + "/entid"), ElementsAre(2));
  EXPECT_THAT(raw.values<double>(path + "/res"), ElementsAre(4, 5, 6.5));
}

TEST_F(IncrementalImport, KeepsASignOfZeroAndWhatIsNoNumber) {
  const double none = std::nan("");
  const RawFile raw = ImportRun(Heat(1, 0.0, none, 50) + Heat(2, -0.0, none, 50) + Heat(3, -0.0, 1, 50));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(1));
  EXPECT_TRUE(std::signbit(raw.values<double>(HeatOf(2) + "/res").at(0)));
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(3) + "/entid"), ElementsAre(2));
  const RawFile tolerant = ImportRun(Heat(1, 0, 1, 50) + Heat(2, 0, none, 50), {"--incremental", "100"});
  EXPECT_THAT(tolerant.values<std::int32_t>(HeatOf(2) + "/entid"), ElementsAre(2));
}

TEST_F(IncrementalImport, MakesAStateFullWithAResultThatTheLastFullOneLacks) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 20, 51) +
                                FrdBlock({2, "2.00000E+00"}, "PE", {{"PE"}}, {{1, {4}}}) + Heat(3, 10, 20, 52));
  EXPECT_THAT(Flags(raw, 3), ElementsAre(0, 0, 1));
  EXPECT_EQ(raw.attribute_int(StatePath(2) + "/entityresults/NODE/PE/orvblock", "indexic"), 0);
}

TEST_F(IncrementalImport, MakesAStateFullInWhichAResultHasOtherEntities) {
  const RawFile raw =
      ImportRun(Heat(1, 10, 20, 50) + FrdBlock({2, "2.00000E+00"}, "NDTEMP", kScalar, {{1, {10}}, {2, {20}}}) +
                FrdBlock({3, "3.00000E+00"}, "NDTEMP", kScalar, {{2, {20}}, {1, {11}}}));
  EXPECT_THAT(Flags(raw, 3), ElementsAre(0, 0, 0));
}

TEST_F(IncrementalImport, MakesStatesFullWhereAnIdStandsTwice) {
  const auto block = [](int state, double first_of_2) {
    return FrdBlock({state}, "NDTEMP", kScalar, {{1, {10}}, {2, {first_of_2}}, {2, {21}}, {5, {50}}});
  };
  EXPECT_THAT(Flags(ImportRun(block(1, 20) + block(2, 99)), 2), ElementsAre(0, 0));
}

TEST_F(IncrementalImport, MakesAStateFullInWhichTheEntitiesHaveAnotherOrder) {
  const auto block = [](int state, int a, int b) {
    return FrdBlock({state}, "NDTEMP", kScalar, {{a, {10}}, {b, {20}}, {5, {50}}});
  };
  EXPECT_THAT(Flags(ImportRun(block(1, 1, 2) + block(2, 2, 1)), 2), ElementsAre(0, 0));
}

TEST_F(IncrementalImport, GoesOnWithAResultThatAStateLacked) {
  const auto strain = [](int state, double value) {
    return FrdBlock({state, std::to_string(state) + ".00000E+00"}, "PE", {{"PE"}}, {{1, {4}}, {2, {value}}});
  };
  const RawFile raw =
      ImportRun(Heat(1, 10, 20, 50) + strain(1, 5) + Heat(2, 10, 20, 51) + Heat(3, 10, 20, 51) + strain(3, 6));
  const std::string path = "/entityresults/NODE/PE/orvblock";
  EXPECT_FALSE(raw.exists(StatePath(2) + "/entityresults/NODE/PE"));
  EXPECT_EQ(raw.attribute_int(StatePath(3) + path, "indexic"), 1);
  EXPECT_THAT(raw.values<std::int32_t>(StatePath(3) + path + "/entid"), ElementsAre(2));
}

TEST_F(IncrementalImport, MakesStatesWithComplexResultsFull) {
  const auto pair = [](int state, double imaginary) {
    return FrdBlock({state}, "DISP", kVectorD, {{1, {1, 2, 3}}, {2, {4, 5, 6}}}) +
           FrdBlock({state}, "DISPI", kVectorD, {{1, {1, 2, 3}}, {2, {4, 5, imaginary}}});
  };
  const RawFile raw = ImportRun(pair(1, 6) + pair(2, 7));
  for (int state : {1, 2}) {
    const std::string block = StatePath(state) + "/entityresults/NODE/Complex_Translational_Displacement/orvblock";
    ASSERT_TRUE(raw.exists(block));
    EXPECT_EQ(raw.attribute_int(block, "block"), 1001);
    EXPECT_EQ(raw.attribute_int(block, "indexic"), 0);
  }
}

TEST_F(IncrementalImport, HasOneIndexColumnWithTheNumberOfTheState) {
  const RawFile raw = ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50));
  EXPECT_EQ(raw.attribute_int(HeatOf(2), "nindex"), 1);
  EXPECT_THAT(raw.values<std::int32_t>(HeatOf(2) + "/indexident"), ElementsAre(2));
  EXPECT_THAT(raw.values<double>(HeatOf(2) + "/indexval"), ElementsAre(2));
}

TEST_F(IncrementalImport, TellsThatTheStepsOfSeveralWereLeftOut) {
  const ProgramRun one = RunImport(Heat(1, 1, 2, 3) + Heat(2, 1, 2, 4), {"--incremental", "0"});
  EXPECT_EQ(one.err, TempPath("out.orv") + ": 3 nodes, 1 elements, 2 states (1 of them full), 2 variables\n");
  const ProgramRun two = RunImport(Heat(1, 1, 2, 3, 1) + Heat(2, 1, 2, 4, 2), {"--incremental", "0"});
  EXPECT_THAT(two.err, HasSubstr("run.frd: the steps of the states, 2 in all, were left out: states that hold changes "
                                 "have one index column\n"));
}

TEST_F(IncrementalImport, DeclaresItselfInTheNameOfTheSolver) {
  const auto solver = [](const RawFile& raw) {
    const std::string text = raw.attribute_text("/post/constant/system/orvblock", "solver_name");
    return text.substr(0, text.find_last_not_of(' ') + 1);
  };
  EXPECT_EQ(solver(ImportRun(Heat(1, 1, 2, 3))), "INC");
  EXPECT_EQ(solver(ImportRun(Heat(1, 1, 2, 3), {"--incremental", "0", "--units", "mm-t-s"})), "INC");
}

/// Two states of two shells, elements 21 and 22, with `eqps` at two points each.
exodus_forge::ForgedExodus ShellRun(double second_point_of_22) {
  return exodus_forge::SmallExodus()
      .dimension("num_elem_var", 2)
      .texts("name_elem_var", {"num_elem_var", "len_name"}, {"eqps_1", "eqps_2"})
      .integers("elem_var_tab", {"num_el_blk", "num_elem_var"}, {0, 0, 1, 1})
      .doubles("vals_elem_var1eb2", {"time_step", "num_el_in_blk2"}, {0.1, 0.2, 0.1, 0.2})
      .doubles("vals_elem_var2eb2", {"time_step", "num_el_in_blk2"}, {0.3, 0.4, 0.3, second_point_of_22});
}

TEST_F(IncrementalImport, OfElementsStoresThoseWithAChangeInAnyLayer) {
  const std::string block = StatePath(2) + "/elementresults/QUAD4/eqps/orvblock";
  const std::string run = ShellRun(0.4000000000001).Write(TempPath("run.e"));
  const RawFile raw(Import(run, {"--incremental", "0"}));
  EXPECT_EQ(raw.attribute_int(block, "indexic"), 1);
  EXPECT_THAT(raw.values<std::int32_t>(block + "/idele"), ElementsAre(22));
  EXPECT_THAT(raw.shape(block + "/res"), ElementsAre(1, 2, 1));
  EXPECT_THAT(raw.values<double>(block + "/res"), ElementsAre(0.2, 0.4000000000001));
}

TEST_F(IncrementalImport, StoresHistoriesWithTheSameIndexColumn) {
  const std::string run = ShellRun(0.4).Write(TempPath("run.e"));
  const RawFile raw(Import(run, {"--incremental", "0", "--history", "node:101"}));
  const std::string group = "/post/multistate/multientityresults/NODE";
  ASSERT_FALSE(raw.children(group).empty());
  const std::string block = group + "/" + raw.children(group).front() + "/orvblock";
  EXPECT_EQ(raw.attribute_int(block, "nindex"), 1);
  EXPECT_THAT(raw.values<double>(block + "/indexval"), ElementsAre(0.5, 1.5));
  EXPECT_THAT(raw.shape(block + "/indexval"), ElementsAre(2, 1));
}

TEST_F(IncrementalImport, OfARunThatBrokeOffTakesWhatIsThere) {
  const std::string run = FrdRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50));
  const std::string cut = run.substr(0, run.size() - std::string(frd_forge::kEnd).size());
  const std::string path = TempPath("imported.orv");
  const ProgramRun partial = RunOrv({"import", WriteFile("cut.frd", cut), path, "--incremental", "0", "--partial"});
  EXPECT_EQ(partial.exit_code, 0) << partial.err;
  EXPECT_THAT(Flags(RawFile(path), 2), ElementsAre(0, 1));
}

TEST_F(IncrementalImport, IsMadeInEachVersionThatCanTell) {
  for (const char* version : {"2.0", "2.1", "2.2"}) {
    const RawFile raw =
        ImportRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50), {"--incremental", "0", "--format-version", version});
    EXPECT_THAT(Flags(raw, 2), ElementsAre(0, 1)) << version;
  }
}

TEST_F(IncrementalImport, IsKnownToAHostForIncremental) {
  const std::string run = WriteFile("run.frd", FrdRun(Heat(1, 10, 20, 50) + Heat(2, 10, 21, 50)));
  for (const bool incremental : {false, true}) {
    std::vector<std::string> options = {"--units", "mm-t-s"};
    if (incremental) options.insert(options.end(), {"--incremental", "0"});
    ORVFiler filer(Import(run, options).c_str());
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    EXPECT_EQ(filer.HasIncremetalData(), incremental);
  }
}

TEST_F(IncrementalImport, IsRefusedForVersionsThatCannotTell) {
  const ProgramRun run = RunImport(Heat(1, 1, 2, 3), {"--incremental", "0", "--format-version", "1.2"});
  ExpectTrouble(run, TempPath("out.orv"), "files before version 2.0 have no place to say so");
}

TEST_F(IncrementalImport, RefusesAToleranceThatIsNoDistance) {
  for (const char* tolerance : {"-1", "nan", "inf", "much"}) {
    const ProgramRun run = RunImport(Heat(1, 1, 2, 3), {std::string("--incremental=") + tolerance});
    EXPECT_EQ(run.exit_code, 2) << tolerance;
    EXPECT_THAT(run.err, HasSubstr("--incremental")) << tolerance;
  }
  EXPECT_THAT(RunImport(Heat(1, 1, 2, 3), {"--full-every", "3"}).err, HasSubstr("--incremental"));
  for (const char* distance : {"0", "1001", "-1"}) {
    EXPECT_EQ(RunImport(Heat(1, 1, 2, 3), {"--incremental", "0", "--full-every", distance}).exit_code, 2) << distance;
  }
}

// ---- A whole run, put together by hand

/// What a reader sees of one block at each state.
class Rebuilt {
 public:
  void Apply(const RawFile& raw, const std::string& block) {
    const auto ids = raw.values<std::int32_t>(block + "/entid");
    const auto values = raw.values<float>(block + "/res");
    const std::size_t width = values.size() / ids.size();
    if (raw.attribute_int(block, "indexic") == 0) rows_.clear();
    is_full_ = raw.attribute_int(block, "indexic") == 0;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      const auto first = values.begin() + static_cast<std::ptrdiff_t>(i * width);
      rows_[ids[i]] = std::vector<float>(first, first + static_cast<std::ptrdiff_t>(width));
    }
  }

  const std::map<std::int32_t, std::vector<float>>& rows() const { return rows_; }
  bool is_full() const { return is_full_; }

 private:
  std::map<std::int32_t, std::vector<float>> rows_;
  bool is_full_ = false;
};

double LargestError(const RawFile& full, const RawFile& incremental, int& full_states) {
  std::map<std::string, Rebuilt> blocks;
  double error = 0;
  full_states = 0;
  for (const std::string& state : full.children("/post/singlestate")) {
    const std::string group = "/post/singlestate/" + state + "/entityresults/NODE";
    EXPECT_EQ(full.children(group), incremental.children(group));
    for (const std::string& name : full.children(group)) {
      const std::string block = group + "/" + name + "/orvblock";
      Rebuilt& rebuilt = blocks[name];
      Rebuilt whole;
      rebuilt.Apply(incremental, block);
      whole.Apply(full, block);
      EXPECT_EQ(rebuilt.rows().size(), whole.rows().size());
      for (const auto& [id, row] : whole.rows()) {
        for (std::size_t i = 0; i < row.size(); ++i) {
          error = std::max(error, std::abs(static_cast<double>(row[i]) - rebuilt.rows().at(id).at(i)));
        }
      }
    }
    full_states += blocks.begin()->second.is_full() ? 1 : 0;
  }
  return error;
}

class IncrementalPlateImpact : public ProgramTest {
 protected:
  void SetUp() override {
    run_ = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
    if (!std::filesystem::exists(run_)) run_ = std::string(ORVIO_SOURCE_DIR) + "/examples/data/plate_impact.frd.gz";
    if (!std::filesystem::exists(run_)) GTEST_SKIP() << "the data of the plate impact are not here";
  }

  std::string ImportAs(const std::string& name, const std::vector<std::string>& options) {
    const std::string made = Import(run_, options);
    std::filesystem::rename(made, TempPath(name));
    return TempPath(name);
  }

  std::string run_;
};

TEST_F(IncrementalPlateImpact, HasTheValuesOfTheFullImportInASmallerFileOrOnesWithinTheTolerance) {
  const std::string full = ImportAs("full.orv", {});
  const std::string exact = ImportAs("exact.orv", {"--incremental", "0"});
  const std::string near = ImportAs("near.orv", {"--incremental", "0.5"});
  int full_states = 0;
  EXPECT_EQ(LargestError(RawFile(full), RawFile(exact), full_states), 0);
  EXPECT_EQ(full_states, 6);  // 1, 11, ..., 51
  EXPECT_LT(std::filesystem::file_size(exact), std::filesystem::file_size(full));
  const double error = LargestError(RawFile(full), RawFile(near), full_states);
  EXPECT_GT(error, 0);
  EXPECT_LE(error, 0.5);
  EXPECT_EQ(full_states, 6);
  EXPECT_LT(std::filesystem::file_size(near), std::filesystem::file_size(exact));
}

}  // namespace
