// The search for a row by its identifiers and values.

#include <gtest/gtest.h>

#include <cmath>

#include "entity/state_index_forge.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

/// Rows of two columns: values (1 1) (1 2) (3 4) (1 2), identifiers (10 10) (10 20) (30 40) (10 21).
class StateIndexSearch : public OrvTest {
 protected:
  StateIndexSearch() {
    index_.Allocate(4, 2);
    index_.values = {1, 1, 1, 2, 3, 4, 1, 2};
    index_.ids = {10, 10, 10, 20, 30, 40, 10, 21};
    index_.m_pIndexVal = index_.values.data();
    index_.m_pIndexId = index_.ids.data();
  }

  bool Find(const float* values, const int* ids, int columns = 2) {
    location_ = 77;
    return index_.FindIndexValLocation(columns, values, ids, location_);
  }

  OpenIndex<float> index_;
  hid_t location_ = 77;
};

TEST_F(StateIndexSearch, FindsARowByItsValues) {
  const float row[] = {3, 4};
  EXPECT_TRUE(Find(row, nullptr));
  EXPECT_EQ(location_, 2);
}

TEST_F(StateIndexSearch, TakesTheLowestOfEqualRows) {
  const float row[] = {1, 2};
  EXPECT_TRUE(Find(row, nullptr));
  EXPECT_EQ(location_, 1);
}

TEST_F(StateIndexSearch, FindsARowByItsIdentifiers) {
  const int row[] = {10, 21};
  EXPECT_TRUE(Find(nullptr, row));
  EXPECT_EQ(location_, 3);
}

TEST_F(StateIndexSearch, NeedsBothToAgreeWhereBothAreGiven) {
  const float values[] = {1, 2};
  const int ids[] = {10, 21};
  EXPECT_TRUE(Find(values, ids));
  EXPECT_EQ(location_, 3);
  const int other_ids[] = {30, 40};
  EXPECT_FALSE(Find(values, other_ids));
  EXPECT_EQ(location_, -1);
}

TEST_F(StateIndexSearch, FindsNothingWhereOneColumnDiffers) {
  const float row[] = {3, 5};
  EXPECT_FALSE(Find(row, nullptr));
  EXPECT_EQ(location_, -1);
}

TEST_F(StateIndexSearch, HasNoTolerance) {
  const float row[] = {3, std::nextafter(4.0F, 5.0F)};
  EXPECT_FALSE(Find(row, nullptr));
}

TEST_F(StateIndexSearch, FindsNoNan) {
  index_.values[4] = std::nanf("");
  const float row[] = {std::nanf(""), 4};
  EXPECT_FALSE(Find(row, nullptr));
}

TEST_F(StateIndexSearch, NeedsTheNumberOfColumns) {
  const float row[] = {1, 1, 1};
  EXPECT_FALSE(Find(row, nullptr, 1));
  EXPECT_EQ(location_, -1);
  EXPECT_FALSE(Find(row, nullptr, 3));
  EXPECT_EQ(location_, -1);
}

TEST_F(StateIndexSearch, NeedsARow) {
  const float row[] = {1, 1};
  index_.m_nState = 0;
  EXPECT_FALSE(Find(row, nullptr));
  EXPECT_EQ(location_, -1);
}

TEST_F(StateIndexSearch, NeedsSomethingToLookFor) {
  EXPECT_FALSE(Find(nullptr, nullptr));
  EXPECT_EQ(location_, -1);
}

TEST_F(StateIndexSearch, NeedsTheMatrixThatIsAskedFor) {
  const float values[] = {1, 1};
  const int ids[] = {10, 10};
  index_.m_pIndexVal = nullptr;
  EXPECT_FALSE(Find(values, nullptr));
  EXPECT_FALSE(Find(values, ids));
  EXPECT_TRUE(Find(nullptr, ids));
  index_.m_pIndexVal = index_.values.data();
  index_.m_pIndexId = nullptr;
  EXPECT_FALSE(Find(nullptr, ids));
  EXPECT_FALSE(Find(values, ids));
  EXPECT_TRUE(Find(values, nullptr));
}

TEST_F(StateIndexSearch, InDoublePrecisionTellsValuesApartThatAFloatCannot) {
  OpenIndex<double> index;
  index.Allocate(2, 1);
  index.values = {0.1F, 0.1};
  index.ids = {7, 8};
  const double row[] = {0.1};
  const int ids[] = {7};
  EXPECT_TRUE(index.FindIndexValLocation(1, row, nullptr, location_));
  EXPECT_EQ(location_, 1);
  EXPECT_TRUE(index.FindIndexValLocation(1, nullptr, ids, location_));
  EXPECT_EQ(location_, 0);
  EXPECT_FALSE(index.FindIndexValLocation(1, row, ids, location_));
  EXPECT_EQ(location_, -1);
}

}  // namespace
}  // namespace orv_test
