// Opening and making of files, groups and datasets under one set of rules.

#include "h5/file_access.h"

#include <sys/stat.h>

#include <cstring>
#include <optional>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/file_driver.h"
#include "h5/indexed_file.h"
#include "h5/kept_files.h"
#include "h5/status.h"

namespace orvio::h5 {
namespace {

/// A result file must not make its reader open another file.
herr_t RefuseExternalLink(const char*, const char*, const char*, const char*, unsigned*, hid_t, void*) { return -1; }

PropertyList MakeFileAccess() {
  PropertyList list(H5Pcreate(H5P_FILE_ACCESS));
  const Driver driver(RegisterFileDriver());
  const bool made = list && driver && H5Pset_driver(list.get(), driver.get(), nullptr) >= 0 &&
                    H5Pset_vol(list.get(), H5VL_NATIVE, nullptr) >= 0 &&
                    H5Pset_fclose_degree(list.get(), H5F_CLOSE_STRONG) >= 0;
  if (!made) list.reset();
  return list;
}

PropertyList MakeLinkAccess(hid_t list_class) {
  PropertyList list(H5Pcreate(list_class));
  if (list && H5Pset_elink_cb(list.get(), RefuseExternalLink, nullptr) < 0) list.reset();
  return list;
}

/// Makes all lists at the first use. The driver tells when HDF5 is closed, and they with it.
const ProcessState& Lists() {
  ProcessState& state = process();
  if (state.file_access > 0) return state;
  PropertyList file = MakeFileAccess();
  PropertyList group = MakeLinkAccess(H5P_GROUP_ACCESS);
  PropertyList dataset = MakeLinkAccess(H5P_DATASET_ACCESS);
  if (file && group && dataset) {
    state.file_access = file.release();
    state.group_access = group.release();
    state.dataset_access = dataset.release();
  }
  return state;
}

/// The list of a caller, but for links to other files.
PropertyList Refusing(hid_t access) {
  PropertyList list(H5Pcopy(access));
  if (list && H5Pset_elink_cb(list.get(), RefuseExternalLink, nullptr) < 0) list.reset();
  return list;
}

/// Access lists keep each step of a path inside the file. For single names, which is how children are found, and for the
/// lists of hosts the link itself is looked at, too; for long paths that would walk them twice.
bool MayBeOpened(hid_t loc, const char* name, hid_t access) {
  if (GroupAccess() <= 0) return false;
  const bool is_checked = access > 0 || !std::strchr(name, '/');
  return !is_checked || StaysInside(loc, name);
}

/// Opens by H5Gopen2 or its like.
template <class Open>
hid_t OpenInside(Open&& open, hid_t loc, const char* name, hid_t access) {
  if (!MayBeOpened(loc, name, access)) return H5I_INVALID_HID;
  if (access <= 0) return open(loc, name, GroupAccess());
  const PropertyList list = Refusing(access);
  return list ? open(loc, name, list.get()) : H5I_INVALID_HID;
}

bool IsRegularFile(const char* name) {
  struct stat info = {};
  return stat(name, &info) == 0 && S_ISREG(info.st_mode);
}

/// HDF5 would answer with the file that is open already: for reading only, and as it was when it was opened.
void CloseKept(const char* name) {
  if (process().kept_files) process().kept_files->Close(name);
}

}  // namespace

File OpenFile(const char* name, unsigned flags) {
  CloseKept(name);
  const hid_t access = Lists().file_access;
  File file(access > 0 ? H5Fopen(name, flags, access) : H5I_INVALID_HID);
  if (file && (flags & H5F_ACC_RDWR)) EndOpening(file.get());
  return file;
}

File CreateFile(const char* name) {
  CloseKept(name);
  const hid_t access = Lists().file_access;
  if (access <= 0 || (FileExists(name) && !IsRegularFile(name))) return File();
  File file(H5Fcreate(name, H5F_ACC_TRUNC, H5P_DEFAULT, access));
  if (file) EndOpening(file.get());
  return file;
}

bool CloseFile(File& file) {
  process().close_failed = false;
  const Swapped<bool> closing(process().is_closing, true);
  const bool closed = file.Close();
  return closed && !process().close_failed;
}

bool FileExists(const char* name) {
  struct stat info = {};
  return lstat(name, &info) == 0;
}

namespace {

/// Nothing for a path that the catalogue does not tell about.
std::optional<Group> OpenIndexedGroup(hid_t loc, const char* name) {
  const IndexedPlace place(loc);
  if (!place) return Group();
  const auto found = place.Follow(name);
  if (found.answer == structure::Catalogue::Answer::kNo) return Group();
  if (found.answer == structure::Catalogue::Answer::kUnknown) return std::nullopt;
  if (place.catalogue().IsGroup(found.object)) return Group(place.file->IdOf(found.object));
  return std::nullopt;
}

}  // namespace

Group OpenGroup(hid_t loc, const char* name, hid_t access) {
  if (IsIndexed(loc)) {
    if (auto group = OpenIndexedGroup(loc, name)) return std::move(*group);
    const Hdf5Location by_hdf5(loc);
    return OpenGroup(by_hdf5.get(), name, access);
  }
  return Group(OpenInside(H5Gopen2, loc, name, access));
}

Group OpenGroupAt(hid_t group, hsize_t position, const std::string& name, hid_t access) {
  const IndexedPlace place(group);
  if (place && position < place.catalogue().CountLinks(place.object)) {
    const auto found = place.catalogue().LinkObject(place.object, static_cast<std::uint32_t>(position));
    const bool is_group = found.answer == structure::Catalogue::Answer::kYes && place.catalogue().IsGroup(found.object);
    if (is_group) return Group(place.file->IdOf(found.object));
  }
  return OpenGroup(group, name.c_str(), access);
}

Object OpenObject(hid_t loc, const char* name, hid_t access) {
  const Hdf5Location by_hdf5(loc);
  return Object(OpenInside(H5Oopen, by_hdf5.get(), name, access));
}

hid_t GroupAccess() { return Lists().group_access; }

hid_t DatasetAccess() { return Lists().dataset_access; }

bool StaysInside(hid_t loc, const char* name) {
  if (IsIndexed(loc))
    return true;  // what a catalogue knows is inside, and else HDF5 is asked before anything is opened
  H5L_info2_t info = {};
  if (H5Lget_info2(loc, name, &info, GroupAccess()) < 0) return true;  // the open will tell
  return info.type == H5L_TYPE_HARD || info.type == H5L_TYPE_SOFT;
}

H5O_type_t TypeOfObject(hid_t loc, const char* name) {
  const Hdf5Location by_hdf5(loc);
  loc = by_hdf5.get();
  H5O_info2_t info = {};
  const bool known =
      StaysInside(loc, name) && H5Oget_info_by_name3(loc, name, &info, H5O_INFO_BASIC, GroupAccess()) >= 0;
  return known ? info.type : H5O_TYPE_UNKNOWN;
}

Group CreateGroup(hid_t loc, const char* name) {
  return Group(H5Gcreate2(loc, name, H5P_DEFAULT, H5P_DEFAULT, GroupAccess()));
}

Group OpenOrCreateGroup(hid_t loc, const char* name) {
  return LinkExists(loc, name) ? OpenGroup(loc, name) : CreateGroup(loc, name);
}

bool LinkExists(hid_t loc, const char* name) {
  if (const IndexedPlace place(loc); place && !std::strchr(name, '/')) {
    const auto found = place.catalogue().Child(place.object, name);
    if (found.answer != structure::Catalogue::Answer::kUnknown) {
      return found.answer == structure::Catalogue::Answer::kYes;
    }
  }
  const Hdf5Location by_hdf5(loc);
  return H5Lexists(by_hdf5.get(), name, GroupAccess()) > 0;
}

std::string NameOf(hid_t object) {
  if (const IndexedPlace place(object); place) {
    std::string path = place.catalogue().PathOf(place.object);
    return path.size() < disk::kPathWidth ? path : std::string();
  }
  char name[disk::kPathWidth] = {};
  const ssize_t length = H5Iget_name(object, name, sizeof name);
  if (length < 0 || static_cast<size_t>(length) >= sizeof name) return {};
  return name;
}

bool IsOpenIn(hid_t file, hid_t object) {
  if (const IndexedPlace place(object); place) return file == place.file->IdOf(place.catalogue().root());
  const File opened(H5Iget_file_id(object));
  return opened && opened.get() == file;
}

hssize_t CountLinks(hid_t group) {
  if (const IndexedPlace place(group); place) return place.catalogue().CountLinks(place.object);
  H5G_info_t info = {};
  return H5Gget_info(group, &info) < 0 ? -1 : static_cast<hssize_t>(info.nlinks);
}

namespace {

/// Null when there is none.
const std::string* IndexedLinkName(const IndexedPlace& place, hsize_t index) {
  const bool is_there = place && index < place.catalogue().CountLinks(place.object);
  return is_there ? &place.catalogue().LinkName(place.object, static_cast<std::uint32_t>(index)) : nullptr;
}

/// HDF5's iteration must not be left by an exception: lack of memory ends it with -1.
herr_t AppendName(hid_t /*group*/, const char* name, const H5L_info1_t* /*info*/, void* data) noexcept {
  try {
    static_cast<std::vector<std::string>*>(data)->emplace_back(name);
    return 0;
  } catch (...) {
    CountException();
    return -1;
  }
}

}  // namespace

bool ReadObjectInfo(hid_t object, H5O_info1_t& info) {
  if (const IndexedPlace place(object); place) {
    info.addr = place.catalogue().AddressOf(place.object);
    info.type = H5O_TYPE_GROUP;
    return true;
  }
  return H5Oget_info2(object, &info, H5O_INFO_BASIC) >= 0;
}

void VisitLinks(hid_t group, H5L_iterate1_t visit, void* data) {
  const IndexedPlace place(group);
  if (place && place.catalogue().HasHardLinksOnly(place.object)) {
    H5L_info1_t info = {};
    info.type = H5L_TYPE_HARD;
    const std::uint32_t count = place.catalogue().CountLinks(place.object);
    for (std::uint32_t i = 0; i < count; ++i) {
      if (visit(group, place.catalogue().LinkName(place.object, i).c_str(), &info, data) != 0) return;
    }
    return;
  }
  const Hdf5Location by_hdf5(group);
  hsize_t next = 0;
  (void)H5Literate1(by_hdf5.get(), H5_INDEX_NAME, H5_ITER_INC, &next, visit, data);
}

std::vector<std::string> LinkNames(hid_t group) {
  std::vector<std::string> names;
  if (const IndexedPlace place(group); place) {
    const std::uint32_t count = place.catalogue().CountLinks(place.object);
    for (std::uint32_t i = 0; i < count; ++i) names.push_back(place.catalogue().LinkName(place.object, i));
    return names;
  }
  VisitLinks(group, AppendName, &names);
  return names;
}

std::string LinkName(hid_t group, hsize_t index, size_t width) {
  if (IsIndexed(group)) {
    const std::string* indexed = IndexedLinkName(IndexedPlace(group), index);
    return indexed && indexed->size() < width ? *indexed : std::string();
  }
  std::string name(width, '\0');
  const ssize_t length =
      H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, name.data(), width, GroupAccess());
  if (length < 0 || static_cast<size_t>(length) >= width) return {};
  name.resize(static_cast<size_t>(length));
  return name;
}

size_t LinkNameLength(hid_t group, hsize_t index) {
  if (IsIndexed(group)) {
    const std::string* indexed = IndexedLinkName(IndexedPlace(group), index);
    return indexed ? indexed->size() : 0;
  }
  const ssize_t length = H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, nullptr, 0, GroupAccess());
  return length < 0 ? 0 : static_cast<size_t>(length);
}

WriteFile::WriteFile(File file) : file_(std::move(file)) {
  if (file_) HoldChanges(file_.get());
}

WriteFile& WriteFile::operator=(WriteFile&& other) noexcept {
  std::swap(file_, other.file_);
  std::swap(spoiled_, other.spoiled_);
  return *this;
}

WriteFile::~WriteFile() {
  if (file_) (void)GiveUp();  // on the way out of a failure
}

int WriteFile::GiveUp() {
  (void)ReleaseChanges(file_.get(), Outcome::kGivenUp);
  return CloseFile(file_) ? kOk : kFail;
}

int WriteFile::Finish(int status) {
  if (!file_ || spoiled_) {
    if (file_) (void)GiveUp();  // it has failed already
    return status != kOk ? status : kFail;
  }
  const bool flushed = H5Fflush(file_.get(), H5F_SCOPE_GLOBAL) >= 0;
  const Outcome outcome = !flushed ? Outcome::kGivenUp : status == kOk ? Outcome::kGood : Outcome::kFailed;
  const std::string told = process().last_error;
  const bool kept = ReleaseChanges(file_.get(), outcome);
  const bool closed = CloseFile(file_);
  if (status != kOk || (kept && closed)) return status;
  if (told != process().last_error) return kFail;  // the driver knows why
  return Fail("File::\n\t changes could not be written to the disk");
}

}  // namespace orvio::h5
