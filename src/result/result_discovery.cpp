// The walk over the result blocks of a place. One scratch block is read over and over; what is kept is copied.

#include "result/result_discovery.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "block/block_keys.h"
#include "block/states.h"
#include "block/walk.h"
#include "entity/entity_type_table.h"
#include "filer/messages.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/result_kinds.h"

namespace orvio {
namespace {

constexpr std::size_t kLongestToldPath = 511;

/// The scratch block of a walk, and where its copies go.
class ResultScan : public ORVResult {
 public:
  ResultScan(int block_type, StateResults::Blocks& found) : ORVResult(block_type), found_(found) {}

  /// What a block lacks must not be that of the one before it.
  int ReadHeader(hid_t group, int flags) override {
    ResetSection(ORV_READ_HEADER);
    return ORVResult::ReadHeader(group, flags);
  }

  void HeaderWasRead(const char* group_name) {
    const ResultKind* kind = FindResultKind(m_BlkKey);
    if (!kind || kind->IsProperties()) return;
    if (m_ncoo < 1) return TellOfComponents();
    if (m_nent < 1) return;
    auto copy = std::make_unique<ORVResult>(*this);
    SetNumbers(*copy);
    Assign(copy->m_subBlockName, Content(group_name));
    found_.push_back(std::move(copy));
  }

  bool out_of_memory = false;

 private:
  void TellOfComponents() const {
    SendMessage(ORV_MESG_WARNING, "Invalid number of components in \"%.256s->%.256s\" result block (ncoo)", m_etyp,
                m_etypvar);
    const std::size_t length = m_BlkPath.size();
    if (length > 0 && length <= kLongestToldPath) SendMessage(ORV_MESG_WARNING, "\tPath :-%s", m_BlkPath.c_str());
  }

  static void SetNumbers(ORVResult& block) {
    const ORVEntityTypeMap* row = FindEntityType(Content(block.m_etyp));
    if (!row) return;
    block.m_entityType = static_cast<_ORVEntityType>(row->m_orvType);
    block.m_baseEntityType = row->m_appType;
  }

  StateResults::Blocks& found_;
};

/// The walk runs inside HDF5's iteration: no exception may leave. Whatever becomes of one block, the others are wanted.
_ORVAction TakeResult(int status, int stage, void* name, void* block) {
  auto& scan = *static_cast<ResultScan*>(static_cast<ORVBlock*>(block));
  const bool taken = h5::Entry(false, [&] {
    if (status == kOk && stage == ORV_READ_HEADER) scan.HeaderWasRead(static_cast<const char*>(name));
    return true;
  });
  scan.out_of_memory = scan.out_of_memory || !taken;
  return ORV_ACTION_CONTINUE;
}

}  // namespace

int DiscoverResults(const char* file, int state, int block_type, std::vector<ORVResult*>& results) {
  StateResults::Blocks found;
  ResultScan scan(block_type, found);
  (void)scan.DiscoverBlock(file, state, ORV_READ_HEADER, TakeResult);  // a place that is not there holds no results
  return h5::Entry(kFail, [&] {
    for (auto& block : found) {
      results.push_back(block.get());
      block.release();  // NOLINT(bugprone-unused-return-value): the list has it now
    }
    return scan.out_of_memory ? kFail : kOk;
  });
}

// ---- State by state

StateResults::StateResults(const char* file) : reader_(holder_, file) {
  if (reader_) names_ = StateNames(*reader_);
}

int StateResults::NumStates() const { return static_cast<int>(std::min<std::size_t>(names_.size(), INT_MAX - 1)); }

int StateResults::Read(int state, Blocks& found) const {
  if (state < 1 || state > NumStates()) return kOk;
  const std::string& name = names_[static_cast<std::size_t>(state) - 1];
  if (name.empty()) return kOk;
  const std::string path = StatePath(name);
  const int status = ReadKind(path, ORV_RESULT_ENTITY, found);
  return status == kOk ? ReadKind(path, ORV_RESULT_ELEMENT, found) : status;
}

int StateResults::ReadKind(const std::string& state_path, int block_type, Blocks& found) const {
  const std::string path = state_path + "/" + FindBlockKey(block_type)->name;
  const h5::Group group = h5::OpenGroup(reader_->GetFileId(), path.c_str());
  if (!group) return kOk;
  ResultScan scan(block_type, found);
  (void)ORVBlockAccess::ExchangeReader(scan, &*reader_);  // it had none, and is gone before the reader
  WalkGroup(scan, group.get(), TakeResult, ORV_READ_HEADER);
  return scan.out_of_memory ? kFail : kOk;
}

}  // namespace orvio
