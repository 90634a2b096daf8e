// What orv repair makes of a file whose writer was killed while it overwrote something.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "faults/judge.h"
#include "faults/process.h"
#include "faults/snapshot.h"

namespace {

using namespace orvio::faults;

class RepairBehindAKilledWriter : public testing::Test {
 protected:
  RepairBehindAKilledWriter() {
    Apart([&] { MakeBase(path_, example_.form, example_.states); });
    base_ = Snapshot::Of(path_);
  }

  template <class Work>
  static void Apart(Work work) {
    const Ending ending = RunApart([&] {
      work();
      return 0;
    });
    EXPECT_TRUE(ending.Answered(0));
  }

  /// Appends a state to the base file and is killed before a call. False when there are fewer calls.
  bool KillAt(int call) {
    base_.Restore(path_);
    told_.Reset();
    (void)RunApart([&] {
      AppendState(path_, example_.form, example_.writer, example_.states + 1, 0,
                  {.path = path_, .fault = Fault::kKill, .at = call}, *told_);
      return 0;
    });
    return told_->count.met > 0;
  }

  Ending Repair() const {
    return RunApart([&] {
      (void)dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
      return execl(ORVIO_PROGRAM, ORVIO_PROGRAM, "repair", path_.c_str(), "-o", out_.c_str(), "--force", nullptr);
    });
  }

  WorkFolder folder_;
  std::string path_ = folder_.path() + "/model.orv", out_ = folder_.path() + "/repaired.orv";
  Case example_{{}, {}, 2};
  Snapshot base_;
  Shared<Told> told_;
};

TEST_F(RepairBehindAKilledWriter, GivesTheFileBeforeTheChangeAndLeavesBothAsTheyAre) {
  int with_journal = 0;
  for (int call = 1; KillAt(call); ++call) {
    const Snapshot left = Snapshot::Of(path_);
    if (!left.journal || left.journal->empty()) continue;
    ++with_journal;
    EXPECT_TRUE(Repair().Answered(0)) << call;
    Judge judge;
    EXPECT_EQ(judge.Of(out_, example_, told_->said), Verdict::kSound) << call << ": " << judge.Describe();
    EXPECT_EQ(BytesOf(path_), left.file) << call;
    EXPECT_EQ(BytesOf(JournalOf(path_)), *left.journal) << call;
  }
  EXPECT_GT(with_journal, 5);
}

}  // namespace
