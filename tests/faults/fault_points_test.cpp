// All that happens to one append: what is known to be lost must be found.

#include <gtest/gtest.h>

#include "faults/fault_points.h"
#include "faults/process.h"

namespace {

using namespace orvio::faults;

class FaultPointsOfOneAppend : public testing::Test {
 protected:
  const Tally& Try(const Writer& writer, Effort effort) {
    effort.tell_findings = false;
    FaultPoints(folder_.path(), {{}, writer, 1}, effort, *tally_).Try();
    return *tally_;
  }
  static long Unsound(const Tally& tally, Row row) {
    return tally.Points(row) - tally.counts[static_cast<std::size_t>(row)][static_cast<std::size_t>(Verdict::kSound)];
  }

  WorkFolder folder_;
  Shared<Tally> tally_;
};

TEST_F(FaultPointsOfOneAppend, FindWhatHdf5Loses) {
  const Tally& tally = Try({.plain = true, .durability = 0}, {.faults = true, .seeds = 2});
  EXPECT_EQ(Unsound(tally, Row::kNoFault), 0);
  for (const Row row : {Row::kKill, Row::kHalf, Row::kNoSpace, Row::kIoError, Row::kDiskFull, Row::kPowerCut}) {
    EXPECT_GT(tally.Points(row), 20) << NameOf(row);
    EXPECT_GT(Unsound(tally, row), 0) << NameOf(row);
  }
}

/// Nothing is synced, so the disk may have any of it.
TEST_F(FaultPointsOfOneAppend, FindWhatAPowerCutTakesFromAKillSafeWriter) {
  EXPECT_GT(Unsound(Try({.durability = 1}, {.seeds = 4}), Row::kPowerCut), 0);
}

}  // namespace
