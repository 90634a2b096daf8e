// The test of values before the scale-offset filter gets them.

#include "h5/scale_offset.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>

#include "h5/handle.h"
#include "h5/scale_offset_read.h"

namespace orvio::h5 {
namespace {

/// How the filter works on a dataset: on its stored type, which need not be that of the values to be written.
struct Filter {
  bool floats;
  size_t width;                          ///< bytes of a stored element
  int factor;                            ///< decimal digits that floats keep; bits of integers, 0: as many as it takes
  std::optional<std::int64_t> fill = 0;  ///< of integers: it has a code of its own
};

/// Integers from the least to the most.
class Range {
 public:
  explicit Range(std::optional<std::int64_t> fill) : fill_(fill) {}

  template <class T>
  void Take(const T* values, hsize_t count) {
    for (hsize_t i = 0; i < count; ++i) {
      const std::int64_t value = values[i];
      if (value == fill_) continue;
      low_ = std::min(low_, value);
      high_ = std::max(high_, value);
    }
  }

  /// Of what was taken and is no fill value.
  std::uint64_t Width() const {
    return low_ > high_ ? 0 : static_cast<std::uint64_t>(high_) - static_cast<std::uint64_t>(low_);
  }

 private:
  std::optional<std::int64_t> fill_;
  std::int64_t low_ = std::numeric_limits<std::int64_t>::max();
  std::int64_t high_ = std::numeric_limits<std::int64_t>::min();
};

/// The widest range of integers that comes back. One bit fewer than the type has is the most that HDF5 packs; wider
/// ranges it stores as they are, and fails to read. With fixed bits it cuts what needs more, and answers success. One
/// code is that of the fill value.
std::uint64_t WidestRange(const Filter& filter) {
  const int all = static_cast<int>(filter.width * 8);
  if (filter.factor >= all) return UINT64_MAX;  // stored as they are, and read so
  const int bits = filter.factor > 0 ? filter.factor : all - 1;
  return (std::uint64_t{1} << bits) - (filter.fill ? 2 : 1);
}

/// The filter scales in the stored type's own precision and stores offsets from the least value. A bound for every
/// single value, with some room for rounding, keeps any range of them well inside the integer of the same width.
template <class T>
bool KeepsFloats(const T* values, hsize_t count, const Filter& filter) {
  const double scale = std::pow(10.0, filter.factor);
  const double most = filter.width == 4 ? std::numeric_limits<float>::max() : std::numeric_limits<double>::max();
  if (!(scale <= most)) return false;
  const double limit = std::ldexp(1.0, static_cast<int>(filter.width * 8) - 3);
  return std::all_of(values, values + count, [&](T value) {  // false for what is no number
    return std::fabs(static_cast<double>(value)) * scale < limit;
  });
}

template <class T>
bool Keeps(const T* values, hsize_t count, const Filter& filter, Range beside) {
  if (count == 0) return true;
  if (filter.width > sizeof(std::int64_t)) return false;
  if constexpr (std::numeric_limits<T>::is_integer) {
    beside.Take(values, count);
    return beside.Width() <= WidestRange(filter);
  } else {
    return KeepsFloats(values, count, filter);
  }
}

bool KeepsAny(const TypeRow& row, const void* data, hsize_t count, const Filter& filter, const Range& beside) {
  if (filter.floats != (row.type_class == H5T_FLOAT)) return false;
  switch (row.type) {
    case ORV_FLOAT:
      return Keeps(static_cast<const float*>(data), count, filter, beside);
    case ORV_DOUBLE:
      return Keeps(static_cast<const double*>(data), count, filter, beside);
    case ORV_INT:
      return Keeps(static_cast<const std::int32_t*>(data), count, filter, beside);
    case ORV_LONG:
      return Keeps(static_cast<const std::int64_t*>(data), count, filter, beside);
    default:
      return false;
  }
}

std::optional<std::int64_t> FillOf(hid_t list) {
  H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
  std::int64_t fill = 0;
  const bool has_fill = H5Pfill_value_defined(list, &defined) >= 0 && defined != H5D_FILL_VALUE_UNDEFINED &&
                        H5Pget_fill_value(list, H5T_NATIVE_LLONG, &fill) >= 0;
  return has_fill ? std::optional(fill) : std::nullopt;
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
  Filter filter{floats, H5Tget_size(type.get()), static_cast<int>(parameters[1])};
  if (!floats) filter.fill = FillOf(list.get());
  return filter;
}

/// Adds the integers that a dataset holds. False when they cannot be read.
bool TakeStored(hid_t dataset, Range& range) {
  const Space space(H5Dget_space(dataset));
  const auto stored = space ? ExtentsOf(space.get()) : std::nullopt;
  if (!stored) return false;
  return VisitScaleOffset(dataset, *stored, *FindNumericType(ORV_LONG), [&](const void* values, hsize_t count) {
           range.Take(static_cast<const std::int64_t*>(values), count);
         }) == Decoded::kDone;
}

}  // namespace

bool ScaleOffsetKeeps(const TypeRow& row, const void* data, hsize_t count, int digits) {
  const bool floats = row.type_class == H5T_FLOAT;
  const Filter filter{floats, row.size, floats ? digits : 0};
  return KeepsAny(row, data, count, filter, Range(filter.fill));
}

bool StoredFilterKeeps(hid_t dataset, const TypeRow& row, const void* data, hsize_t count) {
  const auto filter = FilterOf(dataset);
  return !filter || KeepsAny(row, data, count, *filter, Range(filter->fill));
}

bool StoredFilterKeepsBeside(hid_t dataset, const TypeRow& row, const void* data, hsize_t count) {
  const auto filter = FilterOf(dataset);
  if (!filter) return true;
  Range beside(filter->fill);
  if (!filter->floats && !TakeStored(dataset, beside)) return false;
  return KeepsAny(row, data, count, *filter, beside);
}

}  // namespace orvio::h5
