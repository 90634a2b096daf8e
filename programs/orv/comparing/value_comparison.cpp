// The values of a quantity, component by component.

#include "comparing/value_comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "reading/words.h"

namespace orvio::program {
namespace {

/// What a reader who asks for floats gets. A value that no float can hold stays.
double AsFloat(double value) {
  const bool fits = std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
  return fits ? static_cast<double>(static_cast<float>(value)) : value;
}

}  // namespace

ValueComparison::ValueComparison(const DiffOptions& options, const ComparedQuantity& a, const ComparedQuantity& b,
                                 LastMatch& matches)
    : is_element_(a.name.is_element), is_complex_(a.name.is_complex), matches_(matches) {
  std::vector<const Component*> left;
  for (const Component& component : b.components) left.push_back(&component);
  for (const Component& component : a.components) {
    const auto twin =
        std::ranges::find_if(left, [&](const Component* other) { return SameWord(other->label, component.label); });
    if (twin == left.end()) continue;
    pairs_.push_back({&component, *twin, options.tolerances.Of(component.names)});
    left.erase(twin);
  }
}

void ValueComparison::Compare(StateValues& a, StateValues& b, std::vector<Row>& rows) {
  for (const Pair& pair : pairs_) {
    const ComponentValues values_a = a.Read(*pair.a), values_b = b.Read(*pair.b);
    const IdMatch& match = matches_.Of(a.ids(), b.ids());
    for (Row& row : rows) {
      for (std::size_t i = 0; i < match.count; ++i) {
        const auto [entity_a, entity_b] = match.Pair(i);
        CompareEntity(pair, values_a.Of(entity_a, row.a), values_b.Of(entity_b, row.b), a.ids()[entity_a],
                      row.difference);
      }
      row.difference.only_a = match.only_a;
      row.difference.only_b = match.only_b;
    }
  }
}

void ValueComparison::CompareEntity(const Pair& pair, const ComparedValues& a, const ComparedValues& b, long long id,
                                    ValueDifference& difference) const {
  const std::size_t parts = is_complex_ ? 2 : 1;
  const std::size_t count = std::min(a.layers, b.layers) * parts;
  const bool rounds = a.is_float != b.is_float;
  difference.compared += count;
  if (a.layers != b.layers && !difference.layers) difference.layers = {a.layers, b.layers};
  for (std::size_t i = 0; i < count; ++i) {
    const double value_a = rounds ? AsFloat(a.values[i]) : a.values[i];
    const double value_b = rounds ? AsFloat(b.values[i]) : b.values[i];
    if (value_a == value_b || Agree(value_a, value_b, pair.tolerance)) continue;
    ValuePlace place;
    place.id = id;
    place.layer = is_element_ ? i / parts + 1 : 0;
    place.a = value_a;
    place.b = value_b;
    place.a_is_float = a.is_float || rounds;
    place.b_is_float = b.is_float || rounds;
    Count(pair, place, i % parts, difference);
  }
}

void ValueComparison::Count(const Pair& pair, const ValuePlace& place, std::size_t part,
                            ValueDifference& difference) const {
  const double absolute = AbsoluteDifference(place.a, place.b);
  const double relative = RelativeDifference(place.a, place.b);
  const bool is_first = difference.differing++ == 0;
  const auto keep = [&](double value, ValuePlace& largest) {
    if (!is_first && value <= largest.difference) return;
    largest = place;
    largest.difference = value;
    largest.component = pair.a->label;
    if (is_complex_) largest.component += part == 0 ? ".re" : ".im";
  };
  keep(absolute, difference.absolute);
  keep(relative, difference.relative);
}

}  // namespace orvio::program
