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

Pieces CountPieces(const LinkedArray& array) {
  Pieces count;
  for (const Piece& piece : array.pieces) {
    count.slabs += InOrder(*piece.runs).size();
    count.runs += piece.runs->list.size();
  }
  const std::size_t columns = std::max<std::size_t>(GroupColumns(array.columns).size(), 1);
  return {count.slabs * columns, count.runs * columns};
}

std::string PlainName(std::string name) {
  std::ranges::replace_if(
      name, [](char c) { return c == '/' || c == '.'; }, '_');
  return name.empty() ? "unnamed" : name;
}

}  // namespace orvio::program
