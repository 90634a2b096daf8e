// Datasets: values in the object header, in one piece, or in chunks.

#include "structure/dataset.h"

#include "structure/chunk_index.h"
#include "structure/chunks.h"
#include "structure/global_heap.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kFewReferences = 64 * 1024;  ///< bytes; nobody reads datasets of variable length

bool CheckCompact(Walk& walk, const Object& object, std::uint64_t bytes) {
  if (object.layout.size < bytes) return walk.Refuse(object.values, "compact values are cut short");
  if (bytes > kFewReferences) return true;
  return CheckReferences(walk, object.values, object.space.points, object.type);
}

bool CheckContiguous(Walk& walk, const Object& object, std::uint64_t bytes) {
  const Layout& layout = object.layout;
  if (layout.size != kUndefined && layout.size != bytes) {
    return walk.Refuse(object.address, "values are not of the size that the dataspace tells");
  }
  if (layout.address == kUndefined || bytes == 0) return true;
  if (!walk.view.Holds(layout.address, bytes)) return walk.Refuse(object.address, "values pass the end of the file");
  if (object.type.type_class != TypeClass::kVariable || bytes > kFewReferences) return true;
  return walk.Spend(layout.address, bytes) && CheckReferences(walk, layout.address, object.space.points, object.type);
}

bool CheckChunked(Walk& walk, const Object& object) {
  const Layout& layout = object.layout;
  if (layout.rank != object.space.rank) {
    return walk.Refuse(object.address, "chunks and dataspace are of different rank");
  }
  if (layout.element_size != object.type.size) {
    return walk.Refuse(object.address, "chunks hold elements of another size than the type's");
  }
  if (!walk.Accept(object.address, JudgePipeline(object.pipeline, object.type, layout.chunk_elements))) return false;
  if (layout.address == kUndefined) return true;
  const ChunkRules rules{object.space, layout, object.pipeline, object.type.size};
  return layout.index == ChunkIndex::kTree1 ? WalkChunkTree(walk, rules) : WalkChunkIndex(walk, rules);
}

bool CheckFill(Walk& walk, const Object& object) {
  if (object.fill.size == 0) return true;
  if (object.fill.size != object.type.size) {
    return walk.Refuse(object.address, "fill value is not of the type's size");
  }
  return CheckReferences(walk, object.fill_at, 1, object.type);
}

}  // namespace

bool CheckDataset(Walk& walk, const Object& object) {
  if (!object.Has(MessageType::kDataspace) || !object.Has(MessageType::kDatatype)) {
    return walk.Refuse(object.address, "dataset has no dataspace or no type");
  }
  std::uint64_t bytes = 0;
  if (!Multiply(object.space.points, object.type.size, bytes)) {
    return walk.Refuse(object.address, "dataset has more bytes than can be counted");
  }
  if (!CheckFill(walk, object)) return false;
  switch (object.layout.kind) {
    case Layout::Kind::kCompact:
      return CheckCompact(walk, object, bytes);
    case Layout::Kind::kContiguous:
      return CheckContiguous(walk, object, bytes);
    case Layout::Kind::kChunked:
      return CheckChunked(walk, object);
    default:
      return false;
  }
}

}  // namespace orvio::structure
