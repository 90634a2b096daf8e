// The process-wide table of entity types: its rows, their numbers and the lookups.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "entity/own_entity_table.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EntityTypeTable : public OrvTest {
 protected:
  const OwnEntityTable table_;
};

TEST_F(EntityTypeTable, IsEmptyAtFirst) {
  EXPECT_THAT(table_.rows(), IsEmpty());
  EXPECT_EQ(orvio::FindEntityType("SHELL"), nullptr);
  EXPECT_THAT(orvio::FindEntityTypes("SHELL"), IsEmpty());
}

TEST_F(EntityTypeTable, TakesARowAsGiven) {
  const ORVEntityTypeMap* row = ORVCheckAppendToEntityMap(250, 7, "Shell");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->m_orvType, 250);
  EXPECT_EQ(row->m_appType, 7);
  EXPECT_STREQ(row->m_name, "Shell");
  EXPECT_THAT(table_.rows(), ElementsAre(row));
}

TEST_F(EntityTypeTable, KeepsItsOwnCopyOfTheName) {
  char name[] = "SHELL";
  const ORVEntityTypeMap* row = ORVCheckAppendToEntityMap(250, 7, name);
  name[0] = 'X';
  EXPECT_STREQ(row->m_name, "SHELL");
}

TEST_F(EntityTypeTable, AnswersTheRowThatIsThereAndChangesNothing) {
  const ORVEntityTypeMap* row = ORVCheckAppendToEntityMap(250, 7, "SHELL");
  EXPECT_EQ(ORVCheckAppendToEntityMap(301, 8, "shell"), row);
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 9, "Shell"), row);
  EXPECT_EQ(row->m_orvType, 250);
  EXPECT_EQ(row->m_appType, 7);
  EXPECT_EQ(table_.rows().size(), 1U);
}

TEST_F(EntityTypeTable, RefusesANullName) {
  EXPECT_EQ(ORVCheckAppendToEntityMap(250, 7, nullptr), nullptr);
  EXPECT_THAT(table_.rows(), IsEmpty());
}

TEST_F(EntityTypeTable, NumbersNewRowsFrom2011) {
  (void)ORVCheckAppendToEntityMap(305, 1, "CTETRA");
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 2, "A")->m_orvType, 2011);
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 3, "B")->m_orvType, 2012);
}

TEST_F(EntityTypeTable, NumbersTheSameNameOnce) {
  const ORVEntityTypeMap* row = ORVCheckAppendToEntityMap(-1, 2, "A");
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 3, "A"), row);
  EXPECT_EQ(row->m_appType, 2);
}

TEST_F(EntityTypeTable, NumbersTheVeryFirstRow2011) {
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 2, "A")->m_orvType, 2011);
}

TEST_F(EntityTypeTable, NumbersBehindTheLargestNumber) {
  (void)ORVCheckAppendToEntityMap(5000, 1, "BIG");
  (void)ORVCheckAppendToEntityMap(3, 1, "SMALL");
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 2, "A")->m_orvType, 5001);
}

TEST_F(EntityTypeTable, NumbersBehind2010AsAtTheStart) {
  (void)ORVCheckAppendToEntityMap(2010, 1, "LAST");
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 2, "A")->m_orvType, 2011);
}

TEST_F(EntityTypeTable, HasNoNumberBehindTheLargestOfAll) {
  (void)ORVCheckAppendToEntityMap(INT_MAX, 1, "BIG");
  EXPECT_EQ(orvio::NextEntityTypeNumber(), -1);
  EXPECT_EQ(ORVCheckAppendToEntityMap(-1, 2, "A"), nullptr);
  EXPECT_EQ(table_.rows().size(), 1U);
}

TEST_F(EntityTypeTable, FindsTheFirstRowThatMatches) {
  ORVEntityTypeMap* first = orvio::AppendEntityType(250, 7, "QUAD");
  ORVEntityTypeMap* second = orvio::AppendEntityType(250, 7, "quad");
  ORVEntityTypeMap* third = orvio::AppendEntityType(251, 7, "SHELL");
  EXPECT_EQ(orvio::FindEntityType("Quad"), first);
  EXPECT_EQ(orvio::FindEntityType("SHEL"), nullptr);
  EXPECT_EQ(orvio::FindEntityTypeByNumber(250), first);
  EXPECT_EQ(orvio::FindEntityTypeByNumber(251), third);
  EXPECT_EQ(orvio::FindEntityTypeByNumber(252), nullptr);
  EXPECT_EQ(orvio::FindEntityTypeByAppType(7), first);
  EXPECT_EQ(orvio::FindEntityTypeByAppType(8), nullptr);
  EXPECT_THAT(orvio::FindEntityTypes("Quad"), ElementsAre(first, second));
  EXPECT_THAT(orvio::FindEntityTypesByNumber(250), ElementsAre(first, second));
  EXPECT_THAT(orvio::FindEntityTypesByAppType(7), ElementsAre(first, second, third));
  EXPECT_THAT(orvio::FindEntityTypesByAppType(8), IsEmpty());
}

}  // namespace
}  // namespace orv_test
