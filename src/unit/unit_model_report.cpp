// Reports about units, for people.

#include <cstdio>

#include "h5/entry.h"
#include "unit/unit_model_resolve.h"

namespace orvio {

std::string Number(double value) {
  char text[32];
  (void)std::snprintf(text, sizeof text, "%g", value);  // %g never needs more
  return text;
}

namespace {

std::string NameOf(const ORVUnit* unit) { return unit ? unit->GetUnitCStr() : ""; }

/// `head` ends in the place of the count.
void AppendCount(std::string& report, const char* head, std::size_t count) {
  report.append(head).append(std::to_string(count));
}

}  // namespace

void AppendConversion(std::string& report, const std::string& text, bool exact, double scale) {
  report.append("\nConversion factor : From (")
      .append(text)
      .append(") to (SI std)")
      .append(exact ? "" : "[Failed API]");
  report.append(" => ").append(Number(scale));
  report.append("\nConversion factor : from (std SI) to (").append(text).append(") => ").append(Number(1.0 / scale));
}

void AppendUnits(std::string& report, const std::vector<ORVUnit*>& units, const std::vector<float>& exponents) {
  for (std::size_t i = 0; i < PairsOf(units, exponents); ++i) {
    float shift = 0;
    const float scale = units[i] ? units[i]->GetConversionFactors(shift) : 1.0F;
    report.append("\n\t").append(NameOf(units[i])).append(" ^ ").append(Number(static_cast<double>(exponents[i])));
    report.append(", scale ").append(Number(static_cast<double>(scale)));
    report.append(", shift ").append(Number(static_cast<double>(shift)));
  }
}

std::string TextOf(const std::vector<ORVUnit*>& units, const std::vector<float>& exponents) {
  std::string text;
  for (std::size_t i = 0; i < PairsOf(units, exponents); ++i) {
    if (!text.empty()) text.append(" ");
    text.append(NameOf(units[i]));
    const std::string power = Number(static_cast<double>(exponents[i]));
    if (power != "1") text.append("^").append(power);
  }
  return text;
}

}  // namespace orvio

using namespace orvio;

void ORVDUnit::GetDebugInf(std::string& report) {
  h5::EntryVoid([&] {
    std::string text;
    AppendCount(text, "\nNumber of Base Units : ", m_baseUnits.size());
    AppendUnits(text, m_baseUnits, m_baseExponents);
    double scale = 1, shift = 0;
    const bool exact = GetSIConversionFactors(scale, shift);
    AppendConversion(text, m_unitStr, exact, scale);
    report += text;
  });
}

void ORVVariableUnit::GetDebugInf(std::string& report, bool details) {
  h5::EntryVoid([&] {
    std::string text;
    AppendCount(text, "\nNumber of Base Units : ", m_baseUnits.size());
    AppendUnits(text, m_baseUnits, m_baseExp);
    AppendCount(text, "\nNumber of Derive Units : ", m_deriveUnits.size());
    AppendUnits(text, {m_deriveUnits.begin(), m_deriveUnits.end()}, m_deriveExp);
    for (ORVDUnit* unit : m_deriveUnits) {
      if (details && unit) unit->GetDebugInf(text);
    }
    std::vector<ORVUnit*> units, unique;
    std::vector<float> exponents, unique_exponents;
    ResolveToBaseUnits(units, exponents);
    ResolveToUniqueBaseUnits(units, exponents, unique, unique_exponents);
    AppendCount(text, "\nUnique Dimension: ", unique.size());
    AppendUnits(text, unique, unique_exponents);
    double scale = 1, shift = 0;
    const bool exact = GetSIConversionFactors(scale, shift);
    AppendConversion(text, TextOf(unique, unique_exponents), exact, scale);
    report += text;
  });
}
