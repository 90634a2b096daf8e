// Comparisons with a stored value.

#include "orvio/orv_predicate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/orv_test.h"

namespace {

class Predicate : public orv_test::OrvTest {
 protected:
  static bool Compare(const ORVPredicate& predicate, const char* a, const char* b) {
    const bool by_pointer = predicate(a, b);
    EXPECT_EQ(predicate(std::string(a), std::string(b)), by_pointer);
    return by_pointer;
  }
};

TEST_F(Predicate, OrdersTwoTextsByteByByteWithOperationOne) {
  const ORVPredicate less(1, 0, 0, nullptr);
  EXPECT_TRUE(Compare(less, "NODE", "SHELL"));
  EXPECT_FALSE(Compare(less, "SHELL", "NODE"));
  EXPECT_FALSE(Compare(less, "NODE", "NODE"));
  EXPECT_TRUE(Compare(less, "NODE", "node"));
  EXPECT_TRUE(Compare(less, "z", "\xC3\xA4"));  // bytes are unsigned
}

TEST_F(Predicate, EquatesTwoTextsWithoutRegardToCaseOtherwise) {
  for (const int operation : {0, 2, -1}) {
    const ORVPredicate equal(operation, 0, 0, nullptr);
    EXPECT_TRUE(Compare(equal, "Node", "nODE"));
    EXPECT_FALSE(Compare(equal, "Node", "Nodes"));
  }
}

TEST_F(Predicate, ComparesEachTypeWithItsOwnMember) {
  const ORVPredicate predicate(0, 7, 2.5F, "Shell");
  EXPECT_TRUE(predicate(7));
  EXPECT_FALSE(predicate(8));
  EXPECT_TRUE(predicate(2.5F));
  EXPECT_FALSE(predicate(2.5000002F));
  EXPECT_TRUE(predicate("SHELL"));
  EXPECT_FALSE(predicate("SHEL"));
  EXPECT_TRUE(predicate(std::string("sHELL")));
  EXPECT_FALSE(predicate(std::string("Solid")));
}

TEST_F(Predicate, HasTheEntityTypeZeroAtFirst) {
  ORVPredicate predicate(0, 7, 0, nullptr);
  EXPECT_TRUE(predicate(static_cast<_ORVEntityType>(0)));
  EXPECT_FALSE(predicate(static_cast<_ORVEntityType>(7)));
  predicate.SetORVType(static_cast<_ORVEntityType>(50));
  EXPECT_TRUE(predicate(static_cast<_ORVEntityType>(50)));
  EXPECT_FALSE(predicate(static_cast<_ORVEntityType>(0)));
}

TEST_F(Predicate, TakesOtherValuesLater) {
  ORVPredicate predicate(0, 0, 0, nullptr);
  predicate.SetInt(3);
  predicate.SetFloat(-1);
  predicate.SetChar("x");
  EXPECT_TRUE(predicate(3));
  EXPECT_TRUE(predicate(-1.0F));
  EXPECT_TRUE(predicate("X"));
  EXPECT_FALSE(predicate("a", "b"));
  predicate.SetOperation(1);
  EXPECT_TRUE(predicate("a", "b"));
}

TEST_F(Predicate, FindsNoTextThatIsNotThere) {
  ORVPredicate predicate(0, 0, 0, nullptr);
  const char* nothing = nullptr;
  EXPECT_FALSE(predicate("a"));
  EXPECT_FALSE(predicate(std::string()));
  EXPECT_FALSE(predicate(nothing));
  EXPECT_FALSE(predicate(nothing, nothing));
  predicate.SetOperation(1);
  EXPECT_FALSE(predicate(nothing, "a"));
  EXPECT_FALSE(predicate("a", nothing));
}

TEST_F(Predicate, SortsAndFindsForAHost) {
  std::vector<std::string> names = {"b", "C", "a"};
  std::sort(names.begin(), names.end(), ORVPredicate(1, 0, 0, nullptr));
  EXPECT_EQ(names, (std::vector<std::string>{"C", "a", "b"}));
  EXPECT_EQ(std::count_if(names.begin(), names.end(), ORVPredicate(0, 0, 0, "c")), 1);
}

}  // namespace
