// A fetch of whole blocks, each at its own path, with their index rows.

#include <algorithm>
#include <climits>
#include <optional>

#include "block/reader_lease.h"
#include "filer/process_state.h"
#include "h5/c_array.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "result/hyper_slab.h"
#include "result/result_complex.h"
#include "result/result_kinds.h"
#include "result/stored_values.h"
#include "result/value_fetch.h"
#include "result/value_fetch_plan.h"

namespace orvio {
namespace {

/// How much of each array is taken, by one block or by all.
struct Amounts {
  std::uint64_t values = 0;
  std::uint64_t entities = 0;
  std::uint64_t index = 0;

  /// False when a sum is more than a host can count.
  [[nodiscard]] bool Add(const Amounts& more) {
    values += more.values;
    entities += more.entities;
    index += more.index;
    return std::max({values, entities, index}) <= INT_MAX;
  }
};

std::uint64_t NotNegative(std::int64_t count) { return static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0)); }

/// The slab of all values of a block for one state. Nothing for a block of several states, whose values have no room in
/// the answer.
std::optional<ORVHyperSlab> OneState(const ORVResult& block) {
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind || (kind->IsMultistate() && block.m_nstate != 1)) return std::nullopt;
  return WholeSlab(block);
}

/// What one block takes: nothing at all for one without values, whatever its header says of entities. No answer for a
/// count that no host can hold.
std::optional<Amounts> AmountsOf(const ORVResult& block) {
  auto slab = OneState(block);
  Amounts amounts;
  if (!slab) return amounts;
  PointAtOwnArrays(*slab);
  if (h5::HasZero(slab->m_rank, slab->m_count)) return amounts;
  amounts = {CountOf(*slab), NotNegative(block.m_nent), NotNegative(block.m_nindex)};
  const bool overflown = amounts.values == 0;
  if (overflown || std::max({amounts.values, amounts.entities, amounts.index}) > INT_MAX) return std::nullopt;
  return amounts;
}

/// The arrays of one fetch, and what is in them so far.
class PathFetch {
 public:
  PathFetch(const char* file, const std::vector<ORVResult*>& blocks) : file_(file), blocks_(blocks) {}
  ~PathFetch();
  PathFetch(const PathFetch&) = delete;
  PathFetch& operator=(const PathFetch&) = delete;

  [[nodiscard]] bool Prepare(bool want_ids);
  void ReadBlocks();
  int blocks_read() const { return blocks_read_; }
  void Deliver(ORVFetchValuesWithIndex& values);

 private:
  [[nodiscard]] bool Size();
  [[nodiscard]] bool IsBacked() const;
  [[nodiscard]] std::optional<std::uint64_t> ReadBlock(ORVResult& block);
  [[nodiscard]] std::optional<std::uint64_t> ReadParts(ORVResult& block);

  const char* file_;
  const std::vector<ORVResult*>& blocks_;
  Amounts total_;
  Amounts read_;
  int blocks_read_ = 0;
  std::vector<ORVResult*> pointing_;  ///< blocks with pointers into the arrays
  CArray<float> values_;
  CArray<int> ids_;
  CArray<int> index_idents_;
  CArray<float> index_values_;
};

void PointAtNothing(ORVResult& block, bool with_ids) {
  for (void** pointer : {&block.m_res, &block.m_indexident, &block.m_indexval}) *pointer = nullptr;
  if (with_ids) block.m_entid = nullptr;
}

/// What its next read would fill beyond the end, as its own type is wider than that of the arrays, is forgotten: a query
/// may have found that type in the file.
void PointAtWhatFits(ORVResult& block, bool with_ids) {
  if (h5::IsWider(block.m_resType, sizeof(float))) block.m_res = nullptr;
  if (with_ids && h5::IsWider(block.m_entidType, sizeof(int))) block.m_entid = nullptr;
  if (h5::IsWider(block.m_indexidentType, sizeof(int))) block.m_indexident = nullptr;
  if (h5::IsWider(block.m_indexvalType, sizeof(float))) block.m_indexval = nullptr;
}

/// Arrays that nobody got are freed now.
PathFetch::~PathFetch() {
  if (!values_) return;
  for (ORVResult* block : pointing_) PointAtNothing(*block, ids_ != nullptr);
}

bool PathFetch::Size() {
  for (const ORVResult* block : blocks_) {
    if (!block) continue;
    const auto amounts = AmountsOf(*block);
    if (!amounts || !total_.Add(*amounts)) return false;
  }
  return total_.values > 0 && total_.entities > 0;
}

bool PathFetch::IsBacked() const {
  std::uint64_t unbacked = total_.values + total_.index;
  if (unbacked <= h5::kUnbackedBytes / sizeof(float)) return true;
  for (ORVResult* block : blocks_) {
    const auto amounts = block ? AmountsOf(*block) : std::nullopt;
    if (!amounts) continue;
    unbacked -= std::min(amounts->values, AllocatedPointsAtPath(*block, file_, ResultPart::kData, disk::res));
    unbacked -= std::min(amounts->index, AllocatedPointsAtPath(*block, file_, ResultPart::kIndex, disk::indexval));
  }
  return unbacked <= h5::kUnbackedBytes / sizeof(float);
}

bool PathFetch::Prepare(bool want_ids) {
  if (!Size() || !IsBacked()) return false;
  values_ = ZeroedArray<float>(total_.values);
  if (want_ids) ids_ = ZeroedArray<int>(total_.entities);
  if (total_.index > 0) {
    index_idents_ = ZeroedArray<int>(total_.index);
    index_values_ = ZeroedArray<float>(total_.index);
  }
  return values_ && (ids_ || !want_ids) && (total_.index == 0 || (index_idents_ && index_values_));
}

/// Reads one index dataset of a block into the member of its name.
int ReadIndexPart(ORVResult& block, hid_t group, _ORVBlockAtt att) {
  int rank = 0;
  std::uint64_t start[2] = {};
  std::uint64_t count[2] = {};
  (void)block.GetAttributeSelection(att, &rank, start, count);  // serves both items
  return block.ReadSelAtt(group, 0, att, rank, start, count, nullptr, nullptr);
}

/// Values and index rows of a block whose buffers are set; answers the number of values.
std::optional<std::uint64_t> PathFetch::ReadParts(ORVResult& block) {
  auto slab = OneState(block);
  if (!slab) return std::nullopt;
  PointAtOwnArrays(*slab);
  const ReaderLease reader(block, file_);
  if (!reader || block.GetBlkPath().empty()) return std::nullopt;
  const h5::Group group(reader->OpenGroup(reader->GetFileId(), block.GetBlkPathCstr(), H5P_DEFAULT));
  const bool ok = group && block.ReadSelAtt(group.get(), 0, ORV_ATT_RES, slab->m_rank, slab->m_start, slab->m_count,
                                            nullptr, nullptr) == kOk;
  if (!ok) return std::nullopt;
  const bool index_ok = block.m_nindex < 1 || (ReadIndexPart(block, group.get(), ORV_ATT_INDEXIDENT) == kOk &&
                                               ReadIndexPart(block, group.get(), ORV_ATT_INDEXVAL) == kOk);
  if (!index_ok) return std::nullopt;
  const bool halved = IsConverted(block, {slab->m_rank, slab->m_start, slab->m_count});
  return halved ? CountOf(*slab) / kComplexParts : CountOf(*slab);
}

std::optional<std::uint64_t> PathFetch::ReadBlock(ORVResult& block) {
  const Swapped type(block.m_resType, ORV_FLOAT);
  const Swapped id_type(block.m_entidType, ids_ ? ORV_INT : block.m_entidType);
  const Swapped ident_type(block.m_indexidentType, ORV_INT);
  const Swapped value_type(block.m_indexvalType, ORV_FLOAT);
  block.m_res = values_.get() + read_.values;
  block.m_indexident = index_idents_ ? index_idents_.get() + read_.index : nullptr;
  block.m_indexval = index_values_ ? index_values_.get() + read_.index : nullptr;
  block.m_readIds = ids_ ? 1 : 0;
  if (ids_) block.m_entid = ids_.get() + read_.entities;
  const auto values = ReadParts(block);
  const bool ids_missing = ids_ && !block.m_readIds;  // the read says so
  block.m_readIds = 0;
  if (values && ids_missing) std::fill_n(ids_.get() + read_.entities, block.m_nent, 0);
  return values;
}

void PathFetch::ReadBlocks() {
  pointing_.reserve(blocks_.size());
  for (ORVResult* block : blocks_) {
    const auto amounts = block ? AmountsOf(*block) : std::nullopt;
    if (!amounts || amounts->values == 0) continue;
    pointing_.push_back(block);
    const auto values = ReadBlock(*block);
    if (!values) {
      PointAtNothing(*block, ids_ != nullptr);
      continue;
    }
    PointAtWhatFits(*block, ids_ != nullptr);
    ++blocks_read_;
    (void)read_.Add({*values, amounts->entities, amounts->index});  // no more than was counted before
  }
}

void PathFetch::Deliver(ORVFetchValuesWithIndex& values) {
  values.m_idCount = static_cast<int>(read_.entities);
  values.m_valueCount = static_cast<int>(read_.values);
  values.m_blockCount = blocks_read_;
  values.m_indexCount = static_cast<int>(read_.index / static_cast<std::uint64_t>(blocks_read_));
  values.m_ids = ids_.release();
  values.m_values = values_.release();
  values.m_indexIdent = index_idents_.release();
  values.m_indexVal = index_values_.release();
}

}  // namespace

int FetchBlocksAtPaths(const char* file, const std::vector<ORVResult*>& blocks, ORVFetchValuesWithIndex& values) {
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    PathFetch fetch(file, blocks);
    if (!fetch.Prepare(values.m_wantIds != 0)) return kFail;
    fetch.ReadBlocks();
    if (fetch.blocks_read() == 0) return kFail;
    fetch.Deliver(values);
    return kOk;
  });  // NOLINT(clang-analyzer-unix.Malloc): the owners of the arrays free them; the check loses sight of one
}

}  // namespace orvio
