// Versions 1 and 2 of the dataspace message.

#include "structure/dataspace.h"

namespace orvio::structure {
namespace {

constexpr std::uint8_t kHasMaximum = 1;
constexpr std::uint8_t kSimple = 1;
constexpr std::uint8_t kNull = 2;

/// A length in which all bits set, in whatever width, means 'without limit'.
std::uint64_t Limit(Cursor& in) {
  const unsigned width = in.widths().length;
  const std::uint64_t value = in.Length();
  return width < 8 && value == (std::uint64_t{1} << (8 * width)) - 1 ? kUndefined : value;
}

Verdict ParseSizes(Cursor& in, bool has_maximum, Dataspace& space) {
  space.points = space.null ? 0 : 1;
  for (unsigned i = 0; i < space.rank; ++i) {
    space.size[i] = space.max[i] = in.Length();
    if (!Multiply(space.points, space.size[i], space.points)) return "dataspace has more elements than can be counted";
  }
  for (unsigned i = 0; has_maximum && i < space.rank; ++i) {
    space.max[i] = Limit(in);
    if (in.ok() && space.max[i] < space.size[i]) return "dataspace is larger than its own maximum";
  }
  return in.ok() ? nullptr : "dataspace message is cut short";
}

}  // namespace

Verdict ParseDataspace(Cursor in, Dataspace& space) {
  const unsigned version = in.U8();
  space.rank = in.U8();
  const unsigned flags = in.U8();
  if (in.ok() && version != 1 && version != 2) return "dataspace message has an unknown version";
  if (space.rank > kMaxRank) return "dataspace has more than 32 dimensions";
  if (flags > kHasMaximum) return "dataspace message has unknown flags";
  const unsigned type = version == 2 ? in.U8() : unsigned{kSimple};
  if (version == 1) in.Skip(5);
  if (type > kNull) return "dataspace is of an unknown kind";
  if (type != kSimple && space.rank > 0) return "dataspace without dimensions has some";
  space.null = type == kNull;
  return ParseSizes(in, (flags & kHasMaximum) != 0, space);
}

}  // namespace orvio::structure
