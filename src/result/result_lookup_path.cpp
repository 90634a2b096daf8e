// The walk over the results below any group of a file, without what a filer knows of it.

#include <memory>

#include "block/reader_lease.h"
#include "block/walk.h"
#include "entity/entity_type_table.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/result_lookup.h"

namespace orvio {
namespace {

/// The scratch block of the walk, and where its copies go.
class PathScan : public ORVResult {
 public:
  explicit PathScan(ResultList& found) : ORVResult(ORV_RESULT_MULTI_ENTITY), found_(found) {}

  /// What a block lacks must not be that of the one before it.
  int ReadHeader(hid_t group, int flags) override {
    ResetSection(ORV_READ_HEADER);
    return ORVResult::ReadHeader(group, flags);
  }

  void HeaderWasRead(const char* group_name) {
    if (GetKey() != ORV_RESULT_MULTI_ENTITY && GetKey() != ORV_RESULT_ENTITY) return;
    auto copy = std::make_unique<ORVResult>(*this);
    if (const ORVEntityTypeMap* row = FindEntityType(Content(m_etyp))) {
      copy->m_entityType = static_cast<_ORVEntityType>(row->m_orvType);
      copy->m_baseEntityType = row->m_appType;
    }
    Assign(copy->m_subBlockName, Content(group_name));
    found_.push_back(copy.get());
    copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now
  }

 private:
  ResultList& found_;
};

/// The walk runs inside HDF5's iteration: no exception may leave.
_ORVAction TakeResult(int status, int stage, void* name, void* block) {
  h5::EntryVoid([&] {
    auto& scan = *static_cast<PathScan*>(static_cast<ORVBlock*>(block));
    if (status == kOk && stage == ORV_READ_HEADER) scan.HeaderWasRead(static_cast<const char*>(name));
  });
  return ORV_ACTION_CONTINUE;
}

}  // namespace

void FindResultsBelow(const char* file, const std::string& path, ResultList& out) {
  PathScan scan(out);
  const ReaderLease reader(scan, file);
  if (!reader) return;
  const h5::Group start(reader->OpenGroup(reader->GetFileId(), path.c_str(), H5P_DEFAULT));
  if (start) WalkGroup(scan, start.get(), TakeResult, ORV_READ_HEADER);
}

}  // namespace orvio
