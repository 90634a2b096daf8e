// Copies of datasets that a block holds in memory, whole and in part. What results make of them is in result_cache_test.

#include <cstdint>
#include <vector>

#include "block/caching_block.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Doubles = std::vector<double>;
using Ints = std::vector<int>;

class CachedCopy : public BlockCache {
 protected:
  CachedCopy() {
    AtBlock().dataset<float>("res", {3, 2}, {1, 2, 3, 4, 5, 6}).dataset<double>("precise", {2, 1}, {1, 2});
    AtBlock().dataset<int>("entid", {3}, {10, 20, 30});
    EXPECT_EQ(Cache({"res", "precise", "entid"}), 0);
  }
  Floats values_ = Floats(6, -1);
  Ints ids_ = Ints(3, -1);
};

TEST_F(CachedCopy, GivesADatasetWhole) {
  EXPECT_EQ(block_.CopyWhole("res", ORV_FLOAT, {3, 2}, values_), 0);
  EXPECT_EQ(values_, (Floats{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(block_.CopyWhole("entid", ORV_INT, {3}, ids_), 0);
  EXPECT_EQ(ids_, (Ints{10, 20, 30}));
  Doubles precise(2);
  EXPECT_EQ(block_.CopyWhole("precise", ORV_DOUBLE, {2}, precise), 0);
  EXPECT_EQ(precise, (Doubles{1, 2}));
}

TEST_F(CachedCopy, GivesNothingToADestinationOfAnotherSizeOrType) {
  EXPECT_EQ(block_.CopyWhole("res", ORV_FLOAT, {2, 2}, values_), 1);
  EXPECT_EQ(block_.CopyWhole("res", ORV_FLOAT, {4, 2}, values_), 1);
  EXPECT_EQ(block_.CopyWhole("res", ORV_FLOAT, {}, values_), 1);
  EXPECT_EQ(block_.CopyWhole("res", ORV_INT, {3, 2}, values_), 1);
  EXPECT_EQ(block_.CopyWhole("res", ORV_DOUBLE, {3, 2}, values_), 1);
  EXPECT_EQ(block_.CopyWhole("entid", ORV_FLOAT, {3}, ids_), 1);
  EXPECT_EQ(block_.CopyWhole("missing", ORV_FLOAT, {3, 2}, values_), 1);
  std::uint64_t dims[] = {3, 2};
  EXPECT_EQ(block_.OH5Copy_FromCache("res", ORV_FLOAT, 2, dims, ORV_DOUBLE, nullptr, nullptr, values_.data()), 1);
  EXPECT_EQ(block_.OH5Copy_FromCache("res", ORV_FLOAT, 2, dims, ORV_FLOAT, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(block_.OH5Copy_FromCache("res", ORV_FLOAT, 2, nullptr, ORV_FLOAT, nullptr, nullptr, values_.data()), 1);
  EXPECT_EQ(values_, Floats(6, -1));
  EXPECT_EQ(ids_, Ints(3, -1));
}

TEST_F(CachedCopy, GivesPartOfADatasetOfFloats) {
  EXPECT_EQ(block_.CopyPart("res", {3, 2}, {1, 0}, {2, 1}, values_), 0);
  EXPECT_EQ(values_, (Floats{3, 5, -1, -1, -1, -1}));
}

TEST_F(CachedCopy, GivesNoPartBeyondTheExtentsOrOfOtherOnes) {
  EXPECT_EQ(block_.CopyPart("res", {3, 2}, {2, 0}, {2, 1}, values_), 1);
  EXPECT_EQ(block_.CopyPart("res", {3, 2}, {0, 0}, {0, 1}, values_), 1);
  EXPECT_EQ(block_.CopyPart("res", {2, 3}, {0, 0}, {1, 1}, values_), 1);
  EXPECT_EQ(block_.CopyPart("res", {4, 2}, {0, 0}, {1, 1}, values_), 1);
  EXPECT_EQ(block_.CopyPart("res", {6}, {0}, {1}, values_), 1);
  EXPECT_EQ(values_, Floats(6, -1));
}

TEST_F(CachedCopy, GivesPartsOfFloatsOnly) {
  std::uint64_t dims[] = {2, 1};
  std::uint64_t zero[] = {0, 0};
  std::uint64_t one[] = {1, 1};
  Doubles precise(2, -1);
  EXPECT_EQ(block_.OH5Copy_FromCache("precise", ORV_DOUBLE, 2, dims, ORV_DOUBLE, zero, one, precise.data()), 1);
  EXPECT_EQ(block_.OH5Copy_FromCache("precise", ORV_DOUBLE, 2, dims, ORV_FLOAT, zero, one, precise.data()), 1);
  EXPECT_EQ(block_.OH5Copy_FromCache("precise", ORV_FLOAT, 2, dims, ORV_FLOAT, zero, one, precise.data()), 1);
  std::uint64_t ids[] = {3};
  EXPECT_EQ(block_.OH5Copy_FromCache("entid", ORV_INT, 1, ids, ORV_INT, zero, one, ids_.data()), 1);
  EXPECT_EQ(precise, Doubles(2, -1));
  EXPECT_EQ(ids_, Ints(3, -1));
}

TEST_F(CachedCopy, NeedsStartAndCountOrNeither) {
  std::uint64_t dims[] = {3, 2};
  std::uint64_t one[] = {1, 1};
  EXPECT_EQ(block_.OH5Copy_FromCache("res", ORV_FLOAT, 2, dims, ORV_FLOAT, one, nullptr, values_.data()), 1);
  EXPECT_EQ(block_.OH5Copy_FromCache("res", ORV_FLOAT, 2, dims, ORV_FLOAT, nullptr, one, values_.data()), 1);
  EXPECT_EQ(values_, Floats(6, -1));
}

TEST_F(CachedCopy, TakesAnArrayOfTheCallerToo) {
  std::uint64_t dims[] = {3, 2};
  std::uint64_t start[] = {0, 1};
  std::uint64_t count[] = {3, 1};
  Floats source = {1, 2, 3, 4, 5, 6};
  float* out = values_.data();
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_FLOAT, 2, dims, source.data(), ORV_FLOAT, start, count, out), 0);
  EXPECT_EQ(values_, (Floats{2, 4, 6, -1, -1, -1}));
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_DOUBLE, 2, dims, source.data(), ORV_FLOAT, start, count, out), 1);
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_FLOAT, 2, dims, source.data(), ORV_DOUBLE, start, count, out), 1);
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_FLOAT, 0, dims, source.data(), ORV_FLOAT, start, count, out), 1);
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_FLOAT, 2, dims, nullptr, ORV_FLOAT, start, count, out), 1);
  EXPECT_EQ(block_.OH5Copy_SELECTIVE(ORV_FLOAT, 2, dims, source.data(), ORV_FLOAT, start, count, nullptr), 1);
  EXPECT_EQ(values_, (Floats{2, 4, 6, -1, -1, -1}));
}

TEST_F(CachedCopy, TakesABufferThatSaysNoMoreThanItsSize) {
  Floats memory = {1, 2};
  ORVBuffer own;
  own.m_data = memory.data();
  own.m_elementSize = 4;
  own.m_count = 2;
  block_.AppendCachedData("own", &own);
  EXPECT_EQ(block_.CopyWhole("own", ORV_FLOAT, {2}, values_), 0);
  EXPECT_EQ(values_, (Floats{1, 2, -1, -1, -1, -1}));
  EXPECT_EQ(block_.CopyPart("own", {2}, {1}, {1}, values_), 0);
  EXPECT_EQ(values_[0], 2);
  EXPECT_EQ(block_.CopyPart("own", {3}, {1}, {1}, values_), 1);
  own.m_count = 0;
  EXPECT_EQ(block_.CopyPart("own", {1}, {0}, {1}, values_), 1);
  own.m_count = 2;
  own.m_data = nullptr;
  EXPECT_EQ(block_.CopyWhole("own", ORV_FLOAT, {2}, values_), 1);
}

}  // namespace
