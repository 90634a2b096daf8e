#include "faults/injector.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "faults/injector_state.h"

namespace orvio::faults {
namespace {

struct State {
  Injection injection;
  std::string folder;
  CallCount* count = nullptr;  ///< null: not armed
};

State& TheState() {
  static State state;
  return state;
}

Watched WatchedName(const char* path) {
  const State& state = TheState();
  const std::string& name = state.injection.path;
  if (state.folder == path) return {kFolder};
  if (std::strncmp(path, name.c_str(), name.size()) != 0) return {};
  return {path + name.size()};
}

/// Counts, and answers whether the fault meets this call.
bool Meets(bool stays) {
  State& state = TheState();
  const int number = ++state.count->calls;
  const Injection& injection = state.injection;
  if (injection.fault == Fault::kUnread) return false;
  const bool met = number == injection.at || (stays && number > injection.at && injection.at > 0);
  if (met && injection.fault != Fault::kNone) ++state.count->met;
  return met;
}

/// What one call that is met comes to, where nothing is special about it.
Answer Decide(std::size_t bytes) {
  const Fault fault = TheState().injection.fault;
  if (!Meets(fault == Fault::kDiskFull)) return {.bytes = bytes};
  switch (fault) {
    case Fault::kKill:
      EndProcess();
      break;
    case Fault::kHalf:
      return {.bytes = bytes / 2, .kill = true};
    case Fault::kNoSpace:
      return {.error = ENOSPC};
    case Fault::kIoError:
      return {.error = EIO};
    case Fault::kDiskFull:
      return {.error = ENOSPC};
    case Fault::kUnread:
    case Fault::kNone:
      break;
  }
  return {.bytes = bytes};
}

bool IsFullNow() {
  const State& state = TheState();
  return state.injection.fault == Fault::kDiskFull && state.count->calls >= state.injection.at;
}

off_t SizeOf(int descriptor) {
  struct stat facts = {};
  return fstat(descriptor, &facts) == 0 ? facts.st_size : 0;
}

/// Bytes from here on that have their room on the disk: up to the next hole, or the end of the file.
off_t RoomAt(int descriptor, off_t offset) {
  if (offset >= SizeOf(descriptor)) return 0;
  const long place = syscall(SYS_lseek, descriptor, 0, SEEK_CUR);
  const long hole = syscall(SYS_lseek, descriptor, offset, SEEK_HOLE);
  (void)syscall(SYS_lseek, descriptor, place, SEEK_SET);
  return hole > offset ? hole - offset : 0;
}

void PutRecord(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const long put = syscall(SYS_write, TheState().injection.record, next, count);
    if (put <= 0) std::abort();
    next += put;
    count -= static_cast<std::size_t>(put);
  }
}

CallRecord RecordOf(Op op, const char* suffix) {
  CallRecord record;
  record.op = op;
  if (std::strlen(suffix) >= sizeof record.suffix) std::abort();
  std::memcpy(record.suffix, suffix, std::strlen(suffix));
  return record;
}

bool IsRecorded() { return TheState().count && TheState().injection.record >= 0; }

}  // namespace

const char* NameOf(Fault fault) {
  switch (fault) {
    case Fault::kNone:
      return "no fault";
    case Fault::kKill:
      return "kill before the call";
    case Fault::kHalf:
      return "kill in the middle of it";
    case Fault::kNoSpace:
      return "no space, once";
    case Fault::kIoError:
      return "I/O error, once";
    case Fault::kDiskFull:
      return "disk full from there on";
    case Fault::kUnread:
      return "read error, once";
  }
  return "";
}

void Arm(const Injection& injection, CallCount& count) {
  if (injection.path.empty()) return;
  TheState() = {injection, injection.path.substr(0, injection.path.rfind('/')), &count};
}

void Disarm() { TheState().count = nullptr; }

void EndProcess() {
  (void)syscall(SYS_kill, getpid(), SIGKILL);
  for (;;) pause();
}

Watched WatchedDescriptor(int descriptor) {
  if (!TheState().count) return {};
  char link[64];
  static char path[PATH_MAX];
  (void)std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  const ssize_t length = readlink(link, path, sizeof path - 1);
  if (length <= 0) return {};
  path[length] = 0;
  // What was removed is nobody's file any more.
  return std::strstr(path, " (deleted)") ? Watched{} : WatchedName(path);
}

Watched WatchedPath(int folder, const char* path) {
  if (!TheState().count || !path) return {};
  if (path[0] == '/') return WatchedName(path);
  static char whole[PATH_MAX];
  if (folder == AT_FDCWD) {
    if (!getcwd(whole, sizeof whole)) return {};
  } else {
    char link[64];
    (void)std::snprintf(link, sizeof link, "/proc/self/fd/%d", folder);
    const ssize_t length = readlink(link, whole, sizeof whole - 1);
    if (length <= 0) return {};
    whole[length] = 0;
  }
  const std::size_t used = std::strlen(whole);
  (void)std::snprintf(whole + used, sizeof whole - used, "/%s", path);
  return WatchedName(whole);
}

Answer AskWrite(int descriptor, off_t offset, std::size_t bytes) {
  const int number = TheState().count->calls + 1;
  if (number < CallCount::kMost) TheState().count->writes[static_cast<std::size_t>(number)] = true;
  const Answer answer = Decide(bytes);
  if (!IsFullNow()) return answer;
  const off_t room = RoomAt(descriptor, offset);
  if (room <= 0) return {.error = ENOSPC};
  return {.bytes = std::min(bytes, static_cast<std::size_t>(room))};
}

Answer AskResize(int descriptor, off_t size) {
  const Answer answer = Decide(0);
  if (!IsFullNow()) return answer;
  return size > SizeOf(descriptor) ? Answer{.error = ENOSPC} : Answer{};
}

Answer AskCreate() { return Decide(0); }

Answer AskOther() {
  const Answer answer = Decide(0);
  return IsFullNow() ? Answer{} : answer;
}

Answer AskRead() {
  State& state = TheState();
  const Injection& injection = state.injection;
  if (++state.count->reads != injection.at || injection.fault != Fault::kUnread) return {};
  ++state.count->met;
  return {.error = EIO};
}

void TellWrite(Watched file, off_t offset, const void* bytes, std::size_t count) {
  if (!IsRecorded()) return;
  CallRecord record = RecordOf(Op::kWrite, file.suffix);
  record.offset = offset;
  record.size = static_cast<std::int64_t>(count);
  PutRecord(&record, sizeof record);
  PutRecord(bytes, count);
}

void Tell(Op op, Watched file, off_t size) {
  if (!IsRecorded()) return;
  CallRecord record = RecordOf(op, file.suffix);
  record.size = size;
  PutRecord(&record, sizeof record);
}

void RecordMark(int what) {
  if (!IsRecorded()) return;
  CallRecord record = RecordOf(Op::kMark, "");
  record.what = what;
  PutRecord(&record, sizeof record);
}

}  // namespace orvio::faults
