#include "support/raw_put.h"

#include <cstring>

namespace orv_test {
namespace {

constexpr std::size_t kTextWidth = 256;

}  // namespace

Id MakeGroup(hid_t parent, const std::string& name) {
  return {H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
}

Id OpenOrMakeGroup(hid_t parent, const std::string& name) {
  const htri_t there = H5Lexists(parent, name.c_str(), H5P_DEFAULT);
  Check(there, name);
  return there > 0 ? Id(H5Gopen2(parent, name.c_str(), H5P_DEFAULT), name) : MakeGroup(parent, name);
}

void PutAttribute(hid_t group, const char* name, hid_t type, const void* value) {
  const Id space(H5Screate(H5S_SCALAR), name);
  const Id attribute(H5Acreate2(group, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
  Check(H5Awrite(attribute.get(), type, value), name);
}

void PutNumber(hid_t group, const char* name, std::int64_t value) {
  PutAttribute(group, name, H5T_NATIVE_INT64, &value);
}

void PutText(hid_t group, const char* name, const char* text) {
  char field[kTextWidth];
  std::memset(field, ' ', sizeof field);
  std::memcpy(field, text, std::strlen(text));
  const Id type(H5Tcopy(H5T_C_S1), name);
  Check(H5Tset_size(type.get(), sizeof field), name);
  PutAttribute(group, name, type.get(), field);
}

}  // namespace orv_test
