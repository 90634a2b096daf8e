#include "support/raw_hdf5.h"

#include <stdexcept>

namespace orv_test {

Id::Id(hid_t id, const std::string& what) : id_(id) { Check(id, what); }

Id& Id::operator=(Id&& other) noexcept {
  std::swap(id_, other.id_);
  return *this;
}

Id::~Id() {
  if (id_ > 0) H5Idec_ref(id_);
}

void Check(std::int64_t status, const std::string& what) {
  if (status < 0) throw std::runtime_error("HDF5 refused: " + what);
}

bool PathExists(hid_t loc, const std::string& path) {
  for (size_t end = 0; end != std::string::npos;) {
    end = path.find('/', end + 1);
    const std::string head = path.substr(0, end);
    if (head == "/" || head == "." || head.empty()) continue;
    if (H5Lexists(loc, head.c_str(), H5P_DEFAULT) <= 0) return false;
    if (end != std::string::npos && H5Oexists_by_name(loc, head.c_str(), H5P_DEFAULT) <= 0) return false;
  }
  return true;
}

Location::Location(const std::string& file, const std::string& path, unsigned flags)
    : file_(H5Fopen(file.c_str(), flags, H5P_DEFAULT), "open " + file),
      object_(H5Oopen(file_.get(), path.c_str(), H5P_DEFAULT), "open " + path) {}

template <>
hid_t NativeType<std::int32_t>() {
  return H5T_NATIVE_INT32;
}
template <>
hid_t NativeType<std::int64_t>() {
  return H5T_NATIVE_INT64;
}
template <>
hid_t NativeType<float>() {
  return H5T_NATIVE_FLOAT;
}
template <>
hid_t NativeType<double>() {
  return H5T_NATIVE_DOUBLE;
}

}  // namespace orv_test
