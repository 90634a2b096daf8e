#pragma once

// What the test fixture's own HDF5 code shares: an owner of ids and a check that throws.

#include <hdf5.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

namespace orv_test {

/// Owns an id of any kind.
class Id {
 public:
  Id() = default;
  /// Throws for a failed call: a file that cannot be forged or looked at is a fault of the test.
  Id(hid_t id, const std::string& what);
  Id(Id&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
  Id& operator=(Id&& other) noexcept;
  ~Id();

  hid_t get() const { return id_; }
  bool open() const { return id_ > 0; }

 private:
  hid_t id_ = H5I_INVALID_HID;
};

/// Throws unless `status` is 0 or more.
void Check(std::int64_t status, const std::string& what);

/// Whether every part of the path is there. A link that leads nowhere is there as the last part only.
bool PathExists(hid_t loc, const std::string& path);

/// A file held open by HDF5 alone and one object in it, as a place for the library to work in.
class Location {
 public:
  Location(const std::string& file, const std::string& path, unsigned flags = H5F_ACC_RDONLY);
  hid_t id() const { return object_.get(); }
  hid_t file() const { return file_.get(); }

 private:
  Id file_;
  Id object_;
};

/// Native type of a number; made for the four types that result files hold.
template <class T>
hid_t NativeType();

}  // namespace orv_test
