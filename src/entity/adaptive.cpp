// Collectors of fathers, and the search for what the states of an adaptive file have.

#include "entity/adaptive.h"

#include <algorithm>
#include <array>
#include <string>

#include "block/reader_lease.h"
#include "block/states.h"
#include "block/walk.h"
#include "entity/entity_lists.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ele_connectivity.h"

namespace orvio {
namespace {

constexpr int kHeaderAndData = ORV_READ_HEADER | ORV_READ_DATA;
constexpr int kAll = kHeaderAndData | ORV_READ_INDEX;

bool HasTypes(const ORVCollector& block, const std::vector<std::string_view>& types) {
  if (block.m_ntyp != static_cast<std::int64_t>(types.size())) return false;
  const char* slot = block.m_etyp;
  return std::ranges::all_of(types, [&](std::string_view type) {
    const bool same = EqualIgnoringCase(Content(slot), type);
    slot += disk::kTextWidth;
    return same;
  });
}

bool IsValid(const ORVCollector& block, const std::vector<std::string_view>& types) {
  return block.m_nenttot < 1 || types.empty() || HasTypes(block, types);
}

}  // namespace

int ReadValidCollector(const char* file, int state, std::string_view name, const std::vector<std::string_view>& types,
                       ORVCollector& block) {
  // QUIRK: the index is not read in a state either: what was set for it is only taken away. Hosts have no room for one
  // when they ask for fathers. Pinned by FilerCollectors.OfAStateLoseTheirIndexWhenReadByName.
  const int mode = state > 0 ? kAll : kHeaderAndData;
  block.InitializeBlock(mode);
  Assign(block.m_etypcoll, name);
  int status = ReadEntityList(block, file, state, mode);
  if (status == kOk && !IsValid(block, types)) status = kFail;
  if (status == kOk) return kOk;
  FreeBuffers(block);
  block.InitializeBlock(mode);
  return status;
}

int WriteNodeFathers(const char* file, int state, const ORVCollector* index_of, const FatherLists& lists) {
  if (lists.ncoll < 1 || lists.nenttot < 1 || (state > 0 && !index_of)) return kFail;
  if (!lists.idcoll || !lists.nent || !lists.entid) return kFail;
  constexpr int kTypes = 2;
  std::array<char, kTypes * disk::kTextWidth + 1> types{};
  for (std::size_t slot = 0; slot < kTypes; ++slot) {
    char* type = types.data() + slot * disk::kTextWidth;
    std::fill_n(type, disk::kTextWidth, ' ');
    std::copy_n(kNodeType, sizeof kNodeType - 1, type);
  }
  ORVCollector block;
  Assign(block.m_etypcoll, kNodeFathers);
  block.m_ncoll = lists.ncoll;
  block.m_ntyp = kTypes;
  block.m_nenttot = lists.nenttot;
  block.m_idcoll = lists.idcoll;
  block.m_etyp = types.data();
  block.m_nent = lists.nent;
  block.m_entid = lists.entid;
  if (state < 1) return block.WriteBlock(file, state, ORV_WRITE_HEADER | ORV_WRITE_DATA);
  block.m_nindex = index_of->m_nindex;
  block.m_indexidentType = index_of->m_indexidentType;
  block.m_indexident = index_of->m_indexident;
  block.m_indexvalType = index_of->m_indexvalType;
  block.m_indexval = index_of->m_indexval;
  return block.WriteBlock(file, state, ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX);
}

namespace {

/// The scratch block of a search for a collector.
class CollectorSearch : public ORVCollector {
 public:
  /// Of a name that is cut to its field.
  explicit CollectorSearch(std::string_view name) : name_(name.substr(0, disk::kTextWidth)) {}

  bool any = false;
  bool found = false;

  static _ORVAction Look(int status, int /*stage*/, void* /*name*/, void* block) {
    auto& search = *static_cast<CollectorSearch*>(static_cast<ORVBlock*>(block));
    if (status != kOk || search.m_ncoll < 1) return ORV_ACTION_SKIP;
    search.any = true;
    search.found = Content(search.m_etypcoll) == search.name_;
    return search.found ? ORV_ACTION_STOP : ORV_ACTION_SKIP;
  }

 private:
  std::string_view name_;
};

/// The scratch block of a search for elements.
class ElementSearch : public ORVEleConnectivity {
 public:
  explicit ElementSearch(bool skip_fpm) : skip_fpm_(skip_fpm) {}

  bool found = false;

  static _ORVAction Look(int status, int /*stage*/, void* /*where*/, void* block) {
    auto& search = *static_cast<ElementSearch*>(static_cast<ORVBlock*>(block));
    if (status != kOk || search.m_nele < 1) return ORV_ACTION_SKIP;
    if (search.skip_fpm_ && EqualIgnoringCase(Content(search.m_etypelem), "FPM")) return ORV_ACTION_CONTINUE;
    search.found = true;
    return ORV_ACTION_STOP;
  }

 private:
  bool skip_fpm_;
};

}  // namespace

bool HasCollectorInStates(const char* file, std::string_view name, bool& any) {
  CollectorSearch search(name);
  const ReaderLease reader(search, file);
  if (!reader) return false;
  for (const std::string& state : StateNames(*reader)) {
    if (state.empty()) continue;
    const std::string path = StatePath(state) + "/" + disk::collector;
    const h5::Group group = h5::OpenGroup(reader->GetFileId(), path.c_str());
    if (group) WalkGroup(search, group.get(), CollectorSearch::Look, ORV_READ_HEADER);
    if (search.found) break;
  }
  any = search.any;
  return search.found;
}

bool HasElementsInStates(const char* file, bool skip_fpm) {
  ElementSearch search(skip_fpm);
  // A file that cannot be opened or has no states has no elements in them.
  (void)search.IterateBlockOver(file, ORV_READ_HEADER, ElementSearch::Look, 1, 0, 1, nullptr, 0);
  return search.found;
}

}  // namespace orvio
