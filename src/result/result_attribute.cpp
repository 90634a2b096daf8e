// The items of a result block one at a time: their names and paths, where they lie, and the read of one of them.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "block/block_keys.h"
#include "block/file_in_use_by.h"
#include "block/reader_lease.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "result/result_datasets.h"
#include "result/result_items.h"

namespace orvio {
namespace {

/// Name of an item as GetAttributeName tells it, for entity and element kinds.
struct NameRow {
  _ORVBlockAtt att;
  const char* entity;
  const char* element;
};

/// QUIRK: code 10 has the name of code 9, although its read is that of `ndim`; hosts compose paths from it. Pinned by
/// ResultItemName.OfNdimIsThatOfNuml.
constexpr NameRow kNames[] = {
    {ORV_ATT_ETYP, disk::etypelem, disk::etypelem},
    {ORV_ATT_ETYPNODE, disk::etypnode, disk::etypnode},
    {ORV_ATT_ETYPPART_NAME, disk::etyppart, disk::etyppart},
    {ORV_ATT_NENT, disk::nent, disk::nele},
    {ORV_ATT_NELE, disk::nent, disk::nele},
    {ORV_ATT_ETYPVAR, disk::etypvar, disk::etypvar},
    {ORV_ATT_NCOO, disk::ncoo, disk::ncoo},
    {ORV_ATT_NUML, disk::numl, disk::numl},
    {ORV_ATT_NDIM, disk::numl, disk::numl},
    {ORV_ATT_FSWITCH, disk::fswitch, disk::fswitch},
    {ORV_ATT_NINDEX, disk::nindex, disk::nindex},
    {ORV_ATT_IDS, disk::entid, disk::idele},
    {ORV_ATT_IDS_SECOND, disk::entid, disk::idele},
    {ORV_ATT_FIDGLOB, disk::fidglob, disk::fidglob},
    {ORV_ATT_FID, disk::fid, disk::fid},
    {ORV_ATT_ELOC, disk::eloc, disk::eloc},
    {ORV_ATT_RES, disk::res, disk::res},
    {ORV_ATT_INDEXIDENT, disk::indexident, disk::indexident},
    {ORV_ATT_INDEXVAL, disk::indexval, disk::indexval},
};

/// Null for an item without a name.
const char* FindName(const ORVResult& block, _ORVBlockAtt att) {
  const auto* row = std::ranges::find(kNames, att, &NameRow::att);
  if (row == std::end(kNames)) return nullptr;
  return block.IsElementResult() ? row->element : row->entity;
}

/// Shape of `res` as a read of the one item has it.
///
/// QUIRK: the state axis is missing, and for element kinds the complex axis too, so this read fails on the values of
/// such blocks. Hosts read those through selections. Pinned by ResultItem.ValuesAreTakenWithoutTheStateAxis.
Shape ItemShape(const ORVResult& block, const ResultKind& kind) {
  if (kind.IsElement() && block.m_numl > 0) return {block.m_nent, block.m_numl, block.m_ncoo};
  if (kind.IsEntity() && kind.IsComplex()) return {block.m_nent, block.m_ncoo, kComplexParts};
  return {block.m_nent, block.m_ncoo};
}

Shape IndexShape(const ORVResult& block) {
  return block.m_nstate < 1 ? Shape{block.m_nindex} : Shape{block.m_nstate, block.m_nindex};
}

/// Word of the section that the lowest bit names; null without a bit.
const char* SectionWord(int sections, _ORVVersion version) {
  if (!(sections & (ORV_READ_HEADER | ORV_READ_DATA | ORV_READ_INDEX))) return nullptr;
  if (version >= kFirstSingleLayoutVersion) return disk::orvblock;
  if (sections & ORV_READ_HEADER) return disk::header;
  return sections & ORV_READ_DATA ? disk::data : disk::index;
}

/// Empty parts are left out.
void AppendPart(std::string& path, std::string_view part) {
  if (part.empty()) return;
  if (!path.empty()) path += '/';
  path += part;
}

}  // namespace

Shape::Shape(std::initializer_list<std::int64_t> counts) : rank(static_cast<int>(counts.size())) {
  std::ranges::transform(counts, dims,
                         [](std::int64_t count) { return static_cast<hsize_t>(std::max<std::int64_t>(count, 0)); });
}

ResultDataset IdsOf(ORVResult& block, const ResultKind& kind) {
  return {IdName(kind), ResultPart::kData, block.m_entidType, block.m_entid, {block.m_nent}};
}

ResultDataset ValuesOf(ORVResult& block, const Shape& shape) {
  return {disk::res, ResultPart::kData, block.m_resType, block.m_res, shape};
}

ResultDataset LocationsOf(ORVResult& block) {
  return {disk::eloc, ResultPart::kData, block.m_elocType, block.m_eloc, {block.m_numl, block.m_ndim}};
}

ResultDataset FrameIdsOf(ORVResult& block) {
  return {disk::fid, ResultPart::kData, block.m_fidType, block.m_fid, {block.m_nent}};
}

ResultDataset FrameIdOf(ORVResult& block) { return {disk::fidglob, ResultPart::kData, ORV_LONG, &block.m_fidglob, {}}; }

std::optional<ResultDataset> FindDataset(ORVResult& block, const ResultKind& kind, _ORVBlockAtt att) {
  switch (static_cast<int>(att)) {
    case ORV_ATT_IDS:
      return IdsOf(block, kind);
    case ORV_ATT_FIDGLOB:
      return FrameIdOf(block);
    case ORV_ATT_FID:
      return FrameIdsOf(block);
    case ORV_ATT_ELOC:
      return LocationsOf(block);
    case ORV_ATT_RES:
      return ValuesOf(block, ItemShape(block, kind));
    case ORV_ATT_INDEXIDENT:
      return ResultDataset{disk::indexident, ResultPart::kIndex, block.m_indexidentType, block.m_indexident,
                           IndexShape(block)};
    case ORV_ATT_INDEXVAL:
      return ResultDataset{disk::indexval, ResultPart::kIndex, block.m_indexvalType, block.m_indexval,
                           IndexShape(block)};
    default:
      return std::nullopt;
  }
}

ResultParts::ResultParts(hid_t group)
    : header_(h5::OpenGroup(group, disk::header)), split_(static_cast<bool>(header_)), whole_(group) {
  if (split_) {
    data_ = h5::OpenGroup(group, disk::data);
    index_ = h5::OpenGroup(group, disk::index);
  } else if (h5::LinkExists(group, disk::orvblock)) {
    // A block that does not know its path yet is found one level above.
    orvblock_ = h5::OpenGroup(group, disk::orvblock);
    if (orvblock_) whole_ = orvblock_.get();
  }
}

hid_t ResultParts::of(ResultPart part) const {
  if (!split_) return whole_;
  return part == ResultPart::kData ? data_.get() : index_.get();
}

int ReadSelectiveItem(ORVResult& block, const ResultKind& kind, std::int64_t& key, IOH5Reader* reader, hid_t header,
                      _ORVBlockAtt att) {
  h5::HeaderReader in(reader, header);
  switch (static_cast<int>(att)) {
    case ORV_ATT_BLOCK:
      in.required(disk::block, key);
      break;
    case ORV_ATT_ETYP:
      in.required(TypeName(kind), block.m_etyp);
      in.strip(block.m_etyp);
      break;
    case ORV_ATT_NENT:
    case ORV_ATT_NELE:
      in.required(CountName(kind), block.m_nent);
      break;
    case ORV_ATT_ETYPVAR:
      in.required(disk::etypvar, block.m_etypvar);
      in.strip(block.m_etypvar);
      break;
    case ORV_ATT_NCOO:
      in.required(disk::ncoo, block.m_ncoo);
      break;
    case ORV_ATT_NUML:
      in.required(disk::numl, block.m_numl);
      break;
    case ORV_ATT_NDIM:
      in.required(disk::ndim, block.m_ndim);
      break;
    case ORV_ATT_FSWITCH:
      in.required(disk::fswitch, block.m_fswitch);
      break;
    case ORV_ATT_NINDEX:
      in.required(disk::nindex, block.m_nindex);
      break;
    default:
      return kFail;
  }
  return in.status();
}

int ReadItem(ORVResult& block, const ResultKind& kind, std::int64_t& key, IOH5Reader* reader, hid_t header,
             _ORVBlockAtt att) {
  h5::HeaderReader in(reader, header);
  switch (static_cast<int>(att)) {
    case ORV_ATT_ZONEID:
      in.required(disk::zoneid, block.m_zoneid);
      break;
    case ORV_ATT_NSTATE:
      in.required(disk::nstate, block.m_nstate);
      break;
    default:
      return ReadSelectiveItem(block, kind, key, reader, header, att);
  }
  return in.status();
}

}  // namespace orvio

using namespace orvio;

int ORVResult::ReadAttribute(const char* file, int state, int /*sections*/, _ORVBlockAtt att) {
  return h5::Entry(kFail, [&] {
    const FileInUseBy index(*this, file);
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    return group ? ReadAtt(group.get(), state, att) : kFail;
  });
}

int ORVResult::ReadAtt(hid_t group, int /*state*/, _ORVBlockAtt att) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind) return kFail;
  return h5::Entry(kFail, [&] {
    const ResultParts parts(group);
    auto dataset = FindDataset(*this, *kind, att);
    if (!dataset) return ReadItem(*this, *kind, m_BlkKey, GetH5Reader(), parts.header(), att);
    return ReadDataset(parts.of(dataset->part), dataset->name, dataset->shape.rank, dataset->shape.dims, dataset->type,
                       dataset->buffer);
  });
}

int ORVResult::GetAttributeName(_ORVBlockAtt att, char* out) {
  if (!out) return kFail;
  const char* name = FindName(*this, att);
  const std::string_view text = name ? name : "";
  std::memcpy(out, text.data(), text.size() + 1);  // the terminator too
  return name ? kOk : kFail;
}

int ORVResult::GetAttributePath(int sections, _ORVBlockAtt att, int state, char* out, _ORVVersion version) {
  if (!out) return kFail;
  *out = '\0';
  const char* section = SectionWord(sections, version);
  const char* name = FindName(*this, att);
  const _OH5BlockKeyMap* key = FindBlockKey(m_BlkKey);
  if (!section || !name || !key) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string root = h5::GroupPath(state > 0 ? h5::kSinglestate : h5::kConstant);
    std::string path = root.substr(root.find('/') + 1);
    if (state > 0) AppendPart(path, h5::StateName(state));
    AppendPart(path, key->name);
    for (const char* part : {m_etyp, m_etypvar, m_subBlockName}) AppendPart(path, Content(part));
    AppendPart(path, section);
    AppendPart(path, name);
    std::memcpy(out, path.c_str(), path.size() + 1);
    return kOk;
  });
}

int ORVResult::GetDatasetNames(int sections, std::vector<std::string>& names) {
  return h5::Entry(kFail, [&] {
    if (sections & ORV_READ_DATA) {
      names.emplace_back(disk::res);
      names.emplace_back(IsElementResult() ? disk::idele : disk::entid);
    }
    if (sections & ORV_READ_INDEX) {
      names.emplace_back(disk::indexval);
      names.emplace_back(disk::indexident);
    }
    return kOk;
  });
}

int ORVResult::GetDatasetInfoFromBlock(_ORVBlockAtt att, std::string& name, _ORVDataType& type, void** ptr, int& rank,
                                       std::uint64_t* dims) {
  rank = 0;
  if (ptr) *ptr = nullptr;
  const ResultKind* kind = FindResultKind(m_BlkKey);
  const bool served = att == ORV_ATT_IDS || att == ORV_ATT_RES || att == ORV_ATT_INDEXIDENT || att == ORV_ATT_INDEXVAL;
  if (!kind || !ptr || !dims || !served) return kFail;
  return h5::Entry(kFail, [&] {
    auto dataset = *FindDataset(*this, *kind, att);
    if (att == ORV_ATT_RES) {
      std::ranges::fill(dataset.shape.dims, 0);
      dataset.shape.rank = GetResultValueDimension(dataset.shape.dims);
    }
    name = dataset.name;
    type = dataset.type;
    *ptr = dataset.buffer;
    rank = dataset.shape.rank;
    std::copy_n(dataset.shape.dims, rank, dims);
    return kOk;
  });
}
