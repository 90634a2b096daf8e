#pragma once

// What was found, in a table that several processes fill.

#include <atomic>
#include <string>

#include "faults/judge.h"

namespace orvio::faults {

/// A line of the table.
enum class Row : int {
  kNoFault,
  kKill,
  kHalf,
  kNoSpace,
  kIoError,
  kDiskFull,
  kUnread,
  kSecondKill,
  kPowerCut,
  kSecondCut
};
inline constexpr int kRows = static_cast<int>(Row::kSecondCut) + 1;
const char* NameOf(Row row);
Row RowOf(Fault fault);

struct Tally {
  std::array<std::array<std::atomic<long>, kVerdicts>, kRows> counts{};

  void Add(Row row, Verdict verdict) { ++counts[static_cast<std::size_t>(row)][static_cast<std::size_t>(verdict)]; }
  long Points(Row row) const;
  long Unsound() const;
  void Print(const std::string& title) const;
};

}  // namespace orvio::faults
