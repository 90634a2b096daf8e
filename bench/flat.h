#pragma once

// The same values as plain bytes: a table of the quantities and the states, then for each state and quantity the ids
// and the values, one array behind the other. Every offset follows from the counts. This is the limit: no file format
// that stores these arrays gives them back with less work.

#include <sys/types.h>

#include <string>

#include "roads.h"

namespace orvio::bench {

/// Where things are in a file of plain bytes.
class FlatPlaces {
 public:
  explicit FlatPlaces(const Job& job);

  static constexpr std::size_t kNameBytes = 64;

  std::size_t value_bytes() const { return value_bytes_; }
  std::size_t table_bytes() const;
  static off_t Names() { return 0; }
  off_t States() const;  ///< all identifiers, then all times
  off_t Ids(int quantity, int state) const;
  off_t Values(int quantity, int state) const;

 private:
  Job job_;
  std::size_t value_bytes_;
};

/// Whether so many states are all that a writer of plain bytes has written, and the last array is right.
bool IsFlatWritten(const std::string& path, const StateValues& values, int states);
void MakeFlatFile(const Job& job, const std::string& path);

}  // namespace orvio::bench
