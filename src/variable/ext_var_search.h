#pragma once

// The one search over handles of components.

#include <cstdint>
#include <memory>
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

/// Puts a handle into the list that owns it and into that of its variable.
ORVExtVar* AddHandle(std::unique_ptr<ORVExtVar> handle, std::vector<ORVExtVar*>& owner, ORVVariable& variable);

/// The handles of stored components from position `first` on, `count` positions long: in order of the position, for each
/// the first handle there. A position without one gives nothing.
std::vector<ORVExtVar*> StoredHandles(const std::vector<ORVExtVar*>& handles, int first, std::int64_t count);

/// The internal ids of these.
std::vector<int> StoredIids(const std::vector<ORVExtVar*>& handles, int first, std::int64_t count);

}  // namespace orvio
