#pragma once

// Fixed group paths and the names of state groups.

#include <string>

namespace orvio::h5 {

/// Ids of the fixed groups, as OH5GetGroupPath takes them.
enum OH5GroupId : int {
  kPost = 0,
  kSinglestate = 1,
  kMultistate = 2,
  kConstant = 3,
  kConnectivities = 4,
  kAttributes = 5,
  kOrvHeader = 6,
  kVariables = 7,
  kVariable = 8,
  kVariableGroup = 9,
  kElements = 10,
  kSystem = 11,
  kCollector = 12,
  kParts = 13,
  kIndices = 14,
  kText = 15,
  kMmc = 16,
  kIdentifiers = 21,
};

/// Empty for an id without a path.
std::string GroupPath(int id);

/// "state" and the 1-based number, padded by zeros to twelve digits so that order by name is order by number.
std::string StateName(int state);

}  // namespace orvio::h5
