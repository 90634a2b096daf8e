// The table of block keys.

#include "block/block_keys.h"

#include <algorithm>
#include <iterator>

#include "h5/disk_names.h"

namespace orvio {
namespace {

constexpr _OH5BlockKeyMap kBlockKeys[] = {
    {kSystemKey, disk::system_},
    {kSimulationTypeKey, disk::indices},
    {kVariableKey, disk::variables},  // "variable" in files of major version 2 and later
    {kVariableGroupKey, disk::variablegroup},
    {kTextKey, disk::text},
    {kPartKey, disk::parts},
    {kAttributeKey, disk::attributes},
    {kIdentifierKey, disk::identifiers},
    {kConnectivityKey, disk::connectivities},
    {kCollectorKey, disk::collector},
    {ORV_RESULT_PROPERTIES, ""},  // directly in the state or section group
    {ORV_RESULT_ENTITY, disk::entityresults},
    {ORV_RESULT_ENTITY_COMPLEX, disk::entityresults},
    {ORV_RESULT_MULTI_ENTITY, disk::multientityresults},
    {ORV_RESULT_MULTI_ENTITY_COMPLEX, disk::multientityresults},
    {ORV_RESULT_ELEMENT, disk::elementresults},
    {ORV_RESULT_ELEMENT_COMPLEX, disk::elementresults},
    {ORV_RESULT_MULTI_ELEMENT, disk::elementresults},
    {ORV_RESULT_MULTI_ELEMENT_COMPLEX, disk::elementresults},
    {kActivationKey, disk::activflags},
};

constexpr std::int64_t kConstantKeys[] = {kSystemKey, kSimulationTypeKey, kVariableKey, kVariableGroupKey};

/// 2150 has no type group, so no path can be formed for it; its section is fixed all the same.
constexpr std::int64_t kMultistateKeys[] = {ORV_RESULT_MULTI_ENTITY, ORV_RESULT_MULTI_ENTITY_COMPLEX,
                                            ORV_RESULT_MULTI_ELEMENT, ORV_RESULT_MULTI_ELEMENT_COMPLEX, 2150};

bool Holds(const auto& keys, std::int64_t key) { return std::ranges::find(keys, key) != std::end(keys); }

}  // namespace

const _OH5BlockKeyMap* FindBlockKey(std::int64_t key) {
  const auto* row = std::ranges::find(kBlockKeys, key, &_OH5BlockKeyMap::key);
  return row == std::end(kBlockKeys) ? nullptr : row;
}

const char* SectionOf(std::int64_t key, int state) {
  if (Holds(kConstantKeys, key)) return disk::constant;
  if (Holds(kMultistateKeys, key)) return disk::multistate;
  if (state == 0) return disk::constant;
  return state < 0 ? disk::multistate : disk::singlestate;
}

bool IsFixedToSection(std::int64_t key) { return Holds(kConstantKeys, key) || Holds(kMultistateKeys, key); }

}  // namespace orvio
