// Translation of a CalculiX result into a result file.
#pragma once

#include <orvio/orvio.h>

#include <filesystem>
#include <optional>

#include "importer/unit_system.h"

namespace orvio::program {

struct FrdImportOptions {
  std::filesystem::path input;
  std::filesystem::path output;
  _ORVVersion version = ORV_VERSION_2_2;
  std::optional<UnitSystem> units;  ///< none: the file tells no units
  bool partial = false;             ///< take what is there of a run that broke off
};

/// What was written.
struct FrdImportSummary {
  std::size_t nodes = 0;
  std::size_t elements = 0;
  int states = 0;
  std::size_t variables = 0;
  bool complete = true;
};

/// Translates one file, one state at a time. Throws Trouble; the output then stands as it was before.
FrdImportSummary ImportFrd(const FrdImportOptions& options);

}  // namespace orvio::program
