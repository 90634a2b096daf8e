// Writing of one item of a result block, or of a hyperslab of one of its datasets, which grows for it.

#include "block/home_group.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/group_paths.h"
#include "h5/header_io.h"
#include "orvio/oh5_io.h"
#include "result/result_datasets.h"
#include "result/result_place.h"

using namespace orvio;

namespace {

/// A hyperslab and the growth it asks for, as the caller handed them in.
struct Selection {
  int rank;
  const std::uint64_t* start;
  const std::uint64_t* count;
  const std::uint64_t* stride;
  const std::uint64_t* block;
  const std::uint64_t* extent;
};

/// Where a selective write puts a block: the state by its name, which is made when it is missing.
///
/// QUIRK: below state 1 there is no multi-state section here; all kinds go to the constant one. Pinned by
/// ResultSelectiveWrite.PutsAMultiStateBlockIntoTheConstantSection.
h5::Group OpenSection(const ResultKind& /*kind*/, hid_t file, int state) {
  return state < 1 ? h5::OpenGroup(file, h5::GroupPath(h5::kConstant).c_str()) : OpenNamedState(file, state);
}

int WriteSelected(hid_t group, const char* name, const Selection& selection, _ORVDataType type, const void* data) {
  return OH5Write_SELECTIVE(group, name, selection.rank, selection.start, selection.count, selection.stride,
                            selection.block, type, selection.extent, data);
}

/// Ids of entities or frames, which are never filtered: readers pick single ones.
int WriteSelectedIds(hid_t group, const char* name, const Selection& selection, _ORVDataType type, const void* data) {
  const Swapped<Compression> plain(process().compression, Compression{});
  return WriteSelected(group, name, selection, type, data);
}

/// The frame id of a block is one number, and no more can be taken from the member that holds it.
int WriteFrameId(ORVResult& block, hid_t group, const Selection& selection) {
  if (selection.rank < 1 || !selection.count || h5::Product(selection.rank, selection.count) != 1U) return kFail;
  return WriteSelectedIds(group, disk::fidglob, selection, ORV_LONG, &block.m_fidglob);
}

int WriteMissingFrameId(const ORVResult& block, hid_t group) {
  if (block.m_fswitch != 0 || h5::LinkExists(group, disk::fidglob)) return kOk;
  const Shape shape{1};
  return OH5Write_INT(group, disk::fidglob, shape.rank, shape.dims, ORV_LONG, &block.m_fidglob);
}

int WriteValues(const ORVResult& block, hid_t group, const Selection& selection) {
  return WriteSelected(group, disk::res, selection, block.m_resType, block.m_res);
}

/// The values and, as a header item of old writers has it, ids and frame id whole beside them.
int WriteValuesBesideHeader(ORVResult& block, const ResultKind& kind, hid_t group, const Selection& selection) {
  if (WriteValues(block, group, selection) != kOk) return kFail;
  const Swapped<Compression> plain(process().compression, Compression{});
  const ResultDataset ids = IdsOf(block, kind);
  if (block.m_readIds && OH5Write_INT(group, ids.name, ids.shape.rank, ids.shape.dims, ids.type, ids.buffer) != kOk) {
    return kFail;
  }
  return WriteMissingFrameId(block, group);
}

int WriteValuesAsData(ORVResult& block, const ResultKind& kind, hid_t group, const Selection& selection) {
  if (WriteValues(block, group, selection) != kOk) return kFail;
  int status = block.m_readIds ? WriteIds(block, kind, group) : kOk;
  const Swapped<Compression> plain(process().compression, Compression{});
  if (status == kOk) status = WriteMissingFrameId(block, group);
  if (status != kOk) block.m_readIds = 0;
  return status;
}

/// The items that are attributes of the header; 1 for any other.
int WriteItem(const ORVResult& block, const ResultKind& kind, hid_t group, _ORVBlockAtt att) {
  h5::HeaderWriter out(group);
  switch (static_cast<int>(att)) {
    case ORV_ATT_BLOCK:
      out.integer(disk::block, block.GetKey());
      break;
    case ORV_ATT_NENT:
    case ORV_ATT_NELE:
      out.integer(CountName(kind), block.m_nent);
      break;
    case ORV_ATT_NCOO:
      out.integer(disk::ncoo, block.m_ncoo);
      break;
    case ORV_ATT_NUML:
      out.integer(disk::numl, block.m_numl);
      break;
    case ORV_ATT_NDIM:
      out.integer(disk::ndim, block.m_ndim);
      break;
    case ORV_ATT_FSWITCH:
      out.integer(disk::fswitch, block.m_fswitch);
      break;
    case ORV_ATT_NINDEX:
      out.integer(disk::nindex, block.m_nindex);
      break;
    default:
      return kFail;
  }
  return out.status();
}

}  // namespace

int ORVResult::WriteSelectiveAttribute(const char* file, int state, int sections, _ORVBlockAtt att, int rank,
                                       std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                       std::uint64_t* block, std::uint64_t* extent) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!file || !kind) return kFail;
  const auto write_parts = [&](const BlockParts& parts) {
    int status = kOk;
    if (sections & ORV_WRITE_HEADER) {
      status = WriteSelAtt(parts.header(), sections, att, rank, start, count, stride, block, extent);
    }
    if (sections & ORV_WRITE_DATA && status == kOk) {
      const BlockCompression compression(m_nCompressionFactor);
      status = WriteSelAttData(parts.data(), att, rank, start, count, stride, block, extent);
    }
    if (sections & ORV_WRITE_INDEX && status == kOk) {
      const Swapped<Compression> plain(process().compression, Compression{});
      status = WriteSelAtt(parts.index(), sections, att, rank, start, count, stride, block, extent);
    }
    return status;
  };
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    ResultPlace place(*this, *kind, file, state, OpenSection);
    return place ? place.Finish(place.Write(sections, write_parts)) : kFail;
  });
}

// NOLINTBEGIN(readability-non-const-parameter): the signatures are fixed

/// QUIRK: the datasets take their values from m_res with the type m_resType, whichever they are: the caller puts into
/// that pointer what is to be written. Pinned by ResultSelectiveWrite.InTheHeaderPartTakesEveryDatasetFromTheValues.
int ORVResult::WriteSelAtt(hid_t group, int /*sections*/, _ORVBlockAtt att, int rank, std::uint64_t* start,
                           std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind) return kFail;
  const Selection selection{rank, start, count, stride, block, extent};
  return h5::Entry(kFail, [&] {
    switch (static_cast<int>(att)) {
      case ORV_ATT_IDS:
        return WriteSelectedIds(group, IdName(*kind), selection, m_resType, m_res);
      case ORV_ATT_FIDGLOB:
        return WriteSelectedIds(group, disk::fidglob, selection, m_resType, m_res);
      case ORV_ATT_FID:
        return WriteSelectedIds(group, disk::fid, selection, m_resType, m_res);
      case ORV_ATT_ELOC:
        return WriteSelected(group, disk::eloc, selection, m_resType, m_res);
      case ORV_ATT_RES:
        return WriteValuesBesideHeader(*this, *kind, group, selection);
      case ORV_ATT_INDEXIDENT:
        return WriteSelected(group, disk::indexident, selection, m_indexidentType, m_indexident);
      case ORV_ATT_INDEXVAL:
        return WriteSelected(group, disk::indexval, selection, m_indexvalType, m_indexval);
      default:
        return WriteItem(*this, *kind, group, att);
    }
  });
}

/// QUIRK: ids are taken from m_res with m_resType here too, the other datasets from members of their own. Pinned by
/// ResultSelectiveWrite.InTheDataPartTakesIdsFromTheValuesAndTheRestFromTheirMembers.
int ORVResult::WriteSelAttData(hid_t group, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                               std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind) return kFail;
  const Selection selection{rank, start, count, stride, block, extent};
  return h5::Entry(kFail, [&] {
    switch (static_cast<int>(att)) {
      case ORV_ATT_IDS:
        return WriteSelectedIds(group, IdName(*kind), selection, m_resType, m_res);
      case ORV_ATT_FIDGLOB:
        return WriteFrameId(*this, group, selection);
      case ORV_ATT_FID:
        return WriteSelectedIds(group, disk::fid, selection, m_fidType, m_fid);
      case ORV_ATT_ELOC:
        return WriteSelected(group, disk::eloc, selection, m_elocType, m_eloc);
      case ORV_ATT_RES:
        return WriteValuesAsData(*this, *kind, group, selection);
      default:
        return kFail;
    }
  });
}

// NOLINTEND(readability-non-const-parameter)
