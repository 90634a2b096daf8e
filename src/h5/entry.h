#pragma once

// The frame around every exported operation: inside, HDF5 is silent and loads no code; no exception leaves. And that
// around code of a host that is called inside.

#include <hdf5.h>

namespace orvio::h5 {

/// Keeps HDF5 from printing its error stack, and from loading a plugin because a file names a filter that it lacks. Puts
/// the host's settings back. A host may have set its handler through either generation of HDF5's interface, and only that
/// one can ask for it.
class QuietHdf5 {
 public:
  QuietHdf5() noexcept;
  ~QuietHdf5();
  QuietHdf5(const QuietHdf5&) = delete;
  QuietHdf5& operator=(const QuietHdf5&) = delete;

  /// H5Eset_auto2 for the default stack that outlives the operations that run: they put this back.
  static herr_t SetForGood(H5E_auto2_t func, void* data) noexcept;

 private:
  unsigned is_v2_ = 1;
  H5E_auto1_t func1_ = nullptr;
  H5E_auto2_t func2_ = nullptr;
  void* data_ = nullptr;
  bool is_put_back_ = false;
  QuietHdf5* outer_ = nullptr;
  unsigned plugins_ = 0;
  bool outermost_ = false;  ///< others inside find plugins off already
};

/// Around code of a host that runs inside an operation. What it asks of the library is no step of that operation, and what
/// it makes of HDF5's printing is not for the rest of the operation.
class HostCode {
 public:
  HostCode() noexcept;
  ~HostCode();
  HostCode(const HostCode&) = delete;
  HostCode& operator=(const HostCode&) = delete;

 private:
  bool was_among_itself_;
};

/// Counts an exception that becomes a failure here; see WholeEntry.
void CountException() noexcept;
unsigned CountedExceptions() noexcept;

/// Runs the body of an exported operation. An exception, out of memory above all, becomes `failure`: what grows
/// with a file's data may fail to allocate, and hosts are not built for exceptions.
template <class Answer, class Body>
Answer Entry(Answer failure, Body&& body) noexcept {
  const QuietHdf5 quiet;
  try {
    return body();
  } catch (...) {
    CountException();
    return failure;
  }
}

/// The same for an operation whose success says that nothing is missing. Operations inside it may have failed for want of
/// memory and been taken for something that the file does not have: then it fails, too.
template <class Answer, class Body>
Answer WholeEntry(Answer failure, Body&& body) noexcept {
  const unsigned before = CountedExceptions();
  const Answer answer = Entry(failure, body);
  return CountedExceptions() == before ? answer : failure;
}

/// The same for an operation without an answer.
template <class Body>
void EntryVoid(Body&& body) noexcept {
  const QuietHdf5 quiet;
  try {
    body();
  } catch (...) {  // the operation has no way to tell
    CountException();
  }
}

}  // namespace orvio::h5
