// Versions 1 to 4 of the datatype message. Types hold types; how deep is limited here.

#include "structure/datatype.h"

namespace orvio::structure {
namespace {

constexpr int kDeepest = 16;
constexpr Verdict kCutShort = "datatype message is cut short";

Verdict Parse(Cursor& in, Datatype& type, int depth);

/// What each type starts with.
struct Head {
  unsigned version = 0;
  std::uint32_t bits = 0;
};

/// Where the significant bits of a number are.
Verdict ParseBits(Cursor& in, std::uint64_t size, std::uint64_t& offset, std::uint64_t& precision) {
  offset = in.U16();
  precision = in.U16();
  if (!in.ok()) return kCutShort;
  return precision == 0 || offset + precision > 8 * size ? "number has bits outside its bytes" : nullptr;
}

Verdict ParseFixed(Cursor& in, const Head& head, Datatype& type) {
  type.big_endian = (head.bits & 1) != 0;
  type.is_signed = (head.bits & 8) != 0;
  std::uint64_t offset = 0;
  std::uint64_t precision = 0;
  const Verdict bad = ParseBits(in, type.size, offset, precision);
  constexpr std::uint32_t kSignBit = 8;
  const bool usual_size = type.size == 1 || type.size == 2 || type.size == 4 || type.size == 8;
  type.is_plain = (head.bits & ~kSignBit) == 0 && usual_size && offset == 0 && precision == 8U * type.size;
  return bad;
}

Verdict ParseFloat(Cursor& in, const Head& head, Datatype& type) {
  type.big_endian = (head.bits & 1) != 0;
  const bool vax = (head.bits & 0x40) != 0;
  const unsigned sign = (head.bits >> 8) & 0xff;
  if (vax && !type.big_endian) return "floating-point number has an unknown byte order";
  std::uint64_t offset = 0;
  std::uint64_t precision = 0;
  if (const Verdict bad = ParseBits(in, type.size, offset, precision)) return bad;
  const unsigned exponent = in.U8();
  const unsigned exponent_bits = in.U8();
  const unsigned mantissa = in.U8();
  const unsigned mantissa_bits = in.U8();
  const std::uint64_t bias = in.U32();
  if (!in.ok()) return kCutShort;
  // HDF5 relies on it that the first bit of a mantissa is set where it is not implied. Only the extended numbers of
  // processors are converted by these themselves.
  constexpr unsigned kImplied = 2;
  const bool is_extended = type.size == 16 && head.bits == 0x4f00 && precision == 80 && exponent == 64 &&
                           exponent_bits == 15 && mantissa == 0 && mantissa_bits == 64 && bias == 16383;
  if (((head.bits >> 4) & 3) != kImplied && !is_extended) {
    return "floating-point number has an unknown normalization";
  }
  const bool is_single = type.size == 4 && head.bits == 0x1f20 && exponent == 23 && exponent_bits == 8 &&
                         mantissa_bits == 23 && bias == 127;
  const bool is_double = type.size == 8 && head.bits == 0x3f20 && exponent == 52 && exponent_bits == 11 &&
                         mantissa_bits == 52 && bias == 1023;
  type.is_plain = (is_single || is_double) && offset == 0 && precision == 8U * type.size && mantissa == 0;
  const bool inside =
      sign < precision && exponent + exponent_bits <= precision && mantissa + mantissa_bits <= precision;
  return inside && exponent_bits > 0 && mantissa_bits > 0 ? nullptr
                                                          : "floating-point number has bits outside its bytes";
}

Verdict ParseBitfield(Cursor& in, Datatype& type) {
  std::uint64_t offset = 0;
  std::uint64_t precision = 0;
  return ParseBits(in, type.size, offset, precision);
}

Verdict ParseString(const Head& head) {
  const bool known = (head.bits & 0xf) <= 2 && ((head.bits >> 4) & 0xf) <= 1;
  return known ? nullptr : "text has an unknown padding or character set";
}

/// Passes the name of a member. Older versions fill it up to a multiple of 8 bytes.
Verdict PassName(Cursor& in, unsigned version) {
  const std::size_t start = in.taken();
  in.Text();
  if (version < 3) in.AlignFrom(start);
  return in.ok() ? nullptr : "name of a type's member does not end";
}

/// The extents that version 1 gives a member itself.
Verdict PassMemberExtents(Cursor& in, std::uint64_t& count) {
  const unsigned rank = in.U8();
  in.Skip(3 + 4 + 4);
  if (rank > 4) return "member of a type has more than 4 dimensions";
  for (unsigned i = 0; i < 4; ++i) {
    const std::uint64_t extent = in.U32();
    if (i < rank && (extent == 0 || !Multiply(count, extent, count))) return "member of a type has impossible extents";
  }
  return nullptr;
}

Verdict ParseMember(Cursor& in, const Head& head, Datatype& whole, int depth) {
  if (const Verdict bad = PassName(in, head.version)) return bad;
  const std::uint64_t offset = head.version < 3 ? in.U32() : in.Number(BytesFor(whole.size));
  std::uint64_t count = 1;
  if (head.version == 1) {
    if (const Verdict bad = PassMemberExtents(in, count)) return bad;
  }
  Datatype member;
  if (const Verdict bad = Parse(in, member, depth + 1)) return bad;
  whole.holds_variable |= member.holds_variable;
  whole.holds_reference |= member.holds_reference;
  std::uint64_t size = 0;
  const bool fits = Multiply(count, member.size, size) && offset <= whole.size && size <= whole.size - offset;
  return fits ? nullptr : "member passes the end of its type";
}

Verdict ParseCompound(Cursor& in, const Head& head, Datatype& type, int depth) {
  const unsigned members = head.bits & 0xffff;
  if (members == 0) return "compound type has no members";
  for (unsigned i = 0; i < members; ++i) {
    if (const Verdict bad = ParseMember(in, head, type, depth)) return bad;
  }
  return nullptr;
}

Verdict ParseReference(const Cursor& in, const Head& head, const Datatype& type) {
  const unsigned kind = head.bits & 0xf;
  const unsigned address = in.widths().offset;
  if (kind > 4) return "reference is of an unknown kind";
  const bool old_size = (kind == 0 && type.size == address) || (kind == 1 && type.size == address + 4);
  return kind > 1 || old_size ? nullptr : "reference has a wrong size";
}

Verdict ParseEnum(Cursor& in, const Head& head, const Datatype& type, int depth) {
  const unsigned members = head.bits & 0xffff;
  Datatype base;
  if (const Verdict bad = Parse(in, base, depth + 1)) return bad;
  if (base.type_class != TypeClass::kFixed || base.size != type.size) return "enumeration is not of its integer's size";
  if (members == 0) return "enumeration has no members";
  for (unsigned i = 0; i < members; ++i) {
    if (const Verdict bad = PassName(in, head.version)) return bad;
  }
  in.Skip(std::uint64_t{members} * base.size);
  return in.ok() ? nullptr : kCutShort;
}

Verdict ParseVariable(Cursor& in, const Head& head, Datatype& type, int depth) {
  if ((head.bits & 0xf) > 1) return "variable-length type is of an unknown kind";
  type.variable_text = (head.bits & 0xf) == 1;
  if (type.size != in.widths().offset + 8U) return "variable-length type has a wrong size";
  Datatype base;
  if (const Verdict bad = Parse(in, base, depth + 1)) return bad;
  type.base_size = base.size;
  type.holds_reference = base.holds_reference;
  return nullptr;
}

Verdict ParseArray(Cursor& in, const Head& head, Datatype& type, int depth) {
  if (head.version < 2) return "array type has an unknown version";
  const unsigned rank = in.U8();
  if (head.version == 2) in.Skip(3);
  if (rank == 0 || rank > kMaxRank) return "array type has an impossible number of dimensions";
  std::uint64_t count = 1;
  for (unsigned i = 0; i < rank; ++i) {
    const std::uint64_t extent = in.U32();
    if (in.ok() && (extent == 0 || !Multiply(count, extent, count))) return "array type has impossible extents";
  }
  if (head.version == 2) in.Skip(4 * rank);
  Datatype base;
  if (const Verdict bad = Parse(in, base, depth + 1)) return bad;
  type.base_size = base.size;
  type.holds_variable = base.holds_variable;
  type.holds_reference = base.holds_reference;
  std::uint64_t size = 0;
  return Multiply(count, base.size, size) && size == type.size ? nullptr : "array type is not of its elements' size";
}

Verdict ParseProperties(Cursor& in, const Head& head, Datatype& type, int depth) {
  type.holds_variable = type.type_class == TypeClass::kVariable;
  type.holds_reference = type.type_class == TypeClass::kReference;
  switch (type.type_class) {
    case TypeClass::kFixed:
      return ParseFixed(in, head, type);
    case TypeClass::kFloat:
      return ParseFloat(in, head, type);
    case TypeClass::kTime:
      in.Skip(2);
      return nullptr;
    case TypeClass::kString:
      type.is_plain = true;
      return ParseString(head);
    case TypeClass::kBitfield:
      return ParseBitfield(in, type);
    case TypeClass::kOpaque:
      in.Skip(head.bits & 0xff);
      return nullptr;
    case TypeClass::kCompound:
      return ParseCompound(in, head, type, depth);
    case TypeClass::kReference:
      return ParseReference(in, head, type);
    case TypeClass::kEnum:
      return ParseEnum(in, head, type, depth);
    case TypeClass::kVariable:
      return ParseVariable(in, head, type, depth);
    case TypeClass::kArray:
      return ParseArray(in, head, type, depth);
  }
  return nullptr;
}

Verdict Parse(Cursor& in, Datatype& type, int depth) {
  if (depth > kDeepest) return "datatype is nested too deep";
  const unsigned first = in.U8();
  Head head{first >> 4, static_cast<std::uint32_t>(in.Number(3))};
  type = Datatype();
  type.size = in.U32();
  if (!in.ok()) return kCutShort;
  if (head.version < 1 || head.version > 4) return "datatype message has an unknown version";
  if ((first & 0xf) > static_cast<unsigned>(TypeClass::kArray)) return "datatype is of an unknown class";
  if (type.size == 0) return "datatype has no size";
  type.type_class = static_cast<TypeClass>(first & 0xf);
  if (const Verdict bad = ParseProperties(in, head, type, depth)) return bad;
  return in.ok() ? nullptr : kCutShort;
}

}  // namespace

Verdict ParseDatatype(Cursor& in, Datatype& type) { return Parse(in, type, 0); }

}  // namespace orvio::structure
