#pragma once

// The attribute message.

#include <cstdint>

#include "structure/cursor.h"
#include "structure/dataspace.h"
#include "structure/datatype.h"

namespace orvio::structure {

struct Attribute {
  bool type_is_committed = false;
  std::uint64_t type_address = kUndefined;  ///< object header of a committed type
  Datatype type;                            ///< not set if committed
  Dataspace space;
  std::uint32_t name_at = 0;    ///< where in the message the name begins
  std::uint16_t name_size = 0;  ///< with its zero byte
  std::uint32_t value_at = 0;   ///< where in the message the values begin
};

/// `in` need not reach to the end of the values.
[[nodiscard]] Verdict ParseAttribute(Cursor in, Attribute& attribute);

/// Parses what stands in place of a message that is stored with another object.
[[nodiscard]] Verdict ParseShared(Cursor in, std::uint64_t& address);

}  // namespace orvio::structure
