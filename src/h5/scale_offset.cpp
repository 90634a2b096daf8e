// The test of values before the scale-offset filter gets them.

#include "h5/scale_offset.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>

#include "h5/handle.h"

namespace orvio::h5 {
namespace {

/// How the filter works on a dataset: on its stored type, which need not be that of the values to be written.
struct Filter {
  bool floats;
  size_t width;  ///< bytes of a stored element
  int digits;    ///< decimal ones that floats keep
};

/// The filter scales in the stored type's own precision and stores offsets from the minimum. Both the scaled values
/// and their range must stay well inside the integer of the same width.
template <class T>
bool Keeps(const T* values, hsize_t count, const Filter& filter) {
  const auto all = [&](auto fits) {
    return std::all_of(values, values + count, [&](T value) { return fits(static_cast<double>(value)); });
  };
  if (count == 0) return true;
  if (!all([](double value) { return std::isfinite(value); })) return false;
  const double limit = std::ldexp(1.0, static_cast<int>(std::min<size_t>(filter.width, 8) * 8) - 2);
  if (filter.floats) {
    const double scale = std::pow(10.0, filter.digits);
    return std::isfinite(scale) && all([&](double value) { return std::fabs(value) * scale < limit / 2; });
  }
  const auto [low, high] = std::minmax_element(values, values + count);
  return static_cast<double>(*high) - static_cast<double>(*low) < limit;
}

bool KeepsAny(const TypeRow& row, const void* data, hsize_t count, const Filter& filter) {
  switch (row.type) {
    case ORV_FLOAT:
      return Keeps(static_cast<const float*>(data), count, filter);
    case ORV_DOUBLE:
      return Keeps(static_cast<const double*>(data), count, filter);
    case ORV_INT:
      return Keeps(static_cast<const std::int32_t*>(data), count, filter);
    case ORV_LONG:
      return Keeps(static_cast<const std::int64_t*>(data), count, filter);
    default:
      return false;
  }
}

/// The filter of a dataset. Nothing without one, and for the form of it that is not for the stored class: HDF5
/// cannot apply that and stores the values as they are.
std::optional<Filter> FilterOf(hid_t dataset) {
  const PropertyList list(H5Dget_create_plist(dataset));
  const Type type(H5Dget_type(dataset));
  unsigned flags = 0;
  unsigned parameters[20] = {};  // scale type and factor, and what HDF5 keeps for itself
  size_t count = std::size(parameters);
  if (!list || !type ||
      H5Pget_filter_by_id2(list.get(), H5Z_FILTER_SCALEOFFSET, &flags, &count, parameters, 0, nullptr, nullptr) < 0) {
    return std::nullopt;
  }
  const bool floats = H5Tget_class(type.get()) == H5T_FLOAT;
  if (floats == (parameters[0] == H5Z_SO_INT)) return std::nullopt;
  return Filter{floats, H5Tget_size(type.get()), static_cast<int>(parameters[1])};
}

}  // namespace

bool ScaleOffsetKeeps(const TypeRow& row, const void* data, hsize_t count, int digits) {
  return KeepsAny(row, data, count, {row.type_class == H5T_FLOAT, row.size, digits});
}

bool StoredFilterKeeps(hid_t dataset, const TypeRow& row, const void* data, hsize_t count) {
  const auto filter = FilterOf(dataset);
  return !filter || KeepsAny(row, data, count, *filter);
}

}  // namespace orvio::h5
