#pragma once

/// What the variables of a filer are, and which components the values of a block are of.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

// The destructor of the library's class is not virtual; no object is deleted through it here.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The library's text of a unit.
struct ShownUnit : ORVVariableUnit {  // NOLINT(cppcoreguidelines-virtual-class-destructor): see above
  std::string text() {
    std::string shown;
    return ConstructUnitString(shown) ? shown : std::string();
  }
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

inline std::string unit_of(ORVFiler& filer, ORVVariable& variable, int component) {
  ShownUnit unit;
  filer.GetComponentUnit(&variable, component, unit);
  return unit.text();
}

/// Files up to version 1.2 have a field per label, later ones pack them.
inline std::string label_of(const ORVVariable& variable, std::int64_t i) {
  if (variable.m_subslen < 1) {
    return variable.m_pCname ? text_of(variable.m_pCname + static_cast<std::size_t>(i) * kFieldWidth) : "";
  }
  if (!variable.m_pSubscr || !variable.m_pSubscnt || !variable.m_pSubsoffs) return {};
  const std::int64_t offset = variable.m_pSubsoffs[i], length = variable.m_pSubscnt[i];
  if (offset < 0 || length < 0 || offset + length > variable.m_subslen) return {};
  return text_of(variable.m_pSubscr + offset, static_cast<std::size_t>(length));
}

inline Shape shape_of(ORVVariable& variable) {
  _ORVVarType type = ORV_VARTYPE_SCALAR;
  _ORVVarClassType variable_class = ORV_VARCLASS_UNKNOWN;
  int count = 0, offset = 0;
  if (variable.GetVariableInfo(type, variable_class, count, offset) != 0) return Shape::scalar;
  switch (type) {
    case ORV_VARTYPE_VECTOR:
      return Shape::vector;
    case ORV_VARTYPE_TENSOR:
      return Shape::tensor;
    case ORV_VARTYPE_PLANE_TENSOR:
      return Shape::plane_tensor;
    default:
      return Shape::scalar;
  }
}

inline Variable describe(ORVFiler& filer, ORVVariable& variable) {
  Variable described;
  described.name = text_of(variable.m_varnam);
  described.key = text_of(variable.m_varkey);
  described.quantity_class = text_of(variable.m_varclass);
  described.shape = shape_of(variable);
  for (int i = 0; i < variable.m_ncoo; ++i) {
    described.components.push_back({label_of(variable, i), unit_of(filer, variable, i)});
  }
  for (const ORVExtVar* handle : variable.m_extVars) {
    if (handle->GeIndex() == -1) described.computed.push_back(handle->GetName());
  }
  return described;
}

inline std::size_t parts_of(const ORVResult& block) { return block.IsComplexBlk() ? 2 : 1; }

inline std::size_t layers_of(const ORVResult& block) {
  return block.IsElementResult() && block.m_numl > 0 ? static_cast<std::size_t>(block.m_numl) : 1;
}

inline Result describe(const ORVResult& block) {
  Result result;
  result.variable = text_of(block.m_etypvar);
  result.entity = text_of(block.m_etyp);
  result.zone = zone_of(block);
  result.place = block.IsMultistateBlk() ? Place::over_states : block.IsConstantBlk() ? Place::constant : Place::states;
  result.on_elements = block.IsElementResult();
  result.is_complex = block.IsComplexBlk();
  result.components = block.m_ncoo > 0 ? static_cast<std::size_t>(block.m_ncoo) : 0;
  result.layers = layers_of(block);
  return result;
}

/// So many columns of an index. They are named by variables: those of a group, or in older files those of the same names.
inline std::vector<Component> index_columns(ORVFiler& filer, std::size_t count) {
  const ORVSimulationType* types = filer.GetIndexTypes();
  const ORVVariableGrp* group = types ? filer.GetVariableGroup(types->m_etypvar) : nullptr;
  std::vector<Component> columns;
  for (std::size_t i = 0; i < count; ++i) {
    const bool is_named = types && i < static_cast<std::size_t>(types->m_nindex);
    std::string name = is_named && types->m_pEtypindex ? text_of(types->m_pEtypindex + i * kFieldWidth) : "";
    if (name.empty()) name = "index " + std::to_string(i + 1);
    const bool is_member = group && i < group->m_variables.size();
    ORVVariable* variable = is_member ? group->m_variables[i] : filer.GetVariable(name.c_str());
    std::string unit = variable ? unit_of(filer, *variable, 0) : "";
    columns.push_back({std::move(name), std::move(unit)});
  }
  return columns;
}

/// A stored component of a block, and its place among those of the block, from 0.
struct Column {
  Component component;
  int place = -1;
};

/// Components without a label are numbered, from `first` on.
inline void append_columns(ORVFiler& filer, ORVVariable& variable, std::vector<Column>& columns) {
  const std::size_t first = columns.size();
  std::int64_t place = 0;
  for (const ORVExtVar* handle : variable.m_extVars) {
    if (handle->GeIndex() == -1 || place >= variable.m_ncoo) continue;
    std::string label = label_of(variable, place);
    if (label.empty()) label = "C" + std::to_string(first + static_cast<std::size_t>(place) + 1);
    columns.push_back({{std::move(label), unit_of(filer, variable, static_cast<int>(place))}, handle->GeIndex()});
    ++place;
  }
}

inline bool is_called(const ORVVariable& variable, const std::string& name) {
  return same_word(text_of(variable.m_varkey), name) || same_word(text_of(variable.m_varnam), name);
}

/// The components that a block holds of a variable, or of all of its group under the name of that.
inline std::vector<Column> columns_of(ORVFiler& filer, const ORVResult& block, const std::string& name) {
  std::vector<Column> columns;
  if (block.m_variable) append_columns(filer, *block.m_variable, columns);
  if (block.m_variable || !block.m_variableGrp) return columns;
  const bool is_group = same_word(text_of(block.m_variableGrp->m_grpName), name);
  for (ORVVariable* variable : block.m_variableGrp->m_variables) {
    if (is_group || is_called(*variable, name)) append_columns(filer, *variable, columns);
  }
  return columns;
}

/// The stored components that a handle stands for, in order.
inline std::vector<Column> columns_of(ORVFiler& filer, const ORVExtVar& handle) {
  const auto column = [](const ORVExtVar& stored) {
    return Column{{stored.GetName(), stored.GetUnit() ? stored.GetUnit()->GetUnitCStr() : ""}, stored.GeIndex()};
  };
  if (handle.GeIndex() != -1) return {column(handle)};
  std::vector<Column> columns;
  for (const ORVDependentVar* dependent : handle.GetDependent()) {
    for (const int iid : dependent->m_iids) {
      const ORVExtVar* input = filer.GetExtVariable(iid, true);
      if (input && input->GeIndex() != -1) columns.push_back(column(*input));
    }
  }
  return columns;
}

/// The name of the one variable whose components are all that a block holds, in their order, as a fetch by name wants
/// it; empty where there are more.
inline std::string only_variable(const ORVResult& block) {
  if (block.m_variable) return block.m_variable->m_ncoo == block.m_ncoo ? text_of(block.m_variable->m_varnam) : "";
  if (!block.m_variableGrp || block.m_variableGrp->m_variables.size() != 1) return {};
  const ORVVariable& variable = *block.m_variableGrp->m_variables.front();
  if (variable.m_ncoo != block.m_ncoo) return {};
  std::string key = text_of(variable.m_varkey);
  return key.empty() ? text_of(variable.m_varnam) : key;
}

/// What values of a block are called that were asked for by a name: a variable of several in the block by its own name.
inline std::string name_of(const ORVResult& block, const std::string& asked) {
  const ORVVariableGrp* group = block.m_variableGrp;
  if (group && group->m_variables.size() > 1 && !same_word(text_of(group->m_grpName), asked)) {
    for (const ORVVariable* variable : group->m_variables) {
      if (is_called(*variable, asked)) return text_of(variable->m_varnam);
    }
  }
  return text_of(block.m_etypvar);
}

}  // namespace orv::detail
