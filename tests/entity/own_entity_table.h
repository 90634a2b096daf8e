#pragma once

// The table of entity types is one for the process: a test that looks at it brings one of its own.

#include <vector>

#include "entity/entity_type_table.h"
#include "filer/process_state.h"

namespace orv_test {

/// An empty table, as at the start of a process, for the life of the scope.
class OwnEntityTable {
 public:
  OwnEntityTable() : before_(orvio::process().g_entityTypeMap, nullptr) {}
  ~OwnEntityTable() {
    for (ORVEntityTypeMap* row : rows()) orvio::FreeEntityTypeRow()(row);
    delete orvio::process().g_entityTypeMap;
  }
  OwnEntityTable(const OwnEntityTable&) = delete;
  OwnEntityTable& operator=(const OwnEntityTable&) = delete;

  std::vector<ORVEntityTypeMap*> rows() const {
    const auto* table = orvio::process().g_entityTypeMap;
    return table ? *table : std::vector<ORVEntityTypeMap*>();
  }

 private:
  orvio::Swapped<std::vector<ORVEntityTypeMap*>*> before_;
};

}  // namespace orv_test
