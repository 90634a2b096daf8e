// How a host picks result blocks of a filer: GetResultList and the forms of GetResultBlks; blocks of a path, of a load
// case, of a series. Queries with fixed names and those with yes or no for an answer are in filer_result_queries.cpp.

#include "filer/container.h"
#include "filer/file_facts.h"
#include "filer/start_up.h"
#include "h5/entry.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "result/result_lookup.h"
#include "variable/association.h"

using namespace orvio;

namespace {

constexpr char kLoadCaseColumn[] = "LOAD CASE";  // name of the index type

/// Null where the flags name no list.
///
/// QUIRK: flags that name both lists mean that of the states alone. Hosts pass all flags they have and take what comes
/// for blocks of one state. Pinned by FilerResults.AreTakenFromTheStateListWhereBothAreNamed.
const ResultList* GetResultBlkList(const ORVContainer* data, int flags) {
  if (!data) return nullptr;
  if (flags & kSinglestateData) return &data->single_results;
  return flags & kMultistateData ? &data->multi_results : nullptr;
}

void Find(const ORVContainer* data, int flags, const ResultQuery& query, ResultList& out) {
  if (const ResultList* list = GetResultBlkList(data, flags)) h5::EntryVoid([&] { FindResults(*list, query, out); });
}

NameTest NameTestOf(bool exact) { return exact ? NameTest::kVariableName : NameTest::kIdentity; }

}  // namespace

std::vector<ORVResult*>& ORVFiler::GetResultList(int singleState) {
  return singleState ? DataOf(m_pData).single_results : DataOf(m_pData).multi_results;
}

// ---- By kind, entity type and name

void ORVFiler::GetResultBlks(std::vector<ORVResult*>& out, int type, int flags) {
  if (const ResultList* list = GetResultBlkList(m_pData, flags))
    h5::EntryVoid([&] { FindResultsOfKind(*list, type, out); });
}

void ORVFiler::GetResultBlks(std::vector<_ORVEntityType>& entities, std::vector<const char*>& names,
                             std::vector<ORVResult*>& out, int type, int flags) {
  Find(m_pData, flags, {.kind = type, .entities = entities, .names = names}, out);
}

void ORVFiler::GetResultBlks(std::vector<int>& baseTypes, std::vector<const char*>& names, std::vector<ORVResult*>& out,
                             int type, int flags) {
  Find(m_pData, flags, {.kind = type, .base_types = baseTypes, .names = names}, out);
}

void ORVFiler::GetResultBlks(std::vector<const char*>& names, std::vector<ORVResult*>& out, int type, int flags,
                             bool exactName) {
  Find(m_pData, flags, {.kind = type, .names = names, .test = NameTestOf(exactName)}, out);
}

void ORVFiler::GetResultBlksByName(std::vector<const char*>& typeNames, std::vector<const char*>& names,
                                   std::vector<ORVResult*>& out, int type, int flags) {
  Find(m_pData, flags, {.kind = type, .type_names = typeNames, .names = names, .needs_components = false}, out);
}

void ORVFiler::GetResultBlksByVariableNameFlag(std::vector<int>& baseTypes, std::vector<const char*>& names,
                                               std::vector<ORVResult*>& out, int type, int flags, bool exactName) {
  Find(m_pData, flags, {.kind = type, .base_types = baseTypes, .names = names, .test = NameTestOf(exactName)}, out);
}

// ---- By handle

void ORVFiler::GetResultBlksFrmCmp(std::vector<int>& baseTypes, std::vector<const char*>& components,
                                   std::vector<ORVResult*>& out, int type, int flags) {
  Find(m_pData, flags, {.kind = type, .base_types = baseTypes, .names = components, .test = NameTest::kHandleName},
       out);
}

void ORVFiler::GetResultBlksFrmCmp(std::vector<_ORVEntityType>& entities, std::vector<const char*>& components,
                                   std::vector<ORVResult*>& out, int type, int flags) {
  Find(m_pData, flags, {.kind = type, .entities = entities, .names = components, .test = NameTest::kHandleName}, out);
}

void ORVFiler::GetResultBlksFrmCmp(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes,
                                   std::vector<int>& extIds, std::vector<ORVResult*>& out, int type, int flags) {
  const ResultList* list = GetResultBlkList(m_pData, flags);
  const ResultQuery query{.kind = type, .entities = entities, .base_types = baseTypes};
  if (list) h5::EntryVoid([&] { FindResultsByHandle(*list, query, extIds, out); });
}

// ---- By another block

void ORVFiler::GetResultBlksFrmResBlk(ORVResult& sample, std::vector<ORVResult*>& out, bool byEntityType) {
  const ResultList* list = GetResultBlkList(m_pData, sample.IsMultistateBlk() ? kMultistateData : kSinglestateData);
  if (list) h5::EntryVoid([&] { FindSameQuantity(*list, sample, byEntityType, out); });
}

void ORVFiler::GetResultBlksFrmResBlkGivenZoneId(ORVResult& sample, std::vector<ORVResult*>& out, int zoneId,
                                                 bool byEntityType) {
  h5::EntryVoid([&] {
    ResultList found;
    GetResultBlksFrmResBlk(sample, found, byEntityType);
    AppendThose(
        found, [&](const ORVResult& block) { return block.m_zoneid == zoneId; }, out);
  });
}

// ---- By place in the file

void ORVFiler::GetResultBlkFromPath(std::string& path, std::vector<ORVResult*>& out) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    const std::size_t before = out.size();
    FindResultsBelow(m_pData->path.c_str(), path, out);
    int next_id = NextHandleId(m_pData->ext_vars);
    if (out.size() > before) (void)AssociateVariables(out, next_id, kServesSingleState);  // always 0
  });
}

void ORVFiler::ClearResultBlk(std::vector<ORVResult*>& results) {
  for (const ORVResult* block : results) delete block;
  results.clear();
}

// ---- By load case and series

void ORVFiler::GetBlocksGivenLoadCase(int loadCase, std::vector<ORVResult*>& in, std::vector<ORVResult*>& out) {
  int column = -1;
  if (!m_pData || in.empty() || !IsIndexExist(kLoadCaseColumn, column)) return;
  h5::EntryVoid([&] { FindResultsOfLoadCase(m_pData->path.c_str(), in, column, loadCase, out); });
}

void ORVFiler::GetBlocksGivenSeriesName(std::string& series, std::vector<ORVResult*>& in,
                                        std::vector<ORVResult*>& out) {
  h5::EntryVoid([&] {
    AppendThose(
        in, [&](ORVResult& block) { return block.HasSeriesName(series.c_str()); }, out);
  });
}

void ORVFiler::GetUniqueSeriesMultistateBlocks(std::vector<ORVResult*>& out) {
  if (m_pData) h5::EntryVoid([&] { FindUniqueSeries(m_pData->multi_results, out); });
}
