#pragma once

/// A filer after its start-up, and the way from a name to values.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "orvio/orv/detail/definitions.hpp"
#include "orvio/orv/detail/fetch.hpp"
#include "orvio/orv/detail/incremental.hpp"
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

/// Keeps a file open for the life of the scope.
class OpenFile {
 public:
  OpenFile(ORVFiler& filer, bool is_open_anyway) : filer_(is_open_anyway ? nullptr : &filer) {
    if (filer_) (void)filer_->KeepFileOpen(true);  // saves time, no more
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (filer_) (void)filer_->KeepFileOpen(false);
  }

 private:
  ORVFiler* filer_;
};

class Reader {
 public:
  static constexpr int kAllStates = -1;  ///< state of a block that holds all of them

  explicit Reader(std::string path) : path_(std::move(path)), states_(count_states()) {
    filer_ = std::make_unique<IndexFiler>(path_.c_str());
    if (!filer_->HasRootGroup("post")) {
      throw Error(path_, "is an HDF5 file without result data (no group /post)", "give a result file");
    }
    filer_->SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    start_up();
  }

  const std::string& path() const noexcept { return path_; }
  ORVFiler& filer() const noexcept { return *filer_; }
  int states() const noexcept { return states_; }

  void require_state(int state, int first = 0) const {
    if (state >= first && state <= states_) return;
    throw Error(path_, "has no state " + std::to_string(state), "it has " + std::to_string(states_), {}, state);
  }

  /// A state and its row of the index.
  State state(int number) const {
    const ORVIndexBase<int, double>* index = filer_->GetStateIndexDP(false);
    if (!index || number < 1 || number > index->GetNumState() || !index->GetIndexVals()) return {number, {}};
    const double* row = index->GetIndexVals() + static_cast<std::ptrdiff_t>(number - 1) * index->GetNumIndex();
    return {number, {row, row + index->GetNumIndex()}};
  }

  void refresh() {
    states_ = count_states();
    learned_.clear();
    chains_.clear();
    known_rows_ = {};
    members_.clear();
    start_up();
  }

  void keep_open(bool keep) {
    is_kept_open_ = keep;
    (void)filer_->KeepFileOpen(keep);  // a filer with a path answers 0
  }
  /// For a row of small reads.
  OpenFile open() { return {*filer_, is_kept_open_}; }

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

  /// Keeps the blocks of an entity type.
  static void keep_entity(const Selection& selection, std::vector<ORVResult*>& blocks) {
    const auto is_other = [&](const ORVResult* block) {
      return !selection.entity.empty() && !same_word(text_of(block->m_etyp), selection.entity);
    };
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(), is_other), blocks.end());
  }

  static bool has_layer(const ORVResult& block, int layer) {
    return layer <= 0 || static_cast<std::size_t>(layer) <= layers_of(block);
  }

  /// The stored components of a block that are asked for.
  std::vector<Column> columns(const Found& found, const ORVResult& block, const std::string& name,
                              const std::string& component) const {
    std::vector<Column> all = found.handle ? columns_of(*filer_, *found.handle) : columns_of(*filer_, block, name);
    if (all.empty()) fail_without_definition(name, block);
    if (component.empty()) return all;
    std::string names;
    for (Column& column : all) {
      if (same_word(column.component.name, component)) return {std::move(column)};
      names += (names.empty() ? "" : ", ") + column.component.name;
    }
    const std::size_t number = number_of(component);
    if (number >= 1 && number <= all.size()) return {std::move(all[number - 1])};
    throw Error(path_, "\"" + name + "\" has no component \"" + component + "\"", "its components are " + names);
  }

  /// What a block is, without values.
  template <class T>
  static Values<T> frame(const Found& found, const ORVResult& block, const std::string& name,
                         const std::vector<Column>& columns, const Selection& selection) {
    Values<T> values;
    values.variable = found.handle ? found.handle->GetName() : name_of(block, name);
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
    if (selection.layer < 0) throw Error(path_, "has no layers below 1", "0 takes all", {}, state);
    if (state > 1) learn(state);
    Found found = find(variable, ResultList::single_state);
    keep_entity(selection, found.blocks);
    std::vector<Values<T>> all;
    for (const ORVResult& block : stored_in(state, selection, found.blocks)) {
      const std::vector<Column> asked = columns(found, block, variable, selection.component);
      Values<T> values = frame<T>(found, block, variable, asked, selection);
      values.state = block.IsConstantBlk() ? 0 : state;
      values.is_double = is_double(block, values.state);
      fill(block, asked, selection, values);
      if (selection.part) keep_rows(find_rows(values, selection.ids, members(*selection.part, state)), values);
      if (!values.ids.empty()) all.push_back(std::move(values));
    }
    return all;
  }

  /// Whether the values of a block are stored as 64-bit floats.
  bool is_double(const ORVResult& stored, int state) const {
    ORVResult block = stored;
    std::vector<ORVResult*> blocks = {&block};
    return filer_->IsResultValueInDoublePrecision(blocks, state);
  }

  /// Rows of a few ids in a block, see KnownRows.
  std::vector<std::size_t> known_rows(const Source& from, const std::vector<std::int64_t>& ids) {
    return known_rows_.find(from, ids);
  }

  [[noreturn]] void fail_to_find(const std::string& variable, const Selection& selection, int state) {
    learn(0);
    for (const ORVResult* block : filer_->GetResultList(static_cast<int>(ResultList::single_state))) {
      const bool is_defined = block->m_variable || block->m_variableGrp;
      if (!is_defined && same_word(text_of(block->m_etypvar), variable)) fail_without_definition(variable, *block);
    }
    std::string what = "has no values of \"" + variable + "\"";
    if (!selection.entity.empty()) what += " of \"" + selection.entity + "\"";
    if (selection.layer > 0) what += " on layer " + std::to_string(selection.layer);
    if (selection.part) what += " on part " + std::to_string(*selection.part);
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
    const LibraryText text;
    int states = 0;
    if (ReadNumState(path_.c_str(), &states) == 0) return states;
    throw Error(path_, "cannot be opened: " + text.or_else("it is no HDF5 file, or may not be read"),
                "give a result file");
  }

  void start_up() {
    int next_id = 1;
    (void)filer_->InitReader(next_id);  // a file without results still has a mesh
    (void)filer_->ReadSystemBlock();    // and may tell of its origin
  }

  [[noreturn]] void fail_without_definition(const std::string& name, const ORVResult& block) const {
    throw Error(path_, "the values of \"" + name + "\" are not defined: the file has no variable of that name",
                "write the file again with its variables", block.GetBlkPath());
  }

  std::string names_hint() const {
    std::string names;
    for (const ORVResult* block : filer_->GetResultList(static_cast<int>(ResultList::single_state))) {
      const std::string quoted = "\"" + text_of(block->m_etypvar) + "\"";
      if (names.find(quoted) == std::string::npos) names += (names.empty() ? "" : ", ") + quoted;
    }
    return names.empty() ? "it has no values at all" : "it has " + names;
  }

  /// A block with its header as it stands in a state; nothing where that cannot be read.
  std::optional<ORVResult> stored_at(const ORVResult& listed, int state) const {
    ORVResult block = listed;
    block.m_numl = 0;  // of another state, unless the header has one
    if (block.ReadBlock(path_.c_str(), state, ORV_READ_HEADER) != 0 || !block.IsSinglestateBlk()) return std::nullopt;
    return block;
  }

  /// Of some blocks, those that have entities in a state, and the layer; the constant ones where there are none.
  std::vector<ORVResult> stored_in(int state, const Selection& selection, const std::vector<ORVResult*>& blocks) const {
    std::vector<ORVResult> constant, in_state;
    for (const ORVResult* block : blocks) {
      if (block->IsConstantBlk()) {
        constant.push_back(*block);
      } else if (state > 0) {
        std::optional<ORVResult> stored = stored_at(*block, state);
        if (stored && stored->m_nent > 0) in_state.push_back(*std::move(stored));
      }
    }
    std::vector<ORVResult>& all = in_state.empty() ? constant : in_state;
    const auto lacks_layer = [&](const ORVResult& block) { return !has_layer(block, selection.layer); };
    all.erase(std::remove_if(all.begin(), all.end(), lacks_layer), all.end());
    return std::move(all);
  }

  /// All entities of a block, or those that are asked for.
  template <class T>
  void fill(const ORVResult& block, const std::vector<Column>& columns, const Selection& selection, Values<T>& values) {
    if (values.state > 0 && block.IsIncremental()) {
      values = merged(block, columns, selection.layer, std::move(values));
    } else {
      const Source from{path_, *filer_, block, values.state};
      if (!selection.part && fill_few(from, columns, selection, values)) return;
      (void)fill_whole(from, columns, selection.layer, values);
    }
    if (!selection.part && !selection.ids.empty()) keep_rows(find_rows(values.ids, selection.ids), values);
  }

  /// False for entities without ids.
  template <class T>
  static bool fill_whole(const Source& from, const std::vector<Column>& columns, int layer, Values<T>& values) {
    values.data = fetch<T>(from, columns, {layer});
    Ids ids = read_ids(from);
    values.ids = std::move(ids.ids);
    return ids.are_stored;
  }

  /// False where a read of all is in order.
  template <class T>
  bool fill_few(const Source& from, const std::vector<Column>& columns, const Selection& selection, Values<T>& values) {
    const std::vector<std::size_t> rows = known_rows(from, selection.ids);
    if (rows.size() != selection.ids.size() || rows.empty()) return false;
    const std::size_t width = values.row_size();
    values.ids = selection.ids;
    values.data = Buffer<T>(rows.size() * width);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const Buffer<T> row = fetch<T>(from, columns, {selection.layer, rows[i], 1});
      std::copy_n(row.data(), width, values.data.data() + i * width);
    }
    return true;
  }

  /// Values of a state that holds changes, put together from those before it.
  template <class T>
  Values<T> merged(const ORVResult& block, const std::vector<Column>& columns, int layer, Values<T> frame) {
    const StateChain chain = chains_.find(path_, *filer_, block, frame.state);
    Merge<T> merge;
    for (std::size_t i = 0; i <= chain.changes.size(); ++i) {
      const int state = i == 0 ? chain.base : chain.changes[i - 1];
      const std::optional<ORVResult> stored = stored_at(block, state);
      if (!stored || (i == 0 && stored->m_nent < 1) || !has_layer(*stored, layer)) refuse(path_, block, state);
      if (stored->m_nent < 1) continue;
      Values<T> read = copy_of_frame(frame);
      read.is_complex = stored->IsComplexBlk();
      read.is_double = frame.is_double || is_double(*stored, state);
      read.layers = layer > 0 ? 1 : layers_of(*stored);
      const Source from{path_, *filer_, *stored, state};
      const bool has_ids = fill_whole(from, columns, layer, read);
      if (!has_ids || !(i == 0 ? merge.begin(std::move(read)) : merge.add(read))) refuse(path_, block, state);
    }
    return merge.take();
  }

  template <class T>
  static Values<T> copy_of_frame(const Values<T>& frame) {
    Values<T> copy;
    copy.variable = frame.variable;
    copy.entity = frame.entity;
    copy.zone = frame.zone;
    copy.state = frame.state;
    copy.on_elements = frame.on_elements;
    copy.components = frame.components;
    return copy;
  }

  /// The mesh is that of the state where it has one of its own.
  const PartMembers& members(std::int64_t part, int state) {
    const auto known = members_.find({part, state});
    if (known != members_.end()) return known->second;
    const std::vector<Elements> mesh = read_all_elements(path_, state);
    if (mesh.empty() && state > 0) return members(part, 0);
    constexpr std::size_t kMostKept = 16;
    if (members_.size() >= kMostKept) members_.clear();
    return members_.emplace(std::pair(part, state), members_of(mesh, part)).first->second;
  }

  std::string path_;
  int states_ = 0;
  bool is_kept_open_ = false;
  std::unique_ptr<IndexFiler> filer_;
  std::map<int, bool> learned_;  ///< states whose results are known; 0 for all
  StateChains chains_;
  KnownRows known_rows_;
  std::map<std::pair<std::int64_t, int>, PartMembers> members_;  ///< by part and state
};

}  // namespace orv::detail
