// Failures of the modern face: what they tell, and that each is an Error.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ModernError : public OrvTest {};

TEST_F(ModernError, SaysAllInOneLine) {
  const orv::Error error("a.orv", "cannot be read", "get it again", "/post/x", 3);
  EXPECT_STREQ(error.what(), "a.orv: cannot be read (block /post/x, state 3); get it again");
  EXPECT_EQ(error.file(), "a.orv");
  EXPECT_EQ(error.block(), "/post/x");
  EXPECT_EQ(error.hint(), "get it again");
  EXPECT_EQ(error.state(), 3);
}

TEST_F(ModernError, LeavesOutWhatIsNotKnown) {
  EXPECT_STREQ(orv::Error("a.orv", "has none", "make one").what(), "a.orv: has none; make one");
  EXPECT_STREQ(orv::Error("a.orv", "has none", "make one", "", 0).what(),
               "a.orv: has none (constant section); make one");
  EXPECT_STREQ(orv::Error("a.orv", "has none", "make one", "/post/constant/x", 0).what(),
               "a.orv: has none (block /post/constant/x); make one");
  EXPECT_STREQ(orv::Error("a.orv", "has none", "make one", "/b").what(), "a.orv: has none (block /b); make one");
  EXPECT_EQ(orv::Error("a.orv", "has none", "make one").state(), orv::Error::kNoState);
}

TEST_F(ModernError, KeepsLineEndsOfNamesOutOfItsLine) {
  EXPECT_STREQ(orv::Error("a\n.orv", "has\tnone", "make\r\none").what(), "a .orv: has none; make  one");
}

TEST_F(ModernError, TellsWhatFilesCannotBeOpened) {
  const std::string text = TempPath("text.orv"), folder = TempPath("folder");
  std::ofstream(text) << "not a file of HDF5 at all";
  std::filesystem::create_directory(folder);
  EXPECT_THAT(ErrorOf([&] { orv::File file(TempPath("none.orv")); }),
              EndsWith("none.orv: does not exist; check the name"));
  EXPECT_THAT(ErrorOf([&] { orv::File file(text); }), HasSubstr("text.orv: cannot be opened: "));
  EXPECT_THAT(ErrorOf([&] { orv::File file(folder); }), HasSubstr("folder: cannot be opened: "));
}

TEST_F(ModernError, TellsAFileWithoutResultData) {
  ForgedFile file;
  file.at("/").drop("post");
  EXPECT_THAT(ErrorOf([&] { orv::File opened(file.path()); }), HasSubstr("without result data"));
}

TEST_F(ModernError, DoesNotRepeatTheCauseOfAnEarlierFailure) {
  const std::string text = TempPath("text.orv");
  std::ofstream(text) << "not a file of HDF5 at all";
  EXPECT_THAT(ErrorOf([&] { orv::File file(text); }), HasSubstr("text.orv"));
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  model.file().at(SpeedBlock(1)).drop("res");
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed"); }), Not(HasSubstr("text.orv")));
}

TEST_F(ModernError, NamesTheStatesThatThereAre) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", {2}); }), EndsWith(": has no state 2 (state 2); it has 1"));
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", {-7}); }), HasSubstr("has no state -7"));
  EXPECT_THAT(ErrorOf([&] { (void)file.state(0); }), HasSubstr("has no state 0"));
  EXPECT_THAT(ErrorOf([&] { (void)file.elements(2); }), HasSubstr("has no state 2"));
  EXPECT_THAT(ErrorOf([&] { (void)file.parts(-1); }), HasSubstr("has no state -1"));
}

TEST_F(ModernError, NamesTheResultsThatThereAre) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat"); }),
              EndsWith(": has no values of \"Heat\" (state 1); it has \"Speed\""));
  EXPECT_THAT(ErrorOf([&] { (void)file.history("Heat", {1}); }), HasSubstr("has no values of \"Heat\""));
  EXPECT_THAT(ErrorOf([&] { (void)file.coordinates(); }), HasSubstr("\"COORDINATE\" of \"NODE\""));
}

TEST_F(ModernError, TellsValuesWithoutADefinition) {
  ForgedModel model = SpeedModel();
  ForgedValues heat{.variable = "Heat", .nent = 1, .values = {1}, .ids = {1}};
  model.in_state(1, heat);
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat"); }), HasSubstr("the file has no variable of that name"));
}

TEST_F(ModernError, SaysWhereHistoriesAre) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1}, {1, 2}));
  model.variable({.name = "Heat", .key = "Heat"});
  model.in_multistate(
      {.kind = 1050, .variable = "Heat", .nent = 1, .nstate = 1, .values = {5}, .ids = {1}, .index = {1}});
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat"); }), HasSubstr("history reads them"));
}

/// Headers that announce what is not there.
class ModernDamage : public OrvTest, public testing::WithParamInterface<std::pair<const char*, std::int64_t>> {};

INSTANTIATE_TEST_SUITE_P(Counts, ModernDamage,
                         testing::Values(std::pair("nent", 3), std::pair("nent", -1), std::pair("nent", 1LL << 40),
                                         std::pair("nent", 0x7fffffffffffffffLL), std::pair("ncoo", 1),
                                         std::pair("ncoo", 0), std::pair("ncoo", -1)));

TEST_P(ModernDamage, OfCountsIsAnError) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  model.file().at(SpeedBlock(1)).integer(GetParam().first, GetParam().second);
  orv::File file(model.path());
  EXPECT_FALSE(ErrorOf([&] { (void)file.values("Speed"); }).empty());
  EXPECT_FALSE(ErrorOf([&] { (void)file.values<float>("Speed", {1, {}, {2}}); }).empty());
  EXPECT_FALSE(ErrorOf([&] { (void)file.history("Speed", {1}); }).empty());
}

TEST_F(ModernDamage, ThatAnnouncesMoreComponentsThanTheVariableHasTakesNoneAway) {
  for (const std::int64_t count : {3LL, 1LL << 40, 0x7fffffffffffffffLL}) {
    ForgedModel model = SpeedModel();
    model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
    model.file().at(SpeedBlock(1)).integer("ncoo", count);
    orv::File file(model.path());
    EXPECT_THAT(file.values("Speed").at(0).data.vector(), testing::ElementsAre(1, 2, 3, 4)) << count;
  }
}

TEST_F(ModernDamage, OfLayersIsAnError) {
  for (const std::int64_t layers : {-1LL, 0LL, 3LL, 1LL << 40, 0x7fffffffffffffffLL}) {
    ForgedModel model;
    model.variable({.name = "Heat", .key = "Heat"});
    model.in_state(
        1, {.kind = 1100, .etyp = "HEX8", .variable = "Heat", .nent = 1, .numl = 2, .values = {1, 2}, .ids = {1}});
    model.file().at(ForgedModel::StateGroup(1) + "/elementresults/HEX8/Heat/orvblock").integer("numl", layers);
    orv::File file(model.path());
    EXPECT_FALSE(ErrorOf([&] { (void)file.values("Heat"); }).empty()) << layers;
  }
}

TEST_F(ModernDamage, OfIdsIsAnError) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  model.file().at(SpeedBlock(1)).dataset<std::int32_t>("entid", {3}, {1, 2, 3});
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed"); }), HasSubstr("values cannot be read"));
}

TEST_F(ModernDamage, OfElementsIsAnError) {
  for (const char* count : {"nele", "npele"}) {
    ForgedModel model = SpeedModel();
    PutElements(model.file(), "/post/constant", "QUAD4", {1}, {1, 2, 3, 4}, {1});
    model.file().at("/post/constant/connectivities/QUAD4/orvblock").integer(count, 1LL << 40);
    orv::File file(model.path());
    EXPECT_THAT(ErrorOf([&] { (void)file.elements(); }), HasSubstr("not what their header announces")) << count;
  }
}

TEST_F(ModernDamage, OfTheNumberOfAVariablesComponentsTakesNoMemory) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1}, {1, 2}));
  model.file().at("/post/constant/variable/Heat/orvblock").integer("block", 30).text("varnam", "Heat");
  model.file().text("varkey", "Heat").integer("rank", 0).integer("ncoo", 1LL << 40);
  orv::File file(model.path());
  std::size_t components = 0;
  for (const orv::Variable& variable : file.variables()) components += variable.components.size();
  EXPECT_LE(components, 3U);
}

}  // namespace
