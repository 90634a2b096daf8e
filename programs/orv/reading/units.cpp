#include "reading/units.h"

namespace orvio::program {
namespace {

// The destructor of the library's class is not virtual; no object is deleted through it here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The library's text of a unit.
struct ShownUnit : ORVVariableUnit {  // NOLINT(cppcoreguidelines-virtual-class-destructor): see above
  std::string Text() {
    std::string text;
    return ConstructUnitString(text) ? text : "";
  }
};

#pragma GCC diagnostic pop

}  // namespace

std::string UnitOf(ORVFiler& filer, ORVVariable& variable, int component) {
  ShownUnit unit;
  filer.GetComponentUnit(&variable, component, unit);
  return unit.Text();
}

std::string UnitOf(const ORVExtVar& handle) { return handle.GetUnit() ? handle.GetUnit()->GetUnitCStr() : ""; }

std::string WithUnit(const std::string& label, const std::string& unit) {
  return unit.empty() ? label : label + " [" + unit + "]";
}

}  // namespace orvio::program
