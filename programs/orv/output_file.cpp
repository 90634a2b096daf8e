// Output under a working name.

#include "output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "trouble.h"

namespace orvio::program {
namespace {

namespace fs = std::filesystem;

fs::path FolderOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

/// Makes an empty file of its own next to the final one, so that the change of name stays inside one file system.
std::string MakeWorkingFile(const fs::path& path) {
  const std::string pattern = (FolderOf(path) / ("." + path.filename().string() + ".XXXXXX")).string();
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  const int file = mkstemp(name.data());
  if (file < 0) {
    throw Trouble(path.string(), std::string("cannot be created: ") + std::strerror(errno),
                  "choose a folder that exists and that you may write to");
  }
  const mode_t mask = umask(0);
  umask(mask);
  (void)fchmod(file, 0666 & ~mask);  // as any new file has it; the private mode of a temporary one also works
  close(file);
  return name.data();
}

/// Names of the working files there are and of their journals, for a signal handler to see. More than these stay behind.
constinit std::array<std::atomic<const char*>, 16> working_names = {};
static_assert(std::atomic<const char*>::is_always_lock_free);

/// The process that made them: what it forks has the handler, too.
std::atomic<pid_t> owner = 0;

void Replace(const char* from, const char* to) {
  for (auto& name : working_names) {
    const char* expected = from;
    if (name.compare_exchange_strong(expected, to)) return;
  }
}

/// Ends the program in the way of the signal, as if there were no handler.
void RemoveAndEnd(int signal) {
  for (auto& name : working_names) {
    const char* file = getpid() == owner ? name.load() : nullptr;
    if (file) (void)unlink(file);
  }
  (void)std::signal(signal, SIG_DFL);
  (void)raise(signal);
}

bool SyncToDisk(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY);
  if (file < 0) return false;
  const bool synced = fsync(file) == 0;
  return close(file) == 0 && synced;
}

}  // namespace

void RemoveOutputsOnSignals() {
  owner = getpid();
  (void)std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further is told of by the write itself
  for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM}) {
    // What the caller wants ignored stays ignored.
    if (std::signal(signal, RemoveAndEnd) == SIG_IGN) (void)std::signal(signal, SIG_IGN);
  }
}

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
  std::error_code error;
  if (fs::exists(path_, error) && !fs::is_regular_file(path_, error)) {
    throw Trouble(path_.string(), "is not a file", "choose another name for the output");
  }
  working_ = MakeWorkingFile(path_);
  journal_ = working_ + "-journal";
  Replace(nullptr, working_.c_str());
  Replace(nullptr, journal_.c_str());
}

OutputFile::~OutputFile() {
  Replace(working_.c_str(), nullptr);
  Replace(journal_.c_str(), nullptr);
  if (!committed_) (void)unlink(working_.c_str());  // nothing more can be done about a file that will not go
}

void OutputFile::Commit() {
  if (!SyncToDisk(working_) || std::rename(working_.c_str(), path_.c_str()) != 0) {
    throw Trouble(path_.string(), std::string("cannot be written: ") + std::strerror(errno),
                  "check the free space and your permissions in its folder");
  }
  committed_ = true;
  (void)SyncToDisk(FolderOf(path_).string());  // makes the name durable where the file system supports it
}

}  // namespace orvio::program
