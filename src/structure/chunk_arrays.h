#pragma once

// Chunks that are found in arrays.

#include "structure/chunk_index.h"

namespace orvio::structure {

[[nodiscard]] bool WalkFixedArray(Walk& walk, const ChunkElements& elements, std::uint64_t header);
[[nodiscard]] bool WalkExtensibleArray(Walk& walk, const ChunkElements& elements, std::uint64_t header);

}  // namespace orvio::structure
