// Reading of connectivity blocks.

#include "reading/element_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <orvio/orvio.h>

#include <algorithm>
#include <filesystem>

#include "reading/file_model.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// A damaged header can announce any count; what is announced must fit into the file.
void CheckSize(const std::string& file, const ORVEleConnectivity& block) {
  constexpr double kValuesPerByte = 1000;  // more than any compression of ids reaches
  std::error_code error;
  const auto bytes = static_cast<double>(std::filesystem::file_size(file, error));
  const double nodes = static_cast<double>(block.m_nele) * static_cast<double>(block.m_npele);
  if (block.m_nele < 0 || block.m_npele < 0 || static_cast<double>(block.m_nele) > bytes * kValuesPerByte ||
      nodes > bytes * kValuesPerByte) {
    throw Trouble(file, fmt::format("block {} has impossible counts", block.GetBlkPath()), "the file is damaged");
  }
}

ElementTable ReadTable(const std::string& file, ORVEleConnectivity block) {
  CheckSize(file, block);
  ElementTable table{TextOf(block.m_etypelem), block.m_npele, block.m_ndim, {}, {}, {}};
  const auto count = static_cast<std::size_t>(block.m_nele);
  if (count == 0) return table;
  std::vector<std::int64_t> ids(count), parts(count), nodes(count * static_cast<std::size_t>(block.m_npele));
  block.m_idele = ids.data();
  block.m_pid = parts.data();
  block.m_ic = nodes.data();
  block.m_ideleType = block.m_pidType = block.m_icType = ORV_LONG;
  if (nodes.empty() || block.ReadBlockByBlockPath(file.c_str(), ORV_READ_DATA) != 0) {
    throw Trouble(file, fmt::format("block {} cannot be read: {}", block.GetBlkPath(), LibraryText("reading failed")),
                  "the file is damaged, or from another kind of writer");
  }
  table.ids.assign(ids.begin(), ids.end());
  table.parts.assign(parts.begin(), parts.end());
  table.nodes.assign(nodes.begin(), nodes.end());
  return table;
}

}  // namespace

std::vector<ElementTable> ReadElementTables(const std::string& file, const std::string& type) {
  (void)CheckResultFile(file);  // for its failures
  std::vector<ElementTable> tables;
  std::vector<std::string> names;
  for (const ORVEleConnectivity& block : ReadElementHeaders(file)) {
    names.push_back(TextOf(block.m_etypelem));
    if (type.empty() || SameWord(names.back(), type)) tables.push_back(ReadTable(file, block));
  }
  if (tables.empty() && !type.empty()) {
    throw Trouble(file, fmt::format("has no elements of type \"{}\"", type),
                  names.empty() ? "it has no elements at all" : fmt::format("it has {}", fmt::join(names, ", ")));
  }
  return tables;
}

}  // namespace orvio::program
