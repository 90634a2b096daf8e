// Links and what tells where links and attributes are.

#include "structure/link.h"

namespace orvio::structure {
namespace {

constexpr Verdict kCutShort = "link message is cut short";
constexpr std::uint64_t kLongestName = 64 * 1024;

Verdict ParseExternal(Cursor target) {
  const unsigned version_and_flags = target.U8();
  target.Text();  // file
  target.Text();  // object
  return target.ok() && version_and_flags == 0 ? nullptr : "external link has no sound target";
}

Verdict ParseTarget(Cursor& in, Link& link) {
  if (link.kind == static_cast<unsigned>(Link::Kind::kHard)) {
    link.address = in.Address();
    return nullptr;
  }
  const unsigned length = in.U16();
  const Cursor target = in.Take(length);
  if (!in.ok()) return kCutShort;
  if (link.kind == static_cast<unsigned>(Link::Kind::kSoft)) return length > 0 ? nullptr : "soft link has no target";
  return link.kind == static_cast<unsigned>(Link::Kind::kExternal) ? ParseExternal(target) : nullptr;
}

Verdict ParseDense(Cursor& in, bool by_creation, Dense& dense) {
  dense.heap = in.Address();
  dense.by_name = in.Address();
  dense.by_creation = by_creation ? in.Address() : kUndefined;
  if (!in.ok()) return "message about dense storage is cut short";
  return dense.heap != kUndefined && dense.by_name == kUndefined ? "dense storage has no index of names" : nullptr;
}

constexpr unsigned kTracksCreation = 1;
constexpr unsigned kIndexesCreation = 2;

/// Version and flags, as both messages about dense storage begin.
Verdict ParseDenseHead(Cursor& in, unsigned& flags) {
  const unsigned version = in.U8();
  flags = in.U8();
  const bool known = version == 0 && flags <= (kTracksCreation | kIndexesCreation);
  return known ? nullptr : "message about dense storage has an unknown version or flags";
}

}  // namespace

Verdict ParseLink(Cursor in, Link& link) {
  enum Flags { kNameWidth = 3, kHasOrder = 4, kHasKind = 8, kHasCharacterSet = 16, kAll = 31 };
  const unsigned version = in.U8();
  const unsigned flags = in.U8();
  if (in.ok() && (version != 1 || flags > kAll)) return "link message has an unknown version or flags";
  link.kind = (flags & kHasKind) != 0 ? in.U8() : std::uint8_t{0};
  if (link.kind > 1 && link.kind < 64) return "link is of an unknown kind";
  if ((flags & kHasOrder) != 0) in.Skip(8);
  if ((flags & kHasCharacterSet) != 0 && in.U8() > 1) return "name of a link has an unknown character set";
  const std::uint64_t length = in.Number(1U << (flags & kNameWidth));
  if (!in.ok()) return kCutShort;
  if (length == 0) return "link has no name";
  if (length > kLongestName) return "name of a link is too long";
  link.name_at = static_cast<std::uint32_t>(in.taken());
  link.name_size = static_cast<std::uint32_t>(length);
  in.Skip(length);
  if (const Verdict bad = ParseTarget(in, link)) return bad;
  return in.ok() ? nullptr : kCutShort;
}

Verdict ParseLinkInfo(Cursor in, Dense& dense) {
  unsigned flags = 0;
  if (const Verdict bad = ParseDenseHead(in, flags)) return bad;
  if ((flags & kTracksCreation) != 0) in.Skip(8);
  return ParseDense(in, (flags & kIndexesCreation) != 0, dense);
}

Verdict ParseAttributeInfo(Cursor in, Dense& dense) {
  unsigned flags = 0;
  if (const Verdict bad = ParseDenseHead(in, flags)) return bad;
  if ((flags & kTracksCreation) != 0) in.Skip(2);
  return ParseDense(in, (flags & kIndexesCreation) != 0, dense);
}

Verdict ParseGroupInfo(Cursor in) {
  constexpr unsigned kHasLimits = 1;
  constexpr unsigned kHasEstimates = 2;
  const unsigned version = in.U8();
  const unsigned flags = in.U8();
  if (version != 0 || flags > (kHasLimits | kHasEstimates)) return "group message has an unknown version or flags";
  if ((flags & kHasLimits) != 0) {
    const unsigned most_compact = in.U16();
    if (in.U16() > most_compact) return "group message has contradicting limits";
  }
  if ((flags & kHasEstimates) != 0) in.Skip(4);
  return in.ok() ? nullptr : "group message is cut short";
}

}  // namespace orvio::structure
