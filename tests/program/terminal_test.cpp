// What orv draws on a terminal: the progress of an import and nothing else, without any command to the terminal. And
// what it does when its standard streams are closed, or when it is interrupted.

#include <gmock/gmock.h>
#include <pty.h>

#include <thread>

#include "program/forged_results.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

constexpr char kEscape[] = "\x1b";

/// So many states of one small triangle: importing them takes longer than the patience before a bar is drawn.
std::string LongRun(int states) {
  std::string blocks;
  for (int state = 1; state <= states; ++state) {
    blocks += FrdBlock({state, std::to_string(state), 1}, "PE", {{"PE"}}, {{1, {0.25}}, {5, {0.5}}});
  }
  return FrdRun(blocks);
}

class Terminal : public ProgramTest {
 protected:
  /// Runs orv with all streams on a terminal, and answers what it draws.
  static std::string Draw(const Words& arguments, const Words& variables) {
    Words words = {"env"};
    words.insert(words.end(), variables.begin(), variables.end());
    words.emplace_back(ORVIO_PROGRAM);
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      execvp(pointers[0], pointers.data());
      _exit(127);
    }
    std::string drawn;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(terminal, buffer, sizeof buffer)) > 0;)
      drawn.append(buffer, static_cast<size_t>(got));
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    return drawn;
  }

  std::string Forge() const {
    ForgedFile file;
    FillForgedResults(file);
    return WriteFile("whole.orv", BytesOf(file.path()));
  }
};

TEST_F(Terminal, GetsNoCommands) {
  const std::string path = Forge();
  for (const Words& variables : {Words{"TERM=xterm-256color"}, Words{"TERM=dumb"}, Words{"TERM=xterm", "NO_COLOR=1"}}) {
    for (const Words& words : {Words{"--help"}, Words{"info", path}, Words{"values", path, "--var", "X"},
                               Words{"check", path}, Words{"nothing"}}) {
      const std::string drawn = Draw(words, variables);
      EXPECT_NE(drawn, "");
      EXPECT_THAT(drawn, Not(HasSubstr(kEscape))) << words.front();
    }
  }
}

TEST_F(Terminal, ShowsTheProgressOfALongImportAndWipesItAway) {
  const std::string run = WriteFile("long.frd", LongRun(1500));
  const std::string drawn = Draw({"import", "--quiet", run, TempPath("long.orv")}, {"TERM=dumb", "NO_COLOR=1"});
  EXPECT_THAT(drawn, HasSubstr("importing ["));
  EXPECT_THAT(drawn, HasSubstr("%  state "));
  EXPECT_THAT(drawn, testing::EndsWith(" \r"));
  EXPECT_THAT(drawn, Not(HasSubstr(kEscape)));
  EXPECT_THAT(drawn, Not(HasSubstr("\n")));
}

TEST_F(Terminal, IsTheOnlyPlaceForProgress) {
  const std::string run = WriteFile("long.frd", LongRun(1500));
  const ProgramRun import = RunOrv({"import", "--quiet", run, TempPath("long.orv")});
  EXPECT_EQ(import.exit_code, 0);
  EXPECT_EQ(import.err, "");
}

/// Runs a line of a shell, in which $0 is orv.
ProgramRun RunShell(const std::string& line, const Words& arguments = {}) {
  Words words = {"-c", line, ORVIO_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return RunCommand("sh", words);
}

class Streams : public Terminal {};

TEST_F(Streams, MayBeClosed) {
  const std::string path = Forge();
  const ProgramRun no_output = RunShell("\"$0\" info \"$1\" >&-", {path});
  ExpectTrouble(no_output, "standard output", "cannot be written");
  const ProgramRun no_errors = RunShell("\"$0\" info \"$1\" 2>&-", {TempPath("none.orv")});
  EXPECT_EQ(no_errors.exit_code, 2);
  EXPECT_EQ(no_errors.out, "");
  const ProgramRun nothing = RunShell("\"$0\" info \"$1\" <&- >&- 2>&-", {path});
  EXPECT_EQ(nothing.exit_code, 2);
  EXPECT_EQ(RunShell("\"$0\" info \"$1\" 2>/dev/full", {TempPath("none.orv")}).exit_code, 2);
}

TEST_F(Streams, DoNotMixWithFilesWhenTheyAreClosed) {
  const std::string run = WriteFile("small.frd", SmallRun());
  const ProgramRun import = RunShell("\"$0\" import \"$1\" \"$2\" <&- >&- 2>&-", {run, TempPath("made.orv")});
  EXPECT_EQ(import.exit_code, 0);
  EXPECT_EQ(RunOrv({"info", TempPath("made.orv")}).exit_code, 0);
}

TEST_F(Streams, OfAReaderThatIsGoneEndTheProgramEvenWhereTheSignalIsIgnored) {
  const ProgramRun run = RunShell("trap '' PIPE; { sleep 0.3; \"$0\" info \"$1\"; echo $? >&2; } | true", {Forge()});
  EXPECT_EQ(run.err, std::to_string(128 + SIGPIPE) + "\n");
}

TEST_F(Streams, TellNothingOfAnImportThatWasEndedAndNothingIsLeftOfIt) {
  const std::string run = WriteFile("long.frd", LongRun(3000));
  std::filesystem::create_directory(TempPath("out"));
  for (const char* signal : {"TERM", "HUP"}) {
    // The working file is there before the signal comes.
    const ProgramRun import = RunShell(
        "exec 2>&-; \"$0\" import \"$1\" \"$2/made.orv\" 2>\"$2.err\" & "
        "while [ -z \"$(ls -A \"$2\")\" ]; do sleep 0.01; done; kill -s $3 $!; wait $! 2>&-; exit $?",
        {run, TempPath("out"), signal});
    EXPECT_GT(import.exit_code, 128) << import.err;
    EXPECT_EQ(BytesOf(TempPath("out.err")), "");
    EXPECT_EQ(NamesIn(TempPath("out")), Words{}) << signal;
  }
}

TEST_F(Streams, GetALineWhenMemoryRunsOut) {
  if (kIsSanitized) GTEST_SKIP() << "a sanitizer reserves more memory than there is";
  const std::string path = Forge();
  bool has_run_out = false;
  // Where the libraries just fit, a million ids do not.
  for (int mib = 40; mib < 400 && !has_run_out; mib += 4) {
    const ProgramRun run = RunShell(
        "ulimit -v " + std::to_string(mib * 1024) + "; exec \"$0\" values \"$1\" --var STRESS --state 1 --ids 1-999999",
        {path});
    has_run_out =
        run.err == "orv: values: there is not enough memory; ask for less at a time, such as one state or some ids\n";
    EXPECT_TRUE(!has_run_out || run.exit_code == 2);
  }
  EXPECT_TRUE(has_run_out);
}

}  // namespace
