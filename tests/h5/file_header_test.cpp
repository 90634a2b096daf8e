// The 64 bytes that tell the version of a file.

#include "h5/file_header.h"

#include <limits>
#include <string>
#include <string_view>

#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"

namespace {

using namespace orv_test;
using namespace std::string_literals;

constexpr std::string_view kMagic = "\x89ORV\r\n\x1A\n";
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

struct HeaderRow {
  const char* name;
  std::string bytes;
  int major, minor, patch;
};

std::string Good(const std::string& text) { return std::string(kMagic) + text + '\0'; }
std::string Wrong(const std::string& text) { return "\x89ORX\r\n\x1A\n" + text + '\0'; }

class FileHeader : public H5Test, public testing::WithParamInterface<HeaderRow> {};

TEST_P(FileHeader, TellsTheVersion) {
  ForgedFile file("header");
  file.header_bytes(GetParam().bytes);
  OH5Reader reader(file.path().c_str(), 0);
  int major = 9, minor = 9, patch = 9;
  EXPECT_EQ(reader.ReadFileVersion(major, minor, patch), 0);
  EXPECT_EQ(major, GetParam().major);
  EXPECT_EQ(minor, GetParam().minor);
  EXPECT_EQ(patch, GetParam().patch);
}

const HeaderRow kRows[] = {
    {"Version10", Good("1 0 0"), 1, 0, 0},
    {"Version11", Good("1 1 0"), 1, 1, 0},
    {"Version22", Good("2 2 0"), 2, 2, 0},
    {"HigherThanTheReader", Good("31 42 53"), 31, 42, 53},
    {"BlanksAndNoTerminator", std::string(kMagic) + "2 1 0" + std::string(51, ' '), 2, 1, 0},
    {"OtherWhiteSpace", Good(" 2\t1\n5"), 2, 1, 5},
    {"PlusSigns", Good("+2 +1 +5"), 2, 1, 5},
    {"MinusSigns", Good("-2 -1 -5"), -2, -1, -5},
    {"TwoSigns", Good("+-2 1 0"), 0, 0, 0},
    {"OneNumber", Good("2"), 2, 0, 0},
    {"TwoNumbers", Good("2 1"), 2, 1, 0},
    {"TextBehindANumber", Good("2 x 3"), 2, 0, 0},
    {"NumbersWithoutABlank", Good("2.1.0"), 2, 0, 0},
    {"TextBehindTheTerminator", Good("2") + " 1 0", 2, 0, 0},
    {"Garbage", Good("version two"), 0, 0, 0},
    {"Nothing", Good(""), 0, 0, 0},
    {"TooLarge", Good("99999999999 1 2"), kMost, 1, 2},
    {"TooSmall", Good("-99999999999 1 2"), kLeast, 1, 2},
    {"DigitsWithoutEnd", std::string(kMagic) + std::string(56, '7'), kMost, 0, 0},
    {"NumbersBehind32Bytes", Good("2" + std::string(31, ' ') + "1 0"), 2, 0, 0},
    {"Year2008", Good("2008"), 1, 0, 0},
    {"Year2010", Good("2010"), 1, 0, 0},
    {"Year2010AndMore", Good("2010 7 7"), 1, 0, 0},
    {"Year2010WithAWrongMagic", Wrong("2010whatever"), 1, 0, 0},
    {"Year2008WithAWrongMagic", Wrong("2008"), 1, 0, 0},
    {"AnotherYear", Good("2009"), 2009, 0, 0},
    {"AnotherYearWithAWrongMagic", Wrong("2009"), 0, 0, 0},
    {"WrongMagic", Wrong("2 1 0"), 0, 0, 0},
    {"Zeros", std::string(64, '\0'), 0, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Rows, FileHeader, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

class FileVersion : public H5Test {
 protected:
  void ExpectNone() {
    OH5Reader reader(file_.path().c_str(), 0);
    int major = 9, minor = 9, patch = 9;
    EXPECT_EQ(reader.ReadFileVersion(major, minor, patch), 1);
    EXPECT_EQ(major, 0);
    EXPECT_EQ(minor, 0);
    EXPECT_EQ(patch, 0);
  }
  ForgedFile file_{"header"};
};

TEST_F(FileVersion, FailsWithoutAHeaderGroup) {
  file_.at("/post").drop("orvheader");
  ExpectNone();
}

TEST_F(FileVersion, FailsWithoutAHeaderDataset) {
  file_.at("/post/orvheader").drop("orvheader");
  ExpectNone();
}

TEST_F(FileVersion, FailsForAHeaderOfAnotherSizeShapeOrClass) {
  file_.at("/post/orvheader").texts("orvheader", 63, {}, {std::string(kMagic) + "2 0 0"});
  ExpectNone();
  file_.texts("orvheader", 64, {2}, {std::string(kMagic) + "2 0 0", ""});
  ExpectNone();
  file_.scalar<double>("orvheader", 2.0);
  ExpectNone();
}

TEST_F(FileVersion, FailsWithoutAFile) {
  OH5Reader reader;
  int major = 9, minor = 9, patch = 9;
  EXPECT_EQ(reader.ReadFileVersion(major, minor, patch), 1);
  EXPECT_EQ(major, 0);
}

using ComposedHeader = H5Test;

TEST_F(ComposedHeader, HasMagicVersionTerminatorAndBlanks) {
  const orvio::h5::FileHeader header = orvio::h5::ComposeHeader({1, 1, 0});
  EXPECT_EQ(std::string(header.bytes, 64), "\x89ORV\r\n\x1A\n1 1 0\0"s + std::string(50, ' '));
}

TEST_F(ComposedHeader, HoldsTheLongestVersion) {
  const orvio::h5::FileHeader header = orvio::h5::ComposeHeader({kLeast, kLeast, 0});
  EXPECT_EQ(std::string(header.bytes, 64), "\x89ORV\r\n\x1A\n-2147483648 -2147483648 0\0"s + std::string(30, ' '));
}

}  // namespace
