// Collections of a global heap are looked at when a value refers to them, once each. What they hold is remembered, so
// that each further reference costs one look-up.

#include "structure/global_heap.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kSmallest = 4096;

/// Tells objects of all collections apart: addresses are below 2^48, indexes below 2^16.
std::uint64_t KeyOf(std::uint64_t collection, std::uint32_t index) { return collection << 16 | index; }

/// Headers of collections and of objects are filled up to a multiple of 8 bytes.
std::uint64_t HeadSize(const Walk& walk) { return (8U + walk.view.widths().length + 7U) / 8 * 8; }

struct HeapObject {
  std::uint32_t index = 0;
  std::uint64_t size = 0;   ///< of its bytes; of the free space, with its header, for index 0
  std::uint64_t takes = 0;  ///< with header and padding
};

bool ReadObject(Walk& walk, std::uint64_t at, std::uint64_t left, HeapObject& object) {
  const std::uint64_t head = HeadSize(walk);
  Cursor in = walk.view.At(at, head);
  object.index = in.U16();
  in.Skip(2 + 4);
  object.size = in.Length();
  const std::uint64_t bytes = object.index == 0 ? object.size : head + object.size;
  const bool sound = in.ok() && object.size <= left && bytes <= left && bytes >= head;
  if (!sound) return walk.Refuse(at, "object passes its global heap");
  object.takes = object.index == 0 ? bytes : head + (object.size + 7) / 8 * 8;
  return true;
}

bool ReadCollection(Walk& walk, std::uint64_t address) {
  const std::uint64_t head = HeadSize(walk);
  Cursor in = walk.view.At(address, head);
  const bool known = in.Is("GCOL") && in.U8() == 1;
  in.Skip(3);
  const std::uint64_t size = in.Length();
  if (!known || !in.ok()) return walk.Refuse(address, "global heap is not where it should be");
  if (size < kSmallest) return walk.Refuse(address, "global heap is too small");
  if (!walk.Claim(address, size)) return false;
  const std::uint64_t end = address + size;
  for (std::uint64_t at = address + head; at < end && end - at >= head;) {
    HeapObject object;
    if (!ReadObject(walk, at, end - at, object)) return false;
    if (object.index != 0) {
      const auto place = walk.heap_objects.Insert(KeyOf(address, object.index));
      if (!place.added) return walk.Refuse(at, "global heap holds an index twice");
      place.value = object.size;
    }
    at += std::min(object.takes, end - at);
  }
  return true;
}

struct Reference {
  std::uint64_t count = 0;
  std::uint64_t collection = 0;
  std::uint32_t index = 0;
};

bool CheckReference(Walk& walk, std::uint64_t at, const Reference& reference, std::uint64_t element) {
  if (reference.collection == 0 || (reference.collection == kUndefined && reference.count == 0)) return true;
  if (!walk.view.Holds(reference.collection, kSmallest)) return walk.Refuse(at, "value leads out of the file");
  if (walk.global_heaps.Insert(reference.collection).added && !ReadCollection(walk, reference.collection)) return false;
  const std::uint64_t* size =
      reference.index <= 0xffff ? walk.heap_objects.Get(KeyOf(reference.collection, reference.index)) : nullptr;
  if (!size) return walk.Refuse(at, "value is not in its global heap");
  return reference.count * element <= *size || walk.Refuse(at, "value is longer than its place in the global heap");
}

}  // namespace

bool CheckReferences(Walk& walk, std::uint64_t address, std::uint64_t count, const Datatype& type) {
  if (type.type_class != TypeClass::kVariable) return true;
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint64_t at = address + i * type.size;
    Cursor in = walk.view.At(at, type.size);
    Reference reference;
    reference.count = in.U32();
    reference.collection = in.Address();
    reference.index = in.U32();
    if (!in.ok()) return walk.Refuse(at, "structure passes the end of the file");
    if (!CheckReference(walk, at, reference, type.base_size)) return false;
  }
  return true;
}

}  // namespace orvio::structure
