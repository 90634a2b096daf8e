// The records of a properties block, read whole and one item at a time, its index, and the texts that are handed to a
// callback. Headers are in properties_header_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "orvio/oh5_reader.h"
#include "result/forged_properties.h"
#include "support/packed_dataset.h"
#include "support/raw_hdf5.h"

namespace {

using orv_test::ForgedProperties;
using orv_test::Layout;
using orv_test::TestProperties;
using testing::ElementsAre;

class PropertiesData : public orv_test::OrvTest {};
class PropertiesIndex : public orv_test::OrvTest {};
class PropertiesItem : public orv_test::OrvTest {};
class PropertiesTexts : public orv_test::OrvTest {};

constexpr char kTexts[] = "abcde f  ghi";
constexpr char kUntouched[] = "????????????";

class PropertiesDataLayout : public orv_test::OrvTest, public testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, PropertiesDataLayout, testing::Values(Layout::kSplit, Layout::kSingle),
                         orv_test::NameOfLayout);

TEST_P(PropertiesDataLayout, FillsAllBuffers) {
  ForgedProperties file(GetParam());
  TestProperties block;
  block.Prepare(file);
  ASSERT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_EQ(block.texts, kTexts);
  EXPECT_THAT(block.ids, ElementsAre(101, 102));
  EXPECT_THAT(block.integers, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(block.floats, ElementsAre(0.5F, 1.5F));
}

TEST_F(PropertiesData, ReadsOnlyWhatHasABuffer) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  block.m_cparam = nullptr;
  block.m_iparam = nullptr;
  block.m_fparam = nullptr;
  file.data().drop("cparam").drop("iparam").drop("fparam");
  ASSERT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_THAT(block.ids, ElementsAre(101, 102));
  block.m_entid = nullptr;
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 0);
}

TEST_F(PropertiesData, ReadsOnlyWhatHasACount) {
  ForgedProperties file;
  file.header().integer32("nbint", 0).integer32("nbfloat", 0).integer32("nbstring", 0);
  file.data().drop("cparam").drop("iparam").drop("fparam");
  TestProperties block;
  block.Prepare(file);
  ASSERT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_THAT(block.ids, ElementsAre(101, 102));
  EXPECT_EQ(block.texts, kUntouched);
  EXPECT_THAT(block.integers, ElementsAre(-1, -1, -1, -1));
}

TEST_F(PropertiesData, ReadsNoTextsOfLengthZero) {
  ForgedProperties file;
  file.header().integer32("length", 0);
  TestProperties block;
  block.Prepare(file);
  ASSERT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_EQ(block.texts, kUntouched);
}

TEST_F(PropertiesData, ReadsNothingWithoutTheDataBitOrEntities) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA_INFO), 0);
  block.m_nent = 0;
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_EQ(block.texts, kUntouched);
  EXPECT_THAT(block.ids, ElementsAre(-1, -1));
}

TEST_F(PropertiesData, WithoutAReaderFails) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.ReadData(-1, ORV_READ_DATA), 1);
}

TEST_F(PropertiesData, UnreadableTextsEndIt) {
  ForgedProperties file;
  file.data().retype("cparam");
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_THAT(block.ids, ElementsAre(-1, -1));
}

TEST_F(PropertiesData, MissingIdsCountOnlyWithoutRecordsBehindThem) {
  ForgedProperties file;
  file.data().drop("entid");
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 0);
  EXPECT_THAT(block.integers, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(block.floats, ElementsAre(0.5F, 1.5F));
  block.m_iparam = nullptr;
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 0);
  block.m_fparam = nullptr;
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
}

TEST_F(PropertiesData, UnreadableIntegersEndItBeforeTheFloats) {
  ForgedProperties file;
  file.data().drop("iparam");
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_THAT(block.ids, ElementsAre(101, 102));
  EXPECT_THAT(block.floats, ElementsAre(-1.0F, -1.0F));
}

TEST_F(PropertiesData, UnreadableFloatsFail) {
  ForgedProperties file;
  file.data().retype("fparam");
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_THAT(block.integers, ElementsAre(1, 2, 3, 4));
}

TEST_F(PropertiesData, RecordsOfOtherExtentsFail) {
  struct Fault {
    const char* name;
    std::vector<hsize_t> shape;
  };
  for (const Fault& fault : {Fault{"iparam", {2, 3}}, Fault{"iparam", {3, 2}}, Fault{"iparam", {4}}}) {
    ForgedProperties file;
    hsize_t count = 1;
    for (const hsize_t extent : fault.shape) count *= extent;
    file.data().dataset<std::int32_t>(fault.name, fault.shape, std::vector<std::int32_t>(count, 1));
    TestProperties block;
    block.Prepare(file);
    EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1) << fault.name << fault.shape[0];
  }
  for (const std::vector<hsize_t>& shape : {std::vector<hsize_t>{2, 2}, {1, 1}, {2}, {1, 2}}) {
    ForgedProperties file;
    hsize_t count = 1;
    for (const hsize_t extent : shape) count *= extent;
    file.data().dataset<float>("fparam", shape, std::vector<float>(count, 1));
    TestProperties block;
    block.Prepare(file);
    EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
    EXPECT_THAT(block.floats, ElementsAre(-1.0F, -1.0F));
  }
}

TEST_F(PropertiesData, NegativeCountsFail) {
  for (const char* name : {"nbint", "nbfloat", "nbstring", "length"}) {
    ForgedProperties file;
    file.header().integer32(name, -2);
    TestProperties block;
    block.Prepare(file);
    EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1) << name;
  }
  ForgedProperties file;
  file.header().integer("nent", -2);
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
}

// ---- Texts: of the length of the header, in any shape that fits the buffer

TEST_F(PropertiesTexts, MayBeOneOrManyInAnyShape) {
  ForgedProperties rows, one;
  rows.data().texts("cparam", 3, {2, 2}, {"abc", "de", "f", "ghi"});
  one.data().texts("cparam", 3, {}, {"abc"});
  TestProperties many, single;
  many.Prepare(rows);
  single.Prepare(one);
  EXPECT_EQ(many.Read(rows, ORV_READ_DATA), 0);
  EXPECT_EQ(many.texts, kTexts);
  EXPECT_EQ(single.Read(one, ORV_READ_DATA), 0);
  EXPECT_EQ(single.texts, "abc?????????");
}

TEST_F(PropertiesTexts, ThatDoNotFitTheBufferFail) {
  ForgedProperties file;
  file.data().texts("cparam", 3, {5}, {"abc", "de", "f", "ghi", "jkl"});
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_EQ(block.texts, kUntouched);
}

TEST_F(PropertiesTexts, OfAnotherLengthFail) {
  ForgedProperties file;
  file.data().texts("cparam", 4, {2}, {"abcd", "ef"});
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_EQ(block.texts, kUntouched);
}

TEST_F(PropertiesTexts, OfCountsWhoseProductWrapsFail) {
  ForgedProperties file;
  file.header().integer32("nbstring", INT_MAX).integer("nent", INT64_MAX);
  TestProperties block;
  block.Prepare(file);
  EXPECT_EQ(block.Read(file, ORV_READ_DATA), 1);
  EXPECT_EQ(block.texts, kUntouched);
}

// ---- The index

TEST_F(PropertiesIndex, IsReadWhateverTheKey) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  std::vector<int> idents(2);
  std::vector<float> values(2);
  block.m_indexident = idents.data();
  block.m_indexval = values.data();
  block.SetBlockType(500);
  EXPECT_EQ(block.Read(file, ORV_READ_INDEX), 0);
  EXPECT_THAT(idents, ElementsAre(1, 2));
  EXPECT_THAT(values, ElementsAre(0.25F, 4.0F));
}

TEST_F(PropertiesIndex, OfAKeyThatNobodyKnowsIsReadToo) {
  ForgedProperties file(Layout::kSingle);
  TestProperties block;
  block.m_nindex = 2;
  std::vector<int> idents(2);
  std::vector<float> values(2);
  block.m_indexident = idents.data();
  block.m_indexval = values.data();
  block.SetBlockType(77);
  block.SetBlkPath(std::string(orv_test::kCoordinate) + "/orvblock");
  EXPECT_EQ(block.ReadBlockByBlockPath(file.path().c_str(), ORV_READ_INDEX), 0);
  EXPECT_THAT(values, ElementsAre(0.25F, 4.0F));
}

// ---- One item

TEST_F(PropertiesItem, OfTheTextsReadsThemAndTheIdsWhereTheyAreWanted) {
  for (const int with_ids : {0, 1}) {
    ForgedProperties file;
    TestProperties block;
    block.Prepare(file);
    block.m_readIds = with_ids;
    EXPECT_EQ(block.ReadSelectiveAttribute(file.path().c_str(), 0, ORV_READ_DATA, ORV_ATT_CPARAM, 0, nullptr, nullptr,
                                           nullptr, nullptr, false),
              0);
    EXPECT_EQ(block.texts, kTexts);
    EXPECT_EQ(block.ids[0], with_ids ? 101 : -1);
    EXPECT_THAT(block.integers, ElementsAre(-1, -1, -1, -1));
  }
}

TEST_F(PropertiesItem, OfTheTextsFailsWithoutThemABufferOrTheIds) {
  const auto read = [](TestProperties& block, ForgedProperties& file) {
    return block.ReadSelectiveAttribute(file.path().c_str(), 0, ORV_READ_DATA, ORV_ATT_CPARAM, 0, nullptr, nullptr,
                                        nullptr, nullptr, false);
  };
  ForgedProperties without_ids, without_texts;
  without_ids.data().drop("entid");
  without_texts.data().drop("cparam");
  TestProperties block;
  block.Prepare(without_ids);
  EXPECT_EQ(read(block, without_texts), 1);
  EXPECT_EQ(read(block, without_ids), 0);
  block.m_readIds = 1;
  EXPECT_EQ(read(block, without_ids), 1);
  block.m_entid = nullptr;
  EXPECT_EQ(read(block, without_ids), 0);
  block.m_cparam = nullptr;
  EXPECT_EQ(read(block, without_ids), 1);
}

TEST_F(PropertiesItem, OfAnyOtherCodeIsThatOfAResult) {
  ForgedProperties file;
  TestProperties block;
  block.Prepare(file);
  std::uint64_t start = 1, count = 1;
  EXPECT_EQ(block.ReadSelectiveAttribute(file.path().c_str(), 0, ORV_READ_DATA, ORV_ATT_IDS, 1, &start, &count, nullptr,
                                         nullptr, false),
            0);
  EXPECT_THAT(block.ids, ElementsAre(102, -1));
  EXPECT_EQ(block.texts, kUntouched);
}

// ---- Texts for a callback

struct Call {
  int calls = 0;
  int status = -1;
  std::string texts;
  int id = 0;
  ORVProperties* block = nullptr;
};

void Take(int status, ORVProperties* block, void* data) {
  auto& call = *static_cast<Call*>(data);
  ++call.calls;
  call.status = status;
  call.block = block;
  call.texts.assign(block->m_cparam, 13);  // the terminator too
  call.id = static_cast<const int*>(block->m_entid)[1];
}

/// A block with a callback, and the read of one of its items in an open file.
class PropertiesCallBack : public orv_test::OrvTest {
 protected:
  struct Block : TestProperties {
    using ORVBlock::SetH5Reader;
  };

  int Read(ForgedProperties& file, _ORVBlockAtt att = ORV_ATT_RES) {
    OH5Reader reader(file.path().c_str());
    block_.SetH5Reader(&reader);
    const hid_t group = reader.OpenGroup(reader.GetFileId(), orv_test::kCoordinate, 0);
    std::uint64_t start[2] = {0, 0}, count[2] = {1, 1};
    const int status = block_.ReadSelAttWithCallBack(group, 0, att, 2, start, count, nullptr, nullptr);
    H5Gclose(group);
    block_.SetH5Reader(nullptr);
    return status;
  }
  void Prepare(ForgedProperties& file) {
    block_.Prepare(file);
    block_.m_readIds = 1;
    block_.m_readCallBack = Take;
    block_.m_readCallBackData = &call_;
  }

  Block block_;
  Call call_;
};

TEST_F(PropertiesCallBack, GetsTheTextsAndTheIds) {
  for (const Layout layout : {Layout::kSplit, Layout::kSingle}) {
    ForgedProperties file(layout);
    Prepare(file);
    call_ = Call();
    EXPECT_EQ(Read(file), 0);
    EXPECT_EQ(call_.calls, 1);
    EXPECT_EQ(call_.status, 0);
    EXPECT_EQ(call_.block, &block_);
    EXPECT_EQ(call_.texts, std::string(kTexts) + '\0');
    EXPECT_EQ(call_.id, 102);
    EXPECT_EQ(block_.m_cparam, block_.texts.data());  // the former buffer is back,
    EXPECT_EQ(block_.texts, kUntouched);              // and was not read into
  }
}

TEST_F(PropertiesCallBack, GetsOneTextAnEntityWhereTheHeaderCountsNone) {
  ForgedProperties file;
  file.header().integer32("nbstring", 0).integer32("length", 6);
  file.data().texts("cparam", 6, {2}, {"abc", "defghi"});
  Prepare(file);
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(call_.texts, std::string("abc   defghi") + '\0');
}

TEST_F(PropertiesCallBack, IsToldOfTextsThatCannotBeRead) {
  ForgedProperties file;
  file.data().texts("cparam", 3, {5}, {"abc", "de", "f", "ghi", "jkl"});
  Prepare(file);
  EXPECT_EQ(Read(file), 1);
  EXPECT_EQ(call_.calls, 1);
  EXPECT_EQ(call_.status, 1);
  EXPECT_EQ(call_.texts, std::string(13, '\0'));
  EXPECT_EQ(call_.id, 102);
  EXPECT_EQ(block_.m_cparam, block_.texts.data());
}

TEST_F(PropertiesCallBack, IsToldOfIdsThatCannotBeReadAndGetsTheTexts) {
  ForgedProperties retyped, too_many, dangling;
  retyped.data().retype("entid");
  too_many.data().dataset<std::int32_t>("entid", {3}, {101, 102, 103});
  dangling.data().drop("entid").soft_link("entid", "/nowhere");
  for (ForgedProperties* file : {&retyped, &too_many, &dangling}) {
    Prepare(*file);
    call_ = Call();
    EXPECT_EQ(Read(*file), 1);
    EXPECT_EQ(call_.calls, 1);
    EXPECT_EQ(call_.status, 1);
    EXPECT_EQ(call_.texts, std::string(kTexts) + '\0');
    EXPECT_EQ(call_.id, -1);
  }
}

TEST_F(PropertiesCallBack, GetsTheTextsWhereThereAreNoIds) {
  ForgedProperties file;
  file.data().drop("entid");
  Prepare(file);
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(call_.calls, 1);
  EXPECT_EQ(call_.status, 0);
  EXPECT_EQ(call_.texts, std::string(kTexts) + '\0');
  EXPECT_EQ(call_.id, -1);
  file.data().drop("cparam");
  EXPECT_EQ(Read(file), 1);
  EXPECT_EQ(call_.calls, 2);
  EXPECT_EQ(call_.status, 1);
}

TEST_F(PropertiesCallBack, IsNotCalledForCountsThatTheFileDoesNotHold) {
  ForgedProperties file;
  Prepare(file);
  for (const std::int64_t nent : {std::int64_t{-2}, std::int64_t{1} << 32, INT64_MAX, INT64_MIN}) {
    block_.m_nent = nent;
    EXPECT_EQ(Read(file), 1) << nent;
  }
  block_.m_nent = 2;
  block_.m_length = -3;
  EXPECT_EQ(Read(file), 1);
  EXPECT_EQ(call_.calls, 0);
}

TEST_F(PropertiesCallBack, GetsMoreThan64MiBOfTextsHoweverLittleTheFileHasOfThem) {
  constexpr int kCount = 300000;
  ForgedProperties file;
  file.header().integer32("nbstring", 1).integer32("length", 256).integer("nent", kCount);
  const std::string texts(kCount * 256, 'x');
  file.data().drop("cparam").drop("entid").raw(
      [&](hid_t here) { orv_test::AddPacked(here, "cparam", orv_test::TextType(256).get(), {kCount}, texts.data()); });
  Prepare(file);
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(call_.calls, 1);
  EXPECT_EQ(call_.texts, std::string(13, 'x'));
}

TEST_F(PropertiesCallBack, IsNotCalledUnlessValuesAndIdsAreAskedFor) {
  ForgedProperties file;
  file.data().dataset<float>("res", {2, 1}, {8, 9});
  Prepare(file);
  std::vector<float> values(2);
  block_.m_res = values.data();
  block_.m_readIds = 0;
  EXPECT_EQ(Read(file), 0);
  EXPECT_THAT(values, ElementsAre(8.0F, 0.0F));  // what ReadSelAtt reads
  block_.m_readIds = 1;
  EXPECT_EQ(Read(file, ORV_ATT_CPARAM), 0);
  EXPECT_EQ(block_.texts, kTexts);
  block_.m_entid = nullptr;
  EXPECT_EQ(Read(file), 1);
  block_.m_entid = block_.ids.data();
  block_.m_length = 0;
  EXPECT_EQ(Read(file), 0);
  block_.m_length = 3;
  block_.m_nent = 0;
  values[0] = 0;
  EXPECT_EQ(Read(file), 1);  // there are no ids to read
  EXPECT_THAT(values, ElementsAre(8.0F, 0.0F));
  block_.m_nent = 2;
  block_.m_readCallBack = nullptr;
  EXPECT_EQ(Read(file), 0);
  EXPECT_EQ(call_.calls, 0);
}

}  // namespace
