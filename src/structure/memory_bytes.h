#pragma once

// Bytes in memory as the source of a structure check.

#include <cstdint>
#include <cstring>
#include <span>

#include "structure/byte_source.h"

namespace orvio::structure {

/// Bytes that somebody else holds and that stay as they are while they are looked at.
class MemoryBytes : public ByteSource {
 public:
  explicit MemoryBytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  MemoryBytes(const void* bytes, std::size_t count) : bytes_(static_cast<const std::uint8_t*>(bytes), count) {}

  std::uint64_t Size() const override { return bytes_.size(); }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    if (offset > bytes_.size() || count > bytes_.size() - offset) return false;
    if (count > 0) std::memcpy(buffer, bytes_.data() + offset, count);
    return true;
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace orvio::structure
