// Element types of Exodus files under the names of result files.
#pragma once

#include <string>

namespace orvio::program {

struct ElementKind {
  std::string name;    ///< "HEXA8"
  int dimension = -1;  ///< of the element itself; -1: not known
};

/// The kind of the elements of a block. Solvers choose their own words ("HEX8", "hex", "SHELL4"), which count with and
/// without the number of nodes. An unknown word stays, in capitals and with the number of nodes behind it.
ElementKind ElementKindOf(const std::string& word, int nodes);

}  // namespace orvio::program
