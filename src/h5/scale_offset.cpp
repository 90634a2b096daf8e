// The test of values before the scale-offset filter gets them.

#include "h5/scale_offset.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "h5/handle.h"

namespace orvio::h5 {
namespace {

/// The filter scales in the type's own precision and stores offsets from the minimum. Both the scaled values and
/// their range must stay well inside the integer of the same width.
template <class T>
bool KeepsFloats(const T* values, hsize_t count, int digits) {
  const double limit = sizeof(T) == 4 ? 0x1p30 : 0x1p62;
  const double scale = std::pow(10.0, digits);
  return std::isfinite(scale) && std::all_of(values, values + count, [&](T value) {
           return std::isfinite(value) && std::fabs(static_cast<double>(value)) * scale < limit / 2;
         });
}

template <class T>
bool KeepsIntegers(const T* values, hsize_t count) {
  if (count == 0) return true;
  const auto [low, high] = std::minmax_element(values, values + count);
  T range = 0;
  return !__builtin_sub_overflow(*high, *low, &range) && range < std::numeric_limits<T>::max() / 2;
}

}  // namespace

bool ScaleOffsetKeeps(const TypeRow& row, const void* data, hsize_t count, int digits) {
  switch (row.type) {
    case ORV_FLOAT:
      return KeepsFloats(static_cast<const float*>(data), count, digits);
    case ORV_DOUBLE:
      return KeepsFloats(static_cast<const double*>(data), count, digits);
    case ORV_INT:
      return KeepsIntegers(static_cast<const std::int32_t*>(data), count);
    case ORV_LONG:
      return KeepsIntegers(static_cast<const std::int64_t*>(data), count);
    default:
      return false;
  }
}

bool HasScaleOffset(hid_t dataset) {
  const PropertyList list(H5Dget_create_plist(dataset));
  const int filters = list ? H5Pget_nfilters(list.get()) : 0;
  for (int i = 0; i < filters; ++i) {
    unsigned flags = 0;
    size_t values = 0;
    const H5Z_filter_t id =
        H5Pget_filter2(list.get(), static_cast<unsigned>(i), &flags, &values, nullptr, 0, nullptr, nullptr);
    if (id == H5Z_FILTER_SCALEOFFSET) return true;
  }
  return false;
}

}  // namespace orvio::h5
