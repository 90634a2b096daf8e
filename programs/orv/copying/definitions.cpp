// Up to 1.2 a variable is named by itself, and later by a key and through a group.

#include "copying/definitions.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "importer/quantity.h"

namespace orvio::program {
namespace {

constexpr std::int64_t kIndexTypes = 20, kVariable = 30, kGroup = 32;
constexpr std::size_t kNameWidth = 256, kNarrow = sizeof(std::int32_t);
constexpr char kIndexGroup[] = "INDEX";
constexpr std::size_t kMostComponents = 100'000;  // a header may claim any number

std::string NameOf(const BlockContent& variable) {
  return variable.Find("etypvar") ? variable.Text("etypvar") : variable.Text("varnam");
}

std::size_t Components(const BlockContent& content) {
  return static_cast<std::size_t>(std::clamp<std::int64_t>(content.Number("ncoo"), 0, kMostComponents));
}

std::vector<std::int64_t> Integers(const BlockContent& content, const char* name) {
  const BlockItem* item = content.Item(name);
  return item ? IntegersOf(*item) : std::vector<std::int64_t>();
}

std::vector<std::string> Texts(const BlockContent& content, const char* name) {
  const BlockItem* item = content.Item(name);
  return item ? TextsOf(*item) : std::vector<std::string>();
}

BlockContent MakeBlock(std::int64_t key, const std::string& word, const std::string& name) {
  BlockContent content;
  content.key = key;
  content.kind = FindKind(key);
  content.place.relative = "/" + word + (name.empty() ? "" : "/" + GroupName(name));
  content.SetNumber("block", key);
  content.SetText("blocktype", word);
  return content;
}

/// The labels of a variable, as many as it has components.
std::vector<std::string> LabelsOf(const BlockContent& variable) {
  std::vector<std::string> labels = Texts(variable, "cname");
  const BlockItem* packed = variable.Item("subscr");
  const std::vector<std::int64_t> lengths = Integers(variable, "subscnt"), offsets = Integers(variable, "subsoffs");
  if (labels.empty() && packed && packed->is_text()) {
    const std::string text(packed->bytes.begin(), packed->bytes.end());
    for (std::size_t i = 0; i < std::min(lengths.size(), offsets.size()); ++i) {
      const bool fits = offsets[i] >= 0 && lengths[i] >= 0 && static_cast<std::size_t>(offsets[i]) <= text.size();
      labels.push_back(fits ? text.substr(static_cast<std::size_t>(offsets[i]), static_cast<std::size_t>(lengths[i]))
                            : std::string());
    }
  }
  labels.resize(Components(variable));
  return labels;
}

std::string LastLevel(const BlockContent& content) {
  const std::string& path = content.place.relative;
  return path.substr(path.rfind('/'));
}

// ---- Up to 1.2

void MakeUnkeyed(BlockContent& variable) {
  constexpr const char* kLater[] = {"varnam",  "varkey", "varclass", "type", "lvmap",
                                    "subslen", "tensor", "lenb",     "lend"};
  const std::vector<std::string> labels = LabelsOf(variable);
  const std::string name = NameOf(variable);
  std::vector<std::int64_t> ids;
  for (std::size_t i = 1; i <= labels.size(); ++i) ids.push_back(static_cast<std::int64_t>(i));
  for (const char* field : kLater) variable.Remove(field);
  for (const char* item : {"subscr", "subscnt", "subsoffs", "vmap", "cname", "cid"}) variable.RemoveItem(item);
  variable.SetText("blocktype", "variables");
  variable.SetText("etypvar", name);
  variable.SetNumber("idtrans", 0);
  if (!labels.empty()) {
    variable.AddTexts("cname", kNameWidth, labels);
    variable.AddIntegers("cid", {ids.size()}, ids);
  }
  variable.place.relative = "/variables" + LastLevel(variable);
}

/// Units component after component: counts, and what they count.
struct UnitLists {
  void Append(const BlockContent& from, const char* counts_name, const char* ids_name, const char* exponents_name) {
    std::vector<std::int64_t> more = Integers(from, counts_name);
    more.resize(Components(from));
    counts.insert(counts.end(), more.begin(), more.end());
    const std::vector<std::int64_t> more_ids = Integers(from, ids_name);
    ids.insert(ids.end(), more_ids.begin(), more_ids.end());
    const BlockItem* item = from.Item(exponents_name);
    const std::vector<double> more_exponents = item ? FloatsOf(*item) : std::vector<double>();
    exponents.insert(exponents.end(), more_exponents.begin(), more_exponents.end());
  }
  void AddTo(BlockContent& to, const char* counts_name, const char* ids_name, const char* exponents_name) const {
    if (!counts.empty()) to.AddIntegers(counts_name, {counts.size()}, counts);
    if (ids.empty()) return;
    to.AddIntegers(ids_name, {ids.size()}, ids);
    to.AddFloats(exponents_name, {exponents.size()}, exponents);
  }

  std::vector<std::int64_t> counts, ids;
  std::vector<double> exponents;
};

bool HasUnits(const BlockContent& variable) {
  const auto is_used = [](std::int64_t count) { return count > 0; };
  return std::ranges::any_of(Integers(variable, "mbunit"), is_used) ||
         std::ranges::any_of(Integers(variable, "mdunit"), is_used);
}

/// A variable in the place of a group: its members side by side.
BlockContent JoinMembers(const BlockContent& group, const std::vector<const BlockContent*>& members) {
  const std::string name = group.Text("etypvar");
  if (members.size() == 1 && Components(*members[0]) == Components(group)) {
    BlockContent variable = *members[0];
    variable.SetText(variable.Find("etypvar") ? "etypvar" : "varnam", name);
    variable.place.relative = "/variables" + LastLevel(group);
    return variable;
  }
  BlockContent variable = MakeBlock(kVariable, "variables", name);
  UnitLists base, derived;
  std::vector<std::string> labels;
  for (const BlockContent* member : members) {
    for (const std::string& label : LabelsOf(*member)) labels.push_back(label);
    base.Append(*member, "mbunit", "ubid", "ubexp");
    derived.Append(*member, "mdunit", "udid", "udexp");
  }
  labels.resize(Components(group));
  base.counts.resize(labels.size());
  derived.counts.resize(labels.size());
  variable.SetNumber("rank", 0);
  variable.SetNumber("ndim", 0);
  variable.SetNumber("ncoo", static_cast<std::int64_t>(labels.size()));
  variable.SetText("etypvar", name);
  if (!labels.empty()) variable.AddTexts("cname", kNameWidth, labels);
  base.AddTo(variable, "mbunit", "ubid", "ubexp");
  derived.AddTo(variable, "mdunit", "udid", "udexp");
  return variable;
}

class ToUnkeyed {
 public:
  explicit ToUnkeyed(std::vector<BlockContent>& definitions) : definitions_(definitions) {}

  /// In a file with groups these alone give results their meaning: each becomes a variable in the place of its members.
  void Run() {
    NameIndexColumns();
    std::vector<BlockContent> made;
    std::set<std::string> replaced;  // places
    for (const BlockContent& group : definitions_) {
      if (group.key != kGroup) continue;
      const bool is_of_index = group.place.relative == index_group_;
      const std::vector<const BlockContent*> members = MembersOf(group);
      if (!is_of_index) made.push_back(JoinMembers(group, members));
      for (const BlockContent* member : members) {
        // A column is named by the index types; a variable of its name tells its unit.
        if (!is_of_index || !HasUnits(*member)) replaced.insert(member->place.relative);
      }
    }
    std::erase_if(definitions_, [&](const BlockContent& content) {
      return content.key == kGroup || replaced.contains(content.place.relative);
    });
    definitions_.insert(definitions_.end(), made.begin(), made.end());
    for (BlockContent& content : definitions_) {
      if (content.key == kVariable) MakeUnkeyed(content);
    }
  }

 private:
  std::vector<const BlockContent*> MembersOf(const BlockContent& group) const {
    std::vector<const BlockContent*> members;
    for (const std::string& key : Texts(group, "varkey")) {
      for (const BlockContent& content : definitions_) {
        if (content.key != kVariable || Folded(content.Text("varkey")) != Folded(key)) continue;
        members.push_back(&content);
        break;
      }
    }
    return members;
  }

  const BlockContent* FindGroup(const std::string& name) const {
    for (const BlockContent& content : definitions_) {
      if (content.key == kGroup && !name.empty() && Folded(content.Text("etypvar")) == Folded(name)) return &content;
    }
    return nullptr;
  }

  /// As readers name them.
  void NameIndexColumns() {
    for (BlockContent& types : definitions_) {
      if (types.key != kIndexTypes) continue;
      const BlockContent* group = FindGroup(types.Text("etypvar"));
      if (!group) group = FindGroup(kIndexGroup);
      if (group) index_group_ = group->place.relative;
      std::vector<std::string> names;
      for (const BlockContent* member : group ? MembersOf(*group) : std::vector<const BlockContent*>()) {
        names.push_back(NameOf(*member));
      }
      if (!group) names = Texts(types, "etypindex");
      const auto columns = std::clamp<std::int64_t>(types.Number("nindex"), 0, kMostComponents);
      for (std::size_t i = names.size(); i < static_cast<std::size_t>(columns); ++i) {
        names.push_back(i == 0 ? "TIME" : fmt::format("UNKNOWN_{}", i));
      }
      names.resize(static_cast<std::size_t>(columns));
      types.Remove("etypvar");
      types.RemoveItem("etypindex");
      if (!names.empty()) types.AddTexts("etypindex", kNameWidth, names);
    }
  }

  std::vector<BlockContent>& definitions_;
  std::string index_group_;
};

// ---- From 2.0 on

bool FormsTensor(const BlockContent& variable) {
  const std::int64_t rank = variable.Number("rank"), components = variable.Number("ncoo");
  return (rank == 1 && components == 3) || (rank == 2 && (components == 6 || components == 3));
}

std::int64_t SumOf(const std::vector<std::int64_t>& counts) {
  std::int64_t sum = 0;
  for (const std::int64_t count : counts) sum += count;
  return sum;
}

void AddLabels(const std::vector<std::string>& labels, BlockContent& variable) {
  std::vector<std::int64_t> lengths, offsets;
  std::vector<std::string> letters;
  for (const std::string& label : labels) {
    offsets.push_back(static_cast<std::int64_t>(letters.size()));
    lengths.push_back(static_cast<std::int64_t>(label.size()));
    for (const char letter : label) letters.emplace_back(1, letter);
  }
  variable.SetNumber("subslen", static_cast<std::int64_t>(letters.size()), kNarrow);
  if (letters.empty()) return;
  variable.AddTexts("subscr", 1, letters);
  variable.AddIntegers("subscnt", {lengths.size()}, lengths);
  variable.AddIntegers("subsoffs", {offsets.size()}, offsets);
}

void MakeKeyed(BlockContent& variable) {
  const std::vector<std::string> labels = LabelsOf(variable);
  const std::string name = NameOf(variable), key = variable.Text("varkey");
  for (const char* field : {"etypvar", "idtrans"}) variable.Remove(field);
  for (const char* item : {"cname", "cid", "subscr", "subscnt", "subsoffs"}) variable.RemoveItem(item);
  variable.SetText("blocktype", "variable");
  variable.SetText("varnam", name);
  variable.SetText("varkey", key.empty() ? name : key);
  variable.SetText("varclass", variable.Text("varclass"));
  variable.SetText("type", variable.Text("type"));
  variable.SetNumber("lvmap", variable.Item("vmap") ? 1 : 0, kNarrow);
  AddLabels(labels, variable);
  variable.SetNumber("tensor", FormsTensor(variable) ? 1 : 0, kNarrow);
  variable.SetNumber("lenb", SumOf(Integers(variable, "mbunit")), kNarrow);
  variable.SetNumber("lend", SumOf(Integers(variable, "mdunit")), kNarrow);
  variable.place.relative = "/variable" + LastLevel(variable);
}

BlockContent MakeGroup(const std::string& name, const std::vector<std::pair<std::string, std::int64_t>>& members) {
  BlockContent group = MakeBlock(kGroup, "variablegroup", name);
  std::vector<std::int64_t> counts, offsets;
  std::vector<std::string> keys;
  std::int64_t components = 0;
  for (const auto& [key, count] : members) {
    keys.push_back(key);
    counts.push_back(count);
    offsets.push_back(components);
    components += count;
  }
  group.SetText("etypvar", name);
  group.SetNumber("ncoo", components);
  group.SetNumber("nvar", static_cast<std::int64_t>(members.size()));
  group.AddIntegers("cnt", {counts.size()}, counts);
  group.AddIntegers("offs", {offsets.size()}, offsets);
  group.AddTexts("varkey", kNameWidth, keys);
  return group;
}

BlockContent MakeColumn(const std::string& name) {
  BlockContent variable = MakeBlock(kVariable, "variable", name);
  variable.SetNumber("rank", 0);
  variable.SetNumber("ndim", 0);
  variable.SetNumber("ncoo", 1);
  variable.SetText("etypvar", name);
  variable.AddTexts("cname", kNameWidth, {name});
  MakeKeyed(variable);
  variable.place.relative = "/variable/" + GroupName(name);
  return variable;
}

/// Variables of the index columns, and their group.
std::vector<BlockContent> MakeIndexGroup(const std::vector<std::string>& names,
                                         const std::map<std::string, std::string>& keys) {
  std::vector<BlockContent> made;
  std::vector<std::pair<std::string, std::int64_t>> members;
  for (const std::string& name : names) {
    const auto known = keys.find(Folded(name));
    members.emplace_back(known == keys.end() ? name : known->second, 1);
    if (known == keys.end()) made.push_back(MakeColumn(name));
  }
  made.push_back(MakeGroup(kIndexGroup, members));
  return made;
}

void MakeAllKeyed(std::vector<BlockContent>& definitions) {
  std::map<std::string, std::string> keys;  // by folded name
  std::set<std::string> columns;            // folded names of index columns, which have one group together
  for (const BlockContent& types : definitions) {
    for (const std::string& name : Texts(types, "etypindex")) columns.insert(Folded(name));
  }
  std::vector<BlockContent> made;
  const bool has_groups = std::ranges::any_of(definitions, [](const auto& d) { return d.key == kGroup; });
  for (BlockContent& content : definitions) {
    if (content.key != kVariable) continue;
    MakeKeyed(content);
    const std::string name = content.Text("varnam"), key = content.Text("varkey");
    if (!keys.emplace(Folded(name), key).second || has_groups || columns.contains(Folded(name))) continue;
    made.push_back(MakeGroup(name, {{key, content.Number("ncoo")}}));
    made.back().place.relative = "/variablegroup" + LastLevel(content);
  }
  for (BlockContent& types : definitions) {
    const std::vector<std::string> names = Texts(types, "etypindex");
    if (types.key != kIndexTypes || names.empty()) continue;
    if (keys.contains(Folded(kIndexGroup))) continue;  // a quantity has the name: readers still find the names here
    types.RemoveItem("etypindex");
    types.SetText("etypvar", kIndexGroup);
    std::ranges::move(MakeIndexGroup(names, keys), std::back_inserter(made));
  }
  std::ranges::move(made, std::back_inserter(definitions));
}

/// Names of groups that were keys before may meet.
void GiveOwnPlaces(std::vector<BlockContent>& definitions) {
  std::set<std::string> places;
  for (BlockContent& content : definitions) {
    const std::string place = content.place.relative;
    for (int number = 2; !places.insert(content.place.relative).second; ++number) {
      content.place.relative = fmt::format("{}_{}", place, number);
    }
  }
}

}  // namespace

bool IsDefinition(std::int64_t key) { return key == kVariable || key == kGroup || key == kIndexTypes; }

void KeepUsed(const std::set<std::string>& names, std::vector<BlockContent>& definitions) {
  std::set<std::string> used = names, keys;
  used.insert(Folded(kIndexGroup));  // readers fall back upon it
  for (const BlockContent& content : definitions) {
    if (content.key != kIndexTypes) continue;
    used.insert(Folded(content.Text("etypvar")));
    for (const std::string& name : Texts(content, "etypindex")) used.insert(Folded(name));
  }
  for (const BlockContent& content : definitions) {
    if (content.key != kGroup || !used.contains(Folded(content.Text("etypvar")))) continue;
    for (const std::string& key : Texts(content, "varkey")) keys.insert(Folded(key));
  }
  std::erase_if(definitions, [&](const BlockContent& content) {
    if (content.key == kIndexTypes) return false;
    if (content.key == kGroup) return !used.contains(Folded(content.Text("etypvar")));
    const std::string key = Folded(content.Text("varkey"));
    return !used.contains(Folded(NameOf(content))) && !keys.contains(key) && (key.empty() || !used.contains(key));
  });
}

void ConvertDefinitions(bool to_split, std::vector<BlockContent>& definitions, std::vector<std::string>& notes) {
  to_split ? ToUnkeyed(definitions).Run() : MakeAllKeyed(definitions);
  GiveOwnPlaces(definitions);
  if (to_split)
    notes.emplace_back(
        "left out: keys and classes of variables, and groups of variables, which versions up to 1.2 lack");
}

}  // namespace orvio::program
