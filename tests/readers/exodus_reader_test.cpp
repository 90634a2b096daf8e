// What the reader of Exodus files finds in them, in the forms that writers gave them over time. Damaged files are
// tested in exodus_damage_test, the meaning of names in exodus_names_test.

#include <gmock/gmock.h>

#include "exodus/reader.h"
#include "program/exodus_forge.h"
#include "program/run_program.h"

namespace {

using namespace orvio::exodus;
using namespace exodus_forge;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class ExodusReader : public orv_test::ProgramTest {
 protected:
  Reader Open(const ForgedExodus& file, int form = NC_64BIT_OFFSET) const {
    return Reader(file.Write(TempPath("run.e"), form));
  }
};

// ---- Header

TEST_F(ExodusReader, ReadsTitleAndPrograms) {
  const Header header = Open(SmallExodus()).ReadHeader();
  EXPECT_EQ(header.title, "a block on plates");
  EXPECT_EQ(header.dimension, 3);
  EXPECT_EQ(header.nodes, 10);
  EXPECT_EQ(header.elements, 3);
  ASSERT_EQ(header.records.size(), 2U);
  EXPECT_EQ(header.records[0].program, "solver");
  EXPECT_EQ(header.records[0].version, "1.2");
  EXPECT_EQ(header.records[0].date, "2020/09/29");
  EXPECT_EQ(header.records[0].time, "16:59:05");
  EXPECT_EQ(header.records[1].program, "joiner");
}

TEST_F(ExodusReader, TakesAFileWithoutTitleAndPrograms) {
  const Header header = Open(SmallExodus().attribute("", "title", "").drop("qa_records")).ReadHeader();
  EXPECT_EQ(header.title, "");
  EXPECT_THAT(header.records, IsEmpty());
}

// ---- Nodes

TEST_F(ExodusReader, ReadsNodesOfThreeAxes) {
  const Nodes nodes = Open(SmallExodus()).ReadNodes();
  EXPECT_THAT(nodes.ids.ids, ElementsAre(101, 102, 103, 104, 105, 106, 107, 108, 109, 110));
  EXPECT_EQ(nodes.ids.IdAt(1), 101);
  EXPECT_EQ(nodes.ids.IdAt(10), 110);
  EXPECT_TRUE(nodes.is_double);
  ASSERT_EQ(nodes.coordinates.size(), 30U);
  EXPECT_THAT(std::vector<double>(nodes.coordinates.begin() + 24, nodes.coordinates.end()),
              ElementsAre(2, 0, 1, 2, 1, 1.25));
}

TEST_F(ExodusReader, ReadsNodesOfOneVariable) {
  ForgedExodus file = SmallExodus().drop("coordx").drop("coordy").drop("coordz").dimension("num_nodes", 10);
  file.doubles("coord", {"num_dim", "num_nodes"}, Counted(0, 30));
  const Nodes nodes = Open(file).ReadNodes();
  ASSERT_EQ(nodes.coordinates.size(), 30U);
  EXPECT_THAT(std::vector<double>(nodes.coordinates.begin() + 24, nodes.coordinates.end()),
              ElementsAre(8, 18, 28, 9, 19, 29));
}

TEST_F(ExodusReader, FillsMissingAxesWithZeros) {
  const Nodes plane = Open(SmallExodus().dimension("num_dim", 2).drop("coordz")).ReadNodes();
  ASSERT_EQ(plane.coordinates.size(), 30U);
  EXPECT_THAT(std::vector<double>(plane.coordinates.begin() + 24, plane.coordinates.end()),
              ElementsAre(2, 0, 0, 2, 1, 0));
  const Nodes line = Open(SmallExodus().dimension("num_dim", 1).drop("coordy").drop("coordz")).ReadNodes();
  EXPECT_THAT(std::vector<double>(line.coordinates.begin() + 24, line.coordinates.end()),
              ElementsAre(2, 0, 0, 2, 0, 0));
}

TEST_F(ExodusReader, TellsFloatsFromDoubles) {
  ForgedExodus file = SmallExodus();
  for (const char* name : {"coordx", "coordy", "coordz", "vals_nod_var1"}) file.retype(name, NC_FLOAT);
  const Reader reader = Open(file);
  EXPECT_FALSE(reader.ReadNodes().is_double);
  EXPECT_FALSE(reader.ReadNodal(0, 0).is_double);
  EXPECT_TRUE(reader.ReadNodal(1, 0).is_double);
  EXPECT_EQ(reader.ReadNodes().coordinates.back(), 1.25);
}

TEST_F(ExodusReader, CountsNodesAndElementsWithoutIds) {
  const Reader reader = Open(SmallExodus().drop("node_num_map").drop("elem_num_map"));
  EXPECT_EQ(reader.ReadNodes().ids.IdAt(10), 10);
  EXPECT_EQ(reader.ReadElementIds().IdAt(3), 3);
}

TEST_F(ExodusReader, ReadsIdsOf64Bits) {
  ForgedExodus file = SmallExodus();
  for (const char* name : {"node_num_map", "elem_num_map", "connect1", "connect2", "eb_prop1"}) {
    file.retype(name, NC_INT64);
  }
  const Reader reader = Open(file, NC_64BIT_DATA);
  EXPECT_EQ(reader.ReadNodes().ids.IdAt(10), 110);
  EXPECT_EQ(reader.ReadElementIds().IdAt(2), 21);
  EXPECT_THAT(reader.ReadBlocks().at(1).positions, ElementsAre(5, 6, 7, 8, 6, 9, 10, 7));
}

TEST_F(ExodusReader, ReadsAllClassicForms) {
  for (const int form : {0, NC_64BIT_OFFSET, NC_64BIT_DATA}) {
    const Reader reader = Open(SmallExodus(), form);
    EXPECT_TRUE(reader.complete());
    EXPECT_EQ(reader.ReadNodal(3, 1).numbers.back(), 419);
  }
}

// ---- Blocks

TEST_F(ExodusReader, ReadsBlocks) {
  const std::vector<ElementBlock> blocks = Open(SmallExodus()).ReadBlocks();
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].id, 10);
  EXPECT_EQ(blocks[0].name, "solid");
  EXPECT_EQ(blocks[0].type, "HEX8");
  EXPECT_EQ(blocks[0].first, 1);
  EXPECT_EQ(blocks[0].elements, 1);
  EXPECT_EQ(blocks[0].nodes_per_element, 8);
  EXPECT_THAT(blocks[0].positions, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_EQ(blocks[1].id, 20);
  EXPECT_EQ(blocks[1].name, "");
  EXPECT_EQ(blocks[1].type, "SHELL");
  EXPECT_EQ(blocks[1].first, 2);
  EXPECT_EQ(blocks[1].elements, 2);
  EXPECT_EQ(blocks[1].nodes_per_element, 4);
  EXPECT_THAT(blocks[1].positions, ElementsAre(5, 6, 7, 8, 6, 9, 10, 7));
}

TEST_F(ExodusReader, TakesBlocksWithoutElements) {
  ForgedExodus file = SmallExodus().drop("connect1").drop("num_el_in_blk1").dimension("num_elem", 2);
  for (int v = 1; v <= 8; ++v) file.drop("vals_elem_var" + std::to_string(v) + "eb1");
  const Reader reader = Open(file.integers("elem_num_map", {"num_elem"}, {21, 22}));
  const std::vector<ElementBlock> blocks = reader.ReadBlocks();
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].id, 10);
  EXPECT_EQ(blocks[0].elements, 0);
  EXPECT_EQ(blocks[1].first, 1);
  EXPECT_THAT(reader.ReadElementVariables().present.at(0), IsEmpty());
}

TEST_F(ExodusReader, TellsPolygonsAndPolyhedra) {
  for (const char* type : {"nsided", "NSIDED", "nfaced"}) {
    ForgedExodus file = SmallExodus();
    file.dimension("num_nod_per_el2", 7).integers("connect2", {"num_nod_per_el2"}, Counted(1, 7));
    const ElementBlock block = Open(file.attribute("connect2", "elem_type", type)).ReadBlocks().at(1);
    EXPECT_EQ(block.elements, 2);
    EXPECT_EQ(block.nodes_per_element, 0);
    EXPECT_THAT(block.positions, IsEmpty());
  }
}

TEST_F(ExodusReader, TakesNamesOfAnyWidthAndPadding) {
  const std::string wide(100, 'w');
  ForgedExodus file = SmallExodus().dimension("len_wide", 100);
  file.texts("eb_names", {"num_el_blk", "len_wide"}, {wide, "plates"}, ' ');
  file.attribute("connect1", "elem_type", std::string("HEX8 \0garbage", 13)).attribute("connect2", "elem_type", "");
  const std::vector<ElementBlock> blocks = Open(file).ReadBlocks();
  EXPECT_EQ(blocks.at(0).name, wide);
  EXPECT_EQ(blocks.at(1).name, "plates");
  EXPECT_EQ(blocks.at(0).type, "HEX8");
  EXPECT_EQ(blocks.at(1).type, "");
}

TEST_F(ExodusReader, TakesBlocksAndSetsWithoutNames) {
  const Reader reader = Open(SmallExodus().drop("eb_names").drop("ns_names").drop("ss_names"));
  EXPECT_EQ(reader.ReadBlocks().at(0).name, "");
  EXPECT_EQ(reader.ReadNodeSets().at(0).name, "");
  EXPECT_EQ(reader.ReadSideSets().at(0).name, "");
}

// ---- Sets

TEST_F(ExodusReader, ReadsSets) {
  const Reader reader = Open(SmallExodus());
  const std::vector<NodeSet> nodes = reader.ReadNodeSets();
  ASSERT_EQ(nodes.size(), 2U);
  EXPECT_EQ(nodes[0].id, 7);
  EXPECT_EQ(nodes[0].name, "fixed");
  EXPECT_THAT(nodes[0].positions, ElementsAre(4, 1));
  EXPECT_EQ(nodes[1].id, 8);
  EXPECT_EQ(nodes[1].name, "");
  EXPECT_THAT(nodes[1].positions, ElementsAre(9));
  const std::vector<SideSet> sides = reader.ReadSideSets();
  ASSERT_EQ(sides.size(), 1U);
  EXPECT_EQ(sides[0].id, 5);
  EXPECT_EQ(sides[0].name, "loaded");
  EXPECT_THAT(sides[0].positions, ElementsAre(3, 1));
  EXPECT_THAT(sides[0].sides, ElementsAre(2, 6));
}

TEST_F(ExodusReader, TakesEmptySetsAndNone) {
  ForgedExodus file = SmallExodus().drop("vals_nset_var1ns1").drop("node_ns1").drop("num_nod_ns1");
  for (const char* name : {"elem_ss1", "side_ss1", "num_side_ss1"}) file.drop(name);
  const Reader reader = Open(file);
  EXPECT_THAT(reader.ReadNodeSets().at(0).positions, IsEmpty());
  EXPECT_THAT(reader.ReadSideSets().at(0).positions, IsEmpty());
  EXPECT_THAT(reader.ReadNodeSetVariables().present, Each(IsEmpty()));
  ForgedExodus mesh;
  AddMesh(mesh);
  EXPECT_THAT(Open(mesh).ReadNodeSets(), IsEmpty());
  EXPECT_THAT(Open(mesh).ReadSideSets(), IsEmpty());
}

// ---- States

TEST_F(ExodusReader, ReadsTimes) {
  const Reader reader = Open(SmallExodus());
  ASSERT_EQ(reader.states(), 2);
  EXPECT_TRUE(reader.complete());
  EXPECT_EQ(reader.ReadTime(0), 0.5);
  EXPECT_EQ(reader.ReadTime(1), 1.5);
}

TEST_F(ExodusReader, TakesAMeshAlone) {
  ForgedExodus mesh;
  AddMesh(mesh);
  const Reader reader = Open(mesh);
  EXPECT_EQ(reader.states(), 0);
  EXPECT_TRUE(reader.complete());
  EXPECT_THAT(reader.ReadNodalVariables().names, IsEmpty());
  EXPECT_THAT(reader.ReadElementVariables().names, IsEmpty());
  EXPECT_THAT(reader.ReadElementVariables().present, ElementsAre(IsEmpty(), IsEmpty()));
}

TEST_F(ExodusReader, ReadsNodalVariables) {
  const Reader reader = Open(SmallExodus());
  const Variables variables = reader.ReadNodalVariables();
  EXPECT_THAT(variables.names, ElementsAre("displ_z", "displ_x", "displ_y", "temp"));
  EXPECT_THAT(variables.present, ElementsAre(ElementsAre(0, 1, 2, 3)));
  EXPECT_THAT(reader.ReadNodal(0, 0).numbers, ElementsAre(100, 101, 102, 103, 104, 105, 106, 107, 108, 109));
  EXPECT_THAT(reader.ReadNodal(3, 1).numbers, ElementsAre(410, 411, 412, 413, 414, 415, 416, 417, 418, 419));
}

TEST_F(ExodusReader, ReadsNodalVariablesOfTheOldForm) {
  ForgedExodus file = SmallExodus().doubles("vals_nod_var", {"time_step", "num_nod_var", "num_nodes"}, Counted(0, 80));
  for (int v = 1; v <= 4; ++v) file.drop("vals_nod_var" + std::to_string(v));
  const Reader reader = Open(file);
  EXPECT_THAT(reader.ReadNodal(0, 0).numbers, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
  EXPECT_THAT(reader.ReadNodal(3, 1).numbers, ElementsAre(70, 71, 72, 73, 74, 75, 76, 77, 78, 79));
}

TEST_F(ExodusReader, ReadsElementVariablesByTheirTable) {
  const Reader reader = Open(SmallExodus());
  const Variables variables = reader.ReadElementVariables();
  ASSERT_EQ(variables.names.size(), 9U);
  EXPECT_EQ(variables.names[8], "thick");
  EXPECT_THAT(variables.present, ElementsAre(ElementsAre(0, 1, 2, 3, 4, 5, 6, 7), ElementsAre(7, 8)));
  EXPECT_THAT(reader.ReadElements(1, 0, 1).numbers, ElementsAre(210));
  EXPECT_THAT(reader.ReadElements(8, 1, 1).numbers, ElementsAre(910, 911));
}

TEST_F(ExodusReader, GoesByTheTableAndNotByWhatElseIsThere) {
  const Reader reader = Open(
      SmallExodus().integers("elem_var_tab", {"num_el_blk", "num_elem_var"}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_THAT(reader.ReadElementVariables().present, ElementsAre(ElementsAre(0), IsEmpty()));
}

TEST_F(ExodusReader, FindsVariablesWithoutATable) {
  const Reader reader = Open(SmallExodus().drop("elem_var_tab").drop("nset_var_tab"));
  EXPECT_THAT(reader.ReadElementVariables().present,
              ElementsAre(ElementsAre(0, 1, 2, 3, 4, 5, 6, 7), ElementsAre(7, 8)));
  EXPECT_THAT(reader.ReadNodeSetVariables().present, ElementsAre(ElementsAre(0), IsEmpty()));
}

TEST_F(ExodusReader, ReadsNodeSetVariables) {
  const Reader reader = Open(SmallExodus());
  const Variables variables = reader.ReadNodeSetVariables();
  EXPECT_THAT(variables.names, ElementsAre("reaction"));
  EXPECT_THAT(variables.present, ElementsAre(ElementsAre(0), IsEmpty()));
  EXPECT_THAT(reader.ReadNodeSet(0, 0, 1).numbers, ElementsAre(110, 111));
}

TEST_F(ExodusReader, AsksInAnyOrderAndAgain) {
  const Reader reader = Open(SmallExodus());
  EXPECT_EQ(reader.ReadNodal(1, 1).numbers.front(), 210);
  EXPECT_EQ(reader.ReadElements(0, 0, 0).numbers.front(), 100);
  EXPECT_EQ(reader.ReadNodes().coordinates.size(), 30U);
  EXPECT_EQ(reader.ReadNodal(1, 1).numbers.front(), 210);
}

TEST_F(ExodusReader, ReadsALocalFileWhoseNameLooksLikeAnAddress) {
  std::filesystem::create_directories(TempPath("http:/localhost"));
  const std::filesystem::path before = std::filesystem::current_path();
  (void)SmallExodus().Write(TempPath("http:/localhost/run.e"));
  std::filesystem::current_path(TempPath(""));
  EXPECT_EQ(Reader("http://localhost/run.e").states(), 2);
  std::filesystem::current_path(before);
}

}  // namespace
