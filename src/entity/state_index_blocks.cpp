// The search for the block of each state that an index is read from. What is read from it is the index's own matter.

#include "entity/state_index_blocks.h"

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "block/states.h"
#include "block/walk.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/status.h"

namespace orvio {
namespace {

/// A walk through the blocks of a state until one of them can be used.
class BlockSearch : public ORVBlockHelper {
 public:
  using Use = std::function<int(const ORVBlock& block)>;

  BlockSearch(IOH5Reader& reader, bool filter, Use use) : ORVBlockHelper(filter), use_(std::move(use)) {
    m_pH5Reader = &reader;
  }

  int Run(hid_t group) {
    WalkGroup(*this, group, Try, ORV_READ_HEADER);
    return status_;
  }

 private:
  static _ORVAction Try(int status, int /*stage*/, void* /*where*/, void* block) {
    auto& search = *static_cast<BlockSearch*>(static_cast<ORVBlock*>(block));
    if (status == kOk) search.status_ = search.use_(search);
    return search.status_ == kOk ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE;
  }

  Use use_;
  int status_ = kFail;
};

}  // namespace

h5::Group OpenIndexPart(h5::Group block, bool single, const char* part) {
  return single || !block ? std::move(block) : h5::OpenGroup(block.get(), part);
}

StateIndexBlocks::StateIndexBlocks(ORVBlockHelper& index)
    : index_(index), reader_(*ORVBlockAccess::Reader(index)), states_(StateNames(reader_)) {}

int StateIndexBlocks::ReadPart(h5::Group block, const char* part, const ReadIndexPart& read) const {
  const h5::Group group = OpenIndexPart(std::move(block), single_, part);
  return group ? read(group.get()) : kFail;
}

int StateIndexBlocks::ReadFirstBlock(int state, bool filter, const char* part, const ReadIndexPart& read) {
  if (index_.UpdateBlockPath(reader_.GetFileId(), state + 1, filter) != kOk) return kFail;
  if (!found_) single_ = index_.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  return ReadPart(h5::OpenGroup(reader_.GetFileId(), index_.GetBlkPathCstr()), part, read);
}

/// The first block in the order of their names that can be read. Solvers put blocks without an index beside those with
/// one.
int StateIndexBlocks::ReadAnyBlock(int state, bool filter, const char* part, const ReadIndexPart& read) {
  const std::string& name = states_[static_cast<std::size_t>(state)];
  const h5::Group group = name.empty() ? h5::Group() : h5::OpenGroup(reader_.GetFileId(), StatePath(name).c_str());
  if (!group) return kFail;
  BlockSearch search(reader_, filter, [&](const ORVBlock& block) {
    if (!found_) single_ = block.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    const int status = ReadPart(h5::OpenGroup(reader_.GetFileId(), block.GetBlkPathCstr()), part, read);
    if (status == kOk) index_.SetBlkPath(block.GetBlkPath());
    return status;
  });
  return search.Run(group.get());
}

int StateIndexBlocks::ReadHeader(bool filter, const ReadIndexPart& read, const std::function<bool()>& has_columns) {
  if (states_.empty()) return kFail;
  if (index_.GetKey() == kNoKey) {
    const auto read_columns = [&](hid_t part) { return read(part) == kOk && has_columns() ? kOk : kFail; };
    if (ReadAnyBlock(0, filter, disk::header, read_columns) == kOk) return kOk;
  }
  return ReadFirstBlock(0, filter, disk::header, read);
}

int StateIndexBlocks::ReadRow(int state, bool filter, const ReadIndexPart& read) {
  if (index_.GetKey() == kNoKey) {
    const int status = ReadAnyBlock(state, filter, disk::index, read);
    found_ = found_ || status == kOk;
    return status;
  }
  if (found_) {
    h5::Group block = OpenInState(index_, states_[static_cast<std::size_t>(state)]);
    if (block) return ReadPart(std::move(block), disk::index, read);
  }
  const int status = ReadFirstBlock(state, filter, disk::index, read);
  found_ = found_ || status == kOk;
  return status;
}

bool HasRowsOfStates(hid_t group, bool by_default) {
  const std::string name = h5::NameOf(group);
  const auto below = [&](const char* section) {
    return name.starts_with(std::string("/") + disk::post + "/" + section + "/");
  };
  if (below(disk::singlestate)) return false;
  return below(disk::multistate) || by_default;
}

bool FitsElement(_ORVDataType type, std::size_t size) {
  const h5::TypeRow* row = h5::FindNumericType(type);
  return row && row->size == size;
}

}  // namespace orvio
