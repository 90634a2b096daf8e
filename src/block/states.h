#pragma once

// The states of an open file, for operations that go through many of them. In a large file each search for a state by
// its position takes milliseconds, so the names are listed once.

#include <string>
#include <vector>

#include "h5/handle.h"
#include "orvio/orv_block.h"

namespace orvio {

/// Names of the states in their order; one that is too long to be opened is empty. Nothing for a file that is not open.
std::vector<std::string> StateNames(IOH5Reader& reader);

/// Path of a state's group.
std::string StatePath(const std::string& state_name);

/// Opens a block as it stands in a state, by its stored path. The block needs a reader.
h5::Group OpenInState(ORVBlock& block, const std::string& state_name);

}  // namespace orvio
