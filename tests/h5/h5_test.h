#pragma once

// The fixture of the HDF5 layer's tests.

#include <string>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_switches.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {

inline constexpr char kUntouched[] = "untouched";  ///< the last error text before a call

/// Adds a look at the text of the last failure. A test begins with the text "untouched".
class H5Test : public OrvTest {
 protected:
  H5Test() { ForgetText(); }
  static void ForgetText() { orvio::SetLastError("%s", kUntouched); }
  static std::string LastText() { return ORVGetLastErrorText(); }
};

}  // namespace orv_test
