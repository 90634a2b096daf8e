// Finding all variables of a file. The reading of one is in variable_header_test and variable_data_test.

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <vector>

#include "variable/forged_variable.h"
#include "variable/variable_discovery.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeKeyed;
using orv_test::ForgeUnkeyed;
using orv_test::kSingleGroup;
using orv_test::kSplitData;
using orv_test::kSplitHeader;

class VariableDiscovery : public orv_test::OrvTest {
 protected:
  ~VariableDiscovery() override {
    for (ORVVariable* variable : found_) {
      orvio::FreeBuffers(*variable);
      delete variable;
    }
  }

  int Read(ForgedFile& file) { return orvio::ReadVariables(file.path().c_str(), found_); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const ORVVariable* variable : found_) names.emplace_back(variable->m_varnam);
    return names;
  }

  std::vector<ORVVariable*> found_;
};

/// Another keyed variable of one component without optional attributes.
void AddPlain(ForgedFile& file, const std::string& key) {
  file.at("/post/constant/variable/" + key + "/orvblock").integer("block", 30).text("varnam", "name of " + key);
  file.integer("ncoo", 1).integer("rank", 0).text("varkey", key);
}

using Texts = std::vector<std::string>;

TEST_F(VariableDiscovery, ReadsAKeyedVariableWithItsTables) {
  ForgedFile file = ForgeKeyed();
  ASSERT_EQ(Read(file), 0);
  ASSERT_EQ(found_.size(), 1U);
  const ORVVariable& variable = *found_[0];
  EXPECT_STREQ(variable.m_varkey, "ZPS:Stress");
  EXPECT_EQ(variable.GetBlkPath(), kSingleGroup);
  EXPECT_EQ(variable.m_pUbid[2], 13);
  EXPECT_EQ(variable.m_pVmap[5], 6.0F);
  EXPECT_EQ(std::string(variable.m_pSubscr, 5), "XXYYY");
}

TEST_F(VariableDiscovery, ReadsAnUnkeyedVariableWithItsTables) {
  ForgedFile file = ForgeUnkeyed();
  ASSERT_EQ(Read(file), 0);
  ASSERT_EQ(found_.size(), 1U);
  const ORVVariable& variable = *found_[0];
  EXPECT_STREQ(variable.m_varnam, "STRESS");
  EXPECT_EQ(variable.GetBlkPath(), "/post/constant/variables/STRESS");
  EXPECT_STREQ(variable.m_pCname + 256, "  second one");
  EXPECT_EQ(variable.m_pUdid[1], 22);
}

TEST_F(VariableDiscovery, GivesEachVariableTablesOfItsOwnInOrderOfTheirNames) {
  ForgedFile file = ForgeKeyed();
  AddPlain(file, "B");
  AddPlain(file, "A");
  ASSERT_EQ(Read(file), 0);
  EXPECT_EQ(Names(), (Texts{"name of A", "name of B", "Stress"}));
  EXPECT_NE(found_[0]->m_pMbunit, found_[1]->m_pMbunit);
}

TEST_F(VariableDiscovery, AppendsToWhatIsThere) {
  ForgedFile file = ForgeKeyed();
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(found_.size(), 2U);
}

TEST_F(VariableDiscovery, AVariableDoesNotInheritWhatItLacks) {
  ForgedFile file = ForgeKeyed();
  AddPlain(file, "zzz");
  ASSERT_EQ(Read(file), 0);
  ASSERT_EQ(Names(), (Texts{"Stress", "name of zzz"}));
  const ORVVariable& plain = *found_[1];
  EXPECT_EQ(plain.m_ndim, 0);
  EXPECT_STREQ(plain.m_varclass, "");
  EXPECT_STREQ(plain.m_type, "");
  EXPECT_EQ(plain.m_lenb, 0);
  EXPECT_EQ(plain.m_subslen, 0);
  EXPECT_EQ(plain.m_lvmap, 0);
  EXPECT_EQ(plain.m_tensor, 0);
  EXPECT_EQ(plain.m_pVmap, nullptr);
  EXPECT_EQ(plain.m_pSubscr, nullptr);
}

TEST_F(VariableDiscovery, LeavesOutAVariableWithoutComponents) {
  ForgedFile file = ForgeKeyed();
  AddPlain(file, "zzz");
  file.at(kSingleGroup).integer("ncoo", 0);
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(Names(), Texts{"name of zzz"});
}

TEST_F(VariableDiscovery, LeavesOutWhatCannotBeReadAndGoesOn) {
  for (const char* name : {"block", "varnam", "ncoo", "rank", "subscr", "vmap"}) {
    ForgedFile file = ForgeKeyed();
    AddPlain(file, "zzz");
    file.at(kSingleGroup).drop(name);
    found_.clear();
    EXPECT_EQ(Read(file), 0);
    EXPECT_EQ(Names(), Texts{"name of zzz"}) << name;
    for (ORVVariable* variable : found_) {
      orvio::FreeBuffers(*variable);
      delete variable;
    }
    found_.clear();
  }
}

TEST_F(VariableDiscovery, LeavesOutAnUnkeyedVariableOfTheSingleLayout) {
  ForgedFile file = ForgeKeyed();
  file.drop("varkey");
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
}

TEST_F(VariableDiscovery, LeavesOutHostileCounts) {
  struct Fault {
    const char* name;
    std::int64_t value;
  };
  for (const Fault& fault :
       {Fault{"ncoo", -1}, Fault{"ncoo", INT64_MIN}, Fault{"ncoo", INT64_MAX}, Fault{"ncoo", INT_MAX},
        Fault{"ncoo", 100000000}, Fault{"ncoo", 3}, Fault{"subslen", 6}, Fault{"subslen", INT_MAX},
        Fault{"subslen", INT64_MAX}, Fault{"ndim", 4}, Fault{"ndim", 500000000}}) {
    ForgedFile file = ForgeKeyed();
    file.integer(fault.name, fault.value);
    EXPECT_EQ(Read(file), 0);
    EXPECT_TRUE(found_.empty()) << fault.name << " " << fault.value;
  }
}

TEST_F(VariableDiscovery, KeepsAVariableOfNegativeLabelLengthForALaterReport) {
  ForgedFile file = ForgeKeyed();
  file.integer("subslen", -7);
  EXPECT_EQ(Read(file), 0);
  ASSERT_EQ(found_.size(), 1U);
  EXPECT_EQ(found_[0]->m_subslen, -7);
}

TEST_F(VariableDiscovery, LeavesOutBadUnitCounts) {
  ForgedFile file = ForgeKeyed();
  file.dataset<std::int32_t>("mbunit", {2}, {-1, 1});
  EXPECT_EQ(Read(file), 0);
  file.dataset<std::int32_t>("mbunit", {2}, {15, 0});
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
}

/// A column of 300,000 ints, which takes more than 64 MiB of component names in memory.
TEST_F(VariableDiscovery, ReadsMoreThan64MebibytesWhereTheFileHoldsThem) {
  constexpr int kMany = 300000;
  ForgedFile file("many");
  file.at("/post/constant/variable/K/orvblock").integer("block", 30).text("varnam", "many").text("varkey", "K");
  file.integer("ncoo", kMany).integer("rank", 0);
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
  file.dataset<std::int32_t>("mbunit", {kMany}, std::vector<std::int32_t>(kMany, 1));
  EXPECT_EQ(Read(file), 0);
  ASSERT_EQ(found_.size(), 1U);
  EXPECT_EQ(found_[0]->m_pMbunit[kMany - 1], 1);
}

TEST_F(VariableDiscovery, ReadsMoreThan64MebibytesOfTheSplitLayoutToo) {
  constexpr int kMany = 300000;
  ForgedFile file = ForgeUnkeyed();
  file.integer("ncoo", kMany).at(kSplitData);
  for (const char* name : {"mbunit", "mdunit", "ubid", "ubexp", "udid", "udexp"}) file.drop(name);
  file.dataset<std::int32_t>("cid", {kMany}, std::vector<std::int32_t>(kMany, 9));
  file.texts("cname", 256, {kMany}, Texts(kMany, "c"));
  EXPECT_EQ(Read(file), 0);
  ASSERT_EQ(found_.size(), 1U);
  EXPECT_EQ(found_[0]->m_pCid[kMany - 1], 9);
  EXPECT_STREQ(found_[0]->m_pCname + (kMany - 1) * 256, "c");
}

/// Many variables of a size that one of them may have on trust would take gigabytes, and as much for their handles.
TEST_F(VariableDiscovery, TakesOnTrustNoMoreOfAllVariablesThanOfOne) {
  constexpr int kMany = 200000;
  ForgedFile file = ForgeKeyed();
  for (const char* key : {"A", "B", "C", "D"}) AddPlain(file, key);
  for (const char* key : {"A", "B", "C"}) {
    file.at(std::string("/post/constant/variable/") + key + "/orvblock").integer("ncoo", kMany);
  }
  file.dataset<std::int32_t>("mbunit", {kMany}, std::vector<std::int32_t>(kMany, 1));
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(Names(), (Texts{"name of A", "name of C", "name of D", "Stress"}));  // that of C is there
}

/// Extents that no byte of the file stands behind: a chunked dataset that was never written.
TEST_F(VariableDiscovery, DoesNotBelieveExtentsWithoutData) {
  constexpr hsize_t kMany = 1000000000;
  ForgedFile file("claimed");
  file.at("/post/constant/variable/K/orvblock").integer("block", 30).text("varnam", "many").text("varkey", "K");
  file.integer("ncoo", kMany).integer("rank", 0).raw([&](hid_t here) {
    const hsize_t chunk = 1000;
    const orv_test::Id space(H5Screate_simple(1, &kMany, nullptr), "space");
    const orv_test::Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    H5Pset_chunk(list.get(), 1, &chunk);
    const orv_test::Id made(
        H5Dcreate2(here, "mbunit", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "mbunit");
  });
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
}

TEST_F(VariableDiscovery, AHeaderWithoutItsDataIsNoVariable) {
  ForgedFile file = ForgeUnkeyed();
  file.at("/post/constant/variables/STRESS").drop("data").soft_link("data", "/nowhere");
  file.at("/post/constant/variables/ZZZ").group("data");
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
}

TEST_F(VariableDiscovery, DataWithoutAHeaderDoNotPassForThoseOfAVariableThatWasLeftOut) {
  const std::function<void(ForgedFile&)> damages[] = {
      [](ForgedFile& header) { header.drop("rank"); },
      [](ForgedFile& header) { header.integer("ncoo", 100000000); },
  };
  for (const auto& damage : damages) {
    ForgedFile file = ForgeUnkeyed();
    file.at("/post/constant/variables/ZZZ").group("data");
    damage(file.at(kSplitHeader));
    EXPECT_EQ(Read(file), 0);
    EXPECT_TRUE(found_.empty());
  }
}

TEST_F(VariableDiscovery, WithoutAFileOrAGroupOfVariablesFails) {
  EXPECT_EQ(orvio::ReadVariables("/no/such/file", found_), 1);
  EXPECT_EQ(orvio::ReadVariables(nullptr, found_), 1);
  ForgedFile file("bare");
  EXPECT_EQ(Read(file), 1);
  EXPECT_TRUE(found_.empty());
}

TEST_F(VariableDiscovery, OfAFileWithoutVariablesFindsNone) {
  ForgedFile file("none");
  file.group("/post/constant/variable");
  EXPECT_EQ(Read(file), 0);
  EXPECT_TRUE(found_.empty());
}

}  // namespace
