#pragma once

// What a post-processor does with a result file, without one: every question, and every value.

#include <cstdint>
#include <memory>

#include "orvio/orv_filer.h"

namespace orvio::fuzz {

/// What came of reading a file.
struct Tally {
  bool opened = false;
  std::uint64_t results = 0;   ///< result blocks that were found
  std::uint64_t values = 0;    ///< numbers and texts that were delivered
  std::uint64_t refusals = 0;  ///< reads that failed
};

/// A filer of a file, started up.
struct OpenFiler {
  explicit OpenFiler(const char* file);

  const char* path;
  ORVFiler filer;
  int states = 0;   ///< of the file, but no more than are looked at
  int next_id = 1;  ///< of handles
};

/// Lists, and answers to questions by every name that the lists gave.
void AskQuestions(OpenFiler& open, Tally& tally);
/// Values of results: by handle and by name, whole and in part, over the states, with indexes, cached, incremental.
void ReadResultValues(OpenFiler& open, Tally& tally);
/// The values of each result and the state indexes, by one road each.
void ReadResultsOnce(OpenFiler& open, Tally& tally);
/// Parts, connectivities, attributes, identifiers, collectors, activations and properties of each state.
void ReadModel(OpenFiler& open, Tally& tally);
/// Each dataset and header attribute by the typed reads, with the right shape or with wrong ones too.
void ReadTyped(const char* path, bool wrong_shapes, Tally& tally);

/// Everything but wrong shapes, by every road. On the road lie some 200 opens of the file.
Tally ReadAll(const char* path);
/// Everything once: some 40 opens.
Tally ReadOnce(const char* path);

/// Owner of an array that comes from the C allocator.
struct CFree {
  void operator()(void* memory) const noexcept { free(memory); }  // NOLINT: the library's arrays are the C allocator's
};
template <class T>
using Owned = std::unique_ptr<T[], CFree>;

}  // namespace orvio::fuzz
