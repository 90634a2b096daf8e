// What the states of a file, or of a block over all states, stand for.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "comparing/differences.h"
#include "comparing/tolerance.h"
#include "reading/result_file.h"

namespace orvio::program {

struct IndexTable {
  /// Not a number where a state has no such value.
  double At(int state, std::size_t column) const;
  std::vector<double> FirstColumn() const;

  std::vector<std::string> names, units;  ///< of the columns
  std::vector<std::vector<double>> rows;  ///< of the states
};

IndexTable StateIndex(ResultFile& file);
IndexTable RowIndex(ResultFile& file, ORVResult& block);

struct IndexColumns {
  std::vector<std::pair<std::size_t, std::size_t>> pairs;  ///< of the same name
  std::vector<std::size_t> only_a, only_b;
};

IndexColumns MatchColumns(const IndexTable& a, const IndexTable& b);

/// The state of A stands for the id of a row.
TableDifference CompareIndexColumn(const IndexTable& a, std::size_t column_a, const IndexTable& b, std::size_t column_b,
                                   const std::vector<StatePair>& pairs, const Tolerance& tolerance);

}  // namespace orvio::program
