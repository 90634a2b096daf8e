#pragma once

// Faults at each call of an append.

#include <vector>

#include "faults/judge.h"
#include "faults/recording.h"
#include "faults/snapshot.h"
#include "faults/tally.h"

namespace orvio::faults {

/// What is tried with an append.
struct Effort {
  bool faults = false;   ///< each kind of fault at each call; errors at each read, or at some where they are many
  int seeds = 0;         ///< images of each power cut; 0 for no power cuts
  int second_every = 0;  ///< of the faults that leave a journal, how many are followed by another while it is put right
  bool tell_findings = true;  ///< each on a line of stderr
};

/// Tries all that can happen to one append. `folder` is for its files. Throws when the bench itself fails.
class FaultPoints {
 public:
  FaultPoints(std::string folder, Case example, Effort effort, Tally& tally);
  void Try();

 private:
  using Said = std::array<int, kBlockCount>;

  Verdict Append(const Injection& injection);
  Verdict PutRight(const Snapshot& left, const Injection& injection);
  bool TryUndisturbed();
  void TryFault(Fault fault, int at);
  void TrySecondKills(const Snapshot& left, const Said& said, const std::string& what);
  void TryPowerCuts();
  void TrySecondCuts(const Snapshot& image, const Said& said, const std::string& what);
  template <class Work>
  std::vector<Call> Record(Work work);
  void CheckReplay() const;
  bool IsTimeForSecond(bool has_journal);
  Verdict JudgeBehind(Verdict writer, const Said& said);
  void Put(Row row, Verdict verdict, const std::string& what);

  std::string folder_, path_;
  Case case_;
  Effort effort_;
  Tally& tally_;
  Snapshot base_;
  Judge judge_;
  Shared<Told> told_;
  int calls_ = 0;               ///< of an append that nothing happens to
  int reads_ = 0;               ///< likewise
  std::vector<bool> is_write_;  ///< of each call, from 1
  std::vector<Call> record_;    ///< the same calls
  int with_journal_ = 0;        ///< files with a journal that were met
};

}  // namespace orvio::faults
