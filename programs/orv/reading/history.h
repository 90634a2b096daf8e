// Values over all states: one curve per entity, layer and component.
#pragma once

#include <orvio/orv.hpp>
#include <string>
#include <vector>

#include "reading/result_file.h"
#include "reading/value_request.h"

namespace orvio::program {

struct HistoryRequest {
  ValueRequest values;
  int layer = 0;  ///< of elements, from 1; 0: all
};

/// Curves, and what the columns of the index of their states are.
struct History : orv::History {
  std::vector<orv::Component> index_columns;
};

/// Throws Trouble when there are none, and when there are too many to be asked for without ids.
History ReadHistory(ResultFile& file, const HistoryRequest& request);

/// What tells a curve from the others: "X", "X@93", "HEX8:S11@5.2" for the second layer of element 5,
/// "T@7/INLET" for a node of a zone.
std::vector<std::string> CurveNames(const History& history);

}  // namespace orvio::program
