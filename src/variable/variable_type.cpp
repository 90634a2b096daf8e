// The table of kinds of motion.

#include "variable/variable_type.h"

#include <algorithm>
#include <iterator>

#include "h5/text_field.h"

namespace orvio {
namespace {

/// Searched in this order. A row may have fewer names.
constexpr ORVVariableType kVariableTypes[] = {
    {1, {"DISPLACEMENTS_NOD", "Complex_Translational_Displacement", "Complex Translational Displacements"}},
    {2, {"Velocity", "VELO", "Complex_Translational_Velocity", "Complex Translational Velocity"}},
    {3, {"Acceleration", "ACCEL", "Complex_Translational_Acceleration", "Complex Translational Acceleration"}},
};

}  // namespace

int FindVariableType(std::string_view name) {
  const auto* row = std::ranges::find_if(kVariableTypes, [&](const ORVVariableType& type) {
    return std::ranges::any_of(type.names, [&](const char* word) { return word && EqualIgnoringCase(word, name); });
  });
  return row == std::end(kVariableTypes) ? 0 : row->value;
}

}  // namespace orvio
