// The incremental index: for each state that holds a block, the row of its index and the `indexic` of its header. The
// rows lie in the "header" and "index" of the block in each state. How an index is allocated, and what states build upon,
// is in incr_states.cpp.

#include "orvio/orv_incr_index.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "block/states.h"
#include "entity/incr_index_access.h"
#include "entity/state_index_blocks.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"

using namespace orvio;

ORVIncrIndex::ORVIncrIndex() : m_pStateIds(nullptr), m_pIncrFlags(nullptr) {}

ORVIncrIndex::ORVIncrIndex(const ORVIncrIndex& other) = default;

ORVIncrIndex& ORVIncrIndex::operator=(const ORVIncrIndex& other) = default;

ORVIncrIndex::~ORVIncrIndex() = default;

void ORVIncrIndex::Initialize() {
  ORVIndexBase<int, float>::Initialize();
  m_pStateIds = nullptr;
  m_pIncrFlags = nullptr;
}

void ORVIncrIndex::ClearAll() {
  std::free(m_pIndexId);  // the three others lead into the same allocation
  m_pIndexId = nullptr;
  m_pIndexVal = nullptr;
  m_pStateIds = nullptr;
  m_pIncrFlags = nullptr;
}

// ---- Reading

int ORVIncrIndex::ReadIncrementData(const char* path, ORVBlock& block, int& numStates) {
  if (!m_pStateIds || !m_pIncrFlags || !block.IsSingleStatePath()) return kFail;
  m_nState = 0;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader) return kFail;
    const std::vector<std::string> states = StateNames(*reader);
    numStates = static_cast<int>(states.size());
    const LentReader lent(*this, block);
    return ORVIncrIndexAccess::ReadRows(*this, block, states, INT_MAX);
  });
}

int ORVIncrIndex::ReadIncrementValues(hid_t group, _ORVBlkVersion version, hid_t row) {
  return h5::Entry(kFail, [&] { return ORVIncrIndexAccess::ReadRow(*this, group, version, row, INT_MAX); });
}

int ORVIncrIndexAccess::ReadRows(ORVIncrIndex& index, ORVBlock& block, const std::vector<std::string>& states,
                                 std::int64_t columns) {
  int status = kFail;
  int state = 0;
  for (const std::string& name : states) {
    ++state;
    const h5::Group group = OpenInState(block, name);
    if (!group) continue;  // a state without the block has no row
    status = ReadRow(index, group.get(), block.GetBlkVersion(), index.m_nState, columns);
    if (status != kOk) break;
    index.m_pStateIds[index.m_nState++] = state;
  }
  return status;
}

int ORVIncrIndexAccess::ReadRow(ORVIncrIndex& index, hid_t group, _ORVBlkVersion version, std::int64_t row,
                                std::int64_t columns) {
  if (group < 0 || row < 0 || row > INT_MAX) return kFail;
  const bool split = version != ORV_BLK_VERSION_SINGLE;
  const h5::Group header = split ? h5::OpenGroup(group, disk::header) : h5::Group();
  const h5::Group part = split ? h5::OpenGroup(group, disk::index) : h5::Group();
  if (split && !(header && part)) return kFail;
  const int status = ReadRowHeader(index, split ? header.get() : group, row, columns);
  return status == kOk ? ReadRowData(index, split ? part.get() : group, row) : status;
}

int ORVIncrIndexAccess::ReadRowHeader(ORVIncrIndex& index, hid_t header, std::int64_t row, std::int64_t columns) {
  h5::HeaderReader in(index.GetH5Reader(), header);
  // QUIRK: the first row tells the number of columns, and no later one is asked. A state that stores another number of
  // them ends the reading. Indexes are compared by row, so rows must be of one width. Pinned by
  // IncrIndex.LearnsTheNumberOfColumnsFromTheFirstRowAlone.
  if (index.m_nIndex < 1) in.required(disk::nindex, index.m_nIndex);
  if (!in.ok() || index.m_nIndex < 1 || index.m_nIndex > columns) return kFail;
  int unused = 0;
  in.defaulted(disk::indexic, index.m_pIncrFlags ? index.m_pIncrFlags[row] : unused);
  return in.status();
}

int ORVIncrIndexAccess::ReadRowData(ORVIncrIndex& index, hid_t part, std::int64_t row) {
  const bool ids_fit = !index.m_pIndexId || FitsElement(index.m_indexIdentType, sizeof(int));
  const bool values_fit = !index.m_pIndexVal || FitsElement(index.m_indexValueType, sizeof(float));
  if (!ids_fit || !values_fit) return kFail;
  h5::DatasetReader in(index.GetH5Reader(), part);
  const std::int64_t first = row * index.m_nIndex;
  if (index.m_pIndexId) {
    in.integers(disk::indexident, index.m_indexIdentType, index.m_pIndexId + first, {index.m_nIndex});
  }
  if (index.m_pIndexVal) {
    in.floats(disk::indexval, index.m_indexValueType, index.m_pIndexVal + first, {index.m_nIndex});
  }
  return in.status();
}

// ---- Questions

bool ORVIncrIndex::HasIncrFlag(int& state) {
  state = 0;
  if (!m_pIncrFlags) return false;
  for (std::int64_t row = 0; row < m_nState; ++row) {
    if (m_pIncrFlags[row] == 0) continue;
    if (m_pStateIds) state = m_pStateIds[row];
    return true;
  }
  return false;
}

int ORVIncrIndex::GetStateIncrFlagInfo(std::vector<int>& states, std::vector<int>& flags) {
  if (!m_pStateIds || m_nState < 1) return kFail;
  return h5::Entry(kFail, [&] {
    std::vector<int> numbers(m_pStateIds, m_pStateIds + m_nState);
    std::vector<int> marks(static_cast<std::size_t>(m_nState));
    if (m_pIncrFlags) marks.assign(m_pIncrFlags, m_pIncrFlags + m_nState);
    states.swap(numbers);
    flags.swap(marks);
    return kOk;
  });
}

bool ORVIncrIndex::IsIncrementalState(int state) {
  if (!m_pStateIds || !m_pIncrFlags) return false;
  for (std::int64_t row = 0; row < m_nState; ++row) {
    if (m_pStateIds[row] == state) return m_pIncrFlags[row] != 0;
  }
  return false;
}

// ---- The allocation

std::uint64_t ORVIncrIndexAccess::SizeOf(std::int64_t columns, std::int64_t rows) {
  // Columns: those of identifiers, those of values, the state and the flag.
  std::uint64_t size = 0;
  if (columns < 1 || columns > INT_MAX || rows < 1) return 0;
  const bool wraps = __builtin_mul_overflow(2 * static_cast<std::uint64_t>(columns) + 2, rows, &size);
  return wraps || size > PTRDIFF_MAX / sizeof(int) ? 0 : size;
}

void ORVIncrIndexAccess::Give(ORVIncrIndex& index, CArray<int> elements, std::int64_t columns, std::int64_t rows) {
  static_assert(sizeof(float) == sizeof(int));
  int* const first = elements.release();
  index.m_pIndexId = first;
  index.m_pIndexVal = static_cast<float*>(static_cast<void*>(first + columns * rows));
  index.m_pStateIds = first + 2 * columns * rows;
  index.m_pIncrFlags = index.m_pStateIds + rows;
}

void ORVIncrIndexAccess::AddRow(ORVIncrIndex& index, int state, int flag, const int* ids, const float* values,
                                std::int64_t columns) {
  const std::int64_t first = index.m_nState * index.m_nIndex;
  std::copy_n(ids, columns, index.m_pIndexId + first);
  std::copy_n(values, columns, index.m_pIndexVal + first);
  index.m_pStateIds[index.m_nState] = state;
  index.m_pIncrFlags[index.m_nState++] = flag;
}

bool ORVIncrIndexAccess::HasRows(const ORVIncrIndex& index) {
  return index.m_nState > 0 && index.m_nIndex > 0 && index.m_pIndexId && index.m_pStateIds && index.m_pIncrFlags;
}

void ORVIncrIndexAccess::SetCounts(ORVIncrIndex& index, std::int64_t columns, std::int64_t rows) {
  index.m_nIndex = columns;
  index.m_nState = rows;
}

// ---- With a name

ORVTagIncrIndex::ORVTagIncrIndex() = default;

ORVTagIncrIndex::ORVTagIncrIndex(const ORVTagIncrIndex& other) = default;

ORVTagIncrIndex& ORVTagIncrIndex::operator=(const ORVTagIncrIndex& other) = default;

ORVTagIncrIndex::~ORVTagIncrIndex() = default;

void ORVTagIncrIndex::Initialize() {
  m_tag.clear();
  ORVIncrIndex::Initialize();
}
