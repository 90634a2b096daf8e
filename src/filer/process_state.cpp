// The process-wide state of the library, and what happens when it is loaded. Nothing else may hold such state.

#include "filer/process_state.h"

#include <cstdarg>

#include "orvio/orv_filer.h"

// Part of the exported class and for that reason not a member of ProcessState.
ORVMessageCallBack ORVFiler::_m_pMessageFuc = nullptr;

namespace orvio {
namespace {

/// Makes sure, before any other use, that the HDF5 that was loaded is the one that was built against.
struct LibraryLoad {
  LibraryLoad() {
    (void)H5check_version(H5_VERS_MAJOR, H5_VERS_MINOR, H5_VERS_RELEASE);  // ends the process on a mismatch
    (void)H5open();  // every later call opens HDF5 by itself if this one could not
    process().g_nReadAccess = H5F_ACC_RDONLY;
  }
};

const LibraryLoad library_load;

void KeepLastError(const char* format, va_list values) {
  ProcessState& state = process();
  (void)std::vsnprintf(state.last_error, sizeof state.last_error, format, values);
}

}  // namespace

ProcessState& process() {
  static ProcessState state;
  return state;
}

void SetLastError(const char* format, ...) {
  va_list values;
  va_start(values, format);
  KeepLastError(format, values);
  va_end(values);
}

int Fail(const char* format, ...) {
  va_list values;
  va_start(values, format);
  KeepLastError(format, values);
  va_end(values);
  return 1;
}

}  // namespace orvio
