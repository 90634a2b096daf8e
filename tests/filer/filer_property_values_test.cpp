// The values of a property at a state, handed to a host in arrays of its own. Leaks are the sanitizers' to find.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "filer/stored_properties.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FilerPropertyValues : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  FilerPropertyValues() : file_(GetParam()) {}
  ~FilerPropertyValues() override { Free(); }

  /// Reads the list of the file as it stands.
  PropertiesFiler Listed() {
    PropertiesFiler filer(file_.path().c_str());
    filer.GetPropertiesBlocks(true);
    return filer;
  }

  /// The answers start as something else.
  int Get(PropertiesFiler& filer, int state, const char* etyp = "SECURED_NODE", const char* name = "COORDINATE") {
    Free();
    n_ids_ = n_ints_ = n_floats_ = 77;
    ids_ = ints_ = &elsewhere_;
    floats_ = &elsewhere_float_;
    (void)file_.path();
    return filer.GetPropertyValues(state, etyp, name, n_ids_, &ids_, n_ints_, &ints_, n_floats_, &floats_);
  }

  void ExpectNothing() const {
    EXPECT_EQ(n_ids_, 0);
    EXPECT_EQ(n_ints_, 0);
    EXPECT_EQ(n_floats_, 0);
    EXPECT_EQ(ids_, nullptr);
    EXPECT_EQ(ints_, nullptr);
    EXPECT_EQ(floats_, nullptr);
  }
  static void ExpectNoArrays(const ORVProperties& block) {
    EXPECT_EQ(block.m_entid, nullptr);
    EXPECT_EQ(block.m_iparam, nullptr);
    EXPECT_EQ(block.m_fparam, nullptr);
    EXPECT_EQ(block.m_cparam, nullptr);
  }

  std::vector<int> Ids() const { return {ids_, ids_ + n_ids_}; }
  std::vector<int> Ints() const { return {ints_, ints_ + n_ints_}; }
  std::vector<float> Floats() const { return {floats_, floats_ + n_floats_}; }

  PropertiesFile file_;
  int n_ids_ = 0, n_ints_ = 0, n_floats_ = 0;
  int *ids_ = nullptr, *ints_ = nullptr;
  float* floats_ = nullptr;

 private:
  void Free() {
    for (int* array : {ids_, ints_}) {
      if (array != &elsewhere_) std::free(array);
    }
    if (floats_ != &elsewhere_float_) std::free(floats_);
    ids_ = ints_ = nullptr;
    floats_ = nullptr;
  }

  int elsewhere_ = 0;
  float elsewhere_float_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerPropertyValues, testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

TEST_P(FilerPropertyValues, AreIdsIntegersAndFloatsInArraysOfTheCaller) {
  file_.Add();
  PropertiesFiler filer = Listed();
  ASSERT_EQ(Get(filer, 0), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
  EXPECT_THAT(Ints(), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(Floats(), ElementsAre(0.5F, 1.5F));
  ExpectNoArrays(*filer.GetPropertiesBlocks(false)[0]);
}

TEST_P(FilerPropertyValues, AreFoundWithoutRegardToCase) {
  file_.Add();
  PropertiesFiler filer = Listed();
  EXPECT_EQ(Get(filer, 0, "secured_NODE", "Coordinate"), 0);
  EXPECT_EQ(n_ids_, 2);
}

TEST_P(FilerPropertyValues, AreThoseOfTheStateThatIsAskedFor) {
  file_.Add({.section = kState1});
  file_.Add({.section = kState2, .ids = {7, 8, 9}, .nbint = 1, .ints = {5, 6, 7}, .floats = {1, 2, 3}});
  PropertiesFiler filer = Listed();
  ASSERT_EQ(Get(filer, 2), 0);
  EXPECT_THAT(Ids(), ElementsAre(7, 8, 9));
  EXPECT_THAT(Ints(), ElementsAre(5, 6, 7));
  EXPECT_THAT(Floats(), ElementsAre(1.0F, 2.0F, 3.0F));
  ASSERT_EQ(Get(filer, 1), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
}

TEST_P(FilerPropertyValues, AreIdsAloneWhereThereAreNoCounts) {
  file_.Add(IdsOnly("/post/constant", "SECURED_NODE", "COORDINATE", {4, 5}));
  PropertiesFiler filer = Listed();
  ASSERT_EQ(Get(filer, 0), 0);
  EXPECT_THAT(Ids(), ElementsAre(4, 5));
  EXPECT_EQ(n_ints_, 0);
  EXPECT_EQ(ints_, nullptr);
  EXPECT_EQ(n_floats_, 0);
  EXPECT_EQ(floats_, nullptr);
}

TEST_P(FilerPropertyValues, OfABlockWithoutEntitiesAreNone) {
  file_.Add();
  PropertiesFiler filer = Listed();
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    file_.Header().integer("nent", count);
    EXPECT_EQ(Get(filer, 0), 0) << count;
    ExpectNothing();
  }
}

TEST_P(FilerPropertyValues, OfAStateWithoutTheBlockFail) {
  file_.Add({.section = kState1});
  file_.Add({.section = kState2, .etyp = "NODE"});
  PropertiesFiler filer = Listed();
  const Messages messages;
  for (const int state : {2, 3, 0, -1}) {
    EXPECT_EQ(Get(filer, state), 1) << state;
    ExpectNothing();
  }
  EXPECT_THAT(messages.all(), IsEmpty());
}

TEST_P(FilerPropertyValues, WithoutNamesOrABlockOfThemFail) {
  file_.Add();
  PropertiesFiler filer = Listed();
  EXPECT_EQ(Get(filer, 0, nullptr), 1);
  ExpectNothing();
  EXPECT_EQ(Get(filer, 0, "SECURED_NODE", nullptr), 1);
  ExpectNothing();
  EXPECT_EQ(Get(filer, 0, "NODE"), 1);
  ExpectNothing();
  EXPECT_EQ(Get(filer, 0, "SECURED_NODE", "COORDINATES"), 1);
  ExpectNothing();
  PropertiesFiler unread(file_.path().c_str());  // the list is not read for the asking
  EXPECT_EQ(Get(unread, 0), 1);
  ExpectNothing();
}

TEST_P(FilerPropertyValues, AreThoseOfTheFirstBlockOfTheNames) {
  file_.Add();
  file_.Add({.section = kState1, .ids = {7, 8}});
  PropertiesFiler filer = Listed();
  ASSERT_EQ(filer.Names().size(), 2U);
  ASSERT_EQ(Get(filer, 0), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
}

TEST_P(FilerPropertyValues, NeedNoPlaceForWhatIsNotWanted) {
  file_.Add();
  PropertiesFiler filer = Listed();
  (void)file_.path();
  ASSERT_EQ(
      filer.GetPropertyValues(0, "SECURED_NODE", "COORDINATE", n_ids_, &ids_, n_ints_, nullptr, n_floats_, nullptr), 0);
  EXPECT_THAT(Ids(), ElementsAre(101, 102));
  EXPECT_EQ(filer.GetPropertyValues(0, "NODE", "COORDINATE", n_ids_, nullptr, n_ints_, nullptr, n_floats_, nullptr), 1);
}

TEST_P(FilerPropertyValues, FailWithAnyPartOfTheDataThatCannotBeRead) {
  file_.Add();
  PropertiesFiler filer = Listed();
  for (const char* name : {"iparam", "fparam", "cparam"}) {
    file_.Add();
    file_.Data().retype(name);
    EXPECT_EQ(Get(filer, 0), 1) << name;
    ExpectNothing();
    ExpectNoArrays(*filer.GetPropertiesBlocks(false)[0]);
  }
  file_.Add();
  file_.Header().drop("nbid");
  EXPECT_EQ(Get(filer, 0), 1);
  ExpectNothing();
}

TEST_P(FilerPropertyValues, OfCountsThatTheFileDoesNotHoldFail) {
  file_.Add();
  PropertiesFiler filer = Listed();
  for (const char* name : {"nbint", "nbfloat", "nbstring", "length"}) {
    for (const int count : {-1, INT_MIN, INT_MAX, 1 << 30}) {
      file_.Add().integer32(name, count);
      EXPECT_EQ(Get(filer, 0), 1) << name << count;
      ExpectNothing();
    }
  }
  for (const std::int64_t count : {std::int64_t{INT_MAX} + 1, std::int64_t{INT_MAX}, INT64_MAX, std::int64_t{3}}) {
    file_.Add().integer("nent", count);
    EXPECT_EQ(Get(filer, 0), 1) << count;
    ExpectNothing();
  }
}

// ---- The block of the list

TEST_P(FilerPropertyValues, LeaveTheirBlockWithTheHeaderOfTheirState) {
  file_.Add({.section = kState1});
  file_.Add({.section = kState2, .ids = {7, 8, 9}, .nbint = 1, .ints = {5, 6, 7}, .floats = {1, 2, 3}});
  PropertiesFiler filer = Listed();
  ORVProperties& block = *filer.GetPropertiesBlocks(false)[0];
  EXPECT_EQ(block.m_nent, 2);
  ASSERT_EQ(Get(filer, 2), 0);
  EXPECT_EQ(block.m_nent, 3);
  EXPECT_EQ(block.m_nbint, 1);
  ExpectNoArrays(block);
}

TEST_P(FilerPropertyValues, LeaveABlockThatHasArraysWithItsOwnHeader) {
  file_.Add({.section = kState1});
  file_.Add({.section = kState2, .ids = {7, 8, 9}, .nbint = 0, .ints = {}, .floats = {1, 2, 3}});
  PropertiesFiler filer = Listed();
  ORVProperties& block = *filer.GetPropertiesBlocks(false)[0];
  (void)file_.path();
  ASSERT_EQ(filer.ReadProperty(&block, 3, 1), 0);
  ASSERT_EQ(Get(filer, 2), 0);
  EXPECT_THAT(Ids(), ElementsAre(7, 8, 9));
  EXPECT_EQ(Get(filer, 3), 1);  // there is no such state
  EXPECT_EQ(block.m_nent, 2);
  EXPECT_EQ(block.m_nbint, 2);
  EXPECT_EQ(static_cast<int*>(block.m_entid)[1], 102);
  EXPECT_EQ(block.m_iparam[3], 4);
  filer.ClearProperty(&block);
}

TEST_P(FilerPropertyValues, OfAHeaderThatCannotBeReadLeaveTheirBlockAlone) {
  file_.Add({.section = kState1});
  file_.Add(IdsOnly(kState2, "SECURED_NODE", "COORDINATE", {7, 8, 9})).drop("etyp");
  PropertiesFiler filer = Listed();
  ORVProperties& block = *filer.GetPropertiesBlocks(false)[0];
  EXPECT_EQ(Get(filer, 2), 1);
  file_.Header({.section = kState2}).integer("block", 1000);
  EXPECT_EQ(Get(filer, 2), 1);
  ExpectNothing();
  EXPECT_EQ(block.GetKey(), 500);
  EXPECT_EQ(block.m_nent, 2);
  EXPECT_EQ(block.m_nbint, 2);
}

}  // namespace
}  // namespace orv_test
