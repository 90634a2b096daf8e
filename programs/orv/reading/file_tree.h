// The groups and blocks of a result file as they lie in it, without their values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

/// A group, block, dataset or link below a place in a file.
struct TreeEntry {
  std::string path;                   ///< below the place that was asked for
  std::string kind;                   ///< "section", "state", "group", "dataset", "link", or the kind of a block
  std::optional<std::int64_t> key;    ///< of a block
  std::optional<std::int64_t> count;  ///< entities of a block, elements of a dataset, children of a group
  std::uint64_t bytes = 0;            ///< stored values, of all datasets below
  std::string target;                 ///< of a link
};

struct TreeOptions {
  bool recursive = false;  ///< also what lies below, down to the blocks
  bool sizes = false;      ///< fills `bytes`, which needs a look at every dataset below
};

/// Lists a place: an absolute path, or one below "/post". The place of a block lists its datasets. Links are not
/// followed, and what is there twice is listed once. Throws Trouble for a file or a place that is not there.
std::vector<TreeEntry> ListTree(const std::string& file, const std::string& place, const TreeOptions& options);

/// Takes `FILE:PATH` apart; a name that is a file as it stands has no path.
struct FilePlace {
  std::string file, place;
};
FilePlace SplitFilePlace(const std::string& argument);

}  // namespace orvio::program
