// The beginning and the end of a file's use.

#include "h5/file_in_use.h"

#include "filer/process_state.h"
#include "h5/reader_pool.h"

namespace orvio::h5 {

FileInUse::FileInUse(const char* file) : was_among_itself_(process().is_among_itself) {
  if (!file) return;
  OH5ReaderPool& pool = OH5ReaderPool::Get();
  const bool is_used = FindIndexedFile(file) || pool.IsKeptOpen(file);
  if (!is_used && process().file_index != 0) file_ = IndexedFile::Open(OH5ReaderPool::KeyOf(file).c_str());
  if (!is_used && !file_) {
    pool.KeepOpen(file, 1);
    kept_ = file;
  }
  process().is_among_itself = true;
}

FileInUse::~FileInUse() {
  process().is_among_itself = was_among_itself_;
  if (kept_.empty()) return;
  OH5ReaderPool& pool = OH5ReaderPool::Get();
  pool.KeepOpen(kept_.c_str(), 0);
  pool.RemovePath(kept_.c_str());
}

}  // namespace orvio::h5
