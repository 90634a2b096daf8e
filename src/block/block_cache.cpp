// The datasets that a block holds in memory: its map of them, reading into it, copies out of it. The map is shared with
// the copies of the block; the buffers belong to a manager.

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "block/block_keys.h"
#include "block/block_parts.h"
#include "block/cached_dataset.h"
#include "block/reader_lease.h"
#include "block/selection_copy.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/group_paths.h"
#include "h5/status.h"
#include "orvio/orv_block.h"

using namespace orvio;

namespace {

/// A dataset as it is to be held.
struct HeldDataset {
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK] = {};
  hsize_t points = 0;
  _ORVDataType type = ORV_UNKNOWN_TYPE;

  std::uint64_t bytes() const { return points * ElementSize(type); }
};

/// Whether it can be held. What its extents claim need not be there: they may stand for any number of zeros.
bool CanBeHeld(const HeldDataset& dataset, hid_t loc, const std::string& name) {
  const std::uint64_t element = ElementSize(dataset.type);
  if (dataset.rank > kMaxCachedRank || element == 0 || dataset.points == 0) return false;
  if (dataset.points > UINT64_MAX / element) return false;
  return dataset.bytes() <= h5::kUnbackedBytes || h5::AllocatedElements(loc, name.c_str()) >= dataset.points;
}

/// Gives a buffer that another manager made too small the memory it lacks.
bool MakeRoom(ORVBuffer& buffer, const HeldDataset& dataset) {
  const hsize_t sizes[] = {buffer.m_elementSize, buffer.m_count};
  const auto room = h5::Product(2, sizes);
  if (buffer.m_data && room && *room >= dataset.bytes()) return true;
  if (!buffer.m_allocator || !room) return false;
  if (buffer.m_data) buffer.m_allocator->deallocate(static_cast<char*>(buffer.m_data), *room);
  buffer.m_data = nullptr;  // allocate() may be a host's and throw
  buffer.m_elementSize = ElementSize(dataset.type);
  buffer.m_count = 0;
  buffer.m_data = buffer.m_allocator->allocate(dataset.bytes());
  if (buffer.m_data) buffer.m_count = dataset.points;
  return buffer.m_data != nullptr;
}

bool IsBelow(std::string_view path, h5::OH5GroupId section) {
  const std::string root = h5::GroupPath(section).substr(1) + "/";  // without the leading dot
  return path.starts_with(root);
}

/// State of what is read below a group, as far as its path tells.
int StateOfGroup(hid_t group) {
  const std::string path = h5::NameOf(group);
  if (IsBelow(path, h5::kConstant)) return 0;
  return IsBelow(path, h5::kMultistate) ? -1 : kUnknownState;
}

void Describe(ORVBuffer& buffer, const HeldDataset& dataset, int state) {
  buffer.m_type = dataset.type;
  buffer.m_state = state;
  buffer.m_rank = dataset.rank;
  std::copy_n(dataset.dims, dataset.rank, buffer.m_dims);
}

struct GiveBack {
  void operator()(ORVBuffer* buffer) const { manager->ReleaseBuffer(buffer); }
  IORVBufferManager* manager;
};

/// Goes back to its manager unless it is released.
using NewBuffer = std::unique_ptr<ORVBuffer, GiveBack>;

/// Reads a dataset whole; null when it is not there or cannot be held.
NewBuffer ReadWhole(IORVBufferManager& manager, IOH5Reader& reader, hid_t loc, const std::string& name, bool to_float,
                    ORVBlock* block) {
  NewBuffer none(nullptr, {&manager});
  HeldDataset held;
  if (reader.GetDatasetInfo(loc, name, held.rank, held.dims, held.points, held.type, nullptr) != kOk) return none;
  if (to_float && held.type == ORV_DOUBLE) held.type = ORV_FLOAT;
  if (!CanBeHeld(held, loc, name)) return none;
  NewBuffer buffer(manager.CreateBuffer(held.type, held.rank, held.dims, name, block), {&manager});
  if (!buffer || !MakeRoom(*buffer, held)) return none;
  // A dataset that has no storage and is never to be filled is read with success, but leaves the memory as it is.
  std::memset(buffer->m_data, 0, held.bytes());
  const int status = reader.ReadDatasetAll(loc, name.c_str(), held.rank, held.dims, held.type, buffer->m_data);
  if (status != kOk) return none;
  Describe(*buffer, held, StateOfGroup(loc));
  return buffer;
}

/// Whether a buffer holds elements of a type.
bool Holds(const ORVBuffer& buffer, _ORVDataType type) {
  const bool same_type = buffer.m_type == type || buffer.m_type == ORV_UNKNOWN_TYPE;  // a host's own tells no type
  return buffer.m_data && buffer.m_count > 0 && same_type && buffer.m_elementSize == ElementSize(type);
}

/// Whether a buffer holds an array of those extents.
bool HasExtents(const ORVBuffer& buffer, int rank, const std::uint64_t* dims) {
  if (buffer.m_rank > 0 && (rank != buffer.m_rank || !std::equal(dims, dims + rank, buffer.m_dims))) return false;
  const auto count = h5::Product(rank, dims);
  return count && *count <= buffer.m_count;
}

/// What a block holds of other states, out of the way of a read. A dataset that is in its place when the scope ends has
/// replaced it; where there is none, it is put back.
class SetAside {
 public:
  using Map = std::map<std::string, ORVBuffer*>;

  SetAside(IORVBufferManager& manager, const std::shared_ptr<Map>& map, std::size_t most)
      : manager_(manager), of_the_block_(map), from_(map) {
    taken_.reserve(most);
  }
  SetAside(const SetAside&) = delete;
  SetAside& operator=(const SetAside&) = delete;
  ~SetAside() {
    if (of_the_block_ != from_) return;  // the host's manager had the block forget all it held
    for (Map::node_type& node : taken_) {
      const Map::insert_return_type put_back = from_->insert(std::move(node));
      if (!put_back.inserted) manager_.ReleaseBuffer(put_back.node.mapped());
    }
  }

  void Take(const std::string& name) { taken_.push_back(from_->extract(name)); }

 private:
  IORVBufferManager& manager_;
  const std::shared_ptr<Map>& of_the_block_;
  const std::shared_ptr<Map> from_;
  std::vector<Map::node_type> taken_;
};

}  // namespace

namespace orvio {

bool ServesState(const ORVBlock& block, const ORVBuffer& buffer, int state) {
  if (buffer.m_state == kUnknownState) return false;
  if (buffer.m_state == state) return true;
  const std::string& path = block.GetBlkPath();
  const bool one_state =
      IsFixedToSection(block.GetKey()) || IsBelow(path, h5::kConstant) || IsBelow(path, h5::kMultistate);
  return one_state && buffer.m_state <= 0;
}

}  // namespace orvio

// ---- The map

void ORVBlock::ClearCacheMap() {
  if (m_pCacheMap) DeleteCache();
}

void ORVBlock::DeleteCache() {
  if (m_pCacheMap) m_pCacheMap->clear();
  m_pCacheMap.reset();
}

ORVBuffer* ORVBlock::GetCachedDataset(const std::string& name) {
  if (!m_pCacheMap) return nullptr;
  const auto found = m_pCacheMap->find(name);
  return found != m_pCacheMap->end() ? found->second : nullptr;
}

bool ORVBlock::IsDatasetCached(const std::string& name) { return GetCachedDataset(name) != nullptr; }

void ORVBlock::AppendCachedData(const std::string& name, ORVBuffer* buffer) {
  if (!buffer) return;
  h5::EntryVoid([&] {
    if (!m_pCacheMap) m_pCacheMap = std::make_shared<std::map<std::string, ORVBuffer*>>();
    (*m_pCacheMap)[name] = buffer;
  });
}

// ---- Reading

int ORVBlock::ReadAndCacheDataset(IORVBufferManager& manager, const char* file, int state,
                                  std::vector<std::string>& names, bool toFloat) {
  const auto set_state = [&](const std::string& name) {
    ORVBuffer* buffer = GetCachedDataset(name);
    if (buffer && buffer->m_state == kUnknownState) buffer->m_state = state;
  };
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    if (!group) return kFail;
    // A block holds each dataset in one state: that of the last read that succeeded.
    SetAside other_states(manager, m_pCacheMap, names.size());
    for (const std::string& name : names) {
      const ORVBuffer* buffer = GetCachedDataset(name);
      if (buffer && !ServesState(*this, *buffer, state)) other_states.Take(name);
    }
    const int status = ReadAndCacheDataset(manager, group.get(), names, toFloat);
    std::ranges::for_each(names, set_state);
    return status;
  });
}

int ORVBlock::ReadAndCacheDataset(IORVBufferManager& manager, hid_t group, std::vector<std::string>& names,
                                  bool toFloat) {
  if (!m_pH5Reader || group < 0) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kOk;
    for (const std::string& name : names) {
      if (IsDatasetCached(name)) continue;
      NewBuffer buffer(nullptr, {&manager});
      (void)AnyPart(group, [&](hid_t part) {  // the buffer tells
        buffer = ReadWhole(manager, *m_pH5Reader, part, name, toFloat, this);
        return buffer != nullptr;
      });
      AppendCachedData(name, buffer.get());
      status = IsDatasetCached(name) ? kOk : kFail;  // else nothing was read, or memory ran out
      if (status == kOk) (void)buffer.release();     // the manager has it
    }
    return status;
  });
}

// ---- Copies

int ORVBlock::OH5Copy_FromCache(const std::string& name, _ORVDataType cachedType, int rank, std::uint64_t* dims,
                                _ORVDataType wantedType, std::uint64_t* start, std::uint64_t* count, void* out) {
  const ORVBuffer* buffer = GetCachedDataset(name);
  if (!buffer || !out || !dims || rank < 1 || cachedType != wantedType || !Holds(*buffer, cachedType)) return kFail;
  if (!start && !count) {
    // The extents tell what the destination has room for.
    if (h5::Product(rank, dims) != buffer->m_count) return kFail;
    std::memcpy(out, buffer->m_data, buffer->m_elementSize * buffer->m_count);
    return kOk;
  }
  if (!HasExtents(*buffer, rank, dims)) return kFail;
  return OH5Copy_SELECTIVE(cachedType, rank, dims, buffer->m_data, wantedType, start, count, out);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the signature is fixed
int ORVBlock::OH5Copy_SELECTIVE(_ORVDataType cachedType, int rank, std::uint64_t* dims, void* source,
                                _ORVDataType wantedType, std::uint64_t* start, std::uint64_t* count, void* out) {
  if (cachedType != ORV_FLOAT || wantedType != ORV_FLOAT) return kFail;
  const bool copied =
      CopySelection(rank, start, count, static_cast<float*>(out), dims, static_cast<const float*>(source));
  return copied ? kOk : kFail;
}
