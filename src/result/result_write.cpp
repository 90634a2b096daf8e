// Writing of a whole result block into an existing file. The write of a part of a dataset is in
// result_selective_write.cpp.

#include <algorithm>

#include "block/block_keys.h"
#include "block/file_in_use_by.h"
#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/group_paths.h"
#include "h5/header_io.h"
#include "h5/soft_link.h"
#include "h5/stored_dataset.h"
#include "orvio/oh5_io.h"
#include "result/result_access.h"
#include "result/result_datasets.h"
#include "result/result_place.h"

namespace orvio {
namespace {

bool IsSingleLayoutWriter() { return process().g_nWriterVersion >= kFirstSingleLayoutVersion; }

/// Where a whole write puts a block. States are found by position and only the next one is made. A file without a
/// constant section is none of this format and takes no multi-state block either.
///
/// QUIRK: a multi-state kind with a positive state goes below that state, where no reader looks for it; callers pass
/// state 0. Pinned by ResultWrite.PutsAMultiStateBlockWithAPositiveStateBelowThatState.
h5::Group OpenSection(const ResultKind& kind, hid_t file, int state) {
  if (state > 0) {
    hid_t section_id = H5I_INVALID_HID;
    hid_t state_id = H5I_INVALID_HID;
    if (OH5OpenStateGroup(file, state - 1, &section_id, &state_id, true) != kOk) return h5::Group();
    const h5::Group section(section_id);
    return h5::Group(state_id);
  }
  h5::Group constant = h5::OpenGroup(file, h5::GroupPath(h5::kConstant).c_str());
  if (!constant || !kind.IsMultistate()) return constant;
  return h5::OpenOrCreateGroup(file, h5::GroupPath(h5::kMultistate).c_str());
}

/// A block that exists is protected unless the overwrite mode says otherwise. Nobody is told but who asks for the
/// last error text.
///
/// QUIRK: the text announces an overwriting where none takes place, and the status is success. Hosts write the same
/// block once per part of their model and count on it. Pinned by ResultWrite.LeavesAnExistingBlockAloneInModeZero.
void TellProtected(const ORVResult& block, const ResultPlace& place, const char* key) {
  if (*block.m_subBlockName) {
    SetLastError("Overwriting existing result block :\"%s\\%s\\%.256s\\%.256s\\%.256s\"", place.section().c_str(), key,
                 block.m_etyp, block.m_etypvar, block.m_subBlockName);
  } else {
    SetLastError("Overwriting existing result block :\"%s\\%s\\%.256s\\%.256s\"", place.section().c_str(), key,
                 block.m_etyp, block.m_etypvar);
  }
}

/// Whether ids can be shared: an integer dataset of one extent that is as long as the block has ids.
bool IsIdDataset(hid_t file, const std::string& path, const Shape& shape, _ORVDataType type) {
  _ORVDataType stored = ORV_UNKNOWN_TYPE;
  return ORVBlock::IsORVIntType(type) && OH5CheckDataSet(file, path.c_str(), shape.dims, type) == kOk &&
         OH5Read_DATATYPE(file, path.c_str(), &stored) == kOk && ORVBlock::IsORVIntType(stored);
}

/// The path that a block's callback tells; empty for none.
std::string AskForIds(ORVResult& block) {
  const h5::HostCode with_host;
  char path[disk::kNameWidth] = {};
  (void)block.m_linkCallBack(ORV_ATT_IDS, &block, path, nullptr);  // the path tells, not the answer
  path[sizeof path - 1] = '\0';
  return path;
}

/// Asks the block's callback where its ids stand already and links to them. False: they are to be stored.
bool LinkIds(ORVResult& block, hid_t group, const ResultDataset& ids) {
  if (!block.m_linkCallBack) return false;
  const std::string path = AskForIds(block);
  const h5::File file = path.empty() ? h5::File() : h5::FileOf(group);
  const std::string target = "/" + path;
  if (!file || !IsIdDataset(file.get(), target, ids.shape, ids.type)) return false;
  return h5::SoftLinkTarget(group, ids.name) == target || h5::CreateSoftLink(group, ids.name, target) == kOk;
}

/// Stores ids as a dataset of the block's own. A link to those of another block gives way: a write through it would
/// change the other block. It comes back if the write fails.
int StoreIds(hid_t group, const ResultDataset& ids) {
  const std::string shared = h5::SoftLinkTarget(group, ids.name);
  if (!shared.empty() && h5::DeleteLink(group, ids.name) != kOk) return kFail;
  const int status = OH5Write_INT(group, ids.name, ids.shape.rank, ids.shape.dims, ids.type, ids.buffer);
  if (status != kOk && !shared.empty() && !h5::LinkExists(group, ids.name)) {
    (void)h5::CreateSoftLink(group, ids.name, shared);  // the write has failed already
  }
  return status;
}

/// The frame of the whole block or of each entity. What goes wrong here does not count: blocks are of use without.
///
/// QUIRK: frame ids of entities are stored as 32-bit integers and taken as such from memory, whatever m_fidType says,
/// which governs reading only. Pinned by ResultWriteData.StoresFrameIdsWith32BitsWhateverTheirType.
void WriteFrames(const ORVResult& block, hid_t group) {
  if (block.m_fswitch != 0) {
    const Shape shape{block.m_nent};
    if (block.m_fid) (void)OH5Write_INT(group, disk::fid, shape.rank, shape.dims, ORV_INT, block.m_fid);
  } else if (!IsSingleLayoutWriter()) {  // later versions have it in the header
    const Shape shape{1};
    const int frame = static_cast<int>(block.m_fidglob);
    (void)OH5Write_INT(group, disk::fidglob, shape.rank, shape.dims, ORV_INT, &frame);
  }
}

int WriteValues(const ORVResult& block, const ResultKind& kind, hid_t group, const Shape& shape) {
  const Swapped axis(process().entity_axis, kind.PositionOf(ORV_DIM_ENTITY));
  return OH5Write_FLOAT(group, disk::res, shape.rank, shape.dims, block.m_resType, block.m_res);
}

bool WritesLocations(const ORVResult& block, const ResultKind& kind) {
  return kind.IsElement() && block.m_eloc && block.m_numl > 0 && block.m_ndim > 0;
}

Shape ValueShape(ORVResult& block) {
  Shape shape{};  // zeroed: the fifth extent of one kind stays as it is
  shape.rank = ORVResultAccess::ValueDimension(block, shape.dims);
  return shape;
}

/// The group that a block has its data in already, in the layout that is written; none where it has none.
h5::Group OpenStoredData(const ResultPlace& place) {
  const h5::Group block = h5::OpenGroup(place.parent(), place.name());
  const char* part = IsSingleLayoutWriter() ? disk::orvblock : disk::data;
  return block && h5::LinkExists(block.get(), part) ? h5::OpenGroup(block.get(), part) : h5::Group();
}

/// Whether a dataset has these extents, or is not there.
bool FitsStored(hid_t data, const char* name, const Shape& shape) {
  const h5::StoredDataset dataset(data, name);
  if (dataset.is_missing()) return true;
  const h5::Extents& stored = dataset.extents();
  if (dataset && std::equal(stored.dims, stored.dims + stored.rank, shape.dims, shape.dims + shape.rank)) return true;
  SetLastError("ORVResult::WriteBlock::\n\t \"%s\" is stored with other extents", name);
  return false;
}

/// Whether the data of a block that is there are of the extents that are written. Of others HDF5 would write a part or
/// nothing, and the header, which is written first, would no longer tell their counts: the block could not be read.
/// Frames are not looked at: a write of them may fail.
bool FitsStored(ORVResult& block, const ResultKind& kind, const ResultPlace& place) {
  const h5::Group data = OpenStoredData(place);
  if (!data) return true;
  if (!FitsStored(data.get(), disk::res, ValueShape(block))) return false;
  const ResultDataset eloc = LocationsOf(block);
  if (WritesLocations(block, kind) && !FitsStored(data.get(), eloc.name, eloc.shape)) return false;
  const ResultDataset ids = IdsOf(block, kind);
  const bool own_ids = block.m_readIds && h5::SoftLinkTarget(data.get(), ids.name).empty();  // a link gives way
  return !own_ids || FitsStored(data.get(), ids.name, ids.shape);
}

const char* WordOr(const char* text, const char* word) { return *text ? text : word; }

}  // namespace

ResultPlace::ResultPlace(const ORVResult& block, const ResultKind& kind, const char* file, int state,
                         SectionOpener open_section)
    : file_(h5::OpenFile(file, process().g_nReadAccess)) {
  process().g_hLastFile = file_.get();
  if (file_ && !Open(block, kind, state, open_section)) way_.clear();
}

bool ResultPlace::Enter(h5::Group group) {
  const bool opened = static_cast<bool>(group);
  way_.push_back(std::move(group));
  return opened;
}

/// QUIRK: no group is made for a series, although the path by which a reader composes a block's place starts with it:
/// a block with a series is found by walks only. Pinned by ResultWrite.MakesNoGroupForASeries.
bool ResultPlace::Open(const ORVResult& block, const ResultKind& kind, int state, SectionOpener open_section) {
  std::vector<std::string> levels;
  for (const char* level : {FindBlockKey(kind.key)->name, block.m_etyp, block.m_etypvar, block.m_subBlockName}) {
    if (*level) levels.emplace_back(Content(level));
  }
  if (!*block.m_etypvar && !*block.m_subBlockName) return false;  // key and type name no block
  name_ = levels.back();
  levels.pop_back();
  if (!Enter(open_section(kind, file_.get(), state))) return false;
  const std::string path = h5::NameOf(parent());
  section_ = path.substr(path.rfind('/') + 1);
  return std::ranges::all_of(
      levels, [this](const std::string& level) { return Enter(h5::OpenOrCreateGroup(parent(), level.c_str())); });
}

int ResultPlace::Finish(int status) {
  while (!way_.empty()) {
    if (!way_.back().Close() && status == kOk) status = kFail;
    way_.pop_back();
  }
  return file_.Finish(status);
}

int WriteIds(ORVResult& block, const ResultKind& kind, hid_t group) {
  const ResultDataset ids = IdsOf(block, kind);
  if (LinkIds(block, group, ids)) return kOk;
  const Swapped<Compression> plain(process().compression, Compression{});  // readers pick single ids
  const int status = StoreIds(group, ids);
  if (status != kOk) block.m_readIds = 0;
  return status;
}

}  // namespace orvio

using namespace orvio;

int ORVResult::WriteBlock(const char* file, int state, int sections) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!file || !kind || kind->IsProperties()) return kFail;
  return h5::Entry(kFail, [&] {
    const Swapped among_itself(process().is_among_itself, IsOwnBlock(*this));
    const WriteAccess access;
    ResultPlace place(*this, *kind, file, state, OpenSection);
    if (!place) return kFail;
    const bool is_there = place.HasBlock();
    if (is_there && process().g_nResultOverwriteMode == 0) {
      TellProtected(*this, place, FindBlockKey(kind->key)->name);
      return place.Finish(kOk);
    }
    if (is_there && sections & ORV_WRITE_DATA && !FitsStored(*this, *kind, place)) return place.Finish(kFail);
    return place.Finish(
        place.Write(sections, [&](const BlockParts& parts) { return WriteStages(*this, parts, sections); }));
  });
}

int ORVResult::WriteHeader(hid_t group) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || kind->IsProperties()) return kFail;
  const bool single_layout = IsSingleLayoutWriter();
  h5::HeaderWriter out(group);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, kind->blocktype);
  out.text(disk::etypvar, m_etypvar);
  out.integer(disk::ncoo, m_ncoo);
  out.text(disk::etypzone, WordOr(m_etypzone, disk::ZONE));
  out.text(disk::etypframe, WordOr(m_etypframe, disk::FRAME));
  out.integer(disk::zoneid, m_zoneid);
  out.text(TypeName(*kind), m_etyp);
  out.integer(CountName(*kind), m_nent);
  if (kind->IsEntity() && kind->IsMultistate()) out.integer(disk::nstate, m_nstate);
  if (kind->IsElement() && kind->IsSinglestate()) out.integer(disk::numl, m_numl);
  if (kind->IsElement() && kind->IsSinglestate()) out.integer(disk::ndim, m_ndim);
  out.integer(disk::nindex, m_nindex);
  out.integer(disk::fswitch, m_fswitch);
  if (m_fswitch == 0 && single_layout) out.integer(disk::fidglob, m_fidglob);
  out.attempted(disk::dmpswitch, m_dmpswitch);
  if (kind->IsMultistate() && single_layout) out.text(disk::series, WordOr(m_series, disk::TIMESERIES1));
  if (single_layout) out.integer32(disk::indexic, m_nIncremental);
  return out.status();
}

int ORVResult::WriteData(hid_t group) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind) return kFail;
  return h5::Entry(kFail, [&] {
    const Shape shape = ValueShape(*this);
    const auto is_count = [](hsize_t extent) { return extent <= INT64_MAX; };
    if (shape.rank < 1 || !m_res || !std::all_of(shape.dims, shape.dims + shape.rank, is_count)) return kFail;
    // Refused by the write of the values; nothing else shall stand in the file then.
    const bool is_empty = h5::HasZero(shape.rank, shape.dims);
    if (!is_empty && WritesLocations(*this, *kind)) {
      const ResultDataset eloc = LocationsOf(*this);
      if (OH5Write_FLOAT(group, eloc.name, eloc.shape.rank, eloc.shape.dims, eloc.type, eloc.buffer) != kOk)
        return kFail;
    }
    if (WriteValues(*this, *kind, group, shape) != kOk) return kFail;
    const int ids = m_readIds ? WriteIds(*this, *kind, group) : kOk;
    const Swapped<Compression> plain(process().compression, Compression{});
    WriteFrames(*this, group);
    return ids;
  });
}

int ORVResult::WriteIndex(hid_t group) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!kind || kind->IsProperties() || m_nindex < 1 || !m_indexident || !m_indexval) return kFail;
  const int rank = kind->IsMultistate() ? 2 : 1;
  const Shape states{kind->IsMultistate() ? m_nstate : 0};
  return WriteIndexComm(group, static_cast<hsize_t>(m_nindex), states.dims[0], rank, m_indexidentType, m_indexident,
                        m_indexvalType, m_indexval);
}
