// The owner of an HDF5 id.
#pragma once

#include <hdf5.h>

#include <utility>

namespace orvio::program {

/// Owns an id of any kind.
class OwnedId {
 public:
  OwnedId() = default;
  explicit OwnedId(hid_t id) : id_(id) {}
  OwnedId(OwnedId&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
  OwnedId& operator=(OwnedId&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
  }
  ~OwnedId() { (void)Close(); }

  explicit operator bool() const { return id_ >= 0; }
  hid_t get() const { return id_; }

  /// Closes it before its time. False when that fails, which for a file that was written may mean lost data.
  bool Close() { return id_ < 0 || H5Idec_ref(std::exchange(id_, H5I_INVALID_HID)) >= 0; }

 private:
  hid_t id_ = H5I_INVALID_HID;
};

}  // namespace orvio::program
