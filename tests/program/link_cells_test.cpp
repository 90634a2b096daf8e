// The cells that orv link makes of elements: types, and the order of their nodes.

#include <numeric>

#include "program/linked_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

class LinkCells : public LinkTest {
 protected:
  LinkCells() {
    constexpr int kNodes = 30;
    std::vector<std::int32_t> ids(kNodes);
    std::iota(ids.begin(), ids.end(), 100);
    AddNodalResult(file_, "/post/constant/", "COORDINATE", 1000, kNodes, 3)
        .dataset<std::int32_t>("entid", {kNodes}, ids)
        .dataset<float>("res", {kNodes, 3}, std::vector<float>(3 * kNodes, 0.5F));
    AddVariable(file_, "COORDINATE", "", 1, {"X", "Y", "Z"});
  }

  /// One element whose nodes are 100 and so on, as cell positions from 0 on.
  void AddOne(const std::string& type, int dimension, std::size_t nodes) {
    std::vector<std::int32_t> ids(nodes);
    std::iota(ids.begin(), ids.end(), 100);
    AddElements(file_, type, dimension, nodes, {1}, ids);
  }
};

TEST_F(LinkCells, PutTheVerticalMiddlesOfHexahedraLast) {
  AddOne("HEXA20", 3, 20);
  Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(25));
  EXPECT_THAT(Values<std::int64_t>("Connectivity"),
              ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15));
}

TEST_F(LinkCells, PutTheVerticalMiddlesOfWedgesLast) {
  AddOne("PENTA15", 3, 15);
  Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(26));
  EXPECT_THAT(Values<std::int64_t>("Connectivity"), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11));
}

TEST_F(LinkCells, PutTheMiddlesOfFacesBehindThoseOfEdges) {
  AddOne("HEXA27", 3, 27);
  Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(29));
  EXPECT_THAT(Values<std::int64_t>("Connectivity"), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19,
                                                                12, 13, 14, 15, 23, 24, 25, 26, 21, 22, 20));
}

TEST_F(LinkCells, AreToldByTheWordOfTheirType) {
  // The dimension is unknown.
  const std::vector<std::pair<std::string, std::size_t>> types = {
      {"A", 1},       {"BE2", 2},   {"HE8_4", 8},    {"LINE3", 3}, {"MASS", 1},   {"PENTA6", 6},
      {"PYRA13", 13}, {"PYRA5", 5}, {"QU8", 8},      {"QUAD9", 9}, {"SHELL3", 3}, {"SHELL4", 4},
      {"SOLID", 8},   {"TE4", 4},   {"TETRA10", 10}, {"TR6", 6},   {"TRIA7", 7},
  };
  for (const auto& [type, nodes] : types) AddOne(type, -1, nodes);
  const ProgramRun run = Link();
  EXPECT_THAT(run.err, HasSubstr("left out 1 elements of A: VTK has no cell for their 1 nodes\n"));
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(3, 12, 21, 1, 13, 27, 14, 23, 28, 5, 9, 12, 10, 24, 22, 34));
}

TEST_F(LinkCells, AreToldByTheirDimensionWhereTheWordSaysNothing) {
  AddOne("A1", 0, 1);
  AddOne("B2", 1, 2);
  AddOne("C4", 2, 4);
  AddOne("D4", 3, 4);
  AddOne("E8", 3, 8);
  AddOne("SHELL8", 3, 8);
  Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(1, 3, 9, 10, 12, 12));
}

TEST_F(LinkCells, WithoutACounterpartAreLinesOrVertices) {
  AddOne("BEAM3", 1, 3);
  AddOne("CABLE", 1, 4);
  AddOne("GROUP", 0, 3);
  const ProgramRun run = Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(3, 4, 2));
  EXPECT_THAT(Values<std::int64_t>("Connectivity"), ElementsAre(0, 1, 0, 1, 2, 3, 0, 1, 2));
  EXPECT_THAT(run.err, HasSubstr("1 elements of BEAM3 are shown as lines between their first two nodes\n"));
  EXPECT_THAT(run.err, HasSubstr("1 elements of CABLE are shown as poly-lines\n"));
  EXPECT_THAT(run.err, HasSubstr("1 elements of GROUP are shown as vertices\n"));
}

TEST_F(LinkCells, OfQuadranglesWithThreeCornersAreTriangles) {
  AddElements(file_, "QUAD4", 2, 4, {1, 2, 3}, {100, 101, 102, 103, 104, 105, 106, 106, 107, 108, 109, 0});
  Link();
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(9, 5, 5));
  EXPECT_THAT(Values<std::int64_t>("Connectivity"), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST_F(LinkCells, TakeResultsOfAGenericTypeToo) {
  AddOne("QUAD4", 2, 4);
  file_.text("etyp", "SHELL");
  AddElements(file_, "TRIA3", 2, 3, {2}, {104, 105, 106}).text("etyp", "SHELL");
  AddVariable(file_, "PAIR", "", 0, {"A", "B"});
  AddElementValues(file_, 1, "SHELL", "PAIR", 1, 2, {2, 1}, {1, 2, 3, 4});
  Link();
  EXPECT_THAT(Values<float>("CellData/PAIR"), AreFloats({3, 4, 1, 2}));
}

}  // namespace
