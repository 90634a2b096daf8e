#pragma once

// Results of one node, for tests that look at definitions and handles and not at values.

#include <string>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "support/forged_model.h"

namespace orv_test {

inline ForgedValues OneNodeResult(const std::string& variable, int ncoo) {
  ForgedValues result;
  result.variable = variable;
  result.nent = 1;
  result.ncoo = ncoo;
  return result;
}

/// One state of it in the multi-state section.
inline ForgedValues OneNodeHistory(const std::string& variable, int ncoo) {
  ForgedValues result = OneNodeResult(variable, ncoo);
  result.kind = 1050;
  result.nstate = 1;
  return result;
}

inline std::vector<std::string> NamesOf(const std::vector<ORVExtVar*>& handles) {
  std::vector<std::string> names;
  for (const ORVExtVar* handle : handles) names.push_back(handle->GetName());
  return names;
}

}  // namespace orv_test
