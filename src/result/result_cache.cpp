// Datasets of a result block held in memory: reading into memory, and the reads that are served from there.

#include "result/result_cache.h"

#include <algorithm>
#include <string>
#include <vector>

#include "block/cached_dataset.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "result/result_complex.h"
#include "result/result_kinds.h"

using namespace orvio;

namespace {

/// Whether what was read may have to be converted, which is left to the read of the file.
bool MayBeConverted(const ORVResult& block, int rank, const std::uint64_t* start, const std::uint64_t* count) {
  if (!start || !count) return block.m_complexOutput != 0 && block.IsComplexBlk();
  return IsConverted(block, {rank, start, count});
}

/// What a block has set buffers for, values first.
std::vector<_ORVBlockAtt> WantedItems(const ORVResult& block, int stages) {
  std::vector<_ORVBlockAtt> items;
  const auto add = [&](int stage, const void* buffer, _ORVBlockAtt att) {
    if (stages & stage && buffer) items.push_back(att);
  };
  add(ORV_READ_DATA, block.m_res, ORV_ATT_RES);
  add(ORV_READ_DATA, block.m_entid, ORV_ATT_IDS);
  add(ORV_READ_INDEX, block.m_indexval, ORV_ATT_INDEXVAL);
  add(ORV_READ_INDEX, block.m_indexident, ORV_ATT_INDEXIDENT);
  return items;
}

}  // namespace

namespace orvio {

bool ReadFromCache(ORVResult& block, int state, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                   bool via_cache) {
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind) return false;
  // QUIRK: entity kinds are served from memory whether or not that was asked for, multi-state element kinds when it was
  // and no ids are wanted, other kinds never. Hosts cache entity blocks and go on reading them as before. Pinned by
  // ResultCacheOfNodes.ServesEntityKindsUnasked, ResultCacheSelection.ServesMultiStateElementKindsWhenAsked and
  // ResultCacheSelection.NeverServesElementKindsOfOneState.
  const bool served = kind->IsEntity() || (kind->IsMultistate() && via_cache && !block.m_readIds);
  if (!served) return false;
  const bool values = att == ORV_ATT_RES;
  const bool with_ids = values && block.m_readIds && block.m_entid;
  if (values && MayBeConverted(block, rank, start, count)) return false;
  if (block.FillFromCacheData(state, att, rank, start, count) != kOk) return false;
  return !with_ids || block.FillFromCacheData(state, ORV_ATT_IDS, 1, nullptr, nullptr) == kOk;
}

}  // namespace orvio

int ORVResult::CacheData(IORVBufferManager& manager, const char* file, int state, bool toFloat,
                         std::vector<std::string>* names) {
  return h5::Entry(kFail, [&] {
    if (names && !names->empty()) return ReadAndCacheDataset(manager, file, state, *names, toFloat);
    std::vector<std::string> usual = {disk::res, disk::indexval};
    const bool all_held = std::ranges::all_of(usual, [&](const std::string& name) {
      const ORVBuffer* buffer = GetCachedDataset(name);
      return buffer && ServesState(*this, *buffer, state);
    });
    return all_held ? kOk : ReadAndCacheDataset(manager, file, state, usual, toFloat);
  });
}

int ORVResult::FillFromCacheData(int state, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count) {
  if (!m_pCacheMap) return kFail;
  return h5::Entry(kFail, [&] {
    std::string name;
    _ORVDataType type = ORV_UNKNOWN_TYPE;
    void* out = nullptr;
    int dims_rank = 0;
    std::uint64_t dims[8] = {};
    if (GetDatasetInfoFromBlock(att, name, type, &out, dims_rank, dims) != kOk) return kFail;
    const ORVBuffer* buffer = GetCachedDataset(name);
    if (!buffer || !ServesState(*this, *buffer, state)) return kFail;
    const bool whole = !start && !count;
    if (!whole && rank != dims_rank) return kFail;
    return OH5Copy_FromCache(name, type, dims_rank, dims, type, start, count, out);
  });
}

int ORVResult::FillFromCacheData(int state, std::vector<_ORVBlockAtt>& atts, bool stopOnFirst) {
  if (!m_pCacheMap || atts.empty()) return kFail;
  int status = kOk;
  for (const _ORVBlockAtt att : atts) {
    if (FillFromCacheData(state, att, 0, nullptr, nullptr) == kOk) continue;
    status = kFail;
    if (stopOnFirst) break;
  }
  return status;
}

int ORVResult::ReadBlockThroughCache(const char* file, int state, int flags) {
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    // QUIRK: what has no buffer is not looked at: a read that is served from memory leaves header, frames and locations
    // as they are, and takes element values without ids. Hosts read those once and then step through the states. Pinned
    // by ResultCache.WholeReadFromMemoryLeavesTheHeaderAlone.
    std::vector<_ORVBlockAtt> wanted = WantedItems(*this, flags);
    if (FillFromCacheData(state, wanted, true) == kOk) return kOk;
    return ReadBlock(file, state, flags);
  });
}
