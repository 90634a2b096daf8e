// Unit systems that a solver may have been run in. A .frd file does not tell: the user does.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvio::program {

/// What is measured by a component of a quantity.
enum class Measure {
  kNone,  ///< no unit, or an unknown one
  kLength,
  kTime,
  kFrequency,
  kTemperature,
  kVelocity,
  kForce,
  kStress,
  kEnergyDensity,
  kPower,
  kHeatFlux,
};

/// A base unit and its factor to SI.
struct BaseUnit {
  int id;
  const char* dimension;  ///< as result files name it
  const char* name;
  float to_si;
};

/// A unit that is a product of base units; each exponent with the id of its base unit.
struct DerivedUnit {
  int id;
  const char* name;
  std::vector<std::pair<int, float>> of;
};

struct UnitSystem {
  std::string name;  ///< "mm-t-s"
  std::vector<BaseUnit> base;
  std::vector<DerivedUnit> derived;
};

/// Unit of a measure as ids of a system's units with exponents.
struct UnitProduct {
  std::vector<std::pair<int, float>> base, derived;
};

/// Names of the systems that FindUnitSystem knows.
std::vector<std::string> UnitSystemNames();

/// Throws std::out_of_range for an unknown name.
UnitSystem FindUnitSystem(std::string_view name);

/// The same in every system: their units have the same ids.
const UnitProduct& UnitOf(Measure measure);

}  // namespace orvio::program
