// What the check of incremental reading tells the host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kResults[] = "!--------------------INCREMENTAL TEST---------------!";
constexpr char kAttributes[] = "!---------------INCREMENTAL ATTRIBUTE CHECK-------------------!";

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  using ORVFiler::TestIncrRead;
  bool HasMap() { return m_pData->m_globalIncrMap != nullptr; }
};

class IncrCheck : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  IncrCheck() : model_(GetParam()) { model_.variable({.name = "Heat", .key = "Heat"}); }

  void AddHeat(int state, int flag, const std::vector<int>& ids, const std::vector<float>& values) {
    ForgedValues heat{.variable = "Heat", .nent = static_cast<int>(ids.size()), .values = values, .ids = ids};
    heat.index = {0.1F * static_cast<float>(state)};
    model_.in_state(state, heat);
    model_.file().integer32("indexic", flag);
    Identify(ForgedModel::StateGroup(state) + "/entityresults/NODE/Heat", state);
  }
  void AddNodes(int state, int flag, const std::vector<int>& ids) {
    const std::string nodes = ForgedModel::StateGroup(state) + "/attributes/NODE";
    model_.file().at(model_.Part(nodes, "data")).dataset<std::int32_t>("entid", {ids.size()}, ids);
    model_.file().dataset<std::int32_t>("uid", {ids.size(), 1}, ids);
    model_.file().at(model_.Part(nodes, "index")).dataset<float>("indexval", {1}, {0});
    model_.file().at(model_.Part(nodes, "header")).integer("block", 200).text("etyp", "NODE").integer("nuid", 1);
    model_.file().integer("nent", static_cast<std::int64_t>(ids.size())).integer("nindex", 1).integer32("length", 0);
    model_.file().integer32("indexic", flag);
    Identify(nodes, state);
  }
  void Identify(const std::string& block, int state) {
    model_.file().at(model_.Part(block, "index")).dataset<std::int32_t>("indexident", {1}, {state});
  }
  std::vector<std::string> Told() {
    OpenFiler filer(model_.path().c_str());
    int next_id = 1;
    (void)filer.InitReader(next_id);
    const Messages messages;
    filer.TestIncrRead();
    EXPECT_FALSE(filer.HasMap());
    std::vector<std::string> texts;
    for (const Message& message : messages.all()) texts.push_back(message.second);
    return texts;
  }

  ForgedModel model_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrCheck, ::testing::Values(ForgedModel::kSingle, ForgedModel::kSplit));

TEST_P(IncrCheck, TellsItsHeadingsOfAFileOfWholeStates) {
  AddHeat(1, 0, {1, 2}, {10, 20});
  EXPECT_THAT(Told(), ElementsAre(kResults, kAttributes));
}

TEST_P(IncrCheck, TellsStatesFlagsAndDifferencesOfWhatIsIncremental) {
  AddHeat(1, 0, {1, 2, 3}, {10, 20, 30});
  AddHeat(2, 1, {2}, {21});
  AddHeat(3, 1, {3}, {32});
  AddNodes(1, 0, {1, 2, 3});
  AddNodes(3, 1, {3, 4});
  EXPECT_THAT(Told(), ElementsAre(kResults, AllOf(HasSubstr("/Heat"), EndsWith(": states 1 2 3")),
                                  AllOf(HasSubstr("/Heat"), EndsWith(": flags 0 1 1")),
                                  AllOf(HasSubstr("/Heat"), HasSubstr(": state 3, 3 entities in "),
                                        HasSubstr(" ms, 1 stored in "), EndsWith(" ms, 0 differences")),
                                  kAttributes, AllOf(HasSubstr("/NODE"), EndsWith(": states 1 3")),
                                  AllOf(HasSubstr("/NODE"), EndsWith(": flags 0 1")),
                                  AllOf(HasSubstr("/NODE"), HasSubstr(": state 3, 4 entities in "),
                                        HasSubstr(" ms, 2 stored in "), EndsWith(" ms, 0 differences"))));
}

TEST_P(IncrCheck, TellsOfAnEntityThatDidNotComeThrough) {
  AddHeat(1, 0, {1, 2}, {10, 20});
  AddHeat(2, 1, {7}, {70});  // a result gains no entities
  const std::vector<std::string> told = Told();
  ASSERT_EQ(told.size(), 5U);
  EXPECT_THAT(told[3], AllOf(HasSubstr(" 2 entities in "), EndsWith(" 1 differences")));
}

TEST_P(IncrCheck, LeavesTheBlocksOfTheFilerAsTheyWere) {
  AddHeat(1, 0, {1, 2, 3}, {10, 20, 30});
  AddHeat(2, 1, {2}, {21});
  OpenFiler filer(model_.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ORVResult& heat = *filer.GetResultList(1).at(0);
  ASSERT_EQ(heat.m_nent, 3);
  int frames = 0, own_id = 55;
  heat.m_fid = &frames;
  heat.m_entid = &own_id;
  heat.m_fetchSkip = 7;
  filer.TestIncrRead();
  EXPECT_EQ(heat.m_res, nullptr);
  EXPECT_EQ(heat.m_entid, &own_id);
  EXPECT_EQ(heat.m_fid, &frames);
  EXPECT_EQ(heat.m_nent, 3);
  EXPECT_EQ(heat.m_fetchSkip, 7);
  heat.m_fid = heat.m_entid = nullptr;
}

TEST_P(IncrCheck, TellsNobodyWithoutACallback) {
  AddHeat(1, 0, {1}, {10});
  AddHeat(2, 1, {1}, {11});
  OpenFiler filer(model_.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  filer.TestIncrRead();
}

}  // namespace
}  // namespace orv_test
