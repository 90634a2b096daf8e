// Selection records.

#include "result/hyper_slab.h"

#include "h5/extents.h"

namespace orvio {

void PointAtOwnArrays(ORVHyperSlab& slab) {
  slab.m_pStart = slab.m_start;
  slab.m_pCount = slab.m_count;
}

std::uint64_t CountOf(const ORVHyperSlab& slab) {
  const bool complete = slab.m_pStart && slab.m_pCount && !slab.m_pStride && !slab.m_pBlock;
  if (!complete || slab.m_rank < 1 || slab.m_rank > kSlabRank) return 0;
  return h5::Product(slab.m_rank, slab.m_pCount).value_or(0);
}

}  // namespace orvio
