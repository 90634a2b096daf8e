#pragma once

// Lets the calls that change one file, or files beside it whose names begin with its name, fail or end the process. It
// stands between HDF5, the library and the system in the programs that link it: their write, ftruncate, fsync and so on
// are those of injector_calls.cpp.

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace orvio::faults {

enum class Fault : int {
  kNone,
  kKill,      ///< the process ends before the call
  kHalf,      ///< half of the bytes are written, then the process ends
  kNoSpace,   ///< one call fails with ENOSPC
  kIoError,   ///< one call fails with EIO
  kDiskFull,  ///< from this call on whatever needs room fails with ENOSPC
  kUnread,    ///< one read fails with EIO; reads are numbered by themselves
};
/// Those of calls that change something.
inline constexpr Fault kFaults[] = {Fault::kKill, Fault::kHalf, Fault::kNoSpace, Fault::kIoError, Fault::kDiskFull};
const char* NameOf(Fault fault);

/// Where what was called is counted; in memory that outlives the process when it shall be read afterwards.
struct CallCount {
  static constexpr int kMost = 4096;

  std::atomic<int> calls{0};  ///< that change something, or sync it
  std::atomic<int> reads{0};
  std::atomic<int> met{0};           ///< calls that the fault met
  std::array<bool, kMost> writes{};  ///< of each call, from 1, whether it has bytes to write
};

struct Injection {
  std::string path;  ///< of the file, absolute; none to leave all files alone
  Fault fault = Fault::kNone;
  int at = 0;       ///< number of the call that is met, from 1
  int record = -1;  ///< descriptor to which calls are written with their bytes; see recording.h
};

/// From here on calls are counted and met; one file at a time.
void Arm(const Injection& injection, CallCount& count);
void Disarm();
/// Puts a mark into the record: what the caller knows at this place.
void RecordMark(int what);

}  // namespace orvio::faults
