// What HDF5 must not do during the library's own calls: print errors and load plugins.

#include "h5/entry.h"

#include <utility>

#include "filer/process_state.h"
#include "h5/held_snapshots.h"

namespace orvio::h5 {

namespace {

void Silence() { (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr); }  // cannot fail for the default stack

bool StopPlugins(unsigned& before) { return H5PLget_loading_state(&before) >= 0 && H5PLset_loading_state(0) >= 0; }

}  // namespace

void CountException() noexcept { ++process().exceptions; }

unsigned CountedExceptions() noexcept { return process().exceptions; }

QuietHdf5::QuietHdf5() noexcept {
  const bool is_first = process().entries++ == 0;
  if (!is_first && process().is_among_itself) return;  // silent since the first
  outermost_ = is_first && StopPlugins(plugins_);
  if (H5Eauto_is_v2(H5E_DEFAULT, &is_v2_) < 0) return;
  const bool is_known = is_v2_ ? H5Eget_auto2(H5E_DEFAULT, &func2_, &data_) >= 0 : H5Eget_auto1(&func1_, &data_) >= 0;
  const bool is_silent = !is_first && is_v2_ && !func2_;
  if (!is_known || is_silent) return;
  Silence();
  is_put_back_ = true;
  outer_ = std::exchange(process().quiet, this);
}

QuietHdf5::~QuietHdf5() {
  if (--process().entries == 0) {
    ForgetHeldSnapshots();
    process().lock_waited = 0;
  }
  if (outermost_) (void)H5PLset_loading_state(plugins_);  // cannot fail for what it answered before
  if (!is_put_back_) return;
  process().quiet = outer_;
  if (is_v2_) {
    (void)H5Eset_auto2(H5E_DEFAULT, func2_, data_);
  } else {
    (void)H5Eset_auto1(func1_, data_);
  }
}

herr_t QuietHdf5::SetForGood(H5E_auto2_t func, void* data) noexcept {
  for (QuietHdf5* each = process().quiet; each; each = each->outer_) {
    each->is_v2_ = 1;
    each->func2_ = func;
    each->data_ = data;
  }
  return H5Eset_auto2(H5E_DEFAULT, func, data);
}

HostCode::HostCode() noexcept : was_among_itself_(std::exchange(process().is_among_itself, false)) {}

HostCode::~HostCode() {
  process().is_among_itself = was_among_itself_;
  if (process().entries > 0) Silence();
}

}  // namespace orvio::h5
