// States that are added to a file which is there already.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

class ModernAppend : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  ModernAppend() { MaySilenceHdf5(); }

  static std::string Block(int state, const std::string& variable) {
    const char* part = GetParam() == ForgedModel::kSplit ? "/data" : "/orvblock";
    return ForgedModel::StateGroup(state) + "/entityresults/NODE/" + variable + part;
  }
  static void AddState(orv::Writer& writer, const std::string& variable, const std::vector<float>& values) {
    orv::Writer::StateScope state = writer.state(2.5);
    state.write(variable, std::vector<int>{1}, values);
    state.commit();
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, ModernAppend, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit), LayoutName);

TEST_P(ModernAppend, PutsStatesBehindThoseThatAreThere) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2})).in_state(2, SpeedOf({1}, {3, 4}));
  orv::Writer writer = orv::Writer::append(model.path());
  EXPECT_EQ(writer.state_count(), 2);
  AddState(writer, "speed", {5, 6});
  EXPECT_EQ(writer.state_count(), 3);
  const RawFile file(model.path());
  EXPECT_THAT(file.values<float>(Block(1, "Speed") + "/res"), ElementsAre(1, 2));
  EXPECT_THAT(file.values<float>(Block(3, "Speed") + "/res"), ElementsAre(5, 6));
  EXPECT_THAT(orv::File(model.path()).values("Speed", {3}).at(0).data.vector(), ElementsAre(5, 6));
}

TEST_P(ModernAppend, WritesTheLayoutOfTheFile) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::Writer writer = orv::Writer::append(model.path());
  AddState(writer, "Speed", {5, 6});
  const RawFile file(model.path());
  EXPECT_TRUE(file.exists(Block(2, "Speed")));
  const std::string header = file.texts("/post/orvheader/orvheader").at(0);
  EXPECT_EQ(header.substr(8, 5), GetParam() == ForgedModel::kSplit ? "1 1 0" : "2 2 0");
}

TEST_P(ModernAppend, TakesAsManyIndexColumnsAsTheStatesHave) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues speed = SpeedOf({1}, {1, 2});
  speed.index = {1, 2};
  model.in_state(1, speed);
  orv::Writer writer = orv::Writer::append(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)writer.state(1); }), HasSubstr("has 2 columns and got 1"));
  orv::Writer::StateScope state = writer.state(std::vector<double>{3, 4});
  state.write("Speed", std::vector<int>{1}, std::vector<float>{5, 6});
  state.commit();
  EXPECT_THAT(orv::File(model.path()).state(2).index, ElementsAre(3, 4));
}

TEST_P(ModernAppend, TakesAsManyIndexColumnsAsAFileWithoutStatesTells) {
  ForgedModel model = SpeedModel(GetParam());
  if (GetParam() == ForgedModel::kSplit) {
    model.index_types({"TIME", "STEP"});
  } else {
    model.index_types_of_group("INDEX", 2);
  }
  orv::Writer writer = orv::Writer::append(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)writer.state(1); }), HasSubstr("has 2 columns and got 1"));
}

TEST_P(ModernAppend, DoesNotDefineWhatIsThere) {
  ForgedModel model = SpeedModel(GetParam());
  orv::Writer writer = orv::Writer::append(model.path());
  EXPECT_THAT(ErrorOf([&] { writer.define({"SPEED", {"U"}}); }), HasSubstr("is defined already"));
}

TEST_P(ModernAppend, DefinesMoreVariablesAndLeavesResultsBound) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2}));
  {
    orv::Writer writer = orv::Writer::append(model.path());
    writer.define({"Heat", {"T"}});
    AddState(writer, "Heat", {7});
  }
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed", {1}).at(0).data.vector(), ElementsAre(1, 2)) << "a first group would unbind it";
  EXPECT_THAT(file.values("Heat", {2}).at(0).data.vector(), ElementsAre(7));
}

TEST_F(ModernAppend, WritesToAVariableUnderTheNameOfItsGroup) {
  ForgedModel model;
  model.variable({.name = "Stress", .key = "SIG", .ncoo = 2}).group("S_GROUP", 2, {{"SIG", 2, 0}});
  model.in_state(1, {.variable = "S_GROUP", .nent = 1, .ncoo = 2, .values = {1, 2}, .ids = {1}, .index = {1}});
  orv::Writer writer = orv::Writer::append(model.path());
  AddState(writer, "Stress", {3, 4});
  AddState(writer, "S_GROUP", {5, 6});
  orv::File file(model.path());
  EXPECT_THAT(file.values("S_GROUP", {2}).at(0).data.vector(), ElementsAre(3, 4));
  EXPECT_THAT(file.values("S_GROUP", {3}).at(0).data.vector(), ElementsAre(5, 6));
}

TEST_F(ModernAppend, DefinesGroupsWhereTheFileHasSome) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "Speed", .ncoo = 2}).group("Speed", 2, {{"Speed", 2, 0}});
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::Writer writer = orv::Writer::append(model.path());
  writer.define({"Heat", {"T"}});
  AddState(writer, "Heat", {7});
  EXPECT_TRUE(RawFile(model.path()).exists("/post/constant/variablegroup/Heat"));
  EXPECT_THAT(orv::File(model.path()).values("Heat").at(0).data.vector(), ElementsAre(7));
}

TEST_P(ModernAppend, KnowsTheUnitsOfTheFile) {
  ForgedModel model = SpeedModel(GetParam());
  model.system().in_state(1, SpeedOf({1}, {1, 2}));
  orv::Writer writer = orv::Writer::append(model.path());
  writer.define({"Way", {"X"}, orv::Shape::scalar, "mm"});
  writer.define({"Rate", {"X"}, orv::Shape::scalar, "mm/s"});
  EXPECT_THAT(ErrorOf([&] { writer.define({"Mass", {"X"}, orv::Shape::scalar, "kg"}); }), HasSubstr("the unit \"kg\""));
  const RawFile file(model.path());
  const bool is_split = GetParam() == ForgedModel::kSplit;
  const std::string section = is_split ? "/post/constant/variables/" : "/post/constant/variable/";
  const std::string part = is_split ? "/data" : "/orvblock";
  EXPECT_THAT(file.values<std::int32_t>(section + "Way" + part + "/ubid"), ElementsAre(1));
  EXPECT_THAT(file.values<std::int32_t>(section + "Rate" + part + "/udid"), ElementsAre(11));
}

TEST_P(ModernAppend, RefusesConstantValuesThatAreThere) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_constant({.variable = "Speed", .nent = 1, .ncoo = 2, .values = {1, 2}, .ids = {1}});
  orv::Writer writer = orv::Writer::append(model.path());
  EXPECT_THAT(ErrorOf([&] {
                writer.constant("Speed", std::vector<int>{1}, std::vector<float>{8, 9});
              }),
              HasSubstr("has values there already"));
}

TEST_F(ModernAppend, WritesFilesOfLaterVersionsInTheLatestOfItsOwn) {
  ForgedModel model = SpeedModel();
  model.file().header(2, 5, 0);
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::Writer writer = orv::Writer::append(model.path());
  AddState(writer, "Speed", {5, 6});
  orv::File file(model.path());
  EXPECT_EQ(file.version(), "2.5.0");
  EXPECT_THAT(file.values("Speed", {2}).at(0).data.vector(), ElementsAre(5, 6));
}

TEST_F(ModernAppend, OfNoFileIsAnErrorAndMakesNone) {
  const std::string path = TempPath("none.orv");
  EXPECT_THAT(ErrorOf([&] { (void)orv::Writer::append(path); }), HasSubstr("none.orv: does not exist"));
  EXPECT_THROW((void)BytesOf(path).at(0), std::exception);
}

}  // namespace
