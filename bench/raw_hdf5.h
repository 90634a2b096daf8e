#pragma once

// HDF5 alone on result files: every dataset by its full path, nothing looked for, nothing checked but HDF5's answers.

#include <hdf5.h>

#include <string>
#include <utility>

#include "answer.h"

namespace orvio::bench {

/// Owns an id of one kind. A failed call throws.
template <herr_t (*CloseId)(hid_t)>
class Id {
 public:
  Id() = default;
  Id(hid_t id, const char* what) : id_(id) { Demand(id >= 0, std::string("HDF5 failed: ") + what); }
  Id(Id&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
  Id& operator=(Id&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
  }
  ~Id() {
    if (id_ >= 0) (void)CloseId(id_);
  }

  hid_t get() const { return id_; }
  bool open() const { return id_ >= 0; }

 private:
  hid_t id_ = H5I_INVALID_HID;
};

using FileId = Id<H5Fclose>;
using GroupId = Id<H5Gclose>;
using DatasetId = Id<H5Dclose>;
using AttributeId = Id<H5Aclose>;
using SpaceId = Id<H5Sclose>;
using TypeId = Id<H5Tclose>;

inline void Check(herr_t status, const char* what) { Demand(status >= 0, std::string("HDF5 failed: ") + what); }

}  // namespace orvio::bench
