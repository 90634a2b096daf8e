// Reading of connectivity blocks.

#include "reading/element_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <orvio/orvio.h>

#include <algorithm>

#include "reading/file_model.h"
#include "reading/stored_size.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

void CheckSize(const std::string& file, const ORVEleConnectivity& block) {
  const auto count = static_cast<double>(block.m_nele);
  const double nodes = count * static_cast<double>(block.m_npele);
  const bool is_possible = block.m_nele >= 1 && block.m_npele >= 1;
  if (is_possible && HoldsValues(file, block, "idele", count) && HoldsValues(file, block, "ic", nodes)) return;
  throw Trouble(file, fmt::format("block {} does not hold what its header announces", block.GetBlkPath()),
                "the file is damaged");
}

}  // namespace

ElementTable ReadElementTable(const std::string& file, ORVEleConnectivity block) {
  CheckSize(file, block);
  const auto count = static_cast<std::size_t>(block.m_nele);
  ElementTable table;
  table.type = TextOf(block.m_etypelem);
  table.part_type = TextOf(block.m_etyppart);
  table.node_type = TextOf(block.m_etypnode);
  table.nodes_per_element = block.m_npele;
  table.dimension = block.m_ndim;
  table.ids.resize(count);
  table.parts.resize(count);
  table.nodes.resize(count * static_cast<std::size_t>(block.m_npele));
  block.m_idele = table.ids.data();
  block.m_pid = table.parts.data();
  block.m_ic = table.nodes.data();
  block.m_ideleType = block.m_pidType = block.m_icType = ORV_LONG;
  if (block.ReadBlockByBlockPath(file.c_str(), ORV_READ_DATA) != 0) {
    throw Trouble(file, fmt::format("block {} cannot be read: {}", block.GetBlkPath(), LibraryText("reading failed")),
                  "the file is damaged, or from another kind of writer");
  }
  return table;
}

std::vector<ElementTable> ReadElementTables(const std::string& file, const std::string& type, int state) {
  (void)CheckResultFile(file);  // for its failures
  std::vector<ElementTable> tables;
  std::vector<std::string> names;
  for (const ORVEleConnectivity& block : ReadElementHeaders(file, state)) {
    if (block.m_nele == 0) continue;
    names.push_back(TextOf(block.m_etypelem));
    if (type.empty() || SameWord(names.back(), type)) tables.push_back(ReadElementTable(file, block));
  }
  if (tables.empty() && !type.empty()) {
    throw Trouble(file, fmt::format("has no elements of type \"{}\"{}", type, DidYouMean(type, names)),
                  names.empty() ? "it has no elements at all" : fmt::format("it has {}", fmt::join(names, ", ")));
  }
  return tables;
}

}  // namespace orvio::program
