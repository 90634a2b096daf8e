#pragma once

// Selective reads of a result block that need no file.

#include "orvio/orv_result.h"

namespace orvio {

/// Whether a selective read of an item came from memory, with all that the read of the file does: ids beside values,
/// which become one number for each pair where that is asked for. If not, the file has to be read.
[[nodiscard]] bool ReadFromCache(ORVResult& block, int state, _ORVBlockAtt att, int rank, std::uint64_t* start,
                                 std::uint64_t* count, bool via_cache);

}  // namespace orvio
