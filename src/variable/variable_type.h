#pragma once

// Kinds of motion, known by the names of their variables.

#include <string_view>

namespace orvio {

/// One kind of motion and the names that stand for it.
struct ORVVariableType {
  int value;
  const char* names[4];
};

/// 1 displacement, 2 velocity, 3 acceleration; 0 for any other name. Case does not count.
int FindVariableType(std::string_view name);

}  // namespace orvio
