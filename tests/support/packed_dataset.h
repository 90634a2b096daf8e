#pragma once

// Datasets whose filters leave next to nothing of their values.

#include <hdf5.h>

#include <vector>

#include "support/raw_hdf5.h"

namespace orv_test {

/// A type of texts of a width.
inline Id TextType(std::size_t width) {
  Id type(H5Tcopy(H5T_C_S1), "type");
  Check(H5Tset_size(type.get(), width), "size");
  return type;
}

/// Makes a dataset of one chunk that goes through the deflate filter if it is of texts, else through the scale-offset
/// filter of integers.
inline Id MakePacked(hid_t here, const char* name, hid_t type, const std::vector<hsize_t>& shape) {
  const int rank = static_cast<int>(shape.size());
  const Id space(H5Screate_simple(rank, shape.data(), nullptr), "space");
  const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
  Check(H5Pset_chunk(list.get(), rank, shape.data()), "chunk");
  const bool is_text = H5Tget_class(type) == H5T_STRING;
  Check(is_text ? H5Pset_deflate(list.get(), 1) : H5Pset_scaleoffset(list.get(), H5Z_SO_INT, 0), "filter");
  return Id(H5Dcreate2(here, name, type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
}

/// A packed dataset that is written whole.
inline void AddPacked(hid_t here, const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values) {
  const Id dataset = MakePacked(here, name, type, shape);
  Check(H5Dwrite(dataset.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), name);
}

/// `count` integers that are all 5. The 21 bytes of their chunk tell the bits of a value, 0, and the least of all values.
inline void AddPackedFives(hid_t here, const char* name, hsize_t count) {
  const Id dataset = MakePacked(here, name, H5T_NATIVE_INT, {count});
  const unsigned char chunk[21] = {0, 0, 0, 0, 8, 5};
  const hsize_t first = 0;
  Check(H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, &first, sizeof chunk, chunk), name);
}

}  // namespace orv_test
