// The steps of a repair: a copy, its structure, its tree, and what orv check has to say about its blocks. All but the copy
// run in processes of their own: what is damaged may also be hostile.

#include "repairing/repair.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <hdf5.h>
#include <orvio/orvio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string_view>

#include "checking/block_format.h"
#include "checking/file_check.h"
#include "output_file.h"
#include "repairing/file_copy.h"
#include "repairing/result_tree.h"
#include "repairing/salvage.h"
#include "trouble.h"

namespace orvio::program {
namespace {

namespace fs = std::filesystem;

constexpr const char* kAdvice = "keep the file as it is; what is left of it needs other tools";

/// What a step sends besides losses: a letter and a text.
struct Answer {
  char letter;
  std::string text;
};

/// The names that the states and what they hold have; those of other groups tell nothing.
bool MayHold(const std::string& group, const std::string& name) {
  return group == kStatesGroup ? IsStateName(name) : IsTypeGroup(name.c_str());
}

std::string NameAt(const std::string& group, std::size_t position) {
  return group == kStatesGroup ? StateName(position + 1) : std::string();
}

/// Deeper than the groups that every file has: below a kind of blocks, or a kind in a state.
bool IsBelowKind(const std::string& place) {
  constexpr auto kDeepEnough = 4;
  return std::ranges::count(place, '/') >= kDeepEnough;
}

/// A state, or deeper.
bool IsBelowSection(const std::string& place) {
  return place.starts_with(fmt::format("{}/", kStatesGroup)) || IsBelowKind(place);
}

class Repair {
 public:
  explicit Repair(const RepairOptions& options) : options_(options), output_(options.out) {}

  RepairReport Run() {
    const std::string& working = output_.working_path();
    CopyFile(options_.file, working, options_.out);
    RollBackJournal();
    char structure = MendStructureOfCopy();
    if (structure == 'S' && CannotBeRead()) structure = 'M';
    switch (structure) {
      case 'S':
        report_.is_sound = true;
        break;
      case 'M':
        MendTree();
        break;
      case 'N':
        throw Trouble(options_.file, "is not an HDF5 file, or nothing of its beginning is left", kAdvice);
      default:
        throw Trouble(options_.file, "has lost its root group; nothing can be reached", kAdvice);
    }
    Finish();
    output_.Commit();
    return std::move(report_);
  }

 private:
  using Tell = std::function<void(char letter, const std::string& text)>;
  using Lose = std::function<void(const Loss&)>;

  /// Runs a step in a process of its own. What it lost is added to the report, its last answer is returned.
  Answer RunStep(const std::function<void(const Lose& lose, const Tell& tell)>& step) {
    Answer answer = {'\0', {}};
    const Outcome outcome = RunGuarded(
        options_.limits,
        [&](const LineSender& sender) {
          const Tell tell = [&](char letter, const std::string& text) { sender.Send(std::string(1, letter) + text); };
          const Lose lose = [&](const Loss& loss) { sender.Send(ToLine(loss)); };
          try {
            (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
            (void)H5PLset_loading_state(0);
            step(lose, tell);
          } catch (const BeyondRepair& error) {
            tell('?', error.what());
          } catch (const std::runtime_error& error) {
            tell('!', error.what());
          }
        },
        [&](std::string_view line) {
          if (const auto loss = LossFrom(line)) {
            AddLoss(*loss);
          } else if (!line.empty()) {
            answer = {line[0], std::string(line.substr(1))};
          }
        });
    const bool is_finished = outcome.ending == Ending::kFinished;
    if (is_finished && answer.letter == '?') throw Trouble(options_.file, answer.text, kAdvice);
    if (is_finished && answer.letter != '!') return answer;
    if (is_finished) throw Trouble(options_.out, answer.text, "check the free space in its folder");
    ThrowOutcome(outcome);
  }

  [[noreturn]] void ThrowOutcome(const Outcome& outcome) const {
    if (outcome.ending == Ending::kOutOfTime) {
      throw Trouble(options_.file, fmt::format("took more than {} seconds", options_.limits.seconds),
                    "give more --time");
    }
    if (outcome.ending == Ending::kOutOfMemory) {
      throw Trouble(options_.file, fmt::format("took more than {} MiB of memory", options_.limits.memory_mib),
                    "give more --memory");
    }
    throw Trouble(options_.file, "brought the repair to a bad end: " + outcome.how, kAdvice);
  }

  /// What lies in a lost block is lost with it, and told once.
  void AddLoss(Loss loss) {
    const std::string block = BlockOf(loss.place);
    if (!block.empty()) {
      loss.place = block;
      loss.is_partial = false;
    }
    if (!told_.insert({loss.place, loss.is_partial}).second) return;
    // What seemed to be damaged only may turn out to be lost.
    if (!loss.is_partial) std::erase_if(report_.losses, [&](const Loss& told) { return told.place == loss.place; });
    report_.losses.push_back(std::move(loss));
  }

  /// The writer of the file did not come to the end of a change: as the next writer would, put back what was there.
  void RollBackJournal() {
    constexpr const char* kEnding = "-journal";
    const std::string journal = options_.file + kEnding, copy = output_.working_path() + kEnding;
    std::error_code error;
    if (!fs::is_regular_file(journal, error)) return;
    struct Removed {
      std::string path;
      ~Removed() { (void)unlink(path.c_str()); }
    } const removed{copy};
    CopyFile(journal, copy, options_.out);
    (void)RunStep([&](const Lose&, const Tell&) {
      hid_t file = H5I_INVALID_HID;
      // A file that is damaged besides does not open; what the journal told is put back before.
      if (OH5WriteOpenFile(output_.working_path().c_str(), ORV_FILE_APPEND, &file) == 0) (void)OH5WriteCloseFile(file);
    });
    report_.was_rolled_back = !HaveSameBytes(options_.file, output_.working_path());
  }

  /// S: sound, M: mended, N: no HDF5 file, B: beyond repair.
  char MendStructureOfCopy() {
    return RunStep([&](const Lose& lose, const Tell& tell) {
             const int file = open(output_.working_path().c_str(), O_RDWR | O_CLOEXEC);
             if (file < 0) throw std::runtime_error("cannot be opened");
             constexpr char kLetters[] = {'N', 'S', 'M', 'B'};
             const Structure structure = MendStructure(file, {MayHold, NameAt}, lose);
             if (close(file) != 0) throw std::runtime_error("cannot be written");
             tell(kLetters[static_cast<std::size_t>(structure)], "");
           })
        .letter;
  }

  /// Changes the tree of the copy in a process of its own.
  Answer ChangeTree(const std::function<void(ResultTree& tree, const Lose& lose, const Tell& tell)>& change) {
    return RunStep([&](const Lose& lose, const Tell& tell) {
      ResultTree tree(output_.working_path(), ResultTree::Use::kChange);
      change(tree, lose, tell);
      if (!tree.Close()) throw std::runtime_error("cannot be written");
    });
  }

  void MendTree() {
    const Answer answer = ChangeTree([&](ResultTree& tree, const Lose& lose, const Tell& tell) {
      if (!tree.HasResults()) return tell('E', "");
      for (const Loss& loss : report_.losses) {
        if (!loss.is_partial) (void)tree.Remove(loss.place);  // what is left of a block that has lost a part
        if (!loss.is_partial || !IsBelowSection(loss.place) || tree.HasBlocks(loss.place)) continue;
        lose({loss.place, loss.why, loss.byte, false});
        if (IsBelowKind(loss.place)) (void)tree.Remove(loss.place);
      }
      for (const Loss& loss : tree.MakeFrame()) lose(loss);
    });
    if (answer.letter == 'E')
      throw Trouble(options_.file, "has lost its group post; nothing is left of the results", kAdvice);
    RemoveUnreadable();
    (void)ChangeTree([&](ResultTree& tree, const Lose& lose, const Tell&) {
      for (const Loss& loss : tree.FillStates(report_.losses)) lose(loss);
    });
    (void)ChangeTree([&](ResultTree& tree, const Lose& lose, const Tell&) {
      for (const Loss& loss : tree.TrimStates(report_.losses, options_.keeps_incomplete)) lose(loss);
    });
  }

  /// Whether there is damage that does not show in the structure.
  bool CannotBeRead() const {
    const Report report = CheckCopy();
    return std::ranges::any_of(report.findings, [](const Finding& finding) {
      return std::string_view(finding.rule->id) == "D003" || std::string_view(finding.rule->id) == "S002";
    });
  }

  /// The block that makes readers fail, by what orv check says; empty: it says something else.
  static std::string UnreadableBlock(const Finding& finding) {
    constexpr std::string_view kHarmless[] = {"B004", "D002"};  // readers of ours read them
    const std::string_view rule = finding.rule->id;
    const bool is_crash = rule == "S002";
    // A dataset that a link of a block leads to was there before the damage.
    const bool is_lost_target = rule == "R004" && !BlockOf(finding.place).empty();
    const bool counts = is_lost_target || (finding.rule->level == Level::kError &&
                                           std::ranges::find(kHarmless, rule) == std::end(kHarmless));
    if (!counts || rule.starts_with("F") || (rule.starts_with("S") && !is_crash)) return {};
    if (rule == "R001") return finding.place;
    const std::string block = BlockOf(finding.place);
    return block.empty() && IsBelowKind(finding.place) ? finding.place : block;
  }

  /// Of one rule a check tells so many cases only, and a block that is taken out may have been what others link to.
  void RemoveUnreadable() {
    constexpr int kMostRounds = 1000;
    for (int round = 0; round < kMostRounds; ++round) {
      std::map<std::string, std::string> blocks;
      for (const Finding& finding : CheckCopy().findings) {
        const std::string block = UnreadableBlock(finding);
        if (!block.empty()) blocks.try_emplace(block, fmt::format("{} ({})", finding.text, finding.rule->id));
      }
      if (blocks.empty()) return;
      const Answer answer = ChangeTree([&](ResultTree& tree, const Lose& lose, const Tell& tell) {
        bool is_less = false;
        for (const auto& [block, why] : blocks) {
          if (!tree.Remove(block)) continue;
          is_less = true;
          lose({block, why, Loss::kNoByte, false});
        }
        tell(is_less ? 'Y' : 'N', "");
      });
      if (answer.letter == 'N') return;
    }
  }

  Report CheckCopy() const {
    Report report = CheckFile(output_.working_path(), options_.limits);
    for (const Finding& finding : report.findings) {
      if (std::string_view(finding.rule->id) == "S003") ThrowOutcome({Ending::kOutOfTime, {}});
      if (std::string_view(finding.rule->id) == "S004") ThrowOutcome({Ending::kOutOfMemory, {}});
    }
    return report;
  }

  void Finish() {
    const Report report = CheckCopy();
    report_.errors = static_cast<std::uint64_t>(std::ranges::count_if(
        report.findings, [](const Finding& finding) { return finding.rule->level == Level::kError; }));
    const Answer answer = RunStep([&](const Lose&, const Tell& tell) {
      const ResultTree tree(output_.working_path(), ResultTree::Use::kLook);
      const ResultTree::Count count = tree.CountAll();
      tell('C', fmt::format("{} {}", count.states, count.blocks));
    });
    char* end = nullptr;
    report_.states = std::strtoull(answer.text.c_str(), &end, 10);
    report_.blocks = std::strtoull(end, nullptr, 10);
    std::ranges::stable_sort(report_.losses, {}, &Loss::place);
  }

  const RepairOptions& options_;
  OutputFile output_;
  RepairReport report_;
  std::set<std::pair<std::string, bool>> told_;
};

void CheckNames(const RepairOptions& options) {
  std::error_code error;
  if (!fs::exists(options.file, error)) throw Trouble(options.file, "does not exist", "check the name");
  if (!fs::is_regular_file(options.file, error)) {
    throw Trouble(options.file, "is not a file", "give the name of a result file");
  }
  if (access(options.file.c_str(), R_OK) != 0) throw Trouble(options.file, "may not be read", "check your permissions");
  if (!fs::exists(fs::symlink_status(options.out, error))) return;
  if (fs::equivalent(options.file, options.out, error)) {
    throw Trouble(options.out, "is the file to repair", "choose another name for the output");
  }
  if (!options.replaces) throw Trouble(options.out, "exists", "choose another name, or give --force to replace it");
}

}  // namespace

RepairReport RepairFile(const RepairOptions& options) {
  CheckNames(options);
  return Repair(options).Run();
}

}  // namespace orvio::program
