// The table of numeric types, and stored datatypes looked up in it.

#include "h5/data_type.h"

#include <algorithm>
#include <iterator>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

constexpr TypeRow kTypes[] = {
    {ORV_INT, H5T_INTEGER, [] { return H5T_NATIVE_INT; }, 4},
    {ORV_LONG, H5T_INTEGER, [] { return H5T_NATIVE_LLONG; }, 8},
    {ORV_FLOAT, H5T_FLOAT, [] { return H5T_NATIVE_FLOAT; }, 4},
    {ORV_DOUBLE, H5T_FLOAT, [] { return H5T_NATIVE_DOUBLE; }, 8},
};

template <class Fits>
_ORVDataType FirstType(H5T_class_t type_class, size_t size, Fits fits) {
  const auto* row = std::ranges::find_if(kTypes, [&](const TypeRow& candidate) {
    return candidate.type_class == type_class && size > 0 && fits(size, candidate.size);
  });
  return row == std::end(kTypes) ? ORV_UNKNOWN_TYPE : row->type;
}

}  // namespace

const TypeRow* FindNumericType(int type) {
  const auto* row = std::ranges::find(kTypes, type, [](const TypeRow& r) { return static_cast<int>(r.type); });
  return row == std::end(kTypes) ? nullptr : row;
}

bool IsWider(int type, size_t bytes) {
  const TypeRow* row = FindNumericType(type);
  return row && row->size > bytes;
}

_ORVDataType ExactType(H5T_class_t type_class, size_t size) {
  if (type_class == H5T_STRING) return ORV_CHAR;
  return FirstType(type_class, size, [](size_t stored, size_t ours) { return stored == ours; });
}

_ORVDataType ExactType(hid_t datatype) { return ExactType(H5Tget_class(datatype), H5Tget_size(datatype)); }

_ORVDataType RoomyType(hid_t datatype) {
  return FirstType(H5Tget_class(datatype), H5Tget_size(datatype),
                   [](size_t stored, size_t ours) { return stored <= ours; });
}

}  // namespace orvio::h5

int OH5TypeInfo(_ORVDataType type, int& type_class, hid_t& native, size_t& size, bool write_form) {
  return orvio::h5::Entry(orvio::kFail, [&] {
    if (const orvio::h5::TypeRow* row = orvio::h5::FindNumericType(type)) {
      type_class = row->type_class;
      native = row->native();
      size = row->size;
      return orvio::kOk;
    }
    if (type == ORV_CHAR) {
      type_class = H5T_STRING;
      native = H5T_C_S1;
      size = write_form ? orvio::disk::kTextWidth : 1;
      return orvio::kOk;
    }
    if (!write_form) {
      type_class = H5T_NO_CLASS;
      native = 0;
      size = 0;
    }
    return orvio::kFail;
  });
}
