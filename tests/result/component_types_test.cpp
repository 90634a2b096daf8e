// What the components of a result are, from its variable: lists of types, positions, measures. Handles themselves are
// tested with the variable.

#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "result/variable_with_handles.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

class ComponentTypes : public OrvTest {
 protected:
  ComponentTypes() {
    block_.m_ncoo = 3;
    block_.m_variable = variable_.get();
    for (int component = 0; component < 3; ++component) variable_.Add(11 + component, component);
    variable_.AddComputed(21, 50, {{11, 12, 13}});
  }

  VariableWithHandles variable_{"V", 3};
  ORVResult block_{1000};
};

/// What a host fills: the external id and the measure of each component.
struct Tables {
  explicit Tables(ORVVariable* variable) {
    variable->m_pCompEid = eids.data();
    variable->m_pCompType = types.data();
    variable->m_ncoo = static_cast<std::int64_t>(eids.size());
    variable->SetOriginalCount(eids.size());
  }

  std::vector<int> eids = {501, 502, 503, 504, 505, 506, 507, 508};
  std::vector<int> types = {72, 73, 76, 74, 77, 75, 78, 50};
};

TEST_F(ComponentTypes, AreListedInTheOrderOfTheHandles) {
  EXPECT_EQ(block_.GetResultTypeFromIndex(0), 111);
  EXPECT_EQ(block_.GetResultTypeFromIndex(3), 121);
  EXPECT_EQ(block_.GetComponentTypeFromIndex(0), 0);
  EXPECT_EQ(block_.GetComponentTypeFromIndex(3), 50);
  for (const int outside : {-1, 4, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(block_.GetResultTypeFromIndex(outside), -1);
    EXPECT_EQ(block_.GetComponentTypeFromIndex(outside), -1);
  }
}

TEST_F(ComponentTypes, AreFoundByTheirPosition) {
  EXPECT_EQ(block_.GetComponentIndex(112), 1);
  EXPECT_EQ(block_.GetComponentIndex(121), 3);
  EXPECT_EQ(block_.GetComponentIndex(12), -1);
  EXPECT_EQ(block_.GetComponentIndex(50), -1);
  block_.m_ncoo = 0;
  EXPECT_EQ(block_.GetComponentIndex(112), -1);
}

TEST_F(ComponentTypes, WithoutAVariableAreUnknown) {
  block_.m_variable = nullptr;
  int index = 77;
  EXPECT_EQ(block_.GetResultTypeFromIndex(0), -1);
  EXPECT_EQ(block_.GetComponentTypeFromIndex(0), -1);
  EXPECT_EQ(block_.GetComponentIndex(111), -1);
  EXPECT_EQ(block_.GetComponentType(111, &index), -1);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(block_.GetBlockComponentType(0), -1);
  EXPECT_EQ(block_.GetVariableComputeTypeFrmIId(11, true), -1);
  auto measure = static_cast<_ORVComputeType>(77);
  int count = 77;
  int type = 77;
  EXPECT_EQ(block_.GetResultTypeToReadAllComponent(111, measure, count, type), 1);
  EXPECT_EQ(static_cast<int>(measure), 0);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(type, 111);
}

TEST_F(ComponentTypes, OfAHandleAreItsMeasureAndComponent) {
  int index = 77;
  EXPECT_EQ(block_.GetComponentType(113, &index), 0);
  EXPECT_EQ(index, 2);
  EXPECT_EQ(block_.GetComponentType(121, &index), 50);
  EXPECT_EQ(index, 0);  // a computed one has no component
  EXPECT_EQ(block_.GetComponentType(13, &index), -1);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(block_.GetComponentType(113, nullptr), 0);
}

TEST_F(ComponentTypes, OfABlockWithoutComponentsAreUnknown) {
  block_.m_ncoo = 0;
  int index = 77;
  EXPECT_EQ(block_.GetComponentType(113, &index), -1);
  EXPECT_EQ(index, -1);
}

TEST_F(ComponentTypes, OfAHandleDoNotForceTheComponent) {
  variable_.Add(31, 2, 72);
  int index = 77;
  EXPECT_EQ(block_.GetComponentType(131, &index), 72);
  EXPECT_EQ(index, 2);
}

TEST_F(ComponentTypes, FromAHostsTablesForceTheComponentOfATensorEntry) {
  const Tables tables(variable_.get());
  constexpr int kIndexes[] = {0, 0, 0, 1, 1, 2, 2, 7};
  for (int i = 0; i < 8; ++i) {
    int index = 77;
    EXPECT_EQ(block_.GetComponentType(501 + i, &index), tables.types[static_cast<std::size_t>(i)]);
    EXPECT_EQ(index, kIndexes[i]);
  }
  int index = 77;
  EXPECT_EQ(block_.GetComponentType(113, &index), -1);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(block_.GetResultTypeFromIndex(7), 508);
  EXPECT_EQ(block_.GetComponentTypeFromIndex(7), 50);
  EXPECT_EQ(block_.GetComponentIndex(504), 3);
}

TEST_F(ComponentTypes, OfTheBlockNeedAHostsTables) { EXPECT_EQ(block_.GetBlockComponentType(0), -1); }

TEST_F(ComponentTypes, OfTheBlockNeedBothOfAHostsTables) {
  Tables tables(variable_.get());
  EXPECT_EQ(block_.GetBlockComponentType(0), 0);
  variable_->m_pCompType = nullptr;
  EXPECT_EQ(block_.GetBlockComponentType(0), -1);
  variable_->m_pCompType = tables.types.data();
  variable_->m_pCompEid = nullptr;
  EXPECT_EQ(block_.GetBlockComponentType(0), -1);
}

/// Shape of a variable with the type of its block for a number of components.
struct BlockTypeRow {
  int rank;
  std::size_t components;
  std::int64_t ncoo;
  int type;
};

TEST_F(ComponentTypes, OfTheBlockFollowFromTheShapeOfTheVariable) {
  constexpr BlockTypeRow kRows[] = {
      {0, 1, 1, 0},  {0, 3, 3, 0},  {1, 3, 3, 50}, {1, 3, 4, -1}, {2, 6, 6, 55},
      {2, 6, 3, 51}, {2, 6, 4, -1}, {2, 3, 3, 51}, {2, 3, 6, 55}, {2, 3, 2, -1},
  };
  for (const BlockTypeRow& row : kRows) {
    SCOPED_TRACE(std::to_string(row.rank) + " " + std::to_string(row.components) + " " + std::to_string(row.ncoo));
    const Tables tables(variable_.get());
    variable_->m_rank = row.rank;
    variable_->SetOriginalCount(row.components);
    block_.m_ncoo = row.ncoo;
    EXPECT_EQ(block_.GetBlockComponentType(0), row.type);
    EXPECT_EQ(block_.GetBlockComponentType(1), row.type);
  }
  const Tables tables(variable_.get());
  variable_->m_rank = 1;
  for (const std::int64_t ncoo : {0, -3}) {
    block_.m_ncoo = ncoo;
    EXPECT_EQ(block_.GetBlockComponentType(0), -1);
  }
}

TEST_F(ComponentTypes, OfTheBlockAreThoseOfItsEntriesOnly) {
  const Tables tables(variable_.get());
  variable_->m_rank = 1;
  variable_->SetOriginalCount(3);
  EXPECT_EQ(block_.GetBlockComponentType(7), 50);
  for (const int outside : {8, -1, 2147483647}) EXPECT_EQ(block_.GetBlockComponentType(outside), -1);
}

TEST_F(ComponentTypes, OfAVariableAreFoundByEitherId) {
  EXPECT_EQ(block_.GetVariableComputeTypeFrmIId(21, true), 50);
  EXPECT_EQ(block_.GetVariableComputeTypeFrmIId(121, false), 50);
  EXPECT_EQ(block_.GetVariableComputeTypeFrmIId(11, true), 0);
  EXPECT_EQ(block_.GetVariableComputeTypeFrmIId(121, true), -1);
}

struct MeasureRow {
  int measure;
  int components;
  int values;
  int to_read;  ///< components to read; 0 for a measure of no whole value
};

constexpr MeasureRow kMeasures[] = {
    {49, 0, 0, 0}, {50, 3, 3, 3}, {51, 3, 3, 3}, {52, 3, 3, 3}, {53, 3, 3, 3}, {54, 3, 3, 3}, {55, 6, 6, 6},
    {56, 6, 6, 6}, {57, 6, 6, 6}, {58, 6, 6, 6}, {59, 6, 6, 6}, {60, 6, 6, 6}, {61, 6, 6, 6}, {62, 6, 6, 6},
    {63, 6, 3, 6}, {64, 6, 3, 6}, {65, 6, 6, 6}, {66, 6, 6, 6}, {67, 3, 3, 3}, {68, 0, 0, 0}, {69, 0, 0, 0},
    {70, 0, 0, 0}, {71, 3, 3, 3}, {72, 0, 0, 0}, {78, 0, 0, 0}, {0, 0, 0, 0},  {-1, 0, 0, 0},
};

TEST_F(ComponentTypes, CountTheInputsOfAMeasure) {
  for (const MeasureRow& row : kMeasures) {
    SCOPED_TRACE(row.measure);
    int count = 77;
    EXPECT_EQ(block_.GetNumCompForCompution(static_cast<_ORVComputeType>(row.measure), count), row.values);
    EXPECT_EQ(count, row.components);
  }
}

TEST_F(ComponentTypes, CountWhatToReadForAMeasure) {
  for (const MeasureRow& row : kMeasures) {
    SCOPED_TRACE(row.measure);
    VariableWithHandles variable("V", 6);
    variable.Add(1, 0);
    variable.AddComputed(2, row.measure, {{1}});
    block_.m_variable = variable.get();
    auto measure = static_cast<_ORVComputeType>(77);
    int count = 77;
    int type = 77;
    EXPECT_EQ(block_.GetResultTypeToReadAllComponent(101, measure, count, type), row.to_read == 0 ? 1 : 0);
    EXPECT_EQ(static_cast<int>(measure), row.to_read == 0 ? 0 : row.measure);
    EXPECT_EQ(count, row.to_read);
    EXPECT_EQ(type, 101);
  }
}

TEST_F(ComponentTypes, CountWhatToReadFromTheTypeOnwards) {
  variable_.AddComputed(22, 56, {{11}});
  auto measure = static_cast<_ORVComputeType>(77);
  int count = 77;
  int type = 77;
  EXPECT_EQ(block_.GetResultTypeToReadAllComponent(112, measure, count, type), 0);
  EXPECT_EQ(static_cast<int>(measure), 50);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(type, 112);
  EXPECT_EQ(block_.GetResultTypeToReadAllComponent(122, measure, count, type), 0);
  EXPECT_EQ(static_cast<int>(measure), 56);
  EXPECT_EQ(count, 6);
  variable_.Add(40, 2);
  EXPECT_EQ(block_.GetResultTypeToReadAllComponent(140, measure, count, type), 1);
  EXPECT_EQ(static_cast<int>(measure), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(type, 140);
  EXPECT_EQ(block_.GetResultTypeToReadAllComponent(12, measure, count, type), 1);
  EXPECT_EQ(count, 1);
}

TEST_F(ComponentTypes, KindOfMotionComesFromTheAssociatedVariableFirst) {
  block_.SetEntityAndVarName("NODE", "accel");
  EXPECT_EQ(block_.GetVariableType(), 0);  // the variable is named "V"
  block_.m_variable = nullptr;
  EXPECT_EQ(block_.GetVariableType(), 3);
  VariableWithHandles velocity("VELO", 3);
  block_.m_variable = velocity.get();
  EXPECT_EQ(block_.GetVariableType(), 2);
}

}  // namespace
