// A smaller file with some of what a file holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "copying/result_source.h"

namespace orvio::program {

struct ExtractOptions {
  bool chooses_entities() const {
    return !parts.empty() || !node_ids.empty() || !element_ids.empty() || !entity.empty();
  }
  bool chooses() const { return !states.empty() || !variables.empty() || chooses_entities(); }

  std::string file, out;
  std::string states;                  ///< as StatesOf takes them; empty: all
  std::vector<std::string> variables;  ///< empty: all
  std::vector<std::string> parts;      ///< ids, ranges of ids, titles
  std::vector<long long> node_ids, element_ids;
  std::string entity;          ///< a type of entities or elements
  std::vector<long long> ids;  ///< of that type; empty: all elements of it
};

/// Writes the output. Throws Trouble; then there is no new output.
CopyReport ExtractFile(const ExtractOptions& options);

}  // namespace orvio::program
