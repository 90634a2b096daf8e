// Dense storage: a fractal heap holds the messages, B-trees hold the ids of the messages in two orders.

#include "structure/dense.h"

#include "structure/attribute_check.h"
#include "structure/btree_v2.h"
#include "structure/fractal_heap.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kLinkId = 7;
constexpr std::uint64_t kAttributeId = 8;

class LinkVisitor : public RecordVisitor {
 public:
  LinkVisitor(Walk& walk, FractalHeap& heap, std::uint64_t before_id)
      : walk_(walk), heap_(heap), before_id_(before_id) {}

  bool Record(std::uint64_t at, Cursor record) override {
    record.Skip(before_id_);
    FractalHeap::Place place;
    if (!heap_.Locate(at + before_id_, record.Take(kLinkId), place)) return false;
    return walk_.Spend(place.address, place.size) &&
           CheckLink(walk_, place.address, walk_.view.At(place.address, place.size));
  }

 private:
  Walk& walk_;
  FractalHeap& heap_;
  std::uint64_t before_id_;
};

class AttributeVisitor : public RecordVisitor {
 public:
  AttributeVisitor(Walk& walk, FractalHeap& heap) : walk_(walk), heap_(heap) {}

  bool Record(std::uint64_t at, Cursor record) override {
    constexpr unsigned kShared = 2;
    const Cursor id = record.Take(kAttributeId);
    const unsigned flags = record.U8();
    if ((flags & kShared) != 0) return walk_.Refuse(at, "message is in a heap for shared messages");
    FractalHeap::Place place;
    if (!heap_.Locate(at, id, place)) return false;
    return walk_.Spend(place.address, place.size) && CheckAttribute(walk_, place.address, place.size);
  }

 private:
  Walk& walk_;
  FractalHeap& heap_;
};

/// Reads a heap whose ids must be of the size that its indexes have room for.
bool ReadHeap(Walk& walk, FractalHeap& heap, std::uint64_t address, std::uint64_t id_size) {
  if (!heap.Read(address)) return false;
  return heap.id_size() == id_size || walk.Refuse(address, "fractal heap has ids of an unknown size");
}

}  // namespace

bool CheckLink(Walk& walk, std::uint64_t message, const Cursor& in) {
  Link link;
  if (!walk.Accept(message, ParseLink(in, link))) return false;
  return link.kind != static_cast<unsigned>(Link::Kind::kHard) || walk.AddObject(message, link.address);
}

bool WalkDenseLinks(Walk& walk, const Dense& dense) {
  constexpr std::uint64_t kHash = 4;
  constexpr std::uint64_t kOrder = 8;
  if (dense.heap == kUndefined) return true;
  FractalHeap heap(walk);
  if (!ReadHeap(walk, heap, dense.heap, kLinkId)) return false;
  LinkVisitor by_name(walk, heap, kHash);
  if (!WalkTree2(walk, dense.by_name, {5, kHash + kLinkId}, by_name)) return false;
  if (dense.by_creation == kUndefined) return true;
  LinkVisitor by_creation(walk, heap, kOrder);
  return WalkTree2(walk, dense.by_creation, {6, kOrder + kLinkId}, by_creation);
}

bool WalkDenseAttributes(Walk& walk, const Dense& dense) {
  constexpr std::uint64_t kFlagsAndOrder = 5;
  constexpr std::uint64_t kHash = 4;
  if (dense.heap == kUndefined) return true;
  FractalHeap heap(walk);
  if (!ReadHeap(walk, heap, dense.heap, kAttributeId)) return false;
  AttributeVisitor visitor(walk, heap);
  if (!WalkTree2(walk, dense.by_name, {8, kAttributeId + kFlagsAndOrder + kHash}, visitor)) return false;
  return dense.by_creation == kUndefined ||
         WalkTree2(walk, dense.by_creation, {9, kAttributeId + kFlagsAndOrder}, visitor);
}

}  // namespace orvio::structure
