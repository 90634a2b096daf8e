// The names of the index columns, from where a file has them.

#include "entity/index_types.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "filer/messages.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_definitions.h"
#include "orvio/orv_variable_grp.h"

namespace orvio {
namespace {

constexpr std::int64_t kMostNameBytes = std::int64_t{64} << 20;  // no file has columns by the hundred thousand
constexpr char kUnreadable[] = "Unable to read post->constant->indicies block";
constexpr char kIndexGroup[] = "INDEX";

char* Column(ORVSimulationType& types, std::int64_t index) {
  return types.m_pEtypindex + static_cast<std::size_t>(index) * disk::kTextWidth;
}

void SetName(ORVSimulationType& types, std::int64_t index, std::string_view name) {
  AssignField(Column(types, index), disk::kTextWidth, name);
}

/// The byte behind the last name ends it where a reader takes the names for one text.
bool AllocateNames(ORVSimulationType& types) {
  constexpr auto kWidth = static_cast<std::int64_t>(disk::kTextWidth);
  if (types.m_nindex > (kMostNameBytes - 1) / kWidth) return false;
  const auto bytes = static_cast<std::size_t>(types.m_nindex * kWidth + 1);
  types.m_pEtypindex = static_cast<char*>(std::calloc(bytes, 1));
  return types.m_pEtypindex != nullptr;
}

const ORVVariableGrp* FindGroup(const std::vector<ORVVariableGrp*>& groups, std::string_view name) {
  const auto found = std::ranges::find_if(groups, [&](const ORVVariableGrp* group) {
    return EqualIgnoringCase(Content(group->m_grpName, sizeof group->m_grpName), name);
  });
  return found == groups.end() ? nullptr : *found;
}

void TakeNamesOf(const ORVVariableGrp& group, ORVSimulationType& types) {
  const auto& variables = group.GetVariables();
  const auto count = std::min(static_cast<std::int64_t>(variables.size()), types.m_nindex);
  for (std::int64_t i = 0; i < count; ++i) {
    SetName(types, i, Content(variables[static_cast<std::size_t>(i)]->m_varnam));
  }
}

void TakeDefaults(ORVSimulationType& types) {
  SendMessage(ORV_MESG_ERROR, "Unable to locate \"%s\" variable referred in post->constant->indicies block",
              types.m_etypvar);
  SendMessage(ORV_MESG_WARNING, "Assigning default index types (Time, UNKNOWN_1.....)");
  SetName(types, 0, "TIME");
  for (std::int64_t i = 1; i < types.m_nindex; ++i) SetName(types, i, "UNKNOWN_" + std::to_string(i));
}

/// Where no group is named the names stand in the block itself, so a group "INDEX" stands in for a named one alone.
void NameColumns(const std::vector<ORVVariableGrp*>& groups, ORVSimulationType& types) {
  const std::string_view name = Content(types.m_etypvar, sizeof types.m_etypvar);
  if (name.empty()) return;
  const ORVVariableGrp* group = FindGroup(groups, name);
  if (!group) group = FindGroup(groups, kIndexGroup);
  if (group) return TakeNamesOf(*group, types);
  TakeDefaults(types);
}

}  // namespace

void FreeBuffers(ORVSimulationType& types) {
  std::free(types.m_pEtypindex);
  types.m_pEtypindex = nullptr;
}

int ReadIndexTypes(const char* file, const std::vector<ORVVariableGrp*>& groups, ORVSimulationType& types) {
  types.m_pEtypindex = nullptr;
  if (types.ReadBlock(file, 0, ORV_READ_HEADER) != kOk) {
    SendMessage(ORV_MESG_ERROR, kUnreadable);
    return kFail;
  }
  if (types.m_nindex < 1) {
    SendMessage(ORV_MESG_ERROR, "invalid index count in post->constant->indicies block");
    return kFail;
  }
  const bool named = AllocateNames(types) && types.ReadBlock(file, 0, ORV_READ_DATA) == kOk && h5::Entry(false, [&] {
                       NameColumns(groups, types);
                       return true;
                     });
  if (named) return kOk;
  SendMessage(ORV_MESG_ERROR, kUnreadable);
  FreeBuffers(types);
  return kFail;
}

}  // namespace orvio
