// What the states of a file hold, and how those that hold changes alone are made whole.
#pragma once

#include <hdf5.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "copying/block_content.h"

namespace orvio::program {

/// The states of a file with their blocks, and which of these hold changes alone.
class StateScan {
 public:
  /// Without a look at them no state holds changes, or elements of its own. Throws Trouble for what cannot be read.
  StateScan(hid_t file, std::vector<std::string> state_paths, std::string shown_as, bool looks);

  int states() const { return static_cast<int>(paths_.size()); }
  const std::string& PathOf(int state) const { return paths_[static_cast<std::size_t>(state - 1)]; }
  /// Whether a state holds changes alone, in any block.
  bool HasChanges() const { return !incremental_.empty(); }
  /// The last state up to this one with elements of its own; 0: those of the constant section hold.
  int MeshOf(int state) const;
  bool HasOwnMesh() const { return !meshes_.empty(); }

  /// A block as it stands at a state, changes put together. `place` is that of the block in the state.
  BlockContent ReadWhole(const BlockPlace& place, int state) const;
  /// Blocks that this state does not store, and that an earlier one did where states hold changes: what holds at such a
  /// state is what the closest earlier one has.
  std::vector<BlockPlace> InheritedAt(int state) const;
  /// The state that a place is in.
  int StateOf(const BlockPlace& place) const;

 private:
  struct Stage {
    int state = 0;
    bool holds_changes = false;
    std::int64_t identifier = 0;  ///< of its index; the number of the state without one
    BlockPlace place;
  };

  struct Chain {
    std::vector<Stage> stages;  ///< in the order in which they build upon each other
    std::set<int> stored_in;    ///< states with the block
  };

  void Look();
  void FindIdentifier(Stage& stage) const;
  BlockContent ReadStage(const Stage& stage) const;

  hid_t file_;
  std::vector<std::string> paths_;
  std::string shown_as_;
  std::vector<int> meshes_;                   ///< states with elements of their own
  std::map<std::string, Chain> incremental_;  ///< by the place below a state, of blocks with changes
};

}  // namespace orvio::program
