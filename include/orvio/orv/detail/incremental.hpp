#pragma once

/// States of a block that hold only what changed: which states they build upon, and how their values are put together.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

/// A filer that shows the index of a block.
class IndexFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadIncrIndex;
};

/// The rows of a block's index. Their array is freed with it.
class OwnIndex : public ORVIncrIndex {
 public:
  OwnIndex() = default;
  OwnIndex(const OwnIndex&) = delete;
  OwnIndex& operator=(const OwnIndex&) = delete;
  ~OwnIndex() override { ClearAll(); }
};

/// What the values of a state are made of.
struct StateChain {
  int base = 0;              ///< the state that is read as it stands
  std::vector<int> changes;  ///< those whose changes follow, in order
};

/// The states of the blocks that were asked about.
class StateChains {
 public:
  /// Throws Error for a block whose index does not tell.
  StateChain find(const std::string& file, IndexFiler& filer, const ORVResult& block, int state) {
    const std::vector<Entry>& order = order_of(filer, block);
    const auto place =
        std::find_if(order.begin(), order.end(), [&](const Entry& entry) { return entry.state == state; });
    auto first = place;
    while (first != order.begin() && first != order.end() && first->holds_changes) --first;
    if (place == order.end() || first->state > state) {
      throw Error(file, "holds changes, and there is no telling what they build upon",
                  "its states must have one index column, with an identifier of their own each", block.GetBlkPath(),
                  state);
    }
    StateChain chain;
    chain.base = first->state;
    for (auto entry = first; entry != place; ++entry) {
      if ((entry + 1)->state <= state) chain.changes.push_back((entry + 1)->state);
    }
    return chain;
  }
  void clear() { orders_.clear(); }

 private:
  struct Entry {
    int state;
    bool holds_changes;
  };

  /// States stand in the order of their identifiers. Of several with the same one the first counts.
  const std::vector<Entry>& order_of(IndexFiler& filer, const ORVResult& listed) {
    const auto [known, is_new] = orders_.try_emplace(listed.GetBlkPath());
    std::vector<Entry>& order = known->second;
    if (!is_new) return order;
    ORVResult block = listed;
    OwnIndex index;
    std::vector<int> states, flags;
    if (filer.ReadIncrIndex(block, index, 1) != 0 || index.GetNumIndex() != 1) return order;
    if (index.GetStateIncrFlagInfo(states, flags) != 0) return order;
    std::map<int, std::size_t> rows;
    for (std::size_t row = 0; row < states.size(); ++row) rows.emplace(index.GetIndexIds()[row], row);
    for (const auto& [identifier, row] : rows) order.push_back({states[row], flags[row] != 0});
    return order;
  }

  std::map<std::string, std::vector<Entry>> orders_;  ///< by the path of the block
};

/// Values of one state after the other are put over those of the first one, by ids. The entities stay those of the first.
template <class T>
class Merge {
 public:
  /// False for ids that do not tell the entities apart.
  bool begin(Values<T> whole) {
    whole_ = std::move(whole);
    for (std::size_t i = 0; i < whole_.ids.size(); ++i) rows_.emplace(whole_.ids[i], i);
    return rows_.size() == whole_.ids.size();
  }
  /// False for values of another shape, and as above.
  bool add(const Values<T>& change) {
    const std::size_t width = whole_.row_size();
    if (change.row_size() != width || change.is_complex != whole_.is_complex || change.layers != whole_.layers) {
      return false;
    }
    std::unordered_map<std::int64_t, std::size_t> seen;
    for (std::size_t i = 0; i < change.ids.size(); ++i) {
      if (!seen.emplace(change.ids[i], i).second) return false;
      const auto row = rows_.find(change.ids[i]);
      if (row != rows_.end()) std::copy_n(change.row(i), width, whole_.data.data() + row->second * width);
    }
    return true;
  }
  Values<T> take() { return std::move(whole_); }

 private:
  Values<T> whole_;
  std::unordered_map<std::int64_t, std::size_t> rows_;
};

}  // namespace orv::detail
