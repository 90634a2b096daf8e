// Chains of values of which something is damaged or missing: a change that cannot be read is left out, a full state that
// cannot be read ends the call.

#include <gmock/gmock.h>

#include <functional>

#include "filer/incr_values_forge.h"
#include "support/messages.h"

namespace orv_test {
namespace {

/// State 1 is full, states 2 and 3 change some nodes.
class IncrValuesDamage : public IncrValuesTest {
 protected:
  IncrValuesDamage() {
    AddState1();
    AddState2();
    Add(3, {.ids = {20}, .values = {23}});
  }

  void AddState1() { Add(1, {.ids = {10, 20, 30}, .values = {1, 2, 3}, .flag = 0}); }
  void AddState2() { Add(2, {.ids = {10, 20}, .values = {12, 22}}); }
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrValuesDamage, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

TEST_P(IncrValuesDamage, OfAChangeLeavesItOut) {
  const std::function<void()> damages[] = {
      [this] { PartOf(2, "data").retype("res"); },
      [this] { PartOf(2, "data").drop("res"); },
      [this] { PartOf(2, "data").retype("entid"); },
      [this] { PartOf(2, "data").drop("entid"); },
      [this] { PartOf(2, "header").integer("nent", 3); },
      [this] { PartOf(2, "header").integer("nent", 0); },
      [this] { PartOf(2, "header").integer("nent", -1); },
      [this] { PartOf(2, "header").integer("nent", INT64_MAX); },
      [this] { PartOf(2, "header").integer("nent", INT64_MIN); },
      [this] { PartOf(2, "header").integer("nent", std::int64_t{1} << 31); },
      [this] { PartOf(2, "header").drop("nent"); },
  };
  Open();
  ASSERT_EQ(Fetch(3), 0);
  ASSERT_EQ(values_.values(), (Floats{12, 23, 3}));
  int number = 0;
  for (const auto& damage : damages) {
    SCOPED_TRACE(number++);
    AddState2();
    damage();
    Open();
    ASSERT_EQ(Fetch(3), 0);
    EXPECT_EQ(values_.values(), (Floats{1, 23, 3}));
    EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
  }
}

// ---- Blocks that are stored without ids: the answer has 0 for theirs, which is an id like any other.

TEST_P(IncrValuesDamage, OfAllIdsOfAChangeLeavesTheEntityOfIdZeroAlone) {
  Add(1, {.ids = {0, 20, 30}, .values = {1, 2, 3}, .flag = 0});
  for (const int state : {2, 3}) PartOf(state, "data").drop("entid");
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3}));
  EXPECT_EQ(values_.ids(), (Ints{0, 20, 30}));
}

TEST_P(IncrValuesDamage, OfAllIdsOfAllStatesLeavesTheFullOneAsItIs) {
  for (const int state : {1, 2, 3}) PartOf(state, "data").drop("entid");
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3}));
  EXPECT_EQ(values_.ids(), (Ints{0, 0, 0}));
}

TEST_P(IncrValuesDamage, OfAllIdsOfTheFullStateLeavesItAsItIs) {
  PartOf(1, "data").drop("entid");
  Add(2, {.ids = {0, 20}, .values = {12, 22}});
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3}));
}

TEST_P(IncrValuesDamage, OfAllIdsOfOneBlockLeavesTheOthersTheirChanges) {
  const ForgedChange points = {.ids = {40, 50}, .values = {4, 5}, .flag = 0, .etyp = "POINT"};
  const auto ids_of_points = [this, &points](int state) -> ForgedFile& {
    return model_.file().at(model_.Part(BlockOf(state, points), "data"));
  };
  Add(1, {.ids = {0, 20, 50}, .values = {1, 2, 3}, .flag = 0});
  Add(1, points);
  ids_of_points(1).drop("entid");
  Add(2, {.ids = {0}, .values = {12}});
  Add(2, {.ids = {50}, .values = {52}, .etyp = "POINT"});
  Add(3, {.ids = {20}, .values = {23}});
  PartOf(3, "data").drop("entid");
  Add(3, {.ids = {50, 0}, .values = {53, 13}, .etyp = "POINT"});
  for (const int by_components : {0, 1}) {
    Open();
    values_.m_fetchMode = by_components;
    ASSERT_EQ(Fetch(2), 0);
    EXPECT_EQ(values_.ids(), (Ints{0, 20, 50, 0, 0}));
    EXPECT_EQ(values_.values(), (Floats{12, 2, 52, 4, 5}));
    ASSERT_EQ(Fetch(3), 0);
    EXPECT_EQ(values_.values(), (Floats{13, 2, 53, 4, 5}));
  }
}

// ---- Full states

TEST_P(IncrValuesDamage, OfTheFullStateEndsTheCall) {
  const std::function<void()> damages[] = {
      [this] { PartOf(1, "data").retype("entid"); },
      [this] { PartOf(1, "data").retype("res"); },
      [this] { PartOf(1, "data").drop("res"); },
  };
  int number = 0;
  for (const auto& damage : damages) {
    SCOPED_TRACE(number++);
    AddState1();
    Open();
    ASSERT_EQ(Fetch(3), 0);
    damage();
    Open();
    EXPECT_EQ(Fetch(3), 1);
    ExpectNoAnswer();
  }
}

TEST_P(IncrValuesDamage, AFullStateWithoutEntitiesEndsTheCall) {
  PartOf(2, "header").drop("indexic");
  Open();
  ASSERT_EQ(Fetch(3), 0);
  ASSERT_EQ(values_.values(), (Floats{12, 23}));
  PartOf(2, "header").integer("nent", 0);
  Open();
  EXPECT_EQ(Fetch(3), 1);
  EXPECT_EQ(values_.m_state, 3);
  ExpectNoAnswer();
}

TEST_P(IncrValuesDamage, IsToldByTheAnswerAlone) {
  const auto fetch_quietly = [this] {
    Open();
    const Messages messages;
    const int status = Fetch(3);
    EXPECT_THAT(messages.all(), ::testing::IsEmpty());
    return status;
  };
  PartOf(2, "data").retype("entid");
  EXPECT_EQ(fetch_quietly(), 0);
  PartOf(1, "data").retype("res");
  EXPECT_EQ(fetch_quietly(), 1);
  PartOf(1, "index").drop("indexident");
  EXPECT_EQ(fetch_quietly(), 1);
}

TEST_P(IncrValuesDamage, OfTheIndexMeansThatThereIsNoMap) {
  PartOf(1, "header").integer("nindex", 2);
  PartOf(1, "index").dataset<std::int32_t>("indexident", {2}, {1, 2}).dataset<float>("indexval", {2}, {1, 2});
  Open();
  EXPECT_EQ(Fetch(3), 1);
  ExpectNoAnswer();
  EXPECT_EQ(values_.m_state, 3);
}

TEST_P(IncrValuesDamage, EmptyListsHaveNoAnswer) {
  Open();
  ORVResult* const block = blocks_.at(0);
  blocks_ = {};
  EXPECT_EQ(Fetch(3), 1);
  blocks_ = {nullptr, block};
  EXPECT_EQ(Fetch(3), 1);
  ExpectNoAnswer();
  blocks_ = {block, nullptr};
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 23, 3}));
}

TEST_P(IncrValuesDamage, AMapIsNotMadeFromAConstantBlock) {
  model_.in_constant({.etyp = "POINT", .variable = "MASS", .nent = 1, .values = {5}, .ids = {50}});
  Open();
  Results constant;
  Results of_states;
  for (ORVResult* block : blocks_) (block->IsConstantBlk() ? constant : of_states).push_back(block);
  ASSERT_EQ(constant.size(), 1U);
  blocks_ = constant;
  EXPECT_EQ(Fetch(3), 1);
  ExpectNoAnswer();
  blocks_ = of_states;
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 23, 3}));
  blocks_ = constant;
  ASSERT_EQ(Fetch(3), 0);  // the map is there now
  EXPECT_EQ(values_.values(), (Floats{5}));
}

TEST_P(IncrValuesDamage, AFilerNeedsAFile) {
  Open();
  const int handle = Handle();
  values_.m_state = 3;
  EXPECT_EQ(ORVFiler(nullptr).GetIncrValues(values_, blocks_, handle, -1, nullptr), 1);
  EXPECT_EQ(ORVFiler(TempPath("missing.orv").c_str()).GetIncrValues(values_, blocks_, handle, -1, nullptr), 1);
  ExpectNoAnswer();
}

}  // namespace
}  // namespace orv_test
