// Result blocks of forged .frd files. Files cut off or lying about counts: frd_damage_test.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "frd/reader.h"
#include "program/frd_forge.h"

namespace {

using namespace orvio::frd;
using namespace frd_forge;

/// All results of a file with these bytes behind the mesh.
std::vector<Result> ResultsOf(const std::string& bytes) {
  const TempFile file(Mesh() + bytes);
  Reader reader(file.path());
  reader.ReadHeader();
  reader.ReadNodes();
  reader.ReadElements();
  std::vector<Result> results;
  for (Result result; reader.NextResult(result);) results.push_back(result);
  EXPECT_EQ(reader.complete(), bytes.ends_with(kEnd));
  return results;
}

Result ResultOf(const std::string& bytes) {
  const std::vector<Result> results = ResultsOf(bytes + kEnd);
  EXPECT_EQ(results.size(), 1u);
  return results.empty() ? Result() : results[0];
}

std::string ErrorOf(const std::string& bytes) {
  try {
    ResultsOf(bytes);
    return "no error";
  } catch (const Error& error) {
    return error.what();
  }
}

/// A ` -4` line and scalar components C1, C2, ...
std::string Scalars(int count) {
  char line[60];
  std::snprintf(line, sizeof line, " -4  SDV     %5d    1\n", count);
  std::string lines = line;
  for (int i = 1; i <= count; ++i) {
    std::snprintf(line, sizeof line, " -5  C%-7d    1    1    0    0\n", i);
    lines += line;
  }
  return lines;
}

TEST(FrdResult, HasTheFieldsOfItsState) {
  const Result result =
      ResultOf(std::string("    1PSTEP                         4           0           2          \n") +
               "    1PGM                1.000000E+00                                  \n"
               "    1PGK                6.209449E+06                                  \n"
               "    1PHID                         -1                                  \n"
               "    1PSUBC                         0                                  \n"
               "    1PMODE                         7                                  \n"
               "  100CL  101 396.5944823           2some text            2    9MODAL      1\n" +
               kTemperature + kTemperatures);
  ASSERT_TRUE(result.step.has_value());
  EXPECT_EQ(result.step->block, 4);
  EXPECT_EQ(result.step->increment, 0);
  EXPECT_EQ(result.step->step, 2);
  std::string parameters;
  for (const Parameter& parameter : result.parameters) parameters += parameter.name + "=" + parameter.text + ";";
  EXPECT_EQ(parameters, "GM=1.000000E+00;GK=6.209449E+06;HID=-1;SUBC=0;MODE=7;");
  EXPECT_EQ(result.set_name, "L  101");
  EXPECT_EQ(result.value, 396.5944823);
  EXPECT_EQ(result.value_text, "396.5944823");
  EXPECT_EQ(result.text, "some text");
  EXPECT_EQ(result.analysis_type, 2);
  EXPECT_EQ(result.state_number, 9);
  EXPECT_EQ(result.analysis_name, "MODAL");
  EXPECT_EQ(result.format, 1);
  EXPECT_EQ(result.name, "NDTEMP");
  EXPECT_EQ(result.ids, (std::vector<int32_t>{1, 5}));
  EXPECT_EQ(result.values, (std::vector<float>{370.0f, -1.68156e-44f}));
}

TEST(FrdResult, ReadsStateFieldsThatTouchEachOther) {
  const Result result = ResultOf(std::string("    1PSTEP              000000000004-00000000005000000000006\n") +
                                 "  100CSET001-1.23456E-0500000000000212345678901234567890 199999MODALMODAL 1\n" +
                                 kTemperature + kTemperatures);
  EXPECT_EQ(result.step->block, 4);
  EXPECT_EQ(result.step->increment, -5);
  EXPECT_EQ(result.step->step, 6);
  EXPECT_EQ(result.set_name, "SET001");
  EXPECT_EQ(result.value, -1.23456e-05);
  EXPECT_EQ(result.text, "12345678901234567890");
  EXPECT_EQ(result.analysis_type, 1);
  EXPECT_EQ(result.state_number, 99999);
  EXPECT_EQ(result.analysis_name, "MODALMODAL");
}

TEST(FrdResult, TakesBlankHeaderFieldsForZeroAndNeedsNoStepLine) {
  const Result result = ResultOf(
      "  100C                             2                                     1\n"
      " -4  NDTEMP      1    1\n -5  T\n" +
      std::string(kTemperatures));
  EXPECT_FALSE(result.step.has_value());
  EXPECT_EQ(result.set_name, "");
  EXPECT_EQ(result.value, 0.0);
  EXPECT_EQ(result.value_text, "");
  EXPECT_EQ(result.state_number, 0);
  ASSERT_EQ(result.components.size(), 1u);
  EXPECT_TRUE(result.components[0].stored);
  EXPECT_EQ(result.components[0].type, 0);
}

TEST(FrdResult, SkipsTheComponentThatIsCountedButNotStored) {
  const Result result = ResultOf(StateLine(2, 1) +
                                 " -4  DISP        4    1\n"
                                 " -5  D1          1    2    1    0\n"
                                 " -5  D2          1    2    2    0\n"
                                 " -5  D3          1    2    3    0\n"
                                 " -5  ALL         1    2    0    0    1ALL\n"
                                 " -1        11-1.37740E-04-1.37740E-04-3.00000E+00\n"
                                 " -1         3 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n");
  ASSERT_EQ(result.components.size(), 4u);
  EXPECT_EQ(result.StoredComponents(), 3u);
  EXPECT_EQ(result.components[1].name, "D2");
  EXPECT_EQ(result.components[1].menu, 1);
  EXPECT_EQ(result.components[1].type, 2);
  EXPECT_EQ(result.components[1].first_index, 2);
  EXPECT_EQ(result.components[1].second_index, 0);
  EXPECT_TRUE(result.components[1].stored);
  EXPECT_EQ(result.components[3].name, "ALL");
  EXPECT_EQ(result.components[3].derived, "ALL");
  EXPECT_FALSE(result.components[3].stored);
  EXPECT_EQ(result.ids, (std::vector<int32_t>{11, 3}));
  EXPECT_EQ(result.values, (std::vector<float>{-1.37740e-04f, -1.37740e-04f, -3, 1, 2, 3}));
}

TEST(FrdResult, TakesNamesWithSpecialCharacters) {
  const Result result = ResultOf(StateLine(0, 1) + " -4  ERROR       1    1\n -5  STR(%)      1    1    0    0\n -3\n");
  EXPECT_EQ(result.name, "ERROR");
  EXPECT_EQ(result.components.at(0).name, "STR(%)");
}

TEST(FrdResult, GoesOnOnFurtherLinesAfterSixValues) {
  const Result result =
      ResultOf(StateLine(2, 1) + Scalars(8) +
               " -1         1-1.00000E+00-2.00000E+00-3.00000E+00-4.00000E+00-5.00000E+00-6.00000E+00\n"
               " -2          -7.00000E+00-8.00000E+00\n"
               " -1         2 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00\n"
               " -2           7.00000E+00 8.00000E+00\n -3\n");
  EXPECT_EQ(result.values, (std::vector<float>{-1, -2, -3, -4, -5, -6, -7, -8, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(FrdResult, HasNoFurtherLineForExactlySixOrTwelveValues) {
  const std::string six = " 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00\n";
  const Result one = ResultOf(StateLine(1, 1) + Scalars(6) + " -1         1" + six + " -3\n");
  EXPECT_EQ(one.values, (std::vector<float>{1, 2, 3, 4, 5, 6}));
  const Result two = ResultOf(StateLine(1, 1) + Scalars(12) + " -1         1" + six + " -2          " + six + " -3\n");
  EXPECT_EQ(two.values, (std::vector<float>{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}));
}

TEST(FrdResult, IsReadFromShortText) {
  const Result result = ResultOf(StateLine(1, 0) + Scalars(7) +
                                 " -199999 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00\n"
                                 " -2      7.00000E+00\n -3\n");
  EXPECT_EQ(result.ids, std::vector<int32_t>{99999});
  EXPECT_EQ(result.values, (std::vector<float>{1, 2, 3, 4, 5, 6, 7}));
}

TEST(FrdResult, TakesValuesThatAreNoOrdinaryNumbers) {
  const Result result =
      ResultOf(StateLine(1, 1) + Scalars(6) +
               " -1         1         nan    Infinity        -inf 1.00000-100 1.00000+100 1.00000D+01\n -3\n");
  ASSERT_EQ(result.values.size(), 6u);
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_TRUE(std::isnan(result.values[0]));
  EXPECT_EQ(result.values[1], infinity);
  EXPECT_EQ(result.values[2], -infinity);
  EXPECT_EQ(result.values[3], 0.0f);
  EXPECT_EQ(result.values[4], infinity);
  EXPECT_EQ(result.values[5], 10.0f);
}

TEST(FrdResult, IsReadFromBinaryFloatsWithTheNextBlockRightBehind) {
  const std::string first = StateLine(2, 2) + Scalars(2) + Raw(10, 0.1f, -1e-44f) + Raw(7, 3.0f, 4.0f);
  const std::string second = StateLine(1, 2) + Scalars(1) + Raw(9, 5.0f);
  const std::vector<Result> results = ResultsOf(kStep + first + kStep + second + kEnd);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[0].ids, (std::vector<int32_t>{10, 7}));
  EXPECT_EQ(results[0].values, (std::vector<float>{0.1f, -1e-44f, 3, 4}));
  EXPECT_EQ(results[1].ids, std::vector<int32_t>{9});
  EXPECT_EQ(results[1].values, std::vector<float>{5});
}

TEST(FrdResult, IsReadFromBinaryValuesThatLookLikeText) {
  const std::vector<Result> results =
      ResultsOf(StateLine(2, 2) + Scalars(1) + " 999" + "9\n -" + "3\n 9" + "999\n" + kEnd);
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].ids, (std::vector<int32_t>{0x39393920, 0x39200A33}));
}

TEST(FrdResult, IsReadFromBinaryDoublesAsTheNearestFloats) {
  const Result result = ResultOf(StateLine(1, 3) + Scalars(3) + Raw(10, 0.1, 1e-100, -1e100));
  EXPECT_EQ(result.values, (std::vector<float>{0.1f, 0.0f, -std::numeric_limits<float>::infinity()}));
}

TEST(FrdResult, MayHoldNodesThatTheMeshLacksInAnyOrderAndTwice) {
  const Result result =
      ResultOf(StateLine(3, 1) + Scalars(1) +
               " -1       999 1.00000E+00\n -1         1 2.00000E+00\n -1       999 3.00000E+00\n -3\n");
  EXPECT_EQ(result.ids, (std::vector<int32_t>{999, 1, 999}));
}

TEST(FrdResult, MayHaveNoNodesOrNoStoredComponent) {
  EXPECT_TRUE(ResultOf(StateLine(0, 1) + Scalars(1) + " -3\n").ids.empty());
  EXPECT_TRUE(ResultOf(StateLine(0, 2) + Scalars(1)).ids.empty());
  const Result result =
      ResultOf(StateLine(1, 1) + " -4  DISP        1    1\n -5  ALL         1    2    0    0    1ALL\n" +
               " -1         3\n -3\n");
  EXPECT_EQ(result.ids, std::vector<int32_t>{3});
  EXPECT_TRUE(result.values.empty());
}

TEST(FrdResult, LeavesNothingBehindForTheNextOne) {
  const std::string second = StateLine(1, 1) + Scalars(2) + " -1         9 1.00000E+00 2.00000E+00\n -3\n";
  const std::vector<Result> results =
      ResultsOf("    1PMODE                         7\n" + Temperatures() + second + kEnd);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_FALSE(results[1].step.has_value());
  EXPECT_TRUE(results[1].parameters.empty());
  EXPECT_EQ(results[1].components.size(), 2u);
  EXPECT_EQ(results[1].ids, std::vector<int32_t>{9});
  EXPECT_EQ(results[1].values, (std::vector<float>{1, 2}));
}

TEST(FrdResult, IsEmptyBehindTheLastOneHoweverOftenAsked) {
  const TempFile file(Mesh() + Temperatures() + kEnd);
  Reader reader(file.path());
  reader.ReadHeader();
  reader.ReadNodes();
  reader.ReadElements();
  Result result;
  ASSERT_TRUE(reader.NextResult(result));
  EXPECT_FALSE(reader.complete());
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(reader.NextResult(result));
    EXPECT_TRUE(result.ids.empty() && result.values.empty() && result.name.empty());
    EXPECT_TRUE(reader.complete());
  }
}

TEST(FrdResult, WithAValueThatIsNoNumberIsRefusedWithItsNode) {
  const std::string before = StateLine(2, 1) + Scalars(1) + " -1         1 1.00000E+00\n";
  EXPECT_EQ(ErrorOf(before + " -1        17         abc\n -3\n"),
            "line 17: result SDV, node 17: value is not a number: \"abc\"");
  EXPECT_EQ(ErrorOf(before + " -1        17\n -3\n"), "line 17: result SDV, node 17: value is not a number: \"\"");
  EXPECT_EQ(ErrorOf(before + " -1      1a17 1.00000E+00\n -3\n"),
            "line 17: result SDV: node id is not a number: \"1a17\"");
  EXPECT_EQ(ErrorOf(before + " -1          1.00000E+00\n -3\n"), "line 17: result SDV: node id is not a number: \"\"");
}

TEST(FrdResult, WithLinesOutOfPlaceIsRefused) {
  const std::string state = StateLine(1, 1);
  EXPECT_EQ(ErrorOf("hello\n"), "line 13: result block: unexpected line: \"hello\"");
  EXPECT_EQ(ErrorOf(kStep + Scalars(1)), "line 14: result block: unexpected line: \" -4  SDV         1    1\"");
  EXPECT_EQ(ErrorOf(state + state), "line 14: result block: unexpected line: \"" + state.substr(0, 40) + "...\"");
  EXPECT_EQ(ErrorOf(state + " -4  SDV         2    1\n -5  C1          1    1    0    0\n -1         1 1.00000E+00\n"),
            "line 16: result SDV: unexpected line: \" -1         1 1.00000E+00\"");
  EXPECT_EQ(ErrorOf(state + Scalars(2) + " -5  C3\n"), "line 17: result SDV: unexpected line: \" -5  C3\"");
  EXPECT_EQ(ErrorOf(state + Scalars(7) +
                    " -1         1 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00\n -3\n"),
            "line 23: result SDV: unexpected line: \" -3\"");
}

TEST(FrdResult, WithMoreValuesThanComponentsIsRefused) {
  EXPECT_EQ(ErrorOf(StateLine(1, 1) + Scalars(1) + " -1         1 1.00000E+00 2.00000E+00\n -3\n"),
            "line 16: result SDV: text behind the last field: \"2.00000E+00\"");
}

TEST(FrdResult, OfAKindNobodyHasSeenIsRefused) {
  EXPECT_EQ(ErrorOf(StateLine(1, 4) + Scalars(1)), "line 13: result block: format code 4 is not known");
  EXPECT_EQ(ErrorOf(StateLine(1, 1) + " -4  STRESS      6    3\n"),
            "line 14: result STRESS: entity kind 3 is not known, only nodal results (1) are");
  EXPECT_EQ(ErrorOf(StateLine(1, 1) + " -4  DISP        1    1\n -5  D1          1    2    1    0    2\n"),
            "line 15: result DISP: existence flag 2 is not known");
  EXPECT_EQ(ErrorOf("  100CL  101   notatime           1                     0    1           1\n"),
            "line 13: result block: value of the state is not a number: \"notatime\"");
}

TEST(FrdResult, BehindTheEndMarkIsRefused) {
  EXPECT_EQ(ErrorOf(kEnd + Temperatures()),
            "line 14: end mark: unexpected line: \"" + std::string(kStep).substr(0, 40) + "...\"");
}

TEST(FrdResult, PlacesErrorsByByteOnceABinaryBlockWasRead) {
  const std::string start = StateLine(1, 2) + Scalars(1) + Raw(9, 5.0f);
  EXPECT_EQ(ErrorOf(start + "hello\n"),
            "byte " + std::to_string(Mesh().size() + start.size()) + ": result block: unexpected line: \"hello\"");
}

}  // namespace
