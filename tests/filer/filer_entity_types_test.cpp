// The entity types of a filer. What they rest on is tested in tests/entity: the table in entity_type_table_test, the
// search in files and the rows in entity_type_generic_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "entity/connectivity_forge.h"
#include "entity/own_entity_table.h"
#include "filer/listed_results.h"
#include "h5/text_field.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kIgnored = static_cast<_ORVEntityType>(-1);

class FilerEntityTypes : public OrvTest {
 protected:
  FilerEntityTypes() {
    const std::string place = "/post/constant/connectivities/";
    AddMesh(file_, place + "A", Layout::kSingle).text("etypelem", "QUAD").text("etyp", "2D").integer("ndim", 2);
    AddMesh(file_, place + "B", Layout::kSingle).text("etypelem", "TRIA").text("etyp", "2D");
    AddMesh(file_, place + "C", Layout::kSingle).text("etypelem", "HEXA").text("etyp", "3D");
    filer_ = std::make_unique<FilerWithResults>(file_.path().c_str());
  }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const ORVGenericEntityNameMap* generic : filer_->GetGenericTypes()) names.push_back(generic->m_genericName);
    return names;
  }

  const OwnEntityTable table_;
  const Messages messages_;
  ForgedFile file_;
  std::unique_ptr<FilerWithResults> filer_;
};

TEST_F(FilerEntityTypes, AreEmptyAtFirst) { EXPECT_THAT(filer_->GetGenericTypes(), IsEmpty()); }

TEST_F(FilerEntityTypes, AreCollectedFromTheFile) {
  filer_->UpdateGenericTypes(0);
  EXPECT_THAT(Names(), ElementsAre("2D", "3D"));
  EXPECT_THAT(table_.rows(), IsEmpty());
}

TEST_F(FilerEntityTypes, AreCollectedAndNumberedInOneGo) {
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 79, 0), 2);
  EXPECT_THAT(Names(), ElementsAre("2D", "3D"));
  ASSERT_EQ(table_.rows().size(), 2U);
  EXPECT_STREQ(table_.rows()[1]->m_name, "3D");
  EXPECT_EQ(table_.rows()[1]->m_appType, 71);
}

TEST_F(FilerEntityTypes, OfAllStatesAreCollectedAndNumberedInOneGo) {
  for (const int state : {1, 2}) {
    const std::string place = "/post/singlestate/state00000000000" + std::to_string(state) + "/connectivities/D";
    AddMesh(file_, place, Layout::kSingle).text("etypelem", "BAR").text("etyp", state == 1 ? "1D" : "0D");
  }
  (void)file_.path();
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 79, -1), 3);  // the last state is left out
  EXPECT_THAT(Names(), ElementsAre("2D", "3D", "1D"));
  ASSERT_EQ(table_.rows().size(), 3U);
  EXPECT_STREQ(table_.rows()[2]->m_name, "1D");
  EXPECT_EQ(table_.rows()[2]->m_appType, 72);
}

TEST_F(FilerEntityTypes, OfASecondFileJoinTheRowsOfTheFirst) {
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 79, 0), 2);
  filer_.reset();
  ForgedFile second;
  AddMesh(second, "/post/constant/connectivities/A", Layout::kSingle).text("etyp", "2d");
  AddMesh(second, "/post/constant/connectivities/B", Layout::kSingle).text("etyp", "4D");
  ORVFiler filer(second.path().c_str());
  EXPECT_EQ(filer.CheckCreateGenericEntityTypes(80, 89, 0), 1);
  ASSERT_EQ(table_.rows().size(), 3U);
  EXPECT_EQ(table_.rows()[0]->m_appType, 70);
  EXPECT_STREQ(table_.rows()[2]->m_name, "4D");
  EXPECT_EQ(table_.rows()[2]->m_orvType, 2013);
  EXPECT_EQ(table_.rows()[2]->m_appType, 80);
}

TEST_F(FilerEntityTypes, GoWithWhatTheFilerHasReadButKeepTheirRows) {
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 79, 0), 2);
  filer_->ClearAll();
  EXPECT_THAT(filer_->GetGenericTypes(), IsEmpty());
  EXPECT_EQ(table_.rows().size(), 2U);
}

TEST_F(FilerEntityTypes, OfAFileOfNastranShareTheRowOfTheirElement) {
  ForgedModel model;
  model.system().file().at("/post/constant/system/orvblock").text("solver_name", "MSC NASTRAN 2026");
  AddMesh(model.file(), "/post/constant/connectivities/A", Layout::kSingle).text("etyp", "CTRIAR");
  ORVFiler filer(model.path().c_str());
  (void)ORVCheckAppendToEntityMap(254, 33, "TRIA3");
  ASSERT_EQ(filer.ReadSystemBlock(), 0);
  EXPECT_EQ(filer.CheckCreateGenericEntityTypes(70, 79, 0), 0);
  ASSERT_EQ(table_.rows().size(), 2U);
  EXPECT_STREQ(table_.rows()[1]->m_name, "CTRIAR");
  EXPECT_EQ(table_.rows()[1]->m_orvType, 254);
  EXPECT_EQ(table_.rows()[1]->m_appType, 33);
}

TEST_F(FilerEntityTypes, WithARangeThatIsTooSmallAreTold) {
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 70, 0), 1);
  EXPECT_THAT(messages_.all(),
              ElementsAre(Message(1,
                                  "Generic entity type \"3D\" will not be available for post processing due to "
                                  "exhausted post entity types")));
}

TEST_F(FilerEntityTypes, WithAnEmptyRangeAreNotLookedFor) {
  EXPECT_EQ(filer_->CheckCreateGenericEntityTypes(70, 69, 0), 0);
  EXPECT_THAT(filer_->GetGenericTypes(), IsEmpty());
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(FilerEntityTypes, LeadFromABaseTypeToItsFamily) {
  (void)filer_->CheckCreateGenericEntityTypes(70, 79, 0);
  (void)ORVCheckAppendToEntityMap(301, 5, "HEXA");
  std::string name = "before";
  int app_type = 77;
  auto type = static_cast<_ORVEntityType>(77);
  EXPECT_EQ(filer_->GetGenericAppTypeFrmBaseAppType(5, kIgnored, name, app_type, type), 0);
  EXPECT_EQ(name, "3D");
  EXPECT_EQ(app_type, 71);
  EXPECT_EQ(type, 2012);
}

TEST_F(FilerEntityTypes, OfABaseTypeWithoutAFamilyAreMinusOne) {
  std::string name = "before";
  int app_type = 77;
  auto type = static_cast<_ORVEntityType>(77);
  EXPECT_EQ(filer_->GetGenericAppTypeFrmBaseAppType(5, kIgnored, name, app_type, type), 1);
  EXPECT_EQ(name, "before");
  EXPECT_EQ(app_type, -1);
  EXPECT_EQ(type, -1);
}

TEST_F(FilerEntityTypes, LeadFromAFamilyToTheNumbersOfItsBaseTypes) {
  filer_->UpdateGenericTypes(0);
  (void)ORVCheckAppendToEntityMap(254, 6, "TRIA");
  (void)ORVCheckAppendToEntityMap(250, 5, "QUAD");
  std::vector<int> app_types = {1};
  std::vector<_ORVEntityType> types = {static_cast<_ORVEntityType>(2)};
  filer_->GetAppTypesFrmGeneric("2d", app_types);
  filer_->GetORVTypesFrmGeneric("2d", types);
  EXPECT_THAT(app_types, ElementsAre(1, 5, 6));
  EXPECT_THAT(types, ElementsAre(2, 250, 254));
  filer_->GetAppTypesFrmGeneric(nullptr, app_types);
  filer_->GetORVTypesFrmGeneric(nullptr, types);
  filer_->GetAppTypesFrmGeneric("4D", app_types);
  EXPECT_EQ(app_types.size(), 3U);
  EXPECT_EQ(types.size(), 3U);
}

TEST_F(FilerEntityTypes, UnknownTypesReachNeitherTheCallerNorTheTable) {
  std::vector<ORVEntityTypeMap*> types;
  filer_->GetUnknowEntTyps(0, types);  // a leak would be reported
  EXPECT_THAT(types, IsEmpty());
  EXPECT_THAT(table_.rows(), IsEmpty());
}

TEST_F(FilerEntityTypes, OfResultsAreRenewedFromTheTable) {
  ORVResult* node = filer_->Add("Heat", 1000, 50, 1);
  ORVResult* other = filer_->Add("Speed", 1000, 50, 1);
  ORVResult* third = filer_->Add("Force", 1000, 50, 1);
  orvio::Assign(other->m_etyp, "Unknown");
  orvio::Assign(third->m_etyp, "NODE");
  (void)ORVCheckAppendToEntityMap(7, 8, "node");
  std::vector<ORVResult*> results = {node, other, nullptr, third};
  filer_->UpdateEntityType(results);
  EXPECT_EQ(node->m_entityType, 7);
  EXPECT_EQ(node->m_baseEntityType, 8);
  EXPECT_EQ(other->m_entityType, 50);
  EXPECT_EQ(other->m_baseEntityType, 1);
  EXPECT_EQ(third->m_entityType, 7);
}

// ---- Frame types

class FilerFrameTypes : public OrvTest {
 protected:
  void AddFramed(const char* frame, int kind = 1000) { orvio::Assign(filer_.Add("Heat", kind)->m_etypframe, frame); }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    filer_.GetFrameEntityNames(names);
    return names;
  }
  bool Has(std::string name) { return filer_.IsFrameEntityName(name); }

  FilerWithResults filer_;
};

TEST_F(FilerFrameTypes, AreThoseOfTheSingleStateResultsSortedAndEachOnce) {
  for (const char* frame : {"b", "", "A", "b", "B"}) AddFramed(frame);
  AddFramed("multi", 1050);
  filer_.UpdateFrameEntity();
  EXPECT_THAT(Names(), ElementsAre("A", "B", "b"));
}

TEST_F(FilerFrameTypes, StayAndAreJoinedByNewOnes) {
  AddFramed("b");
  filer_.UpdateFrameEntity();
  AddFramed("a");
  filer_.UpdateFrameEntity();
  EXPECT_THAT(Names(), ElementsAre("a", "b"));
}

TEST_F(FilerFrameTypes, StayAsTheyAreWithoutResults) {
  filer_.data().m_frameEntityNames = {"b", "a"};
  filer_.UpdateFrameEntity();
  EXPECT_THAT(Names(), ElementsAre("b", "a"));
}

TEST_F(FilerFrameTypes, GoWithWhatTheFilerHasRead) {
  AddFramed("Local");
  filer_.UpdateFrameEntity();
  filer_.ClearAll();
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_FALSE(Has("Local"));
}

TEST_F(FilerFrameTypes, AreKnownWithoutRegardToCase) {
  AddFramed("Local");
  EXPECT_FALSE(Has("Local"));
  filer_.UpdateFrameEntity();
  EXPECT_TRUE(Has("LOCAL"));
  EXPECT_FALSE(Has("Loca"));
}

TEST_F(FilerFrameTypes, AreHandedOutAsPointersIntoTheList) {
  AddFramed("Local");
  filer_.UpdateFrameEntity();
  std::vector<const char*> pointers = {"before"};
  filer_.GetFrameEntityNames(pointers);
  ASSERT_EQ(pointers.size(), 2U);
  EXPECT_EQ(pointers[1], filer_.data().m_frameEntityNames[0].c_str());
}

TEST_F(FilerFrameTypes, AreAppended) {
  AddFramed("Local");
  filer_.UpdateFrameEntity();
  std::vector<std::string> names = {"before"};
  filer_.GetFrameEntityNames(names);
  EXPECT_THAT(names, ElementsAre("before", "Local"));
}

}  // namespace
}  // namespace orv_test
