// Reading of histories: the blocks are sized, read one behind the other into one array of values and one of ids, and
// their shapes become one. The index table beside them is read in entity/state_index_fill.cpp.

#include "result/multi_state_values.h"

#include <algorithm>
#include <string_view>

#include "block/file_in_use_by.h"
#include "block/reader_lease.h"
#include "entity/state_index_fill.h"
#include "filer/container.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/hyper_slab.h"
#include "result/result_complex.h"
#include "result/result_kinds.h"
#include "result/result_lookup.h"
#include "result/stored_values.h"
#include "result/value_fetch_plan.h"

namespace orvio {
namespace {

constexpr int kAnyZone = -1;
constexpr int kNoState = 0;  // state argument: the blocks stand in a section of their own

/// A block and what is read of it.
struct Share {
  ORVResult* block;
  ORVHyperSlab slab = {};
  std::uint64_t values = 0;
  bool whole = false;
};

/// Blocks of the type and one zone that hold the variable.
ResultList FindBlocks(const ORVContainer& data, const HistoryRequest& request) {
  ResultList blocks;
  if (request.type_name.empty() || request.variable.empty()) return blocks;
  const char* const types[] = {request.type_name.c_str()};
  const char* const names[] = {request.variable.c_str()};
  const ResultQuery query{
      .type_names = types, .names = names, .test = NameTest::kVariableName, .needs_components = false};
  FindResults(data.multi_results, query, blocks);
  if (blocks.empty()) return blocks;
  const std::int64_t zone = request.zone == kAnyZone ? blocks.front()->m_zoneid : request.zone;
  std::erase_if(blocks, [zone](const ORVResult* block) { return block->m_zoneid != zone; });
  return blocks;
}

/// The key of the first variable of that name; empty without one.
std::string KeyOfVariable(const ORVContainer& data, const std::string& name) {
  const auto found = std::ranges::find_if(
      data.variables, [&](const ORVVariable* v) { return EqualIgnoringCase(Content(v->m_varnam), name); });
  return found == data.variables.end() ? std::string() : std::string(Content((*found)->m_varkey));
}

bool Select(ORVResult& block, const std::string& name, ORVHyperSlab& slab) {
  return !name.empty() && block.FillDependentForVarGrp(name.c_str(), slab, ORV_ALL_LAYERS, 0, ORV_ALL_ENTITIES) == kOk;
}

/// Elements without layers have no place on that axis, so their selection is empty. One that would be all of the block
/// is taken for stored without the axis, as a fetch does.
void LeaveOutMissingLayers(const ORVResult& block, const ResultKind& kind, ORVHyperSlab& slab) {
  const int layers = kind.PositionOf(ORV_DIM_LAYER);
  if (layers < 0 || block.m_numl != 0) return;
  ORVHyperSlab with_one = slab;
  with_one.m_count[layers] = 1;
  if (!IsWhole(block, kind, with_one)) return;
  slab = WholeSlab(block).value_or(slab);
  PointAtOwnArrays(slab);
}

class HistoryReader {
 public:
  HistoryReader(const ORVContainer& data, const ResultList& blocks) : data_(data), blocks_(blocks) {}

  /// Makes the selections. False when there is nothing to read, or more than the file stands behind.
  [[nodiscard]] bool Plan(const std::string& variable);
  /// Reads what was planned. False when no block could be read, or when the blocks have no shape in common.
  [[nodiscard]] bool ReadBlocks(Histories& histories);

 private:
  [[nodiscard]] bool AddUp();
  [[nodiscard]] bool IsBacked();
  [[nodiscard]] bool Read(const Share& share, Histories& histories);
  [[nodiscard]] bool TellShape(Histories& histories);

  const ORVContainer& data_;
  const ResultList& blocks_;
  std::vector<Share> shares_;
  std::vector<ORVHyperSlab*> read_;  ///< of the blocks that were read
  std::uint64_t values_ = 0;
  std::uint64_t entities_ = 0;
  std::uint64_t values_read_ = 0;
  std::uint64_t entities_read_ = 0;
};

bool HistoryReader::Plan(const std::string& variable) {
  const std::string key = KeyOfVariable(data_, variable);
  std::vector<ORVHyperSlab*> slabs;
  shares_.reserve(blocks_.size());  // the slabs keep their places
  for (ORVResult* block : blocks_) {
    Share& share = shares_.emplace_back(Share{block});
    PointAtOwnArrays(share.slab);
    const bool selected = Select(*block, variable, share.slab) || Select(*block, key, share.slab);
    const ResultKind* kind = FindResultKind(block->GetKey());
    if (!selected || !kind) {
      shares_.pop_back();
      continue;
    }
    LeaveOutMissingLayers(*block, *kind, share.slab);
    share.values = SlabValues(share.slab);
    // Whole reads of elements are those of one state.
    share.whole = kind->IsEntity() && block->m_numl == 0 && IsWhole(*block, *kind, share.slab);
    slabs.push_back(&share.slab);
  }
  ORVHyperSlab merged;
  if (slabs.empty() || shares_.front().block->GetHypSelection(slabs, merged) != kOk) return false;
  PointAtOwnArrays(merged);  // a single selection was copied with its pointers
  return CountOf(merged) > 0 && AddUp() && IsBacked();
}

/// A block has as many values as entities at least.
bool HistoryReader::AddUp() {
  for (const Share& share : shares_) {
    if (share.values == 0) continue;
    if (__builtin_add_overflow(values_, share.values, &values_)) return false;
    entities_ += static_cast<std::uint64_t>(share.block->m_nent);
  }
  return values_ > 0;
}

bool HistoryReader::IsBacked() {
  constexpr std::uint64_t kUnbackedValues = h5::kUnbackedBytes / sizeof(float);
  std::uint64_t unbacked = values_;
  if (unbacked <= kUnbackedValues) return true;
  for (const Share& share : shares_) {
    if (share.values == 0) continue;
    const auto stored = AllocatedPoints(*share.block, data_.path.c_str(), kNoState, ResultPart::kData, disk::res);
    unbacked -= std::min(share.values, stored);
  }
  return unbacked <= kUnbackedValues;
}

/// Reads a block behind those that were read before.
bool HistoryReader::Read(const Share& share, Histories& histories) {
  ORVResult& block = *share.block;
  const Swapped type(block.m_resType, ORV_FLOAT);
  const Swapped id_type(block.m_entidType, ORV_INT);
  const Swapped want_ids(block.m_readIds, 1);
  const Swapped<void*> frames(block.m_fid, nullptr);  // of the host, which made it for counts of its own
  int* const ids = histories.ids.data() + entities_read_;
  block.m_res = histories.values.data() + values_read_;
  block.m_entid = ids;
  ORVHyperSlab slab = share.slab;
  PointAtOwnArrays(slab);
  const char* file = data_.path.c_str();
  const int status = share.whole
                         ? block.ReadBlock(file, kNoState, ORV_READ_DATA)
                         : block.ReadSelectiveAttribute(file, kNoState, ORV_READ_DATA, ORV_ATT_RES, slab, false);
  block.m_res = block.m_entid = nullptr;
  if (status != kOk) return false;
  if (!block.m_readIds) std::fill_n(ids, block.m_nent, 0);  // stored without ids, as the read says
  return true;
}

bool HistoryReader::ReadBlocks(Histories& histories) {
  histories.values.resize(values_);
  histories.ids.resize(entities_);
  for (Share& share : shares_) {
    if (share.values == 0 || !Read(share, histories)) continue;
    ORVHyperSlab& slab = share.slab;
    if (IsConverted(*share.block, {slab.m_rank, slab.m_start, slab.m_count})) {
      slab.m_count[slab.m_rank - 1] = 1;  // of each pair one number is left
      share.values /= kComplexParts;
    }
    values_read_ += share.values;
    entities_read_ += static_cast<std::uint64_t>(share.block->m_nent);
    read_.push_back(&slab);
  }
  histories.values.resize(values_read_);
  histories.ids.resize(entities_read_);
  return !read_.empty() && TellShape(histories);
}

/// The blocks stand for one dataset with the entities of all of them; those of different states or components do not.
bool HistoryReader::TellShape(Histories& histories) {
  ORVHyperSlab merged;
  ORVResult& first = *shares_.front().block;
  if (first.GetHypSelection(read_, merged) != kOk) return false;
  merged.m_count[FindResultKind(first.GetKey())->PositionOf(ORV_DIM_ENTITY)] = entities_read_;
  if (h5::Product(merged.m_rank, merged.m_count) != values_read_) return false;
  histories.shape.assign(merged.m_count, merged.m_count + merged.m_rank);
  return true;
}

/// The table of the first block, which holds for all. One of other states than the values is none of theirs: the file
/// has grown since its headers were read.
bool ReadIndex(const ORVContainer& data, ORVResult& block, Histories& histories) {
  const BlockIndexTable table = ReadBlockIndexTable(data.path, block);
  const auto states = static_cast<std::uint64_t>(table.states);
  if (table.columns < 1 || states != histories.shape.front()) return false;
  const std::uint64_t elements = states * static_cast<std::uint64_t>(table.columns);
  histories.index_ids.assign(table.ids.get(), table.ids.get() + elements);
  histories.index_values.assign(table.values.get(), table.values.get() + elements);
  histories.state_count = states;
  return true;
}

}  // namespace

int ReadHistories(const ORVContainer& data, const HistoryRequest& request, Histories& histories) {
  return h5::Entry(kFail, [&] {
    const ResultList blocks = FindBlocks(data, request);
    if (blocks.empty()) return kFail;
    const bool are_own = std::ranges::all_of(blocks, [](const ORVResult* block) { return IsOwnBlock(*block); });
    const h5::FileInUse index(are_own ? data.path.c_str() : nullptr);
    // One file from the first value to the index: what opens it for writing waits, so all states are of one moment.
    ORVBlockHelper holder;
    const ReaderLease file(holder, data.path.c_str());
    HistoryReader reader(data, blocks);
    Histories read;
    if (!file || !reader.Plan(request.variable) || !reader.ReadBlocks(read)) return kFail;
    if (!ReadIndex(data, *blocks.front(), read)) {
      // QUIRK: values without their index are not delivered, but their shape is. Hosts take it for the size of what
      // they can read block by block. Pinned by MultiStateValues.WithoutIndexTellTheShapeAlone.
      histories.shape = std::move(read.shape);
      return kFail;
    }
    histories = std::move(read);
    return kOk;
  });
}

}  // namespace orvio
