#pragma once

// Rows by entity id, for the merging of what changed into what was there.

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "h5/c_array.h"

namespace orvio {

/// Rows, counted from 1, by entity id. Ids may be negative and far apart.
///
/// Ids of common files are dense: they go into pages of as many rows as there are entities, at least 100,000. A page is
/// made where an id asks for it, as long as the ids set so far could fill a good part of all pages. Ids that are spread
/// further than that go into a hash table: a page for each of them could take more memory than there is.
class ORVIdLookup {
 public:
  static constexpr std::int64_t kSmallestPage = 100'000;

  explicit ORVIdLookup(std::int64_t entities);

  void Set(int id, int row);  ///< replaces; may run out of memory
  int Find(int id) const;     ///< 0 for an id that was not set

 private:
  /// The pages of ids of one sign, by number; most are not there.
  using Pages = std::vector<CArray<int>>;

  /// Where an id stands. Magnitudes have 64 bits: that of the smallest id has no place in an int.
  struct Place {
    std::size_t page, slot;
  };
  Place PlaceOf(int id) const;
  [[nodiscard]] bool MayMakePage() const;

  std::int64_t page_size_;
  std::int64_t pages_made_ = 0;
  std::int64_t ids_set_ = 0;
  Pages pages_[2];  ///< of the ids from 0 up, and of the negative ones
  std::unordered_map<int, int> scattered_;
};

}  // namespace orvio
