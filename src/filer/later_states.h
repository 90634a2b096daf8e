#pragma once

// Results that the first state does not have.

#include <memory>
#include <vector>

#include "filer/container.h"

namespace orvio {

/// The results of a state that a filer's list lacks, or has under another path only. `added` is raised by the number of
/// those that it lacks altogether.
std::vector<std::unique_ptr<ORVResult>> FindLaterResults(const ORVContainer& data, int state, int& added);

/// States to look through, first and last; the first is above the last for none. `state` below 1 means all from the
/// second on; with `to_the_end` all from `state` on.
struct StateRange {
  int first, last;
};
StateRange LaterStates(const ORVContainer& data, int state, bool to_the_end);

}  // namespace orvio
