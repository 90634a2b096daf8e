// Findings as lines: F, rule, place, text; P, place; E and four counts. Tabs stand between the fields, so tabs, line ends
// and all other control characters in them are question marks.

#include "checking/finding.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <optional>

namespace orvio::program {
namespace {

constexpr std::uint64_t kToldOfOneRule = 100;
constexpr std::size_t kLongestField = 4096;

std::string Field(std::string text) {
  if (text.size() > kLongestField) text.replace(kLongestField, std::string::npos, " ...");
  std::ranges::replace_if(
      text, [](unsigned char c) { return std::iscntrl(c) != 0; }, '?');
  return text;
}

std::vector<std::string> FieldsOf(std::string_view line) {
  std::vector<std::string> fields;
  for (;;) {
    const std::size_t end = line.find('\t');
    fields.push_back(Field(std::string(line.substr(0, end))));
    if (end == std::string_view::npos) return fields;
    line.remove_prefix(end + 1);
  }
}

std::optional<std::uint64_t> CountOf(const std::string& field) {
  std::uint64_t count = 0;
  const char* end = field.data() + field.size();
  const auto [stop, error] = std::from_chars(field.data(), end, count);
  if (error != std::errc() || stop != end) return std::nullopt;
  return count;
}

}  // namespace

void Teller::Send(const char* rule, const std::string& place, const std::string& text) {
  sender_.Send(fmt::format("F\t{}\t{}\t{}", rule, Field(place), Field(text)));
}

void Teller::Tell(const char* rule, const std::string& place, const std::string& text) {
  if (++counts_[rule] <= kToldOfOneRule) Send(rule, place, text);
}

void Teller::Enter(const std::string& place) { sender_.Send("P\t" + Field(place)); }

void Teller::Finish() {
  for (const auto& [rule, count] : counts_) {
    if (count > kToldOfOneRule) Send(rule.c_str(), "/", fmt::format("{} more of this kind", count - kToldOfOneRule));
  }
  sender_.Send(
      fmt::format("E\t{}\t{}\t{}\t{}", looked_at.states, looked_at.blocks, looked_at.datasets, looked_at.values));
}

void Listener::Take(std::string_view line) {
  const std::vector<std::string> fields = FieldsOf(line);
  if (fields.size() == 4 && fields[0] == "F") return TakeFinding(fields);
  if (fields.size() == 5 && fields[0] == "E") return TakeEnd(fields);
  if (fields.size() == 2 && fields[0] == "P") {
    place_ = fields[1];
    return;
  }
  ++unknown_lines_;
}

void Listener::TakeFinding(const std::vector<std::string>& fields) {
  const Rule* rule = FindRule(fields[1]);
  if (!rule) {
    ++unknown_lines_;
  } else if (report_.findings.size() < Report::kMostFindings) {
    report_.findings.push_back({rule, fields[2], fields[3]});
  }
}

void Listener::TakeEnd(const std::vector<std::string>& fields) {
  std::array<std::uint64_t, 4> counts = {};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const auto count = CountOf(fields[i + 1]);
    if (!count) {
      ++unknown_lines_;
      return;
    }
    counts[i] = *count;
  }
  report_.looked_at = {counts[0], counts[1], counts[2], counts[3]};
  report_.is_complete = true;
}

void Listener::Add(const char* rule, const std::string& text) {
  report_.is_complete = false;
  report_.findings.push_back({FindRule(rule), place_, text});
}

Report Listener::Finish(const Outcome& outcome, const Limits& limits) {
  if (outcome.ending == Ending::kOutOfTime) {
    Add("S003", fmt::format("reading was not done after {} s", limits.seconds));
  } else if (outcome.ending == Ending::kOutOfMemory) {
    Add("S004", fmt::format("reading needs more than {} MiB", limits.memory_mib));
  } else if (outcome.ending == Ending::kDied) {
    Add("S002", "the reading process ended with " + outcome.how);
  } else if (unknown_lines_ > 0 || !report_.is_complete) {
    Add("S002", "the reading process told what makes no sense");
  }
  return std::move(report_);
}

}  // namespace orvio::program
