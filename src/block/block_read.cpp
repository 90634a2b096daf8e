// The protocol by which every block is found and read: a file, a state and a selection of stages. Walks over states
// are in block_over.cpp, the walk through a tree in walk.cpp.

#include <string>

#include "block/block_parts.h"
#include "block/file_in_use_by.h"
#include "block/reader_lease.h"
#include "block/walk.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

using namespace orvio;

namespace {

constexpr int kHeaderStages = ORV_READ_HEADER | ORV_READ_HEADER_INFO;
constexpr int kDataStages = ORV_READ_DATA | ORV_READ_DATA_INFO;
constexpr int kIndexStages = ORV_READ_INDEX | ORV_READ_INDEX_INFO;

/// A group reached as the child "orvblock" holds everything itself, whatever path the block had before.
bool IsSingleLayoutGroup(hid_t group) {
  const std::string name = h5::NameOf(group);
  return name.ends_with(std::string("/") + disk::orvblock);
}

}  // namespace

hid_t ORVBlock::OpenBlockGroup(int state) { return ORVBlockPathResolver(this).OpenBlockGroupFor(state); }

int ORVBlock::ReadBlock(const char* file, int state, int stages) {
  return h5::Entry(kFail, [&] {
    const FileInUseBy index(*this, file);
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    if (!group) return kFail;
    return ReadBlockStepWrap(group.get(), stages);
  });
}

int ORVBlock::ReadBlockAt(const char* file, int state, int index, int stages) {
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group type_group(ORVBlockPathResolver(this).OpenTypeGroup(state));
    if (!type_group) return kFail;
    std::string name;
    hid_t child = H5I_INVALID_HID;
    (void)reader->GetChildByIndex(type_group.get(), index, name, &child, H5P_DEFAULT);  // the id tells
    const h5::Group group(child);
    return group ? ReadBlockStepWrap(group.get(), stages) : kFail;
  });
}

int ORVBlock::ReadNumBlock(const char* file, int state, int* count) {
  if (!count) return kFail;
  *count = 0;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group type_group(ORVBlockPathResolver(this).OpenTypeGroup(state));
    if (!type_group) return kFail;
    *count = reader->GetNumLinks(type_group.get());
    return kOk;
  });
}

int ORVBlock::ReadBlockStepWrap(hid_t group, int stages) {
  if (group < 0 || !m_pH5Reader) return kFail;
  return h5::Entry(kFail, [&] {
    const h5::Group part = h5::LinkExists(group, disk::orvblock)
                               ? h5::Group(m_pH5Reader->OpenGroup(group, disk::orvblock, H5P_DEFAULT))
                               : h5::Group();
    return ReadBlockStep(part ? part.get() : group, stages);
  });
}

int ORVBlock::ReadBlockStep(hid_t group, int stages) {
  if (group < 0) return kFail;
  return h5::Entry(kFail, [&] {
    if (m_BlkPath.empty()) {
      char name[disk::kPathWidth];
      OH5GetLinkTarget(group, nullptr, name, nullptr);
      m_BlkPath = name;  // how a block that is read by state learns its path
    }
    const bool single = GetBlkVersion() == ORV_BLK_VERSION_SINGLE || IsSingleLayoutGroup(group);
    int status = kFail;
    const auto read = [&](const char* part, int (ORVBlock::*operation)(hid_t, int)) {
      const h5::Group own = single ? h5::Group() : h5::OpenGroup(group, part);
      if (single || own) status = (this->*operation)(single ? group : own.get(), stages);
    };
    if (stages & kHeaderStages) read(disk::header, &ORVBlock::ReadHeader);
    if (stages & kDataStages) read(disk::data, &ORVBlock::ReadData);
    if (stages & kIndexStages) read(disk::index, &ORVBlock::ReadIndex);
    return status;
  });
}

int ORVBlock::ReadBlockByBlockPath(const char* file, int stages) {
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader || m_BlkPath.empty()) return kFail;
    // QUIRK: "orvblock" is not looked for below the path. A stored path says of which layout its block is, and one that
    // was cut must fail rather than lead to another place. Pinned by BlockRead.ByPathDoesNotLookForTheSingleLayout.
    const h5::Group group(reader->OpenGroup(reader->GetFileId(), m_BlkPath.c_str(), H5P_DEFAULT));
    return group ? ReadBlockStep(group.get(), stages) : kFail;
  });
}

int ORVBlock::IterateBlock(const char* file, int state, int stages, ORVIterationCallBack action) {
  if (!file || !action) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group type_group(ORVBlockPathResolver(this).OpenTypeGroup(state));
    if (!type_group) return kFail;
    WalkGroup(*this, type_group.get(), action, stages);
    return kOk;
  });
}

namespace {

/// Type and filters of one dataset: in the block's group or a part of it, where it is met first.
int FindDatasetInfo(IOH5Reader& reader, hid_t group, const std::string& name, _ORVDataType& type,
                    std::vector<int>* filters) {
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK];
  hsize_t total = 0;
  const bool found = AnyPart(
      group, [&](hid_t part) { return reader.GetDatasetInfo(part, name, rank, dims, total, type, filters) == kOk; });
  return found ? kOk : kFail;
}

}  // namespace

int ORVBlock::ReadDatasetFilterIds(const char* file, int state, const std::string& name, std::vector<int>& ids) {
  return h5::Entry(kFail, [&] {
    const FileInUseBy index(*this, file);
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    _ORVDataType type = ORV_UNKNOWN_TYPE;
    return group ? FindDatasetInfo(*reader, group.get(), name, type, &ids) : kFail;
  });
}

int ORVBlock::ReadDatasetFileDataType(const char* file, int state, const std::vector<std::string>& names,
                                      std::vector<_ORVDataType>& types) {
  return h5::Entry(kFail, [&] {
    const FileInUseBy index(*this, file);
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    if (!group) return kFail;
    for (const std::string& name : names) {
      _ORVDataType type = ORV_UNKNOWN_TYPE;
      const bool found = FindDatasetInfo(*reader, group.get(), name, type, nullptr) == kOk;
      types.push_back(found ? type : ORV_UNKNOWN_TYPE);
    }
    return kOk;
  });
}
