#pragma once

// The first half of a value fetch: what is read of which block, and how much that is. The file is asked for counts
// only.

#include <optional>
#include <vector>

#include "result/hyper_slab.h"
#include "result/result_kinds.h"
#include "result/value_fetch.h"

namespace orvio {

/// What does not change during a fetch.
struct FetchRequest {
  const char* file;
  int state;
  int layer;
  bool want_ids;
  bool one_by_one;    ///< component by component, where a handle is fetched
  _ORVDataType type;  ///< of the values in memory
  std::size_t size;   ///< bytes of one of them
};

/// A block and what is read of it.
struct FetchShare {
  ORVResult* block;
  std::uint64_t values = 0;  ///< values of its selections; 0 for a block that is passed over
  ORVHyperSlab slab = {};    ///< what is read at once: the bounds of its selections
  bool whole = false;        ///< the slab is all that the block holds
  bool absent = false;       ///< its values are not in the asked state, and not among the totals

  /// Tried before the slab, where it is all of a block whose values may be stored without the axis of layers.
  std::optional<ORVHyperSlab> without_layers = {};
};

/// Selections of one block for a handle, one per stored component.
class HandleSelections {
 public:
  HandleSelections(ORVResult& block, int ext_id, int layer);
  ~HandleSelections();
  HandleSelections(const HandleSelections&) = delete;
  HandleSelections& operator=(const HandleSelections&) = delete;

  std::vector<ORVHyperSlab*>& slabs() { return slabs_; }

 private:
  std::vector<ORVHyperSlab*> slabs_;
};

/// Values of a slab as an array has to hold them; 0 for what no header can mean.
std::uint64_t SlabValues(ORVHyperSlab& slab);

/// The slab of all values of a block; elements without layers are taken for stored without that axis. Nothing for a key
/// that is none of results, and for a negative count of a damaged header.
std::optional<ORVHyperSlab> WholeSlab(const ORVResult& block);

/// Whether a slab is all that a block of one variable holds, so that the block may be read whole. Elements without
/// layers have one.
bool IsWhole(const ORVResult& block, const ResultKind& kind, const ORVHyperSlab& slab);

class FetchPlan {
 public:
  FetchPlan(const FetchRequest& request, const std::vector<ORVResult*>& blocks);

  /// False when there is nothing to read.
  [[nodiscard]] bool Make(const FetchQuantity& quantity);

  /// Whether a host can count the values, and the file stands behind those that take more than `room`, which is there
  /// already. Blocks that are not in the asked state leave totals that are too large.
  [[nodiscard]] bool MayBeMade(std::uint64_t room);

  std::vector<FetchShare>& shares() { return shares_; }
  int ext_id() const { return ext_id_; }            ///< -1 for a fetch by name
  std::uint64_t values() const { return values_; }  ///< of all blocks

 private:
  void RefreshCounts();
  void SelectByName(FetchShare& share, const char* variable);
  void SelectByHandle(FetchShare& share);
  void Add(FetchShare& share, std::uint64_t values);
  [[nodiscard]] std::uint64_t LeaveOutAbsent();  ///< answers the values that nothing in the file stands behind

  const FetchRequest& request_;
  std::vector<FetchShare> shares_;
  int ext_id_ = -1;
  std::uint64_t values_ = 0;
  std::uint64_t entities_ = 0;
};

}  // namespace orvio
