#pragma once

// The newer B-trees: of dense links and attributes, large objects of fractal heaps, and chunks.

#include <cstdint>

#include "structure/walk.h"

namespace orvio::structure {

/// What is done with the records of a tree.
class RecordVisitor {
 public:
  virtual ~RecordVisitor() = default;
  /// A record of `record_size` bytes that is at `at`.
  virtual bool Record(std::uint64_t at, Cursor record) = 0;
};

/// What a tree must be like.
struct Tree2Shape {
  std::uint8_t type = 0;
  std::uint64_t record_size = 0;
};

[[nodiscard]] bool WalkTree2(Walk& walk, std::uint64_t header, const Tree2Shape& shape, RecordVisitor& visitor);

}  // namespace orvio::structure
