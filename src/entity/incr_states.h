#pragma once

// The history of a block: which states hold it whole, which only its changes, and what each builds upon.

#include <cstddef>
#include <optional>
#include <vector>

#include "orvio/orv_incr_index.h"

namespace orvio {

/// What a state holds of a block.
struct IncrStateRecord {
  int state = 0;
  int flag = 0;           ///< not 0 for an incremental state
  std::size_t chain = 0;  ///< where its chain starts in the map; its own place if it builds upon no other
};

/// Records in the order of the index identifiers: each builds upon those from the start of its chain to the one before.
using IncrStateMap = std::vector<IncrStateRecord>;

/// Allocates the index for the states of a file and fills it from those that hold `block`. The number of columns comes
/// from `state`, or from the first other state that has the block. The index must be empty, as nothing of it is freed; it
/// is left empty where it cannot be filled.
[[nodiscard]] int FillIncrIndex(const char* file, ORVBlock& block, ORVIncrIndex& index, int state);

/// Appends a record for each state, in the order of the index identifiers. 1 with nothing appended for an index without
/// rows, or of more than one column.
[[nodiscard]] int AppendStateRecords(const ORVIncrIndex& index, IncrStateMap& map);
/// The same for an index that is read for it.
[[nodiscard]] int ReadStateRecords(const char* file, ORVBlock& block, int state, IncrStateMap& map);

/// Place of the record of a state, or of the closest earlier state that has one.
std::optional<std::size_t> FindStateRecord(const IncrStateMap& map, int state);

/// Appends the records as a host gets and deletes them: each leads to all that it builds upon. 1 with nothing appended
/// where that takes more than 64 MiB, as in a file of thousands of states that all build upon each other.
[[nodiscard]] int HandOverRecords(const IncrStateMap& map, std::vector<ORVIncrStateMap*>& list);

}  // namespace orvio
