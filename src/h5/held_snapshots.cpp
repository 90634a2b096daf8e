// The list of held snapshots is part of the process state, and short.

#include "h5/held_snapshots.h"

#include <utility>
#include <vector>

#include "filer/process_state.h"

namespace orvio::h5 {

struct HeldSnapshot {
  FileStamp file;
  std::shared_ptr<FileSnapshot> snapshot;
};

struct HeldSnapshots {
  std::vector<HeldSnapshot> list;
};

std::shared_ptr<FileSnapshot> FindHeldSnapshot(const FileStamp& file) {
  const HeldSnapshots* held = process().held_snapshots;
  if (!held) return nullptr;
  for (const HeldSnapshot& each : held->list) {
    if (each.file.inode == file.inode && each.file.device == file.device) return each.snapshot;
  }
  return nullptr;
}

std::shared_ptr<FileSnapshot> FindHeldSnapshot(const void* place) {
  const HeldSnapshots* held = process().held_snapshots;
  if (!held) return nullptr;
  for (const HeldSnapshot& each : held->list) {
    if (each.snapshot->place() == place) return each.snapshot;
  }
  return nullptr;
}

void HoldSnapshot(const FileStamp& file, std::shared_ptr<FileSnapshot> snapshot) {
  if (process().entries == 0) return;
  HeldSnapshots*& held = process().held_snapshots;
  if (!held) held = new HeldSnapshots;  // lives as long as the process, as the other lists here
  held->list.push_back({file, std::move(snapshot)});
}

void ForgetHeldSnapshots() {
  if (process().held_snapshots) process().held_snapshots->list.clear();
}

}  // namespace orvio::h5
