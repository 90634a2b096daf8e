#include "reading/quantity_search.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>

#include "reading/file_model.h"
#include "reading/units.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr int kAnyType = -1;

void AppendBlocksOf(ORVFiler& filer, const ORVExtVar& handle, int flags, std::vector<ORVResult*>& blocks) {
  std::vector<_ORVEntityType> any_entity;
  std::vector<int> any_base;
  std::vector<int> ids = {handle.GetIID()};
  filer.GetResultBlksFrmCmp(any_entity, any_base, ids, blocks, kAnyType, flags);
}

/// The stored components that a handle stands for, in order.
void AppendStored(ORVFiler& filer, const ORVExtVar& handle, std::vector<const ORVExtVar*>& stored) {
  if (handle.GeIndex() != -1) return stored.push_back(&handle);
  for (const ORVDependentVar* dependent : handle.GetDependent()) {
    for (const int iid : dependent->m_iids) {
      const ORVExtVar* input = filer.GetExtVariable(iid, true);
      if (input && input->GeIndex() != -1) stored.push_back(input);
    }
  }
}

/// Labels of a variable's components; numbers where it has none.
std::vector<ComponentColumn> ColumnsOfVariable(ORVFiler& filer, ORVVariable& variable, std::size_t first_number) {
  const VariableInfo info = DescribeVariable(filer, variable);
  std::vector<ComponentColumn> columns;
  for (const ORVExtVar* handle : variable.m_extVars) {
    if (handle->GeIndex() == -1) continue;
    const std::size_t place = columns.size();
    std::string label = place < info.components.size() ? info.components[place] : "";
    if (label.empty()) label = fmt::format("C{}", first_number + place);
    columns.push_back({std::move(label), UnitOf(*handle), handle->GetIID()});
  }
  return columns;
}

std::vector<ComponentColumn> AllColumnsOf(ORVFiler& filer, const ORVResult& block, const std::string& name) {
  if (block.m_variable) return ColumnsOfVariable(filer, *block.m_variable, 1);
  std::vector<ComponentColumn> columns;
  if (!block.m_variableGrp) return columns;
  const bool is_group = SameWord(TextOf(block.m_variableGrp->m_grpName, sizeof block.m_variableGrp->m_grpName), name);
  for (ORVVariable* variable : block.m_variableGrp->m_variables) {
    const bool is_named = SameWord(TextOf(variable->m_varkey), name) || SameWord(TextOf(variable->m_varnam), name);
    if (!is_group && !is_named) continue;
    const std::vector<ComponentColumn> more = ColumnsOfVariable(filer, *variable, columns.size() + 1);
    columns.insert(columns.end(), more.begin(), more.end());
  }
  return columns;
}

/// In order, each once.
std::vector<std::string> WithoutTwins(std::vector<std::string> names) {
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

/// A column by its label or its 1-based number.
ComponentColumn ChooseColumn(const ResultFile& file, const ValueRequest& request,
                             const std::vector<ComponentColumn>& columns) {
  const auto found =
      std::ranges::find_if(columns, [&](const ComponentColumn& c) { return SameWord(c.label, request.component); });
  if (found != columns.end()) return *found;
  const bool is_number = std::ranges::all_of(request.component, [](unsigned char c) { return std::isdigit(c) != 0; });
  const long number = is_number && request.component.size() < 10 ? std::stol(request.component) : 0;
  if (number >= 1 && static_cast<std::size_t>(number) <= columns.size()) {
    return columns[static_cast<std::size_t>(number - 1)];
  }
  std::vector<std::string> labels;
  std::ranges::transform(columns, std::back_inserter(labels), &ComponentColumn::label);
  throw Trouble(file.path(),
                fmt::format("\"{}\" has no component \"{}\"{}", request.variable, request.component,
                            DidYouMean(request.component, labels)),
                fmt::format("its components are {}", fmt::join(labels, ", ")));
}

}  // namespace

std::string FoundQuantity::NameIn(const ORVResult& block) const {
  return handle ? std::string(handle->GetName()) : TextOf(block.m_etypvar);
}

FoundQuantity FindQuantity(ResultFile& file, const std::string& name, ResultList list) {
  const int flags = static_cast<int>(list);
  FoundQuantity quantity;
  std::vector<const char*> names = {name.c_str()};
  file.filer().GetResultBlks(names, quantity.blocks, kAnyType, flags, false);
  std::vector<ORVResult*> by_name;
  file.filer().GetResultBlks(names, by_name, kAnyType, flags, true);
  for (ORVResult* block : by_name) {
    if (std::ranges::find(quantity.blocks, block) == quantity.blocks.end()) quantity.blocks.push_back(block);
  }
  if (!quantity.blocks.empty()) return quantity;
  // A name that stands in both lists has a handle for each.
  for (const ORVExtVar* handle : file.filer().GetExtVariables()) {
    if (!SameWord(handle->GetName(), name)) continue;
    quantity.handle = handle;
    AppendBlocksOf(file.filer(), *handle, flags, quantity.blocks);
    if (!quantity.blocks.empty()) break;
  }
  return quantity;
}

std::vector<std::string> QuantityNames(ResultFile& file) {
  std::vector<std::string> names;
  for (const int list : {1, 0}) {
    for (const ORVResult* block : file.filer().GetResultList(list)) {
      names.push_back(TextOf(block->m_etypvar));
      if (block->m_variable) names.push_back(TextOf(block->m_variable->m_varnam));
    }
  }
  for (const ORVExtVar* handle : file.filer().GetExtVariables()) names.emplace_back(handle->GetName());
  return WithoutTwins(std::move(names));
}

std::vector<std::string> EntityNames(ResultFile& file) {
  std::vector<std::string> names;
  for (const int list : {1, 0}) {
    for (const ORVResult* block : file.filer().GetResultList(list)) names.push_back(TextOf(block->m_etyp));
  }
  return WithoutTwins(std::move(names));
}

std::string SuggestionFor(ResultFile& file, const ValueRequest& request) {
  const auto suggestion = [](const std::string& word, const std::vector<std::string>& known) {
    const bool is_known = std::ranges::any_of(known, [&](const std::string& name) { return SameWord(name, word); });
    return is_known ? std::string() : DidYouMean(word, known);
  };
  const std::string variable = suggestion(request.variable, QuantityNames(file));
  return variable.empty() ? suggestion(request.entity, EntityNames(file)) : variable;
}

void CheckDefinition(ResultFile& file, const std::string& name) {
  for (const ORVResult* block : file.filer().GetResultList(1)) {
    if (block->m_variable || block->m_variableGrp || !SameWord(TextOf(block->m_etypvar), name)) continue;
    throw Trouble(file.path(),
                  fmt::format("the values of \"{}\" are not defined: the file has no variable of that name", name),
                  "write the file again with its variables");
  }
}

FoundQuantity FindBlocks(ResultFile& file, const ValueRequest& request, ResultList list) {
  FoundQuantity quantity = FindQuantity(file, request.variable, list);
  std::erase_if(quantity.blocks, [&](const ORVResult* block) {
    return !request.entity.empty() && !SameWord(TextOf(block->m_etyp), request.entity);
  });
  return quantity;
}

void CheckComponent(ResultFile& file, const ValueRequest& request, ResultList list) {
  const FoundQuantity quantity = FindBlocks(file, request, list);
  for (const ORVResult* block : quantity.blocks) (void)ColumnsOf(file, request, quantity, *block);
}

std::vector<ComponentColumn> ColumnsOf(ResultFile& file, const ValueRequest& request, const FoundQuantity& quantity,
                                       const ORVResult& block) {
  if (quantity.handle) {
    std::vector<const ORVExtVar*> stored;
    AppendStored(file.filer(), *quantity.handle, stored);
    std::vector<ComponentColumn> columns;
    columns.reserve(stored.size());
    for (const ORVExtVar* handle : stored) columns.push_back({handle->GetName(), UnitOf(*handle), handle->GetIID()});
    return request.component.empty() ? columns : std::vector{ChooseColumn(file, request, columns)};
  }
  const std::vector<ComponentColumn> columns = AllColumnsOf(file.filer(), block, request.variable);
  return request.component.empty() ? columns : std::vector{ChooseColumn(file, request, columns)};
}

}  // namespace orvio::program
