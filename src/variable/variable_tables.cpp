// Sizes of a variable's tables.

#include "variable/variable_tables.h"

#include <algorithm>
#include <cmath>

namespace orvio {
namespace {

constexpr double kMostMapValues = 2147483648.0;

}  // namespace

std::uint64_t ComponentsOf(const ORVVariable& variable) {
  return variable.m_ncoo < 0 ? 0 : static_cast<std::uint64_t>(variable.m_ncoo);
}

std::uint64_t LabelBytesOf(const ORVVariable& variable) {
  return variable.m_subslen < 0 ? 0 : static_cast<std::uint64_t>(variable.m_subslen);
}

std::optional<MapShape> PossibleMapShapeOf(const ORVVariable& variable) {
  if (variable.m_rank < 0 || variable.m_rank > 15 || variable.m_ndim < 0) return std::nullopt;
  // In double precision: rank 0 gives one entry a component even where the extent is 0.
  const double entries = std::pow(static_cast<double>(variable.m_ndim), static_cast<double>(variable.m_rank));
  const double values = std::trunc(entries * static_cast<double>(variable.m_ncoo));
  if (!(values >= 1 && values <= kMostMapValues)) return std::nullopt;
  MapShape shape;
  shape.rank = static_cast<int>(variable.m_rank) + 1;
  shape.dims[0] = ComponentsOf(variable);
  std::fill_n(shape.dims + 1, variable.m_rank, static_cast<hsize_t>(variable.m_ndim));
  shape.count = static_cast<std::uint64_t>(values);
  return shape;
}

std::optional<MapShape> MapShapeOf(const ORVVariable& variable) {
  return variable.m_lvmap != 0 ? PossibleMapShapeOf(variable) : std::nullopt;
}

std::uint64_t SumOfCounts(const int* counts, std::uint64_t components) {
  std::uint64_t sum = 0;
  for (std::uint64_t i = 0; counts && i < components; ++i) sum += static_cast<std::uint64_t>(std::max(counts[i], 0));
  return sum;
}

bool FitUnitTables(const int* counts, std::uint64_t components) {
  if (std::any_of(counts, counts + components, [](int count) { return count < 0; })) return false;
  return SumOfCounts(counts, components) <= kUnitsPerComponent * components;
}

_ORVDataType CellType(_ORVDataType type) {
  if (type == ORV_LONG) return ORV_INT;
  return type == ORV_DOUBLE ? ORV_FLOAT : type;
}

}  // namespace orvio
