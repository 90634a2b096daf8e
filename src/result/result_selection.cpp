// Selections of the dataset `res`: a component, a layer and an entity become start and count of each axis, and a handle
// becomes one slab per stored component, or their bounding slab. Nothing here touches a file.

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include "h5/entry.h"
#include "h5/status.h"
#include "result/hyper_slab.h"
#include "result/result_definition.h"
#include "result/result_kinds.h"

using namespace orvio;

namespace {

/// Start and count of one axis.
struct Range {
  std::uint64_t start;
  std::uint64_t count;
};

Range All(std::int64_t extent) { return {0, static_cast<std::uint64_t>(extent)}; }

/// One place of an axis. A number outside of it selects the first.
Range One(int number, std::int64_t extent) {
  return {number >= 0 && number < extent ? static_cast<std::uint64_t>(number) : 0, 1};
}

Range Layers(const ORVResult& block, int sentinel, int layer) {
  return sentinel == ORV_ALL_LAYERS ? All(block.m_numl) : One(layer, block.m_numl);
}

/// Fills start and count of every axis of a kind; answers the rank. States and complex parts are always selected whole.
int FillAxes(const ORVResult& block, const ResultKind& kind, Range components, Range layers, int entity,
             std::uint64_t* start, std::uint64_t* count) {
  const Range entities =
      entity == ORV_ALL_ENTITIES ? All(block.m_nent) : Range{static_cast<std::uint64_t>(std::int64_t{entity}), 1};
  const Range ranges[] = {entities, components, layers, All(block.m_nstate), All(kComplexParts)};  // by axis
  for (int i = 0; i < kind.rank; ++i) {
    start[i] = ranges[kind.axes[i]].start;
    count[i] = ranges[kind.axes[i]].count;
  }
  return kind.rank;
}

Range RangeOf(const ComponentRun& run) {
  return {static_cast<std::uint64_t>(run.offset), static_cast<std::uint64_t>(run.count)};
}

}  // namespace

int ORVResult::GetComponentSelection(int comp, int* rank, std::uint64_t* start, std::uint64_t* count, int layer,
                                     int entity) {
  if (!rank || !start || !count) return 0;
  *rank = 0;
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || comp >= m_ncoo) return 0;
  const Range components = comp == ORV_ALL_COMPONENTS ? All(m_ncoo) : One(comp, m_ncoo);
  return *rank = FillAxes(*this, *kind, components, Layers(*this, layer, layer), entity, start, count);
}

int ORVResult::GetComponentSelectionByVariableName(const char* name, int* rank, std::uint64_t* start,
                                                   std::uint64_t* count, int layer, int entity) {
  if (!rank || !start || !count) return 0;
  *rank = 0;
  return h5::Entry(0, [&] {
    const ResultKind* kind = FindResultKind(m_BlkKey);
    const auto run = ResultDefinition(*this).FindRun(name);
    if (!kind || !run || !run->FitsInto(m_ncoo)) return 0;
    return *rank = FillAxes(*this, *kind, RangeOf(*run), Layers(*this, layer, layer), entity, start, count);
  });
}

int ORVResult::FillDependentForVarGrp(const char* name, ORVHyperSlab& slab, int layerSel, int layer, int entity) {
  if (!slab.m_pStart || !slab.m_pCount) return kFail;
  return h5::Entry(kFail, [&] {
    const auto run = ResultDefinition(*this).FindRun(name);
    if (!run) return kFail;
    slab.m_rank = 0;
    const ResultKind* kind = FindResultKind(m_BlkKey);
    // Properties count their columns elsewhere; `ncoo` does not bound them.
    const bool fits = kind && run->FitsInto(kind->IsProperties() ? INT64_MAX : m_ncoo);
    if (!fits) return kFail;
    // QUIRK: "all layers" is looked for in `layerSel` and the number taken from `layer`, so a fetch, which passes 0 and
    // the layer of its request, never selects all layers this way. Pinned by
    // ResultSelection.OfAVariableByNameIntoASlabLooksForAllLayersInItsOwnArgument.
    const Range layers = Layers(*this, layerSel, layer);
    slab.m_rank = FillAxes(*this, *kind, RangeOf(*run), layers, entity, slab.m_pStart, slab.m_pCount);
    return kOk;
  });
}

int ORVResult::FillDependentForVarGrp(const char* name, ORVDependentVar& dependent) {
  return h5::Entry(kFail, [&] { return ResultDefinition(*this).FillDependent(name, dependent) ? kOk : kFail; });
}

int ORVResult::GetVariableCompAndOffset(const char* name, int& nCmp, int& offset) {
  nCmp = 0;
  offset = -1;
  return h5::Entry(kFail, [&] {
    const auto run = ResultDefinition(*this).FindRun(name);
    if (!run || !run->FitsInto(m_ncoo)) return kFail;
    nCmp = run->count;
    offset = run->offset;
    return kOk;
  });
}

int ORVResult::GetAttributeSelection(_ORVBlockAtt att, int* rank, std::uint64_t* start, std::uint64_t* count) {
  if (!rank || !start || !count || (att != ORV_ATT_INDEXIDENT && att != ORV_ATT_INDEXVAL)) return kFail;
  *rank = 0;
  if (IsMultistateBlk()) count[(*rank)++] = static_cast<std::uint64_t>(m_nstate);
  count[(*rank)++] = static_cast<std::uint64_t>(m_nindex);
  std::fill_n(start, *rank, 0);
  return kOk;
}

namespace {

constexpr int kDeepestDependent = 16;

using Slabs = std::vector<std::unique_ptr<ORVHyperSlab>>;

/// One slab per stored component of a handle, depth first in the order of its dependents.
void AppendSelections(ORVResult& block, const ResultDefinition& definition, int iid, int layer, int entity, int depth,
                      Slabs& slabs) {
  const ORVExtVar* handle = definition.FindHandle(iid, true);
  if (!handle) return;
  if (handle->GeIndex() != -1) {
    auto slab = std::make_unique<ORVHyperSlab>();
    PointAtOwnArrays(*slab);
    (void)block.GetComponentSelection(handle->GeIndex(), &slab->m_rank, slab->m_start, slab->m_count, layer, entity);
    slabs.push_back(std::move(slab));
    return;
  }
  if (depth == kDeepestDependent) return;  // handles of a host may depend on one another in a circle
  for (const ORVDependentVar* dependent : handle->GetDependent()) {
    if (!dependent) continue;
    for (const int input : dependent->m_iids) {
      AppendSelections(block, definition, input, layer, entity, depth + 1, slabs);
    }
  }
}

Slabs SelectionsOf(ORVResult& block, int iid, int layer, int entity) {
  Slabs slabs;
  AppendSelections(block, ResultDefinition(block), iid, layer, entity, 0, slabs);
  return slabs;
}

/// Absolute difference, taken in 32 bits.
std::uint64_t Span(std::uint64_t smallest, std::uint64_t largest) {
  const auto difference = static_cast<std::uint32_t>(largest - smallest);
  return difference > INT32_MAX ? 0U - difference : difference;
}

/// Bounds of several slabs on one axis; nothing when the count does not fit.
///
/// QUIRK: the starts are taken for evenly spread runs of the largest count, so the bounds of components 1 and 3 hold
/// component 2 as well, and those of overlapping runs end beyond them. Callers pick out what they asked for. Pinned by
/// ResultSelection.MergesComponentsWithWhatLiesBetweenThem, ResultSelection.MergesRunsAsIfTheyWereEvenlySpread.
std::optional<Range> Bounds(std::span<ORVHyperSlab* const> slabs, int axis) {
  const auto start_of = [axis](const ORVHyperSlab* slab) { return slab->m_start[axis]; };
  const auto count_of = [axis](const ORVHyperSlab* slab) { return slab->m_count[axis]; };
  const auto [smallest, largest] = std::ranges::minmax(slabs, {}, start_of);
  Range range = {start_of(smallest), count_of(std::ranges::max(slabs, {}, count_of))};
  const std::uint64_t span = Span(range.start, start_of(largest));
  if (span != 0 && __builtin_mul_overflow(span + 1, range.count, &range.count)) return std::nullopt;
  return range;
}

int Merge(std::span<ORVHyperSlab* const> slabs, ORVHyperSlab& merged) {
  if (slabs.empty() || std::ranges::find(slabs, nullptr) != slabs.end()) return kFail;
  const ORVHyperSlab& first = *slabs.front();
  if (slabs.size() == 1) {
    merged = first;
    return kOk;
  }
  const bool same_rank = std::ranges::all_of(slabs, [&](const auto* slab) { return slab->m_rank == first.m_rank; });
  if (!same_rank || first.m_rank > kSlabRank) return kFail;
  ORVHyperSlab bounds = first;
  for (int axis = 0; axis < first.m_rank; ++axis) {
    const auto range = Bounds(slabs, axis);
    if (!range) return kFail;
    bounds.m_start[axis] = range->start;
    bounds.m_count[axis] = range->count;
  }
  merged = bounds;
  PointAtOwnArrays(merged);
  return kOk;
}

/// The bounding slab of all stored components of a handle.
int MergedSelection(ORVResult& block, int iid, int layer, int entity, ORVHyperSlab& merged) {
  const Slabs slabs = SelectionsOf(block, iid, layer, entity);
  std::vector<ORVHyperSlab*> list;
  for (const auto& slab : slabs) list.push_back(slab.get());
  const int status = Merge(list, merged);
  if (status == kOk) PointAtOwnArrays(merged);  // a single slab was copied with its pointers, and goes away here
  return status;
}

}  // namespace

void ORVResult::GetVarSelection(int extVarId, std::vector<ORVHyperSlab*>& slabs, int layer, int entity) {
  h5::EntryVoid([&] {
    Slabs found = SelectionsOf(*this, extVarId, layer, entity);
    slabs.reserve(slabs.size() + found.size());
    for (auto& slab : found) slabs.push_back(slab.release());
  });
}

int ORVResult::GetHypSelection(std::vector<ORVHyperSlab*>& slabs, ORVHyperSlab& merged) { return Merge(slabs, merged); }

int ORVResult::GetComponentSelectionWrap(int id, int* rank, std::uint64_t* start, std::uint64_t* count, int layer,
                                         int entity, bool extended) {
  if (!extended) return GetComponentSelection(id, rank, start, count, layer, entity);
  if (!rank || !start || !count) return 0;
  *rank = 0;
  return h5::Entry(0, [&] {
    ORVHyperSlab merged;
    if (id == -1 || MergedSelection(*this, id, layer, entity, merged) != kOk || merged.m_rank < 1) return 0;
    std::copy_n(merged.m_start, merged.m_rank, start);
    std::copy_n(merged.m_count, merged.m_rank, count);
    return *rank = merged.m_rank;
  });
}

int ORVResult::GetHyperSelection(int id, ORVHyperSlab& slab, bool isExtVarId, int layer, int entity) {
  return h5::Entry(kFail, [&] {
    const ORVExtVar* handle = ResultDefinition(*this).FindHandle(id, isExtVarId);
    if (!handle || handle->GetIID() == -1) return kFail;
    return MergedSelection(*this, handle->GetIID(), layer, entity, slab);
  });
}
