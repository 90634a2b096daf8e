#pragma once

// Datasets that were seen before. Those of many blocks have the same header, but for where their values are and when they
// were made.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "structure/cursor.h"

namespace orvio::structure {

/// Remembers the headers of sound datasets whose values are in one piece. The same bytes mean the same again, so that to
/// compare them is to check them. A later one takes the place of an earlier one.
class KnownDatasets {
 public:
  static constexpr std::size_t kLargest = 512;  ///< bytes of a header that is remembered
  static constexpr std::size_t kAddress = 8;    ///< bytes of the address of values
  static constexpr std::size_t kTime = 4;

  struct Known {
    std::uint64_t value_bytes = 0;
    std::size_t size = 0;        ///< of the header; 0: nothing is known
    std::size_t address_at = 0;  ///< where in the header the address of the values is
    std::uint32_t shape = 0;     ///< of the values, as a catalogue numbers them
    std::size_t time_at = 0;     ///< behind it: where the time is; the end of the header when there is none
    std::array<std::uint8_t, kLargest> header;
  };

  /// The place for a header, which holds more than the smallest dataset needs.
  Known& Find(Cursor header) {
    header.Skip(kPrefix + 8);  // over the head of the first message, which mostly is the dataspace
    const std::uint64_t kind = header.U64();
    const std::uint64_t extents = header.U64() ^ (header.U64() << 7) ^ (header.U64() << 13);
    return places_[(kind ^ extents) * 0x9E3779B97F4A7C15ULL >> 58];
  }
  static bool Is(const Known& known, const Cursor& header) {
    if (known.size != header.left()) return false;
    const std::size_t behind_address = known.address_at + kAddress;
    const std::size_t behind_time = std::min(known.time_at + kTime, known.size);
    return Same(known, header, 0, kLinks) && Same(known, header, kLinks + kLinksWidth, known.address_at) &&
           Same(known, header, behind_address, known.time_at) && Same(known, header, behind_time, known.size);
  }
  static void Keep(Known& known, const Cursor& header) {
    known.size = header.left();
    std::memcpy(known.header.data(), header.data(), known.size);
  }

 private:
  static constexpr std::size_t kPrefix = 16;  ///< version, counts and sizes in front of the messages
  static constexpr std::size_t kLinks = 4;    ///< in it, the number of links, which nobody relies on
  static constexpr std::size_t kLinksWidth = 4;

  static bool Same(const Known& known, const Cursor& header, std::size_t from, std::size_t to) {
    return std::memcmp(known.header.data() + from, header.data() + from, to - from) == 0;
  }

  std::array<Known, 64> places_;
};

}  // namespace orvio::structure
