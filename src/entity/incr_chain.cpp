// The states of a record's chain, in the order of their reading.

#include "entity/incr_chain.h"

namespace orvio {

/// QUIRK: the last state counts once more where it stands in the chain already: a block that is not in the state asked for
/// gets the changes of its own last state twice. Values do not show it, but integers of an entity that these changes add
/// go over those of the entity before it as well. Readers of other makers agree on that. Pinned by
/// IncrAttributeOfTheFile.GetsTheChangesOfItsLastStateTwiceWhereTheAskedOneLacksIt.
IncrChain ChainOf(const IncrStateMap& map, std::size_t place, int state, int last) {
  const IncrStateRecord& record = map[place];
  // Without a full state before it a chain starts with the first of all: the writer of such a file knows why.
  IncrChain chain = {.base = map[record.chain].state, .full = record.flag == 0};
  if (chain.full) return chain;
  for (std::size_t i = record.chain; i < place; ++i) {
    const int earlier = map[i].state;
    if (earlier != chain.base && earlier <= state) chain.changes.push_back(earlier);
  }
  // A state without a record stands on that of an earlier one, whose own changes count too.
  if (record.state != chain.base && record.state != last) chain.changes.push_back(record.state);
  if (last != chain.base) chain.changes.push_back(last);
  return chain;
}

}  // namespace orvio
