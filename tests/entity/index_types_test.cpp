// The names of the index columns of a file, and what the host is told when something is wrong with them. The block
// itself is in simulation_type_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "entity/index_types.h"
#include "orvio/orv_definitions.h"
#include "orvio/orv_variable_grp.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::Message;
using testing::ElementsAre;
using testing::IsEmpty;

const Message kUnreadable = {0, "Unable to read post->constant->indicies block"};
const Message kInvalidCount = {0, "invalid index count in post->constant->indicies block"};
const Message kDefaults = {1, "Assigning default index types (Time, UNKNOWN_1.....)"};

class IndexTypes : public orv_test::OrvTest {
 protected:
  ~IndexTypes() override { orvio::FreeBuffers(types_); }

  int Read(ForgedModel& model) { return orvio::ReadIndexTypes(model.path().c_str(), groups_, types_); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (int i = 0; i < types_.m_nindex; ++i) names.emplace_back(types_.m_pEtypindex + 256 * i);
    return names;
  }

  /// A group of variables of these names.
  ORVVariableGrp& AddGroup(const char* name, const std::vector<std::string>& variables) {
    own_groups_.push_back(std::make_unique<ORVVariableGrp>());
    ORVVariableGrp& group = *own_groups_.back();
    std::strcpy(group.m_grpName, name);
    for (const std::string& variable : variables) {
      own_variables_.push_back(std::make_unique<ORVVariable>());
      std::strcpy(own_variables_.back()->m_varnam, variable.c_str());
      group.m_variables.push_back(own_variables_.back().get());
    }
    groups_.push_back(&group);
    return group;
  }

  ORVSimulationType types_;
  std::vector<ORVVariableGrp*> groups_;
  const orv_test::Messages messages_;

 private:
  std::vector<std::unique_ptr<ORVVariableGrp>> own_groups_;
  std::vector<std::unique_ptr<ORVVariable>> own_variables_;
};

TEST_F(IndexTypes, AreThoseOfTheBlockWhereItHoldsThem) {
  ForgedModel model(ForgedModel::kSplit);
  model.index_types({"TIME", "LOAD CASE"});
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME", "LOAD CASE"));
  EXPECT_EQ(types_.m_pEtypindex[512], '\0');
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(IndexTypes, AreThoseOfTheNamedGroup) {
  AddGroup("OTHER", {"no", "not", "none"});
  AddGroup("Steps", {"TIME", "MODE"});
  AddGroup("STEPS", {"second"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 2);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME", "MODE"));
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(IndexTypes, StayEmptyBeyondTheVariablesOfTheGroup) {
  AddGroup("STEPS", {"TIME", "MODE"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 4);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME", "MODE", "", ""));
}

TEST_F(IndexTypes, TakeNoMoreVariablesThanThereAreColumns) {
  AddGroup("STEPS", {"TIME", "MODE", "THIRD"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 1);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME"));
  EXPECT_EQ(types_.m_pEtypindex[256], '\0');
}

TEST_F(IndexTypes, AVariableNameOf256CharactersIsCutToItsColumn) {
  AddGroup("STEPS", {std::string(256, 'v'), "MODE"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 2);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre(std::string(255, 'v'), "MODE"));
}

TEST_F(IndexTypes, AreThoseOfTheGroupIndexWhereTheNamedOneIsMissing) {
  AddGroup("OTHER", {"no"});
  AddGroup("Index", {"TIME", "MODE"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 2);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME", "MODE"));
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(IndexTypes, TheGroupIndexDoesNotStandInWhereNoGroupIsNamed) {
  AddGroup("INDEX", {"TIME", "MODE"});
  ForgedModel names(ForgedModel::kSplit), nothing;
  names.index_types({"ONE", "TWO"});
  ASSERT_EQ(Read(names), 0);
  EXPECT_THAT(Names(), ElementsAre("ONE", "TWO"));
  orvio::FreeBuffers(types_);
  types_ = ORVSimulationType();
  nothing.index_types_of_group("", 2);
  ASSERT_EQ(Read(nothing), 0);
  EXPECT_THAT(Names(), ElementsAre("", ""));
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(IndexTypes, AreTimeAndUnknownWithoutAnyGroup) {
  AddGroup("OTHER", {"no"});
  ForgedModel model;
  model.index_types_of_group("STEPS", 3);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME", "UNKNOWN_1", "UNKNOWN_2"));
  const Message missing = {0, "Unable to locate \"STEPS\" variable referred in post->constant->indicies block"};
  EXPECT_THAT(messages_.all(), ElementsAre(missing, kDefaults));
}

TEST_F(IndexTypes, OfOneColumnAreTimeAloneWithoutAnyGroup) {
  ForgedModel model;
  model.index_types_of_group("STEPS", 1);
  ASSERT_EQ(Read(model), 0);
  EXPECT_THAT(Names(), ElementsAre("TIME"));
  EXPECT_EQ(messages_.all().size(), 2U);
}

TEST_F(IndexTypes, OfAFileWithoutTheBlockAreToldToBeUnreadable) {
  ForgedModel model;
  EXPECT_EQ(Read(model), 1);
  EXPECT_EQ(types_.m_pEtypindex, nullptr);
  EXPECT_THAT(messages_.all(), ElementsAre(kUnreadable));
}

TEST_F(IndexTypes, WithoutAColumnAreToldToBeInvalid) {
  for (const int nindex : {0, -3}) {
    ForgedModel model;
    model.index_types_of_group("STEPS", nindex);
    EXPECT_EQ(Read(model), 1) << nindex;
    EXPECT_EQ(types_.m_pEtypindex, nullptr);
  }
  EXPECT_THAT(messages_.all(), ElementsAre(kInvalidCount, kInvalidCount));
}

TEST_F(IndexTypes, OfUnreadableNamesAreToldAndFreed) {
  ForgedModel model(ForgedModel::kSplit);
  model.index_types({"TIME", "MODE"});
  model.file().at("/post/constant/indices/data").retype("etypindex");
  EXPECT_EQ(Read(model), 1);
  EXPECT_EQ(types_.m_pEtypindex, nullptr);
  EXPECT_THAT(messages_.all(), ElementsAre(kUnreadable));
}

TEST_F(IndexTypes, OfMoreColumnsThanAnyFileHasAreToldAndNotMade) {
  for (const std::int64_t nindex : {std::int64_t{262144}, std::int64_t{1} << 60, INT64_MAX}) {
    ForgedModel model;
    model.index_types_of_group("STEPS", 1);
    model.file().integer("nindex", nindex);
    EXPECT_EQ(Read(model), 1) << nindex;
    EXPECT_EQ(types_.m_pEtypindex, nullptr);
  }
  EXPECT_THAT(messages_.all(), ElementsAre(kUnreadable, kUnreadable, kUnreadable));
}

}  // namespace
