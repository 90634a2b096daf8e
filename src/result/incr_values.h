#pragma once

// Values of files that store in a state only what changed: those of the last full state are fetched, and later ones are put
// in their place by entity id.

#include <vector>

#include "entity/incr_states.h"
#include "result/value_fetch.h"

namespace orvio {

/// FetchValues for the state of `values` as its chain makes it whole; one value per entity is assumed, and entities of one
/// numbering. What is stored without ids neither changes nor is changed. The request of `values` is as before afterwards.
/// Ids that the host did not ask for are not delivered. Made for float and double.
template <class T>
[[nodiscard]] int FetchIncrValues(const char* file, const IncrStateMap& map, ORVResultValuesBase<T, int>& values,
                                  const std::vector<ORVResult*>& blocks, const FetchQuantity& quantity);

}  // namespace orvio
