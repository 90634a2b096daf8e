#pragma once

// What the three forms of a unit share.

#include <cstddef>
#include <vector>

#include "orvio/orv_unit.h"

namespace orvio {

/// A list of units and the list of their exponents. Where their lengths differ the shorter one counts.
template <class Unit>
std::size_t PairsOf(const std::vector<Unit*>& units, const std::vector<float>& exponents) {
  return units.size() < exponents.size() ? units.size() : exponents.size();
}

/// A number as it stands in texts for people: up to six digits.
std::string Number(double value);

/// The last line of a report: both factors of a unit that is shown as `text`.
void AppendConversion(std::string& report, const std::string& text, bool exact, double scale);

/// A line for each unit of a list.
void AppendUnits(std::string& report, const std::vector<ORVUnit*>& units, const std::vector<float>& exponents);

/// Units and exponents in a row, such as "m s^-2".
std::string TextOf(const std::vector<ORVUnit*>& units, const std::vector<float>& exponents);

}  // namespace orvio
