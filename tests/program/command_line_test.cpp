// What all commands of orv share: help, refusal of words they do not know, files that are no result files, output that
// does not reach its reader.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "program/forged_results.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;
using Words = std::vector<std::string>;

class CommandLine : public ProgramTest {
 protected:
  static void ExpectUsageTrouble(const Words& words) {
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("--help"));
  }
};

TEST_F(CommandLine, WithoutACommandIsRefused) { ExpectUsageTrouble({}); }

TEST_F(CommandLine, WithWordsThatNobodyKnowsIsRefused) {
  ExpectUsageTrouble({"export"});
  ExpectUsageTrouble({"--colour"});
  ExpectUsageTrouble({"info", "--colour", "file.orv"});
  ExpectUsageTrouble({"info", "file.orv", "other.orv"});
  ExpectUsageTrouble({"values", "file.orv", "--variable", "PE"});
  ExpectUsageTrouble({"states", "file.orv", "--var", "PE"});
  ExpectUsageTrouble({"import", "a.frd", "b.orv", "--units", "cgs"});
  ExpectUsageTrouble({"import", "a.frd", "b.orv", "--format-version", "3.0"});
}

TEST_F(CommandLine, WithTooFewWordsIsRefused) {
  ExpectUsageTrouble({"import"});
  ExpectUsageTrouble({"import", "a.frd"});
  ExpectUsageTrouble({"info"});
  ExpectUsageTrouble({"values", "file.orv"});
  ExpectUsageTrouble({"elements"});
}

TEST_F(CommandLine, HelpsOnRequest) {
  for (const Words& words : {Words{"--help"}, Words{"-h"}, Words{"import", "--help"}, Words{"info", "--help"},
                             Words{"values", "--help"}, Words{"elements", "--help"}, Words{"states", "--help"}}) {
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_THAT(run.out, HasSubstr("Usage: "));
    EXPECT_EQ(run.err, "");
  }
}

TEST_F(CommandLine, TellsItsVersion) {
  const ProgramRun run = RunOrv({"--version"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.out, testing::StartsWith("orv, reader version 2.0.0, HDF5 1.14."));
  EXPECT_EQ(run.err, "");
}

/// A command that reads a result file; the file comes behind the first word.
struct ReadingCommand {
  const char* name;
  Words words;

  friend std::ostream& operator<<(std::ostream& out, const ReadingCommand& command) { return out << command.name; }
};

class ReadingCommands : public CommandLine, public testing::WithParamInterface<ReadingCommand> {
 protected:
  ProgramRun Run(const std::string& file, const Surroundings& surroundings = {}) const {
    Words words = GetParam().words;
    words.insert(words.begin() + 1, file);
    return RunOrv(words, surroundings);
  }

  std::string Forge() const {
    ForgedFile file;
    FillForgedResults(file);
    return WriteFile("whole.orv", BytesOf(file.path()));
  }
};

TEST_P(ReadingCommands, ReadAResultFile) {
  const ProgramRun run = Run(Forge());
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_NE(run.out, "");
}

TEST_P(ReadingCommands, RefuseAMissingFile) {
  ExpectTrouble(Run(TempPath("none.orv")), TempPath("none.orv"), "does not exist");
}

TEST_P(ReadingCommands, RefuseAFolder) { ExpectTrouble(Run(TempPath("")), TempPath(""), "is not a file"); }

TEST_P(ReadingCommands, RefuseAFifoWithoutWaiting) {
  ASSERT_EQ(mkfifo(TempPath("pipe.orv").c_str(), 0600), 0);
  ExpectTrouble(Run(TempPath("pipe.orv")), TempPath("pipe.orv"), "is not a file");
}

TEST_P(ReadingCommands, RefuseAFileThatMayNotBeRead) {
  const std::string path = Forge();
  chmod(path.c_str(), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectTrouble(Run(path, surroundings), path, "may not be read");
}

TEST_P(ReadingCommands, RefuseAFileOfAnotherKind) {
  for (const std::string& bytes : {std::string(), std::string("Dear diary,\n"), SmallRun(), std::string(4096, '\0')}) {
    const std::string path = WriteFile("other.orv", bytes);
    ExpectTrouble(Run(path), path, "is not an HDF5 file");
  }
}

TEST_P(ReadingCommands, RefuseAnHdf5FileWithoutResults) {
  const std::string path = TempPath("empty.h5");
  { const Id file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "make a file"); }
  ExpectTrouble(Run(path), path, "no group /post");
}

TEST_P(ReadingCommands, RefuseAFileCutAnywhere) {
  const std::string bytes = BytesOf(Forge());
  for (size_t at = 0; at < bytes.size(); at += bytes.size() / 29) {
    SCOPED_TRACE(at);
    const std::string path = WriteFile("cut.orv", bytes.substr(0, at));
    ExpectTrouble(Run(path), path, "damaged");
  }
  const std::string path = WriteFile("cut.orv", bytes.substr(0, bytes.size() - 1));
  ExpectTrouble(Run(path), path, "damaged");
}

TEST_P(ReadingCommands, TellWhereAFileIsDamaged) {
  std::string bytes = BytesOf(Forge());
  const size_t place = bytes.find("HEAP");
  ASSERT_NE(place, std::string::npos);
  bytes[place] = 'h';
  const std::string path = WriteFile("damaged.orv", bytes);
  ExpectTrouble(Run(path), path,
                "is damaged: local heap is not where it should be, at byte " + std::to_string(place) +
                    "; get the file again from where it came from");
}

/// Whatever a damaged file makes of the answer: it is data with exit code 0, or a last line with exit code 2.
TEST_P(ReadingCommands, SurviveAFileWithWrongBytes) {
  const std::string bytes = BytesOf(Forge());
  for (size_t at = 0; at + 8 < bytes.size(); at += bytes.size() / 61) {
    SCOPED_TRACE(at);
    std::string damaged = bytes;
    damaged.replace(at, 8, 8, '\xFF');
    const std::string path = WriteFile("damaged.orv", damaged);
    const ProgramRun run = Run(path);
    if (run.exit_code == 0) {
      EXPECT_TRUE(IsOfMessages(run.err)) << run.err;
    } else {
      ExpectTrouble(run, path, "");
    }
  }
}

TEST_P(ReadingCommands, TellOfOutputThatDoesNotReachItsReader) {
  Surroundings surroundings;
  surroundings.standard_output = "/dev/full";
  const ProgramRun run = Run(Forge(), surroundings);
  ExpectTrouble(run, "standard output", "cannot be written: No space left on device");
}

TEST_P(ReadingCommands, LeaveTheFileAlone) {
  const std::string path = Forge();
  const std::string before = BytesOf(path);
  chmod(path.c_str(), 0400);
  Surroundings surroundings;
  surroundings.keeps_permissions = RunOrv({"--version"}, {"", "", -1, true}).exit_code == 0;
  EXPECT_EQ(Run(path, surroundings).exit_code, 0);
  EXPECT_EQ(BytesOf(path), before);
  EXPECT_EQ(NamesIn(TempPath("")), Words{"whole.orv"});
}

const ReadingCommand kReadingCommands[] = {
    {"info", {"info"}},         {"info_json", {"info", "--json"}},
    {"states", {"states"}},     {"values", {"values", "--var", "STRESS", "--state", "1"}},
    {"elements", {"elements"}},
};

INSTANTIATE_TEST_SUITE_P(All, ReadingCommands, testing::ValuesIn(kReadingCommands),
                         [](const auto& test) { return test.param.name; });

}  // namespace
