#pragma once

// What a post-processor does with a result file, without one: every question, and every value.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "orvio/orv_filer.h"

namespace orvio::fuzz {

/// What came of reading a file.
struct Tally {
  bool opened = false;
  std::uint64_t results = 0;   ///< result blocks that were found
  std::uint64_t values = 0;    ///< numbers and texts that were delivered
  std::uint64_t refusals = 0;  ///< reads that failed
  std::uint64_t digest = 1;    ///< of all statuses and of what was delivered

  bool operator==(const Tally&) const = default;

  /// Notes what a read came to.
  void Add(int status, std::int64_t count) {
    values += status == 0 ? static_cast<std::uint64_t>(std::max<std::int64_t>(0, count)) : 0;
    refusals += status == 0 ? 0 : 1;
    Mix(static_cast<std::uint64_t>(status));
  }
  /// Notes what was delivered: a count that is too high shows by reading too far.
  template <class T>
  void Take(const T* delivered, std::int64_t count) {
    for (std::int64_t i = 0; delivered && i < count; ++i) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, delivered + i, std::min(sizeof bits, sizeof(T)));
      Mix(bits);
    }
  }

 private:
  void Mix(std::uint64_t bits) { digest = (digest ^ bits) * 0x9E3779B97F4A7C15ULL + (digest >> 29); }
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
