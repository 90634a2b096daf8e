// Versions 1 to 3 of the attribute message.

#include "structure/attribute.h"

namespace orvio::structure {
namespace {

constexpr unsigned kSharedType = 1;
constexpr unsigned kSharedSpace = 2;
constexpr Verdict kCutShort = "attribute message is cut short";

/// The next `count` bytes, in version 1 with what fills them up to a multiple of 8.
inline Cursor Part(Cursor& in, unsigned version, unsigned count) {
  const std::size_t start = in.taken();
  const Cursor part = in.Take(count);
  if (version == 1) in.AlignFrom(start);
  return part;
}

Verdict JudgeName(Cursor name, unsigned size) {
  if (size < 2) return "attribute has no name";
  return name.Text() + 1 == size ? nullptr : "name of an attribute does not end where it should";
}

}  // namespace

Verdict ParseShared(Cursor in, std::uint64_t& address) {
  constexpr unsigned kInHeap = 1;
  const unsigned version = in.U8();
  const unsigned type = in.U8();
  if (in.ok() && version != 2 && version != 3) return "shared message has an unknown version";
  if (version == 3 && type == kInHeap) return "message is in a heap for shared messages";
  address = in.Address();
  return in.ok() ? nullptr : "shared message is cut short";
}

Verdict ParseAttribute(Cursor in, Attribute& attribute) {
  const unsigned version = in.U8();
  const unsigned flags = in.U8();
  attribute.name_size = in.U16();
  const unsigned type_size = in.U16();
  const unsigned space_size = in.U16();
  if (version == 3) in.Skip(1);  // the character set of the name
  if (!in.ok()) return kCutShort;
  if (version < 1 || version > 3) return "attribute message has an unknown version";
  if (version > 1 && flags > (kSharedType | kSharedSpace)) return "attribute message has unknown flags";
  if (version > 1 && (flags & kSharedSpace) != 0) return "dataspace of an attribute is shared";
  attribute.name_at = static_cast<std::uint32_t>(in.taken());
  const Cursor name = Part(in, version, attribute.name_size);
  Cursor type = Part(in, version, type_size);
  const Cursor space = Part(in, version, space_size);
  if (!in.ok()) return kCutShort;
  if (const Verdict bad = JudgeName(name, attribute.name_size)) return bad;
  attribute.value_at = static_cast<std::uint32_t>(in.taken());
  attribute.type_is_committed = version > 1 && (flags & kSharedType) != 0;
  const Verdict bad =
      attribute.type_is_committed ? ParseShared(type, attribute.type_address) : ParseDatatype(type, attribute.type);
  return bad ? bad : ParseDataspace(space, attribute.space);
}

}  // namespace orvio::structure
