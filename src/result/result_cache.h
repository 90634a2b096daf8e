#pragma once

// Selective reads of a result block that need no file.

#include "orvio/orv_result.h"

namespace orvio {

/// Whether a selective read of an item came from memory, values with the ids beside them where ids are asked for and
/// have a destination. If not, the file has to be read: always where pairs are to become one number each.
[[nodiscard]] bool ReadFromCache(ORVResult& block, int state, _ORVBlockAtt att, int rank, std::uint64_t* start,
                                 std::uint64_t* count, bool via_cache);

}  // namespace orvio
