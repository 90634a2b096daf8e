#pragma once

// The library as a host writes with it.

#include <string>

#include "roads.h"

namespace orvio::bench {

/// Makes a file with the definitions of the model and no states.
void MakeEmptyFile(const Job& job, const std::string& path);
/// Makes the file of a job with all of its states.
void MakeOrvFile(const Job& job, const std::string& path);

}  // namespace orvio::bench
