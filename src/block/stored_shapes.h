#pragma once

// What is there already where a block is to be written.

#include <hdf5.h>

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "orvio/orv_types.h"

namespace orvio {

/// A dataset as a write would have it: `width` is the bytes of a text, 0 for numbers. An extent of 0 is not written.
struct WrittenShape {
  const char* dataset;
  std::vector<std::int64_t> extents;
  std::size_t width = 0;
};
using WrittenShapes = std::vector<WrittenShape>;

/// Takes tables as those who write them do, for what they would be in the file.
class TableShapes {
 public:
  void Integers(const char* name, hsize_t count, _ORVDataType /*type*/, const int* /*values*/) { Add(name, count); }
  void Floats(const char* name, hsize_t count, _ORVDataType /*type*/, const float* /*values*/) { Add(name, count); }
  void Texts(const char* name, hsize_t count, int width, const char* /*values*/) {
    Add(name, count, static_cast<std::size_t>(width));
  }
  void Add(WrittenShape shape) { shapes_.push_back(std::move(shape)); }
  const WrittenShapes& shapes() const { return shapes_; }

 private:
  void Add(const char* name, hsize_t count, std::size_t width = 0) {
    Add({name, {static_cast<std::int64_t>(count)}, width});
  }

  WrittenShapes shapes_;
};

/// Whether the datasets that a block has already are of the same extents. HDF5 would write the part that fits into a
/// smaller one and refuse a larger one, when the header has been written: its counts would no longer be those of the
/// data, and the block could not be read any more.
[[nodiscard]] bool FitsStoredData(hid_t block, const WrittenShapes& shapes);

/// The same for the block of that name below `home`, which may not be there.
[[nodiscard]] bool FitsStoredBlock(hid_t home, std::string_view name, const WrittenShapes& shapes);

}  // namespace orvio
