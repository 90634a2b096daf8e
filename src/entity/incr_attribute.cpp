// The merge of attribute blocks, which stand in the "attributes" of states. What a state builds upon is worked out in
// incr_states.cpp and incr_chain.cpp; the reading of a single block is in entity_lists.cpp.

#include "entity/incr_attribute.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>
#include <string>

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "block/states.h"
#include "entity/entity_lists.h"
#include "entity/id_lookup.h"
#include "entity/incr_chain.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "h5/text_field.h"

namespace orvio {
namespace {

/// Whether a state has the block at all: its group tells faster than a read.
bool IsInState(const ORVEntAttribute& attribute, IOH5Reader& reader, const std::string& state_name) {
  const std::string path =
      StatePath(state_name) + "/" + disk::attributes + "/" + std::string(Content(attribute.m_etyp));
  return static_cast<bool>(h5::OpenGroup(reader.GetFileId(), path.c_str()));
}

}  // namespace

/// QUIRK: a block that was not met before is not looked for in the first state, which a reader has seen when it opened the
/// file; a host that asks for it there reads it plainly. Pinned by IncrAttribute.NotMetBeforeIsNotLookedForInTheFirstState.
int LocateAttribute(ORVEntAttribute& attribute, const char* file, int state) {
  constexpr int kFirstSearched = 2;
  if (attribute.GetKey() != kAttributeKey) return 0;
  if (attribute.IsSingleStatePath()) return state;
  const ReaderLease reader(attribute, file);
  if (!reader) return 0;
  const std::vector<std::string> names = StateNames(*reader);
  for (std::int64_t s = std::min<std::int64_t>(state, std::ssize(names)); s >= kFirstSearched; --s) {
    if (!IsInState(attribute, *reader, names[static_cast<std::size_t>(s) - 1])) continue;
    ORVEntAttribute trial(attribute);  // what a damaged header leaves in it must not reach the next one
    if (trial.ReadBlock(file, static_cast<int>(s), ORV_READ_HEADER) != kOk) continue;
    if (trial.GetKey() != kAttributeKey) return 0;
    return attribute.ReadBlock(file, static_cast<int>(s), ORV_READ_HEADER) == kOk ? static_cast<int>(s) : 0;
  }
  return 0;
}

namespace {

int* Integers(void* array) { return static_cast<int*>(array); }

/// On failure the array stays as it was.
[[nodiscard]] bool Resize(void*& array, std::int64_t rows, std::int64_t columns) {
  std::size_t count = 0;
  std::size_t bytes = 0;
  if (__builtin_mul_overflow(rows, columns, &count) || __builtin_mul_overflow(count, sizeof(int), &bytes)) return false;
  void* resized = std::realloc(array, bytes);
  if (resized) array = resized;
  return resized != nullptr;
}

/// An attribute without arrays of its own, which notes whether its integers are stored: where they are not, a read leaves
/// zeros.
class NotedAttribute : public ORVEntAttribute {
 public:
  explicit NotedAttribute(const ORVEntAttribute& other) : ORVEntAttribute(other) { InitializeBlock(ORV_READ_DATA); }

  bool has_integers() const { return has_integers_; }

 protected:
  int ReadData(hid_t data, int mode) override {
    has_integers_ = m_nuid > 0 && h5::LinkExists(data, disk::uid);
    return ORVEntAttribute::ReadData(data, mode);
  }

 private:
  bool has_integers_ = false;
};

[[nodiscard]] bool HasIntegers(const ORVEntAttribute& attribute, const char* file, int state) {
  NotedAttribute noted(attribute);
  return attribute.m_uid && noted.ReadBlock(file, state, ORV_READ_DATA) == kOk && noted.has_integers();
}

/// The changes of one state.
class Change {
 public:
  explicit Change(const ORVEntAttribute& whole) : block_(whole) {}
  ~Change() { FreeBuffers(block_); }
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

  [[nodiscard]] bool Read(const char* file, int state) {
    if (ReadEntityList<ORVEntAttribute>(block_, file, state, ORV_READ_HEADER) != kOk) return false;
    block_.m_length = 0;  // titles are not merged
    return ReadEntityList<ORVEntAttribute>(block_, file, state, ORV_READ_DATA) == kOk && block_.has_integers();
  }

  const ORVEntAttribute& block() const { return block_; }

 private:
  NotedAttribute block_;
};

/// Puts changes into an attribute.
class AttributeMerge {
 public:
  AttributeMerge(ORVEntAttribute& whole, bool has_integers, bool append_new);
  [[nodiscard]] int Apply(const ORVEntAttribute& change);
  void ShrinkArrays();

 private:
  [[nodiscard]] bool Append(int id, const int* integers, std::int64_t more);
  [[nodiscard]] bool Grow(std::int64_t more);
  int* Row(std::int64_t row) { return Integers(whole_.m_uid) + row * whole_.m_nuid; }
  void SetIntegers(std::int64_t row, const int* integers);

  ORVEntAttribute& whole_;
  bool has_integers_;  ///< else an array of them has zeros alone, also for new entities
  bool append_new_;
  std::int64_t capacity_;  ///< entities that the arrays have room for
  ORVIdLookup rows_;
};

AttributeMerge::AttributeMerge(ORVEntAttribute& whole, bool has_integers, bool append_new)
    : whole_(whole),
      has_integers_(has_integers),
      append_new_(append_new),
      capacity_(whole.m_nent),
      rows_(whole.m_nent) {
  const int* ids = Integers(whole.m_entid);
  const std::int64_t count = ids ? std::min<std::int64_t>(whole.m_nent, INT_MAX) : 0;
  for (std::int64_t i = 0; i < count; ++i) rows_.Set(ids[i], static_cast<int>(i + 1));
}

/// A change that lacks ids or integers says nothing, and neither does one whose integers are not those of the whole. A
/// whole without integers gets the ids of new entities alone.
int AttributeMerge::Apply(const ORVEntAttribute& change) {
  const int* ids = Integers(change.m_entid);
  const int* integers = Integers(change.m_uid);
  if (!ids || !integers || !whole_.m_entid) return kOk;
  if (has_integers_ && change.m_nuid != whole_.m_nuid) return kOk;
  for (std::int64_t i = 0; i < change.m_nent; ++i) {
    const int row = rows_.Find(ids[i]);
    const int* own = integers + i * change.m_nuid;
    if (row > 0) {
      SetIntegers(row - 1, own);
    } else if (append_new_ && !Append(ids[i], own, change.m_nent)) {
      return kFail;
    }
  }
  return kOk;
}

/// QUIRK: rows count from 1, but that of an added entity is entered as a count from 0: a later change of it goes over the
/// integers of the entity before it. Readers of other makers do the same, and a file must read alike with all of them.
/// Pinned by IncrAttributeAppend.LaterChangesOfAnAddedEntityGoOverTheOneBefore.
bool AttributeMerge::Append(int id, const int* integers, std::int64_t more) {
  if (whole_.m_nent >= capacity_ && !Grow(more)) return false;
  Integers(whole_.m_entid)[whole_.m_nent] = id;
  SetIntegers(whole_.m_nent, integers);
  rows_.Set(id, static_cast<int>(whole_.m_nent));
  ++whole_.m_nent;
  return true;
}

bool AttributeMerge::Grow(std::int64_t more) {
  constexpr std::int64_t kSpareEntities = 1000;
  std::int64_t capacity = 0;
  if (__builtin_add_overflow(capacity_, more, &capacity) || capacity > INT_MAX - kSpareEntities) return false;
  capacity += kSpareEntities;
  if (!Resize(whole_.m_entid, capacity, 1)) return false;
  if (whole_.m_uid) {
    if (!Resize(whole_.m_uid, capacity, whole_.m_nuid)) return false;
    std::fill(Row(capacity_), Row(capacity), 0);
  }
  capacity_ = capacity;
  return true;
}

void AttributeMerge::SetIntegers(std::int64_t row, const int* integers) {
  if (has_integers_) std::copy_n(integers, whole_.m_nuid, Row(row));
}

void AttributeMerge::ShrinkArrays() {
  if (capacity_ == whole_.m_nent) return;
  (void)Resize(whole_.m_entid, whole_.m_nent, 1);  // one that cannot shrink serves as well
  if (whole_.m_uid) (void)Resize(whole_.m_uid, whole_.m_nent, whole_.m_nuid);
}

[[nodiscard]] int Merge(ORVEntAttribute& whole, const IncrChain& chain, const IncrAttributeRequest& request) {
  AttributeMerge merge(whole, HasIntegers(whole, request.file, chain.base), request.append_new);
  int status = kOk;
  for (const int state : chain.changes) {
    Change change(whole);
    if (!change.Read(request.file, state)) continue;  // what cannot be read is left out
    status = merge.Apply(change.block());
    if (status != kOk) break;
  }
  merge.ShrinkArrays();
  return status;
}

[[nodiscard]] int ReadChain(ORVEntAttribute& attribute, const IncrChain& chain, const IncrAttributeRequest& request) {
  const h5::ShortLease held(request.file);
  const int status = ReadEntityList(attribute, request.file, chain.base, ORV_READ_HEADER | ORV_READ_DATA);
  return status != kOk || chain.changes.empty() ? status : Merge(attribute, chain, request);
}

/// Asked of a copy, as a damaged header leaves its marks.
[[nodiscard]] bool HasEntities(ORVEntAttribute attribute, const char* file, int state) {
  return ReadEntityList(attribute, file, state, ORV_READ_HEADER) == kOk && attribute.m_nent > 0;
}

}  // namespace

int ReadIncrAttribute(ORVEntAttribute& attribute, const IncrAttributeRequest& request) {
  IncrStateMap own;
  if (ReadStateRecords(request.file, attribute, request.state, own) != kOk) return kFail;
  const std::optional<std::size_t> place = FindStateRecord(own, request.state);
  return place ? ReadChain(attribute, ChainOf(own, *place, request.state, request.last), request) : kFail;
}

int ReadIncrAttribute(ORVEntAttribute& attribute, const IncrStateMap& map, const IncrAttributeRequest& request) {
  const std::optional<std::size_t> place = FindStateRecord(map, request.state);
  if (!place) return kFail;
  const IncrChain chain = ChainOf(map, *place, request.state, request.last);
  if (!chain.full && !HasEntities(attribute, request.file, chain.base)) return ReadIncrAttribute(attribute, request);
  return ReadChain(attribute, chain, request);
}

}  // namespace orvio
