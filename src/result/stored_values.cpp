// The extents of a block's datasets as they are in the file.

#include "result/stored_values.h"

#include <string>

#include "block/reader_lease.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "result/result_access.h"

namespace orvio {
namespace {

std::uint64_t PointsIn(IOH5Reader& reader, hid_t group, ResultPart part, const char* name) {
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK];
  hsize_t points = 0;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
  const ResultParts parts(group);
  return reader.GetDatasetInfo(parts.of(part), name, rank, dims, points, type, nullptr) == kOk ? points : 0;
}

}  // namespace

int StateOf(const ORVResult& block, int state) {
  if (block.IsConstantBlk()) return 0;
  return block.IsMultistateBlk() ? -1 : state;
}

std::uint64_t StoredPoints(ORVResult& block, const char* file, int state, ResultPart part, const char* name) {
  const ReaderLease reader(block, file);
  if (!reader) return 0;
  const h5::Group group(ORVResultAccess::OpenGroup(block, state));
  return group ? PointsIn(*reader, group.get(), part, name) : 0;
}

std::uint64_t AllocatedPoints(ORVResult& block, const char* file, int state, ResultPart part, const char* name) {
  const ReaderLease reader(block, file);
  if (!reader) return 0;
  const h5::Group group(ORVResultAccess::OpenGroup(block, state));
  return group ? h5::AllocatedElements(ResultParts(group.get()).of(part), name) : 0;
}

std::uint64_t AllocatedPointsAtPath(ORVResult& block, const char* file, ResultPart part, const char* name) {
  const ReaderLease reader(block, file);
  if (!reader) return 0;
  const h5::Group group(reader->OpenGroup(reader->GetFileId(), block.GetBlkPathCstr(), H5P_DEFAULT));
  return group ? h5::AllocatedElements(ResultParts(group.get()).of(part), name) : 0;
}

}  // namespace orvio
