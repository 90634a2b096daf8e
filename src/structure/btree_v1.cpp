// Nodes of B-trees of version 1: keys and children take turns, with a key at both ends.

#include "structure/btree_v1.h"

#include <vector>

namespace orvio::structure {
namespace {

constexpr int kAnyLevel = -1;

struct Node {
  std::uint64_t address;
  int level;  ///< that it must have
};

class TreeWalk {
 public:
  TreeWalk(Walk& walk, const TreeShape& shape, TreeVisitor& visitor) : walk_(walk), shape_(shape), visitor_(visitor) {}

  bool Run(std::uint64_t root) {
    Node node{root, kAnyLevel};
    for (;;) {
      if (!Visit(node)) return false;
      if (pending_.empty()) return true;
      node = pending_.back();
      pending_.pop_back();
    }
  }

 private:
  std::uint64_t Width() const { return walk_.view.widths().offset; }

  bool Visit(const Node& node) {
    const std::uint64_t head = 8 + 2 * Width();
    Cursor in = walk_.view.At(node.address, head);
    const bool known = in.Is("TREE") && in.U8() == shape_.type;
    const unsigned level = in.U8();
    const std::uint64_t used = in.U16();
    const std::uint64_t left = in.Address();
    const std::uint64_t right = in.Address();
    if (!known || !in.ok()) return walk_.Refuse(node.address, "B-tree node is not where it should be");
    if (node.level != kAnyLevel && static_cast<unsigned>(node.level) != level) {
      return walk_.Refuse(node.address, "B-tree node is of a wrong level");
    }
    if (used > shape_.most) return walk_.Refuse(node.address, "B-tree node holds more than fits");
    if (!IsSibling(left) || !IsSibling(right)) return walk_.Refuse(node.address, "B-tree node has a sibling nowhere");
    const std::uint64_t size = head + shape_.most * (shape_.key_size + Width()) + shape_.key_size;
    visitor_.Node(level);
    return walk_.Claim(node.address, size) && VisitEntries(node.address + head, used, level);
  }

  bool IsSibling(std::uint64_t address) const { return address == kUndefined || walk_.view.Holds(address, 1); }

  bool VisitEntries(std::uint64_t at, std::uint64_t used, unsigned level) {
    const std::uint64_t step = shape_.key_size + Width();
    for (std::uint64_t i = 0; i < used; ++i, at += step) {
      Cursor entry = walk_.view.At(at, step);
      const Cursor key = entry.Take(shape_.key_size);
      const std::uint64_t child = entry.Address();
      if (!visitor_.Key(at, key, level, false)) return false;
      if (level == 0 && !visitor_.Leaf(at, key, child)) return false;
      if (level > 0) pending_.push_back({child, static_cast<int>(level) - 1});
    }
    return used == 0 || visitor_.Key(at, walk_.view.At(at, shape_.key_size), level, true);
  }

  Walk& walk_;
  const TreeShape& shape_;
  TreeVisitor& visitor_;
  std::vector<Node> pending_;
};

}  // namespace

bool WalkTree1(Walk& walk, std::uint64_t root, const TreeShape& shape, TreeVisitor& visitor) {
  return TreeWalk(walk, shape, visitor).Run(root);
}

}  // namespace orvio::structure
