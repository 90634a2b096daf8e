#pragma once

// Where the structure check takes the bytes of a file from.

#include <cstddef>
#include <cstdint>

namespace orvio::structure {

/// The bytes of a file as they are on disk, from the first one.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  virtual std::uint64_t Size() const = 0;
  /// Reads exactly `count` bytes at `offset`. False when some of them lie behind the end or cannot be read.
  virtual bool Read(std::uint64_t offset, void* buffer, std::size_t count) = 0;
};

}  // namespace orvio::structure
