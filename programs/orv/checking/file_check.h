// All checks of a file.
#pragma once

#include <string>

#include "checking/finding.h"

namespace orvio::program {

/// Looks at a file in a process of its own. Throws Trouble for a path that is no file or may not be read.
Report CheckFile(const std::string& path, const Limits& limits);

/// The same without the process: whoever calls this is in it.
void TellAll(const std::string& path, Teller& teller);

}  // namespace orvio::program
