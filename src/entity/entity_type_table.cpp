// The table of entity types. The host fills it, and what a file needs beyond that is added when its generic types are
// looked for. It outlives every filer, so a second file adds to the rows of the first.

#include "entity/entity_type_table.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/text_field.h"

namespace orvio {
namespace {

using Table = std::vector<ORVEntityTypeMap*>;

constexpr int kLastFixedNumber = 2010;  // automatic numbers follow
constexpr int kNoNumber = -1;

Table& Rows() {
  Table*& table = process().g_entityTypeMap;
  if (!table) table = new Table;
  return *table;
}

auto HasName(std::string_view name) {
  return [name](const ORVEntityTypeMap* row) { return EqualIgnoringCase(row->m_name, name); };
}

auto HasNumber(int orv_type) {
  return [orv_type](const ORVEntityTypeMap* row) { return row->m_orvType == orv_type; };
}

auto HasAppType(int app_type) {
  return [app_type](const ORVEntityTypeMap* row) { return row->m_appType == app_type; };
}

template <class Test>
ORVEntityTypeMap* First(Test test) {
  const auto row = std::ranges::find_if(Rows(), test);
  return row == Rows().end() ? nullptr : *row;
}

template <class Test>
Table All(Test test) {
  Table found;
  std::ranges::copy_if(Rows(), std::back_inserter(found), test);
  return found;
}

}  // namespace

ORVEntityTypeMap* FindEntityType(std::string_view name) { return First(HasName(name)); }

ORVEntityTypeMap* FindEntityTypeByNumber(int orv_type) { return First(HasNumber(orv_type)); }

ORVEntityTypeMap* FindEntityTypeByAppType(int app_type) { return First(HasAppType(app_type)); }

std::vector<ORVEntityTypeMap*> FindEntityTypes(std::string_view name) { return All(HasName(name)); }

std::vector<ORVEntityTypeMap*> FindEntityTypesByNumber(int orv_type) { return All(HasNumber(orv_type)); }

std::vector<ORVEntityTypeMap*> FindEntityTypesByAppType(int app_type) { return All(HasAppType(app_type)); }

int NextEntityTypeNumber() {
  int largest = kLastFixedNumber;
  for (const ORVEntityTypeMap* row : Rows()) largest = std::max(largest, row->m_orvType);
  return largest < INT_MAX ? largest + 1 : kNoNumber;
}

void FreeEntityTypeRow::operator()(ORVEntityTypeMap* row) const noexcept {
  std::free(row->m_name);
  delete row;
}

EntityTypeRow NewEntityTypeRow(int orv_type, int app_type, std::string_view name) {
  CArray<char> copy = CopyOfText(name);
  if (!copy) return nullptr;
  return EntityTypeRow(new ORVEntityTypeMap{orv_type, app_type, copy.release()});
}

CArray<char> CopyOfText(std::string_view text) {
  CArray<char> copy = ZeroedArray<char>(text.size() + 1);
  if (copy) std::ranges::copy(text, copy.get());
  return copy;
}

ORVEntityTypeMap* AppendEntityType(int orv_type, int app_type, std::string_view name) {
  EntityTypeRow row = NewEntityTypeRow(orv_type, app_type, name);
  if (!row) return nullptr;
  Rows().push_back(row.get());
  return row.release();
}

ORVEntityTypeMap* AppendNumberedEntityType(int app_type, std::string_view name) {
  const int number = NextEntityTypeNumber();
  return number == kNoNumber ? nullptr : AppendEntityType(number, app_type, name);
}

}  // namespace orvio

using namespace orvio;

ORVEntityTypeMap* ORVCheckAppendToEntityMap(int orvType, int appType, const char* name) {
  constexpr int kAutomatic = -1;
  if (!name) return nullptr;
  return h5::Entry<ORVEntityTypeMap*>(nullptr, [&] {
    ORVEntityTypeMap* row = FindEntityType(name);
    if (row) return row;
    return orvType == kAutomatic ? AppendNumberedEntityType(appType, name) : AppendEntityType(orvType, appType, name);
  });
}
