#pragma once

// An open file as the source of a structure check.

#include <cstdint>

#include "structure/byte_source.h"

namespace orvio::structure {

/// The bytes of an open file. The descriptor is borrowed: its position is not moved and it is not closed.
class FileBytes : public ByteSource {
 public:
  /// `size` as fstat tells it. What is appended later is not seen; what is cut off later cannot be read.
  FileBytes(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}

  std::uint64_t Size() const override { return size_; }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override;

 private:
  int descriptor_;
  std::uint64_t size_;
};

}  // namespace orvio::structure
