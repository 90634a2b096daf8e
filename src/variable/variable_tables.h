#pragma once

// Sizes of a variable's tables, and how its counts and labels select from them.

#include <hdf5.h>

#include <cstdint>
#include <optional>

#include "orvio/orv_variable.h"

namespace orvio {

/// Entries that the unit tables have room for, for each component.
inline constexpr std::uint64_t kUnitsPerComponent = 7;

/// Components of a value; 0 for a negative count, which only a damaged file has.
std::uint64_t ComponentsOf(const ORVVariable& variable);

/// Bytes of the packed labels; 0 for a negative count.
std::uint64_t LabelBytesOf(const ORVVariable& variable);

/// Shape of `vmap`: the components, then `ndim` for each rank.
struct MapShape {
  int rank = 0;
  hsize_t dims[16] = {};
  std::uint64_t count = 0;
};

/// Nothing for a shape that no file can mean: a rank outside 0 to 15, a negative extent, or a count outside 1 to 2^31.
std::optional<MapShape> PossibleMapShapeOf(const ORVVariable& variable);

/// The same, and nothing when the variable says that it has no `vmap`.
std::optional<MapShape> MapShapeOf(const ORVVariable& variable);

/// Sum of the first `components` counts; a negative one counts as 0, as does a missing table.
std::uint64_t SumOfCounts(const int* counts, std::uint64_t components);

/// Whether the counts are those of unit tables that fit their fixed room: none is negative, and the sum is within
/// seven entries a component.
bool FitUnitTables(const int* counts, std::uint64_t components);

/// The element type of a table for reading and writing it. The tables are ints and floats of 4 bytes, whatever the
/// width in the file: a probe of the file that found a wider type must not make a read overrun.
_ORVDataType CellType(_ORVDataType type);

}  // namespace orvio
