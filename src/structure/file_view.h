#pragma once

// The address space of a file, and its bytes some pages at a time.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "structure/byte_source.h"
#include "structure/cursor.h"

namespace orvio::structure {

/// Reads parts of a file by their address, which counts from the base address of the superblock. What a cursor shows is
/// good until the next call of At(): the place where it lies may then be given to another part of the file.
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
  static constexpr std::size_t kPage = 4 * 1024;
  static constexpr std::size_t kSlots = 64;  ///< pages that are kept; as many as the cache next to a core holds easily
  static constexpr std::size_t kMostAhead = 16;

  const std::uint8_t* Bytes(std::uint64_t offset, std::size_t count) {
    const std::uint64_t first = offset / kPage;
    const std::uint64_t last = count == 0 ? first : (offset + count - 1) / kPage;
    const std::size_t slot = first % kSlots;
    if (last != first) return LongPart(offset, count, first, last);
    if (numbers_[slot] != first && !Load(first)) return nullptr;
    return pages_.get() + slot * kPage + offset % kPage;
  }
  const std::uint8_t* LongPart(std::uint64_t offset, std::size_t count, std::uint64_t first, std::uint64_t last);
  bool Load(std::uint64_t number);
  bool ReadPages(std::uint64_t number, std::size_t count);

  ByteSource& source_;
  std::uint64_t size_;
  std::uint64_t base_ = 0;
  std::uint64_t end_;
  Widths widths_;
  bool unreadable_ = false;
  std::array<std::uint64_t, kSlots> numbers_;  ///< which page of the file is in which slot
  std::uint64_t next_ = 0;                     ///< the page behind those that were read last
  std::size_t ahead_ = 1;                      ///< how many those were
  std::unique_ptr<std::uint8_t[]> pages_;      ///< not initialised: what is never read never costs memory
  std::unique_ptr<std::uint8_t[]> long_part_;
};

}  // namespace orvio::structure
