#pragma once

// The kinds of result blocks. What a kind is follows from the axes of its dataset `res`; its type group stands in the
// table of block keys.

#include <span>

#include "orvio/orv_result.h"

namespace orvio {

inline constexpr std::uint64_t kComplexParts = 2;  // extent of the complex axis: real, imaginary

/// One row per kind that ORVResult serves. Nothing else lists them.
struct ResultKind {
  std::int64_t key;
  const char* blocktype;  ///< word of the attribute; null for properties
  int rank;
  _ORVDimensionType axes[5];  ///< of `res`, slowest first

  std::span<const _ORVDimensionType> Axes() const { return {axes, static_cast<std::size_t>(rank)}; }
  /// Position of an axis, -1 when the kind has no such axis.
  int PositionOf(_ORVDimensionType axis) const;

  bool IsProperties() const { return !blocktype; }
  bool IsElement() const { return PositionOf(ORV_DIM_LAYER) >= 0; }
  bool IsEntity() const { return !IsProperties() && !IsElement(); }
  bool IsMultistate() const { return PositionOf(ORV_DIM_STATE) >= 0; }
  bool IsSinglestate() const { return !IsProperties() && !IsMultistate(); }
  bool IsComplex() const { return PositionOf(ORV_DIM_COMPLEX) >= 0; }
};

/// Null for a key that is none of a result or properties block.
const ResultKind* FindResultKind(std::int64_t key);

/// What a block's header says of the length of an axis. A negative count of a damaged header becomes a huge one, which
/// no dataset has.
std::uint64_t ExtentOf(const ORVResult& block, _ORVDimensionType axis);

// Names on disk that differ between entity and element kinds. Properties go with the entities.

const char* TypeName(const ResultKind& kind);   ///< `etyp` or `etypelem`
const char* CountName(const ResultKind& kind);  ///< `nent` or `nele`
const char* IdName(const ResultKind& kind);     ///< `entid` or `idele`

}  // namespace orvio
