// Numbers that are fixed by the shape or the name of an element, and the names of the format.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>

#include "entity/entity_type_names.h"

namespace {

using ::testing::TestWithParam;
using ::testing::ValuesIn;

struct Shape {
  int ndim, npele, number;
};

class EntityTypeShape : public TestWithParam<Shape> {};

INSTANTIATE_TEST_SUITE_P(All, EntityTypeShape,
                         ValuesIn(std::vector<Shape>{{0, 1, 400},  {1, 2, 100},  {1, 3, 120},  {2, 3, 254},
                                                     {2, 4, 250},  {2, 6, 255},  {2, 8, 253},  {3, 4, 305},
                                                     {3, 5, 308},  {3, 6, 303},  {3, 8, 301},  {3, 10, 306},
                                                     {3, 13, 309}, {3, 15, 304}, {3, 20, 302}, {-1, 4, 0},
                                                     {0, 2, 0},    {2, 5, 0},    {3, 3, 0},    {4, 8, 0}}));

TEST_P(EntityTypeShape, HasItsNumber) {
  EXPECT_EQ(orvio::EntityTypeOfShape(GetParam().ndim, GetParam().npele), GetParam().number);
}

TEST(EntityTypeShapes, BeyondAnIntHaveNoNumber) { EXPECT_EQ(orvio::EntityTypeOfShape(0, (1LL << 32) + 1), 0); }

struct Named {
  const char* name;
  int number;
};

class NastranName : public TestWithParam<Named> {};

INSTANTIATE_TEST_SUITE_P(All, NastranName,
                         ValuesIn(std::vector<Named>{{"CMASS1", 146}, {"CMASS2", 147}, {"CMASS3", 148}, {"CMASS4", 149},
                                                     {"CONM2", 150},  {"RBAR", 132},   {"RROD", 133},   {"PLOTEL", 131},
                                                     {"CQUAD8", 253}, {"CTRIA6", 255}, {"PENTAH", 304}, {"TETRAH", 306},
                                                     {"HEXAH", 302},  {"CHEXA", 301},  {"CPENTA", 303}, {"CQUAD4", 250},
                                                     {"CTETRA", 305}, {"CTRIA3", 254}, {"CTRIAR", 254}, {"CQUADR", 252},
                                                     {"cquad4", 250}, {"chexa", 301}}),
                         [](const auto& row) { return row.param.name; });

TEST_P(NastranName, HasItsNumber) { EXPECT_EQ(orvio::NastranEntityTypeFromName(GetParam().name), GetParam().number); }

TEST(NastranNames, OfOtherSolversHaveNoNumber) {
  for (const char* name : {"SHELL", "CQUAD", "CQUAD44", "", "CBAR"}) {
    EXPECT_EQ(orvio::NastranEntityTypeFromName(name), std::nullopt) << name;
  }
}

TEST(EntityTypeNames, AreThoseOfTheFormat) {
  const std::set<std::string_view> distinct(orvio::kEntityTypeNames.begin(), orvio::kEntityTypeNames.end());
  EXPECT_EQ(distinct.size(), 80U);
  EXPECT_EQ(distinct.count(""), 0U);
  EXPECT_EQ(orvio::kEntityTypeNames[0], "MODEL");
  EXPECT_EQ(orvio::kEntityTypeNames[4], "FRAME");
  EXPECT_EQ(orvio::kEntityTypeNames[26], "MPCPLink");
  EXPECT_EQ(orvio::kEntityTypeNames[46], "THICKSHELL");
  EXPECT_EQ(orvio::kEntityTypeNames[79], "FACE");
}

}  // namespace
