// How the variables of an Exodus file become quantities: components, points, names and classes; and the names of its
// element types. What stands in a file is tested in exodus_reader_test and exodus_import_test.

#include <gmock/gmock.h>

#include <numeric>

#include "importer/exodus_element.h"
#include "importer/exodus_quantity.h"

namespace {

using namespace orvio::program;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;
using Sources = std::vector<std::vector<std::size_t>>;

std::vector<JoinedVariables> Join(const Names& names, const JoinRules& rules = {}) {
  std::vector<std::size_t> all(names.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return JoinVariables(names, all, rules);
}

Names NamesOf(const std::vector<JoinedVariables>& joined) {
  Names names;
  for (const JoinedVariables& result : joined) names.push_back(result.quantity.name);
  return names;
}

constexpr JoinRules kElements = {3, true}, kPlane = {2, false};

// ---- Vectors

TEST(ExodusNames, OfThreeAxesAreAVector) {
  const auto joined = Join({"force_x", "force_y", "force_z"});
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "force");
  EXPECT_EQ(joined[0].quantity.tensor_rank, 1);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("X", "Y", "Z"));
  EXPECT_EQ(joined[0].sources, (Sources{{0, 1, 2}}));
}

TEST(ExodusNames, OfAVectorMayStandInAnyOrderAndAmongOthers) {
  const auto joined = Join({"mass", "force_z", "force_x", "temp", "force_y"});
  EXPECT_THAT(NamesOf(joined), ElementsAre("mass", "force", "temp"));
  EXPECT_EQ(joined[1].sources, (Sources{{2, 4, 1}}));
}

class SpellingOfAVector : public testing::TestWithParam<Names> {};

TEST_P(SpellingOfAVector, IsUnderstood) {
  const auto joined = Join(GetParam());
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "Translational_Displacement");
  EXPECT_EQ(joined[0].quantity.class_word, "CLASS_LENGTH");
  EXPECT_EQ(joined[0].quantity.tensor_rank, 1);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("X", "Y", "Z"));
  EXPECT_THAT(joined[0].quantity.measures, ElementsAre(Measure::kLength, Measure::kLength, Measure::kLength));
  EXPECT_EQ(joined[0].sources, (Sources{{0, 1, 2}}));
}

INSTANTIATE_TEST_SUITE_P(Displacement, SpellingOfAVector,
                         testing::Values(Names{"displ_x", "displ_y", "displ_z"}, Names{"disp_x", "disp_y", "disp_z"},
                                         Names{"dispx", "dispy", "dispz"}, Names{"DISPX", "DISPY", "DISPZ"},
                                         Names{"Displ.X", "Displ.Y", "Displ.Z"}, Names{"disp-x", "disp-y", "disp-z"},
                                         Names{"disp x", "disp y", "disp z"},
                                         Names{"displacement_X", "displacement_Y", "displacement_Z"}));

TEST(ExodusNames, OfAxesThatAreNotAllThereStayApart) {
  const auto joined = Join({"displ_x", "displ_y"});
  EXPECT_THAT(NamesOf(joined), ElementsAre("displ_x", "displ_y"));
  EXPECT_EQ(joined[0].quantity.tensor_rank, 0);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("displ_x"));
  EXPECT_EQ(joined[0].quantity.class_word, "");
}

TEST(ExodusNames, OfDifferentSpellingStayApart) {
  EXPECT_THAT(NamesOf(Join({"force_x", "forcey", "force_z"})), ElementsAre("force_x", "forcey", "force_z"));
  EXPECT_THAT(NamesOf(Join({"force_x", "Force_y", "force_z"})), ElementsAre("force_x", "Force_y", "force_z"));
}

TEST(ExodusNames, ThatComeTwiceStayApart) {
  EXPECT_THAT(NamesOf(Join({"f_x", "f_X", "f_y", "f_z"})), ElementsAre("f_x", "f_X", "f_y", "f_z"));
}

TEST(ExodusNames, OfAxesAloneAreNoComponents) {
  EXPECT_THAT(NamesOf(Join({"x", "y", "z"})), ElementsAre("x", "y", "z"));
  EXPECT_THAT(NamesOf(Join({"_x", "_y", "_z"})), ElementsAre("_x", "_y", "_z"));
  EXPECT_THAT(NamesOf(Join({"XX", "YY", "ZZ", "XY", "YZ", "ZX"})), ElementsAre("XX", "YY", "ZZ", "XY", "YZ", "ZX"));
}

TEST(ExodusNames, OfTwoAxesAreAPairInThePlaneOnly) {
  const auto joined = Join({"disp_x", "disp_y"}, kPlane);
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "Translational_Displacement");
  EXPECT_EQ(joined[0].quantity.tensor_rank, 0);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("X", "Y"));
}

// ---- Tensors

TEST(ExodusNames, OfATensorAreBroughtIntoOrder) {
  const auto joined = Join({"stress_zx", "stress_yz", "stress_xy", "stress_zz", "stress_yy", "stress_xx"});
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "stress");
  EXPECT_EQ(joined[0].quantity.class_word, "CLASS_STRESS");
  EXPECT_EQ(joined[0].quantity.tensor_rank, 2);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("XX", "YY", "ZZ", "XY", "YZ", "ZX"));
  EXPECT_THAT(joined[0].quantity.measures, testing::Each(Measure::kStress));
  EXPECT_EQ(joined[0].sources, (Sources{{5, 4, 3, 2, 1, 0}}));
}

TEST(ExodusNames, OfATensorMayStandWithoutSeparatorAndTheOtherWayRound) {
  const auto joined = Join({"SigmaXX", "SigmaYY", "SigmaZZ", "SigmaYX", "SigmaZY", "SigmaXZ"});
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "Sigma");
  EXPECT_EQ(joined[0].quantity.class_word, "CLASS_STRESS");
  EXPECT_EQ(joined[0].sources, (Sources{{0, 1, 2, 3, 4, 5}}));
}

TEST(ExodusNames, OfAnIncompleteTensorStayApart) {
  const Names names = {"stress_xx", "stress_yy", "stress_zz", "stress_xy", "stress_yz"};
  EXPECT_EQ(NamesOf(Join(names)), names);
  const Names row = {"stressxx", "stressxy", "stressxz"};  // no vector "stressx"
  EXPECT_EQ(NamesOf(Join(row)), row);
}

TEST(ExodusNames, OfATensorOfNineComponentsStayApart) {
  const Names names = {"f_xx", "f_xy", "f_xz", "f_yx", "f_yy", "f_yz", "f_zx", "f_zy", "f_zz"};
  EXPECT_EQ(NamesOf(Join(names)), names);
}

TEST(ExodusNames, OfAPlaneTensorAreJoinedInThePlaneOnly) {
  const Names three = {"stress_xx", "stress_yy", "stress_xy"};
  EXPECT_EQ(NamesOf(Join(three)), three);
  const auto joined = Join(three, kPlane);
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.tensor_rank, 0);
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("XX", "YY", "XY"));
  const auto four = Join({"strain_xx", "strain_xy", "strain_yy", "strain_zz"}, kPlane);
  ASSERT_EQ(four.size(), 1U);
  EXPECT_THAT(four[0].quantity.components, ElementsAre("XX", "YY", "ZZ", "XY"));
  EXPECT_EQ(four[0].quantity.class_word, "CLASS_STRAIN");
}

// ---- Points

TEST(ExodusNames, WithNumbersFrom1AreThePointsOfElements) {
  const auto joined = Join({"eqps_2", "eqps_1", "eqps_3"}, kElements);
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "eqps");
  EXPECT_THAT(joined[0].quantity.components, ElementsAre("eqps"));
  EXPECT_EQ(joined[0].sources, (Sources{{1}, {0}, {2}}));
}

TEST(ExodusNames, WithTenPointsAreCountedAsNumbers) {
  Names names;
  for (int point = 1; point <= 10; ++point) names.push_back("eqps_" + std::to_string(point));
  const auto joined = Join(names, kElements);
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].sources, (Sources{{0}, {1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}}));
}

class NumbersThatCountNoPoints : public testing::TestWithParam<Names> {};

TEST_P(NumbersThatCountNoPoints, StayInTheNames) { EXPECT_EQ(NamesOf(Join(GetParam(), kElements)), GetParam()); }

INSTANTIATE_TEST_SUITE_P(ExodusNames, NumbersThatCountNoPoints,
                         testing::Values(Names{"eqps_1"}, Names{"eqps_2", "eqps_3"}, Names{"eqps_1", "eqps_3"},
                                         Names{"eqps_0", "eqps_1"}, Names{"eqps_1", "eqps_1", "eqps_2"},
                                         Names{"eqps_01", "eqps_02"}, Names{"_1", "_2"}, Names{"eqps1", "eqps2"},
                                         Names{"eqps_+1", "eqps_2"}, Names{"eqps_1", "eqps_99999999999"},
                                         Names{"1", "2"}));

TEST(ExodusNames, WithNumbersAtNodesStayApart) {
  EXPECT_THAT(NamesOf(Join({"mode_1", "mode_2"})), ElementsAre("mode_1", "mode_2"));
}

TEST(ExodusNames, OfATensorAtPointsAreOneResult) {
  const Names components = {"xx", "yy", "zz", "xy", "yz", "zx"};
  Names names;
  for (const char* point : {"_1", "_2"}) {
    for (const std::string& component : components) names.push_back("unrotated_stress_" + component + point);
  }
  const auto joined = Join(names, kElements);
  ASSERT_EQ(joined.size(), 1U);
  EXPECT_EQ(joined[0].quantity.name, "unrotated_stress");
  EXPECT_EQ(joined[0].quantity.class_word, "CLASS_STRESS");
  EXPECT_EQ(joined[0].quantity.tensor_rank, 2);
  EXPECT_EQ(joined[0].sources, (Sources{{0, 1, 2, 3, 4, 5}, {6, 7, 8, 9, 10, 11}}));
}

TEST(ExodusNames, OfAVectorWithUnequalPointsStayApart) {
  const auto joined = Join({"v_x_1", "v_x_2", "v_y_1", "v_y_2", "v_z_1"}, kElements);
  EXPECT_THAT(NamesOf(joined), ElementsAre("v_x", "v_y", "v_z_1"));
  EXPECT_EQ(joined[0].sources, (Sources{{0}, {1}}));
}

TEST(ExodusNames, WithAndWithoutPointsAreTwoResultsOfOneName) {
  const auto joined = Join({"ln_strain_1", "ln_strain", "ln_strain_2"}, kElements);
  EXPECT_THAT(NamesOf(joined), ElementsAre("ln_strain", "ln_strain"));
  EXPECT_EQ(joined[0].sources, (Sources{{0}, {2}}));
  EXPECT_EQ(joined[1].sources, (Sources{{1}}));
}

TEST(ExodusNames, ThatAPlaceDoesNotHaveDoNotCount) {
  const Names names = {"eqps_1", "eqps_2", "eqps_3", "f_x", "f_y", "f_z"};
  EXPECT_THAT(NamesOf(JoinVariables(names, {0, 1, 3, 4}, kElements)), ElementsAre("eqps", "f_x", "f_y"));
  EXPECT_THAT(JoinVariables(names, {}, kElements), IsEmpty());
}

// ---- Meanings and names

struct Meaning {
  const char* variable;
  const char* class_word;
  Measure measure;
};

class MeaningOfAVariable : public testing::TestWithParam<Meaning> {};

TEST_P(MeaningOfAVariable, FollowsItsName) {
  const auto joined = Join({GetParam().variable});
  EXPECT_EQ(joined[0].quantity.name, GetParam().variable);
  EXPECT_EQ(joined[0].quantity.class_word, GetParam().class_word);
  EXPECT_THAT(joined[0].quantity.measures, ElementsAre(GetParam().measure));
}

INSTANTIATE_TEST_SUITE_P(ExodusNames, MeaningOfAVariable,
                         testing::Values(Meaning{"vm_stress", "CLASS_STRESS", Measure::kStress},
                                         Meaning{"STRESS", "CLASS_STRESS", Measure::kStress},
                                         Meaning{"sigma", "CLASS_STRESS", Measure::kStress},
                                         Meaning{"ln_strain", "CLASS_STRAIN", Measure::kNone},
                                         Meaning{"mysigma", "", Measure::kNone},
                                         Meaning{"stressed", "", Measure::kNone}, Meaning{"vel", "", Measure::kNone},
                                         Meaning{"disp", "", Measure::kNone}, Meaning{"temp", "", Measure::kNone}));

TEST(ExodusNames, OfVelocitiesStayAndMeasureVelocities) {
  for (const std::string name : {"vel", "Velocity"}) {
    const auto joined = Join({name + "_x", name + "_y", name + "_z"});
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_EQ(joined[0].quantity.name, name);
    EXPECT_EQ(joined[0].quantity.class_word, "");
    EXPECT_THAT(joined[0].quantity.measures, testing::Each(Measure::kVelocity));
  }
}

TEST(ExodusNames, ThatCannotStandInAPathAreChanged) {
  EXPECT_THAT(NamesOf(Join({"a/b", "header", ""})), ElementsAre("a_b", "header_", "_"));
  EXPECT_EQ(Join({std::string(300, 'n')})[0].quantity.name, std::string(240, 'n'));
}

TEST(ExodusNames, OfAFileAreKeptApartByPlace) {
  QuantityTable table;
  bool is_new = false;
  const auto name_of = [&](const char* name, const char* place) {
    return table.Find(Join({name})[0].quantity, place, is_new).name;
  };
  EXPECT_EQ(name_of("temp", "NODE"), "temp");
  EXPECT_TRUE(is_new);
  EXPECT_EQ(name_of("temp", "HEXA8"), "temp");  // nodes and elements share it
  EXPECT_FALSE(is_new);
  EXPECT_EQ(name_of("temp", "HEXA8"), "temp_2");
  EXPECT_EQ(name_of("TEMP", "NODE"), "TEMP_3");  // the names that readers know are in one case
  EXPECT_EQ(name_of("time", "NODE"), "time_2");
}

// ---- Element types

struct ElementWord {
  const char* word;
  int nodes;
  const char* name;
  int dimension;
};

class WordForAnElement : public testing::TestWithParam<ElementWord> {};

TEST_P(WordForAnElement, IsUnderstood) {
  const ElementKind kind = ElementKindOf(GetParam().word, GetParam().nodes);
  EXPECT_EQ(kind.name, GetParam().name);
  EXPECT_EQ(kind.dimension, GetParam().dimension);
}

INSTANTIATE_TEST_SUITE_P(ExodusNames, WordForAnElement,
                         testing::Values(ElementWord{"hex8", 8, "HEXA8", 3}, ElementWord{"HEX8", 8, "HEXA8", 3},
                                         ElementWord{"HEX", 8, "HEXA8", 3}, ElementWord{"hex20", 20, "HEXA20", 3},
                                         ElementWord{"HEX27", 27, "HEXA27", 3},
                                         ElementWord{"hexahedron", 8, "HEXA8", 3}, ElementWord{"tet4", 4, "TETRA4", 3},
                                         ElementWord{"TETRA", 4, "TETRA4", 3}, ElementWord{"TETRA10", 10, "TETRA10", 3},
                                         ElementWord{"tet", 10, "TETRA10", 3}, ElementWord{"WEDGE6", 6, "PENTA6", 3},
                                         ElementWord{"wedge", 15, "PENTA15", 3}, ElementWord{"PYRAMID5", 5, "PYRA5", 3},
                                         ElementWord{"pyramid", 13, "PYRA13", 3}, ElementWord{"QUAD4", 4, "QUAD4", 2},
                                         ElementWord{"quad8", 8, "QUAD8", 2}, ElementWord{"SHELL", 4, "QUAD4", 2},
                                         ElementWord{"shell4", 4, "QUAD4", 2}, ElementWord{"SHELL9", 9, "QUAD9", 2},
                                         ElementWord{"SHELL", 3, "TRIA3", 2}, ElementWord{"shell6", 6, "TRIA6", 2},
                                         ElementWord{"tri3", 3, "TRIA3", 2}, ElementWord{"TRI", 6, "TRIA6", 2},
                                         ElementWord{"triangle", 3, "TRIA3", 2}, ElementWord{"bar2", 2, "LINE2", 1},
                                         ElementWord{"BEAM", 2, "LINE2", 1}, ElementWord{"truss2", 2, "LINE2", 1},
                                         ElementWord{"bar3", 3, "LINE3", 1}, ElementWord{"sphere", 1, "POINT1", 0},
                                         ElementWord{"CIRCLE", 1, "POINT1", 0}, ElementWord{"point", 1, "POINT1", 0},
                                         ElementWord{"super", 12, "SUPER12", -1},
                                         ElementWord{"SUPER12", 12, "SUPER12", -1},
                                         ElementWord{"a/b c", 5, "A_B_C5", -1}, ElementWord{"", 4, "ELEMENT4", -1},
                                         ElementWord{"42", 4, "ELEMENT4", -1}));

}  // namespace
