// Writes a small model: a plate of two shells with node coordinates, and stresses at two times.
//
//   write_model OUT.orv

#include <orvio/orv.hpp>

#include <cstddef>
#include <iostream>
#include <vector>

namespace {

void WriteMesh(orv::Writer& writer) {
  orv::Elements shells;
  shells.type = "QUAD4";
  shells.nodes_per_element = 4;
  shells.dimension = 2;
  shells.ids = {11, 12};
  shells.nodes = {1, 2, 5, 4, 2, 3, 6, 5};  // four for each element
  shells.parts = {1, 1};
  writer.elements(shells);
  writer.parts({{1, "plate"}});
  const std::vector<int> nodes = {1, 2, 3, 4, 5, 6};
  const std::vector<float> xyz = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0};
  writer.nodes(nodes, xyz, "mm");
}

/// Six components in each of two layers of every shell.
void WriteState(orv::Writer& writer, double time) {
  const int layers = 2;
  const std::vector<int> shells = {11, 12};
  orv::Writer::StateScope state = writer.state(time);
  std::vector<float> stress(shells.size() * layers * 6);
  for (std::size_t i = 0; i < stress.size(); ++i) {
    stress[i] = static_cast<float>(state.number() * 100) + static_cast<float>(i);
  }
  state.write("STRESS", shells, stress, {"QUAD4", layers});
  state.commit();  // the state is in the file as a whole, or not at all
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "write_model OUT.orv\n";
    return 2;
  }
  orv::Writer::Options options;
  options.origin.title = "A plate";
  options.origin.base_units = {{"Length", "mm", 0.001}, {"Mass", "t", 1000}, {"Time", "s", 1}};
  options.origin.derived_units = {{"MPa", {{"t", 1}, {"mm", -1}, {"s", -2}}}};
  options.index = {{"TIME", "s"}};
  orv::Writer writer(argv[1], options);
  writer.define({"STRESS", {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"}, orv::Shape::tensor, "MPa", "CLASS_STRESS"});
  WriteMesh(writer);
  WriteState(writer, 0.5);
  WriteState(writer, 1.0);
  return 0;
} catch (const orv::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
