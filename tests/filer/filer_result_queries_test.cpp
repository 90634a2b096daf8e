// Questions of fixed names and those with yes or no for an answer. The lookups behind them are in tests/result.

#include <gtest/gtest.h>

#include <cstring>

#include "filer/listed_results.h"
#include "orvio/orv_variable_grp.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

using Results = std::vector<ORVResult*>;

class FilerQueries : public OrvTest {
 protected:
  Results Coordinates() {
    Results found;
    filer_.GetNodeCoordinateBlocks(found);
    return found;
  }

  Results Displacements(bool with_acceleration) {
    Results found;
    filer_.GetNodeDisplacementBlocks(found, with_acceleration);
    return found;
  }

  bool HasDisplacement(bool with_vector, int flags = 1) {
    return filer_.IsDisplacementAvailable(entities_, base_types_, with_vector, flags);
  }

  FilerWithResults filer_;
  std::vector<_ORVEntityType> entities_;
  std::vector<int> base_types_;
};

TEST_F(FilerQueries, FindCoordinatesOfNodesInTheStateList) {
  Results expected;
  for (const int type : {50, 1009, 1010}) expected.push_back(filer_.Add("coordinate", 1000, type));
  filer_.Add("COORDINATE", 1000, 51);
  filer_.Add("COORDINATES", 1000, 50);
  filer_.Add("COORDINATE", 1050, 50);
  EXPECT_EQ(Coordinates(), expected);
}

TEST_F(FilerQueries, FindDisplacementsOfNodesByFiveNames) {
  Results expected;
  for (const char* name : {"Translational_Displacement", "DISPLACEMENTS_NOD", "Complex_Translational_Displacement",
                           "Complex Translational Displacements", "DISPLACEMENTS_NOD_CMPLX"}) {
    expected.push_back(filer_.Add(name));
    EXPECT_TRUE(HasDisplacement(false)) << name;
  }
  filer_.Add("DISPLACEMENTS_NOD", 1000, 103);
  filer_.Add("DISPLACEMENTS_NOD", 1050);
  filer_.Add("Velocity");
  ORVResult* acceleration = filer_.Add("Complex_Translational_Acceleration");
  EXPECT_EQ(Displacements(false), expected);
  expected.push_back(acceleration);
  EXPECT_EQ(Displacements(true), expected);
}

TEST_F(FilerQueries, FindDisplacementsOfThreeTypesOfNodesAndAppendThem) {
  ORVResult* before = filer_.Add("Velocity");
  Results expected = {before};
  for (const int type : {50, 1009, 1010}) expected.push_back(filer_.Add("DISPLACEMENTS_NOD", 1000, type));
  filer_.Add("DISPLACEMENTS_NOD", 1000, 51);
  Results found = {before};
  filer_.GetNodeDisplacementBlocks(found, false);
  EXPECT_EQ(found, expected);
  ORVResult* coordinate = filer_.Add("COORDINATE");
  filer_.GetNodeCoordinateBlocks(found);
  expected.push_back(coordinate);
  EXPECT_EQ(found, expected);
}

TEST_F(FilerQueries, TellOfEachDisplacementByItself) {
  EXPECT_FALSE(HasDisplacement(true));
  filer_.Add("Complex_Translational_Acceleration");
  EXPECT_FALSE(HasDisplacement(true));
  filer_.Add("ZPS:TranslationalDisplacementVector");
  EXPECT_FALSE(HasDisplacement(false));
  EXPECT_TRUE(HasDisplacement(true));
}

TEST_F(FilerQueries, TellOfDisplacementsByAnyOfFiveNamesAlone) {
  for (const char* name : {"Translational_Displacement", "DISPLACEMENTS_NOD", "Complex_Translational_Displacement",
                           "Complex Translational Displacements", "DISPLACEMENTS_NOD_CMPLX"}) {
    FilerWithResults filer;
    filer.Add(name);
    EXPECT_TRUE(filer.IsDisplacementAvailable(entities_, base_types_, false, 1)) << name;
  }
}

TEST_F(FilerQueries, TellOfDisplacementsOfAListAndOfTypes) {
  filer_.Add("DISPLACEMENTS_NOD", 1050, 60, 7);
  EXPECT_FALSE(HasDisplacement(false, 1));
  EXPECT_FALSE(HasDisplacement(false, 3));
  EXPECT_FALSE(HasDisplacement(false, 0));
  EXPECT_TRUE(HasDisplacement(false, 2));
  base_types_ = {8};
  EXPECT_FALSE(HasDisplacement(false, 2));
  entities_ = {static_cast<_ORVEntityType>(60)};
  EXPECT_TRUE(HasDisplacement(false, 2));
}

TEST_F(FilerQueries, TellConstantCoordinatesFromThoseOfStates) {
  const auto has_constant = [&](bool states) { return filer_.HasConstantCoordinate(entities_, base_types_, states); };
  const auto has_state = [&](bool states) { return filer_.HasStateCoordinate(entities_, base_types_, states); };
  EXPECT_FALSE(has_constant(true));
  EXPECT_FALSE(has_state(true));
  filer_.AddConstant("COORDINATE");
  EXPECT_TRUE(has_constant(true));
  EXPECT_FALSE(has_state(true));
  filer_.Add("structural coordinates");
  EXPECT_TRUE(has_state(true));
  EXPECT_FALSE(has_state(false));
  filer_.Add("COORDINATE", 1050);
  EXPECT_TRUE(has_state(false));
  EXPECT_FALSE(has_constant(false));
  base_types_ = {9};
  EXPECT_FALSE(has_constant(true));
  EXPECT_FALSE(has_state(true));
}

TEST_F(FilerQueries, TellOfCoordinatesOfTheGivenTypes) {
  filer_.AddConstant("Structural Coordinates")->m_entityType = static_cast<_ORVEntityType>(60);
  filer_.Add("COORDINATE", 1000, 70, 7);
  const auto has = [&](std::vector<_ORVEntityType> entities, std::vector<int> base_types) {
    return std::pair(filer_.HasConstantCoordinate(entities, base_types, true),
                     filer_.HasStateCoordinate(entities, base_types, true));
  };
  const auto sixty = static_cast<_ORVEntityType>(60), seventy = static_cast<_ORVEntityType>(70);
  EXPECT_EQ(has({}, {}), std::pair(true, true));
  EXPECT_EQ(has({sixty}, {}), std::pair(true, false));
  EXPECT_EQ(has({seventy}, {}), std::pair(false, true));
  EXPECT_EQ(has({sixty, seventy}, {}), std::pair(true, true));
  EXPECT_EQ(has({}, {7}), std::pair(false, true));
  EXPECT_EQ(has({sixty}, {7}), std::pair(true, false));  // base types do not count beside entity types
  EXPECT_EQ(has({seventy}, {9}), std::pair(false, true));
  EXPECT_EQ(has({static_cast<_ORVEntityType>(8)}, {1, 7}), std::pair(false, false));
}

TEST_F(FilerQueries, TellWhetherAllBlocksAreConstant) {
  EXPECT_FALSE(filer_.IsAllResultBlockConstant());
  filer_.AddConstant("ANY");
  filer_.Add("ANY", 1050);
  EXPECT_TRUE(filer_.IsAllResultBlockConstant());
  filer_.Add("ANY");
  EXPECT_FALSE(filer_.IsAllResultBlockConstant());
}

TEST_F(FilerQueries, TellWhetherThereAreOnlyStaticCoordinates) {
  EXPECT_FALSE(filer_.IsOnlyStaticCoordinate());
  filer_.AddConstant("COORDINATE");
  ORVResult* keyed = filer_.AddConstant("ANY");
  std::strcpy(keyed->m_variable->m_varkey, "basis3x3");
  EXPECT_TRUE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(keyed->m_variable->m_varkey, "KEY");
  std::strcpy(keyed->m_variable->m_varnam, "COORDINATE");
  EXPECT_FALSE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(keyed->m_variable->m_varkey, "");
  EXPECT_TRUE(filer_.IsOnlyStaticCoordinate());
  filer_.Add("COORDINATE");  // not constant
  EXPECT_FALSE(filer_.IsOnlyStaticCoordinate());
}

TEST_F(FilerQueries, TakeAGroupForStaticByItsNameOrByNameOrKeyOfAMember) {
  ORVResult* block = filer_.AddConstant("ANY");
  ORVVariableGrp group;
  int counts[] = {1}, offsets[] = {0};
  group.m_nvar = 1;
  group.m_pCnt = counts;
  group.m_pOffs = offsets;
  ORVVariable* member = std::exchange(block->m_variable, nullptr);
  group.AppendVariable(member);
  block->m_variableGrp = &group;
  EXPECT_FALSE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(group.m_grpName, "COORDINATE");
  EXPECT_TRUE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(group.m_grpName, "");
  std::strcpy(member->m_varkey, "BASIS3X3");
  EXPECT_TRUE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(member->m_varkey, "OTHER");
  EXPECT_FALSE(filer_.IsOnlyStaticCoordinate());
  std::strcpy(member->m_varnam, "Coordinate");
  EXPECT_TRUE(filer_.IsOnlyStaticCoordinate());
}

TEST_F(FilerQueries, TellOfLoadCasesByTheFirstMultiStateBlock) {
  EXPECT_FALSE(filer_.IsLoadCaseSeriesMultiustateData());
  ORVResult* first = filer_.Add("A", 1050);
  ORVResult* second = filer_.Add("B", 1050);
  std::strcpy(second->m_series, "LOADCASE_1");
  EXPECT_FALSE(filer_.IsLoadCaseSeriesMultiustateData());
  std::strcpy(first->m_series, "xLOADCASE_2");
  EXPECT_TRUE(filer_.IsLoadCaseSeriesMultiustateData());
  std::strcpy(first->m_series, "TIME");
  EXPECT_FALSE(filer_.IsLoadCaseSeriesMultiustateData());
}

TEST_F(FilerQueries, TellOfComplexDataInEitherOrBothLists) {
  filer_.Add("A", 1000);
  filer_.Add("A", 1050);
  EXPECT_FALSE(filer_.IsComplexData(3));
  filer_.Add("A", 1151);
  EXPECT_FALSE(filer_.IsComplexData(1));
  EXPECT_TRUE(filer_.IsComplexData(2));
  EXPECT_TRUE(filer_.IsComplexData(3));
  filer_.Add("A", 1101);
  EXPECT_TRUE(filer_.IsComplexData(1));
  EXPECT_FALSE(filer_.IsComplexData(0));
}

class FilerPrecision : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  /// A block of the model and of the filer, stored as double.
  ORVResult* AddDouble(FilerWithResults& filer, const char* variable, int kind = 1000) {
    const bool multi = kind == 1050;
    const ForgedValues result = {.kind = kind, .etyp = "Node", .variable = variable, .nent = 1, .nstate = 1};
    const std::string section = multi ? "/post/multistate" : ForgedModel::StateGroup(1);
    multi ? model_.in_multistate(result) : model_.in_state(1, result);
    const std::string group = multi ? "/multientityresults/Node/" : "/entityresults/Node/";
    const std::vector<hsize_t> shape = multi ? std::vector<hsize_t>{1, 1, 1} : std::vector<hsize_t>{1, 1};
    model_.file().at(model_.Part(section + group + variable, "data")).dataset<double>("res", shape, {1});
    return filer.Add(variable, kind);
  }

  ORVResult* AddSingle(FilerWithResults& filer, const char* variable) {
    model_.in_state(1, {.etyp = "Node", .variable = variable, .nent = 1, .values = {1}});
    return filer.Add(variable);
  }

  ForgedModel model_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerPrecision, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle));

TEST_P(FilerPrecision, IsAskedOfTheListThatTheFlagsName) {
  FilerWithResults filer(model_.path().c_str());
  ORVResult* single = AddSingle(filer, "A");
  ORVResult* twofold = AddDouble(filer, "B", 1050);
  (void)model_.path();  // closes it
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(1, 1));
  EXPECT_TRUE(filer.IsAnyDoublePrecisionResult(2, 1));
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(3, 1));
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(0, 1));
  Results blocks = {single};
  EXPECT_FALSE(filer.IsResultValueInDoublePrecision(blocks, 1));
  blocks.push_back(twofold);
  EXPECT_TRUE(filer.IsResultValueInDoublePrecision(blocks, 1));
}

TEST_P(FilerPrecision, OfNodesIsThatOfCoordinatesAndDisplacementsInTheFirstState) {
  FilerWithResults filer(model_.path().c_str());
  AddSingle(filer, "COORDINATE");
  AddDouble(filer, "Velocity");
  (void)model_.path();
  EXPECT_FALSE(filer.HasDoublePrecisionNodeCoordinates());
  AddDouble(filer, "DISPLACEMENTS_NOD");
  (void)model_.path();
  EXPECT_TRUE(filer.HasDoublePrecisionNodeCoordinates());
}

TEST_P(FilerPrecision, OfNodesIsThatOfCoordinatesBesideSingleDisplacements) {
  FilerWithResults filer(model_.path().c_str());
  AddSingle(filer, "DISPLACEMENTS_NOD");
  (void)model_.path();
  EXPECT_FALSE(filer.HasDoublePrecisionNodeCoordinates());
  AddDouble(filer, "COORDINATE");
  (void)model_.path();
  EXPECT_TRUE(filer.HasDoublePrecisionNodeCoordinates());
}

TEST_P(FilerPrecision, OfNodesIsNotThatOfAccelerationsNorOfALaterState) {
  FilerWithResults filer(model_.path().c_str());
  AddSingle(filer, "COORDINATE");
  AddDouble(filer, "Complex_Translational_Acceleration");
  model_.in_state(2, {.etyp = "Node", .variable = "COORDINATE", .nent = 1});
  model_.file()
      .at(model_.Part(ForgedModel::StateGroup(2) + "/entityresults/Node/COORDINATE", "data"))
      .dataset<double>("res", {1, 1}, {1});
  (void)model_.path();
  EXPECT_FALSE(filer.HasDoublePrecisionNodeCoordinates());
  EXPECT_TRUE(filer.IsAnyDoublePrecisionResult(1, 1));  // the acceleration
  AddDouble(filer, "Complex_Translational_Displacement");
  (void)model_.path();
  EXPECT_TRUE(filer.HasDoublePrecisionNodeCoordinates());
}

TEST_P(FilerPrecision, IsThatOfTheAskedState) {
  FilerWithResults filer(model_.path().c_str());
  AddSingle(filer, "A");
  model_.in_state(2, {.etyp = "Node", .variable = "A", .nent = 1});
  model_.file()
      .at(model_.Part(ForgedModel::StateGroup(2) + "/entityresults/Node/A", "data"))
      .dataset<double>("res", {1, 1}, {1});
  (void)model_.path();
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(1, 1));
  EXPECT_TRUE(filer.IsAnyDoublePrecisionResult(1, 2));
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(1, 3));
}

/// Values stored through a filter.
void AddFiltered(hid_t here) {
  const hsize_t size[] = {4, 1};
  const Id space(H5Screate_simple(2, size, nullptr), "space");
  const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
  Check(H5Pset_chunk(list.get(), 2, size), "chunk");
  Check(H5Pset_shuffle(list.get()), "shuffle");
  const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
}

TEST_P(FilerPrecision, HasAnAnswerAboutAFilterThatIsRememberedAlthoughTheFileChanged) {
  FilerWithResults filer(model_.path().c_str());
  AddSingle(filer, "A");
  (void)model_.path();
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  const std::string data = model_.Part(ForgedModel::StateGroup(1) + "/entityresults/Node/A", "data");
  model_.file().at(data).drop("res").raw(AddFiltered);
  (void)model_.path();
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  FilerWithResults later(model_.path().c_str());
  later.Add("A");
  EXPECT_TRUE(later.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  EXPECT_FALSE(later.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_DEFLATE));
  model_.file().at(data).drop("res");
  (void)model_.path();
  EXPECT_TRUE(later.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
}

TEST_P(FilerPrecision, FindsAFilterOfAMultiStateBlock) {
  FilerWithResults filer(model_.path().c_str());
  AddDouble(filer, "B", 1050);
  model_.file().drop("res").raw(AddFiltered);
  (void)model_.path();
  EXPECT_TRUE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
}

TEST_P(FilerPrecision, FindsAFilterOfTheFirstStateAndOfTheConstantsOnly) {
  const auto add_filtered = [&](const std::string& section, const char* variable) {
    ForgedValues result = {.etyp = "Node", .variable = variable, .nent = 4};
    section == "/post/constant" ? model_.in_constant(result) : model_.in_state(section.back() - '0', result);
    model_.file().at(model_.Part(section + "/entityresults/Node/" + variable, "data")).raw(AddFiltered);
  };
  add_filtered(ForgedModel::StateGroup(2), "LATER");
  model_.in_state(1, {.etyp = "Node", .variable = "LATER", .nent = 4, .values = {1, 2, 3, 4}});
  add_filtered("/post/constant", "FIXED");
  FilerWithResults later(model_.path().c_str());
  later.Add("LATER");
  EXPECT_FALSE(later.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  FilerWithResults among_states(model_.path().c_str());
  among_states.Add("FIXED");
  EXPECT_FALSE(among_states.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  FilerWithResults fixed(model_.path().c_str());
  fixed.AddConstant("FIXED");
  EXPECT_TRUE(fixed.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
}

TEST_P(FilerPrecision, LooksForAFilterBehindAMultiStateBlockAmongConstants) {
  model_.in_state(1, {.etyp = "Node", .variable = "A", .nent = 4});
  model_.file().at(model_.Part(ForgedModel::StateGroup(1) + "/entityresults/Node/A", "data")).raw(AddFiltered);
  FilerWithResults filer(model_.path().c_str());
  filer.Add("A");
  AddDouble(filer, "B", 1050);
  (void)model_.path();
  ORVContainer& data = filer.data();
  data.single_results.insert(data.single_results.begin(), data.multi_results.back());
  data.multi_results.clear();
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  std::swap(data.single_results.front(), data.single_results.back());
  data.filter_memo.clear();
  EXPECT_TRUE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
}

TEST_P(FilerPrecision, OfAFileThatCannotBeOpenedIsNeitherDoubleNorFiltered) {
  FilerWithResults filer;
  Results blocks = {filer.Add("COORDINATE"), filer.Add("A", 1050)};
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(1, 1));
  EXPECT_FALSE(filer.IsAnyDoublePrecisionResult(2, 1));
  EXPECT_FALSE(filer.IsResultValueInDoublePrecision(blocks, 1));
  EXPECT_FALSE(filer.HasDoublePrecisionNodeCoordinates());
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  EXPECT_EQ(filer.data().filter_memo.at(H5Z_FILTER_SHUFFLE), 0);  // that is an answer, too
}

TEST_P(FilerPrecision, ForgetsItsAnswersAboutFiltersAtAStart) {
  model_.variable({.name = "A", .key = "A"}).in_state(1, {.etyp = "Node", .variable = "A", .nent = 4});
  const std::string data = model_.Part(ForgedModel::StateGroup(1) + "/entityresults/Node/A", "data");
  model_.file().at(data).raw(AddFiltered);
  ORVFiler filer(model_.path().c_str());
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));  // no block is known yet
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_TRUE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  model_.file().at(data).drop("res");
  (void)model_.path();
  EXPECT_TRUE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_FALSE(filer.IsAnyResultDatasetHasH5Filter(H5Z_FILTER_SHUFFLE));
}

}  // namespace
