#include "faults/fault_points.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "faults/power_cut.h"

namespace orvio::faults {
namespace {

constexpr unsigned kPatience = 20;  // seconds

/// How a writer ended: killed, well, or by itself.
Verdict JudgeWriter(const Ending& ending) {
  return ending.signal == SIGKILL || ending.Answered(0) ? Verdict::kSound : Verdict::kCrash;
}

/// Reads from one that fails to the next: an open reads all of a file, and its states are alike.
int StepOfReads(const Case& example) {
  constexpr int kFewStates = 8, kStep = 7;
  return example.states <= kFewStates ? 1 : kStep;
}

}  // namespace

FaultPoints::FaultPoints(std::string folder, Case example, Effort effort, Tally& tally)
    : folder_(std::move(folder)), path_(folder_ + "/model.orv"), case_(example), effort_(effort), tally_(tally) {
  const Ending made = RunApart([&] {
    MakeBase(path_, case_.form, case_.states);
    return 0;
  });
  if (!made.Answered(0)) throw std::runtime_error("no base file for " + NameOf(case_));
  base_ = Snapshot::Of(path_);
}

void FaultPoints::Put(Row row, Verdict verdict, const std::string& what) {
  tally_.Add(row, verdict);
  if (!effort_.tell_findings || verdict == Verdict::kSound) return;
  (void)std::fprintf(stderr, "%s: %s, %s, %s; %s\n", NameOf(verdict), NameOf(row), NameOf(case_).c_str(), what.c_str(),
                     judge_.Describe().c_str());
}

/// Of the file, or the writer where that is worse.
Verdict FaultPoints::JudgeBehind(Verdict writer, const Said& said) {
  return std::min(writer, judge_.Of(path_, case_, said));
}

/// Appends to the base file in a process that may not survive it.
Verdict FaultPoints::Append(const Injection& injection) {
  base_.Restore(path_);
  told_.Reset();
  const Ending ending = RunApart(
      [&] {
        AppendState(path_, case_.form, case_.writer, case_.states + 1, 0, injection, *told_);
        return 0;
      },
      kPatience);
  return JudgeWriter(ending);
}

/// Opens what was left for writing, in a process that may not survive it.
Verdict FaultPoints::PutRight(const Snapshot& left, const Injection& injection) {
  left.Restore(path_);
  told_.Reset();
  const Ending ending = RunApart(
      [&] {
        Recover(path_, case_.form, case_.writer, injection, *told_);
        return 0;
      },
      kPatience);
  return JudgeWriter(ending);
}

/// The calls that `work` leads to.
template <class Work>
std::vector<Call> FaultPoints::Record(Work work) {
  const std::string recording = folder_ + "/recording";
  const int descriptor = ::open(recording.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor < 0) throw std::runtime_error("no recording in " + folder_);
  work(Injection{.path = path_, .record = descriptor});
  (void)::close(descriptor);
  return ReadRecording(recording);
}

/// Where this does not work there is nothing to disturb.
bool FaultPoints::TryUndisturbed() {
  Verdict writer = Verdict::kSound;
  record_ = Record([&](const Injection& injection) { writer = Append(injection); });
  CheckReplay();
  calls_ = told_->count.calls;
  reads_ = told_->count.reads;
  if (calls_ >= CallCount::kMost) throw std::runtime_error("too many calls: " + NameOf(case_));
  is_write_.assign(told_->count.writes.begin(), told_->count.writes.end());
  const Said said = told_->said;
  const Verdict verdict = said == Said{1, 1} ? JudgeBehind(writer, said) : Verdict::kMissing;
  Put(Row::kNoFault, verdict, std::to_string(calls_) + " calls");
  return verdict == Verdict::kSound;
}

/// Whether a file that was left is met again while it is put right.
bool FaultPoints::IsTimeForSecond(bool has_journal) {
  if (!has_journal || case_.writer.plain || effort_.second_every == 0) return false;
  return with_journal_++ % effort_.second_every == 0;
}

void FaultPoints::TryFault(Fault fault, int at) {
  const Verdict writer = Append({.path = path_, .fault = fault, .at = at});
  if (told_->count.met == 0) throw std::runtime_error("a fault that nothing met: " + NameOf(case_));
  const std::string what = "call or read " + std::to_string(at);
  const Said said = told_->said;
  const bool second = IsTimeForSecond(std::filesystem::exists(JournalOf(path_)));
  Snapshot left;
  if (second) left = Snapshot::Of(path_);
  Put(RowOf(fault), JudgeBehind(writer, said), what);
  if (second) TrySecondKills(left, said, what);
}

/// A writer that puts the file right is killed as well.
void FaultPoints::TrySecondKills(const Snapshot& left, const Said& said, const std::string& what) {
  for (int at = 1;; ++at) {
    const Verdict writer = PutRight(left, {.path = path_, .fault = Fault::kKill, .at = at});
    if (told_->count.met == 0) return;
    Put(Row::kSecondKill, JudgeBehind(writer, said), what + ", then call " + std::to_string(at));
  }
}

/// An append and what each power cut leaves of it.
void FaultPoints::TryPowerCuts() {
  Disk disk(base_);
  Said said{};
  for (std::size_t done = 0; done <= record_.size(); ++done) {
    for (int i = 0; i < effort_.seeds; ++i) {
      const auto seed = static_cast<unsigned>(done) * static_cast<unsigned>(effort_.seeds) + static_cast<unsigned>(i);
      const Snapshot image = disk.Cut(seed);
      const std::string what = "after call " + std::to_string(done) + ", seed " + std::to_string(seed);
      image.Restore(path_);
      Put(Row::kPowerCut, judge_.Of(path_, case_, said), what);
      if (IsTimeForSecond(image.journal.has_value())) TrySecondCuts(image, said, what);
    }
    if (done == record_.size()) break;
    disk.Make(record_[done]);
    if (record_[done].op == Op::kMark) said[static_cast<std::size_t>(record_[done].what)] = 1;
  }
}

/// The power goes again while a writer puts the file right.
void FaultPoints::TrySecondCuts(const Snapshot& image, const Said& said, const std::string& what) {
  const std::vector<Call> calls = Record([&](const Injection& injection) { (void)PutRight(image, injection); });
  Disk disk(image);
  for (unsigned done = 0; done < calls.size(); ++done) {
    disk.Make(calls[done]);
    for (unsigned seed = 3 * done; seed < 3 * done + 3; ++seed) {
      disk.Cut(seed).Restore(path_);
      Put(Row::kSecondCut, judge_.Of(path_, case_, said),
          what + ", then after call " + std::to_string(done + 1) + ", seed " + std::to_string(seed));
    }
  }
}

/// A change of the file that goes past the injector would make all of this worthless.
void FaultPoints::CheckReplay() const {
  Disk disk(base_);
  for (const Call& call : record_) disk.Make(call);
  constexpr unsigned kAll = 1;  // a seed with which all is there
  const Snapshot made = disk.Cut(kAll), real = Snapshot::Of(path_);
  if (made.file != real.file || made.journal != real.journal) {
    throw std::runtime_error("calls that change the file are not seen: " + NameOf(case_));
  }
}

void FaultPoints::Try() {
  if (!TryUndisturbed()) return;
  for (int at = 1; effort_.faults && at <= calls_; ++at) {
    for (const Fault fault : kFaults) {
      if (fault != Fault::kHalf || is_write_[static_cast<std::size_t>(at)]) TryFault(fault, at);
    }
  }
  const int step = StepOfReads(case_);
  for (int at = 1 + case_.states % step; effort_.faults && at <= reads_; at += step) TryFault(Fault::kUnread, at);
  if (effort_.seeds > 0) TryPowerCuts();
}

}  // namespace orvio::faults
