#pragma once

// Numbers that are the same for the same seed on every machine.

#include <cstddef>
#include <cstdint>

namespace orvio::fuzz {

/// A counter whose bits are mixed: good enough to choose what to damage.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }
  /// From 0 to `limit` - 1; 0 for a limit of 0.
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : static_cast<std::size_t>(Next() % limit); }
  bool OneIn(std::size_t n) { return Below(n) == 0; }

 private:
  std::uint64_t state_;
};

}  // namespace orvio::fuzz
