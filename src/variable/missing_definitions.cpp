// Definitions made from what refers to them.

#include "variable/missing_definitions.h"

#include <string>

#include "filer/messages.h"
#include "h5/entry.h"
#include "h5/text_field.h"
#include "orvio/orv_result.h"
#include "variable/variable_buffers.h"
#include "variable/variable_group_discovery.h"
#include "variable/variable_identity.h"
#include "variable/variable_tables.h"

namespace orvio {
namespace {

/// One component bears the name of the variable, several are numbered. A long name gives way to the number.
void NameComponents(ORVVariable& variable, const std::string& name) {
  const std::uint64_t components = ComponentsOf(variable);
  for (std::uint64_t i = 0; i < components; ++i) {
    char* field = variable.m_pCname + i * disk::kTextWidth;
    const std::string number = components == 1 ? "" : " (" + std::to_string(i + 1) + ")";
    AssignField(field, disk::kTextWidth, name.substr(0, disk::kTextWidth - 1 - number.size()) + number);
    variable.m_pCid[i] = static_cast<int>(i + 1);
  }
}

}  // namespace

std::unique_ptr<ORVVariable> CreateVariableForResult(ORVResult& result) {
  if (result.m_ncoo == 0) return nullptr;
  return h5::Entry(std::unique_ptr<ORVVariable>(), [&] {
    auto variable = std::make_unique<ORVVariable>();
    Assign(variable->m_varnam, Content(result.m_etypvar));
    Assign(variable->m_varkey, Content(result.m_etypvar));
    variable->m_ncoo = result.m_ncoo;
    variable->m_originalCount = static_cast<std::uint64_t>(result.m_ncoo);
    const std::string name(Content(variable->m_varnam));
    if (!AllocateBuffers(*variable)) return std::unique_ptr<ORVVariable>();
    NameComponents(*variable, name);
    result.m_variable = variable.get();
    SendVariableMessage(ORV_MESG_WARNING, "New variable type \"%.256s\" created for entity type \"%.256s\"",
                        result.m_etypvar, result.m_etyp);
    return variable;
  });
}

std::unique_ptr<ORVVariableGrp> CreateGroupForVariable(ORVVariable& variable) {
  if (variable.m_ncoo == 0) return nullptr;
  return h5::Entry(std::unique_ptr<ORVVariableGrp>(), [&] {
    auto group = std::make_unique<ORVVariableGrp>();
    const std::string identity(IdentityOf(variable));
    Assign(group->m_grpName, identity);
    group->m_nvar = 1;
    group->m_ncoo = static_cast<std::int64_t>(variable.m_originalCount);
    group->m_variables.push_back(&variable);
    if (!AllocateBuffers(*group)) return std::unique_ptr<ORVVariableGrp>();
    group->m_pCnt[0] = static_cast<int>(variable.m_originalCount);
    group->m_pOffs[0] = 0;
    AssignField(group->m_pKeys, disk::kTextWidth, identity);
    SendVariableMessage(ORV_MESG_WARNING, "New variable Group \"%.256s\" created", group->m_grpName);
    return group;
  });
}

}  // namespace orvio
