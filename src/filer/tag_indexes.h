#pragma once

// The incremental indexes that a filer keeps by name.

#include <memory>
#include <string>
#include <vector>

#include "filer/container.h"

class ORVEntAttribute;

namespace orvio {

struct FreeTagIndex {
  void operator()(ORVTagIncrIndex* index) const noexcept {
    index->ClearAll();
    delete index;
  }
};

/// An index with its allocation.
using OwnTagIndex = std::unique_ptr<ORVTagIncrIndex, FreeTagIndex>;

/// Name of the index of a result's zone, or of those of all zones.
std::string TagOf(const ORVResult& result, bool with_zone);
std::string TagOf(const ORVEntAttribute& attribute);

/// The first of that name; null when there is none.
ORVTagIncrIndex* FindTagIndex(const ORVContainer& data, const std::string& tag);
/// Hands an index to the filer under its name; null when the name is there.
ORVTagIncrIndex* AddTagIndex(ORVContainer& data, OwnTagIndex index);
/// The index of that name, read from the block when it is not there; the number of its columns comes from `state`. Null
/// when it cannot be read.
ORVTagIncrIndex* FindOrReadTagIndex(ORVContainer& data, ORVBlock& block, const std::string& tag, int state);

/// One index over those of several blocks, each under its one-zone name: a row of the first block that has it for each
/// state. Null without rows.
OwnTagIndex MergeTagIndexes(ORVContainer& data, const std::vector<ORVResult*>& blocks);

/// Deletes the indexes of a filer and its map of states.
void ClearIncrIndexes(ORVContainer& data);

}  // namespace orvio
