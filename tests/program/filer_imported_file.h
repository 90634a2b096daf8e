#pragma once

// An imported file as a post-processor sees it: through a filer, its lists, handles and fetches.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "program/imported_file.h"
#include "support/messages.h"

namespace orv_test {

/// Each fetch asks for a variable by its name, or for its components one by one by their handles.
class FilerImportedFile : public LibraryImportedFile {
 public:
  FilerImportedFile(const std::string& path, bool by_handle)
      : LibraryImportedFile(path), filer_(path.c_str()), by_handle_(by_handle) {
    const Messages messages;
    int next_id = 1, added = 0;
    Require(filer_.InitReader(next_id) == 0, "start-up");
    Require(filer_.UpdateContainer(0, added, -1, 0) == 0, "results of later states");
    for (const Message& message : messages.all()) Require(false, message.second);
  }

  int States() override { return static_cast<int>(filer_.GetStateIndexDP(false)->GetNumState()); }

  std::vector<std::string> ResultNames(int state) override {
    std::vector<std::string> names;
    for (const ORVResult* result : filer_.GetResultList(1)) {
      if (IsStored(*result, state)) names.emplace_back(result->m_etypvar);
    }
    return names;
  }

  NodalResult Result(int state, const std::string& name) override {
    std::vector<const char*> names = {name.c_str()};
    std::vector<ORVResult*> blocks;
    filer_.GetResultBlks(names, blocks, -1, 1, false);
    std::erase_if(blocks, [&](const ORVResult* block) { return !IsStored(*block, state); });
    Require(blocks.size() == 1, "the block of " + name);
    NodalResult result;
    result.components = blocks[0]->m_ncoo;
    result.is_complex = blocks[0]->IsComplexBlk();
    result.is_double = filer_.IsResultValueInDoublePrecision(blocks, state);
    by_handle_ ? FetchByHandle(state, blocks, result) : FetchByName(state, name, blocks, result);
    if (state > 0) IndexOf(state, result);
    return result;
  }

  std::vector<VariableDefinition> Variables() override {
    std::vector<VariableDefinition> all = LibraryImportedFile::Variables();
    constexpr std::size_t kIndexColumns = 2;
    Require(all.size() + kIndexColumns == filer_.GetVariables().size(), "all variables");
    return all;
  }

 private:
  using Values = ORVResultValuesBase<double, int>;

  bool IsStored(const ORVResult& result, int state) {
    if (result.IsConstantBlk() != (state == 0)) return false;
    ORVResult block = result;
    return block.ReadAttribute(filer_.GetFilePath(), state, ORV_READ_HEADER, ORV_ATT_NENT) == 0;
  }

  void FetchByName(int state, const std::string& name, std::vector<ORVResult*>& blocks, NodalResult& result) {
    Values values;
    values.m_state = state;
    values.m_wantIds = 1;
    Require(filer_.GetValues(values, blocks, -1, -1, name.c_str()) == 0, "values of " + name);
    result.ids.assign(values.m_ids, values.m_ids + values.m_idCount);
    result.values.assign(values.m_values, values.m_values + values.m_valueCount);
    values.DeleteAllocation(true);
  }

  void FetchByHandle(int state, std::vector<ORVResult*>& blocks, NodalResult& result) {
    std::vector<std::vector<double>> columns;
    ORVVariable& variable = VariableOf(*blocks[0]);
    for (const ORVExtVar* handle : variable.GetExtVariables()) {
      if (handle->GeIndex() == -1) continue;
      Values values;
      values.m_state = state;
      values.m_wantIds = 1;
      Require(filer_.GetValues(values, blocks, handle->GetIID(), -1, nullptr) == 0, "values of " + handle->GetName());
      result.ids.assign(values.m_ids, values.m_ids + values.m_idCount);
      columns.emplace_back(values.m_values, values.m_values + values.m_valueCount);
      values.DeleteAllocation(true);
    }
    const std::size_t parts = result.is_complex ? 2 : 1;
    for (std::size_t row = 0; row < result.ids.size(); ++row) {
      for (const std::vector<double>& column : columns) {
        for (std::size_t part = 0; part < parts; ++part) result.values.push_back(column.at(row * parts + part));
      }
    }
  }

  static ORVVariable& VariableOf(const ORVResult& block) {
    if (block.m_variable) return *block.m_variable;
    Require(block.m_variableGrp && block.m_variableGrp->GetVariables().size() == 1, "one variable");
    return *block.m_variableGrp->GetVariables()[0];
  }

  void IndexOf(int state, NodalResult& result) {
    const auto* index = filer_.GetStateIndexDP(false);
    const std::int64_t columns = index->GetNumIndex(), first = (state - 1) * columns;
    result.index.assign(index->GetIndexVals() + first, index->GetIndexVals() + first + columns);
    result.index_identifiers.assign(index->GetIndexIds() + first, index->GetIndexIds() + first + columns);
  }

  ORVFiler filer_;
  bool by_handle_;
};

}  // namespace orv_test
