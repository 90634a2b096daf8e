#include "faults/judge.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string_view>

#include "faults/snapshot.h"

namespace orvio::faults {
namespace {

constexpr unsigned kPatience = 20;  // seconds; a damaged file can keep HDF5 busy for good

bool IsThere(const std::array<Piece, kBlockCount>& pieces) {
  return std::any_of(pieces.begin(), pieces.end(), [](Piece piece) { return piece != Piece::kAbsent; });
}

/// What was there at the first look is there at the second; the state appended in between is whole.
Verdict JudgeAgain(const Expected& expected, const Seen& before, const Seen& after, int appended) {
  const Verdict looked = JudgeLook(expected, after, false, {});
  if (looked != Verdict::kSound) return looked;
  const auto last = static_cast<std::size_t>(appended - expected.states - 1);
  if (last > 0 && after.pieces[0] != before.pieces[0]) return Verdict::kMissing;
  const auto& pieces = after.pieces[last];
  const bool whole = std::all_of(pieces.begin(), pieces.end(), [](Piece piece) { return piece == Piece::kWhole; });
  return whole ? Verdict::kSound : Verdict::kNoAppend;
}

}  // namespace

const char* NameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::kNotOpen:
      return "does not open";
    case Verdict::kLost:
      return "earlier lost";
    case Verdict::kTorn:
      return "torn or ghost";
    case Verdict::kMissing:
      return "said, missing";
    case Verdict::kCrash:
      return "writer crashed";
    case Verdict::kNoAppend:
      return "no append";
    case Verdict::kReader:
      return "reader writes";
    case Verdict::kJournal:
      return "journal left";
    case Verdict::kSound:
      return "sound";
  }
  return "";
}

std::string NameOf(const Case& example) {
  return NameOf(example.writer) + ", " + NameOf(example.form) + ", " + std::to_string(example.states) + " states";
}

std::string JournalOf(const std::string& path) { return path + "-journal"; }

Verdict JudgeLook(const Expected& expected, const Seen& seen, bool whole_states,
                  const std::array<int, kBlockCount>& said) {
  if (!seen.opened) return Verdict::kNotOpen;
  if (!seen.model || seen.right < expected.states) return Verdict::kLost;
  const auto& pieces = seen.pieces[0];
  for (const auto& state : seen.pieces) {
    if (std::find(state.begin(), state.end(), Piece::kTorn) != state.end()) return Verdict::kTorn;
  }
  const bool same = std::all_of(pieces.begin(), pieces.end(), [&](Piece piece) { return piece == pieces[0]; });
  if (!seen.ended || seen.ghost || (whole_states && !same)) return Verdict::kTorn;
  for (std::size_t block = 0; block < pieces.size(); ++block) {
    if (said[block] != 0 && pieces[block] != Piece::kWhole) return Verdict::kMissing;
  }
  return Verdict::kSound;
}

const Seen& Judge::Look(const std::string& path, const Expected& expected, bool with_library) {
  seen_.Reset();
  count_.Reset();
  ending_ = RunApart(
      [&] {
        Arm({.path = path}, *count_);
        (with_library ? LookWithLibrary : LookWithHdf5)(path, expected, *seen_);
        return 0;
      },
      kPatience);
  return *seen_;
}

std::string Judge::Describe() const {
  std::string text = "the last look " + std::string(seen_->ended ? "ended" : "did not end");
  if (ending_.signal != 0) text += " with signal " + std::to_string(ending_.signal);
  text += seen_->opened ? ", opened" : ", did not open";
  text += seen_->model ? ", mesh right, " : ", mesh not right, ";
  return text + std::to_string(seen_->right) + " earlier states right" + (seen_->ghost ? ", ghosts" : "");
}

bool Judge::Append(const std::string& path, const Case& example, int state) {
  told_.Reset();
  (void)RunApart(
      [&] {
        AppendState(path, example.form, example.writer, state, 1, {}, *told_);
        return 0;
      },
      kPatience);
  return told_->ended && std::all_of(told_->said.begin(), told_->said.end(), [](int said) { return said == 1; });
}

Judge::Key Judge::KeyOf(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said) {
  const Snapshot left = Snapshot::Of(path);
  const auto hash = [](const Bytes& bytes) { return std::hash<std::string_view>()({bytes.data(), bytes.size()}); };
  return {hash(left.file), left.journal ? hash(*left.journal) : 0, NameOf(example), said};
}

Verdict Judge::Of(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said) {
  if (!std::filesystem::exists(path)) return Verdict::kNotOpen;
  const Key key = KeyOf(path, example, said);
  if (sound_.contains(key)) return Verdict::kSound;
  const Verdict verdict = Try(path, example, said);
  if (verdict == Verdict::kSound) sound_.insert(key);
  return verdict;
}

Verdict Judge::Try(const std::string& path, const Case& example, const std::array<int, kBlockCount>& said) {
  Expected expected{example.form, example.states, 1, {}};
  const bool library = !example.writer.plain;
  const Seen before = Look(path, expected, library);
  const Verdict looked = JudgeLook(expected, before, example.writer.whole, said);
  if (looked != Verdict::kSound) return looked;
  const bool reader_wrote = HasReaderWritten();
  // A state that is there in part stays as it is: the next one goes behind it.
  const bool there = IsThere(before.pieces[0]);
  const int next = example.states + (there ? 2 : 1);
  if (!Append(path, example, next)) return Verdict::kNoAppend;
  expected.new_states = there ? 2 : 1;
  expected.generations = {there ? 0 : 1, 1};
  const Verdict again = JudgeAgain(expected, before, Look(path, expected, false), next);
  if (again != Verdict::kSound) return again;
  if (reader_wrote) return Verdict::kReader;
  return std::filesystem::exists(JournalOf(path)) ? Verdict::kJournal : Verdict::kSound;
}

}  // namespace orvio::faults
