// Starts workers, learns from their deaths, and keeps the mutants that they died of.

#include "mutants/watcher.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>

namespace orvio::fuzz {
namespace {

// An allocation that cannot be is reported with where it was asked for, though the library would get by without it.
constexpr char kAsanOptions[] =
    "exitcode=77:handle_abort=1:allocator_may_return_null=0:hard_rss_limit_mb=2048:quarantine_size_mb=4:"
    "detect_leaks=1:detect_stack_use_after_return=0";

/// One place for a worker.
class Post {
 public:
  Post(const Plan& plan, int number) : plan_(plan) {
    shift_.from = static_cast<std::uint64_t>(number);
    shift_.board = memfd_create("board", 0);
    if (shift_.board < 0 || ftruncate(shift_.board, sizeof(Board)) != 0) throw std::runtime_error("no shared memory");
    void* memory = mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED, shift_.board, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no shared memory");
    board_ = new (memory) Board{};
    board_->batch_begin = shift_.from;
    log_ = plan_.findings + "/.worker-" + std::to_string(number) + ".log";
  }
  Post(const Post&) = delete;
  Post& operator=(const Post&) = delete;
  Post(Post&& other) noexcept = delete;
  Post& operator=(Post&&) = delete;
  ~Post() {
    munmap(board_, sizeof(Board));
    close(shift_.board);
    unlink(log_.c_str());
  }

  pid_t process() const { return process_; }
  const Counts& counts() const { return board_->counts; }

  void Start() {
    const std::vector<std::string> words = ArgumentsOf(plan_, shift_);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    process_ = fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ > 0) return;
    setenv("ASAN_OPTIONS", kAsanOptions, 1);
    setenv("UBSAN_OPTIONS", "print_stacktrace=1:halt_on_error=1", 1);
    const int log = open(log_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    dup2(log, STDERR_FILENO);
    execv("/proc/self/exe", arguments.data());
    _exit(127);
  }

  /// The worker has ended. Whether another one is to go on.
  bool Ended(int status, Outcome& outcome) {
    if (WIFEXITED(status) && WEXITSTATUS(status) == kExitDone) return false;
    if (WIFEXITED(status) && WEXITSTATUS(status) == kExitLeakInBatch) {
      ++outcome.memory_errors;
      KeepReport("leak-between-" + std::to_string(board_->batch_begin) + "-" + std::to_string(board_->current));
      shift_.from = board_->batch_begin;
      shift_.look_at_each = true;
      shift_.until = board_->current;
      board_->counts = board_->at_batch;
      return true;
    }
    const std::uint64_t index = board_->current;
    const bool is_leak = WIFEXITED(status) && WEXITSTATUS(status) == kExitLeak;
    Keep(index, is_leak ? "leak" : Judge(status, outcome));  // a leak was counted with its batch
    if (!is_leak) ++board_->counts.mutants;
    unlink(("/dev/shm/orvio-fuzz-" + std::to_string(process_)).c_str());
    shift_.from = index + static_cast<std::uint64_t>(plan_.jobs);
    board_->batch_begin = shift_.from;
    board_->at_batch = board_->counts;
    return shift_.from < plan_.count;
  }

 private:
  /// Counts what happened and names it.
  const char* Judge(int status, Outcome& outcome) const {
    if (WIFSIGNALED(status) && (WTERMSIG(status) == SIGPROF || WTERMSIG(status) == SIGALRM)) {
      ++outcome.hangs;
      return "hang";
    }
    const std::string report = Log();
    const auto says = [&](const char* text) { return report.find(text) != std::string::npos; };
    if (says("hard rss limit exhausted") || says("requested allocation size") || says("allocator is out of memory")) {
      ++outcome.counts.oversized;
      return "oversized";
    }
    const bool signal = says("Sanitizer: SEGV") || says("Sanitizer: ABRT") || says("Sanitizer: FPE") ||
                        says("Sanitizer: BUS") || says("Sanitizer: ILL") || says("stack-overflow");
    if (!signal && (says("AddressSanitizer") || says("LeakSanitizer"))) {
      ++outcome.memory_errors;
      return "memory-error";
    }
    ++outcome.crashes;
    return "crash";
  }

  std::string Log() const {
    std::ifstream in(log_, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  /// The mutant, and the report beside it. HDF5 alone is not what is looked at.
  void Keep(std::uint64_t index, const char* what) const {
    if (plan_.plain) return;
    const std::string name = std::string(what) + "-" + std::to_string(index);
    const Bytes bytes = MakeMutant(plan_, LoadSeeds(plan_), index);
    std::ofstream(plan_.findings + "/" + name + ".h5", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    KeepReport(name);
  }

  void KeepReport(const std::string& name) const {
    const std::string path = plan_.findings + "/" + name + ".txt";
    std::ofstream(path, std::ios::binary) << Log();
    (void)std::fprintf(stderr, "mutants: %s\n", path.c_str());
  }

  const Plan& plan_;
  Shift shift_;
  Board* board_ = nullptr;
  std::string log_;
  pid_t process_ = -1;
};

void Add(Counts& sum, const Counts& counts) {
  sum.mutants += counts.mutants;
  sum.opened += counts.opened;
  sum.values += counts.values;
  sum.refused_reads += counts.refused_reads;
  sum.oversized += counts.oversized;
  sum.differing += counts.differing;
}

}  // namespace

Outcome Watch(const Plan& plan) {
  Outcome outcome;
  const auto begin = std::chrono::steady_clock::now();
  std::vector<std::unique_ptr<Post>> posts;
  for (int i = 0; i < plan.jobs; ++i) posts.push_back(std::make_unique<Post>(plan, i));
  for (const auto& post : posts) post->Start();
  for (std::size_t running = posts.size(); running > 0;) {
    int status = 0;
    const pid_t ended = waitpid(-1, &status, 0);
    if (ended < 0 && errno != EINTR) throw std::runtime_error("a worker was lost");
    for (const auto& post : posts) {
      if (post->process() != ended) continue;
      if (post->Ended(status, outcome)) {
        post->Start();
      } else {
        --running;
      }
    }
  }
  for (const auto& post : posts) Add(outcome.counts, post->counts());
  outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  return outcome;
}

}  // namespace orvio::fuzz
