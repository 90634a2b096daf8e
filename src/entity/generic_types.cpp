// Generic entity types: rows for them in the table of entity types, and the ways between them and the element types
// that belong to them. How they are found in a file is in generic_types_scan.cpp.

#include "entity/generic_types.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "entity/entity_type_names.h"
#include "filer/container.h"
#include "filer/messages.h"
#include "h5/text_field.h"

namespace orvio {
namespace {

constexpr std::string_view kNastran = "NASTRAN";

bool IsNastranFile(const ORVContainer& data) {
  return data.system && Content(data.system->m_solverName).find(kNastran) != std::string_view::npos;
}

/// Gives a name of NASTRAN the host's number of its element. False when the host has no row for that.
bool SharesRowOfElement(const std::string& name) {
  const std::optional<int> number = NastranEntityTypeFromName(name);
  if (!number) return false;
  const std::vector<ORVEntityTypeMap*> rows = FindEntityTypesByNumber(*number);
  return !rows.empty() && AppendEntityType(*number, rows.front()->m_appType, name);
}

bool HasBaseName(const ORVGenericEntityNameMap& generic, std::string_view name) {
  return std::ranges::any_of(generic.m_baseNames, [&](const char* base) { return EqualIgnoringCase(base, name); });
}

}  // namespace

int CreateGenericRows(const ORVContainer& data, AppTypeRange range) {
  const bool nastran = IsNastranFile(data);
  std::int64_t app_type = range.first;
  int used = 0;
  for (const ORVGenericEntityNameMap* generic : data.m_genericTypes) {
    const std::string& name = generic->m_genericName;
    if (FindEntityType(name) || (nastran && SharesRowOfElement(name))) continue;
    if (app_type > range.last) {
      SendMessage(ORV_MESG_WARNING,
                  "Generic entity type \"%s\" will not be available for post processing due to exhausted post entity "
                  "types",
                  name.c_str());
    } else if (AppendNumberedEntityType(static_cast<int>(app_type), name)) {
      ++app_type;
      ++used;
    } else {
      SendMessage(ORV_MESG_WARNING, "Unable to create entity map for generic entity type \"%s\"", name.c_str());
    }
  }
  return used;
}

ORVGenericEntityNameMap* FindGenericType(const ORVContainer& data, std::string_view generic) {
  const auto& list = data.m_genericTypes;
  const auto found =
      std::ranges::find_if(list, [&](auto* entry) { return EqualIgnoringCase(entry->m_genericName, generic); });
  return found == list.end() ? nullptr : *found;
}

GenericRow FindGenericRowOfBase(const ORVContainer& data, int base_app_type) {
  const std::vector<ORVEntityTypeMap*> bases = FindEntityTypesByAppType(base_app_type);
  for (const ORVGenericEntityNameMap* generic : data.m_genericTypes) {
    const bool holds = std::ranges::any_of(bases, [&](auto* base) { return HasBaseName(*generic, base->m_name); });
    const ORVEntityTypeMap* row = holds ? FindEntityType(generic->m_genericName) : nullptr;
    if (row) return {generic, row};
  }
  return {};
}

std::vector<const ORVEntityTypeMap*> RowsOfBaseNames(const ORVContainer& data, std::string_view generic) {
  std::vector<const ORVEntityTypeMap*> rows;
  const ORVGenericEntityNameMap* entry = FindGenericType(data, generic);
  if (!entry) return rows;
  for (const char* base : entry->m_baseNames) {
    const ORVEntityTypeMap* row = FindEntityType(base);
    if (row) rows.push_back(row);
  }
  return rows;
}

void ClearGenericTypes(ORVContainer& data) {
  for (ORVGenericEntityNameMap* generic : data.m_genericTypes) {
    for (char* base : generic->m_baseNames) std::free(base);
    delete generic;
  }
  data.m_genericTypes.clear();
}

}  // namespace orvio
