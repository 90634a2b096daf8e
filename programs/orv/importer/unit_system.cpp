// The usual consistent unit systems of structural analysis.

#include "importer/unit_system.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>

namespace orvio::program {
namespace {

enum UnitId : int { kLengthId = 1, kMassId, kTimeId, kTemperatureId, kForceId = 11, kStressId, kEnergyId, kPowerId };

struct Scaled {
  const char* name;
  float to_si;
};

/// A system by its base units, and the names of what follows from them. Temperatures are in kelvin everywhere.
struct SystemRow {
  const char* name;
  Scaled length, mass, time;
  const char *force, *stress, *energy, *power;
};

constexpr Scaled kMetre = {"m", 1.0F}, kMillimetre = {"mm", 1e-3F}, kInch = {"in", 0.0254F}, kFoot = {"ft", 0.3048F};
constexpr Scaled kKilogram = {"kg", 1.0F}, kTonne = {"t", 1e3F}, kGram = {"g", 1e-3F};
constexpr Scaled kInchMass = {"lbf s^2/in", 175.126835F}, kSlug = {"slug", 14.5939029F};
constexpr Scaled kSecond = {"s", 1.0F}, kMillisecond = {"ms", 1e-3F};

constexpr SystemRow kSystems[] = {
    {"m-kg-s", kMetre, kKilogram, kSecond, "N", "Pa", "J", "W"},
    {"mm-t-s", kMillimetre, kTonne, kSecond, "N", "MPa", "mJ", "mW"},
    {"mm-kg-ms", kMillimetre, kKilogram, kMillisecond, "kN", "GPa", "J", "kW"},
    {"mm-g-ms", kMillimetre, kGram, kMillisecond, "N", "MPa", "mJ", "W"},
    {"mm-kg-s", kMillimetre, kKilogram, kSecond, "mN", "kPa", "uJ", "uW"},
    {"in-lbf-s", kInch, kInchMass, kSecond, "lbf", "psi", "in lbf", "in lbf/s"},
    {"ft-slug-s", kFoot, kSlug, kSecond, "lbf", "psf", "ft lbf", "ft lbf/s"},
};

UnitSystem Describe(const SystemRow& row) {
  UnitSystem system;
  system.name = row.name;
  system.base = {{kLengthId, "Length", row.length.name, row.length.to_si},
                 {kMassId, "Mass", row.mass.name, row.mass.to_si},
                 {kTimeId, "Time", row.time.name, row.time.to_si},
                 {kTemperatureId, "Thermodynamic temperature", "K", 1.0F}};
  system.derived = {{kForceId, row.force, {{kLengthId, 1}, {kMassId, 1}, {kTimeId, -2}}},
                    {kStressId, row.stress, {{kLengthId, -1}, {kMassId, 1}, {kTimeId, -2}}},
                    {kEnergyId, row.energy, {{kLengthId, 2}, {kMassId, 1}, {kTimeId, -2}}},
                    {kPowerId, row.power, {{kLengthId, 2}, {kMassId, 1}, {kTimeId, -3}}}};
  return system;
}

}  // namespace

std::vector<std::string> UnitSystemNames() {
  std::vector<std::string> names;
  std::ranges::transform(kSystems, std::back_inserter(names), &SystemRow::name);
  return names;
}

UnitSystem FindUnitSystem(std::string_view name) {
  const auto* row = std::ranges::find(kSystems, name, [](const SystemRow& r) { return std::string_view(r.name); });
  if (row == std::end(kSystems)) throw std::out_of_range("no such unit system");
  return Describe(*row);
}

const UnitProduct& UnitOf(Measure measure) {
  static const std::map<Measure, UnitProduct> products = {
      {Measure::kNone, {}},
      {Measure::kLength, {{{kLengthId, 1}}, {}}},
      {Measure::kTime, {{{kTimeId, 1}}, {}}},
      {Measure::kFrequency, {{{kTimeId, -1}}, {}}},
      {Measure::kTemperature, {{{kTemperatureId, 1}}, {}}},
      {Measure::kVelocity, {{{kLengthId, 1}, {kTimeId, -1}}, {}}},
      {Measure::kForce, {{}, {{kForceId, 1}}}},
      {Measure::kStress, {{}, {{kStressId, 1}}}},
      {Measure::kEnergyDensity, {{{kLengthId, -3}}, {{kEnergyId, 1}}}},
      {Measure::kPower, {{}, {{kPowerId, 1}}}},
      {Measure::kHeatFlux, {{{kLengthId, -2}}, {{kPowerId, 1}}}},
  };
  return products.at(measure);
}

}  // namespace orvio::program
