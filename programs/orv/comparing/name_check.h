// Whether there is what a person asks for.
#pragma once

#include <vector>

#include "comparing/diff_options.h"
#include "comparing/quantity_list.h"
#include "reading/result_file.h"

namespace orvio::program {

/// Throws Trouble for a name of a variable, component or entity type in the options that neither file has.
void CheckNames(ResultFile& a, ResultFile& b, const std::vector<ComparedQuantity>& quantities_a,
                const std::vector<ComparedQuantity>& quantities_b, const DiffOptions& options);

/// Throws Trouble for an id of the options that is not among those seen.
void CheckSeen(const ResultFile& a, const ResultFile& b, const DiffOptions& options, const IdSet& seen);

}  // namespace orvio::program
