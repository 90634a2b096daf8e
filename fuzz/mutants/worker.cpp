// The process that reads mutants, and may die of one.

#include <sanitizer/allocator_interface.h>
#include <sanitizer/common_interface_defs.h>
#include <sanitizer/lsan_interface.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "byte_file.h"
#include "mutants/plan.h"
#include "orvio/orv_switches.h"
#include "quiet.h"
#include "reading.h"

namespace orvio::fuzz {
namespace {

constexpr unsigned kSeconds = 10;         // of work for one mutant
constexpr unsigned kSecondsAsleep = 600;  // of anything, on a machine that is busy with other things
constexpr std::uint64_t kBatch = 500;     // mutants between two looks for leaks
constexpr std::uint64_t kEveryRoad = 16;  // one mutant of as many is read by every road, which takes five times as long

/// The largest allocation that was asked for, while it is watched.
struct AllocationWatch {
  bool on = false;
  std::size_t limit = 0;
  std::size_t largest = 0;
  int traces_left = 5;  // each takes a second
};
AllocationWatch g_watch;

void Watch(const volatile void* /*memory*/, std::size_t size) {
  if (!g_watch.on || size <= g_watch.limit) return;
  g_watch.largest = std::max(g_watch.largest, size);
  if (g_watch.traces_left-- <= 0) return;
  g_watch.on = false;  // what the trace takes is not meant
  (void)std::fprintf(stderr, "an allocation of %zu bytes\n", size);
  __sanitizer_print_stack_trace();
  g_watch.on = true;
}

void Forget(const volatile void* /*memory*/) {}

/// Ends the process when it has worked for so long. 0: it may work on.
void SetTimer(unsigned seconds) {
  itimerval timer = {};
  timer.it_value.tv_sec = seconds;
  (void)setitimer(ITIMER_PROF, &timer, nullptr);
  (void)alarm(seconds > 0 ? kSecondsAsleep : 0);
}

class Worker {
 public:
  Worker(const Plan& plan, const Shift& shift)
      : plan_(plan), shift_(shift), seeds_(LoadSeeds(plan)), board_(MapBoard(shift.board)) {}

  int Run() {
    const auto step = static_cast<std::uint64_t>(plan_.jobs);
    for (std::uint64_t i = shift_.from; i < plan_.count; i += step) {
      board_.current = i;
      ReadMutant(i);
      if (shift_.look_at_each && i <= shift_.until) {
        if (__lsan_do_recoverable_leak_check() != 0) return kExitLeak;
        BeginBatch(i + step);
      } else if (board_.counts.mutants - board_.at_batch.mutants >= kBatch) {
        if (LeaksInBatch(i + step)) return kExitLeakInBatch;
      }
    }
    return LeaksInBatch(plan_.count) ? kExitLeakInBatch : kExitDone;
  }

 private:
  static Board& MapBoard(int descriptor) {
    void* memory = mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no memory to share");
    return *static_cast<Board*>(memory);
  }

  void BeginBatch(std::uint64_t next) {
    board_.batch_begin = next;
    board_.at_batch = board_.counts;
  }

  /// With HDF5 alone there is nothing of ours to leak.
  bool LeaksInBatch(std::uint64_t next) {
    if (!plan_.plain && __lsan_do_recoverable_leak_check() != 0) return true;
    BeginBatch(next);
    return false;
  }

  void ReadMutant(std::uint64_t index) {
    const Bytes bytes = MakeMutant(plan_, seeds_, index);
    const ByteFile file(bytes.data(), bytes.size());
    constexpr std::size_t kAlwaysAllowed = std::size_t{64} << 20U;
    g_watch.limit = kAlwaysAllowed + 10 * bytes.size();
    g_watch.largest = 0;
    SetTimer(kSeconds);
    g_watch.on = !plan_.plain;
    const bool same = Read(file.path(), index % kEveryRoad == 0);
    g_watch.on = false;
    SetTimer(0);
    ++board_.counts.mutants;
    if (g_watch.largest > 0) KeepOversized(index, bytes);
    if (!same) KeepDiffering(index, bytes);
  }

  /// Answers whether what is remembered of files changes nothing.
  bool Read(const char* path, bool by_every_road) {
    Counts& counts = board_.counts;
    if (plan_.plain) {
      const PlainTally tally = ReadPlain(path);
      counts.opened += tally.opened ? 1 : 0;
      counts.values += tally.values;
      counts.refused_reads += tally.refusals;
      return true;
    }
    (void)ORVSetFileIndex(1);
    const Tally tally = by_every_road ? ReadAll(path) : ReadOnce(path);
    ExpectNothingOpen();
    counts.opened += tally.opened ? 1 : 0;
    counts.values += tally.values;
    counts.refused_reads += tally.refusals;
    if (!tally.opened) return true;
    (void)ORVSetFileIndex(0);
    return (by_every_road ? ReadAll(path) : ReadOnce(path)) == tally;
  }

  void KeepDiffering(std::uint64_t index, const Bytes& bytes) {
    ++board_.counts.differing;
    (void)std::fprintf(stderr, "mutant %llu: read otherwise with what is remembered of it\n",
                       static_cast<unsigned long long>(index));
    Keep("differing", index, bytes);
  }

  void KeepOversized(std::uint64_t index, const Bytes& bytes) {
    ++board_.counts.oversized;
    (void)std::fprintf(stderr, "mutant %llu: an allocation of %zu bytes for a file of %zu\n",
                       static_cast<unsigned long long>(index), g_watch.largest, bytes.size());
    Keep("oversized", index, bytes);
  }

  void Keep(const char* finding, std::uint64_t index, const Bytes& bytes) {
    if (plan_.findings.empty()) return;
    const std::string path = plan_.findings + "/" + finding + "-" + std::to_string(index) + ".h5";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }

  const Plan& plan_;
  const Shift shift_;
  const std::vector<Bytes> seeds_;
  Board& board_;
};

}  // namespace

int Work(const Plan& plan, const Shift& shift) {
  PrepareHdf5();
  (void)ORVSetFileCheck(plan.check ? 1 : 0);
  (void)__sanitizer_install_malloc_and_free_hooks(Watch, Forget);
  return Worker(plan, shift).Run();
}

}  // namespace orvio::fuzz
