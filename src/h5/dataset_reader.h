#pragma once

// Reading of a block's datasets, one per line.

#include <hdf5.h>

#include <cstdint>
#include <initializer_list>

#include "orvio/oh5_reader.h"

namespace orvio::h5 {

/// Reads the datasets of a block, one per line, in the order of the lines. Once a line has failed the later ones do
/// nothing; status() is then 1. The extents in the file must be those of `shape`, so no count from a header reaches
/// past what the file holds; a shape with a count below 1 fails.
class DatasetReader {
 public:
  using Shape = std::initializer_list<std::int64_t>;

  DatasetReader(IOH5Reader* reader, hid_t loc);  // without a reader every line fails

  /// A text or a float in place of an integer is refused: the caller has sized the buffer by the kind it knows.
  void integers(const char* name, _ORVDataType type, void* buffer, Shape shape);
  void floats(const char* name, _ORVDataType type, void* buffer, Shape shape);
  /// Fixed-length texts of exactly `width` bytes each, one behind the other.
  void texts(const char* name, std::int64_t width, char* buffer, std::int64_t count);

  /// Whether an optional dataset is asked for, by its buffer, and there.
  bool wants(const char* name, const void* buffer) const;
  /// Ends the reading, for a caller that finds what was read impossible.
  void fail() { status_ = 1; }

  bool ok() const { return status_ == 0; }
  [[nodiscard]] int status() const { return status_; }

 private:
  void Read(const char* name, bool right_kind, _ORVDataType type, void* buffer, Shape shape);

  IOH5Reader* reader_;
  hid_t loc_;
  int status_;
};

}  // namespace orvio::h5
