// Bookkeeping of a check: each rule here holds for structures of every kind.

#include "structure/walk.h"

namespace orvio::structure {

bool Walk::Refuse(std::uint64_t address, const char* what) {
  if (!fault_) fault_ = Fault{view.base() + address, what};
  return false;
}

bool Walk::Claim(std::uint64_t address, std::uint64_t count) {
  if (!view.Holds(address, count)) return Refuse(address, "structure passes the end of the file");
  if (!uses_.Insert(address).added) return Refuse(address, "structure has two owners");
  return Spend(address, count);
}

bool Walk::ClaimObject(std::uint64_t address, std::uint64_t count) {
  if (!view.Holds(address, count)) return Refuse(address, "structure passes the end of the file");
  return Spend(address, count);
}

bool Walk::Spend(std::uint64_t address, std::uint64_t count) {
  // Messages of dense links and attributes are looked at once per index, and a committed type when it is first used.
  constexpr std::uint64_t kLooks = 4;
  if (__builtin_add_overflow(spent_, count, &spent_) || spent_ / kLooks > view.end()) {
    return Refuse(address, "structures overlap");
  }
  return true;
}

bool Walk::AddObject(std::uint64_t from, std::uint64_t address, const GroupNote& note) {
  if (!view.Holds(address, 1)) return Refuse(from, "link leads out of the file");
  const auto place = uses_.Insert(address);
  Use& use = place.value;
  if (place.added) {
    use.is_object = true;
    pending_.push_back(address);
  }
  if (!use.is_object) return Refuse(address, "structure has two owners");
  if (note.tree == kUndefined) return true;
  if (use.note == 0) {
    notes_.push_back(note);
    use.note = static_cast<std::uint32_t>(notes_.size());
  }
  const GroupNote& first = notes_[use.note - 1];
  return (first.tree == note.tree && first.heap == note.heap) ||
         Refuse(from, "symbol table entries disagree about their group");
}

bool Walk::NextObject(std::uint64_t& address) {
  if (pending_.empty()) return false;
  address = pending_.back();
  pending_.pop_back();
  return true;
}

const GroupNote* Walk::NoteOf(std::uint64_t object) {
  const Use* use = uses_.Get(object);
  return use && use->note > 0 ? &notes_[use->note - 1] : nullptr;
}

}  // namespace orvio::structure
