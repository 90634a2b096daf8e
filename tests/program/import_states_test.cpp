// What becomes of the states and results of a run: which blocks belong together, what their variables are called, what
// is left out. Whole results are tested in import_facts_test.

#include <gmock/gmock.h>

#include "program/imported_file.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using Names = std::vector<std::string>;

const std::vector<FrdComponent> kScalar = {{"T"}};

class ImportStates : public ProgramTest {
 protected:
  RawImportedFile ImportRun(const std::string& blocks, const std::vector<std::string>& options = {}) const {
    return RawImportedFile(Import(WriteFile("run.frd", FrdRun(blocks)), options));
  }
};

TEST_F(ImportStates, WithEqualValuesStayApart) {
  RawImportedFile file = ImportRun(FrdBlock({1, "396.5944823", 1}, "NDTEMP", kScalar, {{1, {1}}}) +
                                   FrdBlock({2, "396.5944823", 1}, "NDTEMP", kScalar, {{1, {2}}}));
  ASSERT_EQ(file.States(), 2);
  EXPECT_THAT(file.Result(1, "NDTEMP").values, ElementsAre(1));
  EXPECT_THAT(file.Result(2, "NDTEMP").values, ElementsAre(2));
  EXPECT_THAT(file.Result(2, "NDTEMP").index, ElementsAre(396.5944823, 1));
}

TEST_F(ImportStates, OfDifferentStepsStayApart) {
  RawImportedFile file = ImportRun(FrdBlock({1, "1.00000E+00", 1}, "NDTEMP", kScalar, {{1, {1}}}) +
                                   FrdBlock({1, "1.00000E+00", 2}, "NDTEMP", kScalar, {{1, {2}}}));
  ASSERT_EQ(file.States(), 2);
  EXPECT_THAT(file.Result(1, "NDTEMP").index, ElementsAre(1, 1));
  EXPECT_THAT(file.Result(2, "NDTEMP").index, ElementsAre(1, 2));
}

TEST_F(ImportStates, WithoutAStepLineAreOfStep0) {
  std::string block = FrdBlock({1, "2.50000E-01", 7}, "NDTEMP", kScalar, {{1, {1}}});
  block.erase(0, block.find('\n') + 1);
  RawImportedFile file = ImportRun(block);
  EXPECT_THAT(file.Result(1, "NDTEMP").index, ElementsAre(0.25, 0));
}

TEST_F(ImportStates, HaveTheResultsOfTheirOwnOnly) {
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "DISP", kVectorD, {{1, {1, 2, 3}}}) + FrdBlock({1}, "PE", {{"PE"}}, {{2, {4}}}) +
                FrdBlock({2}, "PE", {{"PE"}}, {{5, {5}}}));
  EXPECT_THAT(file.ResultNames(1), ElementsAre("PE", "Translational_Displacement"));
  EXPECT_THAT(file.ResultNames(2), ElementsAre("PE"));
  EXPECT_THAT(file.Result(2, "PE").ids, ElementsAre(5));
}

TEST_F(ImportStates, KeepTheOrderOfTheFileAmongTheirNodes) {
  RawImportedFile file = ImportRun(FrdBlock({1}, "PE", {{"PE"}}, {{5, {1}}, {99, {2}}, {1, {3}}}));
  EXPECT_THAT(file.Result(1, "PE").ids, ElementsAre(5, 99, 1));  // 99 is no node of the mesh
  EXPECT_THAT(file.Result(1, "PE").values, ElementsAre(1, 2, 3));
}

TEST_F(ImportStates, WithoutAnyValueAreLeftOut) {
  RawImportedFile file = ImportRun(FrdBlock({1, "1.00000E+00"}, "PE", {{"PE"}}, {}) +
                                   FrdBlock({2, "2.00000E+00"}, "PE", {{"PE"}}, {{1, {2}}}));
  ASSERT_EQ(file.States(), 1);
  EXPECT_THAT(file.Result(1, "PE").index, ElementsAre(2, 1));
  EXPECT_THAT(file.Result(1, "PE").index_identifiers, ElementsAre(1, 1));
}

TEST_F(ImportStates, AreMissingInAFileWithoutResults) {
  RawImportedFile file = ImportRun("");
  EXPECT_EQ(file.States(), 0);
  EXPECT_EQ(file.Variables().size(), 1U);
  EXPECT_EQ(file.Elements().size(), 1U);
}

class ImportedVariables : public ImportStates {
 protected:
  static Names NamesOf(ImportedFile& file) {
    Names names;
    for (const VariableDefinition& variable : file.Variables()) names.push_back(variable.name);
    return names;
  }
};

TEST_F(ImportedVariables, AreNumberedWhereTheComponentsOfAResultChange) {
  const std::vector<FrdComponent> two = {{"SDV1"}, {"SDV2"}}, three = {{"SDV1"}, {"SDV2"}, {"SDV3"}},
                                  other = {{"A"}, {"B"}};
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "SDV", two, {{1, {1, 2}}}) + FrdBlock({2}, "SDV", three, {{1, {3, 4, 5}}}) +
                FrdBlock({3}, "SDV", other, {{1, {6, 7}}}) + FrdBlock({4}, "SDV", two, {{1, {8, 9}}}));
  EXPECT_THAT(NamesOf(file), ElementsAre("COORDINATE", "SDV", "SDV_2", "SDV_3"));
  EXPECT_THAT(file.Variables().at(2).components, ElementsAre("SDV1", "SDV2", "SDV3"));
  EXPECT_THAT(file.Variables().at(3).components, ElementsAre("A", "B"));
  EXPECT_THAT(file.Result(2, "SDV_2").values, ElementsAre(3, 4, 5));
  EXPECT_THAT(file.Result(3, "SDV_3").values, ElementsAre(6, 7));
  EXPECT_THAT(file.Result(4, "SDV").values, ElementsAre(8, 9));
  EXPECT_THAT(file.ResultNames(4), ElementsAre("SDV"));
}

TEST_F(ImportedVariables, AreNumberedWhereAResultChangesFromVectorToScalars) {
  const std::vector<FrdComponent> scalars = {{"D1"}, {"D2"}, {"D3"}};
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "DISP", kVectorD, {{1, {1, 2, 3}}}) + FrdBlock({2}, "DISP", scalars, {{1, {4, 5, 6}}}));
  EXPECT_THAT(NamesOf(file), ElementsAre("COORDINATE", "Translational_Displacement", "Translational_Displacement_2"));
  EXPECT_EQ(file.Variables().at(1).rank, 1);
  EXPECT_EQ(file.Variables().at(2).rank, 0);
}

TEST_F(ImportedVariables, AreNoTensorsWhereTheSolverOnlySaysSo) {
  const std::vector<FrdComponent> contact = {{"COPEN", 4, 1, 1},  {"CSLIP1", 4, 2, 2},  {"CSLIP2", 4, 3, 3},
                                             {"CPRESS", 4, 1, 2}, {"CSHEAR1", 4, 2, 3}, {"CSHEAR2", 4, 3, 1}};
  RawImportedFile file = ImportRun(FrdBlock({1}, "CONTACT", contact, {{1, {1, 2, 3, 4, 5, 6}}}) +
                                   FrdBlock({1}, "ZZSTR", kTensorS, {{1, {1, 2, 3, 4, 5, 6}}}));
  EXPECT_EQ(file.Variables().at(0).name, "CONTACT");
  EXPECT_EQ(file.Variables().at(0).rank, 0);
  EXPECT_EQ(file.Variables().at(2).name, "ZZSTR");
  EXPECT_EQ(file.Variables().at(2).rank, 2);
}

TEST_F(ImportedVariables, AreNumberedWhereAResultStandsTwiceInAState) {
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "PE", {{"PE"}}, {{1, {1}}}) + FrdBlock({1}, "PE", {{"PE"}}, {{1, {2}}}));
  EXPECT_EQ(file.States(), 1);
  EXPECT_THAT(file.Result(1, "PE").values, ElementsAre(1));
  EXPECT_THAT(file.Result(1, "PE_2").values, ElementsAre(2));
}

TEST_F(ImportedVariables, AreNumberedWhereNamesDifferInCaseOnly) {
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "Heat", {{"A"}}, {{1, {1}}}) + FrdBlock({1}, "HEAT", {{"B"}}, {{1, {2}}}));
  EXPECT_THAT(NamesOf(file), ElementsAre("COORDINATE", "HEAT_2", "Heat"));
  EXPECT_THAT(file.Result(1, "HEAT_2").values, ElementsAre(2));
}

TEST_F(ImportedVariables, HaveNamesThatCanStandInAPath) {
  RawImportedFile file =
      ImportRun(FrdBlock({1}, "A/B", {{"X"}}, {{1, {1}}}) + FrdBlock({1}, "data", {{"X"}}, {{1, {2}}}) +
                FrdBlock({1}, ".", {{"X"}}, {{1, {3}}}) + FrdBlock({1}, "STR(%)", {{"X"}}, {{1, {4}}}) +
                FrdBlock({1}, "header", {{"X"}}, {{1, {5}}}) + FrdBlock({1}, "index", {{"X"}}, {{1, {6}}}) +
                FrdBlock({1}, "orvblock", {{"X"}}, {{1, {7}}}) + FrdBlock({1}, "", {{"X"}}, {{1, {8}}}));
  EXPECT_THAT(file.ResultNames(1), ElementsAre("._", "A_B", "STR(%)", "_", "data_", "header_", "index_", "orvblock_"));
  EXPECT_THAT(file.Result(1, "A_B").values, ElementsAre(1));
  EXPECT_THAT(file.Result(1, "orvblock_").values, ElementsAre(7));
}

TEST_F(ImportedVariables, AreComplexOnlyWhereBothPartsFit) {
  const FrdRow here = {1, {1, 2, 3}}, there = {2, {4, 5, 6}};
  RawImportedFile file = ImportRun(FrdBlock({1}, "DISP", kVectorD, {here}) + FrdBlock({1}, "DISPI", kVectorD, {there}) +
                                   FrdBlock({2}, "DISPI", kVectorD, {here}) + FrdBlock({3}, "DISP", kVectorD, {here}) +
                                   FrdBlock({4}, "DISPI", kVectorD, {here}));
  EXPECT_THAT(file.ResultNames(1), ElementsAre("DISPI", "Translational_Displacement"));  // other nodes
  EXPECT_THAT(file.ResultNames(2), ElementsAre("DISPI"));
  EXPECT_THAT(file.ResultNames(3), ElementsAre("Translational_Displacement"));  // another state
  EXPECT_FALSE(file.Result(1, "DISPI").is_complex);
}

TEST_F(ImportedVariables, JoinPartsThatStandApart) {
  const FrdRow real = {1, {1, 2, 3}}, imaginary = {1, {4, 5, 6}};
  RawImportedFile file = ImportRun(FrdBlock({1}, "DISP", kVectorD, {real}) + FrdBlock({1}, "PE", {{"PE"}}, {{1, {7}}}) +
                                   FrdBlock({1}, "DISPI", kVectorD, {imaginary}));
  EXPECT_THAT(file.ResultNames(1), ElementsAre("Complex_Translational_Displacement", "PE"));
  EXPECT_THAT(file.Result(1, "Complex_Translational_Displacement").values, ElementsAre(1, 4, 2, 5, 3, 6));
}

TEST_F(ImportedVariables, HaveAsManyComponentsAsTheResult) {
  std::vector<FrdComponent> components;
  std::vector<double> values;
  for (int i = 1; i <= 60; ++i) components.push_back({"SDV" + std::to_string(i)});
  for (int i = 1; i <= 60; ++i) values.push_back(i);
  RawImportedFile file = ImportRun(FrdBlock({1}, "SDV", components, {{1, values}}));
  EXPECT_EQ(file.Result(1, "SDV").components, 60);
  EXPECT_EQ(file.Result(1, "SDV").values, values);
  EXPECT_EQ(file.Variables().at(1).components.at(59), "SDV60");
}

class ImportPartial : public ImportStates {};

TEST_F(ImportPartial, TakesTheWholeBlocksOfARunThatBrokeOff) {
  const std::string first = FrdBlock({1}, "PE", {{"PE"}}, {{1, {1}}}),
                    second = FrdBlock({2}, "PE", {{"PE"}}, {{1, {2}}});
  const std::string text = frd_forge::Mesh() + first + second;
  const std::string cut = WriteFile("cut.frd", text.substr(0, text.size() - 8));
  const std::string out = TempPath("out.orv");
  const ProgramRun run = RunOrv({"import", "--partial", cut, out});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr(cut + ": the run broke off; what is complete was taken\n"));
  RawImportedFile file(out);
  EXPECT_EQ(file.States(), 1);
  EXPECT_THAT(file.Result(1, "PE").values, ElementsAre(1));
}

TEST_F(ImportPartial, TakesARunWithoutItsEndMark) {
  const std::string text = frd_forge::Mesh() + FrdBlock({1}, "PE", {{"PE"}}, {{1, {1}}});
  RawImportedFile file(Import(WriteFile("cut.frd", text), {"--partial"}));
  EXPECT_EQ(file.States(), 1);
}

TEST_F(ImportPartial, StillNeedsTheMesh) {
  const std::string text = frd_forge::Mesh();
  const std::string cut = WriteFile("cut.frd", text.substr(0, text.size() - 20));
  ExpectTrouble(RunOrv({"import", "--partial", cut, TempPath("out.orv")}), cut, "element block");
  EXPECT_FALSE(std::filesystem::exists(TempPath("out.orv")));
}

class ImportSummary : public ImportStates {};

TEST_F(ImportSummary, GoesToStandardErrorInOneLine) {
  const std::string in = WriteFile("small.frd", SmallRun()), out = TempPath("out.orv");
  const ProgramRun run = RunOrv({"import", in, out});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, out + ": 3 nodes, 1 elements, 2 states, 4 variables\n");
}

TEST_F(ImportSummary, ComesWithoutAProgressBarWhereNobodyWatches) {
  const std::string in = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
  if (!std::filesystem::exists(in)) GTEST_SKIP() << "the solver's results are not here";
  const std::string out = TempPath("out.orv");
  EXPECT_EQ(RunOrv({"import", in, out}).err, out + ": 1939 nodes, 740 elements, 51 states, 5 variables\n");
}

TEST_F(ImportSummary, IsLeftOutOnRequest) { Import(WriteFile("small.frd", SmallRun())); }

class ImportInput : public ImportStates {};

TEST_F(ImportInput, MayBePacked) {
  RawImportedFile file(Import(WriteFile("small.frd.gz", frd_forge::Packed(SmallRun()))));
  EXPECT_EQ(file.States(), 2);
  EXPECT_THAT(file.Result(1, "PE").values, ElementsAre(0.25, static_cast<double>(-1.68156e-44F)));
}

TEST_F(ImportInput, ReplacesAnOutputThatExists) {
  const std::string in = WriteFile("small.frd", SmallRun()), out = WriteFile("out.orv", "something else");
  EXPECT_EQ(RunOrv({"import", "-q", in, out}).exit_code, 0);
  EXPECT_EQ(RawImportedFile(out).States(), 2);
  EXPECT_THAT(NamesIn(TempPath("")), ElementsAre("out.orv", "small.frd"));
}

}  // namespace
