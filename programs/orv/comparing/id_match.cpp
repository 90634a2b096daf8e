// Sorted lists of ids, walked side by side.

#include "comparing/id_match.h"

#include <algorithm>

namespace orvio::program {
namespace {

using IdRow = std::pair<long long, std::size_t>;

std::vector<IdRow> SortedRows(const std::vector<long long>& ids, const IdSet& wanted) {
  std::vector<IdRow> rows;
  if (wanted.empty()) rows.reserve(ids.size());
  for (std::size_t row = 0; row < ids.size(); ++row) {
    if (wanted.empty() || wanted.contains(ids[row])) rows.emplace_back(ids[row], row);
  }
  if (!std::ranges::is_sorted(rows)) std::ranges::sort(rows);
  return rows;
}

}  // namespace

void LoneIds::Add(long long id) {
  if (first.size() < kShown) first.push_back(id);
  ++count;
}

IdMatch MatchIds(const std::vector<long long>& a, const std::vector<long long>& b, const IdSet& wanted) {
  IdMatch match;
  if (wanted.empty() && a == b) {
    match.is_row_by_row = true;
    match.count = a.size();
    return match;
  }
  const std::vector<IdRow> rows_a = SortedRows(a, wanted), rows_b = SortedRows(b, wanted);
  match.pairs.reserve(std::min(rows_a.size(), rows_b.size()));
  auto in_a = rows_a.begin(), in_b = rows_b.begin();
  while (in_a != rows_a.end() || in_b != rows_b.end()) {
    if (in_b == rows_b.end() || (in_a != rows_a.end() && in_a->first < in_b->first)) {
      match.only_a.Add(in_a++->first);
    } else if (in_a == rows_a.end() || in_b->first < in_a->first) {
      match.only_b.Add(in_b++->first);
    } else {
      match.pairs.emplace_back(in_a++->second, in_b++->second);
    }
  }
  match.count = match.pairs.size();
  return match;
}

const IdMatch& LastMatch::Of(const std::vector<long long>& a, const std::vector<long long>& b) {
  if (is_made_ && a == ids_a_ && b == ids_b_) return match_;
  is_made_ = true;
  ids_a_ = a;
  ids_b_ = b;
  match_ = MatchIds(a, b, wanted_);
  See(a);
  See(b);
  return match_;
}

void LastMatch::See(const std::vector<long long>& ids) {
  if (wanted_.empty()) return;
  for (const long long id : ids) {
    if (wanted_.contains(id)) seen_.insert(id);
  }
}

}  // namespace orvio::program
