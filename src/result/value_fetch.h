#pragma once

// The way from a request to values in memory: selections of blocks are sized, one array is made, and each block is read
// into its place.

#include <cstdint>
#include <vector>

#include "orvio/orv_result.h"
#include "orvio/orv_result_values.h"

namespace orvio {

/// What is fetched: a handle by its internal id, or by its external one (`result_type`, which goes first), or a variable
/// by name. -1 and null say that it is not asked for this way.
struct FetchQuantity {
  int ext_id = -1;
  int result_type = -1;
  const char* variable = nullptr;
};

/// Places from `first` to before `end`.
struct FetchedRange {
  std::uint64_t first = 0;
  std::uint64_t end = 0;
};

/// Fills the answer of `values`. 0 when there is one; else 1, with the answer left alone. `stored_ids` gets the parts of
/// the ids that come from the file: those of blocks that are stored without ids are 0. Made for float and double.
template <class T>
[[nodiscard]] int FetchValues(const char* file, ORVResultValuesBase<T, int>& values,
                              const std::vector<ORVResult*>& blocks, const FetchQuantity& quantity,
                              std::vector<FetchedRange>* stored_ids = nullptr);

/// Reads blocks whole at their own paths, with the index rows that stand beside the values.
[[nodiscard]] int FetchBlocksAtPaths(const char* file, const std::vector<ORVResult*>& blocks,
                                     ORVFetchValuesWithIndex& values);

}  // namespace orvio
