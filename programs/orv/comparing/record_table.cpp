// Elements and parts by the readers that other commands use; the rest through the filer.

#include "comparing/record_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>

#include "comparing/collector_rows.h"
#include "reading/elements.h"
#include "reading/file_model.h"
#include "reading/parts.h"
#include "reading/stored_size.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

[[noreturn]] void Refuse(const ResultFile& file, RecordKind kind, const std::string& type, int state) {
  const std::string place = state == 0 ? "the constant section" : fmt::format("state {}", state);
  throw Trouble(file.path(),
                fmt::format("{} {} in {} cannot be read: {}", WordOf(kind), type, place, LibraryText("reading failed")),
                "the file is damaged, or from another kind of writer");
}

template <class Ints>
RecordColumn Numbers(std::string what, const Ints& numbers, std::size_t width) {
  return {std::move(what), {}, {numbers.begin(), numbers.end()}, width, {}};
}

// ---- Elements and parts

RecordTable Records(const orv::Elements& elements) {
  RecordTable table;
  table.facts = {{"dimension", elements.dimension < 0 ? "unknown" : fmt::format("{}", elements.dimension)},
                 {"type of the parts", elements.part_type},
                 {"type of the nodes", elements.node_type}};
  table.ids.assign(elements.ids.begin(), elements.ids.end());
  table.columns.push_back(Numbers("part", elements.parts, 1));
  table.columns.push_back(Numbers("nodes", elements.nodes, elements.nodes_per_element));
  return table;
}

RecordTable Records(const std::vector<orv::Part>& parts) {
  RecordTable table;
  RecordColumn titles{"title", {}, {}, 0, {}};
  std::vector<long long> materials, types;
  for (const orv::Part& part : parts) {
    table.ids.push_back(part.id);
    titles.texts.push_back(part.title);
    if (part.material) materials.push_back(*part.material);
    if (part.material_type) types.push_back(*part.material_type);
  }
  table.columns.push_back(std::move(titles));
  if (materials.size() == parts.size()) table.columns.push_back(Numbers("material", materials, 1));
  if (types.size() == parts.size()) table.columns.push_back(Numbers("material type", types, 1));
  return table;
}

// ---- Attributes and identifiers

template <class Block>
std::vector<std::string> TypesOf(const std::vector<Block*>& blocks) {
  std::vector<std::string> types;
  std::ranges::transform(blocks, std::back_inserter(types), [](const Block* block) { return TextOf(block->m_etyp); });
  return types;
}

std::vector<std::string> ListAttributes(ORVFiler& filer, int state) {
  std::vector<ORVEntAttribute*> blocks;
  filer.GetEntityAttributes(state, ORV_READ_HEADER, blocks);
  const std::vector<std::unique_ptr<ORVEntAttribute>> owned(blocks.begin(), blocks.end());  // headers have no arrays
  return TypesOf(blocks);
}

std::vector<std::string> ListIdentifiers(ORVFiler& filer, int state) {
  std::vector<ORVIdentifiers*> blocks;
  filer.GetEntityIdentifiers(state, ORV_READ_HEADER, blocks);
  std::vector<std::string> types = TypesOf(blocks);
  filer.CleanUpEntityIdentifierList(blocks);
  return types;
}

RecordTable Records(const ORVEntAttribute& block) {
  const auto count = static_cast<std::size_t>(block.m_nent), width = static_cast<std::size_t>(block.m_nuid);
  RecordTable table;
  const int* ids = static_cast<const int*>(block.m_entid);
  if (ids) table.ids.assign(ids, ids + count);
  if (const int* numbers = static_cast<const int*>(block.m_uid); numbers && width > 0) {
    table.columns.push_back(Numbers("integers", std::vector(numbers, numbers + count * width), width));
  }
  if (!block.m_title || block.m_length < 1) return table;
  RecordColumn titles{"title", {}, {}, 0, {}};
  const auto length = static_cast<std::size_t>(block.m_length);
  for (std::size_t i = 0; i < count; ++i) titles.texts.push_back(TextOf(block.m_title + i * length, length));
  const bool has_titles = std::ranges::any_of(titles.texts, [](const std::string& text) { return !text.empty(); });
  if (has_titles) table.columns.push_back(std::move(titles));
  return table;
}

template <class Block>
RecordTable ReadAttribute(ResultFile& file, RecordKind kind, const std::string& type, int state) {
  Block block;
  std::snprintf(block.m_etyp, sizeof block.m_etyp, "%s", type.c_str());
  int status = file.filer().ReadEntAttribute(&block, ORV_READ_HEADER, state);
  if (!HoldsValues(file.path(), block, "title", 1)) block.m_length = 0;  // whatever the header says
  if (status == 0) status = file.filer().ReadEntAttribute(&block, ORV_READ_DATA, state);
  RecordTable table = status == 0 ? Records(block) : RecordTable();
  file.filer().CleanUpEntAttribute(&block);
  if (status != 0 || table.ids.empty()) Refuse(file, kind, type, state);
  return table;
}

// ---- Collectors

std::vector<std::string> ListCollectors(ORVFiler& filer, int state) {
  std::vector<ORVCollector*> blocks;
  filer.GetCollector(state, ORV_READ_HEADER, blocks);
  std::vector<std::string> types;
  std::ranges::transform(blocks, std::back_inserter(types),
                         [](const ORVCollector* block) { return TextOf(block->m_etypcoll); });
  filer.DeleteCollector(blocks);
  return types;
}

RecordTable ReadCollector(ResultFile& file, const std::string& type, int state) {
  ORVCollector block;
  std::snprintf(block.m_etypcoll, sizeof block.m_etypcoll, "%s", type.c_str());
  const int status = file.filer().ReadCollector(&block, ORV_READ_HEADER | ORV_READ_DATA, state);
  RecordTable table;
  const bool is_sound = status == 0 && FillCollectorRows(block, table);
  file.filer().CleanUpCollector(&block);
  if (!is_sound) Refuse(file, RecordKind::kCollector, type, state);
  return table;
}

}  // namespace

std::span<const long long> RecordColumn::Row(std::size_t row) const {
  if (width > 0) return {numbers.data() + row * width, width};
  const std::size_t begin = row == 0 ? 0 : ends[row - 1];
  return {numbers.data() + begin, ends[row] - begin};
}

const char* WordOf(RecordKind kind) {
  constexpr const char* kWords[] = {"element", "part", "attribute", "identifier", "collector"};
  return kWords[static_cast<std::size_t>(kind)];
}

std::vector<std::string> ListRecordTypes(ResultFile& file, RecordKind kind, int state) {
  std::vector<std::string> types;
  switch (kind) {
    case RecordKind::kElement:
      for (const ORVEleConnectivity& block : ReadElementHeaders(file.path(), state)) {
        if (block.m_nele != 0) types.push_back(TextOf(block.m_etypelem));
      }
      break;
    case RecordKind::kPart:
      for (const orv::Part& part : ReadParts(file.file(), "", state)) types.push_back(part.type);
      break;
    case RecordKind::kAttribute:
      types = ListAttributes(file.filer(), state);
      break;
    case RecordKind::kIdentifier:
      types = ListIdentifiers(file.filer(), state);
      break;
    case RecordKind::kCollector:
      types = ListCollectors(file.filer(), state);
      break;
  }
  std::ranges::sort(types);
  types.erase(std::unique(types.begin(), types.end()), types.end());
  return types;
}

RecordTable ReadRecords(ResultFile& file, RecordKind kind, const std::string& type, int state) {
  switch (kind) {
    case RecordKind::kElement:
      return Records(ReadElements(file.file(), type, state).at(0));
    case RecordKind::kPart:
      return Records(ReadParts(file.file(), type, state));
    case RecordKind::kAttribute:
      return ReadAttribute<ORVEntAttribute>(file, kind, type, state);
    case RecordKind::kIdentifier:
      return ReadAttribute<ORVIdentifiers>(file, kind, type, state);
    case RecordKind::kCollector:
      break;
  }
  return ReadCollector(file, type, state);
}

}  // namespace orvio::program
