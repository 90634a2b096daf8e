#pragma once

// What HDF5 must know of a stored type.

#include <hdf5.h>

#include "orvio/orv_types.h"

namespace orvio::h5 {

/// One row per value of _ORVDataType that numeric operations take. Nothing else lists these types.
struct TypeRow {
  _ORVDataType type;
  H5T_class_t type_class;
  hid_t (*native)();
  size_t size;
};

/// Null: this type is refused.
const TypeRow* FindNumericType(int type);
/// Whether a number of this type takes more than so many bytes.
bool IsWider(int type, size_t bytes);

/// Type of a stored datatype by class and exact size; ORV_UNKNOWN_TYPE for one that the library does not know.
_ORVDataType ExactType(hid_t datatype);
_ORVDataType ExactType(H5T_class_t type_class, size_t size);

/// Numeric type that can hold a stored datatype: up to 4 bytes the small one, up to 8 the large one. Texts and
/// all else are ORV_UNKNOWN_TYPE.
_ORVDataType RoomyType(hid_t datatype);

}  // namespace orvio::h5
