#pragma once

#include <memory>

#include "mutants/plan.h"

namespace orvio::fuzz {

/// What came of all mutants.
struct Outcome {
  Counts counts;
  std::uint64_t crashes = 0;        ///< signals, failed checks of the library's own promises
  std::uint64_t hangs = 0;          ///< more than ten seconds for one mutant
  std::uint64_t memory_errors = 0;  ///< AddressSanitizer's reports, and leaks
  double seconds = 0;

  std::uint64_t Findings() const { return crashes + hangs + memory_errors + counts.oversized + counts.differing; }
};

/// Lets workers read all mutants of a plan, a new one for each that dies.
Outcome Watch(const Plan& plan);

/// Arguments of a worker, and back.
std::vector<std::string> ArgumentsOf(const Plan& plan, const Shift& shift);

}  // namespace orvio::fuzz
