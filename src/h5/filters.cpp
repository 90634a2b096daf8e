// The filters of the format and their parameters.

#include "h5/filters.h"

#include <cstdint>
#include <iterator>

#include "h5/extents.h"

namespace orvio::h5 {
namespace {

/// What a filter works on.
struct Values {
  H5T_class_t type_class;
  std::uint64_t size;   ///< bytes of one
  std::uint64_t count;  ///< in a chunk
  unsigned sign;        ///< as scale-offset stores it: 1 for signed integers
  unsigned order;       ///< likewise: 1 for big endian
};

/// Parameters as the file has them.
struct Parameters {
  unsigned values[20];
  size_t count;
};

/// Parameters of the scale-offset filter by their place, as HDF5 stores them. The value behind them fills what was never
/// written.
enum ScaleOffsetPlace : std::size_t {
  kScaleType,
  kFactor,
  kCount,
  kClass,
  kSize,
  kSign,
  kOrder,
  kHasFill,
  kPlaces = 20
};

bool ScaleOffsetFits(const Parameters& given, const Values& stored) {
  const unsigned* p = given.values;
  const bool floats = stored.type_class == H5T_FLOAT;
  if (given.count != kPlaces || (!floats && stored.type_class != H5T_INTEGER)) return false;
  if (p[kScaleType] != H5Z_SO_FLOAT_DSCALE && p[kScaleType] != H5Z_SO_INT) return false;
  // Integers with a fixed number of bits keep no more than they have. Digits of floats may be negative.
  if (p[kScaleType] == H5Z_SO_INT && p[kFactor] > stored.size * 8) return false;
  return p[kCount] == stored.count && p[kClass] == (floats ? 1U : 0U) && p[kSize] == stored.size &&
         p[kSign] == stored.sign && p[kOrder] == stored.order && p[kHasFill] <= 1;
}

bool FilterFits(H5Z_filter_t filter, const Parameters& given, const Values& stored) {
  switch (filter) {
    case H5Z_FILTER_SCALEOFFSET:
      return ScaleOffsetFits(given, stored);
    case H5Z_FILTER_SHUFFLE:
      return given.count == 1 && given.values[0] == stored.size;
    case H5Z_FILTER_DEFLATE:
      return given.count == 1 && given.values[0] <= 9;
    case H5Z_FILTER_FLETCHER32:
      return given.count == 0;
    default:
      return false;
  }
}

Values ValuesOf(hid_t creation_list, hid_t type, int rank) {
  hsize_t chunk[H5S_MAX_RANK] = {};
  const bool chunked = H5Pget_chunk(creation_list, H5S_MAX_RANK, chunk) == rank;
  const H5T_class_t type_class = H5Tget_class(type);
  const bool is_signed = type_class == H5T_INTEGER && H5Tget_sign(type) == H5T_SGN_2;
  return {type_class, H5Tget_size(type), chunked ? Product(rank, chunk).value_or(0) : 0, is_signed ? 1U : 0U,
          H5Tget_order(type) == H5T_ORDER_BE ? 1U : 0U};
}

}  // namespace

bool FiltersFit(hid_t creation_list, hid_t type, int rank) {
  const int filters = H5Pget_nfilters(creation_list);
  if (filters == 0) return true;
  const Values stored = ValuesOf(creation_list, type, rank);
  for (int i = 0; i < filters; ++i) {
    Parameters given = {{}, std::size(given.values)};
    unsigned flags = 0;
    const H5Z_filter_t filter = H5Pget_filter2(creation_list, static_cast<unsigned>(i), &flags, &given.count,
                                               given.values, 0, nullptr, nullptr);
    if (filter < 0 || !FilterFits(filter, given, stored)) return false;
  }
  return filters > 0;
}

}  // namespace orvio::h5
