#pragma once

// A fast hash of whole sectors, to tell damage and strangers. It keeps nobody from forging.

#include <cstdint>
#include <cstring>

namespace orvio::h5 {

/// `count` is a multiple of 8. Four sums run side by side, so that none waits for another.
inline std::uint64_t HashOf(const void* bytes, std::size_t count) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15ULL;
  std::uint64_t sums[4] = {count, 1, 2, 3};
  const auto* at = static_cast<const std::uint8_t*>(bytes);
  for (std::size_t i = 0; i < count / 8; ++i) {
    std::uint64_t word = 0;
    std::memcpy(&word, at + i * 8, sizeof word);
    std::uint64_t& sum = sums[i % 4];
    sum = (sum ^ word) * kFactor;
    sum ^= sum >> 29;
  }
  std::uint64_t all = 0;
  for (const std::uint64_t sum : sums) {
    all = (all ^ sum) * kFactor;
    all ^= all >> 32;
  }
  return all;
}

}  // namespace orvio::h5
