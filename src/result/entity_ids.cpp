// Counting of entities in the headers of a state, and reading of the integers beside their values. The counts of a list
// are those of the first state, so each question renews them.

#include "result/entity_ids.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>
#include <vector>

#include "filer/container.h"
#include "filer/process_state.h"
#include "h5/extents.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "orvio/oh5_reader.h"
#include "result/result_datasets.h"
#include "result/stored_values.h"

namespace orvio {
namespace {

/// QUIRK: a block without entities is not looked at, so one that has none in a state is left out of all questions that
/// follow. Hosts take a block out of a list by a count of 0. Pinned by ModelCounts.ABlockWithoutEntitiesStaysOut.
[[nodiscard]] bool RenewCount(ORVResult& block, const char* file, int state) {
  if (block.m_nent == 0) return false;
  const int status = block.ReadAttribute(file, StateOf(block, state), ORV_READ_HEADER, ORV_ATT_NENT);
  return status == kOk && block.m_nent > 0;
}

}  // namespace

int CountEntities(const char* file, const ResultList& blocks, int state) {
  constexpr std::int64_t kTooMany = std::int64_t{INT_MAX} + 1;
  const h5::ShortLease held(file);
  std::int64_t total = 0;
  for (ORVResult* block : blocks) {
    if (block && RenewCount(*block, file, state)) total = std::min(total + std::min(block->m_nent, kTooMany), kTooMany);
  }
  return total < kTooMany ? static_cast<int>(total) : 0;
}

namespace {

std::int64_t NumberOfStates(const ORVContainer& data) {
  if (data.m_pStateIndex) return data.m_pStateIndex->GetNumState();
  int states = 0;
  (void)ReadNumState(data.path.c_str(), &states);  // a file that cannot be opened has none
  return states;
}

}  // namespace

int LargestEntityCount(const ORVContainer& data, const ResultList& blocks) {
  if (blocks.empty()) return 0;
  const h5::ShortLease held(data.path.c_str());
  const auto states = static_cast<int>(std::min<std::int64_t>(NumberOfStates(data), INT_MAX - 1));
  int largest = 0;
  for (int state = 1; state <= states; ++state) {
    largest = std::max(largest, CountEntities(data.path.c_str(), blocks, state));
  }
  return largest;
}

namespace {

/// One integer for each entity: the item, and the members of a block that its read fills.
struct EntityArray {
  _ORVBlockAtt att;
  void* ORVResult::*buffer;
  _ORVDataType ORVResult::*type;
};

constexpr EntityArray kIds = {ORV_ATT_IDS, &ORVResult::m_entid, &ORVResult::m_entidType};
constexpr EntityArray kFrameIds = {ORV_ATT_FID, &ORVResult::m_fid, &ORVResult::m_fidType};

bool FitsInt(std::int64_t number) { return std::in_range<int>(number); }

class EntityReader {
 public:
  EntityReader(const char* file, int state, const EntityArray& array) : file_(file), state_(state), array_(array) {}

  /// Reads the integers of one block behind those before it, if all are `most` at most.
  void Append(ORVResult& block, std::size_t most);
  [[nodiscard]] EntityIntegers Take() const;

 private:
  [[nodiscard]] bool IsBacked(ORVResult& block);
  [[nodiscard]] bool Read(ORVResult& block);

  const char* file_;
  int state_;
  const EntityArray& array_;
  std::uint64_t unbacked_ = h5::kUnbackedBytes;  ///< what may still be made on the word of headers
  std::vector<std::int64_t> of_block_;           ///< wide, so that a number that no int holds shows
  std::vector<int> numbers_;
};

bool EntityReader::IsBacked(ORVResult& block) {
  constexpr std::uint64_t kBytesEach = sizeof(std::int64_t) + sizeof(int);
  const auto count = static_cast<std::uint64_t>(block.m_nent);
  if (count <= unbacked_ / kBytesEach) {
    unbacked_ -= count * kBytesEach;
    return true;
  }
  const ResultKind* kind = FindResultKind(block.GetKey());
  const auto dataset = kind ? FindDataset(block, *kind, array_.att) : std::nullopt;
  return dataset && AllocatedPoints(block, file_, StateOf(block, state_), dataset->part, dataset->name) >= count;
}

bool EntityReader::Read(ORVResult& block) {
  of_block_.resize(static_cast<std::size_t>(block.m_nent));
  const Swapped<void*> buffer(block.*array_.buffer, of_block_.data());
  const Swapped type(block.*array_.type, ORV_LONG);
  return block.ReadAttribute(file_, StateOf(block, state_), ORV_READ_DATA, array_.att) == kOk &&
         std::ranges::all_of(of_block_, FitsInt);
}

void EntityReader::Append(ORVResult& block, std::size_t most) {
  if (!RenewCount(block, file_, state_)) return;
  const bool has_room = static_cast<std::uint64_t>(block.m_nent) <= most - numbers_.size();
  if (!has_room || !IsBacked(block) || !Read(block)) return;
  for (const std::int64_t number : of_block_) numbers_.push_back(static_cast<int>(number));
}

EntityIntegers EntityReader::Take() const {
  if (numbers_.empty()) return {};
  CArray<int> array = ZeroedArray<int>(numbers_.size());
  if (!array) return {};
  std::ranges::copy(numbers_, array.get());
  return {std::move(array), static_cast<int>(numbers_.size())};
}

std::optional<EntityIntegers> Read(const char* file, const ResultList& blocks, int state, const EntityArray& array) {
  const h5::ShortLease held(file);
  const int total = CountEntities(file, blocks, state);
  if (total < 1) return std::nullopt;
  EntityReader reader(file, state, array);
  for (ORVResult* block : blocks) {
    if (block) reader.Append(*block, static_cast<std::size_t>(total));
  }
  return reader.Take();
}

}  // namespace

std::optional<EntityIntegers> ReadEntityIds(const char* file, const ResultList& blocks, int state) {
  return Read(file, blocks, state, kIds);
}

std::optional<EntityIntegers> ReadFrameIds(const char* file, const ResultList& blocks, int state) {
  return Read(file, blocks, state, kFrameIds);
}

}  // namespace orvio
