#pragma once

// Meshes that change: the collectors that tie entities to those they came from, and how a file shows that its mesh is of
// this kind.

#include <string_view>
#include <vector>

#include "orvio/orv_collector.h"

namespace orvio {

inline constexpr char kNodeFathers[] = "NODE_FATHERS";
inline constexpr char kShellFathers[] = "SHELL_FATHERS";
inline constexpr char kNodeType[] = "NODE";
inline constexpr char kShellType[] = "SHELL";

/// Reads the collector block of a name with its data. One with ids must have the entity types `types`, in their order
/// and without regard to case; no types ask for no check. After a failure the block is empty.
[[nodiscard]] int ReadValidCollector(const char* file, int state, std::string_view name,
                                     const std::vector<std::string_view>& types, ORVCollector& block);

/// What is written of the fathers of nodes; collectors and ids are counted apart.
struct FatherLists {
  int ncoll;
  int* idcoll;
  int* nent;  ///< ncoll x 2
  int nenttot;
  int* entid;
};

/// Writes the collector block of the fathers of nodes, in a state with the index of `index_of`. 1 without collectors or
/// ids.
[[nodiscard]] int WriteNodeFathers(const char* file, int state, const ORVCollector* index_of, const FatherLists& lists);

/// Whether any state has a collector block of that name. `any` tells whether a state up to the first hit has one of any
/// name. Blocks without collectors do not count.
bool HasCollectorInStates(const char* file, std::string_view name, bool& any);

/// Whether any state has elements of its own, on demand others than those of the type "FPM".
bool HasElementsInStates(const char* file, bool skip_fpm);

}  // namespace orvio
