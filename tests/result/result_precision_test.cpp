// Double precision and filters of stored values.

#include "result/result_precision.h"

#include "result/block_file.h"

namespace {

using namespace orv_test;
using namespace orvio;

class ResultPrecision : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  template <class T>
  ORVResult Add(const char* section, const char* etyp, int kind = 1000) {
    const bool multi = kind >= 1050;
    const std::vector<hsize_t> shape = multi ? std::vector<hsize_t>{1, 1, 1} : std::vector<hsize_t>{1, 1};
    file_.Add(section, StoredBlock<T>{.kind = kind, .etyp = etyp, .nent = 1, .shape = shape, .values = {1}});
    return ListedBlock(kind, etyp, "SPEED", 1, 1, nullptr);
  }

  bool IsDouble(const std::vector<ORVResult*>& blocks, int state = 1) {
    return HasDoublePrecision(file_.path().c_str(), blocks, state);
  }

  BlockFile file_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultPrecision, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ResultPrecision, IsDoubleWhereOneBlockOfAListIs) {
  ORVResult single = Add<float>(kState1, "A");
  ORVResult twofold = Add<double>(kState1, "B");
  EXPECT_FALSE(IsDouble({&single}));
  EXPECT_TRUE(IsDouble({&twofold}));
  EXPECT_TRUE(IsDouble({&single, nullptr, &twofold}));
  EXPECT_FALSE(IsDouble({}));
}

TEST_P(ResultPrecision, IsLookedForInTheAskedState) {
  ORVResult block = Add<float>(kState1, "A");
  Add<double>(kState2, "A");
  EXPECT_FALSE(IsDouble({&block}, 1));
  EXPECT_TRUE(IsDouble({&block}, 2));
  EXPECT_FALSE(IsDouble({&block}, 3));
}

TEST_P(ResultPrecision, OfConstantBlocksIsLookedForAmongTheConstants) {
  ORVResult constant = Add<double>(kConstant, "A");
  Add<float>(kState1, "A");
  EXPECT_FALSE(IsDouble({&constant}));
  constant.SetConstantBlk(true);
  EXPECT_TRUE(IsDouble({&constant}));
  ORVResult state = Add<double>(kState1, "B");
  Add<float>(kConstant, "A");
  EXPECT_TRUE(IsDouble({&constant, &state}));  // the state of the constant block is its own affair
}

TEST_P(ResultPrecision, OfMultiStateBlocksIsLookedForInTheirSection) {
  ORVResult multi = Add<double>(kMultistate, "A", 1050);
  EXPECT_TRUE(IsDouble({&multi}));
}

TEST_P(ResultPrecision, LooksForBlocksBehindAMultiStateBlockAmongConstants) {
  ORVResult multi = Add<float>(kMultistate, "A", 1050);
  ORVResult state = Add<double>(kState1, "B");
  EXPECT_TRUE(IsDouble({&state, &multi}));
  EXPECT_FALSE(IsDouble({&multi, &state}));
  ORVResult constant = Add<double>(kConstant, "B");
  EXPECT_TRUE(IsDouble({&multi, &state}));
}

TEST_P(ResultPrecision, IsNotDoubleWhereThereIsNothingToLookAt) {
  file_.Add(kState1, StoredBlock<float>{.etyp = "Bare", .nent = 1});
  ORVResult bare = ListedBlock(1000, "Bare", "SPEED", 1, 1, nullptr);
  ORVResult gone = ListedBlock(1000, "Gone", "SPEED", 1, 1, nullptr);
  ORVResult twofold = Add<double>(kState1, "B");
  EXPECT_FALSE(IsDouble({&bare, &gone}));
  EXPECT_TRUE(IsDouble({&bare, &gone, &twofold}));
  EXPECT_FALSE(HasDoublePrecision("/not/there", {&twofold}, 1));
}

TEST_P(ResultPrecision, IsThatOfTheFirstDatasetMetOnTheWayDown) {
  ORVResult block = Add<double>(kState1, "A");
  EXPECT_TRUE(IsDouble({&block}));
  file_.file().at(std::string(kState1) + "/entityresults/A/SPEED").dataset<float>("res", {1, 1}, {1});
  EXPECT_FALSE(IsDouble({&block}));
}

/// Values stored through two filters.
void AddFiltered(hid_t here) {
  const hsize_t size[] = {4, 1};
  const Id space(H5Screate_simple(2, size, nullptr), "space");
  const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
  Check(H5Pset_chunk(list.get(), 2, size), "chunk");
  Check(H5Pset_shuffle(list.get()), "shuffle");
  Check(H5Pset_fletcher32(list.get()), "fletcher32");
  const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
}

TEST_P(ResultPrecision, FindsAnyFilterOfTheValues) {
  ORVResult plain = Add<float>(kState1, "A");
  file_.Add(kState1, StoredBlock<float>{.etyp = "B", .nent = 4});
  file_.file().at(file_.Part(kState1, 1000, "B", "SPEED", "data")).raw(AddFiltered);
  ORVResult filtered = ListedBlock(1000, "B", "SPEED", 4, 1, nullptr);
  const std::string path = file_.path();
  EXPECT_TRUE(IsDatasetHasFilterId(path.c_str(), {&plain, nullptr, &filtered}, 1, H5Z_FILTER_SHUFFLE));
  EXPECT_TRUE(IsDatasetHasFilterId(path.c_str(), {&filtered}, 1, H5Z_FILTER_FLETCHER32));
  EXPECT_FALSE(IsDatasetHasFilterId(path.c_str(), {&filtered}, 1, H5Z_FILTER_DEFLATE));
  EXPECT_FALSE(IsDatasetHasFilterId(path.c_str(), {&plain}, 1, H5Z_FILTER_SHUFFLE));
  EXPECT_FALSE(IsDatasetHasFilterId(path.c_str(), {&filtered}, 2, H5Z_FILTER_SHUFFLE));
}

}  // namespace
