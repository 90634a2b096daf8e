#pragma once

// What the variable that is associated with a result block tells about the components of its values.

#include <optional>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable_grp.h"

namespace orvio {

/// Consecutive components of a value.
struct ComponentRun {
  int count;
  int offset;

  bool FitsInto(std::int64_t components) const {
    return count > 0 && offset >= 0 && std::int64_t{count} + offset <= components;
  }
};

/// The answers of a block's association: of its variable, or else of its group. A block without one knows of no
/// component.
class ResultDefinition {
 public:
  explicit ResultDefinition(const ORVResult& block)
      : variable_(block.m_variable), group_(block.m_variable ? nullptr : block.m_variableGrp) {}

  /// Whether this is the definition of that identity: a variable's key, or name where it has none; the same of a member
  /// of a group; or the name of the group.
  bool HasIdentity(const char* identity) const;
  /// The components of the variable of that name; in a group, of the member with that identity.
  std::optional<ComponentRun> FindRun(const char* name) const;
  /// The handle with an internal id, or with an external one; null when there is none.
  ORVExtVar* FindHandle(int id, bool by_iid) const;
  ORVExtVar* FindHandle(const char* name) const;
  /// Appends external id and measure of each handle.
  void AppendTypes(std::vector<int>& eids, std::vector<int>& types) const;
  /// Adds the stored components of the variable of that name as inputs. False when there is none.
  bool FillDependent(const char* name, ORVDependentVar& dependent) const;
  /// The variable if it has the tables of its components, which hosts fill; else null.
  ORVVariable* VariableWithTables() const;

 private:
  ORVVariable* variable_;
  ORVVariableGrp* group_;
};

}  // namespace orvio
