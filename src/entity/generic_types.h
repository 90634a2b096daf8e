#pragma once

// The names that a file uses for families of elements, and the numbers they get.

#include <string>
#include <string_view>
#include <vector>

#include "entity/entity_type_table.h"
#include "orvio/orv_types.h"

struct ORVContainer;

namespace orvio {

/// State argument for all states.
inline constexpr int kAllStates = -1;

/// Adds the generic names of the connectivities of a state, or of all, to the list of a filer.
void UpdateGenericTypes(ORVContainer& data, int state);

/// The host's free numbers, both ends included.
struct AppTypeRange {
  int first, last;
};

/// Gives each generic name of a file a row in the table. The answer is how many of the host's numbers were used; a name
/// that finds none left is told to the host.
int CreateGenericRows(const ORVContainer& data, AppTypeRange range);

/// The entry of a generic name, without regard to case; null when there is none.
ORVGenericEntityNameMap* FindGenericType(const ORVContainer& data, std::string_view generic);

/// A generic name and its row.
struct GenericRow {
  const ORVGenericEntityNameMap* generic = nullptr;
  const ORVEntityTypeMap* row = nullptr;
};

/// The first generic name with a row that has a base name of this host's number; empty when there is none.
GenericRow FindGenericRowOfBase(const ORVContainer& data, int base_app_type);

/// The rows of the base names of a generic name, in their order.
std::vector<const ORVEntityTypeMap*> RowsOfBaseNames(const ORVContainer& data, std::string_view generic);

/// The element types of a state that the table lacks, each with the number of its shape.
std::vector<EntityTypeRow> FindUnknownElementTypes(const char* file, int state);

/// Frees the list of a filer.
void ClearGenericTypes(ORVContainer& data);

}  // namespace orvio
