// The process in which orv check reads, and the listening to what it tells: crashes, hangs, lies.

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

#include "checking/finding.h"
#include "checking/guarded_run.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using namespace orvio::program;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CheckGuard : public OrvTest {
 protected:
  Outcome Run(const std::function<void(const LineSender&)>& work, const Limits& limits = {}) {
    return RunGuarded(limits, work, [this](std::string_view line) { lines_.emplace_back(line); });
  }

  std::vector<std::string> lines_;
};

TEST_F(CheckGuard, BringsAllLines) {
  const Outcome outcome = Run([](const LineSender& sender) {
    for (int i = 0; i < 1000; ++i) sender.Send(std::to_string(i));
  });
  EXPECT_EQ(outcome.ending, Ending::kFinished);
  ASSERT_EQ(lines_.size(), 1000U);
  EXPECT_EQ(lines_.back(), "999");
}

TEST_F(CheckGuard, KeepsTheLinesBeforeACrash) {
  const Outcome outcome = Run([](const LineSender& sender) {
    sender.Send("before");
    (void)std::signal(SIGABRT, SIG_DFL);
    std::abort();
  });
  EXPECT_EQ(outcome.ending, Ending::kDied);
  EXPECT_THAT(outcome.how, HasSubstr("signal 6"));
  EXPECT_THAT(lines_, ElementsAre("before"));
}

TEST_F(CheckGuard, KeepsTheLinesOfWhatHangs) {
  const auto start = std::chrono::steady_clock::now();
  const Outcome outcome = Run(
      [](const LineSender& sender) {
        sender.Send("before");
        for (;;) pause();
      },
      {.seconds = 0.3});
  EXPECT_EQ(outcome.ending, Ending::kOutOfTime);
  EXPECT_THAT(lines_, ElementsAre("before"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(CheckGuard, EndsWhatTalksForEver) {
  const Outcome outcome = Run(
      [](const LineSender& sender) {
        for (;;) sender.Send("still here");
      },
      {.seconds = 0.3});
  EXPECT_EQ(outcome.ending, Ending::kOutOfTime);
}

TEST_F(CheckGuard, EndsWhatHangsBehindAClosedPipe) {
  const Outcome outcome = Run(
      [](const LineSender&) {
        for (int descriptor = 3; descriptor < 256; ++descriptor) close(descriptor);
        for (;;) pause();
      },
      {.seconds = 0.3});
  EXPECT_EQ(outcome.ending, Ending::kOutOfTime);
}

TEST_F(CheckGuard, TellsOfMemoryThatRanOut) {
  const Outcome outcome = Run([](const LineSender&) { throw std::bad_alloc(); });
  EXPECT_EQ(outcome.ending, Ending::kOutOfMemory);
}

TEST_F(CheckGuard, LimitsMemoryTimeAndDumps) {
  const Outcome outcome = Run(
      [](const LineSender& sender) {
        for (const int resource :
             {static_cast<int>(RLIMIT_AS), static_cast<int>(RLIMIT_CPU), static_cast<int>(RLIMIT_CORE)}) {
          rlimit limit = {};
          (void)getrlimit(static_cast<__rlimit_resource>(resource), &limit);
          sender.Send(limit.rlim_max == RLIM_INFINITY ? "none" : std::to_string(limit.rlim_max));
        }
      },
      {.seconds = 7, .memory_mib = 2048});
  EXPECT_EQ(outcome.ending, Ending::kFinished);
  EXPECT_THAT(lines_, ElementsAre(kIsSanitized ? "none" : "2147483648", "8", "0"));
}

TEST_F(CheckGuard, TakesAnyOtherEndForACrash) {
  EXPECT_EQ(Run([](const LineSender&) { _exit(3); }).how, "exit code 3");
  EXPECT_EQ(Run([](const LineSender&) { throw 1; }).ending, Ending::kDied);
}

TEST_F(CheckGuard, DropsLinesThatAreTooLongOrNeverEnd) {
  const Outcome outcome = Run([](const LineSender& sender) {
    sender.Send(std::string(LineSender::kLongestLine + 1, 'x'));
    sender.Send("fine");
    sender.Send(std::string(LineSender::kLongestLine, 'y'));
  });
  EXPECT_EQ(outcome.ending, Ending::kFinished);
  ASSERT_EQ(lines_.size(), 2U);
  EXPECT_EQ(lines_[0], "fine");
}

/// Both hold the writing end of a pipe: its reader sees the end when both are gone.
TEST_F(CheckGuard, ChildDiesWithItsParent) {
  int ends[2] = {};
  ASSERT_EQ(pipe(ends), 0);
  const pid_t parent = fork();
  ASSERT_GE(parent, 0);
  if (parent == 0) {
    (void)close(ends[0]);
    (void)std::signal(SIGINT, SIG_DFL);
    (void)RunGuarded(
        {},
        [](const LineSender& sender) {
          sender.Send("running");
          for (;;) pause();
        },
        [&](std::string_view) { (void)!write(ends[1], "x", 1); });
    _exit(0);
  }
  close(ends[1]);
  char byte = 0;
  ASSERT_EQ(read(ends[0], &byte, 1), 1);
  kill(parent, SIGINT);
  pollfd wait = {ends[0], POLLIN, 0};
  EXPECT_EQ(poll(&wait, 1, 20000), 1);
  EXPECT_EQ(read(ends[0], &byte, 1), 0);
  close(ends[0]);
  int status = 0;
  waitpid(parent, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
}

/// What a child in the hands of a hostile file may say.
class CheckListener : public testing::Test {
 protected:
  Report Finish(Ending ending, const std::string& how = "") { return listener_.Finish({ending, how}, {}); }

  Listener listener_;
};

TEST_F(CheckListener, TakesFindingsAndTheEnd) {
  listener_.Take("P\t/post/a");
  listener_.Take("F\tB001\t/post/a/orvblock\tthe attribute nent is missing");
  listener_.Take("E\t1\t2\t3\t4");
  const Report report = Finish(Ending::kFinished);
  EXPECT_TRUE(report.is_complete);
  EXPECT_EQ(report.looked_at.states, 1U);
  EXPECT_EQ(report.looked_at.values, 4U);
  ASSERT_EQ(report.findings.size(), 1U);
  EXPECT_EQ(report.findings[0].place, "/post/a/orvblock");
}

TEST_F(CheckListener, NamesThePlaceOfACrash) {
  listener_.Take("F\tB001\t/post/a/orvblock\tthe attribute nent is missing");
  listener_.Take("P\t/post/b");
  const Report report = Finish(Ending::kDied, "signal 11 (Segmentation fault)");
  EXPECT_FALSE(report.is_complete);
  ASSERT_EQ(report.findings.size(), 2U);
  EXPECT_STREQ(report.findings[1].rule->id, "S002");
  EXPECT_EQ(report.findings[1].place, "/post/b");
  EXPECT_EQ(report.findings[1].text, "the reading process ended with signal 11 (Segmentation fault)");
}

TEST_F(CheckListener, HasARuleForEachBadEnd) {
  Report report = Finish(Ending::kOutOfTime);
  EXPECT_STREQ(report.findings.at(0).rule->id, "S003");
  EXPECT_EQ(report.findings.at(0).text, "reading was not done after 300 s");
  report = Listener().Finish({Ending::kOutOfMemory, ""}, {});
  EXPECT_STREQ(report.findings.at(0).rule->id, "S004");
  EXPECT_EQ(report.findings.at(0).text, "reading needs more than 4096 MiB");
}

TEST_F(CheckListener, TakesAnEndWithoutAWordForACrash) {
  const Report report = Finish(Ending::kFinished);
  ASSERT_EQ(report.findings.size(), 1U);
  EXPECT_STREQ(report.findings[0].rule->id, "S002");
}

TEST_F(CheckListener, TakesWhatMakesNoSenseForACrash) {
  for (const char* line : {"", "F", "F\tX999\t/\ttext", "F\tB001\t/", "E\t1\t2\t3\t-4",
                           "E\t1\t2\t3\t99999999999999999999", "G\t1", "F\tB001\t/\ta\tb"}) {
    Listener listener;
    listener.Take(line);
    listener.Take("E\t1\t2\t3\t4");
    const Report report = listener.Finish({Ending::kFinished, ""}, {});
    ASSERT_EQ(report.findings.size(), 1U) << line;
    EXPECT_STREQ(report.findings[0].rule->id, "S002") << line;
    EXPECT_FALSE(report.is_complete);
  }
}

TEST_F(CheckListener, LetsNoControlCharacterThroughAndNoEndlessText) {
  listener_.Take(std::string("F\tB001\t/\x1B[2J\t") + std::string(10000, 'x'));
  listener_.Take("E\t1\t2\t3\t4");
  const Report report = Finish(Ending::kFinished);
  ASSERT_EQ(report.findings.size(), 1U);
  EXPECT_EQ(report.findings[0].place, "/?[2J");
  EXPECT_EQ(report.findings[0].text.size(), 4100U);
}

TEST_F(CheckListener, TakesNoMoreFindingsThanItHasRoomFor) {
  for (int i = 0; i < 30000; ++i) listener_.Take("F\tB001\t/\ttext");
  listener_.Take("E\t1\t2\t3\t4");
  EXPECT_EQ(Finish(Ending::kFinished).findings.size(), 20000U);
}

}  // namespace
