// The merge of fetched values. What a state builds upon is worked out in src/entity; the fetch of one state is in
// value_fetch.cpp.

#include "result/incr_values.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "entity/id_lookup.h"
#include "entity/incr_chain.h"
#include "filer/process_state.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "result/value_fetch_arrays.h"

namespace orvio {
namespace {

template <class T>
using Values = ORVResultValuesBase<T, int>;

/// One quantity of some blocks, in whatever state.
struct StateFetch {
  const char* file;
  const std::vector<ORVResult*>& blocks;
  const FetchQuantity& quantity;

  template <class T>
  [[nodiscard]] int At(int state, Values<T>& values, std::vector<FetchedRange>* stored_ids = nullptr) const {
    const Swapped asked(values.m_state, state);
    return FetchValues(file, values, blocks, quantity, stored_ids);
  }
};

/// The merge goes by ids, wanted or not. A host that does not want them gets back what it had: its own array, which nobody
/// has touched, and blocks that point where they pointed.
template <class T>
class IdsForMerge {
 public:
  IdsForMerge(Values<T>& values, const std::vector<ORVResult*>& blocks)
      : values_(values), borrowed_(!values.m_wantIds) {
    if (!borrowed_) return;
    ids_of_blocks_.reserve(blocks.size());
    for (ORVResult* block : blocks) {
      if (block) ids_of_blocks_.emplace_back(block, block->m_entid);
    }
    values.m_wantIds = 1;
    values.m_ids = nullptr;  // the fetch makes its own
  }

  ~IdsForMerge() {
    if (!borrowed_) return;
    for (const auto& [block, ids] : ids_of_blocks_) block->m_entid = ids;
    std::free(values_.m_ids);
    values_.m_wantIds = 0;
    values_.m_ids = own_ids_;
    values_.m_spare = own_mark_;
    if (own_ids_ && values_.m_capacity > own_capacity_) FetchArrays<T>::MarkIdsAsShort(values_);
  }

  IdsForMerge(const IdsForMerge&) = delete;
  IdsForMerge& operator=(const IdsForMerge&) = delete;

 private:
  Values<T>& values_;
  bool borrowed_;
  int* own_ids_ = values_.m_ids;
  int own_mark_ = values_.m_spare;
  int own_capacity_ = values_.m_capacity;
  std::vector<std::pair<ORVResult*, void*>> ids_of_blocks_;
};

/// The values of one state after the other, in the same arrays.
template <class T>
class ChangedValues : public Values<T> {
 public:
  explicit ChangedValues(const Values<T>& request) : Values<T>(request) {
    this->ResetOutParameter();
    this->m_wantIds = 1;
    this->m_capacity = 0;  // what the host has room for need not be made once more
  }
  ~ChangedValues() override { this->DeleteAllocation(false); }
  ChangedValues(const ChangedValues&) = delete;
  ChangedValues& operator=(const ChangedValues&) = delete;

  [[nodiscard]] bool Read(const StateFetch& fetch, int state) {
    if (fetch.At<T>(state, *this, &stored_ids_) != kOk || this->m_valueCount < 1) return false;
    this->m_capacity = std::max(this->m_capacity, this->m_valueCount);
    return true;
  }

  const std::vector<FetchedRange>& stored_ids() const { return stored_ids_; }

 private:
  std::vector<FetchedRange> stored_ids_;
};

/// QUIRK: one value goes over one other for each id, however many values an entity has. Hosts merge single components;
/// of more, only the first values change, at places of other entities. Pinned by
/// IncrValues.OfSeveralComponentsAreMergedAsIfThereWereOne.
template <class T>
void PutInPlace(const ChangedValues<T>& change, const ORVIdLookup& rows, Values<T>& whole) {
  const auto values = static_cast<std::uint64_t>(change.m_valueCount);
  for (const FetchedRange& range : change.stored_ids()) {
    for (std::uint64_t i = range.first; i < std::min(range.end, values); ++i) {
      const int row = rows.Find(change.m_ids[i]);
      if (row > 0 && row <= whole.m_valueCount) whole.m_values[row - 1] = change.m_values[i];
    }
  }
}

/// Rows of the entities that are stored with ids; of the others nobody can tell what has changed.
///
/// QUIRK: one table serves all blocks, so of blocks that share ids the last one gets the changes of all. Hosts ask for
/// entities of one numbering at a time, and all readers of such files give the same values for them. Pinned by
/// IncrValues.OfBlocksThatShareIdsChangeInTheLastOne.
template <class T>
ORVIdLookup RowsOf(const Values<T>& whole, const std::vector<FetchedRange>& stored_ids) {
  ORVIdLookup rows(whole.m_idCount);
  for (const FetchedRange& range : stored_ids) {
    for (std::uint64_t i = range.first; i < range.end; ++i) rows.Set(whole.m_ids[i], static_cast<int>(i + 1));
  }
  return rows;
}

template <class T>
void Merge(const StateFetch& fetch, const std::vector<int>& states, const ORVIdLookup& rows, Values<T>& whole) {
  // Changes are read into copies: the blocks go on pointing at the answer, with its counts.
  std::vector<ORVResult> copies;
  copies.reserve(fetch.blocks.size());
  std::vector<ORVResult*> blocks;
  for (const ORVResult* block : fetch.blocks) {
    if (block) blocks.push_back(&copies.emplace_back(*block));
  }
  const StateFetch changes = {fetch.file, blocks, fetch.quantity};
  ChangedValues<T> change(whole);
  for (const int state : states) {
    if (change.Read(changes, state)) PutInPlace(change, rows, whole);  // what cannot be read is left out
  }
}

}  // namespace

template <class T>
int FetchIncrValues(const char* file, const IncrStateMap& map, Values<T>& values, const std::vector<ORVResult*>& blocks,
                    const FetchQuantity& quantity) {
  const h5::ShortLease held(file);
  const StateFetch fetch = {file, blocks, quantity};
  const int state = values.m_state;
  const std::optional<std::size_t> place = FindStateRecord(map, state);
  if (!place) return fetch.At(state, values);
  if (map[*place].chain == *place) return fetch.At(map[*place].state, values);
  const IncrChain chain = ChainOf(map, *place, state, state);
  if (state < chain.base) return kFail;
  const IdsForMerge<T> ids(values, blocks);
  std::vector<FetchedRange> stored_ids;
  if (fetch.At(chain.base, values, &stored_ids) != kOk || values.m_valueCount < 1) return kFail;
  Merge(fetch, chain.changes, RowsOf(values, stored_ids), values);
  return kOk;
}

template int FetchIncrValues(const char*, const IncrStateMap&, Values<float>&, const std::vector<ORVResult*>&,
                             const FetchQuantity&);
template int FetchIncrValues(const char*, const IncrStateMap&, Values<double>&, const std::vector<ORVResult*>&,
                             const FetchQuantity&);

}  // namespace orvio
