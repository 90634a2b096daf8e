// What every command of orv owes its caller, whatever it does: a table of the commands, and what each meets. A command
// is added by a row.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "program/forged_results.h"
#include "program/linked_file.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using Words = std::vector<std::string>;

/// FILE and OUT in the words stand for the file that is read and the one that is written.
struct Command {
  const char* name;
  Words words;
  std::string unknown_name = {};  ///< words before a name of something in the file; empty where it takes none
  bool prints = true;             ///< data on standard output
  bool has_json = true;
  const char* reads = "whole.orv";
  int other_kind = 2, cut = 2;  ///< exit codes for files that are no result files, and for half of one

  bool writes() const { return std::find(words.begin(), words.end(), "OUT") != words.end(); }
  friend std::ostream& operator<<(std::ostream& out, const Command& command) { return out << command.name; }
};

const Command kCommands[] = {
    {"import", {"import", "--quiet", "FILE", "OUT"}, "", false, false, "small.frd"},
    {"info", {"info", "FILE"}},
    {"ls", {"ls", "FILE"}},
    {"parts", {"parts", "FILE"}, "--type"},
    {"states", {"states", "FILE"}},
    {"values", {"values", "FILE", "--state", "1", "--var", "STRESS"}, "--var"},
    {"history", {"history", "FILE", "--var", "STRESS"}, "--var"},
    {"elements", {"elements", "FILE"}, "--type"},
    {"diff", {"diff", "FILE", "FILE"}, "--var"},
    {"extract", {"extract", "--quiet", "FILE", "-o", "OUT"}, "--var", false},
    {"repack", {"repack", "--quiet", "FILE", "-o", "OUT"}, "", false},
    {"link", {"link", "--quiet", "FILE", "-o", "OUT"}, "", false, true, "meshed.orv"},
    {"check", {"check", "FILE"}, "", true, true, "whole.orv", 1, 1},
    {"repair", {"repair", "FILE", "-o", "OUT"}, "", true, true, "whole.orv", 2, 1},
};

class EveryCommand : public ProgramTest, public testing::WithParamInterface<Command> {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    std::filesystem::create_directory(TempPath("out"));
    if (GetParam().reads == std::string("small.frd")) {
      whole_ = SmallRun();
      return;
    }
    ForgedFile file;
    FillForgedResults(file);
    if (GetParam().reads == std::string("meshed.orv")) AddLinkedMesh(file);
    whole_ = BytesOf(file.path());
  }

  std::string Out() const { return TempPath("out/made"); }

  /// A file of the kind that the command reads.
  std::string Write(std::string_view bytes) const { return WriteFile(GetParam().reads, bytes); }

  static ProgramRun Run(Words words, const std::string& file, const std::string& out,
                        const Surroundings& surroundings = {}) {
    for (std::string& word : words) word = word == "FILE" ? file : word == "OUT" ? out : word;
    return RunOrv(words, surroundings);
  }
  ProgramRun Run(const std::string& file, const Surroundings& surroundings = {}) const {
    return Run(GetParam().words, file, Out() + (GetParam().writes() ? ".orv" : ""), surroundings);
  }

  /// Exit code 2, one line that names `file` and tells what to do, nothing else anywhere.
  void ExpectOneLineOfTrouble(const ProgramRun& run, const std::string& file) const {
    ExpectTrouble(run, file, "");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(NamesIn(TempPath("out")), Words{});
  }

  std::string whole_;
};

class CommandsThatTakeNames : public EveryCommand {};
class CommandsThatPrint : public EveryCommand {};
class CommandsThatWrite : public EveryCommand {};
class CommandsWithJson : public EveryCommand {};

TEST_P(EveryCommand, IsQuietWhenAllWentWell) {
  const ProgramRun run = Run(Write(whole_));
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out.empty(), !GetParam().prints);
  EXPECT_EQ(NamesIn(TempPath("out")), GetParam().writes() ? Words{"made.orv"} : Words{});
}

TEST_P(EveryCommand, TellsOfAFileThatIsMissing) {
  const std::string path = TempPath(std::string("none/") + GetParam().reads);
  ExpectOneLineOfTrouble(Run(path), path);
}

TEST_P(EveryCommand, TellsOfADirectory) {
  const std::string path = TempPath(GetParam().reads);
  std::filesystem::create_directory(path);
  ExpectOneLineOfTrouble(Run(path), path);
}

TEST_P(EveryCommand, TellsOfAFileThatMayNotBeRead) {
  const std::string path = Write(whole_);
  chmod(path.c_str(), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectOneLineOfTrouble(Run(path, surroundings), path);
}

TEST_P(EveryCommand, TellsOfAFileOfAnotherKind) {
  const std::string path = Write("Dear diary,\n");
  const ProgramRun run = Run(path);
  if (GetParam().other_kind == 2) return ExpectOneLineOfTrouble(run, path);
  EXPECT_EQ(run.exit_code, GetParam().other_kind);
  EXPECT_NE(run.out, "");
  EXPECT_EQ(run.err, "");
}

TEST_P(EveryCommand, TellsOfHalfAFile) {
  const std::string path = Write(std::string_view(whole_).substr(0, whole_.size() / 2));
  const ProgramRun run = Run(path);
  if (GetParam().cut == 2) return ExpectOneLineOfTrouble(run, path);
  EXPECT_EQ(run.exit_code, GetParam().cut);
  EXPECT_NE(run.out, "");
  EXPECT_EQ(run.err, "");
}

TEST_P(CommandsThatTakeNames, TellOfANameThatTheFileDoesNotHave) {
  Words words = GetParam().words;
  const auto option = std::find(words.begin(), words.end(), GetParam().unknown_name);
  if (option != words.end()) words.erase(option, option + 2);
  words.insert(words.end(), {GetParam().unknown_name, "Nothing"});
  const std::string path = Write(whole_);
  const ProgramRun run = Run(words, path, Out());
  ExpectOneLineOfTrouble(run, path);
  EXPECT_THAT(run.err, testing::HasSubstr("\"Nothing\""));
}

TEST_P(EveryCommand, TellsOfWordsThatItDoesNotKnow) {
  Words words = GetParam().words;
  words.emplace_back("--colour");
  ExpectOneLineOfTrouble(Run(words, Write(whole_), Out()), GetParam().name);
  ExpectOneLineOfTrouble(RunOrv({GetParam().name}), GetParam().name);
}

TEST_P(EveryCommand, EndsAsOthersDoWhenNobodyReadsItsOutput) {
  Surroundings surroundings;
  surroundings.reader_is_gone = true;
  const ProgramRun run = Run(Write(whole_), surroundings);
  EXPECT_EQ(run.exit_code, GetParam().prints ? -SIGPIPE : 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(NamesIn(TempPath("out")), GetParam().writes() ? Words{"made.orv"} : Words{});
}

TEST_P(CommandsThatPrint, TellOfOutputThatFindsNoRoom) {
  Surroundings surroundings;
  surroundings.standard_output = "/dev/full";
  const ProgramRun run = Run(Write(whole_), surroundings);
  ExpectTrouble(run, "standard output", "No space left on device");
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
}

TEST_P(CommandsThatWrite, LeaveNothingBehindOnAFullDisk) {
  Surroundings surroundings;
  surroundings.largest_file = 1000;
  ExpectOneLineOfTrouble(Run(Write(whole_), surroundings), Out() + ".orv");
}

TEST_P(CommandsWithJson, AnswerInOneForm) {
  Words words = GetParam().words;
  words.emplace_back("--json");
  const std::string path = Write(whole_);
  const auto answer = nlohmann::ordered_json::parse(Run(words, path, Out()).out);
  std::vector<std::string> members;
  for (const auto& [member, value] : answer.items()) members.push_back(member);
  ASSERT_GT(members.size(), 3U);
  members.resize(3);
  EXPECT_EQ(members, (Words{"schema_version", "command", "file"}));
  EXPECT_EQ(answer.at("schema_version"), 1);
  EXPECT_EQ(answer.at("command"), GetParam().name);
  EXPECT_EQ(answer.at("file"), path);
}

TEST_P(EveryCommand, HelpsWithItsOptionsExitCodesAndExamples) {
  const ProgramRun run = RunOrv({GetParam().name, "--help"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, testing::StartsWith(std::string("Usage: orv ") + GetParam().name + " "));
  for (const char* heading : {"\n\nOptions:\n  ", "\n\nExit status:\n  0  ", "\n\nExamples:\n  $ orv "}) {
    EXPECT_THAT(run.out, testing::HasSubstr(heading));
  }
  std::istringstream lines(run.out.substr(0, run.out.find("\nExamples:")));
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

std::vector<Command> Those(bool (*are_meant)(const Command&)) {
  std::vector<Command> commands;
  std::copy_if(std::begin(kCommands), std::end(kCommands), std::back_inserter(commands), are_meant);
  return commands;
}

std::string NameOf(const testing::TestParamInfo<Command>& test) { return test.param.name; }

bool TakesNames(const Command& command) { return !command.unknown_name.empty(); }
bool Prints(const Command& command) { return command.prints; }
bool Writes(const Command& command) { return command.writes(); }
bool HasJson(const Command& command) { return command.has_json; }

INSTANTIATE_TEST_SUITE_P(All, EveryCommand, testing::ValuesIn(kCommands), NameOf);
INSTANTIATE_TEST_SUITE_P(All, CommandsThatTakeNames, testing::ValuesIn(Those(TakesNames)), NameOf);
INSTANTIATE_TEST_SUITE_P(All, CommandsThatPrint, testing::ValuesIn(Those(Prints)), NameOf);
INSTANTIATE_TEST_SUITE_P(All, CommandsThatWrite, testing::ValuesIn(Those(Writes)), NameOf);
INSTANTIATE_TEST_SUITE_P(All, CommandsWithJson, testing::ValuesIn(Those(HasJson)), NameOf);

/// Every command of the help has a row above; `completion` reads no file.
TEST(EveryCommandTable, HasAllCommands) {
  const ProgramRun run = RunOrv({"__complete", "--", ""});
  std::istringstream lines(run.out);
  Words shown, rows = {"completion"};
  for (std::string line; std::getline(lines, line);) shown.push_back(line.substr(0, line.find('\t')));
  for (const Command& command : kCommands) rows.emplace_back(command.name);
  EXPECT_THAT(shown, testing::UnorderedElementsAreArray(rows));
}

}  // namespace
