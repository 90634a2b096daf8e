#pragma once

// Processes of the bench. Whatever uses HDF5 or the library does so in one of its own, made by a process that never did.

#include <sys/mman.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

namespace orvio::faults {

/// How a process ended.
struct Ending {
  int code = -1;   ///< what it answered; -1 when it did not
  int signal = 0;  ///< what ended it
  bool Answered(int expected) const { return signal == 0 && code == expected; }
};

/// Runs `work` in a process of its own, which ends with its answer, or, when it has worked for so many seconds or waited
/// for ten times as many, by a signal; 0 for no limit. An exception is printed and answers kTrouble.
inline constexpr int kTrouble = 99;
Ending RunApart(const std::function<int()>& work, unsigned seconds = 60);

/// The same, without waiting: the id of the process.
int Start(const std::function<int()>& work, unsigned seconds);
Ending WaitFor(int process);

/// From here on SIGINT and SIGTERM end a wait with an exception, so that files are removed on the way out.
void EndWaitsOnSignals();

/// A `T` that this process shares with those it makes.
template <class T>
class Shared {
 public:
  Shared() {
    void* room = mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) throw std::runtime_error("no shared memory");
    place_ = new (room) T{};
  }
  ~Shared() { (void)munmap(place_, sizeof(T)); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  T* operator->() const { return place_; }
  T& operator*() const { return *place_; }
  void Reset() { place_ = new (place_) T{}; }

 private:
  T* place_;
};

/// A folder in memory where there is one; removed with all that is in it by the process that made it.
class WorkFolder {
 public:
  explicit WorkFolder(const std::string& parent = {});
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  int owner_;
};

}  // namespace orvio::faults
