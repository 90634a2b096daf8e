// The reader of files on disk, and the free functions that open a file only for a moment.

#include "orvio/oh5_reader.h"

#include <algorithm>
#include <memory>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/file_header.h"
#include "h5/open_objects.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "orvio/oh5_io.h"

using namespace orvio;

IOH5Reader::~IOH5Reader() = default;

OH5Reader::OH5Reader(const char* name, unsigned flags) {
  if (name) (void)OH5Reader::OpenFile(name, flags);  // the file id tells whether it worked
}

OH5Reader::~OH5Reader() { (void)OH5Reader::CloseFile(); }  // nobody is left to be told

void OH5Reader::ReadReaderVersion(int& major, int& minor, int& patch) { ORVGetReaderVersion(&major, &minor, &patch); }

bool OH5Reader::IsFileMajorAtMost(unsigned n) {
  int major = 0, minor = 0, patch = 0;
  if (m_major == 0 && ReadFileVersion(major, minor, patch) == kOk) m_major = static_cast<unsigned>(major);
  return m_major <= n;
}

int OH5Reader::OpenFile(const char* name, unsigned flags) {
  (void)CloseFile();  // nothing may be open, and nothing is told about what was
  if (!name) return kFail;
  return h5::Entry(kFail, [&] {
    (void)H5check_version(H5_VERS_MAJOR, H5_VERS_MINOR, H5_VERS_RELEASE);  // ends the process on a mismatch
    if (H5open() < 0) return kFail;
    m_file = h5::OpenFile(name, flags).release();
    if (m_file < 0) m_file = -1;
    return m_file < 0 ? kFail : kOk;
  });
}

int OH5Reader::CloseFile() {
  if (m_file == -1) return kFail;
  return h5::Entry(kFail, [&] {
    h5::CloseLocalObjects(m_file);
    h5::File file(std::exchange(m_file, -1));
    const bool closed = h5::CloseFile(file);  // it may be open for writing
    m_major = 0;
    return closed ? kOk : kFail;
  });
}

int OH5Reader::ReadFileVersion(int& major, int& minor, int& patch) {
  major = minor = patch = 0;
  return h5::Entry(kFail, [&] {
    std::string post;
    const int status = GetPostPath(post);
    if (status != kOk) return status;
    h5::FileHeader header = {};
    if (ReadHeaderBytes(post, header.bytes) != kOk) return kFail;
    const ORVFileVersion version = h5::ParseHeader(header);
    major = version.m_major;
    minor = version.m_minor;
    patch = version.m_patch;
    return kOk;
  });
}

hid_t OH5Reader::GetFileId() { return m_file; }

int OH5Reader::GetPostPath(std::string& path) {
  return h5::Entry(kFail, [&] {
    path.append("/").append(disk::post);
    return kOk;
  });
}

int OH5Reader::ReadDatasetAll(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) {
  return OH5Read_DATASET(loc, name, rank, dims, type, buffer);
}

int OH5Reader::ReadDatasetSelective(hid_t loc, const char* name, int rank, hsize_t* start, hsize_t* count,
                                    hsize_t* stride, hsize_t* block, _ORVDataType type, void* buffer) {
  return OH5Read_SELECTIVE(loc, name, rank, start, count, stride, block, type, buffer);
}

int OH5Reader::ReadAttributeValue(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type,
                                  void* buffer) {
  return OH5Read_ATTRIBUTE(loc, name, rank, dims, type, buffer);
}

int OH5Reader::ReadDatasetType(hid_t loc, const char* name, _ORVDataType* type) {
  return OH5Read_DATATYPE(loc, name, type);
}

hid_t OH5Reader::OpenGroup(hid_t loc, const char* name, hid_t access) {
  if (!name) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&] { return h5::OpenGroup(loc, name, access).release(); });
}

int OH5Reader::CloseGroup(hid_t group) {
  return h5::Entry(kFail, [&] { return h5::Group(group).Close() ? kOk : kFail; });
}

int OH5Reader::GetNumLinks(hid_t group) {
  return h5::Entry(0, [&] {
    const hssize_t count = h5::CountLinks(group);
    return count < 0 || count > INT32_MAX ? 0 : static_cast<int>(count);
  });
}

int OH5Reader::GetChildByIndex(hid_t group, int index, std::string& name, hid_t* child, hid_t access) {
  if (child) *child = H5I_INVALID_HID;
  if (index < 0) return kFail;
  return h5::Entry(kFail, [&] {
    std::string found = h5::LinkName(group, static_cast<hsize_t>(index));
    if (found.empty()) return kFail;
    name = std::move(found);
    if (child) *child = h5::OpenGroupAt(group, static_cast<hsize_t>(index), name, access).release();
    return kOk;
  });
}

int OH5Reader::GetLocationStrings(std::string& first, std::string& second, std::string& third, std::string& fourth) {
  for (std::string* text : {&first, &second, &third, &fourth}) text->clear();
  return kFail;
}

namespace {

void AppendFilters(hid_t creation_list, std::vector<int>& filters) {
  const int count = H5Pget_nfilters(creation_list);
  for (int i = 0; i < count; ++i) {
    unsigned flags = 0;
    size_t values = 0;
    const H5Z_filter_t id =
        H5Pget_filter2(creation_list, static_cast<unsigned>(i), &flags, &values, nullptr, 0, nullptr, nullptr);
    if (id >= 0) filters.push_back(id);
  }
}

}  // namespace

int OH5Reader::GetDatasetInfo(hid_t loc, const std::string& name, int& rank, hsize_t* dims, hsize_t& total,
                              _ORVDataType& type, std::vector<int>* filters) {
  rank = 0;
  total = 0;
  if (loc < 0 || !dims) return kFail;
  return h5::Entry(kFail, [&] {
    h5::StoredDataset dataset(loc, name.c_str(), h5::DatasetUse::kDescription);
    const h5::Extents& stored = dataset.extents();
    if (!dataset || stored.rank < 1) return kFail;
    type = dataset.exact_type();
    if (filters && dataset.is_filtered()) AppendFilters(dataset.creation_list(), *filters);
    rank = stored.rank;
    std::copy_n(stored.dims, stored.rank, dims);
    total = stored.points;
    return kOk;
  });
}

hid_t OH5Reader::OpenObject(hid_t loc, const char* name, hid_t access) {
  if (!name) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&] { return h5::OpenObject(loc, name, access).release(); });
}

int OH5Reader::CloseObject(hid_t object) {
  return h5::Entry(kFail, [&] { return h5::Object(object).Close() ? kOk : kFail; });
}

void OH5Reader::GetLinkInfo(hid_t loc, const std::string& name, std::string& target, std::string& file) {
  target.clear();
  file.clear();
  h5::EntryVoid([&] {
    H5L_info1_t info = {};
    // QUIRK: HDF5 answers 0 for success, so both outputs stay empty. Hosts take an empty target for a plain link
    // and follow it by name; a target would make them follow it twice. Pinned by
    // Reader.LinkInfoLeavesBothOutputsEmpty.
    if (H5Lget_info1(loc, name.c_str(), &info, h5::GroupAccess()) <= 0) return;
    (void)h5::ReadLinkTarget(loc, name.c_str(), info, target, file);  // outputs tell
  });
}

void OH5Reader::ListGroupLinks(hid_t group, std::vector<std::string>& names, std::vector<int>& types) {
  names.clear();
  types.clear();
  if (group <= 0) return;
  const hssize_t count = h5::CountLinks(group);
  for (hssize_t i = 0; i < count; ++i) {
    const auto index = static_cast<hsize_t>(i);
    const std::string name = h5::LinkName(group, index, h5::LinkNameLength(group, index) + 1);
    names.push_back(name);
    types.push_back(h5::TypeOfObject(group, name.c_str()));
  }
}

int OH5Reader::ReadHeaderBytes(const std::string& root, char* buffer) {
  if (!buffer) return kFail;
  const h5::Group group = h5::OpenGroup(m_file, (root + "/" + disk::orvheader).c_str());
  if (!group) return kFail;
  return OH5Read_CHAR(group.get(), disk::orvheader, 0, nullptr, static_cast<int>(disk::kHeaderWidth), buffer);
}

void OH5Reader::ListPostRoots(std::vector<std::string>& roots) {
  roots.clear();
  h5::EntryVoid([&] {
    std::vector<std::string> names;
    std::vector<int> types;
    const h5::Group root = h5::OpenGroup(m_file, "/");
    ListGroupLinks(root.get(), names, types);
    for (size_t i = 0; i < names.size(); ++i) {
      h5::FileHeader header;
      const std::string path = "/" + names[i];
      if (types[i] == H5O_TYPE_GROUP && ReadHeaderBytes(path, header.bytes) == kOk) roots.push_back(path);
    }
  });
}

bool OH5Reader::GetReaderFlag() { return false; }

int ReadNumState(const char* file, int* count) {
  if (!count) return kFail;
  *count = 0;
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    const h5::ShortLease reader(file);
    std::string path;
    if (reader->GetFileId() < 0 || reader->GetPostPath(path) != kOk) return kFail;
    path.append("/").append(disk::singlestate);
    const h5::Group section(reader->OpenGroup(reader->GetFileId(), path.c_str(), H5P_DEFAULT));
    if (section) *count = reader->GetNumLinks(section.get());
    return kOk;
  });
}
