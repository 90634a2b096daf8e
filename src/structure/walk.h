#pragma once

// What all parts of a structure check share: the file, the first fault, who owns what, and what is still to be visited.

#include <cstdint>
#include <optional>
#include <vector>

#include "structure/address_map.h"
#include "structure/datatype.h"
#include "structure/file_view.h"
#include "structure/known_attributes.h"
#include "structure/structure_check.h"
#include "structure/used_addresses.h"

namespace orvio::structure {

class CatalogueBuilder;

/// Entries that fill half a node of the old B-trees and symbol nodes; nodes hold twice as many.
struct TreeRanks {
  std::uint16_t group_leaf = 4;
  std::uint16_t group_node = 16;
  std::uint16_t chunk_node = 32;
};

/// What a symbol table entry remembers of the group that it leads to. Without a tree it is no note at all.
struct GroupNote {
  std::uint64_t tree = kUndefined;
  std::uint64_t heap = kUndefined;
};

/// The state of one check. Functions that walk answer false once there is a fault; the first one stays.
class Walk {
 public:
  explicit Walk(ByteSource& source) : view(source) {}

  FileView view;
  TreeRanks ranks;

  /// Notes what is wrong with the thing at `address`. Answers false.
  bool Refuse(std::uint64_t address, const char* what);
  /// The same for a verdict, which is null when nothing is wrong. Answers whether that is so.
  [[nodiscard]] bool Accept(std::uint64_t address, const char* verdict) {
    return verdict == nullptr || Refuse(address, verdict);
  }
  const std::optional<Fault>& fault() const { return fault_; }

  /// Takes `count` bytes at `address` for one owner. False when they pass the end, or are owned already.
  [[nodiscard]] bool Claim(std::uint64_t address, std::uint64_t count);
  /// The same for the header of the object that is visited: nothing but links lead to it, and it is visited once.
  [[nodiscard]] bool ClaimObject(std::uint64_t address, std::uint64_t count);
  /// Accounts for bytes that are looked at. In a sound file no two structures overlap, so that all of them together are
  /// no larger than the file; what asks for much more is there to keep us busy.
  [[nodiscard]] bool Spend(std::uint64_t address, std::uint64_t count);

  /// Is told what is met; null when nobody wants to know.
  CatalogueBuilder* catalogue = nullptr;

  /// For a look at one object alone: gets the addresses that are claimed, and no link is refused for where it leads.
  std::vector<std::uint64_t>* claims = nullptr;

  /// Puts an object on the list of those to visit, unless it was there before. `from` is the link.
  [[nodiscard]] bool AddObject(std::uint64_t from, std::uint64_t address, const GroupNote& note = {});
  /// An object to visit, and what the first entry with a note says about it.
  struct Next {
    std::uint64_t address = kUndefined;
    GroupNote note;
  };
  /// The next object to visit. What was put on the list since the last call comes first: many in the order of the file,
  /// so that it is read forwards. False when there is none.
  bool NextObject(Next& next);

  KnownAttributes known_attributes;
  AddressMap<Datatype> committed_types;    ///< by the address of their object header
  AddressMap<std::uint64_t> heap_objects;  ///< sizes of objects in global heaps; see global_heap.cpp for the keys
  AddressMap<bool> global_heaps;           ///< collections that were looked at

 private:
  /// What is known of an object when it is put on the list.
  struct Pending {
    std::uint64_t address;
    std::size_t note;  ///< position in notes_ and 1; 0: none
  };
  struct ObjectNote {
    std::uint64_t object;
    GroupNote note;
  };

  bool AgreeOnGroup(std::uint64_t from, std::uint64_t object, const GroupNote& note);
  void IndexNotes();

  std::optional<Fault> fault_;
  UsedAddresses uses_;
  std::vector<Pending> pending_;
  std::size_t in_order_ = 0;  ///< entries of pending_ that are in the order of visits
  std::vector<ObjectNote> notes_;
  AddressMap<std::size_t> note_of_;  ///< positions in notes_; only objects with several links are looked up
  std::size_t indexed_notes_ = 0;    ///< entries of notes_ that are in note_of_
  std::uint64_t spent_ = 0;
};

}  // namespace orvio::structure
