// States that hold only what changed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

class ModernIncremental : public OrvTest {
 protected:
  /// "Speed" of nodes in a state; with a flag the state holds changes.
  void Add(int state, const ForgedValues& values, int flag, int identifier = 0) {
    made_->in_state(state, values);
    const bool is_element = values.kind >= 1100;
    const std::string block = ForgedModel::StateGroup(state) + (is_element ? "/elementresults/" : "/entityresults/") +
                              values.etyp + "/" + values.variable + "/orvblock";
    made_->file().at(block).dataset<std::int32_t>("indexident", {1}, {identifier ? identifier : state});
    if (flag != 0) made_->file().integer32("indexic", flag);
  }
  std::vector<double> At(int state) {
    orv::File file(made_->path());
    return file.values("Speed", {state}).at(0).data.vector();
  }
  /// Two full states, one with changes behind each.
  void AddFour() {
    Add(1, SpeedOf({1, 2, 3}, {1, 1, 2, 2, 3, 3}), 0);
    Add(2, SpeedOf({3, 1}, {33, 34, 11, 12}), 1);
    Add(3, SpeedOf({1, 2, 3}, {5, 5, 6, 6, 7, 7}), 0);
    Add(4, SpeedOf({2}, {66, 67}), 1);
  }

  std::unique_ptr<ForgedModel> made_ = std::make_unique<ForgedModel>(SpeedModel());
};

TEST_F(ModernIncremental, AreMadeWholeFromTheLastFullState) {
  AddFour();
  EXPECT_THAT(At(1), ElementsAre(1, 1, 2, 2, 3, 3));
  EXPECT_THAT(At(2), ElementsAre(11, 12, 2, 2, 33, 34));
  EXPECT_THAT(At(3), ElementsAre(5, 5, 6, 6, 7, 7));
  EXPECT_THAT(At(4), ElementsAre(5, 5, 66, 67, 7, 7));
}

TEST_F(ModernIncremental, BuildUponEachOtherAndKeepTheEntitiesOfTheFullState) {
  Add(1, SpeedOf({1, 2}, {1, 1, 2, 2}), 0);
  Add(2, SpeedOf({2, 9}, {22, 23, 99, 99}), 1);
  Add(3, SpeedOf({1}, {10, 11}), 1);
  EXPECT_THAT(At(3), ElementsAre(10, 11, 22, 23));
  orv::File file(made_->path());
  const orv::Values<> values = std::move(file.values("Speed", {3}).at(0));
  EXPECT_THAT(values.ids, ElementsAre(1, 2));
  EXPECT_EQ(values.state, 3);
  EXPECT_EQ(values.variable, "Speed");
}

TEST_F(ModernIncremental, StandInTheOrderOfTheirIdentifiers) {
  Add(1, SpeedOf({1}, {1, 1}), 0, 10);
  Add(2, SpeedOf({1}, {2, 2}), 0, 30);
  Add(3, SpeedOf({1}, {3, 3}), 1, 20);
  made_->in_state(3, {.variable = "Other", .nent = 1, .values = {1}});
  EXPECT_THAT(At(3), ElementsAre(3, 3));
  Add(4, SpeedOf({2}, {4, 4}), 1, 25);
  EXPECT_THAT(At(4), ElementsAre(3, 3)) << "of state 1, with the change of state 3";
}

TEST_F(ModernIncremental, AreChosenFromAndFollowedOverTheStates) {
  AddFour();
  orv::File file(made_->path());
  EXPECT_THAT(file.values("Speed", {2, {}, {2, 3}, 0, "W"}).at(0).data.vector(), ElementsAre(2, 34));
  EXPECT_THAT(file.history("Speed", {2}, "W").curves.at(0).values, ElementsAre(2.0, 2.0, 6.0, 67.0));
}

TEST_F(ModernIncremental, MayHaveLayers) {
  ForgedValues full{.kind = 1100, .etyp = "HEX8", .variable = "Speed", .nent = 2, .ncoo = 2, .numl = 2};
  full.values = {1, 2, 3, 4, 5, 6, 7, 8};
  full.ids = {1, 2};
  full.index = {1};
  Add(1, full, 0);
  ForgedValues change = full;
  change.nent = 1;
  change.values = {50, 60, 70, 80};
  change.ids = {2};
  Add(2, change, 1);
  EXPECT_THAT(At(2), ElementsAre(1, 2, 3, 4, 50, 60, 70, 80));
  orv::File file(made_->path());
  EXPECT_THAT(file.values("Speed", {2, {}, {}, 2, "U"}).at(0).data.vector(), ElementsAre(3, 70));
}

TEST_F(ModernIncremental, MayBeComplex) {
  ForgedValues full = SpeedOf({1, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  full.kind = 1001;
  full.nent = 2;
  Add(1, full, 0);
  ForgedValues change = SpeedOf({2}, {50, 60, 70, 80});
  change.kind = 1001;
  change.nent = 1;
  Add(2, change, 1);
  EXPECT_THAT(At(2), ElementsAre(1, 2, 3, 4, 50, 60, 70, 80));
}

TEST_F(ModernIncremental, MayHaveIdsThatNo32BitsHold) {
  Add(1, SpeedOf({1, 2}, {1, 1, 2, 2}), 0);
  made_->file().at(SpeedBlock(1)).dataset<std::int64_t>("entid", {2}, {1, 1LL << 40});
  Add(2, SpeedOf({1}, {9, 9}), 1);
  made_->file().at(SpeedBlock(2)).dataset<std::int64_t>("entid", {1}, {1LL << 40});
  EXPECT_THAT(At(2), ElementsAre(1, 1, 9, 9));
}

TEST_F(ModernIncremental, WithoutAFullStateBeforeThemBeginWithTheFirst) {
  Add(1, SpeedOf({1, 2}, {1, 1, 2, 2}), 1);
  Add(2, SpeedOf({1}, {9, 9}), 1);
  EXPECT_THAT(At(1), ElementsAre(1, 1, 2, 2));
  EXPECT_THAT(At(2), ElementsAre(9, 9, 2, 2));
}

TEST_F(ModernIncremental, OfTwoResultsWithStatesOfTheirOwnAreBothRight) {
  made_->variable({.name = "Heat", .key = "Heat"});
  AddFour();
  const auto heat = [&](int state, std::vector<int> ids, std::vector<float> values, int flag) {
    ForgedValues result{.variable = "Heat", .nent = static_cast<int>(ids.size()), .values = std::move(values)};
    result.ids = std::move(ids);
    result.index = {1};
    Add(state, result, flag);
  };
  heat(1, {1, 2}, {1, 2}, 0);
  heat(2, {1, 2}, {3, 4}, 0);
  heat(3, {1}, {5}, 1);
  heat(4, {2}, {6}, 1);
  orv::File file(made_->path());
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(file.values("Heat", {4}).at(0).data.vector(), ElementsAre(5, 6));
    EXPECT_THAT(file.values("Speed", {4}).at(0).data.vector(), ElementsAre(5, 5, 66, 67, 7, 7));
  }
}

TEST_F(ModernIncremental, WithoutAnIndexAreAnError) {
  AddFour();
  made_->file().at(SpeedBlock(4)).drop("indexident");
  EXPECT_THAT(ErrorOf([&] { (void)At(4); }), HasSubstr("no telling what they build upon"));
}

TEST_F(ModernIncremental, WithChangesThatCannotBeReadAreAnError) {
  for (const char* dataset : {"res", "entid"}) {
    made_ = std::make_unique<ForgedModel>(SpeedModel());
    AddFour();
    made_->file().at(SpeedBlock(2)).drop(dataset);
    EXPECT_THAT(ErrorOf([&] { (void)At(2); }), HasSubstr("values cannot be read")) << dataset;
    EXPECT_THAT(At(4), ElementsAre(5, 5, 66, 67, 7, 7)) << "which do not build upon them";
  }
}

TEST_F(ModernIncremental, WithIdsThatDoNotTellEntitiesApartAreAnError) {
  for (const int state : {1, 2}) {
    made_ = std::make_unique<ForgedModel>(SpeedModel());
    AddFour();
    const std::vector<std::int32_t> ids =
        state == 1 ? std::vector<std::int32_t>{1, 2, 2} : std::vector<std::int32_t>{3, 3};
    made_->file().at(SpeedBlock(state)).dataset<std::int32_t>("entid", {ids.size()}, ids);
    EXPECT_FALSE(ErrorOf([&] { (void)At(2); }).empty()) << state;
  }
}

}  // namespace
