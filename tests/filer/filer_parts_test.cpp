// The parts of a filer's file. The part block itself is tested in tests/entity.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <numeric>
#include <string>
#include <vector>

#include "entity/part_forge.h"
#include "orvio/orv_filer.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "support/packed_dataset.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The vectors hold something before each call.
class FilerParts : public OrvTest {
 protected:
  std::uint64_t Ask(const std::string& type = "PART", int state = 0) {
    ORVFiler filer(file_.path().c_str());
    return filer.GetPartInfo(type, ids_, names_, material_ids_, material_types_, state);
  }

  void ExpectNothing() const {
    EXPECT_THAT(ids_, IsEmpty());
    EXPECT_THAT(names_, IsEmpty());
    EXPECT_THAT(material_ids_, IsEmpty());
    EXPECT_THAT(material_types_, IsEmpty());
  }

  /// For a block that is not there.
  void ExpectNothingButTheNamesEmptied() const {
    EXPECT_THAT(ids_, ElementsAre(99));
    EXPECT_THAT(names_, IsEmpty());
    EXPECT_THAT(material_ids_, ElementsAre(99));
    EXPECT_THAT(material_types_, ElementsAre(99));
  }

  ForgedFile file_;
  std::vector<int> ids_ = {99}, material_ids_ = {99}, material_types_ = {99};
  std::vector<std::string> names_ = {"before"};
};

class FilerPartsLayout : public FilerParts, public ::testing::WithParamInterface<Layout> {
 protected:
  FilerPartsLayout() {
    AddParts(file_, kParts, GetParam());
    AddPartLists(file_, kParts, GetParam());
  }

  ForgedFile& Header() { return file_.at(PartPaths(kParts, GetParam()).header); }
  ForgedFile& Data() { return file_.at(PartPaths(kParts, GetParam()).data); }
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerPartsLayout, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FilerPartsLayout, AreToldWithNamesAndMaterials) {
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(names_, ElementsAre("hood", "fender"));
  EXPECT_THAT(material_ids_, ElementsAre(71, 91));
  EXPECT_THAT(material_types_, ElementsAre(24, 1));
}

TEST_P(FilerPartsLayout, AreToldByIdsAndNamesAlone) {
  ORVFiler filer(file_.path().c_str());
  EXPECT_EQ(filer.GetPartIdsAndNames("PART", ids_, names_, 0), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(names_, ElementsAre("hood", "fender"));
}

TEST_P(FilerPartsLayout, OfAStateAreThoseOfItsOwnBlock) {
  AddParts(file_, "/post/singlestate/state000000000001/parts/PART", GetParam());
  file_.at(PartPaths("/post/singlestate/state000000000001/parts/PART", GetParam()).data)
      .dataset<std::int32_t>("pid", {2}, {1, 2});
  EXPECT_EQ(Ask("PART", 1), 2U);
  EXPECT_THAT(ids_, ElementsAre(1, 2));
  EXPECT_EQ(Ask("PART", 2), 0U);
  EXPECT_THAT(ids_, ElementsAre(1, 2));  // those of before
  EXPECT_THAT(names_, IsEmpty());
}

TEST_P(FilerPartsLayout, WithoutMaterialIdsGiveAnEmptyListAndAllIds) {
  Data().drop("mid");
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(material_ids_, IsEmpty());
  EXPECT_THAT(material_types_, ElementsAre(24, 1));
}

TEST_P(FilerPartsLayout, WithoutMaterialTypesGiveAnEmptyListOfThese) {
  Data().drop("mtyp");
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(material_ids_, ElementsAre(71, 91));
  EXPECT_THAT(material_types_, IsEmpty());
}

TEST_P(FilerPartsLayout, WithoutTitlesHaveEmptyNames) {
  Data().drop("title");
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(names_, ElementsAre("", ""));
}

TEST_P(FilerPartsLayout, WithTitlesOfNoLengthHaveEmptyNames) {
  Header().integer32("length", 0);
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(names_, ElementsAre("", ""));
}

TEST_P(FilerPartsLayout, WithoutALengthHaveTitlesOf256Bytes) {
  Header().drop("length");
  Data().texts("title", 256, {2}, {"roof", std::string(256, 'x')});
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(names_, ElementsAre("roof", std::string(256, 'x')));
}

TEST_P(FilerPartsLayout, HaveNamesAsLongAsTheirSlot) {
  Header().integer32("length", 5000);
  Data().texts("title", 5000, {2}, {std::string(5000, 'a'), std::string(1024, 'b')});
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(names_, ElementsAre(std::string(5000, 'a'), std::string(1024, 'b')));
}

TEST_P(FilerPartsLayout, HaveNamesThatEndAtTheirFirstZeroByte) {
  Data().texts("title", 6, {2}, {std::string("ab\0cd ", 6), "      "});
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(names_, ElementsAre("ab", ""));
}

TEST_P(FilerPartsLayout, HaveTheirLongIdsMadeSmaller) {
  Data().dataset<std::int64_t>("pid", {2}, {7, 9}).dataset<std::int64_t>("mtyp", {2}, {1, 2});
  EXPECT_EQ(Ask(), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(material_types_, ElementsAre(1, 2));
}

TEST_P(FilerPartsLayout, MayBeAskedForByANameOfTheListThatTakesTheirNames) {
  const std::string type = "PARTS_OF_A_LONG_NAME_OF_THEIR_OWN";  // a copy of it is not kept in place
  AddParts(file_, "/post/constant/parts/" + type, GetParam());
  names_ = {type};
  ORVFiler filer(file_.path().c_str());
  EXPECT_EQ(filer.GetPartIdsAndNames(names_[0], ids_, names_, 0), 2U);
  EXPECT_THAT(ids_, ElementsAre(7, 9));
  EXPECT_THAT(names_, ElementsAre("", ""));
}

// ---- None

TEST_P(FilerPartsLayout, OfAnUnknownTypeAreNone) {
  EXPECT_EQ(Ask("BODY"), 0U);
  ExpectNothingButTheNamesEmptied();
  EXPECT_EQ(Ask(""), 0U);
  EXPECT_EQ(Ask("PART", -1), 0U);
  ExpectNothingButTheNamesEmptied();
}

TEST_P(FilerPartsLayout, OfATypeNameBeyondItsFieldAreLookedForByTheFirst256Bytes) {
  AddParts(file_, "/post/constant/parts/" + std::string(256, 'P'), GetParam());
  EXPECT_EQ(Ask(std::string(300, 'P')), 2U);
}

TEST_P(FilerPartsLayout, WithAHeaderThatCannotBeReadAreNone) {
  Header().drop("nindex");
  EXPECT_EQ(Ask(), 0U);
  ExpectNothingButTheNamesEmptied();
}

TEST_P(FilerPartsLayout, WithDataThatCannotBeReadAreNone) {
  Data().drop("pid");
  EXPECT_EQ(Ask(), 0U);
  ExpectNothing();
  Data().dataset<std::int32_t>("pid", {2}, {7, 9}).dataset<double>("mtyp", {2}, {1., 2.});
  EXPECT_EQ(Ask(), 0U);
  ExpectNothing();
}

TEST_P(FilerPartsLayout, ThatCannotBeReadAreToldByTheCountAlone) {
  const Messages messages;
  EXPECT_EQ(Ask("BODY"), 0U);
  Data().drop("pid");
  EXPECT_EQ(Ask(), 0U);
  Header().drop("npart");
  EXPECT_EQ(Ask(), 0U);
  EXPECT_THAT(messages.all(), IsEmpty());
}

TEST_P(FilerPartsLayout, WithCountsThatAreNotTheStoredOnesAreNone) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    Header().integer("npart", count);
    EXPECT_EQ(Ask(), 0U) << count;
    ExpectNothingButTheNamesEmptied();
  }
  for (const std::int64_t count : {std::int64_t{1}, std::int64_t{3}, std::int64_t{1} << 40, INT64_MAX}) {
    Header().integer("npart", count);
    EXPECT_EQ(Ask(), 0U) << count;
    ExpectNothing();
  }
}

TEST_P(FilerPartsLayout, WithTitlesOfAnotherWidthThanTheyTellAreNone) {
  for (const int length : {5, 7, -6, -1, INT32_MIN, INT32_MAX}) {
    Header().integer32("length", length);
    EXPECT_EQ(Ask(), 0U) << length;
    ExpectNothing();
  }
}

TEST_F(FilerParts, OfAMissingFileAreNone) {
  ORVFiler filer(TempPath("missing.orv").c_str());
  EXPECT_EQ(filer.GetPartInfo("PART", ids_, names_, material_ids_, material_types_, 0), 0U);
  ExpectNothingButTheNamesEmptied();
}

// ---- Many parts

/// A dataset of the type that claims so many elements and has the bytes of all or of none.
void AddClaimed(ForgedFile& file, const char* name, hsize_t count, hid_t type, bool stored) {
  file.raw([&](hid_t group) {
    const Id space(H5Screate_simple(1, &count, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_alloc_time(list.get(), stored ? H5D_ALLOC_TIME_EARLY : H5D_ALLOC_TIME_LATE), "time");
    const Id dataset(H5Dcreate2(group, name, type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
  });
}

constexpr hsize_t kMany = 2000000;  // with three numbers and a name each more than 64 MiB

TEST_F(FilerParts, OfALargeModelAreToldWhenTheFileHasThem) {
  AddParts(file_, kParts, Layout::kSingle).drop("pid").integer("npart", kMany);
  AddClaimed(file_, "pid", kMany, H5T_NATIVE_INT, true);
  EXPECT_EQ(Ask(), kMany);
  EXPECT_EQ(ids_.size(), kMany);
  EXPECT_EQ(names_.size(), kMany);
}

TEST_F(FilerParts, OfALargeModelAreToldHoweverLittleTheFileHasOfThem) {
  constexpr int kCount = 300000;
  std::vector<int> numbers(kCount);
  std::iota(numbers.begin(), numbers.end(), 1);
  std::string titles(kCount * 256, ' ');
  titles.replace(titles.size() - 256, 4, "last");
  AddParts(file_, kParts, Layout::kSingle).drop("pid").integer("npart", kCount);
  file_.raw([&](hid_t here) {
    AddPacked(here, "pid", H5T_NATIVE_INT, {kCount}, numbers.data());
    AddPacked(here, "title", TextType(256).get(), {kCount}, titles.data());
  });
  ASSERT_EQ(Ask(), 300000U);
  EXPECT_EQ(ids_.back(), kCount);
  EXPECT_EQ(names_.back(), "last");
}

TEST_F(FilerParts, ThatTheFileOnlyClaimsToHaveAreNone) {
  AddParts(file_, kParts, Layout::kSingle).drop("pid").integer("npart", kMany);
  AddClaimed(file_, "pid", kMany, H5T_NATIVE_INT, false);
  EXPECT_EQ(Ask(), 0U);
  ExpectNothing();
}

TEST_F(FilerParts, WithTitlesThatTheFileOnlyClaimsToHaveAreNone) {
  constexpr int kWidth = 40000000;  // two of them are more than 64 MiB
  AddParts(file_, kParts, Layout::kSingle).integer32("length", kWidth);
  const Id type(H5Tcopy(H5T_C_S1), "type");
  Check(H5Tset_size(type.get(), kWidth), "size");
  AddClaimed(file_, "title", 2, type.get(), false);
  EXPECT_EQ(Ask(), 0U);
  ExpectNothing();
}

}  // namespace
}  // namespace orv_test
