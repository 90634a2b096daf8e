// Ids on a command line.
#pragma once

#include <string>
#include <vector>

namespace orvio::program {

/// Appends the ids of "5" or "7-12". Throws CLI::ValidationError in the name of the option for a text that is neither.
void AppendIds(const std::string& option, const std::string& text, std::vector<long long>& ids);

}  // namespace orvio::program
