// The same content, stored in another way.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "copying/result_source.h"

namespace orvio::program {

struct RepackOptions {
  std::string file, out;
  std::optional<_ORVVersion> version;  ///< nothing: that of the file
  Storage storage;
  bool verifies = false;  ///< the output is compared with the file before it gets its name
};

struct RepackReport {
  CopyReport copy;
  _ORVVersion version = ORV_VERSION_2_2;
  bool was_compared = false;
  std::uint64_t compared_values = 0;
  std::vector<std::string> differences;  ///< some of them; not empty: there is no output
};

/// Writes the output. Throws Trouble; then there is no new output.
RepackReport RepackFile(const RepackOptions& options);

}  // namespace orvio::program
