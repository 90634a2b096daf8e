// What of a file is lost, and how it comes over a pipe.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvio::program {

struct Loss {
  static constexpr std::uint64_t kNoByte = ~std::uint64_t{0};

  std::string place;             ///< absolute path of what was there
  std::string why;               ///< in a few words without a full stop
  std::uint64_t byte = kNoByte;  ///< where in the file the thing at fault is
  bool is_partial = false;       ///< the group is there, but some of what it held may be missing
};

/// Ends a repair: the file is damaged in a way that nothing here knows what to do about.
class BeyondRepair : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line without control characters, and back. Nothing when it is no such line.
std::string ToLine(const Loss& loss);
std::optional<Loss> LossFrom(std::string_view line);

}  // namespace orvio::program
