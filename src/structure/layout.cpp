// Versions 1 to 4 of the layout message.

#include "structure/layout.h"

namespace orvio::structure {
namespace {

constexpr Verdict kCutShort = "layout message is cut short";
constexpr std::uint64_t kChunkLimit = std::uint64_t{1} << 32;

enum Class : unsigned { kCompactClass, kContiguousClass, kChunkedClass, kVirtualClass };

Verdict SetKind(unsigned layout_class, Layout& layout) {
  switch (layout_class) {
    case kCompactClass:
      layout.kind = Layout::Kind::kCompact;
      return nullptr;
    case kContiguousClass:
      layout.kind = Layout::Kind::kContiguous;
      return nullptr;
    case kChunkedClass:
      layout.kind = Layout::Kind::kChunked;
      return nullptr;
    case kVirtualClass:
      return "dataset takes its values from other files";
    default:
      return "layout is of an unknown class";
  }
}

/// `dimensions` extents of `width` bytes, the last of which is the size of an element.
Verdict ParseChunk(Cursor& in, unsigned dimensions, unsigned width, Layout& layout) {
  if (!in.ok()) return kCutShort;
  if (dimensions < 2 || dimensions > kMaxRank + 1) return "chunks have an impossible number of dimensions";
  layout.rank = static_cast<std::uint8_t>(dimensions - 1);
  layout.chunk_elements = 1;
  for (unsigned i = 0; i < layout.rank; ++i) {
    layout.chunk[i] = in.Number(width);
    if (in.ok() && layout.chunk[i] == 0) return "chunks have an extent of zero";
    if (!Multiply(layout.chunk_elements, layout.chunk[i], layout.chunk_elements)) return "chunks are too large";
  }
  layout.element_size = in.Number(width);
  if (!in.ok()) return kCutShort;
  const bool fits = Multiply(layout.chunk_elements, layout.element_size, layout.chunk_bytes);
  return fits && layout.chunk_bytes < kChunkLimit ? nullptr : "chunks are too large";
}

void ParseCompact(Cursor& in, std::uint64_t size, Layout& layout) {
  layout.size = size;
  layout.compact_at = static_cast<std::uint32_t>(in.taken());
  in.Skip(size);
}

Verdict ParseOld(Cursor& in, Layout& layout) {
  const unsigned dimensions = in.U8();
  const unsigned layout_class = in.U8();
  in.Skip(5);
  if (!in.ok()) return kCutShort;
  if (const Verdict bad = SetKind(layout_class, layout)) return bad;
  if (layout.kind != Layout::Kind::kCompact) layout.address = in.Address();
  if (layout.kind == Layout::Kind::kChunked) return ParseChunk(in, dimensions, 4, layout);
  in.Skip(std::uint64_t{4} * dimensions);
  if (layout.kind == Layout::Kind::kCompact) ParseCompact(in, in.U32(), layout);
  return nullptr;
}

Verdict ParseIndexValues(Cursor& in, unsigned index, Layout& layout) {
  layout.index = static_cast<ChunkIndex>(index);
  unsigned values = 0;
  switch (layout.index) {
    case ChunkIndex::kSingle:
      if (!layout.single_filtered) return nullptr;
      layout.single_size = in.Length();
      layout.single_mask = in.U32();
      return nullptr;
    case ChunkIndex::kImplicit:
      return nullptr;
    case ChunkIndex::kFixedArray:
      values = 1;
      break;
    case ChunkIndex::kExtensibleArray:
      values = 5;
      break;
    case ChunkIndex::kTree2:
      layout.node_size = in.U32();
      in.Skip(2);
      return nullptr;
    default:
      return "chunks have an unknown kind of index";
  }
  for (unsigned i = 0; i < values; ++i) layout.index_values[i] = in.U8();
  return nullptr;
}

Verdict ParseChunked4(Cursor& in, Layout& layout) {
  constexpr unsigned kWholeEdges = 1;
  constexpr unsigned kSingleFiltered = 2;
  const unsigned flags = in.U8();
  const unsigned dimensions = in.U8();
  const unsigned width = in.U8();
  if (flags > (kWholeEdges | kSingleFiltered)) return "layout message has unknown flags";
  if (in.ok() && (width == 0 || width > 8)) return "chunks have extents of an impossible width";
  layout.whole_edges = (flags & kWholeEdges) != 0;
  layout.single_filtered = (flags & kSingleFiltered) != 0;
  if (const Verdict bad = ParseChunk(in, dimensions, width, layout)) return bad;
  if (const Verdict bad = ParseIndexValues(in, in.U8(), layout)) return bad;
  layout.address = in.Address();
  return nullptr;
}

Verdict ParseChunked3(Cursor& in, Layout& layout) {
  const unsigned dimensions = in.U8();
  layout.address = in.Address();
  return ParseChunk(in, dimensions, 4, layout);
}

Verdict ParseNew(Cursor& in, Layout& layout) {
  const unsigned layout_class = in.U8();
  if (!in.ok()) return kCutShort;
  if (const Verdict bad = SetKind(layout_class, layout)) return bad;
  if (layout.kind == Layout::Kind::kChunked) {
    return layout.version == 4 ? ParseChunked4(in, layout) : ParseChunked3(in, layout);
  }
  if (layout.kind == Layout::Kind::kCompact) {
    ParseCompact(in, in.U16(), layout);
  } else {
    layout.address = in.Address();
    layout.size = in.Length();
  }
  return nullptr;
}

}  // namespace

Verdict ParseLayout(Cursor in, Layout& layout) {
  layout.version = in.U8();
  if (!in.ok()) return kCutShort;
  if (layout.version < 1 || layout.version > 4) return "layout message has an unknown version";
  const Verdict bad = layout.version < 3 ? ParseOld(in, layout) : ParseNew(in, layout);
  if (bad) return bad;
  return in.ok() ? nullptr : kCutShort;
}

}  // namespace orvio::structure
