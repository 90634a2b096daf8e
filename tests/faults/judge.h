#pragma once

// What is left of a file after a fault: read, appended to, and read again, each in a process of its own.

#include <array>
#include <set>
#include <string>
#include <tuple>

#include "faults/append.h"
#include "faults/look.h"
#include "faults/process.h"

namespace orvio::faults {

/// From the worst to the best.
enum class Verdict : int {
  kNotOpen,   ///< the file does not open
  kLost,      ///< states that were there before, or the mesh, are lost or changed
  kTorn,      ///< a block that is there in part, a state without blocks, half of a state that was written as a whole
  kMissing,   ///< a block is not there that was said to be written, or that was seen before
  kCrash,     ///< the writer did not come to its end although nothing had killed it
  kNoAppend,  ///< no further state can be written
  kReader,    ///< who only reads changed the file, or one beside it
  kJournal,   ///< a journal is left when all is done
  kSound,
};
inline constexpr int kVerdicts = static_cast<int>(Verdict::kSound) + 1;
const char* NameOf(Verdict verdict);

/// A file of so many states that is appended to.
struct Case {
  Form form;
  Writer writer;
  int states = 1;
};
std::string NameOf(const Case& example);

/// What one look comes to. `said` tells which blocks of the first new state were said to be written.
Verdict JudgeLook(const Expected& expected, const Seen& seen, bool whole_states,
                  const std::array<int, kBlockCount>& said);

/// Looks at files that a fault met; the file changes meanwhile. Of two that are the same byte by byte it looks at one:
/// most faults leave the file as it was.
class Judge {
 public:
  Verdict Of(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said);
  /// What the last look saw.
  std::string Describe() const;

 private:
  /// What a verdict depends on: hashes of the file and its journal, the case and what was said.
  using Key = std::tuple<std::size_t, std::size_t, std::string, std::array<int, kBlockCount>>;
  static Key KeyOf(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said);

  Verdict Try(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said);
  const Seen& Look(const std::string& path, const Expected& expected, bool with_library);
  bool HasReaderWritten() const { return count_->calls > 0; }
  bool Append(const std::string& path, const Case& example, int state);

  std::set<Key> sound_;
  Shared<Seen> seen_;
  Ending ending_;  ///< of the last look
  Shared<Told> told_;
  Shared<CallCount> count_;  ///< of the last look
};

std::string JournalOf(const std::string& path);

}  // namespace orvio::faults
