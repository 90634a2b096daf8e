// Results that the first state does not have.

#include "filer/later_states.h"

#include <algorithm>
#include <string>

#include "h5/text_field.h"
#include "orvio/oh5_reader.h"
#include "orvio/orv_result.h"
#include "result/result_discovery.h"

namespace orvio {
namespace {

bool AreTwins(const ORVResult& a, const ORVResult& b) {
  return a.GetKey() == b.GetKey() && a.m_zoneid == b.m_zoneid && EqualIgnoringCase(a.m_etyp, b.m_etyp) &&
         EqualIgnoringCase(a.m_etypvar, b.m_etypvar);
}

std::string RelativePathOf(ORVResult& block) {
  std::string path;
  (void)block.GetRelativePathFromResultGroup(path);  // a block without one has an empty one
  return path;
}

}  // namespace

std::vector<std::unique_ptr<ORVResult>> FindLaterResults(const ORVContainer& data, int state, int& added) {
  std::vector<ORVResult*> found;
  std::vector<std::unique_ptr<ORVResult>> owned, later;
  // What memory ran out for is left out, as is what cannot be read.
  (void)DiscoverResults(data.path.c_str(), state, ORV_RESULT_ENTITY, found);
  (void)DiscoverResults(data.path.c_str(), state, ORV_RESULT_ELEMENT, found);
  owned.resize(found.size());
  std::ranges::transform(found, owned.begin(), [](ORVResult* block) { return std::unique_ptr<ORVResult>(block); });
  for (auto& block : owned) {
    const std::string path = RelativePathOf(*block);
    bool has_twin = false, has_same = false;
    for (ORVResult* known : data.single_results) {
      if (!AreTwins(*known, *block)) continue;
      has_twin = true;
      has_same = has_same || RelativePathOf(*known) == path;
    }
    if (has_same) continue;
    if (!has_twin) ++added;
    later.push_back(std::move(block));
  }
  return later;
}

StateRange LaterStates(const ORVContainer& data, int state, bool to_the_end) {
  if (state >= 1 && !to_the_end) return {state, state};
  int states = 0;
  (void)ReadNumState(data.path.c_str(), &states);  // a file that cannot be opened has none
  return state < 1 ? StateRange{2, states} : StateRange{state, std::max(state, states)};
}

}  // namespace orvio
