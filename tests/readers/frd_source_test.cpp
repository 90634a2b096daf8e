// Lines and bytes of a .frd file, plain and packed, and files that cannot be read at all.
#include "frd/source.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "frd/error.h"
#include "program/frd_forge.h"

namespace {

using frd_forge::Packed;
using frd_forge::TempFile;
using orvio::frd::Error;
using orvio::frd::Source;

/// The message of the error that reading all lines of a file ends with; empty without one.
std::string MessageOf(const std::filesystem::path& path) {
  try {
    Source source(path);
    for (std::string_view line; source.NextLine(line);) {
    }
    return {};
  } catch (const Error& error) {
    return error.what();
  }
}

TEST(FrdSource, GivesLinesAndRawBytesInTurn) {
  const TempFile file("one\ntwo\nRAW!three\n");
  Source source(file.path());
  std::string_view line;
  ASSERT_TRUE(source.NextLine(line));
  EXPECT_EQ(line, "one");
  ASSERT_TRUE(source.NextLine(line));
  source.UnreadLine();
  ASSERT_TRUE(source.NextLine(line));
  EXPECT_EQ(line, "two");
  EXPECT_EQ(source.Where(), "line 2");
  char raw[4];
  ASSERT_EQ(source.NextBytes(raw, 4), 4u);
  EXPECT_EQ(std::string_view(raw, 4), "RAW!");
  EXPECT_EQ(source.Where(), "byte 12");
  ASSERT_TRUE(source.NextLine(line));
  EXPECT_EQ(line, "three");
  EXPECT_EQ(source.Where(), "byte 12");
  EXPECT_FALSE(source.NextLine(line));
}

TEST(FrdSource, TellsWhetherTheLastLineHasItsEnd) {
  const TempFile file("one\ntw");
  Source source(file.path());
  std::string_view line;
  ASSERT_TRUE(source.NextLine(line));
  EXPECT_TRUE(source.ended());
  ASSERT_TRUE(source.NextLine(line));
  EXPECT_EQ(line, "tw");
  EXPECT_FALSE(source.ended());
  EXPECT_FALSE(source.NextLine(line));
}

TEST(FrdSource, TakesLineEndsOfBothKindsAndEmptyLines) {
  const TempFile file("one\r\n\n\r\ntwo\r\n");
  Source source(file.path());
  std::string all;
  for (std::string_view line; source.NextLine(line);) all += '[' + std::string(line) + ']';
  EXPECT_EQ(all, "[one][][][two]");
}

TEST(FrdSource, GivesFewerBytesOnlyAtTheEnd) {
  const TempFile file("12345");
  Source source(file.path());
  char raw[10];
  EXPECT_EQ(source.NextBytes(raw, 3), 3u);
  EXPECT_EQ(source.NextBytes(raw, 10), 2u);
  EXPECT_EQ(source.NextBytes(raw, 10), 0u);
}

TEST(FrdSource, ReadsAcrossItsBufferPackedOrNot) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "line " + std::to_string(i) + "\n";
  for (const std::string& bytes : {text, Packed(text)}) {
    const TempFile file(bytes);
    Source source(file.path());
    std::string read;
    for (std::string_view line; source.NextLine(line);) read.append(line) += '\n';
    EXPECT_TRUE(read == text);
    Source raw(file.path());
    std::string all(text.size() + 1, '\0');
    EXPECT_EQ(raw.NextBytes(all.data(), all.size()), text.size());
    all.pop_back();
    EXPECT_TRUE(all == text);
  }
}

TEST(FrdSource, TellsHowMuchOfTheFileIsRead) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += std::to_string(i * 7919 % 104729) + "\n";
  for (const std::string& bytes : {text, Packed(text)}) {
    const TempFile file(bytes);
    Source source(file.path());
    EXPECT_EQ(source.fraction(), 0.0);
    std::string half(text.size() / 2, '\0');
    ASSERT_EQ(source.NextBytes(half.data(), half.size()), half.size());
    EXPECT_NEAR(source.fraction(), 0.5, 0.2);
    ASSERT_EQ(source.NextBytes(half.data(), half.size()), half.size());
    EXPECT_NEAR(source.fraction(), 1.0, 0.2);
  }
}

TEST(FrdSource, RefusesAFileThatIsMissing) {
  EXPECT_EQ(MessageOf(TempFile::NewPath()), "cannot be opened: No such file or directory");
}

TEST(FrdSource, RefusesADirectory) { EXPECT_EQ(MessageOf(testing::TempDir()), "is a directory, not a file"); }

TEST(FrdSource, RefusesAPipeWithoutWaitingForItsWriter) {
  const TempFile place("");
  std::filesystem::remove(place.path());
  ASSERT_EQ(mkfifo(place.path().c_str(), 0600), 0);
  EXPECT_EQ(MessageOf(place.path()), "is not a regular file");
}

TEST(FrdSource, RefusesALineThatNeverEnds) {
  const TempFile file("short\n" + std::string(1000000, 'x'));
  EXPECT_EQ(MessageOf(file.path()), "byte 6: not a .frd file: a line without an end");
}

TEST(FrdSource, TakesALineOf4096BytesAndNoLonger) {
  EXPECT_EQ(MessageOf(TempFile(std::string(4096, 'x') + "\n").path()), "");
  EXPECT_NE(MessageOf(TempFile(std::string(4097, 'x') + "\n").path()), "");
}

TEST(FrdSource, ReportsAPackedFileThatIsCutOffAnywhere) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += std::to_string(i * 7919 % 104729) + "\n";
  const std::string packed = Packed(text);
  for (const size_t size : {packed.size() - 1, packed.size() - 8, packed.size() / 2, size_t(12), size_t(3), size_t(2)})
    EXPECT_EQ(MessageOf(TempFile(packed.substr(0, size)).path()), "the gzip stream is cut off") << size;
}

TEST(FrdSource, ReportsAPackedFileThatIsDamaged) {
  std::string packed = Packed("some text that is long enough to be packed, packed, packed\n");
  packed[packed.size() - 6] ^= 1;  // in the checksum
  EXPECT_EQ(MessageOf(TempFile(packed).path()).substr(0, 26), "the gzip stream is damaged");
}

}  // namespace
