// The list of named indexes, and the merge of those of several zones into one.

#include "filer/tag_indexes.h"

#include <algorithm>
#include <utility>

#include "entity/incr_index_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ent_attribute.h"
#include "orvio/orv_result.h"

namespace orvio {

std::string TagOf(const ORVResult& result, bool with_zone) {
  std::string tag(Content(result.m_etyp));
  tag.append("_").append(Content(result.m_etypvar));
  if (with_zone) tag.append("_").append(std::to_string(result.m_zoneid));
  return tag;
}

std::string TagOf(const ORVEntAttribute& attribute) {
  return std::string("EntityAttribute_").append(Content(attribute.m_etyp));
}

ORVTagIncrIndex* FindTagIndex(const ORVContainer& data, const std::string& tag) {
  const auto found = std::ranges::find(data.m_tagIncrIndexes, tag, &ORVTagIncrIndex::m_tag);
  return found == data.m_tagIncrIndexes.end() ? nullptr : *found;
}

ORVTagIncrIndex* AddTagIndex(ORVContainer& data, OwnTagIndex index) {
  if (!index || FindTagIndex(data, index->m_tag)) return nullptr;
  data.m_tagIncrIndexes.push_back(index.get());
  return index.release();
}

ORVTagIncrIndex* FindOrReadTagIndex(ORVContainer& data, ORVBlock& block, const std::string& tag, int state) {
  if (ORVTagIncrIndex* known = FindTagIndex(data, tag)) return known;
  OwnTagIndex index(new ORVTagIncrIndex);
  if (FillIncrIndex(data.path.c_str(), block, *index, state) != kOk) return nullptr;
  index->m_tag = tag;
  return AddTagIndex(data, std::move(index));
}

// ---- Zones

namespace {

/// A row of the index of one zone.
struct ZoneRow {
  int state;
  int flag;
  const int* ids;
  const float* values;
  std::int64_t columns;
};

void AppendRows(const ORVTagIncrIndex& index, std::vector<ZoneRow>& rows) {
  if (!ORVIncrIndexAccess::HasRows(index) || !index.GetIndexVals()) return;
  const std::int64_t columns = index.GetNumIndex();
  for (std::int64_t row = 0; row < index.GetNumState(); ++row) {
    rows.push_back({index.GetStateIds()[row], ORVIncrIndexAccess::Flags(index)[row],
                    index.GetIndexIds() + row * columns, index.GetIndexVals() + row * columns, columns});
  }
}

void KeepFirstOfEachState(std::vector<ZoneRow>& rows) {
  std::ranges::stable_sort(rows, {}, &ZoneRow::state);
  const auto same = [](const ZoneRow& a, const ZoneRow& b) { return a.state == b.state; };
  rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
}

}  // namespace

OwnTagIndex MergeTagIndexes(ORVContainer& data, const std::vector<ORVResult*>& blocks) {
  std::vector<ZoneRow> rows;
  for (ORVResult* block : blocks) {
    const ORVTagIncrIndex* index = FindOrReadTagIndex(data, *block, TagOf(*block, true), 1);
    if (index) AppendRows(*index, rows);
  }
  if (rows.empty()) return nullptr;
  const std::int64_t columns = std::ranges::max_element(rows, {}, &ZoneRow::columns)->columns;
  KeepFirstOfEachState(rows);
  const auto count = static_cast<std::int64_t>(rows.size());
  const std::uint64_t size = ORVIncrIndexAccess::SizeOf(columns, count);
  CArray<int> elements = size > 0 ? ZeroedArray<int>(size) : nullptr;
  if (!elements) return nullptr;
  OwnTagIndex merged(new ORVTagIncrIndex);
  ORVIncrIndexAccess::Give(*merged, std::move(elements), columns, count);
  ORVIncrIndexAccess::SetCounts(*merged, columns, 0);
  for (const ZoneRow& row : rows) {
    ORVIncrIndexAccess::AddRow(*merged, row.state, row.flag, row.ids, row.values, row.columns);
  }
  return merged;
}

void ClearIncrIndexes(ORVContainer& data) {
  for (ORVTagIncrIndex* index : data.m_tagIncrIndexes) FreeTagIndex()(index);
  data.m_tagIncrIndexes.clear();
  data.m_globalIncrMap.reset();
}

}  // namespace orvio
