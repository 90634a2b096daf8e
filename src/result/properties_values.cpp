// The two ways to the records of a properties block: into the block itself, or into arrays for the host.

#include "result/properties_values.h"

#include <climits>
#include <cstdint>
#include <optional>
#include <utility>

#include "block/reader_lease.h"
#include "h5/extents.h"
#include "h5/handle.h"
#include "h5/status.h"
#include "result/properties_buffers.h"
#include "result/result_access.h"
#include "result/result_datasets.h"

namespace orvio {
namespace {

h5::StoredElementsOf StoredInState(ORVProperties& block, const char* file, int state) {
  return [&block, file, state](const char* name, std::uint64_t bytes_each) -> std::uint64_t {
    const ReaderLease reader(block, file);
    if (!reader) return 0;
    const h5::Group group(ORVResultAccess::OpenGroup(block, state));
    if (!group) return 0;
    const ResultParts parts(group.get());
    return h5::BackedElements(parts.of(ResultPart::kData), name, bytes_each);
  };
}

/// Where a damaged file has a block of another kind, its header has said nothing of records.
bool IsProperties(const ORVProperties& block) { return block.GetKey() == ORV_RESULT_PROPERTIES; }

[[nodiscard]] int ReadRecords(ORVProperties& block, const char* file, int state) {
  if (!IsProperties(block) || !AllocateBuffers(block, StoredInState(block, file, state))) return kFail;
  const int status = block.ReadBlock(file, state, ORV_READ_DATA);
  if (status != kOk) FreeBuffers(block);
  return status;
}

}  // namespace

int ReadProperty(ORVProperties& block, const char* file, int state, int sections) {
  if (!(sections & (ORV_READ_HEADER | ORV_READ_DATA))) return kFail;
  if (sections & ORV_READ_HEADER) {
    block.Initialize();
    const int status = block.ReadBlock(file, state, ORV_READ_HEADER);
    if (status != kOk) return status;
  }
  return sections & ORV_READ_DATA ? ReadRecords(block, file, state) : kOk;
}

namespace {

/// A block with no arrays but those that it is given here.
class Record {
 public:
  explicit Record(const ORVProperties& listed) : block(listed) {
    block.Initialize();
    block.m_entid = nullptr;
  }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() { FreeBuffers(block); }

  ORVProperties block;
};

/// Numbers of all entities; nothing when no int holds the count.
std::optional<int> CountOf(const ORVProperties& block, int each) {
  std::int64_t count = 0;
  if (__builtin_mul_overflow(block.m_nent, std::int64_t{each}, &count)) return std::nullopt;
  if (count < 0 || count > INT_MAX) return std::nullopt;
  return static_cast<int>(count);
}

/// Takes an array over; null where there is no count.
template <class T, class Array>
void Take(CArray<T>& to, Array*& from) {
  to.reset(static_cast<T*>(std::exchange(from, nullptr)));
}

[[nodiscard]] int ReadValues(ORVProperties& block, const char* file, int state, PropertyValues& values) {
  const auto ids = CountOf(block, 1);
  const auto ints = CountOf(block, block.m_nbint);
  const auto floats = CountOf(block, block.m_nbfloat);
  if (!ids || !ints || !floats) return kFail;
  const int status = ReadRecords(block, file, state);
  if (status != kOk) return status;
  values.id_count = *ids;
  values.int_count = *ints;
  values.float_count = *floats;
  Take(values.ids, block.m_entid);
  Take(values.ints, block.m_iparam);
  Take(values.floats, block.m_fparam);
  return kOk;
}

}  // namespace

int ReadPropertyValues(ORVProperties& listed, const char* file, int state, PropertyValues& values) {
  Record record(listed);
  const int status = record.block.ReadBlock(file, state, ORV_READ_HEADER);
  if (status != kOk) return status;
  if (!IsProperties(record.block)) return kFail;
  if (!HasBuffers(listed)) listed = record.block;
  return record.block.m_nent > 0 ? ReadValues(record.block, file, state, values) : kOk;
}

}  // namespace orvio
