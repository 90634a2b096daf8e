// Imports that fail: one line tells why, nothing is left behind, and an output that existed is as it was. What is wrong
// with a .frd file is found by its reader and tested in frd_damage_test.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;

constexpr char kBefore[] = "what was here before";

class ImportFailure : public ProgramTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(TempPath("out"));
    out_ = WriteFile("out/result.orv", kBefore);
  }

  /// Imports into a folder where an older output stands.
  void ExpectRefused(const std::string& in, const std::string& what, const Surroundings& surroundings = {}) const {
    ExpectTrouble(RunOrv({"import", in, out_}, surroundings), in, what);
    ExpectOutputAsBefore();
    ExpectTrouble(RunOrv({"import", in, TempPath("out/new.orv")}, surroundings), in, what);
    ExpectOutputAsBefore();
  }

  void ExpectOutputAsBefore() const {
    EXPECT_EQ(BytesOf(out_), kBefore);
    EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("result.orv"));
  }

  std::string out_;
};

TEST_F(ImportFailure, OfAMissingFile) { ExpectRefused(TempPath("none.frd"), "cannot be opened: No such file"); }

TEST_F(ImportFailure, OfAFolder) {
  std::filesystem::create_directory(TempPath("folder.frd"));
  ExpectRefused(TempPath("folder.frd"), "is a directory");
  ExpectRefused(TempPath("out"), "is of a kind that cannot be imported");
}

TEST_F(ImportFailure, OfAFileThatMayNotBeRead) {
  const std::string in = WriteFile("secret.frd", SmallRun());
  chmod(in.c_str(), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectRefused(in, "cannot be opened: Permission denied", surroundings);
}

TEST_F(ImportFailure, OfAFifo) {
  const std::string in = TempPath("pipe.frd");
  ASSERT_EQ(mkfifo(in.c_str(), 0600), 0);
  ExpectRefused(in, "is not a regular file");
}

TEST_F(ImportFailure, OfATextFile) {
  ExpectRefused(WriteFile("notes.frd", "Dear diary,\nnothing happened today.\n"), "line 1");
  ExpectRefused(WriteFile("notes.txt", "Dear diary,\n"), "is of a kind that cannot be imported");
}

TEST_F(ImportFailure, OfAnEmptyFile) { ExpectRefused(WriteFile("empty.frd", ""), "line 1"); }

TEST_F(ImportFailure, OfAFileOfASolverThatStoppedAtItsInput) {
  ExpectRefused(WriteFile("stopped.frd", "    1C\n"), "line 1");
}

TEST_F(ImportFailure, OfAResultFile) { ExpectRefused(WriteFile("result.frd", "\x89HDF\r\n\x1a\n\0\0\0\0"), "line 1"); }

TEST_F(ImportFailure, OfAFileWithoutNodes) {
  ExpectRefused(WriteFile("empty_mesh.frd", std::string(frd_forge::kHeader) + frd_forge::BlockLine("    2C", 0, 1) +
                                                " -3\n" + frd_forge::BlockLine("    3C", 0, 1) + " -3\n 9999\n"),
                "has no nodes");
}

TEST_F(ImportFailure, OfAnUnknownElementType) {
  std::string text = SmallRun();
  text.replace(text.find(" -1        11    7"), 18, " -1        11   13");
  ExpectRefused(WriteFile("types.frd", text), "13");
}

TEST_F(ImportFailure, OfAFileCutBetweenTwoStates) {
  const std::string text = SmallRun();
  const size_t second = text.rfind("    1PSTEP", text.rfind("-4  DISP "));
  ExpectRefused(WriteFile("cut.frd", text.substr(0, second)), "ends without its end mark");
}

TEST_F(ImportFailure, OfAFileCutAnywhere) {
  const std::string text = SmallRun();
  const std::string in = TempPath("cut.frd");
  // All places in steps that meet every column, and those around the ends of lines.
  std::vector<size_t> places;
  for (size_t at = 0; at + 1 < text.size(); at += 41) places.push_back(at);
  for (size_t end = text.find('\n'); end < text.size() - 2; end = text.find('\n', end + 200)) {
    places.push_back(end);
    places.push_back(end + 1);
  }
  for (const size_t at : places) {
    SCOPED_TRACE(at);
    WriteFile("cut.frd", text.substr(0, at));
    ExpectTrouble(RunOrv({"import", in, out_}), in, "");
    ExpectOutputAsBefore();
    if (HasFailure()) return;
  }
}

TEST_F(ImportFailure, OfAPackedFileCutAnywhere) {
  const std::string bytes = frd_forge::Packed(SmallRun());
  for (size_t at = 0; at < bytes.size(); at += bytes.size() / 20) {
    SCOPED_TRACE(at);
    const std::string in = WriteFile("cut.frd.gz", bytes.substr(0, at));
    ExpectTrouble(RunOrv({"import", in, out_}), in, "");
    ExpectOutputAsBefore();
    if (HasFailure()) return;
  }
}

TEST_F(ImportFailure, OfAPackedFileWithAWrongByte) {
  std::string bytes = frd_forge::Packed(SmallRun());
  bytes[bytes.size() - 6] = static_cast<char>(bytes[bytes.size() - 6] ^ 1);  // in the checksum
  ExpectRefused(WriteFile("damaged.frd.gz", bytes), "gzip");
}

TEST_F(ImportFailure, OfAFileWithAWrongNumberInTheLastState) {
  std::string text = SmallRun();
  text.replace(text.rfind(" 4.00000E+00"), 12, " 4.0000?E+00");
  ExpectRefused(WriteFile("wrong.frd", text), "4.0000?E+00");
}

/// Every write of the import has its turn to fail.
TEST_F(ImportFailure, ForWantOfSpace) {
  const std::string in = WriteFile("small.frd", SmallRun());
  ASSERT_EQ(RunOrv({"import", "-q", in, TempPath("whole.orv")}).exit_code, 0);
  const auto size = static_cast<long>(std::filesystem::file_size(TempPath("whole.orv")));
  Surroundings surroundings;
  for (surroundings.largest_file = 0; surroundings.largest_file < size; surroundings.largest_file += size / 25) {
    SCOPED_TRACE(surroundings.largest_file);
    ExpectTrouble(RunOrv({"import", in, out_}, surroundings), out_, "free space");
    ExpectOutputAsBefore();
    if (HasFailure()) return;
  }
}

TEST_F(ImportFailure, IntoAFolderThatIsNotThere) {
  const std::string in = WriteFile("small.frd", SmallRun()), out = TempPath("nowhere/result.orv");
  ExpectTrouble(RunOrv({"import", in, out}), out, "cannot be created: No such file");
  EXPECT_FALSE(std::filesystem::exists(TempPath("nowhere")));
}

TEST_F(ImportFailure, IntoAFolderThatMayNotBeChanged) {
  const std::string in = WriteFile("small.frd", SmallRun());
  chmod(TempPath("out").c_str(), 0500);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  const bool is_held_back = RunOrv({"--version"}, surroundings).exit_code == 0;
  if (is_held_back)
    ExpectTrouble(RunOrv({"import", in, out_}, surroundings), out_, "cannot be created: Permission denied");
  chmod(TempPath("out").c_str(), 0700);
  if (!is_held_back) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectOutputAsBefore();
}

TEST_F(ImportFailure, OverAFolder) {
  const std::string in = WriteFile("small.frd", SmallRun());
  ExpectTrouble(RunOrv({"import", in, TempPath("out")}), TempPath("out"), "is not a file");
  ExpectOutputAsBefore();
}

TEST_F(ImportFailure, OverADevice) {
  const std::string in = WriteFile("small.frd", SmallRun());
  ExpectTrouble(RunOrv({"import", in, "/dev/full"}), "/dev/full", "is not a file");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST_F(ImportFailure, OverItsOwnInput) {
  const std::string in = WriteFile("small.frd", SmallRun());
  ExpectTrouble(RunOrv({"import", in, TempPath("./small.frd")}), TempPath("./small.frd"), "is the file to import");
  EXPECT_EQ(BytesOf(in), SmallRun());
  std::filesystem::create_hard_link(in, TempPath("link.orv"));
  ExpectTrouble(RunOrv({"import", in, TempPath("link.orv")}), TempPath("link.orv"), "is the file to import");
}

TEST_F(ImportFailure, TellsAFileByTheNameItWasGiven) {
  WriteFile("small.frd", "    1C\n");
  Surroundings surroundings;
  surroundings.folder = TempPath("");
  const ProgramRun run = RunOrv({"import", "small.frd", "other.orv"}, surroundings);
  ExpectTrouble(run, "small.frd", "line 1");
  EXPECT_THAT(NamesIn(TempPath("")), ElementsAre("out", "small.frd"));
}

}  // namespace
