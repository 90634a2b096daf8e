// Comparison of two result files by what a reader gets from them.
#pragma once

#include <string>

#include "comparing/diff_options.h"
#include "comparing/differences.h"

namespace orvio::program {

/// Throws Trouble for a file that cannot be read, and for what is asked for and not in either file.
Differences CompareFiles(const std::string& path_a, const std::string& path_b, const DiffOptions& options);

}  // namespace orvio::program
