#pragma once

// The same file as another HDF5 would have written it.

#include <string>

namespace orvio::fuzz {

/// How a copy is stored.
struct Form {
  enum Age { kOldest, kNewer, kLatest };

  Age age = kOldest;        ///< of HDF5's own structures: superblock 0, 2 or 3
  bool packed = false;      ///< numeric datasets are chunked and scale-offset compressed
  bool small_nodes = true;  ///< the trees of old groups have room for few links, which saves most of the file
};

/// Copies groups, datasets, attributes and soft links.
void Recast(const std::string& from, const std::string& to, const Form& form);

}  // namespace orvio::fuzz
