// Writes the blocks of an output file, one at a time.
#pragma once

#include <orvio/orvio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "importer/quantity.h"

namespace orvio::program {

/// Elements of one type.
struct ElementGroup {
  std::string type_name;
  int dimension = 0;
  std::int64_t nodes_per_element = 0;
  std::vector<int> ids;
  std::vector<int> parts;  ///< one per element
  std::vector<int> nodes;  ///< ids x nodes_per_element, row-major
};

/// Where a state stands in the analysis: its time, frequency or load factor, and its step.
struct StateIndex {
  int state = 0;  ///< 1-based
  double value = 0;
  int step = 0;
};

/// Values of one quantity at the nodes.
struct NodalValues {
  std::vector<int>* ids = nullptr;
  void* values = nullptr;  ///< ids x components, pairs for complex values
  _ORVDataType type = ORV_FLOAT;
  bool is_complex = false;
};

/// A new result file. Every operation throws Trouble when the library does not answer success.
class BlockWriter {
 public:
  /// `shown_as` is the name of the file in messages.
  BlockWriter(const std::string& path, std::string shown_as, _ORVVersion version);

  void WriteVariable(const Quantity& quantity);
  void WriteElements(ElementGroup& group);
  void WriteConstant(const Quantity& quantity, const NodalValues& values);
  /// States are added one by one, from 1.
  void WriteInState(const StateIndex& index, const Quantity& quantity, const NodalValues& values);

 private:
  void Write(ORVBlock& block, int state, int what, const std::string& described_as);

  ORVFiler filer_;
  std::string shown_as_;
};

}  // namespace orvio::program
