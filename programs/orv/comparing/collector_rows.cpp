#include "comparing/collector_rows.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "reading/words.h"

namespace orvio::program {
namespace {

/// The ids of one collector, type by type.
using Lists = std::vector<std::vector<long long>>;

/// Lists of one length are taken to be tuples: the sides of elements, say.
void SortTuples(Lists& lists) {
  std::vector<std::size_t> order(lists.front().size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::sort(order, [&](std::size_t i, std::size_t j) {
    for (const std::vector<long long>& list : lists) {
      if (list[i] != list[j]) return list[i] < list[j];
    }
    return false;
  });
  for (std::vector<long long>& list : lists) {
    std::vector<long long> sorted;
    for (const std::size_t i : order) sorted.push_back(list[i]);
    list = std::move(sorted);
  }
}

void Sort(Lists& lists) {
  const auto has_length_of_first = [&](const auto& list) { return list.size() == lists.front().size(); };
  if (std::ranges::all_of(lists, has_length_of_first)) return SortTuples(lists);
  for (std::vector<long long>& list : lists) std::ranges::sort(list);
}

}  // namespace

bool FillCollectorRows(const ORVCollector& block, RecordTable& table) {
  const int *ids = static_cast<const int*>(block.m_idcoll), *counts = static_cast<const int*>(block.m_nent);
  const int* entities = static_cast<const int*>(block.m_entid);
  if (!ids || !counts || !block.m_etyp || block.m_ncoll < 1 || block.m_ntyp < 1) return false;
  const auto rows = static_cast<std::size_t>(block.m_ncoll), types = static_cast<std::size_t>(block.m_ntyp);
  auto left = static_cast<std::size_t>(entities ? std::max<std::int64_t>(block.m_nenttot, 0) : 0);
  table.ids.assign(ids, ids + rows);
  for (std::size_t type = 0; type < types; ++type) {
    table.columns.push_back({"ids of " + TextOf(block.m_etyp + type * kFieldWidth), {}, {}, 0, {}});
  }
  for (std::size_t row = 0; row < rows; ++row) {
    Lists lists;
    for (std::size_t type = 0; type < types; ++type) {
      const auto count = static_cast<std::size_t>(std::max(*counts++, 0));
      if (count > left) return false;
      left -= count;
      lists.emplace_back(entities, entities + count);
      entities += count;
    }
    Sort(lists);
    for (std::size_t type = 0; type < types; ++type) {
      RecordColumn& column = table.columns[type];
      column.numbers.insert(column.numbers.end(), lists[type].begin(), lists[type].end());
      column.ends.push_back(column.numbers.size());
    }
  }
  return true;
}

}  // namespace orvio::program
