// Data made whole from changes: ReadIncrDataValues for attributes, GetIncrValues for results. The index of the states and
// the map of the file are in filer_incr_index.cpp.

#include "entity/incr_attribute.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "result/incr_values.h"

using namespace orvio;

int ORVFiler::ReadIncrDataValues(ORVBlock* block, int state, bool appendNew, bool useGlobalMap) {
  auto* attribute = dynamic_cast<ORVEntAttribute*>(block);
  if (!attribute || !m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    const char* const file = m_pData->path.c_str();
    const int last = LocateAttribute(*attribute, file, state);
    if (last < 1) return kFail;
    const IncrAttributeRequest request = {file, state, last, appendNew};
    if (!useGlobalMap) return ReadIncrAttribute(*attribute, request);
    if (BuildGlobalIncrMap(*attribute, state, false) != kOk || !m_pData->m_globalIncrMap) return kFail;
    return ReadIncrAttribute(*attribute, *m_pData->m_globalIncrMap, request);
  });
}

namespace {

template <class T>
int FetchMerged(ORVFiler& filer, const ORVContainer* data, ORVResultValuesBase<T, int>& values,
                const std::vector<ORVResult*>& blocks, const FetchQuantity& quantity) {
  if (!data || blocks.empty() || !blocks.front()) return kFail;
  return h5::Entry(kFail, [&] {
    if (filer.BuildGlobalIncrMap(*blocks.front(), values.m_state, false) != kOk || !data->m_globalIncrMap) return kFail;
    return FetchIncrValues(data->path.c_str(), *data->m_globalIncrMap, values, blocks, quantity);
  });
}

}  // namespace

int ORVFiler::GetIncrValues(ORVResultValuesBase<float, int>& values, std::vector<ORVResult*>& blocks, int extId,
                            int resultType, const char* variable) {
  return FetchMerged(*this, m_pData, values, blocks, {extId, resultType, variable});
}

int ORVFiler::GetIncrValues(ORVResultValuesBase<double, int>& values, std::vector<ORVResult*>& blocks, int extId,
                            int resultType, const char* variable) {
  return FetchMerged(*this, m_pData, values, blocks, {extId, resultType, variable});
}
