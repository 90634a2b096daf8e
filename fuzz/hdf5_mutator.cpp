// What libFuzzer does to an HDF5 file between two runs of a target. Linked into the targets that read such files.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "checksums.h"
#include "mutation.h"

// Names and signatures are libFuzzer's.
extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed);

namespace {

using namespace orvio::fuzz;

Damage AnyDamage(Random& random) {
  constexpr Damage choices[] = {Damage::kNumbers, Damage::kStructures, Damage::kStructures, Damage::kBytes,
                                Damage::kValues,  Damage::kValues,     Damage::kValues,     Damage::kCuts};
  return choices[random.Below(std::size(choices))];
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed) {
  constexpr size_t kSmallest = 16;
  Random random(seed);
  if (size < kSmallest || random.OneIn(5)) return LLVMFuzzerMutate(data, size, max_size);
  const bool with_sums = random.OneIn(2);
  const std::vector<Summed> summed = with_sums ? FindSummed(data, size) : std::vector<Summed>();
  Bytes file(data, data + size);
  DamageFile(file, AnyDamage(random), max_size, random);
  Resum(file.data(), file.size(), summed);
  const size_t count = std::min(file.size(), max_size);
  std::copy_n(file.begin(), count, data);
  return count;
}
