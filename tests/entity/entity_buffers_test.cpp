// How large the arrays of entity blocks may become on the word of a header, and what the file must have for larger ones.
// That they hold what was read is tested in tests/filer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "entity/entity_lists.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kMebi = std::int64_t{1} << 20;

class EntityBuffers : public OrvTest {
 protected:
  EntityBuffers() { block_.m_length = 0; }
  ~EntityBuffers() override {
    orvio::FreeBuffers(block_);
    orvio::FreeBuffers(collectors_);
  }

  /// With a file that has `stored_` elements of each dataset.
  template <class Block>
  bool Allocate(Block& block) {
    asked_.clear();
    return orvio::AllocateBuffers(block, [this](const char* dataset, std::uint64_t bytes_each) {
      asked_.push_back(std::string(dataset) + " " + std::to_string(bytes_each));
      return stored_;
    });
  }

  ORVEntAttribute block_;
  ORVCollector collectors_;
  std::uint64_t stored_ = 0;
  std::vector<std::string> asked_;  ///< "<dataset> <bytes of an element>" of each question to the file
};

TEST_F(EntityBuffers, Of64MiBNeedNothingInTheFile) {
  block_.m_nent = 16 * kMebi;
  EXPECT_TRUE(Allocate(block_));
  EXPECT_THAT(asked_, IsEmpty());
  EXPECT_NE(block_.m_entid, nullptr);
}

TEST_F(EntityBuffers, OfMoreAreRefusedWithoutThatMuchInTheFile) {
  block_.m_nent = 16 * kMebi + 1;
  stored_ = 16 * kMebi;
  EXPECT_FALSE(Allocate(block_));
  EXPECT_THAT(asked_, ElementsAre("entid 1"));
  EXPECT_EQ(block_.m_entid, nullptr);
  stored_ = 16 * kMebi + 1;
  EXPECT_TRUE(Allocate(block_));
  EXPECT_NE(block_.m_entid, nullptr);
}

TEST_F(EntityBuffers, AreCountedTogether) {
  block_.m_nent = 9 * kMebi;  // 36 MiB each
  block_.m_nuid = 1;
  EXPECT_FALSE(Allocate(block_));
  EXPECT_THAT(asked_, ElementsAre("uid 1"));
  EXPECT_EQ(block_.m_entid, nullptr);
  collectors_.m_ncoll = collectors_.m_nenttot = 9 * kMebi;
  EXPECT_FALSE(Allocate(collectors_));
  EXPECT_THAT(asked_, ElementsAre("entid 1"));
  EXPECT_EQ(collectors_.m_idcoll, nullptr);
}

TEST_F(EntityBuffers, OfTitlesMustBeInTheFileInTheirFullWidth) {
  block_.m_nent = 3;
  block_.m_length = 30 << 20;
  stored_ = 2;
  EXPECT_FALSE(Allocate(block_));
  EXPECT_THAT(asked_, ElementsAre("title 31457280"));
  EXPECT_EQ(block_.m_title, nullptr);
}

TEST_F(EntityBuffers, OfTypeNamesMustBeInTheFileInTheirFullWidth) {
  collectors_.m_ncoll = 1;
  collectors_.m_ntyp = kMebi;
  EXPECT_FALSE(Allocate(collectors_));
  EXPECT_THAT(asked_, ElementsAre("etyp 256"));
  EXPECT_EQ(collectors_.m_idcoll, nullptr);
}

TEST_F(EntityBuffers, OfSizesBeyondAllBytesAreRefusedUnasked) {
  stored_ = UINT64_MAX;
  block_.m_nent = std::int64_t{1} << 62;
  EXPECT_FALSE(Allocate(block_));
  collectors_.m_ncoll = collectors_.m_ntyp = -1;
  EXPECT_FALSE(Allocate(collectors_));
  EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(EntityBuffers, AreZeroedAndOfFourByteIntegers) {
  block_.m_nent = 2;
  block_.m_nuid = 1;
  block_.m_length = 4;
  block_.m_entidType = block_.m_uidType = ORV_LONG;
  ASSERT_TRUE(Allocate(block_));
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[1], 0);
  EXPECT_EQ(static_cast<int*>(block_.m_uid)[1], 0);
  EXPECT_EQ(std::string(block_.m_title, 9), std::string(9, '\0'));
}

}  // namespace
}  // namespace orv_test
