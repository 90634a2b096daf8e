// Locks of the system: one on the whole file for writers, one on a byte that no file has for readers.

#include "h5/file_locks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "filer/process_state.h"

namespace orvio::h5 {
namespace {

enum class Attempt { kLocked, kRefused, kFailed };

/// Some file systems know no locks. There, as everywhere, two writers are the user's mistake.
Attempt TryLock(int descriptor) {
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno == ENOSYS || errno == EOPNOTSUPP) return Attempt::kLocked;
  return errno == EWOULDBLOCK || errno == EINTR ? Attempt::kRefused : Attempt::kFailed;
}

struct flock ReaderByte(short type) {
  struct flock byte = {};
  byte.l_type = type;
  byte.l_whence = SEEK_SET;
  byte.l_start = off_t{1} << 62;
  byte.l_len = 1;
  return byte;
}

}  // namespace

bool LockForWriting(int descriptor) {
  constexpr int kLongestPause = 20;
  ProcessState& state = process();
  for (int pause = 1;; pause = std::min(pause * 2, kLongestPause)) {
    const Attempt attempt = TryLock(descriptor);
    if (attempt != Attempt::kRefused) return attempt == Attempt::kLocked;
    const int left = state.lock_timeout - state.lock_waited;
    if (left <= 0) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(std::min(pause, left)));
    state.lock_waited += std::min(pause, left);  // HDF5 may try to open a file a second time
  }
}

bool AnnounceReader(int descriptor) {
  struct flock byte = ReaderByte(F_RDLCK);
  return fcntl(descriptor, F_OFD_SETLK, &byte) == 0;
}

void WithdrawReader(int descriptor) {
  struct flock byte = ReaderByte(F_UNLCK);
  (void)fcntl(descriptor, F_OFD_SETLK, &byte);  // a lock of one's own can be given up
}

bool HasReaders(int descriptor) {
  struct flock byte = ReaderByte(F_WRLCK);
  return fcntl(descriptor, F_OFD_GETLK, &byte) == 0 && byte.l_type != F_UNLCK;
}

void StampChange(int descriptor) {
  timespec times[2] = {};
  times[0].tv_nsec = UTIME_OMIT;
  if (clock_gettime(CLOCK_REALTIME, &times[1]) == 0 && futimens(descriptor, times) == 0) return;
  // Only a file's owner may set a time of his choice. Others wait for the next step.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  (void)futimens(descriptor, nullptr);
}

}  // namespace orvio::h5
