// Values of one variable or component at a state.
#pragma once

#include <orvio/orv.hpp>
#include <string>
#include <vector>

#include "reading/result_file.h"
#include "reading/value_request.h"

namespace orvio::program {

/// Of one block: rows of an entity, or of one layer of an element.
using Values = orv::Values<double>;

/// What the numbers of a row are; complex values have two of each component.
std::vector<orv::Component> ColumnsOf(const Values& values);

/// The shortest text that reads back as the same value: a float is shown with a float's digits.
std::string ShortText(double value, bool is_double);

/// What there is of that variable at a state, 1-based; constant values for state 0, and where the state has none. A
/// component that is computed from others gives those. Throws Trouble when there is none, or a component is unknown.
std::vector<Values> ReadValues(ResultFile& file, const ValueRequest& request, int state);

/// Throws Trouble for an id of the request that no values are of.
void CheckIds(const ResultFile& file, const ValueRequest& request, const std::vector<Values>& all);

}  // namespace orvio::program
