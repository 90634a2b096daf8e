// When two values count as the same.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

/// The same are values that differ by no more than `absolute`, or by no more than `relative` times the larger one of
/// their amounts.
struct Tolerance {
  double absolute = 0, relative = 0;
};

/// Not a number is the same as not a number, and an infinity as itself; no tolerance makes them anything else.
bool Agree(double a, double b, const Tolerance& tolerance);

/// |a - b|. Infinite where one of them is no number or infinite and they do not agree.
double AbsoluteDifference(double a, double b);
/// |a - b| by the larger one of |a| and |b|: 0 to 2, or infinite as above.
double RelativeDifference(double a, double b);

/// That of a variable or of a component.
struct NamedTolerance {
  std::string name;
  double absolute = 0;
  std::optional<double> relative;  ///< nothing: that of all others holds
};

struct Tolerances {
  /// The tolerance of what goes by these names, the most special one first.
  Tolerance Of(const std::vector<std::string>& names) const;

  Tolerance general;
  std::vector<NamedTolerance> named;  ///< of two with the same name the last one holds
};

}  // namespace orvio::program
