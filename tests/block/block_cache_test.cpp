// The datasets that a block holds in memory: how they get there, and the map of them. Copies out of
// memory are in block_cache_copy_test, the memory itself in buffer_manager_test.

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "block/cached_dataset.h"
#include "block/caching_block.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Doubles = std::vector<double>;
using Ints = std::vector<int>;
using Names = std::vector<std::string>;

// ---- Into memory

TEST_F(BlockCache, HoldsDatasetsWholeInTheirStoredTypes) {
  AtBlock().dataset<float>("res", {2, 2}, {1, 2, 3, 4}).dataset<double>("precise", {1}, {.1});
  AtBlock().dataset<int>("entid", {2}, {10, 20}).dataset<std::int64_t>("big", {1}, {std::int64_t{1} << 40});
  EXPECT_EQ(Cache({"res", "precise", "entid", "big"}), 0);
  EXPECT_EQ(block_.Held<float>("res"), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(block_.Held<double>("precise"), Doubles{.1});
  EXPECT_EQ(block_.Held<int>("entid"), (Ints{10, 20}));
  EXPECT_EQ(block_.Held<std::int64_t>("big"), (std::vector<std::int64_t>{std::int64_t{1} << 40}));
}

TEST_F(BlockCache, RemembersTypeStateAndExtents) {
  AtBlock().dataset<float>("res", {2, 3}, {1, 2, 3, 4, 5, 6});
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1});
  file_.at(State(2) + "/block").dataset<float>("res", {1}, {1});
  EXPECT_EQ(Cache({"res"}), 0);
  const ORVBuffer* buffer = block_.GetCachedDataset("res");
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(buffer->m_type, ORV_FLOAT);
  EXPECT_EQ(buffer->m_state, 0);
  EXPECT_EQ(buffer->m_rank, 2);
  EXPECT_EQ(buffer->m_dims[1], 3U);
  EXPECT_EQ(Cache({"res"}, 2), 0);
  EXPECT_EQ(block_.GetCachedDataset("res")->m_state, 2);
}

TEST_F(BlockCache, HoldsDoublesAsFloatsWhenAsked) {
  AtBlock().dataset<double>("res", {2}, {.5, -2}).dataset<int>("entid", {1}, {7});
  EXPECT_EQ(Cache({"res", "entid"}, 0, true), 0);
  EXPECT_EQ(block_.Held<float>("res"), (Floats{.5F, -2}));
  EXPECT_EQ(block_.GetCachedDataset("res")->m_type, ORV_FLOAT);
  EXPECT_EQ(block_.Held<int>("entid"), Ints{7});
}

TEST_F(BlockCache, FindsDatasetsInEveryPartOfABlock) {
  AtBlock("/orvblock").dataset<int>("single", {1}, {1});
  AtBlock("/data").dataset<int>("values", {1}, {2});
  AtBlock("/index").dataset<int>("rows", {1}, {3});
  EXPECT_EQ(Cache({"single", "values", "rows"}), 0);
  EXPECT_EQ(block_.Held<int>("single"), Ints{1});
  EXPECT_EQ(block_.Held<int>("values"), Ints{2});
  EXPECT_EQ(block_.Held<int>("rows"), Ints{3});
}

TEST_F(BlockCache, PassesOverWhatIsHeldAlready) {
  AtBlock().dataset<float>("res", {1}, {1});
  EXPECT_EQ(Cache({"res"}), 0);
  AtBlock().dataset<float>("res", {1}, {2});
  EXPECT_EQ(Cache({"res"}), 0);
  EXPECT_EQ(block_.Held<float>("res"), Floats{1});
}

TEST_F(BlockCache, PassesOverWhatCannotBeReadAndAnswersForTheLast) {
  AtBlock().dataset<float>("res", {1}, {1}).dataset<float>("empty", {0}, {}).scalar<float>("one", 1);
  AtBlock().texts("words", 8, {1}, {"word"}).group("part");
  for (const char* name : {"missing", "empty", "one", "words", "part", ""}) {
    EXPECT_EQ(Cache({name}), 1) << name;
    EXPECT_FALSE(block_.IsDatasetCached(name)) << name;
  }
  EXPECT_FALSE(block_.m_pCacheMap);
  EXPECT_EQ(Cache({"missing", "res"}), 0);
  EXPECT_EQ(block_.Held<float>("res"), Floats{1});
  EXPECT_EQ(Cache({"res", "missing"}), 1);
  EXPECT_EQ(block_.Held<float>("res"), Floats{1});
  EXPECT_EQ(Cache({}), 0);
}

TEST_F(BlockCache, HoldsOneStateOfADataset) {
  for (const int state : {1, 2}) {
    file_.at(State(state) + "/block").dataset<float>("res", {1}, {static_cast<float>(state)});
  }
  EXPECT_EQ(Cache({"res"}, 1), 0);
  EXPECT_EQ(Cache({"res"}, 2), 0);
  EXPECT_EQ(block_.Held<float>("res"), Floats{2});
  EXPECT_EQ(Cache({"res"}, 3), 1);
  EXPECT_EQ(block_.Held<float>("res"), Floats{2});
}

TEST_F(BlockCache, KeepsTheOtherStateOfADatasetThatCannotBeRead) {
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1}).dataset<float>("indexval", {2}, {7, 8});
  file_.at(State(2) + "/block").dataset<float>("res", {1}, {2});
  ASSERT_EQ(Cache({"res", "indexval"}, 1), 0);
  const ORVBuffer* buffer = block_.GetCachedDataset("indexval");
  EXPECT_EQ(Cache({"indexval"}, 2), 1);
  EXPECT_EQ(Cache({"res", "indexval", "indexval"}, 2), 1);
  EXPECT_EQ(block_.GetCachedDataset("indexval"), buffer);
  EXPECT_EQ(block_.Held<float>("indexval"), (Floats{7, 8}));
  EXPECT_TRUE(orvio::ServesState(block_, *buffer, 1));
  EXPECT_FALSE(orvio::ServesState(block_, *buffer, 2));
  EXPECT_EQ(block_.Held<float>("res"), Floats{2});
}

TEST_F(BlockCache, OfAGroupInAStateServesNoneUntilItIsReadFromTheFile) {
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1});
  Names names = {"res"};
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  const hid_t group = block_.OpenBlockGroup(1);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, group, names, false), 0);
  H5Gclose(group);
  block_.CloseH5Reader();
  const ORVBuffer* buffer = block_.GetCachedDataset("res");
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(buffer->m_state, INT_MAX);
  EXPECT_EQ(block_.Held<float>("res"), Floats{1});
  for (const int state : {1, 2, 0, -1, INT_MAX}) EXPECT_FALSE(orvio::ServesState(block_, *buffer, state)) << state;

  file_.at(State(1) + "/block").dataset<float>("res", {1}, {5});
  EXPECT_EQ(Cache({"res", "missing"}, 2), 1);  // there is no such state
  EXPECT_EQ(block_.GetCachedDataset("res")->m_state, INT_MAX);
  EXPECT_EQ(Cache({"res"}, 1), 0);
  EXPECT_EQ(block_.Held<float>("res"), Floats{5});
  EXPECT_EQ(block_.GetCachedDataset("res")->m_state, 1);
  EXPECT_TRUE(orvio::ServesState(block_, *block_.GetCachedDataset("res"), 1));
}

TEST_F(BlockCache, OfAGroupStaysUnknownWhenTheFileHasNoSuchDataset) {
  AtBlock().dataset<float>("res", {1}, {1});
  file_.at(State(1) + "/block").dataset<float>("extra", {1}, {3});
  file_.at(State(2) + "/block").dataset<float>("res", {1}, {2});
  Names names = {"extra"};
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  const hid_t group = block_.OpenBlockGroup(1);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, group, names, false), 0);
  H5Gclose(group);
  block_.CloseH5Reader();
  EXPECT_EQ(Cache({"extra"}, 2), 1);
  ASSERT_TRUE(block_.IsDatasetCached("extra"));
  EXPECT_EQ(block_.GetCachedDataset("extra")->m_state, INT_MAX);
}

TEST_F(BlockCache, WithoutFileOrGroupFails) {
  Names names = {"res"};
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, nullptr, 0, names, false), 1);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, "/not/there", 0, names, false), 1);
  EXPECT_EQ(Cache({"res"}), 1);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, hid_t{-1}, names, false), 1);
}

TEST_F(BlockCache, ReadsFromAnOpenGroupWithAReaderOnly) {
  AtBlock("/data").dataset<float>("res", {1}, {4});
  Names names = {"res"};
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  const hid_t group = block_.OpenBlockGroup(0);
  ASSERT_GT(group, 0);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, group, names, false), 0);
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, hid_t{-1}, names, false), 1);
  H5Gclose(group);
  block_.CloseH5Reader();
  EXPECT_EQ(block_.Held<float>("res"), Floats{4});
  EXPECT_EQ(block_.ReadAndCacheDataset(manager_, group, names, false), 1);
}

TEST_F(BlockCache, MakesNoRoomForWhatTheFileDoesNotStore) {
  AtBlock().raw([](hid_t here) {
    const hsize_t huge[] = {std::uint64_t{1} << 34};
    const hsize_t chunk[] = {1024};
    const Id space(H5Screate_simple(1, huge, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, chunk), "chunk");
    const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
  });
  EXPECT_EQ(Cache({"res"}), 1);
  EXPECT_FALSE(block_.IsDatasetCached("res"));
}

TEST_F(BlockCache, RefusesMoreThanEightAxes) {
  AtBlock().dataset<float>("res", {1, 1, 1, 1, 1, 1, 1, 1, 1}, {1});
  EXPECT_EQ(Cache({"res"}), 1);
}

// ---- The manager of a host

/// Makes buffers of a count of its own, from an allocator of its own.
class HostManager : public IORVBufferManager {
 public:
  ORVBuffer* CreateBuffer(_ORVDataType type, int rank, std::uint64_t* dims, const std::string& name,
                          ORVBlock* block) override {
    asked.push_back(name + " " + std::to_string(type) + " " + std::to_string(rank) + " " + std::to_string(dims[0]));
    asking = block;
    if (refuses) return nullptr;
    made.push_back(std::make_unique<ORVBuffer>());
    ORVBuffer& buffer = *made.back();
    buffer.m_elementSize = element;
    buffer.m_count = count;
    buffer.m_allocator = allocator;
    buffer.m_data = count ? std::malloc(element * count) : nullptr;
    if (buffer.m_data) std::memset(buffer.m_data, 0x7f, element * count);
    return &buffer;
  }
  void ReleaseBuffer(ORVBuffer* buffer) override { released.push_back(buffer); }
  ~HostManager() override {
    for (const auto& buffer : made) std::free(buffer->m_data);
  }

  ORVHostAllocate memory;
  ORVAllocator* allocator = &memory;
  std::size_t element = 4;
  std::size_t count = 0;
  bool refuses = false;
  ORVBlock* asking = nullptr;
  std::vector<std::string> asked;
  std::vector<std::unique_ptr<ORVBuffer>> made;
  std::vector<ORVBuffer*> released;
};

class BlockCacheOfAHost : public BlockCache {
 protected:
  BlockCacheOfAHost() { AtBlock().dataset<float>("res", {3}, {1, 2, 3}); }
  int CacheAtHost() {
    Names names = {"res"};
    return block_.ReadAndCacheDataset(host_, file_.path().c_str(), 0, names, false);
  }
  HostManager host_;
};

TEST_F(BlockCacheOfAHost, IsAskedForEachDataset) {
  host_.count = 3;
  EXPECT_EQ(CacheAtHost(), 0);
  EXPECT_EQ(host_.asked, Names{"res 3 1 3"});
  EXPECT_EQ(host_.asking, &block_);
  EXPECT_EQ(block_.Held<float>("res"), (Floats{1, 2, 3}));
  EXPECT_TRUE(host_.released.empty());
}

TEST_F(BlockCacheOfAHost, GetsMemoryForABufferThatIsTooSmall) {
  for (const std::size_t count : {std::size_t{0}, std::size_t{2}}) {
    host_.count = count;
    EXPECT_EQ(CacheAtHost(), 0) << count;
    EXPECT_EQ(block_.Held<float>("res"), (Floats{1, 2, 3})) << count;
    block_.DeleteCache();
  }
}

TEST_F(BlockCacheOfAHost, HasZerosWhereTheFileStoresNothing) {
  for (const H5D_layout_t layout : {H5D_CONTIGUOUS, H5D_CHUNKED}) {
    AtBlock().drop("res").raw([layout](hid_t here) {
      const hsize_t dims[] = {3};
      const Id space(H5Screate_simple(1, dims, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_layout(list.get(), layout), "layout");
      if (layout == H5D_CHUNKED) Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
      Check(H5Pset_fill_time(list.get(), H5D_FILL_TIME_NEVER), "fill time");  // a read leaves the memory as it is
      const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "res");
    });
    host_.count = 3;
    EXPECT_EQ(CacheAtHost(), 0) << layout;
    EXPECT_EQ(block_.Held<float>("res"), (Floats{0, 0, 0})) << layout;
    block_.DeleteCache();
  }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // that of the base is fixed

/// Frees, and has nothing to give.
class ExhaustedMemory : public ORVHostAllocate {
 public:
  char* allocate(std::size_t /*size*/) override { throw std::bad_alloc(); }
};

#pragma GCC diagnostic pop

TEST_F(BlockCacheOfAHost, LeavesNoFreedMemoryInABufferThatGetsNoMore) {
  ExhaustedMemory exhausted;
  host_.allocator = &exhausted;
  host_.count = 2;
  EXPECT_EQ(CacheAtHost(), 1);
  ASSERT_EQ(host_.made.size(), 1U);
  EXPECT_EQ(host_.made[0]->m_data, nullptr);
  EXPECT_EQ(host_.released, std::vector<ORVBuffer*>{host_.made[0].get()});
  EXPECT_FALSE(block_.IsDatasetCached("res"));
}

TEST_F(BlockCacheOfAHost, WithoutABufferOrMemoryHoldsNothing) {
  host_.allocator = nullptr;
  EXPECT_EQ(CacheAtHost(), 1);
  ASSERT_EQ(host_.made.size(), 1U);
  EXPECT_EQ(host_.released, std::vector<ORVBuffer*>{host_.made[0].get()});
  host_.refuses = true;
  EXPECT_EQ(CacheAtHost(), 1);
  EXPECT_EQ(host_.released.size(), 1U);
  EXPECT_FALSE(block_.IsDatasetCached("res"));
}

TEST_F(BlockCacheOfAHost, GetsTheBufferOfAnotherStateBack) {
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1});
  file_.at(State(2) + "/block").dataset<float>("res", {1}, {2});
  host_.count = 1;
  Names names = {"res"};
  EXPECT_EQ(block_.ReadAndCacheDataset(host_, file_.path().c_str(), 1, names, false), 0);
  EXPECT_EQ(block_.ReadAndCacheDataset(host_, file_.path().c_str(), 2, names, false), 0);
  EXPECT_EQ(host_.released, std::vector<ORVBuffer*>{host_.made.at(0).get()});
}

TEST_F(BlockCacheOfAHost, GetsNothingBackForAStateThatCannotBeRead) {
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1});
  file_.at(State(2) + "/block");
  host_.count = 1;
  Names names = {"res"};
  EXPECT_EQ(block_.ReadAndCacheDataset(host_, file_.path().c_str(), 1, names, false), 0);
  EXPECT_EQ(block_.ReadAndCacheDataset(host_, file_.path().c_str(), 2, names, false), 1);
  EXPECT_TRUE(host_.released.empty());
  EXPECT_EQ(block_.Held<float>("res"), Floats{1});
}

/// Has a block forget all it holds before it makes a buffer, as one that runs out of memory would.
class ForgettingManager : public HostManager {
 public:
  ORVBuffer* CreateBuffer(_ORVDataType type, int rank, std::uint64_t* dims, const std::string& name,
                          ORVBlock* block) override {
    block->ClearCacheMap();
    return HostManager::CreateBuffer(type, rank, dims, name, block);
  }
};

TEST_F(BlockCacheOfAHost, PutsNothingBackIntoABlockThatWasMadeToForget) {
  file_.at(State(1) + "/block").dataset<float>("res", {1}, {1}).dataset<float>("extra", {1}, {3});
  file_.at(State(2) + "/block").dataset<float>("res", {1}, {2});
  ForgettingManager forgetting;
  forgetting.count = 1;
  Names names = {"extra"};
  EXPECT_EQ(block_.ReadAndCacheDataset(forgetting, file_.path().c_str(), 1, names, false), 0);
  CachingBlock copy = block_;
  names = {"extra", "res"};
  EXPECT_EQ(block_.ReadAndCacheDataset(forgetting, file_.path().c_str(), 2, names, false), 0);
  EXPECT_FALSE(block_.IsDatasetCached("extra"));
  EXPECT_FALSE(copy.IsDatasetCached("extra"));
  EXPECT_EQ(block_.Held<float>("res"), Floats{2});
  EXPECT_TRUE(forgetting.released.empty());
}

// ---- The map

TEST_F(BlockCache, FindsWhatWasAppendedByItsExactName) {
  std::uint64_t one = 1;
  ORVBuffer* first = manager_.CreateBuffer(ORV_FLOAT, 1, &one, "res", &block_);
  ORVBuffer* second = manager_.CreateBuffer(ORV_FLOAT, 1, &one, "res", &block_);
  EXPECT_EQ(block_.GetCachedDataset("res"), nullptr);
  block_.AppendCachedData("res", nullptr);
  EXPECT_FALSE(block_.m_pCacheMap);
  block_.AppendCachedData("res", first);
  EXPECT_EQ(block_.GetCachedDataset("res"), first);
  EXPECT_TRUE(block_.IsDatasetCached("res"));
  EXPECT_FALSE(block_.IsDatasetCached("RES"));
  EXPECT_FALSE(block_.IsDatasetCached("re"));
  block_.AppendCachedData("res", second);
  EXPECT_EQ(block_.GetCachedDataset("res"), second);
  block_.AppendCachedData("res", nullptr);
  EXPECT_EQ(block_.GetCachedDataset("res"), second);
}

TEST_F(BlockCache, IsSharedByCopiesAndForgottenForAllOfThem) {
  AtBlock().dataset<float>("res", {1}, {1});
  ASSERT_EQ(Cache({"res"}), 0);
  CachingBlock copy = block_;
  CachingBlock assigned;
  assigned = block_;
  EXPECT_EQ(copy.GetCachedDataset("res"), block_.GetCachedDataset("res"));
  EXPECT_EQ(assigned.GetCachedDataset("res"), block_.GetCachedDataset("res"));
  block_.DeleteCache();
  EXPECT_FALSE(block_.m_pCacheMap);
  EXPECT_FALSE(copy.IsDatasetCached("res"));
  EXPECT_FALSE(assigned.IsDatasetCached("res"));
  block_.DeleteCache();
  copy.ClearCacheMap();
  copy.ClearCacheMap();
  EXPECT_FALSE(copy.m_pCacheMap);
}

TEST_F(BlockCache, LeavesTheBuffersToTheManager) {
  AtBlock().dataset<float>("res", {1}, {1});
  ASSERT_EQ(Cache({"res"}), 0);
  ORVBuffer* buffer = block_.GetCachedDataset("res");
  block_.ClearCacheMap();
  EXPECT_EQ(*static_cast<float*>(buffer->m_data), 1);
  manager_.ReleaseBuffer(buffer);
}

TEST_F(BlockCache, OfTheBaseCachesNothingByItself) {
  AtBlock().dataset<float>("res", {1}, {1});
  EXPECT_EQ(block_.CacheData(manager_, file_.path().c_str(), 0), 1);
  EXPECT_FALSE(block_.IsDatasetCached("res"));
}

}  // namespace
