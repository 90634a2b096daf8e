#pragma once

/// A filer after its start-up, and the way from a name to values.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "orvio/orv/detail/definitions.hpp"
#include "orvio/orv/detail/fetch.hpp"
#include "orvio/orv/detail/mesh.hpp"
#include "orvio/orv/detail/rows.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

/// The blocks of a name, and the handle where it is that of a component.
struct Found {
  std::vector<ORVResult*> blocks;
  const ORVExtVar* handle = nullptr;
};

/// Where results are looked up: in the states and the constant section, or over all states.
enum class ResultList { single_state = 1, over_states = 2 };

class Reader {
 public:
  static constexpr int kAllStates = -1;  ///< state of a block that holds all of them

  explicit Reader(std::string path) : path_(std::move(path)), states_(count_states()) {
    filer_ = std::make_unique<ORVFiler>(path_.c_str());
    if (!filer_->HasRootGroup("post")) {
      throw Error(path_, "is an HDF5 file without result data (no group /post)", "give a result file");
    }
    filer_->SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    int next_id = 1;
    (void)filer_->InitReader(next_id);  // a file without results still has a mesh
  }

  const std::string& path() const noexcept { return path_; }
  ORVFiler& filer() const noexcept { return *filer_; }
  int states() const noexcept { return states_; }

  void require_state(int state) const {
    if (state >= 0 && state <= states_) return;
    throw Error(path_, "has no state " + std::to_string(state), "it has " + std::to_string(states_), {}, state);
  }

  void refresh() {
    states_ = count_states();
    filer_->InitForReload();
    learned_.clear();
    mapped_.clear();
    members_.clear();
  }

  /// The start-up knows the results of the first state. Makes those of another one known, or of all (0).
  void learn(int state) {
    if (state == 1 || states_ < 2 || learned_[0] || learned_[state]) return;
    int added = 0;
    constexpr int kNextAfterTheLargest = -1;
    (void)filer_->UpdateContainer(state, added, kNextAfterTheLargest, 0);  // what cannot be read is not there
    learned_[state] = true;
  }

  /// By the name or key of a variable, else by the name of a handle.
  Found find(const std::string& name, ResultList list) const {
    const int flags = static_cast<int>(list);
    Found found;
    std::vector<const char*> names = {name.c_str()};
    std::vector<ORVResult*> by_name;
    filer_->GetResultBlks(names, found.blocks, kAnyType, flags, false);
    filer_->GetResultBlks(names, by_name, kAnyType, flags, true);
    for (ORVResult* block : by_name) {
      const bool is_known = std::find(found.blocks.begin(), found.blocks.end(), block) != found.blocks.end();
      if (!is_known) found.blocks.push_back(block);
    }
    // A name that stands in both lists has a handle for each.
    for (const ORVExtVar* handle : filer_->GetExtVariables()) {
      if (!found.blocks.empty()) break;
      if (!same_word(handle->GetName(), name)) continue;
      found.handle = handle;
      std::vector<_ORVEntityType> any_entity;
      std::vector<int> any_base, ids = {handle->GetIID()};
      filer_->GetResultBlksFrmCmp(any_entity, any_base, ids, found.blocks, kAnyType, flags);
    }
    return found;
  }

  /// Keeps the blocks of an entity type that have the layer.
  static void keep_entity(const Selection& selection, std::vector<ORVResult*>& blocks) {
    const auto is_other = [&](const ORVResult* block) {
      const bool is_entity = selection.entity.empty() || same_word(text_of(block->m_etyp), selection.entity);
      return !is_entity || static_cast<std::size_t>(std::max(selection.layer, 0)) > layers_of(*block);
    };
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(), is_other), blocks.end());
  }

  /// The stored components of a block that are asked for.
  std::vector<Column> columns(const Found& found, const ORVResult& block, const std::string& name,
                              const std::string& component) const {
    std::vector<Column> all = found.handle ? columns_of(*filer_, *found.handle) : columns_of(*filer_, block, name);
    if (all.empty()) {
      throw Error(path_, "the values of \"" + name + "\" are not defined: the file has no variable of that name",
                  "write the file again with its variables", block.GetBlkPath());
    }
    if (component.empty()) return all;
    std::string names;
    for (Column& column : all) {
      if (same_word(column.component.name, component)) return {std::move(column)};
      names += (names.empty() ? "" : ", ") + column.component.name;
    }
    throw Error(path_, "\"" + name + "\" has no component \"" + component + "\"", "its components are " + names);
  }

  /// What a block is, without values.
  template <class T>
  static Values<T> frame(const Found& found, const ORVResult& block, const std::vector<Column>& columns,
                         const Selection& selection) {
    Values<T> values;
    values.variable = found.handle ? found.handle->GetName() : text_of(block.m_etypvar);
    values.entity = text_of(block.m_etyp);
    values.zone = zone_of(block);
    values.is_complex = block.IsComplexBlk();
    values.on_elements = block.IsElementResult();
    values.layers = selection.layer > 0 ? 1 : layers_of(block);
    for (const Column& column : columns) values.components.push_back(column.component);
    return values;
  }

  /// All that a state has of a name; empty where it has nothing.
  template <class T>
  std::vector<Values<T>> values(const std::string& variable, const Selection& selection, int state) {
    require_state(state);
    if (state > 1) learn(state);
    Found found = find(variable, ResultList::single_state);
    keep_stored(selection, state, found.blocks);
    std::vector<Values<T>> all;
    for (ORVResult* block : found.blocks) {
      const std::vector<Column> asked = columns(found, *block, variable, selection.component);
      Values<T> values = frame<T>(found, *block, asked, selection);
      values.state = block->IsConstantBlk() ? 0 : state;
      fill(*block, asked, values.on_elements ? selection.layer : 0, values);
      choose(selection, state, values);
      if (!values.ids.empty()) all.push_back(std::move(values));
    }
    return all;
  }

  [[noreturn]] void fail_to_find(const std::string& variable, const Selection& selection, int state) {
    std::string what = "has no values of \"" + variable + "\"";
    if (!selection.entity.empty()) what += " of \"" + selection.entity + "\"";
    if (selection.layer > 0) what += " on layer " + std::to_string(selection.layer);
    if (selection.part != 0) what += " on part " + std::to_string(selection.part);
    if (!selection.ids.empty()) what += " at the ids that are asked for";
    const bool over_states = !find(variable, ResultList::over_states).blocks.empty();
    throw Error(path_, what, over_states ? "they are stored over all states: history reads them" : names_hint(), {},
                state);
  }

 private:
  static constexpr int kAnyType = -1;

  int count_states() const {
    std::error_code error;
    if (!std::filesystem::exists(path_, error)) throw Error(path_, "does not exist", "check the name");
    int states = 0;
    if (ReadNumState(path_.c_str(), &states) == 0) return states;
    throw Error(path_, "cannot be opened: " + library_text("it is no HDF5 file"), "give a result file");
  }

  std::string names_hint() {
    learn(0);
    std::string names;
    for (const ORVResult* block : filer_->GetResultList(static_cast<int>(ResultList::single_state))) {
      const std::string quoted = "\"" + text_of(block->m_etypvar) + "\"";
      if (names.find(quoted) == std::string::npos) names += (names.empty() ? "" : ", ") + quoted;
    }
    return names.empty() ? "it has no values at all" : "it has " + names;
  }

  /// Reads the header of a block as it stands in a state. False where it has no entities there.
  bool is_stored(const ORVResult& block, int state, bool* is_incremental = nullptr) const {
    ORVResult probe = block;
    if (probe.ReadBlock(path_.c_str(), state, ORV_READ_HEADER) != 0 || probe.m_nent < 1) return false;
    if (is_incremental) *is_incremental = probe.IsIncremental();
    return true;
  }

  /// Of the blocks of an entity type, those that are stored in a state; the constant ones where there are none.
  void keep_stored(const Selection& selection, int state, std::vector<ORVResult*>& blocks) const {
    keep_entity(selection, blocks);
    std::vector<ORVResult*> constant, in_state;
    for (ORVResult* block : blocks) {
      if (block->IsConstantBlk()) {
        constant.push_back(block);
      } else if (state > 0 && is_stored(*block, state)) {
        in_state.push_back(block);
      }
    }
    blocks = in_state.empty() ? std::move(constant) : std::move(in_state);
  }

  template <class T>
  void fill(ORVResult& block, const std::vector<Column>& columns, int layer, Values<T>& values) {
    bool is_incremental = false;
    if (values.state > 0 && is_stored(block, values.state, &is_incremental) && is_incremental) {
      build_map(block, values.state);
      values.data = fetch_merged<T>(path_, *filer_, block, columns, values.state, layer, values.ids);
      return;
    }
    values.data = fetch<T>(path_, *filer_, block, columns, values.state, layer);
    const std::size_t row = values.row_size();
    if (row == 0 || values.data.size() % row != 0) refuse(path_, block, values.state);
    values.ids = read_ids(path_, block, values.state, values.data.size() / row);
  }

  /// A filer has one map of states, made from one block.
  void build_map(ORVResult& block, int state) {
    if (block.IsComplexBlk()) {
      throw Error(path_, "holds changes of complex values, which are not put together", "write it with whole states",
                  block.GetBlkPath(), state);
    }
    if (mapped_ == block.GetBlkPath()) return;
    if (filer_->BuildGlobalIncrMap(block, 1, true) != 0) {
      throw Error(path_, "holds changes, and there is no telling what they build upon",
                  "its states must have one index column, with an identifier of their own each", block.GetBlkPath(),
                  state);
    }
    mapped_ = block.GetBlkPath();
  }

  /// The mesh is that of the state where it has one of its own.
  const PartMembers& members(int part, int state) {
    const auto known = members_.find({part, state});
    if (known != members_.end()) return known->second;
    std::vector<Elements> mesh = state > 0 ? read_all_elements(path_, state) : std::vector<Elements>();
    if (mesh.empty()) mesh = read_all_elements(path_, 0);
    return members_.emplace(std::pair(part, state), members_of(mesh, part)).first->second;
  }

  template <class T>
  void choose(const Selection& selection, int state, Values<T>& values) {
    if (selection.part == 0 && selection.ids.empty()) return;
    const PartMembers* part = selection.part == 0 ? nullptr : &members(selection.part, state);
    keep_rows(find_rows(values, selection.ids, part), values);
  }

  std::string path_;
  int states_ = 0;
  std::unique_ptr<ORVFiler> filer_;
  std::map<int, bool> learned_;                         ///< states whose results are known; 0 for all
  std::string mapped_;                                  ///< block that the filer's map of states was made from
  std::map<std::pair<int, int>, PartMembers> members_;  ///< by part and state
};

}  // namespace orv::detail
