#pragma once

// Which measures a host can compute from the components of a variable.

#include "orvio/orv_ext_var.h"

struct ORVContainer;

namespace orvio {

/// The built-in measures of a shape of variables and a class; null for none.
ORVExtVarType* FindBuiltInMeasures(_ORVVarType shape, _ORVVarClassType var_class);

/// The measures of a variable: what the host's handler answers, or without one the built-in ones.
ORVExtVarType* GetExtendedInfo(ORVFiler& filer, const ORVContainer& data, ORVResult* result, ORVVariable& variable,
                               _ORVVarType shape, _ORVVarClassType var_class);

}  // namespace orvio
