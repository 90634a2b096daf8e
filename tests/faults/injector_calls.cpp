// The system's calls, in the place of those of the C library: for the program itself and for the shared libraries that
// it has loaded. Each goes to the kernel, by way of the injector where it changes a file that is looked at.

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "faults/injector_state.h"

#define ORVIO_IN_PLACE __attribute__((visibility("default")))

namespace {

using orvio::faults::Answer;
using orvio::faults::Op;
using orvio::faults::Tell;
using orvio::faults::TellWrite;
using orvio::faults::Watched;
using orvio::faults::WatchedDescriptor;
using orvio::faults::WatchedPath;

int Refuse(int error) {
  errno = error;
  return -1;
}

/// Calls the kernel unless the answer is an error; tells what was done, and ends the process where that was asked for.
template <class Made>
long Make(const Answer& answer, Made made) {
  if (answer.error != 0) return Refuse(answer.error);
  const long done = made();
  if (answer.kill) orvio::faults::EndProcess();
  return done;
}

ssize_t WriteAt(int descriptor, const void* bytes, std::size_t count, off_t offset) {
  const Watched file = WatchedDescriptor(descriptor);
  if (!file) return syscall(SYS_pwrite64, descriptor, bytes, count, offset);
  const Answer answer = orvio::faults::AskWrite(descriptor, offset, count);
  return Make(answer, [&] {
    const long put = syscall(SYS_pwrite64, descriptor, bytes, answer.bytes, offset);
    if (put >= 0) TellWrite(file, offset, bytes, static_cast<std::size_t>(put));
    return put;
  });
}

/// At the place of the descriptor, which moves on.
ssize_t WriteHere(int descriptor, const void* bytes, std::size_t count) {
  if (!WatchedDescriptor(descriptor)) return syscall(SYS_write, descriptor, bytes, count);
  const long place = syscall(SYS_lseek, descriptor, 0, SEEK_CUR);
  if (place < 0) return -1;
  const ssize_t put = WriteAt(descriptor, bytes, count, place);
  if (put > 0) (void)syscall(SYS_lseek, descriptor, place + put, SEEK_SET);
  return put;
}

/// One call of the system for each part; who writes several parts of a file that is looked at sees no difference.
template <class Put>
ssize_t WriteParts(const iovec* parts, int count, Put put_part) {
  ssize_t all = 0;
  for (int i = 0; i < count; ++i) {
    const ssize_t put = put_part(parts[i], all);
    if (put < 0) return all > 0 ? all : put;
    all += put;
    if (static_cast<std::size_t>(put) < parts[i].iov_len) break;
  }
  return all;
}

/// `call` reads.
template <class Read>
ssize_t ReadOrRefuse(int descriptor, Read call) {
  if (!WatchedDescriptor(descriptor)) return call();
  return Make(orvio::faults::AskRead(), call);
}

int Resize(int descriptor, off_t size) {
  const Watched file = WatchedDescriptor(descriptor);
  const auto call = [&] { return syscall(SYS_ftruncate, descriptor, size); };
  if (!file) return static_cast<int>(call());
  return static_cast<int>(Make(orvio::faults::AskResize(descriptor, size), [&] {
    const long done = call();
    if (done == 0) Tell(Op::kResize, file, size);
    return done;
  }));
}

int Sync(long number, int descriptor) {
  const Watched file = WatchedDescriptor(descriptor);
  if (!file) return static_cast<int>(syscall(number, descriptor));
  return static_cast<int>(Make(orvio::faults::AskOther(), [&] {
    const long done = syscall(number, descriptor);
    if (done == 0) Tell(Op::kSync, file);
    return done;
  }));
}

int Remove(int folder, const char* path, int flags) {
  const Watched file = WatchedPath(folder, path);
  const auto call = [&] { return syscall(SYS_unlinkat, folder, path, flags); };
  if (!file || syscall(SYS_faccessat, folder, path, F_OK) != 0) return static_cast<int>(call());
  return static_cast<int>(Make(orvio::faults::AskOther(), [&] {
    const long done = call();
    if (done == 0) Tell(Op::kRemove, file);
    return done;
  }));
}

/// Only what makes a file or empties one is looked at.
int Open(int folder, const char* path, int flags, mode_t mode) {
  const auto call = [&] { return syscall(SYS_openat, folder, path, flags, mode); };
  const Watched file = (flags & (O_CREAT | O_TRUNC)) != 0 ? WatchedPath(folder, path) : Watched{};
  if (!file) return static_cast<int>(call());
  const bool exists = syscall(SYS_faccessat, folder, path, F_OK) == 0;
  const bool changes = exists ? (flags & O_TRUNC) != 0 : (flags & O_CREAT) != 0;
  if (!changes) return static_cast<int>(call());
  return static_cast<int>(Make(orvio::faults::AskCreate(), [&] {
    const long opened = call();
    if (opened >= 0) Tell(exists ? Op::kResize : Op::kCreate, file);
    return opened;
  }));
}

/// No road of the library leads here; a record would not tell what came of it.
int Move(int from_folder, const char* from, int to_folder, const char* to, long number, unsigned flags) {
  if (WatchedPath(from_folder, from) || WatchedPath(to_folder, to)) {
    (void)std::fputs("faults: a file under test is renamed or linked, which is not looked at\n", stderr);
    _exit(2);
  }
  return static_cast<int>(syscall(number, from_folder, from, to_folder, to, flags));
}

mode_t ModeOf(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

ORVIO_IN_PLACE ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t offset) {
  return WriteAt(descriptor, bytes, count, offset);
}
ORVIO_IN_PLACE ssize_t pwrite64(int descriptor, const void* bytes, size_t count, off64_t offset) {
  return WriteAt(descriptor, bytes, count, offset);
}
ORVIO_IN_PLACE ssize_t write(int descriptor, const void* bytes, size_t count) {
  return WriteHere(descriptor, bytes, count);
}
ORVIO_IN_PLACE ssize_t pwritev(int descriptor, const iovec* parts, int count, off_t offset) {
  return WriteParts(parts, count, [&](const iovec& part, ssize_t done) {
    return WriteAt(descriptor, part.iov_base, part.iov_len, offset + done);
  });
}
ORVIO_IN_PLACE ssize_t pwritev64(int descriptor, const iovec* parts, int count, off64_t offset) {
  return pwritev(descriptor, parts, count, offset);
}
ORVIO_IN_PLACE ssize_t writev(int descriptor, const iovec* parts, int count) {
  return WriteParts(parts, count,
                    [&](const iovec& part, ssize_t) { return WriteHere(descriptor, part.iov_base, part.iov_len); });
}

ORVIO_IN_PLACE ssize_t pread(int descriptor, void* bytes, size_t count, off_t offset) {
  return ReadOrRefuse(descriptor, [&] { return syscall(SYS_pread64, descriptor, bytes, count, offset); });
}
ORVIO_IN_PLACE ssize_t pread64(int descriptor, void* bytes, size_t count, off64_t offset) {
  return pread(descriptor, bytes, count, offset);
}
ORVIO_IN_PLACE ssize_t read(int descriptor, void* bytes, size_t count) {
  return ReadOrRefuse(descriptor, [&] { return syscall(SYS_read, descriptor, bytes, count); });
}
ORVIO_IN_PLACE ssize_t preadv(int descriptor, const iovec* parts, int count, off_t offset) {
  return ReadOrRefuse(descriptor, [&] { return syscall(SYS_preadv, descriptor, parts, count, offset, 0); });
}

ORVIO_IN_PLACE int ftruncate(int descriptor, off_t size) noexcept { return Resize(descriptor, size); }
ORVIO_IN_PLACE int ftruncate64(int descriptor, off64_t size) noexcept { return Resize(descriptor, size); }
ORVIO_IN_PLACE int fsync(int descriptor) { return Sync(SYS_fsync, descriptor); }
ORVIO_IN_PLACE int fdatasync(int descriptor) { return Sync(SYS_fdatasync, descriptor); }

ORVIO_IN_PLACE int unlink(const char* path) noexcept { return Remove(AT_FDCWD, path, 0); }
ORVIO_IN_PLACE int unlinkat(int folder, const char* path, int flags) noexcept { return Remove(folder, path, flags); }
ORVIO_IN_PLACE int rename(const char* from, const char* to) noexcept {
  return Move(AT_FDCWD, from, AT_FDCWD, to, SYS_renameat2, 0);
}
ORVIO_IN_PLACE int renameat(int from_folder, const char* from, int to_folder, const char* to) noexcept {
  return Move(from_folder, from, to_folder, to, SYS_renameat2, 0);
}
ORVIO_IN_PLACE int link(const char* from, const char* to) noexcept {
  return Move(AT_FDCWD, from, AT_FDCWD, to, SYS_linkat, 0);
}

ORVIO_IN_PLACE int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(AT_FDCWD, path, flags, mode);
}
ORVIO_IN_PLACE int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(AT_FDCWD, path, flags, mode);
}
ORVIO_IN_PLACE int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(folder, path, flags, mode);
}
ORVIO_IN_PLACE int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(folder, path, flags, mode);
}

}  // extern "C"
