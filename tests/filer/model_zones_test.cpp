// The zone of a file's results, with the largest number of layers.

#include <climits>

#include "filer/listed_results.h"
#include "filer/model_file.h"

namespace orv_test {
namespace {

class ModelZones : public OrvTest {
 protected:
  /// A listed block.
  ORVResult& Add(std::int64_t zone, std::int64_t layers, int kind = 1100) {
    ORVResult* block = filer_.Add("HEAT", kind);
    block->m_zoneid = zone;
    block->m_numl = layers;
    return *block;
  }

  void Expect(int zone, int layers) {
    int largest = -1;
    EXPECT_EQ(filer_.GetZoneId(largest), zone);
    EXPECT_EQ(largest, layers);
  }

  FilerWithResults filer_;
};

TEST_F(ModelZones, WithoutResultsAre0) { Expect(0, 0); }

TEST_F(ModelZones, AreThatOfTheLastResult) {
  Add(4, 0);
  Add(3, 0);
  Add(2, 0);
  Expect(2, 0);
}

TEST_F(ModelZones, Are1IfAnyResultHasIt) {
  Add(2, 0);
  Add(1, 0);
  Expect(1, 0);
  Add(2, 0);
  Expect(1, 0);
}

TEST_F(ModelZones, Are1WhereTheFirstResultHasIt) {
  Add(1, 0);
  Add(2, 0);
  Expect(1, 0);
}

TEST_F(ModelZones, ComeWithTheLargestNumberOfLayers) {
  Add(1, 3);
  Add(2, 7);
  Add(2, 5);
  Expect(1, 7);
}

TEST_F(ModelZones, NeverHaveFewerThan0Layers) {
  Add(2, -5);
  Expect(2, 0);
}

TEST_F(ModelZones, AreThoseOfMultiStateResultsWhereThereAreNoOthers) {
  Add(6, 8, 1150);
  Expect(6, 8);
  Add(5, 2);
  Expect(5, 2);
}

TEST_F(ModelZones, PassOverMissingEntriesOfTheList) {
  Add(5, 2);
  filer_.data().single_results.push_back(nullptr);
  Expect(5, 2);
  filer_.data().single_results.pop_back();
}

TEST_F(ModelZones, BeyondWhatAnIntHoldsAreNone) {
  Add(2, INT_MAX);
  Expect(2, INT_MAX);
  Add(std::int64_t{INT_MAX} + 1, std::int64_t{INT_MAX} + 1);
  Expect(0, INT_MAX);
  Add(std::int64_t{1} << 32 | 1, 0);  // whose low bits are a 1
  Expect(0, INT_MAX);
}

TEST_F(ModelZones, OfAFilerWithoutDataAre0) {
  ModelFiler filer("/not/there");
  const WithoutData without(filer);
  int largest = -1;
  EXPECT_EQ(filer.GetZoneId(largest), 0);
  EXPECT_EQ(largest, 0);
}

class ModelZonesOfAFile : public ModelTest {};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelZonesOfAFile, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfModelLayout);

TEST_P(ModelZonesOfAFile, AreThoseOfItsHeaders) {
  model_.variable({.name = "HEAT", .key = "HEAT"});
  for (const int zone : {1, 2}) {
    model_.in_state(1, {.kind = 1100,
                        .etyp = "SHELL",
                        .variable = "HEAT",
                        .nent = 1,
                        .numl = 2 * zone,
                        .zoneid = zone,
                        .group_name = "zone " + std::to_string(zone)});
  }
  Open();
  int largest = 0;
  EXPECT_EQ(filer_->GetZoneId(largest), 1);
  EXPECT_EQ(largest, 4);
}

}  // namespace
}  // namespace orv_test
