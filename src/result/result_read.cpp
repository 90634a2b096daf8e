// Reading of the values of a result block, whole or a hyperslab of them, with what stands beside them. Single items
// are in result_attribute.cpp, the header in result_header.cpp.

#include "block/block_keys.h"
#include "block/file_in_use_by.h"
#include "block/reader_lease.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "result/result_cache.h"
#include "result/result_complex.h"
#include "result/result_datasets.h"
#include "result/result_items.h"

using namespace orvio;

namespace {

/// Shape of `res` in a whole read.
///
/// QUIRK: element kinds are taken as elements, layers and components whatever other axes they have, so a whole read
/// of complex or multi-state element values fails. Hosts read those through selections and take the failure for "not
/// this way". Pinned by ResultRead.TakesElementValuesForThreeAxesWhateverTheKind.
Shape WholeShape(const ORVResult& block, const ResultKind& kind) {
  if (kind.IsElement()) return {block.m_nent, block.m_numl, block.m_ncoo};
  switch (kind.key) {
    case ORV_RESULT_ENTITY_COMPLEX:
      return {block.m_nent, block.m_ncoo, kComplexParts};
    case ORV_RESULT_MULTI_ENTITY:
      return {block.m_nstate, block.m_nent, block.m_ncoo};
    case ORV_RESULT_MULTI_ENTITY_COMPLEX:
      return {block.m_nstate, block.m_nent, block.m_ncoo, kComplexParts};
    default:
      return {block.m_nent, block.m_ncoo};
  }
}

bool HasLocations(const ORVResult& block, hid_t group) {
  return block.m_eloc && block.m_numl > 0 && block.m_ndim > 0 && h5::LinkExists(group, disk::eloc);
}

/// Whether exactly one number is selected: all that a member of the block can take.
bool SelectsOne(int rank, const std::uint64_t* count, const std::uint64_t* block) {
  if (rank > 0 && !count) return false;
  return h5::Product(rank, count) == 1U && (!block || h5::Product(rank, block) == 1U);
}

constexpr int kSlabRank = 8;

}  // namespace

int ORVResult::ReadData(hid_t group, int flags) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || kind->IsProperties()) return kFail;
  const auto read = [&](ResultDataset dataset) {
    return ReadDataset(group, dataset.name, dataset.shape.rank, dataset.shape.dims, dataset.type, dataset.buffer);
  };
  const auto read_values = [&] {
    if (kind->IsElement() && HasLocations(*this, group) && read(LocationsOf(*this)) != kOk) return kFail;
    if (read(ValuesOf(*this, WholeShape(*this, *kind))) != kOk) return kFail;
    if (m_readIds && !h5::LinkExists(group, IdName(*kind))) m_readIds = 0;  // stored without ids: no failure
    if (m_readIds && read(IdsOf(*this, *kind)) != kOk) return kFail;
    // Frames are an extra: blocks are of use without them, so their reads do not count.
    if (m_fswitch == 0 && h5::LinkExists(group, disk::fidglob)) (void)read(FrameIdOf(*this));
    if (m_fswitch != 0 && m_fid && h5::LinkExists(group, disk::fid)) (void)read(FrameIdsOf(*this));
    return kOk;
  };
  const auto read_types = [&] {
    if (OH5Read_DATATYPE(group, disk::res, &m_resType) != kOk) return kFail;
    if (OH5Read_DATATYPE(group, IdName(*kind), &m_entidType) != kOk) return kFail;
    return m_fswitch != 0 ? OH5Read_DATATYPE(group, disk::fid, &m_fidType) : kOk;
  };
  return h5::Entry(kFail, [&] {
    // QUIRK: without ids a whole read of an element kind reads nothing, values included, and answers success. Hosts
    // use it to pass over element blocks; those that want values set m_readIds or read a selection. Pinned by
    // ResultRead.OfAnElementKindWithoutIdsReadsNothingAndSucceeds.
    if (flags & ORV_READ_DATA && kind->IsElement() && !m_readIds) return kOk;
    if (flags & ORV_READ_DATA && read_values() != kOk) return kFail;
    return flags & ORV_READ_DATA_INFO ? read_types() : kOk;
  });
}

int ORVResult::ReadBlockAt(const char* file, int state, int index, int stages) {
  return ORVBlock::ReadBlockAt(file, state, index, stages);
}

int ORVResult::ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                             const char* /*name*/) {
  const _OH5BlockKeyMap* key = FindBlockKey(m_BlkKey);
  if (!file || !action || !key) return kFail;
  return h5::Entry(kFail, [&] {
    char path[disk::kPathWidth] = {};
    if (GetResultPath(key, path) != kOk) return kFail;
    return ORVBlock::ReadBlockOver(file, stages, action, first, last, step, path);
  });
}

int ORVResult::IterateBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last,
                                int step, const char* /*name*/, int reverse) {
  const _OH5BlockKeyMap* key = FindBlockKey(m_BlkKey);
  if (!file || !action || !key) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string path = std::string("./") + key->name;
    return ORVBlock::IterateBlockOver(file, stages, action, first, last, step, path.c_str(), reverse);
  });
}

int ORVResult::ReadSelectiveAttribute(const char* file, int state, int sections, _ORVBlockAtt att, ORVHyperSlab& slab,
                                      bool viaCache) {
  if (slab.m_rank > kSlabRank) return kFail;
  return ReadSelectiveAttribute(file, state, sections, att, slab.m_rank, slab.m_pStart, slab.m_pCount, nullptr, nullptr,
                                viaCache);
}

int ORVResult::ReadSelectiveAttribute(const char* file, int state, int /*sections*/, _ORVBlockAtt att, int rank,
                                      std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                      std::uint64_t* block, bool viaCache) {
  return h5::Entry(kFail, [&] {
    if (!file) return kFail;
    if (!stride && !block && ReadFromCache(*this, state, att, rank, start, count, viaCache)) return kOk;
    const FileInUseBy index(*this, file);
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    return group ? ReadSelAtt(group.get(), state, att, rank, start, count, stride, block) : kFail;
  });
}

int ORVResult::ReadSelAtt(hid_t group, int /*state*/, _ORVBlockAtt att, int rank, std::uint64_t* start,
                          std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind) return kFail;
  // All of them, whatever was selected of the values.
  const auto read_ids = [&](hid_t data) {
    if (m_readIds && !h5::LinkExists(data, IdName(*kind))) m_readIds = 0;  // stored without ids: no failure
    if (!m_readIds) return kOk;
    ResultDataset ids = IdsOf(*this, *kind);
    return ReadDataset(data, ids.name, ids.shape.rank, ids.shape.dims, ids.type, ids.buffer);
  };
  return h5::Entry(kFail, [&] {
    const ResultParts parts(group);
    const auto dataset = FindDataset(*this, *kind, att);
    if (!dataset) return ReadSelectiveItem(*this, *kind, m_BlkKey, GetH5Reader(), parts.header(), att);
    if (att == ORV_ATT_FIDGLOB && !SelectsOne(rank, count, block)) return kFail;
    const hid_t place = parts.of(dataset->part);
    const int status =
        OH5Read_SELECTIVE(place, dataset->name, rank, start, count, stride, block, dataset->type, dataset->buffer);
    if (status != kOk || att != ORV_ATT_RES) return status;
    const ComplexSelection selection{rank, start, count, block};
    if (IsConverted(*this, selection)) {
      // QUIRK: values that are read as integers are not converted and end the read before the ids. Pinned by
      // ResultComplex.LeavesIntegerValuesAndTheIdsAlone.
      if (m_resType != ORV_FLOAT && m_resType != ORV_DOUBLE) return kOk;
      if (ConvertComplex(*this, selection) != kOk) return kFail;
    }
    return read_ids(place);
  });
}
