#pragma once

// The messages of groups: links, and where many links or attributes are stored.

#include <cstdint>

#include "structure/cursor.h"
#include "structure/dataspace.h"

namespace orvio::structure {

struct Link {
  enum class Kind : std::uint8_t { kHard = 0, kSoft = 1, kExternal = 64 };

  std::uint8_t kind = 0;               ///< of Kind, or a host's own: above 64
  std::uint64_t address = kUndefined;  ///< of hard links
  std::uint32_t name_at = 0;           ///< where in the message the name begins
  std::uint32_t name_size = 0;         ///< without a zero byte
};

[[nodiscard]] Verdict ParseLink(Cursor in, Link& link);

/// Where links or attributes are once there are many.
struct Dense {
  std::uint64_t heap = kUndefined;         ///< kUndefined: all of them are in the object header
  std::uint64_t by_name = kUndefined;      ///< B-tree
  std::uint64_t by_creation = kUndefined;  ///< B-tree; kUndefined: there is none
};

[[nodiscard]] Verdict ParseLinkInfo(Cursor in, Dense& dense);
[[nodiscard]] Verdict ParseAttributeInfo(Cursor in, Dense& dense);
[[nodiscard]] Verdict ParseGroupInfo(Cursor in);

}  // namespace orvio::structure
