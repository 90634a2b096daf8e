// Format versions: numbers, triples and the exported queries.

#include "filer/versions.h"

#include <hdf5.h>

#include <string>

#include "orvio/orv_switches.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

struct VersionRow {
  int number, major, minor;
};

class WrittenVersion : public OrvTest, public testing::WithParamInterface<VersionRow> {};

TEST_P(WrittenVersion, HasTheTripleOfItsNumber) {
  const ORVFileVersion version = orvio::VersionOfNumber(GetParam().number);
  EXPECT_EQ(version.m_major, GetParam().major);
  EXPECT_EQ(version.m_minor, GetParam().minor);
  EXPECT_EQ(version.m_patch, 0);
}

TEST_P(WrittenVersion, IsAnsweredForTheCurrentNumber) {
  const int before = ORVSetCurrentWriterVersion(GetParam().number);
  int major = 9, minor = 9, patch = 9;
  ORVGetWriterVersion(&major, &minor, &patch);
  ORVSetCurrentWriterVersion(before);
  EXPECT_EQ(major, GetParam().major);
  EXPECT_EQ(minor, GetParam().minor);
  EXPECT_EQ(patch, 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, WrittenVersion,
                         testing::Values(VersionRow{0, 1, 0}, VersionRow{1, 1, 1}, VersionRow{2, 1, 2},
                                         VersionRow{3, 2, 0}, VersionRow{4, 2, 1}, VersionRow{5, 2, 2},
                                         VersionRow{6, 1, 1}, VersionRow{8, 1, 1}, VersionRow{-1, 1, 1},
                                         VersionRow{1000, 1, 1}));

class ReadVersion : public OrvTest, public testing::WithParamInterface<VersionRow> {};

TEST_P(ReadVersion, HasTheNumberOfItsTripleWhateverThePatch) {
  EXPECT_EQ(orvio::NumberOfVersion({GetParam().major, GetParam().minor, 0}), GetParam().number);
  EXPECT_EQ(orvio::NumberOfVersion({GetParam().major, GetParam().minor, 7}), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Rows, ReadVersion,
                         testing::Values(VersionRow{0, 1, 0}, VersionRow{1, 1, 1}, VersionRow{2, 1, 2},
                                         VersionRow{0, 1, 3}, VersionRow{0, 1, -1}, VersionRow{3, 2, 0},
                                         VersionRow{4, 2, 1}, VersionRow{5, 2, 2}, VersionRow{6, 2, 3},
                                         VersionRow{7, 2, 4}, VersionRow{8, 2, 5}, VersionRow{3, 2, 6},
                                         VersionRow{3, 2, -1}, VersionRow{-1, 0, 0}, VersionRow{-1, 3, 0},
                                         VersionRow{-1, 3, 1}, VersionRow{-1, -1, 1}));

using Versions = OrvTest;

TEST_F(Versions, OfTheReaderAreFixed) {
  int major = 9, minor = 9, patch = 9;
  ORVGetReaderVersion(&major, &minor, &patch);
  EXPECT_EQ(major, 2);
  EXPECT_EQ(minor, 0);
  EXPECT_EQ(patch, 0);
}

TEST_F(Versions, OfHdf5AreThoseOfTheLibraryInUse) {
  int major = 9, minor = 9, patch = 9;
  ORVGetHdfVersion(&major, &minor, &patch);
  unsigned expected[3] = {};
  ASSERT_GE(H5get_libversion(&expected[0], &expected[1], &expected[2]), 0);
  EXPECT_EQ(static_cast<unsigned>(major), expected[0]);
  EXPECT_EQ(static_cast<unsigned>(minor), expected[1]);
  EXPECT_EQ(static_cast<unsigned>(patch), expected[2]);
  EXPECT_EQ(major, 1);
  EXPECT_EQ(minor, 14);
}

}  // namespace
