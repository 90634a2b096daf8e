// .frd files that are cut off, lie about their counts or are none at all: an Error that says where and what, or a result
// that is known to be incomplete, and never more memory than the file delivers.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "frd/reader.h"
#include "program/frd_forge.h"

namespace {

using namespace orvio::frd;
using namespace frd_forge;

struct Outcome {
  std::string error;      // empty: none
  bool complete = false;  // the end mark was reached
  size_t results = 0;
  size_t values = 0;
};

Outcome ReadAll(const std::string& bytes) {
  const TempFile file(bytes);
  Outcome outcome;
  try {
    Reader reader(file.path());
    reader.ReadHeader();
    reader.ReadNodes();
    reader.ReadElements();
    for (Result result; reader.NextResult(result); ++outcome.results) outcome.values += result.values.size();
    outcome.complete = reader.complete();
  } catch (const Error& error) {
    outcome.error = error.what();
  }
  return outcome;
}

std::string ErrorOf(const std::string& bytes) { return ReadAll(bytes).error; }

/// Two results in text; the first with continuation lines.
std::string TextFile() {
  return Mesh() + kStep + StateLine(1, 1) +
         " -4  DISP        4    1\n -5  D1          1    2    1    0\n -5  D2          1    2    2    0\n"
         " -5  D3          1    2    3    0\n -5  ALL         1    2    0    0    1ALL\n"
         " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" +
         Temperatures() + kEnd;
}

/// The same kind of file, all blocks binary.
std::string BinaryFile() {
  const std::string block = StateLine(2, 2) + kTemperature + Raw(1, 1.5f) + Raw(2, 2.5f);
  return kHeader + BlockLine("    2C", 2, 3) + Raw(1, 0.0, 0.0, 0.0) + Raw(2, 1.0, 0.0, 0.0) +
         BlockLine("    3C", 1, 2) + Raw(11, 11, 0, 1, 1, 2) + kStep + block + kStep + block + kEnd;
}

/// Cuts a file of two results after every byte. It may be read without an error only where a block is whole: behind
/// the elements, behind each result, and behind the end mark with or without its line end.
void CutEverywhere(const std::string& bytes, size_t elements_end, size_t first_end, size_t second_end) {
  for (size_t size = 0; size <= bytes.size(); ++size) {
    const Outcome outcome = ReadAll(bytes.substr(0, size));
    const size_t line_end = bytes.substr(elements_end - 4, 4) == " -3\n" ? 1 : 0;  // may be missing, too
    const auto whole = [&](size_t end) { return size == end || size == end - line_end; };
    const bool complete = size + 1 >= bytes.size();
    const bool readable = whole(elements_end) || whole(first_end) || whole(second_end) || complete;
    EXPECT_EQ(outcome.error.empty(), readable) << size << ": " << outcome.error;
    EXPECT_EQ(outcome.complete, complete) << size;
    if (!readable || complete) continue;
    const size_t results = whole(elements_end) ? 0 : whole(first_end) ? 1 : 2;
    EXPECT_EQ(outcome.results, results) << size;
  }
}

TEST(FrdDamage, OfATextFileCutAnywhereIsNoticed) {
  const std::string bytes = TextFile();
  const size_t second_end = bytes.size() - 6;
  CutEverywhere(bytes, Mesh().size(), second_end - Temperatures().size(), second_end);
}

TEST(FrdDamage, OfABinaryFileCutAnywhereIsNoticed) {
  const std::string bytes = BinaryFile();
  const size_t second_end = bytes.size() - 6;
  const size_t first_end = bytes.rfind("    1PSTEP");
  CutEverywhere(bytes, bytes.find("    1PSTEP"), first_end, second_end);
}

TEST(FrdDamage, OfAPackedFileCutAnywhereIsNoticed) {
  const std::string packed = Packed(TextFile());
  for (size_t size = 0; size < packed.size(); ++size) {
    const Outcome outcome = ReadAll(packed.substr(0, size));
    EXPECT_FALSE(outcome.error.empty()) << size;
    EXPECT_FALSE(outcome.complete) << size;
  }
  EXPECT_TRUE(ReadAll(packed).complete);
}

TEST(FrdDamage, OfAnyBitNeverCrashes) {
  for (std::string bytes : {TextFile(), BinaryFile()}) {
    for (size_t i = 0; i < bytes.size(); ++i) {
      for (const char flip : {'\x01', '\x10', '\x80'}) {
        bytes[i] ^= flip;
        const Outcome outcome = ReadAll(bytes);
        EXPECT_LE(outcome.values, bytes.size());
        bytes[i] ^= flip;
      }
    }
  }
}

TEST(FrdDamage, SaysWhatIsMissing) {
  const std::string text = TextFile();
  EXPECT_EQ(ErrorOf(Mesh() + kStep), "line 13: result block: the file ends in the middle of it");
  EXPECT_EQ(ErrorOf(Mesh() + kStep + kState + kTemperature),
            "line 16: result NDTEMP: the file ends after 0 of 2 nodes");
  EXPECT_EQ(ErrorOf(Mesh() + kStep + kState + kTemperature + " -1         1 3.70000E+02\n"),
            "line 17: result NDTEMP: the file ends after 1 of 2 nodes");
  EXPECT_EQ(ErrorOf(Mesh() + kStep + kState + kTemperature + " -1         1 3.70000E+0"),
            "line 17: result NDTEMP: the file ends in the middle of a line");
  const std::string binary = BinaryFile();
  EXPECT_EQ(ErrorOf(binary.substr(0, binary.size() - 7)),
            "byte " + std::to_string(binary.size() - 7) + ": result NDTEMP: the file ends after 1 of 2 nodes");
  const size_t element = binary.find("    1PSTEP") - 4;
  EXPECT_EQ(ErrorOf(binary.substr(0, element)),
            "byte " + std::to_string(element) + ": element block: the file ends after 0 of 1 elements");
}

TEST(FrdDamage, OfARunThatStoppedInItsInputIsAMissingMesh) {
  EXPECT_EQ(ErrorOf("    1C\n"), "line 1: header: the file ends before the mesh is complete");
  EXPECT_EQ(ErrorOf(kHeader), "line 3: header: the file ends before the mesh is complete");
  EXPECT_EQ(ErrorOf(std::string(kHeader) + kEnd), "line 4: node block: the file ends before the mesh is complete");
  EXPECT_EQ(ErrorOf(std::string(kHeader) + kNodes), "line 8: element block: the file ends before the mesh is complete");
  EXPECT_EQ(ErrorOf(std::string(kHeader) + kNodes + kEnd),
            "line 9: element block: the file ends before the mesh is complete");
}

TEST(FrdDamage, MakesAFileWithoutEndMarkIncomplete) {
  const Outcome outcome = ReadAll(Mesh() + Temperatures());
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.results, 1u);
  EXPECT_FALSE(outcome.complete);
  EXPECT_TRUE(ReadAll(Mesh() + kEnd).complete);
}

TEST(FrdDamage, IsNoneInAFileWithOtherLineEnds) {
  std::string bytes;
  for (const char c : TextFile()) bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
  const Outcome outcome = ReadAll(bytes);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.results, 2u);
  EXPECT_TRUE(outcome.complete);
}

TEST(FrdDamage, OfAFileOfAnotherKindIsCalledThat) {
  const std::string expected = "line 1: header: not a .frd file: it does not begin with 1C";
  EXPECT_EQ(ErrorOf(""), expected);
  EXPECT_EQ(ErrorOf("hello"), expected);
  EXPECT_EQ(ErrorOf("hello\nworld\n"), expected);
  EXPECT_EQ(ErrorOf("\x89HDF\r\n\x1a\n" + std::string(1000, '\0')), expected);
  EXPECT_EQ(ErrorOf(std::string(100000, '\0')), "byte 0: not a .frd file: a line without an end");
  EXPECT_EQ(ErrorOf(Packed("hello\n")), expected);
}

TEST(FrdDamage, OfCountsIsNoticedInEveryBlock) {
  const std::string nodes = std::string(kNodes).substr(std::string(kNodes).find('\n') + 1);
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 4, 1) + nodes + kElements),
            "line 8: node block: holds 3 nodes, its first line says 4");
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 2, 1) + nodes + kElements),
            "line 8: node block: holds 3 nodes, its first line says 2");
  const std::string elements = std::string(kElements).substr(std::string(kElements).find('\n') + 1);
  EXPECT_EQ(ErrorOf(std::string(kHeader) + kNodes + BlockLine("    3C", 2, 1) + elements),
            "line 12: element block: holds 1 elements, its first line says 2");
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(3, 1) + kTemperature + kTemperatures + kEnd),
            "line 18: result NDTEMP: holds 2 nodes, its first line says 3");
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(1, 1) + kTemperature + kTemperatures + kEnd),
            "line 18: result NDTEMP: holds 2 nodes, its first line says 1");
  EXPECT_NE(ErrorOf(Mesh() + StateLine(1, 2) + kTemperature + Raw(1, 1.0f, 2, 2.0f) + kEnd), "");
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(-1, 1) + kTemperature + kTemperatures),
            "line 13: result block: number of nodes is not a count: \"-1\"");
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(2, 1) + " -4  NDTEMP     -1    1\n" + kTemperatures),
            "line 14: result NDTEMP: number of components is not a count: -1");
}

// A reader that trusted one of these counts would ask for terabytes: that is std::bad_alloc and no Error.
TEST(FrdDamage, OfHugeCountsCostsNoMemory) {
  const long long huge = 999999999999;
  for (const int format : {0, 1, 2, 3}) {
    EXPECT_NE(ErrorOf(kHeader + BlockLine("    2C", huge, format) + " -1         1 0.0"), "") << format;
    EXPECT_NE(ErrorOf(Mesh() + StateLine(huge, format) + kTemperature + " -1         1 0.0\n"), "") << format;
    if (format < 3) {
      EXPECT_NE(ErrorOf(std::string(kHeader) + kNodes + BlockLine("    3C", huge, format) + Raw(1, 11, 0, 1)), "")
          << format;
    }
  }
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(1, 2) + " -4  DISP    99999    1\n -5  D1          1    1    0    0\n"),
            "line 15: result DISP: the file ends in the middle of it");
}

TEST(FrdDamage, OfFormatCodesIsNoticed) {
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 1, 4)), "line 4: node block: format code 4 is not known");
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 1, -1)), "line 4: node block: format code -1 is not known");
  EXPECT_EQ(ErrorOf(std::string(kHeader) + kNodes + BlockLine("    3C", 1, 3)),
            "line 9: element block: format code 3 is not known");
}

TEST(FrdDamage, OfACoordinateIsReportedWithItsNode) {
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 1, 1) + " -1        42 0.00000E+00        oops 0.00000E+00\n"),
            "line 5: node block, node 42: coordinate is not a number: \"oops\"");
  EXPECT_EQ(ErrorOf(kHeader + BlockLine("    2C", 1, 1) + " -19999999999 0.00000E+00 0.00000E+00 0.00000E+00\n"),
            "line 5: node block: node id is not a number: \"9999999999\"");
}

TEST(FrdDamage, ShowsNoControlCharactersOfTheFile) {
  EXPECT_EQ(ErrorOf(Mesh() + "\x1b[31mred\n"), "line 13: result block: unexpected line: \"?[31mred\"");
  EXPECT_EQ(ErrorOf(Mesh() + StateLine(1, 1) +
                    " -4  A\x1b\x07"
                    "B        1    9\n"),
            "line 14: result A??B: entity kind 9 is not known, only nodal results (1) are");
}

TEST(FrdReader, RefusesToReadPartsTwiceOrOutOfOrder) {
  const TempFile file(Mesh());
  Reader reader(file.path());
  Result result;
  EXPECT_THROW((void)reader.ReadNodes(), std::logic_error);
  EXPECT_THROW((void)reader.NextResult(result), std::logic_error);
  reader.ReadHeader();
  EXPECT_THROW((void)reader.ReadHeader(), std::logic_error);
}

}  // namespace
