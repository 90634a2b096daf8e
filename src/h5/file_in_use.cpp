// The beginning and the end of a file's use.

#include "h5/file_in_use.h"

#include <utility>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/held_snapshots.h"
#include "h5/kept_files.h"
#include "h5/reader_pool.h"

namespace orvio::h5 {
namespace {

bool IsUsed(const char* file) { return FindIndexedFile(file) || OH5ReaderPool::Get().IsKeptOpen(file); }

/// The same group once more, with an end of its own.
hid_t Shared(hid_t group) { return IsIndexed(group) || H5Iinc_ref(group) > 0 ? group : H5I_INVALID_HID; }

/// The snapshot of an open file; null when it has none, because it is being written.
std::shared_ptr<FileSnapshot> SnapshotOf(hid_t file) {
  void* place = nullptr;
  return H5Fget_vfd_handle(file, H5P_DEFAULT, &place) < 0 ? nullptr : FindHeldSnapshot(place);
}

/// None for code of a host, which opens files of its own.
FileInUse* Current() { return process().is_among_itself ? process().file_in_use : nullptr; }

}  // namespace

FileInUse::FileInUse(const char* file) : was_among_itself_(process().is_among_itself) {
  if (!file) return;
  if (!IsUsed(file)) Begin(file);
  process().is_among_itself = true;
}

hid_t FileInUse::FindGroup(hid_t file, std::string_view question) {
  const FileInUse* use = Current();
  const bool is_answered = use && use->answered_.file == file && use->answered_.question == question;
  return is_answered ? Shared(use->answered_.group.get()) : H5I_INVALID_HID;
}

void FileInUse::RememberGroup(hid_t file, std::string question, hid_t group) {
  FileInUse* use = Current();
  if (use && group > 0) use->answered_ = {file, std::move(question), Group(Shared(group))};
}

void FileInUse::Begin(const char* file) {
  path_ = OH5ReaderPool::KeyOf(file);
  const bool is_wanted = process().kept_files && process().kept_files->IsWanted(path_);
  KeptFile kept = is_wanted ? process().kept_files->Take(path_) : KeptFile();
  file_ = std::move(kept.indexed);
  if (!file_ && !kept.reader && process().file_index != 0) file_ = IndexedFile::Open(path_.c_str());
  if (!file_) {
    OH5ReaderPool& pool = OH5ReaderPool::Get();
    if (kept.reader) pool.Adopt(path_.c_str(), std::move(kept.reader));
    pool.KeepOpen(path_.c_str(), 1);
  }
  outer_ = std::exchange(process().file_in_use, this);  // last: without memory it does not begin
  is_begun_ = true;
}

/// What is known of a file is had by opening it again and again: as long as there may be more, it is not kept by HDF5.
void FileInUse::PutBack() {
  KeptFile kept;
  if (file_) {
    kept.snapshot = file_->snapshot();
    kept.indexed = std::move(file_);
  } else if (process().file_index == 0) {
    kept.reader = OH5ReaderPool::Get().TakeOut(path_.c_str());
    kept.snapshot = kept.reader ? SnapshotOf(kept.reader->GetFileId()) : nullptr;
  }
  kept.path = path_;
  if (kept.snapshot) process().kept_files->Put(std::move(kept));
}

void FileInUse::End() {
  process().file_in_use = outer_;
  answered_ = Answered();
  const bool is_pooled = !file_;
  OH5ReaderPool& pool = OH5ReaderPool::Get();
  if (is_pooled) pool.KeepOpen(path_.c_str(), 0);
  if (process().kept_files && process().kept_files->IsWanted(path_)) EntryVoid([this] { PutBack(); });
  if (is_pooled) pool.RemovePath(path_.c_str());
}

FileInUse::~FileInUse() {
  process().is_among_itself = was_among_itself_;
  if (is_begun_) End();
}

}  // namespace orvio::h5
