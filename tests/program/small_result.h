#pragma once

// Small results of a solver, written line by line: nothing here knows the code under test.

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "program/frd_forge.h"

namespace orv_test {

struct FrdComponent {
  std::string name;
  int type = 1, first_index = 0, second_index = 0;  ///< type 1 scalar, 2 vector, 4 symmetric tensor
  bool is_stored = true;
};

inline const std::vector<FrdComponent> kVectorD = {
    {"D1", 2, 1, 0}, {"D2", 2, 2, 0}, {"D3", 2, 3, 0}, {"ALL", 2, 0, 0, false}};
inline const std::vector<FrdComponent> kTensorS = {{"SXX", 4, 1, 1}, {"SYY", 4, 2, 2}, {"SZZ", 4, 3, 3},
                                                   {"SXY", 4, 1, 2}, {"SYZ", 4, 2, 3}, {"SZX", 4, 3, 1}};

/// The values at one node.
using FrdRow = std::pair<int, std::vector<double>>;

/// Where a state stands in the analysis.
struct FrdState {
  int number = 1;  ///< over the whole file; the set name follows from it
  std::string value = "1.00000E+00";
  int step = 1;
};

/// One result at one state.
inline std::string FrdBlock(const FrdState& state, const std::string& name, const std::vector<FrdComponent>& components,
                            const std::vector<FrdRow>& rows) {
  char line[200];
  std::string text;
  const auto append = [&](int length) { text.append(line, static_cast<std::size_t>(length)); };
  append(std::snprintf(line, sizeof line, "    1PSTEP%26d%12d%12d\n", 1, 1, state.step));
  append(std::snprintf(line, sizeof line, "  100CL%5d%12s%12zu%20s%2d%5d%10s%2d\n", 100 + state.number,
                       state.value.c_str(), rows.size(), "", 0, state.number, "", 1));
  append(std::snprintf(line, sizeof line, " -4  %-8s%5zu%5d\n", name.c_str(), components.size(), 1));
  for (const FrdComponent& c : components) {
    append(std::snprintf(line, sizeof line, " -5  %-8s%5d%5d%5d%5d%5d%s\n", c.name.c_str(), 1, c.type, c.first_index,
                         c.second_index, c.is_stored ? 0 : 1, c.is_stored ? "" : "ALL"));
  }
  for (const auto& [id, values] : rows) {
    append(std::snprintf(line, sizeof line, " -1%10d", id));
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0 && i % 6 == 0) text += "\n -2          ";
      append(std::snprintf(line, sizeof line, "%12.5E", values[i]));
    }
    text += "\n";
  }
  return text + " -3\n";
}

/// A run with one triangle (id 11, part 1, nodes 1, 2 and 5) and these blocks.
inline std::string FrdRun(const std::string& blocks) { return frd_forge::Mesh() + blocks + frd_forge::kEnd; }

/// Two states: STRESS at all nodes and PE at two of them; then complex displacements in a second step.
inline std::string SmallRun() {
  const FrdState first{1, "5.00000E-01", 1}, second{2, "396.5944823", 2};
  return FrdRun(
      FrdBlock(first, "STRESS", kTensorS,
               {{1, {1, 2, 3, 4, 5, 6}}, {2, {-1, -2, -3, -4, -5, -6}}, {5, {0.1, 0.2, 0.3, 0.4, 0.5, 0.6}}}) +
      FrdBlock(first, "PE", {{"PE"}}, {{1, {0.25}}, {5, {-1.68156e-44}}}) +
      FrdBlock(second, "DISP", kVectorD, {{1, {1, 2, 3}}, {2, {4, 5, 6}}, {5, {7, 8, 9}}}) +
      FrdBlock(second, "DISPI", kVectorD, {{1, {-1, -2, -3}}, {2, {-4, -5, -6}}, {5, {-7, -8, -9}}}));
}

}  // namespace orv_test
