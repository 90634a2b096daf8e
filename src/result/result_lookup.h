#pragma once

// How blocks are picked from a list of results: by kind, entity type and what their values are. Lookups append to the
// caller's list, which may be the one that is searched.

#include <span>
#include <string>
#include <vector>

#include "orvio/orv_result.h"

namespace orvio {

using ResultList = std::vector<ORVResult*>;

inline constexpr int kAnyKind = -1;

/// What a name of a lookup is compared with.
enum class NameTest {
  kIdentity,           ///< key of the variable, or its name where it has none; a group or a member of it
  kIdentityOrOwnName,  ///< or the name of a variable that the block itself gives
  kVariableName,       ///< the variable's name alone, also where it has a key
  kHandleName,         ///< name of a component or measure
};

/// What blocks a lookup keeps. An empty list passes every block, but with all of them empty none is kept.
struct ResultQuery {
  int kind = kAnyKind;
  std::span<const _ORVEntityType> entities = {};
  std::span<const int> base_types = {};          ///< looked at where `entities` is empty
  std::span<const char* const> type_names = {};  ///< names of entity types
  std::span<const char* const> names = {};
  NameTest test = NameTest::kIdentity;
  bool needs_components = true;       ///< blocks with 0 components do not pass,
  const ORVResult* sample = nullptr;  ///< save this one
};

void FindResults(const ResultList& list, const ResultQuery& query, ResultList& out);

/// All blocks of a kind, be there components or not.
void FindResultsOfKind(const ResultList& list, int kind, ResultList& out);

/// Blocks whose definition has one of the handles, by internal id. Without types in the query neither kind nor
/// components are looked at.
void FindResultsByHandle(const ResultList& list, const ResultQuery& query, std::span<const int> iids, ResultList& out);

/// Blocks of the quantity of `sample`, and of its entity type or else of its base type.
void FindSameQuantity(const ResultList& list, const ORVResult& sample, bool by_entity_type, ResultList& out);

/// Appends those of `found` that pass.
template <class Passes>
void AppendThose(const ResultList& found, Passes passes, ResultList& out) {
  ResultList kept;
  for (ORVResult* block : found) {
    if (block && passes(*block)) kept.push_back(block);
  }
  out.insert(out.end(), kept.begin(), kept.end());
}

/// Whether a handle with the id (internal, or external) belongs to the block's definition.
bool HasHandle(const ORVResult& block, int id, bool by_iid);

// ---- Blocks below a group of a file, by their headers

/// Appends new blocks for the real-valued entity results below a group; the caller owns them.
void FindResultsBelow(const char* file, const std::string& path, ResultList& out);

// ---- Series and load cases

/// Those of `in` with an index value `load_case` in a column.
void FindResultsOfLoadCase(const char* file, const ResultList& in, int column, int load_case, ResultList& out);

/// The first of a list, and of the others the first of each series.
void FindUniqueSeries(const ResultList& list, ResultList& out);

}  // namespace orvio
