#pragma once

// A variable whose components are named by their numbers.

#include <string>
#include <vector>

#include "orvio/orvio.h"

namespace orv_test {

class NumberedVariable {
 public:
  NumberedVariable(const char* name, int components);
  NumberedVariable(const NumberedVariable&) = delete;
  NumberedVariable& operator=(const NumberedVariable&) = delete;
  /// 0 when it is written.
  int Write(ORVFiler& filer);

 private:
  std::vector<int> no_units_, ids_, lengths_, offsets_;
  std::string names_, labels_;
  ORVVariable variable_;  // borrows the others
};

}  // namespace orv_test
