// How much of a block a file really holds.
#pragma once

#include <orvio/orvio.h>

#include <string>

namespace orvio::program {

/// Whether a dataset of a block holds `count` values or more. A damaged header can announce any count, so this is asked
/// before memory is taken for it.
bool HoldsValues(const std::string& file, const ORVBlock& block, const std::string& dataset, double count);

/// Whether a file is large enough for so many values. Extents alone are no proof: a dataset of any size can be described
/// in a few bytes.
bool FitsIntoFile(const std::string& file, double count);

}  // namespace orvio::program
