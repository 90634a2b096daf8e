#pragma once

// Blocks with an index in forged files, and an index whose insides can be reached.

#include <cstdint>
#include <string>
#include <vector>

#include "entity/connectivity_forge.h"
#include "h5/file_access.h"
#include "orvio/orv_index.h"
#include "support/forged_file.h"

namespace orv_test {

inline std::string StateGroup(int state) { return "/post/singlestate/state00000000000" + std::to_string(state); }

/// Adds a block of one state. Its identifiers are 100 times its values.
inline ForgedFile& AddIndexed(ForgedFile& file, const std::string& block, Layout layout,
                              const std::vector<double>& values, int key = 1000) {
  const PartPaths parts(block, layout);
  std::vector<std::int32_t> ids;
  for (const double value : values) ids.push_back(static_cast<std::int32_t>(100 * value));
  file.at(parts.data);
  file.at(parts.index).dataset<double>("indexval", {values.size()}, values);
  file.dataset<std::int32_t>("indexident", {values.size()}, ids);
  return file.at(parts.header).integer("block", key).integer("nindex", static_cast<std::int64_t>(values.size()));
}

/// Adds a block without an index.
inline ForgedFile& AddUnindexed(ForgedFile& file, const std::string& block, Layout layout, int key = 1000) {
  const PartPaths parts(block, layout);
  file.at(parts.data);
  return file.at(parts.header).integer("block", key);
}

/// Adds a block of the multi-state section with `nstate` rows.
inline ForgedFile& AddMultiState(ForgedFile& file, const std::string& block, Layout layout, hsize_t nstate,
                                 const std::vector<float>& values) {
  const PartPaths parts(block, layout);
  const hsize_t columns = values.size() / nstate;
  file.at(parts.data);
  file.at(parts.index).dataset<float>("indexval", {nstate, columns}, values);
  file.dataset<std::int32_t>("indexident", {nstate, columns}, std::vector<std::int32_t>(values.size(), 9));
  file.at(parts.header).integer("block", 1050).integer("nindex", static_cast<std::int64_t>(columns));
  return file.integer("nstate", static_cast<std::int64_t>(nstate));
}

/// An index with arrays of its own; never call ClearAll.
template <class V>
class OpenIndex : public ORVIndexBase<int, V> {
 public:
  using Base = ORVIndexBase<int, V>;
  using Base::m_indexIdentType;
  using Base::m_indexValueType;
  using Base::m_nIndex;
  using Base::m_nState;
  using Base::m_pIndexId;
  using Base::m_pIndexVal;

  /// Zeroed arrays of that size; `rows` becomes the number of states.
  void Allocate(std::int64_t rows, std::int64_t columns) {
    m_nIndex = columns;
    m_nState = rows;
    values.assign(static_cast<std::size_t>(rows * columns), 0);
    ids.assign(values.size(), 0);
    m_pIndexVal = values.data();
    m_pIndexId = ids.data();
  }

  int HeaderOf(ForgedFile& file, const std::string& group, int mode) {
    return InGroup(file, group, [&](hid_t id) { return this->ReadHeader(id, mode); });
  }
  int DataOf(ForgedFile& file, const std::string& group) {
    return InGroup(file, group, [&](hid_t id) { return this->ReadData(id, 0); });
  }

  /// Path of the first block of a state, as a walk learns it.
  std::string FirstPathOf(ForgedFile& file, int state) {
    if (this->OpenH5Reader(file.path().c_str(), 0) != 0) return "no file";
    const int status = this->UpdateBlockPath(this->GetH5Reader()->GetFileId(), state, false);
    (void)this->CloseH5Reader();
    return status == 0 ? this->GetBlkPath() : "no block";
  }

  std::vector<V> values;
  std::vector<int> ids;

 private:
  template <class Read>
  int InGroup(ForgedFile& file, const std::string& path, Read read) {
    if (this->OpenH5Reader(file.path().c_str(), 0) != 0) return -1;
    int status = -1;
    {
      const orvio::h5::Group group = orvio::h5::OpenGroup(this->GetH5Reader()->GetFileId(), path.c_str());
      if (group) status = read(group.get());
    }
    (void)this->CloseH5Reader();
    return status;
  }
};

}  // namespace orv_test
