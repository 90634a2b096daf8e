// Comparison of elements, parts, attributes, identifiers and collectors.
#pragma once

#include "comparing/diff_options.h"
#include "comparing/differences.h"
#include "reading/result_file.h"

namespace orvio::program {

/// Compares what one state of each file has of them, or the constant sections (0). `matches` gets to see
/// the ids.
void CompareRecords(ResultFile& a, ResultFile& b, const DiffOptions& options, const StatePair& states,
                    Differences& found, LastMatch& matches);

}  // namespace orvio::program
