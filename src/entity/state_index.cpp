// The state index: a row of identifiers and values for each state, collected from the "index" of a block of each, or
// read in one piece from a multi-state block. How the block of a state is found is in state_index_blocks.cpp, and the
// indexes that a filer holds are in state_index_fill.cpp.

#include <climits>
#include <cstdlib>

#include "block/reader_lease.h"
#include "block/states.h"
#include "block/walk.h"
#include "entity/state_index_access.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "orvio/orv_index.h"

using namespace orvio;

ORVStateInfo::ORVStateInfo() : m_info(0) {}

ORVStateInfo& ORVStateInfo::operator=(const ORVStateInfo& other) = default;

ORVStateInfo::~ORVStateInfo() = default;

template <class I, class V>
ORVIndexBase<I, V>::ORVIndexBase() : m_nIndex(0), m_nState(0), m_pIndexVal(nullptr), m_pIndexId(nullptr) {}

template <class I, class V>
ORVIndexBase<I, V>::ORVIndexBase(const ORVIndexBase& other) = default;

template <class I, class V>
ORVIndexBase<I, V>& ORVIndexBase<I, V>::operator=(const ORVIndexBase& other) = default;

template <class I, class V>
ORVIndexBase<I, V>::~ORVIndexBase() = default;

template <class I, class V>
void ORVIndexBase<I, V>::Initialize() {
  m_nIndex = 0;
  m_nState = 0;
  m_pIndexVal = nullptr;
  m_pIndexId = nullptr;
}

template <class I, class V>
void ORVIndexBase<I, V>::ClearAll() {
  std::free(m_pIndexVal);
  std::free(m_pIndexId);
  m_pIndexVal = nullptr;
  m_pIndexId = nullptr;
}

template <class I, class V>
int ORVIndexBase<I, V>::ReadHeader(hid_t group, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), group);
  in.required(disk::nindex, m_nIndex);
  in.defaulted(disk::nstate, m_nState);  // blocks of one state have none
  return in.status();
}

template <class I, class V>
int ORVIndexBase<I, V>::ReadData(hid_t group, int /*mode*/) {
  if (m_nIndex < 1) return kFail;
  return h5::Entry(kFail, [&] {
    return HasRowsOfStates(group, m_nState > 0) ? ORVIndexAccess::Read(*this, group, {m_nState, m_nIndex})
                                                : ORVIndexAccess::Read(*this, group, {m_nIndex});
  });
}

// ---- Rows of all states

template <class I, class V>
int ORVIndexBase<I, V>::ReadStateIndex(const char* path, int mode, int& count, bool flag) {
  m_nState = 0;
  count = 0;
  if ((mode & ORV_READ_DATA) && m_nIndex == 0) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader) return kFail;
    StateIndexBlocks blocks(*this);
    if (mode & ORV_READ_HEADER) return ORVIndexAccess::ReadColumns(*this, blocks, flag);
    return mode & ORV_READ_DATA ? ORVIndexAccess::ReadRows(*this, blocks, flag, count) : kFail;
  });
}

// ---- The multi-state section

namespace {

_ORVAction StopAtOnce(int, int, void*, void*) { return ORV_ACTION_STOP; }

constexpr int kRowStages = ORV_READ_DATA | ORV_READ_INDEX;
constexpr int kMultiState = -1;  // state argument

}  // namespace

template <class I, class V>
int ORVIndexBase<I, V>::ReadMultiStateIndex(const char* path, int mode, int& count) {
  count = 0;
  if ((mode & ORV_READ_DATA) && (m_nIndex == 0 || m_nState == 0)) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader || reader->GetFileId() < 0) return kFail;
    if (!(mode & kRowStages)) {
      const h5::Group section(ORVBlockPathResolver(this).OpenSectionGroup(kMultiState));
      if (section) WalkGroup(*this, section.get(), StopAtOnce, mode);
      return kOk;
    }
    const bool single = GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    const h5::Group index = OpenIndexPart(h5::OpenGroup(reader->GetFileId(), m_BlkPath.c_str()), single, disk::index);
    if (!index || m_nState > INT_MAX || ReadData(index.get(), ORV_READ_DATA) != kOk) return kFail;
    count = static_cast<int>(m_nState);
    return kOk;
  });
}

// ---- Rows of one block

namespace {

/// Opens a block in each state, or a multi-state block once, until `visit` is done with it.
template <class Visit>
void ForEachPlaceOf(ORVBlock& index, const ORVBlock& block, IOH5Reader& reader, Visit visit) {
  if (block.IsMultiStatePath()) {
    (void)visit(h5::OpenGroup(reader.GetFileId(), block.GetBlkPathCstr()));  // there is no other place
    return;
  }
  for (const std::string& state : StateNames(reader)) {
    if (!visit(OpenInState(index, state))) return;
  }
}

}  // namespace

template <class I, class V>
int ORVIndexBase<I, V>::ReadBlockIndexValues(const char* path, ORVBlock* block, int mode, int& count) {
  count = 0;
  const bool rows = (mode & kRowStages) != 0;
  if (!path || !block || (rows && (m_nIndex < 1 || m_nState < 1))) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader || reader->GetFileId() < 1) return kFail;
    if (!block->IsMultiStatePath() && !block->IsSingleStatePath()) return kFail;
    // QUIRK: the rows come from the index's own path where it has one, not from that of the block, which gives the
    // kind of place and the layout alone. Hosts move an index from block to block by its path and hand in any block
    // of the kind. Pinned by StateIndexBlock.ItsOwnPathGoesBeforeThatOfTheBlock.
    const Swapped<std::string> own_path(m_BlkPath, m_BlkPath.empty() ? block->GetBlkPath() : m_BlkPath);
    const bool header = (mode & ORV_READ_HEADER) != 0;
    const bool single = block->GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    const bool many = block->IsMultiStatePath();  // such a block is met once, at row 0
    const ORVIndexAccess::Bases<I, V> bases(*this);
    int status = kFail;
    ForEachPlaceOf(*this, *block, *reader, [&](h5::Group place) {
      const h5::Group group = OpenIndexPart(std::move(place), single, header ? disk::header : disk::index);
      if (!group || !(header || rows)) return true;  // a state without the block is passed over
      if (header) return (status = ReadHeader(group.get(), mode)) != kOk;
      ORVIndexAccess::PointAtRow(*this, bases.values, bases.ids, count);
      const int row = many ? ReadData(group.get(), mode) : ORVIndexAccess::ReadRow(*this, group.get());
      if (row == kOk) ++count;
      return count < m_nState;
    });
    if (rows) return count > 0 ? kOk : kFail;
    return status;
  });
}

// ---- Search

template <class I, class V>
bool ORVIndexBase<I, V>::FindIndexValLocation(int nIndex, const V* vals, const I* ids, hid_t& location) {
  location = -1;
  if (nIndex != m_nIndex || m_nState <= 0 || (!vals && !ids)) return false;
  if ((vals && !m_pIndexVal) || (ids && !m_pIndexId)) return false;
  for (std::int64_t row = 0; row < m_nState; ++row) {
    const std::int64_t first = row * m_nIndex;
    bool same = true;
    for (std::int64_t column = 0; same && column < m_nIndex; ++column) {
      if (vals && vals[column] != m_pIndexVal[first + column]) same = false;
      if (ids && ids[column] != m_pIndexId[first + column]) same = false;
    }
    if (!same) continue;
    location = row;
    return true;
  }
  return false;
}

template class ORVIndexBase<int, float>;
template class ORVIndexBase<int, double>;
