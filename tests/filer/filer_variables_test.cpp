// What a filer answers about its variables by name and key. Handles are in tests/variable.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable.h"
#include "orvio/orv_variable_grp.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

using Variables = std::vector<ORVVariable*>;

class FilerVariables : public OrvTest {
 protected:
  struct OpenFiler : ORVFiler {
    OpenFiler() : ORVFiler("/not/there") {}
    ORVContainer& data() { return *m_pData; }
  };

  ORVVariable* Add(const char* name, const char* key) {
    auto variable = std::make_unique<ORVVariable>();
    std::strcpy(variable->m_varnam, name);
    std::strcpy(variable->m_varkey, key);
    filer_.data().variables.push_back(variable.get());
    return variable.release();  // the filer owns it
  }

  Variables Find(std::vector<const char*> names, bool by_key, int expected_status) {
    Variables found;
    EXPECT_EQ(filer_.GetVariableBlocks(names, found, by_key), expected_status);
    return found;
  }

  OpenFiler filer_;
  ORVVariable* speed_ = Add("Speed", "V");
  ORVVariable* second_speed_ = Add("SPEED", "W");
  ORVVariable* heat_ = Add("Heat", "Speed");
  ORVVariable* second_v_ = Add("Force", "v");
};

TEST_F(FilerVariables, ByNameAreTheFirstOfEachInTheOrderOfTheNames) {
  EXPECT_EQ(Find({"heat", "speed"}, false, 0), (Variables{heat_, speed_}));
  EXPECT_EQ(Find({"speed", "speed"}, false, 0), (Variables{speed_, speed_}));
  EXPECT_EQ(Find({"V"}, false, 1), Variables());
}

TEST_F(FilerVariables, ByKeyAreTheFirstOfEach) {
  EXPECT_EQ(Find({"v", "w"}, true, 0), (Variables{speed_, second_speed_}));
  EXPECT_EQ(Find({"speed"}, true, 0), (Variables{heat_}));
  EXPECT_EQ(Find({"Heat"}, true, 1), Variables());
}

TEST_F(FilerVariables, ThatAreNotThereArePassedOver) {
  EXPECT_EQ(Find({nullptr, "nothing", "Force"}, false, 0), (Variables{second_v_}));
  EXPECT_EQ(Find({nullptr}, false, 1), Variables());
  EXPECT_EQ(Find({}, false, 1), Variables());
  EXPECT_EQ(Find({}, true, 1), Variables());
}

TEST_F(FilerVariables, AreAppended) {
  std::vector<const char*> names = {"Heat"};
  Variables found = {speed_};
  EXPECT_EQ(filer_.GetVariableBlocks(names, found, false), 0);
  EXPECT_EQ(found, (Variables{speed_, heat_}));
  names = {"nothing"};
  EXPECT_EQ(filer_.GetVariableBlocks(names, found, false), 1);  // what was there before does not count
  EXPECT_EQ(found, (Variables{speed_, heat_}));
}

TEST_F(FilerVariables, OneByOneAreTheFirstOfTheirName) {
  EXPECT_EQ(filer_.GetVariable("SPEED"), speed_);
  EXPECT_EQ(filer_.GetVariable("V"), nullptr);
  EXPECT_EQ(filer_.GetVariable(nullptr), nullptr);
}

TEST_F(FilerVariables, InGroupsAreThoseOfTheFirstGroupOfAName) {
  for (const char* name : {"Loads", "LOADS", "Steps"}) {
    auto group = std::make_unique<ORVVariableGrp>();
    std::strcpy(group->m_grpName, name);
    filer_.data().variable_groups.push_back(group.release());  // the filer owns it
  }
  EXPECT_EQ(filer_.GetVariableGroup("loads"), filer_.GetVariableGroups().at(0));
  EXPECT_EQ(filer_.GetVariableGroup("steps"), filer_.GetVariableGroups().at(2));
  EXPECT_EQ(filer_.GetVariableGroup("Speed"), nullptr);
  EXPECT_EQ(filer_.GetVariableGroup(nullptr), nullptr);
}

TEST_F(FilerVariables, AreListedAsTheyWereRead) {
  EXPECT_EQ(filer_.GetVariables(), (Variables{speed_, second_speed_, heat_, second_v_}));
  EXPECT_TRUE(filer_.GetVariableGroups().empty());
  EXPECT_EQ(filer_.GetIndexTypes(), nullptr);
  EXPECT_EQ(filer_.GetSystem(), nullptr);
}

}  // namespace
