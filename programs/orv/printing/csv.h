// Comma-separated values.
#pragma once

#include <string>
#include <vector>

namespace orvio::program {

/// Prints one line to standard output; a field with a comma, a quote or a line end is quoted.
void PrintCsvLine(const std::vector<std::string>& fields);

}  // namespace orvio::program
