// Collectors as a filer reads, allocates, checks and frees them. The reading of one block is tested in
// tests/entity/collector_*_test, the fathers of adaptive meshes in filer_adaptive_test. Leaks are the sanitizers' to find.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_filer.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kBoth = 3;

std::vector<int> Ints(const void* array, int count) {
  const int* first = static_cast<const int*>(array);
  return {first, first + count};
}

class FilerCollectors : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  FilerCollectors() { std::strcpy(block_.m_etypcoll, "PAIRS"); }
  ~FilerCollectors() override { Filer().CleanUpCollector(&block_); }

  ForgedFile& Add(const std::string& name, const std::string& group = kCollectors) {
    return AddCollectors(file_, group, name, GetParam());
  }
  /// Chooses the datasets of a block.
  ForgedFile& DataOf(const std::string& name) {
    return file_.at(PartPaths(std::string(kCollectors) + "/" + name, GetParam()).data);
  }
  ForgedFile& HeaderOf(const std::string& name) {
    return file_.at(PartPaths(std::string(kCollectors) + "/" + name, GetParam()).header);
  }
  /// On the file as it stands.
  ORVFiler Filer() { return ORVFiler(file_.path().c_str()); }
  int Read(int mode, int state = 0) { return Filer().ReadCollector(&block_, mode, state); }
  int ReadValid(std::string name, const std::vector<std::string>& types, int state = 0) {
    std::vector<std::string> owned = types;
    std::vector<char*> pointers;
    for (std::string& type : owned) pointers.push_back(type.data());
    return Filer().ReadValidCollector(name, &block_, state, pointers);
  }

  void ExpectNoArrays() {
    EXPECT_EQ(block_.m_idcoll, nullptr);
    EXPECT_EQ(block_.m_etyp, nullptr);
    EXPECT_EQ(block_.m_nent, nullptr);
    EXPECT_EQ(block_.m_entid, nullptr);
  }
  void ExpectEmpty() {
    ExpectNoArrays();
    EXPECT_STREQ(block_.m_etypcoll, "");
    EXPECT_EQ(block_.m_ncoll, 0);
    EXPECT_EQ(block_.m_ntyp, 0);
    EXPECT_EQ(block_.m_nenttot, 0);
  }

  std::vector<std::string> NamesOfAll(int mode, int state = 0) {
    std::vector<ORVCollector*> blocks;
    Filer().GetCollector(state, mode, blocks);
    std::vector<std::string> names;
    for (const ORVCollector* block : blocks) names.emplace_back(block->m_etypcoll);
    Filer().DeleteCollector(blocks);
    return names;
  }

  ForgedFile file_;
  ORVCollector block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerCollectors, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- One block

TEST_P(FilerCollectors, AreReadWithArraysOfTheirOwn) {
  Add("PAIRS");
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_ncoll, 2);
  EXPECT_THAT(Ints(block_.m_idcoll, 2), ElementsAre(1, 2));
  EXPECT_STREQ(block_.m_etyp, "NODE");
  EXPECT_STREQ(block_.m_etyp + 256, "SHELL");
  EXPECT_THAT(Ints(block_.m_nent, 4), ElementsAre(1, 2, 1, 1));
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
}

TEST_P(FilerCollectors, AreReadInTwoGoes) {
  Add("PAIRS");
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(block_.m_nenttot, 5);
  ExpectNoArrays();
  ASSERT_EQ(Read(2), 0);
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
}

TEST_P(FilerCollectors, OfDataAloneResizeTheArraysThatAreThere) {
  Add("PAIRS");
  ASSERT_EQ(Read(1), 0);
  block_.m_entid = std::malloc(1);
  block_.m_etyp = static_cast<char*>(std::malloc(100000));
  std::memset(block_.m_etyp, '#', 100000);
  ASSERT_EQ(Read(2), 0);
  ASSERT_EQ(Read(2), 0);  // a leak would be reported
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
  EXPECT_STREQ(block_.m_etyp, "NODE");
  EXPECT_EQ(block_.m_etyp[512], '\0');
}

TEST_P(FilerCollectors, OfHeaderAndDataForgetTheArraysThatAreThere) {
  Add("PAIRS");
  int own[5] = {-1, -1, -1, -1, -1};  // not of the allocator
  char type = '#';
  const auto point_at_own = [&] {
    block_.m_idcoll = block_.m_nent = block_.m_entid = own;
    block_.m_etyp = &type;
  };
  point_at_own();
  EXPECT_EQ(Read(kBoth, 1), 1);  // there is no such state
  ExpectNoArrays();
  point_at_own();
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
  EXPECT_THAT(Ints(block_.m_nent, 4), ElementsAre(1, 2, 1, 1));
  EXPECT_THAT(own, Each(-1));
  EXPECT_EQ(type, '#');
}

TEST_P(FilerCollectors, AreIntegersOfFourBytesWhateverWasAskedForBefore) {
  Add("PAIRS");
  DataOf("PAIRS").dataset<std::int64_t>("entid", {5}, {1, 2, 3, 4, 5});
  ASSERT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER | ORV_READ_DATA_INFO), 0);
  ASSERT_EQ(block_.m_entidType, ORV_LONG);
  for (const int mode : {2, kBoth}) {
    block_.m_entidType = block_.m_idcollType = block_.m_nentType = ORV_LONG;
    ASSERT_EQ(Read(mode), 0);
    for (const _ORVDataType type : {block_.m_entidType, block_.m_idcollType, block_.m_nentType}) {
      EXPECT_EQ(type, ORV_INT);
    }
    EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(1, 2, 3, 4, 5));
    Filer().CleanUpCollector(&block_);
  }
}

TEST_P(FilerCollectors, WithoutCollectorsHaveAHeaderButNoData) {
  Add("PAIRS").integer("ncoll", 0);
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

TEST_P(FilerCollectors, WithoutIdsHaveNoArrayForThem) {
  Add("PAIRS").integer("nenttot", 0);
  DataOf("PAIRS").drop("entid");
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_entid, nullptr);
  EXPECT_THAT(Ints(block_.m_nent, 4), ElementsAre(1, 2, 1, 1));
}

TEST_P(FilerCollectors, WithoutTypesHaveNoArraysForThem) {
  Add("PAIRS").integer("ntyp", 0);
  DataOf("PAIRS").drop("etyp").drop("nent");
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_etyp, nullptr);
  EXPECT_EQ(block_.m_nent, nullptr);
  EXPECT_THAT(Ints(block_.m_idcoll, 2), ElementsAre(1, 2));
}

TEST_P(FilerCollectors, LeakNothingWhenTheirDataCannotBeRead) {
  Add("PAIRS");
  DataOf("PAIRS").drop("entid");
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  block_.m_idcoll = std::malloc(4);
  EXPECT_EQ(Read(2), 1);
  ExpectNoArrays();
}

TEST_P(FilerCollectors, AreNotReadWithoutBlockModeOrFile) {
  Add("PAIRS");
  EXPECT_EQ(Filer().ReadCollector(nullptr, kBoth, 0), 1);
  EXPECT_EQ(Read(0), 1);
  EXPECT_EQ(Read(4), 1);
  EXPECT_EQ(ORVFiler(nullptr).ReadCollector(&block_, kBoth, 0), 1);
  EXPECT_EQ(ORVFiler(TempPath("missing.orv").c_str()).ReadCollector(&block_, kBoth, 0), 1);
  EXPECT_EQ(block_.m_ncoll, 0);
}

TEST_P(FilerCollectors, OfAStateAreReadThereWithoutTheirIndex) {
  Add("PAIRS", InState(1, "collector")).integer("nindex", 1);
  float value = -1;
  block_.m_indexval = &value;
  block_.m_indexident = &value;
  ASSERT_EQ(Read(7, 1), 0);
  EXPECT_EQ(block_.m_nindex, 1);
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
  EXPECT_EQ(value, -1);
  Filer().CleanUpCollector(&block_);
  EXPECT_EQ(Read(kBoth, 2), 1);
}

TEST_P(FilerCollectors, WithCountsThatNothingInTheFileBacksAreRefused) {
  constexpr std::int64_t kHuge = std::int64_t{1} << 40;
  struct Counts {
    std::int64_t ncoll, ntyp, nenttot;
  };
  Add("PAIRS");
  for (const Counts& counts : {Counts{INT64_MAX, 2, 5}, Counts{-2, 2, 5}, Counts{2, INT64_MAX, 5}, Counts{2, -2, 5},
                               Counts{2, 2, INT64_MAX}, Counts{2, 2, -5}, Counts{1 << 20, 1 << 20, 5},
                               Counts{kHuge, kHuge, 0}, Counts{2, 2, 17 << 20}, Counts{17 << 20, 0, 0}}) {
    HeaderOf("PAIRS").integer("ncoll", counts.ncoll).integer("ntyp", counts.ntyp).integer("nenttot", counts.nenttot);
    EXPECT_EQ(Read(kBoth), 1) << counts.ncoll << " " << counts.ntyp << " " << counts.nenttot;
    ExpectNoArrays();
    EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
  }
}

TEST_P(FilerCollectors, WithCountsThatAreTooLargeTogetherAreRefused) {
  Add("PAIRS").integer("ncoll", 9 << 20).integer("ntyp", 0).integer("nenttot", 9 << 20);  // 36 MiB each
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

// ---- All of a section

TEST_P(FilerCollectors, AllAreAppendedInTheOrderOfTheirNames) {
  Add("PAIRS");
  Add("LISTS").integer("nenttot", 0);
  DataOf("LISTS").drop("entid");
  ORVCollector before;
  std::vector<ORVCollector*> blocks = {&before};
  Filer().GetCollector(0, kBoth, blocks);
  ASSERT_EQ(blocks.size(), 3U);
  EXPECT_EQ(blocks[0], &before);
  EXPECT_STREQ(blocks[1]->m_etypcoll, "LISTS");
  EXPECT_EQ(blocks[1]->m_entid, nullptr);
  EXPECT_STREQ(blocks[2]->m_etypcoll, "PAIRS");
  EXPECT_THAT(Ints(blocks[2]->m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
  EXPECT_STREQ(blocks[2]->m_etyp + 256, "SHELL");
  EXPECT_NE(blocks[1]->m_idcoll, blocks[2]->m_idcoll);
  blocks.erase(blocks.begin());
  blocks.push_back(nullptr);
  Filer().DeleteCollector(blocks);
  EXPECT_THAT(blocks, IsEmpty());
}

TEST_P(FilerCollectors, AllHeadersAreReadWithoutArrays) {
  Add("PAIRS");
  Add("NONE").integer("ncoll", 0);
  std::vector<ORVCollector*> blocks;
  Filer().GetCollector(0, 1, blocks);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0]->m_nenttot, 5);
  EXPECT_EQ(blocks[0]->m_idcoll, nullptr);
  EXPECT_EQ(blocks[0]->m_etyp, nullptr);
  Filer().DeleteCollector(blocks);
}

TEST_P(FilerCollectors, AFlagThatCannotBeReadIsNotThatOfTheBlockBefore) {
  Add("A").integer32("indexic", 1);
  Add("B").text("indexic", "1");
  std::vector<ORVCollector*> blocks;
  Filer().GetCollector(0, 1, blocks);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_TRUE(blocks[0]->IsIncremental());
  EXPECT_FALSE(blocks[1]->IsIncremental());
  Filer().DeleteCollector(blocks);
}

TEST_P(FilerCollectors, ThatCannotBeReadAreLeftOut) {
  for (const char* name : {"A", "B", "C", "D"}) Add(name);
  DataOf("B").drop("nent");
  Add("C").drop("nindex");
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("A", "D"));
  EXPECT_THAT(NamesOfAll(1), ElementsAre("A", "B", "D"));
  EXPECT_THAT(NamesOfAll(2), IsEmpty());
  EXPECT_THAT(NamesOfAll(kBoth, 1), IsEmpty());
}

TEST_P(FilerCollectors, CleanUpLeavesABlockWithoutArraysAndTypes) {
  Add("PAIRS");
  ASSERT_EQ(Read(kBoth), 0);
  block_.m_entidType = ORV_LONG;
  Filer().CleanUpCollector(&block_);
  ExpectNoArrays();
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_ncoll, 2);
  Filer().CleanUpCollector(&block_);
  Filer().CleanUpCollector(nullptr);
}

// ---- Named collectors with known types

TEST_P(FilerCollectors, AreValidWithTheTypesAskedFor) {
  Add("PAIRS");
  EXPECT_EQ(ReadValid("PAIRS", {"node", "Shell"}), 0);
  EXPECT_STREQ(block_.m_etypcoll, "PAIRS");
  EXPECT_THAT(Ints(block_.m_entid, 5), ElementsAre(101, 102, 103, 104, 105));
}

TEST_P(FilerCollectors, AreValidWithAnyTypesWhereNoneAreAskedFor) {
  Add("PAIRS");
  EXPECT_EQ(ReadValid("PAIRS", {}), 0);
  EXPECT_EQ(block_.m_ncoll, 2);
}

TEST_P(FilerCollectors, OfOtherTypesAnswerOneAndAreEmpty) {
  Add("PAIRS");
  const std::vector<std::vector<std::string>> others = {
      {"SHELL", "NODE"}, {"NODE"}, {"NODE", "SHELL", "SHELL"}, {"NODE", "SHEL"}, {"NODE", "SHELLS"}, {"NODE", ""}};
  for (const std::vector<std::string>& types : others) {
    EXPECT_EQ(ReadValid("PAIRS", types), 1) << types.back();
    ExpectEmpty();
  }
}

TEST_P(FilerCollectors, DoNotMatchATypeThatIsNull) {
  Add("PAIRS");
  std::string name = "PAIRS";
  std::string node = "NODE";
  std::vector<char*> types = {node.data(), nullptr};
  EXPECT_EQ(Filer().ReadValidCollector(name, &block_, 0, types), 1);
  ExpectEmpty();
}

TEST_P(FilerCollectors, WithoutIdsAreValidWithAnyTypes) {
  Add("PAIRS").integer("nenttot", 0);
  DataOf("PAIRS").drop("entid");
  EXPECT_EQ(ReadValid("PAIRS", {"BEAM"}), 0);
  EXPECT_EQ(block_.m_entid, nullptr);
  EXPECT_EQ(block_.m_ncoll, 2);
}

TEST_P(FilerCollectors, ThatAreNotThereAnswerOneAndAreEmpty) {
  Add("PAIRS");
  block_.m_ncoll = 9;
  EXPECT_EQ(ReadValid("OTHER", {}), 1);
  ExpectEmpty();
  DataOf("PAIRS").drop("entid");
  EXPECT_EQ(ReadValid("PAIRS", {}), 1);
  ExpectEmpty();
}

TEST_P(FilerCollectors, ThatCannotBeReadAreToldByTheAnswerAlone) {
  const Messages messages;
  Add("PAIRS");
  EXPECT_EQ(ReadValid("PAIRS", {"NODE"}), 1);
  DataOf("PAIRS").drop("nent");
  EXPECT_EQ(ReadValid("PAIRS", {}), 1);
  EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
  HeaderOf("PAIRS").drop("ncoll");
  EXPECT_EQ(ReadValid("PAIRS", {}), 1);
  EXPECT_EQ(ReadValid("PAIRS", {}, 1), 1);
  EXPECT_THAT(messages.all(), IsEmpty());
}

TEST_P(FilerCollectors, OfAStateLoseTheirIndexWhenReadByName) {
  Add("PAIRS", InState(1, "collector")).integer("nindex", 1);
  float value = -1;
  block_.m_indexval = &value;
  block_.m_indexvalType = ORV_DOUBLE;
  ASSERT_EQ(ReadValid("PAIRS", {"NODE", "SHELL"}, 1), 0);
  EXPECT_EQ(block_.m_indexval, nullptr);
  EXPECT_EQ(block_.m_indexvalType, ORV_FLOAT);
  EXPECT_EQ(value, -1);
}

TEST_P(FilerCollectors, OfTheConstantSectionKeepTheirIndexWhenReadByName) {
  Add("PAIRS");
  float value = -1;
  block_.m_indexval = &value;
  ASSERT_EQ(ReadValid("PAIRS", {}), 0);
  EXPECT_EQ(block_.m_indexval, &value);
}

TEST_P(FilerCollectors, AreReadByANameThatIsCutWhereTheFieldEnds) {
  const std::string name(256, 'N');
  Add(name);
  EXPECT_EQ(ReadValid(name, {}), 0);
  Filer().CleanUpCollector(&block_);
  EXPECT_EQ(ReadValid(name + "N", {}), 0);
  Filer().CleanUpCollector(&block_);
  EXPECT_EQ(ReadValid(std::string(255, 'N'), {}), 1);
}

TEST_P(FilerCollectors, AreNotReadByNameWithoutBlockOrFile) {
  std::string name = "PAIRS";
  std::vector<char*> types;
  EXPECT_EQ(Filer().ReadValidCollector(name, nullptr, 0, types), 1);
  EXPECT_EQ(ORVFiler(nullptr).ReadValidCollector(name, &block_, 0, types), 1);
}

}  // namespace
}  // namespace orv_test
