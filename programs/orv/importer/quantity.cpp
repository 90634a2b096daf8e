// Naming and classing of results.

#include "importer/quantity.h"

#include <algorithm>
#include <cctype>
#include <iterator>

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

/// A name that can stand in a path.
std::string GroupName(std::string name) {
  std::ranges::replace(name, '/', '_');
  if (std::ranges::find(kReserved, name) != std::end(kReserved)) name += "_";
  return name;
}

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

Quantity Describe(const frd::Result& result, bool is_complex) {
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

/// Names that differ in case only are one name to the readers of a result file.
std::string Folded(std::string name) {
  std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name;
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

const Quantity& QuantityTable::Find(const frd::Result& result, bool is_complex, bool& is_new) {
  Quantity wanted = Describe(result, is_complex);
  const std::string plain = wanted.name;
  for (int variant = 1;; ++variant) {
    if (variant > 1) wanted.name = plain + "_" + std::to_string(variant);
    const std::string key = Folded(wanted.name);
    if (used_in_state_.contains(key) || std::ranges::find(kTaken, key) != std::end(kTaken)) continue;
    const auto [entry, inserted] = quantities_.try_emplace(key, wanted);
    const Quantity& known = entry->second;
    const bool is_same = known.name == wanted.name && known.components == wanted.components;
    if (!is_same || known.tensor_rank != wanted.tensor_rank) continue;
    used_in_state_.insert(key);
    is_new = inserted;
    return known;
  }
}

}  // namespace orvio::program
