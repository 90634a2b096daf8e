// Entity types and element types of the connectivities of a state.

#include <gmock/gmock.h>

#include "entity/connectivity_forge.h"
#include "filer/model_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kPlace[] = "/post/constant/connectivities/";

class ConnectivityTypes : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  /// A block of two elements of four nodes, in the group of that name.
  ForgedFile& Add(const std::string& place, const char* element, const char* type) {
    return AddMesh(file_, place + element, GetParam()).text("etypelem", element).text("etyp", type);
  }

  int Ask(int state) {
    ORVFiler filer(file_.path().c_str());
    return filer.GetEntityTypesHavingConnectivity(state, types_, elements_);
  }

  ForgedFile file_;
  std::vector<std::string> types_ = {"before"}, elements_ = {"before", "too"};
};
INSTANTIATE_TEST_SUITE_P(Layouts, ConnectivityTypes, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(ConnectivityTypes, AreThoseOfTheBlocksInTheOrderOfTheirNames) {
  Add(kPlace, "TRIA", "2D");
  Add(kPlace, "HEXA", "3D");
  Add(kPlace, "QUAD", "2D");
  EXPECT_EQ(Ask(0), 3);
  EXPECT_THAT(types_, ElementsAre("3D", "2D", "2D"));
  EXPECT_THAT(elements_, ElementsAre("HEXA", "QUAD", "TRIA"));
}

TEST_P(ConnectivityTypes, AreThoseOfTheStateAlone) {
  Add(kPlace, "QUAD", "2D");
  Add(ForgedModel::StateGroup(1) + "/connectivities/", "HEXA", "3D");
  Add(ForgedModel::StateGroup(2) + "/connectivities/", "TRIA", "2D");
  EXPECT_EQ(Ask(2), 1);
  EXPECT_THAT(elements_, ElementsAre("TRIA"));
  EXPECT_THAT(types_, ElementsAre("2D"));
}

TEST_P(ConnectivityTypes, HaveAnEmptyTextForABlockWithoutEntityType) {
  Add(kPlace, "HEXA", "3D");
  Add(kPlace, "QUAD", "2D").drop("etyp");
  EXPECT_EQ(Ask(0), 2);
  EXPECT_THAT(types_, ElementsAre("3D", ""));
  EXPECT_THAT(elements_, ElementsAre("HEXA", "QUAD"));
}

TEST_P(ConnectivityTypes, LeaveOutBlocksWithoutElementsOrNodes) {
  Add(kPlace, "HEXA", "3D").integer("nele", 0);
  Add(kPlace, "QUAD", "2D").integer("npele", 0);
  Add(kPlace, "TRIA", "2D");
  EXPECT_EQ(Ask(0), 1);
  EXPECT_THAT(elements_, ElementsAre("TRIA"));
}

TEST_P(ConnectivityTypes, LeaveOutBlocksWhoseHeaderCannotBeRead) {
  Add(kPlace, "HEXA", "3D");
  Add(kPlace, "QUAD", "2D").drop("etypnode");
  Add(kPlace, "TRIA", "2D").retype("nele");
  EXPECT_EQ(Ask(0), 1);
  EXPECT_THAT(elements_, ElementsAre("HEXA"));
}

TEST_P(ConnectivityTypes, OfAPlaceThatIsNotThereAreNone) {
  Add(ForgedModel::StateGroup(1) + "/connectivities/", "HEXA", "3D");
  EXPECT_EQ(Ask(0), 0);
  EXPECT_THAT(types_, IsEmpty());
  EXPECT_THAT(elements_, IsEmpty());
  types_ = {"before"};
  EXPECT_EQ(Ask(2), 0);
  EXPECT_THAT(types_, IsEmpty());
}

TEST_P(ConnectivityTypes, WithoutAFileAreNone) {
  ORVFiler nameless(nullptr);
  EXPECT_EQ(nameless.GetEntityTypesHavingConnectivity(0, types_, elements_), 0);
  EXPECT_THAT(types_, IsEmpty());
  EXPECT_THAT(elements_, IsEmpty());
  Add(kPlace, "HEXA", "3D");
  ModelFiler filer(file_.path().c_str());
  const WithoutData without(filer);
  types_ = elements_ = {"before"};
  EXPECT_EQ(filer.GetEntityTypesHavingConnectivity(0, types_, elements_), 0);
  EXPECT_THAT(types_, IsEmpty());
  EXPECT_THAT(elements_, IsEmpty());
}

}  // namespace
}  // namespace orv_test
