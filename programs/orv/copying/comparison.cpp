// Blocks by their places, datasets and attributes by their names.

#include "copying/comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "copying/definitions.h"
#include "copying/result_source.h"
#include "copying/state_chain.h"
#include "reading/file_model.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

/// Attributes and datasets that one generation of versions has and the other has not, or has elsewhere.
constexpr std::string_view kOfOneGeneration[] = {"fidglob", "length",  "off",   "lenudb",
                                                 "etyp",    "indexic", "title", "blocktype"};

bool IsOfOneGeneration(std::string_view name) {
  return std::ranges::find(kOfOneGeneration, name) != std::end(kOfOneGeneration);
}

/// How far a value of the copy may be from that of the file: one of the last digit, because the filter makes zeros of
/// values below that, and what the type itself cannot tell.
double Tolerance(double value, int digits, bool is_double) {
  const double epsilon =
      is_double ? std::numeric_limits<double>::epsilon() : double{std::numeric_limits<float>::epsilon()};
  return std::pow(10.0, -digits) * (1 + 1e-9) + 2 * epsilon * std::abs(value);
}

class CopyCheck {
 public:
  CopyCheck(const std::string& file, const std::string& copy, bool makes_whole)
      : file_(file),
        copy_(copy),
        scan_(file_.file(), file_.states(), file, makes_whole),
        crosses_((file_.version().m_major < 2) != (copy_.version().m_major < 2)) {}

  Comparison Run() {
    Compare(kConstantSection, kConstantSection, 0);
    for (std::size_t i = 0; i < std::max(file_.states().size(), copy_.states().size()); ++i) {
      if (i >= file_.states().size() || i >= copy_.states().size()) {
        Tell(kStatesSection, "the numbers of states differ");
        break;
      }
      Compare(file_.states()[i], copy_.states()[i], static_cast<int>(i + 1));
    }
    if (IsGroupAt(file_.file(), kMultistateSection) || IsGroupAt(copy_.file(), kMultistateSection)) {
      Compare(kMultistateSection, kMultistateSection, 0);
    }
    return std::move(result_);
  }

 private:
  void Tell(const std::string& place, const std::string& what) {
    constexpr std::size_t kMostTold = 20;
    ++result_.different;
    if (result_.differences.size() < kMostTold) result_.differences.push_back(place + ": " + what);
  }

  std::map<std::string, BlockPlace> PlacesIn(ResultSource& source, const std::string& section) {
    std::map<std::string, BlockPlace> places;
    if (!IsGroupAt(source.file(), section)) return places;
    for (BlockPlace& place : FindBlocks(source.file(), section).blocks) {
      const BlockContent header = ReadHeader(source.file(), place, source.path());
      const bool is_empty = header.header.empty();  // what a new file of the first generation has in `system`
      if (is_empty || (crosses_ && IsDefinition(header.key))) continue;
      const std::string relative = place.relative;
      places.emplace(relative, std::move(place));
    }
    return places;
  }

  void Compare(const std::string& section, const std::string& copied, int state) {
    const std::map<std::string, BlockPlace> theirs = PlacesIn(file_, section), ours = PlacesIn(copy_, copied);
    std::set<std::string> inherited;
    for (const BlockPlace& place : state > 0 ? scan_.InheritedAt(state) : std::vector<BlockPlace>()) {
      inherited.insert(place.relative);
    }
    for (const auto& [relative, place] : ours) {
      if (!theirs.contains(relative) && !inherited.contains(relative)) Tell(place.path, "only the copy has it");
    }
    for (const auto& [relative, place] : theirs) {
      const auto twin = ours.find(relative);
      if (twin == ours.end()) {
        Tell(place.path, "the copy lacks it");
        continue;
      }
      CompareBlocks(state > 0 ? scan_.ReadWhole(place, state) : ReadContent(file_.file(), place, file_.path()),
                    ReadContent(copy_.file(), twin->second, copy_.path()));
    }
  }

  void CompareBlocks(const BlockContent& a, const BlockContent& b) {
    const auto is_left_out = [&](const std::string& name) {
      const bool is_of_merge = scan_.HasChanges() && (name == "solver_name" || name == "indexic");
      return is_of_merge || (crosses_ && IsOfOneGeneration(name) && !(name == "etyp" && IsResult(a.key)));
    };
    for (const HeaderField& field : a.header) {
      if (is_left_out(field.name)) continue;
      const HeaderField* twin = b.Find(field.name);
      const bool is_same =
          twin && twin->is_text == field.is_text && twin->number == field.number && twin->text == field.text;
      if (!is_same) Tell(a.place.path, fmt::format("attribute {} differs", field.name));
    }
    for (const BlockItem& item : a.items) {
      const BlockItem* twin = b.Item(item.name);
      if (twin) {
        CompareItems(a.place.path, item, *twin);
      } else if (!is_left_out(item.name)) {
        Tell(a.place.path, fmt::format("the copy lacks {}", item.name));
      }
    }
  }

  void CompareItems(const std::string& path, const BlockItem& a, const BlockItem& b) {
    result_.values += a.count();
    if (a.shape != b.shape || a.is_text() != b.is_text() || a.is_float() != b.is_float()) {
      return Tell(path, fmt::format("{} has another shape or class", a.name));
    }
    if (a.is_text() ? TextsOf(a) == TextsOf(b) : a.type == b.type && a.bytes == b.bytes) return;
    if (a.is_float() && a.type == b.type && b.digits) return CompareFloats(path, a, b);
    if (!a.is_float() && !a.is_text() && IntegersOf(a) == IntegersOf(b)) return;
    Tell(path, fmt::format("{} has other values", a.name));
  }

  void CompareFloats(const std::string& path, const BlockItem& a, const BlockItem& b) {
    const std::vector<double> before = FloatsOf(a), after = FloatsOf(b);
    std::uint64_t count = 0;
    double largest = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
      const double difference = std::abs(after[i] - before[i]);
      if (difference <= Tolerance(before[i], *b.digits, a.type == ORV_DOUBLE)) continue;
      if (std::bit_cast<std::uint64_t>(before[i]) == std::bit_cast<std::uint64_t>(after[i])) continue;
      ++count;
      if (!(difference <= largest)) largest = difference;
    }
    if (count == 0) return;
    Tell(path, fmt::format("{} of {} values of {} lose more than {} digits leave, {:.3g} at most", count, before.size(),
                           a.name, *b.digits, largest));
  }

  ResultSource file_, copy_;
  StateScan scan_;
  bool crosses_;
  Comparison result_;
};

/// What the library makes of the definitions.
void CompareModels(const std::string& file, const std::string& copy, Comparison& result) {
  const FileModel a = ReadFileModel(file), b = ReadFileModel(copy);
  const auto tell = [&](const std::string& what) {
    ++result.different;
    result.differences.push_back(what);
  };
  for (const VariableInfo& variable : a.variables) {
    const auto is_column = [&](const std::string& name) { return SameWord(name, variable.name); };
    if (std::ranges::any_of(a.index_names, is_column)) continue;  // whether it is shown depends on the version
    const auto is_twin = [&](const VariableInfo& v) {
      return SameWord(v.name, variable.name) && v.components == variable.components && v.units == variable.units;
    };
    if (std::ranges::none_of(b.variables, is_twin)) tell(fmt::format("variable {}: the copy lacks it", variable.name));
  }
  if (a.index_names != b.index_names || a.index_units != b.index_units) tell("the names of the index columns differ");
  const auto has_same_index = [](const StateInfo& x, const StateInfo& y) { return x.index == y.index; };
  if (!std::ranges::equal(a.states, b.states, has_same_index)) tell("the index of the states differs");
}

}  // namespace

Comparison CompareCopy(const std::string& file, const std::string& copy, bool makes_whole) {
  Comparison result = CopyCheck(file, copy, makes_whole).Run();
  CompareModels(file, copy, result);
  return result;
}

}  // namespace orvio::program
