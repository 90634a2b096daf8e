// The child that does the work, and the parent that waits for it. The parent believes nothing that comes over the pipe:
// the child may be in the hands of the file that it reads.

#include "checking/guarded_run.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>

#if defined(__SANITIZE_ADDRESS__)
#define ORVIO_NO_MEMORY_LIMIT
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVIO_NO_MEMORY_LIMIT
#endif
#endif

namespace orvio::program {
namespace {

constexpr int kNoMemoryExit = 86, kExceptionExit = 87;

void Limit(int resource, rlim_t most) {
  const rlimit limit{most, most};
  (void)setrlimit(resource, &limit);  // a smaller limit of the caller's holds on
}

void ApplyLimits(const Limits& limits) {
  Limit(RLIMIT_CORE, 0);
  Limit(RLIMIT_CPU, static_cast<rlim_t>(std::ceil(limits.seconds)) + 1);
#ifndef ORVIO_NO_MEMORY_LIMIT
  constexpr rlim_t kMebibyte = 1024 * 1024;
  Limit(RLIMIT_AS, limits.memory_mib * kMebibyte);
#endif
}

/// Whoever kills the parent means the child too.
void DieWithParent(pid_t parent) {
#ifdef __linux__
  (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  if (getppid() != parent) _exit(kExceptionExit);  // too late
}

[[noreturn]] void BecomeChild(const Limits& limits, const std::function<void(const LineSender&)>& work, int pipe) {
  (void)std::signal(SIGPIPE, SIG_DFL);
  (void)dup2(STDERR_FILENO, STDOUT_FILENO);
  try {
    ApplyLimits(limits);
    work(LineSender(pipe));
  } catch (const std::bad_alloc&) {
    _exit(kNoMemoryExit);
  } catch (...) {
    _exit(kExceptionExit);
  }
  _exit(0);  // the parent's buffers and destructors are the parent's
}

/// A pipe whose ends are none of the standard ones, even where those are closed.
struct Pipe {
  Pipe() {
    std::array<int, 2> low = {};
    if (pipe(low.data()) != 0) throw std::runtime_error("no pipe can be made; close other programs");
    ends[0] = fcntl(low[0], F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ends[1] = fcntl(low[1], F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(low[0]);
    close(low[1]);
    if (ends[0] < 0 || ends[1] < 0) throw std::runtime_error("no pipe can be made; close other programs");
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    Close(0);
    Close(1);
  }

  void Close(std::size_t end) {
    if (ends[end] >= 0) close(ends[end]);
    ends[end] = -1;
  }

  std::array<int, 2> ends = {-1, -1};
};

/// Cuts a stream into lines and drops those that are too long.
class LineCutter {
 public:
  explicit LineCutter(const std::function<void(std::string_view)>& take) : take_(take) {}

  void Add(std::string_view bytes) {
    for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
      Append(bytes.substr(0, end));
      if (!is_too_long_) take_(line_);
      line_.clear();
      is_too_long_ = false;
      bytes.remove_prefix(end + 1);
    }
    Append(bytes);
  }

 private:
  void Append(std::string_view bytes) {
    is_too_long_ = is_too_long_ || line_.size() + bytes.size() > LineSender::kLongestLine;
    if (!is_too_long_) line_ += bytes;
  }

  const std::function<void(std::string_view)>& take_;
  std::string line_;
  bool is_too_long_ = false;
};

using Clock = std::chrono::steady_clock;

/// Milliseconds for poll; 0 when it is too late.
int Remaining(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  constexpr long long kLongestWait = 60000;
  return static_cast<int>(std::clamp<long long>(left, 0, kLongestWait));
}

/// Reads until the child has closed its end. False when the time was over before.
bool TakeLines(int pipe, Clock::time_point deadline, LineCutter& cutter) {
  constexpr std::size_t kBuffer = 65536;
  std::array<char, kBuffer> buffer;
  for (;;) {
    pollfd wait = {pipe, POLLIN, 0};
    const int ready = poll(&wait, 1, Remaining(deadline));
    if (Clock::now() >= deadline) return false;
    if (ready <= 0) continue;
    const ssize_t got = read(pipe, buffer.data(), buffer.size());
    if (got == 0) return true;
    if (got < 0 && errno != EINTR && errno != EAGAIN) return true;
    if (got > 0) cutter.Add({buffer.data(), static_cast<std::size_t>(got)});
  }
}

Outcome OutcomeOf(int status) {
  if (WIFSIGNALED(status)) {
    const int number = WTERMSIG(status);
    if (number == SIGXCPU) return {Ending::kOutOfTime, {}};
    return {Ending::kDied, fmt::format("signal {} ({})", number, strsignal(number))};
  }
  const int code = WEXITSTATUS(status);
  if (code == 0) return {Ending::kFinished, {}};
  if (code == kNoMemoryExit) return {Ending::kOutOfMemory, {}};
  return {Ending::kDied, fmt::format("exit code {}", code)};
}

int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

/// A child that has closed its pipe has nothing left to do, but a hostile file may have it go on all the same.
Outcome WaitUntil(pid_t child, Clock::time_point deadline) {
  constexpr useconds_t kPause = 1000;
  int status = 0;
  for (;;) {
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child) return OutcomeOf(status);
    if (ended < 0 && errno != EINTR) return {Ending::kDied, "no trace"};
    if (Clock::now() >= deadline) break;
    (void)usleep(kPause);
  }
  (void)kill(child, SIGKILL);
  (void)WaitFor(child);
  return {Ending::kOutOfTime, {}};
}

}  // namespace

void LineSender::Send(std::string line) const {
  line += '\n';
  for (std::size_t done = 0; done < line.size();) {
    const ssize_t written = write(pipe_, line.data() + done, line.size() - done);
    if (written < 0 && errno != EINTR) _exit(kExceptionExit);  // nobody listens
    if (written > 0) done += static_cast<std::size_t>(written);
  }
}

Outcome RunGuarded(const Limits& limits, const std::function<void(const LineSender&)>& work,
                   const std::function<void(std::string_view line)>& take) {
  Pipe pipe;
  (void)std::fflush(nullptr);  // or the child would have the buffers too
  const auto duration = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(limits.seconds));
  const Clock::time_point deadline = Clock::now() + duration;
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be made; close other programs");
  if (child == 0) {
    pipe.Close(0);
    DieWithParent(parent);
    BecomeChild(limits, work, pipe.ends[1]);
  }
  pipe.Close(1);
  LineCutter cutter(take);
  const bool in_time = TakeLines(pipe.ends[0], deadline, cutter);
  if (!in_time) (void)kill(child, SIGKILL);
  if (in_time) return WaitUntil(child, deadline);
  (void)WaitFor(child);
  return {Ending::kOutOfTime, {}};
}

}  // namespace orvio::program
