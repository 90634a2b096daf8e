// The helper block that knows only its key, and the search for the first block of a key.

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "block/walk.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"

using namespace orvio;

ORVBlockHelper::ORVBlockHelper(bool readEntityCount) : m_bReadEntityCount(readEntityCount) {}

ORVBlockHelper::~ORVBlockHelper() = default;

int ORVBlockHelper::ReadBlock(const char*, int, int) { return kFail; }

int ORVBlockHelper::ReadBlockAt(const char*, int, int, int) { return kFail; }

int ORVBlockHelper::ReadNumBlock(const char*, int, int*) { return kFail; }

int ORVBlockHelper::WriteBlock(const char*, int, int) { return kFail; }

namespace {

/// Name of the count of a single-state result key; null for every other key.
const char* CountName(std::int64_t key) {
  switch (key) {
    case ORV_RESULT_ENTITY:
    case ORV_RESULT_ENTITY_COMPLEX:
      return disk::nent;
    case ORV_RESULT_ELEMENT:
    case ORV_RESULT_ELEMENT_COMPLEX:
      return disk::nele;
    default:
      return nullptr;
  }
}

}  // namespace

int ORVBlockHelper::ReadHeader(hid_t group, int /*stages*/) {
  const int status = OH5Read_ATTRIBUTE(group, disk::block, 0, nullptr, ORV_LONG, &m_BlkKey);
  const char* count_name = m_bReadEntityCount && status == kOk ? CountName(m_BlkKey) : nullptr;
  if (!count_name) return status;
  std::int64_t count = 0;
  (void)OH5Read_ATTRIBUTE(group, count_name, 0, nullptr, ORV_LONG, &count);  // unreadable: stays 0
  return count > 0 ? kOk : kFail;
}

/// QUIRK: headers are read whatever the stages. A helper has nothing but its key, and hosts hand over the stages of the
/// blocks that they look for. Pinned by BlockHelper.IteratesHeadersWhateverStagesAreAsked.
int ORVBlockHelper::IterateBlock(const char* file, int state, int /*stages*/, ORVIterationCallBack action) {
  return ORVBlock::IterateBlock(file, state, ORV_READ_HEADER, action);
}

namespace {

/// A copy that walks in place of the helper and remembers whether it found a block.
class SearchingHelper : public ORVBlockHelper {
 public:
  SearchingHelper(const ORVBlockHelper& helper, bool filter) : ORVBlockHelper(helper), filter_(filter) {
    m_bReadEntityCount = filter;
  }

  /// Empty result blocks are passed over only when asked for; otherwise the first block decides.
  static _ORVAction Record(int status, int /*stage*/, void* /*where*/, void* block) {
    auto* self = static_cast<SearchingHelper*>(static_cast<ORVBlock*>(block));
    self->found_ = status == kOk;
    return self->found_ || !self->filter_ ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE;
  }

  bool found() const { return found_; }

 private:
  bool filter_;
  bool found_ = false;
};

}  // namespace

int ORVBlockHelper::UpdateBlockPath(hid_t /*file*/, int state, bool filter) {
  IOH5Reader* reader = m_pH5Reader;
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    const h5::Group state_group(ORVBlockPathResolver(this).OpenStateGroup(state));
    const _OH5BlockKeyMap* row = FindBlockKey(m_BlkKey);
    if (!state_group || (m_BlkKey != kNoKey && !row)) return kFail;
    const bool typed = row && *row->name;
    const h5::Group type_group = typed ? h5::OpenGroup(state_group.get(), row->name) : h5::Group();
    if (typed && !type_group) return kFail;

    SearchingHelper search(*this, filter);
    (void)ORVBlockAccess::ExchangeReader(search, reader);  // copies have none
    WalkGroup(search, typed ? type_group.get() : state_group.get(), SearchingHelper::Record, ORV_READ_HEADER);
    if (!search.found()) return kFail;
    m_BlkPath = search.GetBlkPath();
    return kOk;
  });
}
