// What a filer learns from states beyond the first: UpdateContainer.

#include <vector>

#include "filer/container.h"
#include "filer/later_states.h"
#include "filer/start_up.h"
#include "h5/entry.h"
#include "h5/file_in_use.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "variable/association.h"

using namespace orvio;

int ORVFiler::UpdateContainer(int state, int& added, int nextId, int mode) {
  constexpr int kToTheEnd = 1;  // mode
  added = 0;
  if (!m_pData || state == 1) return kOk;
  return h5::WholeEntry(kFail, [&] {
    int next_id = nextId == -1 ? NextHandleId(m_pData->ext_vars) : nextId;
    const h5::FileInUse known(m_pData->path.c_str());
    LaterResults later(*m_pData);
    const auto [first, last] = later.States(state, mode == kToTheEnd);
    std::vector<ORVResult*> taken;
    for (int s = first; s <= last; ++s) {
      if (later.Take(s, taken, added) != kOk) return kFail;
      (void)AssociateVariables(taken, next_id, kServesSingleState);  // always 0
    }
    return kOk;
  });
}
