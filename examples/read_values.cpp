#include <iostream>
#include <orvio/orv.hpp>

int main(int, char** argv) try {
  orv::File file(argv[1]);
  for (const orv::Values<>& stress : file.values("STRESS_SXX")) {  // of the last state, for each type of entities
    for (std::size_t i = 0; i < stress.size(); ++i) std::cout << stress.ids[i] << ' ' << stress.at(i) << '\n';
  }
} catch (const orv::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
