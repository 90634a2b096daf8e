// Attributes: their values are in the message, or in the global heap when they have no fixed length.

#include "structure/attribute_check.h"

#include "structure/attribute.h"
#include "structure/global_heap.h"
#include "structure/object_header.h"

namespace orvio::structure {
namespace {

constexpr Verdict kPassesMessage = "values of an attribute pass its message";

bool FindType(Walk& walk, std::uint64_t address, Datatype& type) {
  HeaderMessages messages(walk);
  if (!messages.Start(address, HeaderMessages::Use::kLook)) return false;
  Message message;
  while (messages.Next(message)) {
    if (message.type != MessageType::kDatatype) continue;
    if (message.shared) return walk.Refuse(message.address, "committed type is shared itself");
    Cursor in = walk.view.At(message.body, message.size);
    return walk.Accept(message.address, ParseDatatype(in, type));
  }
  return walk.Refuse(address, "shared type leads to no type");
}

bool CheckValues(Walk& walk, std::uint64_t address, std::uint64_t size, Attribute& attribute) {
  if (attribute.type_is_committed && !ReadCommittedType(walk, address, attribute.type_address, attribute.type)) {
    return false;
  }
  std::uint64_t bytes = 0;
  const bool fits = Multiply(attribute.space.points, attribute.type.size, bytes) && bytes <= size - attribute.value_at;
  if (!fits) return walk.Refuse(address, kPassesMessage);
  return CheckReferences(walk, address + attribute.value_at, attribute.space.points, attribute.type);
}

}  // namespace

bool ReadCommittedType(Walk& walk, std::uint64_t from, std::uint64_t address, Datatype& type) {
  if (!walk.AddObject(from, address)) return false;
  const auto known = walk.committed_types.Insert(address);
  if (known.added && !FindType(walk, address, known.value)) return false;
  type = known.value;
  return true;
}

bool CheckAttribute(Walk& walk, std::uint64_t address, std::uint64_t size) {
  // Names, types and spaces take less than 64 KiB each; HDF5 itself needs all three in one message of less than that.
  const Cursor in = walk.view.At(address, std::min<std::uint64_t>(size, FileView::kLongestPart));
  KnownAttributes::Known* known = walk.known_attributes.Find(in);
  if (known && KnownAttributes::Is(*known, in)) {
    return known->value_bytes <= size - known->value_at || walk.Refuse(address, kPassesMessage);
  }
  Attribute attribute;
  if (!walk.Accept(address, ParseAttribute(in, attribute))) return false;
  if (known && !attribute.type_is_committed && attribute.type.type_class != TypeClass::kVariable) {
    std::uint64_t bytes = 0;
    if (Multiply(attribute.space.points, attribute.type.size, bytes)) {
      KnownAttributes::Keep(*known, in, attribute.value_at, bytes);
    }
  }
  return CheckValues(walk, address, size, attribute);
}

}  // namespace orvio::structure
