#pragma once

// The first half of a value fetch: what is read of which block, and how much that is. The file is asked for counts only.

#include <vector>

#include "result/hyper_slab.h"
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

class FetchPlan {
 public:
  FetchPlan(const FetchRequest& request, const std::vector<ORVResult*>& blocks);

  /// False when there is nothing to read.
  [[nodiscard]] bool Make(const FetchQuantity& quantity);

  /// Whether the arrays may be made: they fit into what a host can count, and the file stands behind them.
  [[nodiscard]] bool IsBacked() const;

  std::vector<FetchShare>& shares() { return shares_; }
  int ext_id() const { return ext_id_; }            ///< -1 for a fetch by name
  std::uint64_t values() const { return values_; }  ///< of all blocks
  std::uint64_t entities() const { return entities_; }

 private:
  void RefreshCounts();
  void SelectByName(FetchShare& share, const char* variable);
  void SelectByHandle(FetchShare& share);
  void Add(FetchShare& share, std::uint64_t values);

  const FetchRequest& request_;
  std::vector<FetchShare> shares_;
  int ext_id_ = -1;
  std::uint64_t values_ = 0;
  std::uint64_t entities_ = 0;
};

}  // namespace orvio
