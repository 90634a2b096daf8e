#pragma once

// What the whole and the selective write of a result block share: the way to its group, and its ids.

#include <string>
#include <vector>

#include "block/block_write.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "result/result_kinds.h"

namespace orvio {

/// How the section or state group of a block is found in an open file.
using SectionOpener = h5::Group (*)(const ResultKind& kind, hid_t file, int state);

/// An open file and the groups on the way to a block. A missing file is not made; missing groups are.
class ResultPlace {
 public:
  ResultPlace(const ORVResult& block, const ResultKind& kind, const char* file, int state, SectionOpener open_section);
  ResultPlace(const ResultPlace&) = delete;
  ResultPlace& operator=(const ResultPlace&) = delete;

  explicit operator bool() const { return !way_.empty(); }
  hid_t parent() const { return way_.back().get(); }       ///< holds the block's group
  const char* name() const { return name_.c_str(); }       ///< of the block's group
  const std::string& section() const { return section_; }  ///< name of the section or state group
  bool HasBlock() const { return h5::LinkExists(parent(), name()); }

  /// Opens or makes the block's parts, lets `steps` write into them and closes them.
  template <class Steps>
  [[nodiscard]] int Write(int sections, Steps steps) {
    BlockParts parts(parent(), name(), sections);
    return parts ? parts.Close(steps(parts)) : kFail;
  }

  /// Closes the groups, flushes and closes the file. `status` if that was a failure already.
  [[nodiscard]] int Finish(int status);

 private:
  bool Open(const ORVResult& block, const ResultKind& kind, int state, SectionOpener open_section);
  bool Enter(h5::Group group);

  h5::WriteFile file_;
  std::vector<h5::Group> way_;  // below the file, so that it closes first; empty after a failure
  std::string name_;
  std::string section_;
};

/// Stores the ids of a block beside its values, as a link to those of another block where the block's callback names
/// a dataset that fits. A failure clears `m_readIds`.
[[nodiscard]] int WriteIds(ORVResult& block, const ResultKind& kind, hid_t group);

}  // namespace orvio
