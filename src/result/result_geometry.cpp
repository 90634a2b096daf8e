// The shape of the dataset `res`, from the counts of a header and back. Selections of it are in result_selection.cpp.

#include <algorithm>
#include <climits>
#include <iterator>
#include <optional>

#include "h5/extents.h"
#include "h5/status.h"
#include "result/result_kinds.h"

using namespace orvio;

int ORVResult::GetResDataSetDimension(int* dims) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || !dims) return 0;
  std::ranges::copy(kind->Axes(), dims);
  return kind->rank;
}

int ORVResult::GetResDimensionTypeIndex(_ORVDimensionType type) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind ? kind->PositionOf(type) : -1;
}

int ORVResult::GetResultValueDimension(std::uint64_t* dims) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || kind->IsProperties()) return 0;
  for (int i = 0; i < kind->rank; ++i) {
    // QUIRK: of five axes the last one lands in the sixth entry, and the fifth stays as the caller left it. A caller
    // that zeroes the entries sees at once that this kind is not served. Pinned by
    // ResultGeometry.LeavesTheFifthExtentOfAComplexMultiElementBlockAlone.
    const bool displaced = kind->rank == 5 && kind->axes[i] == ORV_DIM_COMPLEX;
    dims[displaced ? i + 1 : i] = ExtentOf(*this, kind->axes[i]);
  }
  return kind->rank;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the signature is fixed
int ORVResult::GetResDataSetDimValues(int rank, std::uint64_t* dims, int* nEnt, int* nCmp, int* nLayer, int* nState,
                                      int* nComplex) {
  int* counts[] = {nEnt, nCmp, nLayer, nState, nComplex};  // by _ORVDimensionType
  if (std::ranges::find(counts, nullptr) != std::end(counts)) return kFail;
  for (int* count : counts) *count = 0;
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || kind->IsProperties() || rank != kind->rank || !dims) return kFail;
  for (int i = 0; i < rank; ++i) *counts[kind->axes[i]] = static_cast<int>(dims[i]);
  return kOk;
}

int ORVResult::GetTotalCount(int rank, std::uint64_t* count) {
  if (rank < 1 || !count) return 0;
  const auto total = h5::Product(rank, count);
  return total && *total <= INT_MAX ? static_cast<int>(*total) : 0;
}

int ORVResult::GetValuesPerComponent() { return IsComplexBlk() ? static_cast<int>(kComplexParts) : 1; }

int ORVResult::HasIntegrationPoint(int* nLayer) {
  const bool layered = IsElementResult();
  if (nLayer) *nLayer = layered ? static_cast<int>(m_numl) : 0;
  return layered ? 1 : 0;
}

namespace {

// Factors of a step.
constexpr unsigned kX = 1, kC = 2, kL = 4, kE = 8, kFactors = 4;
constexpr unsigned kUnset = 0;

/// The steps of a kind as products of the complex factor X and the counts of components, layers and entities.
///
/// QUIRK: the complex multi-state entity kind has a factor L although it has no layers, so that its steps 2 and 3 are 0
/// while `numl` is 0; its complex multi-state element counterpart is not served. Callers know. Pinned by
/// ResultOffsets.OfTheComplexMultiEntityKindCountLayers.
struct StepRow {
  std::int64_t key;
  unsigned steps[4];
  int answer;
};

// clang-format off
constexpr StepRow kSteps[] = {
    {ORV_RESULT_ENTITY,                {kUnset, kUnset,  kC,           kUnset},            2},
    {ORV_RESULT_ENTITY_COMPLEX,        {kX,     kUnset,  kC | kX,      kUnset},            3},
    {ORV_RESULT_MULTI_ENTITY,          {kUnset, kUnset,  kC,           kE | kC},           3},
    {ORV_RESULT_MULTI_ENTITY_COMPLEX,  {kX,     kC | kX, kL | kC | kX, kE | kL | kC | kX}, 4},
    {ORV_RESULT_ELEMENT,               {kUnset, kC,      kL | kC,      kUnset},            3},
    {ORV_RESULT_ELEMENT_COMPLEX,       {kX,     kC | kX, kL | kC | kX, kUnset},            4},
    {ORV_RESULT_MULTI_ELEMENT,         {kUnset, kC,      kL | kC,      kE | kL | kC},      4},
};
// clang-format on

/// The count asked for, if it is a part of the extent; else the extent.
std::int64_t Effective(int asked, std::int64_t extent) { return asked == 0 || asked >= extent ? extent : asked; }

int ComplexFactor(int complex_sel) { return complex_sel == 0 || complex_sel > 2 ? 2 : complex_sel; }

/// Nothing when the product does not fit.
std::optional<std::int64_t> StepOf(unsigned factors, const std::int64_t (&values)[kFactors]) {
  std::int64_t step = 1;
  for (unsigned i = 0; i < kFactors; ++i) {
    if (factors & (1U << i) && __builtin_mul_overflow(step, values[i], &step)) return std::nullopt;
  }
  return step;
}

}  // namespace

int ORVResult::GetResOffSets(std::uint64_t* offsets, int nEnt, int nCmp, int nLayer, int /*ignored*/, int complexSel) {
  if (!offsets) return 0;
  offsets[0] = offsets[4] = 1;
  const auto* row = std::ranges::find(kSteps, m_BlkKey, &StepRow::key);
  if (row == std::end(kSteps)) return 0;
  const std::int64_t values[] = {ComplexFactor(complexSel), Effective(nCmp, m_ncoo), Effective(nLayer, m_numl),
                                 Effective(nEnt, m_nent)};
  for (std::size_t i = 0; i < std::size(row->steps); ++i) {
    if (row->steps[i] == kUnset) continue;
    const auto step = StepOf(row->steps[i], values);
    if (!step) return 0;
    offsets[i] = static_cast<std::uint64_t>(*step);
  }
  return row->answer;
}
