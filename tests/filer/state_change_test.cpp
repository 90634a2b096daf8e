// BeginState and EndState: a state of several blocks appears at once, or not at all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "filer/two_nodes.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kStates[] = "/post/singlestate";
constexpr char kFirstState[] = "/post/singlestate/state000000000001";
constexpr char kNodes[] = "/post/singlestate/state000000000001/entityresults/NODE";
constexpr char kSecondNodes[] = "/post/singlestate/state000000000002/entityresults/NODE";

class StateChange : public OrvTest {
 protected:
  StateChange() {
    MaySilenceHdf5();
    EXPECT_EQ(filer_->InitForWriting(path_.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  }

  int Write(const char* variable, int state, float value = 1.5F) {
    ORVResult result(ORV_RESULT_ENTITY);
    return WriteTwoNodes(*filer_, result, variable, state, value);
  }
  /// Answers what a process of its own answers: below 128.
  static int InAnotherProcess(const std::function<int()>& ask) {
    const pid_t child = fork();
    if (child == 0) _exit(ask());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
  }
  int CountStates() const {
    int count = -1;
    EXPECT_EQ(ReadNumState(path_.c_str(), &count), 0);
    return count;
  }

  const std::string path_ = TempPath("states.orv");
  std::unique_ptr<ORVFiler> filer_ = std::make_unique<ORVFiler>(path_.c_str());
};

TEST_F(StateChange, AppearsWithAllItsBlocksWhenItEnds) {
  const std::string before = BytesOf(path_);
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(Write("Stress", 1), 0);
  EXPECT_EQ(BytesOf(path_).substr(0, before.size()), before);
  ASSERT_EQ(filer_->EndState(), 0);
  EXPECT_THAT(RawFile(path_).children(kNodes), ElementsAre("Stress", "Velocity"));
}

TEST_F(StateChange, ThatIsDroppedLeavesTheFileAsItWas) {
  const std::string before = BytesOf(path_);
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  EXPECT_EQ(filer_->EndState(false), 0);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(StateChange, WithAWriteThatFailedLeavesTheFileAsItWas) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  const std::string before = BytesOf(path_);
  ASSERT_EQ(filer_->BeginState(2), 0);
  ASSERT_EQ(Write("Velocity", 2), 0);
  EXPECT_EQ(Write("Velocity", 9), 1) << "there would be a gap";
  EXPECT_EQ(Write("Stress", 2), 1) << "nothing of this change will be kept";
  EXPECT_EQ(filer_->EndState(), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(StateChange, ThatNobodyEndsLeavesTheFileAsItWas) {
  const std::string before = BytesOf(path_);
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  filer_.reset();
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(StateChange, OfAWriterThatIsKilledLeavesTheFileAsItWas) {
  EXPECT_EQ(InAnotherProcess([this] {
              (void)filer_->BeginState(1);
              (void)Write("Velocity", 1);
              return raise(SIGKILL);
            }),
            128);
  EXPECT_EQ(CountStates(), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  EXPECT_THAT(RawFile(path_).children(kStates), ElementsAre("state000000000001"));
}

TEST_F(StateChange, MayHoldBlocksOfOtherSections) {
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Mass", 0), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_->EndState(), 0);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists("/post/constant/entityresults/NODE/Mass"));
  EXPECT_TRUE(raw.exists(std::string(kNodes) + "/Velocity"));
}

TEST_F(StateChange, CanBeOneOfTheConstantSectionAlone) {
  ASSERT_EQ(filer_->BeginState(0), 0);
  ASSERT_EQ(Write("Mass", 0), 0);
  ASSERT_EQ(filer_->EndState(), 0);
  EXPECT_TRUE(RawFile(path_).exists("/post/constant/entityresults/NODE/Mass"));
}

TEST_F(StateChange, CanAddToAStateThatIsThere) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Stress", 1), 0);
  ASSERT_EQ(filer_->EndState(), 0);
  EXPECT_THAT(RawFile(path_).children(kNodes), ElementsAre("Stress", "Velocity"));
}

TEST_F(StateChange, IsRefusedBehindAGap) {
  EXPECT_EQ(filer_->BeginState(2), 1);
  EXPECT_EQ(filer_->BeginState(-1), 1);
  EXPECT_EQ(filer_->EndState(), 1) << "nothing was begun";
  EXPECT_THAT(RawFile(path_).children(kStates), IsEmpty());
}

TEST_F(StateChange, IsRefusedWithinAnother) {
  ASSERT_EQ(filer_->BeginState(1), 0);
  EXPECT_EQ(filer_->BeginState(1), 1);
  ASSERT_EQ(Write("Velocity", 1), 0);
  EXPECT_EQ(filer_->EndState(), 0);
  EXPECT_EQ(filer_->EndState(), 1);
  EXPECT_TRUE(RawFile(path_).exists(kFirstState));
}

TEST_F(StateChange, NeedsAFileForWriting) {
  ORVFiler reader(path_.c_str());
  EXPECT_EQ(reader.BeginState(1), 1);
  EXPECT_EQ(reader.EndState(), 1);
}

TEST_F(StateChange, KeepsOtherWritersOut) {
  const int other = open(path_.c_str(), O_RDWR);
  ASSERT_EQ(filer_->BeginState(1), 0);
  EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(filer_->EndState(false), 0);
  EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(filer_->BeginState(1), 1) << "now the other one writes";
  close(other);
}

TEST_F(StateChange, WaitsForAnotherWriter) {
  ORVSetLockTimeout(10'000);
  const int other = open(path_.c_str(), O_RDWR);
  ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  std::thread ends([other] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    close(other);
  });
  EXPECT_EQ(filer_->BeginState(1), 0);
  ends.join();
  EXPECT_EQ(filer_->EndState(false), 0);
}

TEST_F(StateChange, IsSeenByReadersOfTheSameProcess) {
  ASSERT_EQ(filer_->BeginState(1), 0);
  ASSERT_EQ(Write("Velocity", 1), 0);
  EXPECT_EQ(CountStates(), 1);
  EXPECT_EQ(filer_->EndState(), 0);
}

TEST_F(StateChange, ThatFailsTellsBlockStateAndCause) {
  const int other = open(path_.c_str(), O_RDONLY);
  ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(Write("Velocity", 1), 1);
  EXPECT_THAT(ORVGetLastErrorText(), StartsWith("Write Failed ::\"NODE/Velocity\" in state 1\n\t File::"));
  close(other);
}

/// A state for each way to keep it.
class StateChanges : public StateChange, public testing::WithParamInterface<int> {};

TEST_P(StateChanges, FollowEachOther) {
  ORVSetDurability(GetParam());
  for (const int state : {1, 2}) {
    ASSERT_EQ(filer_->BeginState(state), 0);
    ASSERT_EQ(Write("Velocity", state, static_cast<float>(state)), 0);
    ASSERT_EQ(filer_->EndState(), 0);
  }
  ORVSetDurability(1);
  const RawFile raw(path_);
  EXPECT_THAT(raw.values<float>(std::string(kNodes) + "/Velocity/orvblock/res"), ElementsAre(1.0F, 1.0F));
  EXPECT_THAT(raw.values<float>(std::string(kSecondNodes) + "/Velocity/orvblock/res"), ElementsAre(2.0F, 2.0F));
}

INSTANTIATE_TEST_SUITE_P(Durabilities, StateChanges, testing::Values(0, 1, 2));

}  // namespace
