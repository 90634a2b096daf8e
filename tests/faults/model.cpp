#include "faults/model.h"

#include <cstdio>

namespace orvio::faults {

const char* NameOf(Form form) {
  if (form.split) return form.packed ? "split, packed" : "split";
  return form.packed ? "single, packed" : "single";
}

float ValueOf(int block, Generation generation, int state, int node, int component) {
  // Multiples of an eighth below 2^13: packing with three digits multiplies them by 1000 in single precision, and gives
  // them back to the bit.
  const int pattern = (7 * node + 13 * component + 29 * generation + 41 * block) % 97;
  return 16.0F * static_cast<float>(state) + .125F * static_cast<float>(pattern);
}

std::vector<float> ValuesOf(int block, Generation generation, int state) {
  const int components = kBlocks[static_cast<std::size_t>(block)].components;
  std::vector<float> values;
  values.reserve(static_cast<std::size_t>(kNodes) * static_cast<std::size_t>(components));
  for (int node = 0; node < kNodes; ++node) {
    for (int component = 0; component < components; ++component) {
      values.push_back(ValueOf(block, generation, state, node, component));
    }
  }
  return values;
}

std::vector<int> NodeIds() {
  std::vector<int> ids;
  ids.reserve(kNodes);
  for (int node = 0; node < kNodes; ++node) ids.push_back(IdOf(node));
  return ids;
}

std::vector<int> QuadNodes() {
  std::vector<int> nodes;
  nodes.reserve(std::size_t{4} * kQuads);
  for (int quad = 0; quad < kQuads; ++quad) {
    for (int corner = 0; corner < 4; ++corner) nodes.push_back(IdOf(4 * quad + corner));
  }
  return nodes;
}

std::string StateGroup(int state) {
  char name[64];
  (void)std::snprintf(name, sizeof name, "state%012d", state);
  return name;
}

std::string BlockGroup(int block) {
  return std::string("entityresults/") + kNodeType + "/" + kBlocks[static_cast<std::size_t>(block)].variable;
}

std::string PartOf(const std::string& block, const char* part, Form form) {
  return block + "/" + (form.split ? part : "orvblock");
}

}  // namespace orvio::faults
