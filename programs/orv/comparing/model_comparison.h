// Comparison of what files tell of themselves: titles, units, variables, states.
#pragma once

#include "comparing/diff_options.h"
#include "comparing/differences.h"
#include "comparing/quantity_list.h"
#include "comparing/state_match.h"
#include "reading/result_file.h"

namespace orvio::program {

/// Title and solver make notes, the unit system and its units differences.
void CompareSystems(ResultFile& a, ResultFile& b, Differences& found);

/// By name: components, their units, shape and class. Those without values that name a column of the state index in
/// either file are left out.
void CompareVariables(ResultFile& a, ResultFile& b, const DiffOptions& options, Differences& found);

/// Names and units of the columns of the state index, and its values at these states.
void CompareIndex(ResultFile& a, ResultFile& b, const DiffOptions& options, const std::vector<StatePair>& pairs,
                  Differences& found);

/// Index values of blocks over all states, by the columns that both have.
void CompareRows(ResultFile& a, ResultFile& b, const DiffOptions& options, const ComparedQuantity& quantity_a,
                 const ComparedQuantity& quantity_b, const std::vector<StatePair>& pairs, Differences& found);

}  // namespace orvio::program
