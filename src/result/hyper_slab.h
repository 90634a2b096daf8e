#pragma once

// What the library's own code does with a selection record.

#include "orvio/orv_result.h"

namespace orvio {

inline constexpr int kSlabRank = 8;  // entries of its arrays

/// Sets the two pointers into the slab's own arrays.
void PointAtOwnArrays(ORVHyperSlab& slab);

/// Number of values that a slab selects. 0 for one that is not complete and for a number beyond 64 bits.
std::uint64_t CountOf(const ORVHyperSlab& slab);

}  // namespace orvio
