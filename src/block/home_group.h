#pragma once

// The group that blocks of one kind are written to: in the constant section, or in a state.

#include <string>
#include <string_view>

#include "block/block_write.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/orv_block.h"

namespace orvio {

/// What a write makes on its way. In a state the group itself is always made when it is missing.
struct HomeRule {
  const char* group;       ///< name of the group, the same in the constant section and in a state
  bool makes_next_state;   ///< a state that follows the last one is added; else it must be there
  bool makes_in_constant;  ///< the group is made in the constant section too; else it must be there
};

/// The file and the group, open for writing. No group where one of them cannot be had.
struct Home {
  h5::WriteFile file{h5::File()};
  h5::Group group;
};

/// `state` is 1-based; below 1 the constant section.
Home OpenHome(const char* path, int state, const HomeRule& rule);

/// The state of that number by its name, wherever it stands among the states; made when it is missing.
h5::Group OpenNamedState(hid_t file, int state);

/// The group of that name in a state which is found by its own name. Both are made when they are missing.
Home OpenHomeInNamedState(const char* path, int state, const char* group);

/// What a write does where the name of the block exists already.
enum class ExistingName { kIsRefused, kIsWrittenInto };

/// Opens the parts that `what` selects below the child `name`, lets `steps` write into them and closes the home. 1 for
/// an empty name.
template <class Steps>
[[nodiscard]] int WriteIntoHome(Home home, std::string_view name, ExistingName existing, int what, Steps steps) {
  if (!home.group || name.empty()) return kFail;
  const std::string child(name);
  int status = kFail;
  if (existing == ExistingName::kIsWrittenInto || !h5::LinkExists(home.group.get(), child.c_str())) {
    BlockParts parts(home.group.get(), child.c_str(), what);
    if (parts) status = parts.Close(steps(parts));
  }
  if (!home.group.Close() && status == kOk) status = kFail;
  return home.file.Finish(status);
}

/// The same with the steps of a whole block.
[[nodiscard]] int WriteIntoHome(ORVBlock& block, Home home, std::string_view name, ExistingName existing, int what);

}  // namespace orvio
