#pragma once

// The address space of a file, and its bytes a window at a time.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "structure/byte_source.h"
#include "structure/cursor.h"

namespace orvio::structure {

/// Reads parts of a file by their address, which counts from the base address of the superblock. What a cursor shows is
/// good until the next call of At(): the window that it lies in may then be given to another part of the file.
class FileView {
 public:
  /// More than the largest message of an object header with its own header.
  static constexpr std::size_t kLongestPart = 80 * 1024;

  explicit FileView(ByteSource& source);

  /// Sets what addresses mean from here on. At first they are offsets and end with the file.
  void SetSpace(std::uint64_t base, std::uint64_t end, Widths widths);
  std::uint64_t base() const { return base_; }
  std::uint64_t end() const { return end_; }
  Widths widths() const { return widths_; }
  std::uint64_t FileSize() const { return size_; }

  /// Whether `count` bytes at `address` lie within the file.
  bool Holds(std::uint64_t address, std::uint64_t count) const { return address <= end_ && count <= end_ - address; }
  /// `count` bytes at `address`. A failed cursor when they do not lie within the file, or are more than kLongestPart.
  Cursor At(std::uint64_t address, std::uint64_t count) {
    if (count > kLongestPart || !Holds(address, count)) return {};
    const std::uint8_t* bytes = Bytes(base_ + address, static_cast<std::size_t>(count));
    return bytes ? Cursor(bytes, static_cast<std::size_t>(count), widths_) : Cursor();
  }
  /// Bytes before the first zero byte at or after `address`; `limit` when there is none among so many bytes.
  std::uint64_t TextLength(std::uint64_t address, std::uint64_t limit);
  /// Whether the source failed to deliver bytes that it has.
  bool Unreadable() const { return unreadable_; }

 private:
  static constexpr std::size_t kStride = 8 * 1024;
  static constexpr std::size_t kOverlap = 1 * 1024;  ///< no part up to this size is ever split between windows
  static constexpr std::size_t kWindow = kStride + kOverlap;
  static constexpr std::size_t kWindows = 64;

  const std::uint8_t* Bytes(std::uint64_t offset, std::size_t count) {
    if (count > kOverlap) return LongPart(offset, count);
    const std::uint64_t number = offset / kStride;
    const std::size_t slot = number % kWindows;
    if (numbers_[slot] != number && !Load(number, slot)) return nullptr;
    return windows_.get() + slot * kWindow + offset % kStride;
  }
  const std::uint8_t* LongPart(std::uint64_t offset, std::size_t count);
  bool Load(std::uint64_t number, std::size_t slot);

  ByteSource& source_;
  std::uint64_t size_;
  std::uint64_t base_ = 0;
  std::uint64_t end_;
  Widths widths_;
  bool unreadable_ = false;
  std::array<std::uint64_t, kWindows> numbers_;  ///< which window of the file is in which slot
  std::unique_ptr<std::uint8_t[]> windows_;      ///< not initialised: what is never read never costs memory
  std::unique_ptr<std::uint8_t[]> long_part_;
};

}  // namespace orvio::structure
