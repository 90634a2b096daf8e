#pragma once

// Attributes that were seen before. All blocks of a file have the same ones: only their values differ.

#include <array>
#include <cstdint>
#include <cstring>

#include "structure/cursor.h"

namespace orvio::structure {

/// Remembers what stands in front of the values of sound attributes whose values are all in the message. The same bytes
/// mean the same again, so that to compare them is to check them. A later one takes the place of an earlier one.
class KnownAttributes {
 public:
  struct Known {
    std::uint64_t value_bytes = 0;  ///< bytes of all values
    std::uint32_t value_at = 0;     ///< where in the message the values begin; 0: nothing is known
    std::array<std::uint8_t, 112> head;
  };

  /// The place for an attribute with the head that `in` shows. Null when it is too short to tell.
  Known* Find(Cursor in) {
    if (in.left() < kTold) return nullptr;
    const std::uint64_t sizes = in.U64();
    const std::uint64_t text = in.U64() ^ (in.U64() << 1);
    return &places_[(sizes ^ text) * 0x9E3779B97F4A7C15ULL >> 58];
  }
  static bool Is(const Known& known, const Cursor& in) {
    return known.value_at != 0 && known.value_at <= in.left() &&
           std::memcmp(known.head.data(), in.data(), known.value_at) == 0;
  }
  /// Where in the message that `in` shows the values begin; 0 when the attribute is not known.
  std::uint32_t ValueAt(const Cursor& in) {
    const Known* known = Find(in);
    return known && Is(*known, in) ? known->value_at : 0;
  }
  static void Keep(Known& known, const Cursor& in, std::uint32_t value_at, std::uint64_t value_bytes) {
    if (value_at > known.head.size()) return;
    std::memcpy(known.head.data(), in.data(), value_at);
    known.value_at = value_at;
    known.value_bytes = value_bytes;
  }

 private:
  static constexpr std::size_t kTold = 24;  ///< sizes and 16 bytes of the name
  std::array<Known, 64> places_;
};

}  // namespace orvio::structure
