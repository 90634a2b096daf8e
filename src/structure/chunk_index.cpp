// Single chunks, chunks in a row, and chunks found by a B-tree of version 2.

#include "structure/chunk_index.h"

#include "structure/btree_v2.h"
#include "structure/chunk_arrays.h"

namespace orvio::structure {

unsigned ChunkElements::WidthOfSize() const { return std::min(1 + (Log2(rules_.layout.chunk_bytes) + 8) / 8, 8U); }

std::uint64_t ChunkElements::Size(Widths widths) const {
  return widths.offset + (filtered() ? WidthOfSize() + 4U : 0U);
}

Chunk ChunkElements::Parse(Cursor& in) const {
  Chunk chunk;
  chunk.address = in.Address();
  chunk.size = filtered() ? in.Number(WidthOfSize()) : rules_.layout.chunk_bytes;
  chunk.mask = filtered() ? in.U32() : 0;
  return chunk;
}

bool ChunkElements::Check(Walk& walk, std::uint64_t at, std::uint64_t count) const {
  const std::uint64_t size = Size(walk.view.widths());
  for (std::uint64_t i = 0; i < count; ++i, at += size) {
    Cursor in = walk.view.At(at, size);
    const Chunk chunk = Parse(in);
    if (!in.ok()) return walk.Refuse(at, "structure passes the end of the file");
    if (chunk.address != kUndefined && !CheckChunk(walk, at, rules_, chunk)) return false;
  }
  return true;
}

bool CountChunks(const ChunkRules& rules, std::uint64_t& count) {
  count = 1;
  for (unsigned i = 0; i < rules.layout.rank; ++i) {
    const std::uint64_t extent = rules.space.max[i];
    const std::uint64_t chunk = rules.layout.chunk[i];
    const std::uint64_t chunks = extent / chunk + (extent % chunk != 0 ? 1 : 0);
    if (extent == kUndefined || !Multiply(count, chunks, count)) return false;
  }
  return true;
}

namespace {

bool CheckSingle(Walk& walk, const ChunkRules& rules) {
  const Layout& layout = rules.layout;
  std::uint64_t count = 0;
  if (!CountChunks(rules, count) || count != 1) return walk.Refuse(layout.address, "single chunk is not the only one");
  Chunk chunk{layout.address, layout.chunk_bytes, 0};
  if (layout.single_filtered) {
    chunk.size = layout.single_size;
    chunk.mask = layout.single_mask;
  }
  return CheckChunk(walk, layout.address, rules, chunk);
}

bool CheckImplicit(Walk& walk, const ChunkRules& rules) {
  const std::uint64_t address = rules.layout.address;
  std::uint64_t bytes = 0;
  if (rules.pipeline.count > 0) return walk.Refuse(address, "chunks in a row are filtered");
  const bool counted = CountChunks(rules, bytes) && Multiply(bytes, rules.layout.chunk_bytes, bytes);
  return (counted && walk.view.Holds(address, bytes)) || walk.Refuse(address, "chunk passes the end of the file");
}

class ChunkRecords : public RecordVisitor {
 public:
  ChunkRecords(Walk& walk, const ChunkElements& elements) : walk_(walk), elements_(elements) {}

  bool Record(std::uint64_t at, Cursor record) override {
    const ChunkRules& rules = elements_.rules();
    const Chunk chunk = elements_.Parse(record);
    for (unsigned i = 0; i < rules.layout.rank; ++i) {
      const std::uint64_t extent = rules.space.size[i];
      const std::uint64_t number = record.U64();
      if (extent == 0 || number > (extent - 1) / rules.layout.chunk[i]) {
        return walk_.Refuse(at, "chunk begins where none does");
      }
    }
    return CheckChunk(walk_, at, rules, chunk);
  }

 private:
  Walk& walk_;
  const ChunkElements& elements_;
};

bool WalkTree(Walk& walk, const ChunkElements& elements) {
  const Layout& layout = elements.rules().layout;
  ChunkRecords visitor(walk, elements);
  const std::uint8_t type = elements.filtered() ? 11 : 10;
  const Tree2Shape shape{type, elements.Size(walk.view.widths()) + 8U * layout.rank};
  return WalkTree2(walk, layout.address, shape, visitor);
}

}  // namespace

bool WalkChunkIndex(Walk& walk, const ChunkRules& rules) {
  const ChunkElements elements(rules);
  switch (rules.layout.index) {
    case ChunkIndex::kSingle:
      return CheckSingle(walk, rules);
    case ChunkIndex::kImplicit:
      return CheckImplicit(walk, rules);
    case ChunkIndex::kFixedArray:
      return WalkFixedArray(walk, elements, rules.layout.address);
    case ChunkIndex::kExtensibleArray:
      return WalkExtensibleArray(walk, elements, rules.layout.address);
    default:
      return WalkTree(walk, elements);
  }
}

}  // namespace orvio::structure
