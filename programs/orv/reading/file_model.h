// What a result file holds, as the library's filer tells it.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

namespace orvio::program {

class ResultFile;

struct VariableInfo {
  std::string name, key, class_word;
  std::string shape;  ///< "scalar", "vector", "tensor", "plane tensor"
  std::vector<std::string> components;
  std::vector<std::string> units;     ///< one per component, empty where the file tells none
  std::vector<std::string> computed;  ///< names of the measures that can be computed from the components
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
  std::vector<int> incremental_states;     ///< those that hold nothing but what changed
  double stored_bytes = 0;                 ///< of values and ids over the states, before compression
  double full_bytes = 0;                   ///< what they would be if all states were full
};

struct FileModel {
  std::string path;
  ORVFileVersion version;
  std::string title, solver, unit_system;  ///< empty where the file does not tell
  std::vector<std::string> index_names;    ///< columns of the index of a state
  std::vector<std::string> index_units;    ///< one per name
  std::vector<VariableInfo> variables;     ///< those that only name index columns are left out
  std::vector<StateInfo> states;
  std::vector<ElementInfo> elements;
  std::vector<ResultInfo> results;
};

/// Throws Trouble for a file that is no result file.
FileModel ReadFileModel(const std::string& path);

/// What a variable of a filer is.
VariableInfo DescribeVariable(ORVFiler& filer, ORVVariable& variable);

/// The variables of a file; those that only name columns of the state index are left out.
std::vector<VariableInfo> ListVariables(ResultFile& file);

/// Headers of the connectivity blocks of a state, or of the constant section (0).
std::vector<ORVEleConnectivity> ReadElementHeaders(const std::string& path, int state = 0);

/// Opens the file for a moment: throws Trouble when it is missing, no file, damaged or no result file. Answers the
/// number of states.
int CheckResultFile(const std::string& path);

}  // namespace orvio::program
