#pragma once

// Columns of a state index.

#include <vector>

#include "h5/c_array.h"
#include "orvio/orv_index.h"

class ORVSimulationType;

namespace orvio {

/// Number of states that a column has: 0 where the index or the column is not there.
int RowsOfColumn(const ORVIndexBase<int, float>* index, int column);

// The column as an array or at the end of a vector. Null or false without the matrix, or when memory runs out; nothing
// is appended then.
CArray<int> IdsOfColumn(const ORVIndexBase<int, float>& index, int column);
CArray<float> ValuesOfColumn(const ORVIndexBase<int, float>& index, int column);

/// Appends the column to both vectors. The answer is the number of states.
int AppendColumn(const ORVIndexBase<int, float>* index, int column, std::vector<int>& ids, std::vector<float>& values);

/// Appends as many elements as there are states, each `column` elements behind the one before.
int AppendWithStride(const ORVIndexBase<int, float>* index, int column, std::vector<float>& values);

/// Position of a name among the index types; -1 without it.
int FindIndexType(const ORVSimulationType* types, const char* name);

}  // namespace orvio
