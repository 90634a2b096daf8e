// The superblock without the rules that a sound one obeys, and single objects under all of them.

#include "repairing/torn_file.h"

#include <algorithm>
#include <memory>

#include "structure/dense.h"
#include "structure/symbol_entry.h"

namespace orvio::program {
namespace {

using namespace structure;

bool FindSignature(FileView& view, std::uint64_t& place) {
  constexpr std::uint64_t kSignature = 0x0a1a0a0d46444889ULL, kFirstOther = 512;
  for (place = 0; place < view.FileSize(); place = place == 0 ? kFirstOther : 2 * place) {
    Cursor in = view.At(place, 8);
    if (in.U64() == kSignature && in.ok()) return true;
  }
  return false;
}

bool AreKnown(unsigned offset, unsigned length) {
  const auto known = [](unsigned width) { return width == 2 || width == 4 || width == 8; };
  return known(offset) && known(length);
}

std::uint16_t OrDefault(std::uint16_t rank, std::uint16_t otherwise) { return rank == 0 ? otherwise : rank; }

bool ReadOldFrame(FileView& view, Frame& frame) {
  constexpr std::uint64_t kBeforeAddresses = 24, kMoreOfVersion1 = 4, kEntryWithoutAddresses = 24;
  Cursor widths = view.At(frame.place, 16);
  widths.Skip(13);
  const unsigned offset = widths.U8(), length = widths.U8();
  if (!widths.ok() || !AreKnown(offset, length)) return false;
  frame.widths = {static_cast<std::uint8_t>(offset), static_cast<std::uint8_t>(length)};
  view.SetSpace(0, view.FileSize(), frame.widths);
  const std::uint64_t addresses = kBeforeAddresses + (frame.version == 1 ? kMoreOfVersion1 : 0);
  frame.size = addresses + 6U * offset + kEntryWithoutAddresses;
  Cursor in = view.At(frame.place, frame.size);
  in.Skip(16);
  const TreeRanks usual;
  frame.ranks.group_leaf = OrDefault(in.U16(), usual.group_leaf);
  frame.ranks.group_node = OrDefault(in.U16(), usual.group_node);
  in.Skip(4);
  if (frame.version == 1) frame.ranks.chunk_node = OrDefault(in.U16(), usual.chunk_node);
  if (frame.version == 1) in.Skip(2);
  frame.stored_base = in.Address();
  frame.free_space_at = in.taken();
  in.Address();
  frame.end_at = in.taken();
  frame.stored_end = in.Address();
  frame.driver_at = in.taken();
  in.Address();
  frame.root_at = in.taken();
  SymbolEntry root;
  ParseSymbolEntry(in, root);
  frame.root = root.header;
  if (root.kind == SymbolEntry::kGroup) frame.root_note = {root.tree, root.heap};
  return in.ok();
}

bool ReadNewFrame(FileView& view, Frame& frame) {
  constexpr std::uint64_t kBeforeAddresses = 12, kChecksum = 4;
  Cursor widths = view.At(frame.place, kBeforeAddresses);
  widths.Skip(9);
  const unsigned offset = widths.U8(), length = widths.U8();
  if (!widths.ok() || !AreKnown(offset, length)) return false;
  frame.widths = {static_cast<std::uint8_t>(offset), static_cast<std::uint8_t>(length)};
  view.SetSpace(0, view.FileSize(), frame.widths);
  frame.size = kBeforeAddresses + 4U * offset + kChecksum;
  Cursor in = view.At(frame.place, frame.size);
  in.Skip(kBeforeAddresses);
  frame.stored_base = in.Address();
  frame.extension_at = in.taken();
  frame.extension = in.Address();
  frame.end_at = in.taken();
  frame.stored_end = in.Address();
  frame.root_at = in.taken();
  frame.root = in.Address();
  return in.ok();
}

}  // namespace

bool TornFile::ReadFrame() {
  constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 48;
  if (source_.Size() > kLargestFile) return false;
  FileView view(source_);
  if (!FindSignature(view, frame_.place)) return false;
  Cursor in = view.At(frame_.place, 16);
  in.Skip(8);
  frame_.version = in.U8();
  if (!in.ok() || frame_.version > 3) return false;
  return frame_.version < 2 ? ReadOldFrame(view, frame_) : ReadNewFrame(view, frame_);
}

Look TornFile::LookAt(std::uint64_t address, Part part) const {
  Look look;
  FreshWalk walk(*this);
  walk.claims = &look.claims;
  const auto visitor = std::make_unique<ObjectVisitor>(walk);  // large
  look.is_sound = part == Part::kHeader ? visitor->VisitHeader(address) : visitor->Visit(address, {});
  look.object = visitor->object();
  if (walk.fault()) look.fault = *walk.fault();
  look.is_sound = look.is_sound && !walk.fault();
  // Several objects keep texts in one global heap.
  std::erase_if(look.claims, [&](std::uint64_t claim) { return walk.global_heaps.Get(claim) != nullptr; });
  for (Walk::Next next; look.is_sound && walk.NextObject(next);) look.leads.push_back(next.address);
  return look;
}

bool TornFile::HasSoundAttributes(const Object& object) const {
  FreshWalk walk(*this);
  return WalkDenseAttributes(walk, object.attributes) && !walk.fault();
}

std::optional<Fault> TornFile::LookAtExtension() {
  FreshWalk walk(*this);
  const auto visitor = std::make_unique<ObjectVisitor>(walk);
  if (!visitor->VisitExtension(frame_.extension)) return walk.fault() ? *walk.fault() : Fault{};
  frame_.ranks = walk.ranks;
  return std::nullopt;
}

}  // namespace orvio::program
