#pragma once

// Handles that a host makes from others.

#include <cstdint>
#include <vector>

class ORVResult;
struct ORVContainer;

namespace orvio {

/// What CopyCreateExtendedVariables is asked for; see there.
struct HandleCopies {
  const std::vector<int>& iids;
  std::uint64_t start;
  std::uint64_t count;
  const std::vector<const char*>& names;
  const std::vector<int>& types;
  const std::vector<ORVResult*>* results;  ///< those that may go by a name already; null for none
  bool copy_unit;
};

/// 0 if a handle was made, else 1.
[[nodiscard]] int CopyCreateExtendedVariables(ORVContainer& data, const HandleCopies& request);

}  // namespace orvio
