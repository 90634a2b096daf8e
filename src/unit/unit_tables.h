#pragma once

// The units of a file as objects.

#include <vector>

class ORVSystem;
class ORVUnit;

namespace orvio {

/// Makes one object per base unit and derived unit of the block, in its order, in place of what the tables held.
void FillUnitTables(const ORVSystem& system, std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived);

/// Deletes the objects of a table and empties it.
void ClearUnitTable(std::vector<ORVUnit*>& units);

}  // namespace orvio
