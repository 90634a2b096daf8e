#pragma once

// Two sets of values are combined by the ids of their entities.

#include "orvio/orv_result_values.h"

namespace orvio {

template <class T>
struct ValuesById {
  const int* ids;
  int id_count;
  T* values;
  int value_count;
};

/// Changes the left values in place. 1 for a side without ids or values, for less than one value per id and for an
/// operator that is none. Made for float and double.
template <class T>
[[nodiscard]] int CombineById(const ValuesById<T>& left, const ValuesById<T>& right, int values_per_id,
                              _ORVFetchOperator op);

}  // namespace orvio
