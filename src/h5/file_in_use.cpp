// The beginning and the end of a file's use.

#include "h5/file_in_use.h"

#include <utility>

#include "filer/process_state.h"
#include "h5/reader_pool.h"

namespace orvio::h5 {

FileInUse::FileInUse(const char* file) : was_among_itself_(process().is_among_itself) {
  if (!file) return;
  OH5ReaderPool& pool = OH5ReaderPool::Get();
  std::string path = OH5ReaderPool::KeyOf(file);
  const bool is_used = FindIndexedFile(path) || pool.IsKeptOpen(path.c_str());
  if (!is_used && process().file_index != 0) file_ = IndexedFile::Open(path.c_str());
  if (!is_used && !file_) {
    pool.KeepOpen(path.c_str(), 1);
    kept_ = std::move(path);
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
