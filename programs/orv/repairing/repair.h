// A new file of all that can be read in a damaged one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "checking/guarded_run.h"
#include "repairing/loss.h"

namespace orvio::program {

struct RepairOptions {
  std::string file, out;
  bool replaces = false;          ///< an output that exists is replaced
  bool keeps_incomplete = false;  ///< also what is left of a last state that is not complete
  Limits limits = {3600, 4096};   ///< of each of the steps
};

struct RepairReport {
  bool is_sound = false;                 ///< nothing was damaged: the output is a copy
  bool was_rolled_back = false;          ///< a journal told what an unfinished change had overwritten
  std::vector<Loss> losses;              ///< in the order of their places
  std::uint64_t states = 0, blocks = 0;  ///< of the output; states that hold something
  std::uint64_t errors = 0;              ///< that orv check finds in the output: none that damage leaves behind
};

/// Reads the file, writes the output. The file is not changed. Throws Trouble; then there is no new output.
RepairReport RepairFile(const RepairOptions& options);

}  // namespace orvio::program
