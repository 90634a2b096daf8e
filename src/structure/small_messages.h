#pragma once

// Messages of a few fields.

#include <cstdint>

#include "structure/cursor.h"
#include "structure/dataspace.h"

namespace orvio::structure {

/// The value of elements that were never written.
struct FillValue {
  std::uint32_t size = 0;  ///< 0: there is none of its own
  std::uint32_t at = 0;    ///< where in the message it begins
};

[[nodiscard]] Verdict ParseFillValue(Cursor in, FillValue& fill);
[[nodiscard]] Verdict ParseOldFillValue(Cursor in, FillValue& fill);

/// The address of an old group's B-tree and of its heap.
struct SymbolTable {
  std::uint64_t tree = kUndefined;
  std::uint64_t heap = kUndefined;
};
[[nodiscard]] Verdict ParseSymbolTable(Cursor in, SymbolTable& table);

/// Where the messages of an object header go on.
struct Continuation {
  std::uint64_t address = kUndefined;
  std::uint64_t size = 0;
};
[[nodiscard]] Verdict ParseContinuation(Cursor in, Continuation& continuation);

[[nodiscard]] Verdict ParseTreeRanks(Cursor in, std::uint16_t& chunk, std::uint16_t& node, std::uint16_t& leaf);
[[nodiscard]] Verdict ParseFileSpace(Cursor in);
[[nodiscard]] Verdict ParseComment(Cursor in);
[[nodiscard]] Verdict ParseTime(Cursor in);
[[nodiscard]] Verdict ParseOldTime(Cursor in);
[[nodiscard]] Verdict ParseReferenceCount(Cursor in);

}  // namespace orvio::structure
