// Allocation and reading of the three tables of a filer. Their counts come from headers of the file, so each is held
// against what the file stores before it sizes an array.

#include "entity/state_index_fill.h"

#include <climits>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "entity/state_index_access.h"
#include "filer/container.h"
#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/file_in_use.h"
#include "h5/status.h"

namespace orvio {
namespace {

/// Makes the holder at the first demand. The answer is whether it has to be filled.
template <class V>
bool NeedsFilling(std::unique_ptr<ORVIndexBase<int, V>>& holder, std::int64_t key, bool& stale, bool force) {
  const bool again = std::exchange(stale, false) || force;
  if (holder) return again;
  holder = std::make_unique<ORVIndexBase<int, V>>();
  holder->SetKey(key);
  return true;
}

template <class V>
void Empty(ORVIndexBase<int, V>& index) {
  index.ClearAll();
  index.Initialize();
}

/// Index values that the block at the path of an index stores.
std::uint64_t StoredValues(const ORVBlock& index, IOH5Reader& reader) {
  const bool single = index.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  const h5::Group part = OpenIndexPart(h5::OpenGroup(reader.GetFileId(), index.GetBlkPathCstr()), single, disk::index);
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK];
  hsize_t total = 0;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
  const bool found = part && reader.GetDatasetInfo(part.get(), disk::indexval, rank, dims, total, type, nullptr) == kOk;
  return found ? total : 0;
}

std::uint64_t FileSize(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

/// Elements of a matrix of `rows` rows, of which one block stores `rows_of_block`; nothing when no file of this size
/// can hold them. A link costs little, so a small file may have many states that are all the same one.
template <class V>
std::optional<std::size_t> SizeOf(const ORVIndexBase<int, V>& index, IOH5Reader& reader, const std::string& path,
                                  std::int64_t rows, std::int64_t rows_of_block) {
  std::int64_t elements = 0;
  if (index.GetNumIndex() < 1 || rows < 1) return {};
  if (__builtin_mul_overflow(index.GetNumIndex(), rows, &elements)) return {};
  const auto size = static_cast<std::uint64_t>(elements);
  if (size <= h5::kUnbackedBytes / sizeof(V)) return size;
  const auto in_block = size / static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(rows_of_block);
  if (StoredValues(index, reader) < in_block || FileSize(path) < size) return {};
  return size;
}

template <class V>
[[nodiscard]] bool Allocate(ORVIndexBase<int, V>& index, std::optional<std::size_t> size) {
  if (!size) return false;
  CArray<int> ids = ZeroedArray<int>(*size);
  CArray<V> values = ZeroedArray<V>(*size);
  if (!ids || !values) return false;
  ORVIndexAccess::Give(index, std::move(values), std::move(ids));
  return true;
}

/// The rows that were read count; without any there is no table.
template <class V>
void Settle(ORVIndexBase<int, V>& index, int count) {
  ORVIndexAccess::SetNumState(index, count);
  if (count == 0) index.ClearAll();
}

template <class V>
void FillFromStates(ORVIndexBase<int, V>& index, const std::string& path) {
  const h5::FileInUse known(path.c_str());
  const ReaderLease reader(index, path.c_str());
  if (!reader) return;
  StateIndexBlocks blocks(index);
  (void)ORVIndexAccess::ReadColumns(index, blocks, false);  // the count of columns tells
  ORVIndexAccess::SetNumState(index, 0);                    // what the header of one state says about it is of no use
  if (!Allocate(index, SizeOf(index, *reader, path, blocks.GetNumState(), 1))) return;
  int count = 0;
  {
    const ORVIndexAccess::Bases<int, V> bases(index);
    (void)ORVIndexAccess::ReadRows(index, blocks, reader->GetReaderFlag(), count);  // the count of rows tells
  }
  Settle(index, count);
}

template <class V>
void ReadFromStates(std::unique_ptr<ORVIndexBase<int, V>>& holder, bool& stale, const std::string& path, bool skip,
                    bool force) {
  if (!NeedsFilling(holder, kNoKey, stale, force)) return;
  Empty(*holder);
  if (!skip) FillFromStates(*holder, path);
}

template <class V>
void Drop(std::unique_ptr<ORVIndexBase<int, V>>& holder) {
  if (holder) holder->ClearAll();
  holder.reset();
}

}  // namespace

void ReadStateIndex(ORVContainer& data, bool skip, bool force) {
  ReadFromStates(data.m_pStateIndex, data.stale_indexes.state, data.path, skip, force);
}

void ReadStateIndexDP(ORVContainer& data, bool skip, bool force) {
  ReadFromStates(data.m_pStateIndexDP, data.stale_indexes.state_dp, data.path, skip, force);
}

/// QUIRK: the table is read though multi-state data are to be skipped. Hosts that leave the results of that section out
/// still ask which states it covers. Pinned by FilerIndex.OfTheMultiStateSectionIsReadThoughItShallBeSkipped.
void ReadMultiStateIndex(ORVContainer& data, bool force) {
  if (!NeedsFilling(data.m_pMultiStateIndex, ORV_RESULT_MULTI_ENTITY, data.stale_indexes.multi_state, force)) return;
  ORVIndexBase<int, float>& index = *data.m_pMultiStateIndex;
  Empty(index);
  // Held from the counts to the rows: a writer that came between them would leave none.
  const ReaderLease reader(index, data.path.c_str());
  if (!reader) return;
  int count = 0;
  (void)index.ReadMultiStateIndex(data.path.c_str(), ORV_READ_HEADER, count);  // the counts tell
  if (Allocate(index, SizeOf(index, *reader, data.path, index.GetNumState(), index.GetNumState()))) {
    (void)index.ReadMultiStateIndex(data.path.c_str(), ORV_READ_DATA, count);  // likewise
  }
  Settle(index, count);
}

BlockIndexTable ReadBlockIndexTable(const std::string& path, ORVBlock& block) {
  ORVIndexBase<int, float> index;
  index.SetBlkPath(block.GetBlkPath());
  const ReaderLease reader(index, path.c_str());  // held over both passes
  int rows = 0;
  if (!reader || index.ReadBlockIndexValues(path.c_str(), &block, ORV_READ_HEADER, rows) != kOk) return {};
  if (index.GetNumIndex() > INT_MAX || index.GetNumState() > INT_MAX) return {};
  const std::int64_t rows_of_block = block.IsMultiStatePath() ? index.GetNumState() : 1;
  const auto size = SizeOf(index, *reader, path, index.GetNumState(), rows_of_block);
  if (!size) return {};
  BlockIndexTable table;
  table.ids = ZeroedArray<int>(*size);
  table.values = ZeroedArray<float>(*size);
  if (!table.ids || !table.values) return {};
  ORVIndexAccess::PointAtRow(index, table.values.get(), table.ids.get(), 0);
  if (index.ReadBlockIndexValues(path.c_str(), &block, ORV_READ_DATA, rows) != kOk) return {};
  table.columns = static_cast<int>(index.GetNumIndex());
  table.states = static_cast<int>(index.GetNumState());
  return table;
}

void ClearStateIndexes(ORVContainer& data) {
  Drop(data.m_pStateIndex);
  Drop(data.m_pStateIndexDP);
  Drop(data.m_pMultiStateIndex);
  data.stale_indexes = {};
}

}  // namespace orvio
