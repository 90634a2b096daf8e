#include "linking/row_map.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace orvio::program {

RowMap::RowMap(const std::vector<long long>& ids) {
  rows_.reserve(ids.size());
  for (std::size_t row = 0; row < ids.size(); ++row) rows_.emplace(ids[row], row);
}

Runs FindRuns(const std::vector<long long>& ids, const RowMap& rows) {
  Runs runs;
  std::unordered_set<hsize_t> taken;
  taken.reserve(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const hsize_t to = rows.At(ids[i]);
    if (to == RowMap::kNone || !taken.insert(to).second) {
      ++runs.strangers;
      continue;
    }
    Run* last = runs.list.empty() ? nullptr : &runs.list.back();
    if (last && last->from + last->count == i && last->to + last->count == to) {
      ++last->count;
    } else {
      runs.list.push_back({i, to, 1});
    }
  }
  return runs;
}

std::vector<std::span<const Run>> InOrder(const Runs& runs) {
  constexpr std::size_t kMostTogether = 512;  // what HDF5 does with a selection grows faster than its runs
  std::vector<std::span<const Run>> pieces;
  std::size_t first = 0;
  for (std::size_t i = 1; i <= runs.list.size(); ++i) {
    const bool goes_on = i < runs.list.size() && runs.list[i].to > runs.list[i - 1].to;
    if (goes_on && i - first < kMostTogether) continue;
    pieces.emplace_back(runs.list.data() + first, i - first);
    first = i;
  }
  return pieces;
}

bool Overlap(const Runs& a, const Runs& b) {
  std::vector<Run> all = a.list;
  all.insert(all.end(), b.list.begin(), b.list.end());
  std::ranges::sort(all, {}, &Run::to);
  return std::ranges::adjacent_find(
             all, [](const Run& first, const Run& next) { return first.to + first.count > next.to; }) != all.end();
}

SharedRuns RunFinder::Find(const SharedIds& ids) {
  for (const Known& known : known_) {
    if (known.ids == ids || *known.ids == *ids) return known.runs;
  }
  if (known_.size() == kRemembered) known_.erase(known_.begin());
  known_.push_back({ids, std::make_shared<const Runs>(FindRuns(*ids, rows_))});
  return known_.back().runs;
}

}  // namespace orvio::program
