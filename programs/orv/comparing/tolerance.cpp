// Comparison of two values.

#include "comparing/tolerance.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "reading/words.h"

namespace orvio::program {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool IsSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace

bool Agree(double a, double b, const Tolerance& tolerance) {
  if (IsSame(a, b)) return true;
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  const double difference = std::abs(a - b);
  return difference <= tolerance.absolute || difference <= tolerance.relative * std::max(std::abs(a), std::abs(b));
}

double AbsoluteDifference(double a, double b) {
  if (IsSame(a, b)) return 0;
  return std::isfinite(a) && std::isfinite(b) ? std::abs(a - b) : kInfinity;
}

double RelativeDifference(double a, double b) {
  if (IsSame(a, b)) return 0;
  if (!std::isfinite(a) || !std::isfinite(b)) return kInfinity;
  const double largest = std::max(std::abs(a), std::abs(b));
  const double difference = std::abs(a - b);
  return std::isfinite(difference) ? difference / largest : std::abs(a / largest - b / largest);
}

Tolerance Tolerances::Of(const std::vector<std::string>& names) const {
  for (const std::string& name : names) {
    const auto is_of_name = [&](const NamedTolerance& one) { return SameWord(one.name, name); };
    const auto found = std::find_if(named.rbegin(), named.rend(), is_of_name);
    if (found != named.rend()) return {found->absolute, found->relative.value_or(general.relative)};
  }
  return general;
}

}  // namespace orvio::program
