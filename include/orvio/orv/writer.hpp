#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "orvio/orv/detail/definition_writer.hpp"
#include "orvio/orv/detail/known_names.hpp"
#include "orvio/orv/detail/reader.hpp"
#include "orvio/orv/detail/result_writer.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/detail/units.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"
#include "orvio/orv_switches.h"

namespace orv {

/// A result file that is written: definitions first, then the mesh, then the states one by one. Each block, and each state
/// as a whole, appears in the file when it is complete, whatever ends the program; see ORVSetDurability. Every operation
/// throws Error when it cannot be done; a block that failed is not in the file then.
///
///     orv::Writer writer("plate.orv");
///     writer.define({"VELOCITY", {"X", "Y", "Z"}, orv::Shape::vector});
///     orv::Writer::StateScope state = writer.state(0.5);
///     state.write("VELOCITY", ids, values);
///     state.commit();
///
/// Names are of variables, entity types and zones. They become groups of the file: up to 255 characters without a slash,
/// and none of "header", "data", "index" and "orvblock". Other texts have up to 256 characters; what is longer is cut.
///
/// It can be moved while no state is open, not copied; one that was moved from can only be assigned to or destroyed. It
/// must live longer than its states.
class Writer {
 public:
  struct Options {
    _ORVVersion version = ORV_VERSION_2_2;
    Origin origin = {};
    std::vector<Component> index = {{"TIME"}};  ///< columns of the state index; a unit is one of the origin
  };

  /// Makes a file. One that is there is replaced.
  explicit Writer(std::string path) : Writer(std::move(path), Options()) {}
  Writer(std::string path, const Options& options)
      : path_(std::move(path)),
        version_(options.version),
        units_(path_, options.origin),
        has_groups_(version_ >= ORV_VERSION_2_0) {
    for (const Component& column : options.index) {  // while the file that is there still is
      require_name(column.name);
      (void)units_.ids(path_, column.unit);
    }
    open(ORV_FILE_CREATE);
    write_origin(options.origin);
    write_index(options.index);
  }
  /// Opens a file to add states to it. Its variables can be written to as they are, those of groups by the name of the
  /// group, and its units used for more of them.
  static Writer append(std::string path);

  const std::string& path() const noexcept { return path_; }
  /// The filer underneath, for all that is not offered here. It lives as long as this object.
  ORVFiler& filer() noexcept { return *filer_; }

  /// A variable: what its values are. Goes before them.
  void define(const Quantity& quantity) {
    require_name(quantity.name);
    if (detail::holds(known_.taken, quantity.name)) {
      fail("\"" + quantity.name + "\" is defined already", "give another name");
    }
    const std::size_t count = quantity.components.size();
    const std::size_t needed = detail::components_of(quantity.shape);
    if (count == 0 || (needed != 0 && count != needed)) {
      fail("\"" + quantity.name + "\" has " + std::to_string(count) + " components, which do not make its shape",
           "a vector and a plane tensor have 3, a tensor has 6, scalars have 1 or more");
    }
    write_variable(quantity);
    if (has_groups_) write_group(quantity.name, {quantity});
    known_.taken.insert(quantity.name);
    known_.variables.insert_or_assign(quantity.name, detail::KnownNames::Defined{quantity.name, count});
  }

  /// Elements of one type, in the constant section. Without parts all are of part 1. Nothing for no elements.
  void elements(const Elements& elements) {
    if (elements.ids.empty() && elements.nodes.empty()) return;
    require_name(elements.type);
    detail::ElementArrays arrays(path_, elements);
    ORVEleConnectivity block;
    arrays.fill(block);
    write(block, 0, kModel, "elements of type \"" + elements.type + "\"");
  }

  /// Parts in the constant section, all of a type at once. Materials, and their types, are stored if a part has one; those
  /// of the others are 0 then.
  void parts(const std::vector<Part>& parts) {
    std::vector<Part> rest = parts;
    while (!rest.empty()) {
      const std::string type = rest.front().type;
      const auto is_other = [&](const Part& part) { return part.type != type; };
      const auto others = std::stable_partition(rest.begin(), rest.end(), [&](const Part& p) { return !is_other(p); });
      require_name(type);
      detail::PartArrays arrays(path_, {rest.begin(), others}, version_ < ORV_VERSION_2_0);
      ORVPart block;
      arrays.fill(block);
      write(block, 0, kModel, "parts of type \"" + type + "\"");
      rest.erase(rest.begin(), others);
    }
  }

  /// Node ids and their coordinates, ids x 3, as constant values of "COORDINATE", which is defined if it is not.
  template <class Ids, class Numbers>
  void nodes(const Ids& ids, const Numbers& xyz, const std::string& unit = {}) {
    if (!detail::holds(known_.variables, "COORDINATE")) {
      define({"COORDINATE", {"X", "Y", "Z"}, Shape::vector, unit, "CLASS_LENGTH"});
    }
    constant("COORDINATE", ids, xyz);
  }

  /// Values that hold for all states: ids x layers x components, row-major. Ids are integers of 32 bits, numbers float or
  /// double, in containers with `data()` and `size()`. They are only read.
  template <class Ids, class Numbers>
  void constant(const std::string& variable, const Ids& ids, const Numbers& values, const Target& target = {}) {
    write_values(0, {}, variable, ids, values, target, known_.constant);
  }

  /// A state that is being written. It appears in the file with `commit`; without, nothing of it does.
  class StateScope {
   public:
    StateScope(StateScope&& other) noexcept
        : writer_(std::exchange(other.writer_, nullptr)),
          number_(other.number_),
          index_(std::move(other.index_)),
          written_(std::move(other.written_)),
          known_before_(std::move(other.known_before_)) {}
    StateScope(const StateScope&) = delete;
    StateScope& operator=(const StateScope&) = delete;
    StateScope& operator=(StateScope&&) = delete;
    ~StateScope() {
      if (!writer_) return;
      (void)writer_->filer_->EndState(false);  // drops it, which cannot fail in a way to be told here
      std::swap(writer_->known_, known_before_);
    }

    int number() const noexcept { return number_; }  ///< 1-based

    /// Values of a defined variable: ids x layers x components, row-major; see `constant`. Throws Error for values of which
    /// the state has some already: the state can be gone on with. After a failed write it can only be dropped.
    template <class Ids, class Numbers>
    void write(const std::string& variable, const Ids& ids, const Numbers& values, const Target& target = {}) {
      writer().write_values(number_, index_, variable, ids, values, target, written_);
    }
    /// The same for values as a File gives them.
    template <class T>
    void write(const Values<T>& values) {
      write(values.variable, values.ids, values.data,
            {values.entity, values.on_elements ? static_cast<int>(values.layers) : 0, values.is_complex, values.zone});
    }

    /// Throws Error when the state cannot be written, or has nothing in it: the file is then as it was before.
    void commit() {
      Writer& ended = writer();
      const detail::LibraryText text;
      writer_ = nullptr;
      if (ended.filer_->EndState() != 0) {
        std::swap(ended.known_, known_before_);
        ended.fail("cannot be written: " + text.or_else("writing failed"), kAdvice, number_);
      }
      int states = 0;
      const bool may_be_missing = written_.empty();  // unless something came through the filer
      if (may_be_missing && (ReadNumState(ended.path_.c_str(), &states) != 0 || states < number_)) {
        ended.fail("has nothing to hold", "write values before the commit", number_);
      }
      ended.states_ = std::max(ended.states_, number_);
    }

   private:
    friend class Writer;
    StateScope(Writer& writer, int number, std::vector<double> index)
        : writer_(&writer), number_(number), index_(std::move(index)), known_before_(writer.known_) {}

    Writer& writer() const {
      if (!writer_) throw std::logic_error("orv::Writer::StateScope: the state has ended already");
      return *writer_;
    }

    Writer* writer_;
    int number_;
    std::vector<double> index_;
    detail::Places written_;
    detail::KnownNames known_before_;  ///< what the writer defines meanwhile goes with the state
  };

  /// Begins the next state, with its row of the index: a value for each column. One at a time.
  StateScope state(double time) { return state(std::vector<double>{time}); }
  StateScope state(std::vector<double> index) {
    const int number = states_ + 1;
    if (index.size() != columns_) {
      fail("the state index has " + std::to_string(columns_) + " columns and got " + std::to_string(index.size()),
           "give a value for each", number);
    }
    const detail::LibraryText text;
    if (filer_->BeginState(number) != 0) {
      fail("cannot be written: " + text.or_else("another state is being written, or somebody else writes"), kAdvice,
           number);
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

  [[noreturn]] void fail(const std::string& what, const std::string& hint, int state = Error::kNoState) const {
    throw Error(path_, what, hint, {}, state);
  }

  void require_name(const std::string& name) const {
    if (detail::is_block_name(name)) return;
    fail("\"" + name + "\" is no name for something in a file",
         "names have 1 to 255 characters without a slash or a blank at the end, and some words are taken");
  }

  void open(_ORVFileMode mode) {
    filer_ = std::make_unique<ORVFiler>(path_.c_str());
    const int status = filer_->InitForWriting(path_.c_str(), version_, mode, mode == ORV_FILE_APPEND);
    if (status == 0) return;
    fail(std::string("cannot be opened for writing: ") + ORVGetStatusText(status), kAdvice);
  }

  void write(ORVBlock& block, int state, int what, const std::string& described_as) {
    const detail::LibraryText text;
    if (filer_->WriteBlock(&block, state, what) == 0) return;
    fail(described_as + " cannot be written: " + text.or_else("writing failed"), kAdvice, state);
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

  /// The columns are named by variables: from version 2.0 on those of a group, before by those of their names, which tell
  /// the units.
  void write_index(const std::vector<Component>& columns) {
    columns_ = columns.size();
    if (columns.empty()) return;
    std::vector<std::string> names;
    std::vector<Quantity> quantities;
    for (const Component& column : columns) {
      names.push_back(column.name);
      quantities.push_back({column.name, {column.name}, Shape::scalar, column.unit, {}});
      known_.taken.insert(column.name);
    }
    std::vector<char> fields = detail::fields_of(names);
    ORVSimulationType block;
    block.m_nindex = static_cast<std::int64_t>(names.size());
    block.m_pEtypindex = fields.data();
    for (const Quantity& quantity : quantities) {
      if (has_groups_ || !quantity.unit.empty()) write_variable(quantity);
    }
    if (has_groups_) {
      write_group(kIndexGroup, quantities);
      detail::assign(block.m_etypvar, kIndexGroup);
      known_.taken.insert(kIndexGroup);
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

  template <class Ids, class Numbers>
  void write_values(int state, std::vector<double> index, const std::string& variable, const Ids& ids,
                    const Numbers& values, const Target& target, detail::Places& places) {
    using Number = std::remove_cv_t<std::remove_pointer_t<decltype(values.data())>>;
    static_assert(std::is_same_v<Number, float> || std::is_same_v<Number, double>, "values are floats or doubles");
    const auto known = known_.variables.find(variable);
    if (known == known_.variables.end())
      fail("the variable \"" + variable + "\" is not defined", "define it first", state);
    require_target(target);
    const auto& [name, components] = known->second;
    std::vector<int> narrowed = detail::narrow(path_, ids);
    require_count(variable, narrowed.size(), values.size(), components, target, state);
    const std::string described_as = "\"" + variable + "\" of " + target.entity;
    if (!places.add(target.entity, name, target.zone)) {
      fail(described_as + " has values there already", "write all of them at once, or in zones", state);
    }
    ORVResult result = detail::result_of(name, target, components, narrowed, values.data());
    const detail::ChunkScope chunks;  // of packed values; others have none
    try {
      write_result(state, std::move(index), result, described_as);
    } catch (...) {
      places.remove(target.entity, name, target.zone);
      throw;
    }
  }

  void require_target(const Target& target) const {
    require_name(target.entity);
    if (target.digits && *target.digits < 0) fail("values keep no digits less than 0", "leave them out to keep all");
    if (target.zone.empty()) return;
    require_name(target.zone);
    if (detail::same_word(target.zone, "ZONE")) fail("\"ZONE\" stands for no zone", "give another name");
  }

  void require_count(const std::string& variable, std::size_t ids, std::size_t numbers, std::size_t components,
                     const Target& target, int state) const {
    const std::size_t layers = target.layers > 0 ? static_cast<std::size_t>(target.layers) : 1;
    const std::size_t expected = ids * layers * components * (target.is_complex ? 2 : 1);
    if (ids > 0 && numbers == expected) return;
    fail("\"" + variable + "\" needs " + std::to_string(expected) + " numbers and got " + std::to_string(numbers),
         "give ids, and ids x layers x components numbers, pairs for complex values", state);
  }

  /// Columns are told apart by their place; the identifier of a row is the state.
  void write_result(int state, std::vector<double> index, ORVResult& result, const std::string& described_as) {
    std::vector<int> identifiers(index.size(), state);
    result.m_nindex = static_cast<std::int64_t>(index.size());
    result.m_indexident = identifiers.data();
    result.m_indexval = index.data();
    result.m_indexvalType = ORV_DOUBLE;
    write(result, state, index.empty() ? kModel : kModel | ORV_WRITE_INDEX, described_as);
  }

  std::string path_;
  _ORVVersion version_ = ORV_VERSION_2_2;
  detail::UnitTables units_;
  bool has_groups_ = true;  ///< results are bound to groups of variables
  std::unique_ptr<ORVFiler> filer_;
  std::size_t columns_ = 0;
  int states_ = 0;
  detail::KnownNames known_;
};

inline Writer Writer::append(std::string path) {
  Writer writer;
  writer.path_ = std::move(path);
  detail::Reader reader(writer.path_);
  ORVFiler& filer = reader.filer();
  writer.states_ = reader.states();
  writer.columns_ = detail::index_width(filer);
  writer.known_ = detail::known_names(filer);
  writer.version_ = detail::version_of(filer);
  const bool is_undefined = filer.GetVariables().empty() && writer.version_ >= ORV_VERSION_2_0;
  writer.has_groups_ =
      is_undefined || !filer.GetVariableGroups().empty();  // as it is, or its results are bound no more
  if (filer.GetSystem()) writer.units_ = detail::UnitTables(*filer.GetSystem());
  writer.open(ORV_FILE_APPEND);
  return writer;
}

}  // namespace orv
