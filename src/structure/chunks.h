#pragma once

// Chunks of a dataset: each on its own, and the old B-tree that leads to them.

#include <cstdint>

#include "structure/dataspace.h"
#include "structure/filters.h"
#include "structure/layout.h"
#include "structure/walk.h"

namespace orvio::structure {

/// What every chunk of a dataset has to be like.
struct ChunkRules {
  const Dataspace& space;
  const Layout& layout;
  const Pipeline& pipeline;
  std::uint64_t element_size;
};

struct Chunk {
  std::uint64_t address = kUndefined;
  std::uint64_t size = 0;  ///< bytes in the file
  std::uint32_t mask = 0;  ///< a bit for each filter that was left out
};

/// Checks a chunk that the index entry at `from` leads to.
[[nodiscard]] bool CheckChunk(Walk& walk, std::uint64_t from, const ChunkRules& rules, const Chunk& chunk);

[[nodiscard]] bool WalkChunkTree(Walk& walk, const ChunkRules& rules);

}  // namespace orvio::structure
