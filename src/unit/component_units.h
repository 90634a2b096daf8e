#pragma once

// The units of components: those that the file lists for a component of a variable, and the one object that a handle
// shows for them.

#include <cstddef>

class ORVVariable;
class ORVVariableUnit;
struct ORVContainer;

namespace orvio {

/// Appends the units of a component, from the tables of the container. Ids that the tables lack are dropped. A component
/// that the file lists without units marks `out` as dimensionless; nothing for one that the variable does not have.
void AppendComponentUnits(const ORVContainer& data, const ORVVariable& variable, int component, ORVVariableUnit& out);

/// Makes a unit for each handle, from the one at `first` in the container's list on, that has none: for one of a stored
/// component a new unit with the text of the component's units; a computed one shows that of its first input. Those of
/// components without units have none.
void AssignComponentUnits(ORVContainer& data, std::size_t first);

}  // namespace orvio
