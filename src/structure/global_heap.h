#pragma once

// Global heaps: where values without a fixed length are.

#include <cstdint>

#include "structure/datatype.h"
#include "structure/walk.h"

namespace orvio::structure {

/// Checks where `count` values of variable length that begin at `address` are. Other types have nothing to check: types
/// that have a part of variable length are never read as a whole, so nobody follows their references.
[[nodiscard]] bool CheckReferences(Walk& walk, std::uint64_t address, std::uint64_t count, const Datatype& type);

}  // namespace orvio::structure
