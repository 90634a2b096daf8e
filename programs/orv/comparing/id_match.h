// Which rows of two tables belong to the same entities.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <utility>
#include <vector>

namespace orvio::program {

using IdSet = std::unordered_set<long long>;

/// Ids that only one of two tables has.
struct LoneIds {
  void Add(long long id);

  static constexpr std::size_t kShown = 5;
  std::size_t count = 0;
  std::vector<long long> first;  ///< up to kShown
};

/// Rows that belong together. Where an id stands more than once, the first row of one side belongs to the first one of
/// the other, and so on.
struct IdMatch {
  /// A row of each side.
  std::pair<std::size_t, std::size_t> Pair(std::size_t i) const { return is_row_by_row ? std::pair(i, i) : pairs[i]; }

  bool is_row_by_row = false;  ///< the ids are the same ones in the same order: there are no pairs
  std::size_t count = 0;       ///< of pairs
  std::vector<std::pair<std::size_t, std::size_t>> pairs;  ///< in the order of the ids
  LoneIds only_a, only_b;
};

/// Of all ids, or of those wanted where there are any.
IdMatch MatchIds(const std::vector<long long>& a, const std::vector<long long>& b, const IdSet& wanted);

/// The match that was made last, for results and states that follow with the same ids.
class LastMatch {
 public:
  explicit LastMatch(IdSet wanted) : wanted_(std::move(wanted)) {}

  const IdMatch& Of(const std::vector<long long>& a, const std::vector<long long>& b);
  /// Those wanted that any of the ids were so far.
  const IdSet& seen() const { return seen_; }
  /// Counts these as well.
  void See(const std::vector<long long>& ids);

 private:
  IdSet wanted_, seen_;
  bool is_made_ = false;
  std::vector<long long> ids_a_, ids_b_;
  IdMatch match_;
};

}  // namespace orvio::program
