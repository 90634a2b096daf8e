#pragma once

// The dataspace message: how many elements there are.

#include <array>
#include <cstdint>

#include "structure/cursor.h"

namespace orvio::structure {

/// What a parser of a message answers: null, or what is wrong with it.
using Verdict = const char*;

inline constexpr unsigned kMaxRank = 32;

struct Dataspace {
  bool null = false;                         ///< without any element
  std::uint8_t rank = 0;                     ///< 0: one element, or none if `null`
  std::array<std::uint64_t, kMaxRank> size;  ///< the first `rank` are set
  std::array<std::uint64_t, kMaxRank> max;   ///< kUndefined: without limit
  std::uint64_t points = 0;
};

[[nodiscard]] Verdict ParseDataspace(Cursor in, Dataspace& space);

}  // namespace orvio::structure
