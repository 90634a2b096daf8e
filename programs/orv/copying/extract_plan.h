// What an extraction has to keep, found out before anything is written.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "copying/entity_cut.h"
#include "copying/extract.h"

namespace orvio::program {

struct ExtractPlan {
  std::vector<int> states;  ///< 1-based, rising
  int states_of_file = 0;
  std::vector<double> first_columns;  ///< index values of these states; not a number where a state has none
  bool keeps_all_variables = true;
  std::set<std::string> results;  ///< folded names of results that stay, unless all do
  EntityChoice entities;
};

/// Throws Trouble for states, variables, parts and entities that are not there.
ExtractPlan PlanExtract(const ExtractOptions& options);

}  // namespace orvio::program
