#pragma once

// An entry of a symbol table: a link of an old group.

#include <cstdint>

#include "structure/cursor.h"

namespace orvio::structure {

struct SymbolEntry {
  static constexpr std::uint32_t kNothing = 0;
  static constexpr std::uint32_t kGroup = 1;     ///< `tree` and `heap` repeat those of the group it leads to
  static constexpr std::uint32_t kSoftLink = 2;  ///< `target` is where in the heap the path is

  std::uint64_t name = 0;  ///< where in the heap
  std::uint64_t header = kUndefined;
  std::uint32_t kind = kNothing;
  std::uint64_t tree = kUndefined;
  std::uint64_t heap = kUndefined;
  std::uint32_t target = 0;

  static std::uint64_t Size(Widths widths) { return 2U * widths.offset + 24U; }
};

/// Reads what is common to all kinds, and what is of the entry's own.
inline void ParseSymbolEntry(Cursor& in, SymbolEntry& entry) {
  constexpr std::uint64_t kScratch = 16;
  entry.name = in.Number(in.widths().offset);
  entry.header = in.Address();
  entry.kind = in.U32();
  in.Skip(4);
  Cursor scratch = in.Take(kScratch);
  if (entry.kind == SymbolEntry::kGroup) {
    entry.tree = scratch.Address();
    entry.heap = scratch.Address();
  }
  if (entry.kind == SymbolEntry::kSoftLink) entry.target = scratch.U32();
}

}  // namespace orvio::structure
