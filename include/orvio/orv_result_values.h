#pragma once

/// Request and answer of a value fetch.

#include "orvio/orv_types.h"

/// How ComputeValues combines two values.
enum _ORVFetchOperator : int {
  ORV_FETCH_ADD = 0,
  ORV_FETCH_SUBTRACT = 1,
  ORV_FETCH_MULTIPLY = 2,
  ORV_FETCH_DIVIDE = 3,  ///< gives 0 where the right value is exactly 0
};

/// What a fetch shall deliver, and what it delivered. The arrays of the answer come from the C allocator and belong to
/// the holder once a fetch has filled them: DeleteAllocation frees them, the destructor does not, and a further fetch
/// overwrites the pointers. Copies share the arrays. Made for <float, int> and <double, int>.
template <class T, class I>
class ORVResultValuesBase {
 public:
  ORVResultValuesBase();
  ORVResultValuesBase(const ORVResultValuesBase& other);
  ORVResultValuesBase& operator=(const ORVResultValuesBase& other);
  virtual ~ORVResultValuesBase();

  /// Zeroes counts and pointers of the answer; frees nothing.
  virtual void ResetOutParameter();
  /// Frees the arrays of the answer; with `reset` the counts are zeroed too.
  virtual void DeleteAllocation(bool reset);

  /// Combines these values with those of `other`, by entity id, in place; both hold `valuesPerId` values an entity. Ids
  /// of both sides must stand in the same order for the result to make sense. 1 without ids or values on either side.
  int ComputeValues(ORVResultValuesBase& other, int valuesPerId, _ORVFetchOperator op);

  int m_state;         ///< 1-based state to read; constant blocks are always read at 0
  int m_resultType;    ///< external id that selects the blocks, for the form without a list of blocks
  int m_extendedType;  ///< external id of the quantity, for the same form
  int m_layer;         ///< layer or integration point from 0; -101 for all
  int m_wantIds;       ///< not 0: entity ids are delivered too
  int m_zoneId;        ///< only blocks of that zone; -1 for all
  int m_spare;         ///< the fetch's own: marks an array `m_ids` that is shorter than the capacity; else -1
  int m_fetchMode;     ///< 0: values as the dataset lies, entity by entity; 1: component by component
  int m_capacity;      ///< above 0: `m_values` and `m_ids` are arrays of the C allocator with room for this many
  int m_idCount;
  I* m_ids;
  int m_valueCount;
  T* m_values;
};

extern template class ORVIO_EXPORT ORVResultValuesBase<float, int>;
extern template class ORVIO_EXPORT ORVResultValuesBase<double, int>;

/// The answer of ReadValuesByBlockPath: values with the index rows of their blocks.
class ORVIO_EXPORT ORVFetchValuesWithIndex : public ORVResultValuesBase<float, int> {
 public:
  ORVFetchValuesWithIndex();
  ORVFetchValuesWithIndex(const ORVFetchValuesWithIndex&) = default;
  ORVFetchValuesWithIndex& operator=(const ORVFetchValuesWithIndex&) = default;
  ~ORVFetchValuesWithIndex() override;

  /// Zeroes the four members below and no others; frees nothing.
  void ResetOutParameter() override;
  /// Frees the arrays of the base and of this class; with `reset` all counts are zeroed too.
  void DeleteAllocation(bool reset) override;

  int m_indexCount;   ///< index values per block read
  int m_blockCount;   ///< blocks read
  int* m_indexIdent;  ///< identifiers of all blocks, one behind the other
  float* m_indexVal;  ///< values of all blocks, likewise
};
