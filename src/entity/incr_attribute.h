#pragma once

// Entity attributes of files that store in a state only what changed: the last full state is read, and the later changes
// are put into its arrays.

#include "entity/incr_states.h"
#include "orvio/orv_ent_attribute.h"

namespace orvio {

struct IncrAttributeRequest {
  const char* file;
  int state;        ///< asked for
  int last;         ///< the one whose changes come last; see LocateAttribute
  bool append_new;  ///< entities that only a change has are added
};

/// The last state, up to the one asked for, that has the attribute; its header is read there. One that was met in a state
/// before is taken to be in that asked for, and not read. 0 when there is none.
[[nodiscard]] int LocateAttribute(ORVEntAttribute& attribute, const char* file, int state);

/// Reads the attribute as it stands at a state, by the records of its own states. The attribute then has arrays, even
/// where the answer is 1 because memory ran out on the way.
[[nodiscard]] int ReadIncrAttribute(ORVEntAttribute& attribute, const IncrAttributeRequest& request);
/// The same by records that were made from another block. Where they do not fit, its own ones serve.
[[nodiscard]] int ReadIncrAttribute(ORVEntAttribute& attribute, const IncrStateMap& map,
                                    const IncrAttributeRequest& request);

}  // namespace orvio
