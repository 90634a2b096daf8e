#include "comparing/diff_options.h"

#include <algorithm>

#include "reading/words.h"

namespace orvio::program {
namespace {

bool AnyOf(const std::vector<std::string>& wanted, const std::vector<std::string>& names) {
  return std::ranges::any_of(wanted, [&](const std::string& word) {
    return std::ranges::any_of(names, [&](const std::string& name) { return SameWord(word, name); });
  });
}

}  // namespace

bool DiffOptions::WantsEntity(const std::string& type) const { return entity.empty() || SameWord(type, entity); }

bool DiffOptions::WantsNames(const std::vector<std::string>& names) const {
  return (variables.empty() || AnyOf(variables, names)) && !IsIgnored(names);
}

bool DiffOptions::IsIgnored(const std::vector<std::string>& names) const { return AnyOf(ignored, names); }

}  // namespace orvio::program
