// Columns of an index, in the four forms that a filer hands them out in.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "entity/state_index_forge.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Three rows of two columns.
class StateIndexColumns : public OrvTest {
 protected:
  StateIndexColumns() {
    index_.Allocate(3, 2);
    index_.values = {1, 2, 3, 4, 5, 6};
    index_.ids = {10, 20, 30, 40, 50, 60};
    index_.m_pIndexVal = index_.values.data();
    index_.m_pIndexId = index_.ids.data();
  }
  ~StateIndexColumns() override {
    std::free(id_array_);
    std::free(value_array_);
  }

  int IntoArrays(int column) { return filer_.GetIndexValues(&index_, column, &id_array_, &value_array_); }
  int IntoAnArray(int column) { return filer_.GetIndexValues(&index_, column, &value_array_); }
  int IntoVectors(int column) { return filer_.GetIndexValues(&index_, column, ids_, values_); }
  int IntoAVector(int column) { return filer_.GetIndexValues(&index_, column, values_); }

  /// All four forms answer 0 and deliver nothing.
  void ExpectNothing(int column) {
    EXPECT_EQ(IntoArrays(column), 0);
    EXPECT_EQ(IntoAnArray(column), 0);
    EXPECT_EQ(IntoVectors(column), 0);
    EXPECT_EQ(IntoAVector(column), 0);
    EXPECT_EQ(id_array_, nullptr);
    EXPECT_EQ(value_array_, nullptr);
    EXPECT_THAT(ids_, IsEmpty());
    EXPECT_THAT(values_, IsEmpty());
  }

  ORVFiler filer_{"/not/there"};
  OpenIndex<float> index_;
  int* id_array_ = nullptr;
  float* value_array_ = nullptr;
  std::vector<int> ids_;
  std::vector<float> values_;
};

TEST_F(StateIndexColumns, IntoArraysGiveIdentifiersAndValues) {
  ASSERT_EQ(IntoArrays(1), 3);
  EXPECT_THAT(std::vector<int>(id_array_, id_array_ + 3), ElementsAre(20, 40, 60));
  EXPECT_THAT(std::vector<float>(value_array_, value_array_ + 3), ElementsAre(2, 4, 6));
}

TEST_F(StateIndexColumns, IntoAnArrayGiveValues) {
  ASSERT_EQ(IntoAnArray(0), 3);
  EXPECT_THAT(std::vector<float>(value_array_, value_array_ + 3), ElementsAre(1, 3, 5));
}

TEST_F(StateIndexColumns, IntoVectorsAreAppended) {
  ids_ = {7};
  values_ = {8};
  ASSERT_EQ(IntoVectors(1), 3);
  EXPECT_THAT(ids_, ElementsAre(7, 20, 40, 60));
  EXPECT_THAT(values_, ElementsAre(8, 2, 4, 6));
}

TEST_F(StateIndexColumns, IntoAVectorOfValuesStrideByTheColumn) {
  values_ = {8};
  ASSERT_EQ(IntoAVector(0), 3);
  EXPECT_THAT(values_, ElementsAre(8, 1, 1, 1));
  values_.clear();
  ASSERT_EQ(IntoAVector(1), 3);
  EXPECT_THAT(values_, ElementsAre(1, 2, 3));
}

TEST_F(StateIndexColumns, BehindTheLastAreNotThere) { ExpectNothing(2); }

TEST_F(StateIndexColumns, BelowZeroAreNotThere) { ExpectNothing(-1); }

TEST_F(StateIndexColumns, OfAnIndexWithoutStatesAreNotThere) {
  index_.m_nState = 0;
  ExpectNothing(0);
}

TEST_F(StateIndexColumns, OfAnIndexWithNegativeCountsAreNotThere) {
  index_.m_nState = -3;
  ExpectNothing(0);
  index_.m_nState = 3;
  index_.m_nIndex = -2;
  ExpectNothing(-3);
}

TEST_F(StateIndexColumns, OfMoreStatesThanAnAnswerCanSayAreNotThere) {
  index_.m_nState = std::int64_t{1} << 32;
  ExpectNothing(0);
}

TEST_F(StateIndexColumns, OfNoIndexAreNotThere) {
  EXPECT_EQ(filer_.GetIndexValues(nullptr, 0, &id_array_, &value_array_), 0);
  EXPECT_EQ(filer_.GetIndexValues(nullptr, 0, &value_array_), 0);
  EXPECT_EQ(filer_.GetIndexValues(nullptr, 0, ids_, values_), 0);
  EXPECT_EQ(filer_.GetIndexValues(nullptr, 0, values_), 0);
  EXPECT_EQ(value_array_, nullptr);
  EXPECT_THAT(values_, IsEmpty());
}

TEST_F(StateIndexColumns, WithoutTheValuesAreNotThere) {
  index_.m_pIndexVal = nullptr;
  ExpectNothing(0);
}

TEST_F(StateIndexColumns, WithoutTheIdentifiersGiveValuesAlone) {
  index_.m_pIndexId = nullptr;
  EXPECT_EQ(IntoArrays(0), 0);
  EXPECT_EQ(value_array_, nullptr);
  EXPECT_EQ(IntoVectors(0), 0);
  EXPECT_THAT(values_, IsEmpty());
  EXPECT_EQ(IntoAnArray(0), 3);
  EXPECT_EQ(IntoAVector(1), 3);
}

TEST_F(StateIndexColumns, NeedAPlaceToGo) {
  EXPECT_EQ(filer_.GetIndexValues(&index_, 0, nullptr, &value_array_), 0);
  EXPECT_EQ(filer_.GetIndexValues(&index_, 0, &id_array_, nullptr), 0);
  EXPECT_EQ(filer_.GetIndexValues(&index_, 0, static_cast<float**>(nullptr)), 0);
  EXPECT_EQ(value_array_, nullptr);
}

}  // namespace
}  // namespace orv_test
