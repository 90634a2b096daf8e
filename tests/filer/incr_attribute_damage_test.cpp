// Chains of attributes of which something is damaged: a change that cannot be read is left out, a base that cannot be read
// ends the call. Leaks are the sanitizers' to find.

#include <gmock/gmock.h>

#include <functional>

#include "filer/incr_attribute_forge.h"
#include "support/messages.h"

namespace orv_test {
namespace {

/// State 1 is full, states 2 and 3 change an entity each.
class IncrAttributeDamage : public IncrAttributeTest {
 protected:
  IncrAttributeDamage() {
    Add(1, {.ids = {1, 2, 3}, .integers = {10, 20, 30}, .flag = 0});
    Add(2, {.ids = {1, 2, 7}, .integers = {12, 22, 72}});
    Add(3, {.ids = {2}, .integers = {23}});
    MeetIn(1);
  }

  void ExpectWithoutState2() {
    ASSERT_EQ(Read(3, true), 0);
    EXPECT_EQ(Ids(), (Ints{1, 2, 3}));
    EXPECT_EQ(Integers(), (Ints{10, 23, 30}));
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrAttributeDamage, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrAttributeDamage, TestsStartFromAFileThatReads) {
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 3, 7}));
  EXPECT_EQ(Integers(), (Ints{12, 23, 30, 72}));
}

TEST_P(IncrAttributeDamage, OfTheIdsOrIntegersOfAChangeLeavesItOut) {
  for (const char* name : {"entid", "uid"}) {
    SCOPED_TRACE(name);
    DataOf(2).retype(name);
    ExpectWithoutState2();
    Add(2, {.ids = {1, 2, 7}, .integers = {12, 22, 72}});
    DataOf(2).drop(name);
    ExpectWithoutState2();
    Add(2, {.ids = {1, 2, 7}, .integers = {12, 22, 72}});
  }
}

TEST_P(IncrAttributeDamage, OfAllIntegersOfTheFullStateLeavesZerosAndAddsIdsAlone) {
  DataOf(1).drop("uid");
  ASSERT_EQ(Read(3), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 3}));
  EXPECT_EQ(Integers(), (Ints{0, 0, 0}));
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 3, 7}));
  EXPECT_EQ(Integers(), (Ints{0, 0, 0, 0}));
  Add(2, {.ids = {1, 7}, .integers = {12, 13, 72, 73}});  // of another number of integers, which are not wanted
  ASSERT_EQ(Read(3, true), 0);
  EXPECT_EQ(Ids(), (Ints{1, 2, 3, 7}));
  EXPECT_EQ(Integers(), (Ints{0, 0, 0, 0}));
}

TEST_P(IncrAttributeDamage, OfTheCountsOfAChangeLeavesItOut) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{4}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
    SCOPED_TRACE(count);
    HeaderOf(2).integer("nent", count);
    ExpectWithoutState2();
  }
  HeaderOf(2).integer("nent", 3);
  for (const std::int64_t count : {INT64_MAX, std::int64_t{1} << 40, std::int64_t{-1}, std::int64_t{0}}) {
    SCOPED_TRACE(count);
    HeaderOf(2).integer("nuid", count);
    ExpectWithoutState2();
  }
  HeaderOf(2).drop("nuid");
  ExpectWithoutState2();
}

TEST_P(IncrAttributeDamage, OfTheHeaderOfAChangeLeavesItOut) {
  HeaderOf(2).drop("etyp");
  ExpectWithoutState2();
}

TEST_P(IncrAttributeDamage, LeavesOutAChangeWithAnotherNumberOfIntegers) {
  Add(2, {.ids = {1, 7}, .integers = {12, 13, 72, 73}});
  ExpectWithoutState2();
}

TEST_P(IncrAttributeDamage, OfTheTitlesOfAChangeDoesNotMatter) {
  HeaderOf(2).integer32("length", 256);  // there are none
  ASSERT_EQ(Read(2), 0);
  EXPECT_EQ(Integers(), (Ints{12, 22, 30}));
}

TEST_P(IncrAttributeDamage, OfTheNameOrKeyInAChangeDoesNotReachTheNextOne) {
  const std::function<void()> damages[] = {
      [this] { HeaderOf(2).integer("block", 250); },
      [this] { HeaderOf(2).integer("block", 200).text("etyp", "OTHER"); },
  };
  for (const auto& damage : damages) {
    damage();
    ExpectWithoutState2();
    EXPECT_STREQ(block_.m_etyp, "NODE");
    EXPECT_EQ(block_.GetKey(), 200);
  }
}

TEST_P(IncrAttributeDamage, OfTheFullStateEndsTheCall) {
  const std::function<void()> damages[] = {
      [this] { DataOf(1).retype("entid"); },
      [this] {
        Add(1, {.ids = {1, 2, 3}, .integers = {10, 20, 30}, .flag = 0}), DataOf(1).retype("uid");
      },
      [this] {
        Add(1, {.ids = {1, 2, 3}, .integers = {10, 20, 30}, .flag = 0}), HeaderOf(1).integer("nent", 4);
      },
      [this] { HeaderOf(1).integer("nent", INT64_MAX); },
      [this] { HeaderOf(1).integer("nent", 0); },
      [this] { HeaderOf(1).drop("nent"); },
  };
  for (const auto& damage : damages) {
    damage();
    for (const bool by_file : {false, true}) {
      EXPECT_EQ(by_file ? ReadByFile(3, true) : Read(3, true), 1);
      ExpectNoArrays();
      block_.m_nent = 0;
    }
  }
}

TEST_P(IncrAttributeDamage, IsToldByTheAnswerAlone) {
  const Messages messages;
  DataOf(2).retype("entid");
  ExpectWithoutState2();
  DataOf(1).retype("entid");
  EXPECT_EQ(Read(3, true), 1);
  EXPECT_EQ(ReadByFile(3, true), 1);
  file_.at(PartsOf(1).index).drop("indexident");
  EXPECT_EQ(Read(3, true), 1);
  EXPECT_THAT(messages.all(), ::testing::IsEmpty());
}

TEST_P(IncrAttributeDamage, OfTheKeyInAStateEndsTheSearchForABlock) {
  HeaderOf(3).integer("block", 400);
  block_.SetBlkPath("");
  EXPECT_EQ(Read(3), 1);
  ExpectNoArrays();
}

}  // namespace
}  // namespace orv_test
