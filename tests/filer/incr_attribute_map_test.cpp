// Attributes that are read by the map of the file, which one block makes for all.

#include "filer/incr_attribute_forge.h"

namespace orv_test {
namespace {

/// NODE is full in states 1 and 4 and changes in 2, 3 and 5.
class IncrAttributeOfTheFile : public IncrAttributeTest {
 protected:
  IncrAttributeOfTheFile() {
    Add(1, {.ids = {1, 2}, .integers = {10, 20}, .flag = 0});
    Add(2, {.ids = {2}, .integers = {22}});
    Add(3, {.ids = {1, 9}, .integers = {13, 93}});
    Add(4, {.ids = {1, 3}, .integers = {14, 34}, .flag = 0});
    Add(5, {.ids = {3}, .integers = {35}});
  }

  void AddShell(int state, ForgedAttribute attribute) {
    attribute.etyp = "SHELL";
    Add(state, attribute);
  }

  /// The map of the file is made from NODE; what is read then is SHELL.
  void MakeMapAndAskForShell(int met_in) {
    MeetIn(1);
    EXPECT_EQ(ReadByFile(1), 0);
    CleanUp();
    std::strcpy(block_.m_etyp, "SHELL");
    if (met_in > 0) MeetIn(met_in);
    if (met_in == 0) block_.SetBlkPath("");
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrAttributeOfTheFile, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrAttributeOfTheFile, IsMadeFromTheFirstBlockAskedAbout) {
  MeetIn(1);
  ASSERT_EQ(ReadByFile(3), 0);
  EXPECT_EQ(Integers(), (Ints{13, 22}));
  ASSERT_EQ(ReadByFile(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 9}));
  ASSERT_EQ(ReadByFile(5), 0);
  EXPECT_EQ(Ids(), (Ints{1, 3}));
  EXPECT_EQ(Integers(), (Ints{14, 35}));
  ASSERT_EQ(ReadByFile(4), 0);
  EXPECT_EQ(Integers(), (Ints{14, 34}));
}

TEST_P(IncrAttributeOfTheFile, ServesBlocksThatLackSomeOfTheStates) {
  AddShell(1, {.ids = {7, 8}, .integers = {70, 80}, .flag = 0});
  AddShell(3, {.ids = {8}, .integers = {83}});
  MakeMapAndAskForShell(1);
  ASSERT_EQ(ReadByFile(2), 0);
  EXPECT_EQ(Integers(), (Ints{70, 80}));
  ASSERT_EQ(ReadByFile(3), 0);
  EXPECT_EQ(Integers(), (Ints{70, 83}));
  EXPECT_EQ(ReadByFile(5), 0);  // the map starts at state 4, where the block is not: its own records serve
  EXPECT_EQ(Integers(), (Ints{70, 83}));
}

TEST_P(IncrAttributeOfTheFile, TakesChangesByTheMapWhateverTheRecordsOfTheBlockSay) {
  AddShell(1, {.ids = {7}, .integers = {70}, .flag = 0});
  AddShell(2, {.ids = {7, 8}, .integers = {72, 82}, .flag = 0});
  MakeMapAndAskForShell(1);
  ASSERT_EQ(ReadByFile(2, true), 0);
  EXPECT_EQ(Ids(), (Ints{7, 8}));
  EXPECT_EQ(Integers(), (Ints{72, 82}));
  ASSERT_EQ(ReadByFile(2), 0);
  EXPECT_EQ(Ids(), (Ints{7}));
  EXPECT_EQ(Integers(), (Ints{72}));
}

TEST_P(IncrAttributeOfTheFile, GivesWayToTheRecordsOfABlockThatIsNotAtItsFullState) {
  AddShell(2, {.ids = {7, 8}, .integers = {70, 80}, .flag = 0});
  AddShell(3, {.ids = {8}, .integers = {83}});
  MakeMapAndAskForShell(2);
  ASSERT_EQ(ReadByFile(3), 0);
  EXPECT_EQ(Integers(), (Ints{70, 83}));
  ASSERT_EQ(ReadByFile(2), 0);  // full by its own records
  EXPECT_EQ(Integers(), (Ints{70, 80}));
}

TEST_P(IncrAttributeOfTheFile, GivesWayToTheRecordsOfABlockThatIsEmptyAtItsFullState) {
  AddShell(1, {.ids = {7}, .integers = {70}, .flag = 0});
  file_.at(PartsOf(1, "SHELL").header).integer("nent", 0);
  AddShell(2, {.ids = {7, 8}, .integers = {72, 82}, .flag = 0});
  AddShell(3, {.ids = {8}, .integers = {83}});
  MakeMapAndAskForShell(2);
  ASSERT_EQ(ReadByFile(3), 0);
  EXPECT_EQ(Integers(), (Ints{72, 83}));
}

TEST_P(IncrAttributeOfTheFile, GivesWayToTheRecordsOfABlockWhoseHeaderIsDamagedAtItsFullState) {
  AddShell(1, {.ids = {7}, .integers = {70}, .flag = 0});
  file_.at(PartsOf(1, "SHELL").header).drop("nent");
  AddShell(2, {.ids = {7, 8}, .integers = {72, 82}, .flag = 0});
  AddShell(3, {.ids = {8}, .integers = {83}});
  MakeMapAndAskForShell(2);
  ASSERT_EQ(ReadByFile(3), 0);
  EXPECT_EQ(Integers(), (Ints{72, 83}));
}

TEST_P(IncrAttributeOfTheFile, DoesNotGiveWayAtAFullState) {
  AddShell(1, {.ids = {7}, .integers = {70}, .flag = 0});
  MakeMapAndAskForShell(1);
  EXPECT_EQ(ReadByFile(4), 1);
  ExpectNoArrays();
  EXPECT_EQ(Read(4), 0);
  EXPECT_EQ(Integers(), (Ints{70}));
}

TEST_P(IncrAttributeOfTheFile, HelpsNoBlockThatIsInLaterStatesOnly) {
  AddShell(5, {.ids = {7}, .integers = {70}, .flag = 0});
  MakeMapAndAskForShell(5);
  EXPECT_EQ(ReadByFile(3), 1);
  ExpectNoArrays();
}

TEST_P(IncrAttributeOfTheFile, GetsTheChangesOfItsLastStateTwiceWhereTheAskedOneLacksIt) {
  AddShell(1, {.ids = {7, 8}, .integers = {70, 80}, .flag = 0});
  AddShell(2, {.ids = {9}, .integers = {92}});
  MakeMapAndAskForShell(0);
  ASSERT_EQ(ReadByFile(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{7, 8, 9}));
  EXPECT_EQ(Integers(), (Ints{70, 92, 92}));
}

TEST_P(IncrAttributeOfTheFile, CannotBeMadeFromABlockWithoutRecords) {
  file_.at(InState(2, "attributes/SHELL"));
  std::strcpy(block_.m_etyp, "SHELL");
  MeetIn(1);
  EXPECT_EQ(ReadByFile(2), 1);
  ExpectNoArrays();
  std::strcpy(block_.m_etyp, "NODE");
  MeetIn(1);
  EXPECT_EQ(ReadByFile(2), 0);  // the next one makes it
  EXPECT_EQ(Integers(), (Ints{10, 22}));
}

}  // namespace
}  // namespace orv_test
