// Values of results, by every road to them.

#include <string>
#include <vector>

#include "orvio/orvio.h"
#include "reading.h"

namespace orvio::fuzz {
namespace {

constexpr std::size_t kBlocks = 24;  // looked at; more of the same find nothing new

template <class T>
void Deliver(ORVResultValuesBase<T, int>& request, int status, Tally& tally) {
  tally.Add(status, request.m_valueCount);
  if (status == 0) {
    tally.Take(request.m_values, request.m_valueCount);
    tally.Take(request.m_ids, request.m_idCount);
  }
  request.DeleteAllocation(true);
}

template <class T>
void Fetch(OpenFiler& open, std::vector<ORVResult*> blocks, int state, int layer, const char* name, Tally& tally) {
  ORVResultValuesBase<T, int> request;
  request.m_state = state;
  request.m_layer = layer;
  request.m_wantIds = 1;
  request.m_fetchMode = layer >= 0 ? 0 : 1;
  const int status = open.filer.GetValues(request, blocks, -1, -1, name);
  Deliver(request, status, tally);
}

void FetchByHandle(OpenFiler& open, const std::vector<ORVResult*>& all, Tally& tally) {
  std::size_t left = 12;
  for (ORVExtVar* handle : open.filer.GetExtVariables()) {
    if (left-- == 0) return;
    ORVResultValuesBase<float, int> request;
    request.m_state = 1;
    std::vector<ORVResult*> blocks = all;
    const int status = open.filer.GetValues(request, blocks, handle->GetIID(), -1, nullptr);
    Deliver(request, status, tally);
  }
}

void FetchIncremental(OpenFiler& open, ORVResult& result, Tally& tally) {
  if (!open.filer.IsIncrBlock(&result)) return;
  (void)open.filer.GetTagIncrIndex(result, true);
  (void)open.filer.IsResultIncrementalAtGivenState(result, open.states);
  std::vector<ORVIncrStateMap*> map;
  (void)open.filer.GetIncrStateMap(result, map, 1);
  for (const ORVIncrStateMap* record : map) delete record;
  (void)open.filer.BuildGlobalIncrMap(result, 1, false);
  std::vector<ORVResult*> blocks = {&result};
  ORVResultValuesBase<float, int> request;
  request.m_state = open.states;
  request.m_wantIds = 1;
  const int status = open.filer.GetIncrValues(request, blocks, -1, -1, result.m_etypvar);
  Deliver(request, status, tally);
}

/// Part of the values of a block into a buffer of exactly their size.
void ReadSelection(OpenFiler& open, ORVResult& result, int component, int layer, int entity, Tally& tally) {
  int rank = 0;
  std::uint64_t start[8] = {}, count[8] = {};
  (void)result.GetComponentSelection(component, &rank, start, count, layer, entity);
  const int total = rank > 0 && rank <= 5 ? result.GetTotalCount(rank, count) : 0;
  if (total <= 0 || total > (1 << 20)) return;
  ORVResult copy = result;
  std::vector<double> buffer(static_cast<std::size_t>(total));
  copy.m_res = buffer.data();
  copy.m_resType = ORV_DOUBLE;
  const int status = copy.ReadSelectiveAttribute(open.path, 1, ORV_READ_DATA, ORV_ATT_RES, rank, start, count, nullptr,
                                                 nullptr, false);
  tally.Add(status, total);
  if (status == 0) tally.Take(buffer.data(), total);
}

void ReadItems(OpenFiler& open, ORVResult& result, Tally& tally) {
  ReadSelection(open, result, 0, 0, -1, tally);
  ReadSelection(open, result, ORV_ALL_COMPONENTS, ORV_ALL_LAYERS, 0, tally);
  ReadSelection(open, result, ORV_ALL_COMPONENTS, ORV_ALL_LAYERS, -1, tally);
  std::vector<int> filters;
  (void)result.ReadDatasetFilterIds(open.path, 1, "res", filters);
  std::vector<_ORVDataType> types;
  (void)result.ReadDatasetFileDataType(open.path, 1, {"res", "entid", "indexval"}, types);
  int columns = 0;
  (void)result.ReadNumIndex(open.path, 1, columns);
  ORVResult copy = result;
  (void)copy.ReadBlockByBlockPath(open.path, ORV_READ_HEADER | ORV_READ_DATA_INFO | ORV_READ_INDEX_INFO);
  (void)copy.ReadBlock(open.path, 2, ORV_READ_HEADER);
}

void ReadByPath(OpenFiler& open, std::vector<ORVResult*> blocks, Tally& tally) {
  ORVFetchValuesWithIndex values;
  const int status = open.filer.ReadValuesByBlockPath(blocks, values, nullptr);
  tally.Add(status, values.m_valueCount);
  if (status == 0) tally.Take(values.m_values, values.m_valueCount);
  values.DeleteAllocation(true);
}

void ReadSingle(OpenFiler& open, ORVResult& result, Tally& tally) {
  for (int state = 1; state <= std::max(1, open.states); ++state) {
    Fetch<float>(open, {&result}, state, ORV_ALL_LAYERS, result.m_etypvar, tally);
  }
  Fetch<double>(open, {&result}, 1, 0, result.m_etypvar, tally);
  ReadItems(open, result, tally);
  ReadByPath(open, {&result}, tally);
  FetchIncremental(open, result, tally);
}

void ReadHistory(OpenFiler& open, ORVResult& result, Tally& tally) {
  int states = 0;
  int* ids = nullptr;
  float* values = nullptr;
  const int columns = open.filer.ReadMultistateIndexValues(&result, states, ids, values);
  const Owned<int> id_owner(ids);
  const Owned<float> value_owner(values);
  if (columns > 0) tally.Take(values, std::int64_t{states} * columns);
  std::vector<int> entities, index_ids;
  std::vector<std::uint64_t> shape;
  std::vector<float> all, index_values;
  std::uint64_t count = 0;
  const int status = open.filer.GetMultistateResultValues(result.m_etyp, result.m_etypvar, entities, shape, all, count,
                                                          index_ids, index_values, -1);
  tally.Add(status, static_cast<std::int64_t>(all.size()));
  tally.Take(all.data(), static_cast<std::int64_t>(all.size()));
  tally.Take(shape.data(), static_cast<std::int64_t>(shape.size()));
  Fetch<float>(open, {&result}, 1, ORV_ALL_LAYERS, result.m_etypvar, tally);
  ReadItems(open, result, tally);
  ReadByPath(open, {&result}, tally);
}

void ReadThroughCache(OpenFiler& open, std::vector<ORVResult*>& all, Tally& tally) {
  for (std::size_t i = 0; i < std::min<std::size_t>(all.size(), 4); ++i) {
    (void)open.filer.CacheData(all[i], 1, nullptr, i % 2 == 0);
    Fetch<float>(open, {all[i]}, 1, ORV_ALL_LAYERS, all[i]->m_etypvar, tally);
    Fetch<double>(open, {all[i]}, 1, 0, all[i]->m_etypvar, tally);
  }
  open.filer.ClearCacheData(3);
}

}  // namespace

void ReadResultValues(OpenFiler& open, Tally& tally) {
  std::vector<ORVResult*> single = open.filer.GetResultList(1), multi = open.filer.GetResultList(0);
  if (single.size() > kBlocks) single.resize(kBlocks);
  if (multi.size() > kBlocks) multi.resize(kBlocks);
  FetchByHandle(open, single, tally);
  FetchByHandle(open, multi, tally);
  for (ORVResult* result : single) ReadSingle(open, *result, tally);
  for (ORVResult* result : multi) ReadHistory(open, *result, tally);
  ReadThroughCache(open, single, tally);
  ReadThroughCache(open, multi, tally);
  int* ids = nullptr;
  float* values = nullptr;
  (void)open.filer.ReadFluidParticleCoordinate(1, &ids, &values);
  const Owned<int> id_owner(ids);
  const Owned<float> value_owner(values);
  open.filer.InitForReload();
}

void ReadResultsOnce(OpenFiler& open, Tally& tally) {
  for (const int list : {0, 1}) {
    std::vector<ORVResult*> results = open.filer.GetResultList(list);
    tally.results += results.size();
    if (results.size() > kBlocks) results.resize(kBlocks);
    for (ORVResult* result : results) {
      if (result->IsMultistateBlk()) {
        ReadHistory(open, *result, tally);
      } else {
        Fetch<float>(open, {result}, 1, ORV_ALL_LAYERS, result->m_etypvar, tally);
      }
    }
  }
  if (const auto* index = open.filer.GetStateIndex(false)) {
    tally.Take(index->GetIndexVals(), index->GetNumState() * index->GetNumIndex());
    tally.Take(index->GetIndexIds(), index->GetNumState() * index->GetNumIndex());
  }
}

}  // namespace orvio::fuzz
