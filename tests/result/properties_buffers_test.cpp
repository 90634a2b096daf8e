// How large the arrays of a properties block may become on the word of a header, and what the file must have for larger
// ones. That they hold what was read is tested in tests/filer.

#include "result/properties_buffers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/orv_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMebi = std::int64_t{1} << 20;

class PropertiesBuffers : public orv_test::OrvTest {
 protected:
  ~PropertiesBuffers() override { orvio::FreeBuffers(block_); }

  /// With a file that has `stored_` elements of each dataset.
  bool Allocate() {
    orvio::FreeBuffers(block_);
    asked_.clear();
    return orvio::AllocateBuffers(block_, [this](const char* dataset, std::uint64_t bytes_each) {
      asked_.push_back(std::string(dataset) + " " + std::to_string(bytes_each));
      return stored_;
    });
  }

  ORVProperties block_;
  std::uint64_t stored_ = 0;
  std::vector<std::string> asked_;  ///< "<dataset> <bytes of an element>" of each question to the file
};

TEST_F(PropertiesBuffers, AreZeroedAndEndWithAByte) {
  block_.m_nent = 3;
  block_.m_nbint = 2;
  block_.m_nbfloat = 1;
  block_.m_length = 4;
  block_.m_nbstring = 2;
  ASSERT_TRUE(Allocate());
  EXPECT_TRUE(orvio::HasBuffers(block_));
  EXPECT_THAT(std::vector<int>(block_.m_iparam, block_.m_iparam + 6), testing::Each(0));
  EXPECT_THAT(std::vector<float>(block_.m_fparam, block_.m_fparam + 3), testing::Each(0.0F));
  EXPECT_EQ(std::string(block_.m_cparam, 25), std::string(25, '\0'));
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[2], 0);
  orvio::FreeBuffers(block_);
  EXPECT_FALSE(orvio::HasBuffers(block_));
}

TEST_F(PropertiesBuffers, Of64MiBNeedNothingInTheFile) {
  block_.m_nent = 16 * kMebi;
  EXPECT_TRUE(Allocate());
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(PropertiesBuffers, ShareThe64MiB) {
  block_.m_nent = 8 * kMebi;  // half of it
  block_.m_nbint = 1;
  EXPECT_TRUE(Allocate());
  EXPECT_THAT(asked_, IsEmpty());
  block_.m_nbfloat = 1;
  EXPECT_FALSE(Allocate());
  EXPECT_THAT(asked_, ElementsAre("fparam 1"));
  EXPECT_FALSE(orvio::HasBuffers(block_));
}

TEST_F(PropertiesBuffers, OfMoreNeedAsMuchInTheFile) {
  block_.m_nent = kMebi;
  block_.m_nbint = 16;
  stored_ = 16 * kMebi - 1;
  EXPECT_FALSE(Allocate());
  EXPECT_THAT(asked_, ElementsAre("iparam 1"));
  EXPECT_FALSE(orvio::HasBuffers(block_));
  stored_ = 16 * kMebi;
  EXPECT_TRUE(Allocate());
}

TEST_F(PropertiesBuffers, OfTextsAskForTheirLength) {
  block_.m_nent = kMebi;
  block_.m_length = 40;
  block_.m_nbstring = 2;
  stored_ = 2 * kMebi - 1;
  EXPECT_FALSE(Allocate());
  EXPECT_THAT(asked_, ElementsAre("cparam 40"));
  stored_ = 2 * kMebi;
  EXPECT_TRUE(Allocate());
}

TEST_F(PropertiesBuffers, OfProductsThatWrapAreRefusedUnasked) {
  stored_ = UINT64_MAX;
  block_.m_nent = std::int64_t{1} << 62;
  EXPECT_FALSE(Allocate());
  EXPECT_THAT(asked_, IsEmpty());
  block_.m_nent = kMebi;
  block_.m_nbstring = 1 << 30;
  block_.m_length = 1 << 14;  // all three make 2^64
  EXPECT_FALSE(Allocate());
  EXPECT_THAT(asked_, IsEmpty());
  EXPECT_FALSE(orvio::HasBuffers(block_));
}

TEST_F(PropertiesBuffers, OfNegativeCountsAreRefusedUnasked) {
  struct Counts {
    int nbint, nbfloat, length, nbstring;
  };
  stored_ = UINT64_MAX;
  block_.m_nent = 1;
  for (const Counts& each : {Counts{-1, 0, 0, 0}, Counts{0, INT_MIN, 0, 0}, Counts{0, 0, -16, 1}, Counts{0, 0, 1, -16},
                             Counts{0, 0, -1, -1}}) {
    block_.m_nbint = each.nbint;
    block_.m_nbfloat = each.nbfloat;
    block_.m_length = each.length;
    block_.m_nbstring = each.nbstring;
    EXPECT_FALSE(Allocate());
    EXPECT_THAT(asked_, IsEmpty());
    EXPECT_FALSE(orvio::HasBuffers(block_));
  }
}

TEST_F(PropertiesBuffers, OfABlockWithoutEntitiesStayAsTheyAre) {
  int own = 0;
  block_.m_iparam = &own;
  for (const std::int64_t nent : {std::int64_t{0}, std::int64_t{-1}}) {
    block_.m_nent = nent;
    EXPECT_FALSE(orvio::AllocateBuffers(block_, [](const char*, std::uint64_t) { return UINT64_MAX; }));
    EXPECT_EQ(block_.m_iparam, &own);
  }
  block_.m_iparam = nullptr;
}

}  // namespace
