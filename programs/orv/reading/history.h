// Values over all states: one curve per entity, layer and component.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "reading/result_file.h"
#include "reading/value_request.h"

namespace orvio::program {

struct HistoryRequest {
  ValueRequest values;
  int layer = 0;  ///< of elements, from 1; 0: all
};

struct Curve {
  std::string entity, zone, component, unit;
  long long id = 0;
  int layer = 0;                              ///< from 1; 0 without layers
  std::vector<std::optional<double>> values;  ///< one per state; nothing where the state has no value
};

struct History {
  std::string variable;
  bool names_entities = false;  ///< whether other entity types have values of that name, too
  bool is_double = false;       ///< whether the file holds doubles
  std::vector<std::string> index_names, index_units;
  std::vector<int> states;                 ///< 1-based
  std::vector<std::vector<double>> index;  ///< of each state; empty where it cannot be read
  std::vector<Curve> curves;
};

/// Takes the curves from the blocks that hold all states where these have all that is asked for, else from the states
/// one by one. Throws Trouble when there are none, and when there are too many to be asked for without ids.
History ReadHistory(ResultFile& file, const HistoryRequest& request);

/// What tells a curve from the others: "X", "X@93", "HEX8:S11@5.2" for the second layer of element 5,
/// "T@7/INLET" for a node of a zone.
std::vector<std::string> CurveNames(const History& history);

}  // namespace orvio::program
