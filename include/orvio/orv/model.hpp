#pragma once

/// What a result file holds, as values: they belong to whoever has them and know nothing of the file.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orv/buffer.hpp"

namespace orv {

/// A component of a variable, or a column of the state index.
struct Component {
  std::string name;
  std::string unit = {};  ///< "mm/s^2"; empty where the file tells none
};

enum class Shape { scalar, vector, tensor, plane_tensor };

/// What a quantity is.
struct Variable {
  std::string name;
  std::string key;             ///< in files from version 2.0 on; often the name
  std::string quantity_class;  ///< "CLASS_STRESS" and so on, or empty
  Shape shape = Shape::scalar;
  std::vector<Component> components;
  std::vector<std::string> computed;  ///< names of the measures that can be computed from the components
};

/// A state and its row of the index: time or frequency first, mostly.
struct State {
  int number = 0;             ///< 1-based
  std::vector<double> index;  ///< one per column; empty where it cannot be read

  /// The first column; 0 where there is none.
  double time() const { return index.empty() ? 0 : index.front(); }
};

enum class Place {
  constant,     ///< once for all states
  states,       ///< in each state that has it
  over_states,  ///< one block with all states
};

/// One variable for one entity or element type.
struct Result {
  std::string variable, entity;
  std::string zone;  ///< empty unless it is of a part of the entities only
  Place place = Place::states;
  bool on_elements = false;
  bool is_complex = false;
  std::size_t components = 0;
  std::size_t layers = 1;  ///< or integration points of an element
};

/// Elements of one type, in the order of the file.
struct Elements {
  std::string type;  ///< unique in a file: "HEX8"
  std::size_t nodes_per_element = 0;
  int dimension = -1;               ///< -1 when unknown
  std::vector<std::int64_t> ids;    ///< one per element
  std::vector<std::int64_t> nodes;  ///< node ids, ids x nodes_per_element, row-major
  std::vector<std::int64_t> parts;  ///< part id of each element
  std::string family = {};          ///< generic type that this one belongs to; empty: the type stands for itself
  std::string node_type = "NODE", part_type = "PART";

  std::size_t size() const { return ids.size(); }
};

struct Part {
  std::int64_t id = 0;
  std::string title = {};
  std::optional<int> material = {}, material_type = {};  ///< not told by every file
  std::string type = "PART";
};

/// Values of one variable for one entity or element type.
template <class T = double>
struct Values {
  std::string variable, entity;
  std::string zone;  ///< empty unless they are of a part of the entities only
  int state = 0;     ///< 1-based; 0 for constant values
  bool is_complex = false;
  bool on_elements = false;
  bool is_double = false;  ///< the file stores 64-bit floats
  std::vector<Component> components;
  std::size_t layers = 1;         ///< layers or integration points of an element
  std::vector<std::int64_t> ids;  ///< one per entity; 1, 2 and so on where the file has none
  Buffer<T> data;                 ///< ids x layers x components, row-major; complex values are pairs

  std::size_t size() const { return ids.size(); }
  /// Numbers of an entity: layers x components, pairs counting two.
  std::size_t row_size() const { return layers * components.size() * (is_complex ? 2 : 1); }
  const T* row(std::size_t i) const { return data.data() + i * row_size(); }
  /// By positions, from 0; `part` 1 is the imaginary part. Throws std::out_of_range.
  T at(std::size_t i, std::size_t component = 0, std::size_t layer = 0, std::size_t part = 0) const {
    const std::size_t parts = is_complex ? 2 : 1;
    if (i >= ids.size() || component >= components.size() || layer >= layers || part >= parts) {
      throw std::out_of_range("orv::Values::at");
    }
    return data[((i * layers + layer) * components.size() + component) * parts + part];
  }
};

/// What to read of a variable. The defaults take everything.
struct Selection {
  static constexpr int kLast = -1;

  int state = kLast;                      ///< 1-based; 0 for constant values
  std::optional<std::int64_t> part = {};  ///< elements of this part, or their nodes; none: all
  std::vector<std::int64_t> ids = {};     ///< in this order; those that are not there are left out; empty: all
  int layer = 0;                          ///< of elements, from 1; 0: all
  std::string component = {};             ///< by its name, or its number from 1; empty: all
  std::string entity = {};                ///< "NODE", "HEX8"; empty: all
};

/// One curve of a history.
struct Curve {
  std::string entity, zone, component;
  std::string unit = {};  ///< of the component; empty where the file tells none
  std::int64_t id = 0;
  int layer = 1;  ///< from 1
  bool on_elements = false;
  std::vector<std::optional<double>> values;  ///< one per state; nothing where the state has no value
};

/// Values over all states.
struct History {
  std::string variable;    ///< as the file calls it
  bool is_double = false;  ///< the file stores 64-bit floats
  std::vector<State> states;
  std::vector<Curve> curves;
};

/// A unit of a unit system: "mm" of "Length" with 0.001 to SI. The dimensions are "Length", "Mass", "Time",
/// "Electric current", "Thermodynamic temperature", "Amount of substance" and "Luminous intensity".
struct BaseUnit {
  std::string dimension, name;
  double to_si = 1;
};

/// A product of base units, by their names: {{"mm", 1}, {"s", -2}}.
using UnitProduct = std::vector<std::pair<std::string, double>>;

/// A name for such a product: {"MPa", {{"t", 1}, {"mm", -1}, {"s", -2}}}.
struct DerivedUnit {
  std::string name;
  UnitProduct of;
};

/// What a file tells of its origin and its units.
struct Origin {
  std::string title = {}, solver = {}, solver_version = {};
  std::string unit_system = {};  ///< its name
  std::vector<BaseUnit> base_units = {};
  std::vector<DerivedUnit> derived_units = {};
};

/// The definition of a variable to be written.
struct Quantity {
  std::string name;
  std::vector<std::string> components;
  Shape shape = Shape::scalar;
  std::string unit = {};            ///< name of a base or derived unit of the origin; empty: none told
  std::string quantity_class = {};  ///< "CLASS_STRESS" and so on
};

/// What values that are written belong to.
struct Target {
  std::string entity = "NODE";  ///< entity type, or the type of the elements
  int layers = 0;               ///< layers or integration points of an element; 0 for entities with one value each
  bool is_complex = false;      ///< values are pairs: real, imaginary
  std::string zone = {};        ///< name of the set that the entities are of; empty for all
  /// Decimal digits that are kept behind the point; the values are packed then, and the ids, in chunks of a few thousand
  /// entities. None: as they are.
  std::optional<int> digits = {};
};

}  // namespace orv
