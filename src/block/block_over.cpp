// Walks over the states of a file: one named block in each, or all blocks below one named group in each.

#include <algorithm>
#include <string>

#include "block/reader_lease.h"
#include "block/walk.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"

using namespace orvio;

namespace {

constexpr int kNoStage = -1;
constexpr size_t kStateNameWidth = 1024;

/// Asks the action about a 0-based state index and keeps the answer.
int Ask(ORVBlock& block, ORVIterationCallBack action, int status, int stage, int index) {
  return ORVBlockAccess::ActionResult(block) = action(status, stage, &index, &block);
}

/// A stage of a walk over states, its part of the split layout, and the operation that reads it.
struct StageRow {
  int stage;
  const char* part;
  int (ORVBlock::*read)(hid_t, int);
};

constexpr StageRow kStages[] = {
    {ORV_READ_HEADER, disk::header, &ORVBlock::ReadHeader}, {ORV_READ_DATA_INFO, disk::data, &ORVBlock::ReadData},
    {ORV_READ_DATA, disk::data, &ORVBlock::ReadData},       {ORV_READ_INDEX_INFO, disk::index, &ORVBlock::ReadIndex},
    {ORV_READ_INDEX, disk::index, &ORVBlock::ReadIndex},
};

/// Reads the selected stages of one block group until the action stops or skips.
///
/// QUIRK: a block of the single layout is told as one whose parts do not open. Hosts take that for the sign of a file of
/// the later versions and read its blocks one by one. Pinned by BlockOver.LooksAtTheSplitLayoutOnly.
void ReadStages(ORVBlock& block, hid_t group, int stages, ORVIterationCallBack action, int index) {
  for (const StageRow& row : kStages) {
    if (!(stages & row.stage)) continue;
    int status = kGroupNotOpened;
    {
      const h5::Group part = h5::OpenGroup(group, row.part);
      if (part) status = (block.*row.read)(part.get(), row.stage);
    }
    const int answer = Ask(block, action, status, row.stage, index);
    if (answer == ORV_ACTION_STOP || answer == ORV_ACTION_SKIP) return;
  }
}

/// One state of ReadBlockOver. A state whose name cannot be told is passed over without a word.
void ReadInState(ORVBlock& block, hid_t section, const char* name, int stages, ORVIterationCallBack action, int index) {
  const std::string state_name = h5::LinkName(section, static_cast<hsize_t>(index), kStateNameWidth);
  if (state_name.empty()) return;
  ORVBlockAccess::ActionResult(block) = ORV_ACTION_CONTINUE;
  const h5::Group state = h5::OpenGroup(section, state_name.c_str());
  const h5::Group group = state ? h5::OpenGroup(state.get(), name) : h5::Group();
  if (group) {
    ReadStages(block, group.get(), stages, action, index);
  } else {
    (void)Ask(block, action, kGroupNotOpened, kNoStage, index);  // the answer is kept in the block
  }
}

/// The 0-based states from `first` to below `limit`.
struct StateRange {
  int first;
  int limit;
  int step;
};

StateRange RangeOf(int count, int first, int last, int step) {
  return {first - 1, last < 1 ? count : std::min(last, count), std::max(step, 1)};
}

template <class Visit>
void ForEachState(const StateRange& range, bool reverse, Visit visit) {
  const int steps = range.limit > range.first ? (range.limit - 1 - range.first) / range.step : -1;
  for (int i = 0; i <= steps; ++i) {
    const int index = reverse ? range.limit - 1 - i * range.step : range.first + i * range.step;
    if (!visit(index)) return;
  }
}

h5::Group OpenSinglestate(IOH5Reader& reader) {
  std::string path;
  if (reader.GetPostPath(path) != kOk) return h5::Group();
  return h5::Group(reader.OpenGroup(reader.GetFileId(), (path + "/" + disk::singlestate).c_str(), H5P_DEFAULT));
}

/// One state of IterateBlockOver.
void IterateInState(ORVBlock& block, IOH5Reader& reader, hid_t section, const char* name, int index) {
  std::string state_name;
  hid_t id = H5I_INVALID_HID;
  (void)reader.GetChildByIndex(section, index, state_name, &id, H5P_DEFAULT);  // the id tells
  const h5::Group state(id);
  ORVBlockAccess::ActionResult(block) = ORV_ACTION_CONTINUE;
  if (!state) {
    const ORVIterationCallBack action = ORVBlockAccess::Action(block);
    if (action) (void)Ask(block, action, kGroupNotOpened, kNoStage, index);  // the answer is kept in the block
    return;
  }
  const h5::Group group = h5::OpenGroup(state.get(), name);
  if (group) ContinueWalk(block, group.get());
}

}  // namespace

int ORVBlock::ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                            const char* name) {
  m_nActionResult = ORV_ACTION_CONTINUE;
  if (!file || !name || !action || first < 1) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group section = OpenSinglestate(*reader);
    if (!section) return kFail;
    const StateRange range = RangeOf(reader->GetNumLinks(section.get()), first, last, step);
    ForEachState(range, false, [&](int index) {
      ReadInState(*this, section.get(), name, stages, action, index);
      return m_nActionResult != ORV_ACTION_STOP;
    });
    return kOk;
  });
}

int ORVBlock::IterateBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                               const char* name, int reverse) {
  m_nActionResult = ORV_ACTION_CONTINUE;
  if (!file || !name || first < 1) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group section = OpenSinglestate(*reader);
    if (!section) return kFail;
    const StateRange range = RangeOf(reader->GetNumLinks(section.get()), first, last, step);
    PrepareWalk(*this, action, stages);
    ForEachState(range, reverse != 0, [&](int index) {
      IterateInState(*this, *reader, section.get(), name, index);
      return m_nActionResult != ORV_ACTION_STOP;
    });
    return kOk;
  });
}
