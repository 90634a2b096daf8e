// The reader pool.

#include "h5/reader_pool.h"

#include <algorithm>
#include <memory>

#include "filer/process_state.h"
#include "h5/indexed_file.h"
#include "h5/status.h"

OH5ReaderPool& OH5ReaderPool::Get() {
  OH5ReaderPool*& pool = orvio::process().reader_pool;
  if (!pool) pool = new OH5ReaderPool;  // lives as long as the process: a host may read until the very end
  return *pool;
}

std::string OH5ReaderPool::KeyOf(const char* file) {
  std::string key = file;
  std::ranges::replace(key, '\\', '/');
  return key;
}

namespace {

/// A reader of a file in use, which needs no open and no close of its own.
class IndexedReader : public OH5Reader {
 public:
  explicit IndexedReader(const orvio::h5::IndexedFile& file) : OH5Reader(nullptr, 0) {
    m_file = file.IdOf(file.catalogue().root());
  }
  ~IndexedReader() override { m_file = -1; }  // the file is closed by who uses it
};

/// Whether code of a host asks that an operation has called: it may give the groups to HDF5, and keep the reader.
bool IsOfHostInside() { return orvio::process().file_in_use && !orvio::process().is_among_itself; }

}  // namespace

IOH5Reader* OH5ReaderPool::Request(const char* file, unsigned flags) {
  if (IsOfHostInside()) return new OH5Reader(KeyOf(file).c_str(), flags);
  if (const orvio::h5::IndexedFile* indexed = orvio::h5::FindIndexedFile(file); indexed && flags == 0) {
    return new IndexedReader(*indexed);
  }
  const std::string key = KeyOf(file);
  const auto kept = open_.find(key);
  if (kept != open_.end() && kept->second) return kept->second;
  auto reader = std::make_unique<OH5Reader>(key.c_str(), flags);
  const auto mark = keep_open_.find(key);
  if (mark != keep_open_.end() && mark->second == 1 && limit_ != 0) Keep(key, reader.get());
  return reader.release();
}

int OH5ReaderPool::Release(IOH5Reader*& reader) {
  if (!reader) return orvio::kFail;
  if (!Holds(reader)) {
    delete reader;
  } else if (open_.size() > limit_) {
    RemoveOldest();
  }
  reader = nullptr;
  return orvio::kOk;
}

void OH5ReaderPool::KeepOpen(const char* file, int keep) {
  if (keep == 0) {
    keep_open_.erase(KeyOf(file));
  } else {
    keep_open_[KeyOf(file)] = keep;
  }
}

bool OH5ReaderPool::IsKeptOpen(const char* file) const {
  if (keep_open_.empty()) return false;
  const auto mark = keep_open_.find(KeyOf(file));
  return mark != keep_open_.end() && mark->second == 1;
}

bool OH5ReaderPool::Holds(const IOH5Reader* reader) const {
  return std::ranges::any_of(open_, [reader](const auto& entry) { return entry.second == reader; });
}

void OH5ReaderPool::Keep(const std::string& key, IOH5Reader* reader) {
  youngest_ = age_.insert_after(youngest_, reader);
  open_[key] = reader;
}

void OH5ReaderPool::Forget(const IOH5Reader* reader) {
  std::erase_if(open_, [reader](const auto& entry) { return entry.second == reader; });
  age_.remove_if([reader](const IOH5Reader* each) { return each == reader; });
  youngest_ = age_.before_begin();
  for (auto next = age_.begin(); next != age_.end(); ++next) youngest_ = next;
}

void OH5ReaderPool::Remove(IOH5Reader* reader) {
  Forget(reader);
  delete reader;
}

std::unique_ptr<IOH5Reader> OH5ReaderPool::TakeOut(const char* file) {
  const auto kept = open_.find(KeyOf(file));
  if (kept == open_.end()) return nullptr;
  std::unique_ptr<IOH5Reader> reader(kept->second);
  Forget(reader.get());
  return reader;
}

void OH5ReaderPool::Adopt(const char* file, std::unique_ptr<IOH5Reader> reader) {
  Keep(KeyOf(file), reader.get());
  (void)reader.release();
}

void OH5ReaderPool::RemoveOldest() {
  if (!age_.empty()) Remove(age_.front());
}

void OH5ReaderPool::RemovePath(const char* file) {
  const auto kept = open_.find(KeyOf(file));
  if (kept != open_.end()) Remove(kept->second);
}

void OH5ReaderPool::RemoveReader(const IOH5Reader* reader) {
  const auto kept = std::ranges::find_if(open_, [reader](const auto& entry) { return entry.second == reader; });
  if (kept != open_.end()) Remove(kept->second);
}

void OH5ReaderPool::Clear() {
  while (!age_.empty()) RemoveOldest();
}
