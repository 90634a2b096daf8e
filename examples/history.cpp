// Prints how a quantity of one entity changes over the states of a file, a line for each.
//
//   history FILE.orv VARIABLE ID

#include <orvio/orv.hpp>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) try {
  if (argc != 4) {
    std::cerr << "history FILE.orv VARIABLE ID\n";
    return 2;
  }
  orv::File file(argv[1]);
  const orv::History history = file.history(argv[2], {std::atoll(argv[3])});
  std::cout << "time";
  for (const orv::Curve& curve : history.curves) std::cout << ' ' << curve.component << '@' << curve.layer;
  std::cout << '\n';
  for (std::size_t i = 0; i < history.states.size(); ++i) {
    std::cout << history.states[i].time();
    for (const orv::Curve& curve : history.curves) {
      std::cout << ' ';
      if (curve.values[i]) std::cout << *curve.values[i];  // a state need not have a value
    }
    std::cout << '\n';
  }
  return 0;
} catch (const orv::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
