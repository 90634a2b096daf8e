// One road for the reads of all blocks that list entities, and one walk for all blocks of a section. The arrays are in
// entity_buffers.cpp.

#include "entity/entity_lists.h"

#include <memory>
#include <string>

#include "block/reader_lease.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"

namespace orvio {
namespace {

constexpr int kHeaderAndData = ORV_READ_HEADER | ORV_READ_DATA;

/// Entities or collectors of a block; one with none has no data.
std::int64_t CountOf(const ORVEntAttribute& block) { return block.m_nent; }
std::int64_t CountOf(const ORVCollector& block) { return block.m_ncoll; }

/// The part of a block that has its datasets.
h5::Group OpenData(hid_t block) {
  return h5::OpenGroup(block, h5::LinkExists(block, disk::orvblock) ? disk::orvblock : disk::data);
}

h5::StoredElementsOf StoredInState(ORVBlock& block, const char* file, int state) {
  return [&block, file, state](const char* name, std::uint64_t bytes_each) -> std::uint64_t {
    const ReaderLease reader(block, file);
    if (!reader) return 0;
    const h5::Group group(ORVBlockPathResolver(&block).OpenBlockGroupFor(state));
    const h5::Group data = group ? OpenData(group.get()) : h5::Group();
    return data ? h5::BackedElements(data.get(), name, bytes_each) : 0;
  };
}

}  // namespace

template <class Block>
int ReadEntityList(Block& block, const char* file, int state, int mode) {
  if (!file || !*file || !(mode & kHeaderAndData)) return kFail;
  if ((mode & kHeaderAndData) == kHeaderAndData) block.InitializeBlock(ORV_READ_DATA);
  if (mode & ORV_READ_HEADER && block.ReadBlock(file, state, ORV_READ_HEADER) != kOk) return kFail;
  if (!(mode & ORV_READ_DATA)) return kOk;
  if (CountOf(block) < 1 || !AllocateBuffers(block, StoredInState(block, file, state))) return kFail;
  const int status = block.ReadBlock(file, state, ORV_READ_DATA);
  if (status != kOk) FreeBuffers(block);
  return status;
}

namespace {

/// The scratch block of a walk, and where its copies go.
template <class Block>
class EntityScan : public Block {
 public:
  EntityScan(bool with_data, std::vector<Block*>& found) : with_data_(with_data), found_(found) {}
  EntityScan(const EntityScan&) = delete;
  EntityScan& operator=(const EntityScan&) = delete;
  ~EntityScan() override { FreeBuffers(*this); }

  /// What a block lacks must not be that of the one before it.
  int ReadHeader(hid_t header, int mode) override {
    Forget();
    return Block::ReadHeader(header, mode);
  }

  _ORVAction HeaderWasRead(int status) {
    if (status != kOk || CountOf(*this) < 1) return ORV_ACTION_SKIP;
    if (!with_data_) {
      Keep();
      return ORV_ACTION_CONTINUE;
    }
    const h5::StoredElementsOf stored = [this](const char* name, std::uint64_t bytes_each) {
      const h5::Group data = OpenOwnData();
      return data ? h5::BackedElements(data.get(), name, bytes_each) : 0;
    };
    return AllocateBuffers(*this, stored) ? ORV_ACTION_CONTINUE : ORV_ACTION_SKIP;
  }

  _ORVAction DataWereRead(int status) {
    if (status == kOk && CountOf(*this) > 0) {  // else there was no header
      Keep();
      this->InitializeBlock(ORV_READ_DATA);  // the copy has the arrays now
    }
    Forget();
    return ORV_ACTION_CONTINUE;
  }

 private:
  void Keep() {
    auto copy = std::make_unique<Block>(*this);
    found_.push_back(copy.get());
    copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now
  }

  void Forget() {
    FreeBuffers(*this);
    this->InitializeBlock(ORV_READ_HEADER);
    this->m_nIncremental = 0;
  }

  h5::Group OpenOwnData() const {
    const h5::Group own = h5::OpenGroup(this->GetH5Reader()->GetFileId(), this->GetBlkPathCstr());
    const bool single = this->GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
    return own ? h5::OpenGroup(own.get(), single ? "." : disk::data) : h5::Group();
  }

  bool with_data_;
  std::vector<Block*>& found_;
};

/// The walk runs inside HDF5's iteration: no exception may leave. Whatever becomes of one block, the others are wanted.
template <class Block>
_ORVAction TakeBlock(int status, int stage, void* /*name*/, void* block) {
  auto& scan = *static_cast<EntityScan<Block>*>(static_cast<ORVBlock*>(block));
  return h5::Entry(ORV_ACTION_SKIP,
                   [&] { return stage == ORV_READ_HEADER ? scan.HeaderWasRead(status) : scan.DataWereRead(status); });
}

}  // namespace

template <class Block>
void ReadEntityLists(const char* file, int state, int mode, std::vector<Block*>& blocks) {
  if (!file || !*file || !(mode & ORV_READ_HEADER)) return;
  EntityScan<Block> scan((mode & ORV_READ_DATA) != 0, blocks);
  (void)scan.IterateBlock(file, state, mode & kHeaderAndData, TakeBlock<Block>);  // what is not there has no blocks
}

template int ReadEntityList(ORVEntAttribute&, const char*, int, int);
template int ReadEntityList(ORVCollector&, const char*, int, int);
template void ReadEntityLists(const char*, int, int, std::vector<ORVEntAttribute*>&);
template void ReadEntityLists(const char*, int, int, std::vector<ORVIdentifiers*>&);
template void ReadEntityLists(const char*, int, int, std::vector<ORVCollector*>&);

}  // namespace orvio
