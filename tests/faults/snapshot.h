#pragma once

// A file and its journal as bytes, so that both can be put back as they were.

#include <optional>
#include <string>
#include <vector>

namespace orvio::faults {

using Bytes = std::vector<char>;
Bytes BytesOf(const std::string& path);
void PutBytes(const std::string& path, const Bytes& bytes);

struct Snapshot {
  Bytes file;
  std::optional<Bytes> journal;

  static Snapshot Of(const std::string& path);
  /// Writes both anew; a journal that there is none of is removed.
  void Restore(const std::string& path) const;
};

}  // namespace orvio::faults
