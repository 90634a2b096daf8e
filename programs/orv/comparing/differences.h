// What differs between two result files, A and B.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "comparing/id_match.h"

namespace orvio::program {

/// What belongs together in two files. Names compare without regard to case.
struct QuantityName {
  std::string section;  ///< "constant", "state" or "multi-state"
  std::string variable, entity;
  std::string zone;  ///< empty for all entities
  long long zone_id = 0;
  std::string series;       ///< of blocks over all states; empty where there is but one
  int number = 0;           ///< among blocks over all states that have all else in common, from 0
  bool is_element = false;  ///< with layers
  bool is_complex = false;
};

/// A state of each file; 0 for the constant section.
struct StatePair {
  int a = 0, b = 0;
};

/// Something that one of the files has.
struct OnlyIn {
  bool in_a = false;
  std::string kind;  ///< "variable", "state", "result", "element", "part", "attribute", "identifier", "collector"
  std::string name;  ///< of a variable or type; empty for states
  std::optional<QuantityName> quantity;  ///< of results
  std::vector<int> states;               ///< of that file; empty for what has no state
  bool is_note = false;                  ///< as below
};

/// Two texts or numbers of the files.
struct TextDifference {
  std::string kind;  ///< as above, or "title", "solver", "unit system", "index"
  std::string name;
  std::string what;  ///< "components", "unit of SXX"
  std::string a, b;
  StatePair states;
  bool is_note = false;  ///< does not make the files different unless that is asked for
};

/// Rows of a table that are no floating-point values.
struct TableDifference {
  std::string kind, name;
  std::string what;  ///< of the rows; empty for ids that only one file has
  StatePair states;
  std::size_t compared = 0, differing = 0;
  long long first_id = 0;  ///< of those that differ
  std::string a, b;        ///< what stands there
  LoneIds only_a, only_b;
};

/// A value of each file and where it is.
struct ValuePlace {
  double difference = 0;
  long long id = 0;
  std::size_t layer = 0;  ///< from 1; 0 without layers
  std::string component;
  double a = 0, b = 0;
  bool a_is_float = false, b_is_float = false;
};

/// A quantity at a state.
struct ValueDifference {
  bool IsAny() const { return differing + only_a.count + only_b.count > 0 || layers.has_value(); }

  QuantityName quantity;
  StatePair states;
  std::size_t compared = 0, differing = 0;
  ValuePlace absolute, relative;                              ///< the largest ones, where there is any
  LoneIds only_a, only_b;                                     ///< entities
  std::optional<std::pair<std::size_t, std::size_t>> layers;  ///< of the first entity that has another number of them
};

struct Differences {
  bool IsAny(bool counts_notes) const;

  std::vector<TextDifference> texts;
  std::vector<OnlyIn> lone;
  std::vector<TableDifference> tables;
  std::vector<ValueDifference> values;
  std::size_t quantities = 0;       ///< that both have
  std::size_t states = 0;           ///< that were compared
  std::size_t compared_values = 0;  ///< of results
  std::size_t differing_values = 0;
};

}  // namespace orvio::program
