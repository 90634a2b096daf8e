// Finding the properties blocks of a section or state. The reading of one is in properties_header_test and
// properties_data_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orvio/orv_properties.h"
#include "result/forged_result.h"
#include "result/properties_discovery.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedFile;
using orv_test::Layout;
using testing::ElementsAre;
using testing::IsEmpty;

class PropertiesDiscovery : public orv_test::OrvTest {
 protected:
  ~PropertiesDiscovery() override {
    for (const ORVProperties* block : found_) delete block;
  }

  void Discover(ForgedFile& file, int state) { orvio::ReadProperties(file.path().c_str(), state, found_); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const ORVProperties* block : found_) names.push_back(std::string(block->m_etyp) + "/" + block->m_etypvar);
    return names;
  }

  std::vector<ORVProperties*> found_;
};

constexpr char kConstant[] = "/post/constant", kMultistate[] = "/post/multistate";
constexpr char kState1[] = "/post/singlestate/state000000000001", kState2[] = "/post/singlestate/state000000000002";

/// Adds a block of a section or state and leaves at() at its header. The walk knows one of the split layout by its data.
ForgedFile& Add(ForgedFile& file, const std::string& section, const std::string& etyp, const std::string& name,
                int nent = 1, Layout layout = Layout::kSingle) {
  const std::string block = section + "/properties/" + etyp + "/" + name;
  const bool split = layout == Layout::kSplit;
  if (split) file.group(block + "/data");
  file.at(block + (split ? "/header" : "/orvblock")).integer("block", 500).text("etypprop", name).text("etyp", etyp);
  for (const char* count : {"length", "nbfloat", "nbid", "nbint", "nbstring"}) file.integer32(count, 0);
  return file.integer("nent", nent);
}

/// Blocks in every place of a file.
ForgedFile ForgeEverywhere(Layout layout) {
  ForgedFile file("properties");
  Add(file, kConstant, "PART", "LENGTH", 3, layout);
  Add(file, kConstant, "NODE", "MASS", 2, layout);
  Add(file, kState1, "NODE", "FIRST", 1, layout);
  Add(file, kState2, "NODE", "SECOND", 1, layout);
  Add(file, kMultistate, "NODE", "ALL", 1, layout);
  return file;
}

class PropertiesDiscoveryLayout : public PropertiesDiscovery, public testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, PropertiesDiscoveryLayout, testing::Values(Layout::kSplit, Layout::kSingle),
                         orv_test::NameOfLayout);

TEST_P(PropertiesDiscoveryLayout, LooksInTheSectionOrStateThatIsAskedFor) {
  ForgedFile file = ForgeEverywhere(GetParam());
  Discover(file, 0);
  EXPECT_THAT(Names(), ElementsAre("NODE/MASS", "PART/LENGTH"));
  Discover(file, 1);
  Discover(file, 2);
  Discover(file, -1);
  EXPECT_THAT(Names(), ElementsAre("NODE/MASS", "PART/LENGTH", "NODE/FIRST", "NODE/SECOND", "NODE/ALL"));
}

TEST_P(PropertiesDiscoveryLayout, KeepsTheHeaderAndThePathOfEachBlock) {
  ForgedFile file = ForgeEverywhere(GetParam());
  Discover(file, 0);
  ASSERT_EQ(found_.size(), 2U);
  EXPECT_EQ(found_[0]->GetKey(), 500);
  EXPECT_EQ(found_[0]->m_nent, 2);
  EXPECT_EQ(found_[1]->m_nent, 3);
  const std::string path = "/post/constant/properties/NODE/MASS";
  EXPECT_EQ(found_[0]->GetBlkPath(), GetParam() == Layout::kSplit ? path : path + "/orvblock");
  found_[0]->m_nent = 0;
  EXPECT_EQ(found_[0]->ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(found_[0]->m_nent, 2);
}

TEST_F(PropertiesDiscovery, PassesBlocksOfOtherKindsOver) {
  ForgedFile file("properties");
  file.at("/post/constant/entityresults/NODE/STRESS/orvblock").integer("block", 1000).text("etypvar", "STRESS");
  file.at("/post/constant/system/header").integer("block", 10).group("/post/constant/system/data");
  Add(file, kConstant, "NODE", "MASS");
  Discover(file, 0);
  EXPECT_THAT(Names(), ElementsAre("NODE/MASS"));
}

TEST_F(PropertiesDiscovery, PassesAnUnreadableBlockOverAndGoesOn) {
  ForgedFile file("properties");
  Add(file, kConstant, "A", "MASS").drop("nbint");
  Add(file, kConstant, "B", "MASS").drop("block");
  Add(file, kConstant, "C", "MASS");
  Discover(file, 0);
  EXPECT_THAT(Names(), ElementsAre("C/MASS"));
}

TEST_F(PropertiesDiscovery, ABlockDoesNotInheritWhatItLacks) {
  ForgedFile file("properties");
  Add(file, kConstant, "A", "MASS")
      .integer("nindex", 4)
      .integer("zoneid", 5)
      .text("etypzone", "Z")
      .integer32("indexic", 1);
  Add(file, kConstant, "B", "MASS");
  Discover(file, 0);
  ASSERT_EQ(found_.size(), 2U);
  EXPECT_EQ(found_[0]->m_nindex, 4);
  EXPECT_TRUE(found_[0]->IsIncremental());
  EXPECT_EQ(found_[1]->m_nindex, 0);
  EXPECT_EQ(found_[1]->m_zoneid, 0);
  EXPECT_STREQ(found_[1]->m_etypzone, "");
  EXPECT_FALSE(found_[1]->IsIncremental());
}

TEST_F(PropertiesDiscovery, TakesBlocksWithoutEntities) {
  ForgedFile file("properties");
  Add(file, kConstant, "NODE", "MASS", 0);
  Discover(file, 0);
  EXPECT_THAT(Names(), ElementsAre("NODE/MASS"));
}

TEST_F(PropertiesDiscovery, FindsNothingWhereThereIsNothing) {
  ForgedFile file("properties");
  const orv_test::Messages messages;
  for (const int state : {0, 1, -1}) Discover(file, state);
  orvio::ReadProperties("/no/such/file", 0, found_);
  orvio::ReadProperties(nullptr, 0, found_);
  EXPECT_THAT(found_, IsEmpty());
  EXPECT_THAT(messages.all(), IsEmpty());
}

}  // namespace
