#pragma once

// Which elements of which chunks a hyperslab takes, and where they go. Only arithmetic.

#include <hdf5.h>

#include <algorithm>
#include <optional>

#include "h5/extents.h"

namespace orvio::h5 {

/// A selection as H5Sselect_hyperslab takes it. A null stride or block stands for ones.
struct Slab {
  const hsize_t* start;
  const hsize_t* count;
  const hsize_t* stride;
  const hsize_t* block;
};

/// The selection along one dimension: `count` blocks that do not touch, or one.
struct SlabAxis {
  hsize_t start = 0;
  hsize_t count = 1;
  hsize_t stride = 1;
  hsize_t block = 1;
  hsize_t chunk = 1;  ///< extent of a chunk

  hsize_t Size() const { return count * block; }
  /// Where the n-th selected element is. Asked for every row of a selection, so the usual ones do without divisions.
  hsize_t Position(hsize_t n) const {
    if (count == 1) return start + n;
    return block == 1 ? start + n * stride : start + n / block * stride + n % block;
  }
  /// How many selected elements are before a position.
  hsize_t Before(hsize_t position) const;
  /// How many elements follow each other from the n-th on, that one included.
  hsize_t RunFrom(hsize_t n) const { return count == 1 ? block - n : block - n % block; }
};

/// The part of a selection that one chunk holds: along each dimension the selected elements from `from` up to `to`.
struct SlabPiece {
  hsize_t from[H5S_MAX_RANK];
  hsize_t to[H5S_MAX_RANK];
  hsize_t chunk[H5S_MAX_RANK];  ///< position of the chunk's first element
};

/// A selection in a chunked dataset.
class ChunkedSlab {
 public:
  /// Null `slab`: all of the dataset. Nothing when HDF5 would not take the selection either.
  static std::optional<ChunkedSlab> Make(const Extents& stored, const hsize_t* chunk, const Slab* slab);

  SlabPiece FirstPiece() const;
  bool NextPiece(SlabPiece& piece) const;
  /// Whether the chunk at a position holds some of the selection.
  bool Touches(const hsize_t* chunk) const;
  /// Whether a chunk reaches over the end of the dataset.
  bool IsCut(const SlabPiece& piece) const;
  /// One past the last selected element of the piece's chunk.
  hsize_t EndOf(const SlabPiece& piece) const;

  /// Calls `visit(element of the chunk, element of the selection, length)` for all that lies in one piece in a row,
  /// upwards, until it answers false.
  template <class Visit>
  bool ForEachRun(const SlabPiece& piece, Visit visit) const {
    const int inner = InnerAxis(piece);
    const hsize_t width = Below(inner, [](const SlabAxis& axis) { return axis.chunk; });
    hsize_t at[H5S_MAX_RANK];
    std::copy_n(piece.from, rank_, at);
    do {
      for (hsize_t n = piece.from[inner]; n < piece.to[inner];) {
        at[inner] = n;
        const hsize_t length = std::min(axes_[inner].RunFrom(n), piece.to[inner] - n);
        if (!visit(ElementOfChunk(piece, at), ElementOfSelection(at), length * width)) return false;
        n += length;
      }
    } while (NextRow(piece, inner, at));
    return true;
  }

 private:
  /// Ends a piece along one axis where the chunk of its first element ends.
  void CutPiece(int axis, hsize_t from, SlabPiece& piece) const;
  /// The axis along which runs go: below it the piece is all of the chunk and all of the selection.
  int InnerAxis(const SlabPiece& piece) const;

  // Asked for every row of a selection, which may have one element.
  bool NextRow(const SlabPiece& piece, int inner, hsize_t* at) const {
    for (int i = inner - 1; i >= 0; --i) {
      if (++at[i] < piece.to[i]) return true;
      at[i] = piece.from[i];
    }
    return false;
  }
  hsize_t ElementOfChunk(const SlabPiece& piece, const hsize_t* at) const {
    hsize_t element = 0;
    for (int i = 0; i < rank_; ++i) element = element * axes_[i].chunk + (axes_[i].Position(at[i]) - piece.chunk[i]);
    return element;
  }
  hsize_t ElementOfSelection(const hsize_t* at) const {
    hsize_t element = 0;
    for (int i = 0; i < rank_; ++i) element = element * axes_[i].Size() + at[i];
    return element;
  }

  template <class Extent>
  hsize_t Below(int axis, Extent extent) const {
    hsize_t product = 1;
    for (int i = axis + 1; i < rank_; ++i) product *= extent(axes_[i]);
    return product;
  }

  int rank_ = 0;
  SlabAxis axes_[H5S_MAX_RANK];
  hsize_t dims_[H5S_MAX_RANK] = {};
};

}  // namespace orvio::h5
