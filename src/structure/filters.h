#pragma once

// The filter pipeline message: what was done to the bytes of a chunk before they were written.

#include <array>
#include <cstdint>

#include "structure/cursor.h"
#include "structure/datatype.h"

namespace orvio::structure {

inline constexpr std::uint16_t kDeflate = 1;
inline constexpr std::uint16_t kShuffle = 2;
inline constexpr std::uint16_t kFletcher32 = 3;
inline constexpr std::uint16_t kScaleOffset = 6;
inline constexpr unsigned kMaxFilters = 32;

struct Filter {
  static constexpr unsigned kKept = 8;  ///< values beyond these mean nothing to us
  std::uint16_t id = 0;
  std::uint16_t flags = 0;
  std::uint16_t value_count = 0;
  std::array<std::uint32_t, kKept> values{};
};

struct Pipeline {
  unsigned count = 0;                       ///< 0: chunks are stored as they are
  std::array<Filter, kMaxFilters> filters;  ///< in the order of writing; the first `count` are set
};

[[nodiscard]] Verdict ParsePipeline(Cursor in, Pipeline& pipeline);

/// Whether the filter leaves integers of this size as they are: it was told to keep all their bits.
bool KeepsAllBits(const Filter& scale_offset, std::uint64_t element_size);

/// Whether the filters that we run were set up for chunks of `elements` elements of this type.
[[nodiscard]] Verdict JudgePipeline(const Pipeline& pipeline, const Datatype& type, std::uint64_t elements);

}  // namespace orvio::structure
