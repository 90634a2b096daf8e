#pragma once

// What a filer holds of its file.

#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_types.h"

class ORVResult;
class ORVVariable;

/// Everything read from a file, or the name and version of a file made for writing. Filers share a container by
/// assignment; the last of them frees it.
struct ORVContainer {
  explicit ORVContainer(const char* file) : path(file ? file : "") {}

  int sharers = 1;
  std::unique_ptr<ORVFileVersion> version;  ///< read on first demand
  std::string path;
  std::vector<ORVVariable*> variables;     ///< owned, with their arrays
  std::vector<ORVResult*> multi_results;   ///< of the multi-state section, owned
  std::vector<ORVResult*> single_results;  ///< of the first state and the constant section, owned
};
