#pragma once

// The fixture of all tests that use the library.

#include <gtest/gtest.h>
#include <hdf5.h>

#include <memory>
#include <string>

#include "orvio/orv_types.h"

namespace orv_test {

/// Keeps what is written to a file descriptor, by whatever road, until it is asked for.
class CapturedOutput {
 public:
  explicit CapturedOutput(int descriptor);
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  ~CapturedOutput();

  std::string Stop();  ///< gives the descriptor back and answers what was written to it

 private:
  int descriptor_;
  int original_;
  int file_;
};

/// The process-wide settings that an operation of the library has to leave as it found them.
struct Switches {
  static Switches Now();
  void PutBack() const;

  int writer_version = 0;
  int overwrite_mode = 0;
  int compression_on = 0;
  int compression_digits = 0;
  int durability = 1;
  int lock_timeout = 0;
  int chunk_entities = 0;
  unsigned access = 0;  ///< flags of the opens by write helpers
  ORVMessageCallBack message = nullptr;
  unsigned error_is_v2 = 1;
  H5E_auto1_t error_handler1 = nullptr;
  H5E_auto2_t error_handler2 = nullptr;
  void* error_data = nullptr;
};

/// Fails a test that leaves an HDF5 object open, a process-wide switch changed or a text on stdout or stderr. The
/// looking is done when the fixture dies, after the test's own members. HDF5's printing of errors stays on, so that
/// a call that is not silenced shows.
class OrvTest : public ::testing::Test {
 public:
  OrvTest();
  ~OrvTest() override;

 protected:
  /// A path in a folder of this test, which is removed with all it holds when the test ends.
  std::string TempPath(const std::string& name) const;

  /// For tests of what switches HDF5's printing off for good. It is on again for the next test all the same.
  void MaySilenceHdf5() { may_silence_hdf5_ = true; }

 private:
  void ExpectSwitchesAsBefore() const;
  void ExpectSilence();

  std::string folder_;
  bool may_silence_hdf5_ = false;
  Switches before_;
  std::unique_ptr<CapturedOutput> out_;
  std::unique_ptr<CapturedOutput> err_;
};

}  // namespace orv_test
