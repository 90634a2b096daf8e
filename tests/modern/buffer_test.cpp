// Arrays that the modern face hands out.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "orvio/orv/buffer.hpp"

namespace {

using orv::Buffer;
using testing::Each;
using testing::ElementsAre;

TEST(ModernBuffer, IsMovedAndNotCopied) {
  static_assert(std::is_nothrow_move_constructible_v<Buffer<double>>);
  static_assert(std::is_nothrow_move_assignable_v<Buffer<double>>);
  static_assert(!std::is_copy_constructible_v<Buffer<double>>);
  static_assert(!std::is_copy_assignable_v<Buffer<double>>);
}

TEST(ModernBuffer, BeginsWithZeroes) {
  for (int i = 0; i < 4; ++i) {
    Buffer<double> buffer(1000);
    EXPECT_THAT(buffer.vector(), Each(0.0));
    for (double& value : buffer) value = 7;  // for the next one, which may get the same memory
  }
}

TEST(ModernBuffer, OfNothingIsEmpty) {
  const Buffer<float> none, zero(0);
  for (const Buffer<float>* buffer : {&none, &zero}) {
    EXPECT_TRUE(buffer->empty());
    EXPECT_EQ(buffer->begin(), buffer->end());
    EXPECT_TRUE(buffer->vector().empty());
  }
}

TEST(ModernBuffer, ThatWasMovedFromIsEmpty) {
  Buffer<float> from(3);
  const Buffer<float> to = std::move(from);
  EXPECT_EQ(to.size(), 3U);
  EXPECT_TRUE(from.empty());  // NOLINT(bugprone-use-after-move): what is tested
  EXPECT_TRUE(from.vector().empty());
  Buffer<float> other(2);
  from = std::move(other);
  EXPECT_EQ(from.size(), 2U);
  EXPECT_TRUE(other.empty());  // NOLINT(bugprone-use-after-move): likewise
}

TEST(ModernBuffer, TakesOverAnArrayOfTheCAllocator) {
  auto* array = static_cast<int*>(std::calloc(2, sizeof(int)));
  array[1] = 5;
  const Buffer<int> buffer(array, 2);
  EXPECT_EQ(buffer.data(), array);
  EXPECT_THAT(buffer.vector(), ElementsAre(0, 5));
  EXPECT_TRUE(Buffer<int>(nullptr, 2).empty());
}

TEST(ModernBuffer, TellsOfAPlaceOutsideOfIt) {
  Buffer<int> buffer(2);
  buffer.at(1) = 3;
  EXPECT_EQ(std::as_const(buffer).at(1), 3);
  EXPECT_THROW((void)buffer.at(2), std::out_of_range);
}

TEST(ModernBuffer, ThatNoMemoryHoldsIsABadAllocation) {
  EXPECT_THROW(Buffer<double>(std::numeric_limits<std::size_t>::max() / 4), std::bad_alloc);
}

}  // namespace
