// orv diff: the values of forged files.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "program/diff_test.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

class DiffCommand : public DiffTest {
 protected:
  void SetStress(const std::vector<float>& values) { At(b_, kShellStress).dataset<float>("res", {2, 2, 2}, values); }
  void SetOdd(const std::vector<float>& values) { At(b_, kOdd).dataset<float>("res", {4, 1}, values); }
};

TEST_F(DiffCommand, OfAFileWithItselfFindsNothing) {
  const ProgramRun run = RunOrv({"diff", a_.path(), a_.path()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "same: 32 values; 5 quantities in 2 states compared\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(DiffCommand, DoesNotMindTheOrderOfRows) {
  At(b_, kTemp).dataset<std::int32_t>("entid", {2}, {1, 3}).dataset<float>("res", {2, 1}, {300, 0.1F});
  At(b_, kShellStress)
      .dataset<std::int32_t>("idele", {2}, {12, 11})
      .dataset<float>("res", {2, 2, 2}, {5, 6, 7, 8, 1, 2, 3, 4});
  ExpectSame();
}

TEST_F(DiffCommand, TellsWhereAValueDiffers) {
  SetStress({1, 2, 3, 4, 5, 6, 9, 8});
  EXPECT_EQ(Differences(),
            "STRESS of SHELL, state 1: 1 of 8 values differ; largest absolute 2 at id 12 layer 2 SXX (7, 9); "
            "largest relative 0.222222 at id 12 layer 2 SXX (7, 9)\n");
  EXPECT_EQ(Summary(), "different: 1 of 32 values, 0 other differences; 5 quantities in 2 states compared\n");
}

TEST_F(DiffCommand, TellsTheLargestDifferencesOfSeveral) {
  SetStress({1.5F, 2, 3, 4, 5, 6, 7, 9});
  EXPECT_EQ(Differences(),
            "STRESS of SHELL, state 1: 2 of 8 values differ; largest absolute 1 at id 12 layer 2 S,Y (8, 9); "
            "largest relative 0.333333 at id 11 layer 1 SXX (1, 1.5)\n");
}

TEST_F(DiffCommand, TellsTheIdOfReorderedRows) {
  At(b_, kTemp).dataset<std::int32_t>("entid", {2}, {1, 3}).dataset<float>("res", {2, 1}, {301, 0.1F});
  EXPECT_EQ(Differences(),
            "TEMP of NODE, constant: 1 of 2 values differ; largest absolute 1 at id 1 C1 (300, 301); "
            "largest relative 0.00332226 at id 1 C1 (300, 301)\n");
}

TEST_F(DiffCommand, TellsThePartOfAComplexValue) {
  At(b_, kWave).dataset<double>("res", {2, 2, 2}, {0.1, -1e-300, 2, 3, 0.30000000000000004, 5, 6, 7.5});
  EXPECT_EQ(Differences(),
            "complex WAVE of NODE, state 1: 1 of 8 values differ; largest absolute 0.5 at id 5000000000 B.im (7, 7.5); "
            "largest relative 0.0666667 at id 5000000000 B.im (7, 7.5)\n");
}

TEST_F(DiffCommand, ComparesDoublesInFull) {
  At(b_, kWave).dataset<double>("res", {2, 2, 2}, {0.1, -1e-300, 2, 3, 0.3, 5, 6, 7});
  EXPECT_THAT(Differences(), HasSubstr("5.55112e-17 at id 5000000000 A.re (0.30000000000000004, 0.3)"));
}

TEST_F(DiffCommand, TellsAComplexResultFromARealOne) {
  At(b_, kWave).integer("block", 1000).dataset<double>("res", {2, 2}, {1, 2, 3, 4});
  EXPECT_EQ(Differences(),
            "only in A: result complex WAVE of NODE, state 1\nonly in B: result WAVE of NODE, state 1\n");
}

TEST_F(DiffCommand, ComparesAllStates) {
  At(b_, std::string(kState2) + "elementresults/SHELL/STRESS")
      .dataset<float>("res", {2, 2, 2}, {10, 20, 30, 40, 50, 60, 70, 81});
  EXPECT_THAT(Differences(), HasSubstr("STRESS of SHELL, state 2: 1 of 8 values differ; largest absolute 1 at id 12"));
}

// ---- Values that are no numbers

TEST_F(DiffCommand, TellsNotANumberFromNumbers) {
  SetOdd({3, kInfinity, -kInfinity, std::numeric_limits<float>::denorm_min()});
  EXPECT_EQ(Differences({"--rel", "1", "--abs", "inf"}),
            "ODD of NODE, state 1: 1 of 4 values differ; largest absolute inf at id 1 VALUE (nan, 3); "
            "largest relative inf at id 1 VALUE (nan, 3)\n");
}

TEST_F(DiffCommand, TellsInfinitiesApart) {
  SetOdd({std::nanf(""), -kInfinity, -kInfinity, std::numeric_limits<float>::denorm_min()});
  EXPECT_THAT(Differences({"--rel", "2", "--abs", "inf"}),
              HasSubstr("1 of 4 values differ; largest absolute inf at id 2"));
}

TEST_F(DiffCommand, TellsAnInfinityFromTheLargestNumber) {
  SetOdd({std::nanf(""), std::numeric_limits<float>::max(), -kInfinity, std::numeric_limits<float>::denorm_min()});
  EXPECT_THAT(Differences({"--rel", "2"}), HasSubstr("at id 2 VALUE (inf, 3.4028235e+38)"));
}

TEST_F(DiffCommand, TellsTheSmallestNumberFromZero) {
  SetOdd({std::nanf(""), kInfinity, -kInfinity, 0});
  EXPECT_THAT(Differences(), HasSubstr("largest absolute 1.4013e-45 at id 4 VALUE (1e-45, 0); largest relative 1 at"));
}

TEST_F(DiffCommand, TakesMinusZeroForZero) {
  At(a_, kTemp).dataset<float>("res", {2, 1}, {0.0F, 300});
  At(b_, kTemp).dataset<float>("res", {2, 1}, {-0.0F, 300});
  ExpectSame();
}

// ---- Tolerances

TEST_F(DiffCommand, TakesAnAbsoluteTolerance) {
  SetStress({1, 2, 3, 4, 5, 6, 7.5F, 8});
  ExpectSame({"--abs", "0.5"});
  EXPECT_THAT(Differences({"--abs", "0.49999"}), HasSubstr("1 of 8 values differ"));
}

TEST_F(DiffCommand, TakesARelativeTolerance) {
  SetStress({1, 2, 3, 4, 5, 6, -14, 8});
  ExpectSame({"--rel", "1.5"});
  EXPECT_THAT(Differences({"--rel", "1.49999"}), HasSubstr("largest relative 1.5 at id 12 layer 2 SXX (7, -14)"));
}

TEST_F(DiffCommand, IsContentWithEitherTolerance) {
  SetStress({1, 2, 3, 4, 5, 6, 14, 8});
  ExpectSame({"--abs", "0.1", "--rel", "0.5"});
  ExpectSame({"--abs", "7", "--rel", "0.1"});
  EXPECT_THAT(Differences({"--abs", "6.9", "--rel", "0.49"}), HasSubstr("1 of 8 values differ"));
}

TEST_F(DiffCommand, TakesATolerancesOfAVariable) {
  SetStress({1, 2, 3, 4, 5, 6, 7.5F, 8});
  ExpectSame({"--tol", "stress=0.5"});
  ExpectSame({"--tol", "STRESS=0,0.07"});
  EXPECT_THAT(Differences({"--tol", "STRESS=0,0.06"}), HasSubstr("1 of 8 values differ"));
  EXPECT_THAT(Differences({"--tol", "WAVE=0.5"}), HasSubstr("1 of 8 values differ"));
  EXPECT_THAT(Differences({"--tol", "STRESS=0", "--abs", "9"}), HasSubstr("1 of 8 values differ"));
  ExpectSame({"--tol", "STRESS=0", "--rel", "0.07"});  // what --tol does not tell, --rel does
}

TEST_F(DiffCommand, TakesATolerancesOfAComponentBeforeThatOfItsVariable) {
  SetStress({1, 2, 3, 4, 5, 6, 7.5F, 8});
  ExpectSame({"--tol", "STRESS_SXX=0.5"});
  ExpectSame({"--tol", "STRESS_SXX=0.5", "--tol", "STRESS=0"});
  EXPECT_THAT(Differences({"--tol", "STRESS_S,Y=0.5"}), HasSubstr("1 of 8 values differ"));
  EXPECT_THAT(Differences({"--tol", "STRESS_SXX=0.5", "--tol", "STRESS_SXX=0.4"}), HasSubstr("1 of 8 values differ"));
}

// ---- Floats and doubles

TEST_F(DiffCommand, TakesADoubleForTheFloatThatItRoundsTo) {
  At(b_, kTemp).dataset<double>("res", {2, 1}, {0.1, 300});
  ExpectSame();
}

TEST_F(DiffCommand, TellsADoubleThatRoundsToAnotherFloat) {
  At(b_, kTemp).dataset<double>("res", {2, 1}, {0.10000001, 300});
  EXPECT_THAT(Differences(), HasSubstr("TEMP of NODE, constant: 1 of 2 values differ; largest absolute 7.45058e-09"));
}

TEST_F(DiffCommand, DoesNotTakeALargeDoubleForAnInfinity) {
  At(b_, kOdd).dataset<double>("res", {4, 1}, {std::nan(""), 1e300, -kInfinity, 1.4e-45});
  EXPECT_THAT(Differences(), HasSubstr("1 of 4 values differ; largest absolute inf at id 2 VALUE (inf, 1e+300)"));
}

// ---- Ids and layers

TEST_F(DiffCommand, TellsIdsOfOneFileOnly) {
  At(b_, kTemp).integer("nent", 3).dataset<std::int32_t>("entid", {3}, {3, 8, 7});
  b_.dataset<float>("res", {3, 1}, {0.2F, 1, 2});
  EXPECT_EQ(Differences(),
            "TEMP of NODE, constant: 1 of 1 values differ; largest absolute 0.1 at id 3 C1 (0.1, 0.2); "
            "largest relative 0.5 at id 3 C1 (0.1, 0.2); 1 id only in A (1), 2 ids only in B (7, 8)\n");
}

TEST_F(DiffCommand, TakesIdsThatStandTwiceInTheirOrder) {
  for (ForgedFile* file : {&a_, &b_}) At(*file, kTemp).dataset<std::int32_t>("entid", {2}, {3, 3});
  ExpectSame();
  At(b_, kTemp).dataset<float>("res", {2, 1}, {300, 0.1F});
  EXPECT_THAT(Differences(), HasSubstr("2 of 2 values differ"));
}

TEST_F(DiffCommand, ComparesTheLayersThatBothHave) {
  At(b_, kShellStress).integer("numl", 1).dataset<float>("res", {2, 1, 2}, {1, 2, 5, 6.5F});
  EXPECT_EQ(Differences(),
            "STRESS of SHELL, state 1: 1 of 4 values differ; largest absolute 0.5 at id 12 layer 1 S,Y (6, 6.5); "
            "largest relative 0.0769231 at id 12 layer 1 S,Y (6, 6.5); 2 layers in A, 1 in B\n");
}

/// Values at node 2 once more, in a zone.
void AddZone(ForgedFile& file, float value, const std::string& group = "INLET") {
  AddNodalResult(file, kState1, "ODD/" + group, 1000, 1, 1)
      .text("etypvar", "ODD")
      .text("etypzone", "INLET")
      .dataset<std::int32_t>("entid", {1}, {2})
      .dataset<float>("res", {1, 1}, {value});
}

TEST_F(DiffCommand, ComparesZonesOneByOne) {
  AddZone(a_, 77);
  AddZone(b_, 77, "ANOTHER_PLACE");
  ExpectSame();
  AddZone(b_, 78, "ANOTHER_PLACE");
  EXPECT_EQ(Differences(),
            "ODD of NODE, zone INLET, state 1: 1 of 1 values differ; largest absolute 1 at id 2 VALUE (77, 78); "
            "largest relative 0.0128205 at id 2 VALUE (77, 78)\n");
}

TEST_F(DiffCommand, TakesTwoBlocksOfTheSameForOne) {
  At(b_, kOdd).integer("nent", 1).dataset<std::int32_t>("entid", {1}, {4});
  b_.dataset<float>("res", {1, 1}, {std::numeric_limits<float>::denorm_min()});
  AddNodalResult(b_, kState1, "ODD/REST", 1000, 3, 1)
      .text("etypvar", "ODD")
      .dataset<std::int32_t>("entid", {3}, {1, 2, 3})
      .dataset<float>("res", {3, 1}, {std::nanf(""), kInfinity, -kInfinity});
  ExpectSame();
}

// ---- What one file lacks

TEST_F(DiffCommand, TellsAStateOfOneFileOnly) {
  b_.at("/post/singlestate").drop("state000000000002");
  EXPECT_EQ(Differences(), "only in A: state 2\n");
  EXPECT_EQ(Summary(), "different: 0 of 24 values, 1 other difference; 5 quantities in 1 state compared\n");
  const ProgramRun run = RunOrv({"diff", b_.path(), a_.path()});
  EXPECT_THAT(run.out, HasSubstr("only in B: state 2\n"));
}

TEST_F(DiffCommand, TellsAResultOfOneFileOnly) {
  b_.at(std::string(kState1) + "entityresults/NODE").drop("ODD");
  b_.at("/post/constant/entityresults/NODE").drop("TEMP");
  EXPECT_EQ(Differences(), "only in A: result TEMP of NODE, constant\nonly in A: result ODD of NODE, state 1\n");
}

TEST_F(DiffCommand, TellsAResultThatSomeStatesLack) {
  AddElementResult(b_, kState2, "SOLID", "STRESS", 1, 1, 2)
      .dataset<std::int32_t>("idele", {1}, {21})
      .dataset<float>("res", {1, 1, 2}, {-1, -2});
  EXPECT_EQ(Differences(), "only in B: result STRESS of SOLID, state 2\n");
}

// ---- All states in one block

void AddHistory(ForgedFile& file, const std::vector<float>& values) {
  const hsize_t states = values.size() / 2;
  file.at("/post/multistate/multientityresults/NODE/TEMP/orvblock")
      .integer("block", 1050)
      .text("etyp", "NODE")
      .text("etypvar", "TEMP");
  file.integer("nent", 2).integer("ncoo", 1).integer("fswitch", 0).integer("nindex", 1);
  file.integer("nstate", static_cast<std::int64_t>(states)).dataset<std::int32_t>("entid", {2}, {8, 9});
  std::vector<float> times;
  for (hsize_t i = 0; i < states; ++i) times.push_back(0.5F * static_cast<float>(i));
  file.dataset<float>("res", {states, 2, 1}, values).dataset<float>("indexval", {states, 1}, times);
  file.dataset<std::int32_t>("indexident", {states, 1}, std::vector<std::int32_t>(states, 1));
}

TEST_F(DiffCommand, ComparesBlocksOverAllStatesByState) {
  AddHistory(a_, {1, 2, 3, 4, 5, 6});
  AddHistory(b_, {1, 2, 3, 4, 5, 6});
  ExpectSame();
  AddHistory(b_, {1, 2, 3, 4.5F, 5, 6});
  EXPECT_EQ(Differences(),
            "TEMP of NODE, over all states, state 2: 1 of 2 values differ; largest absolute 0.5 at id 9 C1 (4, 4.5); "
            "largest relative 0.111111 at id 9 C1 (4, 4.5)\n");
}

TEST_F(DiffCommand, TellsStatesThatABlockOverAllStatesLacks) {
  AddHistory(a_, {1, 2, 3, 4, 5, 6});
  AddHistory(b_, {1, 2});
  EXPECT_EQ(Differences(), "only in A: result TEMP of NODE, over all states, state 2-3\n");
}

TEST_F(DiffCommand, ComparesTheTimesOfABlockOverAllStates) {
  AddHistory(a_, {1, 2, 3, 4});
  AddHistory(b_, {1, 2, 3, 4});
  b_.dataset<float>("indexval", {2, 1}, {0, 0.75F});
  EXPECT_EQ(Differences(), "index TEMP of NODE: TIME: 1 of 2 states differ, first state 2: 0.5 in A, 0.75 in B\n");
}

// ---- States that hold changes

void AddChain(ForgedFile& file, int state, int flag, const std::vector<std::int32_t>& ids,
              const std::vector<float>& values) {
  AddNodalResult(file, "/post/singlestate/state00000000000" + std::to_string(state) + "/", "HEAT", 1000,
                 static_cast<int>(ids.size()), 1)
      .integer32("indexic", flag)
      .integer("nindex", 1)
      .dataset<std::int32_t>("indexident", {1}, {state})
      .dataset<double>("indexval", {1}, {state / 8.0})
      .dataset<std::int32_t>("entid", {ids.size()}, ids)
      .dataset<float>("res", {ids.size(), 1}, values);
}

TEST_F(ProgramTest, DiffTakesStatesWithChangesAsAWhole) {
  ForgedFile full("full"), changes("changes");
  for (ForgedFile* file : {&full, &changes}) {
    AddVariable(*file, "HEAT", "", 0, {"T"});
    AddIndexTypes(*file, {"TIME"});
    AddChain(*file, 1, 0, {1, 2, 5}, {10, 20, 50});
  }
  AddChain(full, 2, 0, {1, 2, 5}, {10, 21, 50});
  AddChain(changes, 2, 1, {2}, {21});
  EXPECT_EQ(RunOrv({"diff", full.path(), changes.path()}).out, "same: 6 values; 1 quantity in 2 states compared\n");
  AddChain(changes, 2, 1, {2}, {22});
  const ProgramRun run = RunOrv({"diff", changes.path(), full.path()});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.out, HasSubstr("HEAT of NODE, state 2: 1 of 3 values differ; largest absolute 1 at id 2 T (22, 21)"));
}

}  // namespace
