// Questions to the datasets of values themselves: each block is opened in the file.

#include "result/result_precision.h"

#include <algorithm>
#include <string>

#include "h5/disk_names.h"
#include "h5/status.h"
#include "orvio/orv_result.h"

namespace orvio {
namespace {

/// Where each block of a list is looked for, while the list is walked in order.
///
/// QUIRK: a multi-state block of the list changes the state for all behind it, which are then looked for in the section
/// of constants and as a rule not found. Hosts choose the buffers of a whole list by the answer, so it must not change for
/// a mixed one. Pinned by ResultPrecision.LooksForBlocksBehindAMultiStateBlockAmongConstants.
class StateOfBlocks {
 public:
  explicit StateOfBlocks(int state) : state_(state) {}

  int Of(const ORVResult& block) {
    if (block.IsConstantBlk()) return 0;
    if (block.IsMultistateBlk()) state_ = -1;
    return state_;
  }

 private:
  int state_;
};

/// Appends the number of filters of each block's dataset, and their ids. Without the dataset there are none.
void ReadDataSetFilterIds(const char* file, const std::vector<ORVResult*>& blocks, int state, const char* dataset,
                          std::vector<int>& counts, std::vector<int>& ids) {
  StateOfBlocks states(state);
  for (ORVResult* block : blocks) {
    if (!block) continue;
    const std::size_t before = ids.size();
    (void)block->ReadDatasetFilterIds(file, states.Of(*block), dataset, ids);
    counts.push_back(static_cast<int>(ids.size() - before));
  }
}

}  // namespace

bool HasDoublePrecision(const char* file, const std::vector<ORVResult*>& blocks, int state) {
  StateOfBlocks states(state);
  return std::ranges::any_of(blocks, [&](ORVResult* block) {
    std::vector<_ORVDataType> types;
    return block && block->ReadDatasetFileDataType(file, states.Of(*block), {disk::res}, types) == kOk &&
           types.front() == ORV_DOUBLE;
  });
}

bool IsDatasetHasFilterId(const char* file, const std::vector<ORVResult*>& blocks, int state, int filter) {
  std::vector<int> counts, ids;
  ReadDataSetFilterIds(file, blocks, state, disk::res, counts, ids);
  return std::ranges::find(ids, filter) != ids.end();
}

}  // namespace orvio
