#include "model.h"

#include <cstdio>
#include <numeric>

namespace orvio::bench {
namespace {

constexpr int kFew = 10;  // nodes of the series

constexpr Jobs kFull = {
    .small = {"small", 1000, 2000},
    .small_split = {"small-split", 1000, 2000, true},
    .medium = {"medium", 200'000, 40},
    .medium_double = {"medium-double", 200'000, 40, false, Storage::kDouble},
    .medium_packed = {"medium-packed", 200'000, 40, false, Storage::kPacked},
    .large = {"large", 4'000'000, 3},
    .series = {{{"series", kFew, 10}, {"series", kFew, 100}, {"series", kFew, 1000}, {"series", kFew, 10'000}}},
};

constexpr Jobs kQuick = {
    .small = {"small", 1000, 200},
    .small_split = {"small-split", 1000, 200, true},
    .medium = {"medium", 200'000, 4},
    .medium_double = {"medium-double", 200'000, 4, false, Storage::kDouble},
    .medium_packed = {"medium-packed", 200'000, 4, false, Storage::kPacked},
    .large = {"large", 1'000'000, 2},
    .series = {{{"series", kFew, 10}, {"series", kFew, 100}, {"series", kFew, 300}, {"series", kFew, 1000}}},
};

}  // namespace

const Jobs& JobsOf(bool quick) { return quick ? kQuick : kFull; }

float ValueOf(int quantity, int state, int node, int component) {
  auto mixed = static_cast<std::uint32_t>(state) * 0x9E3779B1U + static_cast<std::uint32_t>(node) * 0x85EBCA77U +
               static_cast<std::uint32_t>(8 * quantity + component) * 0xC2B2AE3DU;
  mixed ^= mixed >> 15U;
  mixed *= 0x2C1B3C6DU;
  mixed ^= mixed >> 13U;
  return 0.125F * static_cast<float>(mixed % 8192U);
}

float ToleranceOf(const Job& job) { return job.storage == Storage::kPacked ? 1e-3F : 0; }

void FillValues(const Job& job, int quantity, int state, float* values) {
  const int components = kQuantities[static_cast<std::size_t>(quantity)].components;
  for (int node = 0; node < job.nodes; ++node) {
    for (int component = 0; component < components; ++component) {
      *values++ = ValueOf(quantity, state, node, component);
    }
  }
}

void FillIds(const Job& job, int* ids) {
  for (int node = 0; node < job.nodes; ++node) ids[node] = IdOf(node);
}

std::string StateGroup(int state) {
  char name[32];
  (void)std::snprintf(name, sizeof name, "state%012d", state);
  return name;
}

StateOrder::StateOrder(int states) : states_(states), step_(states * 382LL / 1000 + 1) {
  while (std::gcd(step_, states_) != 1) ++step_;
}

int StateOrder::Next() {
  at_ = (at_ + step_) % states_;
  return static_cast<int>(at_) + 1;
}

}  // namespace orvio::bench
