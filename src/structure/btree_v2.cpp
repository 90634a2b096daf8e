// B-trees of version 2. The sizes of their pointers follow from how many records fit below them.

#include "structure/btree_v2.h"

#include <array>
#include <vector>

#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr unsigned kDeepest = 10;
constexpr std::uint64_t kHead = 6;  ///< signature, version, type
constexpr std::uint64_t kChecksum = 4;

/// Room in the nodes of one depth. Leaves are of depth 0.
struct Level {
  std::uint64_t most = 0;          ///< records of a node
  std::uint64_t most_below = 0;    ///< records of a node and all below it
  std::uint64_t pointer_size = 0;  ///< of a pointer to a node of the depth below
  unsigned count_size = 0;         ///< of the number of all records, in a pointer to a node of this depth
};

struct Node {
  std::uint64_t address = kUndefined;
  std::uint64_t records = 0;
  unsigned depth = 0;
};

class TreeWalk {
 public:
  TreeWalk(Walk& walk, const Tree2Shape& shape, RecordVisitor& visitor)
      : walk_(walk), shape_(shape), visitor_(visitor) {}

  bool Run(std::uint64_t header) {
    Node root;
    if (!ReadHeader(header, root)) return false;
    if (root.address == kUndefined) return total_ == 0 || walk_.Refuse(header, "B-tree has lost its records");
    pending_.push_back(root);
    while (!pending_.empty()) {
      const Node node = pending_.back();
      pending_.pop_back();
      if (!Visit(node)) return false;
    }
    return seen_ == total_ || walk_.Refuse(header, "B-tree does not hold as many records as it says");
  }

 private:
  bool ReadHeader(std::uint64_t header, Node& root) {
    const Widths widths = walk_.view.widths();
    const std::uint64_t size = 16U + widths.offset + 2U + widths.length + kChecksum;
    Cursor in = walk_.view.At(header, size);
    const bool known = in.Is("BTHD") && in.U8() == 0;
    const unsigned type = in.U8();
    node_size_ = in.U32();
    const std::uint64_t record_size = in.U16();
    root.depth = in.U16();
    const unsigned split = in.U8();
    const unsigned merge = in.U8();
    root.address = in.Address();
    root.records = in.U16();
    total_ = in.Length();
    if (!known || !in.ok()) return walk_.Refuse(header, "B-tree is not where it should be");
    if (!walk_.Claim(header, size)) return false;
    if (!EndsWithChecksum(walk_.view, header, size)) return walk_.Refuse(header, "B-tree does not match its checksum");
    if (type != shape_.type || record_size != shape_.record_size) {
      return walk_.Refuse(header, "B-tree is for records of another kind");
    }
    if (!MayChange(split, merge)) return walk_.Refuse(header, "B-tree splits and merges its nodes at once");
    if (root.depth > kDeepest) return walk_.Refuse(header, "B-tree is too deep");
    return SetLevels(root.depth) || walk_.Refuse(header, "B-tree has nodes of an impossible size");
  }

  /// How full nodes are, in percent, that are split or merged. HDF5 relies on them.
  static bool MayChange(unsigned split, unsigned merge) {
    constexpr unsigned kFull = 100;
    return split > 0 && split <= kFull && merge <= kFull && merge < split / 2;
  }

  bool SetLevels(unsigned depth) {
    const std::uint64_t frame = kHead + kChecksum;
    if (node_size_ < frame + shape_.record_size) return false;
    levels_[0].most = levels_[0].most_below = (node_size_ - frame) / shape_.record_size;
    records_size_ = BytesFor(levels_[0].most);
    for (unsigned d = 1; d <= depth; ++d) {
      const Level& below = levels_[d - 1];
      Level& level = levels_[d];
      level.pointer_size = walk_.view.widths().offset + records_size_ + below.count_size;
      if (node_size_ < frame + level.pointer_size) return false;
      level.most = (node_size_ - frame - level.pointer_size) / (shape_.record_size + level.pointer_size);
      if (level.most == 0 || !Multiply(level.most + 1, below.most_below, level.most_below)) return false;
      if (level.most_below > kUndefined - level.most) return false;
      level.most_below += level.most;
      level.count_size = BytesFor(level.most_below);
    }
    return true;
  }

  bool Visit(const Node& node) {
    const Level& level = levels_[node.depth];
    Cursor in = walk_.view.At(node.address, kHead);
    const bool known = in.Is(node.depth == 0 ? "BTLF" : "BTIN") && in.U8() == 0 && in.U8() == shape_.type;
    if (!known || !in.ok()) return walk_.Refuse(node.address, "B-tree node is not where it should be");
    if (node.records > level.most) return walk_.Refuse(node.address, "B-tree node holds more than fits");
    if (!walk_.Claim(node.address, node_size_)) return false;
    const std::uint64_t children = node.depth == 0 ? 0 : node.records + 1;
    const std::uint64_t used = kHead + node.records * shape_.record_size + children * level.pointer_size + kChecksum;
    if (!EndsWithChecksum(walk_.view, node.address, used)) {
      return walk_.Refuse(node.address, "B-tree does not match its checksum");
    }
    seen_ += node.records;
    return VisitRecords(node) && (node.depth == 0 || AddChildren(node));
  }

  bool VisitRecords(const Node& node) {
    std::uint64_t at = node.address + kHead;
    for (std::uint64_t i = 0; i < node.records; ++i, at += shape_.record_size) {
      if (!visitor_.Record(at, walk_.view.At(at, shape_.record_size))) return false;
    }
    return true;
  }

  bool AddChildren(const Node& node) {
    const std::uint64_t size = levels_[node.depth].pointer_size;
    std::uint64_t at = node.address + kHead + node.records * shape_.record_size;
    for (std::uint64_t i = 0; i <= node.records; ++i, at += size) {
      Cursor in = walk_.view.At(at, size);
      Node child;
      child.address = in.Address();
      child.records = in.Number(records_size_);
      child.depth = node.depth - 1;
      pending_.push_back(child);
    }
    return true;
  }

  Walk& walk_;
  const Tree2Shape& shape_;
  RecordVisitor& visitor_;
  std::uint64_t node_size_ = 0;
  std::uint64_t total_ = 0;
  std::uint64_t seen_ = 0;
  unsigned records_size_ = 0;  ///< of the number of records of a node, in a pointer to it
  std::array<Level, kDeepest + 1> levels_;
  std::vector<Node> pending_;
};

}  // namespace

bool WalkTree2(Walk& walk, std::uint64_t header, const Tree2Shape& shape, RecordVisitor& visitor) {
  return TreeWalk(walk, shape, visitor).Run(header);
}

}  // namespace orvio::structure
