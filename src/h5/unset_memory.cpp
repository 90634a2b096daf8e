// The few arrays of the running operation, the last one behind the others.

#include "h5/unset_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "filer/process_state.h"

namespace orvio::h5 {

UnsetMemory::UnsetMemory(const void* memory, std::size_t bytes) {
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  process().unset_memory.emplace_back(begin, begin + bytes);
}

UnsetMemory::~UnsetMemory() { process().unset_memory.pop_back(); }

void ZeroIfUnset(void* buffer, std::size_t bytes) {
  const auto begin = reinterpret_cast<std::uintptr_t>(buffer);
  const auto holds = [&](const auto& range) { return range.first <= begin && begin < range.second; };
  if (std::ranges::any_of(process().unset_memory, holds)) std::memset(buffer, 0, bytes);
}

}  // namespace orvio::h5
