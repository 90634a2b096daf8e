#pragma once

// All that is tried in one run, spread over processes.

#include <string>
#include <vector>

#include "faults/fault_points.h"

namespace orvio::faults {

struct Trial {
  Case example;
  Effort effort;
};

inline constexpr int kMostStates = 1000;  ///< of a file that is tried

struct Wish {
  enum class Form { kShort, kFull };

  Form form = Form::kShort;
  bool plain = false;             ///< HDF5 alone
  int durability = -1;            ///< only this one; -1 for those that promise something
  int first_states = 1;           ///< files of fewer states are left out,
  int last_states = kMostStates;  ///< and files of more
  int jobs = 1;
  std::string folder;  ///< where the files go; empty for memory
};

std::vector<Trial> TrialsOf(const Wish& wish);
int SecondsOfConcurrency(const Wish& wish);

/// Makes the trials, prints the tables, and answers what the program does: 0 with nothing found, 1 with something, 2 for
/// a failure of the bench.
int Run(const Wish& wish);

}  // namespace orvio::faults
