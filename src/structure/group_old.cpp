// Old groups. Their B-tree leads to symbol nodes, whose entries have their names in the local heap.

#include "structure/group_old.h"

#include <optional>

#include "structure/btree_v1.h"
#include "structure/link_recorder.h"
#include "structure/local_heap.h"
#include "structure/symbol_entry.h"

namespace orvio::structure {
namespace {

class GroupVisitor : public TreeVisitor {
 public:
  GroupVisitor(Walk& walk, LocalHeap& heap, LinkRecorder* links) : walk_(walk), heap_(heap), links_(links) {}

  void Node(unsigned level) override {
    if (links_) links_->Node(level);
  }

  bool Key(std::uint64_t at, Cursor key, unsigned level, bool is_last) override {
    const std::uint64_t text = key.Length();
    if (links_) links_->Key(text, level, is_last);
    return heap_.Holds(text) || walk_.Refuse(at, "name does not end within its local heap");
  }

  bool Leaf(std::uint64_t /*at*/, Cursor /*key*/, std::uint64_t node) override {
    constexpr std::uint64_t kHead = 8;
    Cursor in = walk_.view.At(node, kHead);
    const bool known = in.Is("SNOD") && in.U8() == 1;
    in.Skip(1);
    const std::uint64_t count = in.U16();
    if (!known || !in.ok()) return walk_.Refuse(node, "symbol node is not where it should be");
    const std::uint64_t most = 2U * walk_.ranks.group_leaf;
    if (count > most) return walk_.Refuse(node, "symbol node holds more than fits");
    const std::uint64_t size = SymbolEntry::Size(walk_.view.widths());
    if (!walk_.Claim(node, kHead + most * size)) return false;
    for (std::uint64_t i = 0; i < count; ++i) {
      if (!VisitEntry(node + kHead + i * size, size)) return false;
    }
    return true;
  }

 private:
  bool VisitEntry(std::uint64_t at, std::uint64_t size) {
    Cursor in = walk_.view.At(at, size);
    SymbolEntry entry;
    ParseSymbolEntry(in, entry);
    if (!in.ok()) return walk_.Refuse(at, "structure passes the end of the file");
    std::uint64_t length = 0;
    if (!ReadText(walk_, at, heap_, entry.name, length)) return false;
    if (length == 0) return walk_.Refuse(at, "link has no name");
    if (links_) links_->Entry(entry.name, length, entry.kind == SymbolEntry::kSoftLink ? kUndefined : entry.header);
    if (entry.kind > SymbolEntry::kSoftLink) return walk_.Refuse(at, "symbol table entry is of an unknown kind");
    if (entry.kind == SymbolEntry::kSoftLink) return ReadText(walk_, at, heap_, entry.target, length);
    return walk_.AddObject(at, entry.header, {entry.tree, entry.heap});
  }

  Walk& walk_;
  LocalHeap& heap_;
  LinkRecorder* links_;  ///< null when nobody wants to know
};

}  // namespace

bool WalkOldGroup(Walk& walk, const SymbolTable& table) {
  LocalHeap heap;
  if (!ReadLocalHeap(walk, table.heap, heap)) return false;
  std::optional<LinkRecorder> links;
  if (walk.catalogue) links.emplace(walk, heap);
  GroupVisitor visitor(walk, heap, links ? &*links : nullptr);
  const TreeShape shape{0, walk.view.widths().length, 2U * walk.ranks.group_node};
  if (!WalkTree1(walk, table.tree, shape, visitor)) return false;
  if (links) links->HandOn();
  return true;
}

}  // namespace orvio::structure
