// What the components of a result are, from the variable that is associated with the block.

#include <algorithm>
#include <iterator>

#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/result_definition.h"
#include "variable/variable_type.h"

using namespace orvio;

namespace {

constexpr int kNone = -1;

// Measures that stand for a whole value, and for single entries of a tensor.
constexpr int kScalar = 0, kVector = 50, kThreeComponents = 51, kSixComponents = 55;

/// External ids and measures of the handles of a block, in parallel.
struct TypeLists {
  explicit TypeLists(const ORVResult& block) { ResultDefinition(block).AppendTypes(eids, types); }

  /// Position of an external id; kNone when there is none.
  int PositionOf(int eid) const {
    const auto found = std::ranges::find(eids, eid);
    return found == eids.end() ? kNone : static_cast<int>(found - eids.begin());
  }

  std::vector<int> eids;
  std::vector<int> types;
};

int EntryAt(const std::vector<int>& list, int index) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size() ? list[static_cast<std::size_t>(index)] : kNone;
}

}  // namespace

int ORVResult::GetResultTypeFromIndex(int index) {
  return h5::Entry(kNone, [&] { return EntryAt(TypeLists(*this).eids, index); });
}

int ORVResult::GetComponentTypeFromIndex(int index) {
  return h5::Entry(kNone, [&] { return EntryAt(TypeLists(*this).types, index); });
}

int ORVResult::GetComponentIndex(int type) {
  if (m_ncoo == 0) return kNone;
  return h5::Entry(kNone, [&] { return TypeLists(*this).PositionOf(type); });
}

namespace {

/// Component that the measure of a single tensor entry stands for; `position` for every other measure.
int ComponentOf(int measure, int position) {
  switch (measure) {
    case 72:
    case 73:
    case 76:
      return 0;
    case 74:
    case 77:
      return 1;
    case 75:
    case 78:
      return 2;
    default:
      return position;
  }
}

}  // namespace

int ORVResult::GetComponentType(int type, int* index) {
  int component = kNone;
  if (!index) index = &component;
  *index = kNone;
  if (m_ncoo == 0) return kNone;
  return h5::Entry(kNone, [&] {
    const ResultDefinition definition(*this);
    if (definition.VariableWithTables()) {
      const TypeLists lists(*this);
      const int position = lists.PositionOf(type);
      const int measure = EntryAt(lists.types, position);
      *index = ComponentOf(measure, position);
      return measure;
    }
    const ORVExtVar* handle = definition.FindHandle(type, false);
    if (!handle) return kNone;
    *index = std::max(handle->GeIndex(), 0);  // a computed component has none and answers the first
    return handle->GetType();
  });
}

int ORVResult::GetBlockComponentType(int index) {
  return h5::Entry(kNone, [&] {
    ORVVariable* variable = ResultDefinition(*this).VariableWithTables();
    if (!variable || m_ncoo < 1) return kNone;
    if (index != 0 && EntryAt(TypeLists(*this).types, index) == kNone) return kNone;
    _ORVVarType shape = ORV_VARTYPE_SCALAR;
    _ORVVarClassType var_class = ORV_VARCLASS_UNKNOWN;
    int count = 0;
    int offset = 0;
    if (variable->GetVariableInfo(shape, var_class, count, offset) != kOk) return kNone;
    if (shape == ORV_VARTYPE_SCALAR) return kScalar;
    if (shape == ORV_VARTYPE_VECTOR) return m_ncoo == 3 ? kVector : kNone;
    if (m_ncoo == 3) return kThreeComponents;
    return m_ncoo == 6 ? kSixComponents : kNone;
  });
}

int ORVResult::GetVariableType() { return FindVariableType(Content(m_variable ? m_variable->m_varnam : m_etypvar)); }

int ORVResult::GetVariableComputeTypeFrmIId(int id, bool byIID) {
  return h5::Entry(kNone, [&] {
    const ORVExtVar* handle = ResultDefinition(*this).FindHandle(id, byIID);
    return handle ? handle->GetType() : kNone;
  });
}

namespace {

/// Measures from `first` to `last`, how many components they are computed from and how many values they give.
struct MeasureRow {
  int first;
  int last;
  int components;
  int values;
};

constexpr MeasureRow kMeasures[] = {
    {50, 54, 3, 3}, {55, 62, 6, 6}, {63, 64, 6, 3}, {65, 66, 6, 6}, {67, 67, 3, 3}, {71, 71, 3, 3},
};

/// Null for a measure that is none of a whole value.
const MeasureRow* FindMeasure(int measure) {
  const auto* row = std::ranges::find_if(kMeasures, [measure](const MeasureRow& candidate) {
    return candidate.first <= measure && measure <= candidate.last;
  });
  return row == std::end(kMeasures) ? nullptr : row;
}

}  // namespace

int ORVResult::GetNumCompForCompution(_ORVComputeType computeType, int& nCmp) {
  const MeasureRow* row = FindMeasure(computeType);
  nCmp = row ? row->components : 0;
  return row ? row->values : 0;
}

int ORVResult::GetResultTypeToReadAllComponent(int type, _ORVComputeType& computeType, int& nCmp, int& outType) {
  outType = type;
  nCmp = 1;
  computeType = static_cast<_ORVComputeType>(kScalar);
  return h5::Entry(kFail, [&] {
    const TypeLists lists(*this);
    const int first = lists.PositionOf(type);
    if (first == kNone) return kFail;
    nCmp = 0;
    for (auto i = static_cast<std::size_t>(first); i < lists.types.size(); ++i) {
      const MeasureRow* row = FindMeasure(lists.types[i]);
      if (!row) continue;
      nCmp = row->components;
      computeType = static_cast<_ORVComputeType>(lists.types[i]);
      outType = EntryAt(lists.eids, first);
      return kOk;
    }
    return kFail;
  });
}
