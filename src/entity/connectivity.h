#pragma once

// What the reading and the writing of element connectivity share.

#include <cstdint>

namespace orvio {

/// Value of `ORVEleConnectivity::m_ndim` for a block that does not store one.
inline constexpr std::int64_t kUnknownDim = -1;

}  // namespace orvio
