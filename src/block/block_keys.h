#pragma once

// Block keys, their type groups and the sections of a file.

#include <string>

#include "orvio/orv_types.h"

namespace orvio {

inline constexpr std::int64_t kNoKey = -1;
inline constexpr std::int64_t kSystemKey = 10;
inline constexpr std::int64_t kSimulationTypeKey = 20;
inline constexpr std::int64_t kVariableKey = 30;
inline constexpr std::int64_t kVariableGroupKey = 32;
inline constexpr std::int64_t kTextKey = 40;
inline constexpr std::int64_t kPartKey = 100;
inline constexpr std::int64_t kAttributeKey = 200;
inline constexpr std::int64_t kIdentifierKey = 250;
inline constexpr std::int64_t kConnectivityKey = 300;
inline constexpr std::int64_t kCollectorKey = 400;
inline constexpr std::int64_t kActivationKey = 2100;

/// Row of a key; null when the key has no type group.
const _OH5BlockKeyMap* FindBlockKey(std::int64_t key);

/// "constant", "multistate" or "singlestate" for a key and a state argument. Some keys are fixed to one section.
const char* SectionOf(std::int64_t key, int state);

/// Whether a key lies in one section whatever the state.
bool IsFixedToSection(std::int64_t key);

}  // namespace orvio
