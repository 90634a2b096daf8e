#pragma once

// What the calls of injector_calls.cpp ask before they are made and tell afterwards.

#include <sys/types.h>

#include "faults/recording.h"

namespace orvio::faults {

/// What happens to a call. An `error` is the answer in its place; else `bytes` of a write are written, and then, with
/// `kill`, the process ends.
struct Answer {
  int error = 0;
  std::size_t bytes = 0;
  bool kill = false;
};

/// A file that is looked at; `suffix` is null for all others.
struct Watched {
  const char* suffix = nullptr;
  explicit operator bool() const { return suffix != nullptr; }
};
Watched WatchedPath(int folder, const char* path);
Watched WatchedDescriptor(int descriptor);

/// Counts the call and decides. It may not come back.
Answer AskWrite(int descriptor, off_t offset, std::size_t bytes);
Answer AskResize(int descriptor, off_t size);
Answer AskCreate();
Answer AskOther();  ///< what needs no room: a sync, a removal
Answer AskRead();

void TellWrite(Watched file, off_t offset, const void* bytes, std::size_t count);
void Tell(Op op, Watched file, off_t size = 0);
void EndProcess();

}  // namespace orvio::faults
