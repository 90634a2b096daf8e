#include "signatures.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace orvio::fuzz {
namespace {

constexpr std::array<std::string_view, 22> kNames = {"TREE", "SNOD", "HEAP", "GCOL", "OHDR", "OCHK", "FRHP", "FHDB",
                                                     "FHIB", "FSHD", "FSSE", "BTHD", "BTLF", "BTIN", "SMTB", "SMLI",
                                                     "FAHD", "FADB", "EAHD", "EAIB", "EADB", "EASB"};

bool IsName(const std::uint8_t* bytes) {
  return std::ranges::any_of(kNames, [&](std::string_view name) { return std::memcmp(bytes, name.data(), 4) == 0; });
}

/// Most bytes are no beginning: one look at two of them is enough to know.
bool MayBeName(const std::uint8_t* bytes) {
  return bytes[0] >= 'B' && bytes[0] <= 'T' && bytes[1] >= 'A' && bytes[1] <= 'T';
}

}  // namespace

std::vector<std::size_t> FindNamed(const std::uint8_t* bytes, std::size_t size) {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i + 4 <= size; ++i) {
    if (MayBeName(bytes + i) && IsName(bytes + i)) found.push_back(i);
  }
  return found;
}

}  // namespace orvio::fuzz
