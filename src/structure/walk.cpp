// Bookkeeping of a check: each rule here holds for structures of every kind.

#include "structure/walk.h"

#include <algorithm>

namespace orvio::structure {

bool Walk::Refuse(std::uint64_t address, const char* what) {
  if (!fault_) fault_ = Fault{view.base() + address, what};
  return false;
}

bool Walk::Claim(std::uint64_t address, std::uint64_t count) {
  if (!view.Holds(address, count)) return Refuse(address, "structure passes the end of the file");
  if (uses_.Take(address, Use::kStructure) != Use::kNothing) return Refuse(address, "structure has two owners");
  if (claims) claims->push_back(address);
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
  if (!view.Holds(address, 1)) return claims || Refuse(from, "link leads out of the file");
  const Use before = uses_.Take(address, Use::kObject);
  if (before == Use::kStructure) return claims || Refuse(address, "structure has two owners");
  const bool has_note = note.tree != kUndefined;
  if (before == Use::kObject) return !has_note || AgreeOnGroup(from, address, note);
  if (has_note) notes_.push_back({address, note});
  pending_.push_back({address, has_note ? notes_.size() : 0});
  return true;
}

bool Walk::AgreeOnGroup(std::uint64_t from, std::uint64_t object, const GroupNote& note) {
  IndexNotes();
  const auto known = note_of_.Insert(object);
  if (known.added) {
    known.value = notes_.size();
    notes_.push_back({object, note});
    return true;
  }
  const GroupNote& first = notes_[known.value].note;
  return (first.tree == note.tree && first.heap == note.heap) ||
         Refuse(from, "symbol table entries disagree about their group");
}

void Walk::IndexNotes() {
  for (; indexed_notes_ < notes_.size(); ++indexed_notes_) {
    const auto place = note_of_.Insert(notes_[indexed_notes_].object);
    if (place.added) place.value = indexed_notes_;
  }
}

bool Walk::NextObject(Next& next) {
  if (pending_.empty()) return false;
  // The next one is the last. A few lie close together in whatever order they are.
  constexpr std::size_t kFew = 4;
  if (pending_.size() - in_order_ > kFew) {
    std::sort(pending_.begin() + static_cast<std::ptrdiff_t>(in_order_), pending_.end(),
              [](const Pending& a, const Pending& b) { return a.address > b.address; });
  }
  const Pending object = pending_.back();
  pending_.pop_back();
  in_order_ = pending_.size();
  const std::size_t* late = object.note == 0 ? note_of_.Get(object.address) : nullptr;
  const std::size_t note = late ? *late + 1 : object.note;
  next = {object.address, note > 0 ? notes_[note - 1].note : GroupNote()};
  return true;
}

}  // namespace orvio::structure
