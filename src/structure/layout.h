#pragma once

// The layout message: where the values of a dataset are.

#include <array>
#include <cstdint>

#include "structure/cursor.h"
#include "structure/dataspace.h"

namespace orvio::structure {

/// How the chunks of a dataset are found.
enum class ChunkIndex : std::uint8_t {
  kTree1,  ///< the old B-tree, of all versions below 4
  kSingle,
  kImplicit,
  kFixedArray,
  kExtensibleArray,
  kTree2,
};

struct Layout {
  enum class Kind : std::uint8_t { kNone, kCompact, kContiguous, kChunked };

  Kind kind = Kind::kNone;
  std::uint8_t version = 0;
  std::uint64_t address = kUndefined;  ///< of the values or the chunk index; kUndefined: nothing is stored yet
  std::uint64_t size = kUndefined;  ///< bytes of compact and contiguous values; kUndefined: older versions do not tell
  std::uint32_t compact_at = 0;     ///< where in the message compact values begin

  ChunkIndex index = ChunkIndex::kTree1;
  std::uint8_t rank = 0;                      ///< of chunks, without the dimension for the element size
  std::array<std::uint64_t, kMaxRank> chunk;  ///< elements; the first `rank` are set
  std::uint64_t element_size = 0;             ///< as the chunks have it
  std::uint64_t chunk_elements = 0;
  std::uint64_t chunk_bytes = 0;  ///< before filters, above 0 and below 4 GiB
  bool whole_edges = false;       ///< chunks that stick out of the dataset are not filtered
  bool single_filtered = false;   ///< the single chunk has a size and a mask of its own
  std::uint64_t single_size = 0;
  std::uint32_t single_mask = 0;
  std::array<std::uint8_t, 5> index_values{};  ///< creation parameters of arrays, in the order of the format
  std::uint32_t node_size = 0;                 ///< of B-trees of version 2
};

[[nodiscard]] Verdict ParseLayout(Cursor in, Layout& layout);

}  // namespace orvio::structure
