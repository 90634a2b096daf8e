// Values of one variable at one state, as rows to show.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "reading/file_model.h"

namespace orvio::program {

struct ValueRequest {
  std::string file;
  std::string variable;
  std::optional<int> state;    ///< 1-based; 0 or none: constant values
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

/// One table per block of that variable. Throws Trouble when there is none, or a component or id is unknown.
std::vector<ValueTable> ReadValueTables(const ValueRequest& request);

}  // namespace orvio::program
