// The answers of orv diff.
#pragma once

#include <cstddef>
#include <string>

#include "comparing/differences.h"

namespace orvio::program {

/// The files, and whether notes count.
struct DiffSubject {
  std::string file, other;
  bool is_strict = false;
};

/// Prints up to `most` lines of each kind, and a summary.
void PrintDifferences(const DiffSubject& subject, const Differences& found, std::size_t most);
/// Prints all as JSON.
void PrintDifferencesAsJson(const DiffSubject& subject, const Differences& found);

}  // namespace orvio::program
