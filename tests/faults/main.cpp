// Proves, at every call that changes a file, that nothing written is lost: docs/durability.md.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <string>

#include "faults/campaign.h"
#include "faults/process.h"

namespace orvio::faults {
namespace {

constexpr char kUsage[] =
    "usage: orvio_faults [--short | --full] [--plain | --durability 0|1|2] [--states A-B] [--jobs N] [--folder "
    "FOLDER]\n";

bool TakeFlag(const char* word, Wish& wish) {
  if (std::strcmp(word, "--short") == 0) {
    wish.form = Wish::Form::kShort;
  } else if (std::strcmp(word, "--full") == 0) {
    wish.form = Wish::Form::kFull;
  } else if (std::strcmp(word, "--plain") == 0) {
    wish.plain = true;
  } else {
    return false;
  }
  return true;
}

/// A number in a range; none for any other word.
std::optional<int> NumberIn(const char* word, int least, int most) {
  char* end = nullptr;
  const long number = std::strtol(word, &end, 10);
  if (end == word || *end != 0 || number < least || number > most) return std::nullopt;
  return static_cast<int>(number);
}

/// A range of numbers of states: "1-40".
bool TakeStates(const char* range, Wish& wish) {
  const char* dash = std::strchr(range, '-');
  if (!dash) return false;
  const auto first = NumberIn(std::string(range, dash).c_str(), 1, kMostStates);
  const auto last = NumberIn(dash + 1, 1, kMostStates);
  if (!first || !last || *first > *last) return false;
  wish.first_states = *first;
  wish.last_states = *last;
  return true;
}

bool TakeSetting(const char* word, const char* value, Wish& wish) {
  if (std::strcmp(word, "--states") == 0) return TakeStates(value, wish);
  if (std::strcmp(word, "--folder") == 0) {
    wish.folder = value;
    return true;
  }
  const bool jobs = std::strcmp(word, "--jobs") == 0;
  if (!jobs && std::strcmp(word, "--durability") != 0) return false;
  const auto number = jobs ? NumberIn(value, 1, 64) : NumberIn(value, 0, 2);
  if (number) (jobs ? wish.jobs : wish.durability) = *number;
  return number.has_value();
}

std::optional<Wish> Parse(int count, char** words) {
  Wish wish;
  wish.jobs = static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
  for (int i = 1; i < count; ++i) {
    if (TakeFlag(words[i], wish)) continue;
    if (i + 1 == count || !TakeSetting(words[i], words[i + 1], wish)) return std::nullopt;
    ++i;
  }
  if (wish.plain && wish.durability >= 0) return std::nullopt;
  return wish;
}

}  // namespace
}  // namespace orvio::faults

int main(int count, char** words) {
  try {
    const auto wish = orvio::faults::Parse(count, words);
    orvio::faults::EndWaitsOnSignals();
    if (wish) return orvio::faults::Run(*wish);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "orvio_faults: %s\n", error.what());
    return 2;
  }
  (void)std::fputs(orvio::faults::kUsage, stderr);
  return 2;
}
