// What the reader asks of itself: through its interface, so that a class derived from it is asked.

#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"

namespace {

using namespace orv_test;

constexpr unsigned kReadOnly = 0;

class ReaderInterface : public H5Test {
 protected:
  ForgedFile file_{"reader"};
};

/// Counts what the reader asks of itself.
class CountingReader : public OH5Reader {
 public:
  int CloseFile() override {
    ++closes;
    return OH5Reader::CloseFile();
  }
  int ReadFileVersion(int& major, int& minor, int& patch) override {
    ++version_reads;
    return OH5Reader::ReadFileVersion(major, minor, patch);
  }
  int closes = 0;
  int version_reads = 0;
};

TEST_F(ReaderInterface, ReadsTheMajorVersionOnceAndThroughItsInterface) {
  CountingReader reader;
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader.IsFileMajorAtMost(2));
  EXPECT_FALSE(reader.IsFileMajorAtMost(1));
  EXPECT_EQ(reader.version_reads, 1);
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_TRUE(reader.IsFileMajorAtMost(2));
  EXPECT_EQ(reader.version_reads, 2);
}

TEST_F(ReaderInterface, ClosesThroughItsInterfaceBeforeItOpens) {
  CountingReader reader;
  EXPECT_EQ(reader.OpenFile(file_.path().c_str(), kReadOnly), 0);
  EXPECT_EQ(reader.OpenFile(nullptr, kReadOnly), 1);
  EXPECT_EQ(reader.closes, 2);
}

}  // namespace
