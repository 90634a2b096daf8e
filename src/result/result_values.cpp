// The holders of request and answer of a value fetch. How two answers are combined is in compute_values.cpp.

#include "orvio/orv_result_values.h"

#include <cstdlib>

#include "h5/entry.h"
#include "h5/status.h"
#include "result/compute_values.h"

template <class T, class I>
ORVResultValuesBase<T, I>::ORVResultValuesBase()
    : m_state(-1),
      m_resultType(-1),
      m_extendedType(-1),
      m_layer(0),
      m_wantIds(0),
      m_zoneId(-1),
      m_spare(-1),
      m_fetchMode(0),
      m_capacity(0),
      m_idCount(0),
      m_ids(nullptr),
      m_valueCount(0),
      m_values(nullptr) {}

template <class T, class I>
ORVResultValuesBase<T, I>::ORVResultValuesBase(const ORVResultValuesBase& other) = default;

template <class T, class I>
ORVResultValuesBase<T, I>& ORVResultValuesBase<T, I>::operator=(const ORVResultValuesBase& other) = default;

template <class T, class I>
ORVResultValuesBase<T, I>::~ORVResultValuesBase() = default;

template <class T, class I>
void ORVResultValuesBase<T, I>::ResetOutParameter() {
  m_spare = -1;  // it tells of the arrays
  m_idCount = 0;
  m_ids = nullptr;
  m_valueCount = 0;
  m_values = nullptr;
}

template <class T, class I>
void ORVResultValuesBase<T, I>::DeleteAllocation(bool reset) {
  std::free(m_values);
  std::free(m_ids);
  m_spare = -1;
  m_values = nullptr;
  m_ids = nullptr;
  if (reset) ResetOutParameter();
}

template <class T, class I>
int ORVResultValuesBase<T, I>::ComputeValues(ORVResultValuesBase& other, int valuesPerId, _ORVFetchOperator op) {
  using namespace orvio;
  if (m_fetchMode != 0 || other.m_fetchMode != 0) return kFail;
  return h5::Entry(kFail, [&] {
    const ValuesById<T> left{m_ids, m_idCount, m_values, m_valueCount};
    const ValuesById<T> right{other.m_ids, other.m_idCount, other.m_values, other.m_valueCount};
    return CombineById(left, right, valuesPerId, op);
  });
}

template class ORVResultValuesBase<float, int>;
template class ORVResultValuesBase<double, int>;

ORVFetchValuesWithIndex::ORVFetchValuesWithIndex()
    : m_indexCount(0), m_blockCount(0), m_indexIdent(nullptr), m_indexVal(nullptr) {}

ORVFetchValuesWithIndex::~ORVFetchValuesWithIndex() = default;

/// QUIRK: what the base delivers stays. Hosts reset the index alone between two fetches into the same arrays, and would
/// leak these. Pinned by ResultValues.WithIndexForgetTheirOwnMembersOnly.
void ORVFetchValuesWithIndex::ResetOutParameter() {
  m_indexCount = 0;
  m_blockCount = 0;
  m_indexIdent = nullptr;
  m_indexVal = nullptr;
}

void ORVFetchValuesWithIndex::DeleteAllocation(bool reset) {
  ORVResultValuesBase::DeleteAllocation(false);
  std::free(m_indexIdent);
  std::free(m_indexVal);
  m_indexIdent = nullptr;
  m_indexVal = nullptr;
  if (!reset) return;
  ORVResultValuesBase::ResetOutParameter();  // the override leaves these alone
  ResetOutParameter();
}
