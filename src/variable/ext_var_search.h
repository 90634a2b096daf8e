#pragma once

// The one search over handles of components.

#include <string_view>
#include <vector>

#include "orvio/orv_ext_var.h"

namespace orvio {

/// What a handle is looked up by, besides its name.
enum class ExtVarKey { kIid, kEid, kIndex, kType };

/// Value of a key of a handle.
int KeyOf(const ORVExtVar& handle, ExtVarKey key);

/// The first match; null when there is none. Null entries are passed over.
ORVExtVar* FindExtVar(const std::vector<ORVExtVar*>& handles, ExtVarKey key, int value);

/// The same by name, without regard to case.
ORVExtVar* FindExtVar(const std::vector<ORVExtVar*>& handles, std::string_view name);

}  // namespace orvio
