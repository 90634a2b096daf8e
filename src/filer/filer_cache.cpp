// Datasets held in memory: CacheData reads those of a block, ClearCacheData frees them all.

#include "filer/cached_data.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"

using namespace orvio;

int ORVFiler::CacheData(ORVResult* result, int state, std::vector<std::string>* names, bool toFloat) {
  if (!result || !m_pData) return kFail;
  return h5::Entry(kFail, [&] { return CacheDatasets(*m_pData, *result, state, names, toFloat); });
}

void ORVFiler::ClearCacheData(int /*flags*/) {
  if (m_pData) h5::EntryVoid([&] { DropCachedData(*m_pData); });
}
