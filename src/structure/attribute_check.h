#pragma once

// The walk into attributes and committed types.

#include <cstdint>

#include "structure/datatype.h"
#include "structure/walk.h"

namespace orvio::structure {

/// Checks the attribute message of `size` bytes at `address`.
[[nodiscard]] bool CheckAttribute(Walk& walk, std::uint64_t address, std::uint64_t size);

/// Reads the type of the object at `address`, to which the message at `from` refers.
[[nodiscard]] bool ReadCommittedType(Walk& walk, std::uint64_t from, std::uint64_t address, Datatype& type);

}  // namespace orvio::structure
