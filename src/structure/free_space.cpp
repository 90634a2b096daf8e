// Free-space managers: a header and one list of sections. Only who writes into the heap looks into the list.

#include "structure/free_space.h"

#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kChecksum = 4;

bool CheckSections(Walk& walk, std::uint64_t header, std::uint64_t list, std::uint64_t used, std::uint64_t size) {
  const std::uint64_t head = 5U + walk.view.widths().offset;
  Cursor in = walk.view.At(list, head);
  const bool known = in.Is("FSSE") && in.U8() == 0 && in.Address() == header;
  if (!known || !in.ok() || used < head + kChecksum || used > size) {
    return walk.Refuse(list, "free space is not where it should be");
  }
  if (!walk.Claim(list, size)) return false;
  return EndsWithChecksum(walk.view, list, used) || walk.Refuse(list, "free space does not match its checksum");
}

}  // namespace

bool CheckFreeSpace(Walk& walk, std::uint64_t header) {
  constexpr unsigned kOfHeap = 0;
  const Widths widths = walk.view.widths();
  const std::uint64_t size = 14U + 7U * widths.length + widths.offset + kChecksum;
  Cursor in = walk.view.At(header, size);
  const bool known = in.Is("FSHD") && in.U8() == 0 && in.U8() == kOfHeap;
  for (int i = 0; i < 4; ++i) in.Length();  // free bytes, sections of all kinds
  for (int i = 0; i < 4; ++i) in.U16();     // classes, when to shrink and grow, bits of an address
  in.Length();                              // largest section
  const std::uint64_t list = in.Address();
  const std::uint64_t used = in.Length();
  const std::uint64_t room = in.Length();
  if (!known || !in.ok()) return walk.Refuse(header, "free space is not where it should be");
  if (!walk.Claim(header, size)) return false;
  if (!EndsWithChecksum(walk.view, header, size)) {
    return walk.Refuse(header, "free space does not match its checksum");
  }
  return list == kUndefined || CheckSections(walk, header, list, used, room);
}

}  // namespace orvio::structure
