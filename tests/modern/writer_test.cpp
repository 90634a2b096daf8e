// What the modern writer leaves in a file, seen with HDF5 alone, in versions of both layouts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <limits>
#include <numeric>
#include <string>
#include <type_traits>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using testing::DoubleEq;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A stored text without its padding.
std::string Trimmed(std::string text) {
  text.erase(text.find_last_not_of(std::string(" \0", 2)) + 1);
  return text;
}

class ModernWriter : public OrvTest, public testing::WithParamInterface<_ORVVersion> {
 protected:
  ModernWriter() { MaySilenceHdf5(); }

  bool IsSingle() const { return GetParam() >= ORV_VERSION_2_0; }
  orv::Writer::Options Options() const {
    orv::Writer::Options options;
    options.version = GetParam();
    return options;
  }
  orv::Writer MakeWriter() const { return {path_, Options()}; }
  /// Group of a part of a block.
  std::string Part(const std::string& block, const char* part) const {
    return block + "/" + (IsSingle() ? "orvblock" : part);
  }
  std::string Variable(const std::string& name, const char* part) const {
    return Part((IsSingle() ? "/post/constant/variable/" : "/post/constant/variables/") + name, part);
  }
  static std::string State(int state) { return ForgedModel::StateGroup(state); }
  static std::string TextAt(const RawFile& file, const std::string& path, const char* name) {
    return Trimmed(file.attribute_text(path, name));
  }
  static std::vector<std::string> TextsAt(const RawFile& file, const std::string& path) {
    std::vector<std::string> texts = file.texts(path);
    for (std::string& text : texts) text = Trimmed(text);
    return texts;
  }

  const std::string path_ = TempPath("written.orv");
  const std::vector<int> ids_ = {7, 8};
};

INSTANTIATE_TEST_SUITE_P(Versions, ModernWriter,
                         testing::Values(ORV_VERSION_1_0, ORV_VERSION_1_2, ORV_VERSION_2_0, ORV_VERSION_2_2),
                         [](const auto& version) { return "V" + std::to_string(version.param); });

TEST_P(ModernWriter, IsMovedAndNotCopied) {
  static_assert(std::is_nothrow_move_constructible_v<orv::Writer>);
  static_assert(!std::is_copy_constructible_v<orv::Writer>);
  static_assert(std::is_nothrow_move_constructible_v<orv::Writer::StateScope>);
  orv::Writer made = MakeWriter();
  orv::Writer writer = std::move(made);
  writer.define({"Heat", {"T"}});
  orv::Writer::StateScope first = writer.state(1);
  orv::Writer::StateScope state = std::move(first);
  state.write("Heat", ids_, std::vector<float>{1, 2});
  state.commit();
  EXPECT_EQ(writer.state_count(), 1);
}

TEST_P(ModernWriter, MakesAFileOfTheVersionAskedFor) {
  { const orv::Writer writer = MakeWriter(); }
  const std::string header = RawFile(path_).texts("/post/orvheader/orvheader").at(0);
  const char* numbers[] = {"1 0 0", "1 1 0", "1 2 0", "2 0 0", "2 1 0", "2 2 0"};
  EXPECT_EQ(header.substr(8, 5), numbers[GetParam()]);
}

TEST_P(ModernWriter, WritesOriginAndUnits) {
  orv::Writer::Options options = Options();
  options.origin.title = "A plate";
  options.origin.solver = "solve";
  options.origin.solver_version = "3.1";
  options.origin.unit_system = "mm-t-s";
  options.origin.base_units = {{"Length", "mm", 0.001}, {"Time", "s", 1}};
  options.origin.derived_units = {{"mm/s", {{"mm", 1}, {"s", -1}}}};
  { const orv::Writer writer(path_, options); }
  const RawFile file(path_);
  const std::string header = Part("/post/constant/system", "header"), data = Part("/post/constant/system", "data");
  EXPECT_EQ(TextAt(file, header, "title"), "A plate");
  EXPECT_EQ(TextAt(file, header, "solver_name"), "solve");
  EXPECT_EQ(TextAt(file, header, "solver_vers"), "3.1");
  EXPECT_EQ(TextAt(file, header, "sys"), "mm-t-s");
  EXPECT_EQ(file.attribute_int(header, "nbunit"), 2);
  EXPECT_EQ(file.attribute_int(header, "ndunit"), 1);
  EXPECT_THAT(file.values<std::int32_t>(data + "/ubid"), ElementsAre(1, 2));
  EXPECT_THAT(TextsAt(file, data + "/ubtyp"), ElementsAre("Length", "Time"));
  EXPECT_THAT(TextsAt(file, data + "/ubnam"), ElementsAre("mm", "s"));
  EXPECT_THAT(file.values<float>(data + "/ubcon"), ElementsAre(0.001F, 1.0F));
  EXPECT_THAT(file.values<std::int32_t>(data + "/udid"), ElementsAre(3));
  EXPECT_THAT(TextsAt(file, data + "/udnam"), ElementsAre("mm/s"));
  EXPECT_THAT(file.values<std::int32_t>(data + "/ndbunit"), ElementsAre(2));
  EXPECT_THAT(file.values<std::int32_t>(data + "/udbid"), ElementsAre(1, 2));
  EXPECT_THAT(file.values<float>(data + "/udbexp"), ElementsAre(1.0F, -1.0F));
}

TEST_P(ModernWriter, WritesWhatTheIndexColumnsAre) {
  orv::Writer::Options options = Options();
  options.origin.base_units = {{"Time", "s", 1}};
  options.index = {{"TIME", "s"}, {"STEP"}};
  { const orv::Writer writer(path_, options); }
  const RawFile file(path_);
  const std::string header = Part("/post/constant/indices", "header");
  EXPECT_EQ(file.attribute_int(header, "nindex"), 2);
  EXPECT_THAT(file.values<std::int32_t>(Variable("TIME", "data") + "/ubid"), ElementsAre(1));
  if (!IsSingle()) {
    EXPECT_THAT(TextsAt(file, "/post/constant/indices/data/etypindex"), ElementsAre("TIME", "STEP"));
    return;
  }
  EXPECT_EQ(TextAt(file, header, "etypvar"), "INDEX");
  const std::string group = "/post/constant/variablegroup/INDEX/orvblock";
  EXPECT_THAT(TextsAt(file, group + "/varkey"), ElementsAre("TIME", "STEP"));
  EXPECT_THAT(file.values<std::int32_t>(group + "/offs"), ElementsAre(0, 1));
  EXPECT_EQ(file.attribute_int(group, "nvar"), 2);
}

TEST_P(ModernWriter, DefinesAVariableAndItsGroup) {
  orv::Writer::Options options = Options();
  options.origin.base_units = {{"Length", "mm", 0.001}};
  orv::Writer writer(path_, options);
  writer.define({"Path", {"X", "YY", "Z"}, orv::Shape::vector, "mm", "CLASS_LENGTH"});
  const RawFile file(path_);
  const std::string header = Variable("Path", "header"), data = Variable("Path", "data");
  EXPECT_EQ(file.attribute_int(header, "block"), 30);
  EXPECT_EQ(file.attribute_int(header, "ncoo"), 3);
  EXPECT_EQ(file.attribute_int(header, "rank"), 1);
  EXPECT_EQ(file.attribute_int(header, "ndim"), 3);
  EXPECT_THAT(file.values<std::int32_t>(data + "/mbunit"), ElementsAre(1, 1, 1));
  EXPECT_THAT(file.values<std::int32_t>(data + "/ubid"), ElementsAre(1, 1, 1));
  EXPECT_THAT(file.values<float>(data + "/ubexp"), ElementsAre(1.0F, 1.0F, 1.0F));
  if (!IsSingle()) {
    EXPECT_EQ(TextAt(file, header, "etypvar"), "Path");
    EXPECT_THAT(TextsAt(file, data + "/cname"), ElementsAre("X", "YY", "Z"));
    EXPECT_THAT(file.values<std::int32_t>(data + "/cid"), ElementsAre(1, 2, 3));
    return;
  }
  EXPECT_EQ(TextAt(file, header, "varnam"), "Path");
  EXPECT_EQ(TextAt(file, header, "varkey"), "Path");
  EXPECT_EQ(TextAt(file, header, "varclass"), "CLASS_LENGTH");
  EXPECT_EQ(file.attribute_int(header, "tensor"), 1);
  EXPECT_THAT(file.values<std::int32_t>(data + "/subscnt"), ElementsAre(1, 2, 1));
  EXPECT_THAT(file.values<std::int32_t>(data + "/subsoffs"), ElementsAre(0, 1, 3));
  EXPECT_THAT(file.texts(data + "/subscr"), ElementsAre("X", "Y", "Y", "Z"));
  const std::string group = "/post/constant/variablegroup/Path/orvblock";
  EXPECT_EQ(file.attribute_int(group, "ncoo"), 3);
  EXPECT_THAT(TextsAt(file, group + "/varkey"), ElementsAre("Path"));
  EXPECT_THAT(file.values<std::int32_t>(group + "/cnt"), ElementsAre(3));
}

TEST_P(ModernWriter, WritesElements) {
  orv::Writer writer = MakeWriter();
  orv::Elements shells;
  shells.type = "QUAD4";
  shells.nodes_per_element = 4;
  shells.ids = {11, 12};
  shells.nodes = {1, 2, 3, 4, 2, 5, 6, 3};
  shells.family = "SHELL";
  shells.dimension = 2;
  writer.elements(shells);
  writer.elements(orv::Elements());  // none: nothing
  const RawFile file(path_);
  const std::string block = "/post/constant/connectivities/QUAD4";
  const std::string header = Part(block, "header"), data = Part(block, "data");
  EXPECT_EQ(file.attribute_int(header, "nele"), 2);
  EXPECT_EQ(file.attribute_int(header, "npele"), 4);
  EXPECT_EQ(file.attribute_int(header, "ndim"), 2);
  EXPECT_EQ(TextAt(file, header, "etyppart"), "PART");
  EXPECT_EQ(TextAt(file, header, "etypnode"), "NODE");
  if (IsSingle()) {
    EXPECT_EQ(TextAt(file, header, "etyp"), "SHELL");
  }
  EXPECT_THAT(file.values<std::int32_t>(data + "/idele"), ElementsAre(11, 12));
  EXPECT_THAT(file.values<std::int32_t>(data + "/pid"), ElementsAre(1, 1));
  EXPECT_THAT(file.values<std::int32_t>(data + "/ic"), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(file.children("/post/constant/connectivities"), ElementsAre("QUAD4"));
}

TEST_P(ModernWriter, RefusesElementsWhoseListsDoNotGoTogether) {
  orv::Writer writer = MakeWriter();
  orv::Elements elements;
  elements.type = "LINE2";
  elements.nodes_per_element = 2;
  elements.ids = {1, 2};
  elements.nodes = {1, 2, 3};
  EXPECT_THAT(ErrorOf([&] { writer.elements(elements); }), HasSubstr("lists of unequal lengths"));
  elements.nodes = {1, 2, 3, 4};
  elements.parts = {1};
  EXPECT_THAT(ErrorOf([&] { writer.elements(elements); }), HasSubstr("lists of unequal lengths"));
  elements.parts = {};
  elements.nodes_per_element = 0;
  EXPECT_THAT(ErrorOf([&] { writer.elements(elements); }), HasSubstr("lists of unequal lengths"));
  elements.nodes_per_element = 2;
  elements.ids = {1, 1LL << 31};
  EXPECT_THAT(ErrorOf([&] { writer.elements(elements); }), HasSubstr("id 2147483648 does not fit into 32 bits"));
  EXPECT_FALSE(RawFile(path_).exists("/post/constant/connectivities/LINE2"));
}

TEST_P(ModernWriter, WritesElementsOfATypeOnce) {
  orv::Writer writer = MakeWriter();
  orv::Elements elements;
  elements.type = "LINE2";
  elements.nodes_per_element = 2;
  elements.ids = {1};
  elements.nodes = {1, 2};
  writer.elements(elements);
  EXPECT_THAT(ErrorOf([&] { writer.elements(elements); }), HasSubstr("elements of type \"LINE2\" cannot be written"));
}

TEST_P(ModernWriter, WritesPartsOfEachType) {
  orv::Writer writer = MakeWriter();
  writer.parts({{1, "one", 7}, {2, "longer", {}, 3}, {3, "layer", {}, {}, "LAYER"}, {4, "four"}});
  writer.parts({});
  const RawFile file(path_);
  const std::string header = Part("/post/constant/parts/PART", "header"),
                    data = Part("/post/constant/parts/PART", "data");
  EXPECT_EQ(file.attribute_int(header, "npart"), 3);
  EXPECT_THAT(file.values<std::int32_t>(data + "/pid"), ElementsAre(1, 2, 4));
  EXPECT_THAT(file.values<std::int32_t>(data + "/mid"), ElementsAre(7, 0, 0));
  EXPECT_THAT(file.values<std::int32_t>(data + "/mtyp"), ElementsAre(0, 3, 0));
  EXPECT_THAT(TextsAt(file, data + "/title"), ElementsAre("one", "longer", "four"));
  EXPECT_EQ(file.type_size(data + "/title"), IsSingle() ? 8U : 256U) << "two more than the longest title has";
  const std::string layers = Part("/post/constant/parts/LAYER", "data");
  EXPECT_THAT(file.values<std::int32_t>(layers + "/pid"), ElementsAre(3));
  EXPECT_FALSE(file.exists(layers + "/mid"));
}

TEST_P(ModernWriter, WritesNodesAsConstantCoordinates) {
  orv::Writer writer = MakeWriter();
  writer.nodes(std::array<std::uint64_t, 2>{7, 8}, std::vector<double>{1, 2, 3, 4, 5, 6.5});
  const RawFile file(path_);
  const std::string block = "/post/constant/entityresults/NODE/COORDINATE";
  const std::string header = Part(block, "header"), data = Part(block, "data");
  EXPECT_EQ(file.attribute_int(header, "block"), 1000);
  EXPECT_EQ(file.attribute_int(header, "nindex"), 0);
  EXPECT_EQ(file.type_size(data + "/res"), 8U);
  EXPECT_THAT(file.values<double>(data + "/res"), ElementsAre(1, 2, 3, 4, 5, 6.5));
  EXPECT_THAT(file.values<std::int32_t>(data + "/entid"), ElementsAre(7, 8));
  EXPECT_TRUE(file.exists(Variable("COORDINATE", "header")));
}

TEST_P(ModernWriter, WritesAStateWithItsIndex) {
  orv::Writer::Options options = Options();
  options.index = {{"TIME"}, {"STEP"}};
  orv::Writer writer(path_, options);
  writer.define({"Speed", {"U", "W"}});
  for (const double time : {0.5, 0.75}) {
    orv::Writer::StateScope state = writer.state(std::vector<double>{time, 9});
    state.write("speed", ids_, std::vector<float>{1, 2, 3, 4});
    state.commit();
  }
  EXPECT_EQ(writer.state_count(), 2);
  const RawFile file(path_);
  EXPECT_THAT(file.children("/post/singlestate"), ElementsAre("state000000000001", "state000000000002"));
  const std::string block = State(2) + "/entityresults/NODE/Speed";
  const std::string header = Part(block, "header"), data = Part(block, "data"), index = Part(block, "index");
  EXPECT_EQ(TextAt(file, header, "etypvar"), "Speed");
  EXPECT_EQ(TextAt(file, header, "etyp"), "NODE");
  EXPECT_EQ(file.attribute_int(header, "nent"), 2);
  EXPECT_EQ(file.attribute_int(header, "ncoo"), 2);
  EXPECT_EQ(file.attribute_int(header, "nindex"), 2);
  EXPECT_EQ(file.type_size(data + "/res"), 4U);
  EXPECT_THAT(file.shape(data + "/res"), ElementsAre(2, 2));
  EXPECT_THAT(file.values<float>(data + "/res"), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(file.values<double>(index + "/indexval"), ElementsAre(0.75, 9));
  EXPECT_THAT(file.values<std::int32_t>(index + "/indexident"), ElementsAre(2, 2));
}

TEST_P(ModernWriter, WritesElementsInLayersAndPairsInZones) {
  orv::Writer writer = MakeWriter();
  writer.define({"Heat", {"T"}});
  orv::Writer::StateScope state = writer.state(1);
  state.write("Heat", ids_, std::vector<float>{1, 2, 3, 4}, {"QUAD4", 2});
  state.write("Heat", ids_, std::vector<float>{1, 2, 3, 4}, {"NODE", 0, true, "inner"});
  state.write("Heat", ids_, std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}, {"TRIA3", 2, true});
  state.commit();
  const RawFile file(path_);
  const auto look = [&](const std::string& block, int kind, std::vector<hsize_t> shape, const char* ids) {
    const std::string header = Part(State(1) + block, "header"), data = Part(State(1) + block, "data");
    EXPECT_EQ(file.attribute_int(header, "block"), kind) << block;
    EXPECT_EQ(file.shape(data + "/res"), shape) << block;
    EXPECT_TRUE(file.exists(data + "/" + ids)) << block;
  };
  look("/elementresults/QUAD4/Heat", 1100, {2, 2, 1}, "idele");
  look("/entityresults/NODE/Heat/inner", 1001, {2, 1, 2}, "entid");
  look("/elementresults/TRIA3/Heat", 1101, {2, 2, 1, 2}, "idele");
  const std::string zone = Part(State(1) + "/entityresults/NODE/Heat/inner", "header");
  EXPECT_EQ(TextAt(file, zone, "etypzone"), "inner");
}

TEST_P(ModernWriter, PacksValuesOfWhichItKeepsSomeDigits) {
  orv::Writer writer(path_, Options());
  writer.define({"Heat", {"T"}});
  std::vector<int> ids(5000);
  std::iota(ids.begin(), ids.end(), 1);
  std::vector<double> values(ids.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = 300 + static_cast<double>(i % 100) * 0.0123;
  writer.constant("Heat", ids, values, {"NODE", 0, false, {}, 2});
  writer.constant("Heat", ids, values, {"PART"});
  const std::string part = GetParam() >= ORV_VERSION_2_0 ? "/Heat/orvblock/" : "/Heat/data/";
  const RawFile raw(path_);
  const std::string packed = "/post/constant/entityresults/NODE" + part,
                    plain = "/post/constant/entityresults/PART" + part;
  EXPECT_THAT(raw.filters(packed + "res"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.chunk(packed + "res"), ElementsAre(4096, 1));
  EXPECT_NEAR(raw.values<double>(packed + "res")[77], 300.9471, 0.005);
  EXPECT_THAT(raw.values<int>(packed + "entid"), testing::ElementsAreArray(ids));
  EXPECT_THAT(raw.filters(plain + "res"), testing::IsEmpty());
  EXPECT_EQ(ORVSetChunkEntities(0), 0);  // as it was
  EXPECT_THAT(ErrorOf([&] {
                writer.constant("Heat", ids, values, {"NODE", 0, false, {}, -1});
              }),
              HasSubstr("digits less than 0"));
}

TEST_P(ModernWriter, WritesValuesAsAFileGivesThem) {
  {
    orv::Writer writer = MakeWriter();
    writer.define({"Heat", {"T"}});
    orv::Writer::StateScope state = writer.state(1);
    state.write("Heat", ids_, std::vector<float>{1, 2, 3, 4}, {"QUAD4", 2, false, "outer"});
    state.commit();
  }
  orv::File from(path_);
  const orv::Values<float> values = std::move(from.values<float>("Heat").at(0));
  const std::string copy = TempPath("copy.orv");
  orv::Writer writer(copy, Options());
  writer.define({"Heat", {"T"}});
  orv::Writer::StateScope state = writer.state(1);
  state.write(values);
  state.commit();
  const std::string data = Part(State(1) + "/elementresults/QUAD4/Heat/outer", "data");
  EXPECT_THAT(RawFile(copy).values<float>(data + "/res"), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(RawFile(copy).values<std::int32_t>(data + "/idele"), ElementsAre(7, 8));
}

TEST_P(ModernWriter, RefusesDefinitionsThatCannotBeReadBack) {
  orv::Writer writer = MakeWriter();
  writer.define({"Heat", {"T"}});
  EXPECT_THAT(ErrorOf([&] { writer.define({"HEAT", {"T"}}); }), HasSubstr("\"HEAT\" is defined already"));
  EXPECT_THAT(ErrorOf([&] { writer.define({"Time", {"T"}}); }), HasSubstr("\"Time\" is defined already"));
  EXPECT_THAT(ErrorOf([&] { writer.define({"V", {"X", "Y"}, orv::Shape::vector}); }), HasSubstr("has 2 components"));
  EXPECT_THAT(ErrorOf([&] { writer.define({"None", {}}); }), HasSubstr("has 0 components"));
  EXPECT_THAT(ErrorOf([&] { writer.define({"U", {"T"}, orv::Shape::scalar, "mm"}); }), HasSubstr("the unit \"mm\""));
  for (const std::string& name : {std::string(), std::string("a/b"), std::string("data"), std::string("orvblock"),
                                  std::string(".."), std::string("blank "), std::string(256, 'x')}) {
    EXPECT_THAT(ErrorOf([&] { writer.define({name, {"T"}}); }), HasSubstr("is no name")) << name;
  }
  writer.define({std::string(255, 'x'), {"T"}});
}

TEST_P(ModernWriter, RefusesValuesThatDoNotFit) {
  orv::Writer writer = MakeWriter();
  writer.define({"Heat", {"T"}});
  const std::vector<float> two = {1, 2};
  EXPECT_THAT(ErrorOf([&] { writer.constant("Cold", ids_, two); }), HasSubstr("\"Cold\" is not defined"));
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", ids_, std::vector<float>{1}); }),
              HasSubstr("needs 2 numbers and got 1"));
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", std::vector<int>(), std::vector<float>()); }),
              HasSubstr("needs 0 numbers"));
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", ids_, two, {"QUAD4", 2}); }), HasSubstr("needs 4 numbers"));
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", ids_, two, {"a/b"}); }), HasSubstr("is no name"));
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", ids_, two, {"NODE", 0, false, "zone"}); }), HasSubstr("\"ZONE\""));
  const std::vector<std::uint64_t> huge = {1, std::numeric_limits<std::uint64_t>::max()};
  EXPECT_THAT(ErrorOf([&] { writer.constant("Heat", huge, two); }), HasSubstr("does not fit into 32 bits"));
  EXPECT_FALSE(RawFile(path_).exists("/post/constant/entityresults"));
}

TEST_P(ModernWriter, RefusesASecondResultInThePlaceOfAnother) {
  orv::Writer writer = MakeWriter();
  writer.define({"Heat", {"T"}});
  const std::vector<float> two = {1, 2}, others = {3, 4};
  writer.constant("Heat", ids_, two);
  EXPECT_THAT(ErrorOf([&] { writer.constant("heat", ids_, others); }), HasSubstr("has values there already"));
  orv::Writer::StateScope state = writer.state(1);
  state.write("Heat", ids_, two, {"NODE", 0, false, "a"});
  state.write("Heat", ids_, two, {"NODE", 0, false, "b"});
  EXPECT_THAT(ErrorOf([&] { state.write("Heat", ids_, others, {"NODE", 0, false, "b"}); }), HasSubstr("already"));
  EXPECT_THAT(ErrorOf([&] { state.write("Heat", ids_, others); }), HasSubstr("already")) << "it would hide the zones";
  state.commit();
  const std::string data = Part(State(1) + "/entityresults/NODE/Heat/b", "data");
  EXPECT_THAT(RawFile(path_).values<float>(data + "/res"), ElementsAre(1, 2));
}

TEST_P(ModernWriter, LeavesAFileAloneThatItCannotReplace) {
  std::ofstream(path_) << "precious";
  orv::Writer::Options options = Options();
  options.index = {{"TIME", "s"}};
  EXPECT_THAT(ErrorOf([&] { const orv::Writer writer(path_, options); }), HasSubstr("the unit \"s\""));
  options.index = {{"a/b"}};
  EXPECT_THAT(ErrorOf([&] { const orv::Writer writer(path_, options); }), HasSubstr("is no name"));
  options.index = {{"TIME"}};
  options.origin.derived_units = {{"m/s", {{"m", 1}}}};
  EXPECT_THAT(ErrorOf([&] { const orv::Writer writer(path_, options); }), HasSubstr("the unit \"m\""));
  EXPECT_EQ(BytesOf(path_), "precious");
}

TEST_P(ModernWriter, TellsAPlaceWithoutAFolder) {
  EXPECT_THAT(ErrorOf([&] { const orv::Writer writer(TempPath("none") + "/x.orv", Options()); }),
              HasSubstr("/x.orv: cannot be opened for writing: "));
}

}  // namespace
