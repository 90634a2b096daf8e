// The memory of cached datasets: what a manager makes, whom it frees. What blocks keep there is in block_cache_test.

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "orvio/orv_buffer.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using Dims = std::vector<std::uint64_t>;

ORVBuffer* Create(IORVBufferManager& manager, int type, Dims dims) {
  return manager.CreateBuffer(static_cast<_ORVDataType>(type), static_cast<int>(dims.size()), dims.data(), "res",
                              nullptr);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // that of the base is fixed

/// Frees what malloc made and keeps the sizes it was told.
class RecordingAllocator : public ORVAllocator {
 public:
  char* allocate(std::size_t size) override { return static_cast<char*>(std::malloc(size)); }
  void deallocate(char* memory, std::size_t size) override {
    freed.push_back(size);
    std::free(memory);
  }
  std::vector<std::size_t> freed;
};

#pragma GCC diagnostic pop

class BufferManager : public OrvTest {
 protected:
  ORVBufferManager manager_;
};

TEST_F(BufferManager, MakesRoomForADatasetAndTellsOfWhat) {
  const ORVBuffer* buffer = Create(manager_, 7, {3, 2});
  ASSERT_NE(buffer, nullptr);
  ASSERT_NE(buffer->m_data, nullptr);
  EXPECT_EQ(buffer->m_elementSize, 8U);
  EXPECT_EQ(buffer->m_count, 6U);
  EXPECT_FALSE(buffer->m_ownsAllocator);
  EXPECT_EQ(buffer->m_type, ORV_DOUBLE);
  EXPECT_EQ(buffer->m_rank, 2);
  EXPECT_EQ(buffer->m_dims[0], 3U);
  EXPECT_EQ(buffer->m_dims[1], 2U);
  auto* values = static_cast<double*>(buffer->m_data);
  for (int i = 0; i < 6; ++i) values[i] = i;  // all of it is there
  EXPECT_EQ(values[5], 5.0);
}

TEST_F(BufferManager, KnowsTheSizeOfEachType) {
  const struct {
    int type;
    std::uint64_t size;
  } rows[] = {{2, 4}, {3, 4}, {4, 1}, {6, 8}, {7, 8}};
  for (const auto& row : rows) {
    const ORVBuffer* buffer = Create(manager_, row.type, {5});
    ASSERT_NE(buffer, nullptr) << row.type;
    EXPECT_EQ(buffer->m_elementSize, row.size) << row.type;
    EXPECT_EQ(buffer->m_count, 5U) << row.type;
  }
  for (const int type : {-1, 0, 1, 5, 8, 99}) EXPECT_EQ(Create(manager_, type, {5}), nullptr) << type;
}

TEST_F(BufferManager, RefusesShapesThatHoldNothingOrTooMuch) {
  std::uint64_t two = 2;
  EXPECT_EQ(manager_.CreateBuffer(ORV_FLOAT, 0, &two, "res", nullptr), nullptr);
  EXPECT_EQ(manager_.CreateBuffer(ORV_FLOAT, -1, &two, "res", nullptr), nullptr);
  EXPECT_EQ(manager_.CreateBuffer(ORV_FLOAT, 1, nullptr, "res", nullptr), nullptr);
  EXPECT_EQ(Create(manager_, 3, {0}), nullptr);
  EXPECT_EQ(Create(manager_, 3, {4, 0, 2}), nullptr);
  EXPECT_EQ(Create(manager_, 3, {1, 1, 1, 1, 1, 1, 1, 1, 1}), nullptr);
  EXPECT_EQ(Create(manager_, 3, {std::uint64_t{1} << 33, std::uint64_t{1} << 33}), nullptr);
  EXPECT_EQ(Create(manager_, 7, {std::uint64_t{1} << 62}), nullptr);  // the elements can be counted, their bytes not
}

TEST_F(BufferManager, TakesEightAxes) {
  const ORVBuffer* buffer = Create(manager_, 3, {1, 2, 1, 2, 1, 2, 1, 3});
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(buffer->m_count, 24U);
  EXPECT_EQ(buffer->m_dims[7], 3U);
}

TEST_F(BufferManager, SharesOneAllocatorWithAllOthers) {
  ORVBufferManager other;
  const ORVBuffer* first = Create(manager_, 3, {1});
  const ORVBuffer* second = Create(other, 2, {2});
  ASSERT_TRUE(first && second);
  EXPECT_NE(first->m_allocator, nullptr);
  EXPECT_EQ(first->m_allocator, second->m_allocator);
}

TEST_F(BufferManager, FreesABufferThroughItsAllocatorWithItsSize) {
  RecordingAllocator allocator;
  ORVBuffer* first = Create(manager_, 7, {3, 2});
  ORVBuffer* second = Create(manager_, 2, {5});
  ASSERT_TRUE(first && second);
  first->m_allocator = second->m_allocator = &allocator;
  manager_.ReleaseBuffer(first);
  EXPECT_EQ(allocator.freed, (std::vector<std::size_t>{48}));
  manager_.Clear();
  EXPECT_EQ(allocator.freed, (std::vector<std::size_t>{48, 20}));
  manager_.Clear();
  EXPECT_EQ(allocator.freed.size(), 2U);
}

TEST_F(BufferManager, FreesAllWhenItGoes) {
  RecordingAllocator allocator;
  {
    ORVBufferManager going;
    Create(going, 4, {7})->m_allocator = &allocator;
    Create(going, 3, {2})->m_allocator = &allocator;
  }
  EXPECT_EQ(allocator.freed, (std::vector<std::size_t>{7, 8}));
}

TEST_F(BufferManager, IgnoresNullAndBuffersThatAreNotItsOwn) {
  RecordingAllocator allocator;
  ORVBufferManager other;
  ORVBuffer* foreign = Create(other, 3, {1});
  ASSERT_NE(foreign, nullptr);
  foreign->m_allocator = &allocator;
  manager_.ReleaseBuffer(nullptr);
  manager_.ReleaseBuffer(foreign);
  EXPECT_TRUE(allocator.freed.empty());
  other.ReleaseBuffer(foreign);
  EXPECT_EQ(allocator.freed.size(), 1U);
  other.ReleaseBuffer(foreign);  // gone: only the address is looked at
  EXPECT_EQ(allocator.freed.size(), 1U);
}

TEST_F(BufferManager, KeepsTheOthersWhenOneIsReleased) {
  ORVBuffer* buffers[] = {Create(manager_, 3, {1}), Create(manager_, 3, {2}), Create(manager_, 3, {3})};
  manager_.ReleaseBuffer(buffers[1]);
  EXPECT_EQ(buffers[0]->m_count, 1U);
  EXPECT_EQ(buffers[2]->m_count, 3U);
  EXPECT_NE(Create(manager_, 3, {4}), nullptr);
}

TEST_F(BufferManager, ServesThroughItsInterface) {
  IORVBufferManager* manager = new ORVBufferManager;
  EXPECT_NE(Create(*manager, 3, {1}), nullptr);
  delete manager;  // with the buffer: the leak check looks
}

TEST(HostAllocator, IsThatOfC) {
  ORVHostAllocate allocator;
  ORVAllocator& base = allocator;
  char* memory = base.allocate(3);
  ASSERT_NE(memory, nullptr);
  memory[2] = 'x';
  std::free(memory);
  base.deallocate(static_cast<char*>(std::malloc(1)), 1);
  base.deallocate(nullptr, 0);
}

}  // namespace
