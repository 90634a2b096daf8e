#pragma once

// The process-wide table of entity types.

#include <memory>
#include <string_view>
#include <vector>

#include "h5/c_array.h"
#include "orvio/orv_entity_type.h"

namespace orvio {

// Lookups stop at the first hit; null when there is none. Names compare without regard to case.
ORVEntityTypeMap* FindEntityType(std::string_view name);
ORVEntityTypeMap* FindEntityTypeByNumber(int orv_type);
ORVEntityTypeMap* FindEntityTypeByAppType(int app_type);

// The same for all rows that match, in the order of the table.
std::vector<ORVEntityTypeMap*> FindEntityTypes(std::string_view name);
std::vector<ORVEntityTypeMap*> FindEntityTypesByNumber(int orv_type);
std::vector<ORVEntityTypeMap*> FindEntityTypesByAppType(int app_type);

/// The number that the next automatic row gets: the one after the largest, at least 2011; -1 when there is none left.
int NextEntityTypeNumber();

/// Appends a row, which may have the name of one that is there. Null when memory runs out.
ORVEntityTypeMap* AppendEntityType(int orv_type, int app_type, std::string_view name);
/// The same with the next automatic number. Null also when there is none left.
ORVEntityTypeMap* AppendNumberedEntityType(int app_type, std::string_view name);

struct FreeEntityTypeRow {
  void operator()(ORVEntityTypeMap* row) const noexcept;
};
/// A row that is in no table.
using EntityTypeRow = std::unique_ptr<ORVEntityTypeMap, FreeEntityTypeRow>;
/// Null when memory runs out.
EntityTypeRow NewEntityTypeRow(int orv_type, int app_type, std::string_view name);

/// A terminated copy of the C allocator; null when memory runs out.
CArray<char> CopyOfText(std::string_view text);

}  // namespace orvio
