// Reading and writing of single attributes. Header lines made of them: header_io_test.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";

class AttributeRead : public H5Test {
 protected:
  /// Reads one attribute of the forged block with rank 0.
  template <class T>
  int Read(const char* name, _ORVDataType type, T* value) {
    const Location place(file_.path(), kBlock);
    return OH5Read_ATTRIBUTE(place.id(), name, 0, nullptr, type, value);
  }
  int ReadText(const char* name) {
    std::memset(text_, '-', sizeof text_);
    return Read(name, ORV_CHAR, text_);
  }

  ForgedFile file_ = std::move(ForgedFile("attribute").at(kBlock));
  char text_[300] = {};
};

TEST_F(AttributeRead, ConvertsNumbersToTheWidthAskedFor) {
  file_.integer("wide", -5).integer32("narrow", 7).real("real", 2.5);
  std::int64_t wide = 0;
  std::int32_t narrow = 0;
  double real = 0;
  float small = 0;
  EXPECT_EQ(Read("narrow", ORV_LONG, &wide), 0);
  EXPECT_EQ(wide, 7);
  EXPECT_EQ(Read("wide", ORV_LONG, &wide), 0);
  EXPECT_EQ(wide, -5);
  EXPECT_EQ(Read("wide", ORV_INT, &narrow), 0);
  EXPECT_EQ(narrow, -5);
  EXPECT_EQ(Read("real", ORV_DOUBLE, &real), 0);
  EXPECT_EQ(real, 2.5);
  EXPECT_EQ(Read("real", ORV_FLOAT, &small), 0);
  EXPECT_EQ(small, 2.5F);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(AttributeRead, GivesAFullTextWithoutATerminator) {
  file_.text("etyp", "SHELL");
  EXPECT_EQ(ReadText("etyp"), 0);
  EXPECT_EQ(std::string(text_, 258), "SHELL" + std::string(251, ' ') + "--");
}

TEST_F(AttributeRead, TerminatesAShorterText) {
  file_.text("etyp", "SHELL", 8);
  EXPECT_EQ(ReadText("etyp"), 0);
  EXPECT_STREQ(text_, "SHELL   ");
  EXPECT_EQ(text_[9], '-');
}

TEST_F(AttributeRead, RefusesATextOfMoreThan256Bytes) {
  file_.text("etyp", "SHELL", 257);
  EXPECT_EQ(ReadText("etyp"), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"etyp\" attribute data type size mismatch");
  EXPECT_EQ(text_[0], '-');
}

TEST_F(AttributeRead, CutsAVariableTextAt255BytesAndTerminatesIt) {
  file_.variable_text("etyp", std::string(300, 'v').c_str());
  EXPECT_EQ(ReadText("etyp"), 0);
  EXPECT_EQ(std::string(text_), std::string(255, 'v'));
  EXPECT_EQ(text_[256], '-');
}

TEST_F(AttributeRead, GivesAShortVariableTextWhole) {
  file_.variable_text("etyp", "SOLID");
  EXPECT_EQ(ReadText("etyp"), 0);
  EXPECT_STREQ(text_, "SOLID");
  EXPECT_EQ(text_[6], '-');
}

TEST_F(AttributeRead, GivesAnEmptyTextForAVariableOneThatWasNeverWritten) {
  file_.variable_text("etyp", nullptr);
  EXPECT_EQ(ReadText("etyp"), 0);
  EXPECT_STREQ(text_, "");
}

TEST_F(AttributeRead, RefusesAVariableTextForAnInteger) {
  file_.variable_text("nele", "12");
  std::int64_t value = 3;
  EXPECT_EQ(Read("nele", ORV_LONG, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"nele\" attribute data type mismatch");
  EXPECT_EQ(value, 3);
}

TEST_F(AttributeRead, RefusesAnotherClass) {
  file_.integer("nele", 12).text("etyp", "SHELL").real("real", 1);
  std::int64_t value[32] = {3};
  EXPECT_EQ(Read("etyp", ORV_LONG, value), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"etyp\" attribute data type mismatch");
  EXPECT_EQ(ReadText("nele"), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"nele\" attribute data type mismatch");
  EXPECT_EQ(Read("real", ORV_INT, value), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"real\" attribute data type mismatch");
  EXPECT_EQ(Read("nele", ORV_DOUBLE, value), 1);
  EXPECT_EQ(value[0], 3);
}

TEST_F(AttributeRead, TellsOfAMissingAttribute) {
  std::int64_t value = 3;
  EXPECT_EQ(Read("nele", ORV_LONG, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"nele\" attribute not exist");
  EXPECT_EQ(value, 3);
}

TEST_F(AttributeRead, RefusesATypeThatItDoesNotKnow) {
  file_.integer("nele", 12);
  std::int64_t value = 3;
  for (const int type : {0, 1, 5, 8}) {
    ForgetText();
    EXPECT_EQ(Read("nele", static_cast<_ORVDataType>(type), &value), 1) << type;
    EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"nele\" Unknow attribute data type") << type;
  }
}

TEST_F(AttributeRead, ComparesRankAndExtents) {
  file_.integers("three", {4, 5, 6}).integer("single", 9);
  const Location place(file_.path(), kBlock);
  std::int64_t values[4] = {-1, -1, -1, -1};
  const hsize_t three[] = {3}, two[] = {2}, grid[] = {3, 1}, one[] = {1};
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "three", 1, three, ORV_LONG, values), 0);
  EXPECT_EQ(values[2], 6);
  EXPECT_EQ(values[3], -1);
  EXPECT_EQ(LastText(), kUntouched);
  const std::string mismatch = "OH5Read_ATTRIBUTE::\n\t \"three\" dimension mismatch";
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "three", 1, two, ORV_LONG, values), 1);
  EXPECT_EQ(LastText(), mismatch);
  ForgetText();
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "three", 2, grid, ORV_LONG, values), 1);
  EXPECT_EQ(LastText(), mismatch);
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "single", 1, one, ORV_LONG, values), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"single\" dimension mismatch");
}

TEST_F(AttributeRead, RefusesRankZeroForMoreThanOneElement) {
  file_.integers("three", {4, 5, 6});
  std::int64_t value = 3;
  EXPECT_EQ(Read("three", ORV_LONG, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"three\" dimension mismatch");
  EXPECT_EQ(value, 3);
}

TEST_F(AttributeRead, TakesRankZeroForAnArrayOfOneElement) {
  file_.integers("one", {4});
  std::int64_t value = 0;
  EXPECT_EQ(Read("one", ORV_LONG, &value), 0);
  EXPECT_EQ(value, 4);
}

TEST_F(AttributeRead, FailsSilentlyForAnExtentOfZero) {
  file_.integer("nele", 12);
  const Location place(file_.path(), kBlock);
  const hsize_t zero[] = {0};
  std::int64_t value = 3;
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "nele", 1, zero, ORV_LONG, &value), 1);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(AttributeRead, RefusesNullArguments) {
  file_.integer("nele", 12);
  const Location place(file_.path(), kBlock);
  std::int64_t value = 3;
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), nullptr, 0, nullptr, ORV_LONG, &value), 1);
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "nele", 1, nullptr, ORV_LONG, &value), 1);
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "nele", 0, nullptr, ORV_LONG, nullptr), 1);
  EXPECT_EQ(OH5Read_ATTRIBUTE(-1, "nele", 0, nullptr, ORV_LONG, &value), 1);
}

class AttributeWrite : public H5Test {
 protected:
  int Write(const char* name, _ORVDataType type, const void* data, size_t size = 0) {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    return OH5write_ATTRIBUTE(place.id(), name, nullptr, type, size, data);
  }
  RawFile Look() { return RawFile(file_.path()); }

  ForgedFile file_ = std::move(ForgedFile("attribute").at(kBlock));
};

TEST_F(AttributeWrite, StoresNumbersAsScalarsOfTheirNativeType) {
  const std::int32_t i = 3;
  const std::int64_t l = -9000000000;
  const float f = 1.5F;
  const double d = 2.5;
  EXPECT_EQ(Write("i", ORV_INT, &i), 0);
  EXPECT_EQ(Write("l", ORV_LONG, &l), 0);
  EXPECT_EQ(Write("f", ORV_FLOAT, &f), 0);
  EXPECT_EQ(Write("d", ORV_DOUBLE, &d), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.attribute_int(kBlock, "i"), 3);
  EXPECT_EQ(file.attribute_size(kBlock, "i"), 4u);
  EXPECT_EQ(file.attribute_rank(kBlock, "i"), 0);
  EXPECT_EQ(file.attribute_class(kBlock, "i"), H5T_INTEGER);
  EXPECT_EQ(file.attribute_int(kBlock, "l"), -9000000000);
  EXPECT_EQ(file.attribute_size(kBlock, "l"), 8u);
  EXPECT_EQ(file.attribute_real(kBlock, "f"), 1.5);
  EXPECT_EQ(file.attribute_size(kBlock, "f"), 4u);
  EXPECT_EQ(file.attribute_class(kBlock, "f"), H5T_FLOAT);
  EXPECT_EQ(file.attribute_real(kBlock, "d"), 2.5);
  EXPECT_EQ(file.attribute_size(kBlock, "d"), 8u);
}

TEST_F(AttributeWrite, StoresTextsWithTheSizeHandedIn) {
  EXPECT_EQ(Write("etyp", ORV_CHAR, "SHELL   ", 8), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.attribute_text(kBlock, "etyp"), "SHELL   ");
  EXPECT_EQ(file.attribute_class(kBlock, "etyp"), H5T_STRING);
  EXPECT_EQ(file.attribute_rank(kBlock, "etyp"), 0);
}

TEST_F(AttributeWrite, MakesATextAnewWhateverWasThere) {
  file_.text("etyp", "SOLID").integer("name", 5);
  EXPECT_EQ(Write("etyp", ORV_CHAR, "BEAM", 4), 0);
  EXPECT_EQ(Write("name", ORV_CHAR, "BEAM", 4), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.attribute_text(kBlock, "etyp"), "BEAM");
  EXPECT_EQ(file.attribute_text(kBlock, "name"), "BEAM");
}

TEST_F(AttributeWrite, WritesANumberIntoTheAttributeThatIsThere) {
  file_.integer("nele", 5).real("real", 1);
  const std::int32_t i = 77;
  const float f = 0.5F;
  EXPECT_EQ(Write("nele", ORV_INT, &i), 0);
  EXPECT_EQ(Write("real", ORV_FLOAT, &f), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.attribute_int(kBlock, "nele"), 77);
  EXPECT_EQ(file.attribute_size(kBlock, "nele"), 8u);
  EXPECT_EQ(file.attribute_real(kBlock, "real"), 0.5);
  EXPECT_EQ(file.attribute_size(kBlock, "real"), 8u);
}

TEST_F(AttributeWrite, RefusesANumberOverAnotherClass) {
  file_.text("etyp", "SOLID").real("real", 1.5);
  const std::int32_t i = 77;
  EXPECT_EQ(Write("etyp", ORV_INT, &i), 1);
  EXPECT_EQ(LastText(), "OH5write_ATTRIBUTE::\n\t \"etyp\" data type mismatch for attribute");
  EXPECT_EQ(Write("real", ORV_INT, &i), 1);
  EXPECT_EQ(LastText(), "OH5write_ATTRIBUTE::\n\t \"real\" data type mismatch for attribute");
  const RawFile file = Look();
  EXPECT_EQ(file.attribute_class(kBlock, "etyp"), H5T_STRING);
  EXPECT_EQ(file.attribute_real(kBlock, "real"), 1.5);
}

TEST_F(AttributeWrite, RefusesANumberOverAnArray) {
  file_.integers("three", {4, 5, 6}).integers("one", {4});
  const std::int64_t value = 77;
  EXPECT_EQ(Write("three", ORV_LONG, &value), 1);
  EXPECT_EQ(Write("one", ORV_LONG, &value), 0);
  EXPECT_EQ(Look().attribute_int(kBlock, "one"), 77);
}

TEST_F(AttributeWrite, RefusesATypeThatItDoesNotKnow) {
  const std::int32_t i = 77;
  for (const int type : {0, 1, 5, 8}) {
    ForgetText();
    EXPECT_EQ(Write("nele", static_cast<_ORVDataType>(type), &i, 4), 1) << type;
    EXPECT_EQ(LastText(), "OH5write_ATTRIBUTE::\n\t \"nele\" Unsupported data type") << type;
  }
  EXPECT_FALSE(Look().has_attribute(kBlock, "nele"));
}

TEST_F(AttributeWrite, FailsInAFileOpenForReading) {
  const Location place(file_.path(), kBlock);
  const std::int32_t i = 77;
  EXPECT_EQ(OH5write_ATTRIBUTE(place.id(), "nele", nullptr, ORV_INT, 0, &i), 1);
  EXPECT_EQ(LastText(), "OH5write_ATTRIBUTE::\n\t \"nele\" fail to write");
}

TEST_F(AttributeWrite, RefusesNullArgumentsAndTextsWithoutASize) {
  const std::int32_t i = 77;
  EXPECT_EQ(Write(nullptr, ORV_INT, &i), 1);
  EXPECT_EQ(Write("nele", ORV_INT, nullptr), 1);
  EXPECT_EQ(Write("etyp", ORV_CHAR, "x", 0), 1);
  EXPECT_EQ(LastText(), "OH5write_ATTRIBUTE::\n\t \"etyp\" fail to write");
}

}  // namespace
