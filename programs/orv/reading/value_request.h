// What a person asks for.
#pragma once

#include <string>
#include <vector>

namespace orvio::program {

struct ValueRequest {
  std::string variable;        ///< name or key of a variable, or name of a component's handle
  std::string component;       ///< label or 1-based number; empty: all
  std::string entity;          ///< entity or element type; empty: all
  std::vector<long long> ids;  ///< empty: all
};

}  // namespace orvio::program
