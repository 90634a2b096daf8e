// The quantities that a file has values of, each with the blocks that hold them.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

#include "comparing/diff_options.h"
#include "comparing/differences.h"
#include "reading/result_file.h"

namespace orvio::program {

struct Component {
  std::string label;
  int iid = 0;                     ///< of its handle
  std::vector<std::string> names;  ///< that it can be asked for by: of its handle, its variable and its results
};

struct ComparedQuantity {
  bool IsConstant() const { return name.section == "constant"; }
  bool IsOverStates() const { return name.section == "multi-state"; }

  QuantityName name;
  std::vector<ORVResult*> blocks;
  std::vector<Component> components;  ///< none where the file does not define the variable
};

/// All of a file. Its results of later states must be known.
std::vector<ComparedQuantity> ListQuantities(ResultFile& file);

/// Keeps what the options ask for. Throws Trouble for a quantity without a definition, whose values cannot be read.
void KeepWanted(const ResultFile& file, const DiffOptions& options, std::vector<ComparedQuantity>& quantities);

/// Whether two files mean the same by these names.
bool IsSameQuantity(const QuantityName& a, const QuantityName& b);

}  // namespace orvio::program
