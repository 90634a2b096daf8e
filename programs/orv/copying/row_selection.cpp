// Which axis is which, by the tables of the format.

#include "copying/row_selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <sstream>
#include <string_view>
#include <unordered_map>

#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kAdvice = "orv check tells more";

/// "nent,ncoo" as words.
std::vector<std::string> Axes(const char* shape) {
  std::vector<std::string> axes;
  std::istringstream in(shape ? shape : "");
  for (std::string axis; std::getline(in, axis, ',');) axes.push_back(axis);
  return axes;
}

const DatasetRow* FindRow(const BlockContent& content, std::string_view name) {
  if (!content.kind) return nullptr;
  const auto rows = content.kind->datasets;
  const auto row = std::ranges::find_if(rows, [&](const DatasetRow& r) { return name == r.name; });
  return row == rows.end() ? nullptr : &*row;
}

/// Position of the axis with the entities; nothing for a dataset that has none.
std::optional<std::size_t> EntityAxisOf(const BlockContent& content, const DatasetRow& row) {
  const std::vector<std::string> axes = Axes(row.shape);
  const auto axis = std::ranges::find(axes, CountOf(content));
  if (axis == axes.end()) return std::nullopt;
  return static_cast<std::size_t>(axis - axes.begin());
}

[[noreturn]] void RefuseBlock(const BlockContent& content, const std::string& shown_as, const std::string& what) {
  throw Trouble(shown_as, fmt::format("block {}: {}", content.place.path, what), kAdvice);
}

std::uint64_t ProductOf(const std::vector<hsize_t>& shape, std::size_t first, std::size_t last) {
  return std::accumulate(shape.begin() + static_cast<std::ptrdiff_t>(first),
                         shape.begin() + static_cast<std::ptrdiff_t>(last), std::uint64_t{1}, std::multiplies<>());
}

/// The texts of properties are so many for each entity, if they are as many as that makes.
bool HasTextsOfEntities(const BlockContent& content, const BlockItem& item, std::size_t entities) {
  return content.key == 500 && item.name == "cparam" && !item.shape.empty() && item.shape[0] == entities;
}

}  // namespace

void KeepRows(BlockItem& item, std::size_t axis, const Rows& rows) {
  const std::uint64_t outer = ProductOf(item.shape, 0, axis);
  const std::uint64_t inner = ProductOf(item.shape, axis + 1, item.shape.size()) * item.width;
  const std::uint64_t before = item.shape[axis];
  std::vector<char> bytes(outer * rows.size() * inner);
  char* to = bytes.data();
  for (std::uint64_t i = 0; i < outer && inner > 0; ++i) {
    for (const std::size_t row : rows) {
      std::memcpy(to, item.bytes.data() + (i * before + row) * inner, inner);
      to += inner;
    }
  }
  item.bytes = std::move(bytes);
  item.shape[axis] = rows.size();
}

const char* CountOf(const BlockContent& content) {
  switch (content.key) {
    case 100:
      return "npart";
    case 300:
      return "nele";
    case 200:
    case 250:
    case 500:
    case 2100:
      return "nent";
    default:
      if (!IsResult(content.key)) return nullptr;
      return IsElementResult(content.key) ? "nele" : "nent";
  }
}

const char* IdsOf(const BlockContent& content) {
  if (content.key == 100) return "pid";
  return content.key == 300 || IsElementResult(content.key) ? "idele" : "entid";
}

std::size_t EntitiesIn(const BlockContent& content, const std::string& shown_as) {
  const char* count = CountOf(content);
  const std::int64_t entities = count ? content.Number(count) : 0;
  if (entities < 0) RefuseBlock(content, shown_as, fmt::format("its header has no {}", count));
  for (const BlockItem& item : content.items) {
    const DatasetRow* row = FindRow(content, item.name);
    const auto axis = row && count ? EntityAxisOf(content, *row) : std::nullopt;
    if (!axis) continue;
    const bool fits = *axis < item.shape.size() && item.shape[*axis] == static_cast<hsize_t>(entities);
    if (!fits) RefuseBlock(content, shown_as, fmt::format("{} is not of {} entities", item.name, entities));
  }
  return static_cast<std::size_t>(entities);
}

std::vector<std::int64_t> EntityIds(const BlockContent& content, const std::string& shown_as) {
  const std::size_t count = EntitiesIn(content, shown_as);
  const BlockItem* item = content.Item(IdsOf(content));
  if (item) {
    std::vector<std::int64_t> ids = IntegersOf(*item);
    if (ids.size() != count) RefuseBlock(content, shown_as, fmt::format("{} does not hold ids", item->name));
    return ids;
  }
  constexpr std::size_t kMost = std::size_t{1} << 27;  // what no dataset stands behind is a claim
  if (count > kMost) RefuseBlock(content, shown_as, fmt::format("there are no {} entities", count));
  std::vector<std::int64_t> ids(count);
  std::iota(ids.begin(), ids.end(), 1);
  return ids;
}

std::vector<std::string> KeepEntities(BlockContent& content, const Rows& rows, const std::string& shown_as) {
  const std::vector<std::int64_t> ids = EntityIds(content, shown_as);
  std::vector<std::string> dropped;
  for (BlockItem& item : content.items) {
    if (IsIndexItem(item.name)) continue;
    const DatasetRow* row = FindRow(content, item.name);
    const auto axis = row ? EntityAxisOf(content, *row) : std::nullopt;
    if (!row) dropped.push_back(item.name);
    if (axis) KeepRows(item, *axis, rows);
    if (HasTextsOfEntities(content, item, ids.size())) KeepRows(item, 0, rows);
  }
  for (const std::string& name : dropped) content.RemoveItem(name);
  dropped.insert(dropped.end(), content.foreign.begin(), content.foreign.end());
  content.foreign.clear();
  if (!content.Item(IdsOf(content))) {
    std::vector<std::int64_t> kept;
    for (const std::size_t row : rows) kept.push_back(ids[row]);
    content.AddIntegers(IdsOf(content), {kept.size()}, kept);
  }
  content.SetNumber(CountOf(content), static_cast<std::int64_t>(rows.size()));
  return dropped;
}

std::size_t StatesIn(const BlockContent& content) {
  const BlockItem* values = content.Item("res");
  return values && !values->shape.empty() ? static_cast<std::size_t>(values->shape[0]) : 0;
}

void KeepStates(BlockContent& content, const Rows& rows, const std::string& shown_as) {
  const std::size_t states = StatesIn(content);
  for (BlockItem& item : content.items) {
    if (item.name != "res" && !IsIndexItem(item.name)) continue;
    if (item.shape.empty() || item.shape[0] != states) {
      RefuseBlock(content, shown_as, fmt::format("{} is not of {} states", item.name, states));
    }
    KeepRows(item, 0, rows);
  }
  if (content.Find("nstate")) content.SetNumber("nstate", static_cast<std::int64_t>(rows.size()));
}

namespace {

/// Rows of one block in those of another: where each goes, and the rows that have no place.
struct RowMap {
  std::vector<std::pair<std::size_t, std::size_t>> pairs;  ///< from, to
  Rows added;
};

RowMap MapRows(const std::vector<std::int64_t>& from, const std::vector<std::int64_t>& to) {
  std::unordered_map<std::int64_t, std::size_t> places;
  for (std::size_t row = 0; row < to.size(); ++row) places.emplace(to[row], row);
  RowMap map;
  for (std::size_t row = 0; row < from.size(); ++row) {
    const auto place = places.find(from[row]);
    if (place == places.end()) {
      map.added.push_back(row);
    } else {
      map.pairs.emplace_back(row, place->second);
    }
  }
  return map;
}

bool HaveSameRows(const BlockItem& a, const BlockItem& b) {
  return a.type == b.type && a.width == b.width && a.shape.size() == b.shape.size() && !a.shape.empty() &&
         std::equal(a.shape.begin() + 1, a.shape.end(), b.shape.begin() + 1);
}

template <class T>
std::vector<char> BytesAs(const auto& values) {
  std::vector<char> bytes(values.size() * sizeof(T));
  for (std::size_t i = 0; i < values.size(); ++i) {
    const T value = static_cast<T>(values[i]);
    std::memcpy(&bytes[i * sizeof value], &value, sizeof value);
  }
  return bytes;
}

/// Numbers of the other width take the type of those that they go to.
BlockItem InTypeOf(const BlockItem& like, BlockItem item) {
  if (item.type == like.type || item.is_text() || like.is_text() || item.is_float() != like.is_float()) return item;
  if (item.is_float()) {
    const std::vector<double> values = FloatsOf(item);
    item.bytes = like.type == ORV_FLOAT ? BytesAs<float>(values) : BytesAs<double>(values);
  } else {
    const std::vector<std::int64_t> values = IntegersOf(item);
    item.bytes = like.type == ORV_INT ? BytesAs<std::int32_t>(values) : BytesAs<std::int64_t>(values);
  }
  item.type = like.type;
  item.width = like.width;
  return item;
}

}  // namespace

void ApplyChanges(const BlockContent& changes, bool appends, const std::string& shown_as, BlockContent& content) {
  const RowMap map = MapRows(EntityIds(changes, shown_as), EntityIds(content, shown_as));
  const std::size_t added = appends ? map.added.size() : 0;
  for (BlockItem& item : content.items) {
    const DatasetRow* row = FindRow(content, item.name);
    const auto axis = row ? EntityAxisOf(content, *row) : std::nullopt;
    if (!axis || *axis != 0) continue;
    const std::size_t inner = item.shape[0] == 0 ? 0 : item.bytes.size() / item.shape[0];
    const BlockItem* stored = changes.Item(item.name);
    item.bytes.resize(item.bytes.size() + added * inner, item.is_text() ? ' ' : '\0');
    item.shape[0] += added;
    item.link.clear();
    if (!stored) continue;
    const BlockItem from = InTypeOf(item, *stored);
    if (!HaveSameRows(from, item)) RefuseBlock(changes, shown_as, item.name + " does not fit to what it changes");
    for (const auto& [source, target] : map.pairs) {
      std::memcpy(item.bytes.data() + target * inner, from.bytes.data() + source * inner, inner);
    }
    for (std::size_t i = 0; i < added; ++i) {
      std::memcpy(item.bytes.data() + (item.shape[0] - added + i) * inner, from.bytes.data() + map.added[i] * inner,
                  inner);
    }
  }
  content.SetNumber(CountOf(content), content.Number(CountOf(content)) + static_cast<std::int64_t>(added));
}

}  // namespace orvio::program
