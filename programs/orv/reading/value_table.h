// Values of one variable or component, state by state, as rows to show.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "reading/quantity_search.h"
#include "reading/result_file.h"
#include "reading/value_request.h"

namespace orvio::program {

/// Values as they are stored, so that a float is shown with a float's digits.
using Values = std::variant<std::vector<float>, std::vector<double>>;

/// Rows of one block: an entity, or one layer of an element.
struct ValueTable {
  std::string entity, variable;
  std::string zone;  ///< empty unless the block is of a part of the entities only
  int state = 0;
  bool has_layers = false;
  std::vector<std::string> columns;  ///< component labels; two columns each for complex values
  std::vector<std::string> units;    ///< one per column, empty where the file tells none
  std::vector<long long> ids;        ///< one per row
  std::vector<int> layers;           ///< one per row, from 1; empty without layers
  Values values;                     ///< rows x columns, row-major
};

/// One table per block of that variable at a state, 1-based; constant values for state 0, and where the state has none.
/// A component that is computed from others gives those. Throws Trouble when there is none, or a component is unknown.
std::vector<ValueTable> ReadValueTables(ResultFile& file, const ValueRequest& request, int state);

/// The same without a complaint: empty where that state has none. Results of later states must be known to the file.
std::vector<ValueTable> FindValueTables(ResultFile& file, const ValueRequest& request, int state);

/// The blocks of that variable and entity type in one of the lists.
FoundQuantity FindBlocks(ResultFile& file, const ValueRequest& request, ResultList list);

/// One table per state of such a block; states count from 1 in the order of its rows.
std::vector<ValueTable> ReadMultiStateTables(ResultFile& file, const ValueRequest& request,
                                             const FoundQuantity& quantity, ORVResult& block);

/// Throws Trouble for an id of the request that no table has.
void CheckIds(const ResultFile& file, const ValueRequest& request, const std::vector<ValueTable>& tables);

}  // namespace orvio::program
