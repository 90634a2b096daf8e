// The arrays of a value fetch: those of the caller, their growth, and counts that no array is made for.

#include <malloc.h>

#include <climits>

#include "result/value_fetch_test.h"

namespace {

using namespace orv_test;

class ValueFetchArrays : public ValueFetchTest {
 protected:
  void Bring(int capacity, bool with_ids = true) {
    values_.m_capacity = capacity;
    values_.m_values = CCopy(Floats(static_cast<std::size_t>(capacity), -1));
    if (with_ids) values_.m_ids = CCopy(Ints(static_cast<std::size_t>(capacity), -1));
  }

  /// Values of one component that take no room in the file.
  void AddBare(const char* etyp, hsize_t nodes) {
    file_.Add(kState1, {.etyp = etyp, .nent = 1}).file().integer("nent", static_cast<std::int64_t>(nodes));
    file_.file().at(file_.Part(kState1, 1000, etyp, "SPEED", "data")).raw([&](hid_t here) {
      const hsize_t shape[] = {nodes, 1};
      const Id space(H5Screate_simple(2, shape, nullptr), "space");
      const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                    "res");
    });
  }

  /// The same with one value for all nodes, compressed.
  void AddUniform(const char* etyp, hsize_t nodes, float value) {
    AddBare(etyp, nodes);
    const std::string part = file_.Part(kState1, 1000, etyp, "SPEED", "data");
    file_.file().at(part).drop("res").raw([&](hid_t here) {
      const hsize_t shape[] = {nodes, 1};
      const Id space(H5Screate_simple(2, shape, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 2, shape), "chunk");
      Check(H5Pset_scaleoffset(list.get(), H5Z_SO_FLOAT_DSCALE, 3), "filter");
      const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "res");
      const std::vector<float> values(nodes, value);
      Check(H5Dwrite(made.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "values");
    });
  }

  /// Headers that claim more than there is.
  ORVResult Claiming(std::int64_t nent) {
    file_.Add(kState1, Nodes(1, "Liar", 8));
    file_.file().at(file_.Part(kState1, 1000, "Liar", "SPEED", "header")).integer("nent", nent);
    return Listed("Liar");
  }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetchArrays, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetchArrays, OfTheCallerStayInPlaceWhereTheyAreLargeEnough) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  Bring(3);
  float* const array = values_.m_values;
  int* const ids = values_.m_ids;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_values, array);
  EXPECT_EQ(values_.m_ids, ids);
  EXPECT_EQ(values_.m_capacity, 3);
  EXPECT_EQ(values_.values(), (Floats{11, 21}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
  EXPECT_EQ(array[2], -1);
}

TEST_P(ValueFetchArrays, OfTheCallerGrowToTheTotal) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  Bring(1);
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.m_capacity, 6);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetchArrays, OfIdsGrowOnlyWhenIdsAreWanted) {
  file_.Add(kState1, Nodes(3));
  ORVResult nodes = Listed();
  Bring(1);
  int* const ids = values_.m_ids;
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_capacity, 3);
  EXPECT_EQ(values_.m_ids, ids);
  EXPECT_EQ(*ids, -1);
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_capacity, 3);
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 300}));
  EXPECT_EQ(values_.m_spare, -1);
}

TEST_P(ValueFetchArrays, OfIdsKeepTrackOfTheirRoomThroughSeveralFetches) {
  file_.Add(kState1, Nodes(3));
  ORVResult nodes = Listed();
  Bring(1);
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.m_capacity, 9);
  EXPECT_GT(values_.m_spare, 0);
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 300}));
  EXPECT_EQ(values_.m_spare, -1);
}

TEST_P(ValueFetchArrays, StayInPlaceWhateverTheHostKeepsInTheSpareMember) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  float values[2] = {};  // not of the C allocator: they cannot be moved
  int ids[2] = {};
  for (const int spare : {0, 1, 2, -1, -7, INT_MAX}) {
    values_.m_spare = spare;
    values_.m_capacity = 2;
    values_.m_values = values;
    values_.m_ids = ids;
    EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
    EXPECT_EQ(values_.m_values, values) << spare;
    EXPECT_EQ(values_.m_ids, ids) << spare;
    EXPECT_EQ(ids[1], 200) << spare;
  }
  values_.ResetOutParameter();
}

TEST_P(ValueFetchArrays, OfIdsThatAreFreshAreNotTakenForShortOnes) {
  file_.Add(kState1, Nodes(3));
  ORVResult nodes = Listed();
  Bring(1);
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_capacity, 3);
  EXPECT_GT(values_.m_spare, 0);
  std::free(values_.m_ids);
  int ids[3] = {};  // not of the C allocator: they cannot be moved
  values_.m_ids = ids;
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_ids, ids);
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 300}));
  values_.m_ids = nullptr;
}

TEST_P(ValueFetchArrays, OfAFetchAreBothLargeEnoughForTheValuesOfALaterOne) {
  file_.Add(kState1, Nodes(1)).Add(kState1, Nodes(3, "Mass", 5));
  ORVResult node = Listed();
  ORVResult masses = Listed("Mass");
  EXPECT_EQ(Fetch({&node}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13}));
  EXPECT_EQ(values_.ids(), (Ints{100}));
  values_.m_capacity = values_.m_valueCount;
  int* const ids = values_.m_ids;
  EXPECT_EQ(Fetch({&masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{51, 61, 71}));
  EXPECT_EQ(values_.ids(), (Ints{500, 600, 700}));
  EXPECT_EQ(values_.m_ids, ids);
}

TEST_P(ValueFetchArrays, OfDoublesGrowToTheTotal) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  FetchedValues<double> values;
  values.m_state = 1;
  values.m_wantIds = 1;
  values.m_capacity = 1;
  values.m_values = CCopy<double>({-1});
  values.m_ids = CCopy<int>({-1});
  EXPECT_EQ(Fetch(values, {&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values.m_capacity, 6);
  EXPECT_EQ(values.values(), (std::vector<double>{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(values.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetchArrays, OfDoublesShrinkToWhatWasRead) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  ORVResult gone = Listed("Gone", 1000);
  FetchedValues<double> values;
  values.m_state = 1;
  EXPECT_EQ(Fetch(values, {&gone, &nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values.values(), (std::vector<double>{11, 12, 13}));
  EXPECT_LT(malloc_usable_size(values.m_values), 3003 * sizeof(double));
}

TEST_P(ValueFetchArrays, OfTheCallerAreFilledComponentByComponentWithoutIdsToo) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  Bring(7, false);
  float* const array = values_.m_values;
  values_.m_wantIds = 0;
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.m_values, array);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 12, 22, 13, 23}));
  EXPECT_EQ(array[6], -1);
  EXPECT_EQ(values_.m_ids, nullptr);
  EXPECT_EQ(values_.m_idCount, 2);
  EXPECT_EQ(values_.m_capacity, 7);
}

TEST_P(ValueFetchArrays, ThatTheCallerDidNotBringAreMade) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  values_.m_capacity = 5;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_capacity, 5);
  EXPECT_EQ(values_.values(), (Floats{11, 21}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetchArrays, WithANegativeCapacityAreThoseOfTheFetch) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  values_.m_capacity = -5;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_capacity, -5);
  EXPECT_EQ(values_.values(), (Floats{11}));
}

TEST_P(ValueFetchArrays, OfTheCallerStayWithItWhereNothingIsRead) {
  ORVResult gone = Listed("Gone", 2);
  Bring(1);
  EXPECT_EQ(Fetch({&gone}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(values_.m_capacity, 2);
  EXPECT_EQ(values_.m_valueCount, 0);
  ASSERT_NE(values_.m_values, nullptr);
  EXPECT_EQ(values_.m_values[0], -1);
  EXPECT_EQ(gone.m_res, nullptr);
}

TEST_P(ValueFetchArrays, AreNotMadeForMoreThanAHostCanCount) {
  ORVResult liar = Claiming(std::int64_t{INT_MAX} + 1);
  EXPECT_EQ(Fetch({&liar}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 2147483648)"}}));
  ExpectNoAnswer();
}

TEST_P(ValueFetchArrays, AreNotMadeForItThoughTheFileHoldsAsMuch) {
  AddBare("Large", hsize_t{INT_MAX} + 1);
  ORVResult large = ListedBlock(1000, "Large", "SPEED", 1, 1, speed_.get());
  EXPECT_EQ(Fetch({&large}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 2147483648)"}}));
}

TEST_P(ValueFetchArrays, AreNotMadeForSumsThatNoNumberHolds) {
  ORVResult liar = Claiming(INT64_MAX);
  std::vector<ORVResult*> three(3, &liar);
  EXPECT_EQ(Fetch(three, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(),
            (std::vector<Message>{{0, "Memory allocation failed for (No. Values 9223372036854775807)"}}));
}

TEST_P(ValueFetchArrays, AreNotMadeOnTheWordOfAHeader) {
  ORVResult liar = Claiming(500'000'000);
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  const Message refusal = {0, "Memory allocation failed for (No. Values 500000001)"};
  EXPECT_EQ(Fetch({&nodes, &liar}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{refusal}));
  Bring(1);
  EXPECT_EQ(Fetch({&nodes, &liar}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{refusal, refusal}));
  EXPECT_EQ(values_.m_capacity, 1);
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
}

TEST_P(ValueFetchArrays, OfTheCallerThatAreLargeEnoughNeedNothingBehindThem) {
  ORVResult liar = Claiming(17'000'000);  // 68 MB
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  values_.m_wantIds = 0;
  values_.m_capacity = 17'000'001;
  values_.m_values = static_cast<float*>(std::calloc(17'000'001, sizeof(float)));
  float* const array = values_.m_values;
  EXPECT_EQ(Fetch({&liar, &nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_values, array);
  EXPECT_EQ(values_.values(), (Floats{11}));
  EXPECT_TRUE(messages_.all().empty());
  values_.m_capacity = 17'000'000;  // one too few
  EXPECT_EQ(Fetch({&liar, &nodes}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 17000001)"}}));
}

TEST_P(ValueFetchArrays, OfTheCallerServeNoMoreThanAHostCanCount) {
  ORVResult liar = Claiming(std::int64_t{INT_MAX} + 1);
  Bring(1);
  EXPECT_EQ(Fetch({&liar}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 2147483648)"}}));
  EXPECT_EQ(values_.m_capacity, 1);
}

TEST_P(ValueFetchArrays, AreNotMadeForALargeBlockThatTheStateLacks) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  ORVResult gone = Listed("Gone", 1);
  float of_the_host = 0;
  for (const int mode : {0, 1}) {
    for (const std::int64_t nent : {std::int64_t{500'000'000}, std::int64_t{INT_MAX} + 1, INT64_MAX}) {
      gone.m_nent = nent;
      gone.m_res = &of_the_host;
      values_.m_fetchMode = mode;
      EXPECT_EQ(Fetch({&gone, &nodes, &gone}, {.ext_id = kFirst}), 0) << nent;
      EXPECT_EQ(values_.values(), (Floats{11})) << nent;
      EXPECT_EQ(values_.ids(), (Ints{100})) << nent;
      EXPECT_EQ(gone.m_res, nullptr);
      EXPECT_EQ(gone.m_fetchSkip, 1);
      values_.DeleteAllocation(true);
      EXPECT_EQ(Fetch({&gone}, {.ext_id = kFirst}), 1);
      ExpectNoAnswer();
    }
  }
  EXPECT_TRUE(messages_.all().empty());
}

TEST_P(ValueFetchArrays, AreNotMadeForWhatIsLeftWithoutItUnlessTheFileHoldsThat) {
  ORVResult liar = Claiming(500'000'000);
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  ORVResult gone = Listed("Gone", 600'000'000);
  EXPECT_EQ(Fetch({&gone, &liar, &nodes}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 500000001)"}}));
}

TEST_P(ValueFetchArrays, AreNotMadeForLargeBlocksWhoseValuesWereNeverWritten) {
  AddBare("Node", 17'000'000);
  ORVResult nodes = ListedBlock(1000, "Node", "SPEED", 1, 1, speed_.get());
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(messages_.all(), (std::vector<Message>{{0, "Memory allocation failed for (No. Values 17000000)"}}));
}

TEST_P(ValueFetchArrays, AreMadeForLargeBlocksThatTheFileHoldsHoweverSmall) {
  // One value everywhere: 68 MB in memory, a few bytes in the file.
  AddUniform("Node", 17'000'000, 2.5F);
  ORVResult gone = Listed("Gone", 1000);  // adds values that are not there, but few
  ORVResult nodes = ListedBlock(1000, "Node", "SPEED", 1, 1, speed_.get());
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes, &gone}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.m_valueCount, 17'000'000);
  EXPECT_EQ(values_.m_values[16'999'999], 2.5F);
}

TEST_P(ValueFetchArrays, PassOverNegativeCountsOfADamagedHeader) {
  file_.Add(kState1, Nodes(1));
  ORVResult liar = Claiming(-1);
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&liar, &nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{11}));
  ORVResult layers = ListedBlock(1100, "SHELL", "SPEED", 2, 3, speed_.get());
  layers.m_numl = -1;
  values_.DeleteAllocation(true);
  values_.m_layer = -101;
  EXPECT_EQ(Fetch({&layers, &nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{11}));
}

}  // namespace
