// Titles in fixed slots.

#include "entity/titles.h"

#include <gtest/gtest.h>

#include <string>

namespace orvio {
namespace {

/// The bytes of one slot after trimming.
std::string Stripped(std::string slot) {
  StripTitles(slot.data(), 1, static_cast<std::int64_t>(slot.size()));
  return slot;
}

TEST(Titles, LoseTheirTrailingBlanks) { EXPECT_EQ(Stripped("cap   "), std::string("cap\0  ", 6)); }

TEST(Titles, KeepTheBlanksInside) { EXPECT_EQ(Stripped("a b   "), std::string("a b\0  ", 6)); }

TEST(Titles, OfBlanksOnlyAreEmpty) { EXPECT_EQ(Stripped("    "), std::string("\0   ", 4)); }

TEST(Titles, ThatFillTheirSlotStayAsTheyAre) { EXPECT_EQ(Stripped("fender"), "fender"); }

TEST(Titles, OneByteShortOfTheSlotKeepsItsTrailingBlank) { EXPECT_EQ(Stripped("hood "), "hood "); }

TEST(Titles, TwoBytesShortOfTheSlotAreEnded) { EXPECT_EQ(Stripped("hood  "), std::string("hood\0 ", 6)); }

TEST(Titles, AreTrimmedSlotBySlot) {
  std::string titles = "aa  bbbbcc  ";
  StripTitles(titles.data(), 3, 4);
  EXPECT_EQ(titles, std::string("aa\0 bbbbcc\0 ", 12));
}

TEST(Titles, OfAnImpossibleWidthOrCountAreLeftAlone) {
  std::string titles = "ab  ";
  StripTitles(titles.data(), 1, 0);
  StripTitles(titles.data(), 1, -4);
  StripTitles(titles.data(), -1, 4);
  StripTitles(nullptr, 1, 4);
  EXPECT_EQ(titles, "ab  ");
}

TEST(Titles, EndAtTheirTerminatorOrTheirSlot) {
  const std::string titles("ab\0dfull", 8);
  EXPECT_EQ(TitleAt(titles.data(), 0, 4), "ab");
  EXPECT_EQ(TitleAt(titles.data(), 1, 4), "full");
}

}  // namespace
}  // namespace orvio
