#pragma once

// Links and attributes of objects that have many of them.

#include "structure/link.h"
#include "structure/walk.h"

namespace orvio::structure {

/// Checks a link message and puts the object that it leads to on the list. `message` is where the link is.
[[nodiscard]] bool CheckLink(Walk& walk, std::uint64_t message, const Cursor& in);

[[nodiscard]] bool WalkDenseLinks(Walk& walk, const Dense& dense);
[[nodiscard]] bool WalkDenseAttributes(Walk& walk, const Dense& dense);

}  // namespace orvio::structure
