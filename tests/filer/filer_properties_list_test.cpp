// The list of properties blocks of a filer: which files have one, what is in it, and how blocks are looked up in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "filer/stored_properties.h"
#include "orvio/orv_variable.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FilerPropertiesList : public OrvTest {};

/// A file with blocks in every section.
PropertiesFile FileOfAllSections(ForgedModel::Layout layout = ForgedModel::kSingle) {
  PropertiesFile file(layout);
  file.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE"));
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
  file.Add(IdsOnly(kState1, "NODE", "Mass"));
  file.Add(IdsOnly(kState2, "NODE", "LATER"));
  file.Add(IdsOnly(kMultistate, "NODE", "ALL"));
  return file;
}

// ---- Reading

class FilerPropertiesListLayout : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerPropertiesListLayout, testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

TEST_P(FilerPropertiesListLayout, HasTheConstantSectionAndTheFirstState) {
  PropertiesFile file = FileOfAllSections(GetParam());
  PropertiesFiler filer(file.path().c_str());
  const std::vector<ORVProperties*>& list = filer.GetPropertiesBlocks(true);
  EXPECT_THAT(PropertiesFiler::NamesOf(list), ElementsAre("NODE/MASS", "SECURED_NODE/COORDINATE", "NODE/Mass"));
  EXPECT_EQ(&list, &filer.data().properties);
}

TEST_P(FilerPropertiesListLayout, OfAnyStateOrSectionIsReadByItsNumber) {
  PropertiesFile file = FileOfAllSections(GetParam());
  PropertiesFiler filer(file.path().c_str());
  std::vector<ORVProperties*> found;
  filer.ReadPropertiesBlks(2, found);
  filer.ReadPropertiesBlks(-1, found);
  filer.ReadPropertiesBlks(0, found);
  filer.ReadPropertiesBlks(3, found);
  EXPECT_THAT(PropertiesFiler::NamesOf(found),
              ElementsAre("NODE/LATER", "NODE/ALL", "NODE/MASS", "SECURED_NODE/COORDINATE"));
  for (const ORVProperties* block : found) delete block;
}

TEST_F(FilerPropertiesList, IsReadOnlyWhenItIsToBeLoadedAndEmpty) {
  PropertiesFile file = FileOfAllSections();
  PropertiesFiler filer(file.path().c_str());
  EXPECT_THAT(filer.GetPropertiesBlocks(false), IsEmpty());
  const std::vector<ORVProperties*> first = filer.GetPropertiesBlocks(true);
  EXPECT_EQ(first.size(), 3U);
  EXPECT_EQ(filer.GetPropertiesBlocks(true), first);
  EXPECT_EQ(filer.GetPropertiesBlocks(false), first);
}

TEST_F(FilerPropertiesList, OfAFileWithoutAnyIsEmpty) {
  PropertiesFile file;
  PropertiesFiler filer(file.path().c_str());
  EXPECT_THAT(filer.GetPropertiesBlocks(true), IsEmpty());
  EXPECT_THAT(ORVFiler(nullptr).GetPropertiesBlocks(true), IsEmpty());
  EXPECT_THAT(ORVFiler(TempPath("missing.orv").c_str()).GetPropertiesBlocks(true), IsEmpty());
}

struct VersionCase {
  int major, minor;
  bool has_list;
};
class FilerPropertiesListVersion : public OrvTest, public testing::WithParamInterface<VersionCase> {};
INSTANTIATE_TEST_SUITE_P(Versions, FilerPropertiesListVersion,
                         testing::Values(VersionCase{1, 0, false}, VersionCase{1, 1, false}, VersionCase{1, 2, false},
                                         VersionCase{2, 0, false}, VersionCase{2, 1, false}, VersionCase{2, 2, true},
                                         VersionCase{2, 3, true}, VersionCase{2, 4, true}, VersionCase{2, 5, true},
                                         VersionCase{2, 6, false}, VersionCase{3, 0, false}, VersionCase{0, 0, false}));

TEST_P(FilerPropertiesListVersion, DecidesUnlessForced) {
  PropertiesFile file = FileOfAllSections();
  file.file().header(GetParam().major, GetParam().minor, 0);
  PropertiesFiler filer(file.path().c_str());
  EXPECT_EQ(filer.GetPropertiesBlocks(true).size(), GetParam().has_list ? 3U : 0U);
  EXPECT_EQ(filer.data().has_secured_node, GetParam().has_list);
  PropertiesFiler forced(file.path().c_str());
  int next_id = 1;
  forced.InitProperityBlockReading(next_id, true);
  EXPECT_EQ(forced.GetPropertiesBlocks(false).size(), 3U);
  EXPECT_TRUE(forced.data().has_secured_node);
}

TEST_F(FilerPropertiesList, OfAFileWhoseVersionCannotBeReadNeedsForce) {
  PropertiesFile file = FileOfAllSections();
  file.file().at("/post/orvheader").drop("orvheader");
  PropertiesFiler filer(file.path().c_str());
  EXPECT_THAT(filer.GetPropertiesBlocks(true), IsEmpty());
  int next_id = 1;
  filer.InitProperityBlockReading(next_id, true);
  EXPECT_EQ(filer.GetPropertiesBlocks(false).size(), 3U);
}

TEST_F(FilerPropertiesList, IsReadInSilence) {
  PropertiesFile file = FileOfAllSections();  // without any variable
  PropertiesFiler filer(file.path().c_str());
  const Messages messages;
  const ORVMessageCallBack before = ORVFiler::_m_pMessageFuc;
  EXPECT_EQ(filer.GetPropertiesBlocks(true).size(), 3U);
  EXPECT_THAT(messages.all(), IsEmpty());
  EXPECT_EQ(ORVFiler::_m_pMessageFuc, before);
}

TEST_F(FilerPropertiesList, GivesNewHandlesTheIdsAfterTheLargest) {
  PropertiesFile file;
  file.model().variable({.name = "Speed", .key = "Speed"}).variable({.name = "MASS", .key = "MASS"});
  file.model().in_state(1, {.variable = "Speed", .nent = 1});
  PropertiesFiler filer(file.path().c_str());
  int next_id = 40;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_EQ(filer.GetExtVariables().size(), 1U);
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));  // the file has grown
  (void)file.path();
  ASSERT_EQ(filer.GetPropertiesBlocks(true).size(), 1U);
  ASSERT_NE(filer.GetExtVariable("MASS"), nullptr);
  EXPECT_EQ(filer.GetExtVariable("MASS")->GetIID(), 41);
  EXPECT_TRUE(filer.GetExtVariable("MASS")->IsApplicable(1));
  EXPECT_FALSE(filer.GetExtVariable("MASS")->IsApplicable(2));
}

TEST_F(FilerPropertiesList, GivesTheFirstHandleTheId1) {
  PropertiesFile file;
  file.model().variable({.name = "MASS", .key = "MASS"});
  PropertiesFiler filer(file.path().c_str());
  int next_id = 40;
  ASSERT_EQ(filer.InitReader(next_id), 1);  // there are no results
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
  (void)file.path();
  ASSERT_EQ(filer.GetPropertiesBlocks(true).size(), 1U);
  ASSERT_NE(filer.GetExtVariable("MASS"), nullptr);
  EXPECT_EQ(filer.GetExtVariable("MASS")->GetIID(), 1);
}

// ---- As part of the start-up

TEST_F(FilerPropertiesList, OfAStartUpRaisesItsCounter) {
  PropertiesFile file;
  file.model().variable({.name = "Speed", .key = "Speed"}).variable({.name = "MASS", .key = "MASS"});
  file.model().in_state(1, {.variable = "Speed", .nent = 1});
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
  PropertiesFiler filer(file.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(next_id, 3);
  ASSERT_EQ(filer.GetPropertiesBlocks(false).size(), 1U);
  EXPECT_EQ(filer.GetPropertiesBlocks(false)[0]->m_variable, filer.GetVariable("MASS"));
  EXPECT_FALSE(filer.data().has_secured_node);
}

TEST_F(FilerPropertiesList, OfAStartUpHasTheFlagOfASecuredNodeFromAnyOfItsBlocks) {
  for (const char* section : {"/post/constant", kState1}) {
    PropertiesFile file;
    file.model().variable({.name = "Speed", .key = "Speed"});
    file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
    file.Add(IdsOnly(section, "secured_node", "MASS"));
    PropertiesFiler filer(file.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer.InitReader(next_id), 0);
    EXPECT_TRUE(filer.data().has_secured_node);
  }
}

TEST_F(FilerPropertiesList, OfAStartUpHasNoFlagFromANameOrALaterState) {
  PropertiesFile file;
  file.model().variable({.name = "Speed", .key = "Speed"});
  file.Add(IdsOnly("/post/constant", "NODE", "SECURED_NODE"));
  file.Add(IdsOnly(kState1, "NODE", "MASS"));
  file.Add(IdsOnly(kState2, "SECURED_NODE", "COORDINATE"));
  file.Add(IdsOnly(kMultistate, "SECURED_NODE", "COORDINATE"));
  PropertiesFiler filer(file.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_FALSE(filer.data().has_secured_node);
}

TEST_F(FilerPropertiesList, WithoutASecuredNodeTakesAnOldFlagBack) {
  PropertiesFile file;
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
  PropertiesFiler filer(file.path().c_str());
  filer.data().has_secured_node = true;
  filer.GetPropertiesBlocks(true);
  EXPECT_FALSE(filer.data().has_secured_node);
}

// ---- Lookup

/// A filer with blocks of all sections, two of which have a variable.
class FilerPropertiesLookup : public OrvTest {
 protected:
  FilerPropertiesLookup() {
    file_.model().variable({.name = "COORDINATE", .key = "XYZ"}).variable({.name = "MASS", .key = "M"});
    int next_id = 1;
    EXPECT_EQ(filer_.emplace(file_.path().c_str()).InitReader(next_id), 0);
  }

  std::vector<std::string> ByName(std::vector<const char*> types, std::vector<const char*> names, int type = -1) {
    std::vector<ORVResult*> found;
    filer_->GetPropertiesBlocksByName(types, names, found, type);
    return PropertiesFiler::NamesOf(found);
  }
  std::vector<std::string> Named(const char* type, const char* name) {
    std::vector<ORVProperties*> found;
    filer_->GetPropertiesBlocks(type, name, found);
    return PropertiesFiler::NamesOf(found);
  }

  PropertiesFile file_ = FileOfAllSections();
  std::optional<PropertiesFiler> filer_;
};

TEST_F(FilerPropertiesLookup, OfAllAppendsAll) {
  ORVResult before;
  std::vector<ORVResult*> found = {&before};
  filer_->GetPropertiesBlocks(found);
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0], &before);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(found[i + 1], filer_->GetPropertiesBlocks(false)[i]);
}

TEST_F(FilerPropertiesLookup, ByTypeAndNameComparesBothWithoutRegardToCase) {
  EXPECT_THAT(Named("node", "mass"), ElementsAre("NODE/MASS", "NODE/Mass"));
  EXPECT_THAT(Named("secured_node", "coordinate"), ElementsAre("SECURED_NODE/COORDINATE"));
  EXPECT_THAT(Named("NODE", "COORDINATE"), IsEmpty());
  EXPECT_THAT(Named("SECURED_NODE", "MASS"), IsEmpty());
  EXPECT_THAT(Named("NODE", "MAS"), IsEmpty());
  EXPECT_THAT(Named("NODE", ""), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByTypeAndNameNeedsBoth) {
  EXPECT_THAT(Named(nullptr, "MASS"), IsEmpty());
  EXPECT_THAT(Named("NODE", nullptr), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByTypeAndNameAppends) {
  ORVProperties before;
  std::vector<ORVProperties*> found = {&before};
  filer_->GetPropertiesBlocks("NODE", "MASS", found);
  EXPECT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0], &before);
  filer_->GetPropertiesBlocks("NODE", "MASS", filer_->data().properties);  // the list itself
  EXPECT_EQ(filer_->data().properties.size(), 5U);
  filer_->data().properties.resize(3);
}

TEST_F(FilerPropertiesLookup, ByNameTakesTheKeyOfAVariable) {
  EXPECT_THAT(ByName({"node"}, {"m"}), ElementsAre("NODE/MASS", "NODE/Mass"));
  EXPECT_THAT(ByName({"NODE"}, {"MASS"}), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByNameTakesTheNameOfAVariableWithoutAKey) {
  filer_->GetVariable("MASS")->m_varkey[0] = '\0';
  EXPECT_THAT(ByName({"NODE"}, {"mass"}), ElementsAre("NODE/MASS", "NODE/Mass"));
  EXPECT_THAT(ByName({"NODE"}, {"M"}), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByNameWithAnEmptyListPassesAllButNothingWithTwo) {
  EXPECT_THAT(ByName({"NODE"}, {}), ElementsAre("NODE/MASS", "NODE/Mass"));
  EXPECT_THAT(ByName({}, {"XYZ", "M"}), ElementsAre("NODE/MASS", "SECURED_NODE/COORDINATE", "NODE/Mass"));
  EXPECT_THAT(ByName({"SECURED_NODE", "NODE"}, {}), ElementsAre("NODE/MASS", "SECURED_NODE/COORDINATE", "NODE/Mass"));
  EXPECT_THAT(ByName({}, {}), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByNameLooksAtTheKind) {
  EXPECT_THAT(ByName({"NODE"}, {"M"}, 500), ElementsAre("NODE/MASS", "NODE/Mass"));
  EXPECT_THAT(ByName({"NODE"}, {"M"}, 1000), IsEmpty());
}

TEST_F(FilerPropertiesLookup, ByNamePassesBlocksWithoutAVariableOver) {
  filer_->GetPropertiesBlocks(false)[0]->m_variable = nullptr;
  EXPECT_THAT(ByName({"NODE"}, {"M", "MASS"}), ElementsAre("NODE/Mass"));
}

TEST_F(FilerPropertiesLookup, ByNameAppends) {
  ORVResult before;
  std::vector<ORVResult*> found = {&before};
  std::vector<const char*> types = {"NODE"}, names = {"M"};
  filer_->GetPropertiesBlocksByName(types, names, found, -1);
  EXPECT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0], &before);
}

// ---- Yes or no

TEST_F(FilerPropertiesList, HasASecureNodePropertyByTypeAlone) {
  for (const char* type : {"SECURED_NODE", "secured_node"}) {
    PropertiesFile file;
    file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
    file.Add(IdsOnly("/post/constant", type, "MASS"));
    PropertiesFiler filer(file.path().c_str());
    EXPECT_FALSE(filer.HasSecureNodeProperty());  // not read yet
    filer.GetPropertiesBlocks(true);
    EXPECT_TRUE(filer.HasSecureNodeProperty()) << type;
    EXPECT_FALSE(filer.HasSecureNodeCoordinateProperty());
  }
}

TEST_F(FilerPropertiesList, WithoutThatTypeHasNoSecureNodeProperty) {
  PropertiesFile file;
  file.Add(IdsOnly("/post/constant", "NODE", "MASS"));
  PropertiesFiler filer(file.path().c_str());
  EXPECT_EQ(filer.GetPropertiesBlocks(true).size(), 1U);
  EXPECT_FALSE(filer.HasSecureNodeProperty());
  EXPECT_FALSE(ORVFiler(nullptr).HasSecureNodeProperty());
  EXPECT_FALSE(ORVFiler(nullptr).HasSecureNodeCoordinateProperty());
}

struct SecuredCase {
  const char *etyp, *name, *variable, *key;
  bool node, coordinate;
};

TEST_F(FilerPropertiesList, HasASecureNodeCoordinateByTypeAndVariable) {
  for (const SecuredCase& each : {SecuredCase{"SECURED_NODE", "XYZ", "XYZ", "COORDINATE", true, true},
                                  SecuredCase{"secured_node", "Coordinate", "coordinate", "coordinate", true, true},
                                  SecuredCase{"SECURED_NODE", "COORDINATE", "COORDINATE", "XYZ", true, false},
                                  SecuredCase{"SECURED_NODE", "COORDINATE", "Speed", "COORDINATE", true, false},
                                  SecuredCase{"SECURED_NODE", "MASS", "MASS", "MASS", true, false},
                                  SecuredCase{"NODE", "COORDINATE", "COORDINATE", "COORDINATE", false, false}}) {
    PropertiesFile file;
    file.model().variable({.name = each.variable, .key = each.key});
    file.Add(IdsOnly("/post/constant", each.etyp, each.name));
    PropertiesFiler filer(file.path().c_str());
    int next_id = 1;
    (void)filer.InitReader(next_id);
    EXPECT_EQ(filer.HasSecureNodeProperty(), each.node) << each.etyp;
    EXPECT_EQ(filer.HasSecureNodeCoordinateProperty(), each.coordinate) << each.etyp << each.name << each.variable;
  }
}

TEST_F(FilerPropertiesList, OfAnEarlyVersionHasASecureNodeCoordinateByTheNameOfTheVariable) {
  PropertiesFile file(ForgedModel::kSplit);
  file.file().header(1, 1, 0);
  file.model().variable({.name = "COORDINATE"});
  file.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE"));
  PropertiesFiler filer(file.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 1);
  EXPECT_FALSE(filer.HasSecureNodeCoordinateProperty());
  filer.InitProperityBlockReading(next_id, true);
  EXPECT_TRUE(filer.HasSecureNodeCoordinateProperty());
}

TEST_F(FilerPropertiesList, HasASecureNodeCoordinateByTheNameOfAGroup) {
  PropertiesFile file;
  file.model().variable({.name = "X", .key = "X"}).group("COORDINATE", 1, {{"X", 1, 0}});
  file.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE"));
  PropertiesFiler filer(file.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 0);
  EXPECT_TRUE(filer.HasSecureNodeCoordinateProperty());
}

}  // namespace
}  // namespace orv_test
