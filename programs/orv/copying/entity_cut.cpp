// From elements to their nodes and parts, and from these to the rows of blocks.

#include "copying/entity_cut.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "importer/quantity.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr char kUsualNodes[] = "node", kAnyElement[] = "element", kSide[] = "SIDE";

/// The integers of a dataset that has to be there, `count` of them.
std::vector<std::int64_t> Require(const BlockContent& content, const char* name, std::size_t count,
                                  const std::string& shown_as) {
  const BlockItem* item = content.Item(name);
  std::vector<std::int64_t> values = item ? IntegersOf(*item) : std::vector<std::int64_t>();
  if (values.size() == count) return values;
  throw Trouble(shown_as, fmt::format("block {}: {} does not have {} integers", content.place.path, name, count),
                "orv check tells more");
}

/// Elements of one type with their parts and nodes.
struct Elements {
  Elements(const BlockContent& content, const std::string& shown_as) : ids(EntityIds(content, shown_as)) {
    const std::int64_t each = content.Number("npele");
    nodes_each = each < 0 ? 0 : static_cast<std::size_t>(each);
    parts = Require(content, "pid", ids.size(), shown_as);
    std::size_t count = 0;
    if (__builtin_mul_overflow(ids.size(), nodes_each, &count)) count = SIZE_MAX;
    nodes = Require(content, "ic", count, shown_as);
  }

  std::vector<std::int64_t> ids, parts, nodes;
  std::size_t nodes_each = 0;
};

bool Holds(const EntityChoice::Ids& ids, std::int64_t id) { return ids.contains(id); }

}  // namespace

void EntityCut::BeginMesh() {
  kept_.clear();
  nodes_.clear();
  all_elements_.clear();
}

Rows EntityCut::ElementsThatStay(const BlockContent& connectivity, const std::string& shown_as) const {
  const Elements elements(connectivity, shown_as);
  const std::string &type = choice_.element_type, family = connectivity.Text("etyp");
  const bool is_of_type = type.empty() || SameWord(type, connectivity.EntityType()) || SameWord(type, family);
  Rows rows;
  for (std::size_t row = 0; is_of_type && row < elements.ids.size(); ++row) {
    const auto* nodes = elements.nodes.data() + row * elements.nodes_each;
    bool stays = !choice_.parts || Holds(*choice_.parts, elements.parts[row]);
    stays = stays && (!choice_.elements || Holds(*choice_.elements, elements.ids[row]));
    if (!choice_.asks_for_elements()) {
      stays = std::all_of(nodes, nodes + elements.nodes_each, [&](auto id) { return Holds(*choice_.nodes, id); });
    }
    if (stays) rows.push_back(row);
  }
  return rows;
}

void EntityCut::AddElements(const BlockContent& connectivity, const std::string& shown_as) {
  if (!CutsMesh()) return;
  const Elements elements(connectivity, shown_as);
  const std::string node_type = Folded(connectivity.Text("etypnode"));
  nodes_.insert(node_type);
  Ids& nodes = kept_[node_type];
  Ids& parts = kept_[Folded(connectivity.Text("etyppart"))];
  Ids& own = kept_[Folded(connectivity.EntityType())];
  Ids& family =
      kept_[Folded(connectivity.Text("etyp").empty() ? connectivity.EntityType() : connectivity.Text("etyp"))];
  for (const std::size_t row : ElementsThatStay(connectivity, shown_as)) {
    const auto first = elements.nodes.begin() + static_cast<std::ptrdiff_t>(row * elements.nodes_each);
    nodes.insert(first, first + static_cast<std::ptrdiff_t>(elements.nodes_each));
    parts.insert(elements.parts[row]);
    own.insert(elements.ids[row]);
    family.insert(elements.ids[row]);
    all_elements_.insert(elements.ids[row]);
  }
}

void EntityCut::EndMesh() {
  if (!CutsMesh()) return;
  if (nodes_.empty()) nodes_.insert(kUsualNodes);
  for (const std::string& type : nodes_) {
    Ids& nodes = kept_[type];
    if (choice_.nodes) nodes.insert(choice_.nodes->begin(), choice_.nodes->end());
  }
}

EntityCut::NodesByType EntityCut::Nodes() const {
  NodesByType nodes;
  for (const std::string& type : nodes_) nodes.emplace(type, kept_.at(type));
  return nodes;
}

void EntityCut::AddNodes(const NodesByType& nodes) {
  for (const auto& [type, ids] : nodes) {
    if (kept_.contains(type)) kept_[type].insert(ids.begin(), ids.end());
  }
}

/// Null: all of that type stay.
const EntityCut::Ids* EntityCut::KeptOf(const std::string& type) const {
  const auto other = choice_.others.find(Folded(type));
  if (other != choice_.others.end()) return &other->second;
  const auto kept = kept_.find(Folded(type));
  if (kept != kept_.end()) return &kept->second;
  return CutsMesh() && Folded(type) == kAnyElement ? &all_elements_ : nullptr;
}

const EntityCut::Ids* EntityCut::KeptOf(const BlockContent& content) const {
  if (content.key == 100 && CutsMesh()) {
    if (choice_.parts) return &*choice_.parts;
    if (has_other_meshes_) return nullptr;
  }
  const Ids* kept = KeptOf(content.EntityType());
  if (kept || !CutsMesh() || !IsElementResult(content.key)) return kept;
  // Values of elements without a mesh: nobody knows their parts and nodes.
  const bool is_by_id = choice_.elements && !choice_.parts && choice_.element_type.empty();
  return is_by_id ? &*choice_.elements : &none_;
}

bool EntityCut::Cut(BlockContent& content, const std::string& shown_as,
                    const std::function<void(const std::string& dataset)>& drop) {
  if (empty()) return true;
  if (content.key == 400) return CutCollector(content, shown_as);
  if (!CountOf(content)) return true;
  Rows rows;
  const std::vector<std::int64_t> ids = EntityIds(content, shown_as);
  if (content.key == 300) {
    if (!CutsMesh()) return true;
    rows = ElementsThatStay(content, shown_as);
  } else {
    const Ids* kept = KeptOf(content);
    if (!kept) return true;
    for (std::size_t row = 0; row < ids.size(); ++row) {
      if (Holds(*kept, ids[row])) rows.push_back(row);
    }
  }
  has_kept_ = has_kept_ || !rows.empty();
  if (rows.size() == ids.size()) return true;
  if (rows.empty()) return false;
  for (const std::string& dataset : KeepEntities(content, rows, shown_as)) drop(dataset);
  return true;
}

namespace {

/// The lists of one collector, by type.
using Members = std::vector<std::vector<std::int64_t>>;

/// A collector block taken apart.
struct Collectors {
  Collectors(const BlockContent& content, const std::string& shown_as) {
    const BlockItem* names = content.Item("etyp");
    if (names) types = TextsOf(*names);
    const BlockItem* stored = content.Item("idcoll");
    ids = Require(content, "idcoll", stored ? stored->count() : 0, shown_as);
    const std::vector<std::int64_t> counts = Require(content, "nent", ids.size() * types.size(), shown_as);
    const BlockItem* entities = content.Item("entid");
    const std::vector<std::int64_t> all = entities ? IntegersOf(*entities) : std::vector<std::int64_t>();
    std::size_t at = 0, next = 0;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      Members lists;
      for (std::size_t t = 0; t < types.size(); ++t, ++next) {
        const std::size_t count = counts[next] < 0 ? SIZE_MAX : static_cast<std::size_t>(counts[next]);
        if (count > all.size() - at) {
          throw Trouble(shown_as, fmt::format("block {}: its counts are not those of its ids", content.place.path),
                        "orv check tells more");
        }
        lists.emplace_back(all.begin() + static_cast<std::ptrdiff_t>(at),
                           all.begin() + static_cast<std::ptrdiff_t>(at + count));
        at += count;
      }
      members.push_back(std::move(lists));
    }
  }

  void WriteTo(BlockContent& content) const {
    std::vector<std::int64_t> counts, all;
    for (const Members& lists : members) {
      for (const auto& list : lists) {
        counts.push_back(static_cast<std::int64_t>(list.size()));
        all.insert(all.end(), list.begin(), list.end());
      }
    }
    for (const char* name : {"idcoll", "nent", "entid"}) content.RemoveItem(name);
    content.AddIntegers("idcoll", {ids.size()}, ids);
    content.AddIntegers("nent", {ids.size(), types.size()}, counts);
    content.AddIntegers("entid", {all.size()}, all);
    content.SetNumber("ncoll", static_cast<std::int64_t>(ids.size()));
    content.SetNumber("nenttot", static_cast<std::int64_t>(all.size()));
  }

  std::vector<std::string> types;
  std::vector<std::int64_t> ids;
  std::vector<Members> members;
};

/// Keeps pairs: what `stays` says of the two.
void KeepPairs(Members& lists, const std::function<bool(std::int64_t a, std::int64_t b)>& stays) {
  Members kept(2);
  for (std::size_t i = 0; i < lists[0].size(); ++i) {
    if (!stays(lists[0][i], lists[1][i])) continue;
    kept[0].push_back(lists[0][i]);
    kept[1].push_back(lists[1][i]);
  }
  lists = std::move(kept);
}

bool IsEmpty(const Members& lists) {
  return std::ranges::all_of(lists, [](const auto& list) { return list.empty(); });
}

}  // namespace

/// Sides belong to the elements before them, and two lists of one type tie entities to each other.
bool EntityCut::CutCollector(BlockContent& content, const std::string& shown_as) {
  Collectors collectors(content, shown_as);
  std::vector<const Ids*> kept;
  for (const std::string& type : collectors.types) kept.push_back(KeptOf(type));
  if (std::ranges::all_of(kept, [](const Ids* ids) { return ids == nullptr; })) return true;
  const bool has_two = collectors.types.size() == 2;
  const bool has_sides = has_two && SameWord(collectors.types[1], kSide) && kept[0];
  const bool has_ties = has_two && SameWord(collectors.types[0], collectors.types[1]) && kept[0];
  Collectors left = collectors;
  left.ids.clear();
  left.members.clear();
  for (std::size_t i = 0; i < collectors.ids.size(); ++i) {
    Members& lists = collectors.members[i];
    const bool was_empty = IsEmpty(lists);
    if ((has_sides || has_ties) && lists[0].size() == lists[1].size()) {
      KeepPairs(lists, [&](auto a, auto b) { return Holds(*kept[0], a) || (has_ties && Holds(*kept[0], b)); });
    } else {
      for (std::size_t t = 0; t < lists.size(); ++t) {
        if (kept[t]) std::erase_if(lists[t], [&](std::int64_t id) { return !Holds(*kept[t], id); });
      }
    }
    if (IsEmpty(lists) && !was_empty) continue;
    left.ids.push_back(collectors.ids[i]);
    left.members.push_back(std::move(lists));
  }
  kept_.try_emplace(Folded(content.EntityType()), left.ids.begin(), left.ids.end());
  if (left.ids.empty()) return false;
  left.WriteTo(content);
  return true;
}

}  // namespace orvio::program
