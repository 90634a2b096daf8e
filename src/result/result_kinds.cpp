// The table of result kinds.

#include "result/result_kinds.h"

#include <algorithm>
#include <iterator>

#include "h5/disk_names.h"

namespace orvio {
namespace {

constexpr auto S = ORV_DIM_STATE, E = ORV_DIM_ENTITY, L = ORV_DIM_LAYER, C = ORV_DIM_COMPONENT, X = ORV_DIM_COMPLEX;

constexpr ResultKind kKinds[] = {
    {ORV_RESULT_PROPERTIES, nullptr, 2, {E, C}},
    {ORV_RESULT_ENTITY, disk::entityresults, 2, {E, C}},
    {ORV_RESULT_ENTITY_COMPLEX, disk::entityresults, 3, {E, C, X}},
    {ORV_RESULT_MULTI_ENTITY, disk::multientityresults, 3, {S, E, C}},
    {ORV_RESULT_MULTI_ENTITY_COMPLEX, disk::multientityresults, 4, {S, E, C, X}},
    {ORV_RESULT_ELEMENT, disk::elementresults, 3, {E, L, C}},
    {ORV_RESULT_ELEMENT_COMPLEX, disk::elementresults, 4, {E, L, C, X}},
    {ORV_RESULT_MULTI_ELEMENT, disk::multielementresults, 4, {S, E, L, C}},
    {ORV_RESULT_MULTI_ELEMENT_COMPLEX, disk::multielementresults, 5, {S, E, L, C, X}},
};

}  // namespace

int ResultKind::PositionOf(_ORVDimensionType axis) const {
  const auto all = Axes();
  const auto found = std::ranges::find(all, axis);
  return found == all.end() ? -1 : static_cast<int>(found - all.begin());
}

const ResultKind* FindResultKind(std::int64_t key) {
  const auto* row = std::ranges::find(kKinds, key, &ResultKind::key);
  return row == std::end(kKinds) ? nullptr : row;
}

std::uint64_t ExtentOf(const ORVResult& block, _ORVDimensionType axis) {
  switch (axis) {
    case ORV_DIM_ENTITY:
      return static_cast<std::uint64_t>(block.m_nent);
    case ORV_DIM_COMPONENT:
      return static_cast<std::uint64_t>(block.m_ncoo);
    case ORV_DIM_LAYER:
      return static_cast<std::uint64_t>(block.m_numl);
    case ORV_DIM_STATE:
      return static_cast<std::uint64_t>(block.m_nstate);
    case ORV_DIM_COMPLEX:
      return kComplexParts;
  }
  return 0;
}

const char* TypeName(const ResultKind& kind) { return kind.IsElement() ? disk::etypelem : disk::etyp; }

const char* CountName(const ResultKind& kind) { return kind.IsElement() ? disk::nele : disk::nent; }

const char* IdName(const ResultKind& kind) { return kind.IsElement() ? disk::idele : disk::entid; }

}  // namespace orvio
