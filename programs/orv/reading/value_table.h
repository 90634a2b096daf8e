// Values of one variable or component at one state, as rows to show.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "reading/result_file.h"

namespace orvio::program {

struct ValueRequest {
  std::string variable;        ///< name or key of a variable, or name of a component's handle
  std::string component;       ///< label or 1-based number; empty: all
  std::string entity;          ///< entity or element type; empty: all
  std::vector<long long> ids;  ///< empty: all
};

/// Values as they are stored, so that a float is shown with a float's digits.
using Values = std::variant<std::vector<float>, std::vector<double>>;

/// Rows of one block: an entity, or one layer of an element.
struct ValueTable {
  std::string entity, variable;
  int state = 0;
  bool has_layers = false;
  std::vector<std::string> columns;  ///< component labels; two columns each for complex values
  std::vector<long long> ids;        ///< one per row
  std::vector<int> layers;           ///< one per row, from 1; empty without layers
  Values values;                     ///< rows x columns, row-major
};

/// One table per block of that variable at a state, 1-based; constant values for state 0, and where the state has none.
/// A component that is computed from others gives those. Throws Trouble when there is none, or a component is unknown.
std::vector<ValueTable> ReadValueTables(ResultFile& file, const ValueRequest& request, int state);

/// Throws Trouble for an id of the request that no table has.
void CheckIds(const ResultFile& file, const ValueRequest& request, const std::vector<ValueTable>& tables);

}  // namespace orvio::program
