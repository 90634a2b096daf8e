// The element types of the format.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvio::frd {

struct ElementType {
  int32_t type;      ///< number in the file
  const char* name;  ///< short name that the format's users know it by
  size_t nodes;      ///< nodes per element
};

/// One row per type that a file can hold. Nodes stand corners first; HE20 and PE15 have the vertical edges before the
/// top ones, and BE3 is end, end, middle.
inline constexpr ElementType kElementTypes[] = {
    {1, "HE8", 8}, {2, "PE6", 6}, {3, "TE4", 4}, {4, "HE20", 20}, {5, "PE15", 15}, {6, "TE10", 10},
    {7, "TR3", 3}, {8, "TR6", 6}, {9, "QU4", 4}, {10, "QU8", 8},  {11, "BE2", 2},  {12, "BE3", 3},
};

/// Null: no such type.
inline const ElementType* FindElementType(int32_t type) {
  for (const ElementType& row : kElementTypes)
    if (row.type == type) return &row;
  return nullptr;
}

}  // namespace orvio::frd
