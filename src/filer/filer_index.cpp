// The state indexes of a filer: GetStateIndex, GetStateIndexDP and GetMultiStateIndex read a table at first demand,
// GetIndexValues takes a column out of one, IsIndexExist finds the column of a name.

#include "entity/state_index_columns.h"
#include "entity/state_index_fill.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"

using namespace orvio;

void ORVFiler::ReadStateIndex(bool force) {
  if (m_pData) h5::EntryVoid([&] { orvio::ReadStateIndex(*m_pData, IsConfigToSkipSingleStateData(), force); });
}

void ORVFiler::ReadMultiStateIndex(bool force) {
  if (m_pData) h5::EntryVoid([&] { orvio::ReadMultiStateIndex(*m_pData, force); });
}

ORVIndexBase<int, float>* ORVFiler::GetStateIndex(bool force) {
  ReadStateIndex(force);
  return m_pData ? m_pData->m_pStateIndex.get() : nullptr;
}

ORVIndexBase<int, double>* ORVFiler::GetStateIndexDP(bool force) {
  if (!m_pData) return nullptr;
  h5::EntryVoid([&] { ReadStateIndexDP(*m_pData, IsConfigToSkipSingleStateData(), force); });
  return m_pData->m_pStateIndexDP.get();
}

ORVIndexBase<int, float>* ORVFiler::GetMultiStateIndex(bool force) {
  ReadMultiStateIndex(force);
  return m_pData ? m_pData->m_pMultiStateIndex.get() : nullptr;
}

int ORVFiler::GetIndexValues(ORVIndexBase<int, float>* index, int column, int** ids, float** vals) {
  const int rows = RowsOfColumn(index, column);
  if (rows == 0 || !ids || !vals) return 0;
  CArray<int> id_column = IdsOfColumn(*index, column);
  CArray<float> value_column = ValuesOfColumn(*index, column);
  if (!id_column || !value_column) return 0;
  *ids = id_column.release();
  *vals = value_column.release();
  return rows;
}

int ORVFiler::GetIndexValues(ORVIndexBase<int, float>* index, int column, float** vals) {
  const int rows = RowsOfColumn(index, column);
  if (rows == 0 || !vals) return 0;
  CArray<float> value_column = ValuesOfColumn(*index, column);
  if (!value_column) return 0;
  *vals = value_column.release();
  return rows;
}

int ORVFiler::GetIndexValues(ORVIndexBase<int, float>* index, int column, std::vector<int>& ids,
                             std::vector<float>& vals) {
  return h5::Entry(0, [&] { return AppendColumn(index, column, ids, vals); });
}

int ORVFiler::GetIndexValues(ORVIndexBase<int, float>* index, int column, std::vector<float>& vals) {
  return h5::Entry(0, [&] { return AppendWithStride(index, column, vals); });
}

bool ORVFiler::IsIndexExist(const char* name, int& column) {
  column = FindIndexType(m_pData ? m_pData->index_types.get() : nullptr, name);
  return column >= 0;
}
