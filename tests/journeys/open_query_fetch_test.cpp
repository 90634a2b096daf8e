// The roads of a post-processor from opening a file to values in memory, as a host sees them: start-up, handles, lookup,
// state index, fetch by handle and by name. What each step does in full is tested beside it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvio/orvio.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;
using testing::ElementsAre;

/// Two states: a speed at nodes in two zones whose counts change, a stress in two layers of shells, complex waves, and
/// coordinates that hold for both.
class RoadToValues : public orv_test::OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  RoadToValues() : model_(GetParam()), filer_(nullptr) {
    const bool grouped = GetParam() == ForgedModel::kSingle;
    Define({.name = "COORDINATE", .key = "XYZ", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}}, grouped);
    Define({.name = "Speed", .key = "V", .ncoo = 2, .labels = {"U", "W"}}, grouped);
    Define({.name = "Stress", .key = "S", .ncoo = 3, .rank = 2, .tensor = 1, .labels = {"11", "22", "12"}}, grouped);
    Define({.name = "Wave", .key = "C", .labels = {"A"}}, grouped);
    if (grouped) {
      model_.variable({.name = "TIME", .key = "TIME"}).group("INDEX", 1, {{"TIME", 1, 0}});
      model_.index_types_of_group("INDEX", 1);
    } else {
      model_.index_types({"TIME"});
    }
    Fill();
    filer_ = ORVFiler(model_.path().c_str());
    const orv_test::Messages messages;
    int next_id = 1;
    EXPECT_EQ(filer_.InitReader(next_id), 0);
    EXPECT_THAT(messages.all(), testing::IsEmpty());
  }

  void Define(const orv_test::ForgedVariable& variable, bool grouped) {
    model_.variable(variable);
    if (grouped) model_.group(variable.name, variable.ncoo, {{variable.key, variable.ncoo, 0}});
  }

  void Fill() {
    model_.in_constant({.variable = "COORDINATE", .nent = 2, .ncoo = 3, .values = {1, 2, 3, 4, 5, 6}, .ids = {7, 8}});
    const auto speed = [&](int state, int zone, std::vector<int> ids, std::vector<float> values) {
      ForgedValues result{.variable = "Speed", .nent = static_cast<int>(ids.size()), .ncoo = 2, .zoneid = zone};
      result.values = std::move(values);
      result.ids = std::move(ids);
      result.index = {0.5F * static_cast<float>(state)};
      result.group_name = "zone" + std::to_string(zone);
      model_.in_state(state, result);
    };
    speed(1, 1, {1, 2}, {10, 11, 12, 13});
    speed(1, 2, {5}, {20, 21});
    speed(2, 1, {1, 2, 3}, {30, 31, 32, 33, 34, 35});
    speed(2, 2, {5}, {40, 41});
    for (const int state : {1, 2}) {
      const float base = 100.0F * static_cast<float>(state);
      ForgedValues stress{.kind = 1100, .etyp = "SHELL", .variable = "Stress", .nent = 1, .ncoo = 3, .numl = 2};
      stress.values = {base, base + 1, base + 2, base + 3, base + 4, base + 5};
      stress.ids = {61};
      stress.index = {0.5F * static_cast<float>(state)};
      model_.in_state(state, stress);
      ForgedValues wave{.kind = 1001, .variable = "Wave", .nent = 1};
      wave.values = {base, -base};
      wave.ids = {9};
      wave.index = {0.5F * static_cast<float>(state)};
      model_.in_state(state, wave);
    }
  }

  /// A fetch at a state whose answer is looked at and freed.
  struct Answer {
    int status = -1;
    std::vector<float> values;
    std::vector<int> ids;
  };
  Answer Fetch(int state, std::vector<ORVResult*>& blocks, int handle, const char* name, int layer = 0, int mode = 0) {
    ORVResultValuesBase<float, int> request;
    request.m_state = state;
    request.m_wantIds = 1;
    request.m_layer = layer;
    request.m_fetchMode = mode;
    Answer answer;
    answer.status = filer_.GetValues(request, blocks, handle, -1, name);
    answer.values.assign(request.m_values, request.m_values + request.m_valueCount);
    answer.ids.assign(request.m_ids, request.m_ids + request.m_idCount);
    request.DeleteAllocation(true);
    return answer;
  }

  int Handle(const char* name) {
    const ORVExtVar* handle = filer_.GetExtVariable(name);
    EXPECT_NE(handle, nullptr) << name;
    return handle ? handle->GetIID() : -1;
  }
  /// Name of a component's handle in either layout.
  std::string Component(const std::string& variable, const std::string& label) {
    return GetParam() == ForgedModel::kSingle ? variable + "_" + label : label;
  }
  std::vector<ORVResult*> Blocks(const char* key, const char* name) {
    std::vector<const char*> names = {GetParam() == ForgedModel::kSingle ? key : name};
    std::vector<ORVResult*> blocks;
    filer_.GetResultBlks(names, blocks, -1, 1, false);
    return blocks;
  }
  const char* Identity(const char* key, const char* name) { return GetParam() == ForgedModel::kSingle ? key : name; }

  ForgedModel model_;
  ORVFiler filer_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, RoadToValues, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit));

TEST_P(RoadToValues, ByHandleDeliversOneComponentOfAllZonesAtAState) {
  std::vector<ORVResult*> blocks = Blocks("V", "Speed");
  ASSERT_EQ(blocks.size(), 2U);
  const Answer answer = Fetch(2, blocks, Handle(Component("Speed", "W").c_str()), nullptr);
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.values, ElementsAre(31, 33, 35, 41));
  EXPECT_THAT(answer.ids, ElementsAre(1, 2, 3, 5));
}

TEST_P(RoadToValues, ByNameDeliversAWholeVariableAtAState) {
  std::vector<ORVResult*> blocks = Blocks("V", "Speed");
  const Answer answer = Fetch(1, blocks, -1, Identity("V", "Speed"));
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.values, ElementsAre(10, 11, 12, 13, 20, 21));
  EXPECT_THAT(answer.ids, ElementsAre(1, 2, 5));
}

TEST_P(RoadToValues, ByHandleOfAMeasureDeliversItsInputs) {
  std::vector<ORVResult*> blocks = Blocks("S", "Stress");
  const int handle = Handle("Stress_First Princ.");
  EXPECT_THAT(Fetch(1, blocks, handle, nullptr).values, ElementsAre(100, 101, 102));
  EXPECT_THAT(Fetch(1, blocks, handle, nullptr, 1).values, ElementsAre(103, 104, 105));
  EXPECT_THAT(Fetch(2, blocks, handle, nullptr, ORV_ALL_LAYERS).values, ElementsAre(200, 201, 202, 203, 204, 205));
  EXPECT_THAT(Fetch(2, blocks, handle, nullptr, ORV_ALL_LAYERS, 1).values, ElementsAre(200, 203, 201, 204, 202, 205));
}

TEST_P(RoadToValues, ToConstantValuesLeadsFromEveryState) {
  std::vector<ORVResult*> blocks = Blocks("XYZ", "COORDINATE");
  for (const int state : {1, 2}) {
    const Answer answer = Fetch(state, blocks, Handle(Component("COORDINATE", "Y").c_str()), nullptr);
    EXPECT_THAT(answer.values, ElementsAre(2, 5));
    EXPECT_THAT(answer.ids, ElementsAre(7, 8));
  }
}

TEST_P(RoadToValues, ToComplexValuesEndsWithPairs) {
  std::vector<ORVResult*> blocks = Blocks("C", "Wave");
  EXPECT_THAT(Fetch(2, blocks, -1, Identity("C", "Wave")).values, ElementsAre(200, -200));
}

TEST_P(RoadToValues, OfAStateThatIsNotThereHasNoAnswer) {
  std::vector<ORVResult*> blocks = Blocks("V", "Speed");
  const Answer answer = Fetch(3, blocks, Handle(Component("Speed", "U").c_str()), nullptr);
  EXPECT_EQ(answer.status, 1);
  EXPECT_TRUE(answer.values.empty());
}

TEST_P(RoadToValues, FindsAStateByItsTime) {
  int column = -1;
  ASSERT_TRUE(filer_.IsIndexExist("time", column));
  EXPECT_EQ(column, 0);
  std::vector<float> times;
  EXPECT_EQ(filer_.GetIndexValues(filer_.GetStateIndex(false), column, times), 2);
  const float wanted = 1;
  hid_t row = -1;
  EXPECT_TRUE(filer_.GetStateIndex(false)->FindIndexValLocation(1, &wanted, nullptr, row));
  EXPECT_EQ(row, 1);
}

TEST_P(RoadToValues, OfAQuantityByItsOwnBlockFindsItsOtherZones) {
  std::vector<ORVResult*> all = Blocks("V", "Speed"), same, zone;
  filer_.GetResultBlksFrmResBlk(*all[0], same, false);
  EXPECT_EQ(same, all);
  filer_.GetResultBlksFrmResBlkGivenZoneId(*all[0], zone, 2, false);
  EXPECT_THAT(zone, ElementsAre(all[1]));
}

TEST_P(RoadToValues, CombinesTwoAnswersById) {
  std::vector<ORVResult*> blocks = Blocks("V", "Speed");
  ORVResultValuesBase<float, int> first, second;
  first.m_wantIds = second.m_wantIds = 1;
  first.m_state = second.m_state = 1;
  const int handle = Handle(Component("Speed", "U").c_str());
  ASSERT_EQ(filer_.GetValues(first, blocks, handle, -1, nullptr), 0);
  ASSERT_EQ(filer_.GetValues(second, blocks, handle, -1, nullptr), 0);
  EXPECT_EQ(first.ComputeValues(second, 1, ORV_FETCH_ADD), 0);
  EXPECT_THAT(std::vector<float>(first.m_values, first.m_values + 3), ElementsAre(20, 24, 40));
  first.DeleteAllocation(true);
  second.DeleteAllocation(true);
}

}  // namespace
