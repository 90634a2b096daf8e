#pragma once

// What the addresses of a file are used for, at 2 bits for each 8 bytes of those parts of the file that are used.

#include <array>
#include <cstdint>
#include <deque>

#include "structure/address_map.h"

namespace orvio::structure {

enum class Use : std::uint8_t { kNothing, kStructure, kObject };

/// Its memory follows what was put in: 128 bytes for a region of 4 KiB, and none for regions that hold values alone.
class UsedAddresses {
 public:
  /// What `address` was used for so far. If that was nothing, it is used for `use` from here on.
  Use Take(std::uint64_t address, Use use) {
    if (address % kUnit != 0) return TakeOdd(address, use);
    const std::uint64_t region = address / kRegion;
    if (region != last_region_) Enter(region);
    const std::uint64_t unit = address % kRegion / kUnit;
    std::uint8_t& byte = (*last_page_)[unit / kPerByte];
    const auto shift = static_cast<unsigned>(unit % kPerByte * 2);
    const auto before = static_cast<Use>(byte >> shift & 3);
    if (before == Use::kNothing) byte = static_cast<std::uint8_t>(byte | static_cast<unsigned>(use) << shift);
    return before;
  }

 private:
  static constexpr std::uint64_t kUnit = 8;  ///< the older structures all begin at multiples of it
  static constexpr std::uint64_t kRegion = 4096;
  static constexpr std::uint64_t kPerByte = 4;
  using Page = std::array<std::uint8_t, kRegion / kUnit / kPerByte>;

  Use TakeOdd(std::uint64_t address, Use use) {
    const auto place = odd_.Insert(address);
    if (!place.added) return place.value;
    place.value = use;
    return Use::kNothing;
  }
  void Enter(std::uint64_t region) {
    const auto place = pages_of_regions_.Insert(region);
    if (place.added) place.value = &pages_.emplace_back();
    last_page_ = place.value;
    last_region_ = region;
  }

  AddressMap<Page*, 0> pages_of_regions_;  ///< by the number of the region
  std::deque<Page> pages_;
  std::uint64_t last_region_ = kUndefined;
  Page* last_page_ = nullptr;
  AddressMap<Use> odd_;
};

}  // namespace orvio::structure
