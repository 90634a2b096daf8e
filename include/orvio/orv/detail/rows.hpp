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

/// Positions of the rows that are asked for, in the order of the request, or else of the file. `part` is null for all.
template <class T>
std::vector<std::size_t> find_rows(const Values<T>& values, const std::vector<std::int64_t>& ids,
                                   const PartMembers* part) {
  const IdSet* members = part ? part->find(values.entity) : nullptr;
  const auto is_member = [&](std::int64_t id) {
    return !part || (members && std::binary_search(members->begin(), members->end(), id));
  };
  std::vector<std::size_t> rows;
  if (ids.empty()) {
    for (std::size_t i = 0; i < values.ids.size(); ++i) {
      if (is_member(values.ids[i])) rows.push_back(i);
    }
    return rows;
  }
  std::unordered_map<std::int64_t, std::size_t> places;
  for (std::size_t i = 0; i < values.ids.size(); ++i) places.emplace(values.ids[i], i);
  for (const std::int64_t id : ids) {
    const auto place = places.find(id);
    if (place != places.end() && is_member(id)) rows.push_back(place->second);
  }
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

}  // namespace orv::detail
