// Units as people read them: "mm/s^2". Empty where the file tells none.
#pragma once

#include <orvio/orvio.h>

#include <string>

namespace orvio::program {

std::string UnitOf(ORVFiler& filer, ORVVariable& variable, int component);
/// A computed component has the unit of the first one that it is computed from.
std::string UnitOf(const ORVExtVar& handle);

/// "X [mm]", or the label alone without a unit.
std::string WithUnit(const std::string& label, const std::string& unit);

}  // namespace orvio::program
