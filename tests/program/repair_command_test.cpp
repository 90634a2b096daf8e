// orv repair as a command: what it says, its exit codes, what it leaves behind.

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "program/repaired_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kStress2 = std::string(kSoundState2) + "/entityresults/NODE/STRESS";

class RepairCommand : public RepairTest {
 protected:
  RepairCommand() {
    std::filesystem::create_directory(TempPath("out"));
    Fill(model_, 3);
    sound_ = model_.path();
    Bytes bytes(sound_);
    place_ = bytes.HeaderOf(kStress2 + "/orvblock");
    damaged_ = WriteFile("damaged.orv", bytes.Wipe(place_).all());
  }

  std::string Out() const { return TempPath("out/new.orv"); }

  void ExpectNoOutput() const { EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre()); }

  ForgedModel model_;
  std::string sound_, damaged_;
  size_t place_ = 0;
};

TEST_F(RepairCommand, CopiesASoundFile) {
  const ProgramRun run = RunOrv({"repair", sound_, "-o", Out()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "the file is sound: the output is a copy\n3 states and 22 blocks salvaged, 0 lost or damaged\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(BytesOf(Out()), BytesOf(sound_));
  EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("new.orv"));
}

TEST_F(RepairCommand, TellsWhatIsLost) {
  const ProgramRun run = RunOrv({"repair", damaged_, "--out", Out()});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.out, "lost " + kStress2 + ": object header has an unknown version, at byte " + std::to_string(place_) +
                         "\n3 states and 21 blocks salvaged, 1 lost or damaged\n");
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("new.orv"));
}

TEST_F(RepairCommand, TellsTheSameInJson) {
  const ProgramRun run = RunOrv({"repair", damaged_, "-o", Out(), "--json"});
  EXPECT_EQ(run.exit_code, 1);
  const nlohmann::json expected = {
      {"schema_version", 1},
      {"command", "repair"},
      {"file", damaged_},
      {"out", Out()},
      {"sound", false},
      {"rolled_back", false},
      {"salvaged", {{"states", 3}, {"blocks", 21}}},
      {"errors", 0},
      {"lost",
       {{{"place", kStress2}, {"why", "object header has an unknown version"}, {"byte", place_}, {"partial", false}}}}};
  EXPECT_EQ(nlohmann::json::parse(run.out), expected);
}

TEST_F(RepairCommand, TellsThatAllOfADamagedFileIsThere) {
  constexpr size_t kEndAt = 40;
  const std::string in = WriteFile("end.orv", Bytes(sound_).Put(kEndAt, 1 << 30).all());
  const ProgramRun run = RunOrv({"repair", in, "-o", Out()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.out, StartsWith("the file is damaged: the output has all of it\n"));
}

TEST_F(RepairCommand, LeavesTheFileAsItWas) {
  struct stat before = {}, after = {};
  ASSERT_EQ(stat(damaged_.c_str(), &before), 0);
  const std::string bytes = BytesOf(damaged_);
  ASSERT_EQ(RunOrv({"repair", damaged_, "-o", Out()}).exit_code, 1);
  ASSERT_EQ(stat(damaged_.c_str(), &after), 0);
  EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
  EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ(BytesOf(damaged_), bytes);
}

TEST_F(RepairCommand, RepairsAFileThatNobodyMayWriteTo) {
  ASSERT_EQ(chmod(damaged_.c_str(), 0444), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  EXPECT_EQ(RunOrv({"repair", damaged_, "-o", Out()}, surroundings).exit_code, 1);
}

TEST_F(RepairCommand, RefusesWhatIsNoHdf5File) {
  const std::string text = WriteFile("notes.orv", "Dear diary,\n"), empty = WriteFile("empty.orv", "");
  for (const std::string& in : {text, empty}) {
    ExpectTrouble(RunOrv({"repair", in, "-o", Out()}), in, "is not an HDF5 file");
    ExpectNoOutput();
  }
}

TEST_F(RepairCommand, RefusesAFileOfWhichNothingCanBeReached) {
  const std::string in = WriteFile("short.orv", BytesOf(sound_).substr(0, 100));
  ExpectTrouble(RunOrv({"repair", in, "-o", Out()}), in, "has lost its root group");
  ExpectNoOutput();
}

TEST_F(RepairCommand, RefusesAMissingFileAndAFolder) {
  ExpectTrouble(RunOrv({"repair", TempPath("none.orv"), "-o", Out()}), TempPath("none.orv"), "does not exist");
  ExpectTrouble(RunOrv({"repair", TempPath("out"), "-o", Out()}), TempPath("out"), "is not a file");
  ExpectNoOutput();
}

TEST_F(RepairCommand, RefusesAFileThatMayNotBeRead) {
  ASSERT_EQ(chmod(damaged_.c_str(), 0), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectTrouble(RunOrv({"repair", damaged_, "-o", Out()}, surroundings), damaged_, "may not be read");
}

TEST_F(RepairCommand, ReplacesAnOutputOnlyWhenItShall) {
  WriteFile("out/new.orv", "what was here before");
  ExpectTrouble(RunOrv({"repair", damaged_, "-o", Out()}), Out(), "exists");
  EXPECT_EQ(BytesOf(Out()), "what was here before");
  EXPECT_EQ(RunOrv({"repair", damaged_, "-o", Out(), "--force"}).exit_code, 1);
  EXPECT_NE(BytesOf(Out()), "what was here before");
}

TEST_F(RepairCommand, NeverReplacesTheFileItself) {
  std::filesystem::create_symlink(damaged_, TempPath("out/link.orv"));
  const std::string bytes = BytesOf(damaged_);
  for (const std::string& name : {damaged_, TempPath("out/link.orv")}) {
    ExpectTrouble(RunOrv({"repair", damaged_, "-o", name, "--force"}), name, "is the file to repair");
  }
  EXPECT_EQ(BytesOf(damaged_), bytes);
}

TEST_F(RepairCommand, RefusesAFolderThatIsNotThere) {
  const std::string name = TempPath("nowhere/new.orv");
  ExpectTrouble(RunOrv({"repair", damaged_, "-o", name}), name, "cannot be created");
}

TEST_F(RepairCommand, RefusesAFileThatIsBeingWritten) {
  const int writer = open(damaged_.c_str(), O_RDWR);
  ASSERT_EQ(flock(writer, LOCK_EX), 0);
  ExpectTrouble(RunOrv({"repair", damaged_, "-o", Out()}), damaged_, "is being written to");
  close(writer);
  ExpectNoOutput();
}

/// Every write has its turn to fail.
TEST_F(RepairCommand, LeavesNothingBehindForWantOfSpace) {
  ASSERT_EQ(RunOrv({"repair", damaged_, "-o", TempPath("whole.orv")}).exit_code, 1);
  const auto size = static_cast<long>(std::filesystem::file_size(TempPath("whole.orv")));
  const auto in = static_cast<long>(std::filesystem::file_size(damaged_));
  Surroundings surroundings;
  for (const long largest : {0L, in / 2, in - 1, in, (in + size) / 2, size - 1}) {
    SCOPED_TRACE(largest);
    surroundings.largest_file = largest;
    ExpectTrouble(RunOrv({"repair", damaged_, "-o", Out()}, surroundings), Out(), "check the free space");
    ExpectNoOutput();
  }
}

TEST_F(RepairCommand, GivesUpInTime) {
  const ProgramRun run = RunOrv({"repair", damaged_, "-o", Out(), "--time", "0.001"});
  ExpectTrouble(run, damaged_, "took more than 0.001 seconds");
  ExpectNoOutput();
  EXPECT_EQ(RunOrv({"repair", damaged_, "-o", Out(), "--time", "nan"}).exit_code, 2);
}

TEST_F(RepairCommand, TakesNoNoticeOfAJournalThatIsNone) {
  WriteFile("damaged.orv-journal", "Dear diary,\n");
  const ProgramRun run = RunOrv({"repair", damaged_, "-o", Out(), "--json"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(nlohmann::json::parse(run.out).at("rolled_back"), false);
  EXPECT_EQ(BytesOf(TempPath("damaged.orv-journal")), "Dear diary,\n");
  EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("new.orv"));
}

TEST_F(RepairCommand, LeavesErrorsThatAreNoDamageToTheCheck) {
  model_.file().at("/post/constant/text/NOTES/orvblock").drop("nlines");
  const std::string in = model_.path();
  const ProgramRun run = RunOrv({"repair", in, "-o", Out()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.out, HasSubstr("the file is sound: the output is a copy\n"));
  EXPECT_THAT(run.out, HasSubstr("orv check finds 1 error in the output that no damage explains: orv check " + Out()));
}

}  // namespace
