// What a .frd file holds, as it stands there: nothing is renamed, reordered or put together.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvio::frd {

/// One `1UMAT` line. Contact definitions and springs are listed too, so a number need not be used by any element.
struct Material {
  int32_t number = 0;
  std::string name;
};

struct Header {
  std::string case_name;           ///< of the `1C` line; the solver leaves it empty
  std::vector<std::string> texts;  ///< the other `1U` lines behind the key, trailing blanks removed: heading, DATE, ...
  std::vector<Material> materials;
};

struct Nodes {
  std::vector<int32_t> ids;
  std::vector<float> coordinates;           ///< ids x 3, row-major: the floats nearest to what the file says
  std::vector<double> precise_coordinates;  ///< the same as doubles: exact in a binary file, nearest in a text file
  bool binary = false;                      ///< whether the file itself holds doubles
};

struct Element {
  int32_t id = 0;
  int32_t type = 0;  ///< one of kElementTypes
  int32_t group = 0;
  int32_t material = 0;
  size_t first_node = 0;  ///< where its nodes begin in Elements::nodes
};

struct Elements {
  std::vector<Element> items;  ///< in the order of the file
  std::vector<int32_t> nodes;  ///< node ids of all elements one after the other, each in the order of the file

  /// Node ids of element `index` of `items`.
  std::span<const int32_t> NodesOf(size_t index) const {
    const size_t begin = items[index].first_node;
    const size_t end = index + 1 < items.size() ? items[index + 1].first_node : nodes.size();
    return std::span(nodes).subspan(begin, end - begin);
  }
};

/// The `1PSTEP` line.
struct Step {
  int32_t block = 0;      ///< running number of the result block
  int32_t increment = 0;  ///< 0 in harmonic and complex-frequency steps
  int32_t step = 0;
};

/// Any other `1P` line: PGM (generalised mass) as "GM", GK (eigenvalue), HID (nodal diameter), SUBC, MODE.
struct Parameter {
  std::string name;  ///< behind `1P`
  std::string text;  ///< columns 25-36
};

struct Component {
  std::string name;
  int32_t menu = 0;
  int32_t type = 0;  ///< 1 scalar, 2 vector, 4 symmetric tensor, 12 and 14 amplitude and phase of either
  int32_t first_index = 0, second_index = 0;
  bool stored = true;   ///< false: derived by whoever shows it, no value in the file
  std::string derived;  ///< name behind the existence flag, as ALL
};

/// One result block. Several belong to one state: those with the same set name (or state number) and step. The value
/// does not tell: double modes have equal frequencies, and times below 1 have six digits only.
struct Result {
  std::optional<Step> step;
  std::vector<Parameter> parameters;
  std::string set_name;    ///< `L` and a number in the files of the solver, as "L  101"
  double value = 0;        ///< time, frequency or load factor
  std::string value_text;  ///< the same as the file spells it
  std::string text;
  int32_t analysis_type = 0;  ///< 0 static, 1 time and also harmonic, 2 modes, 3 complex modes
  int32_t state_number = 0;   ///< over the whole file, from 1
  std::string analysis_name;  ///< "MODAL" or empty
  int32_t format = 0;         ///< 0 short text, 1 long text, 2 binary float32, 3 binary float64
  std::string name;
  std::vector<Component> components;  ///< stored or not
  std::vector<int32_t> ids;           ///< of nodes; not always all nodes of the mesh, nor in their order
  std::vector<float> values;          ///< ids x stored components, row-major

  /// Values per node.
  size_t StoredComponents() const {
    return static_cast<size_t>(std::count_if(components.begin(), components.end(), [](auto& c) { return c.stored; }));
  }
};

}  // namespace orvio::frd
