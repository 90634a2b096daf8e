// What orv tells a shell that completes a command line: through `orv __complete` itself, and through the scripts in the
// shells that are there.

#include <gmock/gmock.h>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Words = std::vector<std::string>;

Words LinesOf(const std::string& text) {
  Words lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class Completion : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ForgedFile file;
    FillForgedResults(file);
    AddPart(file, 7);
    path_ = WriteFile("whole.orv", BytesOf(file.path()));
  }

  /// The lines of an answer, with what stands behind the candidates.
  static Words Answer(Words words) {
    words.insert(words.begin(), {"__complete", "--"});
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    return LinesOf(run.out);
  }
  static Words Candidates(const Words& words) {
    Words candidates = Answer(words);
    for (std::string& line : candidates) line.resize(std::min(line.find('\t'), line.size()));
    return candidates;
  }

  std::string path_;
};

TEST_F(Completion, NamesTheCommands) {
  EXPECT_THAT(Candidates({""}), IsSupersetOf({"import", "info", "values", "repair"}));
  EXPECT_THAT(Candidates({""}), Not(Contains("__complete")));
  EXPECT_THAT(Answer({"stat"}), ElementsAre(testing::StartsWith("states\tList the states")));
  EXPECT_THAT(Candidates({"export"}), IsEmpty());
  EXPECT_THAT(Candidates({"export", ""}), IsEmpty());
}

TEST_F(Completion, NamesTheOptionsThatAreNotThere) {
  EXPECT_THAT(Candidates({"--v"}), ElementsAre("--version"));
  EXPECT_THAT(Candidates({"values", path_, "--"}), IsSupersetOf({"--var", "--states", "--ids", "--json"}));
  EXPECT_THAT(Candidates({"values", "--json", path_, "--var", "STRESS", "--"}), Not(Contains("--var")));
  EXPECT_THAT(Candidates({"values", "--json", path_, "--"}), Not(Contains("--json")));
  EXPECT_THAT(Candidates({"info", "--", "-"}), Not(Contains("--json")));
}

TEST_F(Completion, AsksForFilesWhereFilesStand) {
  EXPECT_THAT(Candidates({"info", ""}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"import", "a.frd", "--dat", ""}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"import", "a.frd", ""}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"repair", path_, "-o", ""}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"repair", path_, "--out="}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"ls", "who"}), ElementsAre(":files"));
  EXPECT_THAT(Candidates({"info", path_, "x"}), IsEmpty());
}

TEST_F(Completion, NamesTheValuesThatAnOptionTakes) {
  EXPECT_THAT(Candidates({"import", "a.frd", "b.orv", "--units", "mm-k"}), ElementsAre("mm-kg-ms", "mm-kg-s"));
  EXPECT_THAT(Candidates({"import", "--format-version", "2"}), ElementsAre("2.0", "2.1", "2.2"));
  EXPECT_THAT(Candidates({"check", "--level="}), ElementsAre("--level=error", "--level=warning", "--level=note"));
  EXPECT_THAT(Candidates({"check", "--explain", "B00"}), Contains("B006"));
  EXPECT_THAT(Candidates({"completion", ""}), ElementsAre("bash", "zsh", "fish"));
  EXPECT_THAT(Candidates({"values", path_, "--csv="}), IsEmpty());
}

TEST_F(Completion, NamesWhatTheFileHas) {
  EXPECT_THAT(Candidates({"values", path_, "--var", ""}),
              IsSupersetOf({"ODD", "STRESS", "TEMP", "WAVE", "STRESS_SXX"}));
  EXPECT_THAT(Candidates({"values", path_, "--var", "WAVE_"}), ElementsAre("WAVE_A", "WAVE_B"));
  EXPECT_THAT(Candidates({"history", "--var", "STRESS", path_, "--component", ""}), ElementsAre("SXX", "S,Y"));
  EXPECT_THAT(Candidates({"values", path_, "--entity", "S"}), ElementsAre("SHELL", "SOLID"));
  EXPECT_THAT(Candidates({"elements", path_, "--type", ""}), ElementsAre("SHELL", "SOLID"));
  EXPECT_THAT(Candidates({"parts", path_, "--type", ""}), ElementsAre("PART"));
  EXPECT_THAT(Candidates({"values", path_, "--var", "ODD", "--ids", ""}), ElementsAre("1", "2", "3", "4"));
  EXPECT_THAT(Candidates({"values", path_, "--var", "WAVE", "--ids", "5,50"}), ElementsAre("5,5000000000"));
  EXPECT_THAT(Answer({"states", path_, "--states", ""}),
              ElementsAre("last\tthe last state", "1\tTIME 0.125", "2\tTIME 0.25"));
  EXPECT_THAT(Candidates({"states", path_, "--states", "1,l"}), ElementsAre("1,last"));
  EXPECT_THAT(Candidates({"values", path_, "--state=l"}), ElementsAre("--state=last"));
}

TEST_F(Completion, DoesNotCareForCaseWhereNothingElseFits) {
  EXPECT_THAT(Candidates({"values", path_, "--var", "wave_"}), ElementsAre("WAVE_A", "WAVE_B"));
}

TEST_F(Completion, NamesThePlacesInAFile) {
  EXPECT_THAT(Candidates({"ls", path_ + ":"}), IsSupersetOf({path_ + ":constant/", path_ + ":singlestate/"}));
  EXPECT_THAT(Candidates({"ls", path_ + ":constant/con"}), ElementsAre(path_ + ":constant/connectivities/"));
  EXPECT_THAT(Candidates({"ls", path_ + ":nowhere/"}), IsEmpty());
}

TEST_F(Completion, SaysNothingOfFilesThatAreNoResultFiles) {
  for (const std::string& path : {TempPath("none.orv"), WriteFile("diary.orv", "Dear diary,\n"), TempPath("")}) {
    EXPECT_THAT(Candidates({"values", path, "--var", ""}), IsEmpty());
    EXPECT_THAT(Candidates({"parts", path, "--type", ""}), IsEmpty());
  }
  EXPECT_THAT(Candidates({"ls", WriteFile("other.orv", "Dear diary,\n") + ":"}), IsEmpty());
}

TEST_F(Completion, SurvivesDamagedFilesAndOddNames) {
  const std::string bytes = BytesOf(path_);
  for (size_t at = 0; at + 8 < bytes.size(); at += bytes.size() / 31) {
    std::string damaged = bytes;
    damaged.replace(at, 8, 8, '\xFF');
    (void)Answer({"values", WriteFile("damaged.orv", damaged), "--var", ""});  // which expects that all is well
  }
  ForgedFile file;
  AddVariable(file, "FINE", "", 0, {"VALUE"});
  AddVariable(file, "B\tAD\nNAME", "", 0, {"VALUE"});
  for (const char* name : {"FINE", "B\tAD\nNAME"}) {
    AddIndex(AddNodalResult(file, kState1, name, 1000, 1, 1), {0.5}).dataset<float>("res", {1, 1}, {1});
  }
  EXPECT_THAT(Candidates({"values", file.path(), "--var", ""}), ElementsAre("FINE", "FINE_VALUE"));
}

TEST_F(Completion, IsQuick) {
  double best = 100;
  for (int i = 0; i < 5; ++i) best = std::min(best, RunOrv({"__complete", "--", "values", path_, "--var", ""}).seconds);
  EXPECT_LT(best, kIsSanitized ? 3 : 0.5);  // a tenth of that when nothing else runs
}

/// Completes a line in bash, which takes its words apart in its own way, and answers what it would put in.
Words InBash(const std::string& line, const Words& words, const std::string& folder) {
  const std::string script = R"(source <("$0" completion bash); cd "$1"; COMP_LINE=$2; COMP_POINT=${#2}; shift 2
COMP_WORDS=("$0" "$@"); COMP_CWORD=$#; _orv; [[ ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\n' "${COMPREPLY[@]}")";
  Words arguments = {"-c", script, ORVIO_PROGRAM, folder, ORVIO_PROGRAM + (" " + line)};
  arguments.insert(arguments.end(), words.begin(), words.end());
  const ProgramRun run = RunCommand("bash", arguments);
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  return LinesOf(run.out);
}

TEST_F(Completion, WorksInBash) {
  if (RunCommand("bash", {"-c", ":"}).exit_code != 0) GTEST_SKIP() << "bash is not installed";
  const auto complete = [&](const std::string& line, const Words& words) { return InBash(line, words, TempPath("")); };
  EXPECT_THAT(complete("stat", {"stat"}), ElementsAre("states"));
  EXPECT_THAT(complete("info ", {"info", ""}), IsEmpty());  // files, by bash itself
  EXPECT_THAT(complete("values whole.orv --var WAVE_", {"values", "whole.orv", "--var", "WAVE_"}),
              ElementsAre("WAVE_A", "WAVE_B"));
  EXPECT_THAT(complete("values whole.orv --var=WAVE_", {"values", "whole.orv", "--var", "=", "WAVE_"}),
              ElementsAre("WAVE_A", "WAVE_B"));
  EXPECT_THAT(complete("ls whole.orv:", {"ls", "whole.orv", ":"}), IsSupersetOf({"constant/", "singlestate/"}));
  EXPECT_THAT(complete("ls whole.orv:con", {"ls", "whole.orv", ":", "con"}), ElementsAre("constant/"));
  EXPECT_THAT(complete("values whole.orv --states 1,l", {"values", "whole.orv", "--states", "1,l"}),
              ElementsAre("1,last"));
}

TEST_F(Completion, QuotesNamesWithBlanksInBash) {
  if (RunCommand("bash", {"-c", ":"}).exit_code != 0) GTEST_SKIP() << "bash is not installed";
  ForgedFile file;
  AddVariable(file, "Two Words", "", 0, {"VALUE"});
  AddIndex(AddNodalResult(file, kState1, "Two Words", 1000, 1, 1), {0.5}).dataset<float>("res", {1, 1}, {1});
  const std::string path = WriteFile("two words.orv", BytesOf(file.path()));
  const auto complete = [&](const std::string& typed) {
    return InBash("values two\\ words.orv --var " + typed, {"values", "two\\ words.orv", "--var", typed}, TempPath(""));
  };
  EXPECT_THAT(complete("Two"), ElementsAre("Two\\ Words", "Two\\ Words_VALUE"));
  EXPECT_THAT(complete("Two\\ Words_"), ElementsAre("Two\\ Words_VALUE"));
  EXPECT_THAT(complete("'Two Words_"), ElementsAre("Two Words_VALUE"));
}

TEST_F(Completion, ComesAsScriptsThatTheShellsTake) {
  for (const std::string shell : {"bash", "zsh", "fish"}) {
    const ProgramRun script = RunOrv({"completion", shell});
    EXPECT_EQ(script.exit_code, 0);
    const std::string path = WriteFile("script", script.out);
    if (RunCommand(shell, {"-c", ":"}).exit_code != 0) continue;  // not installed
    const ProgramRun parsed = RunCommand(shell, {"-n", path});
    EXPECT_EQ(parsed.exit_code, 0) << shell;
    EXPECT_EQ(parsed.err, "") << shell;
  }
  ExpectTrouble(RunOrv({"completion", "csh"}), "completion", "\"csh\" is none of bash, zsh, fish");
}

TEST_F(Completion, WorksInFish) {
  if (RunCommand("fish", {"-c", ":"}).exit_code != 0) GTEST_SKIP() << "fish is not installed";
  const std::string folder = std::filesystem::path(ORVIO_PROGRAM).parent_path();
  const auto complete = [&](const std::string& line) {
    const std::string script =
        "set -p PATH " + folder + "; orv completion fish | source; cd " + TempPath("") + "; complete -C '" + line + "'";
    return LinesOf(RunCommand("fish", {"--no-config", "-c", script}).out);
  };
  EXPECT_THAT(complete("orv values whole.orv --var WAVE_"), ElementsAre("WAVE_A", "WAVE_B"));
  EXPECT_THAT(complete("orv info who"), ElementsAre("whole.orv"));
}

/// The pages are made of the help, so that each command has one.
TEST(ManualPages, AreMadeOfTheHelp) {
  if (RunCommand("help2man", {"--version"}).exit_code != 0) GTEST_SKIP() << "help2man is not installed";
  const std::filesystem::path folder =
      std::filesystem::path(testing::TempDir()) / ("orvio_man_" + std::to_string(getpid()));
  const ProgramRun run = RunCommand(ORVIO_SOURCE_DIR "/scripts/man", {ORVIO_PROGRAM, "1.2.3", folder});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(NamesIn(folder), IsSupersetOf({"orv.1", "orv-check.1", "orv-values.1", "orv-completion.1"}));
  const std::string page = BytesOf(folder / "orv-values.1");
  for (const char* text : {".TH ORV-VALUES \"1\"", "orvio 1.2.3", "orv-values \\- Print the values of a variable",
                           ".SH OPTIONS", ".SH STATES", ".SH \"EXIT STATUS\"", ".SH EXAMPLES", ".BR orv-import (1)"}) {
    EXPECT_THAT(page, testing::HasSubstr(text));
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
