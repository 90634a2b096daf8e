// Writes the blocks of an output file, one at a time.
#pragma once

#include <orvio/orvio.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "importer/quantity.h"
#include "importer/unit_system.h"

namespace orvio::program {

/// Entity type of the nodes.
inline constexpr char kNodeType[] = "NODE";

/// Elements of one type.
struct ElementGroup {
  std::string type_name;     ///< unique in the file
  std::string generic_name;  ///< family of the type; empty: the type stands for itself
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

/// What a block of a state holds: all of its entities, or those alone that are not what a reader would see without it.
enum class Extent { kFull, kChanges };

/// Values of one quantity at the nodes, or at other entities without layers.
struct EntityValues {
  std::string entity_type = kNodeType;
  std::vector<int>* ids = nullptr;
  void* values = nullptr;  ///< ids x components, pairs for complex values
  _ORVDataType type = ORV_FLOAT;
  bool is_complex = false;
  std::string zone = {};  ///< name of the set that the nodes are of; empty for the nodes of the mesh
  int zone_id = 0;
};

/// Values of one quantity at the points of elements of one type.
struct ElementValues {
  std::string element_type;  ///< ElementGroup::type_name
  std::vector<int>* ids = nullptr;
  int layers = 1;          ///< points or layers of an element
  void* values = nullptr;  ///< ids x layers x components, row-major
  _ORVDataType type = ORV_FLOAT;
  std::string zone;  ///< keeps these elements apart from others of their type; empty for all
  int zone_id = 0;
};

/// Parts of the model, and the materials they are made of where the solver tells.
struct PartTable {
  std::vector<int> ids;
  std::vector<std::string> titles;
  std::vector<int> materials;  ///< one per part, or none
};

/// What is known of the entities of a type beside their ids.
struct AttributeTable {
  std::string entity_type;
  std::vector<int> ids;
  std::vector<std::string> titles;  ///< one per entity, or none
  int columns = 0;                  ///< integers per entity
  std::vector<int> integers;        ///< ids x columns, row-major
};

/// Sets of entities, such as those that loads act on.
struct SetTable {
  std::string name;                ///< "NODE_SET"
  std::vector<std::string> types;  ///< entity types of the members
  std::vector<int> ids;            ///< one per set
  std::vector<int> counts;         ///< members of each set of each type: ids x types, row-major
  std::vector<int> members;        ///< set by set, type by type
};

/// What a file tells of its origin beside its units.
struct Origin {
  std::string title, solver, solver_version;
};

/// A new result file. Every operation throws Trouble when the library does not answer success.
class BlockWriter {
 public:
  /// `shown_as` is the name of the file in messages.
  BlockWriter(const std::string& path, std::string shown_as, _ORVVersion version);

  /// From here on variables are written with their units.
  void WriteUnitSystem(const UnitSystem& system, const Origin& origin);
  /// The same for a run whose units nobody told.
  void WriteOrigin(const Origin& origin);
  /// From here on the states are told by their values alone: states that build upon others have one index column.
  void LeaveOutSteps() { has_steps_ = false; }
  /// What the columns of the state index mean: the value has the name `value_name`.
  void WriteIndexTypes(const std::string& value_name);
  /// The variable, and in later versions the group of variables that results are found by.
  void WriteVariable(const Quantity& quantity);
  void WriteElements(ElementGroup& group);
  /// Of the type "PART", which element groups refer to.
  void WriteParts(PartTable& parts);
  void WriteAttributes(AttributeTable& attributes);
  /// The ids that entities go by outside. Files up to version 2.0 have no place for them: nothing is written.
  void WriteIdentifiers(const std::string& entity_type, std::vector<int>& ids);
  void WriteSets(SetTable& sets);
  void WriteConstant(const Quantity& quantity, const EntityValues& values);
  /// States are added one by one, from 1. One appears in the file as a whole, when it is ended.
  void WriteInState(const StateIndex& index, const Quantity& quantity, const EntityValues& values, Extent extent);
  void WriteInState(const StateIndex& index, const Quantity& quantity, const ElementValues& values, Extent extent);
  void EndState();
  /// All states of a quantity in one block: the values are states x what they are for one state.
  void WriteOverStates(const std::vector<StateIndex>& states, const Quantity& quantity, const EntityValues& values);

 private:
  void BeginState(int state);
  [[noreturn]] void FailState(int state) const;
  void Write(ORVBlock& block, int state, int what, const std::string& described_as);
  void WriteInState(const StateIndex& index, ORVResult& result, const std::string& described_as);
  void WriteSystem(ORVSystem& block, const Origin& origin, int what);
  std::size_t IndexColumns() const { return has_steps_ ? 2 : 1; }
  void WriteVariableBlock(const Quantity& quantity);
  void WriteGroup(const std::string& name, const std::vector<Quantity>& quantities);
  /// Files up to version 1.2 have no groups of variables.
  bool HasGroups() const { return version_ >= ORV_VERSION_2_0; }

  ORVFiler filer_;
  std::string shown_as_;
  _ORVVersion version_;
  bool has_units_ = false;
  bool has_steps_ = true;
  int state_ = 0;  ///< that was begun and not ended
};

}  // namespace orvio::program
