#pragma once

// Datasets that a filer holds in memory for blocks.

#include <string>
#include <vector>

class ORVResult;
struct ORVContainer;

namespace orvio {

/// Holds datasets of a block, listed or not; see ORVResult::CacheData.
[[nodiscard]] int CacheDatasets(ORVContainer& container, ORVResult& block, int state, std::vector<std::string>* names,
                                bool to_float);

/// Frees all that is held. No block and no copy of one keeps a way to it.
void DropCachedData(ORVContainer& container);

}  // namespace orvio
