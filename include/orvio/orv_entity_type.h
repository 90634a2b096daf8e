#pragma once

/// The table that joins entity type names ("NODE", "SHELL"), the library's numbers for them and those of the host.

#include <string>
#include <vector>

#include "orvio/orv_types.h"

/// One row of the table.
struct ORVEntityTypeMap {
  int m_orvType;  ///< the library's number
  int m_appType;  ///< the host's number
  char* m_name;   ///< entity type name, owned by the table
};

/// A name that a file uses for a whole family of elements, and the element types under it.
struct ORVGenericEntityNameMap {
  std::string m_genericName;
  std::vector<char*> m_baseNames;  ///< distinct; owned by the filer, from the C allocator
};

extern "C" {
/// The row of a name, which is appended when there is none; a row once made never changes. `orvType` -1 asks for a new
/// number, from 2011 on. Null for a null name. The rows belong to the library and live as long as the process.
ORVIO_EXPORT ORVEntityTypeMap* ORVCheckAppendToEntityMap(int orvType, int appType, const char* name);
}
