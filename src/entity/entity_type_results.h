#pragma once

// Entity types of result blocks.

#include <string>
#include <string_view>
#include <vector>

class ORVResult;
struct ORVContainer;

namespace orvio {

/// Gives each block the numbers that the table has for its entity type; one without a row keeps its own.
void UpdateEntityTypes(const std::vector<ORVResult*>& results);

/// Adds the frame types of the single-state results to the list of a filer, sorted and each once.
void UpdateFrameNames(ORVContainer& data);

bool IsFrameName(const std::vector<std::string>& names, std::string_view name);

}  // namespace orvio
