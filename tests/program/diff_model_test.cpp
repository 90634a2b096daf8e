// orv diff: what files hold besides values. States by number and by time.

#include <gmock/gmock.h>

#include "program/diff_test.h"
#include "program/sound_file.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;

class DiffModel : public DiffTest {};

// ---- Variables

TEST_F(DiffModel, TellsAVariableOfOneFileOnly) {
  AddVariable(b_, "SPARE", "", 0, {"X"});
  EXPECT_EQ(Differences(), "only in B: variable SPARE\n");
}

TEST_F(DiffModel, TellsOtherComponentsAndComparesTheOthers) {
  AddVariable(b_, "STRESS", "CLASS_STRESS", 0, {"SXX", "SZZ"});
  EXPECT_EQ(Differences(),
            "variable STRESS: components \"SXX S,Y\" in A, \"SXX SZZ\" in B\n"
            "result STRESS of SHELL: components \"SXX S,Y\" in A, \"SXX SZZ\" in B\n"
            "result STRESS of SOLID: components \"SXX S,Y\" in A, \"SXX SZZ\" in B\n");
  EXPECT_EQ(Summary(), "different: 0 of 23 values, 3 other differences; 5 quantities in 2 states compared\n");
}

TEST_F(DiffModel, MatchesComponentsByTheirLabels) {
  AddVariable(b_, "STRESS", "CLASS_STRESS", 0, {"S,Y", "SXX"});
  At(b_, kShellStress).dataset<float>("res", {2, 2, 2}, {2, 1, 4, 3, 6, 5, 8, 7});
  At(b_, std::string(kState1) + "elementresults/SOLID/STRESS").dataset<float>("res", {1, 1, 2}, {-2, -1});
  At(b_, std::string(kState2) + "elementresults/SHELL/STRESS")
      .dataset<float>("res", {2, 2, 2}, {20, 10, 40, 30, 60, 50, 80, 70});
  EXPECT_EQ(Summary(), "different: 0 of 32 values, 3 other differences; 5 quantities in 2 states compared\n");
}

TEST_F(DiffModel, TellsAnotherClassOfAVariable) {
  b_.at("/post/constant/variable/STRESS/orvblock").text("varclass", "CLASS_STRAIN");
  EXPECT_EQ(Differences(), "variable STRESS: class \"CLASS_STRESS\" in A, \"CLASS_STRAIN\" in B\n");
}

// ---- Elements

TEST_F(DiffModel, ComparesElementsByTheirIds) {
  AddElements(b_, "SHELL", 2, 4, {12, 11}, {2, 5, 6, 3, 1, 2, 3, 4});
  ExpectSame();
}

TEST_F(DiffModel, TellsOtherNodesAndParts) {
  AddElements(b_, "SHELL", 2, 4, {11, 12}, {1, 2, 3, 4, 2, 5, 3, 6}).dataset<std::int32_t>("pid", {2}, {8, 7});
  EXPECT_EQ(Differences(),
            "element SHELL: part: 1 of 2 ids differ, first id 11: 7 in A, 8 in B\n"
            "element SHELL: nodes: 1 of 2 ids differ, first id 12: 2 5 6 3 in A, 2 5 3 6 in B\n");
}

TEST_F(DiffModel, TellsElementsOfOneFileOnly) {
  AddElements(b_, "SHELL", 2, 4, {11, 13}, {1, 2, 3, 4, 2, 5, 6, 3});
  EXPECT_EQ(Differences(), "element SHELL: 1 id only in A (12), 1 id only in B (13)\n");
}

TEST_F(DiffModel, TellsAnotherKindOfElements) {
  AddElements(b_, "SHELL", 3, 3, {11, 12}, {1, 2, 3, 2, 5, 6}).text("etypnode", "GRID");
  EXPECT_EQ(Differences(),
            "element SHELL: dimension \"2\" in A, \"3\" in B\n"
            "element SHELL: type of the nodes \"NODE\" in A, \"GRID\" in B\n"
            "element SHELL: nodes: 2 of 2 ids differ, first id 11: 1 2 3 4 in A, 1 2 3 in B\n");
}

TEST_F(DiffModel, TellsAnElementTypeOfOneFileOnly) {
  b_.at("/post/constant/connectivities").drop("SOLID");
  EXPECT_EQ(Differences(), "only in A: element SOLID\n");
}

TEST_F(DiffModel, ComparesTheMeshOfAState) {
  for (ForgedFile* file : {&a_, &b_}) {
    file->at(std::string(kState2) + "connectivities/BEAM/orvblock").integer("block", 300).text("etypelem", "BEAM");
    file->text("etyppart", "PART").text("etypnode", "NODE").integer("nele", 1).integer("npele", 2);
    file->dataset<std::int32_t>("idele", {1}, {31}).dataset<std::int32_t>("pid", {1}, {1});
    file->dataset<std::int32_t>("ic", {1, 2}, {4, file == &a_ ? 5 : 6});
  }
  EXPECT_EQ(Differences(), "element BEAM, state 2: nodes: 1 of 1 id differ, first id 31: 4 5 in A, 4 6 in B\n");
  b_.at(std::string(kState2) + "connectivities").drop("BEAM");
  EXPECT_EQ(Differences(), "only in A: element BEAM, state 2\n");
}

// ---- Parts, attributes, identifiers, collectors, units

class DiffSound : public ProgramTest {
 protected:
  DiffSound() {
    FillSoundFile(a_);
    FillSoundFile(b_);
  }

  /// All lines but the last.
  std::string Differences(int exit_code = 1, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"diff", a_.path(), b_.path()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, exit_code) << run.out << run.err;
    return run.out.substr(0, run.out.rfind(exit_code == 0 ? "same: " : "different: "));
  }

  ForgedFile& At(const std::string& block) { return b_.file().at(block + "/orvblock"); }

  ForgedModel a_, b_;
};

TEST_F(DiffSound, FindsNothingInTheSameModel) { EXPECT_EQ(Differences(0), ""); }

TEST_F(DiffSound, FindsNothingInAnotherLayout) {
  ForgedModel split(ForgedModel::kSplit);
  FillSoundFile(split);
  const ProgramRun run = RunOrv({"diff", a_.path(), split.path()});
  EXPECT_EQ(run.exit_code, 0) << run.out;
  EXPECT_EQ(run.out, "same: 34 values; 4 quantities in 2 states compared\n");
}

TEST_F(DiffSound, ComparesParts) {
  At("/post/constant/parts/PART").dataset<std::int32_t>("pid", {1}, {8});
  EXPECT_EQ(Differences(), "part PART: 1 id only in A (7), 1 id only in B (8)\n");
}

TEST_F(DiffSound, ComparesTitlesAndMaterialsOfParts) {
  for (ForgedModel* model : {&a_, &b_}) {
    const bool is_a = model == &a_;
    model->file().at("/post/constant/parts/PART/orvblock").integer32("length", 8);
    model->file().texts("title", 8, {1}, {is_a ? "hood" : "door"});
    model->file().dataset<std::int32_t>("mid", {1}, {is_a ? 3 : 4});
  }
  EXPECT_EQ(Differences(),
            "part PART: title: 1 of 1 id differ, first id 7: \"hood\" in A, \"door\" in B\n"
            "part PART: material: 1 of 1 id differ, first id 7: 3 in A, 4 in B\n");
  At("/post/constant/parts/PART").drop("mid").texts("title", 8, {1}, {"hood"});
  EXPECT_EQ(Differences(), "part PART: material \"there\" in A, \"missing\" in B\n");
}

TEST_F(DiffSound, ComparesAttributesByTheirIds) {
  for (ForgedModel* model : {&a_, &b_}) {
    model->file().at("/post/constant/attributes/NODE/orvblock").integer("nuid", 2);
    model->file().dataset<std::int32_t>("uid", {4, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  }
  At("/post/constant/attributes/NODE")
      .dataset<std::int32_t>("entid", {4}, {4, 3, 2, 1})
      .dataset<std::int32_t>("uid", {4, 2}, {7, 8, 5, 6, 3, 4, 1, 2});
  EXPECT_EQ(Differences(0), "");
  At("/post/constant/attributes/NODE").dataset<std::int32_t>("uid", {4, 2}, {7, 8, 5, 6, 3, 9, 1, 2});
  EXPECT_EQ(Differences(), "attribute NODE: integers: 1 of 4 ids differ, first id 2: 3 4 in A, 3 9 in B\n");
}

TEST_F(DiffSound, ComparesTitlesOfAttributes) {
  for (ForgedModel* model : {&a_, &b_}) {
    model->file().at("/post/constant/attributes/NODE/orvblock").integer32("length", 4);
    model->file().texts("title", 4, {4}, {"one", "two", "four", model == &a_ ? "six" : "ten"});
  }
  EXPECT_EQ(Differences(), "attribute NODE: title: 1 of 4 ids differ, first id 4: \"six\" in A, \"ten\" in B\n");
}

TEST_F(DiffSound, ComparesIdentifiers) {
  const std::string block = "/post/constant/identifiers/NODE/orvblock";
  const auto add = [&](ForgedModel& model, const std::vector<std::int32_t>& ids) {
    model.file().at(block).integer("block", 250).text("etyp", "NODE").integer32("length", 0);
    model.file().integer("nent", 2).dataset<std::int32_t>("entid", {2}, ids);
  };
  add(a_, {1, 2});
  EXPECT_EQ(Differences(), "only in A: identifier NODE\n");
  add(b_, {1, 3});
  EXPECT_EQ(Differences(), "identifier NODE: 1 id only in A (2), 1 id only in B (3)\n");
}

TEST_F(DiffSound, MakesANoteOfIdentifiersThatTheVersionOfAFileLacks) {
  a_.file().at("/post/constant/identifiers/NODE/orvblock").integer("block", 250).text("etyp", "NODE");
  a_.file().integer("nent", 1).integer32("length", 0).dataset<std::int32_t>("entid", {1}, {1});
  b_.file().header(2, 0, 0);
  EXPECT_EQ(Differences(0), "note: only in A: identifier NODE\n");
}

TEST_F(DiffSound, DoesNotMindTheOrderOfIdsInACollector) {
  At("/post/constant/collector/SET").dataset<std::int32_t>("entid", {3}, {2, 1, 4});
  EXPECT_EQ(Differences(0), "");
}

TEST_F(DiffSound, ComparesCollectors) {
  At("/post/constant/collector/SET").dataset<std::int32_t>("entid", {3}, {1, 3, 4});
  EXPECT_EQ(Differences(), "collector SET: ids of NODE: 1 of 2 ids differ, first id 1: 1 2 in A, 1 3 in B\n");
}

TEST_F(DiffSound, KeepsTheSidesOfACollectorTogether) {
  const auto add = [](ForgedModel& model, const std::vector<std::int32_t>& ids) {
    model.file().at("/post/constant/collector/SIDES/orvblock").integer("block", 400).text("etypcoll", "SIDES");
    model.file().integer("ncoll", 1).integer("ntyp", 2).integer("nenttot", 4).integer("nindex", 0);
    model.file().dataset<std::int32_t>("idcoll", {1}, {5}).texts("etyp", 256, {2}, {"ELEMENT", "SIDE"});
    model.file().dataset<std::int32_t>("nent", {1, 2}, {2, 2}).dataset<std::int32_t>("entid", {4}, ids);
  };
  add(a_, {11, 12, 1, 2});
  add(b_, {12, 11, 2, 1});
  EXPECT_EQ(Differences(0), "");
  add(b_, {11, 12, 2, 1});
  EXPECT_EQ(Differences(), "collector SIDES: ids of SIDE: 1 of 1 id differ, first id 5: 1 2 in A, 2 1 in B\n");
}

TEST_F(DiffSound, MakesNotesOfTitleAndSolver) {
  At("/post/constant/system").text("title", "A beam").text("solver_name", "smith").text("solver_vers", "2");
  const std::string notes =
      "note: title: \"A plate\" in A, \"A beam\" in B\n"
      "note: solver: \"forge\" in A, \"smith\" in B\n"
      "note: solver: version \"1.2\" in A, \"2\" in B\n";
  EXPECT_EQ(Differences(0), notes);
  EXPECT_EQ(Differences(1, {"--strict"}), notes);
}

TEST_F(DiffSound, ComparesTheUnitSystem) {
  At("/post/constant/system").text("sys", "m-kg-s").dataset<float>("ubcon", {2}, {1, 1});
  EXPECT_EQ(Differences(),
            "unit system: \"mm-t-s\" in A, \"m-kg-s\" in B\n"
            "unit system: units \"mm 0.001, mm/s 1, s 1\" in A, \"mm 1, mm/s 1, s 1\" in B\n");
}

TEST_F(DiffSound, ComparesTheUnitsOfComponents) {
  b_.units("STRESS", {{1, 1}, {1, 1}, {2, 1}, {1, 0}, {11}, {1}});
  EXPECT_THAT(Differences(), HasSubstr("variable STRESS: unit of SXX \""));
}

// ---- States

class DiffStates : public DiffTest {
 protected:
  static void SetTime(ForgedFile& file, const char* state, double time, double step = 1) {
    const std::vector<std::string> blocks =
        std::string(state) == kState1
            ? std::vector<std::string>{"elementresults/SHELL/STRESS", "elementresults/SOLID/STRESS",
                                       "entityresults/NODE/WAVE", "entityresults/NODE/ODD"}
            : std::vector<std::string>{"elementresults/SHELL/STRESS"};
    for (const std::string& block : blocks) At(file, state + block).dataset<double>("indexval", {2}, {time, step});
  }
};

TEST_F(DiffStates, CompareTheirIndexValues) {
  SetTime(b_, kState2, 0.375, 2);
  EXPECT_EQ(Differences(),
            "index: TIME: 1 of 2 states differ, first state 2: 0.25 in A, 0.375 in B\n"
            "index: STEP: 1 of 2 states differ, first state 2: 1 in A, 2 in B\n");
  EXPECT_EQ(Differences({"--tol", "TIME=0.125"}), "index: STEP: 1 of 2 states differ, first state 2: 1 in A, 2 in B\n");
  ExpectSame({"--tol", "TIME=0.125", "--ignore", "STEP"});
}

TEST_F(DiffStates, CompareTheNamesOfTheirIndex) {
  AddIndexTypes(b_, {"FREQUENCY", "STEP"});
  EXPECT_EQ(Differences(), "only in A: index TIME\nonly in B: index FREQUENCY\n");
}

/// State 1 of B holds what state 2 of A holds.
TEST_F(DiffStates, AreMatchedByTime) {
  SetTime(b_, kState1, 0.26);
  SetTime(b_, kState2, 7);
  At(b_, kShellStress).dataset<float>("res", {2, 2, 2}, {10, 20, 30, 40, 50, 60, 70, 81});
  EXPECT_EQ(Differences({"--match-time", "0.02"}),
            "only in A: state 1\n"
            "only in B: state 2\n"
            "only in B: result ODD of NODE, state 1\n"
            "only in B: result complex WAVE of NODE, state 1\n"
            "only in B: result STRESS of SOLID, state 1\n"
            "STRESS of SHELL, state 2 of A and 1 of B: 1 of 8 values differ; largest absolute 1 at id 12 layer 2 S,Y "
            "(80, 81); largest relative 0.0123457 at id 12 layer 2 S,Y (80, 81)\n");
}

TEST_F(DiffStates, AreMatchedByTimeWithinTheTolerance) {
  SetTime(b_, kState2, 0.375);
  ExpectSame({"--match-time", "0.125"});
  EXPECT_EQ(Differences({"--match-time", "0.124"}), "only in A: state 2\nonly in B: state 2\n");
}

TEST_F(DiffStates, AreMatchedToTheClosestOne) {
  SetTime(b_, kState1, 0.2);  // closer to state 2 of A
  SetTime(b_, kState2, 0.9);
  const std::string differences = Differences({"--match-time", "1"});
  EXPECT_THAT(differences, HasSubstr("only in A: state 1\nonly in B: state 2\n"));
  EXPECT_THAT(differences, HasSubstr("STRESS of SHELL, state 2 of A and 1 of B: 8 of 8 values differ"));
}

TEST_F(DiffStates, OfOneTimeAreMatchedInTheirOrder) {
  for (ForgedFile* file : {&a_, &b_}) SetTime(*file, kState2, 0.125);
  ExpectSame({"--match-time", "1"});
}

}  // namespace
