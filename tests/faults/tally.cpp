#include "faults/tally.h"

#include <cstdio>

namespace orvio::faults {
namespace {

long CountOf(const Tally& tally, int row, Verdict verdict) {
  return tally.counts[static_cast<std::size_t>(row)][static_cast<std::size_t>(verdict)];
}

}  // namespace

const char* NameOf(Row row) {
  switch (row) {
    case Row::kNoFault:
      return NameOf(Fault::kNone);
    case Row::kKill:
      return NameOf(Fault::kKill);
    case Row::kHalf:
      return NameOf(Fault::kHalf);
    case Row::kNoSpace:
      return NameOf(Fault::kNoSpace);
    case Row::kIoError:
      return NameOf(Fault::kIoError);
    case Row::kDiskFull:
      return NameOf(Fault::kDiskFull);
    case Row::kUnread:
      return NameOf(Fault::kUnread);
    case Row::kSecondKill:
      return "kill while put right";
    case Row::kPowerCut:
      return "power cut";
    case Row::kSecondCut:
      return "power cut while put right";
  }
  return "";
}

Row RowOf(Fault fault) { return static_cast<Row>(static_cast<int>(Row::kNoFault) + static_cast<int>(fault)); }

long Tally::Points(Row row) const {
  long points = 0;
  for (const auto& count : counts[static_cast<std::size_t>(row)]) points += count;
  return points;
}

long Tally::Unsound() const {
  long unsound = 0;
  for (int row = 0; row < kRows; ++row) {
    unsound += Points(static_cast<Row>(row)) - CountOf(*this, row, Verdict::kSound);
  }
  return unsound;
}

void Tally::Print(const std::string& title) const {
  (void)std::printf("%-32s %7s", title.c_str(), "points");
  for (int verdict = 0; verdict < kVerdicts; ++verdict) {
    (void)std::printf(" %14s", NameOf(static_cast<Verdict>(verdict)));
  }
  (void)std::printf("\n");
  for (int row = 0; row < kRows; ++row) {
    if (Points(static_cast<Row>(row)) == 0) continue;
    (void)std::printf("%-32s %7ld", NameOf(static_cast<Row>(row)), Points(static_cast<Row>(row)));
    for (int verdict = 0; verdict < kVerdicts; ++verdict) {
      (void)std::printf(" %14ld", CountOf(*this, row, static_cast<Verdict>(verdict)));
    }
    (void)std::printf("\n");
  }
  (void)std::fflush(stdout);
}

}  // namespace orvio::faults
