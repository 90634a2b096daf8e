// The history of a block: the allocation and reading of its incremental index, and the records of what each state builds
// upon. The counts come from the file, so they are held against what it stores before they size an array.

#include "entity/incr_states.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "block/states.h"
#include "entity/incr_index_access.h"
#include "entity/state_index_blocks.h"
#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"

namespace orvio {
namespace {

/// Number of index columns of a block in a state, and what of them is stored.
struct Columns {
  std::int64_t count = 0;
  std::uint64_t stored = 0;
};

Columns ColumnsIn(ORVBlock& block, const std::string& state) {
  Columns columns;
  const bool single = block.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  const h5::Group header = OpenIndexPart(OpenInState(block, state), single, disk::header);
  if (!header) return columns;
  h5::HeaderReader in(ORVBlockAccess::Reader(block), header.get());
  in.required(disk::nindex, columns.count);
  if (!in.ok() || columns.count < 1 || columns.count > INT_MAX) return {};
  const h5::Group part = OpenIndexPart(OpenInState(block, state), single, disk::index);
  if (!part) return columns;
  columns.stored =
      std::min(h5::StoredElements(part.get(), disk::indexident), h5::StoredElements(part.get(), disk::indexval));
  return columns;
}

/// Those of the state asked for, else of the first other one that has any.
Columns FindColumns(ORVBlock& block, const std::vector<std::string>& states, int state) {
  const std::size_t asked = state > 0 ? static_cast<std::size_t>(state) - 1 : states.size();
  Columns columns;
  if (asked < states.size()) columns = ColumnsIn(block, states[asked]);
  for (std::size_t i = 0; i < states.size() && columns.count < 1; ++i) {
    if (i != asked) columns = ColumnsIn(block, states[i]);
  }
  return columns;
}

/// Whether a file can fill that many elements. A link costs little, so a small file may have many states that are all the
/// same one.
bool CanFill(const char* file, const Columns& columns, std::uint64_t elements) {
  if (elements <= h5::kUnbackedBytes / sizeof(int)) return elements > 0;
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(file, error);
  return !error && columns.stored >= static_cast<std::uint64_t>(columns.count) && bytes >= elements;
}

/// Empties an index at the end of the scope, be it left by lack of memory, unless it was filled.
struct EmptyUnlessFilled {
  ORVIncrIndex& index;
  bool filled = false;
  ~EmptyUnlessFilled() {
    if (!filled) ORVIncrIndexAccess::Empty(index);
  }
};

}  // namespace

int FillIncrIndex(const char* file, ORVBlock& block, ORVIncrIndex& index, int state) {
  if (!file || !block.IsSingleStatePath()) return kFail;
  // One reader from the counting to the rows, so that a file that grows in between leads nobody past the allocation.
  const ReaderLease reader(index, file);
  if (!reader) return kFail;
  const LentReader lent(index, block);
  const std::vector<std::string> states = StateNames(*reader);
  const Columns columns = FindColumns(block, states, state);
  const auto rows = static_cast<std::int64_t>(states.size());
  const std::uint64_t size = ORVIncrIndexAccess::SizeOf(columns.count, rows);
  if (!CanFill(file, columns, size)) return kFail;
  CArray<int> elements = ZeroedArray<int>(size);
  if (!elements) return kFail;
  ORVIncrIndexAccess::Give(index, std::move(elements), columns.count, rows);
  ORVIncrIndexAccess::SetCounts(index, 0, 0);
  EmptyUnlessFilled outcome{index};
  const int status = ORVIncrIndexAccess::ReadRows(index, block, states, columns.count);
  outcome.filled = status == kOk && ORVIncrIndexAccess::HasRows(index);
  return outcome.filled ? kOk : kFail;
}

// ---- Records

namespace {

/// The rows of an index of one column, one for each identifier.
///
/// QUIRK: identifiers give the order, not the numbers of the states, and of rows with the same identifier the first one
/// counts. All readers of such files merge in this order, and in another one the same file would give other values. Pinned
/// by IncrStates.StandInTheOrderOfTheirIdentifiers and IncrStates.OfOneIdentifierAreThoseOfTheFirstRow.
std::vector<std::int64_t> RowsInOrder(const ORVIncrIndex& index) {
  std::map<int, std::int64_t> row_of;
  for (std::int64_t row = 0; row < index.GetNumState(); ++row) row_of.emplace(index.GetIndexIds()[row], row);
  std::vector<std::int64_t> rows;
  rows.reserve(row_of.size());
  for (const auto& [identifier, row] : row_of) rows.push_back(row);
  return rows;
}

}  // namespace

int AppendStateRecords(const ORVIncrIndex& index, IncrStateMap& map) {
  if (!ORVIncrIndexAccess::HasRows(index) || index.GetNumIndex() > 1) return kFail;
  const int* const flags = ORVIncrIndexAccess::Flags(index);
  const std::vector<std::int64_t> rows = RowsInOrder(index);
  map.reserve(map.size() + rows.size());
  std::size_t chain = map.size();
  for (const std::int64_t row : rows) {
    if (flags[row] == 0) chain = map.size();
    map.push_back({index.GetStateIds()[row], flags[row], chain});
  }
  return kOk;
}

int ReadStateRecords(const char* file, ORVBlock& block, int state, IncrStateMap& map) {
  OwnIncrIndex index;
  const int status = FillIncrIndex(file, block, index, state);
  return status == kOk ? AppendStateRecords(index, map) : status;
}

std::optional<std::size_t> FindStateRecord(const IncrStateMap& map, int state) {
  std::optional<std::size_t> closest;
  for (std::size_t i = 0; i < map.size(); ++i) {
    if (map[i].state == state) return i;
    if (map[i].state < 1 || map[i].state > state) continue;
    if (!closest || map[i].state > map[*closest].state) closest = i;
  }
  return closest;
}

int HandOverRecords(const IncrStateMap& map, std::vector<ORVIncrStateMap*>& list) {
  constexpr std::uint64_t kMostReferences = h5::kUnbackedBytes / sizeof(void*);
  std::uint64_t references = 0;
  for (std::size_t i = 0; i < map.size(); ++i) references += i - map[i].chain;
  if (references > kMostReferences) return kFail;
  std::vector<std::unique_ptr<ORVIncrStateMap>> records;
  std::vector<ORVIncrStateMap*> all;
  for (const IncrStateRecord& record : map) {
    records.push_back(std::make_unique<ORVIncrStateMap>());
    ORVIncrStateMap& own = *records.back();
    own.m_state = record.state;
    own.m_incrFlag = record.flag;
    own.m_dependsOn.assign(all.begin() + static_cast<std::ptrdiff_t>(record.chain), all.end());
    all.push_back(&own);
  }
  list.insert(list.end(), all.begin(), all.end());
  for (auto& record : records) record.release();  // NOLINT(bugprone-unused-return-value): the list has it now
  return kOk;
}

}  // namespace orvio
