// A value fetch: the blocks of a plan are read one behind the other into one array of values and one of ids. Sizing is
// in value_fetch_plan.cpp.

#include "result/value_fetch.h"

#include <algorithm>
#include <cstddef>

#include "block/file_in_use_by.h"
#include "filer/messages.h"
#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "result/result_complex.h"
#include "result/stored_values.h"
#include "result/value_fetch_arrays.h"
#include "result/value_fetch_plan.h"

namespace orvio {
namespace {

template <class T>
constexpr _ORVDataType kStoredType = ORV_FLOAT;
template <>
constexpr _ORVDataType kStoredType<double> = ORV_DOUBLE;

/// The second half of a fetch.
class ValueFetch {
 public:
  ValueFetch(const FetchRequest& request, FetchPlan& plan, void* values, int* ids)
      : request_(request), plan_(plan), values_(static_cast<std::byte*>(values)), ids_(ids) {}
  ~ValueFetch() { PointBlocksAtAnswer(); }
  ValueFetch(const ValueFetch&) = delete;
  ValueFetch& operator=(const ValueFetch&) = delete;

  void ReadBlocks();
  std::uint64_t values_read() const { return values_read_; }
  std::uint64_t ids_read() const { return ids_read_; }
  const std::vector<FetchedRange>& stored_ids() const { return stored_ids_; }

  /// Where the arrays are in the end.
  void Moved(void* values, int* ids) {
    delivered_ = true;
    values_ = static_cast<std::byte*>(values);
    ids_ = ids;
  }

 private:
  /// A block that was read from, and where its part of the answer starts.
  struct Place {
    ORVResult* block;
    std::uint64_t values;
    std::uint64_t ids;
    bool holds_values;
  };

  std::byte* PlaceOf(std::uint64_t value) const { return values_ + value * request_.size; }
  [[nodiscard]] std::uint64_t ReadAtOnce(FetchShare& share);
  [[nodiscard]] std::uint64_t ReadOneByOne(const FetchShare& share);
  [[nodiscard]] std::uint64_t Read(const FetchShare& share, ORVHyperSlab& slab, bool whole, bool with_ids,
                                   std::uint64_t place);
  void PointBlocksAtAnswer();

  const FetchRequest& request_;
  FetchPlan& plan_;
  std::byte* values_;
  int* ids_;
  std::uint64_t values_read_ = 0;
  std::uint64_t ids_read_ = 0;
  std::vector<FetchedRange> stored_ids_;
  bool block_has_ids_ = false;  ///< the last block whose ids were asked for is stored with them
  bool full_ = false;
  bool delivered_ = false;
  std::vector<Place> places_;
};

/// Values that a read of a slab leaves in the buffer: a converted pair becomes one.
std::uint64_t DeliveredBy(const ORVResult& block, const ORVHyperSlab& slab, std::uint64_t selected) {
  return IsConverted(block, {slab.m_rank, slab.m_start, slab.m_count}) ? selected / 2 : selected;
}

void ValueFetch::ReadBlocks() {
  places_.reserve(plan_.shares().size());
  const bool by_name = plan_.ext_id() == -1;
  const bool one_by_one = request_.one_by_one && !by_name;
  for (FetchShare& share : plan_.shares()) {
    ORVResult& block = *share.block;
    block.m_fetchSkip = 1;
    if (share.values == 0 && by_name) continue;  // not even looked at
    places_.push_back({&block, values_read_, ids_read_, false});
    const Swapped type(block.m_resType, request_.type);
    const Swapped id_type(block.m_entidType, request_.want_ids ? ORV_INT : block.m_entidType);
    const std::uint64_t values = one_by_one ? ReadOneByOne(share) : ReadAtOnce(share);
    if (full_) return;
    if (values == 0) continue;
    block.m_fetchSkip = 0;
    places_.back().holds_values = true;
    values_read_ += values;
    const std::uint64_t first_id = ids_read_;
    ids_read_ += static_cast<std::uint64_t>(block.m_nent);
    if (request_.want_ids && block_has_ids_) stored_ids_.push_back({first_id, ids_read_});
  }
}

/// Reads a slab into the place of a value, with the ids of the block where they are wanted. Answers the values, 0 when
/// it failed.
std::uint64_t ValueFetch::Read(const FetchShare& share, ORVHyperSlab& slab, bool whole, bool with_ids,
                               std::uint64_t place) {
  ORVResult& block = *share.block;
  // The host made its array of frames for a count that the block may have lost by an earlier fetch already.
  const Swapped<void*> frames(block.m_fid, nullptr);
  block.m_res = PlaceOf(place);
  if (request_.want_ids) block.m_entid = ids_ + ids_read_;
  block.m_readIds = with_ids ? 1 : 0;
  const int state = StateOf(block, request_.state);
  const int status = whole
                         ? block.ReadBlock(request_.file, state, ORV_READ_DATA)
                         : block.ReadSelectiveAttribute(request_.file, state, ORV_READ_DATA, ORV_ATT_RES, slab, false);
  if (with_ids) block_has_ids_ = block.m_readIds != 0;  // the read says so
  block.m_readIds = 0;
  if (status != kOk) return 0;
  if (with_ids && !block_has_ids_) std::fill_n(ids_ + ids_read_, block.m_nent, 0);
  return whole ? SlabValues(slab) : DeliveredBy(block, slab, SlabValues(slab));
}

/// One selection for the block: the bounds of all that is wanted of it, entity by entity as the dataset lies.
///
/// QUIRK: the bounds of components that lie apart hold more values than were counted for the answer. Where they do not
/// fit any more the fetch ends with what it has, so such a quantity delivers nothing of its last block. Hosts fetch it
/// component by component. Pinned by ValueFetch.EndsAtABlockWhoseComponentsLieApart.
std::uint64_t ValueFetch::ReadAtOnce(FetchShare& share) {
  const std::uint64_t values = SlabValues(share.slab);
  if (values == 0 || share.values == 0 || share.absent) return 0;
  full_ = values > plan_.values() - values_read_;
  if (full_) return 0;
  const auto read = [&](ORVHyperSlab& slab, bool whole) {
    PointAtOwnArrays(slab);
    return Read(share, slab, whole, request_.want_ids, values_read_);
  };
  const std::uint64_t flat = share.without_layers ? read(*share.without_layers, false) : 0;
  return flat > 0 ? flat : read(share.slab, share.whole);
}

/// One selection per stored component, component by component. A block that gives nothing forgets its data.
std::uint64_t ValueFetch::ReadOneByOne(const FetchShare& share) {
  ORVResult& block = *share.block;
  HandleSelections selections(block, plan_.ext_id(), request_.layer);
  std::uint64_t total = 0;
  for (ORVHyperSlab* slab : selections.slabs()) {
    const std::uint64_t values = SlabValues(*slab);
    if (values == 0) continue;
    if (share.absent || values > plan_.values() - values_read_ - total) break;
    const std::uint64_t read = Read(share, *slab, false, request_.want_ids && total == 0, values_read_ + total);
    if (read == 0) break;
    total += read;
  }
  if (total == 0) block.ResetSection(ORV_READ_DATA);
  return total;
}

/// Blocks keep pointing at their part of the answer; those without one point at nothing. So do those whose own type is
/// wider, be it that a query has found it in the file: their next read would go beyond the answer.
void ValueFetch::PointBlocksAtAnswer() {
  for (const Place& place : places_) {
    ORVResult& block = *place.block;
    const bool holds = delivered_ && place.holds_values;
    block.m_res = holds && !h5::IsWider(block.m_resType, request_.size) ? PlaceOf(place.values) : nullptr;
    if (!request_.want_ids) continue;
    block.m_entid = holds && !h5::IsWider(block.m_entidType, sizeof(int)) ? ids_ + place.ids : nullptr;
  }
}

}  // namespace

template <class T>
int FetchValues(const char* file, ORVResultValuesBase<T, int>& values, const std::vector<ORVResult*>& blocks,
                const FetchQuantity& quantity, std::vector<FetchedRange>* stored_ids) {
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    const FetchRequest request = {
        file, values.m_state, values.m_layer, values.m_wantIds != 0, values.m_fetchMode == 1, kStoredType<T>, sizeof(T),
    };
    const bool are_own =
        std::ranges::all_of(blocks, [](const ORVResult* block) { return !block || IsOwnBlock(*block); });
    const h5::FileInUse index(are_own ? file : nullptr);
    FetchPlan plan(request, blocks);
    if (!plan.Make(quantity)) return kFail;
    FetchArrays<T> arrays(values, are_own);
    const bool may_be_made = plan.MayBeMade(arrays.room());
    if (may_be_made && plan.values() == 0) return kFail;  // nothing of it is in this state
    if (!may_be_made || !arrays.Prepare(plan.values())) {
      SendFetchMessage(ORV_MESG_ERROR, "Memory allocation failed for (No. Values %lld)",
                       static_cast<long long>(std::min<std::uint64_t>(plan.values(), INT64_MAX)));
      return kFail;
    }
    ValueFetch fetch(request, plan, arrays.values(), arrays.ids());
    fetch.ReadBlocks();
    if (fetch.values_read() == 0) return kFail;
    if (stored_ids) *stored_ids = fetch.stored_ids();
    arrays.Deliver(fetch.values_read(), fetch.ids_read());
    fetch.Moved(values.m_values, values.m_ids);
    return kOk;
  });
}

template int FetchValues(const char*, ORVResultValuesBase<float, int>&, const std::vector<ORVResult*>&,
                         const FetchQuantity&, std::vector<FetchedRange>*);
template int FetchValues(const char*, ORVResultValuesBase<double, int>&, const std::vector<ORVResult*>&,
                         const FetchQuantity&, std::vector<FetchedRange>*);

}  // namespace orvio
