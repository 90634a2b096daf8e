#pragma once

// Copies of a part of an array in memory.

#include <cstdint>

namespace orvio {

/// Copies the selected part of `source`, an array of those extents with the slowest axis first, to the front of `out`.
/// False, with `out` left alone, for null arguments, a rank outside 1 to 6, and a selection that is empty or reaches
/// beyond the extents.
[[nodiscard]] bool CopySelection(int rank, const std::uint64_t* start, const std::uint64_t* count, float* out,
                                 const std::uint64_t* extents, const float* source);

}  // namespace orvio
