#pragma once

// The newer ways to find the chunks of a dataset.

#include "structure/chunks.h"

namespace orvio::structure {

/// What an index tells about one chunk: where it is, and with filters its size and the filters that were left out.
class ChunkElements {
 public:
  explicit ChunkElements(const ChunkRules& rules) : rules_(rules) {}

  const ChunkRules& rules() const { return rules_; }
  bool filtered() const { return rules_.pipeline.count > 0; }
  std::uint64_t Size(Widths widths) const;
  /// Parses an element.
  Chunk Parse(Cursor& in) const;
  /// Checks `count` elements in a row. One without an address is of a chunk that was never written.
  [[nodiscard]] bool Check(Walk& walk, std::uint64_t at, std::uint64_t count) const;

 private:
  unsigned WidthOfSize() const;

  const ChunkRules& rules_;
};

/// Chunks that fit into the largest extents of the dataset. False when there is no end to them.
[[nodiscard]] bool CountChunks(const ChunkRules& rules, std::uint64_t& count);

/// Walks an index of any kind but the old B-tree.
[[nodiscard]] bool WalkChunkIndex(Walk& walk, const ChunkRules& rules);

}  // namespace orvio::structure
