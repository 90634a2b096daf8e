#include "mutation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "h5/disk_names.h"
#include "signatures.h"

namespace orvio::fuzz {
namespace {

// ---- Bytes and numbers

void DamageBytes(Bytes& file, Random& random) {
  for (std::size_t left = 1 + random.Below(16); left > 0; --left) {
    file[random.Below(file.size())] = static_cast<std::uint8_t>(random.Next());
  }
}

/// A number that code is likely to be wrong about.
std::uint64_t Boundary(std::size_t file_size, std::uint64_t now, Random& random) {
  const std::uint64_t near = random.Below(5) - 2;
  switch (random.Below(9)) {
    case 0:
      return 0;
    case 1:
      return 1;
    case 2:
      return ~std::uint64_t{0};
    case 3:
      return file_size + near;
    case 4:
      return (std::uint64_t{1} << random.Below(64)) + near;
    case 5:
      return now + (std::uint64_t{1} << random.Below(12));
    case 6:
      return now - (std::uint64_t{1} << random.Below(12));
    case 7:
      return now << random.Below(16);
    default:
      return random.Below(file_size) & ~std::uint64_t{7};  // an address
  }
}

/// Where number fields are: everywhere, but mostly where the fields of HDF5's structures are aligned to.
std::size_t NumberPlace(const Bytes& file, std::size_t width, Random& random) {
  const std::size_t place = random.Below(file.size() - width + 1);
  return random.OneIn(4) ? place : place & ~(std::min<std::size_t>(width, 8) - 1);
}

void DamageNumber(Bytes& file, Random& random) {
  const std::size_t width = std::size_t{1} << random.Below(4);
  const std::size_t place = NumberPlace(file, width, random);
  std::uint64_t number = 0;
  std::memcpy(&number, &file[place], width);
  number = Boundary(file.size(), number, random);
  std::memcpy(&file[place], &number, width);
}

void DamageNumbers(Bytes& file, Random& random) {
  for (std::size_t left = 1 + random.Below(8); left > 0; --left) DamageNumber(file, random);
}

// ---- Pieces of the file

struct Piece {
  std::size_t begin;
  std::size_t size;
};

Piece AnyPiece(const Bytes& file, std::size_t unit, std::size_t longest, Random& random) {
  const std::size_t begin = random.Below(file.size()) / unit * unit;
  const std::size_t wanted = unit * (1 + random.Below(longest));
  return {begin, std::min(wanted, file.size() - begin)};
}

void CopyWithin(Bytes& file, std::size_t from, std::size_t to, std::size_t size) {
  const std::size_t room = file.size() - std::max(from, to);
  std::memmove(&file[to], &file[from], std::min(size, room));
}

void SwapPieces(Bytes& file, std::size_t one, std::size_t other, std::size_t size) {
  const std::size_t distance = one < other ? other - one : one - other;
  const std::size_t count = std::min({size, distance, file.size() - std::max(one, other)});
  std::swap_ranges(file.begin() + static_cast<std::ptrdiff_t>(one),
                   file.begin() + static_cast<std::ptrdiff_t>(one + count),
                   file.begin() + static_cast<std::ptrdiff_t>(other));
}

void DoublePiece(Bytes& file, const Piece& piece, std::size_t most) {
  if (file.size() + piece.size > most) return;
  const Bytes copy(file.begin() + static_cast<std::ptrdiff_t>(piece.begin),
                   file.begin() + static_cast<std::ptrdiff_t>(piece.begin + piece.size));
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(piece.begin), copy.begin(), copy.end());
}

void Cut(Bytes& file, std::size_t most, Random& random) {
  constexpr std::size_t kPage = 512, kSmallest = 16;
  const Piece piece = AnyPiece(file, random.OneIn(2) ? kPage : 8, 4, random);
  switch (random.Below(5)) {
    case 0:
      file.resize(kSmallest + random.Below(file.size() - kSmallest + 1));
      return;
    case 1:
      file.resize(file.size() - random.Below(std::min<std::size_t>(64, file.size() - kSmallest) + 1));
      return;
    case 2:
      std::memset(&file[piece.begin], 0, piece.size);
      return;
    case 3:
      DoublePiece(file, piece, most);
      return;
    default:
      CopyWithin(file, piece.begin, random.Below(file.size()) / 8 * 8, piece.size);
  }
}

// ---- Structures

void ExchangeStructures(Bytes& file, Random& random) {
  const std::vector<std::size_t> places = FindNamed(file.data(), file.size());
  if (places.empty()) return;
  const std::size_t one = places[random.Below(places.size())];
  const std::size_t other = random.OneIn(3) ? random.Below(file.size()) / 8 * 8 : places[random.Below(places.size())];
  const std::size_t size = 8 * (1 + random.Below(32));
  if (random.OneIn(2)) {
    CopyWithin(file, one, other, size);
  } else {
    SwapPieces(file, one, other, size);
  }
}

/// A number near the beginning of a structure: its version, its counts, its addresses.
void DamageStructureNumber(Bytes& file, Random& random) {
  const std::vector<std::size_t> places = FindNamed(file.data(), file.size());
  if (places.empty()) return;
  const std::size_t width = std::size_t{1} << random.Below(4);
  const std::size_t place = places[random.Below(places.size())] + 4 + random.Below(60);
  if (place + width > file.size()) return;
  std::uint64_t number = 0;
  std::memcpy(&number, &file[place], width);
  number = Boundary(file.size(), number, random);
  std::memcpy(&file[place], &number, width);
}

/// Makes an address field point to another structure, or to one that is being read already.
void RedirectAddress(Bytes& file, Random& random) {
  const std::vector<std::size_t> places = FindNamed(file.data(), file.size());
  if (places.empty()) return;
  const std::uint64_t wanted = places[random.Below(places.size())];
  const std::uint64_t instead = random.OneIn(8) ? 0 : places[random.Below(places.size())];
  const std::size_t first = random.Below(file.size() - 7) & ~std::size_t{7};
  for (std::size_t i = 0; i + 8 <= file.size(); i += 8) {
    const std::size_t place = (first + i) % (file.size() - 7) & ~std::size_t{7};
    if (std::memcmp(&file[place], &wanted, 8) != 0) continue;
    std::memcpy(&file[place], &instead, 8);
    return;
  }
}

/// Where a word stands, looked for from a random place on; the size of the file where it does not.
std::size_t FindWord(const Bytes& file, std::string_view word, Random& random) {
  const auto first = file.begin() + static_cast<std::ptrdiff_t>(random.Below(file.size()));
  auto place = std::search(first, file.end(), word.begin(), word.end());
  if (place == file.end()) place = std::search(file.begin(), file.end(), word.begin(), word.end());
  return static_cast<std::size_t>(place - file.begin());
}

void Rename(Bytes& file, Random& random) {
  constexpr std::array<std::string_view, 32> words = {disk::post,           disk::constant,
                                                      disk::singlestate,    disk::multistate,
                                                      disk::header,         disk::data,
                                                      disk::index,          disk::orvblock,
                                                      disk::block,          disk::variable,
                                                      disk::variables,      disk::variablegroup,
                                                      disk::parts,          disk::connectivities,
                                                      disk::indices,        disk::nent,
                                                      disk::nele,           disk::ncoo,
                                                      disk::numl,           disk::nstate,
                                                      disk::nindex,         disk::etyp,
                                                      disk::etypvar,        disk::res,
                                                      disk::entid,          disk::ic,
                                                      disk::indexval,       disk::entityresults,
                                                      disk::elementresults, disk::collector,
                                                      disk::attributes,     disk::nvar};
  const std::string_view instead = words[random.Below(words.size())];
  const std::size_t place = FindWord(file, words[random.Below(words.size())], random);
  const std::size_t room = file.size() - place;
  if (room == 0) return;
  std::memcpy(&file[place], instead.data(), std::min(room, instead.size()));
  if (random.OneIn(2) && instead.size() < room) file[place + instead.size()] = 0;
}

// ---- Values

/// A count that is wrong: by one, by sign, by much, or for another thing.
std::uint64_t WrongCount(std::uint64_t now, Random& random) {
  switch (random.Below(8)) {
    case 0:
      return now + 1;
    case 1:
      return now - 1;
    case 2:
      return random.Below(1200);  // block keys are among these
    case 3:
      return std::uint64_t{0} - random.Below(3);
    case 4:
      return (std::uint64_t{1} << (8 + random.Below(56))) - random.Below(3);
    case 5:
      return now << (1 + random.Below(40));
    case 6:
      return now | (std::uint64_t{1} << 32U);
    default:
      return random.Below(8);
  }
}

/// The value of an attribute stands behind its name, its type and its shape: 24 bytes behind a name that is padded to
/// eight bytes, or 16 behind the name's end in newer files.
void DamageValue(Bytes& file, Random& random) {
  constexpr std::array<std::string_view, 28> words = {
      disk::block,  disk::nent,    disk::nele,    disk::npele,  disk::ncoo,     disk::numl,    disk::nstate,
      disk::nindex, disk::ndim,    disk::rank,    disk::nvar,   disk::subslen,  disk::nbunit,  disk::ndunit,
      disk::length, disk::nbint,   disk::nbfloat, disk::nbid,   disk::nbstring, disk::nuid,    disk::ncoll,
      disk::ntyp,   disk::nenttot, disk::npart,   disk::zoneid, disk::fswitch,  disk::indexic, disk::tensor};
  const std::string_view word = words[random.Below(words.size())];
  const std::size_t end = FindWord(file, word, random) + word.size() + 1;
  const std::size_t padded = (end + 7) / 8 * 8 + 24;
  const std::size_t place = random.OneIn(5) ? end + 16 : padded;
  if (place + 8 > file.size()) return;
  std::uint64_t number = 0;
  std::memcpy(&number, &file[place], 8);
  number = WrongCount(number, random);
  std::memcpy(&file[place], &number, 8);
}

void DamageStructure(Bytes& file, Random& random) {
  switch (random.Below(5)) {
    case 0:
      return ExchangeStructures(file, random);
    case 1:
      return DamageStructureNumber(file, random);
    case 2:
      return RedirectAddress(file, random);
    case 3:
      return Rename(file, random);
    default:
      return DamageNumber(file, random);
  }
}

}  // namespace

void DamageFile(Bytes& file, Damage damage, std::size_t most, Random& random) {
  switch (damage) {
    case Damage::kBytes:
      return DamageBytes(file, random);
    case Damage::kNumbers:
      return DamageNumbers(file, random);
    case Damage::kCuts:
      return Cut(file, most, random);
    case Damage::kStructures:
      for (std::size_t left = 1 + random.Below(3); left > 0; --left) DamageStructure(file, random);
      return;
    case Damage::kValues:
      for (std::size_t left = 1 + random.Below(4); left > 0; --left) DamageValue(file, random);
  }
}

}  // namespace orvio::fuzz
