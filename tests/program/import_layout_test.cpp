// The tree, attributes and datasets of an imported file, seen by HDF5 alone, in each version of the format. The values
// of whole results are tested in import_facts_test.

#include <gmock/gmock.h>

#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Lines = std::vector<std::string>;

struct Version {
  const char* option;
  const char* header;  ///< version text of the file header
  bool is_single;      ///< blocks are one group

  friend std::ostream& operator<<(std::ostream& out, const Version& version) { return out << version.option; }
};

class ImportLayout : public ProgramTest, public testing::WithParamInterface<Version> {
 protected:
  RawFile ImportSmallRun() const {
    return RawFile(Import(WriteFile("small.frd", SmallRun()), {"--format-version", GetParam().option}));
  }

  bool single() const { return GetParam().is_single; }
  std::string Header(const std::string& block) const { return block + (single() ? "/orvblock" : "/header"); }
  std::string Data(const std::string& block) const { return block + (single() ? "/orvblock" : "/data"); }
  std::string Index(const std::string& block) const { return block + (single() ? "/orvblock" : "/index"); }
  std::string Variable(const std::string& name) const {
    return std::string("/post/constant/") + (single() ? "variable/" : "variables/") + name;
  }
};

constexpr char kCoordinate[] = "/post/constant/entityresults/NODE/COORDINATE";
constexpr char kTriangles[] = "/post/constant/connectivities/TRIA3";
constexpr char kStress[] = "/post/singlestate/state000000000001/entityresults/NODE/STRESS";
constexpr char kPlastic[] = "/post/singlestate/state000000000001/entityresults/NODE/PE";
constexpr char kComplex[] = "/post/singlestate/state000000000002/entityresults/NODE/Complex_Translational_Displacement";

std::string KindOf(H5T_class_t type_class) {
  switch (type_class) {
    case H5T_INTEGER:
      return "integer";
    case H5T_FLOAT:
      return "float";
    case H5T_STRING:
      return "text";
    default:
      return "other";
  }
}

/// Attributes in the order of their names, such as "ncoo integer 8 = 3" and "etyp text 256 = NODE".
Lines AttributesOf(const RawFile& raw, const std::string& path) {
  Lines lines;
  for (const std::string& name : raw.attributes(path)) {
    const H5T_class_t type_class = raw.attribute_class(path, name.c_str());
    std::string value;
    if (type_class == H5T_STRING) {
      value = raw.attribute_text(path, name.c_str());
      value.erase(value.find_last_not_of(' ') + 1);
    } else {
      value = std::to_string(raw.attribute_int(path, name.c_str()));
    }
    EXPECT_EQ(raw.attribute_rank(path, name.c_str()), 0) << name;
    lines.push_back(name + " " + KindOf(type_class) + " " + std::to_string(raw.attribute_size(path, name.c_str())) +
                    " = " + value);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// Datasets in the order of their names, such as "res float 4 [3 6]". None is filtered or can grow.
Lines DatasetsOf(const RawFile& raw, const std::string& path) {
  Lines lines;
  for (const std::string& name : raw.children(path)) {
    const std::string dataset = path + "/" + name;
    std::string shape;
    for (const hsize_t extent : raw.shape(dataset)) shape += (shape.empty() ? "" : " ") + std::to_string(extent);
    EXPECT_EQ(raw.layout(dataset), H5D_CONTIGUOUS) << name;
    EXPECT_EQ(raw.max_shape(dataset), raw.shape(dataset)) << name;
    lines.push_back(name + " " + KindOf(raw.type_class(dataset)) + " " + std::to_string(raw.type_size(dataset)) + " [" +
                    shape + "]");
  }
  return lines;
}

/// The parts of a block as they show in the tree.
void AddBlock(Lines& tree, const std::string& path, const Lines& data, const Lines& index, bool is_single) {
  tree.push_back(path);
  if (is_single) {
    Lines datasets = data;
    datasets.insert(datasets.end(), index.begin(), index.end());
    std::sort(datasets.begin(), datasets.end());
    tree.push_back(path + "/orvblock");
    for (const std::string& name : datasets) tree.push_back(path + "/orvblock/" + name);
    return;
  }
  tree.push_back(path + "/data");
  for (const std::string& name : data) tree.push_back(path + "/data/" + name);
  tree.push_back(path + "/header");
  if (!index.empty()) tree.push_back(path + "/index");
  for (const std::string& name : index) tree.push_back(path + "/index/" + name);
}

TEST_P(ImportLayout, HasTheGroupsOfItsVersion) {
  const RawFile raw = ImportSmallRun();
  const std::string version = GetParam().option;
  const std::string constant = "/post/constant/";
  const Lines result = single() ? Lines{"entid", "res"} : Lines{"entid", "fidglob", "res"};
  const Lines variable =
      single() ? Lines{"mbunit", "mdunit", "subscnt", "subscr", "subsoffs"} : Lines{"cid", "cname", "mbunit", "mdunit"};
  const Lines index = {"indexident", "indexval"};
  const Lines attributes = single() ? Lines{"entid"} : Lines{"entid", "title"};
  const Lines element_attributes = single() ? Lines{"entid", "uid"} : Lines{"entid", "title", "uid"};
  Lines tree = {"/post", "/post/constant", constant + "attributes"};
  AddBlock(tree, constant + "attributes/NODE", attributes, {}, single());
  AddBlock(tree, constant + "attributes/TRIA3", element_attributes, {}, single());
  tree.insert(tree.end(), {constant + "collector", constant + "connectivities"});
  AddBlock(tree, kTriangles, {"ic", "idele", "pid"}, {}, single());
  tree.insert(tree.end(), {constant + "entityresults", constant + "entityresults/NODE"});
  AddBlock(tree, kCoordinate, result, {}, single());
  if (version == "2.1" || version == "2.2") {
    tree.push_back(constant + "identifiers");
    AddBlock(tree, constant + "identifiers/NODE", {"entid"}, {}, true);
    AddBlock(tree, constant + "identifiers/TRIA3", {"entid"}, {}, true);
  }
  tree.push_back(constant + "indices");
  if (single()) tree.push_back(constant + "indices/orvblock");
  if (!single()) {
    tree.insert(tree.end(),
                {constant + "indices/data", constant + "indices/data/etypindex", constant + "indices/header"});
  }
  tree.push_back(constant + "parts");
  AddBlock(tree, constant + "parts/PART", {"mid", "pid", "title"}, {}, single());
  tree.push_back(constant + "system");
  if (!single()) tree.insert(tree.end(), {constant + "system/data", constant + "system/header"});
  tree.push_back(constant + "text");
  tree.push_back(constant + (single() ? "variable" : "variables"));
  Lines names = {"COORDINATE", "Complex_Translational_Displacement", "PE", "STRESS"};
  if (single()) names.insert(names.end(), {"VALUE", "STEP"});  // what the index types are
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) AddBlock(tree, Variable(name), variable, {}, single());
  if (single()) {
    tree.push_back(constant + "variablegroup");
    for (const char* name : {"COORDINATE", "Complex_Translational_Displacement", "INDEX", "PE", "STRESS"}) {
      AddBlock(tree, constant + "variablegroup/" + name, {"cnt", "offs", "varkey"}, {}, true);
    }
  }
  tree.insert(tree.end(), {"/post/orvheader", "/post/orvheader/orvheader", "/post/singlestate"});
  const std::string states = "/post/singlestate/state00000000000";
  tree.insert(tree.end(), {states + "1", states + "1/entityresults", states + "1/entityresults/NODE"});
  AddBlock(tree, kPlastic, result, index, single());
  AddBlock(tree, kStress, result, index, single());
  tree.insert(tree.end(), {states + "2", states + "2/entityresults", states + "2/entityresults/NODE"});
  AddBlock(tree, kComplex, result, index, single());
  EXPECT_THAT(raw.tree(), ElementsAreArray(tree));
}

TEST_P(ImportLayout, BeginsWithTheFileHeaderOfItsVersion) {
  const RawFile raw = ImportSmallRun();
  std::string expected = "\x89ORV\r\n\x1A\n" + std::string(GetParam().header) + '\0';
  expected.resize(64, ' ');
  EXPECT_THAT(raw.texts("/post/orvheader/orvheader"), ElementsAre(expected));
  EXPECT_THAT(raw.shape("/post/orvheader/orvheader"), ElementsAre());
}

TEST_P(ImportLayout, DescribesATensorVariable) {
  const RawFile raw = ImportSmallRun();
  const std::string block = Variable("STRESS");
  if (!single()) {
    EXPECT_THAT(AttributesOf(raw, Header(block)),
                ElementsAre("block integer 8 = 30", "blocktype text 256 = variables", "etypvar text 256 = STRESS",
                            "idtrans integer 8 = 0", "ncoo integer 8 = 6", "ndim integer 8 = 3", "rank integer 8 = 2"));
    EXPECT_THAT(DatasetsOf(raw, Data(block)),
                ElementsAre("cid integer 4 [6]", "cname text 256 [6]", "mbunit integer 4 [6]", "mdunit integer 4 [6]"));
    EXPECT_THAT(raw.values<std::int32_t>(Data(block) + "/cid"), ElementsAre(1, 2, 3, 4, 5, 6));
    Lines names = {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"};
    for (std::string& name : names) name.resize(256, ' ');
    EXPECT_EQ(raw.texts(Data(block) + "/cname"), names);
  } else {
    EXPECT_THAT(AttributesOf(raw, Header(block)),
                ElementsAre("block integer 8 = 30", "blocktype text 256 = variable", "lenb integer 4 = 0",
                            "lend integer 4 = 0", "lvmap integer 4 = 0", "ncoo integer 8 = 6", "ndim integer 8 = 3",
                            "rank integer 8 = 2", "subslen integer 4 = 18", "tensor integer 4 = 1",
                            "type text 256 = ", "varclass text 256 = CLASS_STRESS", "varkey text 256 = STRESS",
                            "varnam text 256 = STRESS"));
    EXPECT_THAT(DatasetsOf(raw, Data(block)),
                ElementsAre("mbunit integer 4 [6]", "mdunit integer 4 [6]", "subscnt integer 4 [6]",
                            "subscr text 1 [18]", "subsoffs integer 4 [6]"));
    std::string labels;
    for (const std::string& letter : raw.texts(Data(block) + "/subscr")) labels += letter;
    EXPECT_EQ(labels, "SXXSYYSZZSXYSYZSZX");
    EXPECT_THAT(raw.values<std::int32_t>(Data(block) + "/subscnt"), ElementsAre(3, 3, 3, 3, 3, 3));
    EXPECT_THAT(raw.values<std::int32_t>(Data(block) + "/subsoffs"), ElementsAre(0, 3, 6, 9, 12, 15));
  }
  EXPECT_THAT(raw.values<std::int32_t>(Data(block) + "/mbunit"), ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_THAT(raw.values<std::int32_t>(Data(block) + "/mdunit"), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST_P(ImportLayout, DescribesScalarsAndVectors) {
  const RawFile raw = ImportSmallRun();
  const auto shape_of = [&](const std::string& name) {
    const std::string header = Header(Variable(name));
    return std::vector<std::int64_t>{raw.attribute_int(header, "ncoo"), raw.attribute_int(header, "rank"),
                                     raw.attribute_int(header, "ndim")};
  };
  EXPECT_THAT(shape_of("COORDINATE"), ElementsAre(3, 1, 3));
  EXPECT_THAT(shape_of("Complex_Translational_Displacement"), ElementsAre(3, 1, 3));
  EXPECT_THAT(shape_of("PE"), ElementsAre(1, 0, 0));
  if (!single()) return;
  const auto class_of = [&](const std::string& name) {
    return raw.attribute_text(Header(Variable(name)), "varclass").substr(0, 13);
  };
  EXPECT_EQ(class_of("COORDINATE"), "CLASS_LENGTH ");
  EXPECT_EQ(class_of("Complex_Translational_Displacement"), "CLASS_LENGTH ");
  EXPECT_EQ(class_of("PE"), "             ");
  EXPECT_EQ(raw.attribute_int(Header(Variable("COORDINATE")), "tensor"), 1);
  EXPECT_EQ(raw.attribute_int(Header(Variable("PE")), "tensor"), 0);
}

TEST_P(ImportLayout, StoresElementsByType) {
  const RawFile raw = ImportSmallRun();
  Lines attributes = {"block integer 8 = 300",     "blocktype text 256 = connectivities",
                      "etypelem text 256 = TRIA3", "etypnode text 256 = NODE",
                      "etyppart text 256 = PART",  "nbfloat integer 8 = 0",
                      "nbint integer 8 = 0",       "ndim integer 8 = 2",
                      "nele integer 8 = 1",        "nindex integer 8 = 0",
                      "npele integer 8 = 3"};
  if (single()) attributes.insert(attributes.begin() + 2, "etyp text 256 = TRIA3");
  EXPECT_EQ(AttributesOf(raw, Header(kTriangles)), attributes);
  EXPECT_THAT(DatasetsOf(raw, Data(kTriangles)),
              ElementsAre("ic integer 4 [1 3]", "idele integer 4 [1]", "pid integer 4 [1]"));
  EXPECT_THAT(raw.values<std::int32_t>(Data(kTriangles) + "/ic"), ElementsAre(1, 2, 5));
  EXPECT_THAT(raw.values<std::int32_t>(Data(kTriangles) + "/idele"), ElementsAre(11));
  EXPECT_THAT(raw.values<std::int32_t>(Data(kTriangles) + "/pid"), ElementsAre(1));
}

TEST_P(ImportLayout, StoresTheMaterialsOfElementsAsParts) {
  const RawFile raw = ImportSmallRun();
  const std::string parts = "/post/constant/parts/PART";
  Lines attributes = {"block integer 8 = 100", "blocktype text 256 = parts", "etyppart text 256 = PART",
                      "nindex integer 8 = 0", "npart integer 8 = 1"};
  if (single()) {
    attributes.insert(attributes.begin() + 3, "length integer 4 = 5");
    attributes.push_back("off integer 4 = 6");
  }
  EXPECT_EQ(AttributesOf(raw, Header(parts)), attributes);
  EXPECT_THAT(raw.values<std::int32_t>(Data(parts) + "/pid"), ElementsAre(1));
  EXPECT_THAT(raw.values<std::int32_t>(Data(parts) + "/mid"), ElementsAre(1));
  std::string title = "STEEL";
  if (!single()) title.resize(256, ' ');
  EXPECT_THAT(raw.texts(Data(parts) + "/title"), ElementsAre(title));
}

TEST_P(ImportLayout, StoresTypeAndGroupOfElementsAsAttributes) {
  const RawFile raw = ImportSmallRun();
  const std::string triangles = "/post/constant/attributes/TRIA3";
  EXPECT_EQ(raw.attribute_int(Header(triangles), "nent"), 1);
  EXPECT_EQ(raw.attribute_int(Header(triangles), "nuid"), 2);
  EXPECT_THAT(raw.values<std::int32_t>(Data(triangles) + "/entid"), ElementsAre(11));
  EXPECT_THAT(raw.values<std::int32_t>(Data(triangles) + "/uid"), ElementsAre(7, 0));
}

TEST_P(ImportLayout, StoresTheIdsOfNodesWithoutTitles) {
  const RawFile raw = ImportSmallRun();
  const std::string nodes = "/post/constant/attributes/NODE";
  EXPECT_EQ(raw.attribute_int(Header(nodes), "nuid"), 0);
  EXPECT_THAT(raw.values<std::int32_t>(Data(nodes) + "/entid"), ElementsAre(1, 2, 5));
  if (single()) {
    EXPECT_EQ(raw.attribute_int(Header(nodes), "length"), 0);
  }
  const std::string identifiers = "/post/constant/identifiers/NODE/orvblock";
  if (raw.exists(identifiers)) {
    EXPECT_EQ(raw.attribute_int(identifiers, "block"), 250);
    EXPECT_THAT(raw.values<std::int32_t>(identifiers + "/entid"), ElementsAre(1, 2, 5));
  }
}

/// The attributes of a result at nodes.
Lines ResultAttributes(bool is_single, int kind, const std::string& variable, int components, int entities, int index) {
  Lines lines = {"block integer 8 = " + std::to_string(kind),
                 "blocktype text 256 = entityresults",
                 "dmpswitch integer 8 = 0",
                 "etyp text 256 = NODE",
                 "etypframe text 256 = FRAME",
                 "etypvar text 256 = " + variable,
                 "etypzone text 256 = ZONE",
                 "fswitch integer 8 = 0",
                 "ncoo integer 8 = " + std::to_string(components),
                 "nent integer 8 = " + std::to_string(entities),
                 "nindex integer 8 = " + std::to_string(index),
                 "zoneid integer 8 = 0"};
  if (is_single) lines.insert(lines.begin() + 7, "fidglob integer 8 = 0");
  if (is_single) lines.insert(lines.begin() + 9, "indexic integer 4 = 0");
  return lines;
}

TEST_P(ImportLayout, StoresCoordinatesInTheConstantSection) {
  const RawFile raw = ImportSmallRun();
  EXPECT_EQ(AttributesOf(raw, Header(kCoordinate)), ResultAttributes(single(), 1000, "COORDINATE", 3, 3, 0));
  Lines datasets = {"entid integer 4 [3]", "res float 4 [3 3]"};
  if (!single()) datasets.insert(datasets.begin() + 1, "fidglob integer 4 [1]");
  EXPECT_EQ(DatasetsOf(raw, Data(kCoordinate)), datasets);
  EXPECT_THAT(raw.values<std::int32_t>(Data(kCoordinate) + "/entid"), ElementsAre(1, 2, 5));
  EXPECT_THAT(raw.values<float>(Data(kCoordinate) + "/res"), ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, -7.45058e-9F));
}

TEST_P(ImportLayout, StoresResultsInTheirStateWithIdsAndIndex) {
  const RawFile raw = ImportSmallRun();
  EXPECT_EQ(AttributesOf(raw, Header(kStress)), ResultAttributes(single(), 1000, "STRESS", 6, 3, 2));
  EXPECT_EQ(AttributesOf(raw, Header(kPlastic)), ResultAttributes(single(), 1000, "PE", 1, 2, 2));
  if (single()) {
    EXPECT_THAT(DatasetsOf(raw, Data(kStress)), ElementsAre("entid integer 4 [3]", "indexident integer 4 [2]",
                                                            "indexval float 8 [2]", "res float 4 [3 6]"));
  } else {
    EXPECT_THAT(DatasetsOf(raw, Data(kStress)),
                ElementsAre("entid integer 4 [3]", "fidglob integer 4 [1]", "res float 4 [3 6]"));
    EXPECT_THAT(DatasetsOf(raw, Index(kStress)), ElementsAre("indexident integer 4 [2]", "indexval float 8 [2]"));
  }
  EXPECT_THAT(raw.values<float>(Data(kStress) + "/res"),
              ElementsAre(1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6, 0.1F, 0.2F, 0.3F, 0.4F, 0.5F, 0.6F));
  EXPECT_THAT(raw.values<std::int32_t>(Data(kStress) + "/entid"), ElementsAre(1, 2, 5));
  EXPECT_THAT(raw.values<float>(Data(kPlastic) + "/res"), ElementsAre(0.25F, -1.68156e-44F));
  EXPECT_THAT(raw.values<std::int32_t>(Data(kPlastic) + "/entid"), ElementsAre(1, 5));
  for (const char* block : {kStress, kPlastic}) {
    EXPECT_THAT(raw.values<double>(Index(block) + "/indexval"), ElementsAre(0.5, 1));
    EXPECT_THAT(raw.values<std::int32_t>(Index(block) + "/indexident"), ElementsAre(1, 1));
  }
}

TEST_P(ImportLayout, StoresComplexResultsAsPairs) {
  const RawFile raw = ImportSmallRun();
  EXPECT_EQ(AttributesOf(raw, Header(kComplex)),
            ResultAttributes(single(), 1001, "Complex_Translational_Displacement", 3, 3, 2));
  EXPECT_THAT(raw.shape(Data(kComplex) + "/res"), ElementsAre(3, 3, 2));
  EXPECT_EQ(raw.type_size(Data(kComplex) + "/res"), 4U);
  EXPECT_THAT(raw.values<float>(Data(kComplex) + "/res"),
              ElementsAre(1, -1, 2, -2, 3, -3, 4, -4, 5, -5, 6, -6, 7, -7, 8, -8, 9, -9));
  EXPECT_THAT(raw.values<double>(Index(kComplex) + "/indexval"), ElementsAre(396.5944823, 2));
  EXPECT_THAT(raw.values<std::int32_t>(Index(kComplex) + "/indexident"), ElementsAre(2, 2));
}

TEST_P(ImportLayout, IsPrintedByH5dump) {
  const std::string path = Import(WriteFile("small.frd", SmallRun()), {"--format-version", GetParam().option});
  const ProgramRun run = RunCommand("h5dump", {"-H", path});
  if (run.exit_code == 127) GTEST_SKIP() << "h5dump is not here";
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  for (const char* name : {"GROUP \"post\"", "GROUP \"TRIA3\"", "GROUP \"state000000000002\"", "DATASET \"res\""}) {
    EXPECT_NE(run.out.find(name), std::string::npos) << name;
  }
  const ProgramRun values = RunCommand("h5dump", {"-d", Data(kPlastic) + "/entid", path});
  EXPECT_EQ(values.exit_code, 0) << values.err;
  EXPECT_NE(values.out.find("(0): 1, 5"), std::string::npos) << values.out;
}

constexpr Version kVersions[] = {
    {"1.0", "1 0 0", false}, {"1.1", "1 1 0", false}, {"1.2", "1 2 0", false},
    {"2.0", "2 0 0", true},  {"2.1", "2 1 0", true},  {"2.2", "2 2 0", true},
};

INSTANTIATE_TEST_SUITE_P(Versions, ImportLayout, testing::ValuesIn(kVersions), [](const auto& test) {
  std::string name = test.param.option;
  name[1] = '_';
  return "of_" + name;
});

class ImportDefault : public ProgramTest {};

TEST_F(ImportDefault, IsTheNewestVersion) {
  const RawFile raw(Import(WriteFile("small.frd", SmallRun())));
  EXPECT_EQ(raw.texts("/post/orvheader/orvheader").at(0).substr(8, 6), std::string("2 2 0\0", 6));
}

}  // namespace
