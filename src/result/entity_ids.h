#pragma once

// How many entities a list of result blocks has in a state, and the integers that the blocks store one of for each:
// their ids, and the ids of their frames.

#include <optional>

#include "h5/c_array.h"
#include "result/result_lookup.h"

struct ORVContainer;

namespace orvio {

/// Renews the count of each block for a state and adds up those that could be read; 0 for a sum that no int holds.
int CountEntities(const char* file, const ResultList& blocks, int state);

/// The largest of those sums over the states of the filer's index, or of the file where there is no index.
int LargestEntityCount(const ORVContainer& data, const ResultList& blocks);

/// Integers of several blocks, block behind block.
struct EntityIntegers {
  CArray<int> numbers;  ///< null for none
  int count = 0;
};

/// Blocks that lack the integers, or whose counts have nothing in the file that stands behind them, are passed over, and
/// those with a number that no int holds. Counts are renewed, all else in the blocks is as before. Nothing where there
/// are no entities at the state.
std::optional<EntityIntegers> ReadEntityIds(const char* file, const ResultList& blocks, int state);
std::optional<EntityIntegers> ReadFrameIds(const char* file, const ResultList& blocks, int state);

}  // namespace orvio
