#pragma once

// Which states are read to make the data of one state whole.

#include <cstddef>
#include <vector>

#include "entity/incr_states.h"

namespace orvio {

/// One state is read as it stands, and the changes of others are applied to it, in order.
struct IncrChain {
  int base = 0;
  std::vector<int> changes = {};
  bool full = false;  ///< the state asked for builds upon no other
};

/// The chain that the record at a place means for `state`. The record may be that of an earlier one. `last` is the state
/// whose changes come at the end: `state`, or the last one before it that has the block.
IncrChain ChainOf(const IncrStateMap& map, std::size_t place, int state, int last);

}  // namespace orvio
