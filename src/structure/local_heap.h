#pragma once

// The local heap of an old group: the names of its links.

#include <cstdint>

#include "structure/walk.h"

namespace orvio::structure {

struct LocalHeap {
  std::uint64_t data = 0;       ///< address of the bytes
  std::uint64_t size = 0;       ///< of the bytes
  std::uint64_t last_zero = 0;  ///< the last zero byte; texts that begin behind it do not end
  bool has_zero = false;
  std::uint64_t text_bytes = 0;  ///< of all texts that were asked for

  bool Holds(std::uint64_t text) const { return has_zero && text <= last_zero; }
};

[[nodiscard]] bool ReadLocalHeap(Walk& walk, std::uint64_t address, LocalHeap& heap);

/// Checks a text that an entry at `from` refers to, and answers its length.
[[nodiscard]] bool ReadText(Walk& walk, std::uint64_t from, LocalHeap& heap, std::uint64_t text, std::uint64_t& length);

}  // namespace orvio::structure
