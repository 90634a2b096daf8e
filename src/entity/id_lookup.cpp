// Where the rows of entity ids are kept.

#include "entity/id_lookup.h"

#include <algorithm>
#include <cstdlib>

namespace orvio {
namespace {

constexpr std::int64_t kLargestPage = std::int64_t{1} << 31;  // one for all ids of a sign

/// Pages that are made whatever the ids: dense ids need two, as they may start anywhere, and kinds of entities are often
/// numbered apart.
constexpr std::int64_t kFreePages = 4;

/// For each further page there must be one id in so many of its slots. Then it takes no more than a hash table would.
constexpr std::int64_t kSlotsPerId = 4;

}  // namespace

ORVIdLookup::ORVIdLookup(std::int64_t entities) : page_size_(std::clamp(entities, kSmallestPage, kLargestPage)) {}

ORVIdLookup::Place ORVIdLookup::PlaceOf(int id) const {
  const std::int64_t magnitude = std::abs(std::int64_t{id});
  return {static_cast<std::size_t>(magnitude / page_size_), static_cast<std::size_t>(magnitude % page_size_)};
}

bool ORVIdLookup::MayMakePage() const { return (pages_made_ + 1 - kFreePages) * page_size_ <= ids_set_ * kSlotsPerId; }

void ORVIdLookup::Set(int id, int row) {
  Pages& pages = pages_[id < 0];
  const Place place = PlaceOf(id);
  ++ids_set_;
  if (place.page >= pages.size()) pages.resize(place.page + 1);
  CArray<int>& page = pages[place.page];
  if (!page && MayMakePage()) {
    page = ZeroedArray<int>(static_cast<std::size_t>(page_size_));
    if (page) ++pages_made_;
  }
  if (page) {
    page[place.slot] = row;
  } else {
    scattered_[id] = row;
  }
}

/// The page goes first: it may be younger than an entry of the hash table.
int ORVIdLookup::Find(int id) const {
  const Pages& pages = pages_[id < 0];
  const Place place = PlaceOf(id);
  if (place.page < pages.size() && pages[place.page]) {
    const int row = pages[place.page][place.slot];
    if (row != 0) return row;
  }
  const auto found = scattered_.find(id);
  return found == scattered_.end() ? 0 : found->second;
}

}  // namespace orvio
