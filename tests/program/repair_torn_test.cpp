// orv repair: files that were cut short, and files whose writer ended in the middle of adding a state with plain HDF5.

#include <algorithm>
#include <random>

#include "program/repaired_file.h"

namespace {

using namespace orv_test;
constexpr size_t kPage = 4096;
const std::string kStates = "/post/singlestate";

using RepairTorn = RepairTest;

TEST_F(RepairTorn, CutAnywhereKeepsWhatIsThere) {
  ForgedModel model;
  Fill(model, 3);
  const std::string path = model.path(), whole = BytesOf(path);
  std::uint64_t trouble = 0, most = 0;
  constexpr size_t kSteps = 40;
  for (size_t step = 0; step < kSteps; ++step) {
    const size_t length = whole.size() * step / kSteps + step % 7;
    SCOPED_TRACE(length);
    std::filesystem::remove(out());
    const RepairRun run = RepairFileAt(WriteFile("cut.orv", whole.substr(0, length)));
    if (run.exit_code == 2) {
      ++trouble;
      EXPECT_FALSE(std::filesystem::exists(out()));
      EXPECT_EQ(most, 0U) << "more was there of a shorter file: " << run.err;
      continue;
    }
    EXPECT_EQ(run.exit_code, 1) << run.err;
    // Sections that are lost are made anew, with a file header where there is none.
    ExpectSoundPartOf(path, {"/post/orvheader/orvheader"});
    const auto blocks = run.report["salvaged"]["blocks"].get<std::uint64_t>();
    EXPECT_GE(blocks + 2, most) << "the last state may be incomplete";
    most = std::max(most, blocks);
    if (HasFailure()) return;
  }
  EXPECT_GT(trouble, 0U);
  EXPECT_GE(most, 18U);
}

/// Adds a state as a program does that knows nothing of half-done changes.
void AddState(const std::string& path, int state) {
  const Id file(H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), path);
  Check(H5Ocopy(file.get(), kSoundState2, file.get(), ForgedModel::StateGroup(state).c_str(), H5P_DEFAULT, H5P_DEFAULT),
        "state");
}

/// The file before, with some pages of the file after.
std::string Mixed(const std::string& before, const std::string& after, const std::vector<size_t>& pages) {
  std::string mixed = before;
  for (const size_t page : pages) {
    const std::string bytes = after.substr(page, kPage);
    mixed.resize(std::max(mixed.size(), page + bytes.size()), '\0');
    mixed.replace(page, bytes.size(), bytes);
  }
  return mixed;
}

std::vector<size_t> ChangedPages(const std::string& before, const std::string& after) {
  std::vector<size_t> pages;
  for (size_t page = 0; page < after.size(); page += kPage) {
    if (page >= before.size() || before.compare(page, kPage, after, page, kPage) != 0) pages.push_back(page);
  }
  return pages;
}

TEST_F(RepairTorn, InTheMiddleOfAStateKeepsAllStatesBefore) {
  constexpr int kFirst = 32, kEnd = 60;
  int damaged = 0;
  for (int i = kFirst; i < kEnd; ++i) {
    SCOPED_TRACE(i);
    std::mt19937 random(static_cast<unsigned>(i));
    ForgedModel model;
    const int states = 2 + i % 16;
    Fill(model, states);
    const std::string path = model.path(), before = BytesOf(path);
    const auto contents = ContentsOf(path);
    AddState(path, states + 1);
    const std::string after = BytesOf(path);
    std::vector<size_t> pages = ChangedPages(before, after);
    std::ranges::shuffle(pages, random);
    pages.resize(random() % pages.size());
    const RepairRun run = Repair(Mixed(before, after, pages), path);
    if (!run.report["sound"].get<bool>()) ++damaged;
    const auto repaired = ContentsOf(out());
    const bool keeps_all = std::ranges::includes(
        repaired, contents, {}, [](const auto& e) { return e.first; }, [](const auto& e) { return e.first; });
    EXPECT_TRUE(keeps_all) << run.report;
    EXPECT_GE(run.report["salvaged"]["states"].get<int>(), states);
    if (HasFailure()) return;
  }
  EXPECT_GT(damaged, (kEnd - kFirst) / 4) << "the test damages too few files";
}

TEST_F(RepairTorn, WithoutAnyByteOfTheNewStateKeepsAllStatesBefore) {
  ForgedModel model;
  Fill(model, 8);  // the ninth one needs another symbol node
  const std::string path = model.path(), before = BytesOf(path);
  AddState(path, 9);
  const std::string after = BytesOf(path);
  // All that was changed in place was written, and nothing of what was added.
  const RepairRun run = Repair(after.substr(0, before.size()), path);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.report["salvaged"]["states"], 8);
}

}  // namespace
