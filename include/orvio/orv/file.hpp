#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orv/detail/definitions.hpp"
#include "orvio/orv/detail/fetch.hpp"
#include "orvio/orv/detail/history.hpp"
#include "orvio/orv/detail/mesh.hpp"
#include "orvio/orv/detail/reader.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv {

/// A result file that is open to questions. It knows the headers; values are read when they are asked for, and no file
/// stays open in between. Every operation throws Error when it cannot be done, and std::bad_alloc.
///
/// It can be moved, not copied; one that was moved from can only be assigned to or destroyed. Names compare without regard
/// to case.
class File {
 public:
  /// Reads variables, units, and the headers of the results. Throws Error for what is no result file.
  explicit File(std::string path) : reader_(std::move(path)) {}

  const std::string& path() const noexcept { return reader_.path(); }
  /// The filer underneath, for all that is not offered here. It lives as long as this object.
  ORVFiler& filer() noexcept { return reader_.filer(); }

  // ---- What the file tells of itself; texts are empty where it does not

  /// Of the format: "2.2.0".
  std::string version() {
    const ORVFileVersion* version = filer().GetFileVersion();
    if (!version) return {};
    return std::to_string(version->m_major) + "." + std::to_string(version->m_minor) + "." +
           std::to_string(version->m_patch);
  }
  std::string title() { return detail::text_of(filer().GetTitle()); }
  std::string solver() { return detail::text_of(filer().GetSolverName()); }
  std::string solver_version() { return detail::text_of(filer().GetSolverVersion()); }
  std::string unit_system() { return filer().GetSystem() ? detail::text_of(filer().GetSystem()->m_sys) : ""; }

  // ---- States

  int state_count() const noexcept { return reader_.states(); }
  /// The number of the last state; 0 for a file without states.
  int last_state() const noexcept { return reader_.states(); }
  std::vector<State> states() {
    std::vector<State> all;
    for (int number = 1; number <= state_count(); ++number) all.push_back(state(number));
    return all;
  }
  State state(int number) {
    reader_.require_state(number, 1);
    return reader_.state(number);
  }
  /// What the columns of State::index are; numbered where the file names none.
  std::vector<Component> index_columns() {
    const ORVIndexBase<int, double>* index = filer().GetStateIndexDP(false);
    const bool has_rows = index && index->GetNumState() > 0;  // the number of columns alone is a claim of the file
    return index_columns(has_rows ? static_cast<std::size_t>(index->GetNumIndex()) : 0);
  }
  /// The same for so many columns of another index.
  std::vector<Component> index_columns(std::size_t count) { return detail::index_columns(filer(), count); }

  /// For a file that has grown since, or was replaced: reads again what the constructor has read. What the filer
  /// underneath has given out is no more.
  void refresh() { reader_.refresh(); }
  /// Keeps the file open between reads, which makes small ones faster; see ORVFiler::KeepFileOpen.
  void keep_open(bool keep = true) { reader_.keep_open(keep); }

  // ---- What is stored

  /// Definitions, in the order of the file. Those that only name columns of the state index are among them.
  std::vector<Variable> variables() {
    std::vector<Variable> all;
    for (ORVVariable* variable : filer().GetVariables()) {
      const bool is_twin = std::any_of(all.begin(), all.end(), [&](const Variable& other) {
        return detail::same_word(other.name, detail::text_of(variable->m_varnam)) &&
               detail::same_word(other.key, detail::text_of(variable->m_varkey));
      });
      if (!is_twin) all.push_back(detail::describe(filer(), *variable));
    }
    return all;
  }
  /// The results of the constant section, of all states, and over all states.
  std::vector<Result> results() {
    reader_.learn(0);
    std::vector<Result> all;
    for (const int list : {1, 0}) {
      for (const ORVResult* block : filer().GetResultList(list)) all.push_back(detail::describe(*block));
    }
    return all;
  }
  /// The constant mesh (state 0), or the elements that a state has of its own; of all types, or of one. Empty where there
  /// are none.
  std::vector<Elements> elements(int state = 0, const std::string& type = {}) {
    reader_.require_state(state);
    return detail::read_all_elements(path(), state, type);
  }
  /// The parts of the constant section (state 0), or those that a state has of its own.
  std::vector<Part> parts(int state = 0) {
    reader_.require_state(state);
    std::vector<Part> all;
    for (const ORVPart& block : detail::HeaderWalk<ORVPart>().run(path(), state)) {
      detail::append_parts(filer(), detail::text_of(block.m_etyppart), state, all);
    }
    return all;
  }

  // ---- Values

  /// Values of a variable, by its name or key, or of a component by the name of its handle ("STRESS_SXX"); a computed one
  /// gives the components that it is computed from. An answer for each entity or element type, and zone. Constant values
  /// answer for every state that has none of its own. A state that holds only what changed is put together from those
  /// before it. Throws Error when there is nothing of that name there, and for values that cannot be read.
  ///
  /// `T` is float or double, whatever the file stores.
  template <class T = double>
  std::vector<Values<T>> values(const std::string& variable, const Selection& selection = {}) {
    std::vector<Values<T>> all = find_values<T>(variable, selection);
    if (all.empty()) reader_.fail_to_find(variable, selection, state_of(selection));
    return all;
  }
  /// The same; empty when there is nothing of that name there.
  template <class T = double>
  std::vector<Values<T>> find_values(const std::string& variable, const Selection& selection = {}) {
    return reader_.values<T>(variable, selection, state_of(selection));
  }
  /// Coordinates of the nodes: `values` of "COORDINATE" at "NODE", those of several zones one behind the other.
  template <class T = double>
  Values<T> coordinates(int state = Selection::kLast) {
    Selection nodes;
    nodes.state = state;
    nodes.entity = "NODE";
    std::vector<Values<T>> blocks = values<T>("COORDINATE", nodes);
    return blocks.size() == 1 ? std::move(blocks.front()) : join(std::move(blocks));
  }
  /// Curves over all states: one for each entity, layer and component, complex values having two. They come from the blocks
  /// that hold all states where these have all that is asked for, and have the states of these then. `layer` counts from 1;
  /// 0 for all. Of `ids` none asks for all; those that are nowhere are left out. Throws Error when no state has anything
  /// of it, and for values that cannot be read.
  History history(const std::string& variable, const std::vector<std::int64_t>& ids, const std::string& component = {},
                  int layer = 0, const std::string& entity = {}) {
    Selection selection;
    selection.ids = ids;
    selection.component = component;
    selection.layer = layer;
    selection.entity = entity;
    detail::Curves read = detail::read_curves(reader_, variable, selection);
    return {std::move(read.variable), read.is_double, read.states.empty() ? states() : std::move(read.states),
            std::move(read.curves)};
  }

 private:
  int state_of(const Selection& selection) const noexcept {
    return selection.state == Selection::kLast ? last_state() : selection.state;
  }

  template <class T>
  Values<T> join(std::vector<Values<T>> blocks) const {
    std::size_t numbers = 0;
    for (const Values<T>& block : blocks) numbers += block.data.size();
    Values<T> all = std::move(blocks.front());
    Buffer<T> data(numbers);
    T* end = std::copy(all.data.begin(), all.data.end(), data.begin());
    for (std::size_t i = 1; i < blocks.size(); ++i) {
      const Values<T>& block = blocks[i];
      if (block.row_size() != all.row_size()) {
        throw Error(path(), "has coordinates with unequal numbers of components", "values gives them one by one");
      }
      all.ids.insert(all.ids.end(), block.ids.begin(), block.ids.end());
      end = std::copy(block.data.begin(), block.data.end(), end);
    }
    all.data = std::move(data);
    all.zone.clear();
    return all;
  }

  detail::Reader reader_;
};

}  // namespace orv
