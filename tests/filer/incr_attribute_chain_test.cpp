// An attribute is made whole from the states of its chain. Entities that changes add are in incr_attribute_append_test,
// damage in incr_attribute_damage_test, the map of the file in incr_attribute_map_test.

#include "filer/incr_attribute_forge.h"

namespace orv_test {
namespace {

class IncrAttribute : public IncrAttributeTest {};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrAttribute, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrAttribute, OfAFullStateIsThatOfTheState) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {3}, .integers = {30}, .flag = 0});
  MeetIn(1);
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2}));
  EXPECT_EQ(Integers(), (Ints{10, 20}));
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Ids(), (Ints{3}));
  EXPECT_EQ(Integers(), (Ints{30}));
}

TEST_P(IncrAttribute, TakesTheChangesUpToTheStateInTheirOrder) {
  Add(1, {.ids = {1, 2, 3}, .integers = {10, 20, 30}, .flag = 0});
  Add(2, {.ids = {3, 2}, .integers = {31, 21}});
  Add(3, {.ids = {2}, .integers = {22}});
  Add(4, {.ids = {1}, .integers = {13}});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{10, 21, 31}));
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{10, 22, 31}));
  EXPECT_EQ(Ids(), (Ints{1, 2, 3}));
  ASSERT_EQ(Read(4), 0);
  EXPECT_EQ(Integers(), (Ints{13, 22, 31}));
}

TEST_P(IncrAttribute, StartsAnewAtEachFullState) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {1}, .integers = {11}});
  Add(3, {.ids = {5, 2, 1}, .integers = {53, 23, 13}, .flag = 0});
  Add(4, {.ids = {2}, .integers = {24}});
  Add(5, {.ids = {6}, .integers = {65}, .flag = 0});
  MeetIn(1);
  ASSERT_EQ(Read(4), 0);
  EXPECT_EQ(Ids(), (Ints{5, 2, 1}));
  EXPECT_EQ(Integers(), (Ints{53, 24, 13}));
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{11, 20}));
  ASSERT_EQ(Read(5), 0);
  EXPECT_EQ(Integers(), (Ints{65}));
}

TEST_P(IncrAttribute, TakesSeveralIntegersAnEntityAndNegativeIds) {
  Add(1, {.ids = {-5, 5, 300000}, .integers = {1, 2, 3, 4, 5, 6}, .flag = 0});
  Add(2, {.ids = {300000, -5}, .integers = {7, 8, 9, 10}});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(block_.m_nuid, 2);
  EXPECT_EQ(Integers(), (Ints{9, 10, 3, 4, 7, 8}));
}

TEST_P(IncrAttribute, KeepsTheHeaderAndTheTitlesOfTheFullState) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0, .titles = {"one", "two"}});
  Add(2, {.ids = {2}, .integers = {21}, .titles = {"TWO"}});
  HeaderOf(2).integer("nindex", 1);
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{10, 21}));
  EXPECT_STREQ(block_.m_title, "one");
  EXPECT_STREQ(block_.m_title + 8, "two");
  EXPECT_EQ(block_.m_length, 8);
  EXPECT_EQ(block_.m_nent, 2);
  EXPECT_FALSE(block_.IsIncremental());
  EXPECT_EQ(block_.m_entidType, ORV_INT);
}

TEST_P(IncrAttribute, TakesChangesOfOtherStoredTypes) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {2}, .integers = {21}});
  DataOf(2).dataset<std::int64_t>("entid", {1}, {2}).dataset<std::int64_t>("uid", {1, 1}, {21});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{10, 21}));
}

TEST_P(IncrAttribute, ChangesTheLastOfSeveralEntitiesWithOneId) {
  Add(1, {.ids = {4, 4, 5}, .integers = {1, 2, 3}, .flag = 0});
  Add(2, {.ids = {4}, .integers = {9}});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{1, 9, 3}));
}

// ---- The order of the states

TEST_P(IncrAttribute, FollowsTheIdentifiersAndNotTheNumbersOfTheStates) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0, .identifier = 10});
  Add(2, {.ids = {1}, .integers = {12}, .identifier = 30});
  Add(3, {.ids = {1, 2}, .integers = {13, 23}, .identifier = 20});
  Add(4, {.ids = {5}, .integers = {54}, .identifier = 40});
  MeetIn(1);
  ASSERT_EQ(Read(4), 0);
  EXPECT_EQ(Integers(), (Ints{12, 23}));  // 3 before 2
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{13, 23}));
}

TEST_P(IncrAttribute, LeavesOutStatesAboveTheOneAskedFor) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0, .identifier = 10});
  Add(2, {.ids = {1}, .integers = {12}, .identifier = 30});
  Add(3, {.ids = {1, 2}, .integers = {13, 23}, .identifier = 20});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{12, 20}));
}

TEST_P(IncrAttribute, StartsAtAFullStateWhateverItsNumber) {
  Add(1, {.ids = {1}, .integers = {11}, .identifier = 20});
  Add(2, {.ids = {1, 2}, .integers = {12, 22}, .flag = 0, .identifier = 10});
  MeetIn(1);
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2}));
  EXPECT_EQ(Integers(), (Ints{11, 22}));
}

TEST_P(IncrAttribute, WithoutAFullStateStartsAtTheFirstOne) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}});
  Add(2, {.ids = {2}, .integers = {21}});
  Add(3, {.ids = {1}, .integers = {12}});
  MeetIn(1);
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(Integers(), (Ints{10, 20}));
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{12, 21}));
}

// ---- States without the block, or without a record

TEST_P(IncrAttribute, WhereAStateLacksItIsThatOfTheClosestEarlierOne) {
  AddState(1);
  Add(2, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  AddState(3);
  Add(4, {.ids = {2}, .integers = {24}});
  AddState(5);
  Add(6, {.ids = {1}, .integers = {16}});
  MeetIn(2);
  EXPECT_EQ(Read(1), 1);
  ExpectNoArrays();
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{10, 20}));
  ASSERT_EQ(Read(5), 0);
  EXPECT_EQ(Integers(), (Ints{10, 24}));
  ASSERT_EQ(Read(6), 0);
  EXPECT_EQ(Integers(), (Ints{16, 24}));
  ASSERT_EQ(Read(99), 0);
  EXPECT_EQ(Integers(), (Ints{16, 24}));
}

TEST_P(IncrAttribute, OfAStateWithoutARecordTakesItsChangesAfterThoseOfTheRecord) {
  Add(1, {.ids = {1, 2, 3}, .integers = {10, 20, 30}, .flag = 0});
  Add(2, {.ids = {1, 2}, .integers = {12, 22}});
  Add(3, {.ids = {2}, .integers = {23}, .identifier = 2});  // the first state of an identifier counts
  MeetIn(1);
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{12, 23, 30}));
}

TEST_P(IncrAttribute, OfAStateWithoutARecordAfterAFullOneIsThatOfTheFullOne) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  Add(2, {.ids = {1}, .integers = {12}, .identifier = 1});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{10}));
}

TEST_P(IncrAttribute, OfAStateWithoutARecordAfterOneThatStandsAloneTakesItsOwnChanges) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}});
  Add(2, {.ids = {1}, .integers = {12}, .identifier = 1});
  MeetIn(1);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{12, 20}));
}

// ---- Blocks that were not met before

TEST_P(IncrAttribute, NotMetBeforeIsLookedForFromTheStateDown) {
  Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
  Add(2, {.ids = {2}, .integers = {22}});
  Add(3, {.ids = {1}, .integers = {13}});
  AddState(4);
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{10, 22}));
  block_.SetBlkPath("");
  ASSERT_EQ(Read(4), 0);
  EXPECT_EQ(Integers(), (Ints{13, 22}));
  EXPECT_TRUE(block_.IsSingleStatePath());
  block_.SetBlkPath("");
  ASSERT_EQ(Read(INT32_MAX), 0);
  EXPECT_EQ(Integers(), (Ints{13, 22}));
}

TEST_P(IncrAttribute, NotMetBeforeIsPassedOverWhereItsHeaderCannotBeRead) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  Add(2, {.ids = {1}, .integers = {12}});
  Add(3, {.ids = {1}, .integers = {13}});
  HeaderOf(3).drop("nent");
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Integers(), (Ints{12}));
}

TEST_P(IncrAttribute, NotMetBeforeIsNotLookedForInTheFirstState) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  AddState(2);
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(Read(2), 1);
  ExpectNoArrays();
  EXPECT_EQ(block_.m_nent, 0);
  MeetIn(1);
  EXPECT_EQ(Read(1), 0);
}

TEST_P(IncrAttribute, IsNotReadBelowTheFirstState) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  MeetIn(1);
  for (const int state : {0, -1, INT32_MIN}) EXPECT_EQ(Read(state), 1);
  block_.SetBlkPath("");
  for (const int state : {0, -1, INT32_MIN}) EXPECT_EQ(Read(state), 1);
  ExpectNoArrays();
}

// ---- What is not served

TEST_P(IncrAttribute, WithSeveralIndexColumnsIsNotRead) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  HeaderOf(1).integer("nindex", 2);
  file_.at(PartsOf(1).index).dataset<std::int32_t>("indexident", {2}, {1, 2}).dataset<float>("indexval", {2}, {1, 2});
  MeetIn(1);
  EXPECT_EQ(Read(1), 1);
  ExpectNoArrays();
}

TEST_P(IncrAttribute, OfTheConstantSectionIsNotRead) {
  Add(2, {.ids = {1}, .integers = {10}, .flag = 0});
  AddEntities(file_, kAttributes, "NODE", GetParam());
  block_.SetBlkPath("/post/constant/attributes/NODE");
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(Read(2), 1);  // found in the state, but its path says where it belongs
  ExpectNoArrays();
}

TEST_P(IncrAttribute, IsTheOnlyKindOfBlockThatIsRead) {
  Add(1, {.ids = {1}, .integers = {10}, .flag = 0});
  Add(2, {.ids = {1}, .integers = {12}});
  AddEntities(file_, InState(2, "identifiers"), "NODE", GetParam());
  (void)file_.path();
  ORVIdentifiers identifiers;
  std::strcpy(identifiers.m_etyp, "NODE");
  for (const char* path : {"", "/post/singlestate/state000000000001/identifiers/NODE"}) {
    identifiers.SetBlkPath(std::string(path));
    EXPECT_EQ(Filer().ReadIncrDataValues(&identifiers, 2, true, false), 1);
    EXPECT_EQ(Filer().ReadIncrDataValues(&identifiers, 2, true, true), 1);
    EXPECT_EQ(identifiers.m_nent, 0);
    EXPECT_EQ(identifiers.m_entid, nullptr);
  }
  ORVCollector collector;
  collector.SetBlkPath("/post/singlestate/state000000000001/attributes/NODE");
  EXPECT_EQ(Filer().ReadIncrDataValues(&collector, 2, true, false), 1);
  EXPECT_EQ(Filer().ReadIncrDataValues(nullptr, 2, true, false), 1);
}

TEST_P(IncrAttribute, NeedsAFile) {
  MeetIn(1);
  for (const bool map_of_file : {false, true}) {
    EXPECT_EQ(ORVFiler(nullptr).ReadIncrDataValues(&block_, 1, true, map_of_file), 1);
    EXPECT_EQ(ORVFiler(TempPath("missing.orv").c_str()).ReadIncrDataValues(&block_, 2, true, map_of_file), 1);
  }
  EXPECT_EQ(Read(1), 1);  // a file without states
  ExpectNoArrays();
}

}  // namespace
}  // namespace orv_test
