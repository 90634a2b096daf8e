// Fixed group paths and the names of state groups.

#include "h5/group_paths.h"

#include <cstring>
#include <limits>
#include <string>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

struct PathRow {
  int id;
  const char* path;
};

class GroupPath : public H5Test, public testing::WithParamInterface<PathRow> {};

TEST_P(GroupPath, IsFixedForEachId) {
  char path[64] = {};
  EXPECT_EQ(OH5GetGroupPath(GetParam().id, path), 0);
  EXPECT_STREQ(path, GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Rows, GroupPath,
                         testing::Values(PathRow{0, "./post"}, PathRow{1, "./post/singlestate"},
                                         PathRow{2, "./post/multistate"}, PathRow{3, "./post/constant"},
                                         PathRow{4, "./post/constant/connectivities"},
                                         PathRow{5, "./post/constant/attributes"}, PathRow{6, "./post/orvheader"},
                                         PathRow{7, "./post/constant/variables"},
                                         PathRow{8, "./post/constant/variable"},
                                         PathRow{9, "./post/constant/variablegroup"},
                                         PathRow{10, "./post/constant/elements"}, PathRow{11, "./post/constant/system"},
                                         PathRow{12, "./post/constant/collector"}, PathRow{13, "./post/constant/parts"},
                                         PathRow{14, "./post/constant/indices"}, PathRow{15, "./post/constant/text"},
                                         PathRow{16, "./mmc"}, PathRow{21, "./post/constant/identifiers"}),
                         [](const auto& row) { return "Id" + std::to_string(row.param.id); });

using GroupPaths = H5Test;

TEST_F(GroupPaths, AnswerOneForIdsWithoutAPath) {
  for (const int id : {17, 18, 19, 20, 22, -1, 1000}) {
    char path[64] = "before";
    EXPECT_EQ(OH5GetGroupPath(id, path), 1) << id;
    EXPECT_STREQ(path, "before") << id;
  }
  EXPECT_EQ(OH5GetGroupPath(0, nullptr), 1);
}

struct StateRow {
  int state;
  const char* name;
};

class StateName : public H5Test, public testing::WithParamInterface<StateRow> {};

TEST_P(StateName, IsPaddedToTwelveDigits) {
  char name[64] = {};
  OH5BuildStateName(GetParam().state, name);
  EXPECT_STREQ(name, GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Rows, StateName,
                         testing::Values(StateRow{1, "state000000000001"}, StateRow{12, "state000000000012"},
                                         StateRow{100, "state000000000100"},
                                         StateRow{std::numeric_limits<int>::max(), "state002147483647"}));

TEST_F(GroupPaths, BuildNoStateNameWithoutABuffer) { OH5BuildStateName(1, nullptr); }

}  // namespace
