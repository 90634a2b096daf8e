#pragma once

// Groups with a symbol table: B-tree, symbol nodes and local heap.

#include "structure/small_messages.h"
#include "structure/walk.h"

namespace orvio::structure {

/// Checks the group's own structures and puts the objects that it links to on the list.
[[nodiscard]] bool WalkOldGroup(Walk& walk, const SymbolTable& table);

}  // namespace orvio::structure
