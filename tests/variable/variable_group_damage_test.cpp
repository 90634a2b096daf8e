// Groups of variables of which something is missing, damaged, or only claimed. The sound ones are in
// variable_group_block_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orvio/orv_variable_grp.h"
#include "support/forged_model.h"
#include "support/orv_test.h"
#include "support/raw_hdf5.h"
#include "variable/variable_group_discovery.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgedModel;
using testing::ElementsAre;

constexpr char kLoads[] = "/post/constant/variablegroup/LOADS/orvblock";

/// The groups of a file, freed with this.
class FoundGroups {
 public:
  explicit FoundGroups(ForgedFile& file) { EXPECT_EQ(orvio::ReadVariableGroups(file.path().c_str(), groups_), 0); }
  FoundGroups(const FoundGroups&) = delete;
  FoundGroups& operator=(const FoundGroups&) = delete;
  ~FoundGroups() {
    for (ORVVariableGrp* group : groups_) {
      orvio::FreeBuffers(*group);
      delete group;
    }
  }

  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const ORVVariableGrp* group : groups_) names.emplace_back(group->m_grpName);
    return names;
  }
  const ORVVariableGrp& operator[](std::size_t place) const { return *groups_.at(place); }

 private:
  std::vector<ORVVariableGrp*> groups_;
};

class VariableGroupDamage : public orv_test::OrvTest {
 protected:
  VariableGroupDamage() {
    model_.group("FIRST", 1, {{"A", 1, 0}});
    model_.group("LOADS", 9, {{"FORCE", 3, 0}, {"MOMENT", 6, 3}});
    model_.group("ZLAST", 2, {{"B", 2, 0}});
  }

  ForgedFile& Loads() { return model_.file().at(kLoads); }

  /// Many keys, all of which are there.
  void MakeLoadsOf(std::size_t count) {
    Loads().integer("nvar", static_cast<std::int64_t>(count));
    Loads().dataset<std::int32_t>("cnt", {count}, std::vector<std::int32_t>(count, 1));
    Loads().dataset<std::int32_t>("offs", {count}, std::vector<std::int32_t>(count, 2));
    Loads().texts("varkey", 256, {count}, std::vector<std::string>(count, "KEY"));
  }

  ForgedModel model_;
};

TEST_F(VariableGroupDamage, OfOneGroupLeavesTheOthersAsTheyAre) {
  const std::vector<std::function<void(ForgedFile&)>> damages = {
      [](ForgedFile& loads) { loads.drop("ncoo"); },
      [](ForgedFile& loads) { loads.drop("varkey"); },
      [](ForgedFile& loads) { loads.retype("cnt"); },
      [](ForgedFile& loads) { loads.integer("nvar", 0); },
  };
  for (std::size_t i = 0; i < damages.size(); ++i) {
    ForgedModel model;
    model.group("FIRST", 1, {{"A", 1, 0}}).group("LOADS", 9, {{"FORCE", 3, 0}}).group("ZLAST", 2, {{"B", 2, 0}});
    damages[i](model.file().at(kLoads));
    const FoundGroups groups(model.file());
    EXPECT_THAT(groups.names(), ElementsAre("FIRST", "ZLAST")) << i;
    EXPECT_STREQ(groups[1].m_pKeys, "B") << i;
  }
}

/// Without a header a walk hands over the data alone, which are not those of the group before.
TEST_F(VariableGroupDamage, OfAHeaderThatIsMissingLeavesTheGroupOut) {
  ForgedModel model(ForgedModel::kSplit);
  model.group("FIRST", 1, {{"A", 1, 0}}).group("LOADS", 1, {{"B", 1, 0}}).group("MIDDLE", 2, {{"C", 2, 0}});
  model.file().at("/post/constant/variablegroup/LOADS").drop("header");
  const FoundGroups groups(model.file());
  ASSERT_THAT(groups.names(), ElementsAre("FIRST", "MIDDLE"));
  EXPECT_STREQ(groups[0].m_pKeys, "A");
  EXPECT_STREQ(groups[1].m_pKeys, "C");
}

TEST_F(VariableGroupDamage, OfDataThatCannotBeReadDoesNotPassTheHeaderOn) {
  ForgedModel model(ForgedModel::kSplit);
  model.group("FIRST", 1, {{"A", 1, 0}}).group("LOADS", 1, {{"B", 1, 0}}).group("MIDDLE", 2, {{"C", 2, 0}});
  model.file().at("/post/constant/variablegroup/FIRST/data").drop("varkey");
  model.file().at("/post/constant/variablegroup/LOADS").drop("header");
  const FoundGroups groups(model.file());
  EXPECT_THAT(groups.names(), ElementsAre("MIDDLE"));
}

TEST_F(VariableGroupDamage, OfDataThatAreNoGroupDoesNotPassTheHeaderOn) {
  ForgedModel model(ForgedModel::kSplit);
  model.group("FIRST", 1, {{"A", 1, 0}}).group("LOADS", 1, {{"B", 1, 0}}).group("MIDDLE", 2, {{"C", 2, 0}});
  model.file().at("/post/constant/variablegroup/FIRST").drop("data").dataset<std::int32_t>("data", {1}, {1});
  model.file().at("/post/constant/variablegroup/LOADS").drop("header");
  const FoundGroups groups(model.file());
  EXPECT_THAT(groups.names(), ElementsAre("MIDDLE"));
}

TEST_F(VariableGroupDamage, EndsTheReadingOfTheData) {
  int counts[] = {-1, -1}, offsets[] = {-1, -1};
  char keys[2 * 256 + 1] = {};
  ORVVariableGrp group;
  Loads().drop("offs");
  ASSERT_EQ(group.ReadBlockAt(model_.path().c_str(), 0, 1, ORV_READ_HEADER), 0);
  group.m_pCnt = counts;
  group.m_pOffs = offsets;
  group.m_pKeys = keys;
  EXPECT_EQ(group.ReadBlockAt(model_.path().c_str(), 0, 1, ORV_READ_DATA), 1);
  EXPECT_THAT(counts, ElementsAre(3, 6));
  EXPECT_THAT(offsets, ElementsAre(-1, -1));
  EXPECT_STREQ(keys, "");
}

TEST_F(VariableGroupDamage, OfAKeyOfFullWidthIsItsLastByte) {
  Loads().texts("varkey", 256, {2}, {std::string(256, 'k'), "MOMENT"});
  const FoundGroups groups(model_.file());
  EXPECT_EQ(std::string(groups[1].m_pKeys), std::string(255, 'k'));
  EXPECT_STREQ(groups[1].m_pKeys + 256, "MOMENT");
}

TEST_F(VariableGroupDamage, IsNoKeyOfAnotherWidth) {
  Loads().texts("varkey", 64, {2}, {"FORCE", "MOMENT"});
  const FoundGroups groups(model_.file());
  EXPECT_THAT(groups.names(), ElementsAre("FIRST", "ZLAST"));
}

TEST_F(VariableGroupDamage, IsNotToListManyKeysThatAreThere) {
  MakeLoadsOf(5000);
  const FoundGroups groups(model_.file());
  ASSERT_THAT(groups.names(), ElementsAre("FIRST", "LOADS", "ZLAST"));
  EXPECT_EQ(groups[1].m_nvar, 5000);
  EXPECT_EQ(groups[1].m_pCnt[4999], 1);
  EXPECT_EQ(groups[1].m_pOffs[4999], 2);
  EXPECT_STREQ(groups[1].m_pKeys + 4999 * 256, "KEY");
}

/// A dataset that has extents and no bytes; HDF5 reads zeros from it.
void MakeUnwritten(hid_t here, const char* name, const orv_test::Id& type, hsize_t count) {
  const hsize_t chunk = 100;
  const orv_test::Id space(H5Screate_simple(1, &count, nullptr), "space");
  const orv_test::Id list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
  orv_test::Check(H5Pset_chunk(list.get(), 1, &chunk), "chunk");
  const orv_test::Id dataset(H5Dcreate2(here, name, type.get(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                             name);
}

TEST_F(VariableGroupDamage, IsToListManyKeysThatTheFileOnlyClaims) {
  constexpr hsize_t kKeys = 300000;  // more than 64 MiB
  Loads().integer("nvar", kKeys).drop("cnt").drop("offs").drop("varkey").raw([](hid_t here) {
    const orv_test::Id number(H5Tcopy(H5T_NATIVE_INT), "type");
    const orv_test::Id text(H5Tcopy(H5T_C_S1), "type");
    orv_test::Check(H5Tset_size(text.get(), 256), "width");
    MakeUnwritten(here, "cnt", number, kKeys);
    MakeUnwritten(here, "offs", number, kKeys);
    MakeUnwritten(here, "varkey", text, kKeys);
  });
  const FoundGroups groups(model_.file());
  EXPECT_THAT(groups.names(), ElementsAre("FIRST", "ZLAST"));
}

}  // namespace
