// The making of a block's arrays.

#include "h5/array_maker.h"

#include <cstdlib>
#include <cstring>

namespace orvio::h5 {
namespace {

void* Resized(void* array, std::uint64_t bytes) {
  if (!array) return std::calloc(bytes, 1);
  void* made = std::realloc(array, bytes);
  return made ? std::memset(made, 0, bytes) : nullptr;
}

}  // namespace

void ArrayMaker::texts(char*& array, const char* dataset, Shape shape, std::int64_t width) {
  ok_ = ok_ && width > 0;
  const auto bytes = static_cast<std::uint64_t>(width);
  array = static_cast<char*>(Make(array, dataset, shape, {bytes, bytes, 1}));
}

void* ArrayMaker::Make(void* array, const char* dataset, Shape shape, const ElementSize& size) {
  std::uint64_t elements = 1;
  std::uint64_t bytes = 0;
  std::uint64_t room = 0;
  for (const std::int64_t extent : shape) {
    ok_ = ok_ && extent > 0 && !__builtin_mul_overflow(elements, static_cast<std::uint64_t>(extent), &elements);
  }
  ok_ = ok_ && !__builtin_mul_overflow(elements, size.bytes, &bytes) &&
        !__builtin_add_overflow(bytes, size.spare, &room) && Admits(dataset, elements, bytes, size.stored);
  void* made = ok_ ? Resized(array, room) : nullptr;
  ok_ = made != nullptr;
  return ok_ ? made : array;
}

bool ArrayMaker::Admits(const char* dataset, std::uint64_t elements, std::uint64_t bytes, std::uint64_t stored_each) {
  if (bytes > unbacked_) return elements <= stored_(dataset, stored_each);
  unbacked_ -= bytes;
  return true;
}

}  // namespace orvio::h5
