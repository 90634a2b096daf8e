// Fixed text fields.

#include "h5/text_field.h"

#include <cstring>
#include <string>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::Text;

using TextField = H5Test;

TEST_F(TextField, EndsAtTheFirstZeroByteOrAtItsWidth) {
  const char bytes[] = {'a', 'b', '\0', 'c'};
  EXPECT_EQ(orvio::Content(bytes, 4), "ab");
  EXPECT_EQ(orvio::Content(bytes, 1), "a");
  EXPECT_EQ(orvio::Content(bytes, 0), "");
  const std::string full(300, 'x');
  EXPECT_EQ(orvio::Content(full.c_str()).size(), 256u);
}

TEST_F(TextField, TakesAssignedTextsCutAndTerminated) {
  Text field;
  std::memset(field, '-', sizeof field);
  orvio::Assign(field, "word");
  EXPECT_EQ(std::string(field, sizeof field), "word" + std::string(253, '\0'));
  orvio::Assign(field, std::string(300, 'x'));
  EXPECT_EQ(std::string(field), std::string(256, 'x'));
  orvio::Assign(field, "");
  EXPECT_STREQ(field, "");
}

TEST_F(TextField, LosesItsTrailingBlanksOnly) {
  Text field = "  two words \t  ";
  orvio::StripTrailingBlanks(field);
  EXPECT_STREQ(field, "  two words \t");
  orvio::Assign(field, std::string(256, ' '));
  orvio::StripTrailingBlanks(field);
  EXPECT_STREQ(field, "");
  orvio::Assign(field, std::string(255, ' ') + "x");
  orvio::StripTrailingBlanks(field);
  EXPECT_EQ(std::string(field), std::string(255, ' ') + "x");
}

TEST_F(TextField, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(orvio::EqualIgnoringCase("Shell", "sHELL"));
  EXPECT_TRUE(orvio::EqualIgnoringCase("", ""));
  EXPECT_FALSE(orvio::EqualIgnoringCase("Shell", "Shells"));
  EXPECT_FALSE(orvio::EqualIgnoringCase("Shell", "Shelf"));
  EXPECT_FALSE(orvio::EqualIgnoringCase("Shell ", "Shell"));
  EXPECT_TRUE(orvio::EqualIgnoringCase("\xC4", "\xC4"));
}

/// A field of 256 bytes and one more that must not be touched.
struct Guarded {
  explicit Guarded(const std::string& content) {
    std::memset(bytes, ' ', sizeof bytes);
    std::memcpy(bytes, content.data(), content.size());
    bytes[256] = '#';
    OH5TrimTrailingSpaces(bytes);
  }
  char bytes[257];
};

TEST_F(TextField, OfABlockIsTerminatedBehindItsLastCharacter) {
  const Guarded field("SHELL");
  EXPECT_STREQ(field.bytes, "SHELL");
  EXPECT_EQ(field.bytes[6], ' ');
  EXPECT_EQ(field.bytes[256], '#');
}

TEST_F(TextField, OfABlockThatIsFullGetsNoTerminator) {
  const Guarded full(std::string(256, 'x'));
  EXPECT_EQ(std::string(full.bytes, 257), std::string(256, 'x') + "#");
  const Guarded nearly(std::string(255, 'x'));
  EXPECT_EQ(std::string(nearly.bytes, 257), std::string(255, 'x') + std::string(1, '\0') + "#");
}

TEST_F(TextField, OfABlockThatIsBlankBecomesEmpty) {
  const Guarded field("");
  EXPECT_STREQ(field.bytes, "");
}

TEST_F(TextField, OfABlockEndsAtAZeroByteAndThenLosesItsBlanks) {
  const Guarded field(std::string("ab  \0cd", 7));
  EXPECT_STREQ(field.bytes, "ab");
  OH5TrimTrailingSpaces(nullptr);
}

}  // namespace
