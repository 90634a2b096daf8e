#pragma once

// The fixture of tests of what outlives an operation, for those that reach the library's insides.

#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "h5/file_changes.h"
#include "orvio/orvio.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace orv_test {

/// Two states of a block, in a file that is remembered however young it is, and a filer that has started up on it.
class TwoStates : public OrvTest {
 protected:
  static constexpr char kValues[] = "/post/singlestate/state000000000002/entityresults/NODE/Speed/orvblock/res";

  TwoStates() {
    model_.variable({.name = "Speed", .key = "Speed"});
    for (int state = 1; state <= 2; ++state) {
      const float first = 10.F * static_cast<float>(state);
      model_.in_state(state, {.variable = "Speed",
                              .nent = 3,
                              .values = {first, first + 1, first + 2},
                              .ids = {7, 8, 9},
                              .index = {.5F * static_cast<float>(state)}});
    }
    path_ = model_.path();
    filer_ = ORVFiler(path_.c_str());
    int next_id = 1;
    EXPECT_EQ(filer_.InitReader(next_id), 0);
  }

  /// Values at a state; empty when the fetch fails.
  std::vector<float> Fetch(int state) {
    ORVResultValuesBase<float, int> values;
    values.m_state = state;
    if (filer_.GetValues(values, filer_.GetResultList(1), -1, -1, "Speed") != 0) return {};
    std::vector<float> fetched(values.m_values, values.m_values + values.m_valueCount);
    values.DeleteAllocation(true);
    return fetched;
  }

  /// Overwrites the values of the second state in place with HDF5 alone.
  void Overwrite(float value) {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "file");
    const Id values(H5Dopen2(file.get(), kValues, H5P_DEFAULT), kValues);
    const std::vector<float> all(3, value);
    Check(H5Dwrite(values.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, all.data()), "write");
  }

  /// The same as a writer in another process does it.
  void Commit(const std::vector<float>& values) {
    haddr_t place = 0;
    {
      const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
      const Id dataset(H5Dopen2(file.get(), kValues, H5P_DEFAULT), kValues);
      place = H5Dget_offset(dataset.get());
    }
    const orvio::h5::Descriptor file(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    const auto size = std::filesystem::file_size(path_);
    orvio::h5::FileChanges changes(file.get(), path_, 0644, size, size, orvio::h5::Durability::kKillSafe);
    ASSERT_TRUE(changes.Write(place, values.data(), values.size() * sizeof(float)));
    ASSERT_TRUE(changes.Commit());
  }

  /// Writes a state of the block with the library.
  int WriteState(int state, std::vector<float> values) {
    std::vector<int> ids = {7, 8, 9};
    ORVResult block(ORV_RESULT_ENTITY);
    block.SetEntityAndVarName("NODE", "Speed");
    block.m_nent = static_cast<std::int64_t>(values.size());
    block.m_ncoo = 1;
    block.m_readIds = 1;
    block.m_entid = ids.data();
    block.m_res = values.data();
    if (filer_.InitForWriting(path_.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, true) != 0) return 1;
    return filer_.WriteBlock(&block, state, ORV_WRITE_HEADER | ORV_WRITE_DATA);
  }

  const orvio::Swapped<double> at_once_{orvio::process().clock_step, -1};
  ForgedModel model_;
  std::string path_;
  ORVFiler filer_{nullptr};
};

}  // namespace orv_test
