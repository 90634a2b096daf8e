// The values of results: the forms of GetValues, and ReadValuesByBlockPath.

#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "result/result_lookup.h"
#include "result/value_fetch.h"
#include "variable/ext_var_search.h"

using namespace orvio;

int ORVFiler::GetValues(ORVResultValuesBase<float, int>& values) {
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    ResultList blocks;
    const auto is_asked_for = [&](const ORVResult& block) {
      return HasHandle(block, values.m_resultType, false) &&
             (values.m_zoneId == -1 || block.m_zoneid == values.m_zoneId);
    };
    AppendThose(m_pData->single_results, is_asked_for, blocks);
    const ORVExtVar* handle = FindExtVar(m_pData->ext_vars, ExtVarKey::kEid, values.m_extendedType);
    return handle ? FetchValues(m_pData->path.c_str(), values, blocks, {.ext_id = handle->GetIID()}) : kFail;
  });
}

int ORVFiler::GetValues(ORVResultValuesBase<float, int>& values, std::vector<ORVResult*>& blocks, int extId,
                        int resultType, const char* variable) {
  if (!m_pData) return kFail;
  return FetchValues(m_pData->path.c_str(), values, blocks, {extId, resultType, variable});
}

int ORVFiler::GetValues(ORVResultValuesBase<double, int>& values, std::vector<ORVResult*>& blocks, int extId,
                        int resultType, const char* variable) {
  if (!m_pData) return kFail;
  return FetchValues(m_pData->path.c_str(), values, blocks, {extId, resultType, variable});
}

int ORVFiler::ReadValuesByBlockPath(std::vector<ORVResult*>& blocks, ORVFetchValuesWithIndex& values,
                                    const char* path) {
  if (!m_pData || path) return kFail;
  return FetchBlocksAtPaths(m_pData->path.c_str(), blocks, values);
}
