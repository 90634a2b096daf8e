// The test of values before the scale-offset filter gets them.

#include "h5/scale_offset.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>

#include "h5/handle.h"

namespace orvio::h5 {
namespace {

/// How the filter works on a dataset: on its stored type, which need not be that of the values to be written.
struct Filter {
  bool floats;
  size_t width;  ///< bytes of a stored element
  int digits;    ///< decimal ones that floats keep
  /// Of integers with a fixed number of bits: the widest range that comes back, and the value with a code of its own.
  double range = std::numeric_limits<double>::infinity();
  double fill = std::numeric_limits<double>::quiet_NaN();
};

/// From the least to the most of the values, without those that equal `fill`; negative when there are none left.
template <class T>
double RangeWithout(double fill, const T* values, hsize_t count) {
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (hsize_t i = 0; i < count; ++i) {
    const auto value = static_cast<double>(values[i]);
    if (value == fill) continue;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  return high - low;
}

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
  if (static_cast<double>(*high) - static_cast<double>(*low) >= limit) return false;
  return !std::isfinite(filter.range) || RangeWithout(filter.fill, values, count) <= filter.range;
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

/// Other writers fix the bits of an integer; 0 are as many as it takes. The filter cuts what needs more of them and
/// answers success. Where the dataset has a fill value, one of the codes is kept for it.
void HeedFixedBits(hid_t list, int bits, Filter& filter) {
  if (bits < 1 || static_cast<size_t>(bits) >= filter.width * 8) return;
  H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
  std::int64_t fill = 0;
  const bool has_fill = H5Pfill_value_defined(list, &defined) >= 0 && defined != H5D_FILL_VALUE_UNDEFINED &&
                        H5Pget_fill_value(list, H5T_NATIVE_LLONG, &fill) >= 0;
  filter.range = std::ldexp(1.0, bits) - (has_fill ? 2 : 1);
  if (has_fill) filter.fill = static_cast<double>(fill);
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
  const int factor = static_cast<int>(parameters[1]);  // digits of floats, bits of integers
  Filter filter{floats, H5Tget_size(type.get()), factor};
  if (!floats) HeedFixedBits(list.get(), factor, filter);
  return filter;
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
