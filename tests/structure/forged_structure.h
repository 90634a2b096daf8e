#pragma once

// Files for the tests of the structure check: made with HDF5 alone, in each of its formats, and then held as bytes.

#include <hdf5.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "structure/memory_bytes.h"
#include "structure/structure_check.h"
#include "support/raw_file.h"
#include "support/raw_hdf5.h"

namespace orv_test {

/// How HDF5 writes a file.
struct Format {
  const char* name;
  H5F_libver_t oldest;  ///< the oldest version that shall be able to read it
  hsize_t user_block = 0;
  size_t address_size = 8;
};
inline constexpr Format kOldest{"Oldest", H5F_LIBVER_EARLIEST};
inline constexpr Format kVersion18{"Version18", H5F_LIBVER_V18};
inline constexpr Format kVersion110{"Version110", H5F_LIBVER_V110};
inline constexpr Format kLatest{"Latest", H5F_LIBVER_LATEST};

using Contents = std::function<void(hid_t file)>;

inline std::string TemporaryPath() {
  std::string path = (std::filesystem::temp_directory_path() / "orvio-structure-XXXXXX").string();
  close(mkstemp(path.data()));
  return path;
}

/// A property list of a file's creation; the contents may need one of their own.
inline Id CreationList(const Format& format) {
  Id list(H5Pcreate(H5P_FILE_CREATE), "creation list");
  if (format.user_block > 0) Check(H5Pset_userblock(list.get(), format.user_block), "user block");
  Check(H5Pset_sizes(list.get(), format.address_size, format.address_size), "sizes");
  return list;
}

/// Makes a file and answers its bytes.
inline std::string Forge(const Format& format, const Contents& contents, const Id& creation) {
  const std::string path = TemporaryPath();
  {
    const Id access(H5Pcreate(H5P_FILE_ACCESS), "access list");
    Check(H5Pset_libver_bounds(access.get(), format.oldest, H5F_LIBVER_LATEST), "bounds");
    const Id file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, creation.get(), access.get()), "file");
    contents(file.get());
  }
  std::string bytes = BytesOf(path);
  unlink(path.c_str());
  return bytes;
}
inline std::string Forge(const Format& format, const Contents& contents) {
  return Forge(format, contents, CreationList(format));
}

/// What the check finds wrong, as "text at offset"; empty when nothing is.
inline std::optional<orvio::structure::Fault> FaultOf(const std::string& bytes) {
  orvio::structure::MemoryBytes source(bytes.data(), bytes.size());
  return orvio::structure::CheckStructure(source);
}
inline std::string WhatOf(const std::string& bytes) {
  const auto fault = FaultOf(bytes);
  return fault ? fault->what : "";
}

// Shorthands of what most files hold.

inline Id Group(hid_t loc, const std::string& name) {
  return Id(H5Gcreate2(loc, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
}

inline Id Space(const std::vector<hsize_t>& size, const std::vector<hsize_t>& most = {}) {
  if (size.empty()) return Id(H5Screate(H5S_SCALAR), "space");
  return Id(H5Screate_simple(static_cast<int>(size.size()), size.data(), most.empty() ? nullptr : most.data()),
            "space");
}

inline void Attribute(hid_t loc, const std::string& name, hid_t type, const Id& space, const void* values) {
  const Id made(H5Acreate2(loc, name.c_str(), type, space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
  if (values) Check(H5Awrite(made.get(), type, values), name);
}

inline void IntegerAttribute(hid_t loc, const std::string& name, std::int64_t value) {
  Attribute(loc, name, H5T_NATIVE_INT64, Space({}), &value);
}

inline Id Properties(const std::function<void(hid_t list)>& set = {}) {
  Id list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
  if (set) set(list.get());
  return list;
}

/// Values of any type: so many that no dataset here needs more.
inline const void* SomeValues() {
  static const std::vector<std::int32_t> values = [] {
    std::vector<std::int32_t> made(1 << 17);
    for (size_t i = 0; i < made.size(); ++i) made[i] = static_cast<std::int32_t>(i % 1000);
    return made;
  }();
  return values.data();
}

inline void Dataset(hid_t loc, const std::string& name, hid_t type, const Id& space, const Id& list,
                    bool written = true) {
  const Id made(H5Dcreate2(loc, name.c_str(), type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
  if (written) Check(H5Dwrite(made.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, SomeValues()), name);
}
inline void Dataset(hid_t loc, const std::string& name, hid_t type, const std::vector<hsize_t>& size) {
  Dataset(loc, name, type, Space(size), Properties());
}

inline Id Chunked(const std::vector<hsize_t>& chunk, const std::function<void(hid_t list)>& set = {}) {
  return Properties([&](hid_t list) {
    Check(H5Pset_chunk(list, static_cast<int>(chunk.size()), chunk.data()), "chunk");
    if (set) set(list);
  });
}

inline Id VariableText() {
  Id type(H5Tcopy(H5T_C_S1), "type");
  Check(H5Tset_size(type.get(), H5T_VARIABLE), "size");
  return type;
}

inline Id FixedText(size_t width) {
  Id type(H5Tcopy(H5T_C_S1), "type");
  Check(H5Tset_size(type.get(), width), "size");
  return type;
}

}  // namespace orv_test
