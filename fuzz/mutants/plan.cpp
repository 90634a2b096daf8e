#include "mutants/plan.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "checksums.h"

namespace orvio::fuzz {

std::vector<Bytes> LoadSeeds(const Plan& plan) {
  constexpr std::size_t kSmallest = 64;
  std::vector<Bytes> seeds;
  for (const std::string& path : plan.seeds) {
    std::ifstream in(path, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (seeds.back().size() < kSmallest) throw std::runtime_error("no seed: " + path);
  }
  return seeds;
}

Bytes MakeMutant(const Plan& plan, const std::vector<Bytes>& seeds, std::uint64_t index) {
  Random random(plan.seed * 1'000'003 + index);
  Bytes file = seeds[random.Below(seeds.size())];
  const int kind = plan.kind >= 0 ? plan.kind : static_cast<int>(index % kDamages);
  const std::vector<Summed> summed = random.OneIn(2) ? FindSummed(file.data(), file.size()) : std::vector<Summed>();
  DamageFile(file, static_cast<Damage>(kind), 2 * file.size(), random);
  Resum(file.data(), file.size(), summed);
  return file;
}

const char* NameOf(Damage damage) {
  switch (damage) {
    case Damage::kBytes:
      return "bytes";
    case Damage::kNumbers:
      return "numbers";
    case Damage::kCuts:
      return "cuts";
    case Damage::kStructures:
      return "structures";
    default:
      return "values";
  }
}

}  // namespace orvio::fuzz
