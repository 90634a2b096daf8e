// Properties of a filer: ReadProperty reads one block and ClearProperty frees its arrays; the forms of
// GetPropertiesBlocks answer or look up the list; GetPropertyValues reads the record of a type and name; HasSecureNode...
// ask for what secures nodes. How the list is read is in filer_start_up.cpp.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "filer/container.h"
#include "filer/file_facts.h"
#include "filer/start_up.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "result/properties_buffers.h"
#include "result/properties_values.h"
#include "result/result_lookup.h"

using namespace orvio;

namespace {

constexpr char kSecuredCoordinate[] = "COORDINATE";

using PropertiesList = std::vector<ORVProperties*>;

/// Blocks of an entity type and a name.
PropertiesList Named(const ORVContainer& data, std::string_view type, std::string_view name) {
  PropertiesList found;
  std::ranges::copy_if(data.properties, std::back_inserter(found), [&](const ORVProperties* block) {
    return EqualIgnoringCase(type, Content(block->m_etyp)) && EqualIgnoringCase(name, Content(block->m_etypvar));
  });
  return found;
}

}  // namespace

// ---- One block

int ORVFiler::ReadProperty(ORVProperties* block, int sections, int state) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] { return orvio::ReadProperty(*block, m_pData->path.c_str(), state, sections); });
}

void ORVFiler::ClearProperty(ORVProperties* block) {
  if (block) FreeBuffers(*block);
}

// ---- Lookup

std::vector<ORVProperties*>& ORVFiler::GetPropertiesBlocks(bool load) {
  PropertiesList& list = DataOf(m_pData).properties;
  if (m_pData && load && list.empty()) {
    int next_id = NextHandleId(m_pData->ext_vars);
    InitProperityBlockReading(next_id, false);
  }
  return list;
}

void ORVFiler::GetPropertiesBlocks(std::vector<ORVResult*>& out) {
  if (!m_pData) return;
  h5::EntryVoid([&] { out.insert(out.end(), m_pData->properties.begin(), m_pData->properties.end()); });
}

void ORVFiler::GetPropertiesBlocks(const char* typeName, const char* propertyName, std::vector<ORVProperties*>& out) {
  if (!m_pData || !typeName || !propertyName) return;
  h5::EntryVoid([&] {
    const PropertiesList found = Named(*m_pData, typeName, propertyName);
    out.insert(out.end(), found.begin(), found.end());
  });
}

void ORVFiler::GetPropertiesBlocksByName(std::vector<const char*>& typeNames, std::vector<const char*>& names,
                                         std::vector<ORVResult*>& out, int type) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    const ResultList list(m_pData->properties.begin(), m_pData->properties.end());
    // Blocks of this kind have no components.
    FindResults(list, {.kind = type, .type_names = typeNames, .names = names, .needs_components = false}, out);
  });
}

bool ORVFiler::HasSecureNodeProperty() { return m_pData && HasSecuredNode(m_pData->properties); }

bool ORVFiler::HasSecureNodeCoordinateProperty() {
  return h5::Entry(false, [&] {
    std::vector<const char*> types = {kSecuredNode}, names = {kSecuredCoordinate};
    std::vector<ORVResult*> found;
    GetPropertiesBlocksByName(types, names, found, kAnyKind);
    return !found.empty();
  });
}

// ---- Values

int ORVFiler::GetPropertyValues(int state, const char* typeName, const char* propertyName, int& nIds, int** ids,
                                int& nInts, int** ints, int& nFloats, float** floats) {
  nIds = nInts = nFloats = 0;
  for (int** array : {ids, ints}) {
    if (array) *array = nullptr;
  }
  if (floats) *floats = nullptr;
  if (!m_pData || !typeName || !propertyName) return kFail;
  return h5::Entry(kFail, [&] {
    const PropertiesList found = Named(*m_pData, typeName, propertyName);
    if (found.empty()) return kFail;
    PropertyValues values;
    const int status = ReadPropertyValues(*found.front(), m_pData->path.c_str(), state, values);
    if (status != kOk) return status;
    nIds = values.id_count;
    nInts = values.int_count;
    nFloats = values.float_count;
    if (ids) *ids = values.ids.release();
    if (ints) *ints = values.ints.release();
    if (floats) *floats = values.floats.release();
    return kOk;
  });
}
