// Sizing of a value fetch.

#include "result/value_fetch_plan.h"

#include <algorithm>
#include <climits>

#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/status.h"
#include "orvio/orv_variable_grp.h"
#include "result/result_complex.h"
#include "result/result_definition.h"
#include "result/stored_values.h"

namespace orvio {

HandleSelections::HandleSelections(ORVResult& block, int ext_id, int layer) {
  block.GetVarSelection(ext_id, slabs_, layer, ORV_ALL_ENTITIES);
}

HandleSelections::~HandleSelections() {
  for (const ORVHyperSlab* slab : slabs_) delete slab;
}

std::uint64_t SlabValues(ORVHyperSlab& slab) {
  PointAtOwnArrays(slab);
  const std::uint64_t count = CountOf(slab);
  return count <= INT64_MAX ? count : 0;  // a negative count of a header makes a huge one
}

std::optional<ORVHyperSlab> WholeSlab(const ORVResult& block) {
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind) return std::nullopt;
  ORVHyperSlab slab;
  for (const _ORVDimensionType axis : kind->Axes()) {
    if (axis == ORV_DIM_LAYER && block.m_numl == 0) continue;
    const std::uint64_t extent = ExtentOf(block, axis);
    if (extent > INT64_MAX) return std::nullopt;
    slab.m_count[slab.m_rank++] = extent;
  }
  return slab;
}

namespace {

/// Sums that no file can mean end at the largest number.
void AddUp(std::uint64_t& sum, std::uint64_t more) {
  if (__builtin_add_overflow(sum, more, &sum)) sum = UINT64_MAX;
}

/// Internal id of the first handle of the blocks with an external one; -1 when none has it.
int HandleOfResultType(const std::vector<FetchShare>& shares, int result_type) {
  for (const FetchShare& share : shares) {
    const ORVExtVar* handle = ResultDefinition(*share.block).FindHandle(result_type, false);
    if (handle) return handle->GetIID();
  }
  return -1;
}

bool HasOneVariable(const ORVResult& block) {
  if (block.m_variable) return true;
  return block.m_variableGrp && block.m_variableGrp->GetNumberOfVariables() == 1;
}

}  // namespace

bool IsWhole(const ORVResult& block, const ResultKind& kind, const ORVHyperSlab& slab) {
  if (kind.IsProperties() || !HasOneVariable(block)) return false;
  if (IsConverted(block, {slab.m_rank, slab.m_start, slab.m_count})) return false;  // only selections are
  const auto axes = kind.Axes();
  for (std::size_t i = 0; i < axes.size(); ++i) {
    const bool no_layers = axes[i] == ORV_DIM_LAYER && block.m_numl == 0;
    if (slab.m_start[i] != 0 || slab.m_count[i] != (no_layers ? 1 : ExtentOf(block, axes[i]))) return false;
  }
  return true;
}

FetchPlan::FetchPlan(const FetchRequest& request, const std::vector<ORVResult*>& blocks) : request_(request) {
  for (ORVResult* block : blocks) {
    if (block) shares_.push_back({block});
  }
}

bool FetchPlan::Make(const FetchQuantity& quantity) {
  ext_id_ = quantity.result_type == -1 ? quantity.ext_id : HandleOfResultType(shares_, quantity.result_type);
  if (ext_id_ == -1 && !quantity.variable) return false;
  RefreshCounts();
  for (FetchShare& share : shares_) {
    if (ext_id_ == -1) {
      SelectByName(share, quantity.variable);
    } else {
      SelectByHandle(share);
    }
  }
  return values_ > 0 && entities_ > 0;
}

/// The blocks of a list were found in the first state; others may have more or fewer entities.
void FetchPlan::RefreshCounts() {
  for (FetchShare& share : shares_) {
    const int state = StateOf(*share.block, request_.state);
    // A block that is not in this state keeps its count, and its read fails later.
    (void)share.block->ReadAttribute(request_.file, state, ORV_READ_HEADER, ORV_ATT_NENT);
  }
}

void FetchPlan::Add(FetchShare& share, std::uint64_t values) {
  if (values == 0) return;
  share.values = values;
  AddUp(values_, values);
  AddUp(entities_, static_cast<std::uint64_t>(share.block->m_nent));
}

void FetchPlan::SelectByName(FetchShare& share, const char* variable) {
  ORVResult& block = *share.block;
  block.m_fetchSkip = 1;
  PointAtOwnArrays(share.slab);
  const int status = block.FillDependentForVarGrp(variable, share.slab, 0, request_.layer, ORV_ALL_ENTITIES);
  if (status == kOk) Add(share, SlabValues(share.slab));
  if (share.values == 0) return;
  block.m_fetchSkip = 0;
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind || !IsWhole(block, *kind, share.slab)) return;
  share.whole = kind->IsEntity();
  if (kind->IsElement() && block.m_numl == 0) share.without_layers = WholeSlab(block);
}

void FetchPlan::SelectByHandle(FetchShare& share) {
  HandleSelections selections(*share.block, ext_id_, request_.layer);
  std::uint64_t values = 0;
  for (ORVHyperSlab* slab : selections.slabs()) AddUp(values, SlabValues(*slab));
  // Selections of unequal rank have no bounds: the slab stays empty and the block is passed over.
  (void)share.block->GetHypSelection(selections.slabs(), share.slab);
  PointAtOwnArrays(share.slab);  // a single selection was copied with its pointers
  Add(share, values);
}

bool FetchPlan::MayBeMade(std::uint64_t room) {
  const bool large = values_ > room && values_ > h5::kUnbackedBytes / request_.size;
  if (!large && values_ <= INT_MAX) return true;
  const std::uint64_t unbacked = LeaveOutAbsent();
  if (values_ > INT_MAX) return false;
  return values_ <= room || unbacked <= h5::kUnbackedBytes / request_.size;
}

std::uint64_t FetchPlan::LeaveOutAbsent() {
  std::uint64_t unbacked = 0;
  values_ = entities_ = 0;
  for (FetchShare& share : shares_) {
    if (share.values == 0) continue;
    const int state = StateOf(*share.block, request_.state);
    share.absent = StoredPoints(*share.block, request_.file, state, ResultPart::kData, disk::res) == 0;
    if (share.absent) continue;
    Add(share, share.values);
    const auto stored = AllocatedPoints(*share.block, request_.file, state, ResultPart::kData, disk::res);
    AddUp(unbacked, share.values - std::min(share.values, stored));
  }
  return unbacked;
}

}  // namespace orvio
