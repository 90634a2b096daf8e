#include "faults/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

namespace orvio::faults {
namespace {

volatile std::sig_atomic_t is_interrupted = 0;

void Interrupt(int) { is_interrupted = 1; }

/// Time of the processor counts: other work on the machine is nobody's fault. But who waits for a lock takes none.
void LimitTime(unsigned seconds) {
  if (seconds == 0) return;
  const rlimit limit{seconds, seconds};
  (void)setrlimit(RLIMIT_CPU, &limit);
  (void)alarm(10 * seconds);
}

int Answer(const std::function<int()>& work) {
  try {
    return work();
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "orvio_faults: %s\n", error.what());
    return kTrouble;
  }
}

}  // namespace

int Start(const std::function<int()>& work, unsigned seconds) {
  (void)std::fflush(nullptr);
  const pid_t parent = getpid();
  const pid_t process = fork();
  if (process < 0) throw std::runtime_error("no process");
  if (process > 0) return process;
  (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kTrouble);
  (void)std::signal(SIGINT, SIG_DFL);
  (void)std::signal(SIGTERM, SIG_DFL);
  LimitTime(seconds);
  // Neither destructors nor functions of atexit: the program is another process.
  _exit(Answer(work));
}

Ending WaitFor(int process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (is_interrupted) throw std::runtime_error("interrupted");
    if (errno != EINTR) throw std::runtime_error("a process is lost");
  }
  if (WIFSIGNALED(status)) return {.signal = WTERMSIG(status)};
  return {.code = WEXITSTATUS(status)};
}

void EndWaitsOnSignals() {
  struct sigaction action = {};
  action.sa_handler = Interrupt;
  for (const int number : {SIGINT, SIGTERM}) (void)sigaction(number, &action, nullptr);
}

Ending RunApart(const std::function<int()>& work, unsigned seconds) { return WaitFor(Start(work, seconds)); }

WorkFolder::WorkFolder(const std::string& parent) : owner_(getpid()) {
  namespace fs = std::filesystem;
  const bool memory = access("/dev/shm", W_OK) == 0;
  const fs::path place = !parent.empty() ? fs::path(parent) : memory ? fs::path("/dev/shm") : fs::temp_directory_path();
  std::string name = (fs::canonical(place) / "orvio-faults-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("no folder in " + place.string());
  path_ = name;
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  if (getpid() == owner_) std::filesystem::remove_all(path_, ignored);
}

}  // namespace orvio::faults
