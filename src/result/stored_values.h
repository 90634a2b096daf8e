#pragma once

// What a file really holds of a block, for those who size arrays by the counts of its header.

#include <cstdint>

#include "orvio/orv_result.h"
#include "result/result_datasets.h"

namespace orvio {

/// State in which a block of a list is found: 0 for a constant block, -1 for a multi-state one, else the one asked for.
int StateOf(const ORVResult& block, int state);

/// Number of values of a dataset of a block in a state; 0 for one that is not there.
std::uint64_t StoredPoints(ORVResult& block, const char* file, int state, ResultPart part, const char* name);

/// Number of those that have bytes in the file, be they compressed or not. A dataset of any extents may have none.
std::uint64_t AllocatedPoints(ORVResult& block, const char* file, int state, ResultPart part, const char* name);

/// The same at the block's own path.
std::uint64_t AllocatedPointsAtPath(ORVResult& block, const char* file, ResultPart part, const char* name);

}  // namespace orvio
