#pragma once

// The walk through a tree of unknown names that finds every block in it.

#include <hdf5.h>

#include <map>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/orv_block.h"

namespace orvio {

/// Bounds of one walk. Links can form cycles and doubling ladders, so a walk enters no object that it is already
/// inside of, none more than 1,000 times, and goes down no further than 128 levels or 3000 bytes of path.
class WalkGuard {
 public:
  /// False when the walk shall not go into the object; else Leave must follow.
  bool Enter(const H5O_info1_t& object, std::size_t name_length);
  void Leave();

 private:
  struct Level {
    haddr_t object;
    std::size_t name_length;
  };

  std::vector<Level> way_down_;
  std::map<haddr_t, int> visits_;
  std::size_t path_length_ = 0;
};

/// Makes `block` the current block and walks everything below an open group, calling `action` for each stage of
/// each block found.
void WalkGroup(ORVBlock& block, hid_t group, ORVIterationCallBack action, int stages);

/// Makes `block` the current block of walks to come.
void PrepareWalk(ORVBlock& block, ORVIterationCallBack action, int stages);

/// Continues in another group under the same block, action and stages.
void ContinueWalk(ORVBlock& block, hid_t group);

}  // namespace orvio
