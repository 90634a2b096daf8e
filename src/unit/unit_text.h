#pragma once

// Products of units as a text to show.

#include <string>
#include <vector>

class ORVDUnit;
class ORVUnit;

namespace orvio {

/// The text of a product of base units and derived units with their exponents, such as "(kg m)/s^2"; empty for one
/// without units. Units that are null or have no text are left out. At most 511 bytes: what goes beyond is cut.
std::string UnitText(const std::vector<ORVUnit*>& base, const std::vector<float>& base_exponents,
                     const std::vector<ORVDUnit*>& derived, const std::vector<float>& derived_exponents);

}  // namespace orvio
