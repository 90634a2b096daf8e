// Which states of a file hold blocks whole, and which only their changes: HasIncremetalData asks the file, IsIncrBlock,
// IsResultIncrementalAtGivenState, IsAttributeIncrementalAtGivenState and GetIncrStateInfo ask a block. GetTagIncrIndex
// finds or reads the index of a block by its name (GetTagIncrIndexName), AppendTagedIndex and ClearIncrIndex keep the
// list. GetIncrStateMap and BuildGlobalIncrMap tell what states build upon. What is made of them is elsewhere.

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "entity/incr_index_access.h"
#include "filer/container.h"
#include "filer/solver_name.h"
#include "filer/tag_indexes.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ent_attribute.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"

using namespace orvio;

// ---- Questions

bool ORVFiler::HasIncremetalData() {
  constexpr char kIncrementalWord[] = "INC";
  const char* name = GetSolverName();
  if (!name) return false;
  return h5::Entry(false, [&] {
    return std::ranges::any_of(SolverNameParts(Content(name)),
                               [&](std::string_view part) { return EqualIgnoringCase(part, kIncrementalWord); });
  });
}

bool ORVFiler::IsIncrBlock(ORVBlock* block) {
  if (!m_pData || !block) return false;
  return h5::Entry(false, [&] {
    OwnIncrIndex index;
    int state = 0;
    return FillIncrIndex(m_pData->path.c_str(), *block, index, 1) == kOk && index.HasIncrFlag(state);
  });
}

namespace {

/// Entity and element results of states.
bool CanBeIncremental(const ORVResult& result) { return result.IsSinglestateBlk() && !result.IsConstantBlk(); }

}  // namespace

bool ORVFiler::IsResultIncrementalAtGivenState(ORVResult& result, int state) {
  ORVTagIncrIndex* index = CanBeIncremental(result) ? GetTagIncrIndex(result, true) : nullptr;
  return index && index->IsIncrementalState(state);
}

bool ORVFiler::IsAttributeIncrementalAtGivenState(ORVEntAttribute& attribute, int state) {
  if (!m_pData || attribute.IsConstatntPath() || attribute.IsMultiStatePath()) return false;
  return h5::Entry(false, [&] {
    ORVTagIncrIndex* index = FindOrReadTagIndex(*m_pData, attribute, TagOf(attribute), 1);
    return index && index->IsIncrementalState(state);
  });
}

int ORVFiler::GetIncrStateInfo(ORVResult& result, std::vector<int>& states, std::vector<int>& flags) {
  ORVTagIncrIndex* index = CanBeIncremental(result) ? GetTagIncrIndex(result, true) : nullptr;
  return index ? index->GetStateIncrFlagInfo(states, flags) : kFail;
}

// ---- Indexes by name

ORVTagIncrIndex* ORVFiler::GetTagIncrIndex(ORVResult& result, bool withZone) {
  if (!m_pData) return nullptr;
  return h5::Entry<ORVTagIncrIndex*>(nullptr, [&]() -> ORVTagIncrIndex* {
    const std::string tag = TagOf(result, withZone);
    if (ORVTagIncrIndex* known = FindTagIndex(*m_pData, tag)) return known;
    std::vector<ORVResult*> zones;
    if (!withZone) GetResultBlksFrmResBlk(result, zones, true);
    OwnTagIndex merged = zones.size() > 1 ? MergeTagIndexes(*m_pData, zones) : nullptr;
    if (!merged) return FindOrReadTagIndex(*m_pData, result, tag, 1);
    merged->m_tag = tag;
    return AddTagIndex(*m_pData, std::move(merged));
  });
}

ORVTagIncrIndex* ORVFiler::GetTagIncrIndex(ORVBlock& block, std::string& name, int state, bool create) {
  if (!m_pData) return nullptr;
  return h5::Entry<ORVTagIncrIndex*>(nullptr, [&] {
    return create ? FindOrReadTagIndex(*m_pData, block, name, state) : FindTagIndex(*m_pData, name);
  });
}

void ORVFiler::GetTagIncrIndexName(ORVResult& result, std::string& name, bool withZone) {
  h5::EntryVoid([&] { name = TagOf(result, withZone); });
}

bool ORVFiler::AppendTagedIndex(ORVTagIncrIndex* index) {
  if (!m_pData || !index) return false;
  return h5::Entry(false, [&] {
    auto& list = m_pData->m_tagIncrIndexes;
    const bool is_listed = std::ranges::find(list, index) != list.end();  // under a name that the host has changed
    if (is_listed || FindTagIndex(*m_pData, index->m_tag)) return false;
    list.push_back(index);
    return true;
  });
}

void ORVFiler::ClearIncrIndex(ORVTagIncrIndex* index) {
  if (!index) return;
  // QUIRK: the empty index stays in the list, and the next demand for its name makes another one. Hosts hold pointers to
  // indexes, and go on to ask what they have cleared. Pinned by IncrTags.ThatAreClearedStayAndAreMadeAnewUnderTheirName.
  index->ClearAll();
  index->Initialize();
}

// ---- What states build upon

int ORVFiler::GetIncrStateMap(ORVBlock& block, std::vector<ORVIncrStateMap*>& map, int state) {
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    IncrStateMap records;
    const int status = ReadStateRecords(m_pData->path.c_str(), block, state, records);
    return status == kOk ? HandOverRecords(records, map) : status;
  });
}

int ORVFiler::GetIncrStateMap(ORVIncrIndex& index, std::vector<ORVIncrStateMap*>& map) {
  return h5::Entry(kFail, [&] {
    IncrStateMap records;
    const int status = AppendStateRecords(index, records);
    return status == kOk ? HandOverRecords(records, map) : status;
  });
}

/// QUIRK: the first block asked about gives the map, and it serves all others, although each block may be whole in other
/// states. Asking every block for its own would read every state of the file for each. Pinned by
/// IncrMaps.OfTheFileIsThatOfTheFirstBlockForAllOthers.
int ORVFiler::BuildGlobalIncrMap(ORVBlock& block, int state, bool force) {
  if (!m_pData) return kFail;
  if (m_pData->m_globalIncrMap && !force) return kOk;
  return h5::Entry(kFail, [&] {
    auto map = std::make_unique<IncrStateMap>();
    const int status = ReadStateRecords(m_pData->path.c_str(), block, state, *map);
    if (map->empty()) return kFail;
    m_pData->m_globalIncrMap = std::move(map);
    return status;
  });
}

int ORVFiler::ReadIncrIndex(ORVBlock& block, ORVIncrIndex& index, int state) {
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] { return FillIncrIndex(m_pData->path.c_str(), block, index, state); });
}
