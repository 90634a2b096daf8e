// The fetch of whole blocks at their own paths, with index rows.

#include "result/value_fetch_test.h"

namespace {

using namespace orv_test;

class ValueFetchPaths : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ~ValueFetchPaths() override { values_.DeleteAllocation(false); }

  /// A block of nodes that knows its path.
  ORVResult Add(const char* etyp, const Floats& values, const Ints& ids, const Floats& index, int kind = 1000) {
    const auto nodes = static_cast<int>(ids.size());
    const hsize_t components = values.size() / ids.size();
    const char* section = kind >= 1050 && kind < 1100 ? kMultistate : kState1;
    std::vector<hsize_t> shape = {ids.size(), components};
    if (kind == 1050) shape.insert(shape.begin(), 1);
    StoredBlock<float> stored{.kind = kind, .etyp = etyp, .nent = nodes, .shape = shape, .values = values, .ids = ids};
    file_.Add(section, stored);
    ForgedFile& rows = file_.file().at(file_.Part(section, kind, etyp, "SPEED", "index"));
    const std::vector<hsize_t> rows_shape =
        kind == 1050 ? std::vector<hsize_t>{1, index.size()} : std::vector<hsize_t>{index.size()};
    if (!index.empty()) {
      rows.dataset<float>("indexval", rows_shape, index);
      rows.dataset<int>("indexident", rows_shape, Ints(index.size(), nodes));
    }
    ORVResult block(kind);
    block.m_nent = nodes;
    block.m_ncoo = static_cast<int>(components);
    block.m_nindex = static_cast<int>(index.size());
    block.m_nstate = kind == 1050 ? 1 : 0;
    block.SetBlkPath(PathOf(section, kind, etyp));
    return block;
  }

  std::string PathOf(const char* section, int kind, const char* etyp) const {
    const std::string part = file_.Part(section, kind, etyp, "SPEED", "orvblock");
    return GetParam() == Layout::kSplit ? part.substr(0, part.rfind('/')) : part;
  }

  int Fetch(const std::vector<ORVResult*>& blocks) {
    return orvio::FetchBlocksAtPaths(file_.path().c_str(), blocks, values_);
  }

  Floats Values() const { return Floats(values_.m_values, values_.m_values + values_.m_valueCount); }
  Ints Ids() const { return Ints(values_.m_ids, values_.m_ids + values_.m_idCount); }
  Floats IndexValues(int count) const { return Floats(values_.m_indexVal, values_.m_indexVal + count); }
  Ints IndexIdents(int count) const { return Ints(values_.m_indexIdent, values_.m_indexIdent + count); }

  BlockFile file_{GetParam()};
  ORVFetchValuesWithIndex values_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetchPaths, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetchPaths, PacksValuesIdsAndIndexRows) {
  ORVResult first = Add("A", {1, 2, 3, 4}, {10, 20}, {0.5F, 7});
  ORVResult second = Add("B", {5, 6}, {30}, {1.5F, 8});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&first, &second}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Ids(), (Ints{10, 20, 30}));
  EXPECT_EQ(values_.m_blockCount, 2);
  EXPECT_EQ(values_.m_indexCount, 2);
  EXPECT_EQ(IndexValues(4), (Floats{0.5F, 7, 1.5F, 8}));
  EXPECT_EQ(IndexIdents(4), (Ints{2, 2, 1, 1}));
}

TEST_P(ValueFetchPaths, AreFloatsAndIntsOfStoredDoublesAndLongs) {
  ORVResult block = Add("A", {1, 2}, {10, 20}, {0.5F});
  file_.file().at(file_.Part(kState1, 1000, "A", "SPEED", "data")).dataset<double>("res", {2, 1}, {1.5, 2.5});
  file_.file().dataset<std::int64_t>("entid", {2}, {30, 40});
  file_.file().at(file_.Part(kState1, 1000, "A", "SPEED", "index")).dataset<double>("indexval", {1}, {0.25});
  file_.file().dataset<std::int64_t>("indexident", {1}, {9});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&block}), 0);
  EXPECT_EQ(Values(), (Floats{1.5F, 2.5F}));
  EXPECT_EQ(Ids(), (Ints{30, 40}));
  EXPECT_EQ(IndexValues(1), (Floats{0.25F}));
  EXPECT_EQ(IndexIdents(1), (Ints{9}));
}

TEST_P(ValueFetchPaths, WithoutIdsHasNoneButTheirNumber) {
  ORVResult block = Add("A", {1, 2}, {10, 20}, {});
  EXPECT_EQ(Fetch({&block}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2}));
  EXPECT_EQ(values_.m_ids, nullptr);
  EXPECT_EQ(values_.m_idCount, 2);
  EXPECT_EQ(values_.m_indexCount, 0);
  EXPECT_EQ(values_.m_indexVal, nullptr);
  EXPECT_EQ(values_.m_indexIdent, nullptr);
}

TEST_P(ValueFetchPaths, DividesTheIndexValuesByTheBlocksWithoutARest) {
  ORVResult first = Add("A", {1}, {10}, {1, 2, 3});
  ORVResult second = Add("B", {2}, {20}, {});
  EXPECT_EQ(Fetch({&first, &second}), 0);
  EXPECT_EQ(values_.m_indexCount, 1);
  EXPECT_EQ(values_.m_blockCount, 2);
}

TEST_P(ValueFetchPaths, CountOnlyTheBlocksThatWereRead) {
  ORVResult first = Add("A", {1}, {10}, {1});
  ORVResult gone = Add("B", {2}, {20}, {2, 2});
  gone.SetBlkPath("/post/nowhere");
  ORVResult no_index = Add("C", {3}, {30}, {3});
  no_index.m_nindex = 4;
  ORVResult pathless = Add("D", {4}, {40}, {4});
  pathless.SetBlkPath("");
  ORVResult last = Add("E", {5}, {50}, {5});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&first, nullptr, &gone, &no_index, &pathless, &last}), 0);
  EXPECT_EQ(Values(), (Floats{1, 5}));
  EXPECT_EQ(Ids(), (Ints{10, 50}));
  EXPECT_EQ(values_.m_blockCount, 2);
  EXPECT_EQ(values_.m_indexCount, 1);
  EXPECT_EQ(IndexValues(2), (Floats{1, 5}));
  EXPECT_EQ(gone.m_res, nullptr);
  EXPECT_EQ(last.m_res, values_.m_values + 1);
  EXPECT_EQ(last.m_entid, values_.m_ids + 1);
}

TEST_P(ValueFetchPaths, HaveZerosForIdsThatAreNotStored) {
  file_.Add(kState1, StoredBlock<float>{.etyp = "A", .nent = 2, .shape = {2, 1}, .values = {1, 2}});
  ORVResult bare(1000);
  bare.m_nent = 2;
  bare.m_ncoo = 1;
  bare.SetBlkPath(PathOf(kState1, 1000, "A"));
  ORVResult block = Add("B", {3}, {30}, {});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&bare, &block}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2, 3}));
  EXPECT_EQ(Ids(), (Ints{0, 0, 30}));
}

TEST_P(ValueFetchPaths, ReadElementsWithoutLocations) {
  StoredBlock<float> stored{.kind = 1100, .etyp = "SHELL", .nent = 2, .shape = {2, 2, 1}, .values = {1, 2, 3, 4}};
  file_.Add(kState1, stored);
  ORVResult shells(1100);
  shells.m_nent = 2;
  shells.m_ncoo = 1;
  shells.m_numl = 2;
  shells.m_ndim = 3;
  shells.SetBlkPath(PathOf(kState1, 1100, "SHELL"));
  EXPECT_EQ(Fetch({&shells}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2, 3, 4}));
}

TEST_P(ValueFetchPaths, TakeElementsWithoutLayersForTwoAxes) {
  StoredBlock<float> stored{.kind = 1100, .etyp = "BEAM", .nent = 2, .shape = {2, 1}, .values = {1, 2}};
  file_.Add(kState1, stored);
  ORVResult beams(1100);
  beams.m_nent = 2;
  beams.m_ncoo = 1;
  beams.SetBlkPath(PathOf(kState1, 1100, "BEAM"));
  EXPECT_EQ(Fetch({&beams}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2}));
}

TEST_P(ValueFetchPaths, ReadComplexElementsWithAndWithoutLayers) {
  StoredBlock<float> layered{.kind = 1101, .etyp = "SHELL", .nent = 1, .shape = {1, 2, 1, 2}, .values = {1, 2, 3, 4}};
  StoredBlock<float> flat{.kind = 1101, .etyp = "BEAM", .nent = 2, .shape = {2, 1, 2}, .values = {5, 6, 7, 8}};
  layered.ids = {70};
  flat.ids = {80, 90};
  file_.Add(kState1, layered).Add(kState1, flat);
  ORVResult shells(1101);
  shells.m_nent = 1;
  shells.m_ncoo = 1;
  shells.m_numl = 2;
  shells.SetBlkPath(PathOf(kState1, 1101, "SHELL"));
  ORVResult beams(1101);
  beams.m_nent = 2;
  beams.m_ncoo = 1;
  beams.SetBlkPath(PathOf(kState1, 1101, "BEAM"));
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&shells, &beams}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(Ids(), (Ints{70, 80, 90}));
}

TEST_P(ValueFetchPaths, LeaveOutABlockThatLacksOneOfItsIndexDatasets) {
  ORVResult no_values = Add("A", {1}, {10}, {1});
  file_.file().at(file_.Part(kState1, 1000, "A", "SPEED", "index")).drop("indexval");
  ORVResult no_idents = Add("B", {2}, {20}, {2});
  file_.file().at(file_.Part(kState1, 1000, "B", "SPEED", "index")).drop("indexident");
  ORVResult both = Add("C", {3}, {30}, {3});
  EXPECT_EQ(Fetch({&no_values, &no_idents, &both}), 0);
  EXPECT_EQ(Values(), (Floats{3}));
  EXPECT_EQ(values_.m_blockCount, 1);
  EXPECT_EQ(values_.m_indexCount, 1);
  EXPECT_EQ(IndexValues(1), (Floats{3}));
  EXPECT_EQ(no_values.m_res, nullptr);
}

TEST_P(ValueFetchPaths, LeaveOutABlockWhoseIdsHaveAnotherCount) {
  ORVResult odd = Add("A", {1, 2}, {10, 20}, {1});
  file_.file().at(file_.Part(kState1, 1000, "A", "SPEED", "data")).dataset<int>("entid", {3}, {1, 2, 3});
  ORVResult even = Add("B", {3}, {30}, {2});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&odd, &even}), 0);
  EXPECT_EQ(Values(), (Floats{3}));
  EXPECT_EQ(Ids(), (Ints{30}));
  EXPECT_EQ(IndexValues(1), (Floats{2}));
}

TEST_P(ValueFetchPaths, ReadComplexPairs) {
  StoredBlock<float> stored{.kind = 1001, .etyp = "C", .nent = 2, .shape = {2, 1, 2}, .values = {3, 4, 6, 8}};
  file_.Add(kState1, stored);
  ORVResult pairs(1001);
  pairs.m_nent = 2;
  pairs.m_ncoo = 1;
  pairs.SetBlkPath(PathOf(kState1, 1001, "C"));
  EXPECT_EQ(Fetch({&pairs}), 0);
  EXPECT_EQ(Values(), (Floats{3, 4, 6, 8}));
  values_.DeleteAllocation(true);
  pairs.m_complexOutput = ORV_COMPLEX_REAL | ORV_COMPLEX_ALWAYS;
  EXPECT_EQ(Fetch({&pairs}), 0);
  EXPECT_EQ(Values(), (Floats{3, 6}));
}

TEST_P(ValueFetchPaths, ReadAMultiStateBlockOfOneState) {
  ORVResult block = Add("A", {1, 2}, {10, 20}, {0.5F}, 1050);
  EXPECT_EQ(Fetch({&block}), 0);
  EXPECT_EQ(Values(), (Floats{1, 2}));
  EXPECT_EQ(IndexValues(1), (Floats{0.5F}));
}

TEST_P(ValueFetchPaths, PassOverBlocksOfSeveralStates) {
  ORVResult several = Add("A", {1, 2}, {10, 20}, {}, 1050);
  file_.file().at(file_.Part(kMultistate, 1050, "A", "SPEED", "data")).dataset<float>("res", {2, 2, 1}, {1, 2, 3, 4});
  several.m_nstate = 2;
  ORVResult one = Add("B", {3}, {30}, {});
  EXPECT_EQ(Fetch({&several, &one}), 0);
  EXPECT_EQ(Values(), (Floats{3}));
  EXPECT_EQ(values_.m_blockCount, 1);
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&several}), 1);
}

TEST_P(ValueFetchPaths, PutTheStoredTypesOfABlockBack) {
  ORVResult block = Add("A", {1}, {10}, {0.5F});
  block.m_resType = ORV_DOUBLE;
  block.m_entidType = ORV_LONG;
  block.m_indexidentType = ORV_LONG;
  block.m_indexvalType = ORV_DOUBLE;
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&block}), 0);
  EXPECT_EQ(Values(), (Floats{1}));
  EXPECT_EQ(Ids(), (Ints{10}));
  EXPECT_EQ(block.m_resType, ORV_DOUBLE);
  EXPECT_EQ(block.m_entidType, ORV_LONG);
  EXPECT_EQ(block.m_indexidentType, ORV_LONG);
  EXPECT_EQ(block.m_indexvalType, ORV_DOUBLE);
  EXPECT_EQ(block.m_readIds, 0);
}

TEST_P(ValueFetchPaths, LeaveABlockOfWiderTypesPointingAtNothing) {
  ORVResult block = Add("A", {1}, {10}, {0.5F});
  values_.m_wantIds = 1;
  EXPECT_EQ(Fetch({&block}), 0);
  EXPECT_EQ(block.m_res, values_.m_values);
  EXPECT_EQ(block.m_entid, values_.m_ids);
  EXPECT_EQ(block.m_indexident, values_.m_indexIdent);
  EXPECT_EQ(block.m_indexval, values_.m_indexVal);
  for (void* array : {static_cast<void*>(values_.m_values), static_cast<void*>(values_.m_ids),
                      static_cast<void*>(values_.m_indexIdent), static_cast<void*>(values_.m_indexVal)}) {
    std::free(array);
  }
  block.m_resType = block.m_indexvalType = ORV_DOUBLE;
  block.m_entidType = block.m_indexidentType = ORV_LONG;
  EXPECT_EQ(Fetch({&block}), 0);
  for (const void* pointer : {block.m_res, block.m_entid, block.m_indexident, block.m_indexval}) {
    EXPECT_EQ(pointer, nullptr);
  }
}

TEST_P(ValueFetchPaths, HaveNoAnswerWhereNothingCanBeRead) {
  EXPECT_EQ(Fetch({}), 1);
  EXPECT_EQ(Fetch({nullptr}), 1);
  ORVResult empty(1000);
  EXPECT_EQ(Fetch({&empty}), 1);
  ORVResult gone = Add("A", {1}, {10}, {});
  gone.SetBlkPath("/post/nowhere");
  EXPECT_EQ(Fetch({&gone}), 1);
  EXPECT_EQ(gone.m_res, nullptr);
  EXPECT_EQ(orvio::FetchBlocksAtPaths(nullptr, {&gone}, values_), 1);
  EXPECT_EQ(values_.m_values, nullptr);
  EXPECT_EQ(values_.m_valueCount, 0);
  EXPECT_EQ(values_.m_blockCount, 0);
}

TEST_P(ValueFetchPaths, MakeNoArraysForTheEntitiesOfABlockWithoutValues) {
  ORVResult good = Add("A", {1}, {10}, {0.5F});
  ORVResult liar = good;
  liar.m_ncoo = 0;
  values_.m_wantIds = 1;
  for (const std::int64_t nent : {std::int64_t{2'000'000'000}, INT64_MAX}) {
    liar.m_nent = nent;
    liar.m_nindex = 2'000'000'000;
    EXPECT_EQ(Fetch({&liar, &good}), 0) << nent;
    EXPECT_EQ(Values(), (Floats{1}));
    EXPECT_EQ(Ids(), (Ints{10}));
    EXPECT_EQ(IndexValues(1), (Floats{0.5F}));
    values_.DeleteAllocation(true);
  }
}

TEST_P(ValueFetchPaths, MakeNoArraysForAProductThatNoNumberHolds) {
  ORVResult good = Add("A", {1}, {10}, {});
  ORVResult liar = good;
  liar.m_nent = 4;
  liar.m_ncoo = std::int64_t{1} << 62;
  EXPECT_EQ(Fetch({&good, &liar}), 1);
  EXPECT_EQ(values_.m_values, nullptr);
}

TEST_P(ValueFetchPaths, MakeNoArraysOnTheWordOfAHeader) {
  ORVResult good = Add("A", {1}, {10}, {});
  ORVResult liar = good;
  for (const std::int64_t nent : {std::int64_t{500'000'000}, std::int64_t{1} << 31, INT64_MAX}) {
    liar.m_nent = nent;
    EXPECT_EQ(Fetch({&good, &liar}), 1) << nent;
  }
  liar.m_nent = 1;
  liar.m_nindex = 500'000'000;
  EXPECT_EQ(Fetch({&good, &liar}), 1);
  liar.m_nindex = 0;
  liar.m_nent = -1;
  EXPECT_EQ(Fetch({&good, &liar}), 0);
  EXPECT_EQ(Values(), (Floats{1}));
}

}  // namespace
