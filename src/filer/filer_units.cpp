// The units of a file: GetUnitList.

#include "filer/container.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"

using namespace orvio;

void ORVFiler::GetUnitList(std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    base = m_pData->base_units;
    derived = m_pData->derived_units;
  });
}
