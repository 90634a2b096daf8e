// The holders of request and answer: what they start with, how they copy, what they free.

#include "orvio/orv_result_values.h"

#include <vector>

#include "result/fetched_values.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

class ResultValues : public OrvTest {};

template <class T>
void ExpectDefaults() {
  const ORVResultValuesBase<T, int> values;
  EXPECT_EQ(values.m_state, -1);
  EXPECT_EQ(values.m_resultType, -1);
  EXPECT_EQ(values.m_extendedType, -1);
  EXPECT_EQ(values.m_layer, 0);
  EXPECT_EQ(values.m_wantIds, 0);
  EXPECT_EQ(values.m_zoneId, -1);
  EXPECT_EQ(values.m_spare, -1);
  EXPECT_EQ(values.m_fetchMode, 0);
  EXPECT_EQ(values.m_capacity, 0);
  EXPECT_EQ(values.m_idCount, 0);
  EXPECT_EQ(values.m_ids, nullptr);
  EXPECT_EQ(values.m_valueCount, 0);
  EXPECT_EQ(values.m_values, nullptr);
}

TEST_F(ResultValues, StartWithAnEmptyRequestAndAnswer) {
  ExpectDefaults<float>();
  ExpectDefaults<double>();
  const ORVFetchValuesWithIndex values;
  EXPECT_EQ(values.m_indexCount, 0);
  EXPECT_EQ(values.m_blockCount, 0);
  EXPECT_EQ(values.m_indexIdent, nullptr);
  EXPECT_EQ(values.m_indexVal, nullptr);
}

/// Every member another number.
template <class Holder>
void Fill(Holder& values) {
  values.m_state = 1;
  values.m_resultType = 2;
  values.m_extendedType = 3;
  values.m_layer = 4;
  values.m_wantIds = 5;
  values.m_zoneId = 6;
  values.m_spare = 7;
  values.m_fetchMode = 8;
  values.m_capacity = 9;
  values.m_idCount = 10;
  values.m_ids = CCopy<int>({1});
  values.m_valueCount = 11;
  values.m_values = CCopy<float>({2});
}

void ExpectFilled(const ORVResultValuesBase<float, int>& values, const ORVResultValuesBase<float, int>& source) {
  EXPECT_EQ(values.m_state, 1);
  EXPECT_EQ(values.m_resultType, 2);
  EXPECT_EQ(values.m_extendedType, 3);
  EXPECT_EQ(values.m_layer, 4);
  EXPECT_EQ(values.m_wantIds, 5);
  EXPECT_EQ(values.m_zoneId, 6);
  EXPECT_EQ(values.m_spare, 7);
  EXPECT_EQ(values.m_fetchMode, 8);
  EXPECT_EQ(values.m_capacity, 9);
  EXPECT_EQ(values.m_idCount, 10);
  EXPECT_EQ(values.m_ids, source.m_ids);
  EXPECT_EQ(values.m_valueCount, 11);
  EXPECT_EQ(values.m_values, source.m_values);
}

TEST_F(ResultValues, CopyEveryMemberThePointersIncluded) {
  ORVResultValuesBase<float, int> source;
  Fill(source);
  const ORVResultValuesBase<float, int> copy(source);
  ExpectFilled(copy, source);
  ORVResultValuesBase<float, int> assigned;
  assigned = source;
  ExpectFilled(assigned, source);
  source.DeleteAllocation(false);
}

TEST_F(ResultValues, ForgetTheAnswerWithoutFreeingIt) {
  ORVResultValuesBase<float, int> values;
  Fill(values);
  int* const ids = values.m_ids;
  float* const array = values.m_values;
  values.ResetOutParameter();
  EXPECT_EQ(values.m_idCount, 0);
  EXPECT_EQ(values.m_ids, nullptr);
  EXPECT_EQ(values.m_valueCount, 0);
  EXPECT_EQ(values.m_values, nullptr);
  EXPECT_EQ(values.m_capacity, 9);
  EXPECT_EQ(values.m_spare, -1);
  EXPECT_EQ(*ids, 1);
  EXPECT_EQ(*array, 2);
  std::free(ids);
  std::free(array);
}

TEST_F(ResultValues, FreeTheArraysAndKeepTheCountsWithoutAReset) {
  ORVResultValuesBase<float, int> values;
  Fill(values);
  values.DeleteAllocation(false);
  EXPECT_EQ(values.m_ids, nullptr);
  EXPECT_EQ(values.m_values, nullptr);
  EXPECT_EQ(values.m_idCount, 10);
  EXPECT_EQ(values.m_valueCount, 11);
  EXPECT_EQ(values.m_spare, -1);
}

TEST_F(ResultValues, ResetThemselvesThroughTheVirtualOperation) {
  struct Counting : ORVResultValuesBase<float, int> {
    void ResetOutParameter() override { ++resets; }
    int resets = 0;
  };
  Counting values;
  Fill(values);
  ORVResultValuesBase<float, int>& base = values;
  base.DeleteAllocation(false);
  EXPECT_EQ(values.resets, 0);
  base.DeleteAllocation(true);
  EXPECT_EQ(values.resets, 1);
  EXPECT_EQ(values.m_idCount, 10);  // the override is the only one who would zero it
}

TEST_F(ResultValues, ZeroTheCountsWithAReset) {
  ORVResultValuesBase<float, int> values;
  Fill(values);
  values.DeleteAllocation(true);
  EXPECT_EQ(values.m_ids, nullptr);
  EXPECT_EQ(values.m_values, nullptr);
  EXPECT_EQ(values.m_idCount, 0);
  EXPECT_EQ(values.m_valueCount, 0);
}

void FillIndex(ORVFetchValuesWithIndex& values) {
  Fill(values);
  values.m_indexCount = 12;
  values.m_blockCount = 13;
  values.m_indexIdent = CCopy<int>({3});
  values.m_indexVal = CCopy<float>({4});
}

TEST_F(ResultValues, WithIndexForgetTheirOwnMembersOnly) {
  ORVFetchValuesWithIndex values;
  FillIndex(values);
  const ORVFetchValuesWithIndex copy(values);
  values.ResetOutParameter();
  EXPECT_EQ(values.m_indexCount, 0);
  EXPECT_EQ(values.m_blockCount, 0);
  EXPECT_EQ(values.m_indexIdent, nullptr);
  EXPECT_EQ(values.m_indexVal, nullptr);
  ExpectFilled(values, copy);
  EXPECT_EQ(copy.m_indexCount, 12);
  EXPECT_EQ(copy.m_blockCount, 13);
  ORVFetchValuesWithIndex owner(copy);
  owner.DeleteAllocation(false);
}

TEST_F(ResultValues, WithIndexFreeAllArraysThroughTheBase) {
  ORVFetchValuesWithIndex values;
  FillIndex(values);
  ORVResultValuesBase<float, int>& base = values;
  base.DeleteAllocation(false);
  EXPECT_EQ(values.m_ids, nullptr);
  EXPECT_EQ(values.m_values, nullptr);
  EXPECT_EQ(values.m_indexIdent, nullptr);
  EXPECT_EQ(values.m_indexVal, nullptr);
  EXPECT_EQ(values.m_indexCount, 12);
  EXPECT_EQ(values.m_idCount, 10);
}

TEST_F(ResultValues, WithIndexZeroAllCountsWithAReset) {
  ORVFetchValuesWithIndex values;
  FillIndex(values);
  values.DeleteAllocation(true);
  EXPECT_EQ(values.m_indexCount, 0);
  EXPECT_EQ(values.m_blockCount, 0);
  EXPECT_EQ(values.m_idCount, 0);
  EXPECT_EQ(values.m_valueCount, 0);
}

}  // namespace
