// Nodes, elements, parts, and what refers to them.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "checking/block.h"

namespace orvio::program {

/// Ids that were met, for questions in any number.
class IdSet {
 public:
  void Add(const std::vector<std::int64_t>& ids);
  bool Contains(std::int64_t id) const;
  bool empty() const { return ids_.empty(); }

 private:
  std::vector<std::int64_t> ids_;  ///< each once, in order
  std::vector<bool> dense_;        ///< by the distance from the first one; empty where ids lie far apart
};

/// Gets the blocks of a section or state in the order of `OrderOf`, the constant section first, then the states: what a
/// state brings holds in the later ones too.
class ModelCheck {
 public:
  explicit ModelCheck(Teller& teller) : teller_(teller) {}

  /// What must be known before connectivity, which must be known before results, goes first.
  static int OrderOf(const Block& block);

  /// Nodes of the elements of a connectivity block, before the block itself comes.
  void VisitNodes(const Block& block, std::span<const std::int64_t> nodes);
  void Check(const Block& block);

 private:
  void CheckIds(const Block& block, const char* dataset);
  void TakeConnectivity(const Block& block);
  void CheckParts(const Block& block);
  void CheckElementResult(const Block& block);
  void CheckCollector(const Block& block);

  Teller& teller_;
  std::map<std::string, IdSet> entities_, parts_, elements_;  ///< by the type, in lower case
  std::uint64_t unknown_nodes_ = 0;                           ///< of the block that is being visited
  std::int64_t first_unknown_ = 0;
};

}  // namespace orvio::program
