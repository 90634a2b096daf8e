// Results that the first state does not have.

#include "filer/later_states.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string_view>
#include <utility>

#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_result.h"

namespace orvio {
namespace {

void AppendLowerCase(std::string& text, std::string_view word) {
  for (const unsigned char c : word) text += static_cast<char>(std::tolower(c));
}

/// What twins have in common: kind, zone, entity type and variable. A zero byte ends each part, as no part holds one.
std::string IdentityOf(const ORVResult& block) {
  std::string identity = std::to_string(block.GetKey());
  identity.append(1, '\0').append(std::to_string(block.m_zoneid)).append(1, '\0');
  AppendLowerCase(identity, Content(block.m_etyp));
  identity.append(1, '\0');
  AppendLowerCase(identity, Content(block.m_etypvar));
  return identity;
}

std::string RelativePathOf(ORVResult& block) {
  std::string path;
  (void)block.GetRelativePathFromResultGroup(path);  // a block without one has an empty one
  return path;
}

}  // namespace

/// QUIRK: constant results are in the list too, so one of them hides the results of states that have its identity and its
/// path below the result group. For hosts each such path stands for one entry of the list, in whatever section it lies.
/// Pinned by LaterStates.AreHiddenByAConstantResultOfTheirIdentityAndPath.
LaterResults::LaterResults(ORVContainer& data) : data_(data), results_(data.path.c_str()) {
  for (ORVResult* block : data_.single_results) Learn(*block);
}

void LaterResults::Learn(ORVResult& block) { known_[IdentityOf(block)].insert(RelativePathOf(block)); }

StateRange LaterResults::States(int state, bool to_the_end) const {
  const int states = results_.NumStates();
  if (state < 1) return {2, states};
  return {state, to_the_end ? states : std::min(state, states)};
}

/// QUIRK: the results of one state do not see each other, so two of one identity are both taken and both counted. Hosts
/// compare the count with the growth of the list. Pinned by LaterStates.OfOneIdentityInOneStateAreBothCounted.
StateResults::Blocks LaterResults::Lacking(StateResults::Blocks found, int& added) const {
  StateResults::Blocks lacking;
  for (auto& block : found) {
    const auto twins = known_.find(IdentityOf(*block));
    if (twins == known_.end()) {
      ++added;
    } else if (twins->second.contains(RelativePathOf(*block))) {
      continue;
    }
    lacking.push_back(std::move(block));
  }
  return lacking;
}

int LaterResults::Take(int state, std::vector<ORVResult*>& taken, int& added) {
  StateResults::Blocks found;
  if (results_.Read(state, found) != kOk) return kFail;
  int new_ones = 0;
  StateResults::Blocks lacking = Lacking(std::move(found), new_ones);
  taken.clear();
  for (const auto& block : lacking) {
    Learn(*block);
    taken.push_back(block.get());
  }
  auto& list = data_.single_results;
  list.insert(list.end(), taken.begin(), taken.end());
  for (auto& block : lacking) block.release();  // NOLINT(bugprone-unused-return-value): the list has it now
  added += new_ones;
  return kOk;
}

}  // namespace orvio
