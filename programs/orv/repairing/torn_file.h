// A file whose structure is damaged, looked at one object at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "structure/object.h"
#include "structure/walk.h"

namespace orvio::program {

/// What a superblock says, as far as it can be believed, and where it says so.
struct Frame {
  std::uint64_t place = 0;  ///< byte in the file where the superblock is; addresses count from there
  unsigned version = 0;
  std::uint64_t size = 0;  ///< of the superblock
  structure::Widths widths;
  structure::TreeRanks ranks;
  std::uint64_t stored_base = 0, stored_end = 0;
  std::uint64_t root = structure::kUndefined, extension = structure::kUndefined;
  structure::GroupNote root_note;

  // Where in the superblock its fields are.
  std::uint64_t free_space_at = 0, extension_at = 0, end_at = 0, driver_at = 0, root_at = 0;
};

/// What one look at an object finds.
struct Look {
  bool is_sound = false;  ///< the object and all that is its own; what it links to is another matter
  structure::Fault fault;
  structure::Object object;
  std::vector<std::uint64_t> claims;  ///< where its structures are
  std::vector<std::uint64_t> leads;   ///< objects that it leads to
};

class TornFile {
 public:
  explicit TornFile(structure::ByteSource& source) : source_(source) {}

  /// False when there is no superblock that can be used.
  [[nodiscard]] bool ReadFrame();
  Frame& frame() { return frame_; }
  const Frame& frame() const { return frame_; }
  std::uint64_t FileSize() const { return source_.Size(); }
  /// Bytes of the file behind the superblock, which is what addresses reach.
  std::uint64_t End() const { return source_.Size() - frame_.place; }
  std::uint64_t ByteOf(std::uint64_t address) const { return frame_.place + address; }

  /// The header of a damaged group may be sound.
  enum class Part { kWhole, kHeader };
  Look LookAt(std::uint64_t address, Part part) const;
  /// Whether the attributes that are not in an object's header are sound.
  bool HasSoundAttributes(const structure::Object& object) const;
  /// The header with messages about the file.
  std::optional<structure::Fault> LookAtExtension();

  structure::ByteSource& source() const { return source_; }

 private:
  structure::ByteSource& source_;
  Frame frame_;
};

/// A walk through a torn file that has seen nothing yet.
class FreshWalk : public structure::Walk {
 public:
  explicit FreshWalk(const TornFile& file) : Walk(file.source()) {
    view.SetSpace(file.frame().place, file.End(), file.frame().widths);
    ranks = file.frame().ranks;
  }
};

}  // namespace orvio::program
