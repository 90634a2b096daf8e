#pragma once

// Groups with attributes that were seen before. The header of a block's group holds the same messages in every state:
// only the values of its attributes and the addresses of its table differ.

#include <algorithm>
#include <array>
#include <cstdint>

#include "structure/cursor.h"

namespace orvio::structure {

/// Remembers the messages of sound groups whose header is of version 1 and has all messages in one continuation. The same
/// bytes mean the same again, so that to compare them is to check them. A later one takes the place of an earlier one.
class KnownGroups {
 public:
  static constexpr std::size_t kLargest = 4096;  ///< bytes of messages that are remembered
  static constexpr std::size_t kSmallest = 64;   ///< a table and an attribute
  static constexpr std::size_t kFirst = 40;      ///< bytes of a header in front of them: a prefix and a continuation
  static constexpr std::size_t kTable = 16;      ///< bytes of the addresses that lead to a group's links

  class Known {
   public:
    /// Whether the messages are the same, but for the bytes that may differ.
    bool Is(const Cursor& messages) const {
      if (size_ != messages.left()) return false;
      const std::uint8_t* bytes = messages.data();
      std::uint8_t differs = 0;
      for (std::size_t i = 0; i < size_; ++i)
        differs |= static_cast<std::uint8_t>((bytes[i] ^ bytes_[i]) & matters_[i]);
      return differs == 0;
    }
    void Keep(const Cursor& messages, std::size_t table_at) {
      size_ = messages.left();
      std::copy_n(messages.data(), size_, bytes_.begin());
      std::fill_n(matters_.begin(), size_, std::uint8_t{0xff});
      table_at_ = table_at;
      MayDiffer(table_at, kTable);
    }
    /// Bytes within the messages that were kept.
    void MayDiffer(std::size_t at, std::size_t count) {
      std::fill_n(matters_.begin() + static_cast<std::ptrdiff_t>(at), count, std::uint8_t{0});
    }
    std::size_t table_at() const { return table_at_; }
    std::uint32_t rows = 0;  ///< of the attributes, as a catalogue numbers them

   private:
    std::size_t size_ = 0;  ///< 0: nothing is known
    std::size_t table_at_ = 0;
    std::array<std::uint8_t, kLargest> bytes_;
    std::array<std::uint8_t, kLargest> matters_;  ///< a bit that is set is one to compare
  };

  /// The place for messages, of which there are kSmallest bytes or more.
  Known& Find(Cursor messages) {
    const std::uint64_t size = messages.left();
    messages.Skip(kSmallest - 16);
    const std::uint64_t kind = messages.U64() ^ (messages.U64() << 1) ^ size;
    return places_[kind * 0x9E3779B97F4A7C15ULL >> 61];
  }

 private:
  std::array<Known, 8> places_;
};

}  // namespace orvio::structure
