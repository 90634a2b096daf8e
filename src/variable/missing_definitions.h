#pragma once

// Definitions for what a file lacks. No operation of the library makes them: association only tells what is missing.

#include <memory>

#include "orvio/orv_variable_grp.h"

class ORVResult;

namespace orvio {

/// A variable that describes a result and bears its name, which is also its key; the result is bound to it. Null for a
/// result without components. FreeBuffers frees its tables.
std::unique_ptr<ORVVariable> CreateVariableForResult(ORVResult& result);

/// A group that holds one variable. Null for a variable without components. FreeBuffers frees its arrays.
std::unique_ptr<ORVVariableGrp> CreateGroupForVariable(ORVVariable& variable);

}  // namespace orvio
