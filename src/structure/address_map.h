#pragma once

// A hash map from addresses to a small value, for the many thousands of objects of a large file.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "structure/cursor.h"

namespace orvio::structure {

/// Open addressing, grown by doubling: its memory follows what was put in. Where a key goes depends on where the map
/// lies in memory, so that no file can be made whose addresses all want the same place. Keys that differ only in the
/// 4 bits from bit `kPlace` on are neighbours: what is looked at together is found in one line of the cache.
template <class Value, unsigned kPlace = 8>
class AddressMap {
 public:
  /// The value of `key`, and whether it is there only since this call. kUndefined is no key.
  struct Place {
    Value& value;
    bool added;
  };
  Place Insert(std::uint64_t key) {
    if ((count_ + 1) * 2 > slots_.size()) Grow();
    Slot& slot = Find(slots_, key);
    const bool added = slot.key == kUndefined;
    if (added) {
      slot.key = key;
      ++count_;
    }
    return {slot.value, added};
  }
  /// Null when `key` is not there.
  const Value* Get(std::uint64_t key) {
    if (slots_.empty()) return nullptr;
    const Slot& slot = Find(slots_, key);
    return slot.key == kUndefined ? nullptr : &slot.value;
  }

 private:
  struct Slot {
    std::uint64_t key = kUndefined;
    Value value{};
  };

  static std::size_t Mixed(std::uint64_t key) {
    key = (key ^ (key >> 32)) * 0x9E3779B97F4A7C15ULL;
    key = (key ^ (key >> 29)) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<std::size_t>(key ^ (key >> 32));
  }
  static Slot& Find(std::vector<Slot>& slots, std::uint64_t key) {
    constexpr unsigned kRegion = kPlace + 4;
    const std::size_t mask = slots.size() - 1;
    const std::size_t region = Mixed((key >> kRegion) ^ reinterpret_cast<std::uintptr_t>(slots.data()))
                               << (kRegion - kPlace);
    std::size_t i = (region + ((key >> kPlace) & ((1U << (kRegion - kPlace)) - 1))) & mask;
    while (slots[i].key != kUndefined && slots[i].key != key) i = (i + 1) & mask;
    return slots[i];
  }
  void Grow() {
    std::vector<Slot> larger(slots_.empty() ? 64 : slots_.size() * 2);
    for (const Slot& slot : slots_) {
      if (slot.key != kUndefined) Find(larger, slot.key) = slot;
    }
    slots_.swap(larger);
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

}  // namespace orvio::structure
