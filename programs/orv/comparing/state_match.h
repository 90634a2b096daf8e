// Which states of two files belong together.
#pragma once

#include <vector>

#include "comparing/differences.h"

namespace orvio::program {

struct StateMatch {
  std::vector<StatePair> pairs;
  std::vector<int> only_a, only_b;  ///< from 1
};

StateMatch MatchByNumber(int states_a, int states_b);

/// By the values of their index, that of state 1 first. A state belongs to the one that is closest, if that is no farther
/// than `tolerance`; of several with one value the first belongs to the first. Not a number belongs to none.
StateMatch MatchByTime(const std::vector<double>& times_a, const std::vector<double>& times_b, double tolerance);

/// Keeps these states of A, and what belongs to them.
void KeepStates(const std::vector<int>& states, StateMatch& match);

}  // namespace orvio::program
