// Properties blocks as a filer reads, allocates and frees one of them. Its list is in filer_properties_list_test, the
// values for a host in filer_property_values_test, the reading of a block in tests/result/properties_*_test. Leaks are the
// sanitizers' to find.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "filer/stored_properties.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "support/packed_dataset.h"

namespace orv_test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kHeader = 1, kData = 2, kBoth = 3;

/// A block that finds itself by its names.
class FilerPropertiesBlock : public OrvTest {
 protected:
  explicit FilerPropertiesBlock(ForgedModel::Layout layout = ForgedModel::kSingle) : file_(layout) {
    block_.SetEntityAndVarName("SECURED_NODE", "COORDINATE");
  }
  ~FilerPropertiesBlock() override { ORVFiler(nullptr).ClearProperty(&block_); }

  /// As the file stands. A block of the single layout is found by its path.
  int Read(int sections, int state = 0) {
    if (block_.GetBlkPath().empty()) block_.SetBlkPath(file_.BlockPath());
    return ORVFiler(file_.path().c_str()).ReadProperty(&block_, sections, state);
  }
  std::vector<int> Ids() const { return Of(static_cast<const int*>(block_.m_entid), block_.m_nent); }
  std::vector<int> Ints() const { return Of(block_.m_iparam, block_.m_nent * block_.m_nbint); }
  std::vector<float> Floats() const { return Of(block_.m_fparam, block_.m_nent * block_.m_nbfloat); }
  template <class T>
  static std::vector<T> Of(const T* array, std::int64_t count) {
    return {array, array + count};
  }

  void ExpectNoArrays() const {
    EXPECT_EQ(block_.m_entid, nullptr);
    EXPECT_EQ(block_.m_iparam, nullptr);
    EXPECT_EQ(block_.m_fparam, nullptr);
    EXPECT_EQ(block_.m_cparam, nullptr);
  }

  PropertiesFile file_;
  ORVProperties block_;
};

class FilerProperties : public FilerPropertiesBlock, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  FilerProperties() : FilerPropertiesBlock(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerProperties, testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

// ---- Reading

TEST_P(FilerProperties, AreReadWithArraysOfTheirOwn) {
  file_.Add();
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_nent, 2);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
  EXPECT_THAT(Ints(), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(Floats(), ElementsAre(0.5F, 1.5F));
  EXPECT_EQ(std::string(block_.m_cparam, 13), std::string("abcde f  ghi") + '\0');
}

TEST_P(FilerProperties, AreReadInTwoGoes) {
  file_.Add();
  ASSERT_EQ(Read(kHeader), 0);
  EXPECT_EQ(block_.m_nent, 2);
  EXPECT_EQ(block_.m_nbint, 2);
  EXPECT_EQ(block_.m_length, 3);
  ExpectNoArrays();
  ASSERT_EQ(Read(kData), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
  EXPECT_THAT(Ints(), ElementsAre(1, 2, 3, 4));
}

TEST_P(FilerProperties, OfAStateAreReadThere) {
  file_.Add({.section = kState1});
  file_.Add({.section = kState2, .ids = {7, 8, 9}, .ints = {1, 2, 3, 4, 5, 6}, .floats = {1, 2, 3}});
  block_.SetBlkPath(file_.BlockPath({.section = kState1}));
  ASSERT_EQ(Read(kBoth, 2), 0);
  EXPECT_THAT(Ids(), ElementsAre(7, 8, 9));
  ORVFiler(nullptr).ClearProperty(&block_);
  EXPECT_EQ(Read(kBoth, 3), 1);
  EXPECT_EQ(Read(kBoth, 0), 1);
  ExpectNoArrays();
}

TEST_F(FilerPropertiesBlock, OfAHeaderAloneLoseTheirRecordBuffersAndKeepTheIds) {
  file_.Add();
  int ints[4] = {}, ids[2] = {};
  float floats[2] = {};
  char texts[13] = {};
  block_.m_entid = ids;
  block_.m_iparam = ints;
  block_.m_fparam = floats;
  block_.m_cparam = texts;
  ASSERT_EQ(Read(kHeader), 0);
  EXPECT_EQ(block_.m_entid, ids);
  block_.m_entid = nullptr;
  ExpectNoArrays();
}

TEST_F(FilerPropertiesBlock, OfDataAloneGetNewArraysInPlaceOfTheHostsOwn) {
  file_.Add();
  ASSERT_EQ(Read(kHeader), 0);
  std::vector<int> ints(4, -1), ids(2, -1);
  block_.m_entid = ids.data();
  block_.m_iparam = ints.data();
  ASSERT_EQ(Read(kData), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
  EXPECT_THAT(Ints(), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(ids, Each(-1));
  EXPECT_THAT(ints, Each(-1));
}

TEST_F(FilerPropertiesBlock, WithoutRecordsHaveIdsOnly) {
  file_.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE", {5, 6, 7}));
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_THAT(Ids(), ElementsAre(5, 6, 7));
  EXPECT_EQ(block_.m_iparam, nullptr);
  EXPECT_EQ(block_.m_fparam, nullptr);
  EXPECT_EQ(block_.m_cparam, nullptr);
}

TEST_F(FilerPropertiesBlock, HaveTextsWhereBothTheirCountAndTheirLengthAreSet) {
  file_.Add().integer32("nbstring", 0);
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_cparam, nullptr);
  ORVFiler(nullptr).ClearProperty(&block_);
  file_.Header().integer32("nbstring", 2).integer32("length", 0);
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_cparam, nullptr);
}

TEST_F(FilerPropertiesBlock, HaveZerosWhereTheFileHasLess) {
  file_.Add();
  file_.Data().drop("entid").texts("cparam", 3, {1}, {"abc"});
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_THAT(Ids(), ElementsAre(0, 0));
  EXPECT_EQ(std::string(block_.m_cparam, 13), "abc" + std::string(10, '\0'));
}

TEST_F(FilerPropertiesBlock, AreIntegersOfFourBytesWhateverWasAskedForBefore) {
  file_.Add();
  file_.Data().dataset<std::int64_t>("entid", {2}, {11, 12});
  for (const int sections : {kBoth, kData}) {
    block_.m_entidType = ORV_LONG;
    ASSERT_EQ(Read(sections), 0);
    EXPECT_EQ(block_.m_entidType, ORV_INT);
    EXPECT_THAT(Ids(), ElementsAre(11, 12));
    ORVFiler(nullptr).ClearProperty(&block_);
  }
}

TEST_F(FilerPropertiesBlock, WithoutEntitiesHaveAHeaderButNoData) {
  file_.Add().integer("nent", 0);
  EXPECT_EQ(Read(kHeader), 0);
  EXPECT_EQ(block_.m_nbint, 2);
  EXPECT_EQ(Read(kData), 1);
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

TEST_F(FilerPropertiesBlock, AreNotReadWithoutBlockSectionOrFile) {
  file_.Add();
  block_.m_nbint = 7;
  EXPECT_EQ(ORVFiler(file_.path().c_str()).ReadProperty(nullptr, kBoth, 0), 1);
  EXPECT_EQ(Read(0), 1);
  EXPECT_EQ(Read(4), 1);
  EXPECT_EQ(block_.m_nbint, 7);  // nothing was begun
  EXPECT_EQ(ORVFiler(nullptr).ReadProperty(&block_, kBoth, 0), 1);
  EXPECT_EQ(ORVFiler(TempPath("missing.orv").c_str()).ReadProperty(&block_, kHeader, 0), 1);
  EXPECT_EQ(block_.m_nbint, 0);  // forgotten before the file was looked at
  ExpectNoArrays();
}

TEST_F(FilerPropertiesBlock, FailInSilenceAndLeakNothing) {
  const Messages messages;
  for (const char* name : {"iparam", "fparam", "cparam"}) {
    file_.Add();
    file_.Data().drop(name);
    EXPECT_EQ(Read(kBoth), 1) << name;
    ExpectNoArrays();
    EXPECT_EQ(Read(kData), 1) << name;
    ExpectNoArrays();
  }
  file_.Add().drop("nbid");
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  EXPECT_THAT(messages.all(), IsEmpty());
}

// ---- Hostile files

TEST_F(FilerPropertiesBlock, WithNegativeCountsFail) {
  for (const char* name : {"nbint", "nbfloat", "nbstring", "length"}) {
    for (const int count : {-1, -2, INT_MIN}) {
      file_.Add().integer32(name, count);
      EXPECT_EQ(Read(kBoth), 1) << name << count;
      ExpectNoArrays();
    }
  }
  for (const std::int64_t count : {std::int64_t{-1}, INT64_MIN}) {
    file_.Add().integer("nent", count);
    EXPECT_EQ(Read(kBoth), 1) << count;
    ExpectNoArrays();
  }
}

TEST_F(FilerPropertiesBlock, WithCountsThatNothingInTheFileBacksFail) {
  for (const std::int64_t count : {INT64_MAX, std::int64_t{1} << 62, std::int64_t{1} << 32, std::int64_t{17} << 20}) {
    file_.Add().integer("nent", count);
    EXPECT_EQ(Read(kBoth), 1) << count;
    ExpectNoArrays();
  }
  for (const char* name : {"nbint", "nbfloat", "nbstring", "length"}) {
    file_.Add().integer32(name, INT_MAX);
    EXPECT_EQ(Read(kBoth), 1) << name;
    ExpectNoArrays();
  }
}

/// Extents without bytes: HDF5 reads zeros from such a dataset.
void ClaimExtents(hid_t here, const char* name, hsize_t count) {
  const Id space(H5Screate_simple(1, &count, nullptr), "space");
  const Id dataset(H5Dcreate2(here, name, H5T_NATIVE_INT, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
}

TEST_P(FilerProperties, WithExtentsThatHaveNoBytesFail) {
  constexpr std::int64_t kCount = std::int64_t{1} << 30;
  file_.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE")).integer("nent", kCount);
  file_.Data().drop("entid").raw([](hid_t here) { ClaimExtents(here, "entid", kCount); });
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

TEST_P(FilerProperties, OfMoreThan64MiBAreReadWhereTheFileHasThem) {
  constexpr int kCount = (16 << 20) + 1;  // 64 MiB and four bytes of ids
  file_.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE", std::vector<int>(kCount, 5)));
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[kCount - 1], 5);
}

TEST_P(FilerProperties, OfMoreThan64MiBAreReadHoweverLittleTheFileHasOfThem) {
  constexpr int kCount = 9000000;  // 36 MB of ids and as much of one number
  std::vector<int> numbers(kCount);
  std::iota(numbers.begin(), numbers.end(), 1);
  file_.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE", numbers)).integer32("nbint", 1);
  numbers.assign(kCount, 7);
  file_.Data().raw([&](hid_t here) { AddPacked(here, "iparam", H5T_NATIVE_INT, {kCount, 1}, numbers.data()); });
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[kCount - 1], kCount);
  EXPECT_EQ(block_.m_iparam[kCount - 1], 7);
}

TEST_F(FilerPropertiesBlock, InWhosePlaceIsABlockOfAnotherKindFail) {
  file_.Add();
  block_.m_nent = 2;
  file_.Header().integer("block", 1000);
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

// ---- Freeing

TEST_F(FilerPropertiesBlock, ClearLeavesNoArraysAndAllCounts) {
  file_.Add();
  ASSERT_EQ(Read(kBoth), 0);
  ORVFiler filer(nullptr);
  filer.ClearProperty(&block_);
  ExpectNoArrays();
  EXPECT_EQ(block_.m_nent, 2);
  EXPECT_EQ(block_.m_nbint, 2);
  filer.ClearProperty(&block_);  // and again
  filer.ClearProperty(nullptr);
}

class FilerPropertiesClear : public OrvTest {};

TEST_F(FilerPropertiesClear, FreesNothingThatTheCountsDoNotHave) {
  int own[2] = {};
  float floats[2] = {};
  char texts[2] = {};
  ORVProperties block;
  block.m_entid = block.m_iparam = own;
  block.m_nbint = 1;
  ORVFiler filer(nullptr);
  filer.ClearProperty(&block);  // no entities: all stays
  EXPECT_EQ(block.m_entid, own);
  EXPECT_EQ(block.m_iparam, own);

  for (const auto& [length, texts_each] : {std::pair{0, 1}, std::pair{1, 0}}) {
    block.m_nent = 2;
    block.m_entid = std::calloc(2, sizeof(int));
    block.m_nbint = 0;
    block.m_length = length;
    block.m_nbstring = texts_each;
    block.m_iparam = own;
    block.m_fparam = floats;
    block.m_cparam = texts;
    filer.ClearProperty(&block);
    EXPECT_EQ(block.m_entid, nullptr);
    EXPECT_EQ(block.m_iparam, nullptr);
    EXPECT_EQ(block.m_fparam, nullptr);
    EXPECT_EQ(block.m_cparam, nullptr);
  }
}

}  // namespace
}  // namespace orv_test
