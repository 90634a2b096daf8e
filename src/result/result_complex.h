#pragma once

// Complex pairs that were read become one number each.

#include "orvio/orv_result.h"

namespace orvio {

/// What was selected of `res`; no blocks: of one value each.
struct ComplexSelection {
  int rank;
  const std::uint64_t* start;
  const std::uint64_t* count;
  const std::uint64_t* block = nullptr;
};

/// Whether the values that a selection read are to be converted.
bool IsConverted(const ORVResult& block, const ComplexSelection& selection);

/// Puts one number per pair into the front of `m_res`, as `m_complexOutput` asks. 1 for a selection that does not
/// hold both parts of every pair.
[[nodiscard]] int ConvertComplex(ORVResult& block, const ComplexSelection& selected);

}  // namespace orvio
