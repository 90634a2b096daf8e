#pragma once

// What the cache knows of the datasets it holds.

#include <climits>

#include "orvio/orv_block.h"
#include "orvio/orv_buffer.h"

namespace orvio {

inline constexpr int kMaxCachedRank = 8;  // room of ORVBuffer::m_dims

/// Bytes of an element in memory; 0 for a type that is not cached.
std::uint64_t ElementSize(_ORVDataType type);

/// State of a buffer that was read from the group of a state without a word on its number: it serves none.
inline constexpr int kUnknownState = INT_MAX;

/// Whether a buffer of a block holds what the dataset holds in a state. Blocks of the constant and the multi-state
/// section are the same for all states.
bool ServesState(const ORVBlock& block, const ORVBuffer& buffer, int state);

}  // namespace orvio
