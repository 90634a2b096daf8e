// States that are written: they appear whole with their commit, or not at all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"
#include "support/full_disk.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

class ModernState : public OrvTest, public testing::WithParamInterface<_ORVVersion> {
 protected:
  ModernState() : writer_((MaySilenceHdf5(), TempPath("states.orv")), Options()) {
    writer_.define({"Heat", {"T"}});
    orv::Writer::StateScope state = writer_.state(0.5);
    EXPECT_EQ(state.number(), 1);
    state.write("Heat", ids_, values_);
    state.commit();
  }

  static orv::Writer::Options Options() {
    orv::Writer::Options options;
    options.version = GetParam();
    return options;
  }
  std::vector<std::string> States() const { return RawFile(writer_.path()).children("/post/singlestate"); }
  std::string Values(int state) const {
    return ForgedModel::StateGroup(state) + "/entityresults/NODE/Heat/" +
           (GetParam() >= ORV_VERSION_2_0 ? "orvblock/res" : "data/res");
  }

  const std::vector<int> ids_ = {1, 2};
  const std::vector<float> values_ = {10, 20};
  orv::Writer writer_;
};

INSTANTIATE_TEST_SUITE_P(Versions, ModernState,
                         testing::Values(ORV_VERSION_1_0, ORV_VERSION_1_2, ORV_VERSION_2_0, ORV_VERSION_2_2),
                         [](const auto& version) { return "V" + std::to_string(version.param); });

TEST_P(ModernState, ThatIsDroppedLeavesTheFileAsItWas) {
  const std::string before = BytesOf(writer_.path());
  {
    orv::Writer::StateScope state = writer_.state(1);
    state.write("Heat", ids_, values_);
  }
  EXPECT_EQ(BytesOf(writer_.path()), before);
  EXPECT_EQ(writer_.state_count(), 1);
  orv::Writer::StateScope next = writer_.state(1);
  EXPECT_EQ(next.number(), 2);
}

TEST_P(ModernState, IsNotSeenBeforeItsCommit) {
  orv::Writer::StateScope state = writer_.state(1);
  state.write("Heat", ids_, values_);
  const std::string seen = TempPath("seen.orv");  // what another process has before it
  std::filesystem::copy_file(writer_.path(), seen);
  EXPECT_THAT(RawFile(seen).children("/post/singlestate"), ElementsAre("state000000000001"));
  state.commit();
  EXPECT_EQ(orv::File(writer_.path()).state_count(), 2);
  EXPECT_THAT(States(), ElementsAre("state000000000001", "state000000000002"));
}

TEST_P(ModernState, ThatTheDiskHasNoRoomForLeavesTheEarlierOnesAndCanBeWrittenLater) {
  const std::vector<double> values(100000, 1.5);
  const std::vector<int> ids(values.size(), 1);
  for (const std::uintmax_t room : {0, 4096, 500000}) {
    {
      orv::Writer::StateScope state = writer_.state(1);
      state.write("Heat", ids_, values_);
      const FullDisk full(writer_.path(), room);
      const std::string write = ErrorOf([&] { state.write("Heat", ids, values, {"LINE2"}); });
      const std::string commit = ErrorOf([&] { state.commit(); });
      EXPECT_FALSE(commit.empty()) << room;
      EXPECT_THAT(write.empty() ? commit : write, AllOf(HasSubstr("cannot be written: "), HasSubstr("state 2")));
      EXPECT_THAT(write + commit, HasSubstr("File too large")) << room;
    }
    EXPECT_EQ(writer_.state_count(), 1) << room;
    EXPECT_THAT(States(), ElementsAre("state000000000001")) << room;
    EXPECT_THAT(RawFile(writer_.path()).values<float>(Values(1)), ElementsAre(10, 20)) << room;
    EXPECT_THAT(orv::File(writer_.path()).values("Heat").at(0).data.vector(), ElementsAre(10, 20)) << room;
  }
  orv::Writer::StateScope again = writer_.state(1);
  again.write("Heat", ids_, values_);
  again.commit();
  EXPECT_THAT(RawFile(writer_.path()).values<float>(Values(1)), ElementsAre(10, 20));
  EXPECT_THAT(RawFile(writer_.path()).values<float>(Values(2)), ElementsAre(10, 20));
}

TEST_P(ModernState, WithMistakesOfTheCallerCanBeGoneOnWith) {
  orv::Writer::StateScope state = writer_.state(1);
  EXPECT_FALSE(ErrorOf([&] { state.write("Cold", ids_, values_); }).empty());
  EXPECT_FALSE(ErrorOf([&] { state.write("Heat", ids_, std::vector<float>{1}); }).empty());
  state.write("Heat", ids_, values_);
  state.commit();
  EXPECT_THAT(RawFile(writer_.path()).values<float>(Values(2)), ElementsAre(10, 20));
}

TEST_P(ModernState, WithoutValuesIsAnErrorAndLeavesNothing) {
  orv::Writer::StateScope state = writer_.state(1);
  EXPECT_THAT(ErrorOf([&] { state.commit(); }), HasSubstr("has nothing to hold (state 2)"));
  EXPECT_EQ(writer_.state_count(), 1);
  EXPECT_THAT(States(), ElementsAre("state000000000001"));
}

TEST_P(ModernState, IsOneAtATime) {
  const orv::Writer::StateScope state = writer_.state(1);
  EXPECT_THAT(ErrorOf([&] { (void)writer_.state(2); }), HasSubstr("another state is being written"));
}

TEST_P(ModernState, EndsWithItsCommit) {
  orv::Writer::StateScope state = writer_.state(1);
  state.write("Heat", ids_, values_);
  state.commit();
  EXPECT_THROW(state.commit(), std::logic_error);
  EXPECT_THROW(state.write("Heat", ids_, values_), std::logic_error);
}

TEST_P(ModernState, NeedsAValueForEachIndexColumn) {
  EXPECT_THAT(ErrorOf([&] { (void)writer_.state(std::vector<double>{1, 2}); }), HasSubstr("has 1 columns and got 2"));
  EXPECT_THAT(ErrorOf([&] { (void)writer_.state(std::vector<double>()); }), HasSubstr("has 1 columns and got 0"));
}

TEST_P(ModernState, TakesDefinitionsWithItWhenItIsDropped) {
  {
    orv::Writer::StateScope state = writer_.state(1);
    writer_.define({"Late", {"T"}});
    state.write("Late", ids_, values_);
  }
  EXPECT_THAT(ErrorOf([&] { writer_.constant("Late", ids_, values_); }), HasSubstr("is not defined"));
  writer_.define({"Late", {"T"}});
  writer_.constant("Late", ids_, values_);
  EXPECT_THAT(orv::File(writer_.path()).values("Late").at(0).data.vector(), ElementsAre(10, 20));
}

TEST_P(ModernState, MayHoldWhatCameThroughTheFiler) {
  std::vector<int> ids = {5};
  std::vector<float> values = {50};
  ORVResult heat(ORV_RESULT_ENTITY);
  heat.SetEntityAndVarName("NODE", "Heat");
  heat.m_nent = heat.m_ncoo = heat.m_readIds = 1;
  heat.m_entid = ids.data();
  heat.m_res = values.data();
  orv::Writer::StateScope state = writer_.state(1);
  ASSERT_EQ(writer_.filer().WriteBlock(&heat, state.number(), ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
  state.commit();
  EXPECT_EQ(writer_.state_count(), 2);
  EXPECT_THAT(RawFile(writer_.path()).values<float>(Values(2)), ElementsAre(50));
}

}  // namespace
