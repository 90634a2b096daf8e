// The header, the mesh and the sets of an Exodus II file.
//
// Numbers of a variable's name count from 1, as in `connect1` and `node_ns1`, and so do positions of nodes and elements.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "exodus/reader.h"

namespace orvio::exodus {
namespace {

std::size_t Size(int count) { return static_cast<std::size_t>(count); }

/// Polygons and polyhedra are stored as a list of faces or nodes with the length of each.
bool HasFixedNodes(std::string type) {
  std::ranges::transform(type, type.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return !type.starts_with("nsided") && !type.starts_with("nfaced");
}

}  // namespace

Reader::Reader(const std::filesystem::path& path) : file_(path), nodes_(file_.Count("num_nodes")) {
  (void)ReadDimension();  // no Exodus file is without
  elements_ = file_.Count("num_elem");
  announced_states_ = file_.Count("time_step");
  states_ = static_cast<int>(std::min<std::uint64_t>(Size(announced_states_), file_.WholeRecords()));
}

int Reader::ReadDimension() const {
  const int dimension = file_.Count("num_dim");
  if (dimension == 0) throw Error("is not an Exodus file: num_dim is missing");
  if (dimension > 3) throw Error(fmt::format("num_dim: {} dimensions are too many", dimension));
  return dimension;
}

Header Reader::ReadHeader() const {
  Header header;
  header.title = file_.TextAttribute(nullptr, "title");
  header.dimension = ReadDimension();
  header.nodes = nodes_;
  header.elements = elements_;
  const auto records = file_.Find("qa_records");
  constexpr std::size_t kFields = 4;
  if (!records || records->shape.size() != 3 || records->shape[1] != kFields) return header;
  const std::vector<std::string> texts = file_.Texts(*records);
  for (std::size_t i = 0; i + kFields <= texts.size(); i += kFields) {
    header.records.push_back({texts[i], texts[i + 1], texts[i + 2], texts[i + 3]});
  }
  return header;
}

// ---- Nodes

Nodes Reader::ReadNodes() const {
  constexpr std::array kAxes = {"coordx", "coordy", "coordz"};
  constexpr std::size_t kWidth = kAxes.size();
  const std::size_t dimension = Size(ReadDimension()), count = Size(nodes_);
  const bool as_one = file_.Find("coord").has_value();
  Nodes nodes;
  for (std::size_t axis = 0; axis < dimension; ++axis) {
    const Variable variable = as_one ? file_.Get("coord", {dimension, count}) : file_.Get(kAxes[axis], {count});
    const auto column = as_one ? file_.Reals(variable, {axis, 0}, {1, count}) : file_.Reals(variable);
    nodes.coordinates.resize(count * kWidth);  // the file held as much: the count is to be believed
    for (std::size_t node = 0; node < count; ++node) nodes.coordinates[node * kWidth + axis] = column[node];
    nodes.is_double = nodes.is_double || variable.IsDouble();
  }
  nodes.ids = ReadIdMap("node_num_map", nodes_);
  return nodes;
}

IdMap Reader::ReadIdMap(const std::string& variable, int count) const {
  if (!file_.Find(variable)) return {};
  return {file_.Integers(file_.Get(variable, {Size(count)}))};
}

IdMap Reader::ReadElementIds() const { return ReadIdMap("elem_num_map", elements_); }

// ---- What blocks and sets have in common

/// Ids of blocks or sets. Every file has them, and so their number is to be believed.
std::vector<int> Reader::ReadIds(const std::string& variable, int count) const {
  return count == 0 ? std::vector<int>() : file_.Integers(file_.Get(variable, {Size(count)}));
}

/// Empty names where a file has none.
std::vector<std::string> Reader::ReadNames(const std::string& variable, int count) const {
  if (count == 0 || !file_.Find(variable)) return std::vector<std::string>(Size(count));
  return file_.Texts(file_.GetTexts(variable, Size(count)));
}

/// Numbers from 1 to `most`.
std::vector<int> Reader::ReadPositions(const std::string& variable, const Shape& shape, int most,
                                       const char* of) const {
  std::vector<int> positions = file_.Integers(file_.Get(variable, shape));
  const auto wrong = std::ranges::find_if(positions, [most](int position) { return position < 1 || position > most; });
  if (wrong == positions.end()) return positions;
  const auto place = static_cast<std::size_t>(wrong - positions.begin());
  const std::size_t row = shape.size() > 1 ? place / shape[1] : place;
  throw Error(fmt::format("{}, row {}: {} is none of the {} {}", variable, row + 1, *wrong, most, of));
}

// ---- Elements

std::vector<ElementBlock> Reader::ReadBlocks() const {
  const int count = file_.Count("num_el_blk");
  const std::vector<int> ids = ReadIds("eb_prop1", count);
  const std::vector<std::string> names = ReadNames("eb_names", count);
  std::vector<ElementBlock> blocks;
  std::int64_t first = 1;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ElementBlock block = ReadBlock(i, static_cast<int>(first));
    block.id = ids[i];
    block.name = names[i];
    first += block.elements;
    if (first - 1 > elements_) break;
    blocks.push_back(std::move(block));
  }
  if (first - 1 != elements_) {
    throw Error(fmt::format("num_elem: {} elements, but the blocks have {}{}", elements_,
                            first - 1 > elements_ ? "at least " : "", first - 1));
  }
  return blocks;
}

ElementBlock Reader::ReadBlock(std::size_t block, int first) const {
  ElementBlock read;
  const std::string number = std::to_string(block + 1), connect = "connect" + number;
  read.elements = file_.Count("num_el_in_blk" + number);
  read.first = first;
  if (read.elements == 0) return read;
  const auto variable = file_.Find(connect);
  if (!variable) throw Error(connect + ": is missing");
  read.type = file_.TextAttribute(&*variable, "elem_type");
  if (!HasFixedNodes(read.type)) return read;
  read.nodes_per_element = file_.Count("num_nod_per_el" + number);
  if (read.nodes_per_element == 0) throw Error(connect + ": elements without nodes");
  read.positions = ReadPositions(connect, {Size(read.elements), Size(read.nodes_per_element)}, nodes_, "nodes");
  return read;
}

// ---- Sets

std::vector<NodeSet> Reader::ReadNodeSets() const {
  const int count = file_.Count("num_node_sets");
  const std::vector<int> ids = ReadIds("ns_prop1", count);
  const std::vector<std::string> names = ReadNames("ns_names", count);
  std::vector<NodeSet> sets;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    const int nodes = file_.Count("num_nod_ns" + number);
    sets.push_back({ids[i], names[i], {}});
    if (nodes > 0) sets.back().positions = ReadPositions("node_ns" + number, {Size(nodes)}, nodes_, "nodes");
  }
  return sets;
}

/// How many sides an element has depends on its shape: any number from 1 may be one.
std::vector<int> Reader::ReadSides(const std::string& variable, int count) const {
  std::vector<int> sides = file_.Integers(file_.Get(variable, {Size(count)}));
  const auto wrong = std::ranges::find_if(sides, [](int side) { return side < 1; });
  if (wrong == sides.end()) return sides;
  throw Error(fmt::format("{}, row {}: {} is no side of an element", variable, wrong - sides.begin() + 1, *wrong));
}

std::vector<SideSet> Reader::ReadSideSets() const {
  const int count = file_.Count("num_side_sets");
  const std::vector<int> ids = ReadIds("ss_prop1", count);
  const std::vector<std::string> names = ReadNames("ss_names", count);
  std::vector<SideSet> sets;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    const int sides = file_.Count("num_side_ss" + number);
    sets.push_back({ids[i], names[i], {}, {}});
    if (sides == 0) continue;
    sets.back().positions = ReadPositions("elem_ss" + number, {Size(sides)}, elements_, "elements");
    sets.back().sides = ReadSides("side_ss" + number, sides);
  }
  return sets;
}

}  // namespace orvio::exodus
