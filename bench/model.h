#pragma once

// What the files of the benchmarks hold: nodes with two quantities in every state, each number made by a formula.

#include <array>
#include <cstdint>
#include <string>

namespace orvio::bench {

struct Quantity {
  const char* name;  ///< of the variable, and key
  int components;
};

inline constexpr std::array<Quantity, 2> kQuantities = {{{"Velocity", 3}, {"Stress", 6}}};
inline constexpr int kVelocity = 0, kStress = 1;
inline constexpr char kNodeType[] = "NODE";

/// How values are stored.
enum class Storage { kFloat, kDouble, kPacked };

inline constexpr int kDigits = 3;  ///< decimal digits that packed values keep

/// One file of the benchmarks.
struct Job {
  const char* name;
  int nodes;
  int states;
  bool split = false;  ///< the split layout of version 1.1, else the single one of 2.2
  Storage storage = Storage::kFloat;
};

struct Jobs {
  Job small, small_split, medium, medium_double, medium_packed, large;
  std::array<Job, 4> series;  ///< the same few nodes in more and more states
};

/// The jobs of a full run, or of a quick one.
const Jobs& JobsOf(bool quick);

inline int ValuesIn(const Job& job, int quantity) {
  return job.nodes * kQuantities[static_cast<std::size_t>(quantity)].components;
}

/// States count from 1, nodes and components from 0. Multiples of 1/8 below 1024: floats hold them exactly, and so do
/// three decimal digits.
float ValueOf(int quantity, int state, int node, int component);
inline int IdOf(int node) { return 3 * node + 11; }
inline int IdentOf(int state) { return state; }
inline float TimeOf(int state) { return 0.25F * static_cast<float>(state); }

/// How far a value that was read may be from the model: packed ones carry the rounding of the filter's sums.
float ToleranceOf(const Job& job);

/// Fills `values` with a quantity, node by node, and `ids` with the ids of the nodes.
void FillValues(const Job& job, int quantity, int state, float* values);
void FillIds(const Job& job, int* ids);

/// Name of the group of a state.
std::string StateGroup(int state);

/// States of a job in an order that looks like chance, each as often as any other.
class StateOrder {
 public:
  explicit StateOrder(int states);
  int Next();

 private:
  std::int64_t states_, step_, at_ = 0;
};

}  // namespace orvio::bench
