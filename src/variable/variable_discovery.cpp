// The walk over the variables of a file. One scratch variable is read over and over: its header gives the counts, the
// tables are made, its data fill them, and a copy takes them over.

#include "variable/variable_discovery.h"

#include <algorithm>
#include <memory>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/orv_variable.h"
#include "variable/variable_buffers.h"

namespace orvio {
namespace {

/// Nothing is stored in less than a byte unless it was compressed, and no variable is so large that it would have to be.
StoredExtents StoredExtentsIn(hid_t data) {
  StoredExtents stored;
  for (const char* column : {disk::cname, disk::cid, disk::mbunit, disk::mdunit, disk::subscnt, disk::subsoffs}) {
    stored.components = std::max(stored.components, h5::StoredElements(data, column));
  }
  stored.label_bytes = h5::StoredElements(data, disk::subscr);
  stored.map_values = h5::StoredElements(data, disk::vmap);
  return stored;
}

/// The scratch variable of a walk, and where its copies go.
class VariableScan : public ORVVariable {
 public:
  explicit VariableScan(std::vector<ORVVariable*>& found) : found_(found) {}
  VariableScan(const VariableScan&) = delete;
  VariableScan& operator=(const VariableScan&) = delete;
  ~VariableScan() override { FreeBuffers(*this); }

  /// What a variable lacks must not be that of the one before it: an attribute, or the whole header, without which a
  /// variable is handed its data all the same.
  int ReadHeader(hid_t header, int flags) override {
    Forget();
    return ORVVariable::ReadHeader(header, flags);
  }

  _ORVAction HeaderWasRead(int status) {
    if (status == kOk && m_ncoo != 0 && MakeTables()) return ORV_ACTION_CONTINUE;
    Forget();
    return ORV_ACTION_SKIP;
  }

  _ORVAction DataWereRead(int status) {
    if (status == kOk && m_ncoo != 0) {
      auto copy = std::make_unique<ORVVariable>(*this);
      found_.push_back(copy.get());
      copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now, and the tables with it
      ReSetBlock(ORV_READ_DATA);
    }
    Forget();
    return ORV_ACTION_CONTINUE;
  }

  bool out_of_memory = false;

 private:
  void Forget() {
    FreeBuffers(*this);
    ReSetBlock(ORV_READ_HEADER);
    m_lenb = m_lend = 0;
  }

  bool MakeTables() {
    const StoredExtents stored = NeedsStoredExtents(*this) ? StoredExtentsOfThis() : CountsOf(*this);
    return trust_.Take(CountsOf(*this), stored) && AllocateBuffers(*this, stored);
  }

  /// The datasets stand beside the header in the single layout, in "data" in the split one.
  StoredExtents StoredExtentsOfThis() const {
    const bool single = GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    const h5::Group data =
        h5::OpenGroup(GetH5Reader()->GetFileId(), single ? m_BlkPath.c_str() : (m_BlkPath + "/" + disk::data).c_str());
    return data ? StoredExtentsIn(data.get()) : StoredExtents();
  }

  std::vector<ORVVariable*>& found_;
  TakenOnTrust trust_;
};

/// The walk runs inside HDF5's iteration: no exception may leave.
_ORVAction TakeVariable(int status, int stage, void* /*name*/, void* block) {
  auto& scan = *static_cast<VariableScan*>(static_cast<ORVBlock*>(block));
  scan.out_of_memory = true;
  const _ORVAction answer = h5::Entry(ORV_ACTION_STOP, [&] {
    const _ORVAction next = stage == ORV_READ_HEADER ? scan.HeaderWasRead(status) : scan.DataWereRead(status);
    scan.out_of_memory = false;
    return next;
  });
  return answer;
}

}  // namespace

int ReadVariables(const char* file, std::vector<ORVVariable*>& variables) {
  return h5::Entry(kFail, [&] {
    VariableScan scan(variables);
    const int status = scan.IterateBlock(file, 0, ORV_READ_HEADER | ORV_READ_DATA, TakeVariable);
    return scan.out_of_memory ? kFail : status;
  });
}

}  // namespace orvio
