// What a result file holds, read through the library's blocks.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

namespace orvio::program {

struct VariableInfo {
  std::string name, key, class_word;
  std::string shape;  ///< "scalar", "vector", "tensor", "plane tensor"
  std::vector<std::string> components;
};

struct StateInfo {
  int state = 0;  ///< 1-based
  std::vector<double> index;
};

struct ElementInfo {
  std::string type, part_type, node_type;
  long long count = 0, nodes_per_element = 0, dimension = -1;
};

/// One variable for one entity or element type, in one section of the file.
struct ResultInfo {
  std::string section;  ///< "constant", "state" or "multi-state"
  std::string entity, variable;
  bool is_element = false, is_complex = false;
  std::string value_type;  ///< "float", "double"
  long long components = 0;
  long long count_min = 0, count_max = 0;  ///< over the states
  long long layers = 0;                    ///< of element results
  std::vector<int> states;                 ///< 1-based, where it is stored by state
};

struct FileModel {
  std::string path;
  ORVFileVersion version;
  std::vector<VariableInfo> variables;
  std::vector<StateInfo> states;
  std::vector<ElementInfo> elements;
  std::vector<ResultInfo> results;
};

/// Throws Trouble for a file that is no result file.
FileModel ReadFileModel(const std::string& path);

/// Variables alone, with their component names.
std::vector<VariableInfo> ReadVariables(const std::string& path);

/// Headers of the results of a state, of the constant section (0) or of all states (-1). The blocks know their paths.
std::vector<ORVResult> ReadResultHeaders(const std::string& path, int state);

/// Headers of the connectivity blocks of the constant section.
std::vector<ORVEleConnectivity> ReadElementHeaders(const std::string& path);

/// Opens the file for a moment: throws Trouble when it is missing, no file, damaged or no result file. Answers the
/// number of states.
int CheckResultFile(const std::string& path);

/// Stored type of a block's values. ORV_UNKNOWN_TYPE when there are none.
_ORVDataType ValueType(const std::string& path, const ORVResult& result);

}  // namespace orvio::program
