// The numbers that hosts and files hold in place of names.

#include <gtest/gtest.h>

#include <type_traits>

#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace {

using Enumerations = orv_test::OrvTest;

template <class T>
constexpr bool kIsInt = std::is_same_v<std::underlying_type_t<T>, int>;

TEST_F(Enumerations, AreIntegersOnTheInterface) {
  EXPECT_TRUE(kIsInt<_ORVDataType> && kIsInt<_ORVVersion> && kIsInt<_ORVBlkVersion> && kIsInt<_ORVFileMode>);
  EXPECT_TRUE(kIsInt<_ORVFilerConfig> && kIsInt<_ORVAction> && kIsInt<_ORVMesgType>);
}

TEST_F(Enumerations, OfDataTypesKeepTheirNumbers) {
  EXPECT_EQ(ORV_UNKNOWN_TYPE, 0);
  EXPECT_EQ(ORV_NO_DATASET, 1);
  EXPECT_EQ(ORV_INT, 2);
  EXPECT_EQ(ORV_FLOAT, 3);
  EXPECT_EQ(ORV_CHAR, 4);
  EXPECT_EQ(ORV_CHAR_FIXED, 5);
  EXPECT_EQ(ORV_LONG, 6);
  EXPECT_EQ(ORV_DOUBLE, 7);
}

TEST_F(Enumerations, OfVersionsAndLayoutsKeepTheirNumbers) {
  EXPECT_EQ(ORV_VERSION_1_0, 0);
  EXPECT_EQ(ORV_VERSION_1_1, 1);
  EXPECT_EQ(ORV_VERSION_1_2, 2);
  EXPECT_EQ(ORV_VERSION_2_0, 3);
  EXPECT_EQ(ORV_VERSION_2_1, 4);
  EXPECT_EQ(ORV_VERSION_2_2, 5);
  EXPECT_EQ(ORV_BLK_VERSION_SPLIT, 0);
  EXPECT_EQ(ORV_BLK_VERSION_SINGLE, 1);
}

TEST_F(Enumerations, OfFileModesAndConfigurationKeepTheirNumbers) {
  EXPECT_EQ(ORV_FILE_CREATE, 0);
  EXPECT_EQ(ORV_FILE_APPEND, 1);
  EXPECT_EQ(ORV_CONFIG_ASSIGN_UNITS, 0);
  EXPECT_EQ(ORV_CONFIG_SKIP_SINGLESTATE, 1);
  EXPECT_EQ(ORV_CONFIG_SKIP_CONSTANT, 2);
  EXPECT_EQ(ORV_CONFIG_SKIP_MULTISTATE, 3);
}

TEST_F(Enumerations, OfStagesKeepTheirBits) {
  EXPECT_EQ(ORV_READ_HEADER, 0x01);
  EXPECT_EQ(ORV_READ_DATA, 0x02);
  EXPECT_EQ(ORV_READ_INDEX, 0x04);
  EXPECT_EQ(ORV_READ_HEADER_INFO, 0x08);
  EXPECT_EQ(ORV_READ_DATA_INFO, 0x10);
  EXPECT_EQ(ORV_READ_INDEX_INFO, 0x20);
  EXPECT_EQ(ORV_WRITE_HEADER, 1);
  EXPECT_EQ(ORV_WRITE_DATA, 2);
  EXPECT_EQ(ORV_WRITE_INDEX, 4);
}

TEST_F(Enumerations, OfActionsAndMessagesKeepTheirNumbers) {
  EXPECT_EQ(ORV_ACTION_CONTINUE, 0);
  EXPECT_EQ(ORV_ACTION_STOP, 1);
  EXPECT_EQ(ORV_ACTION_SKIP, 2);
  EXPECT_EQ(ORV_MESG_ERROR, 0);
  EXPECT_EQ(ORV_MESG_WARNING, 1);
}

}  // namespace
