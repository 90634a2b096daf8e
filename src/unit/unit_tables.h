#pragma once

// The units of a file as objects.

#include <map>
#include <vector>

class ORVSystem;
class ORVUnit;

namespace orvio {

/// Makes one object per base unit and derived unit of the block, in its order, in place of what the tables held.
void FillUnitTables(const ORVSystem& system, std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived);

using UnitsById = std::map<int, ORVUnit*>;

/// The units of a table by their ids. The first of each id counts.
UnitsById ById(const std::vector<ORVUnit*>& units);

/// Deletes the objects of a table and empties it.
void ClearUnitTable(std::vector<ORVUnit*>& units);

}  // namespace orvio
