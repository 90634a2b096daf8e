// Lookups by load case and by series, among blocks that were found before.

#include <algorithm>
#include <climits>
#include <cmath>
#include <optional>
#include <string_view>

#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/result_lookup.h"
#include "result/stored_values.h"

namespace orvio {
namespace {

constexpr int kFirstState = 1;  // whose blocks stand for all states

/// Selection of a column of the index values: over all states of a multi-state block, else from there to the end of the
/// only row.
struct ColumnSlab {
  int rank;
  std::uint64_t start[2];
  std::uint64_t count[2];
};

std::optional<ColumnSlab> SelectColumn(const ORVResult& block, int column) {
  const auto first = static_cast<std::uint64_t>(column);
  if (block.IsMultistateBlk()) return ColumnSlab{2, {0, first}, {static_cast<std::uint64_t>(block.m_nstate), 1}};
  if (block.m_nindex <= column) return std::nullopt;
  return ColumnSlab{1, {first}, {static_cast<std::uint64_t>(block.m_nindex) - first}};
}

/// Whether an array for that many values may be made on the word of the block's header.
bool IsBacked(ORVResult& block, const char* file, std::uint64_t values) {
  if (values <= h5::kUnbackedBytes / sizeof(float)) return true;
  const int state = StateOf(block, kFirstState);
  return values <= AllocatedPoints(block, file, state, ResultPart::kIndex, disk::indexval);
}

/// Reads a column of index values. False when it cannot be read.
bool ReadColumn(ORVResult& block, const char* file, int column, std::vector<float>& values) {
  auto slab = SelectColumn(block, column);
  if (!slab || !IsBacked(block, file, slab->count[0])) return false;
  values.resize(std::max<std::size_t>(values.size(), slab->count[0]));
  const Swapped<void*> buffer(block.m_indexval, values.data());
  const Swapped type(block.m_indexvalType, ORV_FLOAT);
  const int status = block.ReadSelectiveAttribute(file, StateOf(block, kFirstState), ORV_READ_INDEX, ORV_ATT_INDEXVAL,
                                                  slab->rank, slab->start, slab->count, nullptr, nullptr, false);
  if (status == kOk) values.resize(slab->count[0]);
  return status == kOk;
}

/// A value cut to an integer; what no integer is near is none.
bool IsInteger(float value, int integer) {
  const double cut = std::trunc(static_cast<double>(value));
  return cut >= INT_MIN && cut <= INT_MAX && static_cast<int>(cut) == integer;
}

}  // namespace

void FindResultsOfLoadCase(const char* file, const ResultList& in, int column, int load_case, ResultList& out) {
  std::vector<float> values;
  const auto holds = [&](ORVResult& block) {
    if (block.m_nstate <= 0 || !ReadColumn(block, file, column, values)) return false;
    const auto looked_at = std::min<std::uint64_t>(values.size(), static_cast<std::uint64_t>(block.m_nstate));
    return std::ranges::any_of(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(looked_at),
                               [&](float value) { return IsInteger(value, load_case); });
  };
  AppendThose(in, holds, out);
}

/// QUIRK: the first block stands for its series even where that has no name, while others without a name are passed over.
/// Hosts take the first of the answer for the plain results of a file. Pinned by
/// ResultSeries.MayBeEmptyInTheFirstBlockOnly.
void FindUniqueSeries(const ResultList& list, ResultList& out) {
  std::vector<std::string_view> seen;
  bool first = true;
  const auto is_new = [&](const ORVResult& block) {
    const std::string_view series = Content(block.m_series);
    const bool known = std::ranges::any_of(seen, [&](std::string_view s) { return EqualIgnoringCase(s, series); });
    const bool taken = first || (!series.empty() && !known);
    first = false;
    if (taken) seen.push_back(series);
    return taken;
  };
  AppendThose(list, is_new, out);
}

}  // namespace orvio
