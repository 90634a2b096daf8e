#pragma once

// The superblock: where everything begins.

#include <cstdint>

#include "structure/small_messages.h"
#include "structure/walk.h"

namespace orvio::structure {

struct Superblock {
  std::uint64_t root = kUndefined;       ///< object header of the root group
  std::uint64_t extension = kUndefined;  ///< object header with messages about the file
  GroupNote root_note;                   ///< what the superblock remembers of the root group
};

/// Finds and parses the superblock, and sets the address space and the tree ranks of the walk.
[[nodiscard]] bool ReadSuperblock(Walk& walk, Superblock& superblock);

}  // namespace orvio::structure
