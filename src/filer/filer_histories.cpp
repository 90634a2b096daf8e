// Values over all states: GetMultistateResultValues reads those of a variable from the multi-state blocks of an entity
// type, ReadMultistateIndexValues the index table of one block.

#include <utility>

#include "entity/state_index_fill.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "result/multi_state_values.h"

using namespace orvio;

int ORVFiler::GetMultistateResultValues(const std::string& typeName, const std::string& variable, std::vector<int>& ids,
                                        std::vector<std::uint64_t>& shape, std::vector<float>& values,
                                        std::uint64_t& stateCount, std::vector<int>& indexIds,
                                        std::vector<float>& indexValues, int zoneId) {
  Histories histories;
  const int status = m_pData ? ReadHistories(*m_pData, {typeName, variable, zoneId}, histories) : kFail;
  ids = std::move(histories.ids);
  shape = std::move(histories.shape);
  values = std::move(histories.values);
  stateCount = histories.state_count;
  indexIds = std::move(histories.index_ids);
  indexValues = std::move(histories.index_values);
  return status;
}

int ORVFiler::ReadMultistateIndexValues(ORVResult* block, int& stateCount, int*& indexIds, float*& indexValues) {
  stateCount = 0;
  indexIds = nullptr;
  indexValues = nullptr;
  if (!m_pData || !block || !block->IsMultistateBlk()) return 0;
  return h5::Entry(0, [&] {
    BlockIndexTable table = ReadBlockIndexTable(m_pData->path, *block);
    stateCount = table.states;
    indexIds = table.ids.release();
    indexValues = table.values.release();
    return table.columns;
  });
}
