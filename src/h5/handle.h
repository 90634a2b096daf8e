#pragma once

// Owners of HDF5 ids. No other file of the library closes an id.

#include <hdf5.h>

#include <utility>

#include "h5/indexed_id.h"

namespace orvio::h5 {

/// Owns one HDF5 id and closes it once. Ids below 1 are not ours to close: negative is a failed call, 0 is HDF5's
/// "default". Those that come from a catalogue need no close.
template <herr_t (*CloseId)(hid_t)>
class Owned {
 public:
  Owned() = default;
  explicit Owned(hid_t id) noexcept : id_(id) {}
  Owned(Owned&& other) noexcept : id_(other.release()) {}
  Owned& operator=(Owned&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~Owned() { reset(); }

  explicit operator bool() const noexcept { return id_ > 0; }
  hid_t get() const noexcept { return id_; }
  hid_t release() noexcept { return std::exchange(id_, H5I_INVALID_HID); }
  void reset(hid_t id = H5I_INVALID_HID) noexcept {
    if (id_ > 0 && !IsIndexed(id_))
      (void)CloseId(id_);  // on the way out of a failure; a write that must know calls Close()
    id_ = id;
  }

  /// Closes now and tells whether that worked. Data may still sit in HDF5's buffers until then.
  [[nodiscard]] bool Close() noexcept {
    const hid_t id = release();
    return id > 0 && (IsIndexed(id) || CloseId(id) >= 0);
  }

 private:
  hid_t id_ = H5I_INVALID_HID;
};

using File = Owned<H5Fclose>;
using Group = Owned<H5Gclose>;
using Dataset = Owned<H5Dclose>;
using Attribute = Owned<H5Aclose>;
using Space = Owned<H5Sclose>;
using Type = Owned<H5Tclose>;
using PropertyList = Owned<H5Pclose>;
using Object = Owned<H5Oclose>;
using Driver = Owned<H5FDunregister>;

}  // namespace orvio::h5
