#pragma once

// Where all readers come from and go back to.

#include <forward_list>
#include <map>
#include <memory>
#include <string>

#include "orvio/oh5_reader.h"

/// Hands out readers by file path and can keep up to a limit of them open between requests. Only files that are
/// marked stay open; a FileInUse marks one for the length of an operation, else a reader lives from request to release.
class OH5ReaderPool {
 public:
  /// The pool of the process, made at the first call.
  static OH5ReaderPool& Get();

  /// The path that stands for a file: one with backslashes and the same with slashes are one file.
  static std::string KeyOf(const char* file);

  /// A reader for a file; the caller gives it back with Release. One that failed to open is answered all the
  /// same: its file id is negative. A kept reader is answered whatever `flags` is asked, but never to code of a host
  /// that an operation has called.
  IOH5Reader* Request(const char* file, unsigned flags);

  /// Takes a reader back and clears the pointer. 1 when there is none.
  int Release(IOH5Reader*& reader);

  /// Marks (1) or unmarks (0) a file whose reader may stay open.
  void KeepOpen(const char* file, int keep);
  bool IsKeptOpen(const char* file) const;

  /// Takes the kept reader of a file out, for somebody else to keep; null when there is none. Adopt takes it back.
  std::unique_ptr<IOH5Reader> TakeOut(const char* file);
  void Adopt(const char* file, std::unique_ptr<IOH5Reader> reader);

  /// Removal of readers, for files that are about to be replaced. Each closes what it removes.
  void RemovePath(const char* file);
  void RemoveReader(const IOH5Reader* reader);
  void RemoveOldest();
  void Clear();

  size_t GetNumOpen() const { return open_.size(); }

 private:
  static constexpr size_t kMaxOpen = 5;

  bool Holds(const IOH5Reader* reader) const;
  void Keep(const std::string& key, IOH5Reader* reader);
  void Remove(IOH5Reader* reader);
  void Forget(const IOH5Reader* reader);

  size_t limit_ = kMaxOpen;
  std::map<std::string, IOH5Reader*> open_;
  std::forward_list<IOH5Reader*> age_;  // oldest first
  std::forward_list<IOH5Reader*>::iterator youngest_ = age_.before_begin();
  std::map<std::string, int> keep_open_;
};

namespace orvio::h5 {

/// A reader of a file for the length of a question. Where a question has the file opened again and again, by one block or
/// many, a lease around it keeps HDF5 from closing it in between. Declare it before the handles: the close of the file
/// closes what is still open in it, so the handles must go first.
class ShortLease {
 public:
  explicit ShortLease(const char* file) : reader_(OH5ReaderPool::Get().Request(file, 0)) {}  // 0: read-only
  ~ShortLease() { (void)OH5ReaderPool::Get().Release(reader_); }                             // nothing to lose
  ShortLease(const ShortLease&) = delete;
  ShortLease& operator=(const ShortLease&) = delete;
  IOH5Reader* operator->() const { return reader_; }

 private:
  IOH5Reader* reader_;
};

}  // namespace orvio::h5
