#include "faults/campaign.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <stdexcept>

#include "faults/concurrent.h"

namespace orvio::faults {
namespace {

constexpr int kMostTables = 8;

/// Shared by all processes. There is a table for each writer.
struct Board {
  std::atomic<std::size_t> next{0};
  std::atomic<int> troubles{0};
  std::array<Tally, kMostTables> tallies{};
};

std::vector<int> Range(int first, int last) {
  std::vector<int> numbers;
  for (int number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

/// Where the tree of names of a group splits.
constexpr int kSplitFirst = 126, kSplitLast = 129;

/// Who promises nothing loses much: only the table tells of it.
bool Promises(const Writer& writer) { return !writer.plain && writer.durability > 0; }

void Add(std::vector<Trial>& trials, const Writer& writer, const std::vector<int>& states,
         const std::vector<Form>& forms, Effort effort) {
  effort.tell_findings = Promises(writer);
  for (const int count : states) {
    for (const Form form : forms) trials.push_back({{form, writer, count}, effort});
  }
}

std::vector<Writer> WritersOf(const Wish& wish) {
  if (wish.plain) return {{.plain = true, .durability = 0}};
  if (wish.durability >= 0) return {{.durability = wish.durability}, {.durability = wish.durability, .whole = true}};
  return {{.durability = 1}, {.durability = 1, .whole = true}, {.durability = 2}, {.durability = 2, .whole = true}};
}

const std::vector<Form> kAllForms(std::begin(kForms), std::end(kForms));
/// Two that have everything once: both layouts, packed and not.
const std::vector<Form> kSomeForms = {kForms[0], kForms[3]}, kOtherForms = {kForms[1], kForms[2]};

/// A power cut is of interest where something is promised, and with HDF5 for comparison.
bool HasPowerCuts(const Writer& writer) { return writer.plain || writer.durability == 2; }

void AddFull(std::vector<Trial>& trials, const Writer& writer) {
  const Effort faults{.faults = true, .second_every = 4};
  const bool all = writer.durability != 2;
  for (int count = 1; all && count <= 40; ++count) {
    Add(trials, writer, {count}, count % 2 == 0 ? kSomeForms : kOtherForms, faults);
  }
  Add(trials, writer, Range(kSplitFirst, kSplitLast), all ? kAllForms : kSomeForms, faults);
  Add(trials, writer, {1, 8, 20}, kAllForms, {.faults = true, .second_every = 1});
  if (HasPowerCuts(writer)) {
    Add(trials, writer, {1, 7, 20}, kAllForms, {.seeds = 12, .second_every = 10});
    Add(trials, writer, {127}, kSomeForms, {.seeds = 4, .second_every = 10});
  }
}

void AddShort(std::vector<Trial>& trials, const Writer& writer) {
  if (writer.durability != 2) Add(trials, writer, {2}, kSomeForms, {.faults = true, .second_every = 6});
  if (writer.durability == 2 && writer.whole)
    Add(trials, writer, {2}, {kForms[0]}, {.faults = true, .second_every = 6});
  if (HasPowerCuts(writer)) {
    Add(trials, writer, {1}, {kForms[writer.whole ? 0 : 3]}, {.seeds = 2, .second_every = 10});
  }
}

void Work(const std::string& folder, const std::vector<Trial>& trials, const std::vector<Writer>& writers,
          Board& board) {
  const WorkFolder own(folder);
  for (std::size_t at = board.next++; at < trials.size(); at = board.next++) {
    const Case& example = trials[at].example;
    const auto same = [&](const Writer& writer) { return NameOf(writer) == NameOf(example.writer); };
    const auto table = std::find_if(writers.begin(), writers.end(), same) - writers.begin();
    FaultPoints(own.path(), example, trials[at].effort, board.tallies[static_cast<std::size_t>(table)]).Try();
  }
}

/// Answers the processes that failed. An interrupted run tells what it has come to, and is one that failed.
int WaitForAll(const std::vector<int>& processes, const Board& board, std::size_t trials) {
  int troubles = 0;
  try {
    for (const int process : processes) troubles += WaitFor(process).Answered(0) ? 0 : 1;
  } catch (const std::exception& error) {
    for (const int process : processes) (void)kill(process, SIGTERM);
    (void)std::fprintf(stderr, "orvio_faults: %s when %zu of %zu files were begun\n", error.what(),
                       std::min(board.next.load(), trials), trials);
    ++troubles;
  }
  return troubles;
}

/// Readers beside a writer are tried with what the library does unless told otherwise.
long TryConcurrency(const Wish& wish, const std::string& folder) {
  if (wish.plain) return 0;
  long unsound = 0;
  for (const bool whole : {false, true}) {
    const Writer writer{.durability = wish.durability >= 0 ? wish.durability : 1, .whole = whole};
    const Shared<Concurrency> counts;
    RunConcurrently(folder, writer, SecondsOfConcurrency(wish) / 2, *counts);
    counts->Print(NameOf(writer));
    unsound += counts->Unsound();
  }
  return unsound;
}

}  // namespace

std::vector<Trial> TrialsOf(const Wish& wish) {
  std::vector<Trial> trials;
  for (const Writer& writer : WritersOf(wish)) {
    (wish.form == Wish::Form::kFull ? AddFull : AddShort)(trials, writer);
  }
  std::erase_if(trials, [&](const Trial& trial) {
    return trial.example.states < wish.first_states || trial.example.states > wish.last_states;
  });
  // The longest first, so that no process works on while the others are done.
  std::stable_sort(trials.begin(), trials.end(),
                   [](const Trial& one, const Trial& other) { return one.example.states > other.example.states; });
  return trials;
}

int SecondsOfConcurrency(const Wish& wish) { return wish.form == Wish::Form::kFull ? 12 : 4; }

int Run(const Wish& wish) {
  const auto begin = std::chrono::steady_clock::now();
  const WorkFolder folder(wish.folder);
  const std::vector<Writer> writers = WritersOf(wish);
  const std::vector<Trial> trials = TrialsOf(wish);
  if (trials.empty()) throw std::runtime_error("no file of so many states is tried");
  const Shared<Board> board;
  std::vector<int> processes;
  for (int job = 0; job < wish.jobs; ++job) {
    processes.push_back(Start(
        [&] {
          Work(folder.path(), trials, writers, *board);
          return 0;
        },
        0));
  }
  const int troubles = WaitForAll(processes, *board, trials.size());
  long unsound = 0;
  for (std::size_t table = 0; table < writers.size(); ++table) {
    board->tallies[table].Print(NameOf(writers[table]));
    unsound += board->tallies[table].Unsound();
  }
  if (troubles == 0) unsound += TryConcurrency(wish, folder.path());
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  (void)std::printf("%.0f s\n", took.count());
  if (troubles > 0) return 2;
  return unsound > 0 && !wish.plain ? 1 : 0;
}

}  // namespace orvio::faults
