#pragma once

// The free space of a fractal heap.

#include <cstdint>

#include "structure/walk.h"

namespace orvio::structure {

[[nodiscard]] bool CheckFreeSpace(Walk& walk, std::uint64_t header);

}  // namespace orvio::structure
