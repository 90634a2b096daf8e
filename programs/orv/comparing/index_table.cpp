#include "comparing/index_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "reading/words.h"

namespace orvio::program {

double IndexTable::At(int state, std::size_t column) const {
  const auto row = static_cast<std::size_t>(state - 1);
  const bool is_there = state > 0 && row < rows.size() && column < rows[row].size();
  return is_there ? rows[row][column] : std::numeric_limits<double>::quiet_NaN();
}

std::vector<double> IndexTable::FirstColumn() const {
  std::vector<double> values;
  for (std::size_t row = 0; row < rows.size(); ++row) values.push_back(At(static_cast<int>(row + 1), 0));
  return values;
}

IndexTable StateIndex(ResultFile& file) {
  IndexTable table{file.IndexNames(), file.IndexUnits(), {}};
  for (int state = 1; state <= file.states(); ++state) table.rows.push_back(file.IndexOf(state));
  return table;
}

IndexTable RowIndex(ResultFile& file, ORVResult& block) {
  IndexTable table;
  table.rows = file.IndexOver(block);
  const std::size_t columns = table.rows.empty() ? 0 : table.rows.front().size();
  table.names = file.IndexNames(columns);
  table.units = file.IndexUnits(columns);
  return table;
}

IndexColumns MatchColumns(const IndexTable& a, const IndexTable& b) {
  IndexColumns columns;
  for (std::size_t i = 0; i < b.names.size(); ++i) columns.only_b.push_back(i);
  for (std::size_t i = 0; i < a.names.size(); ++i) {
    const auto twin =
        std::ranges::find_if(columns.only_b, [&](std::size_t j) { return SameWord(a.names[i], b.names[j]); });
    if (twin == columns.only_b.end()) {
      columns.only_a.push_back(i);
    } else {
      columns.pairs.emplace_back(i, *twin);
      columns.only_b.erase(twin);
    }
  }
  return columns;
}

TableDifference CompareIndexColumn(const IndexTable& a, std::size_t column_a, const IndexTable& b, std::size_t column_b,
                                   const std::vector<StatePair>& pairs, const Tolerance& tolerance) {
  TableDifference difference;
  difference.kind = "index";
  difference.what = a.names[column_a];
  difference.compared = pairs.size();
  for (const StatePair& pair : pairs) {
    const double value_a = a.At(pair.a, column_a), value_b = b.At(pair.b, column_b);
    if (Agree(value_a, value_b, tolerance) || difference.differing++ > 0) continue;
    difference.first_id = pair.a;
    difference.a = fmt::format("{}", value_a);
    difference.b = fmt::format("{}", value_b);
  }
  return difference;
}

}  // namespace orvio::program
