#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "orvio/orv/detail/definition_writer.hpp"
#include "orvio/orv/detail/reader.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/detail/units.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_part.h"
#include "orvio/orv_switches.h"

namespace orv {

/// What values belong to.
struct Target {
  std::string entity = "NODE";  ///< entity type, or the type of the elements
  int layers = 0;               ///< layers or integration points of an element; 0 for entities with one value each
  bool is_complex = false;      ///< values are pairs
  std::string zone = {};        ///< name of the set that the entities are of; empty for all
};

/// A result file that is written: definitions first, then the mesh, then the states one by one. Each block, and each state
/// as a whole, appears in the file when it is complete, whatever ends the program; see ORVSetDurability. Every operation
/// throws Error when it cannot be done.
///
///     orv::Writer writer("plate.orv");
///     writer.define({"VELOCITY", {"X", "Y", "Z"}, orv::Shape::vector});
///     orv::Writer::StateScope state = writer.state(0.5);
///     state.write("VELOCITY", ids, values);
///     state.commit();
///
/// It can be moved while no state is open, not copied.
class Writer {
 public:
  struct Options {
    _ORVVersion version = ORV_VERSION_2_2;
    Origin origin = {};
    std::vector<Component> index = {{"TIME"}};  ///< columns of the state index; a unit is one of the origin
  };

  /// Makes a file. One that is there is replaced.
  explicit Writer(std::string path) : Writer(std::move(path), Options()) {}
  Writer(std::string path, Options options) : path_(std::move(path)), version_(options.version) {
    open(ORV_FILE_CREATE);
    units_ = detail::UnitTables(path_, options.origin);
    write_origin(options.origin);
    write_index(options.index);
  }
  /// Opens a file to add states to it. Its variables can be written to as they are.
  static Writer append(std::string path);

  const std::string& path() const noexcept { return path_; }
  /// The filer underneath, for all that is not offered here.
  ORVFiler& filer() noexcept { return *filer_; }

  /// A variable: what its values are. Goes before them.
  void define(const Quantity& quantity) {
    write_variable(quantity);
    if (has_groups()) write_group(quantity.name, {quantity});
    components_[quantity.name] = quantity.components.size();
  }

  /// Elements of one type, in the constant section.
  void elements(const Elements& elements) {
    std::vector<int> ids = narrow(elements.ids), nodes = narrow(elements.nodes), parts = narrow(elements.parts);
    if (parts.empty()) parts.assign(ids.size(), 1);
    if (nodes.size() != ids.size() * elements.nodes_per_element || parts.size() != ids.size()) {
      fail("elements of type \"" + elements.type + "\" have lists of unequal lengths",
           "give nodes_per_element nodes and a part for each");
    }
    ORVEleConnectivity block;
    detail::assign(block.m_etyp, elements.family);
    detail::assign(block.m_etypelem, elements.type);
    detail::assign(block.m_etyppart, elements.part_type);
    detail::assign(block.m_etypnode, elements.node_type);
    block.m_nele = static_cast<std::int64_t>(ids.size());
    block.m_npele = static_cast<std::int64_t>(elements.nodes_per_element);
    block.m_ndim = elements.dimension;
    block.m_idele = ids.data();
    block.m_pid = parts.data();
    block.m_ic = nodes.data();
    write(block, 0, kModel, "elements of type \"" + elements.type + "\"");
  }

  /// Parts of one type, in the constant section. Materials are stored if the first part has one.
  void parts(const std::vector<Part>& parts) {
    if (parts.empty()) return;
    std::vector<int> ids, materials;
    std::vector<std::string> titles;
    for (const Part& part : parts) {
      ids.push_back(narrow(part.id));
      titles.push_back(part.title);
      materials.push_back(part.material.value_or(0));
    }
    std::size_t width = 1;
    for (const std::string& title : titles) width = std::max(width, title.size());
    if (!has_groups()) width = detail::kFieldWidth;
    std::vector<char> slots = detail::fields_of(titles, width);
    slots.push_back('\0');
    ORVPart block;
    detail::assign(block.m_etyppart, parts.front().type);
    block.m_npart = static_cast<std::int64_t>(ids.size());
    block.m_length = static_cast<int>(width);
    block.m_pid = ids.data();
    block.m_title = slots.data();
    if (parts.front().material) block.m_mid = materials.data();
    write(block, 0, kModel, "parts");
  }

  /// Node ids and their coordinates, ids x 3, as constant values of "COORDINATE", which is defined if it is not.
  template <class Ids, class Numbers>
  void nodes(const Ids& ids, const Numbers& xyz, const std::string& unit = {}) {
    if (components_.count("COORDINATE") == 0) {
      define({"COORDINATE", {"X", "Y", "Z"}, Shape::vector, unit, "CLASS_LENGTH"});
    }
    constant("COORDINATE", ids, xyz);
  }

  /// Values that hold for all states: ids x layers x components, row-major, float or double.
  template <class Ids, class Numbers>
  void constant(const std::string& variable, const Ids& ids, const Numbers& values, const Target& target = {}) {
    write_values(0, {}, variable, ids, values, target);
  }

  /// A state that is being written. It appears in the file with `commit`; without, nothing of it does.
  class StateScope {
   public:
    StateScope(StateScope&& other) noexcept
        : writer_(std::exchange(other.writer_, nullptr)), number_(other.number_), index_(std::move(other.index_)) {}
    StateScope(const StateScope&) = delete;
    StateScope& operator=(const StateScope&) = delete;
    StateScope& operator=(StateScope&&) = delete;
    ~StateScope() {
      if (writer_) (void)writer_->filer_->EndState(false);  // drops it, which cannot fail in a way to be told here
    }

    int number() const noexcept { return number_; }  ///< 1-based

    /// Values of a defined variable: ids x layers x components, row-major, float or double.
    template <class Ids, class Numbers>
    void write(const std::string& variable, const Ids& ids, const Numbers& values, const Target& target = {}) {
      writer().write_values(number_, index_, variable, ids, values, target);
    }
    /// The same for values as a File gives them.
    template <class T>
    void write(const Values<T>& values) {
      write(values.variable, values.ids, values.data,
            {values.entity, values.on_elements ? static_cast<int>(values.layers) : 0, values.is_complex, values.zone});
    }

    /// Throws Error when the state cannot be written: the file is then as it was before.
    void commit() {
      Writer& ended = writer();
      writer_ = nullptr;
      if (ended.filer_->EndState() != 0) {
        ended.fail("cannot be written: " + detail::library_text("writing failed"), kAdvice, number_);
      }
      ended.states_ = std::max(ended.states_, number_);
    }

   private:
    friend class Writer;
    StateScope(Writer& writer, int number, std::vector<double> index)
        : writer_(&writer), number_(number), index_(std::move(index)) {}

    Writer& writer() const {
      if (!writer_) throw std::logic_error("orv::Writer::StateScope: the state has been written already");
      return *writer_;
    }

    Writer* writer_;
    int number_;
    std::vector<double> index_;
  };

  /// Begins the next state, with its row of the index: a value for each column.
  StateScope state(double time) { return state(std::vector<double>{time}); }
  StateScope state(std::vector<double> index) {
    const int number = states_ + 1;
    if (filer_->BeginState(number) != 0) {
      fail("cannot be written: " + detail::library_text("another state is being written"), kAdvice, number);
    }
    return {*this, number, std::move(index)};
  }
  /// States that the file holds.
  int state_count() const noexcept { return states_; }

 private:
  static constexpr int kModel = ORV_WRITE_HEADER | ORV_WRITE_DATA;
  static constexpr char kAdvice[] = "check the free space and your permissions in its folder";
  static constexpr char kIndexGroup[] = "INDEX";  // the name by which readers find the index types without being told

  Writer() = default;

  bool has_groups() const { return version_ >= ORV_VERSION_2_0; }

  [[noreturn]] void fail(const std::string& what, const std::string& hint, int state = Error::kNoState) const {
    throw Error(path_, what, hint, {}, state);
  }

  void open(_ORVFileMode mode) {
    filer_ = std::make_unique<ORVFiler>(path_.c_str());
    const int status = filer_->InitForWriting(path_.c_str(), version_, mode, mode == ORV_FILE_APPEND);
    if (status == 0) return;
    fail(std::string("cannot be opened for writing: ") + ORVGetStatusText(status), kAdvice);
  }

  void write(ORVBlock& block, int state, int what, const std::string& described_as) {
    if (filer_->WriteBlock(&block, state, what) == 0) return;
    fail(described_as + " cannot be written: " + detail::library_text("writing failed"), kAdvice, state);
  }

  void write_origin(const Origin& origin) {
    ORVSystem block;
    detail::assign(block.m_title, origin.title);
    detail::assign(block.m_solverName, origin.solver);
    detail::assign(block.m_solverVers, origin.solver_version);
    detail::assign(block.m_sys, origin.unit_system);
    units_.fill(block);
    write(block, 0, units_.empty() ? ORV_WRITE_HEADER : kModel, "the unit system");
  }

  /// From version 2.0 on the columns are named by the variables of a group.
  void write_index(const std::vector<Component>& columns) {
    columns_ = columns.size();
    if (columns.empty()) return;
    std::vector<std::string> names;
    std::vector<Quantity> quantities;
    for (const Component& column : columns) {
      names.push_back(column.name);
      quantities.push_back({column.name, {column.name}, Shape::scalar, column.unit, {}});
    }
    std::vector<char> fields = detail::fields_of(names);
    ORVSimulationType block;
    block.m_nindex = static_cast<std::int64_t>(names.size());
    block.m_pEtypindex = fields.data();
    if (has_groups()) {
      for (const Quantity& quantity : quantities) write_variable(quantity);
      write_group(kIndexGroup, quantities);
      detail::assign(block.m_etypvar, kIndexGroup);
    }
    write(block, 0, kModel, "the index types");
  }

  void write_variable(const Quantity& quantity) {
    detail::VariableArrays arrays(quantity, units_.ids(path_, quantity.unit));
    ORVVariable block;
    detail::name_variable(quantity, block);
    arrays.fill(block);
    write(block, 0, kModel, "variable \"" + quantity.name + "\"");
  }

  void write_group(const std::string& name, const std::vector<Quantity>& quantities) {
    detail::GroupArrays arrays(quantities);
    ORVVariableGrp block;
    detail::assign(block.m_grpName, name);
    arrays.fill(block);
    write(block, 0, kModel, "variable group \"" + name + "\"");
  }

  int narrow(std::int64_t id) const {
    if (id < std::numeric_limits<int>::min() || id > std::numeric_limits<int>::max()) {
      fail("id " + std::to_string(id) + " does not fit into 32 bits", "number the entities anew");
    }
    return static_cast<int>(id);
  }
  template <class Ids>
  std::vector<int> narrow(const Ids& ids) const {
    std::vector<int> narrowed;
    narrowed.reserve(ids.size());
    for (const auto id : ids) narrowed.push_back(narrow(static_cast<std::int64_t>(id)));
    return narrowed;
  }

  /// `ids` is a container of integers, `values` one of floats or doubles with `data()` and `size()`.
  template <class Ids, class Numbers>
  void write_values(int state, const std::vector<double>& index, const std::string& variable, const Ids& ids,
                    const Numbers& values, const Target& target) {
    using Number = std::remove_cv_t<std::remove_pointer_t<decltype(values.data())>>;
    static_assert(std::is_same_v<Number, float> || std::is_same_v<Number, double>, "values are floats or doubles");
    const auto known = components_.find(variable);
    if (known == components_.end()) fail("the variable \"" + variable + "\" is not defined", "define it first", state);
    std::vector<int> narrowed = narrow(ids);
    const std::size_t layers = target.layers > 0 ? static_cast<std::size_t>(target.layers) : 1;
    const std::size_t expected = narrowed.size() * layers * known->second * (target.is_complex ? 2 : 1);
    if (values.size() != expected) {
      fail("\"" + variable + "\" needs " + std::to_string(expected) + " numbers and got " +
               std::to_string(values.size()),
           "give ids x layers x components of them, pairs for complex values", state);
    }
    ORVResult result(kind_of(target));
    result.SetEntityAndVarName(target.entity, variable);
    detail::assign(result.m_etypzone, target.zone);
    detail::assign(result.m_subBlockName, target.zone);
    result.m_nent = static_cast<std::int64_t>(narrowed.size());
    result.m_numl = static_cast<std::int64_t>(layers);
    result.m_ncoo = static_cast<std::int64_t>(known->second);
    result.m_readIds = 1;  // writes the ids beside the values
    result.m_entid = narrowed.data();
    result.m_res = const_cast<Number*>(values.data());  // only read
    result.m_resType = std::is_same_v<Number, float> ? ORV_FLOAT : ORV_DOUBLE;
    write_result(state, index, result, "\"" + variable + "\" of " + target.entity);
  }

  static int kind_of(const Target& target) {
    if (target.layers > 0) return target.is_complex ? ORV_RESULT_ELEMENT_COMPLEX : ORV_RESULT_ELEMENT;
    return target.is_complex ? ORV_RESULT_ENTITY_COMPLEX : ORV_RESULT_ENTITY;
  }

  /// Columns are told apart by their place; the identifier of a row is the state.
  void write_result(int state, std::vector<double> index, ORVResult& result, const std::string& described_as) {
    if (state == 0) return write(result, 0, kModel, described_as);
    if (index.size() != columns_) {
      fail("the state index has " + std::to_string(columns_) + " columns and got " + std::to_string(index.size()),
           "give a value for each", state);
    }
    std::vector<int> identifiers(columns_, state);
    result.m_nindex = static_cast<std::int64_t>(columns_);
    result.m_indexident = identifiers.data();
    result.m_indexval = index.data();
    result.m_indexvalType = ORV_DOUBLE;
    write(result, state, kModel | ORV_WRITE_INDEX, described_as);
  }

  std::string path_;
  _ORVVersion version_ = ORV_VERSION_2_2;
  std::unique_ptr<ORVFiler> filer_;
  detail::UnitTables units_;
  std::size_t columns_ = 0;
  int states_ = 0;
  std::map<std::string, std::size_t> components_;  ///< of each variable
};

inline Writer Writer::append(std::string path) {
  Writer writer;
  writer.path_ = std::move(path);
  detail::Reader reader(writer.path_);
  writer.states_ = reader.states();
  ORVFiler& filer = reader.filer();
  const ORVSimulationType* types = filer.GetIndexTypes();
  writer.columns_ = types && types->m_nindex > 0 ? static_cast<std::size_t>(types->m_nindex) : 0;
  for (const ORVVariable* variable : filer.GetVariables()) {
    if (variable->m_ncoo < 1) continue;
    writer.components_[detail::text_of(variable->m_varnam)] = static_cast<std::size_t>(variable->m_ncoo);
  }
  writer.version_ = detail::version_of(filer);
  writer.open(ORV_FILE_APPEND);
  return writer;
}

}  // namespace orv
