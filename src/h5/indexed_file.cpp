// Ids, paths and lives of files that are read through their catalogues.

#include "h5/indexed_file.h"

#include <algorithm>
#include <utility>

#include "filer/process_state.h"
#include "h5/disk_file.h"
#include "h5/file_access.h"

namespace orvio::h5 {
namespace {

constexpr unsigned kSlotAt = 32;
constexpr hid_t kSlotMask = 0xffffff;

/// Files in use, each in its slot; a slot that is free is null.
std::vector<IndexedFile*>& Slots() { return process().indexed_files; }

std::size_t TakeSlot(IndexedFile* file) {
  auto& slots = Slots();
  const auto free = std::ranges::find(slots, nullptr);
  if (free != slots.end()) {
    *free = file;
    return static_cast<std::size_t>(free - slots.begin());
  }
  slots.push_back(file);
  return slots.size() - 1;
}

}  // namespace

IndexedFile::IndexedFile(std::string name, std::shared_ptr<FileSnapshot> snapshot,
                         std::shared_ptr<const structure::Catalogue> catalogue)
    : name_(std::move(name)),
      snapshot_(std::move(snapshot)),
      catalogue_(std::move(catalogue)),
      bytes_(*snapshot_),
      slot_(TakeSlot(this)) {}

IndexedFile::~IndexedFile() { Rest(); }

void IndexedFile::Rest() {
  if (Slots()[slot_] == this) Slots()[slot_] = nullptr;
}

bool IndexedFile::Wake() {
  void* place = nullptr;
  const bool is_open =
      !by_hdf5_ || (H5Fget_vfd_handle(by_hdf5_.get(), H5P_DEFAULT, &place) >= 0 && place == snapshot_->place());
  slot_ = TakeSlot(this);
  return is_open;
}

std::unique_ptr<IndexedFile> IndexedFile::Open(const char* name) {
  CataloguedFile found = OpenCatalogued(name);
  if (!found.catalogue) return nullptr;
  return std::unique_ptr<IndexedFile>(new IndexedFile(name, std::move(found.snapshot), std::move(found.catalogue)));
}

hid_t IndexedFile::IdOf(Id object) const {
  return kIndexedTag << kIndexedTagAt | static_cast<hid_t>(slot_) << kSlotAt | static_cast<hid_t>(object);
}

Group IndexedFile::OpenByHdf5(Id group) {
  if (!by_hdf5_) by_hdf5_ = OpenFile(name_.c_str(), H5F_ACC_RDONLY);
  return by_hdf5_ ? OpenGroup(by_hdf5_.get(), catalogue_->PathOf(group).c_str()) : Group();
}

IndexedPlace::IndexedPlace(hid_t id) {
  if (!IsIndexed(id)) return;
  const auto slot = static_cast<std::size_t>(id >> kSlotAt & kSlotMask);
  file = slot < Slots().size() ? Slots()[slot] : nullptr;
  object = static_cast<structure::Catalogue::Id>(id & UINT32_MAX);
}

structure::Catalogue::Found IndexedPlace::Follow(std::string_view path) const {
  using Answer = structure::Catalogue::Answer;
  structure::Catalogue::Found at{Answer::kYes, path.starts_with('/') ? catalogue().root() : object};
  while (!path.empty() && at.answer == Answer::kYes) {
    const std::size_t length = std::min(path.find('/'), path.size());
    const std::string_view part = path.substr(0, length);
    path.remove_prefix(std::min(length + 1, path.size()));
    if (!part.empty() && part != ".") at = catalogue().Child(at.object, part);
  }
  return at;
}

Hdf5Location::Hdf5Location(hid_t loc) : loc_(loc) {
  if (!IsIndexed(loc)) return;
  const IndexedPlace place(loc);
  if (place) group_ = place.file->OpenByHdf5(place.object);
  loc_ = group_.get();
}

IndexedFile* FindIndexedFile(std::string_view name) {
  const auto is_same = [](char wanted, char there) { return (wanted == '\\' ? '/' : wanted) == there; };
  for (IndexedFile* file : Slots()) {
    if (file && std::ranges::equal(name, file->name(), is_same)) return file;
  }
  return nullptr;
}

}  // namespace orvio::h5
