// The arithmetic of hyperslabs over chunks.

#include "h5/scale_offset_slab.h"

namespace orvio::h5 {
namespace {

/// Nothing for a selection that is empty, passes the extent or overlaps itself. Blocks that touch become one.
std::optional<SlabAxis> AxisOf(hsize_t extent, hsize_t chunk, SlabAxis axis) {
  axis.chunk = chunk;
  if (chunk < 1 || axis.count < 1 || axis.block < 1 || axis.stride < 1) return std::nullopt;
  if (axis.count > 1 && axis.stride < axis.block) return std::nullopt;
  hsize_t last = 0;
  if (__builtin_mul_overflow(axis.count - 1, axis.stride, &last) || __builtin_add_overflow(last, axis.block, &last) ||
      __builtin_add_overflow(last, axis.start, &last) || last > extent) {
    return std::nullopt;
  }
  if (axis.count == 1 || axis.stride == axis.block) {
    axis.block *= axis.count;  // cannot wrap: it ends in the extent
    axis.count = 1;
    axis.stride = axis.block;
  }
  return axis;
}

}  // namespace

hsize_t SlabAxis::Before(hsize_t position) const {
  if (position <= start) return 0;
  const hsize_t blocks = (position - start) / stride;
  const hsize_t rest = (position - start) % stride;
  return blocks >= count ? Size() : blocks * block + std::min(rest, block);
}

std::optional<ChunkedSlab> ChunkedSlab::Make(const Extents& stored, const hsize_t* chunk, const Slab* slab) {
  ChunkedSlab made;
  made.rank_ = stored.rank;
  if (stored.rank < 1) return std::nullopt;
  std::copy_n(stored.dims, stored.rank, made.dims_);
  hsize_t sizes[H5S_MAX_RANK] = {};
  for (int i = 0; i < stored.rank; ++i) {
    SlabAxis wanted{0, 1, 1, stored.dims[i]};
    if (slab) {
      wanted = {slab->start[i], slab->count[i], slab->stride ? slab->stride[i] : 1, slab->block ? slab->block[i] : 1};
    }
    const auto axis = AxisOf(stored.dims[i], chunk[i], wanted);
    if (!axis) return std::nullopt;
    made.axes_[i] = *axis;
    sizes[i] = axis->Size();
  }
  if (!Product(stored.rank, sizes)) return std::nullopt;
  return made;
}

void ChunkedSlab::CutPiece(int axis, hsize_t from, SlabPiece& piece) const {
  const SlabAxis& along = axes_[axis];
  const hsize_t index = along.Position(from) / along.chunk;
  hsize_t end = 0;
  const bool wraps = __builtin_mul_overflow(index + 1, along.chunk, &end);
  piece.from[axis] = from;
  piece.to[axis] = wraps ? along.Size() : along.Before(end);
  piece.chunk[axis] = index * along.chunk;
}

SlabPiece ChunkedSlab::FirstPiece() const {
  SlabPiece piece;
  for (int i = 0; i < rank_; ++i) CutPiece(i, 0, piece);
  return piece;
}

bool ChunkedSlab::NextPiece(SlabPiece& piece) const {
  for (int i = rank_ - 1; i >= 0; --i) {
    const bool ended = piece.to[i] == axes_[i].Size();
    CutPiece(i, ended ? 0 : piece.to[i], piece);
    if (!ended) return true;
  }
  return false;
}

bool ChunkedSlab::Touches(const hsize_t* chunk) const {
  for (int i = 0; i < rank_; ++i) {
    hsize_t end = 0;
    if (__builtin_add_overflow(chunk[i], axes_[i].chunk, &end)) end = HSIZE_UNDEF;
    if (axes_[i].Before(chunk[i]) == axes_[i].Before(end)) return false;
  }
  return true;
}

bool ChunkedSlab::IsCut(const SlabPiece& piece) const {
  for (int i = 0; i < rank_; ++i) {
    if (dims_[i] - piece.chunk[i] < axes_[i].chunk) return true;
  }
  return false;
}

hsize_t ChunkedSlab::EndOf(const SlabPiece& piece) const {
  hsize_t last[H5S_MAX_RANK];
  for (int i = 0; i < rank_; ++i) last[i] = piece.to[i] - 1;
  return ElementOfChunk(piece, last) + 1;
}

int ChunkedSlab::InnerAxis(const SlabPiece& piece) const {
  int inner = rank_ - 1;
  for (; inner > 0; --inner) {
    const SlabAxis& axis = axes_[inner];
    const bool all = axis.count == 1 && piece.to[inner] - piece.from[inner] == axis.chunk && axis.Size() == axis.chunk;
    if (!all) break;
  }
  return inner;
}

}  // namespace orvio::h5
