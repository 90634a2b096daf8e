// Fluid particles: how many there are, and where and how large they are.

#include "filer/model_file.h"

namespace orv_test {
namespace {

/// Particles in two states with places and sizes, and nodes with places beside them.
class ModelFluidParticles : public ModelTest {
 protected:
  ModelFluidParticles() {
    model_.variable({.name = "COORDINATE", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1});
    model_.variable({.name = "RADIUS", .key = "RADIUS"});
    model_.in_state(1, {.variable = "COORDINATE", .nent = 9, .ncoo = 3, .index = {0.5F}});
    model_.in_state(2, {.variable = "COORDINATE", .nent = 9, .ncoo = 3, .index = {1.5F}});
    Particles(1, {1, 2, 3}, {0.5F}, {70});
    Particles(2, {1, 2, 3, 4, 5, 6}, {0.5F, 0.25F}, {70, 80});
  }

  void Particles(int state, const Floats& places, const Floats& sizes, const Ints& ids) {
    const int nent = static_cast<int>(ids.size());
    model_.in_state(state,
                    {.etyp = "FLUID", .variable = "COORDINATE", .nent = nent, .ncoo = 3, .values = places, .ids = ids});
    model_.in_state(state, {.etyp = "FLUID", .variable = "RADIUS", .nent = nent, .values = sizes, .ids = ids});
  }

  Results Found() {
    Results found;
    filer_->GetFluidParticleCoordinateRes(found);
    return found;
  }

  void ExpectSizes(const char* variable, int state, const Floats& sizes, const Ints& numbers) {
    HandedOut<int> ids;
    HandedOut<float> values;
    const int count = filer_->ReadFluidParticleSize(state, variable, &ids.array, &values.array);
    EXPECT_EQ(count, static_cast<int>(numbers.size()));
    EXPECT_EQ(ids.first(count), numbers);
    EXPECT_EQ(values.first(static_cast<int>(sizes.size())), sizes);
  }

  void ExpectPlaces(int state, const Floats& places, const Ints& numbers) {
    HandedOut<int> ids;
    HandedOut<float> values;
    const int count = filer_->ReadFluidParticleCoordinate(state, &ids.array, &values.array);
    EXPECT_EQ(count, static_cast<int>(numbers.size()));
    EXPECT_EQ(ids.first(count), numbers);
    EXPECT_EQ(values.first(static_cast<int>(places.size())), places);
  }

  /// No answer, and null in place of whatever the pointers led to.
  static void ExpectNothing(ORVFiler& filer, int state, const char* variable) {
    int stale_id = 0;
    float stale = 0;
    int* ids = &stale_id;
    float* values = &stale;
    EXPECT_EQ(filer.ReadFluidParticleSize(state, variable, &ids, &values), 0);
    EXPECT_EQ(ids, nullptr);
    EXPECT_EQ(values, nullptr);
  }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelFluidParticles, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfModelLayout);

// ---- The blocks of their coordinates

TEST_P(ModelFluidParticles, AreFoundByTypeAndVariable) {
  Open();
  const Results found = Found();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_STREQ(found[0]->m_etyp, "FLUID");
  EXPECT_STREQ(found[0]->m_etypvar, "COORDINATE");
  EXPECT_EQ(found[0]->m_entityType, 2005);
}

TEST_P(ModelFluidParticles, AreAppendedToTheList) {
  Open();
  ORVResult before;
  Results list = {&before};
  filer_->GetFluidParticleCoordinateRes(list);
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0], &before);
}

TEST_P(ModelFluidParticles, AreNotFoundInABlockWithoutEntities) {
  Open();
  Found().at(0)->m_nent = 0;
  EXPECT_TRUE(Found().empty());
}

TEST_P(ModelFluidParticles, AreFoundInRealValuedEntityBlocksAlone) {
  Open();
  ORVResult& block = *Found().at(0);
  for (const int kind : {1001, 1100, 500}) {
    block.SetBlockType(kind);
    EXPECT_TRUE(Found().empty()) << kind;
  }
  block.SetBlockType(1000);
  block.m_entityType = static_cast<_ORVEntityType>(2006);
  EXPECT_TRUE(Found().empty());
}

TEST_P(ModelFluidParticles, AreNotFoundAmongMultiStateBlocks) {
  Open();
  ORVResult* block = Found().at(0);
  std::erase(filer_->data()->single_results, block);
  filer_->data()->multi_results.push_back(block);
  EXPECT_TRUE(Found().empty());
}

TEST_P(ModelFluidParticles, AreNotFoundBeforeTheFileIsRead) {
  filer_ = std::make_unique<ModelFiler>(model_.path().c_str());
  EXPECT_TRUE(Found().empty());
  EXPECT_EQ(filer_->GetFluidParticleCountFromConstant(), 0);
  EXPECT_EQ(filer_->GetMaxFluidParticleCount(), 0);
  ExpectNothing(*filer_, 1, "RADIUS");
}

// ---- Counts

TEST_P(ModelFluidParticles, AreAtMostThoseOfTheLargestState) {
  model_.in_state(3, {.variable = "COORDINATE", .nent = 9, .ncoo = 3, .index = {2.5F}});
  Particles(3, {1, 2, 3}, {0.5F}, {70});
  Open();
  EXPECT_EQ(filer_->GetMaxFluidParticleCount(), 2);
}

TEST_P(ModelFluidParticles, OfStatesAreNoneOfTheConstantSection) {
  Open();
  EXPECT_EQ(filer_->GetFluidParticleCountFromConstant(), 0);
}

TEST_P(ModelFluidParticles, OfTheConstantSectionCountForABlockOfTheStatesToo) {
  model_.in_constant({.etyp = "FLUID", .variable = "COORDINATE", .nent = 4, .ncoo = 3});
  Open();
  ASSERT_EQ(Found().size(), 2U);
  // In the single layout blocks are found by their stored path alone, which leads into the state.
  EXPECT_EQ(filer_->GetFluidParticleCountFromConstant(), GetParam() == ForgedModel::kSplit ? 8 : 4);
}

TEST_P(ModelFluidParticles, OfTheConstantSectionAloneAreCountedOnce) {
  model_.in_constant({.etyp = "FLUID", .variable = "COORDINATE", .nent = 4, .ncoo = 3});
  model_.file().at(ForgedModel::StateGroup(1) + "/entityresults").drop("FLUID");
  Open();
  ASSERT_EQ(Found().size(), 1U);
  EXPECT_EQ(filer_->GetFluidParticleCountFromConstant(), 4);
  EXPECT_EQ(filer_->GetMaxFluidParticleCount(), 4);
}

// ---- Values

TEST_P(ModelFluidParticles, HavePlacesAtEachState) {
  Open();
  ExpectPlaces(1, {1, 2, 3}, {70});
  ExpectPlaces(2, {1, 2, 3, 4, 5, 6}, {70, 80});
}

TEST_P(ModelFluidParticles, HaveSizesAtEachState) {
  Open();
  ExpectSizes("RADIUS", 1, {0.5F}, {70});
  ExpectSizes("radius", 2, {0.5F, 0.25F}, {70, 80});
}

TEST_P(ModelFluidParticles, OfAStateAreReadThoughAnotherHadNone) {
  Header(ForgedModel::StateGroup(2), "entityresults/FLUID/RADIUS").integer("nent", 0);
  Open();
  ExpectNothing(*filer_, 2, "RADIUS");
  ExpectSizes("RADIUS", 1, {0.5F}, {70});
}

TEST_P(ModelFluidParticles, OfTheConstantSectionHaveTheirPlacesAtEachState) {
  model_.file().at(ForgedModel::StateGroup(1) + "/entityresults").drop("FLUID");
  model_.in_constant(
      {.etyp = "FLUID", .variable = "COORDINATE", .nent = 1, .ncoo = 3, .values = {7, 8, 9}, .ids = {5}});
  Open();
  ExpectPlaces(2, {7, 8, 9}, {5});
}

TEST_P(ModelFluidParticles, MayBeAskedForOneArrayAlone) {
  Open();
  HandedOut<int> ids;
  EXPECT_EQ(filer_->ReadFluidParticleCoordinate(2, &ids.array, nullptr), 2);
  EXPECT_EQ(ids.first(2), (Ints{70, 80}));
  HandedOut<float> values;
  EXPECT_EQ(filer_->ReadFluidParticleCoordinate(1, nullptr, &values.array), 1);
  EXPECT_EQ(values.first(3), (Floats{1, 2, 3}));
}

TEST_P(ModelFluidParticles, ThatCannotBeReadGiveNothing) {
  ModelFiler& filer = Open();
  ExpectNothing(filer, 1, "MASS");
  ExpectNothing(filer, 1, nullptr);
  ExpectNothing(filer, 3, "RADIUS");
  Data(ForgedModel::StateGroup(2), "entityresults/FLUID/RADIUS").drop("res");
  (void)model_.path();
  ExpectNothing(filer, 2, "RADIUS");
  const WithoutData without(filer);
  ExpectNothing(filer, 1, "RADIUS");
  EXPECT_EQ(filer.GetFluidParticleCountFromConstant(), 0);
  EXPECT_EQ(filer.GetMaxFluidParticleCount(), 0);
  EXPECT_TRUE(Found().empty());
}

TEST_P(ModelFluidParticles, ThatNothingInTheFileStandsBehindAreRefusedInSilence) {
  Header(ForgedModel::StateGroup(2), "entityresults/FLUID/RADIUS").integer("nent", 2'000'000'000);
  Open();
  const auto before = messages_.all();
  ExpectNothing(*filer_, 2, "RADIUS");
  EXPECT_EQ(messages_.all(), before);
}

TEST_P(ModelFluidParticles, LeaveNoPointerToTheArraysOfTheHost) {
  Open();
  ExpectPlaces(2, {1, 2, 3, 4, 5, 6}, {70, 80});
  EXPECT_EQ(Found().at(0)->m_res, nullptr);
  EXPECT_EQ(Found().at(0)->m_entid, nullptr);
}

/// Particles whose variables are known by keys, as the single layout has them.
class ModelFluidParticlesByKey : public ModelTest {
 protected:
  ModelFluidParticlesByKey() {
    model_.variable({.name = "Place", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1});
    model_.variable({.name = "Size", .key = "R:1"});
    model_.in_state(1, {.etyp = "FLUID", .variable = "Place", .nent = 1, .ncoo = 3, .values = {1, 2, 3}, .ids = {70}});
  }

  HandedOut<int> ids_;
  HandedOut<float> values_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelFluidParticlesByKey, ::testing::Values(ForgedModel::kSingle), NameOfModelLayout);

TEST_P(ModelFluidParticlesByKey, HaveThePlacesOfAVariableOfAnotherName) {
  EXPECT_EQ(Open().ReadFluidParticleCoordinate(1, &ids_.array, &values_.array), 1);
  EXPECT_EQ(ids_.first(1), (Ints{70}));
  EXPECT_EQ(values_.first(3), (Floats{1, 2, 3}));
}

TEST_P(ModelFluidParticlesByKey, HaveTheSizesOfAMemberOfAGroup) {
  model_.group("BOTH", 2, {{"R:1", 1, 1}});
  model_.in_state(1,
                  {.etyp = "FLUID", .variable = "BOTH", .nent = 2, .ncoo = 2, .values = {1, 2, 3, 4}, .ids = {5, 6}});
  EXPECT_EQ(Open().ReadFluidParticleSize(1, "R:1", &ids_.array, &values_.array), 2);
  EXPECT_EQ(ids_.first(2), (Ints{5, 6}));
  EXPECT_EQ(values_.first(2), (Floats{2, 4}));
}

TEST_P(ModelFluidParticlesByKey, AreNotKnownByTheNameOfAKeyedVariable) {
  EXPECT_EQ(Open().ReadFluidParticleSize(1, "Place", &ids_.array, &values_.array), 0);
  EXPECT_EQ(ids_.array, nullptr);
}

}  // namespace
}  // namespace orv_test
