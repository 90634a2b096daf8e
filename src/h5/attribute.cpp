// Reading and writing of one attribute with full checks of type, rank and size.

#include <algorithm>
#include <cstring>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/handle.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

bool FitsAttribute(const Extents& stored, int rank, const hsize_t* dims) {
  if (rank < 1) return stored.points == 1;
  return stored.rank == rank && std::equal(dims, dims + rank, stored.dims);
}

/// A variable-length text is HDF5's to allocate: it is copied and given back. One that was never written is null
/// and reads as an empty text.
herr_t ReadVariableText(hid_t attribute, hid_t type, char* buffer) {
  char* text = nullptr;
  const herr_t read = H5Aread(attribute, type, &text);
  buffer[0] = '\0';
  if (text) {
    const size_t length = strnlen(text, disk::kTextWidth - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    if (H5free_memory(text) < 0) return -1;
  }
  return read;
}

int ReadTextAttribute(hid_t attribute, const char* name, hid_t type, const Extents& stored, char* buffer) {
  const htri_t variable = H5Tis_variable_str(type);
  herr_t read = -1;
  if (variable > 0) {
    if (stored.points == 1) read = ReadVariableText(attribute, type, buffer);
  } else if (variable == 0) {
    read = H5Aread(attribute, type, buffer);
    const size_t size = H5Tget_size(type);
    if (read >= 0 && stored.points == 1 && size < disk::kTextWidth) buffer[size] = '\0';
  }
  return read < 0 ? Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" failed to read", name) : kOk;
}

int ReadAttribute(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, void* buffer) {
  if (HasZero(rank, dims)) return kFail;
  const TypeRow* row = FindNumericType(type);
  if (!row && type != ORV_CHAR) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" Unknow attribute data type", name);
  if (H5Aexists(loc, name) <= 0) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute not exist", name);

  const Attribute attribute(H5Aopen(loc, name, H5P_DEFAULT));
  const Type stored_type(attribute ? H5Aget_type(attribute.get()) : H5I_INVALID_HID);
  const Space space(attribute ? H5Aget_space(attribute.get()) : H5I_INVALID_HID);
  const auto stored = space ? ExtentsOf(space.get()) : std::nullopt;
  if (!stored_type || !stored) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" failed to read", name);

  if (H5Tget_class(stored_type.get()) != (row ? row->type_class : H5T_STRING)) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute data type mismatch", name);
  }
  if (!row && H5Tget_size(stored_type.get()) > disk::kTextWidth) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute data type size mismatch", name);
  }
  if (!FitsAttribute(*stored, rank, dims)) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" dimension mismatch", name);
  }
  if (!row) return ReadTextAttribute(attribute.get(), name, stored_type.get(), *stored, static_cast<char*>(buffer));
  const bool read = H5Aread(attribute.get(), row->native(), buffer) >= 0;
  return read ? kOk : Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" failed to read", name);
}

/// What is written: the stored type of a new attribute and its class.
Type StoredType(const TypeRow* row, size_t text_size) {
  Type type(H5Tcopy(row ? row->native() : H5T_C_S1));
  if (!row && (text_size == 0 || H5Tset_size(type.get(), text_size) < 0)) type.reset();
  return type;
}

Attribute CreateScalar(hid_t loc, const char* name, hid_t type) {
  const Space space(H5Screate(H5S_SCALAR));
  return Attribute(H5Acreate2(loc, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT));
}

/// Class and element count must be those that are there: the write goes into the attribute that exists.
bool TakesOneNumber(hid_t attribute, H5T_class_t type_class) {
  const Type stored_type(H5Aget_type(attribute));
  const Space space(H5Aget_space(attribute));
  const auto stored = space ? ExtentsOf(space.get()) : std::nullopt;
  return stored_type && H5Tget_class(stored_type.get()) == type_class && stored && stored->points == 1;
}

int WriteAttribute(hid_t loc, const char* name, _ORVDataType type, size_t size, const void* data) {
  const TypeRow* row = FindNumericType(type);
  if (!row && type != ORV_CHAR) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" Unsupported data type", name);
  const Type stored_type = StoredType(row, size);
  if (!stored_type) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
  bool exists = H5Aexists(loc, name) > 0;
  if (!row && exists) {
    if (H5Adelete(loc, name) < 0) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
    exists = false;
  }
  Attribute attribute(exists ? Attribute(H5Aopen(loc, name, H5P_DEFAULT)) : CreateScalar(loc, name, stored_type.get()));
  if (exists && attribute && !TakesOneNumber(attribute.get(), row->type_class)) {
    return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" data type mismatch for attribute", name);
  }
  const bool written = attribute && H5Awrite(attribute.get(), stored_type.get(), data) >= 0;
  const bool closed = attribute.Close();
  return written && closed ? kOk : Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported functions below only forward

int OH5Read_ATTRIBUTE(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, void* buffer) {
  if (!name || !buffer || (rank > 0 && !dims)) return kFail;
  return h5::Entry(kFail, [&] { return h5::ReadAttribute(loc, name, rank, dims, type, buffer); });
}

int OH5write_ATTRIBUTE(hid_t loc, const char* name, const hsize_t* /*dims*/, _ORVDataType type, size_t size,
                       const void* data) {
  if (!name || !data) return kFail;
  return h5::Entry(kFail, [&] { return h5::WriteAttribute(loc, name, type, size, data); });
}
