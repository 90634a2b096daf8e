// Versions 0 to 3 of the superblock.

#include "structure/superblock.h"

#include "structure/jenkins.h"
#include "structure/symbol_entry.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 48;

/// The superblock's own idea of the file.
struct Space {
  std::uint64_t base = 0;
  std::uint64_t end = 0;
  Widths widths;
};

bool FindSignature(Walk& walk, std::uint64_t& place) {
  for (place = 0; place < walk.view.FileSize(); place = place == 0 ? 512 : 2 * place) {
    Cursor in = walk.view.At(place, 8);
    if (in.U64() == 0x0a1a0a0d46444889ULL && in.ok()) return true;
  }
  return walk.Refuse(0, "file has no HDF5 signature");
}

bool SetWidths(Walk& walk, std::uint64_t place, unsigned offset, unsigned length, Space& space) {
  const auto known = [](unsigned width) { return width == 2 || width == 4 || width == 8; };
  if (!known(offset) || !known(length)) return walk.Refuse(place, "addresses or lengths are of an unknown width");
  space.widths = {static_cast<std::uint8_t>(offset), static_cast<std::uint8_t>(length)};
  return true;
}

/// What the superblock says counts from where it was written; what is in front of it may have changed since.
bool SetSpace(Walk& walk, std::uint64_t place, const Space& space) {
  if (space.end < space.base) return walk.Refuse(place, "file ends before it begins");
  const std::uint64_t end = space.end - space.base;
  if (end > walk.view.FileSize() - place) return walk.Refuse(place, "file is cut short");
  walk.view.SetSpace(place, end, space.widths);
  return true;
}

bool ReadOld(Walk& walk, std::uint64_t place, unsigned version, Superblock& superblock) {
  Cursor widths = walk.view.At(place, 16);
  widths.Skip(13);
  Space space;
  const unsigned offset = widths.U8();
  if (!SetWidths(walk, place, offset, widths.U8(), space)) return false;
  const std::uint64_t size = 24 + (version == 1 ? 4U : 0U) + 6U * offset + 24;
  walk.view.SetSpace(0, walk.view.FileSize(), space.widths);
  Cursor in = walk.view.At(place, size);
  in.Skip(16);
  walk.ranks.group_leaf = in.U16();
  walk.ranks.group_node = in.U16();
  in.Skip(4);
  if (version == 1) walk.ranks.chunk_node = in.U16();
  if (version == 1) in.Skip(2);
  space.base = in.Address();
  const std::uint64_t free_space = in.Address();
  space.end = in.Address();
  const std::uint64_t driver = in.Address();
  SymbolEntry root;
  ParseSymbolEntry(in, root);
  if (!in.ok()) return walk.Refuse(place, "file is cut short");
  if (walk.ranks.group_leaf == 0 || walk.ranks.group_node == 0 || walk.ranks.chunk_node == 0) {
    return walk.Refuse(place, "superblock gives trees no room");
  }
  if (free_space != kUndefined) return walk.Refuse(place, "file keeps its free space");
  if (driver != kUndefined) return walk.Refuse(place, "file was written by a driver of its own");
  superblock.root = root.header;
  if (root.kind == SymbolEntry::kGroup) superblock.root_note = {root.tree, root.heap};
  return SetSpace(walk, place, space);
}

bool ReadNew(Walk& walk, std::uint64_t place, Superblock& superblock) {
  Cursor widths = walk.view.At(place, 12);
  widths.Skip(9);
  Space space;
  const unsigned offset = widths.U8();
  if (!SetWidths(walk, place, offset, widths.U8(), space)) return false;
  walk.view.SetSpace(0, walk.view.FileSize(), space.widths);
  const std::uint64_t size = 12 + 4U * offset + 4;
  Cursor in = walk.view.At(place, size);
  in.Skip(12);
  space.base = in.Address();
  superblock.extension = in.Address();
  space.end = in.Address();
  superblock.root = in.Address();
  if (!in.ok()) return walk.Refuse(place, "file is cut short");
  if (!EndsWithChecksum(walk.view, place, size)) return walk.Refuse(place, "superblock does not match its checksum");
  return SetSpace(walk, place, space);
}

}  // namespace

bool ReadSuperblock(Walk& walk, Superblock& superblock) {
  if (walk.view.FileSize() > kLargestFile) return walk.Refuse(0, "file is too large");
  std::uint64_t place = 0;
  if (!FindSignature(walk, place)) return false;
  Cursor in = walk.view.At(place, 16);
  in.Skip(8);
  const unsigned version = in.U8();
  if (!in.ok()) return walk.Refuse(place, "file is cut short");
  if (version > 3) return walk.Refuse(place, "superblock has an unknown version");
  return version < 2 ? ReadOld(walk, place, version, superblock) : ReadNew(walk, place, superblock);
}

}  // namespace orvio::structure
