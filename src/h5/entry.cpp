// Silencing of HDF5's automatic error printing around the library's own calls.

#include "h5/entry.h"

namespace orvio::h5 {

QuietHdf5::QuietHdf5() noexcept {
  if (H5Eauto_is_v2(H5E_DEFAULT, &is_v2_) < 0) return;
  known_ = is_v2_ ? H5Eget_auto2(H5E_DEFAULT, &func2_, &data_) >= 0 : H5Eget_auto1(&func1_, &data_) >= 0;
  if (known_) (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // cannot fail for the default stack
}

QuietHdf5::~QuietHdf5() {
  if (!known_) return;
  if (is_v2_) {
    (void)H5Eset_auto2(H5E_DEFAULT, func2_, data_);
  } else {
    (void)H5Eset_auto1(func1_, data_);
  }
}

}  // namespace orvio::h5
