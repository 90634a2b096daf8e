#include "comparing/state_match.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace orvio::program {
namespace {

struct TimedState {
  double time;
  int state;
};

std::vector<TimedState> InOrder(const std::vector<double>& times, std::vector<int>& lone) {
  std::vector<TimedState> states;
  for (std::size_t i = 0; i < times.size(); ++i) {
    const int state = static_cast<int>(i + 1);
    if (std::isnan(times[i])) {
      lone.push_back(state);
    } else {
      states.push_back({times[i], state});
    }
  }
  std::ranges::stable_sort(states, {}, &TimedState::time);
  return states;
}

/// Whether the state behind `place` is closer to a time than the one there.
bool IsNextCloser(const std::vector<TimedState>& states, std::size_t place, double time) {
  return place + 1 < states.size() && std::abs(states[place + 1].time - time) < std::abs(states[place].time - time);
}

}  // namespace

StateMatch MatchByNumber(int states_a, int states_b) {
  StateMatch match;
  for (int state = 1; state <= std::max(states_a, states_b); ++state) {
    if (state > states_b) {
      match.only_a.push_back(state);
    } else if (state > states_a) {
      match.only_b.push_back(state);
    } else {
      match.pairs.push_back({state, state});
    }
  }
  return match;
}

StateMatch MatchByTime(const std::vector<double>& times_a, const std::vector<double>& times_b, double tolerance) {
  StateMatch match;
  const std::vector<TimedState> a = InOrder(times_a, match.only_a), b = InOrder(times_b, match.only_b);
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    const bool is_close = a[i].time == b[j].time || std::abs(a[i].time - b[j].time) <= tolerance;
    const bool skips_a = is_close ? IsNextCloser(a, i, b[j].time) : a[i].time < b[j].time;
    const bool skips_b = is_close ? IsNextCloser(b, j, a[i].time) : !skips_a;
    if (skips_a) {
      match.only_a.push_back(a[i++].state);
    } else if (skips_b) {
      match.only_b.push_back(b[j++].state);
    } else {
      match.pairs.push_back({a[i++].state, b[j++].state});
    }
  }
  for (; i < a.size(); ++i) match.only_a.push_back(a[i].state);
  for (; j < b.size(); ++j) match.only_b.push_back(b[j].state);
  std::ranges::sort(match.only_a);
  std::ranges::sort(match.only_b);
  std::ranges::sort(match.pairs, {}, &StatePair::a);
  return match;
}

void KeepStates(const std::vector<int>& states, StateMatch& match) {
  const auto is_other = [&](int state) { return std::ranges::find(states, state) == states.end(); };
  std::erase_if(match.pairs, [&](const StatePair& pair) { return is_other(pair.a); });
  std::erase_if(match.only_a, is_other);
  match.only_b.clear();
}

}  // namespace orvio::program
