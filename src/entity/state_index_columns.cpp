// Extraction of a column over all rows, and the names of the columns.

#include "entity/state_index_columns.h"

#include <climits>
#include <cstdint>

#include "h5/text_field.h"
#include "orvio/orv_definitions.h"

namespace orvio {
namespace {

/// Calls `take` with the position of each element of a column.
template <class Take>
void ForEachRow(const ORVIndexBase<int, float>& index, int column, Take take) {
  for (std::int64_t row = 0; row < index.GetNumState(); ++row) take(row, row * index.GetNumIndex() + column);
}

template <class T>
CArray<T> Column(const ORVIndexBase<int, float>& index, int column, const T* matrix) {
  CArray<T> elements;
  if (matrix) elements = ZeroedArray<T>(static_cast<std::size_t>(index.GetNumState()));
  if (elements) {
    ForEachRow(index, column, [&](std::int64_t row, std::int64_t at) { elements[row] = matrix[at]; });
  }
  return elements;
}

}  // namespace

int RowsOfColumn(const ORVIndexBase<int, float>* index, int column) {
  if (!index || index->GetNumState() < 1 || index->GetNumState() > INT_MAX) return 0;
  if (column < 0 || column >= index->GetNumIndex()) return 0;
  return static_cast<int>(index->GetNumState());
}

CArray<int> IdsOfColumn(const ORVIndexBase<int, float>& index, int column) {
  return Column(index, column, index.GetIndexIds());
}

CArray<float> ValuesOfColumn(const ORVIndexBase<int, float>& index, int column) {
  return Column(index, column, index.GetIndexVals());
}

int AppendColumn(const ORVIndexBase<int, float>* index, int column, std::vector<int>& ids, std::vector<float>& values) {
  const int rows = RowsOfColumn(index, column);
  if (rows == 0 || !index->GetIndexIds() || !index->GetIndexVals()) return 0;
  ids.reserve(ids.size() + static_cast<std::size_t>(rows));  // before anything is appended to either
  values.reserve(values.size() + static_cast<std::size_t>(rows));
  ForEachRow(*index, column, [&](std::int64_t, std::int64_t at) {
    ids.push_back(index->GetIndexIds()[at]);
    values.push_back(index->GetIndexVals()[at]);
  });
  return rows;
}

int AppendWithStride(const ORVIndexBase<int, float>* index, int column, std::vector<float>& values) {
  const int rows = RowsOfColumn(index, column);
  if (rows == 0 || !index->GetIndexVals()) return 0;
  values.reserve(values.size() + static_cast<std::size_t>(rows));
  // QUIRK: the matrix is walked in steps of `column` elements and not row by row, so column 0 gives the very first
  // value once per state. Hosts know this form as it is and take a column from the other three, so it must not become
  // one of them. Pinned by StateIndexColumns.IntoAVectorOfValuesStrideByTheColumn.
  for (std::int64_t row = 0; row < rows; ++row) values.push_back(index->GetIndexVals()[row * column]);
  return rows;
}

int FindIndexType(const ORVSimulationType* types, const char* name) {
  if (!types || !types->m_pEtypindex || !name) return -1;
  for (int i = 0; i < types->m_nindex && i < INT_MAX; ++i) {
    const char* slot = types->m_pEtypindex + static_cast<std::size_t>(i) * disk::kTextWidth;
    if (EqualIgnoringCase(Content(slot), name)) return i;
  }
  return -1;
}

}  // namespace orvio
