// Reading and writing of one attribute with full checks of type, rank and size.

#include <algorithm>
#include <cstring>
#include <optional>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/handle.h"
#include "h5/indexed_file.h"
#include "h5/plain_numbers.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// The one door to attributes: one whose value is as large as type and extents say, and of a size that a number or a
/// text of a result file has.
class StoredAttribute {
 public:
  StoredAttribute(hid_t loc, const char* name) : attribute_(H5Aopen(loc, name, H5P_DEFAULT)) {
    if (attribute_ && !Fits()) attribute_.reset();
  }

  explicit operator bool() const { return static_cast<bool>(attribute_); }
  hid_t get() const { return attribute_.get(); }
  hid_t type() const { return type_.get(); }
  H5T_class_t type_class() const { return H5Tget_class(type()); }
  const Extents& extents() const { return extents_; }
  [[nodiscard]] bool Close() { return attribute_.Close(); }

 private:
  bool Fits() {
    type_ = Type(H5Aget_type(get()));
    const Space space(type_ ? H5Aget_space(get()) : H5I_INVALID_HID);
    const auto extents = space ? ExtentsOf(space.get()) : std::nullopt;
    if (!extents) return false;
    extents_ = *extents;
    const size_t element = H5Tget_size(type());
    const bool number = type_class() == H5T_INTEGER || type_class() == H5T_FLOAT;
    if (element == 0 || (number && element > disk::kWidestNumber)) return false;
    const bool plain = number || (type_class() == H5T_STRING && H5Tis_variable_str(type()) == 0);
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(extents_.points, element, &bytes) || bytes > kUnbackedBytes) return false;
    return !plain || H5Aget_storage_size(get()) == bytes;
  }

  Attribute attribute_;
  Type type_;
  Extents extents_;
};

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

/// Whether all is known of an attribute that a read of that kind needs: one value of a plain kind.
bool IsRead(const structure::ArrayShape& shape, int rank, const TypeRow* row) {
  using structure::ElementKind;
  const bool is_number = shape.kind == ElementKind::kSigned || shape.kind == ElementKind::kFloat;
  const bool is_text = shape.kind == ElementKind::kText && shape.element_size <= disk::kTextWidth;
  if (rank > 0 || shape.points != 1 || !(is_number || is_text)) return false;
  return !row || !is_number || ClassOf(shape.kind) != row->type_class || IsPlain(shape, *row);
}

/// Nothing for what is left to HDF5.
std::optional<int> ReadIndexedAttribute(hid_t loc, const char* name, int rank, const TypeRow* row, void* buffer) {
  const IndexedPlace place(loc);
  structure::Catalogue::Attribute found = {};
  const auto answer =
      place ? place.catalogue().FindAttribute(place.object, name, found) : structure::Catalogue::Answer::kUnknown;
  if (answer == structure::Catalogue::Answer::kNo) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute not exist", name);
  }
  if (answer != structure::Catalogue::Answer::kYes || !IsRead(*found.shape, rank, row)) return std::nullopt;
  if (ClassOf(found.shape->kind) != (row ? row->type_class : H5T_STRING)) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute data type mismatch", name);
  }
  if (row) {
    ConvertPlain(*found.shape, *row, found.bytes, buffer, 1);
    return kOk;
  }
  auto* text = static_cast<char*>(buffer);
  std::memcpy(text, found.bytes, found.shape->element_size);
  if (found.shape->element_size < disk::kTextWidth) text[found.shape->element_size] = '\0';
  return kOk;
}

int ReadAttribute(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, void* buffer) {
  if (HasZero(rank, dims)) return kFail;
  const TypeRow* row = FindNumericType(type);
  if (!row && type != ORV_CHAR) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" Unknow attribute data type", name);
  if (IsIndexed(loc)) {
    if (const auto status = ReadIndexedAttribute(loc, name, rank, row, buffer)) return *status;
    const Hdf5Location by_hdf5(loc);
    return by_hdf5.get() < 0 ? kFail : ReadAttribute(by_hdf5.get(), name, rank, dims, type, buffer);
  }
  if (H5Aexists(loc, name) <= 0) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute not exist", name);

  const StoredAttribute attribute(loc, name);
  if (!attribute) return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" failed to read", name);
  if (attribute.type_class() != (row ? row->type_class : H5T_STRING)) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute data type mismatch", name);
  }
  if (!row && H5Tget_size(attribute.type()) > disk::kTextWidth) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" attribute data type size mismatch", name);
  }
  if (!FitsAttribute(attribute.extents(), rank, dims)) {
    return Fail("OH5Read_ATTRIBUTE::\n\t \"%s\" dimension mismatch", name);
  }
  if (!row) {
    return ReadTextAttribute(attribute.get(), name, attribute.type(), attribute.extents(), static_cast<char*>(buffer));
  }
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

template <class Opened>  // a new attribute, or one that was there
int WriteAndClose(Opened attribute, const char* name, hid_t type, const void* data) {
  const bool written = attribute && H5Awrite(attribute.get(), type, data) >= 0;
  const bool closed = attribute.Close();
  return written && closed ? kOk : Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
}

/// Class and element count must be those that are there: the write goes into the attribute that exists.
int WriteOverNumber(hid_t loc, const char* name, const TypeRow& row, const void* data) {
  StoredAttribute attribute(loc, name);
  if (!attribute) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
  if (attribute.type_class() != row.type_class || attribute.extents().points != 1) {
    return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" data type mismatch for attribute", name);
  }
  return WriteAndClose(std::move(attribute), name, row.native(), data);
}

int WriteAttribute(hid_t loc, const char* name, _ORVDataType type, size_t size, const void* data) {
  const TypeRow* row = FindNumericType(type);
  if (!row && type != ORV_CHAR) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" Unsupported data type", name);
  const Type stored_type = StoredType(row, size);
  if (!stored_type) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
  const bool exists = H5Aexists(loc, name) > 0;
  if (exists && row) return WriteOverNumber(loc, name, *row, data);
  if (exists && H5Adelete(loc, name) < 0) return Fail("OH5write_ATTRIBUTE::\n\t \"%s\" fail to write", name);
  return WriteAndClose(CreateScalar(loc, name, stored_type.get()), name, stored_type.get(), data);
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
