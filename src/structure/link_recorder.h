#pragma once

// The links of an old group, for a catalogue.

#include <cstdint>
#include <vector>

#include "structure/catalogue_builder.h"
#include "structure/local_heap.h"

namespace orvio::structure {

/// Takes the links of a group as its tree is walked. HDF5 finds a name by the keys of the tree: the links are handed on
/// only where each name is found that way, and in the order of names.
class LinkRecorder {
 public:
  LinkRecorder(Walk& walk, const LocalHeap& heap) : walk_(walk), heap_(heap) {}

  void Node(unsigned level);
  void Key(std::uint64_t text, unsigned level, bool is_last);
  void Entry(std::uint64_t text, std::uint64_t length, std::uint64_t header);
  /// The tree has come to its end.
  void HandOn();

 private:
  /// Names of one node of the lowest level.
  struct Run {
    std::size_t begin;
    std::size_t end;
  };
  /// Keys between which a node's own are, as places in the heap.
  struct Bounds {
    std::uint64_t low;
    std::uint64_t high;
  };

  std::string_view TextAt(std::uint64_t text, std::uint64_t length);
  bool IsInOrder(const std::vector<CatalogueBuilder::Link>& links) const;

  Walk& walk_;
  const LocalHeap& heap_;
  std::vector<CatalogueBuilder::Link> links_;  ///< node by node
  std::vector<Run> runs_;
  std::vector<Bounds> waiting_;  ///< of nodes that are still to come, as the walk has them
  Bounds bounds_{0, kUndefined};
  bool is_first_key_ = true;
  bool is_found_ = true;  ///< every name so far
  std::uint64_t key_ = 0;
  std::uint64_t last_text_ = kUndefined;  ///< where the last name is
};

}  // namespace orvio::structure
