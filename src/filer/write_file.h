#pragma once

// What the writing operations of a filer rest on.

#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/orv_types.h"

struct ORVContainer;

namespace orvio {

/// Opens or makes a file and its tree. On success of the open, `made` is a new container with the file's name and
/// the version, whatever became of the tree.
[[nodiscard]] int MakeFileForWriting(const char* name, _ORVVersion version, _ORVFileMode mode, bool keep_tree,
                                     ORVContainer** made);

/// Lets block writes use the version of a container for the life of the answer.
[[nodiscard]] Swapped<int> UseWriterVersion(const ORVContainer& container);

/// Paths of names below a block's path.
std::vector<std::string> LinksBelow(const std::string& block_path, const std::vector<std::string>& names);

}  // namespace orvio
