// The pool that readers come from and go back to.

#include "h5/reader_pool.h"

#include <algorithm>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr unsigned kReadOnly = 0, kReadWrite = 1;

class ReaderPool : public H5Test {
 protected:
  ReaderPool() { (void)file_.path(); }  // closed: the open files are counted
  ~ReaderPool() override { pool_.Clear(); }

  /// Requests and releases a reader; the answer is only good for comparing.
  const IOH5Reader* PassThrough(const std::string& path) {
    IOH5Reader* reader = pool_.Request(path.c_str(), kReadOnly);
    const IOH5Reader* was = reader;
    EXPECT_EQ(pool_.Release(reader), 0);
    EXPECT_EQ(reader, nullptr);
    return was;
  }
  static int OpenFiles() { return static_cast<int>(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_FILE)); }

  ForgedFile file_{"pool"};
  OH5ReaderPool pool_;
};

TEST_F(ReaderPool, ClosesAReaderThatComesBack) {
  IOH5Reader* reader = pool_.Request(file_.path().c_str(), kReadOnly);
  ASSERT_NE(reader, nullptr);
  EXPECT_GE(reader->GetFileId(), 0);
  EXPECT_EQ(pool_.GetNumOpen(), 0u);
  EXPECT_EQ(OpenFiles(), 1);
  EXPECT_EQ(pool_.Release(reader), 0);
  EXPECT_EQ(reader, nullptr);
  EXPECT_EQ(OpenFiles(), 0);
}

TEST_F(ReaderPool, AnswersOneWhenNothingComesBack) {
  IOH5Reader* none = nullptr;
  EXPECT_EQ(pool_.Release(none), 1);
}

TEST_F(ReaderPool, AnswersAClosedReaderForAFileThatDoesNotOpen) {
  IOH5Reader* reader = pool_.Request(TempPath("nowhere").c_str(), kReadOnly);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->GetFileId(), -1);
  EXPECT_EQ(pool_.Release(reader), 0);
}

TEST_F(ReaderPool, OpensWithTheFlagsHandedIn) {
  IOH5Reader* reader = pool_.Request(file_.path().c_str(), kReadWrite);
  unsigned intent = 99;
  EXPECT_GE(H5Fget_intent(reader->GetFileId(), &intent), 0);
  EXPECT_EQ(intent, H5F_ACC_RDWR);
  EXPECT_EQ(pool_.Release(reader), 0);
}

TEST_F(ReaderPool, TakesBackslashesForSlashes) {
  std::string path = file_.path();
  std::ranges::replace(path, '/', '\\');
  pool_.KeepOpen(path.c_str(), 1);
  const IOH5Reader* first = PassThrough(path);
  EXPECT_EQ(OpenFiles(), 1);
  EXPECT_EQ(PassThrough(file_.path()), first);
  EXPECT_EQ(pool_.GetNumOpen(), 1u);
}

TEST_F(ReaderPool, KeepsTheReaderOfAMarkedFileOpen) {
  pool_.KeepOpen(file_.path().c_str(), 1);
  const IOH5Reader* first = PassThrough(file_.path());
  EXPECT_EQ(OpenFiles(), 1);
  EXPECT_EQ(PassThrough(file_.path()), first);
  EXPECT_EQ(OpenFiles(), 1);
}

TEST_F(ReaderPool, AnswersAKeptReaderWhateverFlagsAreAsked) {
  pool_.KeepOpen(file_.path().c_str(), 1);
  const IOH5Reader* first = PassThrough(file_.path());
  IOH5Reader* second = pool_.Request(file_.path().c_str(), kReadWrite);
  EXPECT_EQ(second, first);
  EXPECT_EQ(pool_.Release(second), 0);
}

TEST_F(ReaderPool, KeepsOnlyFilesMarkedWithOne) {
  for (const int mark : {0, 2, -1}) {
    pool_.KeepOpen(file_.path().c_str(), mark);
    PassThrough(file_.path());
    EXPECT_EQ(pool_.GetNumOpen(), 0u) << mark;
    EXPECT_EQ(OpenFiles(), 0) << mark;
  }
}

TEST_F(ReaderPool, ClosesTheOldestReaderAboveFive) {
  std::vector<ForgedFile> files;
  std::vector<const IOH5Reader*> readers;
  for (int i = 0; i < 6; ++i) {
    pool_.KeepOpen(files.emplace_back("many").path().c_str(), 1);
    readers.push_back(PassThrough(files.back().path()));
    EXPECT_EQ(pool_.GetNumOpen(), static_cast<size_t>(std::min(i + 1, 5)));
  }
  EXPECT_EQ(OpenFiles(), 5);
  EXPECT_EQ(PassThrough(files[1].path()), readers[1]);
  EXPECT_EQ(PassThrough(files[5].path()), readers[5]);
  EXPECT_EQ(pool_.GetNumOpen(), 5u);
  PassThrough(files[0].path());  // was closed: opened anew, and the second is the oldest now
  EXPECT_EQ(pool_.GetNumOpen(), 5u);
  EXPECT_EQ(PassThrough(files[2].path()), readers[2]);
}

TEST_F(ReaderPool, RemovesByPathByReaderByAgeAndAll) {
  std::vector<ForgedFile> files;
  std::vector<const IOH5Reader*> readers;
  for (int i = 0; i < 5; ++i) {
    pool_.KeepOpen(files.emplace_back("many").path().c_str(), 1);
    readers.push_back(PassThrough(files.back().path()));
  }
  pool_.RemovePath(files[1].path().c_str());
  pool_.RemovePath(files[1].path().c_str());
  EXPECT_EQ(pool_.GetNumOpen(), 4u);
  pool_.RemoveReader(readers[4]);
  pool_.RemoveReader(nullptr);
  EXPECT_EQ(pool_.GetNumOpen(), 3u);
  pool_.RemoveOldest();
  EXPECT_EQ(pool_.GetNumOpen(), 2u);
  EXPECT_EQ(PassThrough(files[2].path()), readers[2]);
  EXPECT_EQ(PassThrough(files[3].path()), readers[3]);
  PassThrough(files[0].path());
  EXPECT_EQ(pool_.GetNumOpen(), 3u);
  pool_.Clear();
  EXPECT_EQ(pool_.GetNumOpen(), 0u);
  EXPECT_EQ(OpenFiles(), 0);
  pool_.RemoveOldest();
}

TEST_F(ReaderPool, OfTheProcessIsOne) {
  EXPECT_EQ(&OH5ReaderPool::Get(), &OH5ReaderPool::Get());
  EXPECT_EQ(OH5ReaderPool::Get().GetNumOpen(), 0u);
}

}  // namespace
