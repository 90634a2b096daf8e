// What an Exodus file becomes as a result file, looked at with HDF5 alone. Names are tested in exodus_names_test, whole
// results of a solver in exodus_facts_test.

#include <gmock/gmock.h>

#include <fstream>

#include "program/exodus_forge.h"
#include "program/imported_file.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using namespace exodus_forge;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Names = std::vector<std::string>;
using Shape = std::vector<hsize_t>;

constexpr char kConstant[] = "/post/constant", kFirst[] = "/post/singlestate/state000000000001",
               kSecond[] = "/post/singlestate/state000000000002";

class ExodusImport : public ProgramTest {
 protected:
  RawFile ImportFile(const ForgedExodus& file, const std::vector<std::string>& options = {}) const {
    return RawFile(Import(file.Write(TempPath("run.e")), options));
  }

  /// The notes of an import, without the line that counts.
  std::string NotesOn(const ForgedExodus& file, const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"import", file.Write(TempPath("run.e")), TempPath("imported.orv")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "");
    return run.err.substr(run.err.find('\n') + 1);
  }

  static std::vector<std::int32_t> Ints(const RawFile& file, const std::string& path) {
    return file.values<std::int32_t>(path);
  }
  static std::vector<double> Reals(const RawFile& file, const std::string& path) { return file.values<double>(path); }
  static std::string Text(const RawFile& file, const std::string& block, const char* name) {
    return WithoutBlanks(file.attribute_text(block, name));
  }
  static Names Texts(const RawFile& file, const std::string& path) {
    Names texts = file.texts(path);
    for (std::string& text : texts) text = WithoutBlanks(text);
    return texts;
  }
};

std::string Block(const std::string& section, const std::string& path) { return section + "/" + path + "/orvblock"; }

// ---- Mesh

TEST_F(ExodusImport, WritesNodesUnderTheirIds) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string block = Block(kConstant, "entityresults/NODE/COORDINATE");
  EXPECT_THAT(Ints(file, block + "/entid"), ElementsAre(101, 102, 103, 104, 105, 106, 107, 108, 109, 110));
  EXPECT_EQ(file.shape(block + "/res"), (Shape{10, 3}));
  EXPECT_EQ(file.type_size(block + "/res"), 8U);
  const std::vector<double> values = Reals(file, block + "/res");
  EXPECT_THAT(std::vector<double>(values.begin() + 24, values.end()), ElementsAre(2, 0, 1, 2, 1, 1.25));
}

TEST_F(ExodusImport, WritesABlockAsElementsOfItsType) {
  const RawFile file = ImportFile(SmallExodus());
  EXPECT_THAT(file.children(std::string(kConstant) + "/connectivities"), ElementsAre("HEXA8", "QUAD4"));
  const std::string hexa = Block(kConstant, "connectivities/HEXA8");
  EXPECT_EQ(Text(file, hexa, "etyp"), "HEXA8");
  EXPECT_EQ(Text(file, hexa, "etypelem"), "HEXA8");
  EXPECT_EQ(Text(file, hexa, "etyppart"), "PART");
  EXPECT_EQ(Text(file, hexa, "etypnode"), "NODE");
  EXPECT_EQ(file.attribute_int(hexa, "ndim"), 3);
  EXPECT_THAT(Ints(file, hexa + "/idele"), ElementsAre(11));
  EXPECT_THAT(Ints(file, hexa + "/pid"), ElementsAre(10));
  EXPECT_THAT(Ints(file, hexa + "/ic"), ElementsAre(101, 102, 103, 104, 105, 106, 107, 108));
  const std::string quad = Block(kConstant, "connectivities/QUAD4");
  EXPECT_EQ(file.attribute_int(quad, "ndim"), 2);
  EXPECT_THAT(Ints(file, quad + "/idele"), ElementsAre(21, 22));
  EXPECT_THAT(Ints(file, quad + "/pid"), ElementsAre(20, 20));
  EXPECT_THAT(Ints(file, quad + "/ic"), ElementsAre(105, 106, 107, 108, 106, 109, 110, 107));
}

/// Four elements of one shape in as many blocks.
ForgedExodus FourBlocks(const Names& types) {
  ForgedExodus file;
  file.dimension("len_name", 33).dimension("num_dim", 3).dimension("num_nodes", 2).dimension("num_elem", 4);
  for (const char* axis : {"coordx", "coordy", "coordz"}) file.doubles(axis, {"num_nodes"}, {0, 1});
  file.dimension("num_el_blk", 4).integers("eb_prop1", {"num_el_blk"}, {3, 5, 7, 9});
  for (std::size_t i = 0; i < types.size(); ++i) {
    const std::string number = std::to_string(i + 1), connect = "connect" + number;
    file.dimension("num_el_in_blk" + number, 1).dimension("num_nod_per_el" + number, 2);
    file.integers(connect, {"num_el_in_blk" + number, "num_nod_per_el" + number}, {1, 2});
    file.attribute(connect, "elem_type", types[i]);
  }
  return file;
}

TEST_F(ExodusImport, TellsBlocksOfOneTypeApartByTheirIds) {
  const RawFile file = ImportFile(FourBlocks({"BEAM", "super", "truss2", "LINE2_5"}));
  EXPECT_THAT(file.children(std::string(kConstant) + "/connectivities"),
              ElementsAre("LINE2_2", "LINE2_3", "LINE2_7", "SUPER2"));
  EXPECT_EQ(Text(file, Block(kConstant, "connectivities/LINE2_3"), "etyp"), "LINE2");
  EXPECT_EQ(Text(file, Block(kConstant, "connectivities/LINE2_3"), "etypelem"), "LINE2_3");
  EXPECT_FALSE(file.has_attribute(Block(kConstant, "connectivities/SUPER2"), "ndim"));
}

TEST_F(ExodusImport, TellsBlocksOfOneTypeAndIdApartToo) {
  const RawFile file =
      ImportFile(FourBlocks({"BEAM", "BEAM", "BEAM", "BEAM"}).integers("eb_prop1", {"num_el_blk"}, {1, 1, 1, 2}));
  EXPECT_THAT(file.children(std::string(kConstant) + "/connectivities"),
              ElementsAre("LINE2_1", "LINE2_1_2", "LINE2_1_3", "LINE2_2"));
}

TEST_F(ExodusImport, WritesBlocksAsParts) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string parts = Block(kConstant, "parts/PART");
  EXPECT_EQ(Text(file, parts, "etyppart"), "PART");
  EXPECT_THAT(Ints(file, parts + "/pid"), ElementsAre(10, 20));
  EXPECT_THAT(Texts(file, parts + "/title"), ElementsAre("solid", "block_20"));
  EXPECT_FALSE(file.exists(parts + "/mid"));
}

TEST_F(ExodusImport, WritesIdentifiersWhereTheFormatHasAPlaceForThem) {
  for (const char* version : {"2.1", "2.2"}) {
    const RawFile file = ImportFile(SmallExodus(), {"--format-version", version});
    EXPECT_THAT(file.children(std::string(kConstant) + "/identifiers"), ElementsAre("HEXA8", "NODE", "QUAD4"));
    EXPECT_THAT(Ints(file, Block(kConstant, "identifiers/QUAD4") + "/entid"), ElementsAre(21, 22));
    EXPECT_EQ(Ints(file, Block(kConstant, "identifiers/NODE") + "/entid").back(), 110);
  }
  const RawFile file = ImportFile(SmallExodus(), {"--format-version", "2.0"});
  EXPECT_FALSE(file.exists(std::string(kConstant) + "/identifiers"));
}

TEST_F(ExodusImport, LeavesOutWhatHasNoElementsOrNoFixedNodesAndSaysSo) {
  ForgedExodus file = FourBlocks({"BEAM", "nsided", "BEAM", "BEAM"});
  file.drop("connect3").drop("num_el_in_blk3").dimension("num_elem", 3);
  file.texts("eb_names", {"num_el_blk", "len_name"}, {"rods", "cells", "", ""});
  const std::string run = TempPath("run.e");
  EXPECT_EQ(NotesOn(file), run + ": cells has polygons or polyhedra and was left out\n" + run +
                               ": block_7 has no elements and was left out\n");
  const RawFile imported(TempPath("imported.orv"));
  EXPECT_THAT(imported.children(std::string(kConstant) + "/connectivities"), ElementsAre("LINE2_3", "LINE2_9"));
  EXPECT_THAT(Ints(imported, Block(kConstant, "connectivities/LINE2_9") + "/idele"), ElementsAre(3));
  EXPECT_THAT(Ints(imported, Block(kConstant, "parts/PART") + "/pid"), ElementsAre(3, 9));
}

TEST_F(ExodusImport, TakesAFileOfNodesAlone) {
  ForgedExodus file;
  file.dimension("num_dim", 1).dimension("num_nodes", 2).doubles("coordx", {"num_nodes"}, {0.5, 1.5});
  const RawFile imported = ImportFile(file);
  EXPECT_THAT(Reals(imported, Block(kConstant, "entityresults/NODE/COORDINATE") + "/res"),
              ElementsAre(0.5, 0, 0, 1.5, 0, 0));
  EXPECT_THAT(imported.children("/post/singlestate"), IsEmpty());
}

// ---- Sets

TEST_F(ExodusImport, WritesNodeSetsWithTheirNames) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string sets = Block(kConstant, "collector/NODE_SET");
  EXPECT_THAT(Ints(file, sets + "/idcoll"), ElementsAre(7, 8));
  EXPECT_THAT(Texts(file, sets + "/etyp"), ElementsAre("NODE"));
  EXPECT_THAT(Ints(file, sets + "/nent"), ElementsAre(2, 1));
  EXPECT_THAT(Ints(file, sets + "/entid"), ElementsAre(104, 101, 109));
  const std::string names = Block(kConstant, "attributes/NODE_SET");
  EXPECT_THAT(Ints(file, names + "/entid"), ElementsAre(7, 8));
  EXPECT_THAT(Texts(file, names + "/title"), ElementsAre("fixed", "NODE_SET_8"));
}

TEST_F(ExodusImport, WritesSideSetsAsElementsAndThenTheirSides) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string sets = Block(kConstant, "collector/SIDE_SET");
  EXPECT_THAT(Ints(file, sets + "/idcoll"), ElementsAre(5));
  EXPECT_THAT(Texts(file, sets + "/etyp"), ElementsAre("ELEMENT", "SIDE"));
  EXPECT_EQ(file.shape(sets + "/nent"), (Shape{1, 2}));
  EXPECT_THAT(Ints(file, sets + "/nent"), ElementsAre(2, 2));
  EXPECT_THAT(Ints(file, sets + "/entid"), ElementsAre(22, 11, 2, 6));
  EXPECT_THAT(Texts(file, Block(kConstant, "attributes/SIDE_SET") + "/title"), ElementsAre("loaded"));
}

TEST_F(ExodusImport, WritesNoSetsWhereThereAreNone) {
  ForgedExodus mesh;
  AddMesh(mesh);
  const RawFile file = ImportFile(mesh);
  EXPECT_THAT(file.children(std::string(kConstant) + "/collector"), IsEmpty());
  EXPECT_FALSE(file.exists(std::string(kConstant) + "/attributes/NODE_SET"));
}

TEST_F(ExodusImport, KeepsAnEmptySetAmongOthers) {
  ForgedExodus file = SmallExodus().drop("node_ns2").drop("num_nod_ns2");
  const RawFile imported = ImportFile(file);
  EXPECT_THAT(Ints(imported, Block(kConstant, "collector/NODE_SET") + "/nent"), ElementsAre(2, 0));
}

TEST_F(ExodusImport, TakesAFileWhoseSetsAreAllEmpty) {
  ForgedExodus file = SmallExodus().drop("vals_nset_var1ns1");
  for (const char* name : {"node_ns1", "num_nod_ns1", "node_ns2", "num_nod_ns2"}) file.drop(name);
  const RawFile imported = ImportFile(file);
  EXPECT_FALSE(imported.exists(std::string(kConstant) + "/collector/NODE_SET"));
  EXPECT_THAT(Ints(imported, Block(kConstant, "attributes/NODE_SET") + "/entid"), ElementsAre(7, 8));
}

// ---- Results

TEST_F(ExodusImport, WritesStatesWithTimeAndStep) {
  const RawFile file = ImportFile(SmallExodus());
  EXPECT_THAT(file.children("/post/singlestate"), ElementsAre("state000000000001", "state000000000002"));
  const std::string block = Block(kSecond, "entityresults/NODE/temp");
  EXPECT_THAT(Reals(file, block + "/indexval"), ElementsAre(1.5, 2));
  EXPECT_THAT(Ints(file, block + "/indexident"), ElementsAre(2, 2));
  EXPECT_THAT(Ints(file, Block(kConstant, "variablegroup/INDEX") + "/cnt"), ElementsAre(1, 1));
  EXPECT_THAT(Texts(file, Block(kConstant, "variablegroup/INDEX") + "/varkey"), ElementsAre("TIME", "STEP"));
}

TEST_F(ExodusImport, JoinsNodalVariables) {
  const RawFile file = ImportFile(SmallExodus());
  EXPECT_THAT(file.children(std::string(kFirst) + "/entityresults/NODE"),
              ElementsAre("Translational_Displacement", "reaction", "temp"));
  const std::string block = Block(kSecond, "entityresults/NODE/Translational_Displacement");
  EXPECT_EQ(file.attribute_int(block, "block"), 1000);
  EXPECT_EQ(file.attribute_int(block, "ncoo"), 3);
  EXPECT_EQ(file.shape(block + "/res"), (Shape{10, 3}));
  const std::vector<double> values = Reals(file, block + "/res");
  EXPECT_THAT(std::vector<double>(values.begin(), values.begin() + 6), ElementsAre(210, 310, 110, 211, 311, 111));
  EXPECT_EQ(Ints(file, block + "/entid").front(), 101);
  EXPECT_EQ(Text(file, block, "etypzone"), "ZONE");
}

TEST_F(ExodusImport, JoinsElementVariablesAndTheirPoints) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string results = std::string(kSecond) + "/elementresults/";
  EXPECT_THAT(file.children(results + "HEXA8"), ElementsAre("eqps", "stress"));
  const std::string stress = Block(results + "HEXA8", "stress");
  EXPECT_EQ(file.attribute_int(stress, "block"), 1100);
  EXPECT_EQ(Text(file, stress, "etypelem"), "HEXA8");
  EXPECT_EQ(file.attribute_int(stress, "numl"), 1);
  EXPECT_EQ(file.shape(stress + "/res"), (Shape{1, 1, 6}));
  EXPECT_THAT(Reals(file, stress + "/res"), ElementsAre(110, 310, 610, 210, 410, 510));
  EXPECT_THAT(Ints(file, stress + "/idele"), ElementsAre(11));
  EXPECT_THAT(Reals(file, stress + "/indexval"), ElementsAre(1.5, 2));
  const std::string eqps = Block(results + "HEXA8", "eqps");
  EXPECT_EQ(file.attribute_int(eqps, "numl"), 2);
  EXPECT_EQ(file.shape(eqps + "/res"), (Shape{1, 2, 1}));
  EXPECT_THAT(Reals(file, eqps + "/res"), ElementsAre(810, 710));
}

TEST_F(ExodusImport, GivesABlockTheVariablesThatItHas) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string quads = std::string(kFirst) + "/elementresults/QUAD4";
  EXPECT_THAT(file.children(quads), ElementsAre("eqps_1", "thick"));  // one point alone is no point
  EXPECT_THAT(Reals(file, Block(quads, "eqps_1") + "/res"), ElementsAre(800, 801));
  EXPECT_THAT(Ints(file, Block(quads, "thick") + "/idele"), ElementsAre(21, 22));
}

TEST_F(ExodusImport, LaysPointsAndComponentsOfAnElementSideBySide) {
  ForgedExodus file = SmallExodus();
  file.texts("name_elem_var", {"num_elem_var", "len_name"}, {"v_x_2", "v_x_1", "v_y_1", "v_y_2", "v_z_1", "v_z_2"});
  const RawFile imported =
      ImportFile(file.integers("elem_var_tab", {"num_el_blk", "num_elem_var"}, {1, 1, 1, 1, 1, 1}));
  const std::string block = Block(kFirst, "elementresults/HEXA8/v");
  EXPECT_EQ(imported.shape(block + "/res"), (Shape{1, 2, 3}));
  EXPECT_THAT(Reals(imported, block + "/res"), ElementsAre(200, 300, 500, 100, 400, 600));
}

TEST_F(ExodusImport, WritesNodeSetVariablesAsZones) {
  const RawFile file = ImportFile(SmallExodus());
  const std::string block = Block(kSecond, "entityresults/NODE/reaction/fixed");
  EXPECT_EQ(Text(file, block, "etypzone"), "fixed");
  EXPECT_EQ(file.attribute_int(block, "zoneid"), 7);
  EXPECT_EQ(Text(file, block, "etypvar"), "reaction");
  EXPECT_THAT(Ints(file, block + "/entid"), ElementsAre(104, 101));
  EXPECT_THAT(Reals(file, block + "/res"), ElementsAre(110, 111));
}

TEST_F(ExodusImport, KeepsZonesWithoutNamesOrOfOneNameApart) {
  ForgedExodus file = SmallExodus();
  file.integers("nset_var_tab", {"num_node_sets", "num_nset_var"}, {1, 1});
  file.doubles("vals_nset_var1ns2", {"time_step", "num_nod_ns2"}, {1, 2});
  EXPECT_THAT(ImportFile(file).children(std::string(kFirst) + "/entityresults/NODE/reaction"),
              ElementsAre("NODE_SET_8", "fixed"));
  file.texts("ns_names", {"num_node_sets", "len_name"}, {"a/b", "A_B"});
  EXPECT_THAT(ImportFile(file).children(std::string(kFirst) + "/entityresults/NODE/reaction"),
              ElementsAre("A_B_2", "a_b"));
}

TEST_F(ExodusImport, OfANameAtNodesAndInASetGivesOneVariable) {
  ForgedExodus file = SmallExodus();
  file.texts("name_nset_var", {"num_nset_var", "len_name"}, {"temp"});
  const RawFile imported = ImportFile(file);
  const std::string variable = std::string(kFirst) + "/entityresults/NODE/temp";
  EXPECT_THAT(imported.children(variable), ElementsAre("fixed", "orvblock"));
  EXPECT_THAT(Reals(imported, Block(variable, "fixed") + "/res"), ElementsAre(100, 101));
  EXPECT_EQ(Reals(imported, variable + "/orvblock/res").back(), 409);
  EXPECT_FALSE(imported.exists(std::string(kConstant) + "/variable/temp_2"));
}

TEST_F(ExodusImport, LetsAFilerFindTheNodesAndTheSetOfAVariable) {
  ForgedExodus file = SmallExodus();
  file.texts("name_nset_var", {"num_nset_var", "len_name"}, {"temp"});
  ORVFiler filer(Import(file.Write(TempPath("run.e"))).c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  std::vector<const char*> names = {"temp"};
  std::vector<ORVResult*> blocks;
  filer.GetResultBlks(names, blocks, -1, 1, false);
  EXPECT_EQ(blocks.size(), 2U);
  const auto values_of_zone = [&](int zone) {
    std::vector<ORVResult*> of_zone;
    for (ORVResult* block : blocks) {
      if (block->m_zoneid == zone) of_zone.push_back(block);
    }
    ORVResultValuesBase<double, int> values;
    values.m_state = 2;
    EXPECT_EQ(filer.GetValues(values, of_zone, -1, -1, "temp"), 0);
    std::vector<double> all(values.m_values, values.m_values + values.m_valueCount);
    values.DeleteAllocation(true);
    return all;
  };
  EXPECT_THAT(values_of_zone(0), ElementsAre(410, 411, 412, 413, 414, 415, 416, 417, 418, 419));
  EXPECT_THAT(values_of_zone(7), ElementsAre(110, 111));
}

TEST_F(ExodusImport, KeepsThePrecisionOfEachVariable) {
  ForgedExodus file = SmallExodus();
  for (const char* name : {"coordx", "coordy", "coordz", "vals_nod_var4", "vals_nod_var2"}) file.retype(name, NC_FLOAT);
  const RawFile imported = ImportFile(file);
  EXPECT_EQ(imported.type_size(Block(kConstant, "entityresults/NODE/COORDINATE") + "/res"), 4U);
  EXPECT_EQ(imported.type_size(Block(kFirst, "entityresults/NODE/temp") + "/res"), 4U);
  EXPECT_EQ(imported.values<float>(Block(kFirst, "entityresults/NODE/temp") + "/res").back(), 409.0F);
}

TEST_F(ExodusImport, WritesAllComponentsInDoublePrecisionIfOneIs) {
  const std::string joined = Block(kFirst, "entityresults/NODE/Translational_Displacement") + "/res";
  const std::string components[] = {"vals_nod_var1", "vals_nod_var2", "vals_nod_var3"};
  ForgedExodus floats = SmallExodus();
  for (const std::string& name : components) floats.retype(name, NC_FLOAT);
  EXPECT_EQ(ImportFile(floats).type_size(joined), 4U);
  for (const std::string& name : components) {
    ForgedExodus file = floats;
    EXPECT_EQ(ImportFile(file.retype(name, NC_DOUBLE)).type_size(joined), 8U) << name;
  }
}

TEST_F(ExodusImport, KeepsVariablesApartThatDifferInCaseOnly) {
  ForgedExodus file = SmallExodus();
  file.texts("name_nod_var", {"num_nod_var", "len_name"}, {"a", "A", "time", "a"});
  EXPECT_THAT(ImportFile(file).children(std::string(kFirst) + "/entityresults/NODE"),
              ElementsAre("A_2", "a", "a_3", "reaction", "time_2"));
}

TEST_F(ExodusImport, JoinsPairsInTwoDimensions) {
  ForgedExodus file = SmallExodus().dimension("num_dim", 2).drop("coordz");
  file.texts("name_nod_var", {"num_nod_var", "len_name"}, {"disp_x", "disp_y", "a", "b"});
  const RawFile imported = ImportFile(file);
  const std::string block = Block(kFirst, "entityresults/NODE/Translational_Displacement");
  EXPECT_EQ(imported.shape(block + "/res"), (Shape{10, 2}));
  EXPECT_EQ(imported.attribute_int(Block(kConstant, "variable/Translational_Displacement"), "rank"), 0);
  EXPECT_EQ(imported.attribute_int(Block(kConstant, "variable/Translational_Displacement"), "ncoo"), 2);
}

TEST_F(ExodusImport, OfStatesWithoutResultsHasNoStates) {
  ForgedExodus file;
  AddMesh(file);
  file.records(2).doubles("time_whole", {"time_step"}, {0.5, 1.5});
  const ProgramRun run = RunOrv({"import", file.Write(TempPath("run.e")), TempPath("imported.orv")});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.err, HasSubstr(": 10 nodes, 3 elements, 0 states, 1 variables\n"));
  EXPECT_THAT(RawFile(TempPath("imported.orv")).children("/post/singlestate"), IsEmpty());
}

TEST_F(ExodusImport, WritesUnitsAndOrigin) {
  const RawFile file = ImportFile(SmallExodus(), {"--units", "mm-t-s"});
  const std::string system = Block(kConstant, "system");
  EXPECT_EQ(Text(file, system, "title"), "a block on plates");
  EXPECT_EQ(Ints(file, Block(kConstant, "variable/Translational_Displacement") + "/mbunit"),
            (std::vector<std::int32_t>{1, 1, 1}));
  EXPECT_EQ(Ints(file, Block(kConstant, "variable/stress") + "/mdunit"), (std::vector<std::int32_t>{1, 1, 1, 1, 1, 1}));
}

TEST_F(ExodusImport, WritesEveryVersionOfTheFormat) {
  const std::string run = SmallExodus().Write(TempPath("run.e"));
  for (const std::string version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    const RawFile file(Import(run, {"--format-version", version}));
    EXPECT_EQ(file.children(std::string(kFirst) + "/elementresults/HEXA8").size(), 2U) << version;
    EXPECT_EQ(file.children(std::string(kConstant) + "/parts").size(), 1U) << version;
    EXPECT_EQ(file.children(std::string(kConstant) + "/collector").size(), 2U) << version;
  }
}

// ---- The command

TEST_F(ExodusImport, KnowsItsFilesByTheirNames) {
  for (const char* name : {"run.e", "run.ex2", "run.exo"}) {
    const ProgramRun run = RunOrv({"import", SmallExodus().Write(TempPath(name)), TempPath("imported.orv")});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, TempPath("imported.orv") + ": 10 nodes, 3 elements, 2 states, 8 variables\n");
  }
}

class ExodusImportFailure : public ExodusImport {
 protected:
  /// Nothing is left behind.
  void ExpectRefused(const std::string& in, const std::string& what, const std::vector<std::string>& options = {}) {
    std::filesystem::create_directories(TempPath("out"));
    std::vector<std::string> arguments = {"import", in, TempPath("out/new.orv")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ExpectTrouble(RunOrv(arguments), in, what);
    EXPECT_THAT(NamesIn(TempPath("out")), IsEmpty());
  }
};

TEST_F(ExodusImportFailure, OfAFileThatIsNone) {
  ExpectRefused(WriteFile("words.e", "words"), "is not an Exodus file");
  ExpectRefused(TempPath("none.exo"), "cannot be opened: No such file or directory");
}

TEST_F(ExodusImportFailure, OfAFileWithoutNodes) {
  ForgedExodus file;
  ExpectRefused(file.dimension("num_dim", 3).Write(TempPath("run.e")), "coordx: is missing");
}

TEST_F(ExodusImportFailure, OfADamagedFileInTheMiddleOfItsResults) {
  ExpectRefused(SmallExodus().drop("vals_elem_var9eb2").Write(TempPath("run.e")), "vals_elem_var9eb2: is missing");
}

TEST_F(ExodusImportFailure, OfACutFileUnlessPartIsEnough) {
  const std::string run = SmallExodus().Write(TempPath("run.e"));
  std::filesystem::resize_file(run, std::filesystem::file_size(run) - 1);
  ExpectRefused(run, "was cut off: 1 of 2 states are whole");
  const ProgramRun partial = RunOrv({"import", run, TempPath("imported.orv"), "--partial"});
  EXPECT_EQ(partial.exit_code, 0);
  EXPECT_EQ(partial.err, TempPath("imported.orv") + ": 10 nodes, 3 elements, 1 states, 8 variables\n" + run +
                             ": the run broke off; what is complete was taken\n");
  std::filesystem::resize_file(run, std::filesystem::file_size(run) - 1000);
  ExpectRefused(run, "was cut off: ", {"--partial"});
}

}  // namespace
