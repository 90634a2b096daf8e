#pragma once

// The arrays that a value fetch fills: its own, which the holder of the answer gets in the end, or those that the holder
// brought along.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "h5/c_array.h"
#include "h5/unset_memory.h"
#include "orvio/orv_result_values.h"

namespace orvio {

template <class T>
class FetchArrays {
 public:
  using Holder = ORVResultValuesBase<T, int>;

  /// `are_read_whole`: what is delivered was read by the library, or zeroed by it.
  FetchArrays(Holder& holder, bool are_read_whole) : holder_(holder), may_be_unset_(are_read_whole) {}

  /// Values that the arrays of the holder have room for.
  std::uint64_t room() const { return static_cast<std::uint64_t>(std::max(holder_.m_capacity, 0)); }

  /// Room for the answer, which fits an int and has at least one value an entity. False when memory runs out. Both
  /// arrays are made for as many: the holder has one capacity for them, when it brings them along the next time.
  [[nodiscard]] bool Prepare(std::uint64_t values) {
    if (holder_.m_capacity >= 1) return GrowThoseOfHolder(static_cast<int>(values));
    own_values_ = NewArray<T>(values);
    if (holder_.m_wantIds) own_ids_ = NewArray<int>(values);
    const bool made = own_values_ && (own_ids_ || !holder_.m_wantIds);
    if (made && may_be_unset_) unset_values_.emplace(own_values_.get(), values * sizeof(T));
    if (made && may_be_unset_ && own_ids_) unset_ids_.emplace(own_ids_.get(), values * sizeof(int));
    return made;
  }

  T* values() { return own_values_ ? own_values_.get() : holder_.m_values; }
  int* ids() { return own_ids_ ? own_ids_.get() : holder_.m_ids; }

  /// Notes that the array of ids has less room than the capacity says.
  static void MarkIdsAsShort(Holder& holder) { holder.m_spare = MarkOf(holder.m_ids); }

  /// Hands the arrays to the holder, with the counts of what was read.
  void Deliver(std::uint64_t values, std::uint64_t ids) {
    holder_.m_idCount = static_cast<int>(ids);
    holder_.m_valueCount = static_cast<int>(values);
    if (own_ids_) holder_.m_ids = own_ids_.release();
    if (own_values_) holder_.m_values = Shrunk(own_values_.release(), values);
  }

 private:
  template <class U>
  CArray<U> NewArray(std::size_t count) const {
    return may_be_unset_ ? UnsetArray<U>(count) : ZeroedArray<U>(count);
  }

  /// The array may move. On failure it stays as it was.
  static T* Shrunk(T* array, std::uint64_t count) {
    void* shrunk = std::realloc(array, count * sizeof(T));
    return shrunk ? static_cast<T*>(shrunk) : array;
  }

  template <class U>
  [[nodiscard]] static bool Resize(U*& array, int count) {
    void* resized = std::realloc(array, static_cast<std::size_t>(count) * sizeof(U));
    if (resized) array = static_cast<U*>(resized);
    return resized != nullptr;
  }

  /// Mark of an array of ids that is shorter than the capacity. It is made of the address, so that neither another
  /// array nor a number of the host is taken for one: never 0, never negative.
  static int MarkOf(const int* ids) {
    const auto address = reinterpret_cast<std::uintptr_t>(ids) / alignof(std::max_align_t);
    return static_cast<int>(((address ^ address >> 31U) & INT_MAX) | 1U);
  }

  /// Arrays that are large enough stay where they are. Without ids being wanted their array stays behind the other
  /// one; that is noted then, for a later fetch that wants them.
  [[nodiscard]] bool GrowThoseOfHolder(int needed) {
    const int room = holder_.m_capacity;
    const int capacity = std::max(needed, room);
    const bool grows = capacity > room;
    if ((grows || !holder_.m_values) && !Resize(holder_.m_values, capacity)) return false;
    const bool ids_lag = holder_.m_ids && (grows || holder_.m_spare == MarkOf(holder_.m_ids));
    if (holder_.m_wantIds && (ids_lag || !holder_.m_ids)) {
      if (!Resize(holder_.m_ids, capacity)) return false;
      holder_.m_spare = kNoMark;
    } else if (ids_lag) {
      MarkIdsAsShort(holder_);
    }
    holder_.m_capacity = capacity;
    return true;
  }

  static constexpr int kNoMark = -1;

  Holder& holder_;
  bool may_be_unset_;
  CArray<T> own_values_;
  CArray<int> own_ids_;
  std::optional<h5::UnsetMemory> unset_values_;
  std::optional<h5::UnsetMemory> unset_ids_;
};

}  // namespace orvio
