#pragma once

// The type query of blocks: in which types a file has their datasets.

#include <initializer_list>

#include "orvio/oh5_reader.h"

namespace orvio {

/// A dataset and the member that takes its type: ORV_NO_DATASET where it is missing, ORV_UNKNOWN_TYPE where it is of no
/// type that the library knows.
struct TypeQuery {
  const char* dataset;
  _ORVDataType* type;
};

/// 1 if one of the datasets is there and its type cannot be told; the others are asked all the same.
[[nodiscard]] int QueryTypes(IOH5Reader& reader, hid_t data, std::initializer_list<TypeQuery> queries);

}  // namespace orvio
