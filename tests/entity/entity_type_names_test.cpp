// Numbers that are fixed by the shape or the name of an element, and the names of the format.

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

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

TEST(EntityTypeNames, AreThoseOfTheFormatInItsOrder) {
  const std::vector<std::string_view> names = {"MODEL",
                                               "PART",
                                               "FPMPART",
                                               "MATERIAL",
                                               "FRAME",
                                               "NODE",
                                               "FPMNODE",
                                               "BEAM",
                                               "LINE3",
                                               "LINE2",
                                               "SPRING6DOF",
                                               "SPRINGBEAM",
                                               "MBSSPRING",
                                               "SPHERICALJOINT",
                                               "FLEXTORSJOINT",
                                               "KJOINT",
                                               "MBSJOINT",
                                               "MTOJN",
                                               "SPOTWELD",
                                               "PLINK",
                                               "SLINK",
                                               "TIED",
                                               "MUSCLE",
                                               "RBODY",
                                               "MULTIJOINT",
                                               "MI-SPOTWELD",
                                               "MPCPLink",
                                               "CBAR",
                                               "CBEAM",
                                               "CROD",
                                               "CONROD",
                                               "CBUSH",
                                               "CBEND",
                                               "CTUBE",
                                               "CELAS1",
                                               "CELAS2",
                                               "CELAS3",
                                               "CELAS4",
                                               "CDAMP1",
                                               "CDAMP2",
                                               "CDAMP3",
                                               "CDAMP4",
                                               "TRIA6",
                                               "SHEL6",
                                               "TRIA3",
                                               "SHELL",
                                               "THICKSHELL",
                                               "QUAD8",
                                               "SHEL8",
                                               "QUAD4",
                                               "MEMBR",
                                               "TOOL",
                                               "HEXA8",
                                               "HEXA",
                                               "PENTA6",
                                               "TETRA4",
                                               "BRICKSHELL",
                                               "TETRA10",
                                               "HEXA20",
                                               "PENTA15",
                                               "AIRBAG",
                                               "CHAMBER",
                                               "WALL",
                                               "CONTACT",
                                               "SECTION",
                                               "FLUIDCELL",
                                               "RIGIDWALL",
                                               "VENT",
                                               "CUBIC_CELL",
                                               "USERDEF",
                                               "ACOUSTIC_NODE",
                                               "POROUS_NODE",
                                               "CNT_ELE_EDG_EDG",
                                               "CNT_ELE_NOD_EDG",
                                               "CNT_ELE_NOD_SEG",
                                               "SLIDELINE",
                                               "SPH_OUTPUT",
                                               "FLUID_PARTICLE",
                                               "SURFACE",
                                               "FACE"};
  EXPECT_EQ(std::vector<std::string_view>(orvio::kEntityTypeNames.begin(), orvio::kEntityTypeNames.end()), names);
}

}  // namespace
