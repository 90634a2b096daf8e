// Visitors of HDF5's iterations. What ends a branch is a child with the name of a block's part.

#include "block/walk.h"

#include <algorithm>
#include <cstring>

#include "block/reader_lease.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"

namespace orvio {

namespace {

constexpr std::size_t kMaxLevels = 128;
constexpr int kMaxVisits = 1000;

}  // namespace

bool WalkGuard::Enter(const H5O_info1_t& object, std::size_t name_length) {
  const haddr_t id = object.addr;  // no link leads out of the file
  const bool inside = std::ranges::any_of(way_down_, [&](const Level& level) { return level.object == id; });
  if (inside || way_down_.size() >= kMaxLevels || path_length_ + name_length + 1 >= disk::kPathWidth) return false;
  if (++visits_[id] > kMaxVisits) return false;
  way_down_.push_back({id, name_length + 1});
  path_length_ += name_length + 1;
  return true;
}

void WalkGuard::Leave() {
  path_length_ -= way_down_.back().name_length;
  way_down_.pop_back();
}

namespace {

/// The walk's bounds while it is inside one object.
class Inside {
 public:
  Inside(hid_t object, std::size_t name_length) {
    H5O_info1_t info = {};
    entered_ = h5::ReadObjectInfo(object, info) && process().walk_guard->Enter(info, name_length);
  }
  ~Inside() {
    if (entered_) process().walk_guard->Leave();
  }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
  explicit operator bool() const { return entered_; }

 private:
  bool entered_;
};

bool IsGroup(hid_t object) {
  H5O_info1_t info = {};
  return h5::ReadObjectInfo(object, info) && info.type == H5O_TYPE_GROUP;
}

bool Stopped(ORVBlock& block) { return ORVBlockAccess::ActionResult(block) == ORV_ACTION_STOP; }

void IterateLinks(ORVBlock& block, hid_t group) { h5::VisitLinks(group, ORVBlockAccess::LinkVisitor(block), nullptr); }

void IterateGroups(ORVBlock& block, hid_t group) {
  int next = 0;
  (void)H5Giterate(group, ".", &next, ORVBlockAccess::GroupVisitor(block), nullptr);  // as above
}

void SetCurrentName(const char* name) { Assign(process().g_szCurrentName, Content(name, disk::kTextWidth - 1)); }

/// A level that is no part of a block.
void Descend(ORVBlock& block, hid_t group, const char* name, void (*iterate)(ORVBlock&, hid_t)) {
  SetCurrentName(name);
  if (Stopped(block)) return;
  const h5::Group child = h5::OpenGroup(group, name);
  if (!child) return;
  const Inside inside(child.get(), std::strlen(name));
  if (inside) iterate(block, child.get());
}

/// A stage, the part of the split layout that it reads, and the operation that reads it. In the order of a walk.
struct StageRow {
  int stage;
  const char* part;
  int (ORVBlock::*read)(hid_t, int);
};

constexpr StageRow kStages[] = {
    {ORV_READ_HEADER_INFO, disk::header, &ORVBlock::ReadHeader}, {ORV_READ_HEADER, disk::header, &ORVBlock::ReadHeader},
    {ORV_READ_DATA_INFO, disk::data, &ORVBlock::ReadData},       {ORV_READ_DATA, disk::data, &ORVBlock::ReadData},
    {ORV_READ_INDEX_INFO, disk::index, &ORVBlock::ReadIndex},    {ORV_READ_INDEX, disk::index, &ORVBlock::ReadIndex},
};

constexpr int kDataStages = ORV_READ_HEADER_INFO | ORV_READ_HEADER | ORV_READ_DATA_INFO | ORV_READ_DATA;
constexpr int kIndexStages = ORV_READ_INDEX_INFO | ORV_READ_INDEX;

/// Reads one stage and asks the action. False when the block is done, be it stopped or skipped.
bool RunStage(ORVBlock& block, const StageRow& row, hid_t part) {
  const int status = (block.*row.read)(part, ORVBlockAccess::Stages(block));
  const ORVIterationCallBack action = ORVBlockAccess::Action(block);
  if (!action) return true;
  int& result = ORVBlockAccess::ActionResult(block);
  result = action(status, row.stage, process().g_szCurrentName, &block);
  if (result == ORV_ACTION_STOP) return false;
  if (result != ORV_ACTION_SKIP) return true;
  result = ORV_ACTION_CONTINUE;
  return false;
}

void ReadSingleLayout(ORVBlock& block, hid_t group) {
  const h5::Group part = h5::OpenGroup(group, disk::orvblock);
  if (!part) return;
  for (const StageRow& row : kStages) {
    if (ORVBlockAccess::Stages(block) & row.stage && !RunStage(block, row, part.get())) return;
  }
}

void ReadSplitLayout(ORVBlock& block, hid_t group, int served) {
  for (const StageRow& row : kStages) {
    if (!(ORVBlockAccess::Stages(block) & served & row.stage)) continue;
    const h5::Group part = h5::OpenGroup(group, row.part);
    if (part && !RunStage(block, row, part.get())) return;
  }
}

bool Is(const char* name, const char* word) { return std::strcmp(name, word) == 0; }

bool IsBlockPart(const char* name) { return Is(name, disk::orvblock) || Is(name, disk::data) || Is(name, disk::index); }

void LearnPath(ORVBlock& block, hid_t group, const char* name, const H5L_info1_t* info) {
  char path[disk::kPathWidth];
  OH5GetLinkTarget(group, name, path, info);
  block.SetBlkPath(path);
}

/// QUIRK: a block that has both "orvblock" and "data" is told twice, and "header" is a level like any other, whose name
/// the index of a split block is told with. A link is all that a visitor sees, and hosts count the calls they get.
/// Pinned by BlockWalk.ReportsABlockInBothLayoutsTwice.
void VisitLink(ORVBlock& block, hid_t group, const char* name, const H5L_info1_t* info) {
  if (Stopped(block) || !IsGroup(group)) return;
  if (!IsBlockPart(name)) return Descend(block, group, name, IterateLinks);
  LearnPath(block, group, name, info);
  if (!Is(name, disk::orvblock))
    return ReadSplitLayout(block, group, Is(name, disk::data) ? kDataStages : kIndexStages);
  block.SetBlkPath(block.GetBlkPath() + "/" + disk::orvblock);
  ReadSingleLayout(block, group);
}

void VisitGroup(ORVBlock& block, hid_t group, const char* name) {
  if (Stopped(block) || !IsGroup(group)) return;
  if (Is(name, disk::data)) return ReadSplitLayout(block, group, kDataStages);
  if (Is(name, disk::index)) return ReadSplitLayout(block, group, kIndexStages);
  Descend(block, group, name, IterateGroups);
}

/// Runs one visit inside the bounds of the walk; a host that drives a visitor by itself has none, and gets its own
/// for each child.
template <class Visit>
int Visited(Visit visit) {
  h5::EntryVoid([&] {
    ORVBlock* block = process().g_pCurrentBlock;
    if (!block) return;
    WalkGuard own;
    const Swapped<WalkGuard*> guard(process().walk_guard, process().walk_guard ? process().walk_guard : &own);
    visit(*block);
  });
  return 0;  // the iteration always runs to its end; stopping is a matter of the checks above
}

}  // namespace

void PrepareWalk(ORVBlock& block, ORVIterationCallBack action, int stages) {
  ORVBlockAccess::StartWalk(block, action, stages);
  process().g_pCurrentBlock = &block;
  SetCurrentName("");
}

void WalkGroup(ORVBlock& block, hid_t group, ORVIterationCallBack action, int stages) {
  PrepareWalk(block, action, stages);
  ContinueWalk(block, group);
}

void ContinueWalk(ORVBlock& block, hid_t group) {
  WalkGuard own;
  const Swapped<WalkGuard*> guard(process().walk_guard, &own);
  const Inside inside(group, h5::NameOf(group).size());
  if (inside) IterateLinks(block, group);
}

}  // namespace orvio

int ORVBlock::BlockCallBackImp(hid_t group, const char* name, void* /*data*/) {
  return orvio::Visited([&](ORVBlock& block) { orvio::VisitGroup(block, group, name); });
}

int ORVBlock::BlockCallBackImp2(hid_t group, const char* name, const H5L_info1_t* info, void* /*data*/) {
  return orvio::Visited([&](ORVBlock& block) { orvio::VisitLink(block, group, name, info); });
}
