#include "comparing/name_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "comparing/record_table.h"
#include "reading/file_model.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

using Names = std::vector<std::string>;

void AppendNames(ResultFile& file, const std::vector<ComparedQuantity>& quantities, Names& names) {
  for (const ComparedQuantity& quantity : quantities) {
    names.push_back(quantity.name.variable);
    for (const Component& component : quantity.components) {
      names.insert(names.end(), component.names.begin(), component.names.end());
    }
  }
  for (const VariableInfo& variable : ListVariables(file)) {
    names.push_back(variable.name);
    if (!variable.key.empty()) names.push_back(variable.key);
  }
}

void AppendEntities(ResultFile& file, const std::vector<ComparedQuantity>& quantities, Names& names) {
  for (const ComparedQuantity& quantity : quantities) names.push_back(quantity.name.entity);
  for (int state = 0; state <= file.states(); ++state) {
    for (const RecordKind kind : kRecordKinds) {
      if (kind == RecordKind::kCollector) continue;
      for (std::string& type : ListRecordTypes(file, kind, state)) names.push_back(std::move(type));
    }
  }
}

void Require(const ResultFile& a, const ResultFile& b, const std::string& kind, const std::string& word,
             const Names& known) {
  if (std::ranges::any_of(known, [&](const std::string& name) { return SameWord(name, word); })) return;
  throw Trouble(a.path(), fmt::format("has no {} \"{}\", nor has {}{}", kind, word, b.path(), DidYouMean(word, known)),
                "orv info lists what a file has");
}

}  // namespace

void CheckNames(ResultFile& a, ResultFile& b, const std::vector<ComparedQuantity>& quantities_a,
                const std::vector<ComparedQuantity>& quantities_b, const DiffOptions& options) {
  Names names, entities;
  AppendNames(a, quantities_a, names);
  AppendNames(b, quantities_b, names);
  for (const std::string& word : options.variables) Require(a, b, "variable or component", word, names);
  for (ResultFile* file : {&a, &b}) {
    for (std::string& name : file->IndexNames()) names.push_back(std::move(name));
  }
  for (const std::string& word : options.ignored) Require(a, b, "variable or component", word, names);
  for (const NamedTolerance& one : options.tolerances.named) Require(a, b, "variable or component", one.name, names);
  if (options.entity.empty()) return;
  AppendEntities(a, quantities_a, entities);
  AppendEntities(b, quantities_b, entities);
  Require(a, b, "entity type", options.entity, entities);
}

void CheckSeen(const ResultFile& a, const ResultFile& b, const DiffOptions& options, const IdSet& seen) {
  std::vector<long long> missing;
  for (const long long id : options.ids) {
    if (!seen.contains(id)) missing.push_back(id);
  }
  if (missing.empty()) return;
  throw Trouble(a.path(),
                fmt::format("nothing that is compared has the id {}, nor has {}", std::ranges::min(missing), b.path()),
                "leave out --ids, or ask for ids that are there");
}

}  // namespace orvio::program
