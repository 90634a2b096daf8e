// Where the blocks of a file are, and what else lies between them.
#pragma once

#include <hdf5.h>

#include <map>
#include <string>
#include <vector>

namespace orvio::program {

/// The place of a block.
struct BlockPlace {
  std::string path;                ///< of the group that holds its parts
  std::string relative;            ///< the same below the section or state, with a leading slash
  std::vector<std::string> parts;  ///< absolute paths of "orvblock", or of "header", "data" and "index" as far as there
};

/// What a section or a state holds.
struct FoundBlocks {
  std::vector<BlockPlace> blocks;    ///< in the order of their paths
  std::vector<std::string> strays;   ///< paths of what is no group and lies in no block
  std::vector<std::string> dressed;  ///< paths of groups between the blocks that have attributes
  std::vector<std::string> lost;  ///< paths of what cannot be followed: links out of the file, damaged groups, cycles
};

/// All blocks below a group. A group that links lead to several times is found by each of its names, up to a limit.
FoundBlocks FindBlocks(hid_t file, const std::string& root);

/// Names of what links of any kind lead to, in order; none for a group that is not there.
std::vector<std::string> NamesBelow(hid_t file, const std::string& path);

bool IsGroupAt(hid_t file, const std::string& path);

}  // namespace orvio::program
