#pragma once

// One process appends states as fast as it can while others read.

#include <atomic>
#include <string>

#include "faults/append.h"

namespace orvio::faults {

struct Concurrency {
  std::atomic<long> appended{0};     ///< states
  std::atomic<long> kills{0};        ///< of the writer, which another one follows
  std::atomic<long> refused{0};      ///< writes and opens of the writer that failed
  std::atomic<long> looks{0};        ///< at the table of states
  std::atomic<long> reads{0};        ///< of the values of a block
  std::atomic<long> failures{0};     ///< reads that failed although the block was there
  std::atomic<long> wrong{0};        ///< values that nobody wrote
  std::atomic<long> fewer{0};        ///< tables with fewer states than one before
  std::atomic<long> ended_badly{0};  ///< processes that did not end well

  long Unsound() const { return refused + failures + wrong + fewer + ended_badly; }
  void Print(const std::string& title) const;
};

/// Goes on for so many seconds, on file after file, so that none gets too long to be looked at often. In every other one
/// the writer is killed again and again.
void RunConcurrently(const std::string& folder, const Writer& writer, int seconds, Concurrency& counts);

}  // namespace orvio::faults
