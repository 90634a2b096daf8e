// The arithmetic on two answers of a fetch.

#include "result/compute_values.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "h5/status.h"

namespace orvio {
namespace {

/// Where an id stands in a list; of several places the last. Ids that lie close together are looked up in a table.
class IdPositions {
 public:
  IdPositions(const int* ids, int count) : first_(*std::min_element(ids, ids + count)) {
    const std::int64_t span = *std::max_element(ids, ids + count) - first_ + 1;
    if (span <= std::max(kSmallTable, std::int64_t{4} * count)) {
      table_.assign(static_cast<std::size_t>(span), kNone);
      for (int i = 0; i < count; ++i) table_[static_cast<std::size_t>(ids[i] - first_)] = i;
    } else {
      scattered_.reserve(static_cast<std::size_t>(count));
      for (int i = 0; i < count; ++i) scattered_[ids[i]] = i;
    }
  }

  static constexpr int kNone = -1;

  int Find(int id) const {
    if (table_.empty()) {
      const auto found = scattered_.find(id);
      return found == scattered_.end() ? kNone : found->second;
    }
    const std::int64_t place = std::int64_t{id} - first_;
    return place >= 0 && place < static_cast<std::int64_t>(table_.size()) ? table_[static_cast<std::size_t>(place)]
                                                                          : kNone;
  }

 private:
  static constexpr std::int64_t kSmallTable = 100000;

  std::int64_t first_;
  std::vector<int> table_;
  std::unordered_map<int, int> scattered_;
};

template <class T>
T Combined(T left, T right, _ORVFetchOperator op) {
  switch (op) {
    case ORV_FETCH_ADD:
      return left + right;
    case ORV_FETCH_SUBTRACT:
      return left - right;
    case ORV_FETCH_MULTIPLY:
      return left * right;
    case ORV_FETCH_DIVIDE:
      return right == T{0} ? T{0} : left / right;
  }
  return left;
}

template <class T>
bool IsFilled(const ValuesById<T>& side) {
  return side.ids && side.values && side.id_count > 0 && side.value_count > 0;
}

}  // namespace

/// QUIRK: the place in the list of `right` chooses the left value, and the place in the list of `left` the right one:
/// crossed. The outcome is right only where both list their ids in the same order, and hosts see to that; with straight
/// places the values of those that do not would change. Pinned by ComputeValues.CrossesThePlacesOfUnequalOrders.
template <class T>
int CombineById(const ValuesById<T>& left, const ValuesById<T>& right, int values_per_id, _ORVFetchOperator op) {
  if (!IsFilled(left) || !IsFilled(right) || values_per_id < 1) return kFail;
  if (op < ORV_FETCH_ADD || op > ORV_FETCH_DIVIDE) return kFail;
  const IdPositions positions(left.ids, left.id_count);
  for (int k = 0; k < right.id_count; ++k) {
    const int position = positions.Find(right.ids[k]);
    if (position == IdPositions::kNone) continue;
    const std::int64_t to = std::int64_t{k} * values_per_id;
    const std::int64_t from = std::int64_t{position} * values_per_id;
    const std::int64_t count = std::min({std::int64_t{values_per_id}, left.value_count - to, right.value_count - from});
    for (std::int64_t j = 0; j < count; ++j) {
      left.values[to + j] = Combined(left.values[to + j], right.values[from + j], op);
    }
  }
  return kOk;
}

template int CombineById(const ValuesById<float>&, const ValuesById<float>&, int, _ORVFetchOperator);
template int CombineById(const ValuesById<double>&, const ValuesById<double>&, int, _ORVFetchOperator);

}  // namespace orvio
