#pragma once

// What is there already where a block is to be written.

#include <hdf5.h>

#include <initializer_list>
#include <string_view>

#include "h5/extents.h"

namespace orvio {

/// A dataset as a write would have it: `width` is the bytes of a text, 0 for numbers. An extent of 0 is not written.
struct WrittenShape {
  const char* dataset;
  std::initializer_list<std::int64_t> extents;
  std::size_t width = 0;
};

/// Whether the datasets that a block of that name below `home` has already are of the same extents. HDF5 would write
/// the part that fits into a larger or smaller one, and the counts of the header would no longer be those of the data.
[[nodiscard]] bool FitsStoredBlock(hid_t home, std::string_view name, std::initializer_list<WrittenShape> shapes);

}  // namespace orvio
