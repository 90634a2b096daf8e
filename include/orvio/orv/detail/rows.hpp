#pragma once

/// The choice of rows.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "orvio/orv/detail/mesh.hpp"
#include "orvio/orv/model.hpp"

namespace orv::detail {

/// Rows of the ids that are asked for, in the order of the request; those that are not there are left out. Of rows that
/// share an id the first one counts.
inline std::vector<std::size_t> find_rows(const std::vector<std::int64_t>& stored,
                                          const std::vector<std::int64_t>& asked) {
  constexpr auto kNone = static_cast<std::size_t>(-1);
  std::unordered_map<std::int64_t, std::size_t> places;  // of the few, not of all
  for (const std::int64_t id : asked) places.emplace(id, kNone);
  std::size_t missing = places.size();
  for (std::size_t i = 0; i < stored.size() && missing > 0; ++i) {
    const auto place = places.find(stored[i]);
    if (place == places.end() || place->second != kNone) continue;
    place->second = i;
    --missing;
  }
  std::vector<std::size_t> rows;
  for (const std::int64_t id : asked) {
    if (places.at(id) != kNone) rows.push_back(places.at(id));
  }
  return rows;
}

/// Rows of the members of a part, in the order of the file, or of those among the ids that are asked for.
template <class T>
std::vector<std::size_t> find_rows(const Values<T>& values, const std::vector<std::int64_t>& asked,
                                   const PartMembers& part) {
  const IdSet* members = part.find(values.entity);
  if (!members) return {};
  std::vector<std::size_t> rows;
  if (asked.empty()) {
    rows.resize(values.ids.size());
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i;
  } else {
    rows = find_rows(values.ids, asked);
  }
  const auto is_other = [&](std::size_t row) {
    return !std::binary_search(members->begin(), members->end(), values.ids[row]);
  };
  rows.erase(std::remove_if(rows.begin(), rows.end(), is_other), rows.end());
  return rows;
}

template <class T>
void keep_rows(const std::vector<std::size_t>& rows, Values<T>& values) {
  const std::size_t width = values.row_size();
  Buffer<T> data(rows.size() * width);
  std::vector<std::int64_t> ids(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ids[i] = values.ids[rows[i]];
    std::copy_n(values.row(rows[i]), width, data.data() + i * width);
  }
  values.data = std::move(data);
  values.ids = std::move(ids);
}

/// Where few entities stood in a block when it was last asked for them. Most states hold the same entities in the same
/// order, so that their rows can be read alone.
class KnownRows {
 public:
  static constexpr std::size_t kMostIds = 64;
  static constexpr std::int64_t kFewestEntities = 1024;  ///< with less, a read of all is as fast

  /// Rows of all ids that are asked for, if they can be told by the ids in these rows alone, or else by all ids. Empty
  /// where a read of the whole block is in order.
  std::vector<std::size_t> find(const Source& from, const std::vector<std::int64_t>& asked) {
    if (asked.empty() || asked.size() > kMostIds || from.block.m_nent < kFewestEntities) return {};
    const auto [place, is_new] = packed_.try_emplace(from.block.GetBlkPath(), false);
    if (is_new) place->second = is_packed(from);
    if (place->second) return {};
    std::vector<std::size_t>& rows = rows_[from.block.GetBlkPath()];
    if (asked_ != asked) forget(asked);
    if (rows.size() == asked.size() && stand(from, rows)) return rows;
    rows = find_rows(read_ids(from).ids, asked);
    return rows;
  }

 private:
  void forget(const std::vector<std::int64_t>& asked) {
    for (auto& [path, rows] : rows_) rows.clear();
    asked_ = asked;
  }
  bool stand(const Source& from, const std::vector<std::size_t>& rows) const {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (!has_id_in_row(from, rows[i], asked_[i])) return false;
    }
    return true;
  }

  std::vector<std::int64_t> asked_;
  std::unordered_map<std::string, std::vector<std::size_t>> rows_;  ///< by the path of the block
  std::unordered_map<std::string, bool> packed_;
};

}  // namespace orv::detail
