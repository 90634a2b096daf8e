// Taking files out for an operation and putting them back.

#include "h5/kept_files.h"

#include <algorithm>
#include <utility>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/held_snapshots.h"
#include "h5/reader_pool.h"

namespace orvio::h5 {
namespace {

/// A host may have closed HDF5 meanwhile, and with it all that was open.
bool IsStillOpen(const KeptFile& file) {
  if (file.indexed) return file.indexed->Wake();
  void* place = nullptr;
  return H5Fget_vfd_handle(file.reader->GetFileId(), H5P_DEFAULT, &place) >= 0 && place == file.snapshot->place();
}

}  // namespace

void KeptFiles::EndWant(const std::string& path) {
  const auto wish = std::ranges::find(wanted_, path);
  if (wish != wanted_.end()) wanted_.erase(wish);
  if (!IsWanted(path)) std::erase_if(files_, [&](const KeptFile& file) { return file.path == path; });
}

bool KeptFiles::IsWanted(const std::string& path) const { return std::ranges::find(wanted_, path) != wanted_.end(); }

KeptFile KeptFiles::Take(const std::string& path) {
  const auto found = std::ranges::find(files_, path, &KeptFile::path);
  if (found == files_.end()) return {};
  KeptFile file = std::move(*found);
  files_.erase(found);
  if (!file.snapshot->Resume(path.c_str()) || !IsStillOpen(file)) return {};
  HoldSnapshot(file.snapshot->stamp(), file.snapshot);
  return file;
}

void KeptFiles::Put(KeptFile file) {
  if (!IsSettled(file.snapshot->stamp()) || !file.snapshot->Rest()) return;
  if (file.indexed) file.indexed->Rest();
  files_.push_back(std::move(file));
}

void KeptFiles::Close(const char* name) {
  struct stat info = {};
  if (files_.empty() || stat(name, &info) != 0) return;
  const FileStamp named(info);
  std::erase_if(files_, [&](const KeptFile& file) {
    const FileStamp& kept = file.snapshot->stamp();
    return kept.device == named.device && kept.inode == named.inode;
  });
}

KeptFiles& FilesKeptOpen() {
  KeptFiles*& kept = process().kept_files;
  if (!kept) kept = new KeptFiles;  // lives as long as the process, as the other lists here
  return *kept;
}

KeepingOpen::KeepingOpen(const char* file) : path_(OH5ReaderPool::KeyOf(file)) { FilesKeptOpen().Want(path_); }

KeepingOpen::~KeepingOpen() {
  EntryVoid([&] { FilesKeptOpen().EndWant(path_); });
}

}  // namespace orvio::h5
