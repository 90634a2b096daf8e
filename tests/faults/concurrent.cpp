#include "faults/concurrent.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

#include "faults/process.h"
#include "orvio/orvio.h"

namespace orvio::faults {
namespace {

constexpr int kMostStates = 300;  // of a file
constexpr int kReaders = 2;
constexpr unsigned kPatience = 120;  // seconds
using Clock = std::chrono::steady_clock;

/// A file, and what its writer tells those who read it.
struct Round {
  std::string path;
  Form form;
  Writer writer;
  bool with_kills;
  Clock::time_point end;
};

struct Progress {
  std::atomic<int> states{1};  ///< said to be written
  std::atomic<bool> done{false};
  Told told;
};

/// Begins with the last state that is there: a writer that was killed may have left it with one block, and what is there
/// is left alone.
int Write(const Round& round, Progress& progress, Concurrency& counts) {
  const std::array<int, kBlockCount> all = {1, 1};
  int first = 0;
  if (ReadNumState(round.path.c_str(), &first) != 0 || first < progress.states) ++counts.fewer;
  for (int state = first; state <= kMostStates && Clock::now() < round.end; ++state) {
    progress.told.said = {};
    AppendState(round.path, round.form, round.writer, state, 0, {}, progress.told);
    if (progress.told.said != all) {
      ++counts.refused;
      break;
    }
    ++counts.appended;
    progress.states = state;
  }
  progress.done = true;
  return 0;
}

class Reader {
 public:
  Reader(const Round& round, const Progress& progress, Concurrency& counts, unsigned seed)
      : round_(round), progress_(progress), counts_(counts), chance_(seed), filer_(round.path.c_str()) {}

  int Read() {
    int next_id = 1;
    if (filer_.InitReader(next_id) != 0) Find(counts_.failures, "no start", 0);
    while (!progress_.done) Look();
    Look();
    return 0;
  }

 private:
  /// Counts a finding and tells of it.
  void Find(std::atomic<long>& count, const char* what, int state, int block = -1) {
    if (++count > 20 || round_.writer.durability == 0) return;
    (void)std::fprintf(stderr, "%s: state %d, block %d, %d states known, %d said; %s, %s%s; last error: %s\n", what,
                       state, block, states_, progress_.states.load(), NameOf(round_.writer).c_str(),
                       NameOf(round_.form), round_.with_kills ? ", with kills" : "", ORVGetLastErrorText());
  }

  void Look() {
    const int written = progress_.states;
    filer_.InitForReload();
    const auto* index = filer_.GetStateIndex(false);
    ++counts_.looks;
    const int states = index ? static_cast<int>(index->GetNumState()) : 0;
    if (states < std::max(states_, written)) Find(counts_.fewer, "fewer states", states);
    if (states > kMostStates) Find(counts_.wrong, "too many states", states);
    for (int i = 0; i < states; ++i) {
      if (index->GetIndexVals()[i] != TimeOf(i + 1) || index->GetIndexIds()[i] != IdentOf(i + 1)) {
        Find(counts_.wrong, "another row of the table", i + 1);
      }
    }
    states_ = std::max(states_, states);
    ReadState(states_);
    for (int i = 0; i < 4; ++i) ReadState(1 + static_cast<int>(chance_() % static_cast<unsigned>(states_)));
  }

  void ReadState(int state) {
    for (int block = 0; block < kBlockCount; ++block) {
      // The last state is in the table with its first block.
      const bool must_be_there = block == 0 || round_.writer.whole || state < states_;
      const bool there = ReadBlock(state, block);
      if (!there && must_be_there) Find(counts_.failures, "unread", state, block);
    }
  }

  bool ReadBlock(int state, int block) {
    ORVResultValuesBase<float, int> values;
    values.m_state = state;
    values.m_wantIds = 1;
    const char* variable = kBlocks[static_cast<std::size_t>(block)].variable;
    ++counts_.reads;
    if (filer_.GetValues(values, filer_.GetResultList(1), -1, -1, variable) != 0) return false;
    const std::vector<float> read(values.m_values, values.m_values + values.m_valueCount);
    const std::vector<int> ids(values.m_ids, values.m_ids + values.m_idCount);
    if (read != ValuesOf(block, 0, state) || ids != NodeIds()) Find(counts_.wrong, "other values", state, block);
    values.DeleteAllocation(true);
    return true;
  }

  const Round& round_;
  const Progress& progress_;
  Concurrency& counts_;
  std::mt19937 chance_;
  ORVFiler filer_;
  int states_ = 1;
};

/// Kills the writer at any time and starts another one, until one has come to its end.
void WriteWithKills(const Round& round, Progress& progress, Concurrency& counts, unsigned seed) {
  std::mt19937 chance(seed);
  while (!progress.done) {
    const int writer = Start([&] { return Write(round, progress, counts); }, kPatience);
    std::this_thread::sleep_for(std::chrono::milliseconds(3 + chance() % 60));
    (void)kill(writer, SIGKILL);
    const Ending ending = WaitFor(writer);
    if (ending.signal == SIGKILL) {
      ++counts.kills;
    } else if (!ending.Answered(0)) {
      ++counts.ended_badly;
    }
    if (Clock::now() >= round.end) progress.done = true;
  }
}

void RunRound(const Round& round, Concurrency& counts, unsigned seed) {
  const Shared<Progress> progress;
  const Ending made = RunApart([&] {
    MakeBase(round.path, round.form, 1);
    return 0;
  });
  if (!made.Answered(0)) throw std::runtime_error("no file to grow");
  std::vector<int> readers;
  for (unsigned reader = 0; reader < kReaders; ++reader) {
    readers.push_back(Start([&] { return Reader(round, *progress, counts, 2 * seed + reader).Read(); }, kPatience));
  }
  if (round.with_kills) {
    WriteWithKills(round, *progress, counts, seed);
  } else if (!RunApart([&] { return Write(round, *progress, counts); }, kPatience).Answered(0)) {
    ++counts.ended_badly;
  }
  progress->done = true;
  for (const int reader : readers) {
    if (!WaitFor(reader).Answered(0)) ++counts.ended_badly;
  }
}

}  // namespace

void Concurrency::Print(const std::string& title) const {
  (void)std::printf(
      "%s, one writer and %d readers at once: %ld states appended, %ld writers killed, %ld writes refused; %ld looks "
      "at the table of "
      "states, "
      "%ld with fewer states than before; %ld blocks read, %ld failures, %ld wrong; %ld processes ended badly\n",
      title.c_str(), kReaders, appended.load(), kills.load(), refused.load(), looks.load(), fewer.load(), reads.load(),
      failures.load(), wrong.load(), ended_badly.load());
}

void RunConcurrently(const std::string& folder, const Writer& writer, int seconds, Concurrency& counts) {
  const auto end = Clock::now() + std::chrono::seconds(seconds);
  for (unsigned number = 0; Clock::now() < end; ++number) {
    const auto soon = Clock::now() + std::chrono::milliseconds(500 * seconds);
    const Round round{.path = folder + "/growing.orv",
                      .form = kForms[number / 2 % std::size(kForms)],
                      .writer = writer,
                      .with_kills = number % 2 == 1,
                      .end = std::min(soon, end)};
    RunRound(round, counts, number);
  }
}

}  // namespace orvio::faults
