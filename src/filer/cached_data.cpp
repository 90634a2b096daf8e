// Datasets that a filer holds in memory for blocks. The filer owns the buffers and blocks point at them, so it remembers
// whom it has given one: its own blocks go with it, but copies and blocks of the host stay.

#include "filer/cached_data.h"

#include <algorithm>

#include "block/reader_lease.h"
#include "filer/container.h"
#include "orvio/orv_result.h"

namespace orvio {
namespace {

/// Adds the map of a block to those remembered, once.
void Remember(std::vector<std::weak_ptr<ORVContainer::CacheMap>>& maps, const ORVBlock& block) {
  const auto map = ORVBlockAccess::CacheMap(block);
  const auto is_same = [&](const auto& known) { return known.lock() == map; };
  if (map && std::ranges::none_of(maps, is_same)) maps.push_back(map);
}

}  // namespace

int CacheDatasets(ORVContainer& container, ORVResult& block, int state, std::vector<std::string>* names,
                  bool to_float) {
  if (!container.buffers) container.buffers = std::make_unique<ORVBufferManager>();
  auto& maps = container.cache_maps;
  std::erase_if(maps, [](const auto& map) { return map.expired(); });
  if (maps.size() == maps.capacity()) maps.reserve(2 * maps.size() + 8);  // before there is anything to remember
  const int status = block.CacheData(*container.buffers, container.path.c_str(), state, to_float, names);
  Remember(maps, block);
  return status;
}

void DropCachedData(ORVContainer& container) {
  for (const auto& known : container.cache_maps) {
    if (const auto map = known.lock()) map->clear();
  }
  container.cache_maps.clear();
  for (auto* list : {&container.single_results, &container.multi_results}) {
    for (ORVResult* block : *list) block->ClearCacheMap();
  }
  if (container.buffers) container.buffers->Clear();
}

}  // namespace orvio
