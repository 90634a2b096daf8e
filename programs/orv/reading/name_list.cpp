// Only headers of blocks and ids are read: an answer comes before the person has typed on. Of the states the first and
// the last are looked at.

#include "reading/name_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "reading/block_values.h"
#include "reading/file_model.h"
#include "reading/parts.h"
#include "reading/quantity_search.h"
#include "reading/result_file.h"
#include "reading/units.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

constexpr int kMostStates = 1000;
constexpr std::int64_t kMostIdsRead = 1'000'000;
constexpr std::size_t kMostNames = 1000;

using Names = std::vector<ListedName>;

void AddOnce(Names& names, const std::string& word, const std::string& note) {
  const bool is_there = std::ranges::any_of(names, [&](const ListedName& name) { return name.word == word; });
  if (!is_there && !word.empty()) names.push_back({word, note});
}

Names Variables(ResultFile& file) {
  Names names;
  for (const std::string& word : QuantityNames(file)) AddOnce(names, word, "");
  return names;
}

std::vector<ORVResult*> BlocksOf(ResultFile& file, const ValueRequest& request, ResultList list) {
  FoundQuantity quantity = FindQuantity(file, request.variable, list);
  std::erase_if(quantity.blocks, [&](const ORVResult* block) {
    return !request.entity.empty() && !SameWord(TextOf(block->m_etyp), request.entity);
  });
  return quantity.blocks;
}

Names Components(ResultFile& file, const ValueRequest& request) {
  Names names;
  for (const ResultList list : {ResultList::kSingleState, ResultList::kMultiState}) {
    const FoundQuantity quantity = FindQuantity(file, request.variable, list);
    for (const ORVResult* block : quantity.blocks) {
      for (const ComponentColumn& column : ColumnsOf(file, {request.variable, "", "", {}}, quantity, *block)) {
        AddOnce(names, column.label, column.unit);
      }
    }
  }
  return names;
}

/// "TIME 0.5 s".
Names States(ResultFile& file) {
  Names names = {{"last", "the last state"}};
  const std::vector<std::string> columns = file.IndexNames(), units = file.IndexUnits();
  for (int state = 1; state <= std::min(file.states(), kMostStates); ++state) {
    const std::vector<double> index = file.IndexOf(state);
    std::string note;
    if (!index.empty() && !columns.empty())
      note = fmt::format("{} {}", WithUnit(columns.front(), units.front()), index.front());
    names.push_back({fmt::format("{}", state), note});
  }
  return names;
}

Names Entities(ResultFile& file) {
  Names names;
  for (const std::string& word : EntityNames(file)) AddOnce(names, word, "");
  return names;
}

/// Of the first block that has values of the variable.
Names Ids(ResultFile& file, const ValueRequest& request) {
  Names names;
  for (ORVResult* block : BlocksOf(file, request, ResultList::kSingleState)) {
    const int state = block->IsConstantBlk() ? 0 : std::max(file.states() > 0 ? 1 : 0, 0);
    const long long count = file.CountAt(*block, state);
    if (count < 1 || count > kMostIdsRead) continue;
    for (const long long id : ReadIds(file, *block, state, static_cast<std::size_t>(count))) {
      names.push_back({fmt::format("{}", id), ""});
    }
    return names;
  }
  return names;
}

Names ElementTypes(const std::string& file) {
  Names names;
  for (const ORVEleConnectivity& block : ReadElementHeaders(file)) {
    AddOnce(names, TextOf(block.m_etypelem), fmt::format("{} elements", block.m_nele));
  }
  return names;
}

Names Parts(const std::string& path, NameKind kind) {
  orv::File file(path);
  Names names;
  for (const orv::Part& part : ReadParts(file, "", 0)) {
    if (kind == NameKind::kPartType) {
      AddOnce(names, part.type, "");
    } else {
      AddOnce(names, fmt::format("{}", part.id), part.title);
    }
  }
  return names;
}

Names NamesOf(const std::string& path, NameKind kind, const ValueRequest& request) {
  if (kind == NameKind::kPart || kind == NameKind::kPartType) return Parts(path, kind);
  ResultFile file(path);
  if (kind == NameKind::kElementType) return ElementTypes(path);
  if (kind == NameKind::kState) return States(file);
  if (file.states() > 1) file.LearnLaterResults(file.states());
  if (kind == NameKind::kEntity) return Entities(file);
  if (kind == NameKind::kVariable) return Variables(file);
  if (request.variable.empty()) return {};
  return kind == NameKind::kComponent ? Components(file, request) : Ids(file, request);
}

}  // namespace

Names KeepBeginning(const Names& names, const std::string& beginning) {
  Names kept;
  std::ranges::copy_if(names, std::back_inserter(kept),
                       [&](const ListedName& name) { return name.word.starts_with(beginning); });
  if (!kept.empty()) return kept;
  std::ranges::copy_if(names, std::back_inserter(kept), [&](const ListedName& name) {
    return SameWord(std::string_view(name.word).substr(0, beginning.size()), beginning);
  });
  return kept;
}

Names ListNames(const std::string& file, NameKind kind, const ValueRequest& request, const std::string& beginning) {
  (void)CheckResultFile(file);  // for its failures
  Names names = KeepBeginning(NamesOf(file, kind, request), beginning);
  if (names.size() > kMostNames) names.resize(kMostNames);
  return names;
}

}  // namespace orvio::program
