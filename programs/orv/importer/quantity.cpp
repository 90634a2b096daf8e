// Naming and classing of results.

#include "importer/quantity.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <span>

namespace orvio::program {
namespace {

constexpr int kVectorComponent = 2;
constexpr int kTensorComponent = 4;

/// Results that have a usual name, class or measure; all others keep their names and have none.
struct KnownResult {
  std::string_view result;
  std::string_view name;
  std::string_view class_word;
  Measure measure;
};

constexpr KnownResult kKnownResults[] = {
    {"DISP", "Translational_Displacement", "CLASS_LENGTH", Measure::kLength},
    {"VELO", "VELO", "", Measure::kVelocity},
    {"STRESS", "STRESS", "CLASS_STRESS", Measure::kStress},
    {"TOSTRAIN", "TOSTRAIN", "CLASS_STRAIN", Measure::kNone},
    {"MESTRAIN", "MESTRAIN", "CLASS_STRAIN", Measure::kNone},
    {"FORC", "FORC", "", Measure::kForce},
    {"NDTEMP", "NDTEMP", "", Measure::kTemperature},
    {"FLUX", "FLUX", "", Measure::kHeatFlux},
    {"RFL", "RFL", "", Measure::kPower},
    {"ENER", "ENER", "", Measure::kEnergyDensity},
};

/// Components that measure something of their own, whatever the result: contact openings and slips beside contact
/// pressures, and the parts of an amplitude beside its phase.
struct KnownComponent {
  std::string_view result;
  std::string_view prefix;
  Measure measure;
};

constexpr KnownComponent kKnownComponents[] = {
    {"CONTACT", "COPEN", Measure::kLength},  {"CONTACT", "CSLIP", Measure::kLength},
    {"CONTACT", "CPRESS", Measure::kStress}, {"CONTACT", "CSHEAR", Measure::kStress},
    {"PDISP", "MAG", Measure::kLength},      {"PSTRESS", "MAG", Measure::kStress},
};

/// Names that the index columns and the coordinates of a file bear.
constexpr std::string_view kTaken[] = {"time", "frequency", "value", "step", "index", "coordinate"};

/// Words that end a walk through the groups of a file: no group of ours may have such a name.
constexpr std::string_view kReserved[] = {"orvblock", "header", "data", "index", ".", "..", ""};

constexpr std::size_t kLongestName = 240;  // of the 256 bytes of a name: some are left to tell equal ones apart

}  // namespace

std::string GroupName(std::string name) {
  std::ranges::replace(name, '/', '_');
  if (std::ranges::find(kReserved, name) != std::end(kReserved)) name += "_";
  return name.substr(0, kLongestName);
}

std::string Folded(std::string name) {
  std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name;
}

namespace {

std::vector<const frd::Component*> Stored(const frd::Result& result) {
  std::vector<const frd::Component*> stored;
  for (const frd::Component& component : result.components) {
    if (component.stored) stored.push_back(&component);
  }
  return stored;
}

/// The solver writes contact openings, slips and pressures with the component types of a tensor, which they are not.
bool IsTensorInNameOnly(const frd::Result& result) { return result.name == "CONTACT" || result.name == "CONTACTI"; }

int TensorRank(const std::vector<const frd::Component*>& components) {
  const auto all_of = [&](int type) {
    return std::ranges::all_of(components, [type](const frd::Component* c) { return c->type == type; });
  };
  if (components.size() == 3 && all_of(kVectorComponent)) return 1;
  if (components.size() == 6 && all_of(kTensorComponent)) return 2;
  return 0;
}

Measure MeasureOf(const frd::Result& result, const frd::Component& component, Measure of_result) {
  const auto* known = std::ranges::find_if(kKnownComponents, [&](const KnownComponent& row) {
    return row.result == result.name && component.name.starts_with(row.prefix);
  });
  return known == std::end(kKnownComponents) ? of_result : known->measure;
}

}  // namespace

Quantity CoordinateQuantity() {
  const std::vector<Measure> lengths(3, Measure::kLength);
  return {"COORDINATE", "CLASS_LENGTH", 1, {"X", "Y", "Z"}, lengths};
}

Quantity IndexQuantity(const std::string& name) {
  Quantity quantity{name, "", 0, {name}, {Measure::kNone}};
  if (name == "TIME") quantity.measures = {Measure::kTime};
  if (name == "FREQUENCY") quantity.measures = {Measure::kFrequency};
  return quantity;
}

Quantity DescribeResult(const frd::Result& result, bool is_complex) {
  const auto* known = std::ranges::find(kKnownResults, std::string_view(result.name), &KnownResult::result);
  const bool is_known = known != std::end(kKnownResults);
  const auto stored = Stored(result);
  Quantity quantity;
  quantity.name = (is_complex ? "Complex_" : "") + GroupName(is_known ? std::string(known->name) : result.name);
  quantity.class_word = is_known ? std::string(known->class_word) : std::string();
  quantity.tensor_rank = IsTensorInNameOnly(result) ? 0 : TensorRank(stored);
  for (const frd::Component* component : stored) {
    quantity.components.push_back(component->name);
    quantity.measures.push_back(MeasureOf(result, *component, is_known ? known->measure : Measure::kNone));
  }
  return quantity;
}

namespace {

/// Tables of integration points, and the results at the nodes that hold the same quantity.
struct KnownPoints {
  std::string_view table;
  std::string_view result;
};

constexpr KnownPoints kKnownPoints[] = {
    {"stresses", "STRESS"},
    {"strains", "TOSTRAIN"},
    {"mechanical strains", "MESTRAIN"},
    {"equivalent plastic strain", "PE"},
    {"internal energy density", "ENER"},
    {"internal state variables", "SDV"},
};

std::string Upper(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

/// Suffixes of components, in the order of the results at the nodes. Each may stand either way round.
constexpr std::string_view kVectorSuffixes[] = {"X", "Y", "Z"};
constexpr std::string_view kTensorSuffixes[] = {"XX", "YY", "ZZ", "XY", "YZ", "ZX"};

/// Where the component of one letter and each of the suffixes stands; nothing for components of other names.
std::vector<std::size_t> FindOrder(const std::vector<std::string>& components,
                                   std::span<const std::string_view> suffixes) {
  std::vector<std::size_t> order;
  for (const std::string_view suffix : suffixes) {
    const std::string reversed(suffix.rbegin(), suffix.rend());
    const auto found = std::ranges::find_if(components, [&](const std::string& component) {
      const std::string name = Upper(component);
      return name.size() == suffix.size() + 1 && (name.ends_with(suffix) || name.ends_with(reversed));
    });
    if (found == components.end()) return {};
    order.push_back(static_cast<std::size_t>(found - components.begin()));
  }
  return order.size() == components.size() ? order : std::vector<std::size_t>();
}

std::string Underscored(std::string text) {
  std::ranges::replace(text, ' ', '_');
  return text;
}

}  // namespace

Quantity DescribePoints(const frd::PointResult& result, std::vector<std::size_t>& order) {
  const auto* points = std::ranges::find(kKnownPoints, std::string_view(result.name), &KnownPoints::table);
  const std::string name =
      points == std::end(kKnownPoints) ? Underscored(Upper(result.name)) : std::string(points->result);
  const auto* known = std::ranges::find(kKnownResults, std::string_view(name), &KnownResult::result);
  const bool is_known = known != std::end(kKnownResults);
  Quantity quantity;
  quantity.name = GroupName(is_known ? std::string(known->name) : name);
  quantity.class_word = is_known ? std::string(known->class_word) : std::string();
  const auto vector = FindOrder(result.components, kVectorSuffixes);
  const auto tensor = FindOrder(result.components, kTensorSuffixes);
  quantity.tensor_rank = !tensor.empty() ? 2 : !vector.empty() ? 1 : 0;
  order = !tensor.empty() ? tensor : vector;
  if (order.empty()) {
    for (std::size_t i = 0; i < result.components.size(); ++i) order.push_back(i);
  }
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::string component = Upper(result.components[order[i]]);
    if (!tensor.empty()) component = component.substr(0, 1) + std::string(kTensorSuffixes[i]);
    quantity.components.push_back(component);
    quantity.measures.push_back(is_known ? known->measure : Measure::kNone);
  }
  return quantity;
}

const Quantity& QuantityTable::Find(Quantity wanted, const std::string& place, bool& is_new) {
  const std::string plain = wanted.name;
  for (int variant = 1;; ++variant) {
    if (variant > 1) wanted.name = plain + "_" + std::to_string(variant);
    const std::string key = Folded(wanted.name);
    if (used_in_state_.contains({place, key}) || std::ranges::find(kTaken, key) != std::end(kTaken)) continue;
    const auto [entry, inserted] = quantities_.try_emplace(key, wanted);
    const Quantity& known = entry->second;
    const bool is_same = known.name == wanted.name && known.components == wanted.components;
    if (!is_same || known.tensor_rank != wanted.tensor_rank) continue;
    used_in_state_.insert({place, key});
    is_new = inserted;
    return known;
  }
}

}  // namespace orvio::program
