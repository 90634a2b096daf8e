// What orv check looks for. Ids are for good: scripts and people keep them.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace orvio::program {

enum class Level { kNote, kWarning, kError };

/// One thing that a sound file has. The texts are sentences for people.
struct Rule {
  const char* id;      ///< group letter and three digits
  Level level;         ///< error: readers fail or see wrong data; warning: some do; note: worth a look
  const char* name;    ///< one word or a few with hyphens
  const char* wants;   ///< what holds in a sound file
  const char* why;     ///< what goes wrong otherwise
  const char* advice;  ///< what to do about it
};

/// All rules in the order of their ids.
std::span<const Rule> AllRules();

/// Null when there is none; the case of the letter does not matter.
const Rule* FindRule(std::string_view id);

/// "error", "warning", "note".
const char* WordOf(Level level);
std::optional<Level> LevelOf(std::string_view word);

}  // namespace orvio::program
