// Translation of a CalculiX result into a result file.
#pragma once

#include "importer/import_options.h"

namespace orvio::program {

/// Translates one file, one state at a time. Throws Trouble; the output then stands as it was before.
ImportSummary ImportFrd(const ImportOptions& options);

}  // namespace orvio::program
