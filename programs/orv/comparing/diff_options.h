// What is to be compared.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "comparing/id_match.h"
#include "comparing/tolerance.h"

namespace orvio::program {

struct DiffOptions {
  /// Whether anything is chosen among the values: then nothing is compared that has no entities.
  bool IsRestricted() const { return !variables.empty() || !entity.empty() || !ids.empty(); }
  bool WantsEntity(const std::string& type) const;
  /// By the names that a component, or a variable, goes by.
  bool WantsNames(const std::vector<std::string>& names) const;
  bool IsIgnored(const std::vector<std::string>& names) const;

  std::vector<std::string> variables;  ///< empty: all
  std::vector<std::string> ignored;
  std::string states;  ///< those of A; empty: all
  std::string entity;  ///< empty: all
  IdSet ids;           ///< empty: all
  std::optional<double> match_time;
  Tolerances tolerances;
};

}  // namespace orvio::program
