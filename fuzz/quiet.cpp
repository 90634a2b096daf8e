#include "quiet.h"

#include <hdf5.h>

#include <cstdio>
#include <cstdlib>

#include "filer/process_state.h"
#include "orvio/orv_filer.h"

// HDF5 is no part of what is looked for here: where it leaks on damaged files, the library can do nothing.
extern "C" const char* __lsan_default_suppressions();                   // NOLINT: the name is the sanitizer's
const char* __lsan_default_suppressions() { return "leak:libhdf5\n"; }  // NOLINT: likewise

namespace orvio::fuzz {

void PrepareHdf5() {
  H5open();
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  H5PLset_loading_state(0);
  // An open file's largest object is above HDF5's own limit of what it keeps for the next one, and with a sanitizer a
  // fresh one is a third of the time of an open. The other limits are HDF5's.
  constexpr int kLarge = 1 << 24, kGlobal = 1 << 20, kList = 1 << 16;
  H5set_free_list_limits(kLarge, kLarge, 4 * kGlobal, 4 * kList, 16 * kGlobal, 16 * kList);
  ORVFiler::SetVerbosCallback(nullptr);
  process().clock_step = -1;  // what is known of a file is used at once, however young the file is
}

void ExpectNothingOpen() {
  const ssize_t open = H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL);
  if (open == 0) return;
  (void)std::fprintf(stderr, "%d HDF5 objects were left open\n", static_cast<int>(open));
  std::abort();
}

}  // namespace orvio::fuzz
