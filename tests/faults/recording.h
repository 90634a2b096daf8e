#pragma once

// The calls of an append, as they were made.

#include <cstdint>
#include <string>
#include <vector>

namespace orvio::faults {

enum class Op : std::int32_t { kWrite, kResize, kSync, kCreate, kRemove, kMark };

/// One call. As it is stored its bytes come behind it.
struct CallRecord {
  static constexpr std::size_t kSuffix = 32;

  Op op = Op::kMark;
  std::int32_t what = 0;      ///< of a mark
  std::int64_t offset = 0;    ///< of a write
  std::int64_t size = 0;      ///< bytes of a write, or the new size
  char suffix[kSuffix] = {};  ///< what the name has more than that of the file: "", "-journal", or kFolder
};
inline constexpr char kFolder[] = "/";

struct Call : CallRecord {
  std::vector<char> bytes = {};
  bool IsOn(const char* name) const { return std::string(suffix) == name; }
};

/// Throws when it is not whole.
std::vector<Call> ReadRecording(const std::string& path);

}  // namespace orvio::faults
