#pragma once

// The result blocks of a place of a file, by their headers.

#include <memory>
#include <string>
#include <vector>

#include "block/reader_lease.h"
#include "orvio/orv_result.h"

namespace orvio {

/// Reads the headers of all blocks of a kind in a state (0: the constant section, -1: the multi-state section) and
/// appends those with entities and components; the caller owns them. Blocks without components are told to the host. 1
/// when memory runs out; a place that is not there holds no results.
[[nodiscard]] int DiscoverResults(const char* file, int state, int block_type, std::vector<ORVResult*>& results);

/// The same for one state of a file after the other. The file is open as long as this is there, and its states are
/// listed once: in a large file each search for a state by its position takes milliseconds. A file that cannot be
/// opened has no states.
class StateResults {
 public:
  using Blocks = std::vector<std::unique_ptr<ORVResult>>;

  explicit StateResults(const char* file);

  int NumStates() const;
  /// Appends the entity results of a state and behind them its element results. 1 when memory runs out; a state that is
  /// not there holds none.
  [[nodiscard]] int Read(int state, Blocks& found) const;

 private:
  [[nodiscard]] int ReadKind(const std::string& state_path, int block_type, Blocks& found) const;

  ORVBlockHelper holder_;
  ReaderLease reader_;
  std::vector<std::string> names_;
};

}  // namespace orvio
