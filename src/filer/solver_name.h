#pragma once

// The name of the solver that made a file: words divided by ':', some of which tell what the file holds.

#include <cstddef>
#include <string_view>
#include <vector>

namespace orvio {

/// The parts of a name, empty ones included: one more than it has ':'.
inline std::vector<std::string_view> SolverNameParts(std::string_view name) {
  std::vector<std::string_view> parts;
  for (std::size_t colon = name.find(':'); colon != std::string_view::npos; colon = name.find(':')) {
    parts.push_back(name.substr(0, colon));
    name.remove_prefix(colon + 1);
  }
  parts.push_back(name);
  return parts;
}

}  // namespace orvio
