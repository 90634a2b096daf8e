// The ids of collectors.
#pragma once

#include <orvio/orvio.h>

#include "comparing/record_table.h"

namespace orvio::program {

/// A row for each collector of a block that was read, and a column for each of its entity types. False where the counts
/// do not add up.
bool FillCollectorRows(const ORVCollector& block, RecordTable& table);

}  // namespace orvio::program
