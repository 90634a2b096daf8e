// What a filer learns from states beyond the first: UpdateContainer.

#include "filer/container.h"
#include "filer/later_states.h"
#include "filer/start_up.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "variable/association.h"

using namespace orvio;

int ORVFiler::UpdateContainer(int state, int& added, int nextId, int mode) {
  constexpr int kToTheEnd = 1;  // mode
  added = 0;
  if (!m_pData || state == 1) return kOk;
  return h5::Entry(kFail, [&] {
    int next_id = nextId == -1 ? NextHandleId(m_pData->ext_vars) : nextId;
    const auto [first, last] = LaterStates(*m_pData, state, mode == kToTheEnd);
    for (std::int64_t s = first; s <= last; ++s) {
      auto later = FindLaterResults(*m_pData, static_cast<int>(s), added);
      std::vector<ORVResult*> blocks;
      blocks.reserve(later.size());
      m_pData->single_results.reserve(m_pData->single_results.size() + later.size());
      for (auto& block : later) blocks.push_back(block.get());
      for (auto& block : later) m_pData->single_results.push_back(block.release());
      (void)AssociateVariables(blocks, next_id, kServesSingleState);  // always 0
    }
    return kOk;
  });
}
