// The arrays of a variable group, and the walk over the groups of a file.

#include "variable/variable_group_discovery.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "orvio/orv_variable_grp.h"

namespace orvio {
namespace {

/// Keys that a group may list without the file being asked whether it holds them. A file can have many groups.
constexpr std::int64_t kUnbackedKeys = 4096;

/// The scratch group of a walk, and where its copies go.
class GroupScan : public ORVVariableGrp {
 public:
  explicit GroupScan(std::vector<ORVVariableGrp*>& found) : found_(found) {}
  GroupScan(const GroupScan&) = delete;
  GroupScan& operator=(const GroupScan&) = delete;
  ~GroupScan() override { FreeBuffers(*this); }

  _ORVAction HeaderWasRead(int status) {
    FreeBuffers(*this);
    header_of_ = m_BlkPath;
    const bool is_possible = status == kOk && m_nvar > 0 && (m_nvar <= kUnbackedKeys || m_nvar <= StoredKeys());
    return is_possible && AllocateBuffers(*this) ? ORV_ACTION_CONTINUE : ORV_ACTION_SKIP;
  }

  _ORVAction DataWereRead(int status) {
    if (status == kOk && m_pKeys && header_of_ == m_BlkPath) {  // else there was no header
      auto copy = std::make_unique<ORVVariableGrp>(*this);
      found_.push_back(copy.get());
      copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now, and the arrays with it
      ReSetBlock(ORV_READ_DATA);
    }
    Forget();
    return ORV_ACTION_CONTINUE;
  }

  bool out_of_memory = false;

 private:
  /// A group without a header is handed its data all the same: they must not be taken for those of the one before it.
  void Forget() {
    FreeBuffers(*this);
    ReSetBlock(ORV_READ_HEADER);
  }

  /// Keys that are there, and not only claimed by extents.
  std::int64_t StoredKeys() const {
    const bool single = GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    const h5::Group data =
        h5::OpenGroup(GetH5Reader()->GetFileId(), single ? m_BlkPath.c_str() : (m_BlkPath + "/" + disk::data).c_str());
    h5::StoredDataset keys = data ? h5::StoredDataset(data.get(), disk::varkey) : h5::StoredDataset();
    if (!keys) return 0;
    return static_cast<std::int64_t>(std::min<std::uint64_t>(keys.extents().points, keys.stored_bytes()));
  }

  std::vector<ORVVariableGrp*>& found_;
  std::string header_of_;  ///< path of the group whose header was read last
};

/// The walk runs inside HDF5's iteration: no exception may leave.
_ORVAction TakeGroup(int status, int stage, void* /*name*/, void* block) {
  auto& scan = *static_cast<GroupScan*>(static_cast<ORVBlock*>(block));
  scan.out_of_memory = true;
  return h5::Entry(ORV_ACTION_STOP, [&] {
    const _ORVAction next = stage == ORV_READ_HEADER ? scan.HeaderWasRead(status) : scan.DataWereRead(status);
    scan.out_of_memory = false;
    return next;
  });
}

}  // namespace

bool AllocateBuffers(ORVVariableGrp& group) {
  group.ReSetBlock(ORV_READ_DATA);
  if (group.m_nvar < 1 || group.m_nvar > INT32_MAX) return false;
  const auto count = static_cast<std::size_t>(group.m_nvar);
  group.m_pCnt = static_cast<int*>(std::calloc(count, sizeof(int)));
  group.m_pOffs = static_cast<int*>(std::calloc(count, sizeof(int)));
  // The byte behind the last key ends it where a reader takes the keys for one text.
  group.m_pKeys = static_cast<char*>(std::calloc(count * disk::kTextWidth + 1, 1));
  if (group.m_pCnt && group.m_pOffs && group.m_pKeys) return true;
  FreeBuffers(group);
  return false;
}

void FreeBuffers(ORVVariableGrp& group) {
  std::free(group.m_pCnt);
  std::free(group.m_pOffs);
  std::free(group.m_pKeys);
  group.ReSetBlock(ORV_READ_DATA);
}

int ReadVariableGroups(const char* file, std::vector<ORVVariableGrp*>& groups) {
  return h5::Entry(kFail, [&] {
    GroupScan scan(groups);
    const int status = scan.IterateBlock(file, 0, ORV_READ_HEADER | ORV_READ_DATA, TakeGroup);
    return scan.out_of_memory ? kFail : status;
  });
}

}  // namespace orvio
