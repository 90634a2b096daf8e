// What a power cut leaves: all that was synced, any part of the rest.

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "faults/power_cut.h"

namespace {

using namespace orvio::faults;

constexpr std::size_t kPage = 4096;

Call MakeCall(Op op, const char* suffix, std::int64_t offset = 0, std::size_t size = 0, char letter = 0) {
  Call call;
  call.op = op;
  std::strcpy(call.suffix, suffix);
  call.offset = offset;
  call.size = static_cast<std::int64_t>(size);
  if (op == Op::kWrite) call.bytes.assign(size, letter);
  return call;
}

class PowerCut : public testing::Test {
 protected:
  void Make(const Call& call) {
    calls_.push_back(std::make_unique<Call>(call));
    disk_.Make(*calls_.back());
  }
  /// What `look` sees in the images of many cuts.
  template <class Look>
  auto Seen(Look look) {
    std::set<decltype(look(Snapshot()))> seen;
    for (unsigned seed = 0; seed < 200; ++seed) seen.insert(look(disk_.Cut(seed)));
    return seen;
  }

  Disk disk_{{Bytes(2 * kPage, 'a'), std::nullopt}};
  std::vector<std::unique_ptr<Call>> calls_;
};

std::string TwoPages(const Snapshot& image) { return {image.file[0], image.file[kPage]}; }
std::size_t Size(const Snapshot& image) { return image.file.size(); }
std::string Journal(const Snapshot& image) {
  if (!image.journal) return "none";
  return image.journal->empty() ? "empty" : std::string(1, image.journal->front());
}

TEST_F(PowerCut, LeavesAnyOfThePagesOfAWrite) {
  Make(MakeCall(Op::kWrite, "", 0, 2 * kPage, 'b'));
  EXPECT_EQ(Seen(TwoPages), (std::set<std::string>{"aa", "ab", "ba", "bb"}));
}

TEST_F(PowerCut, LeavesAllThatWasSynced) {
  Make(MakeCall(Op::kWrite, "", 0, 2 * kPage, 'b'));
  Make(MakeCall(Op::kSync, ""));
  Make(MakeCall(Op::kWrite, "", kPage, kPage, 'c'));
  EXPECT_EQ(Seen(TwoPages), (std::set<std::string>{"bb", "bc"}));
}

TEST_F(PowerCut, LeavesPartsOfAPage) {
  Make(MakeCall(Op::kWrite, "", 0, kPage, 'b'));
  const auto halves = Seen([](const Snapshot& image) { return std::string{image.file[0], image.file[512]}; });
  EXPECT_EQ(halves, (std::set<std::string>{"aa", "ab", "ba", "bb"}));
}

TEST_F(PowerCut, LeavesTheOldSizeOrTheNewOne) {
  Make(MakeCall(Op::kResize, "", 0, 100));
  Make(MakeCall(Op::kWrite, "", 2 * kPage, 10, 'b'));
  EXPECT_EQ(Seen(Size), (std::set<std::size_t>{100, 2 * kPage, 2 * kPage + 10}));
}

TEST_F(PowerCut, LeavesASizeWithoutItsBytes) {
  Make(MakeCall(Op::kWrite, "", 2 * kPage, 1, 'b'));
  const auto last = Seen([](const Snapshot& image) { return image.file.size() > 2 * kPage ? image.file.back() : '-'; });
  EXPECT_EQ(last, (std::set<char>{'-', '\0', 'b'}));
}

TEST_F(PowerCut, LosesTheNameOfANewFileUntilItsFolderIsSynced) {
  Make(MakeCall(Op::kCreate, "-journal"));
  Make(MakeCall(Op::kWrite, "-journal", 0, 1, 'j'));
  Make(MakeCall(Op::kSync, "-journal"));
  EXPECT_EQ(Seen(Journal), (std::set<std::string>{"none", "j"}));
  Make(MakeCall(Op::kSync, kFolder));
  EXPECT_EQ(Seen(Journal), (std::set<std::string>{"j"}));
}

TEST_F(PowerCut, BringsARemovedFileBackUntilItsFolderIsSynced) {
  Make(MakeCall(Op::kCreate, "-journal"));
  Make(MakeCall(Op::kWrite, "-journal", 0, 1, 'j'));
  Make(MakeCall(Op::kSync, "-journal"));
  Make(MakeCall(Op::kSync, kFolder));
  Make(MakeCall(Op::kRemove, "-journal"));
  EXPECT_EQ(Seen(Journal), (std::set<std::string>{"none", "j"}));
  Make(MakeCall(Op::kSync, kFolder));
  EXPECT_EQ(Seen(Journal), (std::set<std::string>{"none"}));
}

}  // namespace
