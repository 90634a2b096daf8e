#pragma once

// The old B-trees: of the symbol nodes of a group, and of the chunks of a dataset.

#include <cstdint>

#include "structure/walk.h"

namespace orvio::structure {

/// What tells the two kinds of trees apart.
class TreeVisitor {
 public:
  virtual ~TreeVisitor() = default;
  /// A node, before its keys. Of several children of a node the last one comes first.
  virtual void Node(unsigned /*level*/) {}
  /// A key of a node of any level; `is_last` when no child comes after it.
  virtual bool Key(std::uint64_t at, Cursor key, unsigned level, bool is_last) = 0;
  /// A child of a node of level 0, and the key before it.
  virtual bool Leaf(std::uint64_t at, Cursor key, std::uint64_t child) = 0;
};

struct TreeShape {
  std::uint8_t type = 0;  ///< 0: groups, 1: chunks
  std::uint64_t key_size = 0;
  std::uint64_t most = 0;  ///< entries of a node
};

/// Goes through all nodes. Each must be of a level below that of its parent.
[[nodiscard]] bool WalkTree1(Walk& walk, std::uint64_t root, const TreeShape& shape, TreeVisitor& visitor);

}  // namespace orvio::structure
