#pragma once

// What a file holds, seen through the library or with HDF5 alone, against what it should hold.

#include <array>
#include <string>

#include "faults/model.h"

namespace orvio::faults {

enum class Piece : int {
  kAbsent,
  kWhole,
  kTorn,  ///< some of it, or other values
};

/// What a file may hold: the model with so many states of generation 0, and behind them states of which each block may be
/// there or not. Further states are not looked for: they are ghosts.
struct Expected {
  static constexpr int kMostNew = 2;

  Form form;
  int states = 0;
  int new_states = 0;
  std::array<Generation, kMostNew> generations{};
};

/// Filled step by step: who looks at a damaged file may not come to its end.
struct Seen {
  bool opened = false;
  bool model = false;  ///< the mesh and the variables are right
  int right = 0;       ///< states that were there before and are whole, counted up to the first that is not
  bool ghost = false;  ///< a state without a whole block, one too many, or something in it that nobody wrote
  bool ended = false;
  std::array<std::array<Piece, kBlockCount>, Expected::kMostNew> pieces{};
};

/// Through the library, which reads only.
void LookWithLibrary(const std::string& path, const Expected& expected, Seen& seen);
/// With HDF5 alone.
void LookWithHdf5(const std::string& path, const Expected& expected, Seen& seen);

}  // namespace orvio::faults
