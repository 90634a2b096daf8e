// What result blocks and the table of entity types have to do with each other.

#include "entity/entity_type_results.h"

#include <algorithm>

#include "entity/entity_type_table.h"
#include "filer/container.h"
#include "h5/text_field.h"
#include "orvio/orv_result.h"

namespace orvio {

void UpdateEntityTypes(const std::vector<ORVResult*>& results) {
  const ORVEntityTypeMap* row = nullptr;
  for (ORVResult* result : results) {
    if (!result) continue;
    const std::string_view name = Content(result->m_etyp);
    // Neighbours in a list are of one type as a rule.
    if (!row || !EqualIgnoringCase(name, row->m_name)) row = FindEntityType(name);
    if (!row) continue;
    result->m_entityType = static_cast<_ORVEntityType>(row->m_orvType);
    result->m_baseEntityType = row->m_appType;
  }
}

void UpdateFrameNames(ORVContainer& data) {
  std::vector<std::string>& names = data.m_frameEntityNames;
  if (data.single_results.empty()) return;
  for (const ORVResult* result : data.single_results) {
    const std::string_view frame = Content(result->m_etypframe);
    if (!frame.empty()) names.emplace_back(frame);
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
}

bool IsFrameName(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(names, [&](const std::string& frame) { return EqualIgnoringCase(frame, name); });
}

}  // namespace orvio
