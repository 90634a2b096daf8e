// What an import is asked for, and what it tells.
#pragma once

#include <orvio/orvio.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "importer/unit_system.h"

namespace orvio::program {

/// Results that hold only the entities whose values changed, between states that hold all.
struct IncrementalStates {
  double tolerance = 0;  ///< a value that differs by no more than this has not changed
  int full_every = 10;   ///< the distance of full states
};

struct ImportOptions {
  std::filesystem::path input;
  std::filesystem::path output;
  std::filesystem::path points;  ///< .dat file with the integration-point values of the run; empty: none
  _ORVVersion version = ORV_VERSION_2_2;
  std::optional<UnitSystem> units;               ///< none: the file tells no units
  std::optional<IncrementalStates> incremental;  ///< none: all states are full
  bool partial = false;                          ///< take what is there of a run that broke off
  /// Ids of the nodes and elements whose results are also stored as histories, one block over all states.
  struct {
    std::vector<long long> nodes, elements;
    bool empty() const { return nodes.empty() && elements.empty(); }
  } histories;
};

/// What was written.
struct ImportSummary {
  std::size_t nodes = 0;
  std::size_t elements = 0;
  int states = 0;
  std::size_t variables = 0;
  std::size_t histories = 0;       ///< blocks over all states
  std::optional<int> full_states;  ///< of an import with incremental states
  std::vector<std::string> notes;  ///< what a person should know: what was left out, and why
};

}  // namespace orvio::program
