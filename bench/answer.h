#pragma once

// What a request delivers, and whether it is right.

#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "model.h"

namespace orvio::bench {

/// Memory of the C allocator, as the library hands it out.
struct Freed {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using CArray = std::unique_ptr<T[], Freed>;

template <class T>
CArray<T> MakeArray(std::size_t count) {
  CArray<T> array(static_cast<T*>(std::malloc(count * sizeof(T))));
  if (!array) throw std::bad_alloc();
  return array;
}

/// Values and ids of a request. A request makes its arrays anew, or fills those that are there when `kept` is set.
struct Answer {
  CArray<float> values;
  CArray<int> ids;
  std::size_t room = 0;  ///< values that a kept array has room for
  std::size_t value_count = 0, id_count = 0;
  bool kept = false;

  float* TakeValues(std::size_t count);
  int* TakeIds(std::size_t count);
};

/// What a file is about: its quantities and its states.
struct Listing {
  std::vector<std::string> quantities;  ///< sorted
  std::vector<int> idents;
  std::vector<float> times;
};

/// A request that answered with failure, or a file that cannot be made.
struct Trouble : std::runtime_error {
  using std::runtime_error::runtime_error;
};

inline void Demand(bool good, const std::string& what) {
  if (!good) throw Trouble(what);
}

/// What was asked for: a quantity at one state, at all of them, one of its components, one of the nodes.
struct Asked {
  static constexpr int kAll = -1;

  int quantity = kVelocity;
  int state = kAll;
  int component = kAll;
  int node = kAll;
  bool with_ids = false;
};

std::size_t ValuesAsked(const Job& job, const Asked& asked);

/// Compares every value with the model.
bool IsRight(const Job& job, const Asked& asked, const Answer& answer);
/// Compares the counts and a few values: too little to be seen in a measurement.
bool LooksRight(const Job& job, const Asked& asked, const Answer& answer);

bool AreStatesRight(const Job& job, const Listing& listing);
bool IsRight(const Job& job, const Listing& listing);

}  // namespace orvio::bench
