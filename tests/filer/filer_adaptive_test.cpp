// Files with adaptive meshes: the collectors of fathers, read and written, and how a filer tells such a file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

// ---- Fathers that are read

class FilerFathers : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ~FilerFathers() override { Filer().CleanUpCollector(&block_); }

  void Add(const std::string& name, const std::vector<std::string>& types, const std::string& group = kCollectors) {
    AddCollectors(file_, group, name, GetParam(), types);
  }
  ORVFiler Filer() { return ORVFiler(file_.path().c_str()); }

  ForgedFile file_;
  ORVCollector block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerFathers, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FilerFathers, OfNodesAreNodes) {
  Add("NODE_FATHERS", {"NODE", "NODE"});
  ASSERT_EQ(Filer().ReadNodeFathers(&block_, 0), 0);
  EXPECT_STREQ(block_.m_etypcoll, "NODE_FATHERS");
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[4], 105);
  EXPECT_EQ(Filer().ReadShellFathers(nullptr, 0), 1);
}

TEST_P(FilerFathers, OfShellsAreShells) {
  Add("SHELL_FATHERS", {"SHELL", "SHELL"}, InState(1, "collector"));
  ASSERT_EQ(Filer().ReadShellFathers(&block_, 1), 0);
  EXPECT_STREQ(block_.m_etypcoll, "SHELL_FATHERS");
  EXPECT_EQ(block_.m_nenttot, 5);
}

TEST_P(FilerFathers, OfOtherTypesAnswerOneAndLeaveAnEmptyBlock) {
  Add("NODE_FATHERS", {"NODE", "SHELL"});
  Add("SHELL_FATHERS", {"NODE", "NODE"});
  EXPECT_EQ(Filer().ReadNodeFathers(&block_, 0), 1);
  EXPECT_EQ(block_.m_ncoll, 0);
  EXPECT_EQ(block_.m_entid, nullptr);
  EXPECT_EQ(Filer().ReadShellFathers(&block_, 0), 1);
  EXPECT_EQ(block_.m_ncoll, 0);
  EXPECT_EQ(block_.m_entid, nullptr);
}

TEST_P(FilerFathers, MayBeReadIntoOneBlockAfterAnother) {
  Add("NODE_FATHERS", {"NODE", "NODE"});
  Add("SHELL_FATHERS", {"SHELL", "SHELL"}, InState(1, "collector"));
  AddCollectors(file_, InState(2, "collector"), "SHELL_FATHERS", GetParam(), {"SHELL", "SHELL"}).integer("nindex", 4);
  ASSERT_EQ(Filer().ReadNodeFathers(&block_, 0), 0);
  Filer().CleanUpCollector(&block_);
  ASSERT_EQ(Filer().ReadShellFathers(&block_, 2), 0);
  EXPECT_STREQ(block_.m_etypcoll, "SHELL_FATHERS");
  EXPECT_EQ(block_.m_nindex, 4);
  Filer().CleanUpCollector(&block_);
  ASSERT_EQ(Filer().ReadShellFathers(&block_, 1), 0);
  EXPECT_EQ(block_.m_nindex, 0);
  Filer().CleanUpCollector(&block_);
  EXPECT_EQ(Filer().ReadShellFathers(&block_, 0), 1);
  ASSERT_EQ(Filer().ReadNodeFathers(&block_, 0), 0);
  EXPECT_STREQ(block_.m_etyp, "NODE");
}

TEST_P(FilerFathers, AreNotReadWithoutBlockOrFile) {
  Add("NODE_FATHERS", {"NODE", "NODE"});
  EXPECT_EQ(Filer().ReadNodeFathers(nullptr, 0), 1);
  EXPECT_EQ(ORVFiler(nullptr).ReadNodeFathers(&block_, 0), 1);
  EXPECT_EQ(ORVFiler(nullptr).ReadShellFathers(&block_, 0), 1);
  EXPECT_EQ(Filer().ReadShellFathers(&block_, 0), 1);
}

// ---- Fathers that are written

class FilerFathersWrite : public OrvTest {
 protected:
  FilerFathersWrite() : filer_(nullptr) {
    MaySilenceHdf5();
    source_.m_nindex = 2;
    source_.m_indexident = ident_;
    source_.m_indexval = values_;
  }

  /// Makes a file of a version with one state.
  void Make(_ORVVersion version) {
    path_ = TempPath("made.orv");
    ASSERT_EQ(filer_.InitForWriting(path_.c_str(), version, ORV_FILE_CREATE, false), 0);
    ORVEntAttribute nodes;  // its write makes the state
    std::strcpy(nodes.m_etyp, "NODE");
    ASSERT_EQ(filer_.WriteBlock(&nodes, 1, ORV_WRITE_HEADER), 0);
  }
  int Write(int state, int ncoll = 2, int ntyp = 2, int nenttot = 5) {
    return filer_.WriteNodeFathers(&source_, state, ncoll, idcoll_, ntyp, nent_, nenttot, entid_);
  }

  std::string path_;
  ORVFiler filer_;
  ORVCollector source_;
  int idcoll_[2] = {1, 2};
  int nent_[4] = {1, 2, 1, 1};
  int entid_[5] = {101, 102, 103, 104, 105};
  int ident_[2] = {1, 4};
  float values_[2] = {2.5F, 3.5F};
};

TEST_F(FilerFathersWrite, StoreACollectorOfTwoNodeTypes) {
  Make(ORV_VERSION_2_1);
  ASSERT_EQ(Write(0), 0);
  const RawFile raw(path_);
  const std::string block = "/post/constant/collector/NODE_FATHERS/orvblock";
  EXPECT_EQ(raw.attribute_text(block, "etypcoll"), Padded("NODE_FATHERS"));
  EXPECT_EQ(raw.attribute_int(block, "ncoll"), 2);
  EXPECT_EQ(raw.attribute_int(block, "ntyp"), 2);
  EXPECT_EQ(raw.attribute_int(block, "nenttot"), 5);
  EXPECT_EQ(raw.attribute_int(block, "nindex"), 0);
  EXPECT_THAT(raw.children(block), ElementsAre("entid", "etyp", "idcoll", "nent"));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/idcoll"), ElementsAre(1, 2));
  EXPECT_THAT(raw.texts(block + "/etyp"), ElementsAre(Padded("NODE"), Padded("NODE")));
  EXPECT_THAT(raw.shape(block + "/nent"), ElementsAre(2, 2));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/nent"), ElementsAre(1, 2, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/entid"), ElementsAre(101, 102, 103, 104, 105));
}

TEST_F(FilerFathersWrite, StoreTheIndexOfTheSourceInAState) {
  Make(ORV_VERSION_2_2);
  ASSERT_EQ(Write(1), 0);
  const RawFile raw(path_);
  const std::string block = InState(1, "collector/NODE_FATHERS/orvblock");
  EXPECT_EQ(raw.attribute_int(block, "nindex"), 2);
  EXPECT_THAT(raw.values<std::int32_t>(block + "/indexident"), ElementsAre(1, 4));
  EXPECT_THAT(raw.values<float>(block + "/indexval"), ElementsAre(2.5F, 3.5F));
}

TEST_F(FilerFathersWrite, StoreTheIndexInTheTypesOfTheSource) {
  Make(ORV_VERSION_2_2);
  double values[2] = {0.1, 0.2};
  source_.m_indexvalType = ORV_DOUBLE;
  source_.m_indexval = values;
  ASSERT_EQ(Write(1), 0);
  EXPECT_THAT(RawFile(path_).values<double>(InState(1, "collector/NODE_FATHERS/orvblock/indexval")),
              ElementsAre(0.1, 0.2));
}

TEST_F(FilerFathersWrite, FollowTheVersionOfTheFileAndPutTheOldOneBack) {
  Make(ORV_VERSION_1_2);
  ORVSetCurrentWriterVersion(5);
  EXPECT_EQ(Write(0), 0);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 5);
  ORVSetCurrentWriterVersion(1);
  EXPECT_TRUE(RawFile(path_).exists("/post/constant/collector/NODE_FATHERS/data/entid"));
}

TEST_F(FilerFathersWrite, StoreNothingForOtherCountsOrMissingArrays) {
  Make(ORV_VERSION_2_2);
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(0, 2, 1), 1);
  EXPECT_EQ(Write(0, 2, 3), 1);
  EXPECT_EQ(Write(0, 0), 1);
  EXPECT_EQ(Write(0, -1), 1);
  EXPECT_EQ(Write(0, 2, 2, 0), 1);
  EXPECT_EQ(Write(0, 2, 2, -5), 1);
  EXPECT_EQ(filer_.WriteNodeFathers(&source_, 0, 2, nullptr, 2, nent_, 5, entid_), 1);
  EXPECT_EQ(filer_.WriteNodeFathers(&source_, 0, 2, idcoll_, 2, nullptr, 5, entid_), 1);
  EXPECT_EQ(filer_.WriteNodeFathers(&source_, 0, 2, idcoll_, 2, nent_, 5, nullptr), 1);
  EXPECT_EQ(filer_.WriteNodeFathers(nullptr, 1, 2, idcoll_, 2, nent_, 5, entid_), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(FilerFathersWrite, NeedNoSourceInTheConstantSection) {
  Make(ORV_VERSION_2_2);
  EXPECT_EQ(filer_.WriteNodeFathers(nullptr, 0, 2, idcoll_, 2, nent_, 5, entid_), 0);
}

TEST_F(FilerFathersWrite, GoToTheFileThatIsWrittenAndNotToTheOneThatIsRead) {
  ForgedFile read;
  read.group(kCollectors);
  const std::string path = read.path();
  ORVFiler filer(path.c_str());
  EXPECT_EQ(filer.WriteNodeFathers(&source_, 0, 2, idcoll_, 2, nent_, 5, entid_), 1);
  EXPECT_FALSE(RawFile(path).exists("/post/constant/collector/NODE_FATHERS"));
}

TEST_F(FilerFathersWrite, AreReadBack) {
  Make(ORV_VERSION_2_2);
  ASSERT_EQ(Write(1), 0);
  ORVFiler reader(path_.c_str());
  ORVCollector read;
  ASSERT_EQ(reader.ReadNodeFathers(&read, 1), 0);
  EXPECT_STREQ(read.m_etyp + 256, "NODE");
  EXPECT_EQ(static_cast<int*>(read.m_nent)[1], 2);
  reader.CleanUpCollector(&read);
}

// ---- Files that are told by their collectors

class FilerAdaptiveCollectors : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  FilerAdaptiveCollectors() { file_.group("/post/singlestate/state000000000001"); }

  ForgedFile& Add(int state, const std::string& name) {
    return AddCollectors(file_, InState(state, "collector"), name, GetParam());
  }
  bool Has(std::string name) { return ORVFiler(file_.path().c_str()).IsAdaptiveCollectorEntity(name, any_); }

  ForgedFile file_;
  bool any_ = true;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerAdaptiveCollectors, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FilerAdaptiveCollectors, AreLookedForInAllStates) {
  Add(2, "OTHER");
  Add(3, "A");
  Add(3, "NODE_FATHERS");
  EXPECT_TRUE(Has("NODE_FATHERS"));
  EXPECT_TRUE(any_);
  EXPECT_TRUE(Has("OTHER"));
  EXPECT_FALSE(Has("SHELL_FATHERS"));
  EXPECT_TRUE(any_);
}

TEST_P(FilerAdaptiveCollectors, AreNotThoseOfTheConstantSection) {
  AddCollectors(file_, kCollectors, "NODE_FATHERS", GetParam());
  EXPECT_FALSE(Has("NODE_FATHERS"));
  EXPECT_FALSE(any_);
}

TEST_P(FilerAdaptiveCollectors, HaveExactlyThatName) {
  Add(1, "NODE_FATHERS");
  EXPECT_FALSE(Has("node_fathers"));
  EXPECT_FALSE(Has("NODE_FATHER"));
  EXPECT_FALSE(Has("NODE_FATHERS2"));
  EXPECT_TRUE(any_);
}

TEST_P(FilerAdaptiveCollectors, AreLookedForByTheFirst256Bytes) {
  const std::string longest(256, 'L');
  Add(1, longest);
  EXPECT_TRUE(Has(longest));
  EXPECT_TRUE(Has(longest + "ER"));
  EXPECT_FALSE(Has(longest.substr(1)));
}

TEST_P(FilerAdaptiveCollectors, WithoutCollectorsOrHeadersDoNotCount) {
  Add(1, "NODE_FATHERS").integer("ncoll", 0);
  Add(2, "NODE_FATHERS").drop("nindex");
  Add(3, "NODE_FATHERS").integer("ncoll", -2);
  EXPECT_FALSE(Has("NODE_FATHERS"));
  EXPECT_FALSE(any_);
}

TEST_P(FilerAdaptiveCollectors, AreNotInAFileThatCannotBeRead) {
  std::string name = "NODE_FATHERS";
  EXPECT_FALSE(ORVFiler(nullptr).IsAdaptiveCollectorEntity(name, any_));
  EXPECT_FALSE(any_);
  any_ = true;
  EXPECT_FALSE(ORVFiler(TempPath("missing.orv").c_str()).IsAdaptiveCollectorEntity(name, any_));
  EXPECT_FALSE(any_);
}

// ---- Files that are told by their elements

class FilerAdaptive : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  FilerAdaptive() { AddMesh(file_, kShell, GetParam()); }

  ForgedFile& Add(int state, const std::string& type) {
    return AddMesh(file_, InState(state, "connectivities/" + type), GetParam()).text("etypelem", type);
  }
  bool IsAdaptive(bool skip_fpm) { return ORVFiler(file_.path().c_str()).IsAdaptive(skip_fpm); }

  ForgedFile file_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerAdaptive, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FilerAdaptive, HaveElementsInAState) {
  Add(1, "SHELL").integer("nele", 0);
  Add(3, "SHELL");
  EXPECT_TRUE(IsAdaptive(false));
  EXPECT_TRUE(IsAdaptive(true));
}

TEST_P(FilerAdaptive, AreNotThoseWithoutStates) {
  EXPECT_FALSE(IsAdaptive(false));
  EXPECT_FALSE(ORVFiler(nullptr).IsAdaptive(false));
  EXPECT_FALSE(ORVFiler(TempPath("missing.orv").c_str()).IsAdaptive(false));
}

TEST_P(FilerAdaptive, AreNotThoseWithEmptyOrUnreadableMeshes) {
  Add(1, "SHELL").integer("nele", 0);
  Add(2, "SHELL").integer("nele", -1);
  Add(3, "SHELL").drop("etypnode");
  EXPECT_FALSE(IsAdaptive(false));
}

TEST_P(FilerAdaptive, WithTheTypeFpmAloneAreSoUnlessItIsSkipped) {
  Add(1, "FPM");
  Add(2, "fpm");
  EXPECT_TRUE(IsAdaptive(false));
  EXPECT_FALSE(IsAdaptive(true));
}

TEST_P(FilerAdaptive, WithOtherElementsBesideTheSkippedOnesAreSo) {
  Add(1, "FPM");
  Add(2, "FPM");
  Add(2, "SHELL");
  EXPECT_TRUE(IsAdaptive(true));
}

}  // namespace
}  // namespace orv_test
