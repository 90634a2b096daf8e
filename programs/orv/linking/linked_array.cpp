#include "linking/linked_array.h"

#include <algorithm>

namespace orvio::program {

std::vector<ColumnGroup> GroupColumns(const std::vector<hsize_t>& columns) {
  std::vector<ColumnGroup> groups;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!groups.empty() && groups.back().from + groups.back().count == columns[i]) {
      ++groups.back().count;
    } else {
      groups.push_back({columns[i], i, 1});
    }
  }
  return groups;
}

std::size_t CountSlabs(const LinkedArray& array) {
  std::size_t runs = 0;
  for (const Piece& piece : array.pieces) runs += piece.runs->list.size();
  return runs * std::max<std::size_t>(GroupColumns(array.columns).size(), 1);
}

std::string PlainName(std::string name) {
  std::ranges::replace_if(
      name, [](char c) { return c == '/' || c == '.'; }, '_');
  return name.empty() ? "unnamed" : name;
}

}  // namespace orvio::program
