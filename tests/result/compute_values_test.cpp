// Two answers of a fetch combined by entity id.

#include <climits>
#include <cmath>
#include <vector>

#include "orvio/orv_result_values.h"
#include "result/fetched_values.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

/// A holder as a fetch leaves it.
template <class T>
FetchedValues<T> Holding(const std::vector<int>& ids, const std::vector<T>& values) {
  FetchedValues<T> holder;
  holder.m_ids = CCopy(ids);
  holder.m_idCount = static_cast<int>(ids.size());
  holder.m_values = CCopy(values);
  holder.m_valueCount = static_cast<int>(values.size());
  return holder;
}

class ComputeValues : public OrvTest {};

TEST_F(ComputeValues, CombinesElementByElementWhereTheIdsAgree) {
  struct Row {
    _ORVFetchOperator op;
    std::vector<float> expected;
  };
  for (const Row& row : {Row{ORV_FETCH_ADD, {11, 22, 34}}, Row{ORV_FETCH_SUBTRACT, {9, 18, 26}},
                         Row{ORV_FETCH_MULTIPLY, {10, 40, 120}}, Row{ORV_FETCH_DIVIDE, {10, 10, 7.5F}}}) {
    auto left = Holding<float>({5, 6, 7}, {10, 20, 30});
    auto right = Holding<float>({5, 6, 7}, {1, 2, 4});
    EXPECT_EQ(left.ComputeValues(right, 1, row.op), 0);
    EXPECT_EQ(left.values(), row.expected) << row.op;
    EXPECT_EQ(right.values(), (std::vector<float>{1, 2, 4}));
  }
}

TEST_F(ComputeValues, GoesByTheNumberOfTheOperator) {
  const float expected[] = {12, 8, 20, 5};
  for (int number = 0; number < 4; ++number) {
    auto left = Holding<float>({5}, {10});
    auto right = Holding<float>({5}, {2});
    EXPECT_EQ(left.ComputeValues(right, 1, static_cast<_ORVFetchOperator>(number)), 0);
    EXPECT_EQ(left.values(), (std::vector<float>{expected[number]})) << number;
  }
}

TEST_F(ComputeValues, WorksInDoublePrecisionToo) {
  auto left = Holding<double>({1}, {1});
  auto right = Holding<double>({1}, {3});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_DIVIDE), 0);
  EXPECT_EQ(left.values(), (std::vector<double>{1.0 / 3}));
}

TEST_F(ComputeValues, TakesSeveralValuesPerId) {
  auto left = Holding<float>({5, 6}, {1, 2, 3, 4, 5, 6});
  auto right = Holding<float>({5, 6}, {10, 20, 30, 40, 50, 60});
  EXPECT_EQ(left.ComputeValues(right, 3, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{11, 22, 33, 44, 55, 66}));
}

TEST_F(ComputeValues, CrossesThePlacesOfUnequalOrders) {
  auto left = Holding<float>({1, 2, 3}, {100, 200, 300});
  auto right = Holding<float>({3, 1, 2}, {7, 8, 9});
  // Place 0 of the right is id 3, which stands at place 2 of the left: left[0] gets right[2], and so on.
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{109, 207, 308}));
}

TEST_F(ComputeValues, PassesOverIdsOfTheOtherThatAreNotThere) {
  auto left = Holding<float>({1, 2}, {10, 20});
  auto right = Holding<float>({1, 9}, {1, 2});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{11, 20}));
}

TEST_F(ComputeValues, TakesTheLastOfSeveralPlacesOfAnId) {
  auto left = Holding<float>({4, 4, 4}, {10, 20, 30});
  auto right = Holding<float>({4, 8, 9}, {1, 2, 3});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{13, 20, 30}));
}

TEST_F(ComputeValues, TakesEachPlaceOfAnIdOfTheOther) {
  auto left = Holding<float>({4, 5, 6}, {10, 20, 30});
  auto right = Holding<float>({5, 5, 4}, {1, 2, 3});
  // Id 5 stands at place 1 of the left, id 4 at place 0: left[0] and left[1] get right[1], left[2] gets right[0].
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{12, 22, 31}));
}

TEST_F(ComputeValues, CombinesAHolderWithItself) {
  auto values = Holding<float>({4, 5, 4}, {10, 20, 30});
  // One after the other: what was changed already is a right value too.
  EXPECT_EQ(values.ComputeValues(values, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(values.values(), (std::vector<float>{40, 40, 60}));
  EXPECT_EQ(values.ComputeValues(values, 1, ORV_FETCH_DIVIDE), 0);
  EXPECT_EQ(values.values(), (std::vector<float>{40.0F / 60, 1, 1}));
}

TEST_F(ComputeValues, FindsIdsThatLieCloseTogetherAndIdsThatDoNot) {
  for (const int last : {99'998, 99'999, 100'000, 100'001, INT_MAX}) {
    auto left = Holding<float>({0, last, 7}, {10, 20, 30});
    auto right = Holding<float>({0, last, 7, 8, last - 1, -1}, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
    EXPECT_EQ(left.values(), (std::vector<float>{11, 22, 33})) << last;
  }
}

TEST_F(ComputeValues, TellsIdsOfOneMagnitudeApart) {
  auto left = Holding<float>({5, -5, 0}, {10, 20, 30});
  auto right = Holding<float>({5, -5, 0}, {1, 2, 3});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{11, 22, 33}));
}

TEST_F(ComputeValues, ServesIdsFromOneEndOfTheIntegersToTheOther) {
  auto left = Holding<float>({INT_MIN, INT_MAX, 1000000000, -7}, {1, 2, 3, 4});
  auto right = Holding<float>({INT_MIN, INT_MAX, 1000000000, 8}, {10, 20, 30, 40});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{11, 22, 33, 4}));
}

TEST_F(ComputeValues, DividesByZeroToZero) {
  auto left = Holding<float>({1, 2, 3}, {5, 6, 7});
  auto right = Holding<float>({1, 2, 3}, {0, -0.0F, NAN});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_DIVIDE), 0);
  EXPECT_EQ(left.values()[0], 0);
  EXPECT_EQ(left.values()[1], 0);
  EXPECT_TRUE(std::isnan(left.values()[2]));
}

TEST_F(ComputeValues, PassesOverWhatLiesBehindEitherArray) {
  auto left = Holding<float>({1, 2, 3}, {10, 20, 30});
  auto right = Holding<float>({1, 2, 3}, {1, 2});
  EXPECT_EQ(left.ComputeValues(right, 1, ORV_FETCH_ADD), 0);
  EXPECT_EQ(left.values(), (std::vector<float>{11, 22, 30}));
  EXPECT_EQ(left.ComputeValues(right, INT_MAX, ORV_FETCH_ADD), 0);  // all of the first id's
  EXPECT_EQ(left.values(), (std::vector<float>{12, 24, 30}));
}

TEST_F(ComputeValues, RefusesSidesThatLackSomething) {
  const auto whole = [] { return Holding<float>({1}, {2}); };
  const auto status = [](FetchedValues<float> left, FetchedValues<float> right) {
    return left.ComputeValues(right, 1, ORV_FETCH_ADD);
  };
  EXPECT_EQ(status(whole(), whole()), 0);
  EXPECT_EQ(status(FetchedValues<float>(), whole()), 1);
  EXPECT_EQ(status(whole(), FetchedValues<float>()), 1);
  const auto changed = [&](auto change) {
    auto values = whole();
    change(values);
    return values;
  };
  const auto expect_refused = [&](auto change) {
    EXPECT_EQ(status(changed(change), whole()), 1);
    EXPECT_EQ(status(whole(), changed(change)), 1);
  };
  expect_refused([](auto& v) { v.m_fetchMode = 1; });
  expect_refused([](auto& v) { v.m_idCount = 0; });
  expect_refused([](auto& v) { v.m_valueCount = 0; });
  expect_refused([](auto& v) { v.m_valueCount = -1; });
  expect_refused([](auto& v) { std::free(std::exchange(v.m_ids, nullptr)); });
  expect_refused([](auto& v) { std::free(std::exchange(v.m_values, nullptr)); });
}

TEST_F(ComputeValues, RefusesLessThanOneValuePerIdAndUnknownOperators) {
  auto left = Holding<float>({1}, {2});
  auto right = Holding<float>({1}, {3});
  EXPECT_EQ(left.ComputeValues(right, 0, ORV_FETCH_ADD), 1);
  EXPECT_EQ(left.ComputeValues(right, -1, ORV_FETCH_ADD), 1);
  EXPECT_EQ(left.ComputeValues(right, 1, static_cast<_ORVFetchOperator>(4)), 1);
  EXPECT_EQ(left.values(), (std::vector<float>{2}));
}

}  // namespace
