// What a person is told about a sidecar.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvio::program {

/// Something that is in the result file and not in the sidecar.
struct LeftOut {
  bool operator==(const LeftOut&) const = default;

  std::string what, why;
};

struct ArrayReport {
  std::string name, on;  ///< "points", "cells"
  std::uint64_t components = 0;
  std::uint64_t rows = 0;
  std::uint64_t slabs = 0;  ///< of virtual ones
  std::uint64_t bytes = 0;  ///< that a reader sees
  std::string why_copied;   ///< empty: virtual
};

struct LinkReport {
  std::string source;                   ///< its name in the sidecar
  std::uint64_t points = 0, cells = 0;  ///< of the first step
  std::uint64_t steps = 0, meshes = 0;
  std::string time;  ///< what the values of the steps are: "TIME", "state number"
  std::vector<ArrayReport> arrays;
  std::vector<LeftOut> left_out;
  std::vector<std::string> notes;
  std::uint64_t source_bytes = 0, sidecar_bytes = 0, copied_bytes = 0;
};

}  // namespace orvio::program
