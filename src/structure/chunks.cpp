// Chunks. What a filter has made of their values shows only in their size, and in the header that the scale-offset
// filter puts in front: it tells the decoder how many bits to take from bytes that may not be there.

#include "structure/chunks.h"

#include "structure/btree_v1.h"

namespace orvio::structure {
namespace {

/// What is known of a chunk's size from the filters that were applied to it.
struct Expected {
  bool exact = true;
  std::uint64_t size = 0;
  std::uint16_t last = 0;  ///< the filter whose output is in the file; 0: none
};

Expected ExpectedOf(const ChunkRules& rules, std::uint32_t mask) {
  Expected expected{true, rules.layout.chunk_bytes, 0};
  for (unsigned i = 0; i < rules.pipeline.count; ++i) {
    const Filter& filter = rules.pipeline.filters[i];
    if ((mask >> i & 1U) != 0) continue;
    if (filter.id == kScaleOffset && KeepsAllBits(filter, rules.element_size)) continue;
    expected.last = filter.id;
    if (expected.last == kFletcher32) expected.size += 4;
    if (expected.last != kFletcher32 && expected.last != kShuffle) expected.exact = false;
  }
  return expected;
}

bool CheckScaleOffset(Walk& walk, const ChunkRules& rules, const Chunk& chunk) {
  constexpr std::uint64_t kHead = 21;
  Cursor in = walk.view.At(chunk.address, 4);
  const std::uint64_t bits = in.U32();
  const bool known = in.ok() && chunk.size >= kHead && bits <= 8 * rules.element_size;
  if (!known) return walk.Refuse(chunk.address, "scale-offset chunk is not sound");
  const std::uint64_t packed = (rules.layout.chunk_elements * bits + 7) / 8;
  return packed <= chunk.size - kHead || walk.Refuse(chunk.address, "scale-offset chunk is cut short");
}

}  // namespace

bool CheckChunk(Walk& walk, std::uint64_t from, const ChunkRules& rules, const Chunk& chunk) {
  if (!walk.view.Holds(chunk.address, chunk.size)) return walk.Refuse(from, "chunk passes the end of the file");
  const Expected expected = ExpectedOf(rules, chunk.mask);
  // Chunks that stick out of the dataset may have been spared the filters.
  if (rules.layout.whole_edges && chunk.size == rules.layout.chunk_bytes) return true;
  if (expected.exact ? chunk.size != expected.size : chunk.size == 0) {
    return walk.Refuse(from, "chunk has a wrong size");
  }
  if (expected.last == kFletcher32 && chunk.size < 4) return walk.Refuse(from, "chunk has no room for its checksum");
  return expected.last != kScaleOffset || CheckScaleOffset(walk, rules, chunk);
}

namespace {

class ChunkVisitor : public TreeVisitor {
 public:
  ChunkVisitor(Walk& walk, const ChunkRules& rules) : walk_(walk), rules_(rules) {}

  bool Key(std::uint64_t /*at*/, Cursor /*key*/, unsigned /*level*/, bool /*is_last*/) override { return true; }

  bool Leaf(std::uint64_t at, Cursor key, std::uint64_t child) override {
    Chunk chunk;
    chunk.address = child;
    chunk.size = key.U32();
    chunk.mask = key.U32();
    for (unsigned i = 0; i < rules_.layout.rank; ++i) {
      const std::uint64_t offset = key.U64();
      if (offset % rules_.layout.chunk[i] != 0 || offset >= rules_.space.size[i]) {
        return walk_.Refuse(at, "chunk begins where none does");
      }
    }
    if (key.U64() != 0 || !key.ok()) return walk_.Refuse(at, "chunk begins where none does");
    return CheckChunk(walk_, at, rules_, chunk);
  }

 private:
  Walk& walk_;
  const ChunkRules& rules_;
};

}  // namespace

bool WalkChunkTree(Walk& walk, const ChunkRules& rules) {
  ChunkVisitor visitor(walk, rules);
  const TreeShape shape{1, 8 + 8 * (std::uint64_t{rules.layout.rank} + 1), 2U * walk.ranks.chunk_node};
  return WalkTree1(walk, rules.layout.address, shape, visitor);
}

}  // namespace orvio::structure
