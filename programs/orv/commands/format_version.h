// Versions of the format that can be written, by the names that people give them.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

namespace orvio::program {

std::vector<std::string> VersionNames();

/// Throws std::out_of_range for a name that is none of these.
_ORVVersion VersionNamed(const std::string& name);

}  // namespace orvio::program
