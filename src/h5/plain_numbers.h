#pragma once

// Values that lie in one piece and as a little-endian machine has them, read without HDF5.

#include <cstddef>
#include <cstdint>

#include "h5/data_type.h"
#include "structure/byte_source.h"
#include "structure/catalogue.h"

namespace orvio::h5 {

/// The HDF5 class of elements of a kind.
H5T_class_t ClassOf(structure::ElementKind kind);

/// Whether numbers of a shape become those of `row` here, with the values that HDF5 would give them.
bool IsPlain(const structure::ArrayShape& shape, const TypeRow& row);

/// Numbers as they are stored become those of `row`.
void ConvertPlain(const structure::ArrayShape& shape, const TypeRow& row, const std::uint8_t* from, void* to,
                  std::size_t count);

/// What is read of an array: a part of each axis.
struct PlainSlab {
  const hsize_t* start;
  const hsize_t* count;
};

/// Reads an array that IsPlain, or a slab of it that lies within it. False when the file cannot be read.
[[nodiscard]] bool ReadPlain(structure::ByteSource& bytes, const structure::Catalogue::Values& values,
                             const TypeRow& row, const PlainSlab* slab, void* buffer);

}  // namespace orvio::h5
