#pragma once

// Runs the program orv as a shell would, and keeps what it answers.

#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {

/// A sanitizer takes time, and reserves more memory than there is.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool kIsSanitized = false;
#endif

/// The circumstances of a run.
struct Surroundings {
  std::string standard_output;     ///< a file to write standard output to, such as "/dev/full"; empty: it is captured
  std::string folder;              ///< where the program stands; empty: where the test stands
  long largest_file = -1;          ///< no file can grow beyond it, as on a full disk; -1: no limit
  bool keeps_permissions = false;  ///< a super-user obeys the permissions of files and folders too
  bool reader_is_gone = false;     ///< standard output is a pipe that nobody reads
};

struct ProgramRun {
  int exit_code = -1;  ///< minus the number of the signal that ended the program
  std::string out, err;
  double seconds = 0;
};

namespace run_program_details {

inline constexpr int kCannotStart = 127;

/// In the child, between fork and exec: only calls that are safe there.
[[noreturn]] inline void BecomeProgram(char* const* arguments, const Surroundings& surroundings, int out, int err) {
  const bool to_file = !surroundings.standard_output.empty();
  if (to_file) out = open(surroundings.standard_output.c_str(), O_WRONLY);
  if (surroundings.reader_is_gone) {
    int ends[2] = {};
    if (pipe(ends) != 0) _exit(kCannotStart);
    close(ends[0]);
    out = ends[1];
    std::signal(SIGPIPE, SIG_DFL);
  }
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  if (!surroundings.folder.empty() && chdir(surroundings.folder.c_str()) != 0) _exit(kCannotStart);
  if (surroundings.largest_file >= 0) {
    const auto size = static_cast<rlim_t>(surroundings.largest_file);
    const rlimit limit{size, size};
    std::signal(SIGXFSZ, SIG_IGN);  // writes beyond the limit then fail, as on a full disk
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (surroundings.keeps_permissions && geteuid() == 0) {
    if (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) != 0) _exit(kCannotStart);
    if (prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH) != 0) _exit(kCannotStart);
  }
  execvp(arguments[0], arguments);
  _exit(kCannotStart);
}

/// Reads both pipes until the other side has closed them.
inline void Collect(int out, int err, ProgramRun& run) {
  std::array<pollfd, 2> pipes = {pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
  std::string* const texts[] = {&run.out, &run.err};
  for (int open_pipes = 2; open_pipes > 0;) {
    if (poll(pipes.data(), pipes.size(), -1) < 0 && errno != EINTR) throw std::runtime_error("poll failed");
    for (size_t i = 0; i < pipes.size(); ++i) {
      if (pipes[i].fd < 0 || pipes[i].revents == 0) continue;
      char buffer[65536];
      const ssize_t got = read(pipes[i].fd, buffer, sizeof buffer);
      if (got > 0) {
        texts[i]->append(buffer, static_cast<size_t>(got));
      } else if (got == 0 || errno != EINTR) {
        pipes[i].fd = -1;
        --open_pipes;
      }
    }
  }
}

}  // namespace run_program_details

/// Runs any program of the search path. The time limit of the test ends what hangs.
inline ProgramRun RunCommand(const std::string& command, const std::vector<std::string>& arguments,
                             const Surroundings& surroundings = {}) {
  std::vector<char*> words = {const_cast<char*>(command.c_str())};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  int out[2] = {}, err[2] = {};
  if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) run_program_details::BecomeProgram(words.data(), surroundings, out[1], err[1]);
  close(out[1]);
  close(err[1]);
  ProgramRun run;
  run_program_details::Collect(out[0], err[0], run);
  close(out[0]);
  close(err[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  run.exit_code = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return run;
}

/// Runs orv.
inline ProgramRun RunOrv(const std::vector<std::string>& arguments, const Surroundings& surroundings = {}) {
  return RunCommand(ORVIO_PROGRAM, arguments, surroundings);
}

/// Names in a folder, hidden ones included, in order.
inline std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

/// A test of the program, with a folder of its own for the files it needs.
class ProgramTest : public OrvTest {
 protected:
  std::string WriteFile(const std::string& name, std::string_view bytes) const {
    std::ofstream(TempPath(name), std::ios::binary) << bytes;
    return TempPath(name);
  }

  /// Answers the path of the file made, which is a failure of the test when there is none.
  std::string Import(const std::string& result, const std::vector<std::string>& options = {}) const {
    const std::string path = TempPath("imported.orv");
    std::vector<std::string> arguments = {"import", "--quiet", result, path};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    return path;
  }
};

/// Whether a text is lines that begin with the name of the program and have no control characters.
inline bool IsOfMessages(const std::string& text) {
  if (text.empty()) return true;
  std::istringstream lines(text);
  bool fine = text.back() == '\n';
  for (std::string line; std::getline(lines, line);) fine = fine && line.starts_with("orv: ");
  return fine && std::none_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' && c != '\n'; });
}

/// What a run that fails owes its caller: exit code 2, nothing on standard output, and a last line on standard error
/// that names the file and tells `what`. What the library had to say may stand before it.
inline void ExpectTrouble(const ProgramRun& run, const std::string& file, const std::string& what) {
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_TRUE(IsOfMessages(run.err)) << run.err;
  const size_t before = run.err.size() > 1 ? run.err.rfind('\n', run.err.size() - 2) : std::string::npos;
  const std::string line = before == std::string::npos ? run.err : run.err.substr(before + 1);
  EXPECT_TRUE(line.starts_with("orv: " + file + ": ")) << run.err;
  EXPECT_NE(line.find(what), std::string::npos) << "not told: " << what << "\nbut: " << run.err;
  // What, and behind a semicolon what to do.
  const size_t advice = line.rfind("; ");
  EXPECT_TRUE(advice != std::string::npos && advice + 3 < line.size()) << run.err;
}

}  // namespace orv_test
