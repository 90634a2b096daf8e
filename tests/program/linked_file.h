#pragma once

// A sidecar that orv link has made, seen with HDF5 alone, and the results it is made of, forged with HDF5 alone.

#include <gmock/gmock.h>
#include <hdf5.h>

#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace orv_test {

/// A mesh of two squares side by side and a line: nodes 10 to 70, quadrangles 1 and 2, line 5, in this order.
///
///     40 - 50 - 60
///     |  1 |  2 |
///     10 - 20 - 30 -- 5 -- 70
inline void AddLinkedMesh(ForgedFile& file) {
  AddNodalResult(file, "/post/constant/", "COORDINATE", 1000, 7, 3)
      .dataset<std::int32_t>("entid", {7}, {10, 20, 30, 40, 50, 60, 70})
      .dataset<float>("res", {7, 3}, {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 3, 0, 0.5F});
  AddVariable(file, "COORDINATE", "", 1, {"X", "Y", "Z"});
  AddIndexTypes(file, {"TIME"});
  AddElements(file, "QUAD4", 2, 4, {1, 2}, {10, 20, 50, 40, 20, 30, 60, 50});
  AddElements(file, "LINE2", 1, 2, {5}, {30, 70});
}

inline std::string StatePlace(int state) { return "/post/singlestate/state00000000000" + std::to_string(state) + "/"; }

/// Values at nodes, with the time of their state.
inline ForgedFile& AddNodalValues(ForgedFile& file, int state, const std::string& variable, int components,
                                  const std::vector<std::int32_t>& ids, const std::vector<float>& values) {
  AddIndex(AddNodalResult(file, StatePlace(state), variable, 1000, static_cast<int>(ids.size()), components),
           {0.25 * state})
      .dataset<std::int32_t>("entid", {ids.size()}, ids);
  return file.dataset<float>("res", {ids.size(), static_cast<hsize_t>(components)}, values);
}

inline ForgedFile& AddElementValues(ForgedFile& file, int state, const std::string& type, const std::string& variable,
                                    int layers, int components, const std::vector<std::int32_t>& ids,
                                    const std::vector<float>& values) {
  AddIndex(AddElementResult(file, StatePlace(state), type, variable, static_cast<int>(ids.size()), layers, components),
           {0.25 * state})
      .dataset<std::int32_t>("idele", {ids.size()}, ids);
  return file.dataset<float>("res", {ids.size(), static_cast<hsize_t>(layers), static_cast<hsize_t>(components)},
                             values);
}

/// A virtual dataset's k-th mapping.
struct VirtualSource {
  std::string file, dataset;
};

inline std::vector<VirtualSource> SourcesOf(const std::string& file, const std::string& dataset) {
  const Id opened(H5Fopen(file.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), file);
  const Id object(H5Dopen2(opened.get(), dataset.c_str(), H5P_DEFAULT), dataset);
  const Id list(H5Dget_create_plist(object.get()), "creation list");
  std::vector<VirtualSource> sources;
  size_t count = 0;
  if (H5Pget_layout(list.get()) != H5D_VIRTUAL || H5Pget_virtual_count(list.get(), &count) < 0) return sources;
  for (size_t i = 0; i < count; ++i) {
    char name[512] = {}, path[512] = {};
    (void)H5Pget_virtual_filename(list.get(), i, name, sizeof name);
    (void)H5Pget_virtual_dsetname(list.get(), i, path, sizeof path);
    sources.push_back({name, path});
  }
  return sources;
}

/// Equal values, where those that are no numbers are equal, too.
inline auto AreFloats(const std::vector<float>& expected) {
  return testing::Pointwise(testing::NanSensitiveFloatEq(), expected);
}

inline constexpr float kNone = std::numeric_limits<float>::quiet_NaN();

class LinkTest : public ProgramTest {
 protected:
  std::string In() const { return TempPath("results.orv"); }
  std::string Out() const { return TempPath("results.vtkhdf"); }

  /// Links the forged file, from a folder of its own, and answers what was told.
  ProgramRun Link(const std::vector<std::string>& more = {}) {
    std::filesystem::copy_file(file_.path(), In(), std::filesystem::copy_options::overwrite_existing);
    return LinkFileAtIn(more);
  }

  ProgramRun LinkFileAtIn(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"link", In()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return run;
  }

  template <class T>
  std::vector<T> Values(const std::string& dataset) const {
    return RawFile(Out()).values<T>("/VTKHDF/" + dataset);
  }

  std::vector<hsize_t> Shape(const std::string& dataset) const { return RawFile(Out()).shape("/VTKHDF/" + dataset); }

  bool Exists(const std::string& dataset) const { return RawFile(Out()).exists("/VTKHDF/" + dataset); }

  bool IsVirtual(const std::string& dataset) const {
    return RawFile(Out()).layout("/VTKHDF/" + dataset) == H5D_VIRTUAL;
  }

  ForgedFile file_;
};

}  // namespace orv_test
