// Copies of a part of an array in memory, run by run.

#include "block/selection_copy.h"

#include <algorithm>

#include "h5/extents.h"

namespace orvio {
namespace {

constexpr int kMaxRank = 6;

bool IsInside(int rank, const std::uint64_t* start, const std::uint64_t* count, const std::uint64_t* extents) {
  for (int i = 0; i < rank; ++i) {
    if (count[i] == 0 || count[i] > extents[i] || start[i] > extents[i] - count[i]) return false;
  }
  return h5::Product(rank, extents).has_value();
}

/// A selection as runs of values that lie side by side in the source, and the axes along which the runs stand.
struct Runs {
  Runs(int rank, const std::uint64_t* start, const std::uint64_t* selected, const std::uint64_t* extents)
      : axes(rank), count(selected) {
    std::uint64_t step = 1;
    bool joined = true;  // all axes behind this one are selected whole
    for (int i = rank - 1; i >= 0; --i) {
      steps[i] = step;
      first += start[i] * step;
      step *= extents[i];
      if (!joined) continue;
      length *= count[i];
      axes = i;
      joined = count[i] == extents[i];
    }
  }

  int axes;
  const std::uint64_t* count;
  std::uint64_t steps[kMaxRank] = {};
  std::uint64_t first = 0;
  std::uint64_t length = 1;
};

/// Copies what lies along the axes from `axis` on; answers where the next value goes.
float* CopyRuns(const Runs& runs, int axis, const float* source, float* out) {
  if (axis == runs.axes) return std::copy_n(source, runs.length, out);
  const std::uint64_t step = runs.steps[axis];
  const bool single_values = runs.length == 1 && axis + 1 == runs.axes;
  for (std::uint64_t i = 0; i < runs.count[axis]; ++i) {
    if (single_values) {
      *out++ = source[i * step];  // one component of all entities: no call for each
    } else {
      out = CopyRuns(runs, axis + 1, source + i * step, out);
    }
  }
  return out;
}

}  // namespace

bool CopySelection(int rank, const std::uint64_t* start, const std::uint64_t* count, float* out,
                   const std::uint64_t* extents, const float* source) {
  if (rank < 1 || rank > kMaxRank || !start || !count || !out || !extents || !source) return false;
  if (!IsInside(rank, start, count, extents)) return false;
  const Runs runs(rank, start, count, extents);
  CopyRuns(runs, 0, source + runs.first, out);
  return true;
}

}  // namespace orvio
