#pragma once

// The result blocks of a place of a file, by their headers.

#include <vector>

class ORVResult;

namespace orvio {

/// Reads the headers of all blocks of a kind in a state (0: the constant section, -1: the multi-state section) and
/// appends those with entities and components; the caller owns them. Blocks without components are told to the host. 1
/// when memory runs out; a place that is not there holds no results.
[[nodiscard]] int DiscoverResults(const char* file, int state, int block_type, std::vector<ORVResult*>& results);

}  // namespace orvio
