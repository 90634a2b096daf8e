#pragma once

// What is fixed about entity types: names of the format, and the numbers of those elements that have one.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvio {

inline constexpr std::size_t kEntityTypeNameCount = 80;

/// The names of the format, in its order. Nothing compares with them: the names of a file come from its solver, and
/// their numbers from the host.
extern const std::array<std::string_view, kEntityTypeNameCount> kEntityTypeNames;

/// Number of an element by its dimension and the nodes of one; 0 for a shape without a number.
int EntityTypeOfShape(std::int64_t ndim, std::int64_t npele);

/// Number of an element by its name in the input of NASTRAN, without regard to case.
std::optional<int> NastranEntityTypeFromName(std::string_view name);

}  // namespace orvio
