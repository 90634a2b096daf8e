// Translation of an Exodus II file into a result file.
#pragma once

#include "importer/import_options.h"

namespace orvio::program {

/// Translates one file, one variable at one state at a time. Throws Trouble; the output then stands as it was before.
ImportSummary ImportExodus(const ImportOptions& options);

}  // namespace orvio::program
