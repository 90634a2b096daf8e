// Generic entity types: how they are found in the connectivities of a file, and the rows they get.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>

#include "entity/connectivity_forge.h"
#include "entity/generic_types.h"
#include "entity/own_entity_table.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string Connectivities(int state) {
  if (state == 0) return "/post/constant/connectivities/";
  return "/post/singlestate/state00000000000" + std::to_string(state) + "/connectivities/";
}

std::vector<std::string> Describe(const ORVContainer& data) {
  std::vector<std::string> lines;
  for (const ORVGenericEntityNameMap* generic : data.m_genericTypes) {
    std::string line = generic->m_genericName + ":";
    for (const char* base : generic->m_baseNames) line += std::string(" ") + base;
    lines.push_back(line);
  }
  return lines;
}

class GenericTypes : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ~GenericTypes() override { orvio::ClearGenericTypes(data_); }

  /// A block of four nodes an element; `etyp` may be null.
  ForgedFile& Add(int state, const char* etypelem, const char* etyp) {
    AddMesh(file_, Connectivities(state) + etypelem, GetParam()).text("etypelem", etypelem);
    if (etyp) file_.text("etyp", etyp);
    return file_;
  }
  void Update(int state) {
    data_.path = file_.path();
    orvio::h5::EntryVoid([&] { orvio::UpdateGenericTypes(data_, state); });  // the frame of the filer's operation
  }

  ForgedFile file_;
  ORVContainer data_{nullptr};
};

INSTANTIATE_TEST_SUITE_P(Layouts, GenericTypes, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(GenericTypes, HoldTheElementTypesUnderThem) {
  Add(0, "QUAD", "2D");
  Add(0, "TRIA", "2D");
  Add(0, "HEXA", "3D");
  Update(0);
  EXPECT_THAT(Describe(data_), ElementsAre("3D: HEXA", "2D: QUAD TRIA"));
}

TEST_P(GenericTypes, MayHaveTheNameOfTheirElementType) {
  Add(0, "QUAD", "QUAD");
  Add(0, "TRIA", "TRIA");
  Update(0);
  EXPECT_THAT(Describe(data_), ElementsAre("QUAD: QUAD", "TRIA: TRIA"));
}

TEST_P(GenericTypes, CompareWithoutRegardToCase) {
  Add(0, "A", "shell").text("etypelem", "QUAD");
  Add(0, "B", "SHELL").text("etypelem", "quad");
  Add(0, "C", "Shell").text("etypelem", "Tria");
  Update(0);
  EXPECT_THAT(Describe(data_), ElementsAre("shell: QUAD Tria"));
}

TEST_P(GenericTypes, ComeOnlyFromBlocksThatHaveBothNames) {
  Add(0, "A", nullptr);
  Add(0, "B", "").text("etypelem", "QUAD");
  Add(0, "C", "SHELL").text("etypelem", "");
  Update(0);
  EXPECT_THAT(Describe(data_), IsEmpty());
}

TEST_P(GenericTypes, AreNotTakenFromTheBlockBefore) {
  Add(0, "A", "2D").text("etypelem", "QUAD");
  Add(0, "B", nullptr).text("etypelem", "TRIA");
  Update(0);
  EXPECT_THAT(Describe(data_), ElementsAre("2D: QUAD"));
}

TEST_P(GenericTypes, ComeOnlyFromBlocksWithElementsAndNodes) {
  Add(0, "A", "2D").integer("nele", 0);
  Add(0, "B", "2D").integer("npele", 0);
  Add(0, "C", "2D").drop("etyppart");
  Update(0);
  EXPECT_THAT(Describe(data_), IsEmpty());
}

TEST_P(GenericTypes, OfOneStateAreItsOwn) {
  Add(0, "CONST", "c");
  Add(1, "ONE", "a");
  Add(2, "TWO", "b");
  Update(2);
  EXPECT_THAT(Describe(data_), ElementsAre("b: TWO"));
}

TEST_P(GenericTypes, OnlyGrow) {
  Add(0, "QUAD", "2D");
  Add(1, "TRIA", "2D");
  Update(0);
  Update(0);
  Update(1);
  EXPECT_THAT(Describe(data_), ElementsAre("2D: QUAD TRIA"));
  EXPECT_EQ(data_.m_genericTypes[0]->m_baseNames.size(), 2U);
}

TEST_P(GenericTypes, OfAllStatesLeaveTheLastStateOut) {
  Add(0, "CONST", "c");
  Add(1, "ONE", "a");
  Add(2, "TWO", "a");
  Add(3, "THREE", "a");
  Update(-1);
  EXPECT_THAT(Describe(data_), ElementsAre("c: CONST", "a: ONE TWO"));
}

TEST_P(GenericTypes, OfAllStatesAreThoseOfTheConstantSectionWhereThereIsOneState) {
  Add(0, "CONST", "c");
  Add(1, "ONE", "a");
  Update(-1);
  EXPECT_THAT(Describe(data_), ElementsAre("c: CONST"));
}

TEST_P(GenericTypes, OfAllStatesAreThoseOfTheConstantSectionWhereThereIsNoState) {
  Add(0, "CONST", "c");
  Update(-1);
  EXPECT_THAT(Describe(data_), ElementsAre("c: CONST"));
  file_.at("/post").drop("singlestate");
  Add(0, "LATER", "d");
  Update(-1);
  EXPECT_THAT(Describe(data_), ElementsAre("c: CONST", "d: LATER"));
}

TEST_P(GenericTypes, OfAllStatesPassOverAStateWithoutElements) {
  file_.group("/post/singlestate/state000000000001");
  Add(2, "TWO", "a");
  file_.group("/post/singlestate/state000000000003");
  Update(-1);
  EXPECT_THAT(Describe(data_), ElementsAre("a: TWO"));
}

TEST_P(GenericTypes, OfAFileThatIsNotThereAreNone) {
  data_.path = TempPath("none");
  orvio::UpdateGenericTypes(data_, 0);
  orvio::UpdateGenericTypes(data_, -1);
  EXPECT_THAT(Describe(data_), IsEmpty());
}

// ---- Element types without a row

TEST_P(GenericTypes, UnknownElementTypesGetTheNumberOfTheirShape) {
  const OwnEntityTable table;
  (void)ORVCheckAppendToEntityMap(250, 1, "known");
  Add(1, "A", "2D").text("etypelem", "KNOWN");
  Add(1, "B", "2D").text("etypelem", "NEW").integer("ndim", 2);
  Add(1, "C", "2D").text("etypelem", "X");
  Add(1, "D", "2D").text("etypelem", "EMPTY").integer("nele", 0);
  Add(1, "E", "2D").text("etypelem", "SHAPELESS");
  const auto unknown = orvio::FindUnknownElementTypes(file_.path().c_str(), 1);
  ASSERT_EQ(unknown.size(), 2U);
  EXPECT_STREQ(unknown[0]->m_name, "NEW");
  EXPECT_EQ(unknown[0]->m_orvType, 250);
  EXPECT_EQ(unknown[0]->m_appType, 0);
  EXPECT_STREQ(unknown[1]->m_name, "SHAPELESS");
  EXPECT_EQ(unknown[1]->m_orvType, 0);
  EXPECT_EQ(table.rows().size(), 1U);
}

TEST_P(GenericTypes, UnknownElementTypesEndAtABlockThatCannotBeRead) {
  const OwnEntityTable table;
  Add(0, "A", "2D").text("etypelem", "FIRST");
  Add(0, "B", "2D").drop("nele");
  Add(0, "C", "2D").text("etypelem", "THIRD");
  const auto unknown = orvio::FindUnknownElementTypes(file_.path().c_str(), 0);
  ASSERT_EQ(unknown.size(), 1U);
  EXPECT_STREQ(unknown[0]->m_name, "FIRST");
}

// ---- Rows

class GenericRows : public OrvTest {
 protected:
  ~GenericRows() override { orvio::ClearGenericTypes(data_); }

  void AddGeneric(const char* name, const std::vector<const char*>& bases) {
    auto generic = std::make_unique<ORVGenericEntityNameMap>();
    generic->m_genericName = name;
    for (const char* base : bases) generic->m_baseNames.push_back(strdup(base));
    data_.m_genericTypes.push_back(generic.release());
  }
  void SetSolver(const char* name) {
    data_.system = std::make_unique<ORVSystem>();
    std::strcpy(data_.system->m_solverName, name);
  }
  std::vector<std::string> Table() const {
    std::vector<std::string> lines;
    for (const ORVEntityTypeMap* row : table_.rows()) {
      lines.push_back(std::string(row->m_name) + " " + std::to_string(row->m_orvType) + " " +
                      std::to_string(row->m_appType));
    }
    return lines;
  }

  const OwnEntityTable table_;
  const Messages messages_;
  ORVContainer data_{nullptr};
};

TEST_F(GenericRows, TakeNumbersOfTheHostInOrder) {
  AddGeneric("2D", {"QUAD"});
  AddGeneric("3D", {"HEXA"});
  (void)ORVCheckAppendToEntityMap(305, 1, "TETRA");
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 79}), 2);
  EXPECT_THAT(Table(), ElementsAre("TETRA 305 1", "2D 2011 70", "3D 2012 71"));
  EXPECT_THAT(messages_.all(), IsEmpty());
}

TEST_F(GenericRows, ThatAreThereSpendNoNumber) {
  AddGeneric("2D", {"QUAD"});
  AddGeneric("3D", {"HEXA"});
  (void)ORVCheckAppendToEntityMap(12, 5, "2d");
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 70}), 1);
  EXPECT_THAT(Table(), ElementsAre("2d 12 5", "3D 2011 70"));
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 70}), 0);
}

TEST_F(GenericRows, ThatFindNoNumberLeftAreToldOneByOne) {
  for (const char* name : {"A", "B", "C", "D"}) AddGeneric(name, {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 71}), 2);
  EXPECT_THAT(Table(), ElementsAre("A 2011 70", "B 2012 71"));
  EXPECT_THAT(messages_.all(),
              ElementsAre(Message(1,
                                  "Generic entity type \"C\" will not be available for post processing due to "
                                  "exhausted post entity types"),
                          Message(1,
                                  "Generic entity type \"D\" will not be available for post processing due to "
                                  "exhausted post entity types")));
}

TEST_F(GenericRows, ThatCannotBeMadeAreTold) {
  (void)ORVCheckAppendToEntityMap(INT_MAX, 5, "BIG");
  AddGeneric("A", {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 71}), 0);
  EXPECT_THAT(messages_.all(), ElementsAre(Message(1, "Unable to create entity map for generic entity type \"A\"")));
}

TEST_F(GenericRows, GoUpToTheLargestNumberOfAHost) {
  AddGeneric("A", {"x"});
  AddGeneric("B", {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {INT_MAX, INT_MAX}), 1);
  EXPECT_THAT(Table(), ElementsAre("A 2011 2147483647"));
  EXPECT_EQ(messages_.all().size(), 1U);
}

TEST_F(GenericRows, OfNastranShareTheRowOfTheirElement) {
  SetSolver("The NASTRAN solver");
  (void)ORVCheckAppendToEntityMap(254, 33, "TRIA3");
  (void)ORVCheckAppendToEntityMap(254, 34, "TRIA3B");
  AddGeneric("ctriar", {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 79}), 0);
  EXPECT_THAT(Table(), ElementsAre("TRIA3 254 33", "TRIA3B 254 34", "ctriar 254 33"));
}

TEST_F(GenericRows, OfNastranWithoutARowOfTheirElementTakeANumberOfTheHost) {
  SetSolver("NASTRAN");
  AddGeneric("CTRIAR", {"x"});
  AddGeneric("OWN", {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 79}), 2);
  EXPECT_THAT(Table(), ElementsAre("CTRIAR 2011 70", "OWN 2012 71"));
}

TEST_F(GenericRows, OfNastranThatAreThereKeepTheirOwn) {
  SetSolver("NASTRAN");
  (void)ORVCheckAppendToEntityMap(254, 33, "TRIA3");
  (void)ORVCheckAppendToEntityMap(9, 44, "ctriar");
  AddGeneric("CTRIAR", {"x"});
  EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 79}), 0);
  EXPECT_THAT(Table(), ElementsAre("TRIA3 254 33", "ctriar 9 44"));
}

TEST_F(GenericRows, OfOtherSolversShareNoRow) {
  (void)ORVCheckAppendToEntityMap(254, 33, "TRIA3");
  AddGeneric("CTRIAR", {"x"});
  for (const char* solver : {"Nastran", "forge"}) {
    SetSolver(solver);
    EXPECT_EQ(orvio::CreateGenericRows(data_, {70, 79}), solver[0] == 'N' ? 1 : 0) << solver;
  }
  EXPECT_THAT(Table(), ElementsAre("TRIA3 254 33", "CTRIAR 2011 70"));
}

// ---- From base names to generic ones and back

TEST_F(GenericRows, AreFoundByANumberOfABaseName) {
  AddGeneric("NONE", {"QUAD"});
  AddGeneric("2D", {"TRIA", "quad"});
  AddGeneric("2E", {"QUAD"});
  (void)ORVCheckAppendToEntityMap(250, 5, "OTHER");
  (void)ORVCheckAppendToEntityMap(251, 5, "QUAD");
  (void)ORVCheckAppendToEntityMap(900, 90, "2d");
  (void)ORVCheckAppendToEntityMap(901, 91, "2E");
  const orvio::GenericRow found = orvio::FindGenericRowOfBase(data_, 5);
  ASSERT_NE(found.row, nullptr);
  EXPECT_EQ(found.generic->m_genericName, "2D");
  EXPECT_EQ(found.row->m_orvType, 900);
  EXPECT_EQ(orvio::FindGenericRowOfBase(data_, 90).row, nullptr);
  EXPECT_EQ(orvio::FindGenericRowOfBase(data_, 6).row, nullptr);
}

TEST_F(GenericRows, LeadToTheRowsOfTheirBaseNames) {
  AddGeneric("2D", {"TRIA", "NOROW", "QUAD"});
  (void)ORVCheckAppendToEntityMap(250, 5, "quad");
  (void)ORVCheckAppendToEntityMap(254, 6, "TRIA");
  std::vector<int> numbers;
  for (const ORVEntityTypeMap* row : orvio::RowsOfBaseNames(data_, "2d")) numbers.push_back(row->m_orvType);
  EXPECT_THAT(numbers, ElementsAre(254, 250));
  EXPECT_THAT(orvio::RowsOfBaseNames(data_, "3D"), IsEmpty());
}

TEST_F(GenericRows, GoWithTheirList) {
  AddGeneric("2D", {"TRIA"});
  orvio::ClearGenericTypes(data_);  // a leak would be reported
  EXPECT_THAT(data_.m_genericTypes, IsEmpty());
}

}  // namespace
}  // namespace orv_test
