#pragma once

// The results of fluid particles, which are known by the number of their entity type.

#include "h5/c_array.h"
#include "result/result_lookup.h"

namespace orvio {

/// Identity of the variable that has the places of particles.
inline constexpr char kParticleCoordinate[] = "COORDINATE";

/// Appends the blocks of the variable of that identity.
void FindFluidParticles(const ResultList& list, const char* identity, ResultList& out);

struct FluidParticles {
  int count = 0;  ///< of ids
  CArray<int> ids;
  CArray<float> values;
};

/// Fetches all components of a variable at a state; empty where there is nothing of it.
FluidParticles ReadFluidParticles(const char* file, const ResultList& list, int state, const char* identity);

}  // namespace orvio
