// Forgetting what a result block holds, section by section. Nothing is freed: the buffers are the caller's.

#include "block/block_keys.h"
#include "h5/entry.h"
#include "h5/text_field.h"
#include "orvio/orv_result.h"

using namespace orvio;

namespace {

void ResetHeader(ORVResult& block) {
  block.SetBlockType(static_cast<int>(kNoKey));
  for (auto* text : {&block.m_etyp, &block.m_etypvar, &block.m_etypzone, &block.m_etypframe, &block.m_series,
                     &block.m_subBlockName}) {
    Assign(*text, "");
  }
  for (std::int64_t* count : {&block.m_nent, &block.m_ncoo, &block.m_fswitch, &block.m_dmpswitch, &block.m_nstate,
                              &block.m_numl, &block.m_zoneid, &block.m_ndim, &block.m_nindex}) {
    *count = 0;
  }
  block.m_entityType = static_cast<_ORVEntityType>(-1);
  block.m_baseEntityType = -1;
}

void ResetData(ORVResult& block) {
  block.m_fidType = ORV_INT;
  block.m_entidType = ORV_INT;
  block.m_elocType = ORV_FLOAT;
  block.m_resType = ORV_FLOAT;
  for (void** buffer : {&block.m_entid, &block.m_res, &block.m_fid, &block.m_eloc}) *buffer = nullptr;
  block.m_fidglob = 0;
  block.m_readIds = 0;
}

void ResetIndex(ORVResult& block) {
  block.m_indexidentType = ORV_INT;
  block.m_indexvalType = ORV_FLOAT;
  block.m_indexident = nullptr;
  block.m_indexval = nullptr;
}

constexpr int kEverything = -1;

}  // namespace

void ORVResult::ResetSection(int sections) {
  if (sections & ORV_READ_HEADER) {
    ResetHeader(*this);
    m_nIncremental = 0;
  }
  if (sections & ORV_READ_DATA) ResetData(*this);
  if (sections & ORV_READ_INDEX) ResetIndex(*this);
  if (sections != kEverything) return;
  // Reader, callback and position stay: a callback may reset the block of the walk that is running.
  m_BlkPath.clear();
  m_nCompressionFactor = -1;
  m_constantBlk = 0;
  m_spare0 = 0;
  m_variable = nullptr;
  m_variableGrp = nullptr;
  m_complexOutput = 0;
  m_spare1 = -1;
  m_spare2 = 0;
  m_fetchSkip = 1;
  m_linkCallBack = nullptr;
  m_location = ORV_RESULT_LOCATION_DEFAULT;
}
