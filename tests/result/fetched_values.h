#pragma once

// Holders of fetched values that clean up behind a test.

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "orvio/orv_result_values.h"

namespace orv_test {

/// An array of the C allocator.
template <class T>
T* CCopy(const std::vector<T>& values) {
  T* copy = static_cast<T*>(std::malloc(values.size() * sizeof(T)));
  std::copy(values.begin(), values.end(), copy);
  return copy;
}

template <class T>
class FetchedValues : public ORVResultValuesBase<T, int> {
 public:
  FetchedValues() = default;
  FetchedValues(FetchedValues&& other) : ORVResultValuesBase<T, int>(other) { other.ResetOutParameter(); }
  FetchedValues(const FetchedValues&) = delete;
  FetchedValues& operator=(const FetchedValues&) = delete;
  ~FetchedValues() override { this->DeleteAllocation(false); }

  std::vector<T> values() const { return Copy(this->m_values, this->m_valueCount); }
  std::vector<int> ids() const { return Copy(this->m_ids, this->m_idCount); }

 private:
  template <class U>
  static std::vector<U> Copy(const U* array, int count) {
    return array ? std::vector<U>(array, array + count) : std::vector<U>();
  }
};

}  // namespace orv_test
