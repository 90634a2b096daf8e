// orv diff: what is chosen, how it is told, and what it refuses.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "program/diff_test.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::HasSubstr;

/// One value of each result differs, and an element.
class DiffChoices : public DiffTest {
 protected:
  DiffChoices() {
    At(b_, kTemp).dataset<float>("res", {2, 1}, {0.1F, 301});
    At(b_, kShellStress).dataset<float>("res", {2, 2, 2}, {1, 2, 3, 5, 5, 6, 7, 8});
    At(b_, std::string(kState2) + "elementresults/SHELL/STRESS")
        .dataset<float>("res", {2, 2, 2}, {11, 20, 30, 40, 50, 60, 70, 80});
    AddElements(b_, "SOLID", 3, 3, {21}, {7, 9, 8});
  }

  /// Those differences, by their beginnings.
  std::string Told(const std::vector<std::string>& options) {
    std::string told;
    std::istringstream lines(Run(options).out);
    for (std::string line; std::getline(lines, line);) {
      const size_t end = line.find(':');
      if (!line.starts_with("different: ") && !line.starts_with("same: ")) told += line.substr(0, end) + "\n";
    }
    return told;
  }
};

TEST_F(DiffChoices, WithoutAnyTellAll) {
  EXPECT_EQ(Told({}), "element SOLID\nTEMP of NODE, constant\nSTRESS of SHELL, state 1\nSTRESS of SHELL, state 2\n");
}

TEST_F(DiffChoices, AreVariables) {
  EXPECT_EQ(Told({"--var", "temp"}), "TEMP of NODE, constant\n");
  EXPECT_EQ(Told({"--var", "TEMP", "--var", "WAVE"}), "TEMP of NODE, constant\n");
  EXPECT_EQ(Summary({"--var", "WAVE"}), "same: 8 values; 1 quantity in 2 states compared\n");
}

TEST_F(DiffChoices, AreComponents) {
  EXPECT_EQ(Told({"--var", "STRESS_SXX"}), "STRESS of SHELL, state 2\n");
  EXPECT_EQ(Told({"--ignore", "STRESS_SXX"}), "element SOLID\nTEMP of NODE, constant\nSTRESS of SHELL, state 1\n");
}

TEST_F(DiffChoices, AreVariablesToLeaveOut) {
  EXPECT_EQ(Told({"--ignore", "STRESS", "--ignore", "TEMP"}), "element SOLID\n");
}

TEST_F(DiffChoices, AreStates) {
  EXPECT_EQ(Told({"--states", "2"}), "STRESS of SHELL, state 2\n");
  EXPECT_EQ(Told({"--states", "0,last"}), "element SOLID\nTEMP of NODE, constant\nSTRESS of SHELL, state 2\n");
  b_.at("/post/singlestate").drop("state000000000002");
  EXPECT_EQ(Told({"--states", "1"}), "STRESS of SHELL, state 1\n");
}

TEST_F(DiffChoices, AreEntityTypes) {
  EXPECT_EQ(Told({"--entity", "node"}), "TEMP of NODE, constant\n");
  EXPECT_EQ(Told({"--entity", "SOLID"}), "element SOLID\n");
}

TEST_F(DiffChoices, AreIds) {
  EXPECT_EQ(Told({"--ids", "11"}), "STRESS of SHELL, state 1\nSTRESS of SHELL, state 2\n");
  EXPECT_EQ(Told({"--ids", "12,21"}), "element SOLID\n");
  EXPECT_EQ(Summary({"--ids", "3,5000000000", "--var", "TEMP", "--var", "WAVE"}),
            "same: 5 values; 2 quantities in 2 states compared\n");
}

TEST_F(DiffChoices, StandBeforeOrBehindTheFiles) {
  const ProgramRun run =
      RunOrv({"diff", "--var", "TEMP", "--tol", "TEMP=1", "--ignore", "WAVE", a_.path(), "--ids", "1", b_.path()});
  EXPECT_EQ(run.out, "same: 1 value; 1 quantity in 2 states compared\n");
}

TEST_F(DiffChoices, LimitTheLinesOfAKind) {
  EXPECT_EQ(Run({"--max", "1"}).out,
            "element SOLID: nodes: 1 of 1 id differ, first id 21: 7 8 9 in A, 7 9 8 in B\n"
            "TEMP of NODE, constant: 1 of 2 values differ; largest absolute 1 at id 1 C1 (300, 301); "
            "largest relative 0.00332226 at id 1 C1 (300, 301)\n"
            "... and 2 more differences of values\n"
            "different: 3 of 32 values, 1 other difference; 5 quantities in 2 states compared\n");
}

TEST_F(DiffChoices, MayBeToPrintNothing) {
  const ProgramRun different = Run({"--quiet"}), same = Run({"--quiet", "--var", "WAVE"});
  EXPECT_EQ(different.exit_code, 1);
  EXPECT_EQ(different.out + different.err, "");
  EXPECT_EQ(same.exit_code, 0);
  EXPECT_EQ(same.out + same.err, "");
}

TEST_F(DiffChoices, MayBeToPrintJson) {
  b_.at(std::string(kState1) + "entityresults/NODE").drop("ODD");
  const ProgramRun run = Run({"--json", "--max", "0"});
  EXPECT_EQ(run.exit_code, 1);
  const json answer = json::parse(run.out);
  EXPECT_EQ(answer["schema_version"], 1);
  EXPECT_EQ(answer["command"], "diff");
  EXPECT_EQ(answer["file"], a_.path());
  EXPECT_EQ(answer["other"], b_.path());
  EXPECT_EQ(answer["same"], false);
  EXPECT_EQ(answer["compared"], json::parse(R"({"quantities": 4, "states": 2, "values": 28})"));
  EXPECT_EQ(answer["differing_values"], 3);
  EXPECT_EQ(answer["texts"], json::array());
  EXPECT_EQ(answer["only_in_one"], json::parse(R"([{"in": "a", "kind": "result", "name": "", "note": false,
      "result": {"section": "state", "variable": "ODD", "entity": "NODE", "complex": false, "element_values": false},
      "states": [1]}])"));
  EXPECT_EQ(answer["tables"], json::parse(R"([{"kind": "element", "name": "SOLID", "what": "nodes", "compared": 1,
      "differing": 1, "first": {"id": 21, "a": "7 8 9", "b": "7 9 8"}}])"));
  ASSERT_EQ(answer["values"].size(), 3U);
  EXPECT_EQ(answer["values"][1], json::parse(R"({"section": "state", "variable": "STRESS", "entity": "SHELL",
      "complex": false, "element_values": true, "state": 1, "other_state": 1, "compared": 8, "differing": 1,
      "largest_absolute": {"difference": 1.0, "id": 11, "layer": 2, "component": "S,Y", "a": 4.0, "b": 5.0},
      "largest_relative": {"difference": 0.2, "id": 11, "layer": 2, "component": "S,Y", "a": 4.0, "b": 5.0},
      "only_in_a": {"count": 0, "first": []}, "only_in_b": {"count": 0, "first": []}})"));
}

TEST_F(DiffChoices, TellInJsonThatFilesAreTheSame) {
  const ProgramRun run = Run({"--json", "--var", "WAVE"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(json::parse(run.out)["same"], true);
}

// ---- Refusals

TEST_F(DiffChoices, OfNamesThatNeitherFileHasAreRefused) {
  for (const char* option : {"--var", "--ignore", "--tol"}) {
    SCOPED_TRACE(option);
    const std::string word = std::string(option) == "--tol" ? "NOPE=1" : "NOPE";
    ExpectTrouble(Run({option, word}), a_.path(), "has no variable or component \"NOPE\", nor has " + b_.path());
  }
  ExpectTrouble(Run({"--entity", "NOPE"}), a_.path(), "has no entity type \"NOPE\", nor has " + b_.path());
  ExpectTrouble(Run({"--ids", "11,77,99"}), a_.path(), "nothing that is compared has the id 77, nor has " + b_.path());
  ExpectTrouble(Run({"--states", "3"}), a_.path(), "there is no state 3");
}

TEST_F(DiffChoices, OfNamesThatOneFileHasAreTaken) {
  AddVariable(b_, "SPARE", "", 0, {"X"});
  EXPECT_EQ(Told({"--var", "SPARE"}), "only in B\n");
}

TEST_F(DiffChoices, OfTolerancesThatAreNoneAreRefused) {
  const std::vector<std::vector<std::string>> all = {{"--abs", "x"},         {"--abs=-1"},
                                                     {"--abs", "nan"},       {"--rel", "1e"},
                                                     {"--match-time=-1"},    {"--tol", "STRESS"},
                                                     {"--tol", "=1"},        {"--tol", "STRESS="},
                                                     {"--tol", "STRESS=1,"}, {"--tol", "STRESS=1,2,3"},
                                                     {"--tol", "STRESS=-1"}, {"--json", "--quiet"}};
  for (const std::vector<std::string>& options : all) {
    SCOPED_TRACE(options.back());
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err, "");
  }
}

class DiffOfWhatIsNoResult : public DiffChoices {
 protected:
  /// On either side.
  void ExpectRefused(const std::string& path, const std::string& what) {
    ExpectTrouble(RunOrv({"diff", path, a_.path()}), path, what);
    ExpectTrouble(RunOrv({"diff", a_.path(), path}), path, what);
    ExpectTrouble(RunOrv({"diff", a_.path(), path, "--quiet"}), path, what);
  }
};

TEST_F(DiffOfWhatIsNoResult, IsRefused) {
  ExpectRefused(TempPath("nowhere.orv"), "does not exist");
  ExpectRefused(WriteFile("text.orv", "no result\n"), "is not an HDF5 file");
  ExpectRefused(std::filesystem::path(a_.path()).parent_path(), "is not a file");
}

TEST_F(DiffOfWhatIsNoResult, IsRefusedWhereItIsCutShort) {
  const std::string whole = TempPath("cut.orv");
  const auto size = std::filesystem::file_size(b_.path());
  for (const auto length : {size / 4, size / 2, size - 1}) {
    SCOPED_TRACE(length);
    std::filesystem::copy_file(b_.path(), whole, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(whole, length);
    ExpectRefused(whole, "is damaged");
  }
}

TEST_F(DiffOfWhatIsNoResult, IsRefusedWhereValuesAreMissing) {
  At(b_, kOdd).drop("res");
  ExpectTrouble(Run(), b_.path(), "cannot be read");
  At(b_, kOdd).dataset<float>("res", {4, 1}, {1, 2, 3, 4}).drop("entid").dataset<std::int32_t>("entid", {1}, {3});
  ExpectTrouble(Run(), b_.path(), "cannot be read");
}

TEST_F(DiffOfWhatIsNoResult, IsRefusedWhereTablesAreDamaged) {
  AddElements(b_, "SOLID", 3, 3, {21}, {7, 9, 8}).drop("ic");
  ExpectTrouble(Run(), b_.path(), "are not what their header announces");
  AddElements(b_, "SOLID", 3, 3, {21}, {7, 9, 8});
  const auto add = [](ForgedFile& file, int count) {
    file.at("/post/constant/attributes/NODE/orvblock").integer("block", 200).text("etyp", "NODE");
    file.integer("nent", count).integer32("length", 0).dataset<std::int32_t>("entid", {1}, {1});
  };
  add(a_, 1);
  add(b_, 5);
  ExpectTrouble(Run(), b_.path(), "attribute NODE in the constant section cannot be read");
}

TEST_F(DiffOfWhatIsNoResult, MayAnnounceAnyCount) {
  const std::vector<std::int64_t> counts = {-1, 0, 5, 1LL << 31, 1LL << 40, INT64_MAX, INT64_MIN};
  for (const char* attribute : {"nele", "ncoo", "numl"}) {
    for (const std::int64_t count : counts) {
      SCOPED_TRACE(std::string(attribute) + " " + std::to_string(count));
      At(b_, kShellStress).integer(attribute, count);
      const ProgramRun run = Run();
      EXPECT_GE(run.exit_code, 0) << run.err;
      EXPECT_LT(run.seconds, 5);
    }
    At(b_, kShellStress).integer(attribute, 2);
  }
}

TEST_F(DiffOfWhatIsNoResult, IsRefusedWithoutADefinition) {
  AddNodalResult(b_, "/post/constant/", "STRAY", 1000, 1, 1).dataset<float>("res", {1, 1}, {1});
  const ProgramRun run = Run();
  ExpectTrouble(run, b_.path(), "the values of \"STRAY\" are not defined");
  EXPECT_THAT(run.err, HasSubstr("orv: " + b_.path() + ": Missing Variable definition \"STRAY\""));
  const ProgramRun ignored = Run({"--ignore", "STRAY", "--var", "WAVE"});
  EXPECT_EQ(ignored.exit_code, 0) << ignored.err;
  EXPECT_THAT(ignored.err, testing::Not(HasSubstr(a_.path())));
}

TEST_F(DiffOfWhatIsNoResult, TellsNamesWithControlCharactersInOneLine) {
  AddVariable(b_, "X", "", 0, {"A\033[31mB\n"});
  EXPECT_EQ(Told({"--var", "X"}), "only in B\n");
  AddVariable(a_, "X", "", 0, {"AB"});
  EXPECT_THAT(Run().out, HasSubstr("variable X: components \"AB\" in A, \"A?[31mB?\" in B\n"));
}

}  // namespace
