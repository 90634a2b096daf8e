// The walk over a file's structure: from the superblock to each object that links lead to, once each. What belongs to
// an object is walked when the object is visited; what it links to is put on a list, so that no depth of groups
// matters.

#include "structure/structure_check.h"

#include "structure/catalogue_builder.h"
#include "structure/object.h"
#include "structure/superblock.h"

namespace orvio::structure {
namespace {

bool WalkAll(Walk& walk) {
  Superblock superblock;
  if (!ReadSuperblock(walk, superblock)) return false;
  ObjectVisitor visitor(walk);
  if (superblock.extension != kUndefined && !visitor.VisitExtension(superblock.extension)) return false;
  if (!walk.AddObject(0, superblock.root, superblock.root_note)) return false;
  for (Walk::Next next; walk.NextObject(next);) {
    if (!visitor.Visit(next.address, next.note)) return false;
  }
  return true;
}

std::optional<Fault> Check(Walk& walk) {
  if (WalkAll(walk)) return std::nullopt;
  // What could not be read looks cut short to whoever wanted it.
  if (walk.view.Unreadable()) return Fault{walk.fault()->offset, "file cannot be read"};
  return walk.fault();
}

}  // namespace

std::optional<Fault> CheckStructure(ByteSource& source, std::unique_ptr<const Catalogue>& catalogue) {
  CatalogueBuilder builder;
  Walk walk(source);
  walk.catalogue = &builder;
  auto fault = Check(walk);
  catalogue = fault ? nullptr : builder.Finish(walk.view.base());
  return fault;
}

std::optional<Fault> CheckStructure(ByteSource& source) {
  Walk walk(source);
  return Check(walk);
}

std::optional<std::uint64_t> StoredEnd(ByteSource& source) {
  Walk walk(source);
  Superblock superblock;
  if (!ReadSuperblock(walk, superblock)) return std::nullopt;
  return walk.view.base() + walk.view.end();
}

}  // namespace orvio::structure
