// The joining goes in two steps: first the points of a variable become the layers of a stem, then stems with equal
// layers become the components of a quantity.

#include "importer/exodus_quantity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace orvio::program {
namespace {

/// A variable without the number of its points.
struct Stem {
  std::string name;
  std::vector<std::size_t> layers;  ///< where each of its points is in the list of names
};

// ---- Points

struct Numbered {
  std::string stem;
  int number = 0;
};

/// Splits "eqps_3". Nothing for names without such an end: "eqps", "eqps_03", "eqps_0", "_3".
std::optional<Numbered> SplitNumber(const std::string& name) {
  const std::size_t bar = name.rfind('_');
  if (bar == std::string::npos || bar == 0) return std::nullopt;
  const std::string_view digits = std::string_view(name).substr(bar + 1);
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool is_number = error == std::errc() && end == digits.data() + digits.size();
  if (!is_number || number < 1 || digits.front() == '0') return std::nullopt;
  return Numbered{name.substr(0, bar), number};
}

/// The points of each stem by their numbers. A number that comes twice is not a number of points.
using PointsOfStems = std::map<std::string, std::map<int, std::size_t>>;

PointsOfStems CollectPoints(const std::vector<std::string>& names, const std::vector<std::size_t>& present) {
  PointsOfStems points;
  std::set<std::string> doubled;
  for (const std::size_t i : present) {
    const auto numbered = SplitNumber(names[i]);
    if (!numbered) continue;
    if (!points[numbered->stem].emplace(numbered->number, i).second) doubled.insert(numbered->stem);
  }
  std::erase_if(points, [&](const auto& entry) {
    const auto& [stem, numbers] = entry;
    const bool has_gap = numbers.rbegin()->first != static_cast<int>(numbers.size());
    return numbers.size() < 2 || has_gap || doubled.contains(stem);
  });
  return points;
}

std::vector<Stem> MakeStems(const std::vector<std::string>& names, const std::vector<std::size_t>& present,
                            bool has_points) {
  const PointsOfStems points = has_points ? CollectPoints(names, present) : PointsOfStems();
  std::set<std::string> made;
  std::vector<Stem> stems;
  for (const std::size_t i : present) {
    const auto numbered = SplitNumber(names[i]);
    const auto found = numbered ? points.find(numbered->stem) : points.end();
    if (found == points.end()) {
      stems.push_back({names[i], {i}});
    } else if (made.insert(numbered->stem).second) {
      stems.push_back({numbered->stem, {}});
      for (const auto& [number, place] : found->second) stems.back().layers.push_back(place);
    }
  }
  return stems;
}

// ---- Components

/// Components that make one quantity. The first set whose components are all there is taken.
struct ComponentSet {
  int tensor_rank;
  bool is_plane;  ///< of meshes in two dimensions only
  std::vector<std::string_view> components;
};

const std::array<ComponentSet, 5> kSets = {{{2, false, {"XX", "YY", "ZZ", "XY", "YZ", "ZX"}},
                                            {0, true, {"XX", "YY", "ZZ", "XY"}},
                                            {0, true, {"XX", "YY", "XY"}},
                                            {1, false, {"X", "Y", "Z"}},
                                            {0, true, {"X", "Y"}}}};

bool IsAxis(char c) { return std::string_view("xyzXYZ").find(c) != std::string_view::npos; }

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

/// In the one spelling of the sets: symmetric tensors have XY under the name of YX too.
std::string SpellComponent(std::string component) {
  std::ranges::transform(component, component.begin(), Upper);
  if (component == "YX") return "XY";
  if (component == "ZY") return "YZ";
  return component == "XZ" ? "ZX" : component;
}

/// Without what stands between a name and its component.
std::string WithoutSeparators(const std::string& text) {
  const std::size_t last = text.find_last_not_of("_-. ");
  return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

/// A name that ends in so many letters of axes.
struct Split {
  std::string front;      ///< with the separators: components of one quantity have the same
  std::string component;  ///< "XY"
};

std::optional<Split> SplitComponent(const std::string& name, std::size_t letters) {
  if (name.size() <= letters) return std::nullopt;
  const std::size_t begin = name.size() - letters;
  const bool are_axes = std::all_of(name.begin() + static_cast<std::ptrdiff_t>(begin), name.end(), IsAxis);
  if (!are_axes || IsAxis(name[begin - 1]) || WithoutSeparators(name.substr(0, begin)).empty()) return std::nullopt;
  return Split{name.substr(0, begin), SpellComponent(name.substr(begin))};
}

/// Stems that may be components of one quantity: by their components.
using Candidates = std::multimap<std::string, std::size_t>;

/// All components of one set and none twice; in the order of the set.
std::vector<std::size_t> FindAll(const Candidates& candidates, const ComponentSet& set) {
  std::vector<std::size_t> found;
  for (const std::string_view component : set.components) {
    const std::string key(component);
    if (candidates.count(key) != 1) return {};
    found.push_back(candidates.find(key)->second);
  }
  return found;
}

/// A quantity to be: its stems by their places.
struct Group {
  std::string name;
  const ComponentSet* set = nullptr;  ///< null: a stem on its own
  std::vector<std::size_t> stems;
};

/// The first set that is whole, if it has names of that length. A front that has too many of them, such as all nine
/// components of a tensor, stays apart.
std::optional<Group> FindGroup(const Candidates& candidates, std::size_t letters, bool is_plane) {
  for (const ComponentSet& set : kSets) {
    if (set.components.front().size() != letters || (set.is_plane && !is_plane)) continue;
    std::vector<std::size_t> stems = FindAll(candidates, set);
    if (stems.size() == candidates.size()) return Group{"", &set, std::move(stems)};
  }
  return std::nullopt;
}

std::vector<Group> MakeGroups(const std::vector<Stem>& stems, bool is_plane) {
  std::map<std::size_t, Group> by_first;
  std::vector<bool> is_used(stems.size(), false);
  for (const std::size_t letters : {std::size_t{2}, std::size_t{1}}) {
    std::map<std::pair<std::string, std::size_t>, Candidates> fronts;  // front and layers
    for (std::size_t i = 0; i < stems.size(); ++i) {
      const auto split = SplitComponent(stems[i].name, letters);
      if (split) fronts[{split->front, stems[i].layers.size()}].emplace(split->component, i);
    }
    for (const auto& [front, candidates] : fronts) {
      auto group = FindGroup(candidates, letters, is_plane);
      if (!group) continue;
      group->name = WithoutSeparators(front.first);
      for (const std::size_t stem : group->stems) is_used[stem] = true;
      by_first[*std::ranges::min_element(group->stems)] = std::move(*group);
    }
  }
  for (std::size_t i = 0; i < stems.size(); ++i) {
    if (!is_used[i]) by_first[i] = {stems[i].name, nullptr, {i}};
  }
  std::vector<Group> groups;
  groups.reserve(by_first.size());
  for (auto& [first, group] : by_first) groups.push_back(std::move(group));
  return groups;
}

// ---- Meaning

struct KnownName {
  std::string_view word;  ///< in lower case
  std::string_view name;  ///< of the quantity; empty: its own
  std::string_view class_word;
  Measure measure;
  bool is_end;     ///< whether names that end with the word are meant too
  bool is_vector;  ///< whether a single component is not meant
};

constexpr KnownName kKnownNames[] = {
    {"displ", "Translational_Displacement", "CLASS_LENGTH", Measure::kLength, false, true},
    {"disp", "Translational_Displacement", "CLASS_LENGTH", Measure::kLength, false, true},
    {"displacement", "Translational_Displacement", "CLASS_LENGTH", Measure::kLength, false, true},
    {"vel", "", "", Measure::kVelocity, false, true},
    {"velocity", "", "", Measure::kVelocity, false, true},
    {"stress", "", "CLASS_STRESS", Measure::kStress, true, false},
    {"sigma", "", "CLASS_STRESS", Measure::kStress, false, false},
    {"strain", "", "CLASS_STRAIN", Measure::kNone, true, false},
};

const KnownName* FindKnown(const std::string& name, bool is_joined) {
  const std::string folded = Folded(name);
  const auto* found = std::ranges::find_if(kKnownNames, [&](const KnownName& row) {
    if (row.is_vector && !is_joined) return false;
    return folded == row.word || (row.is_end && folded.ends_with(row.word));
  });
  return found == std::end(kKnownNames) ? nullptr : found;
}

Quantity Describe(const Group& group) {
  const bool is_joined = group.set != nullptr;
  const KnownName* known = FindKnown(group.name, is_joined);
  Quantity quantity;
  quantity.name = GroupName(known && !known->name.empty() ? std::string(known->name) : group.name);
  if (known) quantity.class_word = known->class_word;
  quantity.tensor_rank = is_joined ? group.set->tensor_rank : 0;
  if (is_joined) quantity.components.assign(group.set->components.begin(), group.set->components.end());
  if (!is_joined) quantity.components = {group.name};
  quantity.measures.assign(quantity.components.size(), known ? known->measure : Measure::kNone);
  return quantity;
}

}  // namespace

std::vector<JoinedVariables> JoinVariables(const std::vector<std::string>& names,
                                           const std::vector<std::size_t>& present, const JoinRules& rules) {
  const std::vector<Stem> stems = MakeStems(names, present, rules.has_points);
  std::vector<JoinedVariables> joined;
  for (const Group& group : MakeGroups(stems, rules.dimension == 2)) {
    joined.push_back({Describe(group), {}});
    for (std::size_t layer = 0; layer < stems[group.stems.front()].layers.size(); ++layer) {
      auto& sources = joined.back().sources.emplace_back();
      for (const std::size_t stem : group.stems) sources.push_back(stems[stem].layers[layer]);
    }
  }
  return joined;
}

}  // namespace orvio::program
