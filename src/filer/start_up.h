#pragma once

// The steps of a filer's start-up that stand for themselves.

#include <vector>

#include "filer/container.h"

class ORVResult;

namespace orvio {

/// Answer of the start-up for a file without results, where states or constants were to be skipped.
inline constexpr int kNoResultsWithSkipping = 18;

/// What the start-up shall read.
struct StartUpScope {
  bool multi_state = true;
  bool constant = true;
  bool states = true;
};

/// Gives each group the variables that its keys name. Keys that no variable has are told to the host.
void ResolveGroupKeys(ORVContainer& data);

/// Reads the headers of the results of a file into the lists of the container. 1 when memory runs out.
[[nodiscard]] int DiscoverAllResults(ORVContainer& data, const StartUpScope& scope);

/// Entity type of the properties of nodes that are secured.
inline constexpr char kSecuredNode[] = "SECURED_NODE";

/// Whether a properties block of the list says that the nodes are secured.
bool HasSecuredNode(const std::vector<ORVProperties*>& properties);

/// The id after the largest of the handles, at least 1.
int NextHandleId(const std::vector<ORVExtVar*>& handles);

/// For a file that has grown: drops what follows from its elements and the incremental indexes, reads the number of states
/// of the multi-state results anew, and lets the next demand read the state indexes.
void PrepareReload(ORVContainer& data);

}  // namespace orvio
