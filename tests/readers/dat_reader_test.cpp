// Integration-point tables of forged .dat files. What becomes of them in a result file: import_points_test.
#include "frd/dat_reader.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "program/frd_forge.h"

namespace {

using namespace orvio::frd;
using frd_forge::Packed;
using frd_forge::TempFile;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kStresses[] =
    "\n stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set EALL and time  0.1000000E+00\n"
    "\n"
    "         7   1  1.313276E-09  1.295357E-09  9.642656E+01 -1.812452E-11  1.521624E-10  1.508398E-10\n"
    "         7   2 -1.000000E+00  2.000000E+00  3.000000E+00  4.000000E+00  5.000000E+00 -6.000000E+00\n"
    "\n";
constexpr char kPlasticStrain[] =
    "\n equivalent plastic strain (elem, integ.pnt.,pe)for set EALL and time  0.2000000E+00\n\n";

std::vector<PointResult> ResultsOf(const std::string& bytes) {
  const TempFile file(bytes);
  DatReader reader(file.path());
  std::vector<PointResult> results;
  for (PointResult result; reader.NextResult(result);) results.push_back(result);
  return results;
}

std::string ErrorOf(const std::string& bytes) {
  try {
    ResultsOf(bytes);
    return "no error";
  } catch (const Error& error) {
    return error.what();
  }
}

/// A table of one component and these rows.
std::string Table(const std::string& rows) {
  return " energy (elem, integ.pnt.,e) for set ALL and time  1.0000000E+00\n\n" + rows;
}

TEST(DatReader, HasTheFieldsOfATable) {
  const auto results = ResultsOf(kStresses);
  ASSERT_EQ(results.size(), 1U);
  EXPECT_EQ(results[0].name, "stresses");
  EXPECT_EQ(results[0].set, "EALL");
  EXPECT_EQ(results[0].time, 0.1);
  EXPECT_THAT(results[0].components, ElementsAre("sxx", "syy", "szz", "sxy", "sxz", "syz"));
  EXPECT_THAT(results[0].elements, ElementsAre(7, 7));
  EXPECT_THAT(results[0].points, ElementsAre(1, 2));
  EXPECT_THAT(results[0].values, ElementsAre(1.313276E-09F, 1.295357E-09F, 96.42656F, -1.812452E-11F, 1.521624E-10F,
                                             1.508398E-10F, -1, 2, 3, 4, 5, -6));
}

TEST(DatReader, TakesPackedFiles) { EXPECT_EQ(ResultsOf(Packed(kStresses)).size(), 1U); }

TEST(DatReader, TakesOneTableAfterTheOther) {
  const auto results = ResultsOf(std::string(kStresses) + Table("         9   1  5.000000E-01\n") + kStresses);
  ASSERT_EQ(results.size(), 3U);
  EXPECT_EQ(results[1].name, "energy");
  EXPECT_THAT(results[1].components, ElementsAre("e"));
  EXPECT_THAT(results[1].values, ElementsAre(0.5F));
  EXPECT_EQ(results[2].name, "stresses");
}

TEST(DatReader, PassesOverNodesAndOtherText) {
  const auto results = ResultsOf(
      " displacements (vx,vy,vz) for set NALL and time  0.1000000E+00\n\n"
      "         1  0.000000E+00  0.000000E+00  0.000000E+00\n\n"
      "     E I G E N V A L U E   O U T P U T\n" +
      std::string(kStresses) + "     volume (element, volume) for set EALL and time  0.1\n\n         7  1.0\n");
  ASSERT_EQ(results.size(), 1U);
  EXPECT_EQ(results[0].elements.size(), 2U);
}

TEST(DatReader, TakesATableWithoutRows) {
  const auto results = ResultsOf(Table("\n"));
  ASSERT_EQ(results.size(), 1U);
  EXPECT_TRUE(results[0].values.empty());
}

TEST(DatReader, TakesSetNamesThatTouchTheListOfComponents) {
  const auto results = ResultsOf(kPlasticStrain);
  ASSERT_EQ(results.size(), 1U);
  EXPECT_EQ(results[0].name, "equivalent plastic strain");
  EXPECT_EQ(results[0].set, "EALL");
}

TEST(DatReader, TakesElementIdsOfTenDigits) {
  EXPECT_THAT(ResultsOf(Table("2147483647   1  1.000000E+00\n"))[0].elements, ElementsAre(2147483647));
}

TEST(DatReader, OfAnEmptyFileHasNoTable) { EXPECT_TRUE(ResultsOf("").empty()); }

TEST(DatReader, RefusesATimeThatIsNoNumber) {
  EXPECT_THAT(ErrorOf(" energy (elem, integ.pnt.,e) for set ALL and time  soon\n\n"),
              HasSubstr("line 1: energy of set ALL: time is not a number: \" soon\""));
}

TEST(DatReader, RefusesAValueThatIsNoNumber) {
  EXPECT_THAT(ErrorOf(Table("         9   1  5.000x00E-01\n")),
              HasSubstr("line 3: energy of set ALL: e is not a number"));
}

TEST(DatReader, RefusesARowThatIsTooShort) {
  EXPECT_THAT(ErrorOf(Table("         9   1\n")), HasSubstr("line 3: energy of set ALL: e is not a number"));
}

TEST(DatReader, RefusesARowWithoutElementOrPoint) {
  EXPECT_THAT(ErrorOf(Table("         x   1  1.000000E+00\n")), HasSubstr("no element and integration point"));
  EXPECT_THAT(ErrorOf(Table("         9   0  1.000000E+00\n")), HasSubstr("no element and integration point"));
  EXPECT_THAT(ErrorOf(Table("99999999999 1  1.000000E+00\n")), HasSubstr("no element and integration point"));
}

TEST(DatReader, RefusesValuesInLocalAxes) {
  EXPECT_THAT(ErrorOf(Table("         9   1  1.000000E+00  RADIAL\n")),
              HasSubstr("values in local axes \"RADIAL\"; print them with GLOBAL=YES"));
}

TEST(DatReader, RefusesAFileThatEndsWithinARow) {
  EXPECT_THAT(ErrorOf(Table("         9   1  1.000000E+00")), HasSubstr("the file ends within a row"));
}

TEST(DatReader, RefusesAHeadingWithoutAnEmptyLineBelow) {
  EXPECT_THAT(ErrorOf(" energy (elem, integ.pnt.,e) for set ALL and time  1.0\n         9   1  1.000000E+00\n"),
              HasSubstr("line 2: energy of set ALL: no empty line below the heading"));
}

}  // namespace
